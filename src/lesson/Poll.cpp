#include "lesson/Poll.h"

#include "lesson/LessonMessages.h"
#include "lesson/LessonText.h"
#include "lesson/Roster.h"

#include <QElapsedTimer>
#include <QHash>
#include <QJsonArray>
#include <QPointer>
#include <QUuid>

#include <algorithm>
#include <utility>

namespace Calyx {

namespace {

QJsonObject toJson(const PollAnswer& answer)
{
    QJsonObject object{
        {QStringLiteral("deviceId"), answer.deviceId},
        {QStringLiteral("name"), answer.name},
        {QStringLiteral("answer"), answer.text},
        {QStringLiteral("msecs"), answer.msecs},
        {QStringLiteral("receivedAt"), answer.receivedAt.toLocalTime().toString(Qt::ISODateWithMs)},
        {QStringLiteral("late"), answer.isLate},
        {QStringLiteral("replacement"), answer.isReplacement}};
    if (answer.mark > PollAnswer::Unmarked)
        object.insert(QStringLiteral("right"), answer.mark == PollAnswer::Right);
    return object;
}

} // namespace

struct Poll::Private
{
    int number;
    Question question;
    QPointer<const Roster> roster;
    QString id = QUuid::createUuid().toString(QUuid::WithoutBraces);
    QDateTime startedAt = QDateTime::currentDateTime();
    QDateTime stopsAt;
    QElapsedTimer clock; // since it was asked for, or taken up
    qint64 before = 0;   // ms that it had run when it was taken up
    qint64 lasted = 0;   // ms, once it is over
    QVector<PollAnswer> answers;
    QHash<QString, int> rows; // by device
    PollResults* results = nullptr;
    QStringList missingAtStop;
    bool isRunning = true;
    bool isPaused = false;
    bool isDirty = false;
};

Poll::Poll(int number, const Question& question, const Roster* roster, QObject* parent)
    : QObject(parent), d(std::make_unique<Private>())
{
    d->number = number;
    d->question = question;
    d->roster = roster;
    d->results = new PollResults(question, this);
    d->clock.start();
    connect(this, &Poll::answersChanged, this, &Poll::expectedChanged);
    connect(roster, &Roster::changed, this, [this] { d->isRunning ? expectedChanged() : void(); });
}

Poll::~Poll() = default;

// Takes the device's answer; false when it is the one that it has given already.
bool Poll::add(const QString& deviceId, const QString& text, int time, const QDateTime& at)
{
    constexpr int second = 1000;
    PollAnswer answer;
    answer.text = LessonText::clean(text, LessonText::longestAnswer);
    const auto row = d->rows.constFind(deviceId);
    if (row != d->rows.constEnd()) {
        const QString before = d->answers.at(*row).text;
        if (before == answer.text) // sent again, after a lost connection for example
            return false;
        d->results->count(before, -1);
        answer.isReplacement = true;
    }
    answer.deviceId = deviceId;
    answer.name = d->roster ? d->roster->name(deviceId) : deviceId;
    answer.picks = d->question.picksOf(answer.text);
    answer.msecs = isDocument() ? time : time * second;
    answer.receivedAt = at;
    answer.isLate = !d->isRunning;
    if (d->question.isMarked())
        answer.mark = d->question.isRight(answer.text) ? PollAnswer::Right : PollAnswer::Wrong;
    else
        answer.mark = PollAnswer::Unmarked;
    d->results->count(answer.text, 1);
    if (answer.isReplacement) {
        d->answers[*row] = answer;
    } else {
        d->rows.insert(deviceId, int(d->answers.size()));
        d->answers.append(answer);
    }
    d->results->setAnswered(int(d->answers.size()));
    d->isDirty = true;
    return true;
}

void Poll::setPaused(bool paused)
{
    if (!d->isRunning || d->isPaused == paused)
        return;
    d->isPaused = paused;
    Q_EMIT stateChanged();
}

void Poll::setStopsAt(const QDateTime& stopsAt)
{
    d->stopsAt = stopsAt;
    Q_EMIT stateChanged();
}

// \p at is in the past where it becomes known only later that the session was over.
void Poll::stop(const QDateTime& at)
{
    if (!d->isRunning)
        return;
    d->missingAtStop = missing();
    d->lasted = at.isValid() ? qMax(qint64{0}, d->startedAt.msecsTo(at)) : elapsed();
    d->isRunning = d->isPaused = false;
    d->stopsAt = QDateTime();
    Q_EMIT stateChanged();
}

void Poll::restore(const QString& id, const QDateTime& startedAt)
{
    d->id = id;
    d->startedAt = startedAt;
    d->before = qMax(qint64{0}, startedAt.msecsTo(QDateTime::currentDateTime())); // clocks are set
}

void Poll::restoreState(bool isRunning, bool isPaused, qint64 lasted, const QDateTime& stopsAt)
{
    if (d->isRunning && !isRunning)
        d->missingAtStop = missing();
    d->isRunning = isRunning;
    d->isPaused = isPaused;
    d->lasted = lasted;
    d->stopsAt = stopsAt;
}

void Poll::flush()
{
    if (!d->isDirty)
        return;
    d->isDirty = false;
    const QPointer<Poll> self(this);
    d->results->flush();
    if (self)
        Q_EMIT answersChanged();
}

bool Poll::isDocument() const
{
    return LessonMessages::isDocument(d->question);
}

QString Poll::id() const
{
    return d->id;
}

int Poll::number() const
{
    return d->number;
}

Question Poll::question() const
{
    return d->question;
}

QString Poll::title() const
{
    return d->question.text.isEmpty() ? d->question.kindName() : d->question.text;
}

QString Poll::statusText() const
{
    QString state;
    if (!d->isRunning)
        state = tr(" (over)");
    else if (d->isPaused)
        state = tr(" (paused)");
    else if (d->stopsAt.isValid())
        state = tr(" (until %1)").arg(d->stopsAt.toString(tr("hh:mm:ss")));
    return tr("%1%2: %3 of %4 answered")
        .arg(title(), state, QString::number(answered()), QString::number(expected()));
}

bool Poll::isRunning() const
{
    return d->isRunning;
}

bool Poll::isPaused() const
{
    return d->isPaused;
}

QDateTime Poll::startedAt() const
{
    return d->startedAt;
}

QDateTime Poll::stopsAt() const
{
    return d->stopsAt;
}

qint64 Poll::elapsed() const
{
    return d->isRunning ? d->before + d->clock.elapsed() : d->lasted;
}

PollResults* Poll::results() const
{
    return d->results;
}

int Poll::answered() const
{
    return int(d->answers.size());
}

int Poll::rightAnswers() const
{
    return int(std::count_if(d->answers.cbegin(), d->answers.cend(),
                             [](const PollAnswer& answer) { return answer.mark == PollAnswer::Right; }));
}

int Poll::expected() const
{
    int waiting = 0;
    const QStringList devices = d->isRunning ? missing() : d->missingAtStop;
    for (const QString& deviceId : devices)
        waiting += hasAnswered(deviceId) ? 0 : 1;
    return answered() + waiting;
}

bool Poll::hasAnswered(const QString& deviceId) const
{
    return d->rows.contains(deviceId);
}

PollAnswer Poll::answerOf(const QString& deviceId) const
{
    const auto row = d->rows.constFind(deviceId);
    return row == d->rows.constEnd() ? PollAnswer() : d->answers.at(*row);
}

QVector<PollAnswer> Poll::answers() const
{
    return d->answers;
}

QStringList Poll::missing() const
{
    QStringList devices;
    if (!d->isRunning || !d->roster)
        return devices;
    const QStringList present = d->roster->present();
    for (const QString& deviceId : present) {
        if (!hasAnswered(deviceId))
            devices.append(deviceId);
    }
    return devices;
}

QString Poll::toCsv() const
{
    QString csv =
        LessonText::csvLine({QStringLiteral("Question"), QStringLiteral("Learner"), QStringLiteral("Device"),
                             QStringLiteral("Answer"), QStringLiteral("Right"),
                             QStringLiteral("Milliseconds"), QStringLiteral("Late")});
    for (const PollAnswer& answer : std::as_const(d->answers)) {
        csv += LessonText::csvLine({title(), answer.name, answer.deviceId, answer.text,
                                    LessonText::csvMark(answer.mark), QString::number(answer.msecs),
                                    answer.isLate ? QStringLiteral("yes") : QString()});
    }
    return csv;
}

QJsonObject Poll::toJson() const
{
    QJsonArray answers;
    for (const PollAnswer& answer : std::as_const(d->answers))
        answers.append(Calyx::toJson(answer));
    QJsonArray counts;
    const QVector<PollResults::Row> rows = d->results->rows();
    for (const PollResults::Row& row : rows)
        counts.append(
            QJsonObject{{QStringLiteral("answer"), row.title()}, {QStringLiteral("count"), row.count}});
    return {{QStringLiteral("number"), d->number},
            {QStringLiteral("id"), d->id},
            {QStringLiteral("question"), QJsonObject::fromVariantMap(d->question.toMap())},
            {QStringLiteral("startedAt"), d->startedAt.toString(Qt::ISODateWithMs)},
            {QStringLiteral("msecs"), elapsed()},
            {QStringLiteral("running"), d->isRunning},
            {QStringLiteral("results"), counts},
            {QStringLiteral("answers"), answers}};
}

} // namespace Calyx
