// What a lesson brings to its class, and what it makes of what comes back.

#include "support/LessonClass.h"
#include "support/Rows.h"

#include <CalyxClient/RosterFilter>

#include <QElapsedTimer>
#include <QHostAddress>
#include <QMetaMethod>
#include <QTest>

using namespace Calyx;
using namespace LessonClass;

using Play = std::function<void(Class&)>;
Q_DECLARE_METATYPE(Play)

namespace {

constexpr char UPLOAD[] = "/tavisto/resource/uploadResourceFile";
constexpr char STORED[] = R"({"data":{"resourceId":"r","resourcePath":"/files/r"}})";

constexpr char UNREGISTERED[] =
    R"({"success":true,"infoMsgKeys":["registration.success"],"data":{"mail":"a@school.example"}})";

Question marked()
{
    Question question = Question::usual(PollType::MULTIPLE);
    question.right = QStringList{QStringLiteral("B")};
    return question;
}

AssessmentPlan plan()
{
    AssessmentPlan plan;
    plan.questions = {marked(), Question::usual(PollType::TEXT)};
    return plan;
}

bool joins(Class& class_, const QString& device)
{
    class_.join(device);
    return waitFor([&] { return class_.lesson->roster()->isPresent(device); });
}

// Too large to travel in the message.
QByteArray large(int bytes = 70000)
{
    return QByteArray(bytes, 'p');
}

bool showsLarge(Class& class_, const QByteArray& png, const Answer& answer)
{
    bool isShown = false;
    QObject::connect(class_.lesson.get(), &Lesson::cardShown, [&] { isShown = true; });
    class_.service.expect(UPLOAD, answer);
    class_.lesson->deck()->add(QStringLiteral("card"), png);
    class_.lesson->showCard();
    const bool isBusy = class_.lesson->isBusy();
    return waitFor([&] { return isShown; }) && isBusy && !class_.lesson->isBusy();
}

} // namespace

class tst_LessonClass : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void brings_data()
    {
        rows<Play, QStringList>({
            // Twice, by the same id, where the device has had it already: that nobody is left out counts
            // more.
            {"question to the late",
             [](Class& at) {
                 at.lesson->ask(marked());
                 QVERIFY(joins(at, "D3"));
             },
             {"questionStart T", "questionStart T.user.D3"}},
            {"countdown",
             [](Class& at) {
                 at.lesson->ask(marked());
                 at.lesson->stop(60);
                 QVERIFY(joins(at, "D3"));
                 at.lesson->stop();
             },
             {"questionStart T", "countdown T", "questionStart T.user.D3", "countdown T.user.D3",
              "pollStop T"}},
            {"pause, lock and card to the late",
             [](Class& at) {
                 at.lesson->ask(marked());
                 at.lesson->pause();
                 at.lesson->showPicture("png");
                 at.lesson->setLocked(true);
                 QVERIFY(joins(at, "D3"));
             },
             {"questionStart T", "pause T", "showCard T.learner", "dialogShow T", "questionStart T.user.D3",
              "pause T.user.D3", "showCard T.user.D3", "dialogShow T.user.D3"}},
            {"results",
             [](Class& at) { at.lesson->showResults(at.lesson->ask(PollType::TEXT, {}, 0)); },
             {"questionStart T", "dialogShow T"}},
            {"marked results",
             [](Class& at) { at.lesson->showResults(at.lesson->ask(marked())); },
             {"questionStart T", "dialogShow T.user.D1", "dialogShow T.user.D2"}},
            {"assessment to the late",
             [](Class& at) {
                 at.lesson->startAssessment(plan());
                 QVERIFY(joins(at, "D3"));
                 QVERIFY(at.lesson->assessment()->takesPart("D3"));
             },
             {"assessmentStart T", "assessmentStart T.user.D3"}},
            {"assessment of some",
             [](Class& at) {
                 at.lesson->startAssessment(plan(), {"D1"});
                 at.lesson->admit("D2");
                 QVERIFY(joins(at, "D3"));
                 QCOMPARE(at.lesson->assessment()->participants(), (QStringList{"D1", "D2"}));
             },
             {"assessmentStart T.user.D1", "assessmentStart T.user.D2"}},
            {"card that is stored",
             [](Class& at) { QVERIFY(showsLarge(at, large(), Answer::json(STORED))); },
             {"showCard T.learner"}},
            {"card that cannot be stored",
             [](Class& at) { QVERIFY(showsLarge(at, large(), Answer::json("{}", 500))); },
             {"showCard T.learner"}},
            {"heavy card that cannot be stored",
             [](Class& at) { QVERIFY(showsLarge(at, large(400000), Answer::json("{}", 500))); },
             {"heavy T.learner", "showCard T.learner"}},
            {"question with a picture that is stored",
             [](Class& at) {
                 at.service.expect(UPLOAD, Answer::json(STORED));
                 Question question = marked();
                 question.picture = large();
                 at.lesson->ask(question);
                 at.lesson->pause();
                 QVERIFY(waitFor([&] { return !at.lesson->isBusy(); }));
             },
             {"questionStart T", "pause T"}},
        });
    }

    void brings()
    {
        const auto [play, published] = row<Play, QStringList>();
        Class class_;
        QVERIFY(class_.start());
        class_.published();
        play(class_);
        class_.lesson->setName({}, {}); // told to the remote control
        QStringList types = class_.published();
        if (class_.lesson->deck()->rowCount() > 0) // that was told as well
            types += class_.published();
        QCOMPARE(types, published);
        QVERIFY(class_.end());
    }

    // In the same second: no ids repeat. Texts stand in each.
    void asksAnyKindInWords()
    {
        Class class_;
        QVERIFY(class_.start());
        class_.published();
        QStringList ids;
        for (int type = PollType::TRUE_FALSE; type <= PollType::MATH_FORMULA; ++type) {
            Question question = Question::usual(PollType::POLL_TYPE(type));
            question.text = QStringLiteral("Why \"%1\"?");
            for (const QString& id : question.optionIds())
                question.options.append(QStringLiteral("option ") + id);
            ids.append(class_.lesson->ask(question)->id());
        }
        class_.lesson->setName({}, {});
        const Class::Published published = class_.publishedWithData();
        QCOMPARE(published.data.size(), ids.size());
        for (int i = 0; i < ids.size(); ++i) {
            const QJsonObject& data = published.data.at(i);
            QCOMPARE(published.types.at(i), QStringLiteral("questionStart T"));
            QCOMPARE(data.value("id").toString(), ids.at(i));
            QCOMPARE(data.value("instructions").toString(), QStringLiteral("Why \"%1\"?"));
            const Question question = class_.lesson->polls().at(i)->question();
            const QJsonArray options = data.value("activityOptions").toArray();
            QCOMPARE(options.size(), question.options.size());
            for (int k = 0; k < options.size(); ++k)
                QCOMPARE(options.at(k).toObject().value("optionText").toString(), question.options.at(k));
        }
        QCOMPARE(ids.removeDuplicates(), 0);
        QVERIFY(class_.end());
    }

    void asksInTheWordsOfAScheme()
    {
        using Row = std::pair<OrdinalType::ORDINAL_TYPE, QStringList>;
        Class class_;
        QVERIFY(class_.start());
        class_.published();
        for (const auto& [ordinal, sent] : {Row{OrdinalType::YES_NO_OTHER, {"YES", "NO", "DONTKNOW"}},
                                            Row{OrdinalType::YES_NO_MAYBE, {"Yes", "No", "Maybe"}},
                                            Row{OrdinalType::ALPHA_UPPER, {"", "", ""}}}) {
            class_.lesson->ask(PollType::YES_NO_OTHER, ordinal, 3);
            class_.lesson->setName({}, {});
            QStringList texts;
            const QJsonArray options =
                class_.publishedWithData().data.value(0).value("activityOptions").toArray();
            for (const QJsonValue& option : options)
                texts.append(option.toObject().value("optionText").toString());
            QCOMPARE(texts, sent);
        }
        QVERIFY(class_.end());
    }

    void tellsHowAPollCameOut()
    {
        Class class_;
        QVERIFY(class_.start());
        class_.published();
        Poll* const poll = class_.lesson->ask(marked());
        QVERIFY(poll->results()->mostFrequent().title().isEmpty());
        class_.answer("D1", poll->id(), "B");
        class_.answer("D2", poll->id(), "A");
        QVERIFY(waitFor([&] { return poll->answered() == 2; }));
        class_.lesson->showResults();
        class_.lesson->setName({}, {});
        QCOMPARE(poll->rightAnswers(), 1);
        QCOMPARE(poll->results()->mostFrequent().label, QStringLiteral("A")); // the first of two
        const QList<QJsonObject> data = class_.publishedWithData().data.mid(1);
        QCOMPARE(data.size(), 2); // first those who are wrong
        QCOMPARE(data.at(0).value("text").toString(),
                 QStringLiteral("Your answer is not right.\nRight is: B.\nA: 1, B: 1, C: 0, D: 0"));
        QCOMPARE(data.at(1).value("text").toString(),
                 QStringLiteral("Your answer is right.\nA: 1, B: 1, C: 0, D: 0"));
        const QJsonObject results = data.at(1).value("results").toObject();
        QCOMPARE(results.value("text").toString(), QStringLiteral("Your answer is right."));
        const QJsonObject bar{{"title", "B"}, {"count", 1}, {"isCorrect", true}};
        QCOMPARE(results.value("bars").toArray().at(1).toObject(), bar);
        QVERIFY(class_.end());
    }

    void stopsByItself()
    {
        Class class_;
        QVERIFY(class_.start());
        Poll* const poll = class_.lesson->ask(marked());
        QVERIFY(!poll->stopsAt().isValid());
        class_.lesson->stop(60);
        QVERIFY(poll->isRunning() && poll->stopsAt() > poll->startedAt().addSecs(59));
        class_.lesson->stop(1);
        QVERIFY(poll->stopsAt() < poll->startedAt().addSecs(59));
        QVERIFY(waitFor([&] { return !poll->isRunning(); }));
        QVERIFY(!poll->stopsAt().isValid() && poll->elapsed() >= 1000);
        QVERIFY(class_.end());
    }

    // At "all addresses" nobody but this machine finds it.
    void learnersGetAnAddressOfTheirs()
    {
        Class class_;
        class_.lesson->setServer(QUrl(QStringLiteral("http://0.0.0.0:%1").arg(class_.service.serverPort())));
        QVERIFY(class_.start());
        const QUrl address = class_.lesson->joinAddress();
        QCOMPARE(address.port(), int(class_.service.serverPort()));
        const QHostAddress host(address.host());
        QVERIFY(!host.isNull() && host != QHostAddress(QHostAddress::AnyIPv4));
        QVERIFY(class_.end());
    }

    void listsTheClassByName()
    {
        Class class_;
        QVERIFY(class_.start());
        RosterFilter list(class_.lesson->roster());
        const auto names = [&] {
            QStringList all;
            for (int row = 0; row < list.rowCount(); ++row)
                all.append(list.index(row, 0).data().toString());
            return all.join(' ');
        };
        class_.hear("D0", "join", {{"userName", "aaron"}});
        QVERIFY(waitFor([&] { return list.rowCount() == 3; }));
        QCOMPARE(names(), QStringLiteral("aaron Ann Bea"));
        list.setOnlyMissing(true);
        class_.lesson->ask(marked());
        QCOMPARE(names(), QStringLiteral("aaron Ann Bea"));
        class_.answer("D1", class_.lesson->poll()->id(), "A");
        QVERIFY(waitFor([&] { return names() == QStringLiteral("aaron Bea"); }));
        list.setOnlyMissing(false);
        QCOMPARE(list.index(1, 0).data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
        QVERIFY(class_.end());
        QCOMPARE(names(), QString());
    }

    void counts_data()
    {
        rows<Play, int, int, int>({
            // played before the poll is stopped; then answered, present, late
            {"an answer", [](Class& at) { at.answer("D1", at.lesson->poll()->id(), "A"); }, 1, 2, 0},
            {"the same again",
             [](Class& at) {
                 at.answer("D1", at.lesson->poll()->id(), "A");
                 at.answer("D1", at.lesson->poll()->id(), "A");
             },
             1, 2, 0},
            {"another one",
             [](Class& at) {
                 at.answer("D1", at.lesson->poll()->id(), "A");
                 at.answer("D1", at.lesson->poll()->id(), "B");
             },
             1, 2, 0},
            {"a late one",
             [](Class& at) {
                 at.lesson->stop();
                 at.answer("D1", at.lesson->poll()->id(), "A");
             },
             1, 2, 1},
            {"one for a poll before",
             [](Class& at) {
                 const QString id = at.lesson->poll()->id();
                 at.lesson->ask(marked());
                 at.answer("D1", id, "A");
             },
             1, 2, 1},
            // Whoever answers is here: his joining may have been missed.
            {"from nobody who has joined", [](Class& at) { at.answer("D3", at.lesson->poll()->id(), "A"); },
             1, 3, 0},
            {"from nobody, to nothing that was asked", [](Class& at) { at.answer("D3", "?", "A"); }, 0, 2, 0},
        });
    }

    void counts()
    {
        const auto [play, answered, present, late] = row<Play, int, int, int>();
        Class class_;
        QVERIFY(class_.start());
        Poll* const poll = class_.lesson->ask(marked());
        play(class_);
        QVERIFY(joins(class_, "D9")); // all before it has been heard
        QCOMPARE(poll->answered(), answered);
        QCOMPARE(class_.lesson->roster()->presentCount(), present + 1);
        int isLate = 0;
        int rows = 0;
        for (const PollAnswer& answer : poll->answers())
            isLate += int(answer.isLate);
        for (const PollResults::Row& row : poll->results()->rows())
            rows += row.count;
        QCOMPARE(isLate, late);
        QCOMPARE(rows, answered);
        QVERIFY(class_.end());
    }

    void obeysTheRemoteControl_data()
    {
        const auto hasCards = [](Lesson& lesson) {
            lesson.deck()->add("one", QByteArray("png"));
            lesson.deck()->add("two", QByteArray("png"));
        };
        const auto asks = [](Lesson& lesson) { lesson.ask(marked()); };
        const auto none = [](Lesson&) {};
        const auto isPaused = [](Lesson& lesson) { QVERIFY(lesson.poll()->isPaused()); };
        const auto isLocked = [](Lesson& lesson) { QVERIFY(lesson.isLocked()); };
        const auto at = [](int card) {
            return Work([card](Lesson& lesson) { QCOMPARE(lesson.deck()->current(), card); });
        };
        rows<QString, int, bool, Work, Work>({
            {"is there", "presenterActive", Lesson::AskPresence, true, none, none},
            {"which lesson", "requestLessonInfo", Lesson::AskLesson, true, none, none},
            {"which card", "requestLesson", Lesson::AskCards, true, none, none},
            {"pause", "pause", Lesson::Pause, true, asks, isPaused},
            {"pause of nothing", "pause", Lesson::Pause, false, none, none},
            {"pause that the host has taken over", "pause", Lesson::Pause, false,
             [asks](Lesson& lesson) {
                 lesson.setObeys(Lesson::Pause, false);
                 asks(lesson);
             },
             [](Lesson& lesson) { QVERIFY(!lesson.poll()->isPaused()); }},
            {"resume", "resume", Lesson::Resume, true, asks, none},
            {"lock", "lockAll", Lesson::Lock, true, none, isLocked},
            {"unlock", "unlockAll", Lesson::Unlock, true, none, none},
            {"next", "nextCard", Lesson::NextCard, true, hasCards, at(2)},
            {"next without", "nextCard", Lesson::NextCard, false, none, at(0)},
            {"previous at the first", "previousCard", Lesson::PreviousCard, false, hasCards, at(1)},
            {"show", "pushCurrentCard", Lesson::ShowCard, true, hasCards, none},
            {"show without", "pushCurrentCard", Lesson::ShowCard, false, none, none},
            {"add", "addImageCard", Lesson::AddCard, true, none, at(1)},
        });
    }

    void obeysTheRemoteControl()
    {
        const auto [type, command, isObeyed, before, after] = row<QString, int, bool, Work, Work>();
        Class class_;
        QVERIFY(class_.start());
        before(*class_.lesson);
        int heard = -1;
        bool wasObeyed = false;
        connect(class_.lesson.get(), &Lesson::remoteCommand, this,
                [&](Lesson::RemoteCommand one, bool obeyed) {
                    heard = one;
                    wasObeyed = obeyed;
                });
        class_.expectRemote();
        class_.hear("R", type, {{"name", "card"}, {"url", "https://school.example/card.png"}});
        QVERIFY(waitFor([&] { return heard >= 0; }));
        QCOMPARE(heard, command);
        QCOMPARE(wasObeyed, isObeyed);
        QVERIFY(class_.lesson->isRemotePresent());
        QVERIFY(!Lesson::commandName(Lesson::RemoteCommand(command)).isEmpty());
        after(*class_.lesson);
        QVERIFY(class_.end());
    }

    void obeysNoOtherDevice()
    {
        Class class_;
        QVERIFY(class_.start());
        class_.expectUsers();
        class_.hear("D1", "lockAll", {});
        QVERIFY(waitFor([&] { return class_.service.isUsedUp(); }));
        bool isLookedInto = false;
        class_.lesson->onClient([&](PresenterClient*) { // in turn with what looks who it was
            QMetaObject::invokeMethod(class_.lesson.get(), [&] { isLookedInto = true; });
        });
        QVERIFY(waitFor([&] { return isLookedInto; }));
        QVERIFY(!class_.lesson->isRemotePresent() && !class_.lesson->isLocked());
        QVERIFY(class_.end());
    }

    // The bus, or the device itself, says who is gone, and no learner says it of another.
    void nobodyIsReportedByALearner()
    {
        Class class_;
        QVERIFY(class_.start());
        const Roster* roster = class_.lesson->roster();
        class_.expectRemote();
        class_.hear("R", "lockAll", {});
        QVERIFY(waitFor([&] { return class_.lesson->isRemotePresent(); }));
        class_.leave("D1", "user", "D2");
        class_.leave("R", "controller", "D2");
        class_.leave("D2", "user", "D2");
        QVERIFY(waitFor([&] { return !roster->isPresent("D2"); }));
        QVERIFY(roster->isPresent("D1") && class_.lesson->isRemotePresent());
        class_.leave("R", "controller", {});
        class_.leave("D1", "user", {});
        QVERIFY(waitFor([&] { return !roster->isPresent("D1") && !class_.lesson->isRemotePresent(); }));
        QVERIFY(class_.end());
    }

    void diesInEverySlot_data()
    {
        const Play commands = [](Class& at) {
            at.expectRemote();
            at.hear("R", "nextCard", {});
        };
        rows<QByteArray, Play>({
            // The other signals are played in a whole lesson, at the local classroom.
            {"remote control comes", "remotePresentChanged()", commands},
            {"it commands", "remoteCommand(Calyx::Lesson::RemoteCommand,bool,QVariant)", commands},
            {"a message that nobody knows", "messageReceived(QString,QString,QVariant)",
             [](Class& at) { at.hear("D1", "hello", {}); }},
            {"somebody has to register", "registrationNeeded(QString)",
             [](Class& at) {
                 at.service.expect("/tavisto/session/stop", Answer::json(FINE));
                 at.service.expect(Logins::LOGOUT, Answer::json(FINE));
                 at.service.expect(PROBE, Answer::json(FINE));
                 at.service.expect(Logins::CALLBACK, Answer::json(UNREGISTERED));
                 at.service.expect(PROBE, Answer::json(FINE)); // no key says what was wrong
                 at.lesson->logInWithOAuth("google", "code");
             }},
        });
    }

    void diesInEverySlot()
    {
        const auto [signal, play] = row<QByteArray, Play>();
        Class class_;
        m_class = &class_;
        QVERIFY(class_.start());
        const QMetaObject& of = Lesson::staticMetaObject;
        QVERIFY(connect(class_.lesson.get(), of.method(of.indexOfSignal(signal.constData())), this,
                        metaObject()->method(metaObject()->indexOfSlot("die()"))));
        play(class_);
        QVERIFY(waitFor([&] { return !class_.lesson; }));
        class_.service.expectNoMore();
    }

    // Each poll that ends asks for the next, in the middle of the host's own ask().
    void asksInSlots()
    {
        Class class_;
        QVERIFY(class_.start());
        class_.published();
        Lesson& lesson = *class_.lesson;
        const auto asksNext = [&] {
            if (lesson.polls().size() < 4)
                lesson.ask(marked());
        };
        connect(lesson.ask(marked()), &Poll::stateChanged, this, asksNext);
        Poll* const second = lesson.ask(marked());
        QCOMPARE(lesson.polls().size(), 3);
        QVERIFY(!second->isRunning());
        QCOMPARE(lesson.poll(), lesson.polls().last());
        QVERIFY(lesson.poll()->isRunning());
        connect(lesson.poll(), &Poll::stateChanged, this, asksNext);
        lesson.end(); // there, nothing more can be asked
        QCOMPARE(lesson.polls().size(), 3);
        QVERIFY(!lesson.poll()->isRunning());
        class_.service.expect("/tavisto/session/stop", Answer::json(FINE));
        QVERIFY(waitFor([&] { return lesson.state() == Lesson::LoggedIn; }));
        class_.service.expect(Logins::LOGOUT, Answer::json(FINE));
        lesson.logOut();
        QVERIFY(waitFor([&] { return lesson.state() == Lesson::LoggedOut; }));
    }

    // What was answered in the same turn can be gone once the first of it has been told.
    void clearsInSlots()
    {
        Class class_;
        QVERIFY(class_.start());
        Lesson& lesson = *class_.lesson;
        const QStringList ids = {lesson.ask(marked())->id(), lesson.ask(marked())->id()};
        lesson.stop();
        connect(&lesson, &Lesson::answersChanged, this, [&] {
            lesson.clearPolls();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        });
        for (const QString& id : ids)
            class_.answer("D1", id, "A");
        QVERIFY(waitFor([&] { return lesson.polls().isEmpty(); }));
        QVERIFY(class_.end());
    }

    void endsInSlots_data()
    {
        rows<Play>({
            {"while the list of learners comes",
             [](Class& at) {
                 connect(at.lesson->roster(), &Roster::joined, [&at] { at.lesson->end(); });
                 at.begin(at.bus.url());
                 at.expectUsers();
             }},
            {"while a learner is taken into an assessment",
             [](Class& at) {
                 QVERIFY(at.start());
                 const Assessment* const assessment = at.lesson->startAssessment(plan());
                 connect(assessment, &Assessment::rowsInserted, [&at] {
                     at.lesson->end();
                     at.lesson->start(); // forgets the assessment
                     at.lesson->end();
                 });
                 at.hear("D3", "questionGet",
                         {{"questionNumber", 1}, {"assessmentToken", assessment->token()}});
             }},
            {"while it is given up",
             [](Class& at) {
                 QVERIFY(at.start());
                 at.lesson->setReconnects(false);
                 at.bus.dropConnections();
                 QVERIFY(waitFor([&] { return at.lesson->state() == Lesson::Reconnecting; }));
                 connect(at.lesson->roster(), &Roster::left, [&at](const QString& device) {
                     if (device == "D1")
                         at.lesson->end();
                 });
                 at.lesson->cancel();
                 QCOMPARE(at.lesson->state(), Lesson::Ending);
             }},
        });
    }

    void endsInSlots()
    {
        const auto [play] = row<Play>();
        Class class_;
        play(class_);
        class_.service.expect("/tavisto/session/stop", Answer::json(FINE));
        QVERIFY(waitFor([&] { return class_.service.isUsedUp(); }));
        QVERIFY(waitFor([&] { return class_.lesson->state() == Lesson::LoggedIn; }));
        QCOMPARE(class_.lesson->roster()->presentCount(), 0);
        class_.service.expect(Logins::LOGOUT, Answer::json(FINE));
        class_.lesson->logOut();
        QVERIFY(waitFor([&] { return class_.lesson->state() == Lesson::LoggedOut; }));
    }

    void uploadsAreCancelled()
    {
        Class class_;
        QVERIFY(class_.start());
        class_.service.expect(UPLOAD, Answer::never());
        LessonError error;
        connect(class_.lesson.get(), &Lesson::failed, this, [&](const LessonError& one) { error = one; });
        bool isShown = false;
        connect(class_.lesson.get(), &Lesson::cardShown, this, [&] { isShown = true; });
        class_.lesson->showPicture(large());
        QVERIFY(waitFor([&] { return class_.service.isUsedUp(); }));
        QElapsedTimer clock;
        clock.start();
        class_.lesson->cancel();
        QVERIFY(!class_.lesson->isBusy() && clock.elapsed() < 100);
        QCOMPARE(error.kind, LessonError::Cancelled);
        QVERIFY(waitFor([&] { return class_.service.abandoned() == 1; }));
        QCOMPARE(class_.lesson->state(), Lesson::Live);
        QVERIFY(class_.end());
        QVERIFY(!isShown);
    }

public Q_SLOTS:
    void die() { m_class->lesson.reset(); }

private:
    Class* m_class = nullptr;
};

QTEST_GUILESS_MAIN(tst_LessonClass)

#include "tst_LessonClass.moc"
