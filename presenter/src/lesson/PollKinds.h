#pragma once

#include "lesson/Tally.h"

#include <CalyxClient/OrdinalType>
#include <CalyxClient/PollType>

#include <QString>
#include <QStringList>

/// What is asked: a poll's kind, how its options are labelled, and the numbers that go with it.
struct PollPlan
{
    Calyx::PollType::POLL_TYPE type = Calyx::PollType::TEXT;
    Calyx::OrdinalType::ORDINAL_TYPE ordinal = Calyx::OrdinalType::GENERIC;
    /// Number of options; of a number, the decimals.
    int options = 0;
    /// Of a multiple choice, the number of correct options.
    int extra = 0;
    bool hasPicture = false;
};

/// The names by which people call the kinds of poll and the labelling schemes, and what each kind needs.
namespace PollKinds {

/// All names, with hyphens where the library's have blanks.
QStringList typeNames();
QStringList ordinalNames();
QString typeName(Calyx::PollType::POLL_TYPE type);
QString ordinalName(Calyx::OrdinalType::ORDINAL_TYPE ordinal);

/// Case, blanks, hyphens and underscores do not matter. False for a name that is none.
bool readType(const QString& name, Calyx::PollType::POLL_TYPE& type);
bool readOrdinal(const QString& name, Calyx::OrdinalType::ORDINAL_TYPE& ordinal);

/// A poll of this kind as a teacher most likely wants it.
PollPlan usual(Calyx::PollType::POLL_TYPE type);

/// The number of options that goes with the plan's type and labelling.
int usualOptions(const PollPlan& plan);

/// What is wrong with the numbers; empty when nothing is.
QString fault(const PollPlan& plan);

/// The options of such a poll, as its answers name them.
QVector<AnswerOption> options(const PollPlan& plan);

/// Ready to count the answers to such a poll.
Tally tally(const PollPlan& plan);

/// "multiple, alpha-upper, 4 options, 2 correct, with a picture".
QString description(const PollPlan& plan);

} // namespace PollKinds
