#include "lesson/AssessmentSheet.h"

#include "text/Text.h"

#include <algorithm>

namespace {

constexpr int longestAnswer = 500; // characters; more would only be memory

}

int AssessmentSheet::numberOf(const QString& itemId) const
{
    for (int i = 0; i < questions(); ++i) {
        if (m_plan.items.at(i).id == itemId)
            return i + 1;
    }
    return 0;
}

void AssessmentSheet::enter(const QString& deviceId, const QString& name)
{
    if (!takesPart(deviceId))
        m_order.append(deviceId);
    m_names.insert(deviceId, name);
}

bool AssessmentSheet::addAnswer(const QString& deviceId, int number, const QString& answer)
{
    if (!takesPart(deviceId) || (!m_plan.mayResubmit && hasAnswered(deviceId, number)))
        return false;
    m_answers[deviceId].insert(number, Text::clean(answer).left(longestAnswer));
    return true;
}

bool AssessmentSheet::hasAnswered(const QString& deviceId, int number) const
{
    return m_answers.value(deviceId).contains(number);
}

QString AssessmentSheet::answer(const QString& deviceId, int number) const
{
    return m_answers.value(deviceId).value(number);
}

AssessmentSheet::Mark AssessmentSheet::mark(const QString& deviceId, int number) const
{
    const AnswerKey& key = m_plan.items.at(number - 1).key;
    if (!hasAnswered(deviceId, number))
        return NoAnswer;
    if (!key.isGiven())
        return Unmarked;
    return key.isRight(answer(deviceId, number)) ? Right : Wrong;
}

bool AssessmentSheet::isFinished(const QString& deviceId) const
{
    return m_answers.value(deviceId).size() == questions();
}

int AssessmentSheet::rightAnswers(const QString& deviceId) const
{
    int right = 0;
    for (int number = 1; number <= questions(); ++number)
        right += mark(deviceId, number) == Right ? 1 : 0;
    return right;
}

int AssessmentSheet::answers(int number) const
{
    return static_cast<int>(std::count_if(m_order.begin(), m_order.end(), [&](const QString& deviceId) {
        return hasAnswered(deviceId, number);
    }));
}

int AssessmentSheet::rightAnswers(int number) const
{
    return static_cast<int>(std::count_if(m_order.begin(), m_order.end(), [&](const QString& deviceId) {
        return mark(deviceId, number) == Right;
    }));
}

int AssessmentSheet::markedQuestions() const
{
    return static_cast<int>(std::count_if(m_plan.items.begin(), m_plan.items.end(),
                                          [](const AssessmentItem& item) { return item.key.isGiven(); }));
}
