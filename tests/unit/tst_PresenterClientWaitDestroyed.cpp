// The host destroys the client while an operation waits. The ways to do it inside one another are in
// tst_RandomWalk.

#include "support/ClientOperations.h"
#include "support/FakeService.h"
#include "support/Rows.h"
#include "support/TimerClock.h"

#include <CalyxClient/PresenterClient>

#include <QNetworkAccessManager>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <functional>

using namespace ClientOperations;
using Answer = FakeService::Answer;

using Hosts = std::function<void(PresenterClient*)>;
Q_DECLARE_METATYPE(Hosts)

namespace {

// The limit of a wait is 10 seconds, and Qt's timers may be off by a twentieth.
const int PAST_THE_LIMIT = 10600;

// A client that has a started session says so to the service before it goes.
void destroy(PresenterClient* client, FakeService& service)
{
    if (!client->sessionToken().isNull())
        service.expect("/tavisto/session/stop", Answer::json("{}"));
    delete client;
}

// No answer comes; \p action runs from the event loop, as a host's would, while the client waits for one.
Answer unansweredWhile(FakeService& service, const std::function<void()>& action)
{
    return Answer::never().then([&service, action] { QTimer::singleShot(0, &service, action); });
}

bool isNoResult(const QVariant& result)
{
    return result.toString().isEmpty() || result == QVariant(false);
}

// The host deletes its client as soon as a log-in has ended with \p answer.
void verifyDestroyedOnceProcessed(const Answer& answer)
{
    FakeService service;
    service.expect("/tavisto/login/submit", answer);
    const QPointer<PresenterClient> client = new PresenterClient(nullptr, service.url());
    QObject::connect(client, &PresenterClient::requestProcessed, &service, [&] { delete client; });

    QVERIFY(!client->doLogin("u", "p"));
    QVERIFY(!client);
}

} // namespace

class tst_PresenterClientWaitDestroyed : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void clientDestroyed_data()
    {
        columns<Operation, int, bool>();
        for (const auto& operation : operations() + chainedOperations()) {
            for (int i = 0; i < operation.second.paths.size(); ++i) {
                QTest::addRow("%s, request %d, timer", operation.first, i + 1)
                    << operation.second << i << true;
                QTest::addRow("%s, request %d, slot", operation.first, i + 1)
                    << operation.second << i << false;
            }
        }
    }

    // By a timer while the request waits for its answer, or by a slot of requestProcessed() when it has come.
    void clientDestroyed()
    {
        const auto [operation, request, byTimer] = row<Operation, int, bool>();
        FakeService service;
        QPointer<PresenterClient> client = new PresenterClient(nullptr, service.url());
        operation.prepare(client);
        for (int i = 0; i < request; ++i)
            service.expect(operation.paths.at(i), Answer::json(ALL_IS_WELL));
        service.expect(operation.paths.at(request),
                       byTimer ? unansweredWhile(service, [&] { destroy(client, service); })
                               : Answer::json(ALL_IS_WELL));
        QMetaObject::Connection connection;
        connection = connect(client, &PresenterClient::requestProcessed, &service, [&, byTimer = byTimer] {
            if (byTimer || !service.isUsedUp())
                return;
            disconnect(connection); // the destructor makes requests as well
            destroy(client, service);
        });

        const QPointer<QNetworkAccessManager> manager = client->findChild<QNetworkAccessManager*>();
        const QVariant result = operation.call(client);
        QVERIFY(!client);
        QVERIFY2(isNoResult(result), qPrintable(result.toString()));
        QTRY_VERIFY(!manager);
        QTRY_COMPARE(service.abandoned(), byTimer ? 1 : 0);
    }

    void destructionIsNotRepeated_data()
    {
        columns<Hosts, Hosts>();
        const Hosts nothing = [](PresenterClient*) {};
        const Hosts later = [](PresenterClient* client) { client->deleteLater(); };
        QTest::newRow("deleteLater() before") << later << nothing;
        QTest::newRow("deleteLater() meanwhile") << nothing << later;
        QTest::newRow("the parent meanwhile")
            << nothing
            << Hosts([](PresenterClient* client) { delete client->property("owner").value<QObject*>(); });
    }

    // While the destructor waits for the end of the session, the host's slots run.
    void destructionIsNotRepeated()
    {
        const std::tuple<Hosts, Hosts> hosts = row<Hosts, Hosts>();
        const auto& before = std::get<0>(hosts);
        const auto& meanwhile = std::get<1>(hosts);

        FakeService service;
        const QPointer<QObject> owner = new QObject;
        auto* client = new PresenterClient(owner, service.url());
        client->setProperty("owner", QVariant::fromValue(owner.data()));
        client->sessionStartSuccessResponse(QString::fromLatin1(ALL_IS_WELL));
        int ends = 0;
        connect(client, &QObject::destroyed, &service, [&] { ++ends; });
        service.expect("/tavisto/session/stop", Answer::json("{}").held().then([&] {
            QTimer::singleShot(0, &service, [&] {
                meanwhile(client);
                QTimer::singleShot(0, &service, [&] { service.release(); });
            });
        }));
        QTimer::singleShot(0, &service, [&] {
            before(client);
            delete client;
        });

        QTRY_VERIFY(service.isUsedUp() && ends > 0);
        delete owner;
        QCOMPARE(ends, 1);
    }

    void clientDestroyedOnARedirect()
    {
        verifyDestroyedOnceProcessed(Answer::redirect("https://moved.example/"));
    }

    void clientDestroyedOnATimeOut()
    {
        verifyDestroyedOnceProcessed(Answer::never().then([] { TimerClock::advance(PAST_THE_LIMIT); }));
    }
};

QTEST_GUILESS_MAIN(tst_PresenterClientWaitDestroyed)

#include "tst_PresenterClientWaitDestroyed.moc"
