#pragma once

#include "collab/MessageTemplates.h"
#include "collab/PresenterCollab.h"

/// What a host of the wire and a lesson put into their messages in the same way.
namespace MessageParts {

/// Characters of a picture's reference from which on devices are told before that something large is coming.
constexpr int heavyPicture = 0x80001;

/// A picture as a reference that holds it.
inline QString dataUri(const QByteArray& png)
{
    return QString::fromLatin1("data:image/png;base64," + png.toBase64());
}

/// \p reference as the value of a style.
inline QString cssUrl(const QString& reference)
{
    return QStringLiteral("url('") + reference + QStringLiteral("')");
}

/// The document of a poll that goes out without a question class. \p options are numbers, divided by commas.
inline QString pollDocument(const PresenterCollab& collab, Calyx::PollType::POLL_TYPE type,
                            Calyx::OrdinalType::ORDINAL_TYPE ordinal, const QString& id,
                            const QString& options, const QString& picture)
{
    const QString time = QStringLiteral("1395358151638"); // the devices do not read it
    return Calyx::START_POLL_DATA64.arg(
        Calyx::PollType::POLL_TYPE_STR().value(type), Calyx::OrdinalType::ORDINAL_TYPE_STR().value(ordinal),
        collab.sessionToken(), collab.sessionCode(), time, id, options, picture);
}

} // namespace MessageParts
