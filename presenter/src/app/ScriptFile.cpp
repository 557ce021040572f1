#include "app/ScriptFile.h"

#include "commands/CommandContext.h"
#include "commands/CommandTable.h"
#include "text/LineSyntax.h"
#include "text/Words.h"

#include <QFile>
#include <QFileInfo>

#include <utility>

namespace {

constexpr int mostFaults = 20;

// The lines as they would be run, as far as that can be told.
class Check
{
public:
    explicit Check(const QString& folder) : m_folder(folder) {}

    QString faultIn(const QString& line)
    {
        const CommandTable::Match match = CommandTable::match(line);
        if (!match.command || !match.fault.isEmpty())
            return match.fault;
        const Outcome ready = CommandContext::require(match.command->needs, m_facts);
        const Outcome checked = CommandTable::check(match, m_folder);
        // What follows is looked at as if this had been done: one mistake is told once.
        m_facts = ((m_facts | match.command->needs) & ~match.command->ends) | match.command->brings;
        return checked.isDone() ? ready.message : checked.message;
    }

private:
    QString m_folder;
    int m_facts = Fact::Nothing;
};

bool beginsWithCommand(const QString& line)
{
    const QStringList words = LineSyntax::split(line).words;
    return CommandTable::find(words) || !CommandTable::family(words.value(0).toLower()).isEmpty();
}

// One sentence about a file that was never meant to be a lesson.
QString faultOfKind(const QString& text, const QVector<CommandLine>& lines, const QString& fileName)
{
    constexpr int fewest = 3; // lines; of fewer, each is told
    if (text.contains(QChar::Null) || text.contains(QChar::ReplacementCharacter))
        return Words::tr("%1 is no lesson: it is not text in UTF-8.").arg(fileName);
    int strange = 0;
    for (const CommandLine& line : lines)
        strange += beginsWithCommand(line.text) ? 0 : 1;
    if (strange < fewest || 2 * strange <= lines.size())
        return QString();
    return Words::tr("%1 is no lesson: %2 of its %3 lines begin with no command.")
        .arg(fileName, QString::number(strange), QString::number(lines.size()));
}

QVector<CommandLine> linesOf(const QString& text, const QString& fileName)
{
    QVector<CommandLine> lines;
    int number = 0;
    const QStringList all = text.split(QLatin1Char('\n'));
    for (const QString& line : all) {
        ++number;
        if (!LineSyntax::isBlank(line))
            lines.append({line, QStringLiteral("%1:%2").arg(fileName, QString::number(number))});
    }
    return lines;
}

void shorten(QStringList& faults)
{
    const int rest = faults.size() - mostFaults;
    if (rest > 0)
        faults = faults.mid(0, mostFaults) << Words::tr("and %1 more.").arg(rest);
}

} // namespace

ScriptFile::Script ScriptFile::read(const QString& fileName)
{
    constexpr qint64 largest = qint64{16} * 1024 * 1024;
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {{}, {Words::tr("The script %1 cannot be read: %2.").arg(fileName, file.errorString())}};
    const QByteArray bytes = file.read(largest + 1);
    if (bytes.size() > largest)
        return {{}, {Words::tr("%1 is no lesson: it is larger than 16 MiB.").arg(fileName)}};
    return parse(QString::fromUtf8(bytes), fileName);
}

ScriptFile::Script ScriptFile::parse(const QString& text, const QString& fileName)
{
    Script script;
    script.lines = linesOf(text, fileName);
    const QString kind = faultOfKind(text, script.lines, fileName);
    if (!kind.isEmpty())
        return {{}, {kind}};
    Check check(QFileInfo(fileName).absolutePath());
    for (const CommandLine& line : std::as_const(script.lines)) {
        const QString fault = check.faultIn(line.text);
        if (!fault.isEmpty())
            script.faults.append(QStringLiteral("%1: %2").arg(line.origin, fault));
    }
    shorten(script.faults);
    return script;
}
