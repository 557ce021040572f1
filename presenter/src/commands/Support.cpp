#include "commands/Support.h"

#include "app/Host.h"
#include "lesson/AssessmentReport.h"
#include "lesson/Lesson.h"
#include "terminal/Screen.h"
#include "text/Chart.h"
#include "text/Suggestions.h"
#include "text/Text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

const QString missingRoot = QStringLiteral("SSLRootCertificateMissing");

Outcome unreachable(Host& host, const QString& what)
{
    const QString server = host.lesson.client().server();
    if (host.lesson.client().lastError() == missingRoot)
        return Outcome::unreachable(
            QStringLiteral("%1 failed (%2). The certificate of %3 is signed by an authority that this "
                           "machine does not know: install the authority's certificate.")
                .arg(what, missingRoot, server));
    return Outcome::unreachable(
        QStringLiteral("%1 failed: no classroom service answers at %2. Check --server, and that the service "
                       "is running.")
            .arg(what, server));
}

} // namespace

Outcome Support::refused(Host& host, const QString& what, const QString& hint)
{
    PresenterClient& client = host.lesson.client();
    const QString key = Text::clean(client.lastError());
    if (key == missingRoot)
        return unreachable(host, what);
    if (!key.isEmpty())
        return Outcome::failed(QStringLiteral("%1 was refused (%2). %3").arg(what, key, hint));
    if (!client.checkServer(QString(), QString()))
        return unreachable(host, what);
    return Outcome::failed(QStringLiteral("%1 failed; the service gave no error key. %2").arg(what, hint));
}

Outcome Support::needLive(Host& host)
{
    if (host.lesson.isLive())
        return Outcome::done();
    if (host.lesson.client().sessionToken().isEmpty())
        return Outcome::failed(QStringLiteral("No session is live. Use \"session start\" first."));
    return Outcome::failed(
        QStringLiteral("The live channel is closed. Use \"session reconnect\" to open it again."));
}

Outcome Support::takeWithin(Arguments& arguments, qint64& msecs)
{
    constexpr int second = 1000;
    const int at = arguments.indexOf(QStringLiteral("within"));
    if (at < 0)
        return Outcome::done();
    bool isNumber = false;
    const int seconds = arguments.value(at + 1).toInt(&isNumber);
    if (!isNumber || seconds < 0 || at + 2 != arguments.size())
        return Outcome::failed(QStringLiteral("\"within\" takes a number of seconds, as the last words."));
    msecs = static_cast<qint64>(seconds) * second;
    arguments = arguments.mid(0, at);
    return Outcome::done();
}

bool Support::takeSetting(Arguments& arguments, const QString& name, QString& value)
{
    const QString start = name + QLatin1Char('=');
    for (int i = 0; i < arguments.size(); ++i) {
        if (!arguments.at(i).startsWith(start))
            continue;
        value = arguments.takeAt(i).mid(start.size());
        return true;
    }
    return false;
}

Outcome Support::takeFlag(Arguments& arguments, const QString& name, bool& flag)
{
    QString value = flag ? QStringLiteral("yes") : QStringLiteral("no");
    takeSetting(arguments, name, value);
    flag = value == QLatin1String("yes");
    return flag || value == QLatin1String("no")
               ? Outcome::done()
               : Outcome::failed(QStringLiteral("\"%1\" takes yes or no, not \"%2\".").arg(name, value));
}

Outcome Support::takeCount(Arguments& arguments, const QString& name, int& number)
{
    QString value = QString::number(number);
    takeSetting(arguments, name, value);
    bool isNumber = false;
    number = value.toInt(&isNumber);
    return isNumber && number >= 0
               ? Outcome::done()
               : Outcome::failed(QStringLiteral("\"%1\" takes a whole number, not \"%2\".").arg(name, value));
}

Outcome Support::readFile(Host& host, const QString& name, QByteArray& content)
{
    constexpr qint64 largest = qint64{16} * 1024 * 1024;
    QFile file(QDir(host.folder).filePath(name));
    if (!file.open(QIODevice::ReadOnly))
        return Outcome::failed(QStringLiteral("%1 cannot be read: %2.").arg(name, file.errorString()));
    if (file.size() > largest)
        return Outcome::failed(QStringLiteral("%1 is larger than 16 MiB.").arg(name));
    content = file.readAll();
    return Outcome::done();
}

Outcome Support::readPicture(Host& host, const QString& name, Picture& picture)
{
    QByteArray content;
    const Outcome read = readFile(host, name, content);
    if (read.isDone() && !content.startsWith("\x89PNG\r\n\x1a\n"))
        return Outcome::failed(
            QStringLiteral("%1 is not a PNG file. Others can be uploaded: see \"help card\".").arg(name));
    picture = Picture::ofPng(content);
    return read;
}

Outcome Support::upload(Host& host, const QString& name, Upload& upload)
{
    QByteArray content;
    if (const Outcome read = readFile(host, name, content); !read.isDone())
        return read;
    // The service takes the name as it stands, between double quotes.
    QString plainName = Text::clean(QFileInfo(name).fileName());
    plainName.replace(QLatin1Char('"'), QLatin1Char('_'));
    QString path;
    PresenterClient& client = host.lesson.client();
    if (!client.doUploadResource(plainName, content, &upload.id, &path))
        return refused(host, QStringLiteral("The upload of %1").arg(name),
                       QStringLiteral("Check that you are logged in and that the file is not too large for "
                                      "the service."));
    if (upload.id.isEmpty())
        return Outcome::failed(
            QStringLiteral("%1 was uploaded, but the service gave no id for it.").arg(name));
    upload.address = client.server() + path;
    return Outcome::done();
}

Outcome Support::findLearner(Host& host, const QString& text, QString& deviceId)
{
    const Roster& roster = host.lesson.roster();
    const QStringList found = roster.find(text);
    QStringList names;
    for (const QString& id : found.isEmpty() ? roster.presentIds() : found)
        names.append(roster.name(id));
    if (found.isEmpty())
        return Outcome::failed(QStringLiteral("No learner here is called \"%1\".%2 See \"learners\".")
                                   .arg(text, Suggestions::question(text, names)));
    if (found.size() > 1)
        return Outcome::failed(
            QStringLiteral("\"%1\" can be %2. Say more of the name.").arg(text, Text::list(names, 5)));
    deviceId = found.first();
    return Outcome::done();
}

void Support::stopPoll(Host& host)
{
    constexpr int mostLines = 24;
    Lesson& lesson = host.lesson;
    if (!lesson.board().isRunning())
        return;
    lesson.stopPoll();
    host.screen.setLiveLines({});
    const ChartData data = lesson.board().last()->chart(lesson.roster());
    host.screen.print(Chart::lines(data, host.screen.style(), mostLines));
}

void Support::printResults(Host& host)
{
    const AssessmentDesk& desk = host.lesson.desk();
    const Style& style = host.screen.style();
    host.screen.print(Chart::lines(desk.progress(), style, 1));
    if (!desk.sheet()->participants().isEmpty())
        host.screen.print(AssessmentReport::byLearner(*desk.sheet(), style) +
                          AssessmentReport::byQuestion(*desk.sheet(), style));
    host.screen.print(QStringLiteral("  ") + AssessmentReport::total(*desk.sheet()));
}

void Support::stopAssessment(Host& host)
{
    AssessmentDesk& desk = host.lesson.desk();
    if (!desk.isRunning())
        return;
    desk.stop();
    host.screen.setLiveLines({});
    printResults(host);
}

void Support::stopActivities(Host& host)
{
    stopPoll(host);
    stopAssessment(host);
}

bool Support::endLesson(Host& host)
{
    PresenterClient& client = host.lesson.client();
    stopActivities(host);
    host.lesson.expectClose();
    if (!client.sessionToken().isEmpty()) {
        client.doStopSession();
        host.lesson.forgetSession();
        host.screen.note(QStringLiteral("The session is stopped."));
    }
    if (!client.isLoggedIn())
        return true;
    const bool isLoggedOut = client.doLogout();
    if (isLoggedOut)
        host.screen.note(QStringLiteral("Logged out."));
    else
        host.screen.error(QStringLiteral("Logging out failed: the service did not answer."));
    return isLoggedOut;
}
