#include "lesson/LessonPrivate.h"

#include <QJsonArray>

namespace Calyx {

namespace {

QString text(const QJsonObject& event, const char* key)
{
    return event.value(QLatin1String(key)).toString();
}

QByteArray bytes(const QJsonObject& event, const char* key)
{
    return QByteArray::fromBase64(text(event, key).toLatin1());
}

QString base64(const QByteArray& bytes)
{
    return QString::fromLatin1(bytes.toBase64());
}

double msecs(const QDateTime& time)
{
    return double(time.toMSecsSinceEpoch());
}

QDateTime time(const QJsonObject& event, const char* key = "at")
{
    const QJsonValue value = event.value(QLatin1String(key));
    return value.isDouble() ? QDateTime::fromMSecsSinceEpoch(qint64(value.toDouble())) : QDateTime();
}

// One that the host has ended is nobody's to take up.
QJsonObject sessionOf(const QVector<QJsonObject>& events)
{
    QJsonObject session;
    for (const QJsonObject& event : events) {
        if (text(event, "event") == QLatin1String("ended"))
            return {};
        if (session.isEmpty() && text(event, "event") == QLatin1String("session"))
            session = event;
    }
    return session;
}

template<typename Running>
QJsonObject stateOf(const Running& what, const QString& id)
{
    return {{"event", "state"},
            {"id", id},
            {"running", what.isRunning()},
            {"paused", what.isPaused()},
            {"lasted", double(what.elapsed())}};
}

} // namespace

// What is collected from answers and joins is written at the end of the turn; what the host does, at once.

void LessonPrivate::note(const QJsonObject& event)
{
    journal.add(event);
}

void LessonPrivate::record(const QJsonObject& event)
{
    journal.add(event);
    flushJournal();
}

void LessonPrivate::flushJournal()
{
    if (!journal.flush())
        failJournal(journal.fileName());
}

// Once whoever has something written is through with what he does.
void LessonPrivate::failJournal(const QString& name)
{
    const auto tellIt = [this, name] {
        fail(LessonError::make(LessonError::BadInput, name,
                               Lesson::tr("The journal %1 cannot be written.").arg(name)));
    };
    QMetaObject::invokeMethod(q, tellIt, Qt::QueuedConnection);
}

void LessonPrivate::observe()
{
    QObject::connect(roster, &Roster::joined, q, [this](const QString& deviceId) {
        const QModelIndex index = roster->index(roster->rowOf(deviceId));
        note({{"event", "joined"},
              {"device", deviceId},
              {"name", index.data(Roster::NameRole).toString()},
              {"type", index.data(Roster::DeviceTypeRole).toString()},
              {"at", msecs(roster->movedAt(deviceId))}});
    });
    QObject::connect(roster, &Roster::left, q, [this](const QString& deviceId) {
        note({{"event", "left"}, {"device", deviceId}, {"at", msecs(roster->movedAt(deviceId))}});
    });
    QObject::connect(q, &Lesson::cardShown, q, [this] {
        record({{"event", "card"}, {"picture", base64(cardPng)}, {"url", cardUrl}});
    });
    QObject::connect(q, &Lesson::lockedChanged, q, [this] {
        record({{"event", "locked"}, {"locked", isLocked}});
    });
}

void LessonPrivate::observe(const Poll* added)
{
    record({{"event", "poll"},
            {"id", added->id()},
            {"number", added->number()},
            {"question", QJsonObject::fromVariantMap(added->question().toMap())},
            {"at", msecs(added->startedAt())}});
    watch(added);
}

void LessonPrivate::watch(const Poll* added)
{
    QObject::connect(added, &Poll::stateChanged, q, [this, added] {
        QJsonObject event = stateOf(*added, added->id());
        if (added->stopsAt().isValid())
            event.insert("stopsAt", msecs(added->stopsAt()));
        record(event);
    });
}

void LessonPrivate::observe(const Assessment* added)
{
    QJsonArray ids;
    QJsonArray pictures;
    const QVector<Question> questions = added->plan().questions;
    for (int number = 1; number <= questions.size(); ++number) {
        ids.append(added->questionId(number));
        pictures.append(base64(questions.at(number - 1).picture));
    }
    record({{"event", "assessment"},
            {"id", added->token()},
            {"questions", ids},
            {"pictures", pictures},
            {"plan", QJsonObject::fromVariantMap(added->plan().toMap())},
            {"forAll", added->isForAll()},
            {"at", msecs(added->startedAt())}});
    watch(added);
}

void LessonPrivate::watch(const Assessment* added)
{
    QObject::connect(added, &Assessment::stateChanged, q,
                     [this, added] { record(stateOf(*added, added->token())); });
    QObject::connect(added, &Assessment::rowsInserted, q, [this, added](const QModelIndex&, int row) {
        record({{"event", "entered"}, {"id", added->token()}, {"device", added->participants().at(row)}});
    });
}

void LessonPrivate::noteAnswer(const QString& id, const PollAnswer& answer, int time)
{
    if (!journal.isOpen())
        return;
    note({{"event", "answer"},
          {"id", id},
          {"device", answer.deviceId},
          {"answer", answer.text},
          {"time", time},
          {"at", msecs(answer.receivedAt)}});
}

void LessonPrivate::noteSent()
{
    record({{"event", "sent"},
            {"id", poll->id()},
            {"picture", base64(sentQuestion.picture)},
            {"url", sentQuestion.pictureUrl}});
}

void LessonPrivate::beginJournal()
{
    if (!journalName.isEmpty() && !journal.begin(journalName))
        failJournal(journalName);
}

void LessonPrivate::noteSession(const QString& token)
{
    record({{"event", "session"},
            {"code", joinCode},
            {"token", token},
            {"server", server.toString()},
            {"teacher", user},
            {"lesson", lessonName},
            {"at", msecs(startedAt)}});
}

// Taking up.

bool LessonPrivate::takeUp(const QString& fileName)
{
    const QVector<QJsonObject> events = Journal::read(fileName);
    if (sessionOf(events).isEmpty())
        return fail(LessonError::make(LessonError::BadInput, fileName,
                                      Lesson::tr("%1 holds no lesson that can be taken up.").arg(fileName)));
    const QPointer<Lesson> self(q);
    wantsLive = true;
    clearSession();
    if (!self)
        return false;
    journal.close();
    replay(events);
    if (!self)
        return false;
    journalName = fileName;
    roster->setPoll(poll);
    if (poll && poll->stopsAt().isValid())
        stopTimer.start(int(qMax(qint64{0}, QDateTime::currentDateTime().msecsTo(poll->stopsAt()))));
    return tellTakenUp();
}

// What is there again.
bool LessonPrivate::tellTakenUp()
{
    const QPointer<Lesson> self(q);
    for (int i = 0; self && i < polls.size(); ++i)
        polls.at(i)->flush();
    return self && tell([this] { roster->flush(); }, [this] { roster->tellAnswers(); },
                        [this] { Q_EMIT q->pollChanged(); }, [this] { Q_EMIT q->assessmentChanged(); },
                        [this] { Q_EMIT q->lockedChanged(); });
}

QVariantMap Lesson::journalOf(const QString& fileName)
{
    QVariantMap session = sessionOf(Journal::read(fileName)).toVariantMap();
    if (session.isEmpty())
        return session;
    session.remove(QStringLiteral("event"));
    session.remove(QStringLiteral("token"));
    QVariant& at = session[QStringLiteral("at")];
    at = QDateTime::fromMSecsSinceEpoch(at.toLongLong());
    return session;
}

void LessonPrivate::replay(const QVector<QJsonObject>& events)
{
    using Replay = void (LessonPrivate::*)(const QJsonObject&);
    static const QHash<QString, Replay> replays = {
        {QStringLiteral("session"), &LessonPrivate::replaySession},
        {QStringLiteral("joined"), &LessonPrivate::replayJoined},
        {QStringLiteral("left"), &LessonPrivate::replayLeft},
        {QStringLiteral("poll"), &LessonPrivate::replayPoll},
        {QStringLiteral("sent"), &LessonPrivate::replaySent},
        {QStringLiteral("cleared"), &LessonPrivate::replayCleared},
        {QStringLiteral("assessment"), &LessonPrivate::replayAssessment},
        {QStringLiteral("entered"), &LessonPrivate::replayEntered},
        {QStringLiteral("state"), &LessonPrivate::replayState},
        {QStringLiteral("answer"), &LessonPrivate::replayAnswer},
        {QStringLiteral("card"), &LessonPrivate::replayCard},
        {QStringLiteral("locked"), &LessonPrivate::replayLocked}};
    const QPointer<Lesson> self(q); // models tell their views
    for (const QJsonObject& event : events) {
        const Replay replayOne = replays.value(text(event, "event"));
        if (replayOne)
            (this->*replayOne)(event);
        if (!self)
            return;
        if (time(event).isValid())
            takenUpFrom = time(event);
    }
}

void LessonPrivate::replaySession(const QJsonObject& event)
{
    takenUp = {text(event, "code"), text(event, "token")};
    lessonName = text(event, "lesson");
    startedAt = time(event);
}

void LessonPrivate::replayJoined(const QJsonObject& event)
{
    roster->join(Learner(text(event, "device"), text(event, "name"), text(event, "type")), time(event));
}

void LessonPrivate::replayLeft(const QJsonObject& event)
{
    roster->leave(text(event, "device"), time(event));
}

void LessonPrivate::replayPoll(const QJsonObject& event)
{
    const Question question = Question::fromMap(event.value("question").toObject().toVariantMap());
    auto* const added = new Poll(event.value("number").toInt(), question, roster, q);
    added->restore(text(event, "id"), time(event));
    polls.append(added);
    pollsById.insert(added->id(), added);
    poll = added;
    isPollReady = isLocked = false;
    cardPng.clear();
    cardUrl.clear();
    watch(added);
}

void LessonPrivate::replaySent(const QJsonObject& event)
{
    if (!poll || poll->id() != text(event, "id"))
        return;
    sentQuestion = poll->question();
    sentQuestion.picture = bytes(event, "picture");
    sentQuestion.pictureUrl = text(event, "url");
    isPollReady = true;
}

void LessonPrivate::replayCleared(const QJsonObject&)
{
    removeStoppedPolls();
}

void LessonPrivate::replayAssessment(const QJsonObject& event)
{
    AssessmentPlan plan = AssessmentPlan::fromMap(event.value("plan").toObject().toVariantMap());
    const QJsonArray pictures = event.value("pictures").toArray();
    for (int i = 0; i < plan.questions.size(); ++i)
        plan.questions[i].picture = QByteArray::fromBase64(pictures.at(i).toString().toLatin1());
    auto* const added = new Assessment(plan, event.value("forAll").toBool(), roster, q);
    added->restore(text(event, "id"), event.value("questions").toVariant().toStringList(), time(event));
    assessments.append(added);
    assessment = added;
    watch(added);
}

void LessonPrivate::replayEntered(const QJsonObject& event)
{
    if (assessment && assessment->token() == text(event, "id"))
        assessment->enter(text(event, "device"));
}

void LessonPrivate::replayState(const QJsonObject& event)
{
    const QString id = text(event, "id");
    const bool isRunning = event.value("running").toBool();
    const bool isPaused = event.value("paused").toBool();
    const auto lasted = qint64(event.value("lasted").toDouble());
    if (Poll* const one = pollsById.value(id))
        one->restoreState(isRunning, isPaused, lasted, time(event, "stopsAt"));
    for (Assessment* one : qAsConst(assessments)) {
        if (one->token() == id)
            one->restoreState(isRunning, isPaused, lasted);
    }
}

void LessonPrivate::replayAnswer(const QJsonObject& event)
{
    const QString id = text(event, "id");
    const QString device = text(event, "device");
    const QString answer = text(event, "answer");
    const int seconds = event.value("time").toInt();
    if (Poll* const one = pollsById.value(id))
        one->add(device, answer, seconds, time(event));
    for (Assessment* one : qAsConst(assessments)) {
        if (const int number = one->numberOf(id))
            one->add(device, number, answer, seconds, time(event));
    }
}

void LessonPrivate::replayCard(const QJsonObject& event)
{
    cardPng = bytes(event, "picture");
    cardUrl = text(event, "url");
}

void LessonPrivate::replayLocked(const QJsonObject& event)
{
    isLocked = event.value("locked").toBool();
}

} // namespace Calyx
