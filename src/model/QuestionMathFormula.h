#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/model/QuestionBase.h>

namespace Calyx {

/// A formula.
class CALYXCLIENT_EXPORT QuestionMathFormula : public QuestionBase
{
    Q_OBJECT

public:
    /// A question as QuestionBase makes it.
    explicit QuestionMathFormula(QObject* parent = nullptr);

    /// Always "math formula".
    QString getType() const override;
};

} // namespace Calyx
