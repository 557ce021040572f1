#pragma once

#include "Controls.h"

#include <CalyxClient/Lesson>

/// What came of the lesson so far: a line for each poll and assessment.
class Summary : public QDialog
{
    Q_DECLARE_TR_FUNCTIONS(Summary)

public:
    Summary(const Calyx::Lesson& lesson, QWidget* parent) : QDialog(parent)
    {
        setWindowTitle(tr("Summary"));
        resize(720, 420);
        m_table->setHeaderLabels({tr("Asked"), tr("Answered"), tr("Right"), tr("Most frequent answer")});
        m_table->header()->setSectionResizeMode(0, QHeaderView::Stretch);
        m_table->header()->setStretchLastSection(false);
        for (const Calyx::Poll* poll : lesson.polls()) {
            const QVector<Calyx::PollAnswer> answers = poll->answers();
            const auto right = std::count_if(answers.begin(), answers.end(), [](const auto& answer) {
                return answer.mark == Calyx::PollAnswer::Right;
            });
            const auto rows = poll->results()->rows();
            const auto most = std::max_element(
                rows.begin(), rows.end(), [](const auto& a, const auto& b) { return a.count < b.count; });
            add({poll->title(), tr("%1 of %2").arg(poll->answered()).arg(poll->expected()),
                 poll->question().isMarked() ? QString::number(right) : QString(),
                 answers.isEmpty() ? QString() : most->title()});
        }
        for (const Calyx::Assessment* assessment : lesson.assessments())
            add({assessment->title(),
                 tr("%1 of %2").arg(assessment->finished()).arg(assessment->expected())});
        const int people = lesson.roster()->rowCount();
        arrange(this, QBoxLayout::TopToBottom,
                {plainLabel(tr("Learners who took part: %1").arg(people)), m_table});
        layout()->setContentsMargins(12, 12, 12, 12);
    }

private:
    void add(const QStringList& texts) { m_table->addTopLevelItem(new QTreeWidgetItem(texts)); }

    QTreeWidget* m_table = described(new QTreeWidget, tr("Each poll and assessment"), tr("Summary"));
};
