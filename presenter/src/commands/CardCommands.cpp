#include "app/Host.h"
#include "commands/Handlers.h"
#include "commands/Support.h"
#include "lesson/Lesson.h"
#include "terminal/Screen.h"
#include "text/Table.h"
#include "text/Text.h"

#include <QFileInfo>

namespace {

Outcome show(Host& host, const Picture& picture, const QString& what)
{
    host.lesson.showPicture(picture, what);
    return Outcome::done();
}

// "name=TEXT"; without it, what the card is made from.
QString takeName(Arguments& arguments)
{
    QString name = QFileInfo(arguments.first()).fileName();
    Support::takeSetting(arguments, QStringLiteral("name"), name);
    return Text::clean(name);
}

Outcome add(Host& host, const QString& name, const Picture& picture)
{
    host.lesson.addCard({name, picture});
    host.lesson.remoteControl().tellCard();
    return Outcome::done();
}

Outcome go(Host& host, int number)
{
    if (!host.lesson.goToCard(number))
        return Outcome::failed(
            QStringLiteral("There is no card %1: the lesson has %2.")
                .arg(QString::number(number), Text::count(host.lesson.deck().count(), "card")));
    host.lesson.remoteControl().tellCard();
    return Outcome::done();
}

} // namespace

Outcome Handlers::card(Host& host, const Arguments& arguments)
{
    if (const Outcome live = Support::needLive(host); !live.isDone())
        return live;
    Picture picture;
    if (const Outcome read = Support::readPicture(host, arguments.first(), picture); !read.isDone())
        return read;
    return show(host, picture, arguments.first());
}

Outcome Handlers::cardReference(Host& host, const Arguments& arguments)
{
    if (const Outcome live = Support::needLive(host); !live.isDone())
        return live;
    return show(host, Picture::ofReference(arguments.first()), arguments.first());
}

Outcome Handlers::cardUpload(Host& host, const Arguments& arguments)
{
    if (const Outcome live = Support::needLive(host); !live.isDone())
        return live;
    Support::Upload upload;
    if (const Outcome stored = Support::upload(host, arguments.first(), upload); !stored.isDone())
        return stored;
    return show(host, Picture::ofReference(upload.address), arguments.first());
}

Outcome Handlers::upload(Host& host, const Arguments& arguments)
{
    Support::Upload upload;
    if (const Outcome stored = Support::upload(host, arguments.first(), upload); !stored.isDone())
        return stored;
    host.screen.print(QStringLiteral("Resource %1, for learners at %2")
                          .arg(Text::clean(upload.id), Text::clean(upload.address)));
    return Outcome::done();
}

Outcome Handlers::heavy(Host& host, const Arguments&)
{
    const Outcome live = Support::needLive(host);
    if (live.isDone())
        host.lesson.collab()->sendHeavy();
    return live;
}

Outcome Handlers::deck(Host& host, const Arguments&)
{
    const Deck& deck = host.lesson.deck();
    QVector<QStringList> rows;
    for (int number = 1; number <= deck.count(); ++number) {
        const Picture picture = deck.card(number).picture;
        const bool isInline = picture.reference().isEmpty();
        constexpr int longest = 60;
        rows.append({QLatin1String(number == deck.current() ? ">" : ""), QString::number(number),
                     deck.card(number).name,
                     isInline ? QStringLiteral("PNG, %1 bytes").arg(picture.png().size())
                              : Text::elide(picture.reference(), longest, host.screen.style().unicode)});
    }
    if (rows.isEmpty())
        host.screen.print(QStringLiteral("The lesson has no cards. \"deck add\" adds one."));
    else
        host.screen.print(
            Table::lines({QString(), QStringLiteral("#"), QStringLiteral("Card"), QStringLiteral("Picture")},
                         rows, host.screen.style()));
    return Outcome::done();
}

Outcome Handlers::deckAdd(Host& host, const Arguments& given)
{
    Arguments arguments = given;
    const QString name = takeName(arguments);
    Picture picture;
    if (const Outcome read = Support::readPicture(host, arguments.value(0), picture); !read.isDone())
        return read;
    return add(host, name, picture);
}

Outcome Handlers::deckUpload(Host& host, const Arguments& given)
{
    Arguments arguments = given;
    const QString name = takeName(arguments);
    Support::Upload upload;
    if (const Outcome stored = Support::upload(host, arguments.value(0), upload); !stored.isDone())
        return stored;
    return add(host, name, Picture::ofReference(upload.address));
}

Outcome Handlers::deckReference(Host& host, const Arguments& given)
{
    Arguments arguments = given;
    const QString name = takeName(arguments);
    return add(host, name, Picture::ofReference(arguments.value(0)));
}

Outcome Handlers::deckNext(Host& host, const Arguments&)
{
    return go(host, host.lesson.deck().current() + 1);
}

Outcome Handlers::deckPrevious(Host& host, const Arguments&)
{
    return go(host, host.lesson.deck().current() - 1);
}

Outcome Handlers::deckGo(Host& host, const Arguments& arguments)
{
    return go(host, arguments.first().toInt());
}

Outcome Handlers::deckShow(Host& host, const Arguments&)
{
    if (const Outcome live = Support::needLive(host); !live.isDone())
        return live;
    return host.lesson.showCurrentCard()
               ? Outcome::done()
               : Outcome::failed(QStringLiteral("The lesson has no cards. Use \"deck add\"."));
}
