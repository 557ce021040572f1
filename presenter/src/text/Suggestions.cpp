#include "text/Suggestions.h"

#include "text/Words.h"

#include <QMultiMap>
#include <QVector>

int Suggestions::distance(const QString& a, const QString& b)
{
    QVector<int> beforeLast;
    QVector<int> last(b.size() + 1);
    for (int j = 0; j <= b.size(); ++j)
        last[j] = j;
    for (int i = 1; i <= a.size(); ++i) {
        QVector<int> row(b.size() + 1);
        row[0] = i;
        for (int j = 1; j <= b.size(); ++j) {
            const bool same = a.at(i - 1) == b.at(j - 1);
            row[j] = qMin(qMin(last.at(j), row.at(j - 1)) + 1, last.at(j - 1) + (same ? 0 : 1));
            if (i > 1 && j > 1 && a.at(i - 1) == b.at(j - 2) && a.at(i - 2) == b.at(j - 1))
                row[j] = qMin(row.at(j), beforeLast.at(j - 2) + 1);
        }
        beforeLast = last;
        last = row;
    }
    return last.at(b.size());
}

QStringList Suggestions::closeTo(const QString& word, const QStringList& known)
{
    constexpr int longest = 40; // a longer word is no typing error, and costly to compare
    constexpr int most = 3;
    const QString typed = word.toLower();
    if (typed.isEmpty() || typed.size() > longest)
        return {};
    QMultiMap<int, QString> ranked;
    for (const QString& candidate : known) {
        const int away = distance(typed, candidate.toLower());
        if (candidate.startsWith(typed, Qt::CaseInsensitive))
            ranked.insert(1, candidate);
        else if (away <= qMax(1, typed.size() / 3))
            ranked.insert(away, candidate);
    }
    QStringList close = ranked.values();
    close.removeDuplicates();
    return close.mid(0, most);
}

QString Suggestions::question(const QString& word, const QStringList& known)
{
    const QStringList close = closeTo(word, known);
    if (close.isEmpty())
        return QString();
    return Words::tr(" Did you mean %1?").arg(close.join(Words::tr(" or ")));
}
