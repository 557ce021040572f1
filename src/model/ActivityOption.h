#pragma once

#include <CalyxClient/calyxclient_export.h>

#include <QObject>
#include <QString>

namespace Calyx {

/// One answer option of a question. Each getter is a Qt property and a key of the JSON.
class CALYXCLIENT_EXPORT ActivityOption : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString id READ id WRITE setID)
    Q_PROPERTY(QString optionText READ optionText WRITE setoptionText)
    Q_PROPERTY(int displaySeqNumber READ displaySeqNumber WRITE setdisplaySeqNumber)
    Q_PROPERTY(bool math READ math WRITE setmath)

public:
    /// An option with empty texts and the number 0.
    explicit ActivityOption(QObject* parent = nullptr);

    /// What an answer names it by, for example "A".
    QString id() const { return m_id; }
    /// What the learner reads; empty where the labelling scheme says all.
    QString optionText() const { return m_optionText; }
    /// Position among the options, from 1.
    int displaySeqNumber() const { return m_displaySeqNumber; }
    /// Whether the text holds LaTeX.
    bool math() const { return m_math; }

public Q_SLOTS:
    ///@{
    /// Stores the value unchanged; emits nothing. The getter of the same name tells what it means.
    void setID(QString value) { m_id = value; }
    void setoptionText(QString optionText) { m_optionText = optionText; }
    void setdisplaySeqNumber(int displaySeqNumber) { m_displaySeqNumber = displaySeqNumber; }
    void setmath(bool math) { m_math = math; }
    ///@}

private:
    QString m_id = QStringLiteral("");
    QString m_optionText = QStringLiteral("");
    int m_displaySeqNumber = 0;
    bool m_math = false;
};

} // namespace Calyx
