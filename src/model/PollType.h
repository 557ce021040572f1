#pragma once

#include "calyxclient_export.h"

#include <QMap>
#include <QString>

namespace Calyx {

/// The kinds of poll.
namespace PollType {

enum POLL_TYPE {
    TRUE_FALSE = 0,
    YES_NO_OTHER,
    MULTIPLE,
    SCALE,
    SORT,
    TEXT,
    WORD_SEED,
    NUMBER,
    CREATIVE,
    MATH_FORMULA
};

/// The name that each kind has on the wire, for example "yes-no-other".
CALYXCLIENT_EXPORT QMap<POLL_TYPE, QString> POLL_TYPE_STR();

/// The service's activity-type identifier for each of these names: 32 lower-case hexadecimal digits.
/// "true-false" and "yes-no-other" are one activity to the service and share theirs.
CALYXCLIENT_EXPORT QMap<QString, QString> POLL_TYPE_ID();

} // namespace PollType
} // namespace Calyx
