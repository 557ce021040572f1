#pragma once

#include <QMetaType>
#include <QString>

/// Something that did not work, as a person needs it told.
struct Failure
{
    QString what;   ///< "Logging in failed"
    QString key;    ///< the service's error key; empty when it gave none
    QString advice; ///< what to do about it
};

Q_DECLARE_METATYPE(Failure)

namespace Failures {

/// How the service behaved when it gave no key.
enum Silence { Answers, GivesNoAnswer, IsNotThere };

/// \p server is its address.
Failure explain(const QString& what, const QString& key, Silence silence, const QString& server);

} // namespace Failures
