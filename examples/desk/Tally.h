#pragma once

#include <CalyxClient/OrdinalType>
#include <CalyxClient/PollType>

#include <QHash>
#include <QStringList>
#include <QVector>

/// A kind of poll as the desk offers it.
struct PollKind
{
    QString name;
    Calyx::PollType::POLL_TYPE type;
    Calyx::OrdinalType::ORDINAL_TYPE ordinal;
    int options; ///< how many when nobody says otherwise
    int fewest;  ///< how few one may choose, and how many: no more than the chart shows well
    int most;
    QStringList labels; ///< what is shown for the options where it is not their ids

    /// All kinds, in the order in which they are offered.
    static const QVector<PollKind>& all();
};

/// Counts the answers to one poll: one for each device, the last that it sent.
class Tally
{
public:
    struct Bar
    {
        QString label;
        int count;
    };

    Tally() = default;
    Tally(const PollKind& kind, int options);

    void clear() { m_answers.clear(); }
    void add(const QString& deviceId, const QString& answer) { m_answers.insert(deviceId, answer); }
    int answered() const { return m_answers.size(); }
    /// The options in their order, those that nobody chose included, then other answers, the most frequent
    /// first; \p most bars, of which the last stands for all the rest.
    QVector<Bar> bars(int most) const;

private:
    QStringList labels(const QString& answer) const;

    QStringList m_options;             // labels
    QHash<QString, QString> m_labels;  // of the options, by what answers name them by
    QHash<QString, QString> m_answers; // by device id
};
