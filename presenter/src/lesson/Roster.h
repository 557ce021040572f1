#pragma once

#include <CalyxClient/Learner>

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

/// Who takes part: the learners' devices that have joined, those that have left included.
class Roster
{
public:
    struct Member
    {
        QString deviceId;
        QString name;
        QString deviceType;
        bool isPresent = false;
    };
    /// False when the device is here already.
    bool join(const Calyx::Learner& learner);
    /// False when the device is not here.
    bool leave(const QString& deviceId);
    void clear();

    int presentCount() const { return m_present; }
    bool isPresent(const QString& deviceId) const;
    QStringList presentIds() const;
    /// The devices present that are not among \p learners.
    QStringList presentExcept(const QList<Calyx::Learner>& learners) const;
    QList<Member> members() const;
    /// The learner's name; the device id when it has none.
    QString name(const QString& deviceId) const;
    /// The devices present that \p text names: by device id, else by name, else by the beginning of either.
    QStringList find(const QString& text) const;

private:
    QHash<QString, Member> m_members;
    QStringList m_order;
    int m_present = 0;
};
