#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/lesson/PollAnswer.h>
#include <CalyxClient/lesson/Question.h>

#include <QAbstractTableModel>
#include <QDateTime>
#include <QJsonObject>
#include <QVector>

#include <memory>

namespace Calyx {

class Roster;

/// What an assessment asks, and what learners may do in it. A value.
struct CALYXCLIENT_EXPORT AssessmentPlan
{
    Q_GADGET

public:
    /// The title that learners read.
    QString title;
    /// The questions in their order; one at least. What is right in them is not sent.
    QVector<Question> questions;
    /// Seconds for all questions together; 0 for no limit. The devices keep it.
    int seconds = 0;
    /// Whether a learner may go on without an answer.
    bool maySkip = false;
    /// Whether a learner may go back and forth.
    bool mayGoBack = false;
    /// Whether a learner may change an answer; else only the first one counts.
    bool mayResubmit = true;
    /// Whether the devices show a summary at the end.
    bool showsSummary = false;

    /// From the keys "title", "questions" (maps as Question::fromMap() takes them), "seconds", "maySkip",
    /// "mayGoBack", "mayResubmit" and "showsSummary".
    static AssessmentPlan fromMap(const QVariantMap& map);
    /// The same map.
    QVariantMap toMap() const;
    /// What is wrong with it, a sentence for people, translated; empty when nothing is.
    QString fault() const;
};

/// A set of questions that learners work through at their own pace, as a model of learners by questions: a
/// row for each learner who takes part, in the order of coming, a column for the name, one for the marks, and
/// one for each question.
///
/// Lesson::startAssessment() makes it and owns it. Each learner gets the questions as his device asks for
/// them; whoever joins later takes part too, unless it was started for certain devices. Lives on the lesson's
/// thread.
class CALYXCLIENT_EXPORT Assessment : public QAbstractTableModel
{
    Q_OBJECT
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(int questionCount READ questionCount CONSTANT)
    Q_PROPERTY(bool running READ isRunning NOTIFY stateChanged)
    Q_PROPERTY(bool paused READ isPaused NOTIFY stateChanged)
    Q_PROPERTY(int finished READ finished NOTIFY changed)
    Q_PROPERTY(int expected READ expected NOTIFY changed)

public:
    /// The columns.
    enum Column {
        Name,         ///< the learner
        Score,        ///< the marks, as "3 of 5"; empty where nothing is marked
        FirstQuestion ///< the first question; the others follow
    };
    Q_ENUM(Column)
    /// The roles, with their names in QML.
    enum Role {
        DeviceIdRole = Qt::UserRole + 1, ///< "deviceId"
        AnswerRole,                      ///< "answer" to the index's question
        MarkRole,                        ///< "mark" of that answer, a PollAnswer::Mark
        NameRole,                        ///< "name"
        RightAnswersRole,                ///< "rightAnswers": how many
        AnsweredRole,                    ///< "answered": how many
        IsFinishedRole                   ///< "isFinished"
    };
    Q_ENUM(Role)

    ~Assessment() override;

    /// The token by which devices know it: unique.
    QString token() const;
    /// What was asked for.
    AssessmentPlan plan() const;
    /// The plan's title.
    QString title() const;
    /// How many questions there are.
    int questionCount() const;
    /// How many of them have something right.
    int markedCount() const;
    /// Whether it has not been stopped yet.
    bool isRunning() const;
    /// Whether the devices hold it.
    bool isPaused() const;
    /// Whether everybody takes part, not only the devices that it was started for.
    bool isForAll() const;
    /// When it was started.
    QDateTime startedAt() const;
    /// Milliseconds that it has run, or has run until it was stopped.
    Q_INVOKABLE qint64 elapsed() const;

    /// The devices that take part, in the order of coming.
    QStringList participants() const;
    /// Whether the device takes part.
    Q_INVOKABLE bool takesPart(const QString& deviceId) const;
    /// The device's answer to the question with this number, from 1; one whose mark is PollAnswer::NoAnswer
    /// when there is none.
    Q_INVOKABLE Calyx::PollAnswer answer(const QString& deviceId, int number) const;
    /// How many questions the device has answered.
    Q_INVOKABLE int answered(const QString& deviceId) const;
    /// How many of them are right.
    Q_INVOKABLE int rightAnswers(const QString& deviceId) const;
    /// Whether the device has answered every question.
    Q_INVOKABLE bool isFinished(const QString& deviceId) const;
    /// How many have answered the question with this number.
    Q_INVOKABLE int answeredBy(int number) const;
    /// How many of them are right.
    Q_INVOKABLE int rightBy(int number) const;
    /// How many have answered every question.
    int finished() const;
    /// Those, and the others who are still here.
    int expected() const;
    /// The devices present that have not answered every question.
    Q_INVOKABLE QStringList unfinished() const;
    /// A line for each learner: name, marks, then answer and mark of each question.
    Q_INVOKABLE QString toCsv() const;
    /// The questions, every answer, the marks.
    QJsonObject toJson() const;

    ///@{
    /// As views want it.
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;
    ///@}

Q_SIGNALS:
    /// Paused, resumed or stopped.
    void stateChanged();
    /// Learners or answers have come, or learners have gone: once for all that came together.
    void changed();

private:
    friend class Lesson;
    friend class LessonJournal;
    friend struct LessonContent;
    friend struct LessonPrivate;
    Assessment(const AssessmentPlan& plan, bool isForAll, const Roster* roster, QObject* parent);
    int numberOf(const QString& questionId) const;
    QString questionId(int number) const;
    void enter(const QString& deviceId);
    // In UTC: the local time would be looked up for each answer.
    bool add(const QString& deviceId, int number, const QString& text, int time,
             const QDateTime& at = QDateTime::currentDateTimeUtc());
    void setPaused(bool paused);
    void stop(const QDateTime& at = QDateTime());
    void flush();
    // As it was, from a journal.
    void restore(const QString& token, const QStringList& questionIds, const QDateTime& startedAt);
    void restoreState(bool isRunning, bool isPaused, qint64 lasted);

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace Calyx

Q_DECLARE_METATYPE(Calyx::AssessmentPlan)
