#include "commands/CommandTable.h"
#include "text/Text.h"
#include "text/Words.h"

namespace {

constexpr int indentation = 2;
constexpr int deepIndent = 4;

QStringList topicLines(const CommandTable::Topic& topic, int columns)
{
    int width = 0;
    for (const Command& command : topic.commands)
        width = qMax(width, QString(QLatin1String(command.name)).size());
    QStringList lines = {Words::tr(topic.title)};
    for (const Command& command : topic.commands) {
        const QString name = Text::padRight(QLatin1String(command.name), width + indentation);
        lines += Text::wrap(name + Words::tr(command.summary), columns, indentation, width + 2 * indentation);
    }
    return lines;
}

QStringList commandLines(const Command& command, int columns)
{
    QStringList lines = Text::wrap(CommandTable::usage(command), columns, 0, deepIndent);
    lines += Text::wrap(Words::tr(command.summary), columns, deepIndent, deepIndent);
    const QString text = *command.details ? Words::tr(command.details) : QString();
    const QStringList details = text.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString& paragraph : details)
        lines += Text::wrap(paragraph, columns, deepIndent, deepIndent);
    return lines;
}

} // namespace

QStringList CommandHelp::overview(int columns)
{
    constexpr int width = 13; // of the longest name of a topic, and a gap
    QStringList lines;
    for (const CommandTable::Topic& topic : CommandTable::topics()) {
        QStringList names;
        for (const Command& command : topic.commands)
            names.append(QString(QLatin1String(command.name)).replace(QLatin1Char(' '), QChar::Nbsp));
        const QString title = Text::padRight(QLatin1String(topic.name), width);
        lines += Text::wrap(title + names.join(QStringLiteral(", ")), columns, 0, width);
    }
    lines.replaceInStrings(QString(QChar::Nbsp), QStringLiteral(" "));
    return lines + Text::wrap(Words::tr("\"help TOPIC\" says what its commands do (\"help polls\"), "
                                        "\"help COMMAND\" how (\"help poll stop\")."),
                              columns, 0, 0);
}

QStringList CommandHelp::about(const QString& name, int columns)
{
    for (const CommandTable::Topic& topic : CommandTable::topics()) {
        if (name.compare(QLatin1String(topic.name), Qt::CaseInsensitive) == 0)
            return topicLines(topic, columns);
    }
    const QVector<const Command*> members = CommandTable::family(name.toLower());
    // The one that has the name itself; else those whose names begin so.
    if (!members.isEmpty() && name.toLower() == QLatin1String(members.first()->name))
        return commandLines(*members.first(), columns);
    QStringList lines;
    for (const Command* command : members)
        lines += commandLines(*command, columns);
    return lines;
}
