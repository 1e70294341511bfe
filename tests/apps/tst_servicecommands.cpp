// serve and device run as processes, against each other and against peers in Python written from
// the wire format alone.

#include "testhelpers.h"
#include "toolrunner.h"

#include <QDir>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace {

// A table block of serve's output with every device of ids in the state given.
bool tableShows(const QString &out, const QStringList &ids, const QString &state)
{
    const QStringList blocks = out.split(QStringLiteral("devices: "));
    return std::any_of(blocks.cbegin(), blocks.cend(), [&](const QString &block) {
        return block.startsWith(QString::number(ids.size()) + " at ")
            && std::all_of(ids.cbegin(), ids.cend(), [&](const QString &id) {
                   return block.contains(QRegularExpression(id + " +" + state + "\n"));
               });
    });
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
    // Registration, confirmation, load, start, state updates and leaving; one device leaves after
    // its seconds, the other stays until the server stops it and ends on SIGTERM.
    void serverAndTwoDevicesRunASession()
    {
        Tool server({ "serve", "--port", "0", "--deployment", "data/deployment.xml" });
        QTRY_VERIFY_WITH_TIMEOUT(!server.port().isEmpty(), 10000);
        QVERIFY2(server.out().startsWith("listening on 127.0.0.1:"), qPrintable(server.out()));
        const QString address = "127.0.0.1:" + server.port();

        Tool first({ "device", "--server", address, "--id", "dev-a", "--seconds", "2" });
        Tool second({ "device", "--server", address, "--id", "dev-b", "--name", "Device B",
            "--position", "8.5,48.25" });
        QTRY_VERIFY_WITH_TIMEOUT(tableShows(server.out(), { "dev-a", "dev-b" }, "Loaded"), 10000);
        QVERIFY(server.out().contains(
            QRegularExpression("\nDevice B +\\S+ +radiosim +E8.5 N48.25 +dev-b +Loaded\n")));

        QTRY_VERIFY_WITH_TIMEOUT(!first.running(), 10000);
        QCOMPARE(first.status(), 0);
        const QString out = first.out();
        for (const char *pattern : { "connected, registering as dev-a\naccepted as dev-a\n",
                 "\ndeployment of [1-9]\\d+ bytes received\n", "loaded Default: 16 emitters\n",
                 "started at 00:00:0\\ds\n", "scenario 00:00:0\\ds  on air \\d+  records [1-9]",
                 "\nunregistered\n" })
            QVERIFY2(out.contains(QRegularExpression(pattern)), qPrintable(out));
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

    void pythonDeviceAgainstServe()
    {
        QVERIFY2(!python().isEmpty(), "python3 is not installed");
        Tool server({ "serve", "data/small.sce.exp", "--port", "0", "--seconds", "4" });
        QTRY_VERIFY_WITH_TIMEOUT(!server.port().isEmpty(), 10000);
        Tool device({ "pydevice.py", server.port(), "py-1" }, python());
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
        QVERIFY(server.out().contains(
            QRegularExpression("\nPython <device> & co +pyhost +Hill +python")));
        QVERIFY2(
            server.out().contains(QRegularExpression(
                "devices: 0 at 00:00:0\\ds\nName  Machine  Station  Type  Position  Id  State\n$")),
            qPrintable(server.out()));
    }

    void deviceAgainstPythonServer_data()
    {
        const QString registered
            = "registered py-dev as Simulation::SimulationDeviceConfiguration: "
              "type radiosim at 8.5,48.25";
        columns<QString, int, QStringList>("mode", "status", "serverLines");
        row("confirmed", QString("good"), 0,
            QStringList { registered, "unregistered py-dev", "states: 1 2", "closed" });
        row("wrong confirmation", QString("wrong"), 3,
            QStringList { registered, "states: ", "closed" });
    }

    void deviceAgainstPythonServer()
    {
        QFETCH(QString, mode);
        QFETCH(int, status);
        QFETCH(QStringList, serverLines);
        QVERIFY2(!python().isEmpty(), "python3 is not installed");
        Tool server({ "pyserver.py", "data/small.sce.exp", mode }, python());
        QTRY_VERIFY_WITH_TIMEOUT(!server.port().isEmpty(), 10000);
        RUN_TOOL(device, status,
            { "device", "--server", "127.0.0.1:" + server.port(), "--id", "py-dev", "--position",
                "8.5,48.25", "--seconds", "2" });
        QTRY_VERIFY_WITH_TIMEOUT(!server.running(), 10000);
        QCOMPARE(server.out().split('\n').mid(1, serverLines.size()), serverLines);
        if (status == 0) {
            QVERIFY2(device.out().contains("loaded Small: 4 emitters\nstarted at 00:00:00s\n"),
                qPrintable(device.out()));
            QVERIFY2(device.out().contains(QRegularExpression("scenario 00:00:01s  on air [1-4]")),
                qPrintable(device.out()));
        } else {
            QCOMPARE(device.out(), QString("connected, registering as py-dev\n"));
            QCOMPARE(device.err(),
                QString("radiosim device: the server's confirmation does not belong to this "
                        "device's record; nothing was loaded\n"));
        }
    }

    void mistakesGiveOneLineAndAStatus_data()
    {
        const auto row = columns<QString, int, QString>("arguments", "status", "message");
        row("port in use", "serve --port BUSY", 1, "cannot listen on 127.0.0.1:BUSY: ");
        row("no server", "device --server 127.0.0.1:FREE --seconds 1", 1,
            "no server at 127.0.0.1:FREE within 1 s");
        row("port too large", "serve --port 70000", 64, "--port must lie from 0 to 65535");
        row("not an address", "serve --listen nowhere", 64,
            "--listen wants an IP address, not 'nowhere'");
        row("not a deployment", "serve --deployment SMALL", 1,
            "SMALL: not a deployment: its root element is not <SimulationDeployment>");
        row("no deployment", "serve --deployment /no/such.xml", 1,
            "/no/such.xml: cannot be opened: No such file or directory");
        row("server without port", "device --server localhost", 64,
            "--server wants HOST:PORT, not 'localhost'");
        row("position of one number", "device --position 8.5", 64,
            "--position wants LON,LAT in decimal degrees, not '8.5'");
        row("device with a file", "device x.sce", 64, "too many arguments: x.sce");
    }

    void mistakesGiveOneLineAndAStatus() { runAnswer(); }

    // Both commands find the server's address and port in the configuration store the processes
    // inherit through XDG_CONFIG_HOME.
    void portsComeFromTheConfiguration()
    {
        QTemporaryDir home;
        const QString free = freePort();
        QVERIFY(QDir(home.path()).mkpath("radiosim"));
        QVERIFY(!writeFile(home.filePath("radiosim/radiosim.ini"),
            "[Simulation]\nSimulationServer=127.0.0.2\nPorts\\SimulationServer=" + free.toUtf8()
                + "\n")
                     .isEmpty());
        const QByteArray previous = qgetenv("XDG_CONFIG_HOME");
        qputenv("XDG_CONFIG_HOME", home.path().toUtf8());
        RUN_TOOL(device, 1, { "device", "--seconds", "1" });
        RUN_TOOL(server, 0, { "serve", "--seconds", "1" });
        qputenv("XDG_CONFIG_HOME", previous);
        QCOMPARE(device.err(), "radiosim device: no server at 127.0.0.2:" + free + " within 1 s\n");
        QVERIFY2(server.out().startsWith("listening on 127.0.0.1:" + free + "\n"),
            qPrintable(server.out()));
    }
};

QTEST_GUILESS_MAIN(tst_ServiceCommands)
#include "tst_servicecommands.moc"
