#pragma once

#include <radiosim/radiosim_export.h>
#include <radiosim/service/simulationdevice.h>

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QVector>

class QTcpSocket;
class QTimer;
class XmlSeparator;

namespace Simulation {

class XmlElement;

// One end of the command connection: one XML document per message, root "Command", the
// message as its first child. Symmetric: a server and a device use the same class and connect
// different signals. Lives on one thread with an event loop, with its socket (not owned).
//
// Both ends must agree on the compression of the large payloads; nothing negotiates it.
// The library registers no meta-types for these signals: register the records before
// connecting them across threads.
class RADIOSIM_EXPORT SimulationServiceCommunication : public QObject
{
    Q_OBJECT

public:
    explicit SimulationServiceCommunication(QTcpSocket *pSocket = nullptr);
    ~SimulationServiceCommunication() override;

    // Null detaches the current separator. A second non-null socket leaves the earlier
    // separator alive and connected: pass null between two sockets. Stop the heart beat before
    // passing null, its time-out needs a socket.
    void setSocket(QTcpSocket *pSocket);
    QTcpSocket *socket() const;
    void setCompression(bool bCompression);
    // Probes every 30000 ms; a probe unanswered for 15000 ms disconnects the socket. Replies to
    // the peer's probes are sent whether or not this is on.
    void setHeartBeatEnabled(bool bEnabled);

    // Base64 of the SHA-1 of a salt and the record's identifying fields: 28 characters.
    static QString createConfirmation(const SimulationDeviceConfiguration &device);

Q_SIGNALS:
    void registerSimulationDevice(
        const QString &a_sId, const SimulationDeviceConfiguration &a_device);
    void simulationDeviceStateUpdate(const QString &a_sId, const SimulationDeviceState &a_state);
    void unregisterSimulationDevice(const QString &a_sId);
    void addJxDevice(const QString &a_sDeviceId, const QByteArray &a_jxDefinition);
    void removeJxDevice(const QString &a_sDeviceId);
    void acceptSimulationDevice(const QString &a_sId, const QString &a_sConfirmation);
    void loadScenario(const QByteArray &a_scenarioData);
    void unloadScenario();
    void loadDeployment(const QByteArray &a_deploymentData);
    // a_uiTimestamp in microseconds, a_uiScenarioTime in ms of scenario time.
    void startScenario(quint64 a_uiTimestamp, uint a_uiScenarioTime);
    void pauseScenario(uint a_uiScenarioTime);
    void stopScenario();
    void testModeOn(bool a_bOn);
    void responseSimulationDevices(const QVector<SimulationDeviceConfiguration> &a_devices);
    void commandAcquireServer();
    void commandReleaseServer();
    void commandRequestSimulationDevices();

public Q_SLOTS:
    void sendRegisterSimulationDevice(
        const QString &a_sId, const SimulationDeviceConfiguration &a_device);
    void sendSimulationDeviceStateUpdate(
        const QString &a_sId, const SimulationDeviceState &a_state);
    void sendUnregisterSimulationDevice(const QString &a_sId);
    void sendAddJxDevice(const QString &a_sDeviceId, const QByteArray &a_jxDefinition);
    void sendRemoveJxDevice(const QString &a_sDeviceId);
    void sendAcceptSimulationDevice(const QString &a_sId, const QString &a_sConfirmation);
    void sendLoadScenario(const QByteArray &a_scenarioData);
    void sendLoadDeployment(const QByteArray &a_deploymentData);
    void sendUnloadScenario();
    void sendStartScenario(quint64 a_uiTimestamp, uint a_uiScenarioTime);
    void sendPauseScenario(uint a_uiScenarioTime);
    void sendStopScenario();
    void sendTestModeOn(bool a_bOn);
    void sendResponseSimulationDevices(const QVector<SimulationDeviceConfiguration> &a_devices);
    void sendCommandAcquireServer();
    void sendCommandReleaseServer();
    void sendCommandRequestSimulationDevices();

private Q_SLOTS:
    void slotXmlReceived(const QByteArray &Xml);
    void slotErrorOccured(const QString &sErrorString);
    void slotSendHeartBeat();
    void slotHeartBeatTimedOut();

private:
    QString compressData(const QByteArray &data) const;
    QByteArray uncompressData(const QString &text) const;
    void sendCommand(const XmlElement &command);
    // A message with at most one attribute and one text child; empty names are left out.
    void sendMessage(const QString &sTag, const QString &sAttribute = QString(),
        const QString &sValue = QString(), const QString &sChild = QString(),
        const QString &sText = QString());
    void processCommand(XmlElement command);
    // Validates one message and emits its signal; false for an incomplete or unknown one.
    bool emitCommand(XmlElement &command, const QString &sTag);
    void heartBeatReceived();
    void heartBeatReplyReceived();
    void report(const QString &sText) const;
    void reportCommand(const QString &sTag) const;
    void reportIncompleteCommand(const QString &sTag) const;

    QTcpSocket *m_pSocket = nullptr;
    XmlSeparator *m_pXmlSeparator = nullptr;
    bool m_bCompression = true;
    QTimer *m_pHeartBeatTimer = nullptr;
    QTimer *m_pHeartBeatTimeoutTimer = nullptr;
};

} // namespace Simulation
