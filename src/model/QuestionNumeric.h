#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/model/QuestionBase.h>

namespace Calyx {

/// A number.
class CALYXCLIENT_EXPORT QuestionNumeric : public QuestionBase
{
    Q_OBJECT
    Q_PROPERTY(int noOfDecimals READ noOfDecimals WRITE setnoOfDecimals)

public:
    /// A question as QuestionBase makes it.
    explicit QuestionNumeric(QObject* parent = nullptr);

    /// Always "number".
    QString getType() const override;

    /// How many decimals the answer may have; 0 at first, for a whole number.
    int noOfDecimals() const { return m_noOfDecimals; }

public Q_SLOTS:
    /// Stores the value unchanged; emits nothing.
    void setnoOfDecimals(int noOfDecimals) { m_noOfDecimals = noOfDecimals; }

private:
    int m_noOfDecimals = 0;
};

} // namespace Calyx
