#pragma once

#include <CalyxClient/calyxclient_export.h>
#include <CalyxClient/lesson/Question.h>

#include <QAbstractTableModel>
#include <QVector>

#include <memory>

namespace Calyx {

/// How many learners gave which answer: the options in their order, those that nobody chose included, then
/// other answers, the most frequent first. Equal free answers count together (Question::formOf()).
///
/// A row is a rank, not an answer: an answer that becomes more frequent moves by data changes. Changes are
/// told once for all answers that came together. Owned by its Poll; lives on the lesson's thread.
class CALYXCLIENT_EXPORT PollResults : public QAbstractTableModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ rowCount NOTIFY changed)
    Q_PROPERTY(int answered READ answered NOTIFY changed)
    Q_PROPERTY(int highest READ highest NOTIFY changed)

public:
    /// The columns, which are the roles as well: a role is Qt::UserRole + 1 + its column.
    enum Column {
        Label,      ///< the option's label, or the answer as it was first written
        Text,       ///< what the option says
        Count,      ///< how many learners gave it
        Share,      ///< of those who answered, 0 to 1
        IsCorrect,  ///< whether it is right
        ColumnCount ///< how many columns there are
    };
    Q_ENUM(Column)
    /// The roles, with their names in QML.
    enum Role {
        LabelRole = Qt::UserRole + 1, ///< "label"
        TextRole,                     ///< "text"
        CountRole,                    ///< "count"
        ShareRole,                    ///< "share"
        IsCorrectRole                 ///< "isCorrect"
    };
    Q_ENUM(Role)

    /// One row.
    struct Row
    {
        QString label;          ///< the option's label, or the answer as it was first written
        QString text;           ///< the option's text; empty where it has none
        int count = 0;          ///< how many learners gave it
        double share = 0;       ///< of those who answered: 0 to 1; several choices sum up to more
        bool isCorrect = false; ///< whether it is right, or belongs to what is

        /// Label and text in one.
        QString title() const { return text.isEmpty() ? label : label + QLatin1Char(' ') + text; }
    };

    ~PollResults() override;

    /// How many learners have answered.
    int answered() const;
    /// The highest count, 1 at least: the length of a chart's axis.
    int highest() const;
    /// The row with the highest count, the first of several; an empty one when nobody has answered.
    Row mostFrequent() const;
    /// All rows.
    QVector<Row> rows() const;
    /// At most \p most of them, for a chart: an option is never left out, and the last row stands for all
    /// other answers that do not fit ("Others", translated).
    QVector<Row> rows(int most) const;

    ///@{
    /// As views want it.
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    QHash<int, QByteArray> roleNames() const override;
    ///@}

Q_SIGNALS:
    /// Counts have changed: after the model's own signals.
    void changed();

private:
    friend class Poll;
    PollResults(const Question& question, QObject* parent);
    void count(const QString& answer, int by);
    void setAnswered(int answered);
    void flush();

    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace Calyx
