#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/model/OrdinalType.h>
#include <CalyxClient/model/QuestionBase.h>
#include <CalyxClient/model/QuestionMetadata.h>

#include <QList>
#include <QPointer>
#include <QStringList>
#include <QVariant>

#include <cstddef>

namespace Calyx {

class ActivityOption;

/// A question with answer options.
class CALYXCLIENT_EXPORT QuestionBaseWithOptions : public QuestionBase
{
    Q_OBJECT
    Q_PROPERTY(QObject* metadata READ metadata WRITE setmetadata)
    Q_PROPERTY(QVariant activityOptions READ getactivityOptions)

public:
    /// A question without options yet.
    explicit QuestionBaseWithOptions(QObject* parent = nullptr);

    /// A QuestionMetadata unless another object was set; null once that has been deleted. Not taken over when
    /// set.
    QObject* metadata() const { return m_metadata; }
    /// Same as getactivityOptions().
    QVariant activityOptions() const { return getactivityOptions(); }
    /// The options in the order in which they were added, as a `QList<QObject*>`.
    QVariant getactivityOptions() const;

    /// No metadata object: it is written as null.
    void setmetadata(std::nullptr_t) { m_metadata = nullptr; }
    /// Adds an option, owned by the question. \p displaySeqNumber counts from 1.
    void addActivityOption(QString id, QString optionText, int displaySeqNumber);

    /// Names the labelling scheme and lists the option indices 0 to \p count - 1; none when \p count is 0 or
    /// less.
    void setMetadata(QString ordinalType, int count);
    /// The same with the name of \p type; an unknown value gives an empty name.
    void setMetadata(Calyx::OrdinalType::ORDINAL_TYPE type, int count);
    /// setMetadata() for the options that the question has now.
    void setOrdinals(Calyx::OrdinalType::ORDINAL_TYPE type);

public Q_SLOTS:
    /// Names the scheme that the first option's id shows ("A", "a", "0" or "1") and lists no indices; any
    /// other id, or no option, leaves the metadata as it is.
    void inferOrdinalType() override;
    /// Sets \p answer as the one option that the learner chose before.
    void setPriorAnswer(QString answer) override;

    ///@{
    /// Replaces the metadata object; \p metadata stays the caller's, and the one before stays a child.
    void setmetadata(QObject* metadata) { m_metadata = metadata; }
    void setmetadata(Calyx::QuestionMetadata* metadata) { m_metadata = metadata; }
    ///@}

protected:
    /// Sets the options with \p ids as those that the learner chose before, in this order.
    void setPriorOptions(const QStringList& ids);

private:
    QPointer<QObject> m_metadata;
    QList<QPointer<ActivityOption>> m_options;
};

} // namespace Calyx
