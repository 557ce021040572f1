#pragma once

#include "text/Chart.h"

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

/// An option of a poll: the id that answers name it by, and what is shown for it.
struct AnswerOption
{
    QString id;
    QString label;
    QString text; ///< by which answers may name it, too
    QString shown = {};

    QString title() const
    {
        const QString said = shown.isEmpty() ? text : shown;
        return said.isEmpty() ? label : label + QLatin1Char(' ') + said;
    }
};

/// Counts the answers to one poll: one for each device, the last that it sent.
class Tally
{
public:
    enum Counting {
        EachOption,  ///< an answer may name several options, and each of them counts
        WholeAnswer, ///< equal answers count together: case, blanks and final punctuation aside
        ExactAnswer  ///< the same to the letter: case tells one name in a formula from another
    };

    explicit Tally(Counting counting = WholeAnswer, const QVector<AnswerOption>& options = {});

    /// False when the device had answered before; its new answer counts.
    bool add(const QString& deviceId, const QString& answer);

    int answered() const { return m_answers.size(); }
    bool hasAnswered(const QString& deviceId) const { return m_answers.contains(deviceId); }
    QStringList devices() const { return m_answers.keys(); }
    /// The options in their order, those that nobody chose included, then other answers, most frequent first.
    QVector<Bar> bars() const;
    /// The titles of the options that \p answer names, in its order; false when it names anything else.
    bool readOptions(const QString& answer, QStringList& titles) const;

private:
    bool takeApart(const QString& answer, QStringList& ids) const;
    bool isOption(const QString& key) const;
    int optionNamed(const QString& part) const;
    QStringList keysOf(const QString& answer) const;

    Counting m_counting;
    QVector<AnswerOption> m_options;
    QHash<QString, QString> m_answers; // by device id
    QStringList m_order;               // of the devices
};
