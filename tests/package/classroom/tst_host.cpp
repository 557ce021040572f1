// The tests of a host outside the tree, against the local classroom that is installed beside the library.
#include <CalyxClient/Lesson>
#include <CalyxClient/LocalClassroom>

#include <QSignalSpy>
#include <QTest>

#include <memory>

using Calyx::Lesson;
using Calyx::LessonError;

class tst_host : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // [start]
    void init()
    {
        m_classroom = std::make_unique<Calyx::LocalClassroom>();
        QVERIFY(m_classroom->isRunning());
        m_lesson = std::make_unique<Lesson>(m_classroom->url());
        connect(m_lesson.get(), &Lesson::failed, this, [this](const LessonError& error) { m_error = error; });
        m_error = {};
        m_lesson->logIn(QStringLiteral("teacher"), QStringLiteral("chalk"));
        m_lesson->start();
        QTRY_COMPARE(m_lesson->state(), Lesson::Live);
    }
    void cleanup()
    {
        m_lesson.reset();
        m_classroom.reset();
    }
    // [start]

    // [answers]
    void answersAreCounted()
    {
        QCOMPARE(m_classroom->tell("join 30"), QStringLiteral("ok 30 learners"));
        Calyx::Poll* const poll =
            m_lesson->ask(Calyx::PollType::MULTIPLE, Calyx::OrdinalType::ALPHA_UPPER, 4);
        QCOMPARE(m_classroom->tell("answer by 10 B"), QStringLiteral("ok 10 learners"));
        QTRY_COMPARE(poll->answered(), 10);
        QCOMPARE(poll->missing().size(), 20);
        QCOMPARE(poll->results()->rows().at(1).count, 10);
        QCOMPARE(m_classroom->tell("leave"), QStringLiteral("ok 30 learners"));
        QTRY_COMPARE(m_lesson->roster()->presentCount(), 0);
    }
    // [answers]

    // [faults]
    void aLostChannelComesBack()
    {
        QCOMPARE(m_classroom->tell("down"), QStringLiteral("ok"));
        QTRY_COMPARE(m_lesson->state(), Lesson::Reconnecting);
        QCOMPARE(m_classroom->tell("mend"), QStringLiteral("ok"));
        m_lesson->retryNow();
        QTRY_COMPARE(m_lesson->state(), Lesson::Live);
    }
    void aForgottenSessionIsOver()
    {
        QCOMPARE(m_classroom->tell("forget"), QStringLiteral("ok"));
        QTRY_COMPARE(m_error.kind, LessonError::SessionGone);
        QCOMPARE(m_lesson->state(), Lesson::LoggedIn);
    }
    // [faults]
    void aLostLoginIsRenewed()
    {
        const QSignalSpy changes(m_lesson.get(), &Lesson::stateChanged);
        QCOMPARE(m_classroom->tell("logout"), QStringLiteral("ok"));
        QCOMPARE(m_classroom->tell("cut"), QStringLiteral("ok"));
        QTRY_COMPARE(changes.size(), 2); // Reconnecting, for some milliseconds, and Live
        QCOMPARE(m_lesson->state(), Lesson::Live);
    }
    void aRefusalIsToldWithItsKey()
    {
        QCOMPARE(m_classroom->tell("refuse session.error.closed"), QStringLiteral("ok"));
        m_lesson->logIn(QStringLiteral("teacher"), QStringLiteral("chalk"));
        QTRY_COMPARE(m_error.key, QStringLiteral("session.error.closed"));
    }
    void aStalledServiceCanBeGivenUp()
    {
        QCOMPARE(m_classroom->tell("stall"), QStringLiteral("ok"));
        m_lesson->end();
        m_lesson->cancel();
        QTRY_COMPARE(m_lesson->state(), Lesson::LoggedIn);
    }
    void aClassroomThatDoesNotStartSaysSo()
    {
        Calyx::LocalClassroom none({QStringLiteral("--nonsense")});
        QVERIFY(!none.isRunning());
        QVERIFY(none.url().isEmpty());
        QVERIFY(none.tell("join 1").isNull());
    }

private:
    std::unique_ptr<Calyx::LocalClassroom> m_classroom;
    std::unique_ptr<Lesson> m_lesson;
    LessonError m_error;
};

QTEST_GUILESS_MAIN(tst_host)
#include "tst_host.moc"
