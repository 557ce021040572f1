#include "commands/ArgumentReader.h"
#include "commands/CommandContext.h"
#include "commands/CommandTable.h"
#include "commands/Files.h"
#include "lesson/Notebook.h"
#include "terminal/Screen.h"
#include "text/Table.h"
#include "text/Text.h"
#include "text/Words.h"

#include <QFileInfo>

namespace {

Outcome told(CommandContext& context, const QString& name)
{
    context.screen.note(Words::tr("Card shown: %1").arg(name));
    return Outcome::done();
}

// Waits until it is shown: a large picture is uploaded before.
Outcome show(CommandContext& context, const std::function<void()>& begin)
{
    const int before = context.notes.cards();
    return context.carryOut({Words::tr("The card"), QString(), begin,
                             [&context, before] { return context.notes.cards() > before; }});
}

Outcome showPictureAt(CommandContext& context, const QString& address, const QString& name)
{
    const Outcome shown = show(context, [&] { context.lesson.showPictureAt(address); });
    return shown.isDone() ? told(context, name) : shown;
}

// "name=TEXT"; without it, what the card is made from.
QString takeName(Arguments& arguments)
{
    QString name = QFileInfo(arguments.first()).fileName();
    ArgumentReader::takeSetting(arguments, QStringLiteral("name"), name);
    return Text::clean(name);
}

template<typename Picture>
Outcome add(CommandContext& context, const QString& name, const Picture& picture)
{
    if (!context.lesson.deck()->add(name, picture))
        return Outcome::failed(
            Words::tr("That is no address of a picture, such as https://... or data:image/..."));
    context.screen.note(Words::tr("Card %1 is \"%2\".").arg(context.lesson.deck()->rowCount()).arg(name));
    return Outcome::done();
}

Outcome go(CommandContext& context, int number)
{
    Calyx::Deck& deck = *context.lesson.deck();
    if (!deck.setCurrent(number))
        return Outcome::failed(Words::tr("There is no card %1: the lesson has %2.")
                                   .arg(QString::number(number), Text::count(deck.rowCount(), "card")));
    context.screen.note(
        Words::tr("  Card %1 of %2: %3")
            .arg(QString::number(number), QString::number(deck.rowCount()), deck.name(number)));
    return Outcome::done();
}

Outcome card(CommandContext& context, const Arguments& arguments)
{
    QByteArray picture;
    if (const Outcome read = Files::readPicture(context.folder, arguments.first(), picture); !read.isDone())
        return read;
    const Outcome shown = show(context, [&] { context.lesson.showPicture(picture); });
    return shown.isDone() ? told(context, arguments.first()) : shown;
}

Outcome cardReference(CommandContext& context, const Arguments& arguments)
{
    return showPictureAt(context, arguments.first(), arguments.first());
}

Outcome cardUpload(CommandContext& context, const Arguments& arguments)
{
    Files::Upload upload;
    if (const Outcome stored = Files::upload(context, arguments.first(), upload); !stored.isDone())
        return stored;
    return showPictureAt(context, upload.address, arguments.first());
}

Outcome upload(CommandContext& context, const Arguments& arguments)
{
    Files::Upload upload;
    if (const Outcome stored = Files::upload(context, arguments.first(), upload); !stored.isDone())
        return stored;
    context.screen.print(Words::tr("Resource %1, for learners at %2")
                             .arg(Text::clean(upload.id), Text::clean(upload.address)));
    return Outcome::done();
}

Outcome deck(CommandContext& context, const Arguments&)
{
    constexpr int longest = 60;
    const Calyx::Deck& deck = *context.lesson.deck();
    QVector<QStringList> rows;
    for (int number = 1; number <= deck.rowCount(); ++number) {
        const QString url = deck.url(number);
        rows.append({QLatin1String(number == deck.current() ? ">" : ""), QString::number(number),
                     deck.name(number),
                     url.isEmpty() ? Words::tr("PNG, %1 bytes").arg(deck.picture(number).size())
                                   : Text::elide(url, longest, context.screen.style().unicode)});
    }
    if (rows.isEmpty())
        context.screen.print(Words::tr("The lesson has no cards. \"deck add\" adds one."));
    else
        context.screen.print(
            Table::lines({QString(), QStringLiteral("#"), Words::tr("Card"), Words::tr("Picture")}, rows,
                         context.screen.style()));
    return Outcome::done();
}

Outcome deckAdd(CommandContext& context, const Arguments& given)
{
    Arguments arguments = given;
    const QString name = takeName(arguments);
    QByteArray picture;
    if (const Outcome read = Files::readPicture(context.folder, arguments.value(0), picture); !read.isDone())
        return read;
    return add(context, name, picture);
}

Outcome deckUpload(CommandContext& context, const Arguments& given)
{
    Arguments arguments = given;
    const QString name = takeName(arguments);
    Files::Upload upload;
    if (const Outcome stored = Files::upload(context, arguments.value(0), upload); !stored.isDone())
        return stored;
    return add(context, name, upload.address);
}

Outcome deckReference(CommandContext& context, const Arguments& given)
{
    Arguments arguments = given;
    const QString name = takeName(arguments);
    return add(context, name, arguments.value(0));
}

Outcome deckNext(CommandContext& context, const Arguments&)
{
    return go(context, context.lesson.deck()->current() + 1);
}

Outcome deckPrevious(CommandContext& context, const Arguments&)
{
    return go(context, context.lesson.deck()->current() - 1);
}

Outcome deckGo(CommandContext& context, const Arguments& arguments)
{
    return go(context, arguments.first().toInt());
}

Outcome deckShow(CommandContext& context, const Arguments&)
{
    return show(context, [&] { context.lesson.showCard(); });
}

namespace F = Fact;
using P = Place;

} // namespace

// A row tells all about a command; clang-format would put each member on a line of its own.
// clang-format off
QVector<Command> CommandTable::cards()
{
    return {
        {"card", "FILE", QT_TRANSLATE_NOOP("Words", "Show a PNG picture on the learners' devices."),
         QT_TRANSLATE_NOOP("Words", "A small picture travels in the message; one of more than 64 KiB is uploaded before."),
         F::Channel, F::Nothing, F::Nothing, 1, 1, {P::PictureFile}, "", card},
        {"card ref", "REFERENCE", QT_TRANSLATE_NOOP("Words", "Show a picture that devices load from an address."),
         "",
         F::Channel, F::Nothing, F::Nothing, 1, 1, {}, "", cardReference},
        {"card upload", "FILE", QT_TRANSLATE_NOOP("Words", "Upload a picture and show it by its address."),
         "",
         F::Channel, F::Nothing, F::Nothing, 1, 1, {P::File}, "", cardUpload},
        {"upload", "FILE", QT_TRANSLATE_NOOP("Words", "Store a file at the service and print its address."),
         "",
         F::Login, F::Nothing, F::Nothing, 1, 1, {P::File}, "", upload},
        {"deck", "", QT_TRANSLATE_NOOP("Words", "List the cards of the lesson."),
         QT_TRANSLATE_NOOP("Words", "They are what the remote control goes through, and pushes to the learners."),
         F::Nothing, F::Nothing, F::Nothing, 0, 0, {}, "", deck},
        {"deck add", "FILE [name=TEXT]", QT_TRANSLATE_NOOP("Words", "Add a PNG picture to the lesson's cards."),
         "",
         F::Nothing, F::Cards, F::Nothing, 1, 2, {P::PictureFile}, "name=", deckAdd},
        {"deck upload", "FILE [name=TEXT]", QT_TRANSLATE_NOOP("Words", "Upload a picture and add it by its address."),
         "",
         F::Login, F::Cards, F::Nothing, 1, 2, {P::File}, "name=", deckUpload},
        {"deck ref", "REFERENCE [name=TEXT]", QT_TRANSLATE_NOOP("Words", "Add a picture that devices load from an address."),
         "",
         F::Nothing, F::Cards, F::Nothing, 1, 2, {}, "name=", deckReference},
        {"deck next", "", QT_TRANSLATE_NOOP("Words", "Go to the next card."),
         "",
         F::Cards, F::Nothing, F::Nothing, 0, 0, {}, "", deckNext},
        {"deck previous", "", QT_TRANSLATE_NOOP("Words", "Go to the card before."),
         "",
         F::Cards, F::Nothing, F::Nothing, 0, 0, {}, "", deckPrevious},
        {"deck go", "NUMBER", QT_TRANSLATE_NOOP("Words", "Go to a card."),
         "",
         F::Cards, F::Nothing, F::Nothing, 1, 1, {P::Number}, "", deckGo},
        {"deck show", "", QT_TRANSLATE_NOOP("Words", "Show the current card on the learners' devices."),
         "",
         F::Channel | F::Cards, F::Nothing, F::Nothing, 0, 0, {}, "", deckShow},
    };
}
// clang-format on
