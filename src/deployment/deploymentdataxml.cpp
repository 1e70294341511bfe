#include "deploymentdataxml.h"

#include <radiosim/deployment/deploymentcast.h>
#include <radiosim/documents/commondataxml.h>
#include <radiosim/platform/cfgcenter.h>

#include <radiosim/documents/documentnumbers_p.h>
#include <radiosim/documents/documenttags_p.h>

#include <QBuffer>
#include <QDateTime>
#include <QFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace Simulation {

namespace {

const QString rootTag = QStringLiteral("SimulationDeployment");
const QString persistantIdAttribute = QStringLiteral("PersistantId");
const QString deviceTag = QStringLiteral("Device");
const QString stationTag = QStringLiteral("Station");
const QString iconIdTag = QStringLiteral("IconId");
const QString machineTag = QStringLiteral("Machine");
const QString configuredStationIdTag = QStringLiteral("ConfiguredStationID");
const QString deviceTypeTag = QStringLiteral("DeviceType");
const QString receiverSettingsTag = QStringLiteral("ReceiverSettings");
const QString antennaHeightTag = QStringLiteral("AntennaHeight");
const QString antennaGainTag = QStringLiteral("AntennaGain");
const QString longitudeTag = QStringLiteral("Longitude");
const QString latitudeTag = QStringLiteral("Latitude");
const QString writtenVersion = QStringLiteral("1");

QString number(double value)
{
    return QString::number(value, 'g', 6);
}

} // namespace

DeploymentDataXml::DeploymentDataXml() = default;

void DeploymentDataXml::setDevices(const QSet<std::shared_ptr<DeploymentDevice>> &devices)
{
    m_devices.clear();
    for (const auto &device : devices) {
        if (device)
            m_devices.insert(device->id(), device);
    }
}

void DeploymentDataXml::setStations(const QSet<std::shared_ptr<DeploymentStation>> &stations)
{
    m_stations.clear();
    for (const auto &station : stations) {
        if (station)
            m_stations.insert(station->id(), station);
    }
}

std::shared_ptr<DeploymentDevice> DeploymentDataXml::deviceForId(const QString &id)
{
    auto &device = m_devices[id];
    if (!device)
        device = std::make_shared<DeploymentDevice>(id);
    return device;
}

std::shared_ptr<DeploymentStation> DeploymentDataXml::stationForId(const QString &id)
{
    auto &station = m_stations[id];
    if (!station)
        station = std::make_shared<DeploymentStation>(id);
    return station;
}

bool DeploymentDataXml::fromXml(const QByteArray &xml)
{
    QBuffer buffer;
    buffer.setData(xml);
    if (!buffer.open(QIODevice::ReadOnly))
        return false;
    return fromXml(&buffer);
}

bool DeploymentDataXml::fromXml(QIODevice *input)
{
    if (!input)
        return false;
    QXmlStreamReader reader(input);
    if (!reader.readNextStartElement() || reader.name() != rootTag)
        return false;
    const QXmlStreamAttributes attributes = reader.attributes();
    m_name = attributes.value(Tag::Name).toString();
    m_author = attributes.value(Tag::Author).toString();
    m_persistantId = attributes.value(persistantIdAttribute).toString();
    m_description = attributes.value(Tag::Description).toString();
    m_fileFormatVersion = documentUInt(attributes.value(Tag::FileFormatVersion));
    while (reader.readNextStartElement()) {
        if (reader.name() == deviceTag)
            readDevice(reader);
        else if (reader.name() == stationTag)
            readStation(reader);
        else if (reader.name() == Tag::Description)
            m_description = reader.readElementText();
        else
            reader.skipCurrentElement();
    }
    return true;
}

bool DeploymentDataXml::fromXmlFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    return fromXml(file.readAll());
}

void DeploymentDataXml::readDevice(QXmlStreamReader &reader)
{
    const QXmlStreamAttributes attributes = reader.attributes();
    if (!attributes.hasAttribute(Tag::ID))
        return;
    const auto device = deviceForId(attributes.value(Tag::ID).toString());
    device->setName(attributes.value(Tag::Name).toString());
    while (reader.readNextStartElement()) {
        if (reader.name() == iconIdTag) {
            device->setIconId(reader.readElementText());
        } else if (reader.name() == machineTag) {
            device->setMachine(reader.readElementText());
        } else if (reader.name() == deviceTypeTag) {
            device->setDeviceType(reader.readElementText());
        } else if (reader.name() == Tag::Position) {
            readPositionElement(reader, *device);
        } else if (reader.name() == receiverSettingsTag) {
            readReceiverSettings(reader, device->receiverSettings());
        } else if (reader.name() == stationTag) {
            const auto station = stationForId(reader.readElementText());
            station->addDevice(device);
            device->setStation(station);
        } else {
            reader.skipCurrentElement();
        }
    }
}

void DeploymentDataXml::readStation(QXmlStreamReader &reader)
{
    const QXmlStreamAttributes attributes = reader.attributes();
    if (!attributes.hasAttribute(Tag::ID))
        return;
    const auto station = stationForId(attributes.value(Tag::ID).toString());
    station->setName(attributes.value(Tag::Name).toString());
    while (reader.readNextStartElement()) {
        if (reader.name() == iconIdTag)
            station->setIconId(reader.readElementText());
        else if (reader.name() == Tag::Position)
            readPositionElement(reader, *station);
        else
            reader.skipCurrentElement();
    }
}

void DeploymentDataXml::readReceiverSettings(QXmlStreamReader &reader, ReceiverSettings &settings)
{
    while (reader.readNextStartElement()) {
        if (reader.name() == antennaHeightTag)
            settings.antennaHeight = documentDouble(reader.readElementText());
        else if (reader.name() == antennaGainTag)
            settings.antennaGain = documentDouble(reader.readElementText());
        else
            reader.skipCurrentElement();
    }
}

TPos DeploymentDataXml::readPosition(QXmlStreamReader &reader)
{
    TPos position;
    while (reader.readNextStartElement()) {
        if (reader.name() == longitudeTag)
            position.lon = documentDouble(reader.readElementText());
        else if (reader.name() == latitudeTag)
            position.lat = documentDouble(reader.readElementText());
        else
            reader.skipCurrentElement();
    }
    return position;
}

void DeploymentDataXml::readPositionElement(QXmlStreamReader &reader, DeploymentObject &object)
{
    if (m_fileFormatVersion == 0)
        object.setPosition(readPosition(reader));
    else
        object.setPositionSettings(CommonDataXml::readPositionSettings(reader));
}

QByteArray DeploymentDataXml::toXml()
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    toXml(&buffer);
    return buffer.data();
}

void DeploymentDataXml::toXml(QIODevice *output)
{
    if (m_persistantId.isEmpty())
        m_persistantId = QStringLiteral("%1-%2-%3")
                             .arg(m_name, QString::number(QDateTime::currentDateTime().toTime_t()),
                                 CfgCenter::GetMachineId());
    if (!output)
        return;
    QXmlStreamWriter writer(output);
    writer.setAutoFormatting(true);
    writer.setCodec("UTF-8");
    writer.writeStartDocument();
    writer.writeStartElement(rootTag);
    writer.writeAttribute(Tag::FileFormatVersion, writtenVersion);
    writer.writeAttribute(Tag::Name, m_name);
    writer.writeAttribute(Tag::Author, m_author);
    writer.writeAttribute(persistantIdAttribute, m_persistantId);
    writer.writeTextElement(Tag::Description, m_description);
    for (const auto &device : qAsConst(m_devices)) {
        if (device)
            writeDevice(writer, *device);
    }
    for (const auto &station : qAsConst(m_stations)) {
        if (station)
            writeStation(writer, *station);
    }
    writer.writeEndElement();
    writer.writeEndDocument();
}

bool DeploymentDataXml::toXmlFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    const QByteArray xml = toXml();
    file.write(xml);
    return !xml.isNull();
}

void DeploymentDataXml::writeDevice(QXmlStreamWriter &writer, const DeploymentDevice &device)
{
    writer.writeStartElement(deviceTag);
    writer.writeAttribute(Tag::ID, device.id());
    writer.writeAttribute(Tag::Name, device.name());
    writer.writeTextElement(iconIdTag, device.iconId());
    writer.writeTextElement(machineTag, device.machine());
    writer.writeTextElement(configuredStationIdTag, device.configuredStationId());
    writer.writeTextElement(deviceTypeTag, device.deviceType());
    writeReceiverSettings(writer, device.receiverSettings());
    if (device.hasStation()) {
        writer.writeTextElement(stationTag, device.station()->id());
    } else {
        writer.writeStartElement(Tag::Position);
        CommonDataXml::writePositionSettings(device.positionSettings(), writer);
        writer.writeEndElement();
    }
    writer.writeEndElement();
}

void DeploymentDataXml::writeStation(QXmlStreamWriter &writer, const DeploymentStation &station)
{
    writer.writeStartElement(stationTag);
    writer.writeAttribute(Tag::ID, station.id());
    writer.writeAttribute(Tag::Name, station.name());
    writer.writeTextElement(iconIdTag, station.iconId());
    writer.writeStartElement(Tag::Position);
    CommonDataXml::writePositionSettings(station.positionSettings(), writer);
    writer.writeEndElement();
    writer.writeEndElement();
}

void DeploymentDataXml::writeReceiverSettings(
    QXmlStreamWriter &writer, const ReceiverSettings &settings)
{
    writer.writeStartElement(receiverSettingsTag);
    writer.writeTextElement(antennaHeightTag, number(settings.antennaHeight));
    writer.writeTextElement(antennaGainTag, number(settings.antennaGain));
    writer.writeEndElement();
}

void releaseDeployment(const DeploymentDataXml &deployment)
{
    QSet<std::shared_ptr<DeploymentObject>> objects;
    for (const auto &device : deployment.devices())
        objects.insert(device);
    for (const auto &station : deployment.stations())
        objects.insert(station);
    releaseDeployment(objects);
}

} // namespace Simulation
