#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/model/QuestionBaseWithOptions.h>

namespace Calyx {

/// A choice among options.
class CALYXCLIENT_EXPORT QuestionMultiChoice : public QuestionBaseWithOptions
{
    Q_OBJECT
    Q_PROPERTY(int numberOfCorrectOptions READ numberOfCorrectOptions WRITE setnumberOfCorrectOptions)

public:
    /// A question as QuestionBaseWithOptions makes it.
    explicit QuestionMultiChoice(QObject* parent = nullptr);

    /// Always "multiple".
    QString getType() const override;

    /// How many options are right, and so how many the learner picks; 1 at first.
    int numberOfCorrectOptions() const { return m_numberOfCorrectOptions; }

public Q_SLOTS:
    /// Stores the value unchanged; emits nothing.
    void setnumberOfCorrectOptions(int numberOfCorrectOptions)
    {
        m_numberOfCorrectOptions = numberOfCorrectOptions;
    }
    /// Takes each character of \p answer for the id of one option, in order.
    void setPriorAnswer(QString answer) override;

private:
    int m_numberOfCorrectOptions = 1;
};

} // namespace Calyx
