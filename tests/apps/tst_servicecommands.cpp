// serve and device run as processes, against each other and against peers in Python written from
// the wire format alone.

#include "testhelpers.h"
#include "toolrunner.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTcpServer>
#include <QTemporaryDir>

namespace {

// A tool or peer process whose standard output is collected while it runs.
class Live
{
public:
    explicit Live(const QString &program = QStringLiteral(RADIOSIM_TOOL))
        : m_program(program)
    {
        m_process.setWorkingDirectory(QStringLiteral(TOOL_TEST_DATA "/.."));
    }
    ~Live()
    {
        if (m_process.state() != QProcess::NotRunning) {
            m_process.kill();
            m_process.waitForFinished();
        }
    }

    void start(const QStringList &arguments) { m_process.start(m_program, arguments); }
    QString out()
    {
        m_out += QString::fromUtf8(m_process.readAllStandardOutput());
        return m_out;
    }
    QString err() { return QString::fromUtf8(m_process.readAllStandardError()); }
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
    QString m_program;
    QProcess m_process;
    QString m_out;
};

// A table block of serve's output with every device of ids in the state given.
bool tableShows(const QString &out, const QStringList &ids, const QString &state)
{
    for (const QString &block : out.split(QStringLiteral("devices: "))) {
        if (!block.startsWith(QString::number(ids.size()) + " at "))
            continue;
        const bool all = std::all_of(ids.cbegin(), ids.cend(), [&](const QString &id) {
            return block.contains(QRegularExpression(id + " +" + state + "\n"));
        });
        if (all)
            return true;
    }
    return false;
}

QString python()
{
    return QStandardPaths::findExecutable(QStringLiteral("python3"));
}

} // namespace

class tst_ServiceCommands : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void serverAndTwoDevicesRunASession();
    void pythonDeviceAgainstServe();
    void deviceAgainstPythonServer_data();
    void deviceAgainstPythonServer();
    void mistakesGiveOneLineAndAStatus_data();
    void mistakesGiveOneLineAndAStatus();
    void portsComeFromTheConfiguration();
};

// Registration, confirmation, load, start, state updates and leaving; one device leaves after its
// seconds, the other stays until the server stops it and ends on SIGTERM.
void tst_ServiceCommands::serverAndTwoDevicesRunASession()
{
    Live server;
    server.start({ "serve", "--port", "0", "--deployment", "data/deployment.xml" });
    QTRY_VERIFY_WITH_TIMEOUT(!server.port().isEmpty(), 10000);
    QVERIFY2(server.out().startsWith("listening on 127.0.0.1:"), qPrintable(server.out()));
    const QString address = "127.0.0.1:" + server.port();

    Live first;
    Live second;
    first.start({ "device", "--server", address, "--id", "dev-a", "--seconds", "2" });
    second.start({ "device", "--server", address, "--id", "dev-b", "--name", "Device B",
        "--position", "8.5,48.25" });
    QTRY_VERIFY_WITH_TIMEOUT(tableShows(server.out(), { "dev-a", "dev-b" }, "Loaded"), 10000);
    QVERIFY(server.out().contains(
        QRegularExpression("\nDevice B +\\S+ +radiosim +E8.5 N48.25 +dev-b +Loaded\n")));

    QTRY_VERIFY_WITH_TIMEOUT(!first.running(), 10000);
    QCOMPARE(first.status(), 0);
    const QString out = first.out();
    for (const QString &line : { QString("connected, registering as dev-a\naccepted as dev-a\n"),
             QString("loaded Default: 16 emitters\n"), QString("\nunregistered\n") }) {
        QVERIFY2(out.contains(line), qPrintable(out));
    }
    QVERIFY2(out.contains(QRegularExpression("\ndeployment of [1-9]\\d+ bytes received\n")),
        qPrintable(out));
    QVERIFY2(out.contains(QRegularExpression("started at 00:00:0\\ds\n")), qPrintable(out));
    QVERIFY2(out.contains(QRegularExpression("scenario 00:00:0\\ds  on air \\d+  records [1-9]")),
        qPrintable(out));
    QTRY_VERIFY_WITH_TIMEOUT(tableShows(server.out(), { "dev-b" }, "Loaded"), 5000);

    server.terminate();
    QTRY_VERIFY_WITH_TIMEOUT(second.out().contains("stopped\n"), 5000);
    QTRY_VERIFY_WITH_TIMEOUT(!server.running(), 5000);
    QCOMPARE(server.status(), 0);
    QCOMPARE(server.err(), QString());
    second.terminate();
    QTRY_VERIFY_WITH_TIMEOUT(!second.running(), 5000);
    QCOMPARE(second.status(), 0);
}

void tst_ServiceCommands::pythonDeviceAgainstServe()
{
    QVERIFY2(!python().isEmpty(), "python3 is not installed");
    Live server;
    server.start({ "serve", "data/small.sce.exp", "--port", "0", "--seconds", "4" });
    QTRY_VERIFY_WITH_TIMEOUT(!server.port().isEmpty(), 10000);
    Live device(python());
    device.start({ "pydevice.py", server.port(), "py-1" });
    QTRY_VERIFY_WITH_TIMEOUT(!device.running(), 15000);
    QCOMPARE(device.status(), 0);
    QCOMPARE(device.out(),
        QString("confirmation matches\nscenario Small with 4 emitters\n"
                "started at scenario time %1, stamped now\n"
                "listed: py-1 (Simulation::SimulationDeviceConfiguration) at 8.5,48.25\n"
                "stop received\n")
            .arg(device.out().section("started at scenario time ", 1).section(',', 0, 0)));
    QTRY_VERIFY_WITH_TIMEOUT(!server.running(), 5000);
    QCOMPARE(server.status(), 0);
    QVERIFY2(tableShows(server.out(), { "py-1" }, "Loaded"), qPrintable(server.out()));
    QVERIFY(
        server.out().contains(QRegularExpression("\nPython <device> & co +pyhost +Hill +python")));
    QVERIFY2(
        server.out().contains(QRegularExpression(
            "devices: 0 at 00:00:0\\ds\nName  Machine  Station  Type  Position  Id  State\n$")),
        qPrintable(server.out()));
}

void tst_ServiceCommands::deviceAgainstPythonServer_data()
{
    columns<QString, int, QStringList>("mode", "status", "serverLines");
    row("confirmed", QString("good"), 0,
        QStringList { "registered py-dev as Simulation::SimulationDeviceConfiguration: type "
                      "radiosim at 8.5,48.25",
            "unregistered py-dev", "states: 1 2", "closed" });
    row("wrong confirmation", QString("wrong"), 3,
        QStringList { "registered py-dev as Simulation::SimulationDeviceConfiguration: type "
                      "radiosim at 8.5,48.25",
            "states: ", "closed" });
}

void tst_ServiceCommands::deviceAgainstPythonServer()
{
    QFETCH(QString, mode);
    QFETCH(int, status);
    QFETCH(QStringList, serverLines);
    QVERIFY2(!python().isEmpty(), "python3 is not installed");
    Live server(python());
    server.start({ "pyserver.py", "data/small.sce.exp", mode });
    QTRY_VERIFY_WITH_TIMEOUT(!server.port().isEmpty(), 10000);
    RUN_TOOL(device, status,
        { "device", "--server", "127.0.0.1:" + server.port(), "--id", "py-dev", "--position",
            "8.5,48.25", "--seconds", "2" });
    QTRY_VERIFY_WITH_TIMEOUT(!server.running(), 10000);
    QCOMPARE(server.out().split('\n').mid(1, serverLines.size()), serverLines);
    if (status == 0) {
        QVERIFY2(device.out.contains("loaded Small: 4 emitters\nstarted at 00:00:00s\n"),
            qPrintable(device.out));
        QVERIFY2(device.out.contains(QRegularExpression("scenario 00:00:01s  on air [1-4]")),
            qPrintable(device.out));
    } else {
        QCOMPARE(device.out, QString("connected, registering as py-dev\n"));
        QCOMPARE(device.err,
            QString("radiosim device: the server's confirmation does not belong to this "
                    "device's record; nothing was loaded\n"));
    }
}

void tst_ServiceCommands::mistakesGiveOneLineAndAStatus_data()
{
    columns<QStringList, int, QString>("arguments", "status", "message");
    row("port in use", QStringList { "serve", "--port", "BUSY" }, 1,
        "radiosim serve: cannot listen on 127.0.0.1:BUSY: ");
    row("no server", QStringList { "device", "--server", "127.0.0.1:FREE", "--seconds", "1" }, 1,
        "radiosim device: no server at 127.0.0.1:FREE within 1 s");
    row("port too large", QStringList { "serve", "--port", "70000" }, 64,
        "radiosim serve: --port must lie from 0 to 65535");
    row("not an address", QStringList { "serve", "--listen", "nowhere" }, 64,
        "radiosim serve: --listen wants an IP address, not 'nowhere'");
    row("not a deployment", QStringList { "serve", "--deployment", testData("small.sce.exp") }, 1,
        "radiosim serve: " + testData("small.sce.exp")
            + ": not a deployment: its root element is not <SimulationDeployment>");
    row("no deployment", QStringList { "serve", "--deployment", "/no/such.xml" }, 1,
        "radiosim serve: /no/such.xml: cannot be opened: No such file or directory");
    row("server without port", QStringList { "device", "--server", "localhost" }, 64,
        "radiosim device: --server wants HOST:PORT, not 'localhost'");
    row("position of one number", QStringList { "device", "--position", "8.5" }, 64,
        "radiosim device: --position wants LON,LAT in decimal degrees, not '8.5'");
    row("device with a file", QStringList { "device", "x.sce" }, 64,
        "radiosim device: too many arguments: x.sce");
}

void tst_ServiceCommands::mistakesGiveOneLineAndAStatus()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, status);
    QFETCH(QString, message);
    QTcpServer busy;
    QVERIFY(busy.listen(QHostAddress::LocalHost, 0));
    QTcpServer closed;
    QVERIFY(closed.listen(QHostAddress::LocalHost, 0));
    const QString free = QString::number(closed.serverPort());
    closed.close();
    arguments.replaceInStrings("BUSY", QString::number(busy.serverPort()));
    arguments.replaceInStrings("FREE", free);
    message.replace("BUSY", QString::number(busy.serverPort())).replace("FREE", free);
    RUN_TOOL(run, status, arguments);
    QVERIFY2(run.err.startsWith(message), qPrintable(run.err));
    QCOMPARE(run.err.count('\n'), 1);
}

// Both commands find the server's address and port in the configuration store the processes
// inherit through XDG_CONFIG_HOME.
void tst_ServiceCommands::portsComeFromTheConfiguration()
{
    QTemporaryDir home;
    QVERIFY(QDir(home.path()).mkpath("radiosim"));
    QTcpServer closed;
    QVERIFY(closed.listen(QHostAddress::LocalHost, 0));
    const QString free = QString::number(closed.serverPort());
    closed.close();
    QFile ini(home.filePath("radiosim/radiosim.ini"));
    QVERIFY(ini.open(QIODevice::WriteOnly));
    ini.write("[Simulation]\nSimulationServer=127.0.0.2\nPorts\\SimulationServer=" + free.toUtf8()
        + "\n");
    ini.close();
    const QByteArray previous = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", home.path().toUtf8());
    RUN_TOOL(device, 1, { "device", "--seconds", "1" });
    RUN_TOOL(server, 0, { "serve", "--seconds", "1" });
    qputenv("XDG_CONFIG_HOME", previous);
    QCOMPARE(device.err, "radiosim device: no server at 127.0.0.2:" + free + " within 1 s\n");
    QVERIFY2(
        server.out.startsWith("listening on 127.0.0.1:" + free + "\n"), qPrintable(server.out));
}

QTEST_GUILESS_MAIN(tst_ServiceCommands)
#include "tst_servicecommands.moc"
