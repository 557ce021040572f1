// Replies of the service, through the whole request engine: the input's first byte picks the operation, the
// second says how the reply comes, and the rest is its body.
#include "agreement/Cases.h"
#include "agreement/Text.h"
#include "fuzz/support/FedReply.h"

#include "client/PresenterClient.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>

#include <algorithm>
#include <utility>

namespace {

struct Script
{
    int bits = 0;
    QByteArray body;
    QStringList* out = nullptr;
};
Script script;

using Client = PresenterClient;
using Operation = QVariant (*)(Client&);

QVariant request(Client& client, Client::SuccessHandler success, Client::FailureHandler failure = nullptr)
{
    client.doRequest(true, QUrl(client.server()), QStringLiteral("{}"), success, failure, false);
    return QVariant();
}

const QString word = QStringLiteral("wörd %1");

const Operation operations[] = {
    [](Client& client) { return QVariant(client.checkServer(word, word)); },
    [](Client& client) { return QVariant(client.doLogin(word, word)); },
    [](Client& client) { return QVariant(client.doLogin(word, word, word)); },
    [](Client& client) {
        QString registration;
        const bool done = client.doLoginWithOAuth(word, word, registration);
        return QVariant(QVariantList{done, registration});
    },
    [](Client& client) { return QVariant(client.doGetAccessToken(word, word, word, word)); },
    [](Client& client) { return QVariant(client.doGetUserName()); },
    [](Client& client) { return QVariant(client.doLogout()); },
    [](Client& client) { return QVariant(client.doStartSession(word)); },
    [](Client& client) { return QVariant(client.doGetLearners()); },
    [](Client& client) { return QVariant(client.doStopSession()); },
    [](Client& client) { return request(client, &Client::getCollabUrlResponse); },
    [](Client& client) { return request(client, &Client::getTenantFeatureDetailsResponse); },
    [](Client& client) {
        return request(client, &Client::sessionStartSuccessResponse, &Client::sessionStartFailureResponse);
    },
    [](Client& client) { return request(client, &Client::sessionJoinResponse); },
    [](Client& client) {
        QString id;
        QString path;
        const bool done = client.doUploadResource(word, "bytes", &id, &path);
        return QVariant(QVariantList{done, id, path});
    },
};

QString textOfClient(const Client& client)
{
    QVariantList learners;
    const auto all = client.learners();
    for (const Client::Learner& learner : all)
        learners.append(QVariant(QStringList{learner.deviceId, learner.userName, learner.deviceType}));
    QVariantList protocols;
    for (const auto& protocol : client.sockJSProtocols())
        protocols.append(protocol);
    return textOf(QVariantList{client.isLoggedIn(), client.isServerReachable(), client.lastError(),
                               client.userId(), client.registration(), client.sessionCode(),
                               client.sessionToken(), client.userToken(), client.collabServerUrl(), protocols,
                               learners, client.resourceId(), client.resourcePath()});
}

} // namespace

// The seam: what the library links to here is not the network but the input.
QNetworkReply* QNetworkAccessManager::post(const QNetworkRequest& request, const QByteArray& data)
{
    script.out->append(textOf(QVariantList{request.url().toEncoded(), data.left(data.indexOf("boundary"))}));
    QList<QByteArray> names = request.rawHeaderList();
    std::sort(names.begin(), names.end());
    for (const QByteArray& name : std::as_const(names))
        script.out->append(textOf(name + ':' + request.rawHeader(name)));
    auto* reply = new FedReply(script.bits, script.body, this);
    QMetaObject::invokeMethod(
        reply, [this, reply] { Q_EMIT finished(reply); }, Qt::QueuedConnection);
    return reply;
}

void Cases::reply(const QByteArray& input, QStringList* out)
{
    constexpr int settings = 2;
    constexpr auto count = sizeof operations / sizeof operations[0];
    if (input.size() < settings)
        return;
    script = {input.at(1), input.mid(settings), out};
    {
        Client client(nullptr, QStringLiteral("http://service.test"));
        out->append(textOf(operations[static_cast<unsigned char>(input.at(0)) % count](client)));
        out->append(textOfClient(client));
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}
