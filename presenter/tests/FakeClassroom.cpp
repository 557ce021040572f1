#include "FakeClassroom.h"

#include <CalyxClient/Lzma>

#include <QJsonDocument>
#include <QJsonObject>
#include <QWebSocket>

#include <utility>

namespace {

const QString sessionToken = QStringLiteral("session-token");
const QString presenterToken = QStringLiteral("presenter-token");
const QByteArray root = "/tavisto";

QByteArray json(const QVariant& value)
{
    return QJsonDocument::fromVariant(value).toJson(QJsonDocument::Compact);
}

QVariantMap mapOf(const QByteArray& text)
{
    return QJsonDocument::fromJson(text).toVariant().toMap();
}

QByteArray success(const QVariantMap& data)
{
    return json(QVariantMap{{"success", true}, {"infoMsgKeys", QStringList{"a.success"}}, {"data", data}});
}

QString compressed(const QByteArray& text)
{
    QString block;
    Lzma::compress64(QString::fromUtf8(text), &block);
    return block;
}

QString decoded(const QVariant& data)
{
    QString text;
    Lzma::decompress64(data.toList().value(0).toString(), &text);
    return text;
}

} // namespace

FakeClassroom::FakeClassroom() : m_bus(QStringLiteral("bus"), QWebSocketServer::NonSecureMode)
{
    connect(&m_service, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* socket = m_service.nextPendingConnection()) {
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { readRequests(socket); });
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
        }
    });
    connect(&m_bus, &QWebSocketServer::newConnection, this, &FakeClassroom::acceptPresenter);
    if (!m_service.listen(QHostAddress::LocalHost) || !m_bus.listen(QHostAddress::LocalHost))
        qFatal("No free port");
}

FakeClassroom::~FakeClassroom()
{
    qDeleteAll(m_presenters);
}

QString FakeClassroom::url() const
{
    return QStringLiteral("http://127.0.0.1:%1").arg(m_service.serverPort());
}

void FakeClassroom::readRequests(QTcpSocket* socket)
{
    QByteArray& buffer = m_buffers[socket];
    buffer += socket->readAll();
    for (;;) {
        const int headEnd = buffer.indexOf("\r\n\r\n");
        if (headEnd < 0)
            return;
        const QByteArray head = buffer.left(headEnd).toLower();
        const int lengthAt = head.indexOf("content-length: ");
        const int length = lengthAt < 0 ? 0 : head.mid(lengthAt + 16).split('\r').first().toInt();
        if (buffer.size() < headEnd + 4 + length)
            return;
        const QString path = QString::fromUtf8(buffer.split(' ').value(1).mid(root.size()));
        if (!path.isEmpty()) // else only whether we are there
            m_requests.append(path);
        m_bodies.insert(path, QString::fromUtf8(buffer.mid(headEnd + 4, length)));
        buffer.remove(0, headEnd + 4 + length);
        answerRequest(socket, path);
        Q_EMIT received();
    }
}

void FakeClassroom::answerRequest(QTcpSocket* socket, const QString& path)
{
    if (m_held.contains(path)) {
        m_waiting.append({socket, path});
        return;
    }
    const QString refusal = m_refusals.value(path);
    const QByteArray body =
        refusal.isEmpty() ? reply(path) : json(QVariantMap{{"errorMsgKeys", QStringList{refusal}}});
    socket->write(QByteArray("HTTP/1.1 ") + (refusal.isEmpty() ? "200 OK" : "403 Forbidden") +
                  "\r\nContent-Type: application/json\r\nContent-Length: " + QByteArray::number(body.size()) +
                  "\r\n\r\n" + body);
}

void FakeClassroom::release()
{
    m_held.clear();
    const auto waiting = std::exchange(m_waiting, {});
    for (const auto& [socket, path] : waiting) {
        if (socket)
            answerRequest(socket, path);
    }
}

QByteArray FakeClassroom::reply(const QString& path) const
{
    const QVariantList remoteControl = {QVariantMap{{"userToken", "remote-device"}, {"mode", "controller"}}};
    const QHash<QString, QVariantMap> data = {
        {"/login/user", {{"userLoginId", "teacher"}}},
        {"/session/create", {{"sessionCode", "123456"}}},
        {"/session/getcollabserverurl",
         {{"url", QStringLiteral("http://127.0.0.1:%1").arg(m_bus.serverPort())}}},
        {"/config/findTenantFeatureDetails", {{"sockJSProtocols", QStringList{"websocket"}}}},
        {"/session/start", {{"sessionToken", sessionToken}}},
        {"/classroom/session/join", {{"userToken", presenterToken}}},
        {"/session/getusers", {{"users", m_users + remoteControl}}},
        {"/resource/uploadResourceFile", {{"id", "resource-1"}, {"path", "x"}}}};
    return m_replies.value(path, success(data.value(path)));
}

void FakeClassroom::acceptPresenter()
{
    while (QWebSocket* socket = m_bus.nextPendingConnection()) {
        m_presenters.append(socket);
        connect(socket, &QWebSocket::textMessageReceived, this, &FakeClassroom::readFrame);
        socket->sendTextMessage(QStringLiteral("o"));
    }
}

void FakeClassroom::readFrame(const QString& frame)
{
    const QStringList messages = QJsonDocument::fromJson(frame.toUtf8()).toVariant().toStringList();
    for (const QString& message : messages) {
        const QVariantMap map = mapOf(message.toUtf8());
        if (map.value("type") == "publish")
            readPublish(map);
    }
    Q_EMIT received();
}

void FakeClassroom::readPublish(const QVariantMap& frame)
{
    const QVariantMap body = frame.value("body").toMap();
    const QString address = frame.value("address").toString();
    const bool isForRemote = address.endsWith(".controller");
    if (!address.contains(".presenter.")) // it asks itself whether the bus is there
        (isForRemote ? m_toRemote : m_messages)
            .append({address, body.value("type").toString(), decoded(body.value("data"))});
    if (address == sessionToken) // the presenter listens there itself
        inject(body);
}

QString FakeClassroom::lastQuestion() const
{
    QString id;
    for (const Message& message : m_messages) {
        if (message.type == "questionStart" || message.type == "poll")
            id = mapOf(message.text.toUtf8()).value("id").toString();
    }
    return id;
}

void FakeClassroom::inject(const QVariantMap& body)
{
    const QByteArray frame = json(QVariantMap{{"type", "rec"}, {"address", sessionToken}, {"body", body}});
    const QByteArray message = "a" + json(QVariantList{QString::fromUtf8(frame)});
    m_presenters.last()->sendTextMessage(QString::fromUtf8(message));
}

void FakeClassroom::send(const QString& from, const QString& type, const QVariant& data)
{
    inject({{"from", from}, {"type", type}, {"data", QStringList{compressed(json(data))}}});
}

void FakeClassroom::join(const QString& device, const QString& name)
{
    send(device, "join", QVariantMap{{"userName", name}, {"deviceType", "tablet"}});
}

void FakeClassroom::leave(const QString& device)
{
    inject({{"action", "unregister"}, {"client", QVariantMap{{"token", device}, {"type", "user"}}}});
}

void FakeClassroom::answer(const QString& device, const QString& questionId, const QStringList& options,
                           const QString& text)
{
    QVariantList chosen;
    for (const QString& option : options)
        chosen.append(QVariantMap{{"activityOptionId", option}});
    QVariantMap data = {{"questionId", questionId}, {"answer", text}, {"responseTime", 1000}};
    if (!chosen.isEmpty())
        data.insert("optionAnswers", chosen);
    send(device, "questionResponse", data);
}

void FakeClassroom::remote(const QString& type, const QVariant& data)
{
    send("remote-device", type, data);
}

void FakeClassroom::closeBus()
{
    m_presenters.last()->close();
}
