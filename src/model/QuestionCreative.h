#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/model/QuestionBaseWithOptions.h>

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
