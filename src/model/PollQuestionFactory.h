#pragma once

#include "model/OrdinalType.h"
#include "model/PollType.h"

class QObject;

namespace Calyx {
class QuestionBase;
}

/// Makes the question of a poll.
namespace PollQuestionFactory {

/// The question for \p pollType with \p optionCount options labelled by \p ordinalType, a child of \p parent;
/// null for the kinds that go out as a poll document.
Calyx::QuestionBase* create(QObject* parent, Calyx::PollType::POLL_TYPE pollType,
                            Calyx::OrdinalType::ORDINAL_TYPE ordinalType, int optionCount, int extra);

} // namespace PollQuestionFactory
