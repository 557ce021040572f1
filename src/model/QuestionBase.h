#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/model/QuestionFeedback.h>

#include <QObject>
#include <QPointer>
#include <QString>
#include <QVariant>

#include <cstddef>

namespace Calyx {

/// What every question has. Each getter is a Qt property and a key of the JSON.
///
/// Setters store the value unchanged. Objects handed to setfeedBack() and setcard() are not taken over; those
/// that the constructor made stay children of the question until it goes.
class CALYXCLIENT_EXPORT QuestionBase : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString id READ id WRITE setID)
    Q_PROPERTY(QString questionSetMode READ questionSetMode WRITE setquestionSetMode)
    Q_PROPERTY(int questionNumber READ questionNumber WRITE setquestionNumber)
    Q_PROPERTY(QString type READ getType WRITE setType)
    Q_PROPERTY(QVariantMap activityType READ activityType WRITE setactivityType)
    Q_PROPERTY(QObject* feedBack READ feedBack WRITE setfeedBack)
    Q_PROPERTY(QString instructions READ instructions WRITE setinstructions)
    Q_PROPERTY(QString passage READ passage WRITE setpassage)
    Q_PROPERTY(QObject* card READ card WRITE setcard)
    Q_PROPERTY(QString hint READ hint WRITE sethint)
    Q_PROPERTY(bool math READ math WRITE setmath)
    Q_PROPERTY(bool hasNext READ hasNext WRITE sethasNext)
    Q_PROPERTY(bool navigable READ navigable WRITE setnavigable)

public:
    /// A question of no kind, with a new id, a QuestionFeedback and no card.
    explicit QuestionBase(QObject* parent = nullptr);

    /// The id under which answers come back: 8 letters and digits, the same for questions made within one
    /// second.
    QString id() const { return m_id; }
    /// "Poll", or "Assessment" for a question of an assessment.
    QString questionSetMode() const { return m_questionSetMode; }
    /// Number within an assessment.
    int questionNumber() const { return m_questionNumber; }
    /// Same as getType().
    QString type() const { return getType(); }
    /// "id" and "name" of the kind of activity; filled in when the question is sent.
    QVariantMap activityType() const { return m_activityType; }
    /// A QuestionFeedback unless another object was set; null once that has been deleted.
    QObject* feedBack() const { return m_feedBack; }
    /// What is asked; empty at first: the device then asks in words of its own.
    QString instructions() const { return m_instructions; }
    /// A text to read before answering; empty at first.
    QString passage() const { return m_passage; }
    /// A Card, or an object without properties, which is written as an empty object.
    QObject* card() const { return m_card; }
    /// A hint that the learner may look at; empty at first.
    QString hint() const { return m_hint; }
    /// Whether the texts hold LaTeX.
    bool math() const { return m_math; }
    /// Whether another question follows; false at first.
    bool hasNext() const { return m_hasNext; }
    /// Whether the learner may go to other questions from here; false at first.
    bool navigable() const { return m_navigable; }

    /// No feedback object: it is written as null.
    void setfeedBack(std::nullptr_t) { m_feedBack = nullptr; }
    /// Tells the learner's device that the question was answered before.
    void configurePriorAnswer();

public Q_SLOTS:
    /// The name of the question's kind, as in PollType::POLL_TYPE_STR(); here what setType() stored.
    virtual QString getType() const;
    /// Guesses the labelling scheme from the options; nothing to do without options.
    virtual void inferOrdinalType();
    /// Sets the answer that the learner gave before.
    virtual void setPriorAnswer(QString answer);

    ///@{
    /// Stores the value unchanged; emits nothing. The getter of the same name tells what it means.
    void setID(QString value) { m_id = value; }
    void setquestionSetMode(QString questionSetMode) { m_questionSetMode = questionSetMode; }
    void setquestionNumber(int questionNumber) { m_questionNumber = questionNumber; }
    void setType(QString type) { m_type = type; }
    void setactivityType(QVariantMap activityType) { m_activityType = activityType; }
    void setfeedBack(QObject* feedBack) { m_feedBack = feedBack; }
    void setfeedBack(Calyx::QuestionFeedback* feedBack) { m_feedBack = feedBack; }
    void setinstructions(QString instructions) { m_instructions = instructions; }
    void setpassage(QString passage) { m_passage = passage; }
    void setcard(QObject* card) { m_card = card; }
    void sethint(QString hint) { m_hint = hint; }
    void setmath(bool math) { m_math = math; }
    void sethasNext(bool hasNext) { m_hasNext = hasNext; }
    void setnavigable(bool navigable) { m_navigable = navigable; }
    ///@}

protected:
    /// Sets \p value as property \p name of the feedback object, whatever its class; dropped when there is
    /// none.
    void setFeedBackProperty(const char* name, const QVariant& value);

private:
    QString m_id;
    QString m_questionSetMode = QStringLiteral("Poll");
    int m_questionNumber = 0;
    QString m_type = QStringLiteral("");
    QVariantMap m_activityType;
    QPointer<QObject> m_feedBack;
    QString m_instructions = QStringLiteral("");
    QString m_passage = QStringLiteral("");
    QPointer<QObject> m_card;
    QString m_hint = QStringLiteral("");
    bool m_math = false;
    bool m_hasNext = false;
    bool m_navigable = false;
};

} // namespace Calyx
