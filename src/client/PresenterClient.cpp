#include "client/PresenterClient.h"

#include "base/Diagnostics.h"
#include "base/FileDescriptors.h"
#include "base/SafeCookieJar.h"
#include "client/GzipInflate.h"
#include "client/NestedWait.h"
#include "client/ServiceEnvelope.h"
#include "collab/CalyxCollabMessage.h"
#include "collab/PresenterCollab.h"
#include "compression/Lzma.h"
#include "transport/QSystemConfigurationProxyFactory.h"

#include <QAuthenticator>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslCertificate>
#include <QSslConfiguration>

namespace {

constexpr int replyLimit = 10000; // ms
constexpr qint64 largestReply = qint64(64) * 1024 * 1024;

QString issuerName(const QSslCertificate& certificate)
{
    return certificate.issuerInfo(QSslCertificate::CommonName).join(QLatin1Char(' '));
}

// A base address on the target of a redirect. Its path is dropped; https with port 443 written out keeps the
// port.
QString baseAddress(const QUrl& target)
{
    constexpr int httpPort = 80;
    QString host = target.host(QUrl::FullyEncoded);
    if (host.contains(QLatin1Char(':')))
        host = QLatin1Char('[') + host + QLatin1Char(']');
    QString address = target.scheme() + QStringLiteral("://") + host;
    if (target.port() != -1 && target.port() != httpPort)
        address += QLatin1Char(':') + QString::number(target.port());
    return address;
}

} // namespace

const QString PresenterClient::MULTIPART_BOUNDARY = QStringLiteral("----boundary");

PresenterClient::PresenterClient(QObject* parent, QString server)
    : QObject(parent)
    , m_version(Calyx::CalyxCollabMessage::PROTOCOL_VERSION)
    , m_server(server)
    , m_manager(new QNetworkAccessManager(this))
{
    Calyx::registerLearner();
    if (m_server.endsWith(QLatin1Char('/')))
        m_server.chop(1);
    m_manager->setCookieJar(new SafeCookieJar("[PresenterClient]", this));
    m_manager->setProxyFactory(new QSystemConfigurationProxyFactory);

    connect(m_manager, SIGNAL(finished(QNetworkReply*)), this, SLOT(slotRequestFinished(QNetworkReply*)));
    connect(m_manager, SIGNAL(sslErrors(QNetworkReply*, QList<QSslError>)), this,
            SLOT(slotSslErrors(QNetworkReply*, QList<QSslError>)));
    connect(m_manager, SIGNAL(authenticationRequired(QNetworkReply*, QAuthenticator*)), this,
            SLOT(authenticationRequired(QNetworkReply*, QAuthenticator*)));
    connect(&m_pingTimer, SIGNAL(timeout()), this, SLOT(onPingTimer()));
}

PresenterClient::~PresenterClient()
{
    if (!m_sessionCode.isNull() || !m_sessionToken.isNull())
        doStopSession();
    // As our child it would die at once, maybe inside its own signal.
    m_manager->setParent(nullptr);
    m_manager->deleteLater();
    m_manager = nullptr;
    m_learners.clear();
    m_callbacks.clear();
    m_collab = nullptr;
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
    // The first one begins a thread. A request without an address fails like any other.
    QNetworkRequest request(FileDescriptors::sufficeForThread() ? url : QUrl());
    request.setRawHeader("accept-encoding", "identity");
    request.setHeader(QNetworkRequest::ContentTypeHeader,
                      multipart ? QStringLiteral("multipart/form-data; charset=UTF-8; boundary=") +
                                      MULTIPART_BOUNDARY
                                : QStringLiteral("application/json; charset=UTF-8"));
    QNetworkReply* reply = m_manager->post(request, body);
    m_callbacks[reply] = {success, failure};
    connect(reply, &QNetworkReply::readyRead, reply, [reply] {
        if (reply->bytesAvailable() > largestReply)
            reply->abort(); // ends in slotRequestFinished(), as any failed reply
    });
    if (!wait)
        return;
    const auto isProcessed = [this, reply] { return !m_callbacks.contains(reply); };
    // A host that blocks our signals is not told of a reply that has come: the map is asked again.
    if (NestedWait::run(this, &PresenterClient::requestProcessed, isProcessed, replyLimit) !=
            NestedWait::TimedOut ||
        isProcessed())
        return;
    const QPointer<PresenterClient> self(this);
    reply->abort();
    // The manager may have failed to begin its thread, and would go on without one.
    if (self && m_callbacks.isEmpty())
        m_manager->clearConnectionCache();
}

// One operation's request. False when the client has been destroyed during the wait.
bool PresenterClient::post(const char* path, const QString& body, SuccessHandler success,
                           FailureHandler failure)
{
    return post(QString(QLatin1String(path)), body, success, failure);
}

bool PresenterClient::post(const QString& path, const QString& body, SuccessHandler success,
                           FailureHandler failure)
{
    const QPointer<PresenterClient> self(this);
    doRequest(true, QUrl(m_server + path), body, success, failure, false);
    return self;
}

void PresenterClient::slotRequestFinished(QNetworkReply* reply)
{
    if (!followRedirect(reply)) {
        const QString body = readBody(reply);
        qCDebug(diagnostics) << "[REST Response] " << body;
        callHandler(reply, body);
    }
    m_callbacks.remove(reply);
    reply->deleteLater();
    Q_EMIT requestProcessed();
}

// A redirect within the scheme, or to https, moves the base address. The request itself is not repeated.
bool PresenterClient::followRedirect(QNetworkReply* reply)
{
    const QUrl target = reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    if (target.isEmpty())
        return false;
    if (target.scheme() != QUrl(m_server).scheme() && target.scheme() != QLatin1String("https"))
        return false;
    m_serverReachable = true;
    m_server = baseAddress(target);
    return true;
}

QString PresenterClient::readBody(QNetworkReply* reply)
{
    QByteArray bytes = reply->isOpen() ? reply->readAll() : QByteArray(); // closed when it was aborted
    if (reply->rawHeader("content-encoding") == "gzip") {
        qCDebug(diagnostics) << "[REST Responze.gzip] Compressed size: " << bytes.size();
        bytes = gUncompress(bytes);
    }
    return QString::fromUtf8(bytes.constData()); // up to the first NUL
}

void PresenterClient::callHandler(QNetworkReply* reply, const QString& body)
{
    const CALLBACKS callbacks = m_callbacks.value(reply, CALLBACKS{nullptr, nullptr});
    if (reply->error() != QNetworkReply::NoError) {
        qCDebug(diagnostics).noquote()
            << QStringLiteral("ERROR: %0\nRESPONSE: %1").arg(reply->errorString(), body);
        if (callbacks.failure)
            (this->*callbacks.failure)(reply, body);
    } else if (callbacks.success) {
        (this->*callbacks.success)(body);
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
void PresenterClient::readErrorKey(const QString& body)
{
    bool ok = false;
    const QVariantMap envelope = ServiceEnvelope::parse(body, &ok);
    if (ok)
        isErrorInErrorMsgKeys(envelope, m_lastError);
}

bool PresenterClient::LzmaDecompress64(QString in, QString* out)
{
    return Lzma::decompress64(in, out);
}

bool PresenterClient::checkServer(const QString& user, const QString& password)
{
    if (!user.isEmpty())
        m_authUser = user;
    if (!password.isEmpty())
        m_authPassword = password;
    m_lastError = QString();
    m_serverReachable = false;
    return post("/tavisto", QString(), &PresenterClient::serverCheckResponse) && m_serverReachable;
}

void PresenterClient::serverCheckResponse(QString body)
{
    ServiceEnvelope::parse(body, &m_serverReachable);
}

void PresenterClient::slotSslErrors(QNetworkReply* reply, QList<QSslError> errors)
{
    const QSslConfiguration configuration = reply->sslConfiguration();
    qCDebug(diagnostics) << "+++ SSL Config +++";
    for (const QSslError& error : qAsConst(errors))
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
    if (!found)
        m_lastError = QStringLiteral("SSLRootCertificateMissing");
}

void PresenterClient::authenticationRequired(QNetworkReply*, QAuthenticator* authenticator)
{
    if (!m_authUser.isEmpty())
        authenticator->setUser(m_authUser);
    if (!m_authPassword.isEmpty())
        authenticator->setPassword(m_authPassword);
}

void PresenterClient::onPingTimer()
{
    sendKeepAlive();
}
