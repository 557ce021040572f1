#pragma once

#include "commands/Command.h"

#include <QByteArray>
#include <QString>

/// Files that commands name.
namespace Files {

/// Reads a file whose name is relative to \p folder.
Outcome read(const QString& folder, const QString& name, QByteArray& content);
/// Reads a PNG file.
Outcome readPicture(const QString& folder, const QString& name, QByteArray& png);

/// A file that the service keeps.
struct Upload
{
    QString id;
    QString address;
};
Outcome upload(CommandContext& context, const QString& name, Upload& upload);

} // namespace Files
