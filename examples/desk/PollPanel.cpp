#include "PollPanel.h"

#include "AnswerChart.h"
#include "Theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace {

constexpr int chartPause = 50; // ms; a class that answers at once redraws the chart once
constexpr int mostBars = 10;

} // namespace

PollPanel::PollPanel()
{
    m_bar = new PollBar;
    m_question = Theme::heading(QString(), 1.25);
    m_count = Theme::caption(QString());
    m_count->setWordWrap(false);
    m_chart = new AnswerChart;
    auto* title = new QHBoxLayout;
    title->addWidget(m_question, 1);
    title->addWidget(m_count);
    QVBoxLayout* box = Theme::panelBox(this);
    box->addWidget(m_bar);
    box->addLayout(title);
    box->addWidget(m_chart, 1);
    setFocusProxy(m_bar);

    m_chartTimer.setInterval(chartPause);
    m_chartTimer.setSingleShot(true);
    connect(&m_chartTimer, &QTimer::timeout, this, &PollPanel::showAnswers);
    connect(m_bar, &PollBar::start, this, [this](const PollKind& kind, int options) {
        m_kind = kind;
        m_tally = PollKinds::tally(kind, options);
        setState(PollBar::Starting);
        Q_EMIT start(kind, options);
    });
    connect(m_bar, &PollBar::pause, this, &PollPanel::pause);
    connect(m_bar, &PollBar::stop, this, &PollPanel::stop);
    showAnswers();
}

void PollPanel::setState(PollBar::State state)
{
    m_state = state;
    m_bar->setState(state, m_whyNot);
    showAnswers();
}

void PollPanel::setWhyNot(const QString& reason)
{
    m_whyNot = reason;
    setState(m_state);
}

void PollPanel::setLearnerCount(int count)
{
    m_learners = count;
    showAnswers();
}

void PollPanel::reset(bool forgets)
{
    m_answerId.clear();
    if (forgets)
        m_tally = Tally();
    setState(PollBar::NoPoll);
}

void PollPanel::onStarted(const QString& answerId)
{
    m_answerId = answerId;
    setState(PollBar::Running);
    Q_EMIT started();
}

void PollPanel::onPaused(bool isPaused)
{
    if (m_state != PollBar::NoPoll)
        setState(isPaused ? PollBar::Paused : PollBar::Running);
}

// An answer to a poll that is over comes too late.
void PollPanel::onAnswer(const QString& deviceId, const QString& answerId, const QString& answer)
{
    if (m_answerId.isEmpty() || answerId != m_answerId)
        return;
    m_tally.add(deviceId, answer);
    Q_EMIT counted(deviceId);
    if (!m_chartTimer.isActive())
        m_chartTimer.start();
}

void PollPanel::showAnswers()
{
    const bool isOn = m_state == PollBar::Running || m_state == PollBar::Paused;
    if (!isOn && m_tally.answered() == 0) {
        m_question->clear();
        m_count->clear();
        m_chart->showHint(QStringLiteral("Start a poll: the answers appear here as they come in."));
        return;
    }
    const QString answered = QString::number(m_tally.answered());
    m_question->setText(m_state == PollBar::Paused ? m_kind.name + QStringLiteral(" (paused)")
                        : isOn                     ? m_kind.name
                                                   : m_kind.name + QStringLiteral(" (over)"));
    m_count->setText(isOn ? QStringLiteral("%1 of %2 answered").arg(answered, QString::number(m_learners))
                          : QStringLiteral("%1 answered").arg(answered));
    m_chart->showBars(m_tally.bars(mostBars));
}
