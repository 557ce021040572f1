#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/model/QuestionBaseWithOptions.h>

namespace Calyx {

/// A true/false or a yes/no question.
class CALYXCLIENT_EXPORT QuestionYesNo : public QuestionBaseWithOptions
{
    Q_OBJECT

public:
    /// A yes/no question.
    explicit QuestionYesNo(QObject* parent = nullptr);

    /// "true-false" for a true/false question, else "yes-no-other".
    QString getType() const override;

    /// Whether the answers are "true" and "false" rather than "yes" and "no"; not a property, so not in the
    /// JSON.
    bool isTrueFalse() const { return m_trueFalse; }
    /// Makes it a true/false or a yes/no question. Adds no options.
    void setTrueFalse(bool trueFalse) { m_trueFalse = trueFalse; }

private:
    bool m_trueFalse = false;
};

} // namespace Calyx
