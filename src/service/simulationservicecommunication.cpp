#include "simulationservicecommunication.h"

#include "compression_p.h"
#include "servicetrace_p.h"
#include "xmlelement.h"
#include "xmlseparator_p.h"

#include <QCryptographicHash>
#include <QHash>
#include <QStringList>
#include <QTcpSocket>
#include <QTimer>

namespace Simulation {

namespace {

const QString CommandTag = QStringLiteral("Command");
const QString RegisterSimulationTag = QStringLiteral("RegisterSimulation");
const QString UnregisterSimulationTag = QStringLiteral("UnregisterSimulation");
const QString LoadScenarioTag = QStringLiteral("LoadScenario");
const QString LoadDeploymentTag = QStringLiteral("LoadDeployment");
const QString UnloadScenarioTag = QStringLiteral("UnloadScenario");
const QString StartScenarioTag = QStringLiteral("StartScenario");
const QString PauseScenarioTag = QStringLiteral("PauseScenario");
const QString StopScenarioTag = QStringLiteral("StopScenario");
const QString AcquireServerTag = QStringLiteral("AcquireServer");
const QString ReleaseServerTag = QStringLiteral("ReleaseServer");
const QString AddJxDeviceTag = QStringLiteral("AddJxDevice");
const QString RemoveJxDeviceTag = QStringLiteral("RemoveJxDevice");
const QString StateUpdateTag = QStringLiteral("SimulationDeveiceStateUpdate");
const QString TestModeTag = QStringLiteral("TestMode");
const QString AcceptSimulationDeviceTag = QStringLiteral("AcceptSimulationDevice");
const QString RequestSimulationDevicesTag = QStringLiteral("RequestSimulationDevices");
const QString ResponseSimulationDevicesTag = QStringLiteral("ResponseSimulationDevices");
const QString HeartBeatTag = QStringLiteral("HeartBeat");
const QString HeartBeatReplyTag = QStringLiteral("HeartBeatReply");

const QString IdAttribute = QStringLiteral("Id");
const QString DeviceIdAttribute = QStringLiteral("DeviceId");
const QString SimulationDeviceTag = QStringLiteral("SimulationDevice");
const QString ScenarioDataTag = QStringLiteral("ScenarioData");
const QString DeploymentDataTag = QStringLiteral("DeploymentData");
const QString TimestampTag = QStringLiteral("Timestamp");
const QString ScenarioTimeTag = QStringLiteral("ScenarioTime");
const QString JxDeviceDescriptorTag = QStringLiteral("JxDeviceDescriptor");
const QString StateTag = QStringLiteral("State");
const QString OnTag = QStringLiteral("On");
const QString ConfirmationTag = QStringLiteral("Confirmation");
const QString DeviceTag = QStringLiteral("Device");
const QString DataTag = QStringLiteral("Data");

const QString ConfirmationSalt = QStringLiteral("204815036172;7341;62904;81526;47713");

constexpr int HeartBeatInterval = 30000;
constexpr int HeartBeatTimeout = 15000;

} // namespace

SimulationServiceCommunication::SimulationServiceCommunication(QTcpSocket *pSocket)
    : QObject(nullptr)
    , m_pHeartBeatTimer(new QTimer(this))
    , m_pHeartBeatTimeoutTimer(new QTimer(this))
{
    m_pHeartBeatTimer->setObjectName(QStringLiteral("heartBeatTimer"));
    m_pHeartBeatTimer->setInterval(HeartBeatInterval);
    connect(m_pHeartBeatTimer, &QTimer::timeout, this,
        &SimulationServiceCommunication::slotSendHeartBeat);
    m_pHeartBeatTimeoutTimer->setObjectName(QStringLiteral("heartBeatTimeoutTimer"));
    m_pHeartBeatTimeoutTimer->setInterval(HeartBeatTimeout);
    m_pHeartBeatTimeoutTimer->setSingleShot(true);
    connect(m_pHeartBeatTimeoutTimer, &QTimer::timeout, this,
        &SimulationServiceCommunication::slotHeartBeatTimedOut);
    if (pSocket)
        setSocket(pSocket);
}

SimulationServiceCommunication::~SimulationServiceCommunication()
{
    setSocket(nullptr);
}

void SimulationServiceCommunication::setSocket(QTcpSocket *pSocket)
{
    if (pSocket) {
        m_pXmlSeparator = new XmlSeparator(pSocket, this);
        connect(m_pXmlSeparator, &XmlSeparator::xmlReceived, this,
            &SimulationServiceCommunication::slotXmlReceived);
        connect(m_pXmlSeparator, &XmlSeparator::errorOccured, this,
            &SimulationServiceCommunication::slotErrorOccured);
    } else if (m_pXmlSeparator) {
        m_pXmlSeparator->disconnect();
        m_pXmlSeparator->deleteLater();
        m_pXmlSeparator = nullptr;
    }
    m_pSocket = pSocket;
}

QTcpSocket *SimulationServiceCommunication::socket() const
{
    return m_pSocket;
}

void SimulationServiceCommunication::setCompression(bool bCompression)
{
    m_bCompression = bCompression;
}

void SimulationServiceCommunication::setHeartBeatEnabled(bool bEnabled)
{
    if (bEnabled) {
        m_pHeartBeatTimer->start();
    } else {
        m_pHeartBeatTimer->stop();
        m_pHeartBeatTimeoutTimer->stop();
    }
}

QString SimulationServiceCommunication::createConfirmation(
    const SimulationDeviceConfiguration &device)
{
    const QStringList parts { ConfirmationSalt, device.id(), device.machine(), device.machineId(),
        device.deviceType() };
    const QByteArray hash
        = QCryptographicHash::hash(parts.join(QLatin1Char(';')).toUtf8(), QCryptographicHash::Sha1);
    return QString::fromLatin1(hash.toBase64());
}

void SimulationServiceCommunication::sendRegisterSimulationDevice(
    const QString &a_sId, const SimulationDeviceConfiguration &a_device)
{
    sendMessage(RegisterSimulationTag, IdAttribute, a_sId, SimulationDeviceTag,
        QString::fromUtf8(a_device.toXml(QByteArray())));
}

void SimulationServiceCommunication::sendSimulationDeviceStateUpdate(
    const QString &a_sId, const SimulationDeviceState &a_state)
{
    sendMessage(StateUpdateTag, IdAttribute, a_sId, StateTag,
        QString::fromUtf8(a_state.toXml(QByteArray())));
}

void SimulationServiceCommunication::sendUnregisterSimulationDevice(const QString &a_sId)
{
    sendMessage(UnregisterSimulationTag, IdAttribute, a_sId);
}

void SimulationServiceCommunication::sendAddJxDevice(
    const QString &a_sDeviceId, const QByteArray &a_jxDefinition)
{
    sendMessage(AddJxDeviceTag, DeviceIdAttribute, a_sDeviceId, JxDeviceDescriptorTag,
        compressData(a_jxDefinition));
}

void SimulationServiceCommunication::sendRemoveJxDevice(const QString &a_sDeviceId)
{
    sendMessage(RemoveJxDeviceTag, DeviceIdAttribute, a_sDeviceId);
}

void SimulationServiceCommunication::sendAcceptSimulationDevice(
    const QString &a_sId, const QString &a_sConfirmation)
{
    sendMessage(AcceptSimulationDeviceTag, IdAttribute, a_sId, ConfirmationTag, a_sConfirmation);
}

void SimulationServiceCommunication::sendLoadScenario(const QByteArray &a_scenarioData)
{
    sendMessage(
        LoadScenarioTag, QString(), QString(), ScenarioDataTag, compressData(a_scenarioData));
}

void SimulationServiceCommunication::sendLoadDeployment(const QByteArray &a_deploymentData)
{
    sendMessage(
        LoadDeploymentTag, QString(), QString(), DeploymentDataTag, compressData(a_deploymentData));
}

void SimulationServiceCommunication::sendUnloadScenario()
{
    sendMessage(UnloadScenarioTag);
}

void SimulationServiceCommunication::sendStartScenario(quint64 a_uiTimestamp, uint a_uiScenarioTime)
{
    XmlElement message(StartScenarioTag);
    message.setChildText(TimestampTag, a_uiTimestamp);
    message.setChildText(ScenarioTimeTag, a_uiScenarioTime);
    sendCommand(message);
}

void SimulationServiceCommunication::sendPauseScenario(uint a_uiScenarioTime)
{
    sendMessage(PauseScenarioTag, QString(), QString(), ScenarioTimeTag,
        QString::number(a_uiScenarioTime, 10));
}

void SimulationServiceCommunication::sendStopScenario()
{
    sendMessage(StopScenarioTag);
}

void SimulationServiceCommunication::sendTestModeOn(bool a_bOn)
{
    sendMessage(TestModeTag, QString(), QString(), OnTag,
        a_bOn ? QStringLiteral("true") : QStringLiteral("false"));
}

void SimulationServiceCommunication::sendResponseSimulationDevices(
    const QVector<SimulationDeviceConfiguration> &a_devices)
{
    XmlElement message(ResponseSimulationDevicesTag);
    for (int i = 0; i < a_devices.size(); ++i) {
        XmlElement device(DeviceTag, i);
        device.setChildText(DataTag, QString::fromUtf8(a_devices.at(i).toXml(QByteArray())));
        message.appendElement(device);
    }
    sendCommand(message);
}

void SimulationServiceCommunication::sendCommandAcquireServer()
{
    sendMessage(AcquireServerTag);
}

void SimulationServiceCommunication::sendCommandReleaseServer()
{
    sendMessage(ReleaseServerTag);
}

void SimulationServiceCommunication::sendCommandRequestSimulationDevices()
{
    sendMessage(RequestSimulationDevicesTag);
}

void SimulationServiceCommunication::slotXmlReceived(const QByteArray &Xml)
{
    const XmlElement root = XmlElement::fromByteArray(Xml);
    if (root.tagName() != CommandTag) {
        report(QStringLiteral("Invalid xml: ") + root.tagName());
        return;
    }
    processCommand(root.child(QStringLiteral(""), -1));
}

void SimulationServiceCommunication::slotErrorOccured(const QString &sErrorString)
{
    report(sErrorString);
}

void SimulationServiceCommunication::slotSendHeartBeat()
{
    if (m_pHeartBeatTimeoutTimer->isActive())
        return;
    sendMessage(HeartBeatTag);
    m_pHeartBeatTimeoutTimer->start();
}

void SimulationServiceCommunication::slotHeartBeatTimedOut()
{
    SERVICE_TRACE(
        ErrorHandler::TraceConnection, QStringLiteral("Heart beat timed out => disconnecting"));
    if (m_pSocket)
        m_pSocket->disconnectFromHost();
}

// Packed payloads: qCompress and Base64 when compressing; otherwise UTF-8 out and Latin-1 in,
// an asymmetric pair that only leaves plain ASCII intact. Peers depend on both forms.
QString SimulationServiceCommunication::compressData(const QByteArray &data) const
{
    if (m_bCompression)
        return QString::fromLatin1(qCompress(data, -1).toBase64());
    return QString::fromUtf8(data);
}

QByteArray SimulationServiceCommunication::uncompressData(const QString &text) const
{
    if (m_bCompression)
        return uncompressOrEmpty(
            QByteArray::fromBase64(text.toLatin1()), XmlSeparator::MaxDocumentSize);
    return text.toLatin1();
}

void SimulationServiceCommunication::sendCommand(const XmlElement &command)
{
    if (!m_pXmlSeparator)
        return;
    XmlElement root(CommandTag);
    root.appendElement(command);
    m_pXmlSeparator->sendXml(root.toByteArray());
}

void SimulationServiceCommunication::sendMessage(const QString &sTag, const QString &sAttribute,
    const QString &sValue, const QString &sChild, const QString &sText)
{
    XmlElement message(sTag);
    if (!sAttribute.isEmpty())
        message.setAttribute(sAttribute, sValue);
    if (!sChild.isEmpty())
        message.setChildText(sChild, sText);
    sendCommand(message);
}

void SimulationServiceCommunication::processCommand(XmlElement command)
{
    const QString tag = command.tagName();
    if (emitCommand(command, tag))
        reportCommand(tag);
    else
        reportIncompleteCommand(tag);
}

bool SimulationServiceCommunication::emitCommand(XmlElement &command, const QString &sTag)
{
    if (sTag == RegisterSimulationTag) {
        SimulationDeviceConfiguration device;
        if (!command.hasChildRemembered(SimulationDeviceTag)
            || !device.fromXml(command.text().toUtf8()))
            return false;
        Q_EMIT registerSimulationDevice(command.attribute(IdAttribute), device);
    } else if (sTag == UnregisterSimulationTag) {
        Q_EMIT unregisterSimulationDevice(command.attribute(IdAttribute));
    } else if (sTag == LoadScenarioTag) {
        if (!command.hasChildRemembered(ScenarioDataTag))
            return false;
        Q_EMIT loadScenario(uncompressData(command.text()));
    } else if (sTag == LoadDeploymentTag) {
        if (!command.hasChildRemembered(DeploymentDataTag))
            return false;
        Q_EMIT loadDeployment(uncompressData(command.text()));
    } else if (sTag == UnloadScenarioTag) {
        Q_EMIT unloadScenario();
    } else if (sTag == StartScenarioTag) {
        if (!command.hasUInt64Child(TimestampTag) || !command.hasUIntChild(ScenarioTimeTag))
            return false;
        Q_EMIT startScenario(command.uint64Child(TimestampTag), command.uintChild(ScenarioTimeTag));
    } else if (sTag == PauseScenarioTag) {
        if (!command.hasUIntChildRemembered(ScenarioTimeTag))
            return false;
        Q_EMIT pauseScenario(command.uintChild());
    } else if (sTag == StopScenarioTag) {
        Q_EMIT stopScenario();
    } else if (sTag == AcquireServerTag) {
        Q_EMIT commandAcquireServer();
    } else if (sTag == ReleaseServerTag) {
        Q_EMIT commandReleaseServer();
    } else if (sTag == AddJxDeviceTag) {
        if (!command.hasAttribute(DeviceIdAttribute)
            || !command.hasChildRemembered(JxDeviceDescriptorTag))
            return false;
        Q_EMIT addJxDevice(command.attribute(DeviceIdAttribute), uncompressData(command.text()));
    } else if (sTag == RemoveJxDeviceTag) {
        if (!command.hasAttributeRemembered(DeviceIdAttribute))
            return false;
        Q_EMIT removeJxDevice(command.attribute());
    } else if (sTag == StateUpdateTag) {
        SimulationDeviceState state;
        if (!command.hasChildRemembered(StateTag) || !state.fromXml(command.text().toUtf8()))
            return false;
        Q_EMIT simulationDeviceStateUpdate(command.attribute(IdAttribute), state);
    } else if (sTag == TestModeTag) {
        if (!command.hasBoolChildRemembered(OnTag))
            return false;
        Q_EMIT testModeOn(command.boolChild());
    } else if (sTag == AcceptSimulationDeviceTag) {
        if (!command.hasChildRemembered(ConfirmationTag))
            return false;
        Q_EMIT acceptSimulationDevice(command.attribute(IdAttribute), command.text());
    } else if (sTag == RequestSimulationDevicesTag) {
        Q_EMIT commandRequestSimulationDevices();
    } else if (sTag == ResponseSimulationDevicesTag) {
        // A damaged record is kept with the fields it has; the first missing index ends the list.
        // The first child of each name counts, wherever it stands: they are gathered in one
        // pass, since a search per index grows with the square of a long list.
        QHash<QString, XmlElement> entries;
        for (const XmlElement &entry : command.children(QString())) {
            if (!entries.contains(entry.tagName()))
                entries.insert(entry.tagName(), entry);
        }
        QVector<SimulationDeviceConfiguration> devices;
        for (int i = 0;; ++i) {
            const XmlElement entry = entries.value(DeviceTag + QString::number(i, 10));
            if (!entry.isValid())
                break;
            SimulationDeviceConfiguration device;
            device.fromXml(entry.text(DataTag).toUtf8());
            devices.append(device);
        }
        Q_EMIT responseSimulationDevices(devices);
    } else if (sTag == HeartBeatTag) {
        heartBeatReceived();
    } else if (sTag == HeartBeatReplyTag) {
        heartBeatReplyReceived();
    } else {
        return false;
    }
    return true;
}

void SimulationServiceCommunication::heartBeatReceived()
{
    sendMessage(HeartBeatReplyTag);
}

void SimulationServiceCommunication::heartBeatReplyReceived()
{
    m_pHeartBeatTimeoutTimer->stop();
}

void SimulationServiceCommunication::report(const QString &sText) const
{
    SERVICE_TRACE(ErrorHandler::TraceCommands, sText);
}

void SimulationServiceCommunication::reportCommand(const QString &sTag) const
{
    SERVICE_TRACE(ErrorHandler::TraceCommands, QStringLiteral("Processed Command/Update: ") + sTag);
}

void SimulationServiceCommunication::reportIncompleteCommand(const QString &sTag) const
{
    SERVICE_TRACE(ErrorHandler::TraceConnection,
        QStringLiteral("Invalid or incomplete command/update: ") + sTag);
}

} // namespace Simulation
