#pragma once

#include "collab/PresenterCollab.h"
#include "compression/Lzma.h"
#include "support/FakeSockJSServer.h"
#include "support/LogRecorder.h"
#include "transport/SockJSConnector.h"

#include <QJsonDocument>
#include <QObject>
#include <QPointer>
#include <QVariant>

#include <memory>

/// A presenter's session and the event bus at its other end, both in the test's hands.
class LiveSession : public QObject
{
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
        QVariantMap map() const { return QJsonDocument::fromJson(data.toUtf8()).toVariant().toMap(); }
    };

    explicit LiveSession(const QString& token = QStringLiteral("abc"),
                         const QString& userToken = QStringLiteral("teacher-7"))
        : m_log(std::make_unique<LogRecorder>())
        , m_token(token)
        , m_userToken(userToken)
        , m_collab(new PresenterCollab(nullptr, m_server.url(QStringLiteral("/bus")).toString(),
                                       QStringLiteral("123456"), token, userToken))
    {}
    ~LiveSession() override { delete m_collab; }

    PresenterCollab* collab() const { return m_collab; }
    void deleteCollab() { delete m_collab; }
    FakeSockJSServer& server() { return m_server; }
    LogRecorder& log() { return *m_log; }
    void forgetLog() { m_log->forget(); }

    /// Opens over a WebSocket and reads the three registers.
    bool open()
    {
        m_collab->open({QStringLiteral("websocket")});
        return waitFor([this] { return m_collab && m_collab->isConnected(); }) && readRegisters();
    }
    /// The three registers, in order, come next.
    bool readRegisters()
    {
        const auto text = QStringLiteral("{\"type\":\"register\",\"address\":\"") + m_token;
        for (const auto& rest :
             {QString(), QStringLiteral(".presenter"), QStringLiteral(".presenter.") + m_userToken}) {
            const auto message = m_server.nextMessage();
            if (message != text + rest + QStringLiteral("\"}")) {
                qWarning("This is not the register that comes next: %s", qPrintable(message));
                return false;
            }
        }
        return true;
    }
    /// The next message that the server gets, taken apart.
    Publish nextPublish()
    {
        Publish publish;
        publish.text = m_server.nextMessage();
        const auto frame = QJsonDocument::fromJson(publish.text.toUtf8()).toVariant().toMap();
        if (frame.value(QStringLiteral("type")) != QLatin1String("publish") || frame.size() != 3) {
            qWarning("This is no publish: %s", qPrintable(publish.text.left(200)));
            return publish;
        }
        publish.address = frame.value(QStringLiteral("address")).toString();
        publish.body = frame.value(QStringLiteral("body")).toMap();
        publish.from = publish.body.value(QStringLiteral("from")).toString();
        publish.type = publish.body.value(QStringLiteral("type")).toString();
        const auto data = publish.body.value(QStringLiteral("data")).toList();
        if (data.size() == 1) {
            publish.base64 = data.first().toString();
            Lzma::decompress64(publish.base64, &publish.data);
        }
        return publish;
    }
    /// Whether a ping that is sent now is the next that the server gets.
    bool nothingWasSent()
    {
        m_collab->sendPing();
        const auto ping = QStringLiteral("{\"type\":\"ping\"}");
        const auto message = m_server.nextMessage();
        if (message != ping)
            qWarning("This was sent: %s", qPrintable(message.left(200)));
        return message == ping;
    }
    /// A message from the event bus with \p body.
    void receive(const QVariantMap& body)
    {
        m_server.injectMessages({toJson({{"type", "rec"}, {"address", m_token}, {"body", body}})});
    }
    /// receive() of the type "join" and so on, with \p data as compressed JSON.
    void receive(const QString& type, const QString& from, const QVariantMap& data)
    {
        receive({{"type", type}, {"from", from}, {"data", compress(toJson(data))}});
    }
    /// Waits until everything that the server has sent has been handled.
    bool syncInbound()
    {
        const auto text = QStringLiteral("sync %1").arg(++m_syncs);
        bool heard = false;
        const auto connection = connect(m_collab->connector(), &SockJSConnector::sockJSMessage, this,
                                        [&](const QString& message) { heard = heard || message == text; });
        m_server.injectMessages({text});
        const bool inTime = waitFor([&] { return heard; });
        disconnect(connection);
        return inTime;
    }

    /// A publish with compressed data, word for word.
    static QString compressedFrame(const QString& address, const QString& from, const QString& type,
                                   const QString& base64)
    {
        return QStringLiteral("{\"type\":\"publish\",\"address\":\"") + address +
               QStringLiteral("\",\"body\":{\"from\":\"") + from + QStringLiteral("\",\"type\":\"") + type +
               QStringLiteral("\",\"data\":[\"") + base64 + QStringLiteral("\"]}}");
    }
    /// \p data, compressed, as "data" of a message.
    static QString compress(const QString& data)
    {
        QString base64;
        Lzma::compress64(data, &base64);
        return base64;
    }
    static QString notConnected() { return QStringLiteral("[PresenterCollab] SockJS socket not connected!"); }

private:
    static QString toJson(const QVariantMap& map)
    {
        return QString::fromUtf8(QJsonDocument::fromVariant(map).toJson(QJsonDocument::Compact));
    }

    FakeSockJSServer m_server;
    std::unique_ptr<LogRecorder> m_log;
    QString m_token;
    QString m_userToken;
    QPointer<PresenterCollab> m_collab;
    int m_syncs = 0;
};

/// Base of the session's tests: each function gets a new session, with its own event bus and log.
class SessionTest : public QObject
{
    Q_OBJECT

protected:
    using Server = FakeSockJSServer;
    using Publish = LiveSession::Publish;

    PresenterCollab* collab() const { return m_session->collab(); }
    Server& server() const { return m_session->server(); }
    LogRecorder& log() const { return m_session->log(); }
    /// Number of compressed publishes that were dropped.
    int dropped() const { return log().debug(LiveSession::notConnected()).size(); }
    /// The next publish, when it is a compressed one of this type to this address, word for word.
    Publish nextPublish(const char* address, const char* type)
    {
        const Publish publish = m_session->nextPublish();
        const QString expected = LiveSession::compressedFrame(address, "teacher-7", type, publish.base64);
        if (publish.text == expected)
            return publish;
        qWarning("This was sent: %s", qPrintable(publish.text.left(200)));
        return Publish();
    }
    /// Starts a poll and returns the question that reaches the event bus; empty when something else does.
    QVariantMap startedQuestion(Calyx::PollType::POLL_TYPE type, Calyx::OrdinalType::ORDINAL_TYPE ordinal,
                                int count, int extra = 0)
    {
        collab()->startPoll(type, ordinal, count, extra);
        const auto publish = m_session->nextPublish();
        return publish.type == QLatin1String("questionStart") ? publish.map() : QVariantMap();
    }

    std::unique_ptr<LiveSession> m_session;

private Q_SLOTS:
    void init() { m_session = std::make_unique<LiveSession>(); }
    void cleanup() { m_session.reset(); }
};
