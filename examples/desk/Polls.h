#pragma once

#include "Controls.h"

// [bars]
/// Draws the count of an answer as a bar; what is right has a tick.
class Bars : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        constexpr int room = 64; // for the count behind the longest bar
        const bool isRight = index.data(Calyx::PollResults::IsCorrectRole).toBool();
        const int count = index.data(Calyx::PollResults::CountRole).toInt();
        QRect bar = option.rect.adjusted(2, 4, -room, -4);
        bar.setWidth(bar.width() * count / index.model()->property("highest").toInt());
        painter->fillRect(bar,
                          isRight ? QColor(0x2e, 0x7d, 0x32) : option.palette.color(QPalette::Highlight));
        painter->drawText(option.rect.adjusted(bar.width() + 8, 0, 0, 0), Qt::AlignVCenter,
                          QString::number(count) + (isRight ? QStringLiteral(" \u2713") : QString()));
    }
};
// [bars]

/// What is asked, one question as a poll or several as an assessment, and what the learners answer.
class Polls : public QTabWidget
{
    Q_DECLARE_TR_FUNCTIONS(Polls)
    using Question = Calyx::Question;

public:
    explicit Polls(Calyx::Lesson* lesson) : m_lesson(lesson)
    {
        made(tr("One question, or several at each learner\u2019s own pace"), tr("What is asked"), this);
        addTab(makePoll(), tr("Poll"));
        addTab(makeAssessment(), tr("Assessment"));
        connect(m_kind, QOverload<int>::of(&QComboBox::currentIndexChanged), this, &Polls::chooseKind);
        connect(m_options, &QLineEdit::textChanged, this, &Polls::refresh);
        connect(lesson, &Calyx::Lesson::changed, this, &Polls::refresh);
        chooseKind();
        setFocusProxy(m_kind);
    }

private:
    QWidget* makePoll()
    {
        for (const auto kind : Question::kinds())
            m_kind->addItem(Question::kindName(kind));
        m_options->setPlaceholderText(tr("Red; green; blue"));
        m_chart->setItemDelegateForColumn(Calyx::PollResults::Count, new Bars(m_chart));
        auto* page = new QWidget;
        auto* form = new QFormLayout(page);
        form->addRow(tr("&Kind"), m_kind);
        form->addRow(tr("Question"), m_text);
        form->addRow(tr("Num&ber of options"), m_count);
        form->addRow(tr("Opt&ions"), m_options);
        form->addRow(tr("Ri&ght answer"), m_right);
        form->addRow(across({m_ask, m_pause, m_stop, m_soon, m_show}));
        form->addRow(m_answers);
        form->addRow(quiet(m_chart));
        return page;
    }
    QWidget* makeAssessment()
    {
        m_plan.title = tr("Assessment");
        m_plan.mayGoBack = m_plan.showsSummary = true;
        auto* page = new QWidget;
        auto* form = new QFormLayout(page);
        form->addRow(m_planned);
        form->addRow(across({m_add, m_clear, m_begin, m_finish}));
        form->addRow(quiet(m_sheet));
        return page;
    }
    // Tab goes on to the next control, not through the cells.
    static QTableView* quiet(QTableView* table)
    {
        table->setTabKeyNavigation(false);
        table->setSelectionMode(QAbstractItemView::NoSelection);
        table->setShowGrid(false);
        table->verticalHeader()->hide();
        table->horizontalHeader()->setStretchLastSection(true);
        return table;
    }
    Question usual() const { return Question::usual(Question::kinds().at(m_kind->currentIndex())); }
    // [question]
    Question question() const
    {
        Question question = usual();
        question.text = m_text->text().trimmed();
        if (!m_right->text().trimmed().isEmpty())
            question.right = QStringList(m_right->text().trimmed());
        question.optionCount = m_count->value();
        for (const QString& option : m_options->text().split(QLatin1Char(';'), Qt::SkipEmptyParts))
            question.options.append(option.trimmed());
        return question;
    }
    // [question]
    void chooseKind()
    {
        using namespace Calyx::PollType;
        const Question kind = usual();
        const bool isFixed = kind.optionCount == 0 || kind.type == TRUE_FALSE || kind.type == YES_NO_OTHER;
        m_count->setRange(isFixed ? kind.optionCount : 2, isFixed ? kind.optionCount : 26);
        m_count->setValue(kind.optionCount);
        m_options->clear();
        m_right->clear();
        refresh();
    }
    void refresh()
    {
        const Calyx::Poll* poll = m_lesson->poll();
        const bool isAsked = poll && poll->isRunning();
        const bool isAssessed = m_lesson->assessment() && m_lesson->assessment()->isRunning();
        m_pause->setText(isAsked && poll->isPaused() ? tr("Res&ume") : tr("Pa&use"));
        m_chart->setModel(poll ? poll->results() : nullptr);
        for (int column : {Calyx::PollResults::Share, Calyx::PollResults::IsCorrect})
            m_chart->setColumnHidden(column, true); // the bars show both
        m_sheet->setModel(m_lesson->assessment());
        const int planned = m_plan.questions.size();
        m_planned->setText(planned == 0
                               ? tr("Fill in a question on the page \u201cPoll\u201d, then add it here.")
                               : tr("Questions: %1").arg(planned));

        const bool isFixed = m_count->minimum() == m_count->maximum();
        const QPair<bool, QString> isClosed(m_lesson->joinCode().isEmpty(), tr("Start the lesson first."));
        const QPair<bool, QString> isEmpty(planned == 0, tr("Add a question first."));
        allow(m_count, {{isFixed, tr("This kind of poll has no number of options to choose.")},
                        {!m_options->text().isEmpty(), tr("There are as many as texts.")}});
        allow(m_options, {{m_count->maximum() == 0, tr("This kind of poll has no options.")}});
        allow(m_ask, {isClosed, {isAsked, tr("A poll is running: stop it first.")}});
        for (QPushButton* steering : {m_pause, m_stop, m_soon})
            allow(steering, {{!isAsked, tr("No poll is running.")}});
        allow(m_show, {isClosed, {!poll, tr("Nothing has been asked yet.")}});
        allow(m_clear, {isEmpty});
        allow(m_begin, {isClosed, isEmpty, {isAssessed, tr("An assessment is running: stop it first.")}});
        allow(m_finish, {{!isAssessed, tr("No assessment is running.")}});
        // [answers]
        m_answers->setText(poll ? poll->statusText()
                                : tr("Start a poll: the answers appear here as they come in."));
        // [answers]
    }

    Calyx::Lesson* m_lesson;
    Calyx::AssessmentPlan m_plan;
    QComboBox* m_kind = made<QComboBox>(tr("What the learners are asked for"), tr("Kind of poll"));
    QLineEdit* m_text = made<QLineEdit>(tr("What the learners read; empty: you ask in your own words"));
    QSpinBox* m_count = made<QSpinBox>(tr("How many options the learners choose from"));
    QLineEdit* m_options = made<QLineEdit>(tr("What the options say, with a semicolon between them"));
    QLineEdit* m_right = made<QLineEdit>(tr("The right answer, options by their letters or numbers"));
    QPushButton* m_ask = button(tr("Start &poll"), tr("Ask the learners"), [this] {
        if (m_lesson->ask(question()))
            m_pause->setFocus(); // the button that was pressed is disabled now
    });
    QPushButton* m_pause = button(tr("Pa&use"), tr("Let nobody answer for the time being, or go on"), [this] {
        m_lesson->poll()->isPaused() ? m_lesson->resume() : m_lesson->pause();
    });
    QPushButton* m_stop = button(tr("S&top poll"), tr("Take no more answers"), [this] { m_lesson->stop(); });
    QPushButton* m_soon =
        button(tr("Stop in 10 s"), tr("Give the learners ten seconds more"), [this] { m_lesson->stop(10); });
    QPushButton* m_show = button(tr("Sho&w results"), tr("Show the learners how the poll came out"),
                                 [this] { m_lesson->showResults(); });
    QLabel* m_answers = plainLabel();
    QTableView* m_chart = made<QTableView>(tr("How many gave which answer"), tr("Answers"));
    QLabel* m_planned = plainLabel();
    // [assessment]
    QPushButton* m_add =
        button(tr("Add &question"), tr("Take over the question of the page \u201cPoll\u201d"), [this] {
            m_plan.questions.append(question());
            refresh();
        });
    QPushButton* m_clear = button(tr("Clear"), tr("Take all questions out"), [this] {
        m_plan.questions.clear();
        refresh();
    });
    QPushButton* m_begin = button(tr("Start assess&ment"), tr("Have the learners work through the questions"),
                                  [this] { m_lesson->startAssessment(m_plan); });
    QPushButton* m_finish =
        button(tr("Stop assessment"), tr("Take no more answers"), [this] { m_lesson->stopAssessment(); });
    // [assessment]
    QTableView* m_sheet = made<QTableView>(tr("What each learner answered"), tr("Answers by learner"));
};
