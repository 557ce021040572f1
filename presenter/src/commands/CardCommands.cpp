#include "app/Host.h"
#include "commands/Handlers.h"
#include "commands/Support.h"
#include "lesson/Lesson.h"
#include "terminal/Screen.h"
#include "text/JsonText.h"
#include "text/Text.h"

#include <QFileInfo>

namespace {

Outcome show(Host& host, const QString& what)
{
    host.lesson.collab()->showImageCard(true);
    host.lesson.countCard();
    host.screen.note(QStringLiteral("Card shown: %1").arg(what));
    return Outcome::done();
}

// The picture of a poll that runs has gone out with it; stopping the poll would clear the card's.
void setReference(Host& host, const QString& reference)
{
    host.lesson.collab()->clearCardImage();
    host.lesson.collab()->setCardImageRef(JsonText::escaped(reference));
}

// The service takes the name as it stands, between double quotes.
QString uploadName(const QString& path)
{
    QString name = Text::clean(QFileInfo(path).fileName());
    return name.replace(QLatin1Char('"'), QLatin1Char('_'));
}

Outcome store(Host& host, const QString& fileName, QString& id, QString& path)
{
    QByteArray content;
    if (const Outcome read = Support::readFile(host, fileName, content); !read.isDone())
        return read;
    if (!host.lesson.client().doUploadResource(uploadName(fileName), content, &id, &path))
        return Support::refused(host, QStringLiteral("The upload of %1").arg(fileName),
                                QStringLiteral("Check that you are logged in and that the file is not too "
                                               "large for the service."));
    if (id.isEmpty())
        return Outcome::failed(
            QStringLiteral("%1 was uploaded, but the service gave no id for it.").arg(fileName));
    return Outcome::done();
}

} // namespace

Outcome Handlers::card(Host& host, const Arguments& arguments)
{
    if (const Outcome live = Support::needLive(host); !live.isDone())
        return live;
    QByteArray picture;
    if (const Outcome read = Support::readPicture(host, arguments.first(), picture); !read.isDone())
        return read;
    host.lesson.collab()->setCardImage(picture);
    return show(host, arguments.first());
}

Outcome Handlers::cardReference(Host& host, const Arguments& arguments)
{
    if (const Outcome live = Support::needLive(host); !live.isDone())
        return live;
    setReference(host, arguments.first());
    return show(host, arguments.first());
}

Outcome Handlers::cardUpload(Host& host, const Arguments& arguments)
{
    if (const Outcome live = Support::needLive(host); !live.isDone())
        return live;
    QString id;
    QString path;
    if (const Outcome stored = store(host, arguments.first(), id, path); !stored.isDone())
        return stored;
    setReference(host, host.lesson.client().server() + path);
    return show(host, arguments.first());
}

Outcome Handlers::upload(Host& host, const Arguments& arguments)
{
    QString id;
    QString path;
    if (const Outcome stored = store(host, arguments.first(), id, path); !stored.isDone())
        return stored;
    host.screen.print(QStringLiteral("Resource %1, for learners at %2")
                          .arg(Text::clean(id), Text::clean(host.lesson.client().server() + path)));
    return Outcome::done();
}

Outcome Handlers::heavy(Host& host, const Arguments&)
{
    const Outcome live = Support::needLive(host);
    if (live.isDone())
        host.lesson.collab()->sendHeavy();
    return live;
}
