#pragma once

#include <QStringList>
#include <QTest>
#include <QVector>

#include <initializer_list>
#include <tuple>
#include <utility>

// Tables of test data whose columns are known by their place: rows() or columns() in the data function, row()
// with the same types in the test.

namespace RowsDetail {

inline const char* nameOf(std::size_t column)
{
    static constexpr const char* names[] = {"1", "2", "3", "4", "5", "6", "7", "8", "9"};
    return names[column];
}

template<class... Types, std::size_t... Columns>
void addColumns(std::index_sequence<Columns...>)
{
    (QTest::addColumn<Types>(nameOf(Columns)), ...);
}

template<class... Types, std::size_t... Columns>
std::tuple<Types...> row(std::index_sequence<Columns...>)
{
    return {*static_cast<Types*>(QTest::qData(nameOf(Columns), qMetaTypeId<Types>()))...};
}

} // namespace RowsDetail

/// Makes the columns; the rows follow as QTest::newRow(name) << value << ...
template<class... Types>
void columns()
{
    RowsDetail::addColumns<Types...>(std::index_sequence_for<Types...>());
}

/// Makes the whole table: of each row the name, then the values.
template<class... Types>
void rows(std::initializer_list<std::tuple<const char*, Types...>> table)
{
    columns<Types...>();
    for (const auto& values : table) {
        std::apply([](const char* name, const Types&... value) { (QTest::newRow(name) << ... << value); },
                   values);
    }
}

/// A column for each of the \p lists, and a row for each combination of their texts, which are its name.
inline void combinations(const QVector<QStringList>& lists)
{
    QVector<QStringList> table{QStringList()};
    for (int column = 0; column < lists.size(); ++column) {
        QTest::addColumn<QString>(RowsDetail::nameOf(std::size_t(column)));
        QVector<QStringList> longer;
        for (const QStringList& begin : std::as_const(table)) {
            for (const QString& text : lists.at(column))
                longer.append(begin + QStringList{text});
        }
        table = longer;
    }
    for (const QStringList& texts : std::as_const(table)) {
        QTestData& data = QTest::newRow(qPrintable(texts.join(QStringLiteral(", "))));
        for (const QString& text : texts)
            data << text;
    }
}

/// The values of the row that runs: const auto [text, size] = row<QString, int>();
template<class... Types>
std::tuple<Types...> row()
{
    return RowsDetail::row<Types...>(std::index_sequence_for<Types...>());
}
