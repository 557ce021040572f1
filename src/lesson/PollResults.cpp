#include "lesson/PollResults.h"

#include <QCoreApplication>
#include <QHash>
#include <QPointer>

#include <algorithm>
#include <utility>

namespace Calyx {

namespace {

// A free answer, under the spelling in which it came first.
struct Group
{
    QString label;
    int count = 0;
};

bool isBefore(const PollResults::Row& a, const PollResults::Row& b)
{
    return a.count == b.count ? a.label < b.label : a.count > b.count;
}

} // namespace

struct PollResults::Private
{
    Question question;
    QStringList ids;
    QStringList rightForms;
    QVector<Row> options;         // in their order
    QHash<QString, Group> others; // by form
    QVector<Row> rows;            // what the model shows
    int answered = 0;
    bool isDirty = false;

    bool wholeAnswersCount() const { return question.type == PollType::SORT; }
    QVector<Row> currentRows() const;
};

PollResults::PollResults(const Question& question, QObject* parent)
    : QAbstractTableModel(parent), d(std::make_unique<Private>())
{
    d->question = question;
    for (const QString& answer : question.right)
        d->rightForms.append(question.formOf(answer));
    if (d->wholeAnswersCount())
        return;
    d->ids = question.optionIds();
    const QStringList labels = question.optionLabels();
    const QStringList texts = question.optionTexts();
    QStringList right;
    for (const QString& answer : question.right)
        right += question.picksOf(answer);
    for (int i = 0; i < d->ids.size(); ++i)
        d->options.append({labels.at(i), texts.at(i), 0, 0, right.contains(d->ids.at(i))});
    d->rows = d->options;
}

PollResults::~PollResults() = default;

// An order counts as a whole; of other answers each option that they name.
void PollResults::count(const QString& answer, int by)
{
    d->isDirty = true;
    QStringList picks = d->wholeAnswersCount() ? QStringList() : d->question.picksOf(answer);
    picks.removeDuplicates();
    for (const QString& pick : std::as_const(picks))
        d->options[d->ids.indexOf(pick)].count += by;
    if (!picks.isEmpty())
        return;
    const QString form = d->question.formOf(answer);
    Group& group = d->others[form];
    if (group.label.isNull())
        group.label =
            answer.isEmpty() ? QCoreApplication::translate("Calyx::PollResults", "(empty)") : answer;
    group.count += by;
    if (group.count == 0)
        d->others.remove(form);
}

void PollResults::setAnswered(int answered)
{
    d->isDirty = d->isDirty || answered != d->answered;
    d->answered = answered;
}

QVector<PollResults::Row> PollResults::Private::currentRows() const
{
    QVector<Row> current = options;
    current.reserve(options.size() + others.size());
    for (auto other = others.cbegin(); other != others.cend(); ++other)
        current.append({other->label, QString(), other->count, 0, rightForms.contains(other.key())});
    std::sort(current.begin() + options.size(), current.end(), isBefore);
    for (Row& row : current)
        row.share = answered > 0 ? double(row.count) / answered : 0;
    return current;
}

void PollResults::flush()
{
    if (!d->isDirty)
        return;
    d->isDirty = false;
    const QPointer<PollResults> self(this); // a slot may delete the lesson
    QVector<Row> rows = d->currentRows();
    const int before = int(d->rows.size());
    const int after = int(rows.size());
    if (after > before)
        beginInsertRows({}, before, after - 1);
    else if (after < before)
        beginRemoveRows({}, after, before - 1);
    d->rows.swap(rows);
    if (after > before)
        endInsertRows();
    else if (after < before)
        endRemoveRows();
    if (self && after > 0)
        Q_EMIT dataChanged(index(0, 0), index(after - 1, ColumnCount - 1));
    if (self)
        Q_EMIT changed();
}

int PollResults::answered() const
{
    return d->answered;
}

int PollResults::highest() const
{
    int highest = 1;
    for (const Row& row : std::as_const(d->rows))
        highest = qMax(highest, row.count);
    return highest;
}

PollResults::Row PollResults::mostFrequent() const
{
    const auto most = std::max_element(d->rows.cbegin(), d->rows.cend(),
                                       [](const Row& a, const Row& b) { return a.count < b.count; });
    return most == d->rows.cend() || most->count == 0 ? Row() : *most;
}

QVector<PollResults::Row> PollResults::rows() const
{
    return d->rows;
}

QVector<PollResults::Row> PollResults::rows(int most) const
{
    const int kept = qMax(most - 1, int(d->options.size()));
    if (d->rows.size() <= qMax(most, d->options.size()))
        return d->rows;
    QVector<Row> rows = d->rows.mid(0, kept);
    Row rest{QCoreApplication::translate("Calyx::PollResults", "Others"), QString(), 0, 0, false};
    for (int i = kept; i < d->rows.size(); ++i) {
        rest.count += d->rows.at(i).count;
        rest.share += d->rows.at(i).share;
    }
    rows.append(rest);
    return rows;
}

int PollResults::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(d->rows.size());
}

int PollResults::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(ColumnCount);
}

QVariant PollResults::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= d->rows.size())
        return QVariant();
    const Row& row = d->rows.at(index.row());
    switch (role == Qt::DisplayRole ? LabelRole + index.column() : role) {
    case LabelRole:
        return row.label;
    case TextRole:
        return row.text;
    case CountRole:
        return row.count;
    case ShareRole:
        return row.share;
    case IsCorrectRole:
        return row.isCorrect;
    default:
        return QVariant();
    }
}

QVariant PollResults::headerData(int section, Qt::Orientation orientation, int role) const
{
    static const char* const titles[] = {
        QT_TRANSLATE_NOOP("Calyx::PollResults", "Answer"), QT_TRANSLATE_NOOP("Calyx::PollResults", "Text"),
        QT_TRANSLATE_NOOP("Calyx::PollResults", "Count"), QT_TRANSLATE_NOOP("Calyx::PollResults", "Share"),
        QT_TRANSLATE_NOOP("Calyx::PollResults", "Right")};
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole || section < 0 || section >= ColumnCount)
        return QVariant();
    return QCoreApplication::translate("Calyx::PollResults", titles[section]);
}

QHash<int, QByteArray> PollResults::roleNames() const
{
    return {{LabelRole, "label"},
            {TextRole, "text"},
            {CountRole, "count"},
            {ShareRole, "share"},
            {IsCorrectRole, "isCorrect"}};
}

} // namespace Calyx
