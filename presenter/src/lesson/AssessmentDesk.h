#pragma once

#include "lesson/AssessmentSheet.h"
#include "text/Style.h"

#include <CalyxClient/PresenterAssessment>
#include <CalyxClient/PresenterCollab>

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>

#include <memory>

struct ChartData;
class Roster;

/// Holds assessments: hands each learner the questions as he asks for them, and takes the answers.
class AssessmentDesk : public QObject
{
    Q_OBJECT

public:
    explicit AssessmentDesk(const Roster& roster) : m_roster(roster) {}

    /// The questions that are written for the next assessment. They stay for another one, until a new set is
    /// begun.
    void write(const AssessmentItem& item);
    const QVector<AssessmentItem>& written() const { return m_written; }

    /// Begins an assessment for the device \p id or, where that is empty, for the whole class and whoever
    /// joins it later. The results of the one before are forgotten.
    void start(PresenterCollab* collab, const AssessmentPlan& plan, const QString& id);
    /// Another learner begins the assessment that is under way for single learners.
    void admit(const QString& id);
    void setPaused(bool paused);
    /// \p collab may be closed or gone: then the learners do not hear of it.
    void stop();

    bool isRunning() const { return m_assessment != nullptr; }
    bool isForAll() const { return m_isForAll; }
    /// The assessment that is under way or was last; null before the first.
    const AssessmentSheet* sheet() const { return m_sheet.get(); }
    /// Learners who have answered every question.
    int finished() const;
    /// Those, and the others who are still here.
    int expected() const;
    /// Names of the learners who are here and have not finished.
    QStringList unfinished() const;
    /// How far the learners are: a bar for each question.
    ChartData progress() const;

    void onJoin(const QString& deviceId);
    /// False when the answer is to no question of ours.
    bool takeAnswer(const QString& deviceId, const QString& answerId, const QString& answer);

Q_SIGNALS:
    void changed();
    void happened(const QString& text, Ink ink);

private:
    void send(const QString& deviceId, int number);
    void begin(const QString& id);
    void enter(const QString& deviceId);

    const Roster& m_roster;
    QPointer<PresenterCollab> m_collab;
    std::unique_ptr<PresenterAssessment> m_assessment; // while it is under way
    std::unique_ptr<AssessmentSheet> m_sheet;
    QVector<AssessmentItem> m_written;
    bool m_isWrittenUsed = false;
    QElapsedTimer m_clock;
    qint64 m_lasted = 0; // ms, once it is over
    bool m_isForAll = false;
    bool m_isPaused = false;
};
