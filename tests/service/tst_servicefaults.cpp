#include "servicetesthelpers.h"

#include <radiosim/service/simulationservicecommunication.h>
#include <radiosim/service/tcpserverconnector.h>
#include <radiosim/service/xmlseparator_p.h>

#include <QProcess>
#include <QTimer>

using namespace Simulation;
using Communication = SimulationServiceCommunication;

namespace {

// A server: one protocol end for each accepted connection, and the ids registered in order.
struct Server
{
    QTcpServer listener;
    std::vector<std::unique_ptr<Communication>> ends;
    QStringList registered;
    QStringList updated;

    bool listen(quint16 port = 0)
    {
        QObject::connect(&listener, &QTcpServer::newConnection, [this]() {
            while (QTcpSocket *socket = listener.nextPendingConnection()) {
                auto *end = ends.emplace_back(std::make_unique<Communication>(socket)).get();
                QObject::connect(end, &Communication::registerSimulationDevice,
                    [this](const QString &id) { registered << id; });
                QObject::connect(end, &Communication::simulationDeviceStateUpdate,
                    [this](const QString &id) { updated << id; });
            }
        });
        return listener.listen(QHostAddress::LocalHost, port);
    }
};

// A device in this process that registers on every connection its connector makes.
struct Device
{
    explicit Device(quint16 port, const QString &id)
        : connector(QStringLiteral("127.0.0.1:%1").arg(port))
    {
        QObject::connect(&connector, &TcpServerConnector::connectedToServer, [this, id]() {
            communication.setSocket(nullptr);
            communication.setSocket(connector.socket());
            communication.sendRegisterSimulationDevice(id, sampleDevice(id));
        });
        connector.connectToServer();
    }

    TcpServerConnector connector;
    Communication communication;
};

} // namespace

class tst_ServiceFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void killedDeviceLeavesTheOthersWorking();
    void restartedServerSeesTheDeviceRegisterAgain_data();
    void restartedServerSeesTheDeviceRegisterAgain();
};

// A device process killed halfway through its registration: its connection closes, the half
// document goes nowhere, and the devices around it, old and new, go on.
void tst_ServiceFaults::killedDeviceLeavesTheOthersWorking()
{
    Server server;
    QVERIFY(server.listen());
    Device before(server.listener.serverPort(), "before");
    QTRY_COMPARE(server.registered, QStringList { "before" });
    QProcess peer;
    peer.start(DEVICE_PEER, { QString::number(server.listener.serverPort()), "half" });
    QVERIFY(peer.waitForStarted());
    QTRY_COMPARE_WITH_TIMEOUT(int(server.ends.size()), 2, 10000);
    const auto *separator = server.ends.back()->findChild<XmlSeparator *>();
    QTRY_VERIFY_WITH_TIMEOUT(separator->bufferedBytes() > 0, 10000);
    QSignalSpy closed(server.ends.back()->socket(), &QTcpSocket::disconnected);
    peer.kill();
    QVERIFY(peer.waitForFinished());
    QTRY_COMPARE(closed.count(), 1);

    before.communication.sendSimulationDeviceStateUpdate("before", {});
    Device after(server.listener.serverPort(), "after");
    QTRY_COMPARE(server.registered, QStringList({ "before", "after" }));
    after.communication.sendSimulationDeviceStateUpdate("after", {});
    QTRY_COMPARE(server.updated.size(), 2);
    QVERIFY(server.updated.contains("before") && server.updated.contains("after"));
}

void tst_ServiceFaults::restartedServerSeesTheDeviceRegisterAgain_data()
{
    QTest::addColumn<bool>("silent");
    QTest::newRow("server closes") << false;
    QTest::newRow("server falls silent") << true;
}

// A server that goes away is found again on its port; one that only stops answering is left
// by the heart beat, whose timers are shortened here, and then found again as well.
void tst_ServiceFaults::restartedServerSeesTheDeviceRegisterAgain()
{
    QFETCH(bool, silent);
    Server server;
    QVERIFY(server.listen());
    const quint16 port = server.listener.serverPort();
    Device device(port, "dev");
    QTRY_COMPARE(server.registered, QStringList { "dev" });
    device.communication.findChild<QTimer *>("heartBeatTimer")->setInterval(50);
    device.communication.findChild<QTimer *>("heartBeatTimeoutTimer")->setInterval(200);
    device.communication.setHeartBeatEnabled(true);
    QSignalSpy lost(&device.connector, &TcpServerConnector::disconnectedFromServer);

    if (silent) {
        // The end is gone but its socket, the listener's child, stays open: probes go
        // unanswered.
        server.ends.clear();
        QTRY_COMPARE(lost.count(), 1);
    } else {
        server.listener.close();
        for (const auto &end : server.ends)
            end->socket()->abort();
        server.ends.clear();
        QTRY_COMPARE(lost.count(), 1);
        QVERIFY(server.listener.listen(QHostAddress::LocalHost, port));
    }
    QTRY_COMPARE_WITH_TIMEOUT(server.registered, QStringList({ "dev", "dev" }), 10000);
    device.communication.setHeartBeatEnabled(false);
}

QTEST_GUILESS_MAIN(tst_ServiceFaults)
#include "tst_servicefaults.moc"
