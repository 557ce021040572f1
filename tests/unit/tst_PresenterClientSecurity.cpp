// TLS, HTTP authentication and proxies, as the client's requests meet them.

#include "support/ClientTest.h"
#include "support/LogRecorder.h"
#include "support/Rows.h"
#include "support/TestCertificates.h"

#include <CalyxClient/PresenterClient>

#include <QAuthenticator>
#include <QNetworkReply>
#include <QSignalSpy>
#include <QSslSocket>
#include <QTest>

#include <memory>

using Answer = FakeService::Answer;

namespace {

const char LOGIN_REFUSED[] = R"({"errorMsgKeys":["login.refused"]})";

QList<QSslCertificate> systemAuthorities;

/// A reply with a TLS configuration of the test's making, which has seen no certificate of a peer.
class ReplyWithoutPeer : public QNetworkReply
{
public:
    explicit ReplyWithoutPeer(const QList<QSslCertificate>& caCertificates)
    {
        m_tls.setCaCertificates(caCertificates);
    }

    void abort() override {}

protected:
    qint64 readData(char*, qint64) override { return -1; }
    void sslConfigurationImplementation(QSslConfiguration& configuration) const override
    {
        configuration = m_tls;
    }

private:
    QSslConfiguration m_tls;
};

} // namespace

// In place of Qt's own, which reads what is installed on this machine.
QList<QSslCertificate> QSslConfiguration::systemCaCertificates()
{
    return systemAuthorities;
}

static Answer challenge()
{
    return Answer::json(LOGIN_REFUSED, 401).with("WWW-Authenticate", "Basic realm=\"classroom\"");
}

static QByteArray basic(const QByteArray& credentials)
{
    return "Basic " + credentials.toBase64();
}

class tst_PresenterClientSecurity : public ClientTest
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(QSslSocket::supportsSsl());
        QVERIFY(!TestCertificates::certificate("root").isNull());
        QVERIFY(TestCertificates::certificate("nameless").issuerInfo(QSslCertificate::CommonName).isEmpty());
    }

    void trustedServiceIsReachedAndMayRedirect()
    {
        const TestCertificates::TrustedRoot trusted;
        FakeService service(TestCertificates::server("loopback"));
        service.expect("/tavisto", Answer::json("{}"));
        PresenterClient client(nullptr, service.url());
        const LogRecorder log;
        QVERIFY(client.checkServer(QString(), QString()));
        QVERIFY(client.lastError().isNull());
        QVERIFY(log.debug("+++ SSL Config +++").isEmpty());
        service.expect("/tavisto", Answer::redirect("https://moved.example:443/"));
        QVERIFY(client.checkServer(QString(), QString()));
        QCOMPARE(client.server(), QStringLiteral("https://moved.example:443"));
    }

    void unknownRootIsReported_data()
    {
        rows<QString, bool>({
            {"root shown", "loopback", true},
            {"root not shown", "loopback", false},
            {"wrong host as well", "elsewhere", true},
        });
    }
    void unknownRootIsReported()
    {
        const auto [certificate, withRoot] = row<QString, bool>();
        QSslConfiguration tls = TestCertificates::server(certificate);
        if (!withRoot)
            tls.setLocalCertificateChain({TestCertificates::certificate(certificate)});
        FakeService service(tls);
        PresenterClient client(nullptr, service.url());
        QVERIFY(!client.checkServer(QString(), QString()));
        QCOMPARE(client.lastError(), QStringLiteral("SSLRootCertificateMissing"));
        QVERIFY(service.requests().isEmpty());
    }

    void knownRootIsNotCalledMissing_data()
    {
        columns<QString, bool>();
        for (const char* certificate : {"elsewhere", "expired"}) {
            QTest::addRow("%s, known to Qt's configuration", certificate) << certificate << true;
            QTest::addRow("%s, known to the system", certificate) << certificate << false;
        }
    }
    void knownRootIsNotCalledMissing()
    {
        const auto [certificate, isConfigured] = row<QString, bool>();
        std::unique_ptr<TestCertificates::TrustedRoot> trusted;
        if (isConfigured)
            trusted = std::make_unique<TestCertificates::TrustedRoot>();
        else
            systemAuthorities = {TestCertificates::certificate("nameless"),
                                 TestCertificates::certificate("root")};
        FakeService service(TestCertificates::server(certificate));
        PresenterClient client(nullptr, service.url());
        const LogRecorder log;
        const bool reached = client.checkServer(QString(), QString());
        systemAuthorities.clear();
        QVERIFY(!reached);
        QVERIFY(client.lastError().isNull());
        QVERIFY(!log.debug("ssl error ").isEmpty());
        QVERIFY(service.requests().isEmpty());
    }

    void tlsErrorsReachTheFailureHandlerAndTheLog()
    {
        FakeService service(TestCertificates::server("loopback"));
        PresenterClient client(nullptr, service.url());
        const QSignalSpy processed(&client, SIGNAL(requestProcessed()));
        const LogRecorder log;
        QVERIFY(!client.doLogin("u", "p"));
        QCOMPARE(client.lastError(), QStringLiteral("SSLRootCertificateMissing"));
        QCOMPARE(processed.size(), 1);
        QCOMPARE(log.debug("[REST Response] ").size(), 1);
        QVERIFY(!log.debug().filter("ERROR: ").isEmpty());
        const QStringList lines = log.debug();
        const auto first = [&](const QString& prefix) {
            for (int i = 0; i < lines.size(); ++i) {
                if (lines.at(i).startsWith(prefix))
                    return i;
            }
            return -1;
        };
        const int config = first("+++ SSL Config +++");
        const int error = first("ssl error ");
        const int peers = first("peer certificate list");
        const int authorities = first("certificate list");
        QVERIFY(config >= 0 && config < error && error < peers && peers < authorities);
        const QStringList peerLines = lines.mid(peers + 1, authorities - peers - 1);
        QCOMPARE(peerLines.size(), 2);
        for (const QString& line : peerLines)
            QVERIFY2(line.startsWith("CommonName:") && line.contains("Calyx Test Root"), qPrintable(line));
    }

    void emptyPeerChainMatchesOnlyANamelessRoot_data()
    {
        const QString missing = "SSLRootCertificateMissing";
        rows<QStringList, QString>({
            {"no root", QStringList(), missing},
            {"named", QStringList{"root"}, missing},
            {"nameless", QStringList{"nameless"}, QString()},
            {"nameless, named", QStringList{"nameless", "root"}, QString()},
            {"named, nameless", QStringList{"root", "nameless"}, QString()},
        });
    }
    void emptyPeerChainMatchesOnlyANamelessRoot()
    {
        const auto [roots, error] = row<QStringList, QString>();
        QList<QSslCertificate> certificates;
        for (const QString& root : roots)
            certificates.append(TestCertificates::certificate(root));
        ReplyWithoutPeer reply(certificates);
        PresenterClient client(nullptr, "https://127.0.0.1:1");
        const LogRecorder log;
        const QList<QSslError> errors{QSslError(QSslError::NoPeerCertificate),
                                      QSslError(QSslError::NoSslSupport)};
        QVERIFY(QMetaObject::invokeMethod(&client, "slotSslErrors", Q_ARG(QNetworkReply*, &reply),
                                          Q_ARG(QList<QSslError>, errors)));
        QCOMPARE(client.lastError(), error);
        QCOMPARE(client.lastError().isNull(), error.isNull());
        QCOMPARE(log.debug("ssl error ").size(), 2);
        QVERIFY(log.debug("ssl error ").first().contains(errors.first().errorString()));
        QCOMPARE(log.debug("CommonName:").size(), roots.size());
    }
    void refusedCredentialsFail()
    {
        service().expect("/tavisto", challenge());
        QVERIFY(!client().checkServer(QString(), QString()));
        QVERIFY(service().last().header("authorization").isNull());
        service().expect("/tavisto", challenge());
        service().expect("/tavisto", challenge());
        QVERIFY(!client().checkServer("user", "wrong"));
        QCOMPARE(service().last().header("authorization"), basic("user:wrong"));
    }

    void authenticatorGetsOnlyWhatIsSet_data()
    {
        // What is set first and then, and what an authenticator has afterwards that had "before:before".
        rows<QString, QString, QByteArray>({
            {"neither", ":", ":", "before:before"},
            {"user", ":", "u:", "u:before"},
            {"password", ":", ":p", "before:p"},
            {"both", ":", "u:p", "u:p"},
            {"both empty", "user:secret", ":", "user:secret"},
            {"both null", "user:secret", QString(), "user:secret"},
            {"new user", "user:secret", "other:", "other:secret"},
            {"new password", "user:secret", ":word", "user:word"},
            {"both new", "user:secret", "other:word", "other:word"},
        });
    }
    void authenticatorGetsOnlyWhatIsSet()
    {
        const auto [first, then, credentials] = row<QString, QString, QByteArray>();
        for (const QString& set : {first, then}) {
            service().expect("/tavisto", Answer::json("{}"));
            QVERIFY(client().checkServer(set.section(':', 0, 0), set.section(':', 1)));
        }
        QAuthenticator authenticator;
        authenticator.setUser("before");
        authenticator.setPassword("before");
        QVERIFY(QMetaObject::invokeMethod(&client(), "authenticationRequired", Q_ARG(QNetworkReply*, nullptr),
                                          Q_ARG(QAuthenticator*, &authenticator)));
        QCOMPARE((authenticator.user() + ':' + authenticator.password()).toUtf8(), credentials);
    }
};

QTEST_GUILESS_MAIN(tst_PresenterClientSecurity)
#include "tst_PresenterClientSecurity.moc"
