#pragma once

#include <QByteArray>
#include <QString>

#include <algorithm>

/// What may stand in the text of a raw request without ending a line of it, or splitting its first one.
namespace RequestText {

/// For the name of a server or a path.
inline bool isSafeInFirstLine(const QString& text)
{
    return std::none_of(text.begin(), text.end(),
                        [](QChar c) { return c <= QLatin1Char(' ') || c == QChar(0x7f); });
}

/// For the value of a header line.
inline bool isSafeInLine(const QByteArray& text)
{
    return std::none_of(text.begin(), text.end(), [](char c) { return c == '\r' || c == '\n' || c == '\0'; });
}

} // namespace RequestText
