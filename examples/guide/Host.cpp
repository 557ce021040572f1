// The host of docs/host-guide.md. What stands between two marks of one name is shown there.
#include "Host.h"

#include "Escaped.h"

#include <CalyxClient/AssessmentOptions>
#include <CalyxClient/QuestionMultiChoice>
#include <CalyxClient/QuestionText>
#include <CalyxClient/SockJSConnector>

#include <QSysInfo>
#include <QTextStream>
#include <QTimer>
#include <QUrl>
#include <QUuid>

namespace {

constexpr int cardCount = 5;

// What this computer is called by the service.
QString deviceId()
{
    return QString::fromLatin1(QSysInfo::machineUniqueId());
}

} // namespace

// [service]
Host::Host(const QString& server) : m_client(nullptr, server) {}

bool Host::findService()
{
    const QUrl meant(m_client.server());
    if (!m_client.checkServer(QString(), QString()))
        return fail(tr("Nobody answers"));
    const bool isElsewhere = QUrl(m_client.server()).host() != meant.host();
    return !isElsewhere || fail(tr("This network wants you to sign in first"));
}
// [service]

// [log-in]
bool Host::logIn(const QString& user, const QString& password)
{
    return m_client.doLogin(escaped(user), escaped(password)) || fail(tr("Cannot log in"));
}

bool Host::fail(const QString& what)
{
    QString why = m_client.lastError(); // for a table of yours, with words for people
    if (why.isEmpty())
        why = tr("the service cannot be reached");
    m_error = QStringLiteral("%1: %2").arg(what, why);
    Q_EMIT changed();
    return false;
}
// [log-in]

// [device]
bool Host::rememberDevice(const QString& user, const QString& password)
{
    m_user = escaped(user);
    m_deviceToken =
        m_client.doGetAccessToken(m_user, escaped(password), deviceId(), QSysInfo::machineHostName());
    return !m_deviceToken.isEmpty(); // keep it where passwords are kept
}

bool Host::logInAgain()
{
    return m_client.doLogin(m_user, deviceId(), m_deviceToken) || fail(tr("Cannot log in"));
}
// [device]

// [session]
bool Host::createSession()
{
    if (!m_client.doStartSession(QString()))
        return fail(tr("Cannot start a session"));
    QTextStream(stdout) << "Join with the code " << m_client.sessionCode() << Qt::endl;
    return true;
}
// [session]

// [live]
bool Host::goLive()
{
    constexpr int openLimit = 10000; // ms, for each transport
    constexpr int patience = 3 * openLimit + 1000;
    m_client.setOpenLimit(openLimit);
    PresenterCollab* collab = nullptr;
    if (!m_client.startWebsocket(&collab))
        return fail(tr("Cannot go live"));
    m_collab = collab;
    listen();
    if (m_collab->isConnected())
        onOpen();
    QTimer::singleShot(patience, m_collab, [this] {
        if (!m_collab->isConnected())
            fail(tr("The live channel does not open"));
    });
    return true;
}
// [live]

// [listen]
void Host::listen()
{
    // Queued: it asks the service, and waits.
    connect(m_collab->connector(), &SockJSConnector::connected, this, &Host::onOpen, Qt::QueuedConnection);
    connect(m_collab, &PresenterCollab::learnerJoin, this, &Host::onJoin);
    connect(m_collab, &PresenterCollab::learnerUnregister, this, &Host::onLeave);
    connect(m_collab, &PresenterCollab::learnerPollResponse, this, &Host::onAnswer);
    connect(m_collab, &PresenterCollab::remoteControl, this, &Host::onRemoteControl);
    connect(m_collab, &PresenterCollab::connectionClosed, this, &Host::onClosed);
}
// [listen]

// [learners]
void Host::onOpen()
{
    m_client.doGetLearners();
    const QList<Calyx::Learner> learners = m_client.learners();
    for (const Calyx::Learner& learner : learners)
        m_learners.insert(learner.deviceId, learner);
    Q_EMIT changed();
}

void Host::onJoin(const Calyx::Learner& learner)
{
    m_learners.insert(learner.deviceId, learner);
    m_listening.insert(learner.deviceId);
    Q_EMIT changed();
}

void Host::onLeave(const QString& deviceId)
{
    m_learners.remove(deviceId);
    m_listening.remove(deviceId);
    Q_EMIT changed();
}
// [learners]

// [ask]
void Host::ask()
{
    m_answers.clear();
    m_collab->startPoll(Calyx::PollType::MULTIPLE, Calyx::OrdinalType::ALPHA_UPPER, 4, 1);
    m_answerId = m_collab->currentQuestionId();
    if (m_answerId.isEmpty()) // a poll without a question: word seed, creative
        m_answerId = m_collab->currentPollId();
}
// [ask]

// [answers]
void Host::onAnswer(const QString& deviceId, const QString& answerId, int, const QString& answer)
{
    if (answerId == m_answerId)
        m_answers.insert(deviceId, answer);
    else if (m_assessment && answerId.startsWith(m_assessment->assessmentToken()))
        ++m_assessmentAnswers;
    Q_EMIT changed();
}
// [answers]

// [stop]
void Host::stopAsking()
{
    m_collab->stopPoll();
    m_answerId.clear();
}
// [stop]

// [words]
void Host::askInWords()
{
    Calyx::QuestionMultiChoice question;
    question.setID(QUuid::createUuid().toString(QUuid::WithoutBraces));
    question.setinstructions(tr("Which gas does a leaf take in?"));
    question.addActivityOption(QStringLiteral("A"), tr("Oxygen"), 1);
    question.addActivityOption(QStringLiteral("B"), tr("Carbon dioxide"), 2);
    question.setOrdinals(Calyx::OrdinalType::ALPHA_UPPER);
    m_answers.clear();
    m_answerId = question.id();
    m_collab->sendQuestion(&question);
}
// [words]

// [card]
bool Host::showPicture(const QString& fileName, const QByteArray& png)
{
    QString id;
    QString path;
    if (!m_client.doUploadResource(fileName, png, &id, &path))
        return fail(tr("Cannot upload the picture"));
    m_collab->setCardImageRef(m_client.server() + path);
    m_collab->showImageCard(false);
    return true;
}

void Host::showSmallPicture(const QByteArray& png)
{
    m_collab->setCardImage(png);
    m_collab->showImageCard(true);
}
// [card]

// [remote]
void Host::onRemoteControl(const Calyx::RemoteControlMessage& command)
{
    if (command.from == m_collab->userToken())
        return; // what we publish to the whole session comes back to us
    if (m_learners.contains(command.from))
        return; // a learner is no remote control
    if (command.type == QLatin1String("nextCard"))
        showCard(m_card + 1);
    else if (command.type == QLatin1String("previousCard"))
        showCard(m_card - 1);
    else if (command.type == QLatin1String("requestLessonInfo"))
        showCard(m_card);
}

void Host::showCard(int number)
{
    m_card = qBound(1, number, cardCount);
    m_collab->sendPresenterIsActiveToRemote();
    m_collab->sendCurrentLessonToRemote(QStringLiteral("leaves"), tr("Photosynthesis"));
    m_collab->sendCurrentCardToRemote(m_card, cardCount);
    Q_EMIT changed();
}
// [remote]

// [assessment]
void Host::startAssessment()
{
    m_assessment = new PresenterAssessment(this, m_collab);
    connect(m_assessment, &PresenterAssessment::learnerGetQuestion, this, &Host::sendQuestion);
    Calyx::AssessmentOptions options;
    options.settitle(tr("Leaves"));
    options.setquestionCount(2);
    options.setallowedTime(600); // s
    m_assessment->start(QString(), &options);
}

void Host::sendQuestion(const QString& deviceId, int number)
{
    Calyx::QuestionText question;
    question.setID(QStringLiteral("%1/%2").arg(m_assessment->assessmentToken()).arg(number));
    question.setquestionNumber(number);
    question.setinstructions(tr("Write what you know of leaves (%1).").arg(number));
    m_assessment->sendQuestion(deviceId, &question);
}

void Host::stopAssessment()
{
    m_assessment->stop();
    m_assessment->deleteLater();
}
// [assessment]

// [closed]
void Host::onClosed(bool forInactivity)
{
    constexpr int pause = 1000; // ms
    if (m_ending || forInactivity)
        return;
    QTimer::singleShot(pause, m_collab, [this] { m_collab->open(m_client.sockJSProtocols()); });
}
// [closed]

// [end]
void Host::end()
{
    m_ending = true;
    m_client.doLogout();
}
// [end]
