#include "commands/CommandTable.h"
#include "lesson/PollKinds.h"
#include "text/LineSyntax.h"

#include <CalyxClient/SockJSConnector>

#include <QDir>

#include <utility>

namespace {

QStringList files(const QString& piece, const QString& folder)
{
    const QString path = piece.left(piece.lastIndexOf(QLatin1Char('/')) + 1);
    const QDir dir(QDir(folder).filePath(path));
    QStringList names;
    const QFileInfoList entries = dir.entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot);
    for (const QFileInfo& entry : entries)
        names.append(path + entry.fileName() + QLatin1String(entry.isDir() ? "/" : ""));
    return names;
}

// What may follow the words of a name: "session" is followed by "start", "stop" and so on.
QStringList nameWords(const QStringList& words)
{
    const QString start =
        words.isEmpty() ? QString() : words.join(QLatin1Char(' ')).toLower() + QLatin1Char(' ');
    QStringList next;
    for (const Command& command : CommandTable::commands()) {
        const QString name = QLatin1String(command.name);
        if (name.startsWith(start))
            next.append(name.mid(start.size()).section(QLatin1Char(' '), 0, 0));
    }
    return next;
}

QStringList topicNames()
{
    QStringList names;
    for (const CommandTable::Topic& topic : CommandTable::topics())
        names.append(QLatin1String(topic.name));
    return names;
}

// "to=" is followed by a learner; any other word may be one that the command knows.
QStringList anywhere(const Command& command, int index, const QString& piece, const QStringList& learners)
{
    const QString to = QStringLiteral("to=");
    if (command.most >= 0 && index >= command.most)
        return {};
    const QStringList keywords = CommandTable::keywords(command);
    if (!keywords.contains(to) || !piece.startsWith(to))
        return keywords;
    QStringList settings;
    for (const QString& learner : learners)
        settings.append(to + learner);
    return settings;
}

QStringList atPlace(const Command& command, const QStringList& arguments, const QString& piece,
                    const QStringList& learners, const QString& folder)
{
    // Behind these words stands a file, at whatever place.
    const QString before = arguments.isEmpty() ? QString() : arguments.last();
    if (before == QLatin1String("picture") || before == QLatin1String("upload"))
        return files(piece, folder);
    switch (CommandTable::place(command, arguments.size())) {
    case Place::PollType:
        return PollKinds::typeNames();
    case Place::Ordinal:
        return PollKinds::ordinalNames();
    case Place::File:
    case Place::PictureFile:
    case Place::NewFile:
        return files(piece, folder);
    case Place::Learner:
        return learners;
    case Place::CommandName:
        return nameWords(arguments) + (arguments.isEmpty() ? topicNames() : QStringList());
    case Place::Transport:
        return SockJSConnector::PROTOCOL_TYPE_STR().values();
    case Place::Keyword:
        return CommandTable::keywords(command);
    case Place::Amount:
        return {QStringLiteral("all")};
    case Place::Anything:
        return anywhere(command, arguments.size(), piece, learners);
    case Place::Number:
    case Place::Seconds:
    case Place::Secret:
        break;
    }
    return {};
}

} // namespace

Completion Completer::complete(const QString& line, const QStringList& learners, const QString& folder)
{
    const LineSyntax::Split split = LineSyntax::split(line);
    QStringList words = split.words;
    const QString piece = split.endsInWord ? words.takeLast() : QString();
    QStringList all = nameWords(words);
    if (const Command* command = CommandTable::find(words)) {
        const int nameLength = QString(QLatin1String(command->name)).count(QLatin1Char(' ')) + 1;
        all += atPlace(*command, words.mid(nameLength), piece, learners, folder);
    }
    Completion completion;
    completion.start = split.lastStart;
    for (const QString& candidate : std::as_const(all)) {
        if (candidate.startsWith(piece, Qt::CaseInsensitive))
            completion.candidates.append(LineSyntax::quoted(candidate));
    }
    completion.candidates.removeDuplicates();
    completion.candidates.sort();
    return completion;
}
