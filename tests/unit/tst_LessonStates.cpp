// What a lesson says and does when the service is not as it should be, and in which language.

#include "support/LessonClass.h"
#include "support/Rows.h"

#include <CalyxClient/Lesson>
#include <CalyxClient/PresenterCollab>
#include <CalyxClient/SockJSConnector>

#include <QDir>
#include <QElapsedTimer>
#include <QMetaEnum>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>

#include <atomic>
#include <functional>

using namespace Calyx;
using namespace LessonClass;
using Logins::SUBMIT;

namespace {

using Reply = QPair<QByteArray, Answer>;

constexpr char USERS[] = "/tavisto/session/getusers";

// A lesson at a service without a class, and the last of its errors.
struct Visit
{
    Visit()
    {
        QObject::connect(&lesson, &Lesson::failed, [this](const LessonError& one) { error = one; });
    }
    void expectLogin(const Answer& answer = Answer::json(Logins::SUCCESS))
    {
        service.expect(PROBE, Answer::json(FINE));
        service.expect(SUBMIT, answer);
    }
    bool reaches(Lesson::State state, int msecs = 20000)
    {
        return waitFor([&] { return lesson.state() == state; }, msecs);
    }
    bool logOut()
    {
        service.expect(Logins::LOGOUT, Answer::json(FINE));
        lesson.logOut();
        return reaches(Lesson::LoggedOut);
    }

    FakeService service;
    Lesson lesson{QUrl(service.url())};
    LessonError error;
};

using Script = std::function<void(Visit&)>;
using Opens = std::function<void(Class&, const QString& journal)>;

} // namespace

Q_DECLARE_METATYPE(Script)
Q_DECLARE_METATYPE(Opens)
Q_DECLARE_METATYPE(QList<Reply>)

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
            return [=](Visit& at) { at.expectLogin(Answer::json(body, status)); };
        };
        const auto probe = [](const Answer& answer) {
            return [=](Visit& at) { at.service.expect(PROBE, answer); };
        };
        row("wrong password", LessonError::BadCredentials,
            submit(R"({"success":false,"errorMsgKeys":["login.error.badCredentials"]})", 403));
        row("refused", LessonError::Refused,
            submit(R"({"success":false,"errorMsgKeys":["login.error.locked"]})", 403));
        row("gone", LessonError::Unreachable, probe(Answer::gone()));
        row("a page", LessonError::NotTheService, probe(Answer::json("<html>")));
        row("other JSON", LessonError::NotTheService, probe(Answer::json(R"({"portal":"login"})")));
        row("not found", LessonError::NotTheService, probe(Answer::json("<html>", 404)));
        row("a balancer without server", LessonError::NoAnswer, probe(Answer::json("<html>", 502)));
        row("a portal that redirects", LessonError::NotTheService, [](Visit& at) {
            for (int i = 0; i < 2; ++i)
                at.service.expect(PROBE, Answer::redirect((at.service.url() + "/welcome").toLatin1()));
        });
        row("logged in", LessonError::NoError, submit(Logins::SUCCESS, 200));
    }
    void failedLogins()
    {
        const auto [script, kind] = row<Script, int>();
        Visit at;
        script(at);
        logIn(at.lesson);
        QCOMPARE(at.lesson.state(), Lesson::LoggingIn);
        if (kind != LessonError::NoError)
            at.lesson.start();
        QVERIFY(at.reaches(kind == LessonError::NoError ? Lesson::LoggedIn : Lesson::LoggedOut));
        QCOMPARE(int(at.error.kind), kind);
        QCOMPARE(at.error.text.isEmpty(), kind == LessonError::NoError);
        QVERIFY(!at.error.text.contains(at.error.key) || at.error.key.isEmpty());
        QVERIFY(!at.lesson.ask(Question::usual(PollType::TEXT))); // there is no lesson to come
        QVERIFY(at.logOut());
        at.service.expectNoMore();
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
        Visit at;
        at.service.expect(PROBE,
                          Answer::json("<html>", 401).with("WWW-Authenticate", "Basic realm=\"classroom\""));
        at.service.expect(PROBE, Answer::json(FINE));
        at.lesson.onClient([](PresenterClient* client) {
            client->checkServer(QStringLiteral("door"), QStringLiteral("key"));
        });
        at.expectLogin();
        logIn(at.lesson);
        QVERIFY(at.reaches(Lesson::LoggedIn));
        QCOMPARE(at.service.last().header("authorization"), "Basic " + QByteArray("door:key").toBase64());
        QVERIFY(at.logOut());
    }

    void textsAreEscaped()
    {
        Visit at;
        at.expectLogin(Answer::json(Logins::REFUSED, 403));
        at.lesson.logIn(QStringLiteral("te\"ach\\er"), QStringLiteral("ch%1\"alk"));
        QVERIFY(at.reaches(Lesson::LoggedOut));
        const QByteArray expected = "\"userId\":\"te\\\"ach\\\\er\",\"password\":\"ch%1\\\"alk\"";
        QVERIFY2(at.service.last().body.contains(expected), at.service.last().body.constData());
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
        Visit at;
        at.service.expect(PROBE, Answer::never());
        logIn(at.lesson);
        at.lesson.start();
        const Poll* const poll = at.lesson.ask(Question::usual(PollType::TEXT));
        at.lesson.setLocked(true);
        QVERIFY(waitFor([&] { return at.service.isUsedUp(); }));
        at.service.expect(PROBE, Answer::never());
        work(at.lesson);
        QVERIFY(!poll->isRunning() && !at.lesson.isLocked());
        at.service.expectNoMore();
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

    // Also before the channel is there again.
    void bringsWhatHasChangedSinceItWasTakenUp_data() { bringsBackWhatHasChanged_data(); }
    void bringsWhatHasChangedSinceItWasTakenUp()
    {
        const auto [meanwhile, published] = row<Work, QStringList>();
        const QTemporaryDir folder;
        Class class_;
        class_.lesson->setJournal(folder.filePath("journal"));
        QVERIFY(class_.start());
        class_.lesson->ask(Question::usual(PollType::MULTIPLE));
        QVERIFY(!class_.sent("questionStart").isEmpty());
        QVERIFY(class_.takeUp(folder.filePath("journal"), meanwhile));
        QCOMPARE(class_.published(), published);
        const auto standing = [&] {
            const Poll* const poll = class_.lesson->poll();
            return QList<bool>{poll->isRunning(), poll->isPaused(), class_.lesson->isLocked()};
        };
        const QList<bool> before = standing();
        AssessmentPlan plan;
        plan.questions = {Question::usual(PollType::TEXT)};
        class_.lesson->startAssessment(plan);
        QVERIFY(class_.takeUp(folder.filePath("journal-copy"), [](Lesson& lesson) {
            QVERIFY(lesson.assessment()->isRunning());
            lesson.stopAssessment();
        }));
        QCOMPARE(standing(), before);
        QVERIFY(class_.takeUp(folder.filePath("journal-copy-copy"), [](Lesson&) {}));
        QVERIFY(!class_.lesson->assessment()->isRunning());
        for (const QFileInfo& one : QDir(folder.path()).entryInfoList(QDir::Files))
            QVERIFY(!one.permission(QFile::ReadOther));
        QVERIFY(class_.end());
    }

    void takesUpWhatAFileSays_data()
    {
        const auto end = [](Lesson& lesson) { lesson.end(); };
        const auto whenHere = [end](Lesson& lesson) {
            connect(lesson.roster(), &Roster::rowsInserted, &lesson, [&lesson, end] { end(lesson); });
        };
        const auto inSlot = [end](Lesson& lesson) {
            lesson.start();
            connect(lesson.ask(Question::usual(PollType::TEXT)), &Poll::stateChanged, &lesson,
                    [&] { lesson.takeUp(lesson.objectName()); });
            end(lesson);
        };
        const auto none = [](Lesson&) {};
        rows<int, Work, Work>({
            // When the poll began, in seconds after the session; before it is taken up; afterwards
            {"that ends", 10, none, end},
            {"that ends in a slot", 10, whenHere, none},
            {"whose clock went ahead", 100000, none, end},
            {"by a slot of one that ends", 10, inSlot, end},
        });
    }
    // Who came 20 s after the session has left with the last event, 30 s after it.
    void takesUpWhatAFileSays()
    {
        const auto [began, before, after] = row<int, Work, Work>();
        const QTemporaryDir folder;
        const QDateTime at = QDateTime::currentDateTime().addSecs(-3600);
        const auto line = [&](const QByteArray& event, int seconds) {
            return "{\"event\":" + event +
                   ",\"at\":" + QByteArray::number(at.addSecs(seconds).toMSecsSinceEpoch()) + "}\n";
        };
        QFile file(folder.filePath("journal"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(line(R"("session","code":"1","token":"T")", 0) +
                   line(R"("poll","id":"P","number":1,"question":{"kind":"text"})", began) +
                   line(R"("joined","device":"D1","name":"Ann")", 20) +
                   line(R"("locked","locked":true)", 20) +
                   line(R"("answer","id":"P","device":"D1","answer":"leaf")", 30));
        file.close();
        Visit visit;
        visit.service.expect(PROBE, Answer::json(FINE).held());
        logIn(visit.lesson);
        QVERIFY(waitFor([&] { return visit.service.isHolding(); }));
        visit.lesson.setObjectName(file.fileName());
        before(visit.lesson);
        visit.lesson.takeUp(file.fileName());
        const Poll* const poll = visit.lesson.poll();
        QCOMPARE(poll->answered(), 1);
        QVERIFY(poll->elapsed() >= 0);
        QCOMPARE(visit.lesson.isLocked(), poll->isRunning());
        after(visit.lesson);
        QVERIFY(!poll->isRunning());
        QCOMPARE(poll->elapsed(), qMax(0, 30 - began) * 1000);
        const QJsonArray stays = visit.lesson.report().value("learners").toArray().at(0)["here"].toArray();
        QCOMPARE(stays.at(0)["to"].toString(), at.addSecs(30).toString(Qt::ISODateWithMs));
        visit.service.expect(SUBMIT, Answer::json(Logins::SUCCESS));
        visit.service.release();
        QVERIFY(visit.reaches(Lesson::LoggedIn));
        visit.service.expect(Logins::USER, Answer::json(R"({"data":{"userLoginId":"teacher"}})"));
        visit.service.expect("/tavisto/session/create", Answer::json("{}", 500));
        visit.service.expect(PROBE, Answer::json(FINE));
        visit.lesson.start(); // another one
        QVERIFY(waitFor([&] { return visit.error.kind == LessonError::Refused; }));
        QVERIFY(visit.logOut());
    }

    void keepsTheJournalBefore_data()
    {
        rows<QString, QString>({
            {"in no folder", "nowhere/journal", ""},
            {"that is a folder", "", ""},
            {"that can be kept nowhere", "journal", "journal~/file"},
        });
    }
    void keepsTheJournalBefore()
    {
        const auto [name, inTheWay] = row<QString, QString>();
        const QTemporaryDir folder;
        const QString journal = name.isEmpty() ? folder.path() : folder.filePath(name);
        QFile file(journal);
        const bool isThere = file.open(QIODevice::WriteOnly) && file.write("lesson") == 6 && file.flush();
        QVERIFY(inTheWay.isEmpty() || (isThere && QDir(folder.path()).mkpath(inTheWay)));
        Visit at;
        at.service.expect(PROBE, Answer::never());
        logIn(at.lesson);
        at.lesson.setJournal(journal);
        at.lesson.start();
        QVERIFY(waitFor([&] { return at.error.kind == LessonError::BadInput; }));
        QVERIFY(QFileInfo::exists(folder.path()));
        QCOMPARE(QFileInfo(journal).isFile() ? QFileInfo(journal).size() : 0, isThere ? 6 : 0);
        at.service.expectNoMore();
    }

    void losesWhatItOpens_data()
    {
        const auto starts = [](Class& at, const QString&) { at.begin(at.bus.url()); };
        const auto returns = [](Class& at, const QString&) {
            QVERIFY(at.start());
            at.lesson->setReconnects(false);
            at.bus.dropConnections();
            QVERIFY(waitFor([&] { return at.lesson->state() == Lesson::Reconnecting; }));
            at.expectUsers();
            at.lesson->retryNow();
        };
        const auto takesUp = [](Class& at, const QString& journal) {
            QFile file(journal);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("{\"event\":\"session\",\"code\":\"123456\",\"token\":\"T\"}\n");
            at.service.expect(PROBE, Answer::json(FINE));
            at.service.expect(SUBMIT, Answer::json(Logins::SUCCESS));
            at.expectUsers();
            at.expectChannel(at.bus.url());
            file.close();
            logIn(*at.lesson);
            at.lesson->takeUp(journal);
        };
        rows<Opens, int, bool, bool>({
            // afterwards: the state; whether the session is stopped at once, or at the end
            {"when it starts", starts, Lesson::LoggedIn, true, false},
            {"when it returns", returns, Lesson::Reconnecting, false, true},
            {"when it is taken up", takesUp, Lesson::LoggedIn, false, false},
        });
    }
    // The channel goes while the service is asked for the learners.
    void losesWhatItOpens()
    {
        const auto [opens, state, isStopped, isStoppedLater] = row<Opens, int, bool, bool>();
        const QTemporaryDir folder;
        Class class_;
        LessonError error;
        connect(class_.lesson.get(), &Lesson::failed, this, [&](const LessonError& one) { error = one; });
        opens(class_, folder.filePath("journal"));
        class_.service.expect(USERS, Answer::json(FINE).held());
        QVERIFY(waitFor([&] { return class_.service.isHolding(); }));
        std::atomic_bool isLost = false;
        class_.lesson->onChannel([&](PresenterCollab* collab) {
            connect(collab, &PresenterCollab::connectionClosed, collab, [&] { isLost = true; });
            collab->connector()->close();
        });
        QVERIFY(waitFor([&] { return bool(isLost); }));
        if (isStopped)
            class_.service.expect("/tavisto/session/stop", Answer::json(FINE));
        class_.service.release();
        QVERIFY(waitFor([&] { return error.kind != LessonError::NoError; }));
        QCOMPARE(int(error.kind), int(LessonError::NoChannel));
        QCOMPARE(int(class_.lesson->state()), state);
        QVERIFY(class_.service.isUsedUp());
        if (isStoppedLater)
            class_.service.expect("/tavisto/session/stop", Answer::json(FINE));
        class_.service.expect(Logins::LOGOUT, Answer::json(FINE));
        class_.lesson->logOut();
        QVERIFY(waitFor([&] { return class_.lesson->state() == Lesson::LoggedOut; }));
    }

    // By a slot that hears that the lesson is live, or is again.
    void asksOnce()
    {
        Class class_;
        connect(class_.lesson.get(), &Lesson::stateChanged, this, [&] {
            if (class_.lesson->state() == Lesson::Live)
                class_.lesson->ask(Question::usual(PollType::TEXT));
        });
        QVERIFY(class_.start());
        QCOMPARE(class_.published(), QStringList("questionStart T"));
        QVERIFY(class_.loseAndReturn([](Lesson& lesson) { lesson.setLocked(true); }));
        QCOMPARE(class_.published(), (QStringList{"questionStart T", "dialogShow T", "questionStart T"}));
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
        class_.bus.dropConnections();
        QVERIFY(waitFor([&] { return class_.lesson->state() == Lesson::Reconnecting; }));
        class_.expectUsers();
        class_.expectUsers();
        class_.lesson->setReconnects(true);
        QVERIFY(waitFor([&] { return class_.lesson->state() == Lesson::Live; }));
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
        const auto refuses = [](const QByteArray& text) { return Answer::json(text, 403); };
        const Reply nobody{USERS, refuses(Logins::REFUSED)};
        const Reply known{Logins::USER, Answer::json(R"({"data":{"userLoginId":"teacher"}})")};
        const Reply unknown{Logins::USER, Answer::json("{}")};
        const Reply login{SUBMIT, Answer::json(Logins::SUCCESS)};
        const Reply users{USERS, Answer::json(R"({"success":true,"data":{"users":[]}})")};
        const Reply lost{USERS, refuses(R"({"errorMsgKeys":["session.error"]})")};
        rows<QList<Reply>, int, int>({
            {"no server", {{USERS, refuses("<html>")}}, LessonError::NotTheService, Lesson::Reconnecting},
            {"no session", {lost}, LessonError::SessionGone, Lesson::LoggedIn},
            {"logged in", {nobody, known, users, users}, LessonError::NoError, Lesson::Live},
            {"logs in", {nobody, unknown, login, users, users}, LessonError::NoError, Lesson::Live},
            {"logged out",
             {nobody, unknown, {SUBMIT, refuses(Logins::REFUSED)}},
             LessonError::LoggedOutByService,
             Lesson::LoggedOut},
        });
    }
    void triesToComeBack()
    {
        const auto [replies, kind, state] = row<QList<Reply>, int, int>();
        Class class_;
        class_.lesson->setReconnects(false);
        QVERIFY(class_.start());
        class_.bus.dropConnections();
        QVERIFY(waitFor([&] { return class_.lesson->state() == Lesson::Reconnecting; }));
        LessonError error;
        connect(class_.lesson.get(), &Lesson::failed, this, [&](const LessonError& one) { error = one; });
        for (const auto& [path, answer] : replies)
            class_.service.expect(path, answer);
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
            {"probe", [](Visit& at) { at.service.expect(PROBE, Answer::never()); }},
            {"login", [](Visit& at) { at.expectLogin(Answer::stalled(Logins::SUCCESS)); }},
        });
    }
    void waitsAreCancelled()
    {
        const auto [script] = row<Script>();
        Visit at;
        script(at);
        logIn(at.lesson);
        at.lesson.start();
        QVERIFY(waitFor([&] { return at.service.isUsedUp(); }));
        at.lesson.cancel();
        QCOMPARE(at.lesson.state(), Lesson::LoggedOut);
        QCOMPARE(int(at.error.kind), int(LessonError::Cancelled));
        QVERIFY(waitFor([&] { return at.service.abandoned() == 1; }));
        // The next login does not wait for the one that was given up.
        at.expectLogin();
        logIn(at.lesson);
        QVERIFY(at.reaches(Lesson::LoggedIn, 5000));
        at.service.expect(Logins::LOGOUT, Answer::never());
        at.lesson.logOut();
        at.lesson.cancel();
        QCOMPARE(at.lesson.state(), Lesson::LoggedOut);
        at.service.expectNoMore();
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
