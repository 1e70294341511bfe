#include "commandline.h"
#include "commands.h"
#include "defaultdata.h"
#include "terminationsignals.h"

#include <radiosim/deployment/deploymentdataxml.h>
#include <radiosim/display/simulationstablemodel.h>
#include <radiosim/service/simulationservicecommunication.h>
#include <radiosim/units/units.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <map>
#include <memory>

using namespace Simulation;

namespace {

// The server's side of each device connection, with the ids registered on it.
struct Connection
{
    QTcpSocket *socket = nullptr;
    std::unique_ptr<SimulationServiceCommunication> communication;
    QStringList ids;
};

// Accepts devices, hands each the scenario and starts it in step with the server's clock, and
// keeps the simulations table, printed when it changed, at most once a second.
class SimulationServer : public QObject
{
    Q_OBJECT
public:
    SimulationServer(const QByteArray &scenario, const QByteArray &deployment)
        : m_scenario(scenario)
        , m_deployment(deployment)
    {
        connect(&m_server, &QTcpServer::newConnection, this, &SimulationServer::acceptConnections);
        m_printTimer.setSingleShot(true);
        connect(&m_printTimer, &QTimer::timeout, this, &SimulationServer::printTable);
        m_stopTimer.setSingleShot(true);
        connect(&m_stopTimer, &QTimer::timeout, this, &SimulationServer::finished);
        m_clock.startScenarioTime(ScenarioTimingHelper::currentTimeStamp(), 0);
    }

    ~SimulationServer() override
    {
        // Sockets still open close with the listener and must not report to a server that is
        // half destroyed.
        for (const auto &entry : m_connections)
            disconnect(entry.first, nullptr, this, nullptr);
    }

    bool listen(const QHostAddress &address, quint16 port, QString &error)
    {
        if (m_server.listen(address, port))
            return true;
        error = m_server.errorString();
        return false;
    }
    quint16 port() const { return m_server.serverPort(); }

    // Tells every device to stop and ends once all have left, or after 2 s.
    void stop()
    {
        if (m_stopping)
            return;
        m_server.close();
        m_stopping = true;
        for (const auto &entry : m_connections)
            entry.second.communication->sendStopScenario();
        if (m_states.isEmpty())
            QTimer::singleShot(0, this, &SimulationServer::finished);
        else
            m_stopTimer.start(2000);
    }

    // A table change still waiting for its second goes out now.
    void flush()
    {
        if (m_printTimer.isActive()) {
            m_printTimer.stop();
            printTable();
        }
    }

Q_SIGNALS:
    void finished();

private:
    void acceptConnections()
    {
        while (QTcpSocket *socket = m_server.nextPendingConnection()) {
            Connection &connection = m_connections[socket];
            connection.socket = socket;
            connection.communication = std::make_unique<SimulationServiceCommunication>(socket);
            SimulationServiceCommunication *communication = connection.communication.get();
            communication->setCompression(true);
            communication->setHeartBeatEnabled(true);
            connect(communication, &SimulationServiceCommunication::registerSimulationDevice, this,
                [this, socket](const QString &id, const SimulationDeviceConfiguration &device) {
                    registerDevice(socket, id, device);
                });
            connect(communication, &SimulationServiceCommunication::simulationDeviceStateUpdate,
                this, [this](const QString &id, const SimulationDeviceState &state) {
                    if (!m_states.contains(id))
                        return;
                    m_states[id] = state.scenarioDataState();
                    m_table.updateSimulationState(id, state);
                    tableChanged();
                });
            connect(communication, &SimulationServiceCommunication::unregisterSimulationDevice,
                this, [this, socket](const QString &id) {
                    m_connections[socket].ids.removeAll(id);
                    unregisterDevice(id);
                });
            connect(communication, &SimulationServiceCommunication::commandRequestSimulationDevices,
                communication, [this, communication] {
                    QVector<SimulationDeviceConfiguration> devices;
                    for (const QString &id : qAsConst(m_order))
                        devices << m_devices.value(id);
                    communication->sendResponseSimulationDevices(devices);
                });
            connect(socket, &QTcpSocket::disconnected, this, [this, socket] { drop(socket); });
        }
    }

    void registerDevice(
        QTcpSocket *socket, const QString &id, const SimulationDeviceConfiguration &device)
    {
        if (m_stopping)
            return;
        Connection &connection = m_connections[socket];
        // A device registering again on its connection replaces its row.
        if (connection.ids.contains(device.id()))
            unregisterDevice(device.id());
        else
            connection.ids.append(device.id());
        m_table.registerSimulation(device);
        m_order.append(device.id());
        m_devices.insert(device.id(), device);
        m_states.insert(device.id(), ScenarioDataNone);
        SimulationServiceCommunication *communication = connection.communication.get();
        communication->sendAcceptSimulationDevice(
            id, SimulationServiceCommunication::createConfirmation(device));
        communication->sendLoadScenario(m_scenario);
        if (!m_deployment.isEmpty())
            communication->sendLoadDeployment(m_deployment);
        communication->sendStartScenario(
            ScenarioTimingHelper::currentTimeStamp(), m_clock.scenarioTime());
        tableChanged();
    }

    void unregisterDevice(const QString &id)
    {
        if (!m_states.remove(id))
            return;
        m_devices.remove(id);
        m_order.removeAll(id);
        m_table.unregisterSimulation(id);
        tableChanged();
        if (m_stopping && m_states.isEmpty()) {
            m_stopTimer.stop();
            Q_EMIT finished();
        }
    }

    void drop(QTcpSocket *socket)
    {
        auto it = m_connections.find(socket);
        if (it == m_connections.end())
            return;
        // Destroyed from the event loop: this runs inside the socket's own signal.
        Connection connection = std::move(it->second);
        m_connections.erase(it);
        connection.communication->setHeartBeatEnabled(false);
        connection.communication->setSocket(nullptr);
        connection.communication.release()->deleteLater();
        socket->deleteLater();
        for (const QString &id : connection.ids)
            unregisterDevice(id);
    }

    void tableChanged()
    {
        if (m_printTimer.isActive())
            return;
        const qint64 since = m_lastPrint.isValid() ? m_lastPrint.elapsed() : 1000;
        m_printTimer.start(int(std::max<qint64>(0, 1000 - since)));
    }

    void printTable()
    {
        m_lastPrint.start();
        const int columns = m_table.columnCount();
        QStringList header;
        for (int column = 0; column < columns; ++column)
            header << m_table.headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
        QList<QStringList> rows { header << QStringLiteral("Id") << QStringLiteral("State") };
        for (int row = 0; row < m_table.rowCount(); ++row) {
            QStringList cells;
            for (int column = 0; column < columns; ++column)
                cells << m_table.index(row, column).data().toString();
            const QString id = m_order.value(row);
            rows << (cells << id << stateName(m_states.value(id)));
        }
        QVector<int> widths(header.size(), 0);
        for (const QStringList &cells : rows) {
            for (int i = 0; i < cells.size(); ++i)
                widths[i] = std::max(widths[i], int(cells[i].size()));
        }
        printLine(QStringLiteral("devices: %1 at %2")
                      .arg(m_table.rowCount())
                      .arg(Units::Duration::toString(m_clock.scenarioTime())));
        for (const QStringList &cells : rows) {
            QString line;
            for (int i = 0; i < cells.size(); ++i)
                line += cells[i].leftJustified(widths[i] + 2);
            printLine(line.trimmed());
        }
    }

    static QString stateName(ScenarioDataState state)
    {
        switch (state) {
        case ScenarioDataNone:
            return QStringLiteral("None");
        case ScenarioDataLoading:
            return QStringLiteral("Loading");
        case ScenarioDataLoaded:
            return QStringLiteral("Loaded");
        case ScenarioDataError:
            return QStringLiteral("Error");
        }
        return QString::number(int(state));
    }

    QByteArray m_scenario;
    QByteArray m_deployment;
    QTcpServer m_server;
    std::map<QTcpSocket *, Connection> m_connections;
    SimulationsTableModel m_table;
    // The table's rows in order: the model keeps them, and shows no ids.
    QStringList m_order;
    QMap<QString, SimulationDeviceConfiguration> m_devices;
    QMap<QString, ScenarioDataState> m_states;
    ScenarioTimingHelper m_clock;
    QTimer m_printTimer;
    QElapsedTimer m_lastPrint;
    QTimer m_stopTimer;
    bool m_stopping = false;
};

// The deployment is read as a document and sent as its writer writes it, so that a file that is
// no deployment is refused before any device sees it.
bool readDeployment(const QString &path, QByteArray &bytes, QString &error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("%1: cannot be opened: %2").arg(path, file.errorString());
        return false;
    }
    DeploymentDataXml document;
    const bool read = document.fromXml(&file);
    if (read)
        bytes = document.toXml();
    releaseDeployment(document);
    if (!read) {
        error = QStringLiteral("%1: not a deployment: its root element is not "
                               "<SimulationDeployment>")
                    .arg(path);
    }
    return read;
}

} // namespace

int runServe(const QStringList &arguments)
{
    CommandLine commandLine(QStringLiteral("serve"), QStringLiteral("serve [SCENARIO] [options]"),
        QStringLiteral("Runs a simulation server. Devices that register are confirmed, sent the "
                       "scenario (and the deployment) and started at the server's scenario time, "
                       "which runs from the server's start. The table of devices is printed "
                       "whenever it changed, at most once a second. After --seconds, or on "
                       "SIGINT or SIGTERM, every device is told to stop, and the server ends once "
                       "they have left, or after 2 s."));
    QCommandLineParser &parser = commandLine.parser();
    commandLine.addScenarioArgument();
    parser.addOptions({
        { QStringLiteral("deployment"), QStringLiteral("A deployment document to send."),
            QStringLiteral("FILE") },
        { QStringLiteral("listen"), QStringLiteral("Address to listen on (default 127.0.0.1)."),
            QStringLiteral("ADDRESS") },
        { QStringLiteral("port"),
            QStringLiteral("Port to listen on (default: the configured server port, 57401 "
                           "unless configured; 0 takes a free one)."),
            QStringLiteral("N") },
        { QStringLiteral("seconds"), QStringLiteral("Stop after N seconds."), QStringLiteral("N") },
    });
    commandLine.addTraceOption();
    if (!commandLine.parse(arguments, 1))
        return commandLine.status();
    uint port = 0;
    uint seconds = 0;
    if (!commandLine.unsignedValue(QStringLiteral("port"), configuredServer().port, port)
        || !commandLine.unsignedValue(QStringLiteral("seconds"), 0, seconds)) {
        return commandLine.status();
    }
    if (port > 65535)
        return commandLine.fail(QStringLiteral("--port must lie from 0 to 65535"), ExitUsage);
    const QString listen = parser.isSet(QStringLiteral("listen"))
        ? parser.value(QStringLiteral("listen"))
        : QStringLiteral("127.0.0.1");
    const QHostAddress address(listen);
    if (address.isNull())
        return commandLine.fail(
            QStringLiteral("--listen wants an IP address, not '%1'").arg(listen), ExitUsage);
    commandLine.applyTraceOption();

    QByteArray deployment;
    if (parser.isSet(QStringLiteral("deployment"))) {
        QString error;
        if (!readDeployment(parser.value(QStringLiteral("deployment")), deployment, error))
            return commandLine.fail(error);
    }
    LoadedScenario scenario;
    if (!commandLine.loadScenario(scenario))
        return commandLine.status();

    SimulationServer server(scenario.file->document().toXml(), deployment);
    QString error;
    if (!server.listen(address, quint16(port), error)) {
        return commandLine.fail(
            QStringLiteral("cannot listen on %1:%2: %3").arg(listen).arg(port).arg(error));
    }
    printLine(QStringLiteral("listening on %1:%2").arg(address.toString()).arg(server.port()));

    TerminationSignals termination;
    QObject::connect(
        &termination, &TerminationSignals::terminationRequested, &server, &SimulationServer::stop);
    if (seconds > 0)
        QTimer::singleShot(std::chrono::seconds(seconds), &server, &SimulationServer::stop);
    QObject::connect(&server, &SimulationServer::finished, QCoreApplication::instance(),
        &QCoreApplication::quit, Qt::QueuedConnection);
    QCoreApplication::exec();
    server.flush();
    return ExitOk;
}

#include "servecommand.moc"
