#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/model/QuestionBase.h>

namespace Calyx {

/// Single words, collected.
class CALYXCLIENT_EXPORT QuestionWordSeed : public QuestionBase
{
    Q_OBJECT

public:
    /// A question as QuestionBase makes it.
    explicit QuestionWordSeed(QObject* parent = nullptr);

    /// Always "word-seed".
    QString getType() const override;
};

} // namespace Calyx
