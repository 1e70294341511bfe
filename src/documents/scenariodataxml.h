#pragma once

#include <radiosim/radiosim_export.h>
#include <radiosim/scenario/emissionsettings.h>
#include <radiosim/scenario/scenarionetwork.h>
#include <radiosim/scenario/scenarioobject.h>
#include <radiosim/scenario/scenariotiming.h>
#include <radiosim/units/sharedpointerhash.h>
#include <radiosim/units/simulationtypes.h>

#include <QByteArray>
#include <QHash>
#include <QSet>
#include <QString>

#include <functional>
#include <memory>

class QIODevice;
class QXmlStreamAttributes;
class QXmlStreamReader;
class QXmlStreamWriter;

namespace Simulation {

class ISignalPackageProvider;
class SignalPackage;

// One scenario as an XML document of FileFormatVersion 4, and the reader of the older forms.
//
// Reading is tolerant and validates nothing (ScenarioChecker mends what it leaves): a bad
// number is 0, an absent attribute empty, an unknown element skipped, and an XML error ends the
// reading with what was read so far, still answering true. Only a root other than Scenario or a
// file that cannot be opened gives false. An Emitter, ElintEmitter or Network element without
// ID cuts the document at that element.
//
// Emitters are resolved in one pass: the first mention of an ID, in an element or in a
// reference, makes the emitter and later ones fill it. A second document read into the same
// object adds to its objects and resolves against the first one's IDs.
//
// The objects outlive the document; whoever discards them calls releaseScenario, since
// emitters, networks, links and timetables hold each other.
class RADIOSIM_EXPORT ScenarioDataXml
{
public:
    // The provider turns package ids into packages; with none, emissions keep a null package.
    // Not owned.
    explicit ScenarioDataXml(ISignalPackageProvider *provider);
    ~ScenarioDataXml();
    ScenarioDataXml(const ScenarioDataXml &) = delete;
    ScenarioDataXml &operator=(const ScenarioDataXml &) = delete;

    // The device must be open for reading.
    bool fromXml(QIODevice *device);
    bool fromXml(const QByteArray &xml);
    bool fromXmlFile(const QString &path);

    // Forms the persistent id when it is empty and renumbers the emission and group ids of
    // every timetable written. Emitters and networks come in the order of a hash set. The
    // device must be open for writing.
    void toXml(QIODevice *device);
    QByteArray toXml();
    // False only when the file cannot be opened.
    bool toXmlFile(const QString &path);

    // The objects of a Scenario document; empty for anything else.
    static QSet<std::shared_ptr<ScenarioObject>> objectsForXml(
        const QString &xml, ISignalPackageProvider *provider);
    // A whole document of which only the objects are meant: no name, author or duration.
    static QString xmlForObjects(
        const QSet<std::shared_ptr<ScenarioObject>> &objects, ISignalPackageProvider *provider);

    QString getName() const { return m_name; }
    void setName(const QString &value) { m_name = value; }
    QString getAuthor() const { return m_author; }
    void setAuthor(const QString &value) { m_author = value; }
    QString getDescription() const { return m_description; }
    void setDescription(const QString &value) { m_description = value; }
    // "name-seconds-machine", formed at the first save and kept from then on.
    QString getPersistantId() const { return m_persistantId; }
    void setPersistantId(const QString &value) { m_persistantId = value; }
    // Scenario length in ms.
    uint getDuration() const { return m_duration; }
    void setDuration(uint value) { m_duration = value; }
    QSet<std::shared_ptr<ScenarioObject>> scenarioObjects() const { return m_scenarioObjects; }
    void setScenarioObjects(const QSet<std::shared_ptr<ScenarioObject>> &objects)
    {
        m_scenarioObjects = objects;
    }
    // The emitter marked Default in the file, whatever the mark's value; the last one read.
    std::shared_ptr<SzenarioEmitter> getDefaultEmitter() const { return m_defaultEmitter; }
    void setDefaultEmitter(std::shared_ptr<SzenarioEmitter> emitter) { m_defaultEmitter = emitter; }
    const ScenarioNoiseSettings &getNoiseSettings() const { return *m_noiseSettings; }
    void setNoiseSettings(const ScenarioNoiseSettings &settings) { *m_noiseSettings = settings; }
    // The version read is below 4; a file without one counts as older.
    bool isOlderFileVersion() const;

private:
    std::shared_ptr<SzenarioEmitter> emitterForId(const QString &id, EmitterType type);
    void readScenarioEmitter(QXmlStreamReader &reader, EmitterType type);
    std::shared_ptr<ScenarioNetwork> readScenarioNetwork(QXmlStreamReader &reader);
    void readNoiseSettings(QXmlStreamReader &reader);
    void readTransmitterSettings(
        QXmlStreamReader &reader, std::shared_ptr<SzenarioEmitter> emitter);
    IFrequencySettings *readFrequencySettings(QXmlStreamReader &reader);
    void readEmissionSettings(EmissionSettings *settings, QXmlStreamReader &reader);
    void readGroups(EmissionSettings *settings, QXmlStreamReader &reader);
    void readTimingSettings2(std::shared_ptr<SzenarioEmitter> emitter,
        std::shared_ptr<SignalPackage> package, QXmlStreamReader &reader);
    void readActivitySettings2(std::shared_ptr<ScenarioNetwork> network,
        std::shared_ptr<SignalPackage> package, QXmlStreamReader &reader);
    // The Manual element of the older forms: its Activity elements follow each other on a
    // running time from 0; `activity` adds what one makes and gives the time it reaches, which
    // is returned at the end.
    qint64 readManual(EmissionSettings *settings, QXmlStreamReader &reader,
        const std::function<qint64(const QXmlStreamAttributes &, qint64)> &activity);
    // The package named by the element's text; null without a provider, and then the element
    // is skipped.
    std::shared_ptr<SignalPackage> readSignalPackage(QXmlStreamReader &reader);
    static NetworkType stringToNetworkType(const QString &text);
    static QString networkTypeToString(NetworkType type);

    void writeScenarioEmitter(QXmlStreamWriter &writer, std::shared_ptr<SzenarioEmitter> emitter);
    void writeScenarioNetwork(QXmlStreamWriter &writer, std::shared_ptr<ScenarioNetwork> network);
    void writeNoiseSettings(QXmlStreamWriter &writer);
    void writeTransmitterSettings(QXmlStreamWriter &writer, const TransmitterSettings *settings);
    void writeFrequencySettings(QXmlStreamWriter &writer, const IFrequencySettings *settings);
    void writeEmissionSettings(QXmlStreamWriter &writer, EmissionSettings *settings);
    void writeGroups(QXmlStreamWriter &writer, EmissionSettings *settings);

    QSet<std::shared_ptr<ScenarioObject>> m_scenarioObjects;
    std::shared_ptr<SzenarioEmitter> m_defaultEmitter;
    ISignalPackageProvider *m_provider;
    QHash<QString, std::shared_ptr<SzenarioEmitter>> m_emitterById;
    QString m_name;
    QString m_author;
    QString m_description;
    uint m_duration = 0;
    QString m_persistantId;
    ScenarioNoiseSettings *m_noiseSettings;
    uint m_fileVersion = 0;
};

} // namespace Simulation
