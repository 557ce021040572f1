#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/model/QuestionBaseWithOptions.h>

namespace Calyx {

/// Options to be brought into order.
class CALYXCLIENT_EXPORT QuestionSort : public QuestionBaseWithOptions
{
    Q_OBJECT

public:
    /// A question as QuestionBaseWithOptions makes it.
    explicit QuestionSort(QObject* parent = nullptr);

    /// Always "sort".
    QString getType() const override;

public Q_SLOTS:
    /// Takes each character of \p answer for the id of one option, in order.
    void setPriorAnswer(QString answer) override;
};

} // namespace Calyx
