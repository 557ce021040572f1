#pragma once

#include "calyxclient_export.h"
#include "model/QuestionBaseWithOptions.h"

namespace Calyx {

/// A choice among options.
class CALYXCLIENT_EXPORT QuestionMultiChoice : public QuestionBaseWithOptions
{
    Q_OBJECT
    Q_PROPERTY(int numberOfCorrectOptions READ numberOfCorrectOptions WRITE setnumberOfCorrectOptions)

public:
    explicit QuestionMultiChoice(QObject* parent = nullptr);

    QString getType() const override;

    int numberOfCorrectOptions() const { return m_numberOfCorrectOptions; }

public Q_SLOTS:
    void setnumberOfCorrectOptions(int numberOfCorrectOptions);
    /// Takes each character of \p answer for the id of one option, in order.
    void setPriorAnswer(QString answer) override;

private:
    int m_numberOfCorrectOptions = 1;
};

} // namespace Calyx
