#include "model/PollQuestionFactory.h"

#include "model/QuestionMathFormula.h"
#include "model/QuestionMultiChoice.h"
#include "model/QuestionNumeric.h"
#include "model/QuestionScale.h"
#include "model/QuestionSort.h"
#include "model/QuestionText.h"
#include "model/QuestionYesNo.h"

using namespace Calyx;

namespace {

QuestionBase* construct(QObject* parent, PollType::POLL_TYPE pollType, int optionCount, int extra)
{
    switch (pollType) {
    case PollType::TRUE_FALSE:
    case PollType::YES_NO_OTHER: {
        auto* question = new QuestionYesNo(parent);
        question->setTrueFalse(pollType == PollType::TRUE_FALSE);
        return question;
    }
    case PollType::MULTIPLE: {
        auto* question = new QuestionMultiChoice(parent);
        question->setnumberOfCorrectOptions(extra);
        return question;
    }
    case PollType::SCALE:
        return new QuestionScale(parent);
    case PollType::SORT:
        return new QuestionSort(parent);
    case PollType::TEXT:
        return new QuestionText(parent);
    case PollType::NUMBER: {
        auto* question = new QuestionNumeric(parent);
        question->setnoOfDecimals(optionCount);
        return question;
    }
    case PollType::MATH_FORMULA:
        return new QuestionMathFormula(parent);
    case PollType::WORD_SEED:
    case PollType::CREATIVE:
        break;
    }
    return nullptr;
}

} // namespace

QuestionBase* PollQuestionFactory::create(QObject* parent, PollType::POLL_TYPE pollType,
                                          OrdinalType::ORDINAL_TYPE ordinalType, int optionCount, int extra)
{
    QuestionBase* question = construct(parent, pollType, optionCount, extra);
    if (auto* withOptions = qobject_cast<QuestionBaseWithOptions*>(question)) {
        for (int i = 0; i < optionCount; ++i)
            withOptions->addActivityOption(OrdinalType::optionId(ordinalType, i),
                                           OrdinalType::optionText(ordinalType, i), i + 1);
    }
    if (question)
        question->inferOrdinalType();
    return question;
}
