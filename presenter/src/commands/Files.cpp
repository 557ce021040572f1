#include "commands/Files.h"

#include "commands/CommandContext.h"
#include "text/Text.h"
#include "text/Words.h"

#include <CalyxClient/PresenterClient>

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <memory>

Outcome Files::read(const QString& folder, const QString& name, QByteArray& content)
{
    constexpr qint64 largest = qint64{16} * 1024 * 1024;
    QFile file(QDir(folder).filePath(name));
    if (!file.open(QIODevice::ReadOnly))
        return Outcome::failed(Words::tr("%1 cannot be read: %2.").arg(name, file.errorString()));
    if (file.size() > largest)
        return Outcome::failed(Words::tr("%1 is larger than 16 MiB.").arg(name));
    content = file.readAll();
    return Outcome::done();
}

Outcome Files::readPicture(const QString& folder, const QString& name, QByteArray& png)
{
    const Outcome read = Files::read(folder, name, png);
    if (read.isDone() && !png.startsWith("\x89PNG\r\n\x1a\n"))
        return Outcome::failed(
            Words::tr("%1 is not a PNG file. Others can be uploaded: see \"help card\".").arg(name));
    return read;
}

Outcome Files::upload(CommandContext& context, const QString& name, Upload& upload)
{
    QByteArray content;
    if (const Outcome read = Files::read(context.folder, name, content); !read.isDone())
        return read;
    // The service takes the name as it stands, between double quotes.
    QString plainName = Text::clean(QFileInfo(name).fileName());
    plainName.replace(QLatin1Char('"'), QLatin1Char('_'));
    const auto stored = std::make_shared<Upload>();
    const Outcome outcome =
        context.askService(Words::tr("The upload of %1").arg(name),
                           Words::tr("Check that you are logged in and that the file is not too large for "
                                     "the service."),
                           [=](PresenterClient* client) {
                               QString path;
                               const bool isDone =
                                   client->doUploadResource(plainName, content, &stored->id, &path);
                               stored->address = client->server() + path;
                               return isDone;
                           });
    if (!outcome.isDone())
        return outcome;
    upload = *stored;
    return upload.id.isEmpty() ? Outcome::failed(Words::tr("%1 was uploaded, but the service gave no id "
                                                           "for it.")
                                                     .arg(name))
                               : Outcome::done();
}
