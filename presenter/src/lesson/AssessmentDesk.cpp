#include "lesson/AssessmentDesk.h"

#include "lesson/AssessmentQuestion.h"
#include "lesson/Roster.h"
#include "text/Chart.h"
#include "text/Text.h"

#include <CalyxClient/AssessmentOptions>
#include <CalyxClient/QuestionBase>

#include <QUuid>

using namespace Calyx;

void AssessmentDesk::write(const AssessmentItem& item)
{
    if (m_isWrittenUsed)
        m_written.clear();
    m_isWrittenUsed = false;
    m_written.append(item);
}

void AssessmentDesk::start(PresenterCollab* collab, const AssessmentPlan& plan, const QString& id)
{
    AssessmentPlan fresh = plan;
    // The ids that questions come with are shared by all that are made within the same second.
    for (AssessmentItem& item : fresh.items)
        item.id = QUuid::createUuid().toString(QUuid::WithoutBraces);
    m_sheet = std::make_unique<AssessmentSheet>(fresh);
    m_collab = collab;
    m_assessment = std::make_unique<PresenterAssessment>(nullptr, collab);
    m_isWrittenUsed = true;
    m_isForAll = id.isEmpty();
    m_isPaused = false;
    m_clock.start();
    connect(m_assessment.get(), &PresenterAssessment::learnerGetQuestion, this, &AssessmentDesk::send);
    for (const QString& deviceId : m_isForAll ? m_roster.presentIds() : QStringList(id))
        enter(deviceId);
    begin(id);
}

void AssessmentDesk::admit(const QString& id)
{
    enter(id);
    begin(id);
}

void AssessmentDesk::enter(const QString& deviceId)
{
    m_sheet->enter(deviceId, m_roster.name(deviceId));
}

void AssessmentDesk::begin(const QString& id)
{
    const AssessmentPlan& plan = m_sheet->plan();
    AssessmentOptions options;
    options.settitle(plan.title);
    options.setquestionCount(m_sheet->questions());
    options.setstartingQuestionNumber(1);
    options.setallowedTime(plan.seconds);
    options.setallowSkipQuestion(plan.maySkip);
    options.setallowNavigateQuestionSet(plan.mayNavigate);
    options.setallowResubmitResponse(plan.mayResubmit);
    options.setshowSummaryOnAssessmentCompletion(plan.showsSummary);
    options.setscored(m_sheet->markedQuestions() > 0);
    m_assessment->start(id, &options);
    Q_EMIT changed();
}

// Whoever joins a class at work begins, too. Who was there at the start, and has only come back, goes on by
// himself.
void AssessmentDesk::onJoin(const QString& deviceId)
{
    if (isRunning() && m_isForAll && !m_sheet->takesPart(deviceId))
        admit(deviceId);
}

void AssessmentDesk::send(const QString& deviceId, int number)
{
    // A device that is listed, but was not heard yet, has heard us all the same.
    if (m_isForAll && !m_sheet->takesPart(deviceId))
        enter(deviceId);
    if (!m_sheet->takesPart(deviceId) || number < 0 || number > m_sheet->questions()) {
        Q_EMIT happened(QStringLiteral("  %1 asks for question %2, and gets none")
                            .arg(m_roster.name(deviceId))
                            .arg(number),
                        Ink::Faint);
        return;
    }
    number = qMax(number, 1); // a device that names none wants the first
    const auto question = AssessmentQuestion::create(m_collab, *m_sheet, number, deviceId);
    m_assessment->sendQuestion(deviceId, question.get());
}

bool AssessmentDesk::takeAnswer(const QString& deviceId, const QString& answerId, const QString& answer)
{
    const int number = m_sheet ? m_sheet->numberOf(answerId) : 0;
    if (number == 0)
        return false;
    const bool wasFinished = m_sheet->isFinished(deviceId);
    if (!isRunning())
        Q_EMIT happened(QStringLiteral("  The answer of %1 came too late").arg(m_roster.name(deviceId)),
                        Ink::Faint);
    else if (!m_sheet->addAnswer(deviceId, number, answer))
        Q_EMIT happened(QStringLiteral("  An answer of %1 does not count").arg(m_roster.name(deviceId)),
                        Ink::Faint);
    else if (m_sheet->isFinished(deviceId) && !wasFinished)
        Q_EMIT happened(QStringLiteral("  %1 has answered all questions, %2 of %3 have")
                            .arg(m_roster.name(deviceId))
                            .arg(finished())
                            .arg(expected()),
                        Ink::Faint);
    Q_EMIT changed();
    return true;
}

void AssessmentDesk::setPaused(bool paused)
{
    if (paused)
        m_assessment->pause();
    else
        m_assessment->resume();
    m_isPaused = paused;
    Q_EMIT changed();
}

void AssessmentDesk::stop()
{
    m_assessment->stop();
    m_assessment.reset();
    m_lasted = m_clock.elapsed();
    m_isPaused = false;
    Q_EMIT changed();
}

int AssessmentDesk::finished() const
{
    int finished = 0;
    for (const QString& deviceId : m_sheet->participants())
        finished += m_sheet->isFinished(deviceId) ? 1 : 0;
    return finished;
}

int AssessmentDesk::expected() const
{
    return finished() + unfinished().size();
}

QStringList AssessmentDesk::unfinished() const
{
    QStringList names;
    for (const QString& deviceId : m_sheet->participants()) {
        if (m_roster.isPresent(deviceId) && !m_sheet->isFinished(deviceId))
            names.append(m_sheet->name(deviceId));
    }
    return names;
}

ChartData AssessmentDesk::progress() const
{
    constexpr int second = 1000;
    ChartData data;
    data.title = m_sheet->plan().title.isEmpty() ? QStringLiteral("Assessment") : m_sheet->plan().title;
    data.doing = QStringLiteral("finished");
    data.answered = finished();
    data.expected = expected();
    data.whole = m_sheet->participants().size();
    data.seconds = static_cast<int>((isRunning() ? m_clock.elapsed() : m_lasted) / second);
    data.isPaused = m_isPaused;
    for (int number = 1; number <= m_sheet->questions(); ++number)
        data.bars.append({AssessmentQuestion::title(*m_sheet, number), m_sheet->answers(number)});
    return data;
}
