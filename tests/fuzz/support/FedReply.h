#pragma once

#include <QByteArray>
#include <QNetworkReply>

#include <cstring>

/// A reply that has come: what the library gets in place of the network's.
class FedReply : public QNetworkReply
{
public:
    enum Bits { Failed = 1, GzipEncoded = 2, Redirected = 4 };

    /// With \p body, in the way that \p bits say; where it redirects, \p body is the address.
    FedReply(int bits, const QByteArray& body, QObject* parent) : QNetworkReply(parent), m_body(body)
    {
        if (bits & Failed)
            setError(InternalServerError, QStringLiteral("refused"));
        if (bits & GzipEncoded)
            setRawHeader("content-encoding", "gzip");
        if (bits & Redirected)
            setAttribute(QNetworkRequest::RedirectionTargetAttribute, QUrl(QString::fromUtf8(body)));
        open(ReadOnly | Unbuffered);
        setFinished(true);
    }

    void abort() override {}
    qint64 bytesAvailable() const override
    {
        return m_body.size() - m_read + QNetworkReply::bytesAvailable();
    }

protected:
    qint64 readData(char* data, qint64 maxSize) override
    {
        const qint64 count = qMin(maxSize, qint64(m_body.size()) - m_read);
        std::memcpy(data, m_body.constData() + m_read, size_t(count));
        m_read += count;
        return count;
    }

private:
    const QByteArray m_body;
    qint64 m_read = 0;
};
