#include "commands/CommandTable.h"

#include "commands/CommandRows.h"
#include "lesson/PollKinds.h"
#include "text/Suggestions.h"
#include "text/Text.h"
#include "text/Words.h"

#include <iterator>

namespace {

constexpr int indent = 2;

int wordsIn(const Command& command)
{
    return QString(QLatin1String(command.name)).count(QLatin1Char(' ')) + 1;
}

QString unknown(const QStringList& words)
{
    const QString first = words.first();
    const QVector<const Command*> family = CommandTable::family(first.toLower());
    if (!family.isEmpty()) {
        QStringList members;
        for (const Command* member : family)
            members.append(QLatin1String(member->name));
        const QString typed = words.mid(0, 2).join(QLatin1Char(' '));
        return QStringLiteral("There is no command \"%1\".%2 There are: %3.")
            .arg(Text::clean(typed), Suggestions::question(typed, members),
                 members.join(QStringLiteral(", ")));
    }
    QStringList known;
    for (const Command& command : CommandTable::commands())
        known.append(QString(QLatin1String(command.name)).section(QLatin1Char(' '), 0, 0));
    known.removeDuplicates();
    return QStringLiteral("There is no command \"%1\".%2 \"help\" lists all.")
        .arg(Text::clean(first), Suggestions::question(first, known));
}

bool isNumber(const QString& text)
{
    bool isNumber = false;
    return text.toInt(&isNumber) >= 0 && isNumber;
}

// What is wrong with a word at its place; empty when nothing is, or when only running it could tell.
QString fault(const Command& command, Place place, const QString& word)
{
    Calyx::PollType::POLL_TYPE type;
    if (place == Place::Number && !isNumber(word))
        return QStringLiteral("\"%1\" is not a whole number.").arg(word);
    if (place == Place::Amount && !isNumber(word) && word != QLatin1String("all"))
        return QStringLiteral("\"%1\" is neither a whole number nor \"all\".").arg(word);
    const QStringList keywords = CommandTable::keywords(command);
    if (place == Place::Keyword && !keywords.contains(word))
        return QStringLiteral("\"%1\" is not understood.%2").arg(word, Suggestions::question(word, keywords));
    if (place == Place::PollType && !PollKinds::readType(word, type))
        return QStringLiteral("There is no poll type \"%1\".%2 The types are: %3.")
            .arg(word, Suggestions::question(word, PollKinds::typeNames()),
                 PollKinds::typeNames().join(QStringLiteral(", ")));
    return QString();
}

QString fault(const Command& command, const Arguments& arguments)
{
    for (int i = 0; i < arguments.size(); ++i) {
        const QString text = fault(command, CommandTable::place(command, i), arguments.at(i));
        if (!text.isEmpty())
            return text;
    }
    const bool isCountRight =
        arguments.size() >= command.least && (command.most < 0 || arguments.size() <= command.most);
    return isCountRight ? QString() : QStringLiteral("Usage: %1").arg(CommandTable::usage(command));
}

} // namespace

const QVector<Command>& CommandTable::commands()
{
    static const QVector<Command> rows =
        CommandRows::service() + CommandRows::classroom() + CommandRows::flow();
    return rows;
}

const Command* CommandTable::find(const QStringList& words)
{
    const Command* best = nullptr;
    for (const Command& command : commands()) {
        const QStringList start = words.mid(0, wordsIn(command));
        if (start.join(QLatin1Char(' ')).toLower() == QLatin1String(command.name) &&
            (!best || wordsIn(command) > wordsIn(*best)))
            best = &command;
    }
    return best;
}

QVector<const Command*> CommandTable::family(const QString& name)
{
    QVector<const Command*> members;
    for (const Command& command : commands()) {
        const QString own = QLatin1String(command.name);
        if (name.isEmpty() || own == name || own.startsWith(name + QLatin1Char(' ')))
            members.append(&command);
    }
    return members;
}

CommandTable::Match CommandTable::match(const QString& line)
{
    Match match;
    const Words::Split split = Words::split(line);
    // Text may hold any quotes: its command is looked for first.
    match.command = find(split.words);
    if (match.command && match.command->takesText) {
        const QString text = Words::textAfter(line, wordsIn(*match.command));
        if (!text.isEmpty())
            match.arguments.append(text);
    } else if (!split.error.isEmpty()) {
        match.fault = split.error;
    } else if (!match.command) {
        match.fault = unknown(split.words);
    } else {
        match.arguments = split.words.mid(wordsIn(*match.command));
    }
    if (match.fault.isEmpty())
        match.fault = fault(*match.command, match.arguments);
    return match;
}

Place CommandTable::place(const Command& command, int index)
{
    const int count = static_cast<int>(std::end(command.places) - std::begin(command.places));
    return index < count ? command.places[index] : Place::Anything;
}

QStringList CommandTable::keywords(const Command& command)
{
    return QString(QLatin1String(command.keywords)).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

QString CommandTable::usage(const Command& command)
{
    return QString(QLatin1String(command.name) + QLatin1Char(' ') + QLatin1String(command.usage)).trimmed();
}

QStringList CommandTable::overview()
{
    int width = 0;
    for (const Command& command : commands())
        width = qMax(width, QString(QLatin1String(command.name)).size());
    const auto list = [width](const char* title, const QVector<Command>& rows) {
        QStringList lines = {QLatin1String(title)};
        for (const Command& command : rows)
            lines.append(QString(indent, QLatin1Char(' ')) +
                         Text::padRight(QLatin1String(command.name), width + indent) +
                         QLatin1String(command.summary));
        return lines;
    };
    return list("Service and session", CommandRows::service()) +
           list("Learners and remote control", CommandRows::classroom()) +
           list("Lesson", CommandRows::flow()) +
           QStringList(QStringLiteral("\"help NAME\" tells more, \"help poll\" for example."));
}

QStringList CommandTable::help(const QString& name)
{
    QStringList lines;
    const QVector<const Command*> members = family(name.toLower());
    for (const Command* command : members) {
        lines += {usage(*command), QStringLiteral("    ") + QLatin1String(command->summary)};
        const QStringList details =
            QString::fromUtf8(command->details).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
        for (const QString& line : details)
            lines.append(QStringLiteral("    ") + line);
    }
    return lines;
}
