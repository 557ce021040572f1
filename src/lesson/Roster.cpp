#include "lesson/Roster.h"

#include "lesson/LessonText.h"
#include "lesson/Poll.h"

#include <QDateTime>
#include <QHash>
#include <QJsonObject>
#include <QPointer>
#include <QVector>

#include <utility>

namespace Calyx {

namespace {

struct Stay
{
    QDateTime from;
    QDateTime to; // invalid: still here
};

struct Member
{
    QString deviceId;
    QString name;
    QString deviceType;
    bool isPresent = false;
    QVector<Stay> stays;
};

QJsonObject toJson(const Stay& stay)
{
    QJsonObject object{{QStringLiteral("from"), stay.from.toString(Qt::ISODateWithMs)}};
    if (stay.to.isValid())
        object.insert(QStringLiteral("to"), stay.to.toString(Qt::ISODateWithMs));
    return object;
}

} // namespace

struct Roster::Private
{
    QVector<Member> members;
    QHash<QString, int> rows; // by device
    QPointer<const Poll> poll;
    int present = 0;
    int mostPresent = 0;
    bool isChanged = false;

    const Member* find(const QString& deviceId) const
    {
        const auto row = rows.constFind(deviceId);
        return row == rows.constEnd() ? nullptr : &members.at(*row);
    }
};

Roster::Roster(QObject* parent) : QAbstractListModel(parent), d(std::make_unique<Private>()) {}

Roster::~Roster() = default;

// False when the device is here already; its name can change all the same.
bool Roster::join(const Learner& learner, const QDateTime& at)
{
    if (learner.deviceId.isEmpty())
        return false;
    const QPointer<Roster> self(this); // a slot may delete the lesson
    if (!d->rows.contains(learner.deviceId)) {
        const int row = int(d->members.size());
        beginInsertRows({}, row, row);
        d->rows.insert(learner.deviceId, row);
        d->members.append({learner.deviceId, QString(), QString(), false, {}});
        endInsertRows();
        if (!self || !d->rows.contains(learner.deviceId)) // or begin the next
            return false;
    }
    const int row = d->rows.value(learner.deviceId);
    Member& member = d->members[row];
    const bool isNew = !member.isPresent;
    const QString name =
        std::exchange(member.name, LessonText::clean(learner.userName, LessonText::longestName));
    const QString type =
        std::exchange(member.deviceType, LessonText::clean(learner.deviceType, LessonText::longestName));
    if (!isNew && name == member.name && type == member.deviceType)
        return false; // as most are when a lost channel is back
    if (isNew) {
        member.isPresent = true;
        member.stays.append({at, QDateTime()});
        d->mostPresent = qMax(d->mostPresent, ++d->present);
        d->isChanged = true;
    }
    Q_EMIT dataChanged(index(row), index(row));
    return self && isNew && isPresent(learner.deviceId);
}

// Has the device join, unless it is here already: then false.
bool Roster::see(const QString& deviceId)
{
    const Member* const member = d->find(deviceId);
    if (!member)
        return join(Learner(deviceId, QString(), QString()));
    return !member->isPresent && join(Learner(deviceId, member->name, member->deviceType));
}

bool Roster::leave(const QString& deviceId, const QDateTime& at)
{
    if (!isPresent(deviceId))
        return false;
    const int row = d->rows.value(deviceId);
    d->members[row].isPresent = false;
    d->members[row].stays.last().to = at;
    --d->present;
    d->isChanged = true;
    const QPointer<Roster> self(this);
    Q_EMIT dataChanged(index(row), index(row));
    return self;
}

QDateTime Roster::movedAt(const QString& deviceId) const
{
    const Member* const member = d->find(deviceId);
    if (!member || member->stays.isEmpty())
        return QDateTime();
    return member->isPresent ? member->stays.last().from : member->stays.last().to;
}

int Roster::rowOf(const QString& deviceId) const
{
    return d->rows.value(deviceId, -1);
}

void Roster::clear()
{
    beginResetModel();
    d->members.clear();
    d->rows.clear();
    d->present = d->mostPresent = 0;
    d->isChanged = true;
    endResetModel();
}

void Roster::setPoll(const Poll* poll)
{
    d->poll = poll;
}

void Roster::tellAnswers()
{
    if (!d->members.isEmpty())
        Q_EMIT dataChanged(index(0), index(int(d->members.size()) - 1), {HasAnsweredRole, AnswerRole});
}

void Roster::flush()
{
    if (!d->isChanged)
        return;
    d->isChanged = false;
    Q_EMIT changed();
}

int Roster::presentCount() const
{
    return d->present;
}

int Roster::mostPresent() const
{
    return d->mostPresent;
}

bool Roster::isPresent(const QString& deviceId) const
{
    const Member* const member = d->find(deviceId);
    return member && member->isPresent;
}

bool Roster::contains(const QString& deviceId) const
{
    return d->rows.contains(deviceId);
}

QString Roster::name(const QString& deviceId) const
{
    const Member* const member = d->find(deviceId);
    return member && !member->name.isEmpty() ? member->name
                                             : LessonText::clean(deviceId, LessonText::longestName);
}

QStringList Roster::present() const
{
    QStringList devices;
    for (const Member& member : std::as_const(d->members)) {
        if (member.isPresent)
            devices.append(member.deviceId);
    }
    return devices;
}

QStringList Roster::find(const QString& text) const
{
    const QStringList devices = present();
    if (devices.contains(text))
        return {text};
    QStringList exact;
    QStringList beginning;
    for (const QString& deviceId : devices) {
        if (name(deviceId).compare(text, Qt::CaseInsensitive) == 0)
            exact.append(deviceId);
        if (name(deviceId).startsWith(text, Qt::CaseInsensitive) || deviceId.startsWith(text))
            beginning.append(deviceId);
    }
    return exact.isEmpty() ? beginning : exact;
}

QJsonArray Roster::toJson() const
{
    QJsonArray array;
    for (const Member& member : std::as_const(d->members)) {
        QJsonArray stays;
        for (const Stay& stay : member.stays)
            stays.append(Calyx::toJson(stay));
        array.append(QJsonObject{{QStringLiteral("deviceId"), member.deviceId},
                                 {QStringLiteral("name"), member.name},
                                 {QStringLiteral("deviceType"), member.deviceType},
                                 {QStringLiteral("here"), stays}});
    }
    return array;
}

int Roster::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(d->members.size());
}

QVariant Roster::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= d->members.size())
        return QVariant();
    const Member& member = d->members.at(index.row());
    switch (role) {
    case Qt::DisplayRole:
    case NameRole:
        return name(member.deviceId);
    case DeviceIdRole:
        return member.deviceId;
    case DeviceTypeRole:
        return member.deviceType;
    case IsPresentRole:
        return member.isPresent;
    case HasAnsweredRole:
        return d->poll && d->poll->hasAnswered(member.deviceId);
    case AnswerRole:
        return d->poll ? d->poll->answerOf(member.deviceId).text : QString();
    default:
        return QVariant();
    }
}

QHash<int, QByteArray> Roster::roleNames() const
{
    return {{DeviceIdRole, "deviceId"},       {NameRole, "name"},
            {DeviceTypeRole, "deviceType"},   {IsPresentRole, "isPresent"},
            {HasAnsweredRole, "hasAnswered"}, {AnswerRole, "answer"}};
}

} // namespace Calyx
