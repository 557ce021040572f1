#pragma once

#include "calyxclient_export.h"
#include "model/QuestionBase.h"

namespace Calyx {

/// A free text.
class CALYXCLIENT_EXPORT QuestionText : public QuestionBase
{
    Q_OBJECT
    Q_PROPERTY(int maxChars READ maxChars WRITE setmaxChars)

public:
    explicit QuestionText(QObject* parent = nullptr);

    QString getType() const override;

    int maxChars() const { return m_maxChars; }

public Q_SLOTS:
    void setmaxChars(int maxChars);

private:
    int m_maxChars = 0;
};

} // namespace Calyx
