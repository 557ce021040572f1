#include "Classroom.h"

#include <CalyxClient/SockJSConnector>

#include <QElapsedTimer>
#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QThread>
#include <QTimer>

using namespace Calyx;

namespace {

constexpr int replyLimit = 10000; // ms, the library's
constexpr int openLimit = 10000;  // for each transport
constexpr int channelLimit = 3 * openLimit + 1000;

// The library puts texts into its requests as they are.
QString escaped(const QString& text)
{
    const QByteArray array = QJsonDocument(QJsonArray{text}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(array.mid(2, array.size() - 4)); // without [" and "]
}

} // namespace

// One operation, from its begin to finished(). When the client has been dropped meanwhile, there is nobody
// left who wants to know of a failure.
class Classroom::Attempt
{
public:
    Attempt(Classroom* classroom, const char* what) : m_classroom(classroom), m_what(QLatin1String(what))
    {
        m_clock.start();
    }
    ~Attempt() { Q_EMIT m_classroom->finished(); }
    Q_DISABLE_COPY(Attempt)

    void fail()
    {
        const std::unique_ptr<PresenterClient>& client = m_classroom->m_client;
        if (!client)
            return;
        const QString key = client->lastError();
        const QString server = client->server();
        Failures::Silence silence = Failures::Answers;
        if (key.isEmpty() && m_clock.elapsed() >= replyLimit)
            silence = Failures::GivesNoAnswer;
        else if (key.isEmpty() && !client->checkServer(QString(), QString()))
            silence = Failures::IsNotThere;
        if (client)
            Q_EMIT m_classroom->failed(Failures::explain(m_what, key, silence, server));
    }

private:
    Classroom* m_classroom;
    QString m_what;
    QElapsedTimer m_clock;
};

Classroom::Classroom()
{
    qRegisterMetaType<Failure>(); // both travel between threads
    qRegisterMetaType<Stage>();
}

void Classroom::setStage(Stage stage)
{
    m_stage = stage;
    Q_EMIT stageChanged(stage, m_client ? m_client->sessionCode() : QString());
}

void Classroom::dropClient()
{
    if (m_collab)
        m_collab->disconnect(this);
    m_client.reset();
}

void Classroom::logIn(const QString& server, const QString& user, const QString& password)
{
    Attempt attempt(this, "Logging in failed");
    m_client = std::make_unique<PresenterClient>(nullptr, server);
    m_client->setOpenLimit(openLimit);
    if (m_client->doLogin(escaped(user), escaped(password)))
        setStage(Ready);
    else
        attempt.fail();
}

void Classroom::logOut()
{
    Attempt attempt(this, "Logging out failed");
    if (m_collab)
        m_collab->disconnect(this);
    if (m_client && !m_client->doLogout())
        attempt.fail();
    dropClient();
    setStage(LoggedOut);
}

void Classroom::startLesson()
{
    Attempt attempt(this, "The lesson did not start");
    if (!m_client || m_stage != Ready)
        return;
    PresenterCollab* collab = nullptr;
    if (!m_client->doStartSession(QString()) || !m_client->startWebsocket(&collab) ||
        m_client->sessionToken().isEmpty()) {
        attempt.fail();
        return;
    }
    if (m_collab)
        m_collab->deleteLater(); // the client has forgotten it, but would keep it
    m_collab = collab;
    m_isLocked = false;
    listen();
    if (waitForChannel()) {
        enterLesson();
        return;
    }
    attempt.fail();
    if (m_client)
        m_client->doStopSession();
}

void Classroom::reconnect()
{
    Attempt attempt(this, "The live channel did not open");
    if (!m_collab || m_stage != Lost)
        return;
    m_collab->open(m_client->sockJSProtocols());
    if (waitForChannel())
        enterLesson();
    else
        attempt.fail();
}

// That open() has returned does not mean that the channel is open: the service has yet to say so.
bool Classroom::waitForChannel()
{
    if (!m_collab)
        return false;
    QEventLoop loop;
    connect(m_collab->connector(), &SockJSConnector::connected, &loop, &QEventLoop::quit);
    connect(m_collab, &QObject::destroyed, &loop, &QEventLoop::quit);
    QTimer::singleShot(channelLimit, &loop, &QEventLoop::quit);
    if (!m_collab->isConnected())
        loop.exec();
    return m_collab && m_collab->isConnected();
}

// Who joined before the channel was open was not heard, and is asked for. Not at once: the service also lists
// those whose own channel is not open yet, and who would miss a poll that goes out now.
void Classroom::enterLesson()
{
    constexpr int patience = 2000; // ms
    setStage(Live);
    QTimer::singleShot(patience, m_collab, [this] { findEarlyLearners(); });
}

void Classroom::findEarlyLearners()
{
    if (m_stage != Live || !m_client->doGetLearners() || !m_client)
        return;
    const QList<Learner> learners = m_client->learners();
    for (const Learner& learner : learners)
        Q_EMIT learnerJoined(learner.deviceId, learner.userName, learner.deviceType);
}

void Classroom::stopLesson()
{
    Attempt attempt(this, "The lesson did not end");
    if (!m_client)
        return;
    if (m_collab)
        m_collab->disconnect(this);
    m_client->doStopSession(); // whatever the service answers, the lesson is over here
    if (m_client)
        setStage(Ready);
}

void Classroom::giveUp()
{
    dropClient();
    setStage(LoggedOut);
}

void Classroom::shutDown()
{
    if (m_collab)
        m_collab->disconnect(this);
    if (m_client && m_client->isLoggedIn())
        m_client->doLogout();
    dropClient();
    thread()->quit();
}
