#include "model/QuestionWordSeed.h"

namespace Calyx {

QuestionWordSeed::QuestionWordSeed(QObject* parent) : QuestionBase(parent) {}

QString QuestionWordSeed::getType() const
{
    return QStringLiteral("word-seed");
}

} // namespace Calyx
