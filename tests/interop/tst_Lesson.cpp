#include "interop/support/Host.h"
#include "interop/support/Learners.h"
#include "interop/support/Main.h"
#include "interop/support/Peers.h"

#include <CalyxClient/Lesson>
#include <CalyxClient/PresenterCollab>
#include <CalyxClient/SockJSConnector>

#include <QElapsedTimer>
#include <QMetaMethod>
#include <QTemporaryDir>

#include <functional>
#include <memory>
#include <vector>

using namespace Calyx;

namespace {

Question marked()
{
    Question question = Question::usual(PollType::MULTIPLE);
    question.text = QStringLiteral("Which gas does a \"leaf\" take in?");
    question.options = QStringList{QStringLiteral("Oxygen"), QStringLiteral("Carbon dioxide")};
    question.right = QStringList{QStringLiteral("B")};
    return question;
}

} // namespace

/// The lesson layer against the local classroom. Lost channels are in tst_ComingBack.
class TestLesson : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_classroom = std::make_unique<Peer>(Peers::classroom());
        m_lesson = std::make_unique<Lesson>(m_classroom->url());
        connect(m_lesson.get(), &Lesson::failed, this, [this](const LessonError& error) { m_error = error; });
        m_error = LessonError();
    }

    void cleanup()
    {
        m_lesson.reset();
        m_classroom.reset();
    }

    void teaches_data() { combinations({Transport::all}); }
    // All is asked for at once, and done in order.
    void teaches()
    {
        const auto [transport] = row<QString>();
        QList<Lesson::State> states;
        connect(m_lesson.get(), &Lesson::stateChanged, this, [&] { states.append(m_lesson->state()); });
        m_lesson->setTransports({transport});
        goLive();
        Poll* const early = m_lesson->ask(PollType::WORD_SEED, OrdinalType::GENERIC, 0);
        QVERIFY(early);
        QVERIFY(waitForState(Lesson::Live));
        QCOMPARE(states,
                 (QList<Lesson::State>{Lesson::LoggingIn, Lesson::LoggedIn, Lesson::Starting, Lesson::Live}));
        // Who comes late gets what the class has in front of it.
        const Learners learners(m_classroom->url(), m_lesson->joinCode(), 5);
        QVERIFY(waitFor([&] { return early->answered() == 5; }));
        QCOMPARE(m_lesson->roster()->presentCount(), 5);
        Poll* const poll = m_lesson->ask(marked());
        QVERIFY(!early->isRunning());
        QVERIFY(waitFor([&] { return poll->answered() == 5; }));
        QVERIFY(poll->id() != early->id());
        QCOMPARE(poll->results()->rowCount(), 2);
        QCOMPARE(poll->results()->rows().at(1).isCorrect, true);
        QCOMPARE(poll->results()->rows().at(0).count + poll->results()->rows().at(1).count, 5);
        m_lesson->stop();
        QVERIFY(poll->missing().isEmpty());
        AssessmentPlan plan;
        plan.title = QStringLiteral("Leaves");
        plan.questions = {marked(), Question::usual(PollType::TEXT), Question::usual(PollType::NUMBER)};
        Assessment* const assessment = m_lesson->startAssessment(plan);
        QVERIFY(waitFor([&] { return assessment->finished() == 5; }));
        m_lesson->stopAssessment();
        QCOMPARE(m_lesson->report().value("polls").toArray().size(), 2);
        QCOMPARE(m_lesson->toCsv().count("\r\n"), 1 + 5 + 5 + 15);
        m_lesson->logOut();
        QVERIFY(waitForState(Lesson::LoggedOut));
        QCOMPARE(m_error.kind, LessonError::NoError);
        QCOMPARE(m_lesson->roster()->presentCount(), 0);
        QCOMPARE(poll->answered(), 5);
        QCOMPARE(m_lesson->report().value("teacher").toString(), QStringLiteral("teacher")); // still
    }

    void aSlotStartsTheNextSession_data()
    {
        combinations({QStringList{"of one that ends", "of one that is given up"}});
    }
    void aSlotStartsTheNextSession()
    {
        const bool isLost = std::get<0>(row<QString>()) == QLatin1String("of one that is given up");
        const QTemporaryDir folder;
        const QString journal = folder.filePath("journal");
        m_lesson->setJournal(journal);
        goLive();
        QVERIFY(waitForState(Lesson::Live));
        const Learners learners(m_classroom->url(), m_lesson->joinCode(), 1);
        QVERIFY(waitFor([&] { return m_lesson->roster()->presentCount() == 1; }));
        const QString before = m_lesson->joinCode();
        connect(m_lesson->roster(), &Roster::left, this, [&] { m_lesson->start(); });
        if (isLost) {
            m_lesson->setReconnects(false);
            m_lesson->onChannel([](PresenterCollab* collab) { collab->connector()->close(); });
            QVERIFY(waitForState(Lesson::Reconnecting));
            m_lesson->cancel();
        } else {
            m_lesson->end();
        }
        QVERIFY(waitForState(Lesson::Live));
        QVERIFY(m_lesson->joinCode() != before);
        QCOMPARE(m_lesson->roster()->rowCount(), 0);
        QCOMPARE(Lesson::journalOf(journal).value("code").toString(), m_lesson->joinCode());
        QVERIFY(QFile::exists(journal + '~')); // the one before
        m_lesson->logIn(QStringLiteral("teacher"), QStringLiteral("chalk"));
        QVERIFY(Lesson::journalOf(journal).isEmpty()); // that session has ended
    }

    // The service has been started anew, and knows nobody.
    void saysThatTheSessionIsGone()
    {
        goLive();
        QVERIFY(waitForState(Lesson::Live));
        Poll* const poll = m_lesson->ask(marked());
        m_classroom->kill();
        QVERIFY(waitForState(Lesson::Reconnecting));
        QList<int> seconds;
        connect(m_lesson.get(), &Lesson::secondsToAttemptChanged, this,
                [&] { seconds.append(m_lesson->secondsToAttempt()); });
        QVERIFY(waitFor([&] { return seconds.mid(seconds.size() - 2) == QList<int>{2, 1}; }));
        QCOMPARE(m_lesson->attemptText(), QStringLiteral("The connection is lost. Trying again in 1 s."));
        QVERIFY(m_classroom->start());
        m_lesson->retryNow();
        QVERIFY(waitFor([&] { return m_error.kind == LessonError::SessionGone; }));
        QCOMPARE(m_lesson->state(), Lesson::LoggedIn);
        QVERIFY(!poll->isRunning());
        m_lesson->start();
        QVERIFY(waitForState(Lesson::Live));
    }

    void whoSpeaksNoTlsIsSomethingElse()
    {
        QUrl server = m_classroom->url();
        server.setScheme(QStringLiteral("https"));
        m_lesson->setServer(server);
        goLive();
        QVERIFY(waitFor([&] { return m_error.kind != LessonError::NoError; }));
        QCOMPARE(m_error.kind, LessonError::NotTheService);
    }

    void diesInEveryState_data()
    {
        columns<int>();
        for (int state = Lesson::LoggingIn; state <= Lesson::Ending; ++state)
            QTest::newRow(QMetaEnum::fromType<Lesson::State>().valueToKey(state)) << state;
    }
    // Deleted by its own slot.
    void diesInEveryState()
    {
        const int state = std::get<0>(row<int>());
        bool isGone = false;
        connect(m_lesson.get(), &Lesson::stateChanged, this, [&] {
            if (m_lesson->state() == state) {
                QElapsedTimer clock;
                clock.start();
                m_lesson.reset();
                isGone = true;
                QVERIFY(clock.elapsed() < 2000);
            } else if (m_lesson->state() == Lesson::Live && state == Lesson::Reconnecting) {
                m_lesson->onChannel([](PresenterCollab* collab) { collab->connector()->close(); });
            } else if (m_lesson->state() == Lesson::Live) {
                m_lesson->end();
            }
        });
        goLive();
        QVERIFY(waitFor([&] { return isGone; }));
    }

    void diesInEverySlot_data()
    {
        columns<QByteArray, QByteArray>();
        const auto add = [](const QByteArray& signature, const QByteArrayList& owners) {
            for (const QByteArray& owner : owners)
                QTest::addRow("%s::%s", owner.constData(), signature.constData()) << owner << signature;
        };
        for (const QMetaObject* of :
             {&Lesson::staticMetaObject, &Roster::staticMetaObject, &Deck::staticMetaObject,
              &Poll::staticMetaObject, &PollResults::staticMetaObject, &Assessment::staticMetaObject}) {
            for (int i = of->methodOffset(); i < of->methodCount(); ++i) {
                const QByteArray signature = of->method(i).methodSignature();
                const bool isPlayed =
                    !signature.startsWith("re") && !signature.startsWith("message"); // see the unit test
                if (of->method(i).methodType() == QMetaMethod::Signal && isPlayed)
                    add(signature, {of->className()});
            }
        }
        add("dataChanged(QModelIndex,QModelIndex,QVector<int>)",
            {"Calyx::Roster", "Calyx::PollResults", "Calyx::Assessment"});
        add("modelReset()", {"Calyx::Roster", "Calyx::Deck"});
        add("rowsInserted(QModelIndex,int,int)", {"Calyx::Roster", "Calyx::Deck", "Calyx::Assessment"});
    }
    // A whole lesson, step by step, until a slot deletes it.
    void diesInEverySlot()
    {
        m_lesson = std::make_unique<Lesson>();
        listen(m_lesson.get());
        listen(m_lesson->roster());
        listen(m_lesson->deck());
        std::unique_ptr<Learners> learners;
        struct Step
        {
            std::function<void()> take;
            std::function<bool()> isTaken;
        };
        const std::vector<Step> steps = {
            {[&] { m_lesson->setServer(m_classroom->url()); }, {}},
            {[&] { goLive(); }, [&] { return m_lesson->state() == Lesson::Live; }},
            {[&] { learners = std::make_unique<Learners>(m_classroom->url(), m_lesson->joinCode(), 2); },
             [&] { return m_lesson->roster()->presentCount() == 2; }},
            {[&] {
                 Poll* const poll = m_lesson->ask(marked());
                 listen(poll);
                 listen(poll ? poll->results() : nullptr);
             },
             [&] { return m_lesson->poll()->answered() == 2; }},
            {[&] { m_lesson->pause(); }, {}},
            {[&] { m_lesson->stop(); }, {}},
            {[&] { m_lesson->setLocked(true); }, {}},
            {[&] { m_lesson->addCard("card", QByteArray("png")); }, {}},
            {[&] { m_lesson->showCard(); }, {}},
            {[&] {
                 AssessmentPlan plan;
                 plan.questions = {marked()};
                 listen(m_lesson->startAssessment(plan));
             },
             [&] { return m_lesson->assessment()->finished() == 2; }},
            // Rows in the sheet.
            {[&] { learners = std::make_unique<Learners>(m_classroom->url(), m_lesson->joinCode(), 1); },
             [&] { return m_lesson->assessment()->rowCount() == 3; }},
            {[&] { m_lesson->pause(); }, {}},
            {[&] { m_lesson->save("/nowhere/at all"); }, {}},
            {[&] { m_lesson->onChannel([](PresenterCollab* collab) { collab->connector()->close(); }); },
             [&] { return m_lesson->nextAttempt().isValid(); }},
            {[&] { m_lesson->deck()->clear(); }, {}},
            {[&] { m_lesson->end(); }, [&] { return m_lesson->state() == Lesson::LoggedIn; }},
            {[&] { m_lesson->start(); }, {}},
        };
        for (const Step& step : steps) {
            if (m_lesson)
                step.take();
            QVERIFY(waitFor([&] { return !m_lesson || !step.isTaken || step.isTaken(); }));
        }
        QVERIFY(!m_lesson);
    }

public Q_SLOTS:
    void die() { m_lesson.reset(); }

private:
    // Connects the row's signal, if it is one of \p sender's.
    void listen(const QObject* sender)
    {
        const auto [owner, signal] = row<QByteArray, QByteArray>();
        if (!sender || owner != sender->metaObject()->className())
            return;
        const QMetaMethod method =
            sender->metaObject()->method(sender->metaObject()->indexOfSignal(signal.constData()));
        QVERIFY(connect(sender, method, this, metaObject()->method(metaObject()->indexOfSlot("die()"))));
    }

    bool waitForState(Lesson::State state)
    {
        return waitFor([&] { return m_lesson->state() == state; });
    }

    void goLive()
    {
        m_lesson->logIn(QStringLiteral("teacher"), QStringLiteral("chalk"));
        if (m_lesson)
            m_lesson->start();
    }

    std::unique_ptr<Peer> m_classroom;
    std::unique_ptr<Lesson> m_lesson;
    LessonError m_error;
};

INTEROP_MAIN(TestLesson)
#include "tst_Lesson.moc"
