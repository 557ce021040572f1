#pragma once

#include "calyxclient_export.h"

#include <QMap>
#include <QString>

namespace Calyx {

/// The schemes by which answer options are labelled.
namespace OrdinalType {

enum ORDINAL_TYPE {
    TRUE_FALSE = 0,
    YES_NO,
    YES_NO_MAYBE,
    YES_NO_UNSURE,
    YES_NO_OTHER,
    ALPHA_UPPER,
    ALPHA_LOWER,
    NUMBER,
    AGREEMENT,
    CONFIDENCE,
    GENERIC
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
