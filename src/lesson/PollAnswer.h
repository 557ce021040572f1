#pragma once

#include <CalyxClient/calyxclient_export.h>

#include <QDateTime>
#include <QMetaType>
#include <QObject>
#include <QString>
#include <QStringList>

namespace Calyx {

/// The answer of one device to one question: the last that it sent. A value.
struct CALYXCLIENT_EXPORT PollAnswer
{
    Q_GADGET
    Q_PROPERTY(QString deviceId MEMBER deviceId)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(QStringList picks MEMBER picks)
    Q_PROPERTY(int msecs MEMBER msecs)
    Q_PROPERTY(Mark mark MEMBER mark)
    Q_PROPERTY(bool isLate MEMBER isLate)
    Q_PROPERTY(bool isReplacement MEMBER isReplacement)

public:
    /// Whether an answer is right.
    enum Mark {
        NoAnswer, ///< there is none
        Unmarked, ///< nothing is right or wrong here
        Wrong,    ///< it is none of the right ones
        Right     ///< it is one of them
    };
    Q_ENUM(Mark)

    /// The learner's device.
    QString deviceId;
    /// The learner's name when the answer came.
    QString name;
    /// The answer as it came, control characters replaced by blanks, 500 characters at most.
    QString text;
    /// The ids of the options that it names; empty for free answers.
    QStringList picks;
    /// How long the learner took: milliseconds, in steps of a second except for word seeds and creative work
    /// that went out as a poll document.
    int msecs = 0;
    /// When it came, in UTC.
    QDateTime receivedAt;
    /// Whether it is right.
    Mark mark = NoAnswer;
    /// Whether it came after the poll had been stopped.
    bool isLate = false;
    /// Whether it took the place of another one that the device had sent before.
    bool isReplacement = false;
};

} // namespace Calyx

Q_DECLARE_METATYPE(Calyx::PollAnswer)
