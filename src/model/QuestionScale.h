#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/model/QuestionBaseWithOptions.h>

namespace Calyx {

/// A rating on a scale.
class CALYXCLIENT_EXPORT QuestionScale : public QuestionBaseWithOptions
{
    Q_OBJECT

public:
    /// A question as QuestionBaseWithOptions makes it.
    explicit QuestionScale(QObject* parent = nullptr);

    /// Always "scale".
    QString getType() const override;
};

} // namespace Calyx
