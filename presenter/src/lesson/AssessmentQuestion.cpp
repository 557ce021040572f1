#include "lesson/AssessmentQuestion.h"

#include "lesson/AssessmentSheet.h"

#include <CalyxClient/PresenterCollab>
#include <CalyxClient/QuestionBaseWithOptions>
#include <CalyxClient/QuestionCreative>
#include <CalyxClient/QuestionFeedback>
#include <CalyxClient/QuestionWordSeed>

using namespace Calyx;

namespace {

QuestionBase* construct(PresenterCollab* collab, const AssessmentItem& item)
{
    const PollPlan& plan = item.plan;
    // As polls, these two go out as documents; in an assessment they are questions like all others.
    if (plan.type == PollType::WORD_SEED)
        return new QuestionWordSeed;
    if (plan.type == PollType::CREATIVE)
        return new QuestionCreative;
    const bool hasChoices = !item.choices.isEmpty();
    QuestionBase* const question =
        collab->createPollQuestion(plan.type, plan.ordinal, hasChoices ? 0 : plan.options, plan.extra);
    auto* const withOptions = qobject_cast<QuestionBaseWithOptions*>(question);
    for (int i = 0; withOptions && i < item.choices.size(); ++i)
        withOptions->addActivityOption(OrdinalType::optionId(plan.ordinal, i), item.choices.at(i), i + 1);
    return question;
}

} // namespace

std::unique_ptr<QuestionBase> AssessmentQuestion::create(PresenterCollab* collab,
                                                         const AssessmentSheet& sheet, int number,
                                                         const QString& deviceId)
{
    const AssessmentPlan& plan = sheet.plan();
    const AssessmentItem& item = plan.items.at(number - 1);
    std::unique_ptr<QuestionBase> question(construct(collab, item));
    question->setID(item.id);
    question->setquestionNumber(number);
    question->setinstructions(item.text);
    question->sethasNext(number < sheet.questions());
    question->setnavigable(plan.mayNavigate);
    if (auto* const feedBack = qobject_cast<QuestionFeedback*>(question->feedBack()))
        feedBack->setallowResubmit(plan.mayResubmit);
    if (sheet.hasAnswered(deviceId, number))
        question->setPriorAnswer(sheet.answer(deviceId, number));
    return question;
}

QString AssessmentQuestion::title(const AssessmentSheet& sheet, int number)
{
    const AssessmentItem& item = sheet.plan().items.at(number - 1);
    const QString kind = QStringLiteral("%1 %2").arg(number).arg(PollKinds::typeName(item.plan.type));
    return item.text.isEmpty() ? kind : QStringLiteral("%1: %2").arg(kind, item.text);
}
