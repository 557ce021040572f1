#pragma once

#include <QJsonObject>
#include <QString>

/// JSON where the library takes ready-made text.
namespace JsonText {

/// \p text as it stands between the quotes of a JSON string. The library puts values into its requests as
/// they are, so that a password that holds a quote needs this.
QString escaped(const QString& text);

/// The object at the start of \p text, whatever follows it; empty when there is none.
QJsonObject leadingObject(const QString& text);

/// \p object as text whose last member is a string: where a client adds a member of its own behind the last
/// double quote, anything else at the end would be cut in two. Empty when \p object has no string.
QString endingInString(const QJsonObject& object);

} // namespace JsonText
