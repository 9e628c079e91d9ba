// SPDX-License-Identifier: MIT
#pragma once

#include <QtTest>

#include <array>
#include <initializer_list>
#include <tuple>
#include <utility>
#include <vector>

namespace ZorvaneClient::Tests {

/// One line of a table: its name, then a value for each column.
template <typename... Types>
struct Row {
    Row(const QByteArray &rowName, Types... rowValues)
        : name(rowName), values(std::move(rowValues)...)
    {
    }

    QByteArray name;
    std::tuple<Types...> values;
};

namespace TableDetail {

/// The columns of the table in use, which row() asks by their place.
extern std::vector<const char *> columns;

template <typename... Types, std::size_t... Places>
std::tuple<Types...> currentRow(std::index_sequence<Places...>)
{
    return {*static_cast<const Types *>(QTest::qData(columns.at(Places), qMetaTypeId<Types>()))...};
}

} // namespace TableDetail

/// The table of a test: called in its `_data` slot.
template <typename... Types>
void rows(const std::array<const char *, sizeof...(Types)> &names,
          std::initializer_list<Row<Types...>> table)
{
    TableDetail::columns.assign(names.begin(), names.end());
    std::size_t place = 0;
    (QTest::addColumn<Types>(names.at(place++)), ...);
    for (const Row<Types...> &row : table) {
        QTestData &data = QTest::newRow(row.name.constData());
        std::apply([&data](const Types &...values) { (data << ... << values); }, row.values);
    }
}

/// The values of the row that runs, for `const auto [a, b] = row<A, B>();`.
template <typename... Types>
std::tuple<Types...> row()
{
    return TableDetail::currentRow<Types...>(std::index_sequence_for<Types...>());
}

} // namespace ZorvaneClient::Tests
