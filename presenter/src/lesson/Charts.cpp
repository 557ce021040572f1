#include "lesson/Charts.h"

#include "lesson/PollKinds.h"
#include "text/Text.h"
#include "text/Words.h"

using namespace Calyx;

namespace {

QVector<Bar> barsOf(const Poll& poll)
{
    const Question question = poll.question();
    const int options = question.type == PollType::SORT ? 0 : question.optionIds().size();
    QVector<Bar> bars;
    const QVector<PollResults::Row> rows = poll.results()->rows();
    for (const PollResults::Row& row : rows) {
        const bool isOption = bars.size() < options;
        const QString letter = isOption ? OrdinalType::optionId(question.ordinal, bars.size()) : QString();
        const bool isWord = isOption && letter != row.label;
        bars.append({isWord ? letter + QLatin1Char(' ') + row.title() : row.title(), row.count, isOption});
    }
    return bars;
}

} // namespace

ChartData Charts::of(const Poll& poll)
{
    ChartData data;
    const QString text = Text::clean(poll.question().text);
    data.title = Words::tr("Poll %1: %2")
                     .arg(QString::number(poll.number()),
                          text.isEmpty() ? PollKinds::description(poll.question()) : text);
    data.bars = barsOf(poll);
    data.answered = poll.answered();
    data.expected = poll.expected();
    data.seconds = static_cast<int>(poll.elapsed() / Text::msecsPerSecond);
    data.isPaused = poll.isPaused();
    if (poll.stopsAt().isValid())
        data.secondsLeft = static_cast<int>(
            (QDateTime::currentDateTime().msecsTo(poll.stopsAt()) + Text::msecsPerSecond - 1) /
            Text::msecsPerSecond);
    return data;
}

ChartData Charts::of(const Assessment& assessment)
{
    ChartData data;
    data.title = assessment.title().isEmpty() ? Words::tr("Assessment") : assessment.title();
    data.state = Words::tr("%1 of %2 finished");
    data.answered = assessment.finished();
    data.expected = assessment.expected();
    data.whole = assessment.rowCount();
    data.seconds = static_cast<int>(assessment.elapsed() / Text::msecsPerSecond);
    data.isPaused = assessment.isPaused();
    const QVector<Question> questions = assessment.plan().questions;
    for (int number = 1; number <= questions.size(); ++number)
        data.bars.append({title(questions.at(number - 1), number), assessment.answeredBy(number)});
    return data;
}

QString Charts::title(const Question& question, int number)
{
    const QString kind = QStringLiteral("%1 %2").arg(number).arg(PollKinds::typeName(question.type));
    return question.text.isEmpty() ? kind : QStringLiteral("%1: %2").arg(kind, question.text);
}
