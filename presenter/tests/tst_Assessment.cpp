#include "PresenterTest.h"

#include <QJsonArray>

namespace {

const QString twoQuestions =
    QStringLiteral("assessment question multiple text=\"Which?\" choices=oxygen|water|light answer=BC\n"
                   "assessment question creative text=\"Why?\"\n");

// "user.d1/questionStart", as the messages came.
QStringList sent(const FakeClassroom& classroom)
{
    QStringList all;
    for (const FakeClassroom::Message& message : classroom.messages())
        all.append(message.address.section(QLatin1Char('.'), 1) + '/' + message.type);
    return all;
}

void askFor(FakeClassroom& classroom, const QString& device, int number)
{
    classroom.send(device, "questionGet", QVariantMap{{"questionNumber", number}});
}

} // namespace

// Assessments, as the program holds them.
class tst_Assessment : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachLearnerGetsWhatHeAsksFor()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        WRITE_UNTIL_LIVE(goLive + twoQuestions + "wait learners 2\n");
        classroom.join("d1", "Ann");
        classroom.join("d2", "Bea");
        presenter.write("assessment start title=\"My test\" time=60 navigate=yes summary=yes\n");
        TRY(sent(classroom).contains("/assessmentStart"));
        const QJsonObject options = data(classroom.messages().last());
        QCOMPARE(options.value("title").toString(), QStringLiteral("My test"));
        QCOMPARE(options.value("questionCount").toInt(), 2);
        QCOMPARE(options.value("startingQuestionNumber").toInt(), 1);
        QCOMPARE(options.value("allowedTime").toInt(), 60);
        QCOMPARE(options.value("allowNavigateQuestionSet").toBool(), true);
        QCOMPARE(options.value("allowSkipQuestion").toBool(), false);
        QCOMPARE(options.value("allowResubmitResponse").toBool(), true);
        QCOMPARE(options.value("showSummaryOnAssessmentCompletion").toBool(), true);
        QCOMPARE(options.value("scored").toBool(), true);

        askFor(classroom, "d2", 1);
        askFor(classroom, "d2", 2);
        askFor(classroom, "d1", 1);
        TRY(classroom.messages().size() == 4);
        QCOMPARE(sent(classroom).mid(1),
                 QStringList({"user.d2/questionStart", "user.d2/questionStart", "user.d1/questionStart"}));
        const QJsonObject first = data(classroom.messages().at(1));
        const QJsonObject second = data(classroom.messages().at(2));
        QCOMPARE(first.value("questionNumber").toInt(), 1);
        QCOMPARE(first.value("questionSetMode").toString(), QStringLiteral("Assessment"));
        QCOMPARE(first.value("instructions").toString(), QStringLiteral("Which?"));
        QCOMPARE(first.value("numberOfCorrectOptions").toInt(), 2);
        QCOMPARE(first.value("hasNext").toBool(), true);
        QCOMPARE(first.value("navigable").toBool(), true);
        const QJsonArray choices = first.value("activityOptions").toArray();
        QCOMPARE(choices.size(), 3);
        QCOMPARE(choices.at(1).toObject().value("id").toString(), QStringLiteral("B"));
        QCOMPARE(choices.at(1).toObject().value("optionText").toString(), QStringLiteral("water"));
        QCOMPARE(second.value("type").toString(), QStringLiteral("creative"));
        QCOMPARE(second.value("hasNext").toBool(), false);
        QVERIFY(first.value("id") != second.value("id"));
        QCOMPARE(data(classroom.messages().at(3)).value("id"), first.value("id"));
        TRY_END_OF_INPUT();
    }

    void answersAreMarkedByLearnerAndByQuestion()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        WRITE_UNTIL_LIVE(goLive + twoQuestions +
                         "wait learners 2\nassessment start\nwait assessment all\nexpect assessment 2\n"
                         "assessment stop\nassessment results\n");
        classroom.join("d1", "Ann");
        classroom.join("d2", "Bea");
        TRY(sent(classroom).contains("/assessmentStart"));
        QStringList ids;
        for (const int number : {1, 2}) {
            askFor(classroom, "d1", number);
            TRY(classroom.messages().size() == number + 1);
            ids.append(classroom.lastQuestion());
        }
        classroom.answer("d1", ids.at(0), {"C", "B"});
        classroom.answer("d1", ids.at(1), {}, "Because");
        TRY_OUTPUT("Ann has answered all questions, 1 of 2 have");
        classroom.answer("d2", ids.at(1), {}, "So");
        classroom.answer("d2", ids.at(0), {"A"});
        TRY_END_OF_INPUT();
        const QString output = presenter.output();
        QCOMPARE(output.count("  Ann      1 of 1  ✓ CB  Because\n  Bea      0 of 1  ✗ A   So\n"), 2);
        QVERIFY2(
            output.contains(
                "  2        1      50 %  1 multiple: Which?\n  2                     2 creative: Why?\n"),
            qPrintable(output));
        QVERIFY2(output.contains("  2 learners, 4 answers, 1 of 2 right.\n"), qPrintable(output));
        QVERIFY2(output.contains("Assessment  2 of 2 finished"), qPrintable(output));
    }

    void aQuestionThatIsAskedForAgainComesWithItsAnswer()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        WRITE_UNTIL_LIVE(goLive + twoQuestions + "wait learners 1\nassessment start resubmit=no\n");
        classroom.join("d1", "Ann");
        TRY(sent(classroom).contains("/assessmentStart"));
        askFor(classroom, "d1", 0); // names none, and gets the first
        TRY(classroom.messages().size() == 2);
        classroom.answer("d1", classroom.lastQuestion(), {"B", "C"});
        askFor(classroom, "d1", 1);
        TRY(classroom.messages().size() == 3);
        const QJsonObject before = data(classroom.messages().at(1)).value("feedBack").toObject();
        const QJsonObject after = data(classroom.messages().at(2)).value("feedBack").toObject();
        QCOMPARE(before.value("numberOfRetriesRemaining").toInt(), 0);
        QCOMPARE(after.value("numberOfRetriesRemaining").toInt(), 99);
        QCOMPARE(after.value("optionAnswers").toArray().size(), 2);
        QCOMPARE(after.value("allowResubmit").toBool(), false);
        classroom.answer("d1", classroom.lastQuestion(), {"A"});
        TRY_OUTPUT("An answer of Ann does not count");
        TRY_END_OF_INPUT();
        QVERIFY(presenter.output().contains("  Ann      1 of 1  ✓ BC  –\n")); // printed when the lesson ends
    }

    void oneLearnerCanBeAssessedAlone()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        WRITE_UNTIL_LIVE(goLive + twoQuestions + "wait learners 2\nassessment start to=bea\n");
        classroom.join("d1", "Ann");
        classroom.join("d2", "Bea");
        TRY(sent(classroom).contains("user.d2/assessmentStart"));
        askFor(classroom, "d1", 1);
        TRY_OUTPUT("Ann asks for question 1, and gets none");
        askFor(classroom, "d2", 3);
        TRY_OUTPUT("Bea asks for question 3, and gets none");
        presenter.write("assessment start to=Ann\n"); // another one, in the same assessment
        TRY(sent(classroom).contains("user.d1/assessmentStart"));
        QCOMPARE(data(classroom.messages().at(0)).value("assessmentToken"),
                 data(classroom.messages().at(1)).value("assessmentToken"));
        askFor(classroom, "d1", 1);
        TRY(sent(classroom).contains("user.d1/questionStart"));
        presenter.write("assessment start\n");
        TRY_ENDED(presenter, 1);
        QVERIFY(presenter.errors().contains("An assessment is under way."));
        QVERIFY(sent(classroom).contains("/assessmentStop"));
    }

    void whoComesLaterTakesPart()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        WRITE_UNTIL_LIVE(goLive + twoQuestions + "wait learners 1\nassessment start\n");
        classroom.join("d1", "Ann");
        TRY(sent(classroom).contains("/assessmentStart"));
        classroom.join("d2", "Bea");
        TRY(sent(classroom).contains("user.d2/assessmentStart"));
        classroom.leave("d1");
        classroom.join("d1", "Ann"); // begins anew, on a page that knows nothing
        TRY(sent(classroom).contains("user.d1/assessmentStart"));
        askFor(classroom, "d2", 1);
        TRY(sent(classroom).contains("user.d2/questionStart"));
        TRY_END_OF_INPUT();
        QVERIFY(presenter.output().contains("  2 learners, 0 answers, 0 of 2 right."));
    }

    void questionsStayForAnotherStart()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        presenter.write(goLive + twoQuestions +
                        "assessment start\nassessment stop\nassessment start\nassessment stop\n"
                        "assessment question text\nassessment start\nassessment stop\n");
        TRY_END_OF_INPUT();
        QList<int> counts;
        QStringList tokens;
        for (const FakeClassroom::Message& message : classroom.messages()) {
            if (message.type != "assessmentStart")
                continue;
            counts.append(data(message).value("questionCount").toInt());
            tokens.append(data(message).value("assessmentToken").toString());
        }
        QCOMPARE(counts, QList<int>({2, 2, 1}));
        QCOMPARE(tokens.removeDuplicates(), 0);
    }

    void lateAnswersDoNotCount()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        WRITE_UNTIL_LIVE(goLive + twoQuestions + "wait learners 1\nassessment start\n");
        classroom.join("d1", "Ann");
        TRY(sent(classroom).contains("/assessmentStart"));
        askFor(classroom, "d1", 1);
        TRY(!classroom.lastQuestion().isEmpty());
        presenter.write("assessment stop\n");
        TRY(sent(classroom).contains("/assessmentStop"));
        classroom.answer("d1", classroom.lastQuestion(), {"B", "C"});
        TRY_OUTPUT("An answer of Ann does not count");
        presenter.write("assessment results\n");
        TRY_END_OF_INPUT();
        QVERIFY(presenter.output().contains("  1 learner, 0 answers, 0 of 1 right."));
    }

    void dialogsReviewsAndPausesGoOut()
    {
        FakeClassroom classroom;
        Presenter presenter(arguments(classroom));
        WRITE_UNTIL_LIVE(goLive + twoQuestions +
                         "wait learners 1\nassessment dialog Before \"all of it\"\nassessment start\n"
                         "assessment pause\nassessment resume\nassessment dialog to=Ann dismissible=no Wait\n"
                         "assessment review to=Ann Look again\nassessment review All look again\n");
        classroom.join("d1", "Ann");
        TRY_END_OF_INPUT();
        QCOMPARE(sent(classroom), QStringList({"/dialogShow", "/assessmentStart", "/pause", "/resume",
                                               "user.d1/dialogShow", "user.d1/questionSetReview",
                                               "/questionSetReview", "/assessmentStop", "/disconnect"}));
        const QList<FakeClassroom::Message> messages = classroom.messages();
        QCOMPARE(data(messages.at(0)).value("text").toString(), QStringLiteral("Before all of it"));
        QCOMPARE(data(messages.at(0)).value("isDismissible").toBool(), true);
        QCOMPARE(data(messages.at(4)).value("isDismissible").toBool(true), false);
        QCOMPARE(data(messages.at(5)).value("text").toString(), QStringLiteral("Look again"));
    }

    void whatCannotBeIsRefused_data()
    {
        QTest::addColumn<QString>("lines");
        QTest::addColumn<QString>("part");
        QTest::newRow("no questions") << goLive + "assessment start\n"
                                      << "There are no questions.";
        QTest::newRow("not live") << twoQuestions + "assessment start\n"
                                  << "No session is live.";
        QTest::newRow("setting") << goLive + twoQuestions + "assessment start skip=maybe\n"
                                 << "\"skip\" takes yes or no, not \"maybe\".";
        QTest::newRow("time") << goLive + twoQuestions + "assessment start time=long\n"
                              << "\"time\" takes a whole number, not \"long\".";
        QTest::newRow("word") << goLive + twoQuestions + "assessment start now\n"
                              << "\"now\" is not understood.";
        QTest::newRow("learner") << goLive + twoQuestions + "assessment start to=Zoe\n"
                                 << "No learner here is called \"Zoe\".";
        QTest::newRow("key") << "assessment question true-false answer=C\n"
                             << "cannot be the right answer";
        QTest::newRow("choices") << "assessment question text choices=a|b\n"
                                 << "of type text has no choices.";
        QTest::newRow("stop") << goLive + "assessment stop\n"
                              << "No assessment is under way.";
        QTest::newRow("results") << goLive + "assessment results\n"
                                 << "There has been no assessment.";
        QTest::newRow("wait") << goLive + "wait assessment all\n"
                              << "There has been no assessment.";
        QTest::newRow("expectation") << goLive + twoQuestions + "assessment start\nexpect assessment 1\n"
                                     << "0 of 1 learners have finished";
    }

    void whatCannotBeIsRefused() { verifyRefused(); }
};

QTEST_GUILESS_MAIN(tst_Assessment)
#include "tst_Assessment.moc"
