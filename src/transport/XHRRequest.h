#pragma once

#include <CalyxClient/calyxclient_export.h>

#include <QMap>
#include <QObject>
#include <QString>

#include <atomic>

/// The name under which header maps travel in queued signals.
using QStringMap = QMap<QString, QString>;

/// One HTTP request of the receiving side of an XHR transport, and what its response's header said.
///
/// Has no parent. Who makes it releases it, with deleteLater() once it has been handed to a worker or a
/// signal; a worker never does. The worker writes the response's values before it emits the request, and not
/// after.
class CALYXCLIENT_EXPORT XHRRequest : public QObject
{
    Q_OBJECT

public:
    /// \p path is the request path, \p payload the complete text that goes to the socket. A null \p payload
    /// makes a request that is dropped instead of being written.
    XHRRequest(const QString& path, const QString& payload, QObject* parent = nullptr);

    /// The request path; its end tells what kind of request it is.
    QString path() const { return m_path; }
    /// The request line, the headers and the body, as they go to the socket.
    QString payload() const { return m_payload; }
    /// A number of its own for each request of the process, from 1.
    int requestId() const { return m_requestId; }

    /// Whether the response came chunked; false before its header has come.
    bool isChunked() const { return m_chunked; }
    /// For the worker.
    void setChunked(bool chunked) { m_chunked = chunked; }
    /// The length that the response's header gave, in bytes; 0 without a usable one and before the header has
    /// come.
    int contentLength() const { return m_contentLength; }
    /// For the worker.
    void setContentLength(int length) { m_contentLength = length; }

private:
    static std::atomic<int> REQUEST_COUNTER;

    int m_requestId;
    QString m_path;
    QString m_payload;
    bool m_chunked = false;
    int m_contentLength = 0;
};
