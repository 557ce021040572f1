#include "interop/support/ClassroomSession.h"
#include "interop/support/Host.h"
#include "interop/support/Main.h"
#include "interop/support/Peers.h"
#include "support/Rows.h"
#include "support/TestCertificates.h"

#include <CalyxClient/PresenterCollab>

namespace {

Peer::Program behindTls(const Peer& server, const QString& certificate)
{
    const QString file = TestCertificates::fileName(certificate);
    return Peers::haproxy({server.port()},
                          {{QStringLiteral("BIND"), QStringLiteral("ssl crt \"%1\"").arg(file)}});
}

const QString https = QStringLiteral("https");

} // namespace

/// The servers behind TLS, their certificates signed by an authority of our own or not acceptable.
class TestTransportSecurity : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void trustedAuthorityCarriesTexts_data() { Transport::addRows(); }

    void trustedAuthorityCarriesTexts()
    {
        constexpr int texts = 1000;
        QFETCH(QString, transport);
        const TestCertificates::TrustedRoot trusted;
        Peer bus(Peers::nodeBus({QStringLiteral("--count"), QString::number(texts)}));
        VERIFY_STARTED(bus.start());
        Peer tls(behindTls(bus, QStringLiteral("loopback")));
        VERIFY_STARTED(tls.start());
        Host host(tls.url(https));
        for (int round = 0; round < 2; ++round) {
            QVERIFY(host.open(transport));
            QVERIFY2(host.receiveNumbers(texts), qPrintable(host.numbers().fault()));
            QCOMPARE(host.closed(), round);
            QVERIFY(host.close());
        }
        QCOMPARE(bus.count(QStringLiteral("open ")), 2);
    }

    void trustedAuthorityCarriesRequests()
    {
        const TestCertificates::TrustedRoot trusted;
        Peer classroom(Peers::classroom());
        VERIFY_STARTED(classroom.start());
        Peer tls(behindTls(classroom, QStringLiteral("loopback")));
        VERIFY_STARTED(tls.start());
        ClassroomSession lesson(tls.url(https));
        QVERIFY(lesson.client().checkServer(QString(), QString()));
        QVERIFY(lesson.create());
        QString id;
        QString path;
        QVERIFY(
            lesson.client().doUploadResource(QStringLiteral("a.png"), QByteArray("\x89PNG\r\n"), &id, &path));
        QVERIFY(lesson.client().doLogout());
    }

    void anotherCertificateIsRefused_data()
    {
        columns<QString, QString>();
        for (const char* certificate : {"unknown", "elsewhere", "expired"}) {
            for (const QString& transport : Transport::all)
                QTest::addRow("%s, %s", certificate, qPrintable(transport))
                    << QString::fromLatin1(certificate) << transport;
        }
    }

    void anotherCertificateIsRefused()
    {
        const auto [certificate, transport] = row<QString, QString>();
        const TestCertificates::TrustedRoot trusted;
        Peer bus(Peers::nodeBus({QStringLiteral("--count"), QStringLiteral("1")}));
        VERIFY_STARTED(bus.start());
        Peer tls(behindTls(bus, certificate));
        VERIFY_STARTED(tls.start());
        Host host(tls.url(https));
        QVERIFY(host.tryOpen({transport}));
        QVERIFY(!host.collab()->isConnected());

        // What would have been sent or told after all is there before an answer on another channel is.
        Host plain(bus.url());
        QVERIFY(plain.open(Transport::webSocket));
        QVERIFY(plain.receiveNumbers(1));
        QCOMPARE(host.connected(), 0);
        QCOMPARE(host.closed(), 0);
        QCOMPARE(bus.count(QStringLiteral("request ")), 0);
        QCOMPARE(bus.count(QStringLiteral("upgrade ")), 1);
        QVERIFY(plain.close());
    }
};

INTEROP_MAIN(TestTransportSecurity)
#include "tst_TransportSecurity.moc"
