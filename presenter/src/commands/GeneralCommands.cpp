#include "commands/ArgumentReader.h"
#include "commands/CommandContext.h"
#include "commands/CommandTable.h"
#include "terminal/Screen.h"
#include "text/Suggestions.h"
#include "text/Text.h"
#include "text/Words.h"

#include <CalyxClient/Lesson>
#include <CalyxClient/SockJSConnector>

namespace {

Outcome checkTransports(const QStringList& names)
{
    const QStringList known = SockJSConnector::PROTOCOL_TYPE_STR().values();
    for (const QString& name : names) {
        if (!known.contains(name))
            return Outcome::failed(
                Words::tr("There is no transport \"%1\".%2 There are %3.")
                    .arg(name, Suggestions::question(name, known), known.join(QStringLiteral(", "))));
    }
    return Outcome::done();
}

Outcome checkSet(const QString&, const Arguments& arguments)
{
    const QStringList values = arguments.mid(1);
    if (arguments.first() == QLatin1String("transports"))
        return checkTransports(values);
    qint64 msecs = 0;
    if (values.size() == 1 && ArgumentReader::readSeconds(values.first(), msecs))
        return Outcome::done();
    return Outcome::failed(
        Words::tr("\"%1\" is not a number of seconds.").arg(values.join(QLatin1Char(' '))));
}

Outcome set(CommandContext& context, const Arguments& arguments)
{
    const QStringList values = arguments.mid(1);
    qint64 msecs = 0;
    ArgumentReader::readSeconds(values.first(), msecs);
    if (arguments.first() == QLatin1String("transports")) {
        context.lesson.setTransports(values);
    } else if (arguments.first() == QLatin1String("open-limit")) {
        context.lesson.setOpenLimit(static_cast<int>(msecs));
    } else {
        context.waitLimit = static_cast<double>(msecs) / Text::msecsPerSecond;
    }
    context.screen.note(
        Words::tr("\"%1\" is %2 now.").arg(arguments.first(), values.join(QStringLiteral(", "))));
    return Outcome::done();
}

Outcome help(CommandContext& context, const Arguments& arguments)
{
    const QString name = arguments.join(QLatin1Char(' '));
    const int columns = context.screen.style().columns - 1;
    const QStringList lines =
        name.isEmpty() ? CommandHelp::overview(columns) : CommandHelp::about(name, columns);
    if (lines.isEmpty())
        return Outcome::failed(
            Words::tr("There is neither a command nor a topic \"%1\". \"help\" lists them.").arg(name));
    context.screen.print(lines);
    return Outcome::done();
}

Outcome quit(CommandContext& context, const Arguments&)
{
    context.isQuitting = true;
    return Outcome::done();
}

namespace F = Fact;
using P = Place;

} // namespace

// A row tells all about a command; clang-format would put each member on a line of its own.
// clang-format off
QVector<Command> CommandTable::general()
{
    return {
        {"set", "NAME VALUE ...", QT_TRANSLATE_NOOP("Words", "Change a setting."),
         QT_TRANSLATE_NOOP("Words", "transports NAME ...: those to use for the next session instead of the tenant's.\n"
         "open-limit SECONDS: how long a transport may take to open; 0 is no limit.\n"
         "wait-limit SECONDS: how long a \"wait\" lasts when it does not say."),
         F::Nothing, F::Nothing, F::Nothing, 2, 4, {P::Keyword}, "transports open-limit wait-limit", set, checkSet},
        {"help", "[TOPIC | COMMAND]", QT_TRANSLATE_NOOP("Words", "List the commands, or explain a topic or one of them."),
         "",
         F::Nothing, F::Nothing, F::Nothing, 0, 2, {P::CommandName, P::CommandName}, "", help},
        {"quit", "", QT_TRANSLATE_NOOP("Words", "End the lesson: stop the session, log out, leave."),
         QT_TRANSLATE_NOOP("Words", "Ctrl-D does so, too."),
         F::Nothing, F::Nothing, F::Nothing, 0, 0, {}, "", quit},
    };
}
// clang-format on
