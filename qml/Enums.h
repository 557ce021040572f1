#pragma once

#include <CalyxClient/OrdinalType>
#include <CalyxClient/PollType>

#include <QObject>

// The library's enumerations that belong to no class, in a form that QML can be told of. Each value is the
// library's own.

namespace QmlPollType {
Q_NAMESPACE
enum POLL_TYPE {
    TRUE_FALSE = Calyx::PollType::TRUE_FALSE,
    YES_NO_OTHER = Calyx::PollType::YES_NO_OTHER,
    MULTIPLE = Calyx::PollType::MULTIPLE,
    SCALE = Calyx::PollType::SCALE,
    SORT = Calyx::PollType::SORT,
    TEXT = Calyx::PollType::TEXT,
    WORD_SEED = Calyx::PollType::WORD_SEED,
    NUMBER = Calyx::PollType::NUMBER,
    CREATIVE = Calyx::PollType::CREATIVE,
    MATH_FORMULA = Calyx::PollType::MATH_FORMULA
};
Q_ENUM_NS(POLL_TYPE)
} // namespace QmlPollType

namespace QmlOrdinalType {
Q_NAMESPACE
enum ORDINAL_TYPE {
    TRUE_FALSE = Calyx::OrdinalType::TRUE_FALSE,
    YES_NO = Calyx::OrdinalType::YES_NO,
    YES_NO_MAYBE = Calyx::OrdinalType::YES_NO_MAYBE,
    YES_NO_UNSURE = Calyx::OrdinalType::YES_NO_UNSURE,
    YES_NO_OTHER = Calyx::OrdinalType::YES_NO_OTHER,
    ALPHA_UPPER = Calyx::OrdinalType::ALPHA_UPPER,
    ALPHA_LOWER = Calyx::OrdinalType::ALPHA_LOWER,
    NUMBER = Calyx::OrdinalType::NUMBER,
    AGREEMENT = Calyx::OrdinalType::AGREEMENT,
    CONFIDENCE = Calyx::OrdinalType::CONFIDENCE,
    GENERIC = Calyx::OrdinalType::GENERIC
};
Q_ENUM_NS(ORDINAL_TYPE)
} // namespace QmlOrdinalType
