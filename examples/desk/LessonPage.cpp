#include "LessonPage.h"

#include "CardDeck.h"
#include "LearnerList.h"
#include "PollPanel.h"
#include "Theme.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int learnersWidth = 200;

} // namespace

LessonPage::LessonPage()
{
    auto* page = new QVBoxLayout(this);
    page->setContentsMargins(0, 0, 0, 0);
    page->setSpacing(12);
    page->addWidget(makeHeader());
    auto* columns = new QHBoxLayout;
    columns->setSpacing(12);
    columns->addWidget(makeLearners());
    m_poll = new PollPanel;
    columns->addWidget(m_poll, 1);
    columns->addWidget(makeCards());
    page->addLayout(columns, 1);
    connect(m_poll, &PollPanel::started, m_learners, &LearnerList::clearMarks);
    connect(m_poll, &PollPanel::counted, m_learners, &LearnerList::markAnswered);
    connect(m_learners, &LearnerList::countChanged, m_poll, &PollPanel::setLearnerCount);
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

QWidget* LessonPage::makeLearners()
{
    m_learners = new LearnerList;
    QFrame* panel = Theme::panel();
    panel->setFixedWidth(learnersWidth);
    Theme::panelBox(panel)->addWidget(m_learners);
    return panel;
}

QWidget* LessonPage::makeCards()
{
    m_cards = new CardDeck;
    m_remote = Theme::caption(QString());
    showRemote(QStringLiteral("It can join with the lesson\u2019s code."));
    QFrame* panel = Theme::panel();
    QVBoxLayout* box = Theme::panelBox(panel);
    box->addWidget(m_cards);
    box->addStretch();
    box->addWidget(Theme::heading(QStringLiteral("Remote control"), 1.1));
    box->addWidget(m_remote);
    return panel;
}

void LessonPage::setStage(Classroom::Stage stage, const QString& code)
{
    if (stage != Classroom::Live || m_stage != Classroom::Lost)
        m_poll->reset(m_stage == Classroom::Ready);
    m_stage = stage;
    m_code->setText(code);
    m_code->setAccessibleName(QStringLiteral("Lesson code ") + code);
    if (stage != Classroom::Live)
        m_learners->clear();
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
    m_state->setText(isLive   ? QStringLiteral("Live")
                     : isLost ? QStringLiteral("Connection lost")
                              : QStringLiteral("No lesson"));
    Theme::setLook(m_state, "tone", QLatin1String(isLive ? "live" : isLost ? "lost" : ""));
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
    m_poll->setWhyNot(whyNot);
    m_cards->setWhyNoShow(whyNot);
}

void LessonPage::showRemote(const QString& text)
{
    m_remote->setText(text);
}
