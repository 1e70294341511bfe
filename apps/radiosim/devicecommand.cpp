#include "commandline.h"
#include "commands.h"
#include "defaultdata.h"
#include "terminationsignals.h"

#include <radiosim/platform/cfgcenter.h>
#include <radiosim/service/simulationservicecommunication.h>
#include <radiosim/service/tcpserverconnector.h>
#include <radiosim/units/units.h>

#include <QCoreApplication>
#include <QHostInfo>
#include <QTcpSocket>
#include <QTimer>

#include <unistd.h>

using namespace Simulation;

namespace {

// Bursts are computed in windows of this length, one window ahead of the clock.
constexpr uint Window = 100;
constexpr double Resolution = 10000.0;

// A simulation device: registers with the server through a connector that waits for it and
// reconnects, checks the confirmation, loads what it is sent and runs the scenario clock.
class SimulationDevice : public QObject
{
    Q_OBJECT
public:
    SimulationDevice(const QString &host, quint16 port, const SimulationDeviceConfiguration &record,
        ISignalPackageProvider *provider)
        : m_connector(host, port)
        , m_record(record)
        , m_provider(provider)
    {
        m_communication.setCompression(true);
        connect(&m_connector, &TcpServerConnector::connectedToServer, this,
            &SimulationDevice::connected);
        connect(&m_connector, &TcpServerConnector::disconnectedFromServer, this,
            &SimulationDevice::disconnected);
        connect(&m_communication, &SimulationServiceCommunication::acceptSimulationDevice, this,
            &SimulationDevice::accepted);
        connect(&m_communication, &SimulationServiceCommunication::loadScenario, this,
            &SimulationDevice::load);
        connect(&m_communication, &SimulationServiceCommunication::unloadScenario, this, [this] {
            m_scenario.reset();
            m_clock.stopScenarioTime();
            report(ScenarioDataNone);
            printLine(QStringLiteral("unloaded"));
        });
        connect(&m_communication, &SimulationServiceCommunication::loadDeployment, this,
            [](const QByteArray &deployment) {
                printLine(QStringLiteral("deployment of %1 bytes received").arg(deployment.size()));
            });
        connect(&m_communication, &SimulationServiceCommunication::startScenario, this,
            &SimulationDevice::startScenario);
        connect(&m_communication, &SimulationServiceCommunication::pauseScenario, this,
            [this](uint time) {
                m_clock.pauseScenarioTime(time);
                printLine(QStringLiteral("paused at %1").arg(Units::Duration::toString(time)));
            });
        connect(&m_communication, &SimulationServiceCommunication::stopScenario, this, [this] {
            m_clock.stopScenarioTime();
            printLine(QStringLiteral("stopped"));
        });
        m_tick.setInterval(20);
        connect(&m_tick, &QTimer::timeout, this, &SimulationDevice::computeAhead);
        m_status.setInterval(1000);
        connect(&m_status, &QTimer::timeout, this, &SimulationDevice::printStatus);
    }

    void start() { m_connector.connectToServer(); }
    bool wasConnected() const { return m_wasConnected; }

    // Leaves the server: unregisters and waits for the bytes to leave.
    void leave()
    {
        disconnect(&m_connector, nullptr, this, nullptr);
        QTcpSocket *socket = m_connector.socket();
        if (!m_connector.isConnected())
            return;
        m_communication.sendUnregisterSimulationDevice(m_record.id());
        while (socket->bytesToWrite() > 0 && socket->waitForBytesWritten(2000)) { }
        printLine(QStringLiteral("unregistered"));
    }

Q_SIGNALS:
    void rejected();

private:
    void connected()
    {
        m_wasConnected = true;
        m_accepted = false;
        m_communication.setSocket(m_connector.socket());
        printLine(QStringLiteral("connected, registering as %1").arg(m_record.id()));
        m_communication.sendRegisterSimulationDevice(m_record.id(), m_record);
    }

    void disconnected()
    {
        m_communication.setSocket(nullptr);
        m_accepted = false;
        printLine(QStringLiteral("connection lost, reconnecting"));
    }

    void accepted(const QString &id, const QString &confirmation)
    {
        if (confirmation != SimulationServiceCommunication::createConfirmation(m_record)) {
            // Nothing the server sends after this is taken, and no reconnection follows.
            disconnect(&m_communication, nullptr, this, nullptr);
            disconnect(&m_connector, nullptr, this, nullptr);
            m_communication.setSocket(nullptr);
            m_connector.socket()->abort();
            Q_EMIT rejected();
            return;
        }
        m_accepted = true;
        printLine(QStringLiteral("accepted as %1").arg(id));
    }

    void load(const QByteArray &xml)
    {
        if (!m_accepted)
            return;
        report(ScenarioDataLoading);
        m_clock.stopScenarioTime();
        m_scenario = std::make_unique<ScenarioFile>(m_provider);
        QString error;
        if (!m_scenario->load(xml, error)) {
            m_scenario.reset();
            report(ScenarioDataError);
            printLine(QStringLiteral("load failed: %1").arg(error));
            return;
        }
        m_scenario->check();
        report(ScenarioDataLoaded);
        printLine(QStringLiteral("loaded %1: %2 emitters")
                      .arg(m_scenario->document().getName())
                      .arg(m_scenario->emitters().size()));
    }

    void startScenario(quint64 timestamp, uint time)
    {
        if (!m_accepted)
            return;
        m_clock.startScenarioTime(timestamp, time);
        m_computedUntil = time - time % Window;
        m_tick.start();
        m_status.start();
        printLine(QStringLiteral("started at %1").arg(Units::Duration::toString(time)));
    }

    void report(ScenarioDataState value)
    {
        SimulationDeviceState state;
        state.setScenarioDataState(value);
        m_communication.sendSimulationDeviceStateUpdate(m_record.id(), state);
    }

    // Every window up to one ahead of the clock, each computed once.
    void computeAhead()
    {
        if (!m_scenario || m_clock.isPaused())
            return;
        const uint now = m_clock.scenarioTime();
        while (m_computedUntil <= now + Window) {
            int onAir = 0;
            for (const std::shared_ptr<SzenarioEmitter> &emitter : m_scenario->emitters()) {
                const QList<HRActivity> bursts
                    = emitter->calculateBursts(m_computedUntil, Window, Resolution);
                m_records += quint64(bursts.size());
                onAir += bursts.isEmpty() ? 0 : 1;
            }
            if (m_computedUntil <= now)
                m_onAir = onAir;
            m_computedUntil += Window;
        }
    }

    void printStatus()
    {
        if (!m_scenario || m_clock.isPaused())
            return;
        printLine(QStringLiteral("scenario %1  on air %2  records %3")
                      .arg(Units::Duration::toString(m_clock.scenarioTime()))
                      .arg(m_onAir)
                      .arg(m_records));
    }

    TcpServerConnector m_connector;
    SimulationServiceCommunication m_communication;
    SimulationDeviceConfiguration m_record;
    ISignalPackageProvider *m_provider;
    std::unique_ptr<ScenarioFile> m_scenario;
    ScenarioTimingHelper m_clock;
    QTimer m_tick;
    QTimer m_status;
    uint m_computedUntil = 0;
    int m_onAir = 0;
    quint64 m_records = 0;
    bool m_accepted = false;
    bool m_wasConnected = false;
};

} // namespace

int runDevice(const QStringList &arguments)
{
    CommandLine commandLine(QStringLiteral("device"), QStringLiteral("device [options]"),
        QStringLiteral("Runs a simulation device. It waits for the server, registers, checks the "
                       "server's confirmation (exit status 3 when it is wrong), loads the "
                       "scenario it is sent, and while the scenario runs computes the bursts of "
                       "every emitter ahead of the clock, with a status line a second. It "
                       "reconnects and registers again after a lost connection. After "
                       "--seconds, or on SIGINT or SIGTERM, it unregisters and ends."));
    QCommandLineParser &parser = commandLine.parser();
    parser.addOptions({
        { QStringLiteral("server"),
            QStringLiteral("The server (default: the configured address and server port)."),
            QStringLiteral("HOST:PORT") },
        { QStringLiteral("id"), QStringLiteral("The device's id (default radiosim-PID)."),
            QStringLiteral("ID") },
        { QStringLiteral("name"), QStringLiteral("The device's name (default: its id)."),
            QStringLiteral("NAME") },
        { QStringLiteral("position"),
            QStringLiteral("Where the device stands, decimal degrees (default 0,0)."),
            QStringLiteral("LON,LAT") },
        { QStringLiteral("seconds"), QStringLiteral("Leave after N seconds."),
            QStringLiteral("N") },
    });
    commandLine.addTraceOption();
    if (!commandLine.parse(arguments, 0))
        return commandLine.status();
    uint seconds = 0;
    if (!commandLine.unsignedValue(QStringLiteral("seconds"), 0, seconds))
        return commandLine.status();

    const ServerAddress configured = configuredServer();
    QString host = configured.host;
    uint port = configured.port;
    if (parser.isSet(QStringLiteral("server"))) {
        const QString server = parser.value(QStringLiteral("server"));
        bool ok = false;
        host = server.section(QLatin1Char(':'), 0, -2);
        port = server.section(QLatin1Char(':'), -1).toUInt(&ok);
        if (!ok || host.isEmpty() || port == 0 || port > 65535) {
            return commandLine.fail(
                QStringLiteral("--server wants HOST:PORT, not '%1'").arg(server), ExitUsage);
        }
    }
    double longitude = 0.0;
    double latitude = 0.0;
    if (parser.isSet(QStringLiteral("position"))) {
        const QStringList parts = parser.value(QStringLiteral("position")).split(QLatin1Char(','));
        bool lonOk = false;
        bool latOk = false;
        if (parts.size() == 2) {
            longitude = parts[0].toDouble(&lonOk);
            latitude = parts[1].toDouble(&latOk);
        }
        if (!lonOk || !latOk || std::abs(longitude) > 180.0 || std::abs(latitude) > 90.0) {
            return commandLine.fail(QStringLiteral("--position wants LON,LAT in decimal degrees, "
                                                   "not '%1'")
                                        .arg(parser.value(QStringLiteral("position"))),
                ExitUsage);
        }
    }
    commandLine.applyTraceOption();

    SimulationDeviceConfiguration record;
    const QString id = parser.isSet(QStringLiteral("id"))
        ? parser.value(QStringLiteral("id"))
        : QStringLiteral("radiosim-%1").arg(::getpid());
    record.setId(id);
    record.setName(
        parser.isSet(QStringLiteral("name")) ? parser.value(QStringLiteral("name")) : id);
    record.setStationId(QString(""));
    record.setStationName(QString(""));
    record.setMachine(QHostInfo::localHostName());
    record.setMachineId(CfgCenter::GetMachineId());
    record.setDeviceType(QStringLiteral("radiosim"));
    record.setPositionLongitude(longitude);
    record.setPositionLatitude(latitude);

    DefaultLibrary library;
    QString error;
    if (!library.prepare(error))
        return commandLine.fail(error);
    SimulationDevice device(host, quint16(port), record, library.cache());
    int status = ExitOk;
    QObject::connect(&device, &SimulationDevice::rejected, [&] {
        status = commandLine.fail(
            QStringLiteral("the server's confirmation does not belong to this device's record; "
                           "nothing was loaded"),
            ExitRejected);
        QCoreApplication::quit();
    });
    TerminationSignals termination;
    QObject::connect(&termination, &TerminationSignals::terminationRequested,
        QCoreApplication::instance(), &QCoreApplication::quit);
    if (seconds > 0)
        QTimer::singleShot(
            std::chrono::seconds(seconds), QCoreApplication::instance(), &QCoreApplication::quit);
    device.start();
    QCoreApplication::exec();
    if (status != ExitOk)
        return status;
    if (!device.wasConnected()) {
        return commandLine.fail(
            QStringLiteral("no server at %1:%2 within %3 s").arg(host).arg(port).arg(seconds));
    }
    device.leave();
    return ExitOk;
}

#include "devicecommand.moc"
