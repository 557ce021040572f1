#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/model/QuestionBase.h>

namespace Calyx {

/// A free text.
class CALYXCLIENT_EXPORT QuestionText : public QuestionBase
{
    Q_OBJECT
    Q_PROPERTY(int maxChars READ maxChars WRITE setmaxChars)

public:
    /// A question as QuestionBase makes it.
    explicit QuestionText(QObject* parent = nullptr);

    /// Always "text".
    QString getType() const override;

    /// How many characters the answer may have; 0, as at first, for no limit.
    int maxChars() const { return m_maxChars; }

public Q_SLOTS:
    /// Stores the value unchanged; emits nothing.
    void setmaxChars(int maxChars) { m_maxChars = maxChars; }

private:
    int m_maxChars = 0;
};

} // namespace Calyx
