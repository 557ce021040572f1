#pragma once

#include "Tally.h"

#include <CalyxClient/OrdinalType>
#include <CalyxClient/PollType>

#include <QString>
#include <QVector>

/// A kind of poll as the desk offers it.
struct PollKind
{
    QString name;
    Calyx::PollType::POLL_TYPE type;
    Calyx::OrdinalType::ORDINAL_TYPE ordinal;
    /// How many options there are when nobody says otherwise; 0 for a kind that has none.
    int options;
    /// Whether the teacher may choose how many.
    bool isAdjustable;
    /// Whether each option is counted, or each different answer.
    bool countsOptions;
};

namespace PollKinds {

/// All kinds, in the order in which they are offered.
const QVector<PollKind>& all();
/// Ready to count the answers to such a poll.
Tally tally(const PollKind& kind, int options);

} // namespace PollKinds
