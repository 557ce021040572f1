#include "lesson/LessonJournal.h"

#include <QHash>
#include <QJsonArray>
#include <QPointer>

#include <utility>

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

// The session that the events are about. Empty where the host has ended it: nobody is to take it up.
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

LessonJournal::LessonJournal(LessonContent* content) : m_content(content)
{
    watch();
}

void LessonJournal::begin()
{
    if (!m_fileName.isEmpty() && !m_journal.begin(m_fileName))
        Q_EMIT failed(m_fileName);
}

void LessonJournal::goOn()
{
    if (!m_journal.goOn(m_fileName))
        Q_EMIT failed(m_fileName);
}

void LessonJournal::flush()
{
    if (!m_journal.flush())
        Q_EMIT failed(m_journal.fileName());
}

// Writing.

void LessonJournal::record(const QJsonObject& event)
{
    m_journal.add(event);
    flush();
}

void LessonJournal::watch()
{
    const Roster* roster = m_content->roster;
    connect(roster, &Roster::joined, this, [this, roster](const QString& deviceId) {
        const QModelIndex index = roster->index(roster->rowOf(deviceId));
        m_journal.add({{"event", "joined"},
                       {"device", deviceId},
                       {"name", index.data(Roster::NameRole).toString()},
                       {"type", index.data(Roster::DeviceTypeRole).toString()},
                       {"at", msecs(roster->movedAt(deviceId))}});
    });
    connect(roster, &Roster::left, this, [this, roster](const QString& deviceId) {
        m_journal.add({{"event", "left"}, {"device", deviceId}, {"at", msecs(roster->movedAt(deviceId))}});
    });
}

void LessonJournal::notePoll(const Poll* added)
{
    record({{"event", "poll"},
            {"id", added->id()},
            {"number", added->number()},
            {"question", QJsonObject::fromVariantMap(added->question().toMap())},
            {"at", msecs(added->startedAt())}});
    watch(added);
}

void LessonJournal::watch(const Poll* added)
{
    connect(added, &Poll::stateChanged, this, [this, added] {
        QJsonObject event = stateOf(*added, added->id());
        if (added->stopsAt().isValid())
            event.insert("stopsAt", msecs(added->stopsAt()));
        record(event);
    });
}

void LessonJournal::noteAssessment(const Assessment* added)
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

void LessonJournal::watch(const Assessment* added)
{
    connect(added, &Assessment::stateChanged, this,
            [this, added] { record(stateOf(*added, added->token())); });
    connect(added, &Assessment::rowsInserted, this, [this, added](const QModelIndex&, int row) {
        const QString deviceId = added->index(row, 0).data(Assessment::DeviceIdRole).toString();
        m_journal.add({{"event", "entered"}, {"id", added->token()}, {"device", deviceId}});
    });
}

void LessonJournal::noteAnswer(const QString& id, const PollAnswer& answer, int time)
{
    if (!m_journal.isOpen())
        return;
    m_journal.add({{"event", "answer"},
                   {"id", id},
                   {"device", answer.deviceId},
                   {"answer", answer.text},
                   {"time", time},
                   {"at", msecs(answer.receivedAt)}});
}

void LessonJournal::noteSent()
{
    record({{"event", "sent"},
            {"id", m_content->poll->id()},
            {"picture", base64(m_content->sentQuestion.picture)},
            {"url", m_content->sentQuestion.pictureUrl}});
}

void LessonJournal::notePollsCleared()
{
    record({{"event", "cleared"}});
}

void LessonJournal::noteCard()
{
    record({{"event", "card"}, {"picture", base64(m_content->cardPng)}, {"url", m_content->cardUrl}});
}

void LessonJournal::noteLock()
{
    record({{"event", "locked"}, {"locked", m_content->isLocked}});
}

void LessonJournal::noteEnd()
{
    record({{"event", "ended"}});
}

void LessonJournal::noteSession(const OpenSession& session, const QString& server)
{
    record({{"event", "session"},
            {"code", session.code},
            {"token", session.token},
            {"server", server},
            {"teacher", m_content->teacher},
            {"lesson", m_content->lessonName},
            {"at", msecs(m_content->startedAt)}});
}

// Reading.

LessonJournal::Events LessonJournal::read(const QString& fileName)
{
    const Events events = Journal::read(fileName);
    return sessionOf(events).isEmpty() ? Events() : events;
}

QVariantMap LessonJournal::describe(const Events& events)
{
    QVariantMap session = sessionOf(events).toVariantMap();
    if (session.isEmpty())
        return session;
    session.remove(QStringLiteral("event"));
    session.remove(QStringLiteral("token"));
    QVariant& at = session[QStringLiteral("at")];
    at = QDateTime::fromMSecsSinceEpoch(at.toLongLong());
    return session;
}

LessonJournal::TakenUp LessonJournal::find(const Events& events)
{
    const QJsonObject session = sessionOf(events);
    TakenUp found{{text(session, "code"), text(session, "token")}, {}};
    for (const QJsonObject& event : events) {
        if (time(event).isValid())
            found.until = time(event);
    }
    return found;
}

void LessonJournal::takeUp(const QString& fileName, const Events& events)
{
    const QPointer<LessonJournal> self(this); // the models tell their views, which may end the lesson
    const QJsonObject session = sessionOf(events);
    close();
    m_fileName = fileName;
    m_content->lessonName = text(session, "lesson");
    m_content->teacher = text(session, "teacher");
    m_content->startedAt = time(session);
    for (const QJsonObject& event : events) {
        if (self)
            replay(event);
    }
    if (self)
        m_journal.hold();
}

void LessonJournal::replay(const QJsonObject& event)
{
    using Replay = void (LessonJournal::*)(const QJsonObject&);
    static const QHash<QString, Replay> replays = {
        {QStringLiteral("joined"), &LessonJournal::replayJoined},
        {QStringLiteral("left"), &LessonJournal::replayLeft},
        {QStringLiteral("poll"), &LessonJournal::replayPoll},
        {QStringLiteral("sent"), &LessonJournal::replaySent},
        {QStringLiteral("cleared"), &LessonJournal::replayCleared},
        {QStringLiteral("assessment"), &LessonJournal::replayAssessment},
        {QStringLiteral("entered"), &LessonJournal::replayEntered},
        {QStringLiteral("state"), &LessonJournal::replayState},
        {QStringLiteral("answer"), &LessonJournal::replayAnswer},
        {QStringLiteral("card"), &LessonJournal::replayCard},
        {QStringLiteral("locked"), &LessonJournal::replayLock}};
    if (const Replay replayOne = replays.value(text(event, "event")))
        (this->*replayOne)(event);
}

void LessonJournal::replayJoined(const QJsonObject& event)
{
    m_content->roster->join(Learner(text(event, "device"), text(event, "name"), text(event, "type")),
                            time(event));
}

void LessonJournal::replayLeft(const QJsonObject& event)
{
    m_content->roster->leave(text(event, "device"), time(event));
}

void LessonJournal::replayPoll(const QJsonObject& event)
{
    const Question question = Question::fromMap(event.value("question").toObject().toVariantMap());
    auto* const added =
        new Poll(event.value("number").toInt(), question, m_content->roster, m_content->owner);
    added->restore(text(event, "id"), time(event));
    m_content->add(added);
    watch(added);
}

void LessonJournal::replaySent(const QJsonObject& event)
{
    if (!m_content->poll || m_content->poll->id() != text(event, "id"))
        return;
    Question question = m_content->poll->question();
    question.picture = bytes(event, "picture");
    question.pictureUrl = text(event, "url");
    m_content->setSent(question);
}

void LessonJournal::replayCleared(const QJsonObject&)
{
    m_content->removeStoppedPolls();
}

void LessonJournal::replayAssessment(const QJsonObject& event)
{
    AssessmentPlan plan = AssessmentPlan::fromMap(event.value("plan").toObject().toVariantMap());
    const QJsonArray pictures = event.value("pictures").toArray();
    for (int i = 0; i < plan.questions.size(); ++i)
        plan.questions[i].picture = QByteArray::fromBase64(pictures.at(i).toString().toLatin1());
    auto* const added =
        new Assessment(plan, event.value("forAll").toBool(), m_content->roster, m_content->owner);
    added->restore(text(event, "id"), event.value("questions").toVariant().toStringList(), time(event));
    m_content->add(added);
    watch(added);
}

void LessonJournal::replayEntered(const QJsonObject& event)
{
    if (m_content->assessment && m_content->assessment->token() == text(event, "id"))
        m_content->assessment->enter(text(event, "device"));
}

void LessonJournal::replayState(const QJsonObject& event)
{
    const QString id = text(event, "id");
    const bool isRunning = event.value("running").toBool();
    const bool isPaused = event.value("paused").toBool();
    const auto lasted = qint64(event.value("lasted").toDouble());
    if (Poll* const one = m_content->pollsById.value(id))
        one->restoreState(isRunning, isPaused, lasted, time(event, "stopsAt"));
    for (Assessment* one : std::as_const(m_content->assessments)) {
        if (one->token() == id)
            one->restoreState(isRunning, isPaused, lasted);
    }
}

void LessonJournal::replayAnswer(const QJsonObject& event)
{
    const QString id = text(event, "id");
    const QString device = text(event, "device");
    const QString answer = text(event, "answer");
    const int seconds = event.value("time").toInt();
    if (Poll* const one = m_content->pollsById.value(id)) {
        one->add(device, answer, seconds, time(event));
        return; // a slot may have deleted the lesson
    }
    for (Assessment* one : std::as_const(m_content->assessments)) {
        if (const int number = one->numberOf(id)) {
            one->add(device, number, answer, seconds, time(event));
            return;
        }
    }
}

void LessonJournal::replayCard(const QJsonObject& event)
{
    m_content->cardPng = bytes(event, "picture");
    m_content->cardUrl = text(event, "url");
}

void LessonJournal::replayLock(const QJsonObject& event)
{
    m_content->isLocked = event.value("locked").toBool();
}

} // namespace Calyx
