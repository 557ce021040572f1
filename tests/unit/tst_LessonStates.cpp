// What a lesson says and does when the service is not as it should be, and in which language.

#include "support/LessonClass.h"
#include "support/Rows.h"

#include <CalyxClient/Lesson>

#include <QElapsedTimer>
#include <QMetaEnum>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTest>
#include <QTranslator>

#include <atomic>
#include <functional>

using namespace Calyx;
using namespace LessonClass;
using Logins::SUBMIT;

namespace {

using Script = std::function<void(FakeService&)>;

constexpr char USERS[] = "/tavisto/session/getusers";

} // namespace

Q_DECLARE_METATYPE(Script)
Q_DECLARE_METATYPE(QList<Script>)

class tst_LessonStates : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void failedLogins_data()
    {
        columns<Script, int>();
        const auto row = [](const char* name, LessonError::Kind kind, const Script& script) {
            QTest::newRow(name) << script << int(kind);
        };
        const auto submit = [](const char* body, int status) {
            return [=](FakeService& service) {
                service.expect(PROBE, Answer::json(FINE));
                service.expect(SUBMIT, Answer::json(body, status));
            };
        };
        row("wrong password", LessonError::BadCredentials,
            submit(R"({"success":false,"errorMsgKeys":["login.error.badCredentials"]})", 403));
        row("refused", LessonError::Refused,
            submit(R"({"success":false,"errorMsgKeys":["login.error.locked"]})", 403));
        row("gone", LessonError::Unreachable,
            [](FakeService& service) { service.expect(PROBE, Answer::gone()); });
        row("a page", LessonError::NotTheService,
            [](FakeService& service) { service.expect(PROBE, Answer::json("<html>")); });
        row("other JSON", LessonError::NotTheService,
            [](FakeService& service) { service.expect(PROBE, Answer::json(R"({"portal":"login"})")); });
        row("not found", LessonError::NotTheService,
            [](FakeService& service) { service.expect(PROBE, Answer::json("<html>", 404)); });
        row("a balancer without server", LessonError::NoAnswer,
            [](FakeService& service) { service.expect(PROBE, Answer::json("<html>", 502)); });
        row("a portal that redirects", LessonError::NotTheService, [](FakeService& service) {
            service.expect(PROBE, Answer::redirect((service.url() + "/welcome").toLatin1()));
            service.expect(PROBE, Answer::redirect((service.url() + "/welcome").toLatin1()));
        });
        row("logged in", LessonError::NoError, submit(Logins::SUCCESS, 200));
    }
    void failedLogins()
    {
        const auto [script, kind] = row<Script, int>();
        FakeService service;
        script(service);
        Lesson lesson(QUrl(service.url()));
        LessonError error;
        connect(&lesson, &Lesson::failed, this, [&](const LessonError& one) { error = one; });
        logIn(lesson);
        QCOMPARE(lesson.state(), Lesson::LoggingIn);
        if (kind != LessonError::NoError)
            lesson.start();
        QVERIFY(waitFor([&] { return lesson.state() != Lesson::LoggingIn; }));
        QCOMPARE(int(error.kind), kind);
        QCOMPARE(lesson.state(), kind == LessonError::NoError ? Lesson::LoggedIn : Lesson::LoggedOut);
        QCOMPARE(error.text.isEmpty(), kind == LessonError::NoError);
        QVERIFY(!error.text.contains(error.key) || error.key.isEmpty());
        QVERIFY(!lesson.ask(Question::usual(PollType::TEXT))); // there is no lesson to come
        service.expect(Logins::LOGOUT, Answer::json(FINE));
        lesson.logOut();
        QVERIFY(waitFor([&] { return lesson.state() == Lesson::LoggedOut; }));
        service.expectNoMore();
    }

    void anAddressNeedsNoScheme_data()
    {
        rows<QString, QString>({{"name", "school.example", "https://school.example"},
                                {"name and port", "school.example:8090", "https://school.example:8090"},
                                {"address and port", "192.0.2.1:8090", "https://192.0.2.1:8090"},
                                {"with one", "http://192.0.2.1:8090", "http://192.0.2.1:8090"},
                                {"none", "", ""}});
    }
    void anAddressNeedsNoScheme()
    {
        const auto [address, server] = row<QString, QString>();
        QCOMPARE(Lesson(QUrl(address)).server().toString(), server);
    }

    // What stands before the service wants a password of its own.
    void aLoginKeepsWhatTheAddressWants()
    {
        FakeService service;
        const Answer challenge =
            Answer::json("<html>", 401).with("WWW-Authenticate", "Basic realm=\"classroom\"");
        service.expect(PROBE, challenge);
        service.expect(PROBE, Answer::json(FINE));
        Lesson lesson(QUrl(service.url()));
        lesson.onClient([](PresenterClient* client) {
            client->checkServer(QStringLiteral("door"), QStringLiteral("key"));
        });
        service.expect(PROBE, Answer::json(FINE));
        service.expect(SUBMIT, Answer::json(Logins::SUCCESS));
        logIn(lesson);
        QVERIFY(waitFor([&] { return lesson.state() != Lesson::LoggingIn; }));
        QCOMPARE(lesson.state(), Lesson::LoggedIn);
        QCOMPARE(service.last().header("authorization"), "Basic " + QByteArray("door:key").toBase64());
        service.expect(Logins::LOGOUT, Answer::json(FINE));
        lesson.logOut();
        QVERIFY(waitFor([&] { return lesson.state() == Lesson::LoggedOut; }));
    }

    void textsAreEscaped()
    {
        FakeService service;
        service.expect(PROBE, Answer::json(FINE));
        service.expect(SUBMIT, Answer::json(Logins::REFUSED, 403));
        Lesson lesson(QUrl(service.url()));
        lesson.logIn(QStringLiteral("te\"ach\\er"), QStringLiteral("ch%1\"alk"));
        QVERIFY(waitFor([&] { return lesson.state() == Lesson::LoggedOut; }));
        const QByteArray expected = "\"userId\":\"te\\\"ach\\\\er\",\"password\":\"ch%1\\\"alk\"";
        QVERIFY2(service.last().body.contains(expected), service.last().body.constData());
    }

    void whatCannotBeIsRefused_data()
    {
        rows<Work>({
            {"start", [](Lesson& lesson) { lesson.start(); }},
            {"take up", [](Lesson& lesson) { lesson.takeUp(QString()); }},
            {"end", [](Lesson& lesson) { lesson.end(); }},
            {"ask", [](Lesson& lesson) { QVERIFY(!lesson.ask(Question::usual(PollType::TEXT))); }},
            {"assess", [](Lesson& lesson) { QVERIFY(!lesson.startAssessment(AssessmentPlan())); }},
            {"lock", [](Lesson& lesson) { lesson.setLocked(true); }},
            {"card", [](Lesson& lesson) { lesson.showCard(); }},
            {"no card", [](Lesson& lesson) { QVERIFY(!lesson.addCard(QStringLiteral("leaf"), {})); }},
            {"picture", [](Lesson& lesson) { lesson.showPicture("png"); }},
            {"address", [](Lesson& lesson) { lesson.showPictureAt(QStringLiteral("/leaf.png")); }},
            {"controls", [](Lesson& lesson) { lesson.logIn(QStringLiteral("a\nb"), QString()); }},
            {"save", [](Lesson& lesson) { QVERIFY(!lesson.save(QStringLiteral("/nowhere/at all"))); }},
        });
    }
    void whatCannotBeIsRefused()
    {
        const auto [work] = row<Work>();
        Lesson lesson(QUrl(QStringLiteral("http://127.0.0.1:1")));
        QList<LessonError::Kind> kinds;
        connect(&lesson, &Lesson::failed, this, [&](const LessonError& error) { kinds.append(error.kind); });
        work(lesson);
        QCOMPARE(kinds, QList<LessonError::Kind>{LessonError::BadInput});
        QCOMPARE(lesson.state(), Lesson::LoggedOut);
        lesson.pause(); // and others that have nothing to do
        lesson.onChannel({});
        lesson.onClient({});
        lesson.stop();
        lesson.retryNow();
        lesson.cancel();
        lesson.logOut();
        lesson.stopAssessment();
        lesson.clearPolls();
        lesson.showResults();
        QCOMPARE(kinds.size(), 1);
    }

    void whatIsNotWantedAnyMoreIsOver_data()
    {
        rows<Work>({{"end", [](Lesson& lesson) { lesson.end(); }},
                    {"another login", [](Lesson& lesson) { logIn(lesson); }},
                    {"cancel", [](Lesson& lesson) { lesson.cancel(); }}});
    }
    // What was asked for a session that is not opened ends with it.
    void whatIsNotWantedAnyMoreIsOver()
    {
        const auto [work] = row<Work>();
        FakeService service;
        service.expect(PROBE, Answer::never());
        Lesson lesson(QUrl(service.url()));
        logIn(lesson);
        lesson.start();
        const Poll* const poll = lesson.ask(Question::usual(PollType::TEXT));
        lesson.setLocked(true);
        QVERIFY(waitFor([&] { return service.isUsedUp(); }));
        service.expect(PROBE, Answer::never());
        work(lesson);
        QVERIFY(!poll->isRunning() && !lesson.isLocked());
        service.expectNoMore();
    }

    void bringsBackWhatHasChanged_data()
    {
        const QStringList again = {"questionStart T.user.D1", "questionStart T.user.D2"};
        rows<Work, QStringList>({
            {"nothing", [](Lesson&) {}, again},
            {"stop", [](Lesson& lesson) { lesson.stop(); }, {"pollStop T"}},
            {"pause",
             [](Lesson& lesson) { lesson.pause(); },
             {"pause T", "questionStart T.user.D1", "pause T.user.D1", "questionStart T.user.D2",
              "pause T.user.D2"}},
            {"ask", [](Lesson& lesson) { lesson.ask(Question::usual(PollType::TEXT)); }, {"questionStart T"}},
            {"lock", [](Lesson& lesson) { lesson.setLocked(true); }, QStringList{"dialogShow T"} + again},
            {"card", [](Lesson& lesson) { lesson.showPicture("png"); },
             QStringList{"showCard T.learner"} + again},
            {"lock, but nothing is brought",
             [](Lesson& lesson) {
                 lesson.setBringsBack(false);
                 lesson.setLocked(true);
             },
             QStringList()},
        });
    }
    void bringsBackWhatHasChanged()
    {
        const auto [meanwhile, published] = row<Work, QStringList>();
        Class class_;
        QVERIFY(class_.start());
        QCOMPARE(class_.lesson->roster()->presentCount(), 2);
        class_.lesson->ask(Question::usual(PollType::MULTIPLE));
        QVERIFY(!class_.sent("questionStart").isEmpty());
        class_.expectUsers();
        class_.hear(class_.sent("pulse"));                                    // follows each message
        class_.lesson->setName(QStringLiteral("id"), QStringLiteral("name")); // told to the remote control
        QCOMPARE(class_.published(), QStringList());
        QVERIFY(class_.loseAndReturn(meanwhile));
        QCOMPARE(class_.published(), published);
        QVERIFY(class_.end());
    }

    void bringsWhatMayBeLost_data()
    {
        rows<bool, QStringList>({
            {"question has arrived",
             true,
             {"dialogShow T", "questionStart T.user.D1", "questionStart T.user.D2"}},
            {"nothing has", false, {"questionStart T", "dialogShow T"}},
        });
    }
    // What was sent into a line that was dead already is sent again; what the bus has got is not.
    void bringsWhatMayBeLost()
    {
        const auto [hasArrived, published] = row<bool, QStringList>();
        Class class_;
        QVERIFY(class_.start());
        class_.lesson->ask(Question::usual(PollType::MULTIPLE));
        QVERIFY(!class_.sent("questionStart").isEmpty());
        const QJsonObject pulse = class_.sent("pulse"); // follows each message
        if (hasArrived) {
            class_.expectUsers();
            class_.hear(pulse);
        }
        class_.lesson->setLocked(true);
        QVERIFY(!class_.sent("dialogShow").isEmpty());
        QVERIFY(class_.loseAndReturn([](Lesson&) {}));
        QCOMPARE(class_.published(), published);
        class_.service.expectNoMore();
    }

    // The service can list the learners before the bus knows where we are to hear of others.
    void listsLearnersAgain()
    {
        Class class_;
        QVERIFY(class_.start());
        class_.lesson->ask(Question::usual(PollType::MULTIPLE));
        QVERIFY(!class_.sent("questionStart").isEmpty());
        const QJsonObject pulse = class_.sent("pulse");
        QSignalSpy joined(class_.lesson->roster(), &Roster::joined);
        class_.service.expect(USERS, Answer::json(R"({"success":true,"data":{"users":[
            {"userToken":"D2","mode":"learner"},{"userToken":"D3","mode":"learner"},{"userToken":"D4","mode":"learner"}]}})"));
        class_.hear(pulse);
        class_.hear(pulse); // once is enough
        QVERIFY(waitFor([&] { return class_.service.isUsedUp(); }));
        std::atomic_bool isListed = false;
        class_.lesson->onClient([&](PresenterClient*) { isListed = true; });
        QVERIFY(waitFor([&] { return bool(isListed); }));
        class_.leave("D3", "user", "D1"); // which no learner says of another
        class_.leave("D4", "user", "D4");
        QVERIFY(waitFor([&] { return class_.lesson->roster()->presentCount() == 3; }));
        QCOMPARE(joined.takeFirst(), QVariantList{QStringLiteral("D3")});
        class_.lesson->setName(QStringLiteral("id"), QStringLiteral("name")); // is told last
        QCOMPARE(class_.published(), QStringList{"questionStart T.user.D3"});
        QVERIFY(joined.isEmpty());
        QVERIFY(class_.end());
    }

    void leavesLossesToTheHost()
    {
        Class class_;
        class_.lesson->setNoticesLoss(false);
        class_.lesson->setReconnects(false);
        QVERIFY(class_.start());
        QVERIFY(class_.sent("pulse").value("serial").toInt() > 0); // it follows a message: none is to probe
        class_.bus.dropConnections();
        QVERIFY(waitFor([&] { return class_.lesson->state() == Lesson::Reconnecting; }));
        QVERIFY(!class_.lesson->nextAttempt().isValid());
        QCOMPARE(class_.lesson->attemptText(), QStringLiteral("The connection is lost."));
        QVERIFY(class_.loseAndReturn([](Lesson&) {}));
        QCOMPARE(class_.lesson->attemptText(), QString());
        QVERIFY(class_.end());
    }

    void beginsAnewWithNothing()
    {
        Class class_;
        QVERIFY(class_.start());
        class_.lesson->ask(Question::usual(PollType::TEXT));
        class_.lesson->showPicture("png");
        class_.lesson->setLocked(true);
        QVERIFY(!class_.sent("dialogShow").isEmpty());
        class_.service.expect("/tavisto/session/stop", Answer::json(FINE));
        class_.lesson->end();
        QVERIFY(waitFor([&] { return class_.lesson->state() == Lesson::LoggedIn; }));
        QCOMPARE(class_.lesson->roster()->rowCount(), 2); // to be looked at, until the next one starts
        class_.expectSession(class_.bus.url());
        class_.service.expect(USERS, Answer::json(R"({"success":true,"data":{"users":[]}})"));
        class_.lesson->start();
        QCOMPARE(class_.lesson->roster()->rowCount(), 0);
        QVERIFY(waitFor([&] { return class_.lesson->state() == Lesson::Live; }));
        class_.join("D3");
        QVERIFY(waitFor([&] { return class_.lesson->roster()->isPresent("D3"); }));
        class_.published(); // what is told first
        class_.lesson->setName({}, {});
        QCOMPARE(class_.published(), QStringList());
        QVERIFY(class_.end());
    }

    void triesToComeBack_data()
    {
        const auto refuses = [](const char* path, const QByteArray& text) {
            return [=](FakeService& service) { service.expect(path, Answer::json(text, 403)); };
        };
        const auto agrees = [](const char* path, const QByteArray& text) {
            return [=](FakeService& service) { service.expect(path, Answer::json(text)); };
        };
        const Script nobody = refuses(USERS, Logins::REFUSED);
        const Script known = agrees(Logins::USER, R"({"data":{"userLoginId":"teacher"}})");
        const Script unknown = agrees(Logins::USER, "{}");
        const Script learners = agrees(USERS, R"({"success":true,"data":{"users":[]}})");
        rows<QList<Script>, int, int>({
            {"no server", {refuses(USERS, "<html>")}, LessonError::NotTheService, Lesson::Reconnecting},
            {"no session",
             {refuses(USERS, R"({"errorMsgKeys":["session.error"]})")},
             LessonError::SessionGone,
             Lesson::LoggedIn},
            {"logged in", {nobody, known, learners, learners}, LessonError::NoError, Lesson::Live},
            {"logs in",
             {nobody, unknown, agrees(SUBMIT, Logins::SUCCESS), learners, learners},
             LessonError::NoError,
             Lesson::Live},
            {"logged out",
             {nobody, unknown, refuses(SUBMIT, Logins::REFUSED)},
             LessonError::LoggedOutByService,
             Lesson::LoggedOut},
        });
    }
    void triesToComeBack()
    {
        const auto [replies, kind, state] = row<QList<Script>, int, int>();
        Class class_;
        class_.lesson->setReconnects(false);
        QVERIFY(class_.start());
        class_.bus.dropConnections();
        QVERIFY(waitFor([&] { return class_.lesson->state() == Lesson::Reconnecting; }));
        LessonError error;
        connect(class_.lesson.get(), &Lesson::failed, this, [&](const LessonError& one) { error = one; });
        for (const Script& reply : replies)
            reply(class_.service);
        class_.lesson->retryNow();
        QVERIFY(waitFor(
            [&] { return error.kind != LessonError::NoError || class_.lesson->state() == Lesson::Live; }));
        QCOMPARE(int(error.kind), kind);
        QCOMPARE(int(class_.lesson->state()), state);
        QVERIFY(class_.service.isUsedUp());
    }

    void waitsAreCancelled_data()
    {
        rows<Script>({
            {"probe", [](FakeService& service) { service.expect(PROBE, Answer::never()); }},
            {"login",
             [](FakeService& service) {
                 service.expect(PROBE, Answer::json(FINE));
                 service.expect(SUBMIT, Answer::stalled(Logins::SUCCESS));
             }},
        });
    }
    void waitsAreCancelled()
    {
        const auto [script] = row<Script>();
        FakeService service;
        script(service);
        Lesson lesson(QUrl(service.url()));
        LessonError error;
        connect(&lesson, &Lesson::failed, this, [&](const LessonError& one) { error = one; });
        logIn(lesson);
        lesson.start();
        QVERIFY(waitFor([&] { return service.isUsedUp(); }));
        lesson.cancel();
        QCOMPARE(lesson.state(), Lesson::LoggedOut);
        QCOMPARE(int(error.kind), int(LessonError::Cancelled));
        QVERIFY(waitFor([&] { return service.abandoned() == 1; }));
        // The next login does not wait for the one that was given up.
        service.expect(PROBE, Answer::json(FINE));
        service.expect(SUBMIT, Answer::json(Logins::SUCCESS));
        logIn(lesson);
        QVERIFY(waitFor([&] { return lesson.state() == Lesson::LoggedIn; }, 5000));
        service.expect(Logins::LOGOUT, Answer::never());
        QElapsedTimer clock;
        clock.start();
        lesson.logOut();
        lesson.cancel();
        QCOMPARE(lesson.state(), Lesson::LoggedOut);
        service.expectNoMore();
    }

    void openingsEnd_data()
    {
        columns<QString, bool>();
        for (const char* transport : {"websocket", "xhr-streaming", "xhr-polling"}) {
            for (const bool isDeleted : {false, true})
                QTest::addRow("%s, %s", transport, isDeleted ? "deleted" : "cancelled")
                    << QString(transport) << isDeleted;
        }
    }
    // A proxy that does not answer keeps the connection from being made.
    void openingsEnd()
    {
        const auto [transport, isDeleted] = row<QString, bool>();
        QTcpServer proxy;
        QVERIFY(proxy.listen(QHostAddress::LocalHost));
        qputenv("no_proxy", "127.0.0.1");
        qputenv("http_proxy", "http://127.0.0.1:" + QByteArray::number(proxy.serverPort()));
        Class class_;
        class_.lesson->setTransports({transport});
        class_.begin(QUrl(QStringLiteral("http://bus.invalid")));
        QVERIFY(waitFor([&] { return proxy.hasPendingConnections(); }));
        QElapsedTimer clock;
        clock.start();
        if (isDeleted) {
            class_.lesson.reset();
            QVERIFY(clock.elapsed() < 2000);
            class_.service.expectNoMore(); // the goodbye, to which nobody listens any more
        } else {
            class_.service.expect("/tavisto/session/stop", Answer::json(FINE));
            class_.lesson->cancel();
            QVERIFY(waitFor([&] { return class_.service.isUsedUp(); }, 5000));
            class_.service.expect(Logins::LOGOUT, Answer::json(FINE));
            class_.lesson->logOut();
            QVERIFY(waitFor([&] { return class_.service.isUsedUp(); }));
        }
        qunsetenv("http_proxy");
        qunsetenv("no_proxy");
    }

    void textsComeInTheHostsLanguage_data()
    {
        rows<QLocale, QString>({
            {"German", QLocale("de_CH"), "Abgebrochen."},
            {"French", QLocale("fr_CA"), "Annul\u00e9."},
            {"English", QLocale("en_GB"), "Cancelled."},
            {"none", QLocale::c(), "Cancelled."},
            {"unknown", QLocale("fi_FI"), "Cancelled."},
        });
    }
    void textsComeInTheHostsLanguage()
    {
        const auto [locale, text] = row<QLocale, QString>();
        QTranslator translator;
        const bool isLoaded = Calyx::Lesson::loadTranslation(&translator, locale);
        QCOMPARE(Calyx::LessonError::make(Calyx::LessonError::Cancelled).text, QStringLiteral("Cancelled."));
        QCOMPARE(isLoaded, text != QLatin1String("Cancelled."));
        if (isLoaded)
            QCoreApplication::installTranslator(&translator);
        QCOMPARE(Calyx::LessonError::make(Calyx::LessonError::Cancelled).text, text);
        QCoreApplication::removeTranslator(&translator);
        Calyx::Lesson::installTranslations(locale);
        QCOMPARE(Calyx::LessonError::make(Calyx::LessonError::Cancelled).text, text);
        qDeleteAll(QCoreApplication::instance()->findChildren<QTranslator*>());
    }
};

QTEST_GUILESS_MAIN(tst_LessonStates)

#include "tst_LessonStates.moc"
