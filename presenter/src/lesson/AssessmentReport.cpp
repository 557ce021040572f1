#include "lesson/AssessmentReport.h"

#include "lesson/Charts.h"
#include "text/Table.h"
#include "text/Text.h"
#include "text/Words.h"

#include <algorithm>
#include <limits>

namespace {

using namespace Calyx;

QString sign(int mark, bool unicode)
{
    switch (mark) {
    case PollAnswer::Right:
        return unicode ? QString(QChar(0x2713)) : QStringLiteral("+");
    case PollAnswer::Wrong:
        return unicode ? QString(QChar(0x2717)) : QStringLiteral("x");
    case PollAnswer::NoAnswer:
        return unicode ? QString(QChar(0x2013)) : QStringLiteral("-");
    default:
        return QString();
    }
}

QString cell(const QModelIndex& index, bool unicode, bool withAnswer)
{
    constexpr int widest = 20;
    const QString mark = sign(index.data(Assessment::MarkRole).toInt(), unicode);
    const QString answer = Text::elide(index.data(Assessment::AnswerRole).toString(), widest, unicode);
    return withAnswer ? QStringLiteral("%1 %2").arg(mark, answer).trimmed() : mark;
}

QVector<QStringList> rowsOf(const QAbstractItemModel& assessment, const Style& style, bool withAnswers)
{
    QVector<QStringList> rows;
    for (int i = 0; i < assessment.rowCount(); ++i) {
        QStringList row;
        for (int column = 0; column < assessment.columnCount(); ++column) {
            const QModelIndex index = assessment.index(i, column);
            row.append(column < Assessment::FirstQuestion ? index.data().toString()
                                                          : cell(index, style.unicode, withAnswers));
        }
        rows.append(row);
    }
    return rows;
}

bool fits(const QStringList& header, const QVector<QStringList>& rows, const Style& style)
{
    Style endless = style;
    endless.colour = false;
    endless.columns = std::numeric_limits<int>::max();
    const QStringList lines = Table::lines(header, rows, endless);
    return std::all_of(lines.begin(), lines.end(),
                       [&](const QString& line) { return Text::width(line) < style.columns; });
}

} // namespace

QStringList AssessmentReport::byLearner(const QAbstractItemModel& assessment, const Style& style)
{
    const QVector<QStringList> whole = rowsOf(assessment, style, true);
    const bool isMarked = !whole.isEmpty() && !whole.first().at(Assessment::Score).isEmpty();
    QStringList header = {Words::tr("Learner"), isMarked ? Words::tr("Score") : QString()};
    for (int column = Assessment::FirstQuestion; column < assessment.columnCount(); ++column)
        header.append(QString::number(column - Assessment::FirstQuestion + 1));
    return Table::lines(header, fits(header, whole, style) ? whole : rowsOf(assessment, style, false), style);
}

QStringList AssessmentReport::byQuestion(const Assessment& assessment, const Style& style)
{
    QVector<QStringList> rows;
    const QVector<Question> questions = assessment.plan().questions;
    for (int number = 1; number <= questions.size(); ++number) {
        const int answers = assessment.answeredBy(number);
        const int right = assessment.rightBy(number);
        const bool isMarked = questions.at(number - 1).isMarked();
        rows.append({QString::number(answers), isMarked ? QString::number(right) : QString(),
                     isMarked ? QStringLiteral("%1 %").arg(Text::percent(right, answers)) : QString(),
                     Charts::title(questions.at(number - 1), number)});
    }
    return Table::lines({Words::tr("Answers"), Words::tr("Right"), QString(), Words::tr("Question")}, rows,
                        style);
}

QString AssessmentReport::total(const Assessment& assessment)
{
    int answers = 0;
    int right = 0;
    for (int number = 1; number <= assessment.questionCount(); ++number) {
        answers += assessment.answeredBy(number);
        right += assessment.rightBy(number);
    }
    const int learners = assessment.rowCount();
    const QString text =
        QStringLiteral("%1, %2").arg(Text::count(learners, "learner"), Text::count(answers, "answer"));
    const int most = learners * assessment.markedCount();
    return most == 0 ? text + QLatin1Char('.')
                     : Words::tr("%1, %2 of %3 right.").arg(text).arg(right).arg(most);
}
