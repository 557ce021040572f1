#pragma once

#include <CalyxClient/calyxclient_export.h>

#include <QObject>
#include <QString>
#include <QVariant>

namespace Calyx {

/// How the options of a question are labelled. Each getter is a Qt property and a key of the JSON.
class CALYXCLIENT_EXPORT QuestionMetadata : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString ordinalType READ ordinalType WRITE setordinalType)
    Q_PROPERTY(QVariantList options READ options WRITE setoptions)

public:
    /// No scheme and no options.
    explicit QuestionMetadata(QObject* parent = nullptr);

    /// The name of the scheme, as in OrdinalType::ORDINAL_TYPE_STR().
    QString ordinalType() const { return m_ordinalType; }
    /// The indices of the options, from 0; empty when the scheme was only inferred.
    QVariantList options() const { return m_options; }

public Q_SLOTS:
    ///@{
    /// Stores the value unchanged; emits nothing. The getter of the same name tells what it means.
    void setordinalType(QString ordinalType) { m_ordinalType = ordinalType; }
    void setoptions(QVariantList options) { m_options = options; }
    ///@}

private:
    QString m_ordinalType = QStringLiteral("");
    QVariantList m_options;
};

} // namespace Calyx
