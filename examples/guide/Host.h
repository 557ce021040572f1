// The host of docs/host-guide.md. What stands between two marks of one name is shown there.
#pragma once

// [class]
#include <CalyxClient/PresenterAssessment>
#include <CalyxClient/PresenterClient>
#include <CalyxClient/PresenterCollab>

#include <QMap>
#include <QObject>
#include <QPointer>
#include <QSet>

class Host : public QObject
{
    Q_OBJECT

public:
    explicit Host(const QString& server);

    bool findService();
    bool logIn(const QString& user, const QString& password);
    bool rememberDevice(const QString& user, const QString& password);
    bool logInAgain();
    bool createSession();
    bool goLive();
    void end();

    void ask();
    void stopAsking();
    void askInWords();
    bool showPicture(const QString& fileName, const QByteArray& png);
    void showSmallPicture(const QByteArray& png);
    void showCard(int number);
    void startAssessment();
    void stopAssessment();

    // For drawing the lesson.
    PresenterCollab* collab() const { return m_collab; }
    bool isLive() const { return m_collab && m_collab->isConnected(); }
    QString error() const { return m_error; }
    int learnerCount() const { return m_listening.size(); }
    QMap<QString, QString> answers() const { return m_answers; }
    int assessmentAnswers() const { return m_assessmentAnswers; }
    int card() const { return m_card; }

Q_SIGNALS:
    /// The lesson has changed: time to draw it anew.
    void changed();

private:
    void listen();
    void onOpen();
    void onJoin(const Calyx::Learner& learner);
    void onLeave(const QString& deviceId);
    void onAnswer(const QString& deviceId, const QString& answerId, int time, const QString& answer);
    void onRemoteControl(const Calyx::RemoteControlMessage& command);
    void onClosed(bool forInactivity);
    void sendQuestion(const QString& deviceId, int number);
    bool fail(const QString& what);

    PresenterClient m_client;
    QPointer<PresenterCollab> m_collab; // the client owns it
    QPointer<PresenterAssessment> m_assessment;
    QMap<QString, Calyx::Learner> m_learners; // by device
    QSet<QString> m_listening;                // those devices that have said themselves that they are here
    QString m_answerId;                       // what is being asked
    QMap<QString, QString> m_answers;         // by device
    int m_card = 1;
    bool m_ending = false;
    QString m_error;
    QString m_user;
    QString m_deviceToken;
    int m_assessmentAnswers = 0;
};
// [class]
