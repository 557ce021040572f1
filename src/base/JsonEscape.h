#pragma once

#include <QtGlobal>

/// The letter that follows the backslash in JSON's short escape of a character; 0 for one that has none.
constexpr ushort jsonEscape(ushort character)
{
    switch (character) {
    case '"':
    case '\\':
        return character;
    case '\b':
        return 'b';
    case '\f':
        return 'f';
    case '\n':
        return 'n';
    case '\r':
        return 'r';
    case '\t':
        return 't';
    default:
        return 0;
    }
}
