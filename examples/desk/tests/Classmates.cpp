#include "Classmates.h"

#include <QTest>

namespace {

constexpr int limit = 30000; // ms

} // namespace

NodeProgram::NodeProgram(const QString& script, const QStringList& arguments)
{
    setProcessChannelMode(QProcess::ForwardedErrorChannel);
    start(QStringLiteral(DESK_NODE), QStringList(script) + arguments);
    waitForStarted(limit);
}

NodeProgram::~NodeProgram()
{
    end();
}

void NodeProgram::end()
{
    if (state() == NotRunning)
        return;
    terminate();
    if (waitForFinished(limit))
        return;
    kill();
    waitForFinished(limit);
}

QString NodeProgram::lineWith(const QString& begin, const QString& part)
{
    QString found;
    const auto look = [&] {
        m_output += QString::fromUtf8(readAllStandardOutput());
        const QStringList lines = m_output.split(QLatin1Char('\n'));
        for (int i = 0; i + 1 < lines.size() && found.isNull(); ++i) {
            if (lines.at(i).startsWith(begin) && lines.at(i).contains(part))
                found = lines.at(i);
        }
        return !found.isNull();
    };
    (void)QTest::qWaitFor(look, limit);
    return found;
}

void NodeProgram::say(const QString& line)
{
    write(line.toUtf8() + '\n');
}

LocalClassroom::LocalClassroom()
    : NodeProgram(QStringLiteral(DESK_CLASSROOM "/server.js"),
                  {QStringLiteral("--port"), QStringLiteral("0"), QStringLiteral("--quiet")})
{
    m_url = lineWith(QStringLiteral("listening ")).section(QLatin1Char(' '), 1);
}
