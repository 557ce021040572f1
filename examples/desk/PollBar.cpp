#include "PollBar.h"

#include "Theme.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>

namespace {

constexpr int fewestOptions = 2;
constexpr int mostOptions = 10; // as many as the chart shows well

QLabel* labelFor(QWidget* control, const QString& text)
{
    auto* label = new QLabel(text);
    label->setBuddy(control);
    return label;
}

} // namespace

PollBar::PollBar()
{
    m_kind = new QComboBox;
    for (const PollKind& offered : PollKinds::all())
        m_kind->addItem(offered.name);
    m_kind->setMinimumHeight(30);
    m_kind->setMaxVisibleItems(PollKinds::all().size());
    Theme::describe(m_kind, QStringLiteral("Kind of poll"),
                    QStringLiteral("What the learners are asked for"));
    m_options = new QSpinBox;
    m_options->setMinimumHeight(30);
    Theme::describe(m_options, QStringLiteral("Number of options"),
                    QStringLiteral("How many options the learners choose from"));
    m_start = Theme::primaryButton(QStringLiteral("Start &poll"), QStringLiteral("Ask the learners"));
    m_pause = Theme::button(QStringLiteral("Pa&use"), QString());
    m_stop = Theme::button(QStringLiteral("S&top poll"), QStringLiteral("Take no more answers"));
    layOut();
    setFocusProxy(m_kind);

    connect(m_kind, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &PollBar::onKindChosen);
    connect(m_start, &QPushButton::clicked, this, [this] { Q_EMIT start(kind(), m_options->value()); });
    connect(m_pause, &QPushButton::clicked, this, [this] { Q_EMIT pause(m_state == Running); });
    connect(m_stop, &QPushButton::clicked, this, &PollBar::stop);
    onKindChosen();
}

void PollBar::layOut()
{
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->addWidget(labelFor(m_kind, QStringLiteral("&Kind")));
    row->addWidget(m_kind, 1);
    row->addWidget(labelFor(m_options, QStringLiteral("Opt&ions")));
    row->addWidget(m_options);
    row->addSpacing(8);
    row->addWidget(m_start);
    row->addWidget(m_pause);
    row->addWidget(m_stop);
}

const PollKind& PollBar::kind() const
{
    return PollKinds::all().at(m_kind->currentIndex());
}

void PollBar::onKindChosen()
{
    const bool isAdjustable = kind().isAdjustable;
    m_options->setRange(isAdjustable ? fewestOptions : kind().options,
                        isAdjustable ? mostOptions : kind().options);
    m_options->setValue(kind().options);
    m_options->setSpecialValueText(kind().options == 0 ? QStringLiteral("none") : QString());
    refresh();
}

void PollBar::setState(State state, const QString& whyNot)
{
    const bool isBegin = m_state == Starting && state == Running;
    const bool isEnd = m_stop->hasFocus() && state == NoPoll;
    m_state = state;
    m_whyNot = whyNot;
    refresh();
    if (isBegin)
        m_pause->setFocus(); // the button that was pressed is disabled
    else if (isEnd)
        m_start->setFocus();
}

void PollBar::press(bool pauses)
{
    if (m_state == (pauses ? Running : Paused))
        Q_EMIT pause(pauses);
}

void PollBar::refresh()
{
    const auto reason = [this](const QString& otherwise) {
        return m_whyNot.isEmpty() ? otherwise : m_whyNot;
    };
    const QString isOn = reason(m_state == NoPoll     ? QString()
                                : m_state == Starting ? QStringLiteral("The poll is starting.")
                                                      : QStringLiteral("A poll is running: stop it first."));
    const QString isOff =
        reason(m_state == Running || m_state == Paused ? QString() : QStringLiteral("No poll is running."));
    Theme::allow(m_kind, isOn);
    Theme::allow(m_options, isOn.isEmpty() && !kind().isAdjustable
                                ? QStringLiteral("This kind of poll has no number of options to choose.")
                                : isOn);
    Theme::allow(m_start, isOn);
    m_pause->setText(m_state == Paused ? QStringLiteral("Res&ume") : QStringLiteral("Pa&use"));
    Theme::describe(m_pause, m_state == Paused ? QStringLiteral("Resume") : QStringLiteral("Pause"),
                    m_state == Paused ? QStringLiteral("Take answers again")
                                      : QStringLiteral("Let nobody answer for the time being"));
    Theme::allow(m_pause, isOff);
    Theme::allow(m_stop, isOff);
}
