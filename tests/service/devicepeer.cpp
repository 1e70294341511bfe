// A simulation device in a process of its own, for the protocol tests: it connects to the port
// given as its argument, registers, answers the server's commands with state updates and
// leaves when told to stop. With "half" after the port it writes half a registration, says
// "ready" on its output and waits to be killed.
#include <radiosim/service/simulationservicecommunication.h>
#include <radiosim/service/tcpserverconnector.h>

#include "servicetesthelpers.h"

using namespace Simulation;

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc < 2)
        return 2;
    if (argc > 2 && qstrcmp(argv[2], "half") == 0) {
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, quint16(QByteArray(argv[1]).toUInt()));
        if (!socket.waitForConnected(5000))
            return 3;
        socket.write("<Command>\n    <RegisterSimulation Id=\"half\">\n        <Simulation");
        socket.waitForBytesWritten(5000);
        fputs("ready\n", stdout);
        fflush(stdout);
        return app.exec();
    }
    const QString id = "device-7";
    const SimulationDeviceConfiguration device = sampleDevice(id);
    TcpServerConnector connector("127.0.0.1:" + QString::fromLatin1(argv[1]));
    SimulationServiceCommunication communication;
    const auto report = [&](ScenarioDataState value) {
        SimulationDeviceState state;
        state.setScenarioDataState(value);
        communication.sendSimulationDeviceStateUpdate(id, state);
    };

    QObject::connect(&connector, &TcpServerConnector::connectedToServer, [&]() {
        communication.setSocket(connector.socket());
        communication.sendRegisterSimulationDevice(id, device);
    });
    QObject::connect(&communication, &SimulationServiceCommunication::acceptSimulationDevice,
        [&](const QString &acceptedId, const QString &confirmation) {
            const bool valid = acceptedId == id
                && confirmation == SimulationServiceCommunication::createConfirmation(device);
            report(valid ? ScenarioDataNone : ScenarioDataError);
        });
    QObject::connect(
        &communication, &SimulationServiceCommunication::loadScenario, [&](const QByteArray &data) {
            report(ScenarioDataLoading);
            report(data.startsWith("<Scenario") ? ScenarioDataLoaded : ScenarioDataError);
        });
    QObject::connect(&communication, &SimulationServiceCommunication::startScenario,
        [&](quint64 timestamp, uint scenarioTime) {
            communication.sendAddJxDevice(
                QString::number(timestamp), QByteArray::number(scenarioTime));
        });
    QObject::connect(&communication, &SimulationServiceCommunication::stopScenario, [&]() {
        communication.sendUnregisterSimulationDevice(id);
        connector.socket()->waitForBytesWritten(5000);
        app.quit();
    });

    connector.connectToServer();
    return app.exec();
}
