#include "lesson/Roster.h"

#include "text/Text.h"

#include <QSet>

namespace {

constexpr int longestName = 60;

QString shown(const QString& text)
{
    return Text::clean(text).left(longestName);
}

} // namespace

bool Roster::join(const Calyx::Learner& learner)
{
    if (learner.deviceId.isEmpty() || isPresent(learner.deviceId))
        return false;
    if (!m_members.contains(learner.deviceId))
        m_order.append(learner.deviceId);
    m_members[learner.deviceId] = {learner.deviceId, shown(learner.userName), shown(learner.deviceType),
                                   true};
    ++m_present;
    return true;
}

bool Roster::leave(const QString& deviceId)
{
    if (!isPresent(deviceId))
        return false;
    m_members[deviceId].isPresent = false;
    --m_present;
    return true;
}

void Roster::clear()
{
    *this = Roster();
}

bool Roster::isPresent(const QString& deviceId) const
{
    return m_members.value(deviceId).isPresent;
}

QStringList Roster::presentIds() const
{
    QStringList ids;
    for (const QString& deviceId : m_order) {
        if (isPresent(deviceId))
            ids.append(deviceId);
    }
    return ids;
}

QStringList Roster::presentExcept(const QList<Calyx::Learner>& learners) const
{
    QSet<QString> listed;
    for (const Calyx::Learner& learner : learners)
        listed.insert(learner.deviceId);
    QStringList ids;
    const QStringList present = presentIds();
    for (const QString& deviceId : present) {
        if (!listed.contains(deviceId))
            ids.append(deviceId);
    }
    return ids;
}

QList<Roster::Member> Roster::members() const
{
    QList<Member> members;
    for (const QString& deviceId : m_order)
        members.append(m_members.value(deviceId));
    return members;
}

QString Roster::name(const QString& deviceId) const
{
    const QString name = m_members.value(deviceId).name;
    return name.isEmpty() ? shown(deviceId) : name;
}

QStringList Roster::find(const QString& text) const
{
    const QStringList present = presentIds();
    if (present.contains(text))
        return {text};
    QStringList exact;
    QStringList beginning;
    for (const QString& deviceId : present) {
        if (name(deviceId).compare(text, Qt::CaseInsensitive) == 0)
            exact.append(deviceId);
        if (name(deviceId).startsWith(text, Qt::CaseInsensitive) || deviceId.startsWith(text))
            beginning.append(deviceId);
    }
    return exact.isEmpty() ? beginning : exact;
}
