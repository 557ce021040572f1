#pragma once

#include "calyxclient_export.h"
#include "model/QuestionBaseWithOptions.h"

namespace Calyx {

/// A rating on a scale.
class CALYXCLIENT_EXPORT QuestionScale : public QuestionBaseWithOptions
{
    Q_OBJECT

public:
    explicit QuestionScale(QObject* parent = nullptr);

    QString getType() const override;
};

} // namespace Calyx
