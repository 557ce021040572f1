#pragma once

#include <QTest>

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

/// The values of the row that runs: const auto [text, size] = row<QString, int>();
template<class... Types>
std::tuple<Types...> row()
{
    return RowsDetail::row<Types...>(std::index_sequence_for<Types...>());
}
