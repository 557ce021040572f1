#pragma once

#include <CalyxClient/calyxclient_export.h>

#include <QString>

/// Random identifiers: SockJS session ids and question ids. They tell things apart; they are not secrets.
class CALYXCLIENT_EXPORT RANDSTRING
{
public:
    /// \p length characters, each a letter A-Z, a-z or a digit; empty when \p length is 0 or less.
    ///
    /// Every call seeds Qt's generator of the calling thread with the time in whole seconds, so that two
    /// calls within one second return the same characters.
    static QString Generate(int length);
};
