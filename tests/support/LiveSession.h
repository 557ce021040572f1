#pragma once

#include "collab/PresenterCollab.h"
#include "support/FakeSockJSServer.h"
#include "support/LogRecorder.h"

#include <QObject>
#include <QPointer>
#include <QVariant>

#include <memory>

/// A presenter's session and the event bus at its other end, both in the test's hands.
class LiveSession : public QObject
{
    Q_OBJECT

public:
    /// A publish as it reached the event bus.
    struct Publish
    {
        QString text; // the whole message
        QString address;
        QString from;
        QString type;
        QVariantMap body;
        QString base64; // the one element of "data"
        QString data;   // the same, decompressed

        /// The data as JSON.
        QVariantMap map() const;
    };

    explicit LiveSession(const QString& token = QStringLiteral("abc"),
                         const QString& userToken = QStringLiteral("teacher-7"));
    ~LiveSession() override;

    PresenterCollab* collab() const { return m_collab; }
    void deleteCollab() { delete m_collab; }
    FakeSockJSServer& server() { return m_server; }
    LogRecorder& log() { return *m_log; }
    void forgetLog();

    /// Opens over a WebSocket and reads the three registers.
    bool open();
    /// The three registers, in order, come next.
    bool readRegisters();
    /// The next message that the server gets, taken apart.
    Publish nextPublish();
    /// Whether a ping that is sent now is the next that the server gets.
    bool nothingWasSent();
    /// A message from the event bus with \p body.
    void receive(const QVariantMap& body);
    /// receive() of the type "join" and so on, with \p data as compressed JSON.
    void receive(const QString& type, const QString& from, const QVariantMap& data);
    /// Waits until everything that the server has sent has been handled.
    bool syncInbound();

    /// A publish with compressed data, word for word.
    static QString compressedFrame(const QString& address, const QString& from, const QString& type,
                                   const QString& base64);
    /// \p data, compressed, as "data" of a message.
    static QString compress(const QString& data);
    static QString notConnected() { return QStringLiteral("[PresenterCollab] SockJS socket not connected!"); }

private:
    FakeSockJSServer m_server;
    std::unique_ptr<LogRecorder> m_log;
    QString m_token;
    QString m_userToken;
    QPointer<PresenterCollab> m_collab;
    int m_syncs = 0;
};
