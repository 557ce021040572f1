#pragma once

#include "calyxclient_export.h"
#include "model/QuestionBase.h"

namespace Calyx {

/// A formula.
class CALYXCLIENT_EXPORT QuestionMathFormula : public QuestionBase
{
    Q_OBJECT

public:
    explicit QuestionMathFormula(QObject* parent = nullptr);

    QString getType() const override;
};

} // namespace Calyx
