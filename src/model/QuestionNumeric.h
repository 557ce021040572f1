#pragma once

#include "calyxclient_export.h"
#include "model/QuestionBase.h"

namespace Calyx {

/// A number.
class CALYXCLIENT_EXPORT QuestionNumeric : public QuestionBase
{
    Q_OBJECT
    Q_PROPERTY(int noOfDecimals READ noOfDecimals WRITE setnoOfDecimals)

public:
    explicit QuestionNumeric(QObject* parent = nullptr);

    QString getType() const override;

    int noOfDecimals() const { return m_noOfDecimals; }

public Q_SLOTS:
    void setnoOfDecimals(int noOfDecimals);

private:
    int m_noOfDecimals = 0;
};

} // namespace Calyx
