#pragma once

#include <CalyxClient/QuestionBase>

#include <QObject>
#include <QString>
#include <QVariant>
#include <QVector>

#include <memory>

/// Base of the tests of the kinds of question: what each kind keeps to. A test gives the facts of its kind,
/// and adds what is the kind's own.
class QuestionContract : public QObject
{
    Q_OBJECT

public:
    /// What a kind makes of a prior answer.
    enum class Prior { Text, OneOption, OptionForEachCharacter };
    Q_ENUM(Prior)
    enum Options { WithoutOptions, WithOptions };

    using Make = std::unique_ptr<Calyx::QuestionBase> (*)();

    /// A new question of the kind, and the facts of the kind.
    struct Kind
    {
        Make make;
        QString type;
        Options options;
        Prior prior;
    };

    template<class Question>
    static std::unique_ptr<Calyx::QuestionBase> create()
    {
        return std::make_unique<Question>();
    }

protected:
    /// \p kinds are tried one after the other.
    explicit QuestionContract(const QVector<Kind>& kinds);

    /// What the service gets for \p object.
    static QVariantMap jsonOf(const QObject& object);
    /// The option answers of a learner who has chosen \p ids, in order.
    static QVariantList chosen(const QStringList& ids);

private Q_SLOTS:
    void newQuestionIsReadyForAPoll_data() { kinds(); }
    void newQuestionIsReadyForAPoll();
    void typeIsTheNameOfThePollType_data() { kinds(); }
    void typeIsTheNameOfThePollType();
    void typeCannotBeChanged_data() { kinds(); }
    void typeCannotBeChanged();
    void hasOptionsWhereTheKindHasThem_data() { kinds(); }
    void hasOptionsWhereTheKindHasThem();
    void priorAnswer_data() { kinds(); }
    void priorAnswer();
    void emptyPriorAnswer_data() { kinds(); }
    void emptyPriorAnswer();

private:
    void kinds();

    QVector<Kind> m_kinds;
};

Q_DECLARE_METATYPE(QuestionContract::Make)
