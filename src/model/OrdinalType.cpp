#include "model/OrdinalType.h"

namespace Calyx {
namespace OrdinalType {

namespace {

bool isYesNo(ORDINAL_TYPE scheme)
{
    return scheme >= YES_NO && scheme <= YES_NO_OTHER;
}

// The true/false and yes/no schemes know two answers; every further option means "don't know".
QString firstSecondOrOther(int index, const char* first, const char* second, const char* other)
{
    return QLatin1String(index == 0 ? first : index == 1 ? second : other);
}

QString letter(char first, int index)
{
    return QString(QChar(static_cast<ushort>(first + index)));
}

} // namespace

QMap<ORDINAL_TYPE, QString> ORDINAL_TYPE_STR()
{
    return {{TRUE_FALSE, QStringLiteral("true-false")},
            {YES_NO, QStringLiteral("yes-no")},
            {YES_NO_MAYBE, QStringLiteral("yes-no-maybe")},
            {YES_NO_UNSURE, QStringLiteral("yes-no-unsure")},
            {YES_NO_OTHER, QStringLiteral("yes-no-other")},
            {ALPHA_UPPER, QStringLiteral("alpha-upper")},
            {ALPHA_LOWER, QStringLiteral("alpha-lower")},
            {NUMBER, QStringLiteral("number")},
            {AGREEMENT, QStringLiteral("agreement")},
            {CONFIDENCE, QStringLiteral("confidence")},
            {GENERIC, QStringLiteral("generic")}};
}

QString optionId(ORDINAL_TYPE scheme, int index)
{
    if (scheme == TRUE_FALSE || isYesNo(scheme))
        return firstSecondOrOther(index, "A", "B", "?");
    if (scheme == ALPHA_UPPER)
        return letter('A', index);
    if (scheme == ALPHA_LOWER)
        return letter('a', index);
    return QString::number(index);
}

QString optionText(ORDINAL_TYPE scheme, int index)
{
    if (scheme == TRUE_FALSE)
        return firstSecondOrOther(index, "TRUE", "FALSE", "DONTKNOW");
    if (isYesNo(scheme))
        return firstSecondOrOther(index, "YES", "NO", "DONTKNOW");
    return QStringLiteral("");
}

} // namespace OrdinalType
} // namespace Calyx
