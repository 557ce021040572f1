#pragma once

#include "Controls.h"

#include <CalyxClient/RosterFilter>

/// Who is here, who has not answered; locking the devices, and sending one away.
class Learners : public QGroupBox
{
    Q_DECLARE_TR_FUNCTIONS(Learners)

public:
    explicit Learners(Calyx::Lesson* lesson) : m_lesson(lesson), m_present(lesson->roster())
    {
        m_list->setModel(&m_present);
        m_lock->setCheckable(true);
        arrange(this, QBoxLayout::TopToBottom, {m_onlyMissing, m_list, across({m_lock, m_remove})});
        connect(m_onlyMissing, &QCheckBox::toggled, &m_present, &Calyx::RosterFilter::setOnlyMissing);
        connect(m_list->selectionModel(), &QItemSelectionModel::currentChanged, this, &Learners::refresh);
        connect(lesson, &Calyx::Lesson::changed, this, &Learners::refresh);
        refresh();
    }

private:
    void refresh()
    {
        const int count = m_lesson->roster()->presentCount();
        setTitle(count == 0 ? tr("Learners") : tr("Learners (%1)").arg(count));
        m_lock->setChecked(m_lesson->isLocked());
        allow(m_lock, {{m_lesson->joinCode().isEmpty(), tr("Start the lesson first.")}});
        allow(m_remove, {{!m_list->currentIndex().isValid(), tr("Choose a learner first.")}});
    }

    Calyx::Lesson* m_lesson;
    Calyx::RosterFilter m_present;
    QListView* m_list = made<QListView>(tr("Who is here; a tick shows who has answered"), tr("Learners"));
    QCheckBox* m_onlyMissing =
        made(tr("Show only who has not answered"), {}, new QCheckBox(tr("&Not answered yet")));
    QPushButton* m_lock = button(tr("Loc&k"), tr("Have everybody look up, until you unlock or ask something"),
                                 [this](bool locked) { m_lesson->setLocked(locked); });
    QPushButton* m_remove = button(tr("Remo&ve"), tr("Send the chosen learner\u2019s device away"), [this] {
        m_lesson->remove(m_list->currentIndex().data(Calyx::Roster::DeviceIdRole).toString());
    });
};
