#pragma once

#include <radiosim/deployment/deploymentobject.h>
#include <radiosim/radiosim_export.h>

#include <QByteArray>
#include <QMap>
#include <QSet>
#include <QString>

#include <memory>

class QIODevice;
class QXmlStreamReader;
class QXmlStreamWriter;

namespace Simulation {

// A deployment as a document: root "SimulationDeployment", "FileFormatVersion" 1. Stations
// and devices are kept by id and shared with whoever holds them; a copy of the document
// shares them too.
//
// The reader is tolerant: it merges into what the document holds, skips what it does not
// know, and an XML error ends the reading with what was read so far. Only a wrong root or a
// file that cannot be opened answers false. Known losses, kept because peers and files depend
// on them: "ConfiguredStationID" is written and never read back; the position of a device with
// a station is not written; an element "Device" or "Station" without "ID" ends the reading of
// the root after its own children.
class RADIOSIM_EXPORT DeploymentDataXml
{
public:
    DeploymentDataXml();

    QString name() const { return m_name; }
    void setName(const QString &value) { m_name = value; }
    QString author() const { return m_author; }
    void setAuthor(const QString &value) { m_author = value; }
    QString description() const { return m_description; }
    void setDescription(const QString &value) { m_description = value; }
    QString persistantId() const { return m_persistantId; }
    void setPersistantId(const QString &value) { m_persistantId = value; }

    const QMap<QString, std::shared_ptr<DeploymentDevice>> &devices() const { return m_devices; }
    const QMap<QString, std::shared_ptr<DeploymentStation>> &stations() const { return m_stations; }
    // Clear the map and enter each object under its id; of two with the same id, the one the
    // set gives last stays.
    void setDevices(const QSet<std::shared_ptr<DeploymentDevice>> &devices);
    void setStations(const QSet<std::shared_ptr<DeploymentStation>> &stations);

    bool fromXml(const QByteArray &xml);
    bool fromXml(QIODevice *input);
    bool fromXmlFile(const QString &path);
    // An empty persistent id is made first, and kept: "<name>-<seconds since 1970>-<machine>".
    QByteArray toXml();
    void toXml(QIODevice *output);
    // False when the file cannot be opened for writing.
    bool toXmlFile(const QString &path);

private:
    std::shared_ptr<DeploymentDevice> deviceForId(const QString &id);
    std::shared_ptr<DeploymentStation> stationForId(const QString &id);
    void readDevice(QXmlStreamReader &reader);
    void readStation(QXmlStreamReader &reader);
    void readReceiverSettings(QXmlStreamReader &reader, ReceiverSettings &settings);
    // The position form of version 0 documents: "Longitude" and "Latitude".
    TPos readPosition(QXmlStreamReader &reader);
    // Either form, by the version of the document being read.
    void readPositionElement(QXmlStreamReader &reader, DeploymentObject &object);
    void writeDevice(QXmlStreamWriter &writer, const DeploymentDevice &device);
    void writeStation(QXmlStreamWriter &writer, const DeploymentStation &station);
    void writeReceiverSettings(QXmlStreamWriter &writer, const ReceiverSettings &settings);

    QMap<QString, std::shared_ptr<DeploymentDevice>> m_devices;
    QMap<QString, std::shared_ptr<DeploymentStation>> m_stations;
    QString m_name;
    QString m_description;
    QString m_author;
    QString m_persistantId;
    quint32 m_fileFormatVersion = 0;
};

// releaseDeployment over every station and device of the document.
RADIOSIM_EXPORT void releaseDeployment(const DeploymentDataXml &deployment);

} // namespace Simulation
