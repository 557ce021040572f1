// Goes through docs/host-guide.md, from the first request to the last: guide SERVER USER PASSWORD LEARNERS
// PICTURE. Each step must have the effect that the guide promises.
#include "Host.h"

#include <CalyxClient/SockJSConnector>

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QTextStream>
#include <QTimer>

#include <functional>

namespace {

int failures = 0;

void step(const char* name, bool ok)
{
    QTextStream(stdout) << (ok ? "ok " : "FAILED ") << name << Qt::endl;
    if (!ok)
        ++failures;
}

// Whether the condition holds within a minute. It is looked at whenever the lesson changes.
bool until(Host& host, const std::function<bool()>& condition)
{
    constexpr int limit = 60000; // ms
    QEventLoop loop;
    const auto look = [&] {
        if (condition())
            loop.quit();
    };
    QObject::connect(&host, &Host::changed, &loop, look);
    QTimer::singleShot(0, &loop, look);
    QTimer::singleShot(limit, &loop, &QEventLoop::quit);
    loop.exec();
    return condition();
}

// Whether every learner answers what is being asked.
bool everyoneAnswers(Host& host, int learners)
{
    return until(host, [&] { return host.answers().size() == learners; });
}

QByteArray readFile(const QString& name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Whether a host that has no service, or the wrong password, says so.
bool failuresAreTold(const QString& server, const QString& user)
{
    Host nowhere(QStringLiteral("http://127.0.0.1:1"));
    Host refused(server);
    return !nowhere.findService() && nowhere.error().contains(QLatin1String("cannot be reached")) &&
           !refused.logIn(user, QStringLiteral("not the password")) &&
           refused.error().contains(QLatin1String("error"));
}

void logIn(Host& host, const QString& user, const QString& password)
{
    step("service", host.findService());
    step("log-in", host.logIn(user, password));
    step("device", host.rememberDevice(user, password) && host.logInAgain());
}

void poll(Host& host, int learners)
{
    host.ask();
    step("ask", everyoneAnswers(host, learners));
    host.stopAsking();
    host.askInWords();
    step("words", everyoneAnswers(host, learners));
}

void loseTheChannel(Host& host)
{
    // As if the network had done it.
    host.collab()->connector()->close();
    step("closed", !host.isLive() && until(host, [&] { return host.isLive(); }));
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() != 6)
        return 2;
    const QString server = arguments.at(1);
    const QString user = arguments.at(2);
    const int learners = arguments.at(4).toInt();
    const QByteArray picture = readFile(arguments.at(5));

    step("failures", failuresAreTold(server, user));
    Host host(server);
    logIn(host, user, arguments.at(3));
    step("session", host.createSession());
    step("live", host.goLive());
    step("learners", until(host, [&] { return host.learnerCount() == learners; }));
    poll(host, learners);
    step("card", host.showPicture(QStringLiteral("leaf.png"), picture));
    host.showSmallPicture(picture);
    step("remote", until(host, [&] { return host.card() == 2; }));
    host.startAssessment();
    step("assessment", until(host, [&] { return host.assessmentAnswers() == 2 * learners; }));
    host.stopAssessment();
    loseTheChannel(host);
    host.end();
    step("end", until(host, [&] { return !host.isLive(); }));
    return failures == 0 ? 0 : 1;
}
