#pragma once

#include <CalyxClient/calyxclient_export.h>

#include <QMap>
#include <QString>

namespace Calyx {

/// The kinds of poll.
namespace PollType {

/// A kind of poll: 0 to 9, in this order.
enum POLL_TYPE {
    TRUE_FALSE = 0, ///< "true-false": true or false
    YES_NO_OTHER,   ///< "yes-no-other": yes, no, or a third option
    MULTIPLE,       ///< "multiple": one or several of the options
    SCALE,          ///< "scale": one step of a scale
    SORT,           ///< "sort": the options, brought into order
    TEXT,           ///< "text": a free text
    WORD_SEED,      ///< "word-seed": single words; goes out as a poll document
    NUMBER,         ///< "number": a number
    CREATIVE,       ///< "creative": free work; goes out as a poll document
    MATH_FORMULA    ///< "math formula": a formula in LaTeX
};

/// The name that each kind has on the wire, for example "yes-no-other".
CALYXCLIENT_EXPORT QMap<POLL_TYPE, QString> POLL_TYPE_STR();

/// The service's activity-type identifier for each of these names: 32 lower-case hexadecimal digits.
/// "true-false" and "yes-no-other" are one activity to the service and share theirs.
CALYXCLIENT_EXPORT QMap<QString, QString> POLL_TYPE_ID();

} // namespace PollType
} // namespace Calyx
