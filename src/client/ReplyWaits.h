#pragma once

#include <QVector>

class InnerLoop;
class QNetworkReply;
class QObject;

/// The nested event loops in which one client's operations wait for their replies, the innermost last. They
/// leave user input alone.
class ReplyWaits
{
public:
    enum Kind {
        Patient, ///< until its own reply has been processed
        Yielding ///< no longer than any wait that it stands inside
    };

    /// Waits until end(\p reply), or \p owner's destruction, or the application's end. This object may be
    /// gone then: look at the owner first.
    void run(QObject* owner, const QNetworkReply* reply, Kind kind);
    /// Ends the wait for \p reply, and those inside it that yield.
    void end(const QNetworkReply* reply);

private:
    struct Wait
    {
        const QNetworkReply* reply;
        Kind kind;
        InnerLoop* loop;
    };

    bool hasEnded() const;

    QVector<Wait> m_waits;
};
