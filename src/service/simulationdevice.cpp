#include "simulationdevice.h"

#include "xmlelement.h"

namespace Simulation {

namespace {

const QString ConfigurationTag = QStringLiteral("Simulation::SimulationDeviceConfiguration");
const QString StateTag = QStringLiteral("Simulation::SimulationDeviceState");
const QString IdTag = QStringLiteral("Id");
const QString NameTag = QStringLiteral("Name");
const QString StationIdTag = QStringLiteral("StationId");
const QString StationNameTag = QStringLiteral("StationName");
const QString MachineTag = QStringLiteral("Machine");
const QString MachineIdTag = QStringLiteral("MachineId");
const QString DeviceTypeTag = QStringLiteral("DeviceType");
const QString PositionLongitudeTag = QStringLiteral("PositionLongitude");
const QString PositionLatitudeTag = QStringLiteral("PositionLatitude");
const QString ScenarioDataStateTag = QStringLiteral("ScenarioDataState");

XmlElement rootFor(const QString &tag, const QByteArray &base)
{
    return base.isNull() ? XmlElement(tag) : XmlElement::fromByteArray(base);
}

bool readText(XmlElement &root, const QString &tag, QString &field)
{
    if (!root.hasChildRemembered(tag))
        return false;
    field = root.text();
    return true;
}

bool readDouble(XmlElement &root, const QString &tag, double &field)
{
    if (!root.hasDoubleChildRemembered(tag))
        return false;
    field = root.doubleChild();
    return true;
}

} // namespace

QString SimulationDeviceConfiguration::id() const
{
    return m_sId;
}

void SimulationDeviceConfiguration::setId(const QString &sId)
{
    m_sId = sId;
}

QString SimulationDeviceConfiguration::name() const
{
    return m_sName;
}

void SimulationDeviceConfiguration::setName(const QString &sName)
{
    m_sName = sName;
}

QString SimulationDeviceConfiguration::deviceType() const
{
    return m_sDeviceType;
}

void SimulationDeviceConfiguration::setDeviceType(const QString &sDeviceType)
{
    m_sDeviceType = sDeviceType;
}

QString SimulationDeviceConfiguration::stationId() const
{
    return m_sStationId;
}

void SimulationDeviceConfiguration::setStationId(const QString &sStationId)
{
    m_sStationId = sStationId;
}

QString SimulationDeviceConfiguration::stationName() const
{
    return m_sStationName;
}

void SimulationDeviceConfiguration::setStationName(const QString &sStationName)
{
    m_sStationName = sStationName;
}

QString SimulationDeviceConfiguration::machine() const
{
    return m_sMachine;
}

void SimulationDeviceConfiguration::setMachine(const QString &sMachine)
{
    m_sMachine = sMachine;
}

QString SimulationDeviceConfiguration::machineId() const
{
    return m_sMachineId;
}

void SimulationDeviceConfiguration::setMachineId(const QString &sMachineId)
{
    m_sMachineId = sMachineId;
}

double SimulationDeviceConfiguration::positionLongitude() const
{
    return m_dPositionLongitude;
}

void SimulationDeviceConfiguration::setPositionLongitude(double dLongitude)
{
    m_dPositionLongitude = dLongitude;
}

double SimulationDeviceConfiguration::positionLatitude() const
{
    return m_dPositionLatitude;
}

void SimulationDeviceConfiguration::setPositionLatitude(double dLatitude)
{
    m_dPositionLatitude = dLatitude;
}

QByteArray SimulationDeviceConfiguration::toXml(const QByteArray &base) const
{
    XmlElement root = rootFor(ConfigurationTag, base);
    root.setChildText(IdTag, m_sId);
    root.setChildText(NameTag, m_sName);
    root.setChildText(StationIdTag, m_sStationId);
    root.setChildText(StationNameTag, m_sStationName);
    root.setChildText(MachineTag, m_sMachine);
    root.setChildText(MachineIdTag, m_sMachineId);
    root.setChildText(DeviceTypeTag, m_sDeviceType);
    root.setChildText(PositionLongitudeTag, m_dPositionLongitude);
    root.setChildText(PositionLatitudeTag, m_dPositionLatitude);
    return root.toByteArray();
}

bool SimulationDeviceConfiguration::fromXml(const QByteArray &xml)
{
    XmlElement root = XmlElement::fromByteArray(xml);
    bool complete = readText(root, IdTag, m_sId);
    complete &= readText(root, NameTag, m_sName);
    complete &= readText(root, StationIdTag, m_sStationId);
    complete &= readText(root, StationNameTag, m_sStationName);
    complete &= readText(root, MachineTag, m_sMachine);
    complete &= readText(root, MachineIdTag, m_sMachineId);
    complete &= readText(root, DeviceTypeTag, m_sDeviceType);
    complete &= readDouble(root, PositionLongitudeTag, m_dPositionLongitude);
    complete &= readDouble(root, PositionLatitudeTag, m_dPositionLatitude);
    return complete;
}

ScenarioDataState SimulationDeviceState::scenarioDataState() const
{
    return m_scenarioDataState;
}

void SimulationDeviceState::setScenarioDataState(ScenarioDataState state)
{
    m_scenarioDataState = state;
}

QByteArray SimulationDeviceState::toXml(const QByteArray &base) const
{
    XmlElement root = rootFor(StateTag, base);
    root.setChildText(ScenarioDataStateTag, int(m_scenarioDataState));
    return root.toByteArray();
}

bool SimulationDeviceState::fromXml(const QByteArray &xml)
{
    XmlElement root = XmlElement::fromByteArray(xml);
    if (!root.hasIntChildRemembered(ScenarioDataStateTag))
        return false;
    m_scenarioDataState = static_cast<ScenarioDataState>(root.intChild());
    return true;
}

} // namespace Simulation
