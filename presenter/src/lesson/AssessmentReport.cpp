#include "lesson/AssessmentReport.h"

#include "lesson/AssessmentQuestion.h"
#include "lesson/AssessmentSheet.h"
#include "text/Table.h"
#include "text/Text.h"

#include <algorithm>
#include <limits>

namespace {

constexpr int hundred = 100;

QString sign(AssessmentSheet::Mark mark, bool unicode)
{
    switch (mark) {
    case AssessmentSheet::Right:
        return unicode ? QString(QChar(0x2713)) : QStringLiteral("+");
    case AssessmentSheet::Wrong:
        return unicode ? QString(QChar(0x2717)) : QStringLiteral("x");
    case AssessmentSheet::NoAnswer:
        return unicode ? QString(QChar(0x2013)) : QStringLiteral("-");
    case AssessmentSheet::Unmarked:
        break;
    }
    return QString();
}

QString cell(const AssessmentSheet& sheet, const QString& deviceId, int number, bool unicode)
{
    constexpr int widest = 20;
    const QString answer = Text::elide(sheet.answer(deviceId, number), widest, unicode);
    return QStringLiteral("%1 %2").arg(sign(sheet.mark(deviceId, number), unicode), answer).trimmed();
}

QString score(const AssessmentSheet& sheet, const QString& deviceId)
{
    const int most = sheet.markedQuestions();
    return most == 0 ? QString() : QStringLiteral("%1 of %2").arg(sheet.rightAnswers(deviceId)).arg(most);
}

QVector<QStringList> rowsOf(const AssessmentSheet& sheet, const Style& style, bool withAnswers)
{
    QVector<QStringList> rows;
    for (const QString& deviceId : sheet.participants()) {
        QStringList row = {sheet.name(deviceId), score(sheet, deviceId)};
        for (int number = 1; number <= sheet.questions(); ++number)
            row.append(withAnswers ? cell(sheet, deviceId, number, style.unicode)
                                   : sign(sheet.mark(deviceId, number), style.unicode));
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

QStringList AssessmentReport::byLearner(const AssessmentSheet& sheet, const Style& style)
{
    QStringList header = {QStringLiteral("Learner"),
                          sheet.markedQuestions() > 0 ? QStringLiteral("Score") : QString()};
    for (int number = 1; number <= sheet.questions(); ++number)
        header.append(QString::number(number));
    const QVector<QStringList> whole = rowsOf(sheet, style, true);
    return Table::lines(header, fits(header, whole, style) ? whole : rowsOf(sheet, style, false), style);
}

QStringList AssessmentReport::byQuestion(const AssessmentSheet& sheet, const Style& style)
{
    QVector<QStringList> rows;
    for (int number = 1; number <= sheet.questions(); ++number) {
        const int answers = sheet.answers(number);
        const int right = sheet.rightAnswers(number);
        const bool isMarked = sheet.plan().items.at(number - 1).key.isGiven();
        const int percent = answers > 0 ? (right * hundred + answers / 2) / answers : 0;
        rows.append({QString::number(answers), isMarked ? QString::number(right) : QString(),
                     isMarked ? QStringLiteral("%1 %").arg(percent) : QString(),
                     AssessmentQuestion::title(sheet, number)});
    }
    return Table::lines(
        {QStringLiteral("Answers"), QStringLiteral("Right"), QString(), QStringLiteral("Question")}, rows,
        style);
}

QString AssessmentReport::total(const AssessmentSheet& sheet)
{
    int answers = 0;
    int right = 0;
    for (int number = 1; number <= sheet.questions(); ++number) {
        answers += sheet.answers(number);
        right += sheet.rightAnswers(number);
    }
    const int learners = sheet.participants().size();
    const QString text =
        QStringLiteral("%1, %2").arg(Text::count(learners, "learner"), Text::count(answers, "answer"));
    const int most = learners * sheet.markedQuestions();
    return most == 0 ? text + QLatin1Char('.')
                     : QStringLiteral("%1, %2 of %3 right.").arg(text).arg(right).arg(most);
}
