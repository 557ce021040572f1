// A whole host: waits for a number of learners, asks all of them one question, and prints what they answer.
#include <CalyxClient/Lesson>

#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    QTextStream out(stdout);
    if (arguments.size() != 5) {
        out << "Usage: minimal SERVER USER PASSWORD LEARNERS" << Qt::endl;
        return 2;
    }
    const int learners = arguments.at(4).toInt();

    Calyx::Lesson lesson(QUrl(arguments.at(1)));
    QObject::connect(&lesson, &Calyx::Lesson::failed, [&](const Calyx::LessonError& error) {
        out << error.text << ' ' << error.advice << Qt::endl;
        application.exit(1);
    });
    QObject::connect(&lesson, &Calyx::Lesson::stateChanged, [&] {
        if (lesson.state() == Calyx::Lesson::Live)
            out << "Join with the code " << lesson.joinCode() << Qt::endl;
    });
    QObject::connect(lesson.roster(), &Calyx::Roster::changed, [&] {
        if (lesson.roster()->presentCount() >= learners && !lesson.poll())
            lesson.ask(Calyx::PollType::MULTIPLE, Calyx::OrdinalType::ALPHA_UPPER, 4);
    });
    QObject::connect(&lesson, &Calyx::Lesson::answersChanged, [&](const Calyx::Poll* poll) {
        if (poll->answered() == learners)
            application.quit();
    });
    lesson.logIn(arguments.at(2), arguments.at(3));
    lesson.start();
    const int result = application.exec();
    if (lesson.poll()) {
        const QVector<Calyx::PollResults::Row> rows = lesson.poll()->results()->rows();
        for (const auto& row : rows)
            out << row.label << ": " << row.count << Qt::endl;
    }
    return result;
}
