#include "interop/support/BusTest.h"
#include "interop/support/Main.h"
#include "support/TestCertificates.h"

#include <CalyxClient/PresenterClient>

#include <QTemporaryFile>

/// The servers behind TLS, their certificates signed by an authority of our own or not acceptable.
class TestTransportSecurity : public BusTest
{
    Q_OBJECT

private Q_SLOTS:
    void trustedAuthorityCarriesTexts_data() { combinations({Transport::all}); }
    void trustedAuthorityCarriesTexts()
    {
        const auto [transport] = row<QString>();
        start(Peers::nodeBus({QStringLiteral("--count"), QStringLiteral("1000")}), "loopback");
        for (int round = 0; round < 2; ++round) {
            QVERIFY(m_host->open(transport));
            QVERIFY(m_host->receiveNumbers(1000));
            QVERIFY(m_host->close());
        }
        QCOMPARE(m_bus->count(QStringLiteral("open ")), 2);
    }

    void trustedAuthorityCarriesRequests()
    {
        start(Peers::classroom(), "loopback");
        PresenterClient client(nullptr, m_front->url(QStringLiteral("https")).toString());
        QVERIFY(client.checkServer(QString(), QString()));
        QVERIFY(client.doLogin(QStringLiteral("teacher"), QStringLiteral("chalk")));
        QVERIFY(client.doStartSession(QString()));
        QString id;
        QString path;
        QVERIFY(client.doUploadResource(QStringLiteral("a.png"), QByteArray("\x89PNG\r\n"), &id, &path));
        QVERIFY(client.doLogout());
    }

    void anotherCertificateIsRefused_data()
    {
        combinations({{"unknown", "elsewhere", "expired"}, Transport::all});
    }
    void anotherCertificateIsRefused()
    {
        const auto [certificate, transport] = row<QString, QString>();
        start(Peers::nodeBus({QStringLiteral("--count"), QStringLiteral("1")}), certificate);
        QVERIFY(m_host->tryOpen({transport}));
        QVERIFY(!m_host->collab()->isConnected());
        // What would have been sent or told after all is there before an answer on another channel is.
        Host plain(m_bus->url());
        QVERIFY(plain.open(Transport::webSocket));
        QVERIFY(plain.receiveNumbers(1));
        QCOMPARE(m_host->connected(), 0);
        QCOMPARE(m_host->closed(), 0);
        QCOMPARE(m_bus->count(QStringLiteral("request ")), 0);
        QCOMPARE(m_bus->count(QStringLiteral("upgrade ")), 1);
        QVERIFY(plain.close());
    }

private:
    void start(const Peer::Program& server, const QString& certificate)
    {
        QTemporaryFile file;
        QVERIFY(file.open());
        file.write(TestCertificates::withKey(certificate));
        file.close();
        m_bus.emplace(server);
        const QString bind = QStringLiteral("ssl crt \"%1\"").arg(file.fileName());
        m_front.emplace(Peers::haproxy({m_bus->port()}, {{QStringLiteral("BIND"), bind}}));
        m_host.emplace(m_front->url(QStringLiteral("https")));
    }

    const TestCertificates::TrustedRoot m_trusted;
};

INTEROP_MAIN(TestTransportSecurity)
#include "tst_TransportSecurity.moc"
