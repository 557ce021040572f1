#include "LessonPage.h"

#include "AnswerChart.h"
#include "CardDeck.h"
#include "LearnerList.h"
#include "Theme.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace {

constexpr int learnersWidth = 200;
constexpr int chartPause = 50; // ms; a class that answers at once redraws the chart once
constexpr int mostBars = 10;

void setTone(QLabel* label, const QString& text, const char* tone)
{
    label->setText(text);
    label->setProperty("tone", QLatin1String(tone));
    label->style()->unpolish(label); // the style sheet looks at properties once
    label->style()->polish(label);
}

QVBoxLayout* boxIn(QFrame* panel)
{
    auto* box = new QVBoxLayout(panel);
    box->setContentsMargins(16, 14, 16, 16);
    box->setSpacing(10);
    return box;
}

} // namespace

LessonPage::LessonPage()
{
    m_chartTimer.setSingleShot(true);
    m_chartTimer.setInterval(chartPause);
    connect(&m_chartTimer, &QTimer::timeout, this, &LessonPage::showAnswers);

    auto* page = new QVBoxLayout(this);
    page->setContentsMargins(0, 0, 0, 0);
    page->setSpacing(12);
    page->addWidget(makeHeader());
    auto* columns = new QHBoxLayout;
    columns->setSpacing(12);
    columns->addWidget(makeLearners());
    columns->addWidget(makePoll(), 1);
    columns->addWidget(makeCards());
    page->addLayout(columns, 1);
    refresh();
}

QWidget* LessonPage::makeHeader()
{
    m_code = Theme::heading(QString(), 2.2);
    m_code->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_code->setFocusPolicy(Qt::ClickFocus);
    m_codeHint = Theme::caption(QString());
    m_codeHint->setWordWrap(false);
    m_state = new QLabel;
    m_state->setObjectName(QStringLiteral("state"));
    m_start = Theme::primaryButton(QStringLiteral("Start &lesson"),
                                   QStringLiteral("Start a lesson that learners can join"));
    m_end = Theme::button(QStringLiteral("&End lesson"), QStringLiteral("End the lesson for everybody"));
    m_logOut = Theme::button(QStringLiteral("Log &out"), QStringLiteral("End what is open and log out"));
    connect(m_start, &QPushButton::clicked, this,
            [this] { m_stage == Classroom::Lost ? Q_EMIT reconnect() : Q_EMIT startLesson(); });
    connect(m_end, &QPushButton::clicked, this, &LessonPage::endLesson);
    connect(m_logOut, &QPushButton::clicked, this, &LessonPage::logOut);

    QFrame* panel = Theme::panel();
    auto* row = new QHBoxLayout(panel);
    row->setContentsMargins(16, 10, 16, 10);
    row->setSpacing(12);
    row->addWidget(m_code);
    row->addWidget(m_codeHint);
    row->addWidget(m_state, 0, Qt::AlignVCenter);
    row->addStretch();
    for (QPushButton* button : {m_start, m_end, m_logOut})
        row->addWidget(button);
    return panel;
}

QWidget* LessonPage::makePoll()
{
    m_poll = new PollBar;
    m_question = Theme::heading(QString(), 1.25);
    m_count = Theme::caption(QString());
    m_count->setWordWrap(false);
    m_chart = new AnswerChart;
    connect(m_poll, &PollBar::start, this, [this](const PollKind& kind, int options) {
        m_kind = kind;
        m_tally = PollKinds::tally(kind, options);
        m_pollState = PollBar::Starting;
        refresh();
        Q_EMIT startPoll(kind, options);
    });
    connect(m_poll, &PollBar::pause, this, &LessonPage::pausePoll);
    connect(m_poll, &PollBar::stop, this, &LessonPage::stopPoll);

    QFrame* panel = Theme::panel();
    QVBoxLayout* box = boxIn(panel);
    box->addWidget(m_poll);
    auto* title = new QHBoxLayout;
    title->addWidget(m_question, 1);
    title->addWidget(m_count);
    box->addLayout(title);
    box->addWidget(m_chart, 1);
    return panel;
}

QWidget* LessonPage::makeLearners()
{
    m_learners = new LearnerList;
    QFrame* panel = Theme::panel();
    panel->setFixedWidth(learnersWidth);
    boxIn(panel)->addWidget(m_learners);
    return panel;
}

QWidget* LessonPage::makeCards()
{
    m_cards = new CardDeck;
    m_remote = Theme::caption(QString());
    showRemote(QStringLiteral("It can join with the lesson\u2019s code."));
    QFrame* panel = Theme::panel();
    QVBoxLayout* box = boxIn(panel);
    box->addWidget(m_cards);
    box->addStretch();
    box->addWidget(Theme::heading(QStringLiteral("Remote control"), 1.1));
    box->addWidget(m_remote);
    return panel;
}

void LessonPage::setStage(Classroom::Stage stage, const QString& code)
{
    if (m_stage == Classroom::Ready && stage == Classroom::Live)
        m_tally = Tally();
    m_stage = stage;
    m_code->setText(code);
    m_code->setAccessibleName(QStringLiteral("Lesson code ") + code);
    if (stage != Classroom::Live) {
        m_pollState = PollBar::NoPoll;
        m_answerId.clear();
        m_learners->clear();
    }
    refresh();
}

void LessonPage::setBusy(const QString& busyWith)
{
    m_busyWith = busyWith;
    refresh();
}

void LessonPage::takeFocus()
{
    if (m_stage == Classroom::Live)
        m_poll->setFocus();
    else
        m_start->setFocus();
}

void LessonPage::refresh()
{
    const bool isLive = m_stage == Classroom::Live;
    const bool isLost = m_stage == Classroom::Lost;
    m_code->setVisible(isLive || isLost);
    m_codeHint->setText(isLive || isLost ? QStringLiteral("Learners join with this code")
                                         : QStringLiteral("Start a lesson, and learners can join."));
    setTone(m_state,
            isLive   ? QStringLiteral("Live")
            : isLost ? QStringLiteral("Connection lost")
                     : QStringLiteral("No lesson"),
            isLive   ? "live"
            : isLost ? "lost"
                     : "");
    m_start->setVisible(!isLive);
    m_start->setText(isLost ? QStringLiteral("&Reconnect") : QStringLiteral("Start &lesson"));
    m_start->setAccessibleName(isLost ? QStringLiteral("Reconnect") : QStringLiteral("Start lesson"));
    Theme::allow(m_start, m_busyWith);
    const QString noLesson = isLive || isLost ? QString() : QStringLiteral("No lesson is open.");
    Theme::allow(m_end, m_busyWith.isEmpty() ? noLesson : m_busyWith);
    Theme::allow(m_logOut, m_busyWith);

    QString whyNot = m_busyWith;
    if (whyNot.isEmpty() && !isLive)
        whyNot = isLost ? QStringLiteral("The connection is lost: reconnect first.")
                        : QStringLiteral("Start the lesson first.");
    m_poll->setState(m_pollState, whyNot);
    m_cards->setWhyNoShow(whyNot);
    showAnswers();
}

void LessonPage::showAnswers()
{
    const bool isOn = m_pollState == PollBar::Running || m_pollState == PollBar::Paused;
    if (!isOn && m_tally.answered() == 0) {
        m_question->clear();
        m_count->clear();
        m_chart->showHint(QStringLiteral("Start a poll: the answers appear here as they come in."));
        return;
    }
    m_question->setText(m_pollState == PollBar::Paused ? m_kind.name + QStringLiteral(" (paused)")
                        : isOn                         ? m_kind.name
                                                       : m_kind.name + QStringLiteral(" (over)"));
    m_count->setText(
        isOn ? QStringLiteral("%1 of %2 answered").arg(m_tally.answered()).arg(m_learners->count())
             : QStringLiteral("%1 answered").arg(m_tally.answered()));
    m_chart->showBars(m_tally.bars(mostBars));
}

void LessonPage::join(const QString& deviceId, const QString& name, const QString& deviceType)
{
    m_learners->join(deviceId, name, deviceType);
    showAnswersSoon();
}

void LessonPage::leave(const QString& deviceId)
{
    m_learners->leave(deviceId);
    showAnswersSoon();
}

void LessonPage::onPollStarted(const QString& answerId)
{
    m_answerId = answerId;
    m_learners->clearMarks();
    m_pollState = PollBar::Running;
    refresh();
}

void LessonPage::onPollPaused(bool isPaused)
{
    if (m_pollState == PollBar::NoPoll)
        return;
    m_pollState = isPaused ? PollBar::Paused : PollBar::Running;
    refresh();
}

void LessonPage::onPollStopped()
{
    m_pollState = PollBar::NoPoll;
    m_answerId.clear();
    refresh();
}

// An answer to a poll that is over comes too late.
void LessonPage::onAnswer(const QString& deviceId, const QString& answerId, const QString& answer)
{
    if (m_answerId.isEmpty() || answerId != m_answerId)
        return;
    m_tally.add(deviceId, answer);
    m_learners->markAnswered(deviceId);
    showAnswersSoon();
}

void LessonPage::showAnswersSoon()
{
    if (!m_chartTimer.isActive())
        m_chartTimer.start();
}

void LessonPage::pressPause(bool pauses)
{
    m_poll->press(pauses);
}

void LessonPage::showRemote(const QString& text)
{
    m_remote->setText(text);
}
