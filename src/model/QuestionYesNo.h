#pragma once

#include "calyxclient_export.h"
#include "model/QuestionBaseWithOptions.h"

namespace Calyx {

/// A true/false or a yes/no question.
class CALYXCLIENT_EXPORT QuestionYesNo : public QuestionBaseWithOptions
{
    Q_OBJECT

public:
    explicit QuestionYesNo(QObject* parent = nullptr);

    QString getType() const override;

    /// Whether the answers are "true" and "false" rather than "yes" and "no"; not a property, so not in the
    /// JSON.
    bool isTrueFalse() const { return m_trueFalse; }
    void setTrueFalse(bool trueFalse) { m_trueFalse = trueFalse; }

private:
    bool m_trueFalse = false;
};

} // namespace Calyx
