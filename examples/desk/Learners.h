#pragma once

#include "Controls.h"

#include <CalyxClient/Lesson>
#include <CalyxClient/Roster>

// [present]
/// Those of the roster who are here, by name, with a tick for those who have answered.
class Present : public QSortFilterProxyModel
{
public:
    explicit Present(QAbstractItemModel* roster)
    {
        setSourceModel(roster);
        setSortCaseSensitivity(Qt::CaseInsensitive);
        setSortRole(Calyx::Roster::NameRole);
        sort(0);
    }
    void setOnlyMissing(bool only)
    {
        m_onlyMissing = only;
        invalidateFilter();
    }
    QVariant data(const QModelIndex& index, int role) const override
    {
        if (role == Qt::CheckStateRole)
            return data(index, Calyx::Roster::HasAnsweredRole).toBool() ? Qt::Checked : Qt::Unchecked;
        return QSortFilterProxyModel::data(index, role == Qt::DisplayRole ? Calyx::Roster::NameRole : role);
    }

protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override
    {
        const QModelIndex index = sourceModel()->index(row, 0, parent);
        return index.data(Calyx::Roster::IsPresentRole).toBool() &&
               !(m_onlyMissing && index.data(Calyx::Roster::HasAnsweredRole).toBool());
    }

private:
    bool m_onlyMissing = false;
};
// [present]

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
        connect(m_onlyMissing, &QCheckBox::toggled, this,
                [this](bool only) { m_present.setOnlyMissing(only); });
        connect(m_lock, &QPushButton::clicked, lesson, &Calyx::Lesson::setLocked);
        connect(m_remove, &QPushButton::clicked, lesson, [this] {
            m_lesson->remove(m_list->currentIndex().data(Calyx::Roster::DeviceIdRole).toString());
        });
        connect(m_list->selectionModel(), &QItemSelectionModel::currentChanged, this, &Learners::refresh);
        connect(lesson->roster(), &Calyx::Roster::changed, this, &Learners::refresh);
        connect(lesson, &Calyx::Lesson::lockedChanged, this, &Learners::refresh);
        connect(lesson, &Calyx::Lesson::stateChanged, this, &Learners::refresh);
        refresh();
    }

private:
    void refresh()
    {
        const int count = m_lesson->roster()->presentCount();
        setTitle(count == 0 ? tr("Learners") : tr("Learners (%1)").arg(count));
        m_lock->setChecked(m_lesson->isLocked());
        allow(m_lock, {m_lesson->joinCode().isEmpty() ? tr("Start the lesson first.") : QString()});
        allow(m_remove, {m_list->currentIndex().isValid() ? QString() : tr("Choose a learner first.")});
    }

    Calyx::Lesson* m_lesson;
    Present m_present;
    QListView* m_list =
        described(new QListView, tr("Who is here; a tick shows who has answered"), tr("Learners"));
    QCheckBox* m_onlyMissing =
        described(new QCheckBox(tr("&Not answered yet")), tr("Show only who has not answered"));
    QPushButton* m_lock =
        button(tr("Loc&k"), tr("Have everybody look up, until you unlock or ask something"));
    QPushButton* m_remove = button(tr("Remo&ve"), tr("Send the chosen learner\u2019s device away"));
};
