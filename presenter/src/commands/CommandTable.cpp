#include "commands/CommandTable.h"

#include "commands/ArgumentReader.h"
#include "commands/Files.h"
#include "lesson/PollKinds.h"
#include "text/LineSyntax.h"
#include "text/Suggestions.h"
#include "text/Text.h"
#include "text/Words.h"

#include <iterator>

namespace {

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
        return Words::tr("There is no command \"%1\".%2 There are: %3.")
            .arg(Text::clean(typed), Suggestions::question(typed, members),
                 members.join(QStringLiteral(", ")));
    }
    QStringList known;
    for (const Command& command : CommandTable::commands())
        known.append(QString(QLatin1String(command.name)).section(QLatin1Char(' '), 0, 0));
    known.removeDuplicates();
    return Words::tr("There is no command \"%1\".%2 \"help\" lists all.")
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
    qint64 msecs = 0;
    if (place == Place::Number && !isNumber(word))
        return Words::tr("\"%1\" is not a whole number.").arg(word);
    if (place == Place::Seconds && !ArgumentReader::readSeconds(word, msecs))
        return Words::tr("\"%1\" is not a number of seconds.").arg(word);
    if (place == Place::Amount && !isNumber(word) && word != QLatin1String("all"))
        return Words::tr("\"%1\" is neither a whole number nor \"all\".").arg(word);
    const QStringList keywords = CommandTable::keywords(command);
    if (place == Place::Keyword && !keywords.contains(word))
        return Words::tr("\"%1\" is not understood.%2").arg(word, Suggestions::question(word, keywords));
    if (place == Place::PollType && !PollKinds::readType(word, type))
        return Words::tr("There is no poll type \"%1\".%2 The types are: %3.")
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
    return isCountRight ? QString() : Words::tr("Usage: %1").arg(CommandTable::usage(command));
}

} // namespace

const QVector<CommandTable::Topic>& CommandTable::topics()
{
    static const QVector<Topic> all = {
        {"accounts", QT_TRANSLATE_NOOP("Words", "Logging in and out"), account()},
        {"sessions", QT_TRANSLATE_NOOP("Words", "Sessions and who is in them"), session()},
        {"polls", QT_TRANSLATE_NOOP("Words", "Polls"), polls()},
        {"cards", QT_TRANSLATE_NOOP("Words", "Pictures and the cards of the lesson"), cards()},
        {"devices", QT_TRANSLATE_NOOP("Words", "Learners' devices and the remote control"), devices()},
        {"assessments", QT_TRANSLATE_NOOP("Words", "Assessments"), assessments()},
        {"steps", QT_TRANSLATE_NOOP("Words", "The steps of a lesson"), flow()},
        {"console", QT_TRANSLATE_NOOP("Words", "This program"), general()}};
    return all;
}

const QVector<Command>& CommandTable::commands()
{
    static const QVector<Command> all = [] {
        QVector<Command> rows;
        for (const Topic& topic : topics())
            rows += topic.commands;
        return rows;
    }();
    return all;
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
        if (own == name || own.startsWith(name + QLatin1Char(' ')))
            members.append(&command);
    }
    return members;
}

CommandTable::Match CommandTable::match(const QString& line)
{
    Match match;
    const LineSyntax::Split split = LineSyntax::split(line);
    // Text may hold any quotes: its command is looked for first.
    match.command = find(split.words);
    if (match.command && match.command->most == asText) {
        const QString text = LineSyntax::textAfter(line, wordsIn(*match.command));
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

Outcome CommandTable::check(const Match& match, const QString& folder)
{
    for (int i = 0; i < match.arguments.size(); ++i) {
        const Place kind = place(*match.command, i);
        QByteArray content;
        Outcome read;
        if (kind == Place::PictureFile)
            read = Files::readPicture(folder, match.arguments.at(i), content);
        else if (kind == Place::File)
            read = Files::read(folder, match.arguments.at(i), content);
        if (!read.isDone())
            return read;
    }
    return match.command->check ? match.command->check(folder, match.arguments) : Outcome::done();
}

bool CommandTable::holdsSecret(const QString& line)
{
    const Match found = match(line);
    for (int i = 0; i < found.arguments.size(); ++i) {
        if (place(*found.command, i) == Place::Secret)
            return true;
    }
    return false;
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
