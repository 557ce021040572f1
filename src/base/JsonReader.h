#pragma once

#include <QByteArray>
#include <QJsonDocument>
#include <QString>

/// Reads JSON that comes from outside.
namespace JsonReader {

/// The document that \p text holds; a null one, with the reason in \p error, when it holds none. Of several
/// members of the same name in an object the last counts, and what an earlier one holds is not looked at.
QJsonDocument read(const QString& text, QJsonParseError* error = nullptr);
/// The same of text in UTF-8.
QJsonDocument read(QByteArray utf8, QJsonParseError* error = nullptr);

} // namespace JsonReader
