#pragma once

#include <CalyxClient/calyxclient_export.h>

#include <QMap>
#include <QString>

namespace Calyx {

/// The schemes by which answer options are labelled.
namespace OrdinalType {

/// A labelling scheme: 0 to 10, in this order. Not to be mixed up with the kinds of poll, some of which have
/// the same names.
enum ORDINAL_TYPE {
    TRUE_FALSE = 0, ///< "true-false": options "A", "B", then "?", shown as TRUE, FALSE, DONTKNOW
    YES_NO,         ///< "yes-no": options "A", "B", then "?", shown as YES, NO, DONTKNOW
    YES_NO_MAYBE,   ///< "yes-no-maybe": as YES_NO
    YES_NO_UNSURE,  ///< "yes-no-unsure": as YES_NO
    YES_NO_OTHER,   ///< "yes-no-other": as YES_NO
    ALPHA_UPPER,    ///< "alpha-upper": options "A", "B", "C"
    ALPHA_LOWER,    ///< "alpha-lower": options "a", "b", "c"
    NUMBER,         ///< "number": options "0", "1", "2"
    AGREEMENT,      ///< "agreement": numbered as NUMBER
    CONFIDENCE,     ///< "confidence": numbered as NUMBER
    GENERIC         ///< "generic": numbered as NUMBER
};

/// The name that each scheme has on the wire, for example "alpha-upper".
CALYXCLIENT_EXPORT QMap<ORDINAL_TYPE, QString> ORDINAL_TYPE_STR();

/// The id of option \p index (from 0) in \p scheme: "A", "B", then "?" in the true/false and yes/no schemes,
/// successive letters in the letter schemes, the number \p index in all others.
CALYXCLIENT_EXPORT QString optionId(ORDINAL_TYPE scheme, int index);

/// The text of option \p index in \p scheme: "TRUE", "FALSE" or "YES", "NO", then "DONTKNOW"; empty in all
/// others.
CALYXCLIENT_EXPORT QString optionText(ORDINAL_TYPE scheme, int index);

} // namespace OrdinalType
} // namespace Calyx
