#pragma once

#include <CalyxClient/calyxclient_export.h>

#include <QObject>
#include <QString>

/// What carries the frames of one SockJS session: SockJSConnector knows no more of a transport than this.
///
/// Lives on the thread that made it. Emits from the event loop only: no operation of its emits anything
/// before it returns, and a slot may call any of them, and delete the transport.
class CALYXCLIENT_EXPORT SockJSTransport : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;
    ~SockJSTransport() override;

    /// Whether the transport has come up, and connectionClosed() has not told its end.
    virtual bool isUp() const = 0;

    /// Sends \p frame after all earlier ones. What cannot be sent is lost without a sign to the caller.
    virtual void sendTextMessage(QString frame) = 0;

    /// Hands the transport over to itself: it emits nothing any more, has no parent, and deletes itself once
    /// what was sent is out, or after some seconds with a far end that does not take it.
    virtual void retire() = 0;

Q_SIGNALS:
    /// The transport has ended, and not by retire(). Once, and nothing follows it.
    void connectionClosed();
    /// One SockJS frame, or what the server sent in place of one.
    void textMessageReceived(QString message);
};
