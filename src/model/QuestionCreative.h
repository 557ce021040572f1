#pragma once

#include "calyxclient_export.h"
#include "model/QuestionBaseWithOptions.h"

namespace Calyx {

/// A drawing or other free work.
class CALYXCLIENT_EXPORT QuestionCreative : public QuestionBaseWithOptions
{
    Q_OBJECT

public:
    /// A question as QuestionBaseWithOptions makes it.
    explicit QuestionCreative(QObject* parent = nullptr);

    /// Always "creative".
    QString getType() const override;
};

} // namespace Calyx
