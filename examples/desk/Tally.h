#pragma once

#include <QHash>
#include <QString>
#include <QStringList>
#include <QVector>

/// Counts the answers to one poll: one for each device, the last that it sent.
class Tally
{
public:
    struct Option
    {
        QString label;     ///< what is shown for it
        QStringList names; ///< what answers name it by
    };
    struct Bar
    {
        QString label;
        int count;
    };

    /// Without options, equal answers are counted together.
    explicit Tally(const QVector<Option>& options = {}) : m_options(options) {}

    void add(const QString& deviceId, const QString& answer) { m_answers.insert(deviceId, answer); }
    int answered() const { return m_answers.size(); }
    bool hasAnswered(const QString& deviceId) const { return m_answers.contains(deviceId); }

    /// The options in their order, those that nobody chose included, then other answers, the most frequent
    /// first; \p most bars, of which the last stands for all the rest.
    QVector<Bar> bars(int most) const;

private:
    QStringList labels(const QString& answer) const;
    QString optionLabel(const QString& name) const;

    QVector<Option> m_options;
    QHash<QString, QString> m_answers; // by device id
};
