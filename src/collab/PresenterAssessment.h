#pragma once

#include <CalyxClient/calyxclient_export.h>

#include <QObject>
#include <QPointer>
#include <QString>

class PresenterCollab;

namespace Calyx {
class AssessmentOptions;
class CalyxCollabMessage;
class QuestionBase;
} // namespace Calyx

/// A set of questions that learners work through, under one token of its own.
///
/// Where an operation takes the id of a learner's device, an empty id means the whole session. Everything is
/// published as it is called and nothing is queued: while the channel is closed it is lost. Once the
/// session has been deleted, all operations do nothing.
class CALYXCLIENT_EXPORT PresenterAssessment : public QObject
{
    Q_OBJECT

public:
    /// Works through \p collab, which is not owned.
    PresenterAssessment(QObject* parent, PresenterCollab* collab);

    /// The token of this assessment: a UUID without braces.
    QString assessmentToken() const { return m_assessmentToken; }

    /// Sets the token in \p options and publishes them as "assessmentStart". Always true.
    bool start(QString id, Calyx::AssessmentOptions* options);
    /// Publishes "assessmentStop" to the whole session.
    void stop();
    ///@{
    /// PresenterCollab::pausePoll() and PresenterCollab::resumePoll(): what is sent names the session's
    /// current poll, not this assessment.
    void pause();
    void resume();
    ///@}
    /// Publishes \p question as "questionStart" in the mode "Assessment". Always true; \p question stays the
    /// caller's.
    bool sendQuestion(QString id, Calyx::QuestionBase* question);
    ///@{
    /// Publishes a dialog with \p text ("dialogShow"), or, with \p review, the review of the questions
    /// ("questionSetReview"); \p isDismissible counts for the dialog only.
    void sendMessage(QString text, bool isDismissible, bool review);
    void sendMessage(QString id, QString text, bool isDismissible, bool review);
    ///@}
    /// Not to be called: a literal where a bool stands is a forgotten argument. `sendMessage("device-1",
    /// "Well done", true)` would show "device-1" to everybody.
    template<typename Character>
    void sendMessage(QString id, const Character* text, bool isDismissible) = delete;

Q_SIGNALS:
    /// The learner's device \p id asks for the question with the number \p questionId, 0 when it named none.
    /// Every assessment of the session hears it. Answer with sendQuestion().
    void learnerGetQuestion(QString id, int questionId);

private:
    QString address(const QString& id) const;
    void publish(const QString& address, Calyx::CalyxCollabMessage& message);

    QPointer<PresenterCollab> m_collab;
    QString m_assessmentToken;
};
