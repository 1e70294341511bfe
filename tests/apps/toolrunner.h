#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QtTest>

// One finished run of the tool.
struct ToolRun
{
    int status = -1;
    QString out;
    QString err;
};

inline QString testData(const QString &name)
{
    return QStringLiteral(TOOL_TEST_DATA "/") + name;
}

inline ToolRun runTool(const QStringList &arguments, int timeout = 30000)
{
    QProcess process;
    process.start(QStringLiteral(RADIOSIM_TOOL), arguments);
    ToolRun run;
    if (!process.waitForFinished(timeout) || process.exitStatus() != QProcess::NormalExit) {
        process.kill();
        process.waitForFinished();
        run.err = QStringLiteral("did not finish: ") + arguments.join(QLatin1Char(' '));
        return run;
    }
    run.status = process.exitCode();
    run.out = QString::fromUtf8(process.readAllStandardOutput());
    run.err = QString::fromUtf8(process.readAllStandardError());
    return run;
}

// The tool's standard error goes into the failure message, so a failing run tells why.
#define RUN_TOOL(name, expected, ...)                                                              \
    const ToolRun name = runTool(__VA_ARGS__);                                                     \
    QVERIFY2(name.status == (expected),                                                            \
        qPrintable(QStringLiteral("status %1, stderr: %2").arg(name.status).arg(name.err)))
