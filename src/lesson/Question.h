#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/model/OrdinalType.h>
#include <CalyxClient/model/PollType.h>

#include <QByteArray>
#include <QMetaType>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVector>

namespace Calyx {

/// What is asked, in a poll or in an assessment: the kind, its options, the words, what is right.
///
/// A value. Any kind can carry a text and texts of its options; a poll of the kinds WORD_SEED and CREATIVE
/// goes out as a question then, not as the poll document.
struct CALYXCLIENT_EXPORT Question
{
    Q_GADGET
    Q_PROPERTY(QString kind READ kind)
    Q_PROPERTY(QString text MEMBER text)
    Q_PROPERTY(QStringList options MEMBER options)
    Q_PROPERTY(QStringList right MEMBER right)

public:
    /// The kind of question.
    PollType::POLL_TYPE type = PollType::TEXT;
    /// How the options are labelled.
    OrdinalType::ORDINAL_TYPE ordinal = OrdinalType::GENERIC;
    /// How many options there are; 0 for kinds without. Where options holds texts, their number counts.
    int optionCount = 0;
    /// Of NUMBER: how many decimals an answer may have.
    int decimals = 0;
    /// Of MULTIPLE: how many options a learner chooses.
    int choices = 1;
    /// What the devices show as the question; empty: they ask in words of their own.
    QString text;
    /// What the options say, in their order; empty where their labels say all.
    QStringList options;
    /// What is right as an answer, each entry an answer of its own that is; empty where nothing is marked.
    /// Options are named by their ids or texts, several as "AC" or "A,C", in any order except of SORT.
    /// Numbers are compared as numbers, words without regard to case, blanks and final punctuation.
    QStringList right;
    /// A picture behind the question: PNG bytes. Wins over pictureUrl.
    QByteArray picture;
    /// The same as an address from which devices load it.
    QString pictureUrl;

    /// A question of \p type as a teacher most likely wants it: a multiple choice of A to D, a scale of 0
    /// to 4.
    static Question usual(PollType::POLL_TYPE type);
    /// A question of \p type with \p optionCount options that are labelled by \p ordinal. For NUMBER, the
    /// decimals.
    static Question of(PollType::POLL_TYPE type, OrdinalType::ORDINAL_TYPE ordinal, int optionCount);
    /// From the keys "kind" and "labels" (as PollType::POLL_TYPE_STR() and OrdinalType::ORDINAL_TYPE_STR()
    /// name them, or the enumerators), "optionCount", "decimals", "choices", "text", "options", "right" and
    /// "pictureUrl". What is missing is as usual() has it; an unknown kind is TEXT.
    static Question fromMap(const QVariantMap& map);
    /// The same map. The picture's bytes are not in it.
    QVariantMap toMap() const;

    /// All kinds, in the order of a menu: what is asked most often comes first.
    static QVector<PollType::POLL_TYPE> kinds();
    /// The kind's name on the wire, for example "yes-no-other".
    QString kind() const;
    /// The kind's name for people: "Multiple choice", translated.
    QString kindName() const;
    /// The same for any kind.
    static QString kindName(PollType::POLL_TYPE type);
    /// What answers name the options by, each once, in their order; empty for kinds whose answers are free.
    Q_INVOKABLE QStringList optionIds() const;
    /// What is shown for each of optionIds(): the id, or "Yes", "True" (translated) where the scheme has
    /// words.
    QStringList optionLabels() const;
    /// What each of optionIds() says: its entry of options, else empty.
    QStringList optionTexts() const;
    /// What is wrong with it, a sentence for people, translated; empty when nothing is.
    QString fault() const;

    /// The options that \p answer names, as ids in its order; empty when it names anything else.
    QStringList picksOf(const QString& answer) const;
    /// Equal answers have equal forms: without regard to case, blanks and final punctuation of words, to the
    /// order of options and to the spelling of a number.
    QString formOf(const QString& answer) const;
    /// Whether something is right: then isRight() tells.
    bool isMarked() const { return !right.isEmpty(); }
    /// Whether \p answer is one of those that are right.
    bool isRight(const QString& answer) const;
};

} // namespace Calyx

Q_DECLARE_METATYPE(Calyx::Question)
