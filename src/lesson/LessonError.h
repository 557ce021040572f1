#pragma once

#include <CalyxClient/calyxclient_export.h>

#include <QMetaType>
#include <QObject>
#include <QString>

namespace Calyx {

/// Why something that was asked of a Lesson was not done: for people by its texts, for programs by its kind.
///
/// A value; the texts are translated when it is made (context "Calyx::LessonError").
struct CALYXCLIENT_EXPORT LessonError
{
    Q_GADGET
    Q_PROPERTY(Kind kind MEMBER kind)
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(QString advice MEMBER advice)
    Q_PROPERTY(QString key MEMBER key)

public:
    /// What has gone wrong.
    enum Kind {
        NoError,            ///< nothing
        Unreachable,        ///< nobody is there: no such server, no network, the connection refused or lost
        NoAnswer,           ///< somebody is there, and did not answer in time
        NotTheService,      ///< somebody answers who is not the classroom service, as networks do that want a
                            ///< login of their own
        UnknownAuthority,   ///< the service's certificate is of an authority that this computer does not know
        BadCredentials,     ///< user or password is wrong
        LoggedOutByService, ///< the login has ended, and could not be renewed
        Refused,            ///< the service refuses, for the reason that its key tells
        SessionGone,        ///< the service does not know the session any more
        NoChannel,          ///< the service answers, but no live channel to it can be opened
        TooLarge,           ///< what was to be sent is larger than devices or the service take
        BadInput,           ///< what was asked for cannot be, or not in this state
        Cancelled           ///< ended by Lesson::cancel()
    };
    Q_ENUM(Kind)

    /// What kind of error it is.
    Kind kind = NoError;
    /// What has happened, a sentence for people without key or code.
    QString text;
    /// What a person can do about it, a sentence or two; empty where there is nothing.
    QString advice;
    /// The service's key or the fault's details, for the log; empty when there are none.
    QString key;

    /// The error of \p kind with its texts. \p key is for the log, and decides which advice is given. For
    /// BadInput, \p text is the sentence itself.
    static LessonError make(Kind kind, const QString& key = QString(), const QString& text = QString());
};

} // namespace Calyx

Q_DECLARE_METATYPE(Calyx::LessonError)
