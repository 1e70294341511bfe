#pragma once

#include <QProcess>
#include <QRegularExpression>
#include <QTcpServer>
#include <QtTest>

inline QString testData(const QString &name)
{
    return QStringLiteral(TOOL_TEST_DATA "/") + name;
}

// A port on the local host that nobody listens on, as far as anyone can tell.
inline QString freePort()
{
    QTcpServer closed;
    return closed.listen(QHostAddress::LocalHost, 0) ? QString::number(closed.serverPort())
                                                     : QString();
}

// The tool or a peer, started as a process in the folder of the tests' sources; the output is
// collected while it runs, and a process still running at the end is killed.
class Tool
{
public:
    explicit Tool(
        const QStringList &arguments, const QString &program = QStringLiteral(RADIOSIM_TOOL))
    {
        m_process.setWorkingDirectory(QStringLiteral(TOOL_TEST_DATA "/.."));
        m_process.start(program, arguments);
    }
    ~Tool()
    {
        if (running()) {
            m_process.kill();
            m_process.waitForFinished();
        }
    }

    bool finish(int timeout = 30000) { return m_process.waitForFinished(timeout); }
    QString out() { return m_out += QString::fromUtf8(m_process.readAllStandardOutput()); }
    QString err() { return m_err += QString::fromUtf8(m_process.readAllStandardError()); }
    bool running() const { return m_process.state() != QProcess::NotRunning; }
    int status() const
    {
        return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
    }
    void terminate() { m_process.terminate(); }
    // The port of "listening on ADDRESS:PORT" or "port N" in the first line.
    QString port()
    {
        const QString text = out();
        const int end = text.indexOf('\n');
        return end < 0 ? QString() : text.left(end).section(QRegularExpression("[: ]"), -1);
    }

private:
    QProcess m_process;
    QString m_out;
    QString m_err;
};

// Runs the tool to its end; its standard error goes into the failure message, so a failing run
// tells why.
#define RUN_TOOL(name, expected, ...)                                                              \
    Tool name(__VA_ARGS__);                                                                        \
    QVERIFY2(name.finish() && name.status() == (expected),                                         \
        qPrintable(QStringLiteral("status %1, stderr: %2").arg(name.status()).arg(name.err())))

// On success the message starts standard output and standard error stays empty; a mistake gives
// one line on standard error (the usage follows it only with no arguments at all) and nothing on
// standard output. The table's columns: the arguments, blank-separated, with SMALL for the small
// scenario, BUSY for a port in use and FREE for a port nobody listens on; the status; the start
// of the message, for a mistake after "radiosim COMMAND: " unless it starts "radiosim".
inline void runAnswer()
{
    QFETCH(QString, arguments);
    QFETCH(int, status);
    QFETCH(QString, message);
    QTcpServer busy;
    QVERIFY(busy.listen(QHostAddress::LocalHost, 0));
    for (auto [name, value] : { std::pair { "SMALL", testData("small.sce.exp") },
             { "BUSY", QString::number(busy.serverPort()) }, { "FREE", freePort() } }) {
        arguments.replace(name, value);
        message.replace(name, value);
    }
    const QStringList split = arguments.split(' ', Qt::SkipEmptyParts);
    if (status != 0 && !message.startsWith("radiosim"))
        message = "radiosim " + split.value(0) + ": " + message;
    RUN_TOOL(run, status, split);
    const QString answer = status == 0 ? run.out() : run.err();
    QVERIFY2(answer.startsWith(message), qPrintable(answer));
    if (status != 0 && !split.isEmpty())
        QCOMPARE(answer.count('\n'), 1);
    QCOMPARE(status == 0 ? run.err() : run.out(), QString());
}
