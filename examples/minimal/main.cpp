// The shortest host: waits for a number of learners, asks all of them one question, and prints what they
// answer.
#include <CalyxClient/PresenterClient>
#include <CalyxClient/PresenterCollab>

#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QTextStream out(stdout);
    const QStringList arguments = application.arguments();
    if (arguments.size() != 5) {
        out << "Usage: minimal SERVER USER PASSWORD LEARNERS" << Qt::endl;
        return 2;
    }
    const int learners = arguments.at(4).toInt();

    PresenterClient client(nullptr, arguments.at(1));
    PresenterCollab* collab = nullptr;
    if (!client.doLogin(arguments.at(2), arguments.at(3)) || !client.doStartSession(QString()) ||
        !client.startWebsocket(&collab)) {
        out << "The service refuses, or is not there: " << client.lastError() << Qt::endl;
        return 1;
    }
    out << "Join with the code " << client.sessionCode() << Qt::endl;

    int joined = 0;
    QObject::connect(collab, &PresenterCollab::learnerJoin, &application, [&](const Calyx::Learner& learner) {
        out << learner.userName << " has joined" << Qt::endl;
        if (++joined == learners)
            collab->startPoll(Calyx::PollType::MULTIPLE, Calyx::OrdinalType::ALPHA_UPPER, 4, 1);
    });
    int answered = 0;
    QObject::connect(collab, &PresenterCollab::learnerPollResponse, &application,
                     [&](const QString& deviceId, const QString&, int seconds, const QString& answer) {
                         out << deviceId << " answers " << answer << " after " << seconds << " s" << Qt::endl;
                         if (++answered == learners)
                             application.quit();
                     });
    QObject::connect(collab, &PresenterCollab::connectionClosed, &application, [&] { application.exit(1); });

    const int result = application.exec();
    collab->disconnect(&application); // that the channel closes is no news any more
    collab->stopPoll();
    client.doLogout();
    return result;
}
