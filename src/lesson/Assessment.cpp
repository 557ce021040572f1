#include "lesson/Assessment.h"

#include "lesson/LessonText.h"
#include "lesson/Roster.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QHash>
#include <QJsonArray>
#include <QPointer>
#include <QUuid>

#include <utility>

namespace Calyx {

namespace {

struct Sheet
{
    QString deviceId;
    QString name;
    QHash<int, PollAnswer> answers; // by number
    int right = 0;
};

QString newId()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces);
}

} // namespace

AssessmentPlan AssessmentPlan::fromMap(const QVariantMap& map)
{
    AssessmentPlan plan;
    const QVariantList questions = map.value(QStringLiteral("questions")).toList();
    for (const QVariant& question : questions)
        plan.questions.append(Question::fromMap(question.toMap()));
    plan.title = map.value(QStringLiteral("title")).toString();
    plan.seconds = map.value(QStringLiteral("seconds")).toInt();
    plan.maySkip = map.value(QStringLiteral("maySkip")).toBool();
    plan.mayGoBack = map.value(QStringLiteral("mayGoBack")).toBool();
    plan.mayResubmit = map.value(QStringLiteral("mayResubmit"), true).toBool();
    plan.showsSummary = map.value(QStringLiteral("showsSummary")).toBool();
    return plan;
}

QVariantMap AssessmentPlan::toMap() const
{
    QVariantList maps;
    for (const Question& question : questions)
        maps.append(question.toMap());
    return {{QStringLiteral("title"), title},
            {QStringLiteral("questions"), maps},
            {QStringLiteral("seconds"), seconds},
            {QStringLiteral("maySkip"), maySkip},
            {QStringLiteral("mayGoBack"), mayGoBack},
            {QStringLiteral("mayResubmit"), mayResubmit},
            {QStringLiteral("showsSummary"), showsSummary}};
}

QString AssessmentPlan::fault() const
{
    if (questions.isEmpty())
        return QCoreApplication::translate("Calyx::Assessment", "An assessment needs a question.");
    if (seconds < 0)
        return QCoreApplication::translate("Calyx::Assessment", "The time cannot be negative.");
    for (int i = 0; i < questions.size(); ++i) {
        const QString fault = questions.at(i).fault();
        if (!fault.isEmpty())
            return QCoreApplication::translate("Calyx::Assessment", "Question %1: %2")
                .arg(QString::number(i + 1), fault);
    }
    return QString();
}

struct Assessment::Private
{
    AssessmentPlan plan;
    bool isForAll;
    QPointer<const Roster> roster;
    QString token = newId();
    QStringList ids; // of the questions
    QDateTime startedAt = QDateTime::currentDateTime();
    QElapsedTimer clock; // since it was started, or taken up
    qint64 before = 0;   // ms that it had run when it was taken up
    qint64 lasted = 0;   // ms, once it is over
    QVector<Sheet> sheets;
    QHash<QString, int> rows; // by device
    int finished = 0;
    bool isRunning = true;
    bool isPaused = false;
    bool isDirty = false;

    const Sheet* find(const QString& deviceId) const
    {
        const auto row = rows.constFind(deviceId);
        return row == rows.constEnd() ? nullptr : &sheets.at(*row);
    }
};

Assessment::Assessment(const AssessmentPlan& plan, bool isForAll, const Roster* roster, QObject* parent)
    : QAbstractTableModel(parent), d(std::make_unique<Private>())
{
    d->plan = plan;
    d->isForAll = isForAll;
    d->roster = roster;
    for (int i = 0; i < plan.questions.size(); ++i)
        d->ids.append(newId());
    d->clock.start();
    connect(roster, &Roster::changed, this, [this] { d->isDirty |= d->isRunning; });
}

Assessment::~Assessment() = default;

// 0 for a question that is none of ours.
int Assessment::numberOf(const QString& questionId) const
{
    return int(d->ids.indexOf(questionId)) + 1;
}

QString Assessment::questionId(int number) const
{
    return d->ids.value(number - 1);
}

void Assessment::enter(const QString& deviceId)
{
    if (takesPart(deviceId))
        return;
    const int row = int(d->sheets.size());
    beginInsertRows({}, row, row);
    d->rows.insert(deviceId, row);
    d->sheets.append({deviceId, d->roster ? d->roster->name(deviceId) : deviceId, {}, 0});
    d->isDirty = true;
    endInsertRows();
}

// False for an answer that does not count: too late, from nobody who takes part, or a second one where only
// the first counts. The same answer once more counts, and changes nothing.
bool Assessment::add(const QString& deviceId, int number, const QString& text, int time, const QDateTime& at)
{
    constexpr int second = 1000;
    const PollAnswer before = answer(deviceId, number);
    const bool isReplacement = before.mark != PollAnswer::NoAnswer;
    PollAnswer after;
    after.text = LessonText::clean(text, LessonText::longestAnswer);
    if (isReplacement && before.text == after.text)
        return true;
    if (!d->isRunning || !takesPart(deviceId) || (isReplacement && !d->plan.mayResubmit))
        return false;
    const Question& question = d->plan.questions.at(number - 1);
    const int row = d->rows.value(deviceId);
    Sheet& sheet = d->sheets[row];
    after.deviceId = deviceId;
    after.name = sheet.name;
    after.picks = question.picksOf(after.text);
    after.msecs = time * second;
    after.receivedAt = at;
    after.isReplacement = isReplacement;
    after.mark = !question.isMarked()           ? PollAnswer::Unmarked
                 : question.isRight(after.text) ? PollAnswer::Right
                                                : PollAnswer::Wrong;
    sheet.right += int(after.mark == PollAnswer::Right) - int(before.mark == PollAnswer::Right);
    sheet.answers.insert(number, after);
    if (!isReplacement && sheet.answers.size() == questionCount())
        ++d->finished;
    d->isDirty = true;
    Q_EMIT dataChanged(index(row, 0), index(row, columnCount() - 1));
    return true;
}

void Assessment::setPaused(bool paused)
{
    if (!d->isRunning || d->isPaused == paused)
        return;
    d->isPaused = paused;
    Q_EMIT stateChanged();
}

void Assessment::stop(const QDateTime& at)
{
    if (!d->isRunning)
        return;
    d->lasted = at.isValid() ? qMax(qint64{0}, d->startedAt.msecsTo(at)) : elapsed();
    d->isRunning = d->isPaused = false;
    Q_EMIT stateChanged();
}

void Assessment::restore(const QString& token, const QStringList& questionIds, const QDateTime& startedAt)
{
    d->token = token;
    d->ids = questionIds.mid(0, questionCount()); // a file is from outside
    d->startedAt = startedAt;
    d->before = qMax(qint64{0}, startedAt.msecsTo(QDateTime::currentDateTime())); // clocks are set
}

void Assessment::restoreState(bool isRunning, bool isPaused, qint64 lasted)
{
    d->isRunning = isRunning;
    d->isPaused = isPaused;
    d->lasted = lasted;
}

void Assessment::flush()
{
    if (!d->isDirty)
        return;
    d->isDirty = false;
    Q_EMIT changed();
}

QString Assessment::token() const
{
    return d->token;
}

AssessmentPlan Assessment::plan() const
{
    return d->plan;
}

QString Assessment::title() const
{
    return d->plan.title;
}

int Assessment::questionCount() const
{
    return int(d->plan.questions.size());
}

int Assessment::markedCount() const
{
    int marked = 0;
    for (const Question& question : std::as_const(d->plan.questions))
        marked += question.isMarked() ? 1 : 0;
    return marked;
}

bool Assessment::isRunning() const
{
    return d->isRunning;
}

bool Assessment::isPaused() const
{
    return d->isPaused;
}

bool Assessment::isForAll() const
{
    return d->isForAll;
}

QDateTime Assessment::startedAt() const
{
    return d->startedAt;
}

qint64 Assessment::elapsed() const
{
    return d->isRunning ? d->before + d->clock.elapsed() : d->lasted;
}

QStringList Assessment::participants() const
{
    QStringList devices;
    for (const Sheet& sheet : std::as_const(d->sheets))
        devices.append(sheet.deviceId);
    return devices;
}

bool Assessment::takesPart(const QString& deviceId) const
{
    return d->rows.contains(deviceId);
}

PollAnswer Assessment::answer(const QString& deviceId, int number) const
{
    const Sheet* const sheet = d->find(deviceId);
    return sheet ? sheet->answers.value(number) : PollAnswer();
}

int Assessment::answered(const QString& deviceId) const
{
    const Sheet* const sheet = d->find(deviceId);
    return sheet ? int(sheet->answers.size()) : 0;
}

int Assessment::rightAnswers(const QString& deviceId) const
{
    const Sheet* const sheet = d->find(deviceId);
    return sheet ? sheet->right : 0;
}

bool Assessment::isFinished(const QString& deviceId) const
{
    return takesPart(deviceId) && answered(deviceId) == questionCount();
}

int Assessment::answeredBy(int number) const
{
    int count = 0;
    for (const Sheet& sheet : std::as_const(d->sheets))
        count += sheet.answers.contains(number) ? 1 : 0;
    return count;
}

int Assessment::rightBy(int number) const
{
    int count = 0;
    for (const Sheet& sheet : std::as_const(d->sheets))
        count += sheet.answers.value(number).mark == PollAnswer::Right ? 1 : 0;
    return count;
}

int Assessment::finished() const
{
    return d->finished;
}

int Assessment::expected() const
{
    return d->finished + int(unfinished().size());
}

QStringList Assessment::unfinished() const
{
    QStringList devices;
    for (const Sheet& sheet : std::as_const(d->sheets)) {
        if (d->roster && d->roster->isPresent(sheet.deviceId) && sheet.answers.size() < questionCount())
            devices.append(sheet.deviceId);
    }
    return devices;
}

QString Assessment::toCsv() const
{
    QStringList titles{QStringLiteral("Learner"), QStringLiteral("Device"), QStringLiteral("Right")};
    for (int number = 1; number <= questionCount(); ++number) {
        const QString text = d->plan.questions.at(number - 1).text;
        titles += {QStringLiteral("%1 %2").arg(QString::number(number), text).trimmed(),
                   QStringLiteral("%1 right").arg(number)};
    }
    QString csv = LessonText::csvLine(titles);
    for (const Sheet& sheet : std::as_const(d->sheets)) {
        QStringList line{sheet.name, sheet.deviceId,
                         markedCount() > 0 ? QString::number(sheet.right) : QString()};
        for (int number = 1; number <= questionCount(); ++number) {
            const PollAnswer answer = sheet.answers.value(number);
            line += {answer.text, LessonText::csvMark(answer.mark)};
        }
        csv += LessonText::csvLine(line);
    }
    return csv;
}

QJsonObject Assessment::toJson() const
{
    QJsonArray questions;
    for (const Question& question : std::as_const(d->plan.questions))
        questions.append(QJsonObject::fromVariantMap(question.toMap()));
    QJsonArray learners;
    for (const Sheet& sheet : std::as_const(d->sheets)) {
        QJsonArray answers;
        for (int number = 1; number <= questionCount(); ++number) {
            const PollAnswer answer = sheet.answers.value(number);
            QJsonObject object;
            if (answer.mark != PollAnswer::NoAnswer)
                object = {{QStringLiteral("answer"), answer.text}, {QStringLiteral("msecs"), answer.msecs}};
            if (answer.mark > PollAnswer::Unmarked)
                object.insert(QStringLiteral("right"), answer.mark == PollAnswer::Right);
            answers.append(object);
        }
        learners.append(QJsonObject{{QStringLiteral("deviceId"), sheet.deviceId},
                                    {QStringLiteral("name"), sheet.name},
                                    {QStringLiteral("right"), sheet.right},
                                    {QStringLiteral("answers"), answers}});
    }
    return {{QStringLiteral("title"), d->plan.title},
            {QStringLiteral("startedAt"), d->startedAt.toString(Qt::ISODateWithMs)},
            {QStringLiteral("msecs"), elapsed()},
            {QStringLiteral("marked"), markedCount()},
            {QStringLiteral("questions"), questions},
            {QStringLiteral("learners"), learners}};
}

int Assessment::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(d->sheets.size());
}

int Assessment::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : FirstQuestion + questionCount();
}

QVariant Assessment::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= d->sheets.size())
        return QVariant();
    const Sheet& sheet = d->sheets.at(index.row());
    const PollAnswer answer = sheet.answers.value(index.column() - FirstQuestion + 1);
    const auto score = [&] {
        return markedCount() > 0 ? tr("%1 of %2").arg(sheet.right).arg(markedCount()) : QString();
    };
    switch (role) {
    case Qt::DisplayRole:
        return index.column() == Name ? sheet.name : index.column() == Score ? score() : answer.text;
    case DeviceIdRole:
        return sheet.deviceId;
    case AnswerRole:
        return answer.text;
    case MarkRole:
        return answer.mark;
    case NameRole:
        return sheet.name;
    case RightAnswersRole:
        return sheet.right;
    case AnsweredRole:
        return sheet.answers.size();
    case IsFinishedRole:
        return sheet.answers.size() == questionCount();
    default:
        return QVariant();
    }
}

QVariant Assessment::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= columnCount())
        return QVariant();
    if (section == Name)
        return tr("Learner");
    return section == Score ? tr("Right") : QString::number(section - FirstQuestion + 1);
}

QHash<int, QByteArray> Assessment::roleNames() const
{
    return {{DeviceIdRole, "deviceId"},
            {AnswerRole, "answer"},
            {MarkRole, "mark"},
            {NameRole, "name"},
            {RightAnswersRole, "rightAnswers"},
            {AnsweredRole, "answered"},
            {IsFinishedRole, "isFinished"}};
}

} // namespace Calyx
