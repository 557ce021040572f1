#include "client/PresenterClientPrivate.h"

#include "base/Diagnostics.h"
#include "base/SafeCookieJar.h"
#include "client/GzipInflate.h"
#include "client/ServiceEnvelope.h"
#include "collab/PresenterCollab.h"
#include "compression/Lzma.h"
#include "transport/PostRequest.h"
#include "transport/QSystemConfigurationProxyFactory.h"

#include <QAuthenticator>
#include <QCoreApplication>
#include <QEvent>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslCertificate>
#include <QSslConfiguration>

#include <algorithm>
#include <utility>

namespace {

constexpr int replyLimit = 10000; // ms
constexpr qint64 largestReply = qint64(64) * 1024 * 1024;

QString issuerName(const QSslCertificate& certificate)
{
    return certificate.issuerInfo(QSslCertificate::CommonName).join(QLatin1Char(' '));
}

bool hasIssued(const QSslCertificate& authority, const QSslCertificate& certificate)
{
    const QList<QByteArray> attributes = certificate.issuerInfoAttributes();
    return attributes == authority.subjectInfoAttributes() &&
           std::all_of(attributes.begin(), attributes.end(), [&](const QByteArray& attribute) {
               return certificate.issuerInfo(attribute) == authority.subjectInfo(attribute);
           });
}

// Where Qt loads the system's authorities on demand, the configuration of a reply lists none of them.
bool isIssuedBySystem(const QSslCertificate& certificate)
{
    const QList<QSslCertificate> authorities = QSslConfiguration::systemCaCertificates();
    return std::any_of(authorities.begin(), authorities.end(),
                       [&](const QSslCertificate& authority) { return hasIssued(authority, certificate); });
}

// A base address on the target of a redirect. Its path is dropped; https with port 443 written out keeps the
// port.
QString baseAddress(const QUrl& target)
{
    constexpr int httpPort = 80;
    QString name = target.host(QUrl::FullyEncoded);
    if (name.contains(QLatin1Char(':')))
        name = QLatin1Char('[') + name + QLatin1Char(']');
    QString address = target.scheme() + QStringLiteral("://") + name;
    if (target.port() != -1 && target.port() != httpPort)
        address += QLatin1Char(':') + QString::number(target.port());
    return address;
}

// Drops the deferred deletion of an object that is being destroyed.
class KeepsFromDeletion : public QObject
{
public:
    // A child of the object: it filters until the children go.
    static void watch(QObject* object) { object->installEventFilter(new KeepsFromDeletion(object)); }
    bool eventFilter(QObject*, QEvent* event) override { return event->type() == QEvent::DeferredDelete; }

private:
    using QObject::QObject;
};

QString readBody(QNetworkReply* reply)
{
    QByteArray bytes = reply->isOpen() ? reply->readAll() : QByteArray(); // closed when it was aborted
    if (reply->rawHeader("content-encoding") == "gzip") {
        qCDebug(diagnostics) << "[REST Responze.gzip] Compressed size: " << bytes.size();
        bytes = gUncompress(bytes);
    }
    return QString::fromUtf8(bytes.constData()); // up to the first NUL
}

} // namespace

const QString PresenterClient::MULTIPART_BOUNDARY = QStringLiteral("----boundary");

PresenterClient::PresenterClient(QObject* parent, QString server)
    : QObject(parent), d(std::make_unique<Private>(this, server))
{
    Calyx::registerLearner();
    QNetworkAccessManager* manager = d->manager.get();
    manager->setCookieJar(new SafeCookieJar("[PresenterClient]", this));
    manager->setProxyFactory(new QSystemConfigurationProxyFactory);

    connect(manager, SIGNAL(finished(QNetworkReply*)), this, SLOT(slotRequestFinished(QNetworkReply*)));
    connect(manager, SIGNAL(sslErrors(QNetworkReply*, QList<QSslError>)), this,
            SLOT(slotSslErrors(QNetworkReply*, QList<QSslError>)));
    connect(manager, SIGNAL(authenticationRequired(QNetworkReply*, QAuthenticator*)), this,
            SLOT(authenticationRequired(QNetworkReply*, QAuthenticator*)));
    connect(&d->pingTimer, SIGNAL(timeout()), this, SLOT(onPingTimer()));
}

// A slot that runs while the session is being stopped, or while children go, may call deleteLater(), which
// must not delete us once more.
PresenterClient::~PresenterClient()
{
    setParent(nullptr);
    KeepsFromDeletion::watch(this);
    d->pingTimer.stop();
    if (!d->sessionCode.isNull() || !d->sessionToken.isNull())
        doStopSession();
    // Here, too: as the older child the filter goes before a channel that a slot has opened meanwhile.
    QCoreApplication::removePostedEvents(this, QEvent::DeferredDelete);
    // As our child the manager would die with us, maybe inside its own signal.
    d->manager->setParent(nullptr);
}

PresenterClient::Private::Private(PresenterClient* client, const QString& address)
    : q(client)
    , pingTimer(client) // moves to another thread with it
    , server(address)
    , manager(new QNetworkAccessManager(client), [](QObject* object) { object->deleteLater(); })
{
    if (server.endsWith(QLatin1Char('/')))
        server.chop(1);
}

bool PresenterClient::isLoggedIn() const
{
    return d->loggedIn;
}

bool PresenterClient::isServerReachable() const
{
    return d->serverReachable;
}

QString PresenterClient::server() const
{
    return d->server;
}

QString PresenterClient::lastError() const
{
    return d->lastError;
}

void PresenterClient::doRequest(bool wait, const QUrl& url, const QString& body, SuccessHandler success)
{
    doRequest(wait, url, body, success, nullptr, false);
}

void PresenterClient::doRequest(bool wait, const QUrl& url, const QString& body, SuccessHandler success,
                                FailureHandler failure, bool multipart)
{
    doRequest(wait, url, body.toUtf8(), success, failure, multipart);
}

void PresenterClient::doRequest(bool wait, const QUrl& url, const QByteArray& body, SuccessHandler success,
                                FailureHandler failure, bool multipart)
{
    QNetworkReply* reply = d->send(url, body, {success, failure}, multipart);
    if (wait)
        d->wait(reply, ReplyWaits::Patient);
}

QNetworkReply* PresenterClient::Private::send(const QUrl& url, const QByteArray& body, CALLBACKS handlers,
                                              bool multipart)
{
    const QNetworkRequest request = PostRequest::make(
        url, multipart ? QStringLiteral("multipart/form-data; charset=UTF-8; boundary=") + MULTIPART_BOUNDARY
                       : QStringLiteral("application/json; charset=UTF-8"));
    QNetworkReply* reply = PostRequest::send(manager.get(), request, body);
    callbacks[reply] = handlers;
    connect(reply, &QNetworkReply::readyRead, reply, [reply] {
        if (reply->bytesAvailable() > largestReply)
            reply->abort(); // ends in slotRequestFinished(), as any failed reply
    });
    return reply;
}

void PresenterClient::Private::wait(QNetworkReply* reply, ReplyWaits::Kind kind)
{
    // The reply's own, so that it also ends a reply for which nobody waits any more.
    auto* limit = new QTimer(reply);
    limit->setTimerType(Qt::PreciseTimer);
    limit->setSingleShot(true);
    connect(limit, &QTimer::timeout, reply,
            [self = QPointer<PresenterClient>(q), reply] { abortAtTheLimit(self, reply); });
    limit->start(replyLimit);

    const QPointer<QNetworkReply> pending(reply);
    waits.run(q, reply, kind);
    if (kind == ReplyWaits::Patient && pending)
        pending->abort(); // the application ends; without effect on a reply that has been processed
}

void PresenterClient::Private::abortAtTheLimit(const QPointer<PresenterClient>& client, QNetworkReply* reply)
{
    reply->abort();
    // The manager may have failed to begin its thread, and would go on without one.
    if (client && client->d->callbacks.isEmpty())
        client->d->manager->clearConnectionCache();
}

bool PresenterClient::Private::post(const char* path, const QString& body, SuccessHandler success,
                                    FailureHandler failure)
{
    return post(QString(QLatin1String(path)), body, success, failure);
}

bool PresenterClient::Private::post(const QString& path, const QString& body, SuccessHandler success,
                                    FailureHandler failure)
{
    const QPointer<PresenterClient> self(q);
    wait(send(QUrl(server + path), body.toUtf8(), {success, failure}, false), ReplyWaits::Patient);
    return self;
}

void PresenterClient::slotRequestFinished(QNetworkReply* reply)
{
    // The manager emits the signal that brings us here, and a host's slot may destroy us before that returns.
    const std::shared_ptr<QNetworkAccessManager> emitting = d->manager;
    if (!d->followRedirect(reply)) {
        const QString body = readBody(reply);
        qCDebug(diagnostics) << "[REST Response] " << body;
        d->callHandler(reply, body);
    }
    d->callbacks.remove(reply);
    d->waits.end(reply);
    Q_EMIT requestProcessed();
    // Not earlier: where no event loop runs, one that a slot starts would carry the deletion out.
    reply->deleteLater();
}

// A redirect within the scheme, or to https, moves the base address. The request itself is not repeated.
bool PresenterClient::Private::followRedirect(QNetworkReply* reply)
{
    const QUrl target = reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    if (target.isEmpty())
        return false;
    if (target.scheme() != QUrl(server).scheme() && target.scheme() != QLatin1String("https"))
        return false;
    serverReachable = true;
    server = baseAddress(target);
    return true;
}

void PresenterClient::Private::callHandler(QNetworkReply* reply, const QString& body)
{
    const CALLBACKS handlers = callbacks.value(reply, CALLBACKS{nullptr, nullptr});
    if (reply->error() != QNetworkReply::NoError) {
        qCDebug(diagnostics).noquote()
            << QStringLiteral("ERROR: %0\nRESPONSE: %1").arg(PostRequest::errorText(reply), body);
        if (handlers.failure)
            (q->*handlers.failure)(reply, body);
    } else if (handlers.success) {
        (q->*handlers.success)(body);
    }
}

bool PresenterClient::isErrorInErrorMsgKeys(const QVariant& reply, QString& error)
{
    error = QString();
    const QVariantList keys = reply.toMap().value(QStringLiteral("errorMsgKeys")).toList();
    if (keys.isEmpty())
        return false;
    const QString first = keys.first().toString();
    if (!first.contains(QLatin1String("error")))
        return false;
    error = first;
    return true;
}

// What the failure handlers do with the body of a refusal.
void PresenterClient::Private::readErrorKey(const QString& body)
{
    bool ok = false;
    const QVariantMap envelope = ServiceEnvelope::parse(body, &ok);
    if (ok)
        q->isErrorInErrorMsgKeys(envelope, lastError);
}

bool PresenterClient::LzmaDecompress64(QString in, QString* out)
{
    return Lzma::decompress64(in, out);
}

bool PresenterClient::checkServer(const QString& user, const QString& password)
{
    if (!user.isEmpty())
        d->authUser = user;
    if (!password.isEmpty())
        d->authPassword = password;
    d->lastError = QString();
    d->serverReachable = false;
    return d->post("/tavisto", QString(), &PresenterClient::serverCheckResponse) && d->serverReachable;
}

void PresenterClient::serverCheckResponse(QString body)
{
    ServiceEnvelope::parse(body, &d->serverReachable);
}

void PresenterClient::slotSslErrors(QNetworkReply* reply, QList<QSslError> errors)
{
    const QSslConfiguration configuration = reply->sslConfiguration();
    qCDebug(diagnostics) << "+++ SSL Config +++";
    for (const QSslError& error : std::as_const(errors))
        qCDebug(diagnostics) << "ssl error " << error.errorString();

    qCDebug(diagnostics) << "peer certificate list";
    QSslCertificate root;
    const QList<QSslCertificate> chain = configuration.peerCertificateChain();
    for (const QSslCertificate& certificate : chain) {
        qCDebug(diagnostics) << "CommonName:" << certificate.issuerInfo(QSslCertificate::CommonName);
        root = certificate;
    }

    qCDebug(diagnostics) << "certificate list";
    const QString issuer = issuerName(root);
    bool found = false;
    const QList<QSslCertificate> authorities = configuration.caCertificates();
    for (const QSslCertificate& authority : authorities) {
        const QString name = issuerName(authority);
        qCDebug(diagnostics) << "CommonName:" << name;
        found = found || name == issuer;
    }
    if (!found && !isIssuedBySystem(root))
        d->lastError = QStringLiteral("SSLRootCertificateMissing");
}

void PresenterClient::authenticationRequired(QNetworkReply*, QAuthenticator* authenticator)
{
    if (!d->authUser.isEmpty())
        authenticator->setUser(d->authUser);
    if (!d->authPassword.isEmpty())
        authenticator->setPassword(d->authPassword);
}

void PresenterClient::onPingTimer()
{
    sendKeepAlive();
}
