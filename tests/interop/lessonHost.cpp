// A host that is stopped and killed: teaches a lesson at the address of its first argument, its journal in
// the file of its second, over the transports that follow, and says on stdout what happens.
#include <CalyxClient/Lesson>

#include <QCoreApplication>
#include <QJsonDocument>
#include <QLoggingCategory>

#include <cstdio>

using namespace Calyx;

namespace {

constexpr int everybody = 3;

void say(const QByteArray& line)
{
    std::printf("%s\n", line.constData());
    std::fflush(stdout);
}

Question marked()
{
    Question question = Question::usual(PollType::MULTIPLE);
    question.text = QStringLiteral("Which gas?");
    question.right = QStringList{QStringLiteral("B")};
    return question;
}

// A poll that is over, and one that runs beside an assessment that all have finished.
void teach(Lesson* lesson)
{
    const Assessment* const assessment = lesson->assessment();
    const Poll* const poll = lesson->poll();
    if (!poll && lesson->roster()->presentCount() == everybody) {
        lesson->ask(marked());
    } else if (poll && poll->answered() == everybody && !assessment) {
        lesson->stop();
        AssessmentPlan plan;
        plan.questions = {marked(), Question::usual(PollType::TEXT)};
        lesson->startAssessment(plan);
    } else if (assessment && assessment->finished() == everybody && poll->number() == 1) {
        lesson->ask(marked());
    } else if (poll && poll->number() == 2 && poll->answered() == everybody) {
        say("report " + QJsonDocument(lesson->report()).toJson(QJsonDocument::Compact));
    }
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false")); // in the middle of what it says
    Lesson lesson(QUrl(arguments.at(1)));
    lesson.setJournal(arguments.at(2));
    lesson.setTransports(arguments.mid(3));
    QObject::connect(&lesson, &Lesson::stateChanged, [&] {
        say("state " + QByteArray::number(lesson.state()) + " " + lesson.joinCode().toUtf8());
    });
    QObject::connect(&lesson, &Lesson::failed, [](const LessonError& error) {
        say("failed " + QByteArray::number(error.kind) + " " + error.text.toUtf8());
    });
    QObject::connect(lesson.roster(), &Roster::changed, [&] { teach(&lesson); });
    QObject::connect(&lesson, &Lesson::answersChanged, [&] { teach(&lesson); });
    QObject::connect(&lesson, &Lesson::assessmentChanged, [&] {
        if (lesson.assessment())
            QObject::connect(lesson.assessment(), &Assessment::changed, [&] { teach(&lesson); });
    });
    lesson.logIn(QStringLiteral("teacher"), QStringLiteral("chalk"));
    lesson.start();
    return QCoreApplication::exec();
}
