#include "servicetesthelpers.h"

#include <radiosim/service/simulationservicecommunication.h>

#include <QElapsedTimer>
#include <QProcess>
#include <QTimer>

using namespace Simulation;

namespace {

// Two protocol ends over one loopback connection: `device` on the connecting socket, `server`
// on the accepted one.
struct Link
{
    SocketPair sockets;
    SimulationServiceCommunication device;
    SimulationServiceCommunication server;

    bool open()
    {
        if (!sockets.open())
            return false;
        device.setSocket(&sockets.client);
        server.setSocket(sockets.accepted);
        return true;
    }
};

QByteArray largeScenario(int bytes)
{
    QByteArray xml = "<Scenario FileFormatVersion=\"4\">\n";
    for (int i = 0; xml.size() < bytes; ++i)
        xml += "    <Emitter Id=\"" + QByteArray::number(i) + "\" Name=\"emitter "
            + QByteArray::number(i) + "\"><Frequency>"
            + QByteArray::number(25e6 + i * 12.5e3, 'g', 12)
            + "</Frequency><Position Lon=\"8.5\" Lat=\"48.1\"/></Emitter>\n";
    return xml + "</Scenario>\n";
}

QTimer *timer(SimulationServiceCommunication &communication, const char *name)
{
    return communication.findChild<QTimer *>(QLatin1String(name));
}

// The time-out is generous where an answer is expected, so a busy machine can't fake silence.
void shortenHeartBeat(SimulationServiceCommunication &communication, int timeout = 120)
{
    timer(communication, "heartBeatTimer")->setInterval(60);
    timer(communication, "heartBeatTimeoutTimer")->setInterval(timeout);
}

} // namespace

class tst_ServiceCommunication : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void deviceMessagesCross();
    void serverMessagesCross();
    void largeScenarioComesBackByteIdentical_data();
    void largeScenarioComesBackByteIdentical();
    void handWrittenCommands_data();
    void handWrittenCommands();
    void malformedStreamIsTracedAndStopsReading();
    void traceLinesFollowTheirClassBits_data();
    void traceLinesFollowTheirClassBits();
    void sendingWithoutSocketDoesNothing();
    void confirmationMatchesHashOfSaltAndRecord();
    void timersAreChildrenWithTheirIntervals();
    void silentPeerIsDisconnectedAfterOneProbe();
    void answeringPeerStays();
    void disablingStopsPendingTimeout();
    void deviceInASecondProcess();
    void pythonPeer();
    void manyDevicesReportInOrder();
};

void tst_ServiceCommunication::initTestCase()
{
    // Under the names the signals spell, unqualified inside the namespace, too.
    qRegisterMetaType<SimulationDeviceConfiguration>();
    qRegisterMetaType<SimulationDeviceState>();
    qRegisterMetaType<QVector<SimulationDeviceConfiguration>>();
    qRegisterMetaType<SimulationDeviceConfiguration>("SimulationDeviceConfiguration");
    qRegisterMetaType<SimulationDeviceState>("SimulationDeviceState");
    qRegisterMetaType<QVector<SimulationDeviceConfiguration>>(
        "QVector<SimulationDeviceConfiguration>");
}

void tst_ServiceCommunication::deviceMessagesCross()
{
    Link link;
    QVERIFY(link.open());
    SimulationServiceCommunication &server = link.server;
    QSignalSpy registered(&server, &SimulationServiceCommunication::registerSimulationDevice);
    QSignalSpy updated(&server, &SimulationServiceCommunication::simulationDeviceStateUpdate);
    QSignalSpy added(&server, &SimulationServiceCommunication::addJxDevice);
    QSignalSpy removed(&server, &SimulationServiceCommunication::removeJxDevice);
    QSignalSpy acquired(&server, &SimulationServiceCommunication::commandAcquireServer);
    QSignalSpy released(&server, &SimulationServiceCommunication::commandReleaseServer);
    QSignalSpy requested(&server, &SimulationServiceCommunication::commandRequestSimulationDevices);
    QSignalSpy unregistered(&server, &SimulationServiceCommunication::unregisterSimulationDevice);

    const SimulationDeviceConfiguration device = sampleDevice(QStringLiteral("dev-1"));
    SimulationDeviceState state;
    state.setScenarioDataState(ScenarioDataLoaded);
    const QByteArray descriptor("<Jx>\x01\x02\xff binary</Jx>", 20);
    link.device.sendRegisterSimulationDevice(QStringLiteral("dev-1"), device);
    link.device.sendSimulationDeviceStateUpdate(QStringLiteral("dev-1"), state);
    link.device.sendAddJxDevice(QStringLiteral("jx-9"), descriptor);
    link.device.sendRemoveJxDevice(QStringLiteral("jx-9"));
    link.device.sendCommandAcquireServer();
    link.device.sendCommandReleaseServer();
    link.device.sendCommandRequestSimulationDevices();
    link.device.sendUnregisterSimulationDevice(QStringLiteral("dev-1"));

    QTRY_COMPARE(unregistered.count(), 1);
    QCOMPARE(registered.count(), 1);
    QCOMPARE(registered.at(0).at(0).toString(), QStringLiteral("dev-1"));
    QCOMPARE(
        flatten(registered.at(0).at(1).value<SimulationDeviceConfiguration>()), flatten(device));
    QCOMPARE(updated.count(), 1);
    QCOMPARE(
        updated.at(0).at(1).value<SimulationDeviceState>().scenarioDataState(), ScenarioDataLoaded);
    QCOMPARE(added.count(), 1);
    QCOMPARE(added.at(0).at(0).toString(), QStringLiteral("jx-9"));
    QCOMPARE(added.at(0).at(1).toByteArray(), descriptor);
    QCOMPARE(removed.at(0).at(0).toString(), QStringLiteral("jx-9"));
    QCOMPARE(acquired.count(), 1);
    QCOMPARE(released.count(), 1);
    QCOMPARE(requested.count(), 1);
    QCOMPARE(unregistered.at(0).at(0).toString(), QStringLiteral("dev-1"));
}

void tst_ServiceCommunication::serverMessagesCross()
{
    Link link;
    QVERIFY(link.open());
    SimulationServiceCommunication &device = link.device;
    QSignalSpy accepted(&device, &SimulationServiceCommunication::acceptSimulationDevice);
    QSignalSpy loaded(&device, &SimulationServiceCommunication::loadScenario);
    QSignalSpy deployed(&device, &SimulationServiceCommunication::loadDeployment);
    QSignalSpy unloaded(&device, &SimulationServiceCommunication::unloadScenario);
    QSignalSpy started(&device, &SimulationServiceCommunication::startScenario);
    QSignalSpy paused(&device, &SimulationServiceCommunication::pauseScenario);
    QSignalSpy stopped(&device, &SimulationServiceCommunication::stopScenario);
    QSignalSpy testMode(&device, &SimulationServiceCommunication::testModeOn);
    QSignalSpy listed(&device, &SimulationServiceCommunication::responseSimulationDevices);

    const QVector<SimulationDeviceConfiguration> devices { sampleDevice(QStringLiteral("a")),
        sampleDevice(QStringLiteral("b")), sampleDevice(QStringLiteral("c")) };
    link.server.sendAcceptSimulationDevice(QStringLiteral("a"), QStringLiteral("conf/+="));
    link.server.sendLoadScenario("<Scenario/>");
    link.server.sendLoadDeployment(QByteArray());
    link.server.sendUnloadScenario();
    link.server.sendStartScenario(Q_UINT64_C(18446744073709551615), 4294967295u);
    link.server.sendPauseScenario(1234);
    link.server.sendTestModeOn(true);
    link.server.sendTestModeOn(false);
    link.server.sendResponseSimulationDevices(devices);
    link.server.sendStopScenario();

    QTRY_COMPARE(stopped.count(), 1);
    QCOMPARE(accepted.count(), 1);
    QCOMPARE(accepted.at(0).at(0).toString(), QStringLiteral("a"));
    QCOMPARE(accepted.at(0).at(1).toString(), QStringLiteral("conf/+="));
    QCOMPARE(loaded.at(0).at(0).toByteArray(), QByteArray("<Scenario/>"));
    QCOMPARE(deployed.count(), 1);
    QVERIFY(deployed.at(0).at(0).toByteArray().isEmpty());
    QCOMPARE(unloaded.count(), 1);
    QCOMPARE(started.at(0).at(0).toULongLong(), Q_UINT64_C(18446744073709551615));
    QCOMPARE(started.at(0).at(1).toUInt(), 4294967295u);
    QCOMPARE(paused.at(0).at(0).toUInt(), 1234u);
    QCOMPARE(testMode.count(), 2);
    QCOMPARE(testMode.at(0).at(0).toBool(), true);
    QCOMPARE(testMode.at(1).at(0).toBool(), false);
    const auto received = listed.at(0).at(0).value<QVector<SimulationDeviceConfiguration>>();
    QCOMPARE(received.size(), 3);
    for (int i = 0; i < devices.size(); ++i)
        QCOMPARE(flatten(received.at(i)), flatten(devices.at(i)));
}

void tst_ServiceCommunication::largeScenarioComesBackByteIdentical_data()
{
    QTest::addColumn<bool>("compression");
    QTest::addColumn<int>("bytes");
    QTest::newRow("packed") << true << 2 * 1024 * 1024;
    // Qt's DOM writer escapes markup inside text in place, at a cost that grows with the
    // square of the escapes; uncompressed, a smaller document shows the same.
    QTest::newRow("plain text") << false << 256 * 1024;
}

// Device echoes what it loaded back to the server, so the bytes cross both ways.
void tst_ServiceCommunication::largeScenarioComesBackByteIdentical()
{
    QFETCH(bool, compression);
    QFETCH(int, bytes);
    Link link;
    QVERIFY(link.open());
    link.device.setCompression(compression);
    link.server.setCompression(compression);
    connect(&link.device, &SimulationServiceCommunication::loadScenario, &link.device,
        [&link](
            const QByteArray &data) { link.device.sendAddJxDevice(QStringLiteral("echo"), data); });
    QSignalSpy echoed(&link.server, &SimulationServiceCommunication::addJxDevice);

    const QByteArray scenario = largeScenario(bytes);
    link.server.sendLoadScenario(scenario);
    QTRY_COMPARE_WITH_TIMEOUT(echoed.count(), 1, 20000);
    QVERIFY(echoed.at(0).at(1).toByteArray() == scenario);
}

void tst_ServiceCommunication::handWrittenCommands_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("traceLine");

    const QByteArray unregister = SIGNAL(unregisterSimulationDevice(QString));
    const QByteArray start = SIGNAL(startScenario(quint64, uint));
    const QByteArray list
        = SIGNAL(responseSimulationDevices(QVector<SimulationDeviceConfiguration>));
    const QString incomplete = QStringLiteral("Invalid or incomplete command/update: ");
    const QString processed = QStringLiteral("Processed Command/Update: ");

    QTest::newRow("root isn't Command")
        << QByteArray("<Order><StopScenario/></Order>") << QByteArray(SIGNAL(stopScenario())) << 0
        << QString() << "Invalid xml: Order";
    QTest::newRow("only the first child counts")
        << QByteArray("<Command><UnloadScenario/><StopScenario/></Command>")
        << QByteArray(SIGNAL(stopScenario())) << 0 << QString() << processed + "UnloadScenario";
    QTest::newRow("no child") << QByteArray("<Command>text</Command>") << unregister << 0
                              << QString() << incomplete;
    QTest::newRow("unknown message") << QByteArray("<Command><Reboot/></Command>") << unregister
                                     << 0 << QString() << incomplete + "Reboot";
    QTest::newRow("test mode 1 is no bool")
        << QByteArray("<Command><TestMode><On>1</On></TestMode></Command>")
        << QByteArray(SIGNAL(testModeOn(bool))) << 0 << QString() << incomplete + "TestMode";
    QTest::newRow("time stamp not a number")
        << QByteArray("<Command><StartScenario><Timestamp>abc</Timestamp>"
                      "<ScenarioTime>1</ScenarioTime></StartScenario></Command>")
        << start << 0 << QString() << incomplete + "StartScenario";
    QTest::newRow("scenario time missing")
        << QByteArray("<Command><StartScenario><Timestamp>5</Timestamp></StartScenario></Command>")
        << start << 0 << QString() << incomplete + "StartScenario";
    QTest::newRow("largest time stamp")
        << QByteArray("<Command><StartScenario><Timestamp>18446744073709551615</Timestamp>"
                      "<ScenarioTime>0</ScenarioTime></StartScenario></Command>")
        << start << 1 << "18446744073709551615" << processed + "StartScenario";
    QTest::newRow("device list with a gap")
        << QByteArray("<Command><ResponseSimulationDevices><Device0><Data/></Device0>"
                      "<Device2><Data/></Device2></ResponseSimulationDevices></Command>")
        << list << 1 << "1" << processed + "ResponseSimulationDevices";
    QTest::newRow("empty device list")
        << QByteArray("<Command><ResponseSimulationDevices/></Command>") << list << 1 << "0"
        << processed + "ResponseSimulationDevices";
    QTest::newRow("unregister without id")
        << QByteArray("<Command><UnregisterSimulation/></Command>") << unregister << 1 << ""
        << processed + "UnregisterSimulation";
    QTest::newRow("record lacks a field")
        << QByteArray("<Command><RegisterSimulation Id=\"x\"><SimulationDevice>"
                      "&lt;R&gt;&lt;Id&gt;x&lt;/Id&gt;&lt;/R&gt;"
                      "</SimulationDevice></RegisterSimulation></Command>")
        << QByteArray(SIGNAL(registerSimulationDevice(QString, SimulationDeviceConfiguration))) << 0
        << QString() << incomplete + "RegisterSimulation";
    QTest::newRow("scenario that can't be decoded")
        << QByteArray("<Command><LoadScenario><ScenarioData>%%not base64%%</ScenarioData>"
                      "</LoadScenario></Command>")
        << QByteArray(SIGNAL(loadScenario(QByteArray))) << 1 << "" << processed + "LoadScenario";
    QTest::newRow("jx device without id")
        << QByteArray("<Command><AddJxDevice><JxDeviceDescriptor/></AddJxDevice></Command>")
        << QByteArray(SIGNAL(addJxDevice(QString, QByteArray))) << 0 << QString()
        << incomplete + "AddJxDevice";
    QTest::newRow("misspelt update name is the only one")
        << QByteArray("<Command><SimulationDeviceStateUpdate Id=\"d\"><State>&lt;S&gt;&lt;"
                      "ScenarioDataState&gt;1&lt;/ScenarioDataState&gt;&lt;/S&gt;</State>"
                      "</SimulationDeviceStateUpdate></Command>")
        << QByteArray(SIGNAL(simulationDeviceStateUpdate(QString, SimulationDeviceState))) << 0
        << QString() << incomplete + "SimulationDeviceStateUpdate";
}

// Documents written by hand on a raw socket, as a peer of another make would.
void tst_ServiceCommunication::handWrittenCommands()
{
    QFETCH(QByteArray, document);
    QFETCH(QByteArray, signal);
    QFETCH(int, count);
    QFETCH(QString, argument);
    QFETCH(QString, traceLine);

    TraceCapture trace;
    SocketPair sockets;
    QVERIFY(sockets.open());
    SimulationServiceCommunication server(sockets.accepted);
    QSignalSpy spy(&server, signal.constData());
    QVERIFY(spy.isValid());

    sockets.client.write(document + "\n<Command><HeartBeat/></Command>\n");
    QTRY_VERIFY(trace.lines().contains(QStringLiteral("Processed Command/Update: HeartBeat")));
    QCOMPARE(spy.count(), count);
    QCOMPARE(trace.lines().first(), traceLine);
    if (argument.isNull())
        return;
    // For a device list the argument is the number of records.
    const QVariant first = spy.at(0).at(0);
    if (first.canConvert<QVector<SimulationDeviceConfiguration>>())
        QCOMPARE(QString::number(first.value<QVector<SimulationDeviceConfiguration>>().size()),
            argument);
    else
        QCOMPARE(first.toString(), argument);
}

void tst_ServiceCommunication::malformedStreamIsTracedAndStopsReading()
{
    TraceCapture trace;
    SocketPair sockets;
    QVERIFY(sockets.open());
    SimulationServiceCommunication server(sockets.accepted);
    QSignalSpy stopped(&server, &SimulationServiceCommunication::stopScenario);
    sockets.client.write("<Command><StopScenario></Command>\n<Command><StopScenario/></Command>");
    QTRY_COMPARE(trace.lines().size(), 1);
    QTest::qWait(50);
    QCOMPARE(stopped.count(), 0);
    QCOMPARE(trace.lines().size(), 1);
    QCOMPARE(sockets.accepted->state(), QAbstractSocket::ConnectedState);
}

void tst_ServiceCommunication::traceLinesFollowTheirClassBits_data()
{
    QTest::addColumn<quint32>("classes");
    QTest::addColumn<QStringList>("lines");
    const QString processed = QStringLiteral("Processed Command/Update: StopScenario");
    const QString incomplete = QStringLiteral("Invalid or incomplete command/update: TestMode");
    const QString invalid = QStringLiteral("Invalid xml: Other");
    QTest::newRow("none") << quint32(0) << QStringList {};
    QTest::newRow("rejected commands")
        << quint32(ErrorHandler::TraceConnection) << QStringList { incomplete };
    QTest::newRow("processed commands and XML errors")
        << quint32(ErrorHandler::TraceCommands) << QStringList { processed, invalid };
    QTest::newRow("both") << quint32(ErrorHandler::TraceConnection | ErrorHandler::TraceCommands)
                          << QStringList { processed, incomplete, invalid };
}

void tst_ServiceCommunication::traceLinesFollowTheirClassBits()
{
    QFETCH(quint32, classes);
    QFETCH(QStringList, lines);
    TraceCapture trace;
    ErrorHandler::Instance()->setTraceClasses(classes);
    SocketPair sockets;
    QVERIFY(sockets.open());
    SimulationServiceCommunication server(sockets.accepted);
    QSignalSpy stopped(&server, &SimulationServiceCommunication::stopScenario);
    QSignalSpy released(&server, &SimulationServiceCommunication::commandReleaseServer);
    sockets.client.write("<Command><StopScenario/></Command>"
                         "<Command><TestMode><On>yes</On></TestMode></Command>"
                         "<Other/><Command><ReleaseServer/></Command>");
    QTRY_COMPARE(released.count(), 1);
    QCOMPARE(stopped.count(), 1);
    trace.lines().removeAll(QStringLiteral("Processed Command/Update: ReleaseServer"));
    QCOMPARE(trace.lines(), lines);
}

void tst_ServiceCommunication::sendingWithoutSocketDoesNothing()
{
    TraceCapture trace;
    SimulationServiceCommunication alone;
    QCOMPARE(alone.socket(), nullptr);
    alone.sendRegisterSimulationDevice(QStringLiteral("a"), sampleDevice(QStringLiteral("a")));
    alone.sendLoadScenario("x");
    alone.sendStartScenario(1, 2);
    alone.sendResponseSimulationDevices({ sampleDevice(QStringLiteral("a")) });
    alone.sendCommandAcquireServer();

    // Detaching leaves the object without a separator, as new.
    SocketPair sockets;
    QVERIFY(sockets.open());
    alone.setSocket(&sockets.client);
    alone.setSocket(nullptr);
    alone.sendStopScenario();
    QTest::qWait(20);
    QCOMPARE(sockets.accepted->bytesAvailable(), 0);
    QVERIFY(trace.lines().isEmpty());
}

void tst_ServiceCommunication::confirmationMatchesHashOfSaltAndRecord()
{
    SimulationDeviceConfiguration device;
    device.setId(QStringLiteral("dev-1"));
    device.setMachine(QStringLiteral("host-a"));
    device.setMachineId(QStringLiteral("m-42"));
    device.setDeviceType(QStringLiteral("RX"));
    device.setName(QStringLiteral("not part of it"));
    // Value from Python's hashlib over "<salt>;dev-1;host-a;m-42;RX".
    QCOMPARE(SimulationServiceCommunication::createConfirmation(device),
        QStringLiteral("zA3BJ8+ML+RjtodmCuD8Xm19dyw="));
}

void tst_ServiceCommunication::timersAreChildrenWithTheirIntervals()
{
    SimulationServiceCommunication communication;
    const QTimer *beat = timer(communication, "heartBeatTimer");
    const QTimer *timeout = timer(communication, "heartBeatTimeoutTimer");
    QCOMPARE(beat->interval(), 30000);
    QVERIFY(!beat->isSingleShot() && !beat->isActive());
    QCOMPARE(timeout->interval(), 15000);
    QVERIFY(timeout->isSingleShot());
    communication.setHeartBeatEnabled(true);
    QVERIFY(beat->isActive());
}

void tst_ServiceCommunication::silentPeerIsDisconnectedAfterOneProbe()
{
    TraceCapture trace;
    SocketPair sockets;
    QVERIFY(sockets.open());
    SimulationServiceCommunication server(sockets.accepted);
    shortenHeartBeat(server);
    QSignalSpy closed(&sockets.client, &QTcpSocket::disconnected);
    server.setHeartBeatEnabled(true);
    QTRY_COMPARE(closed.count(), 1);
    server.setHeartBeatEnabled(false);

    // One probe went out before the time-out ended the connection.
    QCOMPARE(sockets.client.readAll(), QByteArray("<Command>\n    <HeartBeat/>\n</Command>\n"));
    QCOMPARE(
        trace.lines(), QStringList { QStringLiteral("Heart beat timed out => disconnecting") });
}

void tst_ServiceCommunication::answeringPeerStays()
{
    TraceCapture trace;
    Link link;
    QVERIFY(link.open());
    shortenHeartBeat(link.server, 2000);
    link.server.setHeartBeatEnabled(true);
    QTest::qWait(600);
    link.server.setHeartBeatEnabled(false);
    QCOMPARE(link.sockets.client.state(), QAbstractSocket::ConnectedState);
    QVERIFY(!trace.lines().contains(QStringLiteral("Heart beat timed out => disconnecting")));
    QVERIFY(trace.lines().count(QStringLiteral("Processed Command/Update: HeartBeatReply")) >= 3);
}

void tst_ServiceCommunication::disablingStopsPendingTimeout()
{
    SocketPair sockets;
    QVERIFY(sockets.open());
    SimulationServiceCommunication server(sockets.accepted);
    shortenHeartBeat(server);
    server.setHeartBeatEnabled(true);
    QTRY_VERIFY(timer(server, "heartBeatTimeoutTimer")->isActive());
    server.setHeartBeatEnabled(false);
    QVERIFY(!timer(server, "heartBeatTimeoutTimer")->isActive());
    QTest::qWait(250);
    QCOMPARE(sockets.client.state(), QAbstractSocket::ConnectedState);
}

// The device runs in its own process, built from devicepeer.cpp; this test is its server.
void tst_ServiceCommunication::deviceInASecondProcess()
{
    QTcpServer listener;
    QVERIFY(listener.listen(QHostAddress::LocalHost, 0));
    SimulationServiceCommunication server;
    connect(&listener, &QTcpServer::newConnection, this,
        [&]() { server.setSocket(listener.nextPendingConnection()); });
    QSignalSpy registered(&server, &SimulationServiceCommunication::registerSimulationDevice);
    QSignalSpy updated(&server, &SimulationServiceCommunication::simulationDeviceStateUpdate);
    QSignalSpy reported(&server, &SimulationServiceCommunication::addJxDevice);
    QSignalSpy unregistered(&server, &SimulationServiceCommunication::unregisterSimulationDevice);

    QProcess device;
    device.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    device.start(QStringLiteral(DEVICE_PEER), { QString::number(listener.serverPort()) });
    QVERIFY(device.waitForStarted());

    QTRY_COMPARE_WITH_TIMEOUT(registered.count(), 1, 10000);
    const auto record = registered.at(0).at(1).value<SimulationDeviceConfiguration>();
    QCOMPARE(registered.at(0).at(0).toString(), QStringLiteral("device-7"));
    QCOMPARE(record.stationName(), QStringLiteral("Hill & Dale <north>"));
    server.sendAcceptSimulationDevice(
        record.id(), SimulationServiceCommunication::createConfirmation(record));
    QTRY_COMPARE(updated.count(), 1);
    QCOMPARE(
        updated.at(0).at(1).value<SimulationDeviceState>().scenarioDataState(), ScenarioDataNone);

    const QByteArray scenario = largeScenario(100000).left(100000);
    server.sendLoadScenario(scenario);
    QTRY_COMPARE(updated.count(), 3);
    QCOMPARE(updated.at(1).at(1).value<SimulationDeviceState>().scenarioDataState(),
        ScenarioDataLoading);
    QCOMPARE(
        updated.at(2).at(1).value<SimulationDeviceState>().scenarioDataState(), ScenarioDataLoaded);

    server.sendStartScenario(Q_UINT64_C(1700000000123456), 5000);
    QTRY_COMPARE(reported.count(), 1);
    QCOMPARE(reported.at(0).at(0).toString(), QStringLiteral("1700000000123456"));
    QCOMPARE(reported.at(0).at(1).toByteArray(), QByteArray("5000"));

    server.sendStopScenario();
    QTRY_COMPARE(unregistered.count(), 1);
    QCOMPARE(unregistered.at(0).at(0).toString(), QStringLiteral("device-7"));
    QTRY_COMPARE_WITH_TIMEOUT(device.state(), QProcess::NotRunning, 10000);
    QCOMPARE(device.exitStatus(), QProcess::NormalExit);
    QCOMPARE(device.exitCode(), 0);
}

// A peer nobody here wrote: plain Python sockets, documents written by hand.
void tst_ServiceCommunication::pythonPeer()
{
    const QString python = QStandardPaths::findExecutable(QStringLiteral("python3"));
    QVERIFY2(!python.isEmpty(), "python3 is not installed");
    TraceCapture trace;
    QTcpServer listener;
    QVERIFY(listener.listen(QHostAddress::LocalHost, 0));
    SimulationServiceCommunication server;
    connect(&listener, &QTcpServer::newConnection, this,
        [&]() { server.setSocket(listener.nextPendingConnection()); });
    connect(&server, &SimulationServiceCommunication::registerSimulationDevice, this,
        [&](const QString &id, const SimulationDeviceConfiguration &device) {
            server.sendAcceptSimulationDevice(
                id, SimulationServiceCommunication::createConfirmation(device));
        });
    QSignalSpy registered(&server, &SimulationServiceCommunication::registerSimulationDevice);
    QSignalSpy started(&server, &SimulationServiceCommunication::startScenario);
    QSignalSpy paused(&server, &SimulationServiceCommunication::pauseScenario);
    QSignalSpy testMode(&server, &SimulationServiceCommunication::testModeOn);
    QSignalSpy unloaded(&server, &SimulationServiceCommunication::unloadScenario);

    QProcess peer;
    peer.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    peer.start(python, { QStringLiteral(PYTHON_PEER), QString::number(listener.serverPort()) });
    QVERIFY(peer.waitForStarted());
    QTRY_COMPARE_WITH_TIMEOUT(peer.state(), QProcess::NotRunning, 20000);
    const QString output = QString::fromUtf8(peer.readAllStandardOutput());
    QCOMPARE(peer.exitCode(), 0);
    QVERIFY2(output.contains(QStringLiteral("heart beat answered")), qPrintable(output));
    QVERIFY2(output.contains(QStringLiteral("confirmation matches")), qPrintable(output));

    QCOMPARE(registered.count(), 1);
    const auto record = registered.at(0).at(1).value<SimulationDeviceConfiguration>();
    QCOMPARE(record.name(), QStringLiteral("Empfänger <1> & Co"));
    QCOMPARE(record.positionLatitude(), -33.875);
    QCOMPARE(started.count(), 1);
    QCOMPARE(started.at(0).at(0).toULongLong(), Q_UINT64_C(18446744073709551615));
    QCOMPARE(started.at(0).at(1).toUInt(), 4294967295u);
    QCOMPARE(paused.count(), 1);
    QCOMPARE(paused.at(0).at(0).toUInt(), 77u);
    QCOMPARE(testMode.count(), 0);
    QCOMPARE(unloaded.count(), 0);
    QVERIFY(
        trace.lines().contains(QStringLiteral("Invalid or incomplete command/update: TestMode")));
    QVERIFY(trace.lines().contains(QStringLiteral("Invalid xml: Shutdown")));
}

void tst_ServiceCommunication::manyDevicesReportInOrder()
{
    constexpr int DeviceCount = 200;
    constexpr int UpdateCount = 100;
    QTcpServer listener;
    QVERIFY(listener.listen(QHostAddress::LocalHost, 0));
    std::vector<std::unique_ptr<SimulationServiceCommunication>> serverEnds;
    QHash<QString, QVector<int>> received;
    int registrations = 0;
    int updates = 0;
    connect(&listener, &QTcpServer::newConnection, this, [&]() {
        while (QTcpSocket *socket = listener.nextPendingConnection()) {
            serverEnds.push_back(std::make_unique<SimulationServiceCommunication>(socket));
            auto *end = serverEnds.back().get();
            connect(end, &SimulationServiceCommunication::registerSimulationDevice, this,
                [&](const QString &id) {
                    received.insert(id, {});
                    ++registrations;
                });
            connect(end, &SimulationServiceCommunication::simulationDeviceStateUpdate, this,
                [&](const QString &id, const SimulationDeviceState &state) {
                    received[id].append(int(state.scenarioDataState()));
                    ++updates;
                });
        }
    });

    // Connections are opened in batches: the listen backlog drops a burst of SYNs, and the
    // kernel would retry them only after seconds.
    constexpr int Batch = 25;
    std::vector<std::unique_ptr<QTcpSocket>> sockets;
    std::vector<std::unique_ptr<SimulationServiceCommunication>> devices;
    for (int i = 0; i < DeviceCount; ++i) {
        sockets.push_back(std::make_unique<QTcpSocket>());
        sockets.back()->connectToHost(QHostAddress::LocalHost, listener.serverPort());
        devices.push_back(std::make_unique<SimulationServiceCommunication>(sockets.back().get()));
        if ((i + 1) % Batch == 0)
            QTRY_COMPARE_WITH_TIMEOUT(int(serverEnds.size()), i + 1, 10000);
    }

    QElapsedTimer clock;
    clock.start();
    // The state's number carries the sequence: any int crosses.
    SimulationDeviceState state;
    for (int i = 0; i < DeviceCount; ++i) {
        const QString id = QStringLiteral("device-%1").arg(i);
        devices[size_t(i)]->sendRegisterSimulationDevice(id, sampleDevice(id));
    }
    for (int n = 0; n < UpdateCount; ++n) {
        state.setScenarioDataState(ScenarioDataState(n));
        for (int i = 0; i < DeviceCount; ++i)
            devices[size_t(i)]->sendSimulationDeviceStateUpdate(
                QStringLiteral("device-%1").arg(i), state);
    }
    QTRY_COMPARE_WITH_TIMEOUT(updates, DeviceCount * UpdateCount, 50000);
    const double seconds = clock.nsecsElapsed() / 1e9;
    qInfo("%d updates from %d devices in %.2f s: %.0f updates per second", updates, DeviceCount,
        seconds, updates / seconds);

    QCOMPARE(registrations, DeviceCount);
    QVector<int> expected(UpdateCount);
    std::iota(expected.begin(), expected.end(), 0);
    for (int i = 0; i < DeviceCount; ++i)
        QCOMPARE(received.value(QStringLiteral("device-%1").arg(i)), expected);
}

QTEST_GUILESS_MAIN(tst_ServiceCommunication)
#include "tst_servicecommunication.moc"
