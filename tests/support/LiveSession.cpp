#include "support/LiveSession.h"

#include "compression/Lzma.h"
#include "support/WaitFor.h"
#include "transport/SockJSConnector.h"

#include <QJsonDocument>

namespace {

const auto ping = QStringLiteral("{\"type\":\"ping\"}");

QString toJson(const QVariantMap& map)
{
    return QString::fromUtf8(QJsonDocument::fromVariant(map).toJson(QJsonDocument::Compact));
}

} // namespace

QVariantMap LiveSession::Publish::map() const
{
    return QJsonDocument::fromJson(data.toUtf8()).toVariant().toMap();
}

LiveSession::LiveSession(const QString& token, const QString& userToken)
    : m_log(std::make_unique<LogRecorder>())
    , m_token(token)
    , m_userToken(userToken)
    , m_collab(new PresenterCollab(nullptr, m_server.url(QStringLiteral("/bus")).toString(),
                                   QStringLiteral("123456"), token, userToken))
{}

LiveSession::~LiveSession()
{
    delete m_collab;
}

void LiveSession::forgetLog()
{
    m_log.reset(); // the old one has to go before the new one takes its place
    m_log = std::make_unique<LogRecorder>();
}

bool LiveSession::open()
{
    m_collab->open({QStringLiteral("websocket")});
    return waitFor([this] { return m_collab && m_collab->isConnected(); }) && readRegisters();
}

bool LiveSession::readRegisters()
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

LiveSession::Publish LiveSession::nextPublish()
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

bool LiveSession::nothingWasSent()
{
    m_collab->sendPing();
    const auto message = m_server.nextMessage();
    if (message != ping)
        qWarning("This was sent: %s", qPrintable(message.left(200)));
    return message == ping;
}

void LiveSession::receive(const QVariantMap& body)
{
    m_server.injectMessages({toJson({{"type", "rec"}, {"address", m_token}, {"body", body}})});
}

void LiveSession::receive(const QString& type, const QString& from, const QVariantMap& data)
{
    receive({{"type", type}, {"from", from}, {"data", compress(toJson(data))}});
}

bool LiveSession::syncInbound()
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

QString LiveSession::compressedFrame(const QString& address, const QString& from, const QString& type,
                                     const QString& base64)
{
    return QStringLiteral("{\"type\":\"publish\",\"address\":\"") + address +
           QStringLiteral("\",\"body\":{\"from\":\"") + from + QStringLiteral("\",\"type\":\"") + type +
           QStringLiteral("\",\"data\":[\"") + base64 + QStringLiteral("\"]}}");
}

QString LiveSession::compress(const QString& data)
{
    QString base64;
    Lzma::compress64(data, &base64);
    return base64;
}
