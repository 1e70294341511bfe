#pragma once

// Helpers shared by the test folders.

#include <QFile>
#include <QTest>

// Adds rows to the table whose columns were just named, converting each value to its column's
// type: `const auto row = columns<QString, int>("text", "count"); row("one", "a", 1);`.
template <typename... Types> struct Rows
{
    void operator()(const char *name, const Types &...values) const
    {
        (QTest::newRow(name) << ... << values);
    }
};

// The columns of a data table, named in order.
template <typename... Types, typename... Names> Rows<Types...> columns(const Names &...names)
{
    (QTest::addColumn<Types>(names), ...);
    return {};
}

// One row of a data table, the values in column order and of the columns' exact types.
template <typename... Values> void row(const char *name, const Values &...values)
{
    (QTest::newRow(name) << ... << values);
}

// The path written, or empty if the file could not be written whole.
inline QString writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    const bool written = file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
    return written ? path : QString();
}

inline QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(unreadable)");
}
