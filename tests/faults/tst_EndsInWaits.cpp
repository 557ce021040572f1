#include "faults/support/WillingService.h"
#include "support/FakeSockJSServer.h"
#include "support/Rows.h"

#include <CalyxClient/Lzma>
#include <CalyxClient/PresenterCollab>
#include <CalyxClient/SockJSConnector>

#include <QNetworkProxy>
#include <QTest>

#include <functional>

/// Each operation that waits, in a slot, while the channel ends in each way and over each transport. Nothing
/// crashes or hangs, the end of each channel is told once at most, and another channel comes up afterwards.
class TestEndsInWaits : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy); }

    void endDuringAnOperation_data()
    {
        combinations(
            {{"websocket", "xhr-streaming", "xhr-polling"},
             {"connected", "sockJSMessage", "learnerJoin", "connectionClosed"},
             {"closed by the server", "cut", "close", "delete collab", "delete client", "open", "quit"}});
    }
    void endDuringAnOperation()
    {
        QString transport;
        QString slot;
        QString end;
        std::tie(transport, slot, end) = row<QString, QString, QString>();
        QRandomGenerator random(1);
        FakeSockJSServer bus;
        const WillingService service(bus.url(), &random, 0);
        m_bus = &bus;
        // In a short run each row takes its share, which differs from row to row; in a long one it takes all.
        const auto operations = ClientOperations::operations();
        const int step = qEnvironmentVariableIsSet("CALYX_WALK_SECONDS") ? 1 : 6;
        for (int i = m_row++ % step; i < operations.size(); i += step) {
            const auto& operation = operations.at(i);
            QVERIFY2(openChannel(service.url(), transport), operation.first);
            const bool acted = actIn(slot, [&] {
                QTimer::singleShot(0, this, [&] { bringAbout(end, transport); });
                operation.second.call(m_client);
            });
            QVERIFY2(acted, operation.first);
            if (end == QLatin1String("quit"))
                forgetQuit();
            delete m_client;
        }
    }

private:
    bool openChannel(const QString& service, const QString& transport)
    {
        m_client = new PresenterClient(nullptr, service);
        m_client->sessionSuccessResponse(QString::fromLatin1(ClientOperations::ALL_IS_WELL));
        m_client->setSockJSOverrideProtocols({transport});
        PresenterCollab* collab = nullptr;
        if (!m_client->startWebsocket(&collab))
            return false;
        m_collab = collab;
        return waitFor([this] { return m_collab->isConnected(); });
    }

    // The first time that the slot is called; true when that has come to an end.
    bool actIn(const QString& slot, const std::function<void()>& action)
    {
        QObject context;
        int calls = 0;
        int ends = 0;
        bool done = false;
        const auto once = [&] {
            if (calls++ > 0)
                return;
            action();
            done = true;
        };
        SockJSConnector* connector = m_collab->connector();
        connect(m_collab, &PresenterCollab::connectionClosed, &context, [&] { ++ends; });
        if (slot == QLatin1String("connected"))
            connect(connector, &SockJSConnector::connected, &context, once);
        else if (slot == QLatin1String("sockJSMessage"))
            connect(connector, &SockJSConnector::sockJSMessage, &context, once);
        else if (slot == QLatin1String("learnerJoin"))
            connect(m_collab, &PresenterCollab::learnerJoin, &context, once);
        else
            connect(m_collab, &PresenterCollab::connectionClosed, &context, once);

        if (slot == QLatin1String("connected"))
            m_collab->open();
        else if (slot == QLatin1String("connectionClosed"))
            m_collab->close();
        else
            m_bus->injectMessages({join(), join()});
        const int channels = slot == QLatin1String("connected") ? 2 : 1; // it was opened again
        return waitFor([&] { return done; }) && ends <= channels;
    }

    static QString join()
    {
        QString block;
        Lzma::compress64(QStringLiteral("{}"), &block);
        return QStringLiteral(R"({"body":{"from":"d","type":"join","data":["%1"]}})").arg(block);
    }

    void bringAbout(const QString& end, const QString& transport)
    {
        if (end == QLatin1String("quit"))
            QCoreApplication::quit();
        else if (end == QLatin1String("closed by the server"))
            m_bus->closeSession();
        else if (end == QLatin1String("cut"))
            m_bus->dropConnections();
        else if (end == QLatin1String("delete client"))
            delete m_client;
        else if (!m_collab)
            return;
        else if (end == QLatin1String("close"))
            m_collab->close();
        else if (end == QLatin1String("open"))
            m_collab->open({transport});
        else
            delete m_collab;
    }

    int m_row = 0;
    FakeSockJSServer* m_bus = nullptr;
    QPointer<PresenterClient> m_client;
    QPointer<PresenterCollab> m_collab;
};

QTEST_GUILESS_MAIN(TestEndsInWaits)
#include "tst_EndsInWaits.moc"
