#include "servicetesthelpers.h"

#include <radiosim/service/simulationservicecommunication.h>

#include <QDomDocument>
#include <QProcess>
#include <QTimer>

using namespace Simulation;
using Communication = SimulationServiceCommunication;
Q_DECLARE_METATYPE(std::function<void(Communication &)>)

namespace {

// A signal argument as text; byte arrays keep every byte.
template <typename T> QString text(const T &value)
{
    if constexpr (std::is_same_v<T, QByteArray>)
        return QString::fromLatin1(value);
    else if constexpr (std::is_same_v<T, SimulationDeviceConfiguration>)
        return flatten(value);
    else if constexpr (std::is_same_v<T, SimulationDeviceState>)
        return QString::number(value.scenarioDataState());
    else if constexpr (std::is_same_v<T, QVector<SimulationDeviceConfiguration>>) {
        QStringList records;
        for (const SimulationDeviceConfiguration &device : value)
            records << flatten(device);
        return records.join(" / ");
    } else
        return QVariant(value).toString();
}

// Every signal of one protocol end as a line of text, in order of arrival.
struct Log
{
    explicit Log(Communication &end)
    {
        record(end, &Communication::registerSimulationDevice, "register");
        record(end, &Communication::simulationDeviceStateUpdate, "update");
        record(end, &Communication::unregisterSimulationDevice, "unregister");
        record(end, &Communication::addJxDevice, "addJx");
        record(end, &Communication::removeJxDevice, "removeJx");
        record(end, &Communication::acceptSimulationDevice, "accept");
        record(end, &Communication::loadScenario, "load");
        record(end, &Communication::unloadScenario, "unload");
        record(end, &Communication::loadDeployment, "deploy");
        record(end, &Communication::startScenario, "start");
        record(end, &Communication::pauseScenario, "pause");
        record(end, &Communication::stopScenario, "stop");
        record(end, &Communication::testModeOn, "testMode");
        record(end, &Communication::responseSimulationDevices, "devices");
        record(end, &Communication::commandAcquireServer, "acquire");
        record(end, &Communication::commandReleaseServer, "release");
        record(end, &Communication::commandRequestSimulationDevices, "request");
    }
    QStringList lines;

    template <typename... Args>
    void record(Communication &end, void (Communication::*signal)(Args...), const char *name)
    {
        QObject::connect(&end, signal, [this, name](Args... args) {
            lines.append(QStringList { name, text(args)... }.join(' '));
        });
    }
};

// Two protocol ends over one loopback connection: `device` on the connecting socket, `server`
// on the accepted one. Without the device end the client socket is raw.
struct Link
{
    SocketPair sockets;
    Communication device;
    Communication server;

    bool open(bool withDevice = true)
    {
        if (!sockets.open())
            return false;
        if (withDevice)
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

QTimer *timer(Communication &communication, const char *name)
{
    return communication.findChild<QTimer *>(QLatin1String(name));
}

// The time-out is generous where an answer is expected, so a busy machine can't fake silence.
void shortenHeartBeat(Communication &communication, int timeout = 120)
{
    timer(communication, "heartBeatTimer")->setInterval(60);
    timer(communication, "heartBeatTimeoutTimer")->setInterval(timeout);
}

const QString Processed = "Processed Command/Update: ";
const QString Incomplete = "Invalid or incomplete command/update: ";
const QString TimedOut = "Heart beat timed out => disconnecting";

} // namespace

class tst_ServiceCommunication : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void largeScenarioComesBackByteIdentical_data();
    void largeScenarioComesBackByteIdentical();
    void messagesAreWrittenAsQtWritesThem_data();
    void messagesAreWrittenAsQtWritesThem();
    void handWrittenCommands_data();
    void handWrittenCommands();
    void traceLinesFollowTheirClassBits();
    void sendingWithoutSocketDoesNothing();
    void heartBeat();
    void deviceInASecondProcess();
    void pythonPeer();
};

void tst_ServiceCommunication::largeScenarioComesBackByteIdentical_data()
{
    QTest::addColumn<bool>("compression");
    QTest::addColumn<int>("bytes");
    QTest::newRow("packed") << true << 2 * 1024 * 1024;
    // Qt's DOM writer escapes markup inside text in place, at a cost that grows with the
    // square of the escapes; uncompressed, a smaller document shows the same.
    QTest::newRow("plain text") << false << 256 * 1024;
}

void tst_ServiceCommunication::messagesAreWrittenAsQtWritesThem_data()
{
    using Send = std::function<void(Communication &)>;
    QTest::addColumn<Send>("send");
    QTest::addColumn<bool>("compression");
    QTest::addColumn<QString>("received");
    // Without `plain` the message comes back the same in plain text.
    const auto add = [](const char *name, const QString &received, const Send &send,
                         const QString &plain = QString()) {
        QTest::addRow("%s", name) << send << false << (plain.isNull() ? received : plain);
        QTest::addRow("%s, packed", name) << send << true << received;
    };
    const QString nasty = QString::fromUtf8("<a & \"b\" 'c'> ]]> \r\n\tÄ中\xf0\x9f\x93\xa1 end");
    const QByteArray bytes = nasty.toUtf8();
    const QByteArray binary = "\x01\x02\xff " + bytes;
    SimulationDeviceConfiguration device = sampleDevice(nasty);
    device.setStationName(nasty);
    const QVector<SimulationDeviceConfiguration> devices { device, sampleDevice("b") };
    SimulationDeviceState state;
    state.setScenarioDataState(ScenarioDataLoading);
    const QByteArray scenario = largeScenario(20000) + bytes;
    // Plain payloads go out as UTF-8 and come in as Latin-1: only ASCII crosses intact.
    const QString mangled = QString::fromLatin1(nasty.toLatin1());
    add("register", "register " + nasty + ' ' + flatten(device),
        [=](Communication &c) { c.sendRegisterSimulationDevice(nasty, device); });
    add("update", "update " + nasty + " 1",
        [=](Communication &c) { c.sendSimulationDeviceStateUpdate(nasty, state); });
    add("unregister", "unregister " + nasty,
        [=](Communication &c) { c.sendUnregisterSimulationDevice(nasty); });
    add(
        "add jx", "addJx " + nasty + ' ' + text(bytes),
        [=](Communication &c) { c.sendAddJxDevice(nasty, bytes); },
        "addJx " + nasty + ' ' + mangled);
    add("remove jx", "removeJx " + nasty, [=](Communication &c) { c.sendRemoveJxDevice(nasty); });
    add("accept", "accept " + nasty + " +=/" + nasty,
        [=](Communication &c) { c.sendAcceptSimulationDevice(nasty, "+=/" + nasty); });
    add(
        "load", "load " + text(scenario), [=](Communication &c) { c.sendLoadScenario(scenario); },
        "load " + text(largeScenario(20000)) + mangled);
    add(
        "deploy", "deploy " + text(bytes), [=](Communication &c) { c.sendLoadDeployment(bytes); },
        "deploy " + mangled);
    // Only packed do binary and empty payloads survive: control characters are no XML, and Qt
    // writes an empty text as an empty element.
    QTest::newRow("add jx, binary, packed")
        << Send([=](Communication &c) { c.sendAddJxDevice(nasty, binary); }) << true
        << "addJx " + nasty + ' ' + text(binary);
    QTest::newRow("deploy nothing, packed")
        << Send([](Communication &c) { c.sendLoadDeployment({}); }) << true << QString("deploy ");
    add("unload", "unload", [](Communication &c) { c.sendUnloadScenario(); });
    add("start", "start 18446744073709551615 4294967295",
        [](Communication &c) { c.sendStartScenario(~Q_UINT64_C(0), 4294967295u); });
    add("pause", "pause 4294967295", [](Communication &c) { c.sendPauseScenario(4294967295u); });
    add("stop", "stop", [](Communication &c) { c.sendStopScenario(); });
    add("test mode", "testMode true", [](Communication &c) { c.sendTestModeOn(true); });
    add("test mode off", "testMode false", [](Communication &c) { c.sendTestModeOn(false); });
    add("devices", "devices " + text(devices),
        [=](Communication &c) { c.sendResponseSimulationDevices(devices); });
    add("acquire", "acquire", [](Communication &c) { c.sendCommandAcquireServer(); });
    add("release", "release", [](Communication &c) { c.sendCommandReleaseServer(); });
    add("request", "request", [](Communication &c) { c.sendCommandRequestSimulationDevices(); });
}

// Peers compare what we send with what Qt's DOM writer gave: a message read back into a DOM and
// written by Qt must give the bytes that crossed. Sent back, the bytes give every value again.
void tst_ServiceCommunication::messagesAreWrittenAsQtWritesThem()
{
    QFETCH(std::function<void(Communication &)>, send);
    QFETCH(bool, compression);
    QFETCH(QString, received);
    Link link;
    QVERIFY(link.open(false));
    Log log(link.server);
    link.server.setCompression(compression);
    send(link.server);
    QByteArray written;
    QTRY_VERIFY((written += link.sockets.client.readAll()).endsWith("</Command>\n"));
    QDomDocument document;
    QVERIFY(document.setContent(written));
    QCOMPARE(written, document.toByteArray(4));
    link.sockets.client.write(written);
    QTRY_COMPARE(log.lines, QStringList { received });
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
    connect(&link.device, &Communication::loadScenario, &link.device,
        [&link](const QByteArray &data) { link.device.sendAddJxDevice("echo", data); });
    QSignalSpy echoed(&link.server, &Communication::addJxDevice);

    const QByteArray scenario = largeScenario(bytes);
    link.server.sendLoadScenario(scenario);
    QTRY_COMPARE_WITH_TIMEOUT(echoed.count(), 1, 20000);
    QVERIFY(echoed.at(0).at(1).toByteArray() == scenario);
}

// A row that receives nothing is traced as rejected, any other as processed.
void tst_ServiceCommunication::handWrittenCommands_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QString>("received");
    const auto row = [](const char *name, const QByteArray &inner, const QString &received) {
        QTest::newRow(name) << "<Command>" + inner + "</Command>" << received;
    };
    const auto device = [](int index, const char *id) {
        return QString::asprintf("<Device%d><Data>&lt;R&gt;&lt;Id&gt;%s&lt;/Id&gt;&lt;/R&gt;"
                                 "</Data></Device%d>",
            index, id, index)
            .toLatin1();
    };
    row("only the first child counts", "<UnloadScenario/><StopScenario/>", "unload");
    row("no child", "text", "");
    row("time stamp not a number",
        "<StartScenario><Timestamp>abc</Timestamp><ScenarioTime>1</ScenarioTime></StartScenario>",
        "");
    row("scenario time missing", "<StartScenario><Timestamp>5</Timestamp></StartScenario>", "");
    row("device list with a gap",
        "<ResponseSimulationDevices><Device0><Data/></Device0><Device2><Data/></Device2>"
        "</ResponseSimulationDevices>",
        "devices " + flatten({}));
    row("devices in any order, the first of each name counts",
        "<ResponseSimulationDevices>" + device(1, "b") + device(0, "a") + device(0, "z")
            + "</ResponseSimulationDevices>",
        "devices a|||||||0|0 / b|||||||0|0");
    QByteArray many;
    QStringList empty;
    for (int i = 0; i < 20000; ++i) {
        many += "<Device" + QByteArray::number(i) + "/>";
        empty << flatten({});
    }
    row("20000 devices, read in linear time",
        "<ResponseSimulationDevices>" + many + "</ResponseSimulationDevices>",
        "devices " + empty.join(" / "));
    row("record lacks a field",
        "<RegisterSimulation Id=\"x\"><SimulationDevice>&lt;R&gt;&lt;Id&gt;x&lt;/Id&gt;&lt;/R&gt;"
        "</SimulationDevice></RegisterSimulation>",
        "");
    row("scenario that can't be decoded",
        "<LoadScenario><ScenarioData>%%not base64%%</ScenarioData></LoadScenario>", "load ");
    row("jx device without id", "<AddJxDevice><JxDeviceDescriptor/></AddJxDevice>", "");
    row("misspelt update name is the only one",
        "<SimulationDeviceStateUpdate Id=\"d\"><State>&lt;S&gt;&lt;ScenarioDataState&gt;1&lt;/"
        "ScenarioDataState&gt;&lt;/S&gt;</State></SimulationDeviceStateUpdate>",
        "");
}

// Documents written by hand on a raw socket, as a peer of another make would; a heart beat
// behind each shows it was read.
void tst_ServiceCommunication::handWrittenCommands()
{
    QFETCH(QByteArray, document);
    QFETCH(QString, received);
    TraceCapture trace;
    Link link;
    QVERIFY(link.open(false));
    Log log(link.server);
    link.sockets.client.write(document + "\n<Command><HeartBeat/></Command>\n");
    QTRY_VERIFY(trace.lines.contains(Processed + "HeartBeat"));
    QCOMPARE(log.lines.join('\n'), received);
    QVERIFY2(trace.lines.first().startsWith(received.isEmpty() ? Incomplete : Processed),
        qPrintable(trace.lines.first()));
}

// Rejected commands are connection lines; processed commands and XML errors are command lines.
void tst_ServiceCommunication::traceLinesFollowTheirClassBits()
{
    for (const quint32 classes : { ErrorHandler::TraceConnection, ErrorHandler::TraceCommands }) {
        TraceCapture trace;
        ErrorHandler::Instance()->setTraceClasses(classes);
        Link link;
        QVERIFY(link.open(false));
        Log log(link.server);
        link.sockets.client.write("<Command><StopScenario/></Command>"
                                  "<Command><TestMode><On>yes</On></TestMode></Command>"
                                  "<Other/><Command><ReleaseServer/></Command>");
        QTRY_COMPARE(log.lines, QStringList({ "stop", "release" }));
        const QStringList commandLines { Processed + "StopScenario", "Invalid xml: Other",
            Processed + "ReleaseServer" };
        QCOMPARE(trace.lines,
            classes == ErrorHandler::TraceCommands ? commandLines
                                                   : QStringList { Incomplete + "TestMode" });
    }
}

// Detaching leaves the object without a separator, as new. A document written behind shows
// nothing came before it.
void tst_ServiceCommunication::sendingWithoutSocketDoesNothing()
{
    Link link;
    QVERIFY(link.open(false));
    Log log(link.server);
    link.device.sendLoadScenario("x");
    link.device.setSocket(&link.sockets.client);
    link.device.setSocket(nullptr);
    link.device.sendStopScenario();
    link.sockets.client.write("<Command><UnloadScenario/></Command>");
    QTRY_COMPARE(log.lines, QStringList { "unload" });
}

// A disabled heart beat has no timer running; left on, the time-out ends a silent peer's
// connection after a single probe, while an answering peer stays.
void tst_ServiceCommunication::heartBeat()
{
    TraceCapture trace;
    Link silent;
    QVERIFY(silent.open(false));
    QTimer *beat = timer(silent.server, "heartBeatTimer");
    QTimer *timeout = timer(silent.server, "heartBeatTimeoutTimer");
    QCOMPARE(beat->interval(), 30000);
    QCOMPARE(timeout->interval(), 15000);

    shortenHeartBeat(silent.server);
    silent.server.setHeartBeatEnabled(true);
    QTRY_VERIFY(timeout->isActive());
    silent.server.setHeartBeatEnabled(false);
    QVERIFY(!beat->isActive() && !timeout->isActive());

    QSignalSpy closed(&silent.sockets.client, &QTcpSocket::disconnected);
    silent.server.setHeartBeatEnabled(true);
    QTRY_COMPARE(closed.count(), 1);
    silent.server.setHeartBeatEnabled(false);
    const QByteArray probe = "<Command>\n    <HeartBeat/>\n</Command>\n";
    QCOMPARE(silent.sockets.client.readAll(), probe + probe);
    QCOMPARE(trace.lines, QStringList { TimedOut });

    trace.lines.clear();
    Link answering;
    QVERIFY(answering.open());
    shortenHeartBeat(answering.server, 2000);
    answering.server.setHeartBeatEnabled(true);
    QTRY_VERIFY(trace.lines.count(Processed + "HeartBeatReply") >= 3);
    answering.server.setHeartBeatEnabled(false);
    QCOMPARE(answering.sockets.client.state(), QAbstractSocket::ConnectedState);
    QVERIFY(!trace.lines.contains(TimedOut));
}

// The device runs in its own process, built from devicepeer.cpp; this test is its server.
void tst_ServiceCommunication::deviceInASecondProcess()
{
    QTcpServer listener;
    QVERIFY(listener.listen(QHostAddress::LocalHost, 0));
    Communication server;
    connect(&listener, &QTcpServer::newConnection, this,
        [&]() { server.setSocket(listener.nextPendingConnection()); });
    Log log(server);
    QProcess device;
    device.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    device.start(DEVICE_PEER, { QString::number(listener.serverPort()) });
    QVERIFY(device.waitForStarted());

    const SimulationDeviceConfiguration record = sampleDevice("device-7");
    QTRY_COMPARE_WITH_TIMEOUT(log.lines.size(), 1, 10000);
    server.sendAcceptSimulationDevice("device-7", Communication::createConfirmation(record));
    QTRY_COMPARE(log.lines.size(), 2);
    server.sendLoadScenario(largeScenario(100000).left(100000));
    QTRY_COMPARE(log.lines.size(), 4);
    server.sendStartScenario(Q_UINT64_C(1700000000123456), 5000);
    QTRY_COMPARE(log.lines.size(), 5);
    server.sendStopScenario();
    QTRY_COMPARE_WITH_TIMEOUT(device.state(), QProcess::NotRunning, 10000);
    QCOMPARE(device.exitStatus(), QProcess::NormalExit);
    QCOMPARE(device.exitCode(), 0);
    QCOMPARE(log.lines,
        QStringList(
            { "register device-7 " + flatten(record), "update device-7 0", "update device-7 1",
                "update device-7 2", "addJx 1700000000123456 5000", "unregister device-7" }));
}

// A peer nobody here wrote: plain Python sockets, documents written by hand.
void tst_ServiceCommunication::pythonPeer()
{
    const QString python = QStandardPaths::findExecutable("python3");
    QVERIFY2(!python.isEmpty(), "python3 is not installed");
    TraceCapture trace;
    QTcpServer listener;
    QVERIFY(listener.listen(QHostAddress::LocalHost, 0));
    Communication server;
    connect(&listener, &QTcpServer::newConnection, this,
        [&]() { server.setSocket(listener.nextPendingConnection()); });
    connect(&server, &Communication::registerSimulationDevice, this,
        [&](const QString &id, const SimulationDeviceConfiguration &device) {
            server.sendAcceptSimulationDevice(id, Communication::createConfirmation(device));
        });
    Log log(server);
    QProcess peer;
    peer.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    peer.start(python, { PYTHON_PEER, QString::number(listener.serverPort()) });
    QVERIFY(peer.waitForStarted());
    QTRY_COMPARE_WITH_TIMEOUT(peer.state(), QProcess::NotRunning, 20000);
    const QString output = QString::fromUtf8(peer.readAllStandardOutput());
    QCOMPARE(peer.exitCode(), 0);
    QVERIFY2(output.contains("heart beat answered"), qPrintable(output));
    QVERIFY2(output.contains("confirmation matches"), qPrintable(output));

    // Test mode with 1 is rejected; the unload behind the malformed document is never read.
    const QString record = "py-1|Empfänger <1> & Co|s1|Nord|pyhost|py-machine|PYRX|"
        + QString::number(151.2, 'g', 17) + "|-33.875";
    QCOMPARE(log.lines,
        QStringList(
            { "register py-1 " + record, "start 18446744073709551615 4294967295", "pause 77" }));
    QVERIFY(trace.lines.contains(Incomplete + "TestMode"));
    QVERIFY(trace.lines.contains("Invalid xml: Shutdown"));
}

QTEST_GUILESS_MAIN(tst_ServiceCommunication)
#include "tst_servicecommunication.moc"
