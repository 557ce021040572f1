#include "PollKinds.h"

const QVector<PollKind>& PollKinds::all()
{
    namespace P = Calyx::PollType;
    namespace O = Calyx::OrdinalType;
    static const QVector<PollKind> kinds = {
        {QStringLiteral("Multiple choice"), P::MULTIPLE, O::ALPHA_UPPER, 4, true, true},
        {QStringLiteral("True or false"), P::TRUE_FALSE, O::TRUE_FALSE, 2, false, true},
        {QStringLiteral("Yes, no or other"), P::YES_NO_OTHER, O::YES_NO_OTHER, 3, false, true},
        {QStringLiteral("Scale"), P::SCALE, O::NUMBER, 5, true, true},
        {QStringLiteral("Put in order"), P::SORT, O::ALPHA_UPPER, 3, true, false},
        {QStringLiteral("Text"), P::TEXT, O::GENERIC, 0, false, false},
        {QStringLiteral("Words"), P::WORD_SEED, O::GENERIC, 0, false, false},
        {QStringLiteral("Number"), P::NUMBER, O::NUMBER, 0, false, false},
        {QStringLiteral("Creative"), P::CREATIVE, O::GENERIC, 0, false, false},
        {QStringLiteral("Formula"), P::MATH_FORMULA, O::GENERIC, 0, false, false}};
    return kinds;
}

Tally PollKinds::tally(const PollKind& kind, int options)
{
    static const QHash<QString, QString> shown = {
        {QStringLiteral("TRUE"), QStringLiteral("True")},
        {QStringLiteral("FALSE"), QStringLiteral("False")},
        {QStringLiteral("YES"), QStringLiteral("Yes")},
        {QStringLiteral("NO"), QStringLiteral("No")},
        {QStringLiteral("DONTKNOW"), QStringLiteral("Don\u2019t know")}};
    QVector<Tally::Option> counted;
    for (int i = 0; kind.countsOptions && i < options; ++i) {
        const QString id = Calyx::OrdinalType::optionId(kind.ordinal, i);
        const QString text = Calyx::OrdinalType::optionText(kind.ordinal, i);
        counted.append({shown.value(text, id), text.isEmpty() ? QStringList(id) : QStringList{id, text}});
    }
    return Tally(counted);
}
