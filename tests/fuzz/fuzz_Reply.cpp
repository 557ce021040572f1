// Replies of the service, through the whole request engine: every operation that reads one, the completion
// handler, the reply handlers. The input's first byte picks the operation, the second says how the reply
// comes (the bits below), the rest is its body. All requests of the operation get this reply.

#include "client/PresenterClient.h"
#include "support/FedReply.h"
#include "support/Fuzz.h"

#include <QCoreApplication>
#include <QNetworkAccessManager>

namespace {

enum Bits { AfterOAuth = 8, AfterSession = 16 }; // beside those of the reply

struct Script
{
    int bits = 0;
    QByteArray body;
    int posts = 0;
};
Script script;

using Client = PresenterClient;
using Operation = void (*)(Client&);

void request(Client& client, Client::SuccessHandler success, Client::FailureHandler failure = nullptr)
{
    client.doRequest(true, QUrl(client.server()), QStringLiteral("{}"), success, failure, false);
}

const QString word = QStringLiteral("word");

const Operation operations[] = {
    [](Client& client) { client.checkServer(word, word); },
    [](Client& client) { client.doLogin(word, word); },
    [](Client& client) { client.doLogin(word, word, word); },
    [](Client& client) {
        QString registration;
        client.doLoginWithOAuth(word, word, registration);
        client.doLoginWithOAuth(word, word, registration); // the second step, where the reply asks for one
    },
    [](Client& client) { client.doGetAccessToken(word, word, word, word); },
    [](Client& client) {
        QString registration;
        client.doGetOAuthAccessToken(word, word, word, word, registration);
    },
    [](Client& client) { client.doGetUserName(); },
    [](Client& client) { client.sendKeepAlive(); },
    [](Client& client) { client.doLogout(); },
    [](Client& client) { client.doStartSession(word); },
    [](Client& client) { client.doGetLearners(); },
    [](Client& client) { client.doStopSession(); },
    // The steps of startWebsocket(), which would go on to the address that the reply names.
    [](Client& client) { request(client, &Client::getCollabUrlResponse); },
    [](Client& client) { request(client, &Client::getTenantFeatureDetailsResponse); },
    [](Client& client) {
        request(client, &Client::sessionStartSuccessResponse, &Client::sessionStartFailureResponse);
    },
    [](Client& client) { request(client, &Client::sessionJoinResponse); },
    [](Client& client) {
        QString id;
        QString path;
        client.doUploadResource(word, "bytes", &id, &path);
    },
};

void startSession(Client& client)
{
    const Script kept = script;
    script = {0, R"({"data":{"sessionToken":"t","sessionCode":"c"}})", kept.posts};
    request(client, &Client::sessionStartSuccessResponse);
    request(client, &Client::sessionSuccessResponse);
    script = {kept.bits, kept.body, script.posts};
}

void requireReadable(const Client& client)
{
    Fuzz::require(client.lastError().isNull() || client.lastError().contains(QLatin1String("error")),
                  "an error key says so");
    const QList<Client::Learner> learners = client.learners();
    for (const Client::Learner& learner : learners)
        Fuzz::require(learner.deviceId.size() + learner.userName.size() >= 0, "a learner can be read");
    Fuzz::require(client.collab() == nullptr, "no channel was opened");
}

} // namespace

// The seam: what the library links to here is not the network but the input.
QNetworkReply* QNetworkAccessManager::post(const QNetworkRequest&, const QByteArray&)
{
    ++script.posts;
    auto* reply = new FedReply(script.bits, script.body, this);
    QMetaObject::invokeMethod(
        reply, [this, reply] { Q_EMIT finished(reply); }, Qt::QueuedConnection);
    return reply;
}

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    constexpr size_t settings = 2;
    if (size < settings)
        return 0;
    script = {data[1], Fuzz::bytes(data + settings, size - settings)};
    int processed = 0;
    {
        Client client(nullptr, QStringLiteral("http://service.test"));
        QObject::connect(&client, &Client::requestProcessed, &client, [&processed] { ++processed; });
        if (script.bits & AfterOAuth)
            operations[3](client);
        if (script.bits & AfterSession)
            startSession(client);
        operations[data[0] % (sizeof operations / sizeof operations[0])](client);
        Fuzz::require(processed == script.posts, "every reply has been processed once");
        requireReadable(client);
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return 0;
}
