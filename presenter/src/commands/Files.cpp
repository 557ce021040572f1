#include "commands/Files.h"

#include "commands/CommandContext.h"
#include "lesson/Lesson.h"
#include "text/Text.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

Outcome Files::read(const QString& folder, const QString& name, QByteArray& content)
{
    constexpr qint64 largest = qint64{16} * 1024 * 1024;
    QFile file(QDir(folder).filePath(name));
    if (!file.open(QIODevice::ReadOnly))
        return Outcome::failed(QStringLiteral("%1 cannot be read: %2.").arg(name, file.errorString()));
    if (file.size() > largest)
        return Outcome::failed(QStringLiteral("%1 is larger than 16 MiB.").arg(name));
    content = file.readAll();
    return Outcome::done();
}

Outcome Files::readPicture(const QString& folder, const QString& name, Picture& picture)
{
    QByteArray content;
    const Outcome read = Files::read(folder, name, content);
    if (read.isDone() && !content.startsWith("\x89PNG\r\n\x1a\n"))
        return Outcome::failed(
            QStringLiteral("%1 is not a PNG file. Others can be uploaded: see \"help card\".").arg(name));
    picture = Picture::ofPng(content);
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
    QString path;
    PresenterClient& client = context.lesson.client();
    if (!client.doUploadResource(plainName, content, &upload.id, &path))
        return context.refused(
            QStringLiteral("The upload of %1").arg(name),
            QStringLiteral("Check that you are logged in and that the file is not too large for "
                           "the service."));
    if (upload.id.isEmpty())
        return Outcome::failed(
            QStringLiteral("%1 was uploaded, but the service gave no id for it.").arg(name));
    upload.address = client.server() + path;
    return Outcome::done();
}
