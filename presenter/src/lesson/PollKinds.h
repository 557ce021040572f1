#pragma once

#include <CalyxClient/Lesson>

#include <QString>
#include <QStringList>

/// The names by which people call the kinds of poll and the labelling schemes at a console.
namespace PollKinds {

/// All names, with hyphens where the library's have blanks.
QStringList typeNames();
QStringList ordinalNames();
QString typeName(Calyx::PollType::POLL_TYPE type);
QString ordinalName(Calyx::OrdinalType::ORDINAL_TYPE ordinal);

/// Case, blanks, hyphens and underscores do not matter. False for a name that is none.
bool readType(const QString& name, Calyx::PollType::POLL_TYPE& type);
bool readOrdinal(const QString& name, Calyx::OrdinalType::ORDINAL_TYPE& ordinal);

/// "multiple, alpha-upper, 4 options, 2 correct, with a picture".
QString description(const Calyx::Question& question);

} // namespace PollKinds
