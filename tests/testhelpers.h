#pragma once

// Helpers shared by the test folders.

#include <QFile>
#include <QProcess>
#include <QTest>
#include <QVector>

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

// Standard output of a program nobody here wrote, given input on its standard input; "(failed)"
// when it can't be run or ends with an error.
inline QByteArray runTool(
    const QString &program, const QStringList &arguments, const QByteArray &input = {})
{
    QProcess process;
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit
        || process.exitCode() != 0)
        return "(failed)";
    return process.readAllStandardOutput();
}

// GeographicLib's GeodSolve on one line of numbers, answering to nine decimals; no numbers
// when it can't be run.
inline QVector<double> geodSolve(const QStringList &options, const QVector<double> &input)
{
    QStringList line;
    for (const double value : input)
        line << QString::number(value, 'g', 17);
    const QByteArray out = runTool(QStringLiteral("GeodSolve"),
        options + QStringList { QStringLiteral("-p"), QStringLiteral("9") },
        (line.join(QLatin1Char(' ')) + QLatin1Char('\n')).toUtf8());
    QVector<double> numbers;
    if (out != "(failed)") {
        for (const QString &word : QString::fromUtf8(out).simplified().split(QLatin1Char(' ')))
            numbers << word.toDouble();
    }
    return numbers;
}
