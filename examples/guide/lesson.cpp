// A host on the lesson layer, with what docs/host-guide.md shows of it beyond examples/desk: lesson SERVER
// USER PASSWORD LEARNERS. What stands between two marks of one name is shown there.
#include "Escaped.h"

#include <CalyxClient/Lesson>
#include <CalyxClient/PresenterClient>
#include <CalyxClient/PresenterCollab>

#include <QCoreApplication>
#include <QPointer>
#include <QSysInfo>
#include <QTextStream>

using Calyx::Lesson;
using Calyx::LessonError;

namespace {

constexpr int slides = 5;

// What this computer is called by the service.
QString deviceId()
{
    return QString::fromLatin1(QSysInfo::machineUniqueId());
}

// [question]
Calyx::Question aboutLeaves()
{
    auto question = Calyx::Question::usual(Calyx::PollType::MULTIPLE);
    question.text = QStringLiteral("Which gas does a leaf take in?");
    question.options = QStringList{QStringLiteral("Oxygen"), QStringLiteral("Carbon dioxide")};
    question.right = QStringList{QStringLiteral("B")};
    return question;
}
// [question]

class Host : public QObject
{
public:
    Host(const QUrl& server, const QString& user, const QString& password, int learners)
        : m_user(user), m_password(password), m_learners(learners), m_lesson(server)
    {
        connect(&m_lesson, &Lesson::stateChanged, this, &Host::onState);
        connect(&m_lesson, &Lesson::failed, this, &Host::onFailed);
        connect(m_lesson.roster(), &Calyx::Roster::changed, this, &Host::onRoster);
        connect(&m_lesson, &Lesson::answersChanged, this, &Host::onAnswers);
        ownSlides();
    }
    void begin() { m_lesson.logIn(m_user, QStringLiteral("not the password")); }

private:
    void onState()
    {
        if (m_lesson.state() == Lesson::LoggedIn && m_token.isEmpty())
            rememberDevice();
        if (m_lesson.state() == Lesson::Live)
            say(QStringLiteral("Join with the code ") + m_lesson.joinCode());
        if (m_lesson.state() == Lesson::LoggedIn && m_slide > 1) // the lesson is over
            QCoreApplication::quit();
    }
    // [errors]
    void onFailed(const LessonError& error)
    {
        say(error.text + QLatin1Char(' ') + error.advice);
        if (!error.key.isEmpty())
            qWarning("The service says %s", qPrintable(error.key));
        switch (error.kind) {
        case LessonError::BadCredentials:
        case LessonError::LoggedOutByService:
            askForPassword();
            break;
        case LessonError::SessionGone:
            m_lesson.save(QStringLiteral("lesson.json")); // before the next start()
            break;
        default: // the texts say it all
            break;
        }
    }
    // [errors]
    void askForPassword() { m_lesson.logIn(m_user, m_password); }

    // [token]
    void rememberDevice()
    {
        const auto ask = [self = QPointer<Host>(this), user = escaped(m_user),
                          password = escaped(m_password)](PresenterClient* client) {
            const QString token =
                client->doGetAccessToken(user, password, deviceId(), QSysInfo::machineHostName());
            QMetaObject::invokeMethod(qApp, [self, token] { // on the host's thread again
                if (self)
                    self->logInAgain(token);
            });
        };
        m_lesson.onClient(ask);
    }
    void logInAgain(const QString& token)
    {
        m_token = token; // keep it where passwords are kept
        m_lesson.logInWithToken(m_user, deviceId(), m_token);
        m_lesson.start();
    }
    // [token]

    void onRoster()
    {
        if (m_lesson.roster()->presentCount() == m_learners && !m_lesson.poll())
            m_lesson.ask(aboutLeaves());
    }
    void onAnswers(const Calyx::Poll* poll)
    {
        if (poll->answered() < m_learners)
            return;
        const Calyx::PollResults::Row right = poll->results()->rows().at(1);
        say(QStringLiteral("%1: %2").arg(right.title()).arg(right.count));
    }

    // [slides]
    void ownSlides()
    {
        m_lesson.setObeys(Lesson::NextCard, false);
        connect(&m_lesson, &Lesson::remoteCommand, this, [this](Lesson::RemoteCommand command) {
            if (command == Lesson::NextCard)
                showSlide(m_slide + 1);
        });
    }
    void showSlide(int number)
    {
        m_slide = qMin(number, slides);
        m_lesson.onChannel(
            [slide = m_slide](PresenterCollab* collab) { collab->sendCurrentCardToRemote(slide, slides); });
    }
    // [slides]

    static void say(const QString& text) { QTextStream(stdout) << text << Qt::endl; }

    QString m_user;
    QString m_password;
    QString m_token;
    int m_learners;
    int m_slide = 1;
    Lesson m_lesson;
};

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() != 5)
        return 2;
    Host host(QUrl(arguments.at(1)), arguments.at(2), arguments.at(3), arguments.at(4).toInt());
    host.begin();
    return application.exec();
}
