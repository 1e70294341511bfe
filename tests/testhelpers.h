#pragma once

// Helpers shared by the test folders.

#include <QTest>

// The columns of a data table, named in order.
template <typename... Types, typename... Names> void columns(const Names &...names)
{
    (QTest::addColumn<Types>(names), ...);
}

// One row of a data table, the values in column order and of the columns' exact types.
template <typename... Values> void row(const char *name, const Values &...values)
{
    (QTest::newRow(name) << ... << values);
}
