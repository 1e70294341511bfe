#include "servicetesthelpers.h"

#include <radiosim/service/simulationservicecommunication.h>

#include <QElapsedTimer>
#include <QFile>

#include <sys/resource.h>

using namespace Simulation;
using Communication = SimulationServiceCommunication;

namespace {

// The sanitizers slow the service five to ten times: their trees run 200 devices of 200
// updates and 250 round trips, which keeps the test under a minute there too.
#ifdef RADIOSIM_SANITIZED
constexpr int DeviceCount = 200;
constexpr int UpdateCount = 200;
constexpr int RoundTrips = 250;
#else
constexpr int DeviceCount = 500;
constexpr int UpdateCount = 1000;
constexpr int RoundTrips = 1000;
#endif

// Peak resident memory of the process in MiB.
double peakMemory()
{
    QFile status("/proc/self/status");
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').value(0).toDouble() / 1024;
    }
    return 0;
}

} // namespace

class tst_ServiceLoad : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Two sockets a device: a default soft limit of 1024 descriptors is too few.
    void initTestCase()
    {
        rlimit limit {};
        if (getrlimit(RLIMIT_NOFILE, &limit) == 0 && limit.rlim_cur < 4096) {
            limit.rlim_cur = qMin<rlim_t>(4096, limit.rlim_max);
            setrlimit(RLIMIT_NOFILE, &limit);
        }
    }
    void manyDevicesReportInOrder();
    void scenarioRoundTrips_data();
    void scenarioRoundTrips();
};

void tst_ServiceLoad::manyDevicesReportInOrder()
{
    QTcpServer listener;
    QVERIFY(listener.listen(QHostAddress::LocalHost, 0));
    std::vector<std::unique_ptr<Communication>> serverEnds;
    // Updates of a device that never registered are dropped, and so show.
    QHash<QString, QVector<int>> received;
    int updates = 0;
    connect(&listener, &QTcpServer::newConnection, this, [&]() {
        while (QTcpSocket *socket = listener.nextPendingConnection()) {
            auto *end = serverEnds.emplace_back(std::make_unique<Communication>(socket)).get();
            connect(end, &Communication::registerSimulationDevice, this,
                [&](const QString &id) { received[id].reserve(UpdateCount); });
            connect(end, &Communication::simulationDeviceStateUpdate, this,
                [&](const QString &id, const SimulationDeviceState &state) {
                    if (received.contains(id))
                        received[id].append(int(state.scenarioDataState()));
                    ++updates;
                });
        }
    });

    // Connections are opened in batches: the listen backlog drops a burst of SYNs, and the
    // kernel would retry them only after seconds.
    QObject sockets;
    std::vector<std::unique_ptr<Communication>> devices;
    for (int i = 1; i <= DeviceCount; ++i) {
        auto *socket = new QTcpSocket(&sockets);
        socket->connectToHost(QHostAddress::LocalHost, listener.serverPort());
        devices.push_back(std::make_unique<Communication>(socket));
        if (i % 25 == 0)
            QTRY_COMPARE_WITH_TIMEOUT(int(serverEnds.size()), i, 10000);
    }

    QElapsedTimer clock;
    clock.start();
    const auto id = [](int i) { return QString("device-%1").arg(i); };
    for (int i = 0; i < DeviceCount; ++i)
        devices[size_t(i)]->sendRegisterSimulationDevice(id(i), sampleDevice(id(i)));
    // The state's number carries the sequence: any int crosses. Sending in rounds lets the
    // event loop carry each round out before the next is written.
    SimulationDeviceState state;
    for (int n = 0; n < UpdateCount; ++n) {
        state.setScenarioDataState(ScenarioDataState(n));
        for (int i = 0; i < DeviceCount; ++i)
            devices[size_t(i)]->sendSimulationDeviceStateUpdate(id(i), state);
        if (n % 50 == 49)
            QCoreApplication::processEvents();
    }
    QTRY_COMPARE_WITH_TIMEOUT(updates, DeviceCount * UpdateCount, 50000);
    const double seconds = clock.nsecsElapsed() / 1e9;
    qInfo("%d updates from %d devices in %.2f s (%.0f a second), peak memory %.0f MiB", updates,
        DeviceCount, seconds, updates / seconds, peakMemory());

    QVector<int> expected(UpdateCount);
    std::iota(expected.begin(), expected.end(), 0);
    for (int i = 0; i < DeviceCount; ++i)
        QCOMPARE(received.value(id(i)), expected);
}

void tst_ServiceLoad::scenarioRoundTrips_data()
{
    QTest::addColumn<bool>("compression");
    QTest::newRow("packed") << true;
    QTest::newRow("plain text") << false;
}

// The device sends every scenario it loads straight back; each comes home whole before the
// next goes out.
void tst_ServiceLoad::scenarioRoundTrips()
{
    QFETCH(bool, compression);
    QFile file(":/DefaultData/Default.sce.exp");
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray scenario = file.readAll();
    SocketPair sockets;
    QVERIFY(sockets.open());
    Communication device(&sockets.client);
    Communication server(sockets.accepted);
    device.setCompression(compression);
    server.setCompression(compression);
    connect(&device, &Communication::loadScenario, &device,
        [&](const QByteArray &data) { device.sendLoadScenario(data); });
    int trips = 0;
    int corrupted = 0;
    connect(&server, &Communication::loadScenario, &server, [&](const QByteArray &data) {
        corrupted += data != scenario;
        if (++trips < RoundTrips)
            server.sendLoadScenario(scenario);
    });
    QElapsedTimer clock;
    clock.start();
    server.sendLoadScenario(scenario);
    QTRY_COMPARE_WITH_TIMEOUT(trips, RoundTrips, 50000);
    QCOMPARE(corrupted, 0);
    qInfo("%d round trips of %d bytes in %.2f s, peak memory %.0f MiB", trips, int(scenario.size()),
        clock.nsecsElapsed() / 1e9, peakMemory());
}

QTEST_GUILESS_MAIN(tst_ServiceLoad)
#include "tst_serviceload.moc"
