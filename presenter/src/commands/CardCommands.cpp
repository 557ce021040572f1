#include "commands/ArgumentReader.h"
#include "commands/CommandContext.h"
#include "commands/CommandTable.h"
#include "commands/Files.h"
#include "lesson/Lesson.h"
#include "terminal/Screen.h"
#include "text/Table.h"
#include "text/Text.h"

#include <QFileInfo>

namespace {

Outcome show(CommandContext& context, const Picture& picture, const QString& what)
{
    context.lesson.showPicture(picture, what);
    return Outcome::done();
}

// "name=TEXT"; without it, what the card is made from.
QString takeName(Arguments& arguments)
{
    QString name = QFileInfo(arguments.first()).fileName();
    ArgumentReader::takeSetting(arguments, QStringLiteral("name"), name);
    return Text::clean(name);
}

Outcome add(CommandContext& context, const QString& name, const Picture& picture)
{
    context.lesson.addCard({name, picture});
    context.lesson.remoteControl().tellCard();
    context.screen.note(QStringLiteral("Card %1 is \"%2\".").arg(context.lesson.deck().count()).arg(name));
    return Outcome::done();
}

Outcome go(CommandContext& context, int number)
{
    if (!context.lesson.goToCard(number))
        return Outcome::failed(
            QStringLiteral("There is no card %1: the lesson has %2.")
                .arg(QString::number(number), Text::count(context.lesson.deck().count(), "card")));
    context.lesson.remoteControl().tellCard();
    return Outcome::done();
}

Outcome card(CommandContext& context, const Arguments& arguments)
{
    Picture picture;
    if (const Outcome read = Files::readPicture(context.folder, arguments.first(), picture); !read.isDone())
        return read;
    return show(context, picture, arguments.first());
}

Outcome cardReference(CommandContext& context, const Arguments& arguments)
{
    return show(context, Picture::ofReference(arguments.first()), arguments.first());
}

Outcome cardUpload(CommandContext& context, const Arguments& arguments)
{
    Files::Upload upload;
    if (const Outcome stored = Files::upload(context, arguments.first(), upload); !stored.isDone())
        return stored;
    return show(context, Picture::ofReference(upload.address), arguments.first());
}

Outcome upload(CommandContext& context, const Arguments& arguments)
{
    Files::Upload upload;
    if (const Outcome stored = Files::upload(context, arguments.first(), upload); !stored.isDone())
        return stored;
    context.screen.print(QStringLiteral("Resource %1, for learners at %2")
                             .arg(Text::clean(upload.id), Text::clean(upload.address)));
    return Outcome::done();
}

Outcome deck(CommandContext& context, const Arguments&)
{
    const Deck& deck = context.lesson.deck();
    QVector<QStringList> rows;
    for (int number = 1; number <= deck.count(); ++number) {
        const Picture picture = deck.card(number).picture;
        const bool isInline = picture.reference().isEmpty();
        constexpr int longest = 60;
        rows.append({QLatin1String(number == deck.current() ? ">" : ""), QString::number(number),
                     deck.card(number).name,
                     isInline ? QStringLiteral("PNG, %1 bytes").arg(picture.png().size())
                              : Text::elide(picture.reference(), longest, context.screen.style().unicode)});
    }
    if (rows.isEmpty())
        context.screen.print(QStringLiteral("The lesson has no cards. \"deck add\" adds one."));
    else
        context.screen.print(
            Table::lines({QString(), QStringLiteral("#"), QStringLiteral("Card"), QStringLiteral("Picture")},
                         rows, context.screen.style()));
    return Outcome::done();
}

Outcome deckAdd(CommandContext& context, const Arguments& given)
{
    Arguments arguments = given;
    const QString name = takeName(arguments);
    Picture picture;
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
    return add(context, name, Picture::ofReference(upload.address));
}

Outcome deckReference(CommandContext& context, const Arguments& given)
{
    Arguments arguments = given;
    const QString name = takeName(arguments);
    return add(context, name, Picture::ofReference(arguments.value(0)));
}

Outcome deckNext(CommandContext& context, const Arguments&)
{
    return go(context, context.lesson.deck().current() + 1);
}

Outcome deckPrevious(CommandContext& context, const Arguments&)
{
    return go(context, context.lesson.deck().current() - 1);
}

Outcome deckGo(CommandContext& context, const Arguments& arguments)
{
    return go(context, arguments.first().toInt());
}

Outcome deckShow(CommandContext& context, const Arguments&)
{
    context.lesson.showCurrentCard();
    return Outcome::done();
}

namespace F = Fact;
using P = Place;

// A row tells all about a command; clang-format would put each member on a line of its own.
// clang-format off
const Command rows[] = {
    {"card", "FILE", "Show a PNG picture on the learners' devices.",
     "The picture travels in the message; a large one is announced before.",
     F::Channel, F::Nothing, F::Nothing, 1, 1, {P::PictureFile}, "", card},
    {"card ref", "REFERENCE", "Show a picture that devices load from an address.",
     "",
     F::Channel, F::Nothing, F::Nothing, 1, 1, {}, "", cardReference},
    {"card upload", "FILE", "Upload a picture and show it by its address.",
     "",
     F::Channel, F::Nothing, F::Nothing, 1, 1, {P::File}, "", cardUpload},
    {"upload", "FILE", "Store a file at the service and print its address.",
     "",
     F::Login, F::Nothing, F::Nothing, 1, 1, {P::File}, "", upload},
    {"deck", "", "List the cards of the lesson.",
     "They are what the remote control goes through, and pushes to the learners.",
     F::Nothing, F::Nothing, F::Nothing, 0, 0, {}, "", deck},
    {"deck add", "FILE [name=TEXT]", "Add a PNG picture to the lesson's cards.",
     "",
     F::Nothing, F::Cards, F::Nothing, 1, 2, {P::PictureFile}, "name=", deckAdd},
    {"deck upload", "FILE [name=TEXT]", "Upload a picture and add it by its address.",
     "",
     F::Login, F::Cards, F::Nothing, 1, 2, {P::File}, "name=", deckUpload},
    {"deck ref", "REFERENCE [name=TEXT]", "Add a picture that devices load from an address.",
     "",
     F::Nothing, F::Cards, F::Nothing, 1, 2, {}, "name=", deckReference},
    {"deck next", "", "Go to the next card.",
     "",
     F::Cards, F::Nothing, F::Nothing, 0, 0, {}, "", deckNext},
    {"deck previous", "", "Go to the card before.",
     "",
     F::Cards, F::Nothing, F::Nothing, 0, 0, {}, "", deckPrevious},
    {"deck go", "NUMBER", "Go to a card.",
     "",
     F::Cards, F::Nothing, F::Nothing, 1, 1, {P::Number}, "", deckGo},
    {"deck show", "", "Show the current card on the learners' devices.",
     "",
     F::Channel | F::Cards, F::Nothing, F::Nothing, 0, 0, {}, "", deckShow},
};
// clang-format on

} // namespace

QVector<Command> CommandTable::cards()
{
    return QVector<Command>(std::begin(rows), std::end(rows));
}
