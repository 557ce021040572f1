#include "Classroom.h"

#include <CalyxClient/SockJSConnector>

#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTimer>

using namespace Calyx;

static constexpr int replyLimit = 10000; // ms, the library's
static constexpr int openLimit = 10000;  // for each transport
static constexpr int channelLimit = 3 * openLimit + 1000;

// What a person can do about an error, by how its key begins; the first that fits counts.
static QString adviceOn(const QString& key)
{
    const QPair<const char*, QString> advices[] = {
        {"login.error.badCredentials",
         Classroom::tr("Check the user name and the password: small and capital letters are different.")},
        {"login.error", Classroom::tr("Log out and log in again.")},
        {"session.error.tooMany",
         Classroom::tr("End a lesson that is still open, then start this one again.")},
        {"session.error", Classroom::tr("End the lesson and start a new one.")},
        {"SSLRootCertificateMissing",
         Classroom::tr(
             "The service's certificate is signed by an authority that this computer does not know. Have the "
             "authority's certificate installed, and do not go on if you did not expect this.")},
        {"", Classroom::tr("Try again. If it goes on, give this key to whoever runs the service.")}};
    const auto* advice = advices;
    while (!key.startsWith(QLatin1String(advice->first)))
        ++advice;
    return Classroom::tr("%1\nThe service says: %2").arg(advice->second, key);
}

// The library puts texts into its requests as they are.
static QString escaped(const QString& text)
{
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(array.mid(2, array.size() - 4)); // without [" and "]
}

Classroom::Classroom()
{
    qRegisterMetaType<Stage>(); // it travels between threads
    moveToThread(&m_thread);
    m_thread.start();
}

Classroom::~Classroom()
{
    tell([](Classroom* classroom) {
        if (classroom->m_client && classroom->m_client->isLoggedIn())
            classroom->logOut();
        classroom->giveUp();
        classroom->m_thread.quit();
    });
    m_thread.wait();
}

void Classroom::tell(const std::function<void(Classroom*)>& work)
{
    QMetaObject::invokeMethod(this, [this, work] { work(this); });
}

void Classroom::tellChannel(const std::function<void(PresenterCollab*)>& work)
{
    tell([work](Classroom* classroom) {
        if (classroom->m_stage == Live && classroom->m_collab)
            work(classroom->m_collab);
    });
}

void Classroom::begin(const QString& what, const std::function<void(Classroom*)>& work)
{
    Q_EMIT busy(what);
    tell([work](Classroom* classroom) {
        classroom->m_clock.start();
        work(classroom);
        Q_EMIT classroom->busy(QString());
    });
}

void Classroom::setStage(Stage stage)
{
    m_stage = stage;
    Q_EMIT stageChanged(stage, m_client ? m_client->sessionCode() : QString());
}

// Tells why an operation has failed. When the client has been dropped meanwhile, there is nobody left who
// wants to know.
void Classroom::explain(const QString& what)
{
    if (!m_client)
        return;
    const QString key = m_client->lastError();
    const QString server = m_client->server();
    QString advice = tr("The service gave no reason. Try again in a moment.");
    if (!key.isEmpty())
        advice = adviceOn(key);
    else if (m_clock.elapsed() >= replyLimit)
        advice = tr("%1 did not answer within 10 seconds. Check the network, then try again.").arg(server);
    else if (!m_client->checkServer(QString(), QString()))
        advice = tr("No classroom service answers at %1. Check the address, and that the network "
                    "reaches it.")
                     .arg(server);
    if (m_client)
        Q_EMIT failed(what, advice);
}

void Classroom::logIn(const QString& server, const QString& user, const QString& password)
{
    m_client = std::make_unique<PresenterClient>(nullptr, server);
    m_client->setOpenLimit(openLimit);
    if (m_client->doLogin(escaped(user), escaped(password)))
        setStage(Ready);
    else
        explain(tr("Logging in failed"));
}

void Classroom::logOut()
{
    setStage(LoggedOut);
    if (m_client && !m_client->doLogout())
        explain(tr("Logging out failed"));
    m_client.reset();
}

void Classroom::openLesson()
{
    constexpr int patience = 2000; // ms
    const bool isNew = m_stage == Ready;
    if (!m_client)
        return;
    if ((!isNew || startSession()) && openChannel()) {
        setStage(Live);
        QTimer::singleShot(patience, m_collab, [this] { findEarlyLearners(); });
        return;
    }
    explain(isNew ? tr("The lesson did not start") : tr("The live channel did not open"));
    if (isNew && m_client)
        m_client->doStopSession();
}

bool Classroom::startSession()
{
    PresenterCollab* collab = nullptr;
    if (!m_client->doStartSession(QString()) || !m_client->startWebsocket(&collab) ||
        m_client->sessionToken().isEmpty())
        return false;
    if (m_collab)
        m_collab->deleteLater(); // the client has forgotten it, but would keep it
    m_collab = collab;
    connect(m_collab, &PresenterCollab::connectionClosed, this, [this] {
        if (m_stage == Live) // else it is no news
            setStage(Lost);
    });
    Q_EMIT channelMade(m_collab);
    return true;
}

// That open() has returned does not mean that the channel is open: the service has yet to say so.
bool Classroom::openChannel()
{
    if (m_collab && m_stage == Lost)
        m_collab->open(m_client->sockJSProtocols());
    if (m_collab && !m_collab->isConnected()) {
        QEventLoop loop;
        connect(m_collab->connector(), &SockJSConnector::connected, &loop, &QEventLoop::quit);
        connect(m_collab, &QObject::destroyed, &loop, &QEventLoop::quit);
        QTimer::singleShot(channelLimit, &loop, &QEventLoop::quit);
        loop.exec();
    }
    return m_collab && m_collab->isConnected();
}

// Who joined before the channel was open was not heard, and is asked for. Not at once: the service also lists
// those whose own channel is not open yet, and who would miss a poll that goes out now.
void Classroom::findEarlyLearners()
{
    if (m_stage != Live || !m_client->doGetLearners() || !m_client)
        return;
    const QList<Learner> learners = m_client->learners();
    for (const Learner& learner : learners)
        Q_EMIT learnerFound(learner);
}

void Classroom::stopLesson()
{
    if (!m_client)
        return;
    setStage(Ready);
    m_client->doStopSession(); // whatever the service answers, the lesson is over here
}

// Polls that are made within the same second have the same id, and a late answer to one would count for the
// next.
void Classroom::startPoll(const PollKind& kind, int options)
{
    constexpr int tick = 10; // ms
    if (m_stage != Live || !m_collab)
        return;
    while (std::time(nullptr) == m_lastPoll)
        QThread::msleep(tick); // the window goes on
    m_collab->startPoll(kind.type, kind.ordinal, options, kind.type == PollType::MULTIPLE ? 1 : 0);
    m_lastPoll = std::time(nullptr);
    const QString question = m_collab->currentQuestionId(); // words and drawings have none
    Q_EMIT pollStarted(question.isEmpty() ? m_collab->currentPollId() : question);
}

void Classroom::giveUp()
{
    setStage(LoggedOut);
    m_client.reset();
}
