#include "scenariodataxml.h"

#include "commondataxml.h"
#include "documentnumbers_p.h"
#include "documenttags_p.h"

#include <radiosim/packages/signalpackage.h>
#include <radiosim/packages/signalpackageprovider.h>
#include <radiosim/platform/cfgcenter.h>
#include <radiosim/scenario/cast.h>
#include <radiosim/scenario/frequencysettings.h>

#include <QBuffer>
#include <QColor>
#include <QDateTime>
#include <QFile>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace Simulation {

namespace {

constexpr uint CurrentFileVersion = 4;

QString number(double value)
{
    return QString::number(value, 'g', 6);
}

QString boolText(bool value)
{
    return value ? Tag::True : Tag::False;
}

// Element text as a number; a child element inside it is an XML error that ends the reading.
uint uintText(QXmlStreamReader &reader)
{
    const QString text = reader.readElementText();
    return documentUInt(QStringRef(&text));
}

double doubleText(QXmlStreamReader &reader)
{
    return documentDouble(reader.readElementText());
}

// Empties a timetable that is read anew. Groups may hold each other in a cycle, which
// clearAll alone would leave behind.
void dropTimetable(EmissionSettings *settings)
{
    for (const auto &group : settings->groups()) {
        group->parent.reset();
        group->subGroups.clear();
        group->members.clear();
    }
    settings->clearAll();
}

void appendEmission(EmissionSettings *settings, qint64 start, qint64 duration,
    const std::shared_ptr<SzenarioEmitter> &emitter, const std::shared_ptr<SignalPackage> &package,
    uint id)
{
    auto emission = settings->createEmission();
    emission->start = start;
    emission->duration = duration;
    emission->emitter = emitter;
    emission->signalPackage = package;
    emission->id = id;
    settings->addEmission(emission);
}

} // namespace

ScenarioDataXml::ScenarioDataXml(ISignalPackageProvider *provider)
    : m_provider(provider)
    , m_noiseSettings(new ScenarioNoiseSettings)
{
    m_noiseSettings->setDefaults();
}

ScenarioDataXml::~ScenarioDataXml()
{
    delete m_noiseSettings;
}

bool ScenarioDataXml::isOlderFileVersion() const
{
    return m_fileVersion < CurrentFileVersion;
}

// Reading

bool ScenarioDataXml::fromXml(QIODevice *device)
{
    if (!device || !device->isReadable())
        return false;
    QXmlStreamReader reader(device);
    if (!reader.readNextStartElement() || reader.name() != Tag::Scenario)
        return false;

    const QXmlStreamAttributes attributes = reader.attributes();
    m_name = attributes.value(Tag::Name).toString();
    m_author = attributes.value(Tag::Author).toString();
    m_duration = documentUInt(attributes.value(Tag::Duration));
    m_persistantId = attributes.value(Tag::Uid).toString();
    m_description = attributes.value(Tag::Description).toString();
    m_fileVersion = documentUInt(attributes.value(Tag::FileFormatVersion));

    while (reader.readNextStartElement()) {
        const QStringRef name = reader.name();
        if (name == Tag::Emitter)
            readScenarioEmitter(reader, EmitterPlain);
        else if (name == Tag::ElintEmitter)
            readScenarioEmitter(reader, EmitterElint);
        else if (name == Tag::Network)
            readScenarioNetwork(reader);
        else if (name == Tag::Description)
            m_description = reader.readElementText();
        else if (name == Tag::NoiseSettings)
            readNoiseSettings(reader);
        else
            reader.skipCurrentElement();
    }
    return true;
}

bool ScenarioDataXml::fromXml(const QByteArray &xml)
{
    QBuffer buffer;
    buffer.setData(xml);
    buffer.open(QIODevice::ReadOnly);
    return fromXml(&buffer);
}

bool ScenarioDataXml::fromXmlFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    return fromXml(&file);
}

std::shared_ptr<SzenarioEmitter> ScenarioDataXml::emitterForId(const QString &id, EmitterType type)
{
    const auto found = m_emitterById.constFind(id);
    if (found != m_emitterById.constEnd())
        return found.value();
    std::shared_ptr<SzenarioEmitter> emitter;
    if (type == EmitterPlain)
        emitter = std::make_shared<SzenarioEmitter>(id, QString());
    else
        emitter = std::make_shared<ElintScenarioEmitter>(id, QString());
    m_emitterById.insert(id, emitter);
    m_scenarioObjects.insert(emitter);
    return emitter;
}

void ScenarioDataXml::readScenarioEmitter(QXmlStreamReader &reader, EmitterType type)
{
    const QXmlStreamAttributes attributes = reader.attributes();
    // Without an ID the element is not skipped: the caller's loop goes on inside it.
    if (!attributes.hasAttribute(Tag::ID))
        return;
    const auto emitter = emitterForId(attributes.value(Tag::ID).toString(), type);
    emitter->setName(attributes.value(Tag::Name).toString());
    if (attributes.hasAttribute(Tag::Active))
        emitter->setActive(CommonDataXml::toBool(attributes.value(Tag::Active)));
    if (attributes.hasAttribute(Tag::Default))
        m_defaultEmitter = emitter;
    if (attributes.hasAttribute(Tag::LinkTarget)) {
        const auto target
            = emitterForId(attributes.value(Tag::LinkTarget).toString(), EmitterPlain);
        emitter->setLinkTargetEmitter(target);
        target->addLinkedEmitter(emitter);
    }

    auto *elint = emitter->type() == ScenarioObject::ObjectElintEmitter
        ? static_cast<ElintScenarioEmitter *>(emitter.get())
        : nullptr;
    std::shared_ptr<SignalPackage> package;
    while (reader.readNextStartElement()) {
        const QStringRef name = reader.name();
        if (name == Tag::Description) {
            emitter->setDescription(reader.readElementText());
        } else if (name == Tag::Class) {
            emitter->setClass(reader.readElementText());
        } else if (name == Tag::Transmitter) {
            readTransmitterSettings(reader, emitter);
        } else if (name == Tag::Frequency) {
            emitter->setFrequencySettings(readFrequencySettings(reader));
        } else if (name == Tag::EmissionSettings) {
            readEmissionSettings(emitter->emissionSettings(), reader);
        } else if (name == Tag::Position) {
            emitter->setPositionSettings(CommonDataXml::readPositionSettings(reader));
        } else if (name == Tag::EDWFile || name == Tag::EDWFile2) {
            // On a plain emitter the element is not skipped, which ends the emitter here.
            if (elint && name == Tag::EDWFile)
                elint->SetEDWFile(reader.readElementText());
            else if (elint)
                elint->SetEDWFile2(reader.readElementText());
        } else if (name == Tag::SignalPackage && m_provider) {
            package = readSignalPackage(reader);
        } else if (name == Tag::Timing) {
            readTimingSettings2(emitter, package, reader);
        } else {
            reader.skipCurrentElement();
        }
    }
}

std::shared_ptr<SignalPackage> ScenarioDataXml::readSignalPackage(QXmlStreamReader &reader)
{
    return m_provider->signalPackage(reader.readElementText());
}

std::shared_ptr<ScenarioNetwork> ScenarioDataXml::readScenarioNetwork(QXmlStreamReader &reader)
{
    const QXmlStreamAttributes attributes = reader.attributes();
    if (!attributes.hasAttribute(Tag::ID))
        return nullptr;
    const auto network = std::make_shared<ScenarioNetwork>(attributes.value(Tag::ID).toString());
    m_scenarioObjects.insert(network);
    network->setName(attributes.value(Tag::Name).toString());
    if (attributes.hasAttribute(Tag::Active))
        network->setActive(CommonDataXml::toBool(attributes.value(Tag::Active)));

    std::shared_ptr<SignalPackage> package;
    while (reader.readNextStartElement()) {
        const QStringRef name = reader.name();
        if (name == Tag::Description) {
            network->setDescription(reader.readElementText());
        } else if (name == Tag::Color) {
            QColor color;
            color.setNamedColor(reader.readElementText());
            network->setColor(color);
        } else if (name == Tag::NetworkType) {
            network->setNetworkType(stringToNetworkType(reader.readElementText()));
        } else if (name == Tag::Frequency) {
            network->setFrequencySettings(readFrequencySettings(reader));
        } else if (name == Tag::EmissionSettings) {
            readEmissionSettings(network->emissionSettings(), reader);
        } else if (name == Tag::Emitter) {
            const bool head = reader.attributes().hasAttribute(Tag::Head);
            const auto member = emitterForId(reader.readElementText(), EmitterPlain);
            network->addEmitter(member);
            member->setScenarioNetwork(network);
            if (head)
                network->setHeadEmitter(member);
        } else if (name == Tag::SignalPackage && m_provider) {
            package = readSignalPackage(reader);
        } else if (name == Tag::Activity) {
            readActivitySettings2(network, package, reader);
        } else {
            reader.skipCurrentElement();
        }
    }
    return network;
}

void ScenarioDataXml::readNoiseSettings(QXmlStreamReader &reader)
{
    ScenarioNoiseSettings &noise = *m_noiseSettings;
    while (reader.readNextStartElement()) {
        const QStringRef name = reader.name();
        if (name == Tag::Density)
            noise.setNoiseDensity(doubleText(reader));
        else if (name == Tag::Deviation)
            noise.setNoiseDeviation(doubleText(reader));
        else if (name == Tag::FrequencyDependentDensity)
            noise.setFrequencyDependentNoiseDensity(doubleText(reader));
        else if (name == Tag::FrequencyDependentGranularity)
            noise.setFrequencyDependentNoiseGranularity(doubleText(reader));
        else if (name == Tag::FrequencyDependentVariability)
            noise.setFrequencyDependentNoiseVariability(doubleText(reader));
        else if (name == Tag::AzimuthErrorDeviation)
            noise.setAzimuthErrorDeviation(doubleText(reader));
        else
            reader.skipCurrentElement();
    }
}

void ScenarioDataXml::readTransmitterSettings(
    QXmlStreamReader &reader, std::shared_ptr<SzenarioEmitter> emitter)
{
    TransmitterSettings *transmitter = emitter->getTranmitterSettings();
    while (reader.readNextStartElement()) {
        if (reader.name() == Tag::Power) {
            transmitter->setPower(float(doubleText(reader)));
            continue;
        }
        if (reader.name() != Tag::Antenna) {
            reader.skipCurrentElement();
            continue;
        }
        // The writer's attribute Type is not looked at: only a child Type counts.
        while (reader.readNextStartElement()) {
            const QStringRef name = reader.name();
            if (name == Tag::Type)
                transmitter->setAntennaType(reader.readElementText());
            else if (name == Tag::Gain)
                transmitter->setAntennaGain(float(doubleText(reader)));
            else if (name == Tag::HeightOverGround)
                transmitter->setAntennaHeight(float(doubleText(reader)));
            else if (name == Tag::Direction)
                transmitter->setAntennaDirection(float(doubleText(reader)));
            else
                reader.skipCurrentElement();
        }
    }
}

IFrequencySettings *ScenarioDataXml::readFrequencySettings(QXmlStreamReader &reader)
{
    IFrequencySettings *result = nullptr;
    const auto take = [&result](IFrequencySettings *settings) {
        delete result;
        result = settings;
    };
    while (reader.readNextStartElement()) {
        const QStringRef kind = reader.name();
        if (kind == Tag::Fixed) {
            auto *fixed = new FrequencySettingsFixed;
            take(fixed);
            fixed->setCenterFrequency(doubleText(reader));
        } else if (kind == Tag::Chirp) {
            auto *chirp = new FrequencySettings_Chirp;
            take(chirp);
            while (reader.readNextStartElement()) {
                const QStringRef name = reader.name();
                if (name == Tag::StartFrequency)
                    chirp->setStartFrequency(doubleText(reader));
                else if (name == Tag::StopFrequency)
                    chirp->setStopFrequency(doubleText(reader));
                else if (name == Tag::Duration)
                    chirp->setDuration(uintText(reader));
                else if (name == Tag::TimeslotOffset)
                    chirp->setTimeslotOffset(float(doubleText(reader)));
                else
                    reader.skipCurrentElement();
            }
        } else if (kind == Tag::FastHopper) {
            auto *hopper = new FrequencySettings_FastHopper;
            take(hopper);
            while (reader.readNextStartElement()) {
                const QStringRef name = reader.name();
                if (name == Tag::MinimumFrequency)
                    hopper->setMinimumFrequency(doubleText(reader));
                else if (name == Tag::MaximumFrequency)
                    hopper->setMaximumFrequency(doubleText(reader));
                else if (name == Tag::HoppCount)
                    hopper->setHoppCount(uintText(reader));
                else if (name == Tag::HoppRate)
                    hopper->setHoppRate(uintText(reader));
                else if (name == Tag::HoppSet)
                    hopper->setHoppSet(uintText(reader));
                else if (name == Tag::TimeslotOffset)
                    hopper->setTimeslotOffset(float(doubleText(reader)));
                else
                    reader.skipCurrentElement();
            }
        } else if (kind == Tag::SlowHopper) {
            auto *hopper = new FrequencySettings_SlowHopper;
            take(hopper);
            hopper->setEndBehavior(CommonDataXml::stringToEndBehavior(
                reader.attributes().value(Tag::EndBehavior).toString()));
            QList<FrequencyStep> steps;
            while (reader.readNextStartElement()) {
                if (reader.name() != Tag::Frequency) {
                    reader.skipCurrentElement();
                    continue;
                }
                FrequencyStep step;
                step.duration = documentUInt(reader.attributes().value(Tag::Duration));
                step.frequency = doubleText(reader);
                steps.append(step);
            }
            hopper->setFrequencySteps(steps);
        } else {
            reader.skipCurrentElement();
        }
    }
    return result;
}

void ScenarioDataXml::readEmissionSettings(EmissionSettings *settings, QXmlStreamReader &reader)
{
    const QXmlStreamAttributes attributes = reader.attributes();
    dropTimetable(settings);
    settings->setDuration(documentUInt(attributes.value(Tag::Duration)));
    settings->setBroadcast(attributes.value(Tag::Broadcast).toString().toLower() == Tag::True);

    while (reader.readNextStartElement()) {
        if (reader.name() == Tag::Groups) {
            readGroups(settings, reader);
            continue;
        }
        if (reader.name() != Tag::Emission) {
            reader.skipCurrentElement();
            continue;
        }
        const QXmlStreamAttributes entry = reader.attributes();
        auto emission = settings->createEmission();
        emission->id = documentUInt(entry.value(Tag::ID));
        emission->start = documentUInt(entry.value(Tag::StartTime));
        emission->duration = documentUInt(entry.value(Tag::Duration));
        emission->emitter = emitterForId(entry.value(Tag::Emitter).toString(), EmitterPlain);
        if (m_provider)
            emission->signalPackage
                = m_provider->signalPackage(entry.value(Tag::SignalPackage).toString());
        settings->addEmission(emission);
        reader.readElementText();
    }
}

void ScenarioDataXml::readGroups(EmissionSettings *settings, QXmlStreamReader &reader)
{
    QHash<uint, boost::shared_ptr<EmissionSettings::Emission>> emissions;
    for (const auto &emission : settings->emissions())
        emissions.insert(emission->id, emission);
    // Groups may name subgroups that come later: the first mention makes the group, and it
    // joins the settings when its own element arrives.
    QHash<uint, boost::shared_ptr<EmissionSettings::Group>> groups;
    const auto groupFor = [&groups, settings](uint id) {
        auto &group = groups[id];
        if (!group)
            group = settings->createGroup();
        return group;
    };

    while (reader.readNextStartElement()) {
        if (reader.name() != Tag::Group) {
            reader.skipCurrentElement();
            continue;
        }
        const QXmlStreamAttributes attributes = reader.attributes();
        // Without an ID the element is not skipped: the loop goes on inside it.
        if (!attributes.hasAttribute(Tag::ID))
            continue;
        const uint id = documentUInt(attributes.value(Tag::ID));
        const auto group = groupFor(id);
        group->id = id;
        settings->addGroup(group);
        while (reader.readNextStartElement()) {
            if (reader.name() == Tag::GroupId)
                group->subGroups.append(groupFor(uintText(reader)));
            else if (reader.name() == Tag::EmissionId)
                group->members.append(emissions.value(uintText(reader)));
            else
                reader.skipCurrentElement();
        }
    }
}

NetworkType ScenarioDataXml::stringToNetworkType(const QString &text)
{
    return text == Tag::Hierarchical ? NetworkHierarchical : NetworkStar;
}

QString ScenarioDataXml::networkTypeToString(NetworkType type)
{
    return type == NetworkHierarchical ? Tag::Hierarchical : Tag::Star;
}

// Older forms: a timetable described as gaps and active stretches, one package for all.

void ScenarioDataXml::readTimingSettings2(std::shared_ptr<SzenarioEmitter> emitter,
    std::shared_ptr<SignalPackage> package, QXmlStreamReader &reader)
{
    EmissionSettings *settings = emitter->emissionSettings();
    dropTimetable(settings);
    while (reader.readNextStartElement()) {
        const QStringRef name = reader.name();
        if (name == Tag::Contionus || name == Tag::Contious) {
            settings->makeContinousActive(emitter, package);
            settings->setBroadcast(true);
            reader.readElementText();
        } else if (name == Tag::Manual) {
            // A gap, then a stretch on air; a stretch of 0 makes no emission.
            settings->setDuration(readManual(
                settings, reader, [&](const QXmlStreamAttributes &attributes, qint64 time) {
                    const qint64 start
                        = time + documentUInt(attributes.value(Tag::InactiveDuration));
                    const uint active = documentUInt(attributes.value(Tag::ActiveDuration));
                    if (active != 0)
                        appendEmission(settings, start, active, emitter, package,
                            documentUInt(attributes.value(Tag::ID)));
                    return start + active;
                }));
        } else {
            reader.skipCurrentElement();
        }
    }
}

void ScenarioDataXml::readActivitySettings2(std::shared_ptr<ScenarioNetwork> network,
    std::shared_ptr<SignalPackage> package, QXmlStreamReader &reader)
{
    EmissionSettings *settings = network->emissionSettings();
    dropTimetable(settings);
    while (reader.readNextStartElement()) {
        if (reader.name() != Tag::Manual) {
            reader.skipCurrentElement();
            continue;
        }
        // One member after the other without gaps; an unknown member leaves its time empty.
        settings->setDuration(
            readManual(settings, reader, [&](const QXmlStreamAttributes &attributes, qint64 time) {
                // A plain lookup: these files name members that were read before.
                const auto emitter = m_emitterById.value(attributes.value(Tag::Emitter).toString());
                const uint duration = documentUInt(attributes.value(Tag::Duration));
                if (emitter && duration != 0)
                    appendEmission(settings, time, duration, emitter, package,
                        documentUInt(attributes.value(Tag::ID)));
                return time + duration;
            }));
    }
}

qint64 ScenarioDataXml::readManual(EmissionSettings *settings, QXmlStreamReader &reader,
    const std::function<qint64(const QXmlStreamAttributes &, qint64)> &activity)
{
    qint64 time = 0;
    while (reader.readNextStartElement()) {
        if (reader.name() == Tag::Groups) {
            readGroups(settings, reader);
        } else if (reader.name() == Tag::Activity) {
            time = activity(reader.attributes(), time);
            reader.readElementText();
        } else {
            reader.skipCurrentElement();
        }
    }
    return time;
}

// Writing

void ScenarioDataXml::toXml(QIODevice *device)
{
    if (!device || !device->isWritable())
        return;
    if (m_persistantId.isEmpty()) {
        // Three arg calls in turn: a %2 in the name takes the time as well.
        m_persistantId = QStringLiteral("%1-%2-%3")
                             .arg(m_name)
                             .arg(QString::number(QDateTime::currentSecsSinceEpoch(), 10))
                             .arg(CfgCenter::GetMachineId());
    }

    QXmlStreamWriter writer(device);
    writer.setAutoFormatting(true);
    writer.writeStartDocument();
    writer.writeStartElement(Tag::Scenario);
    writer.writeAttribute(Tag::FileFormatVersion, QString::number(CurrentFileVersion, 10));
    writer.writeAttribute(Tag::Name, m_name);
    writer.writeAttribute(Tag::Author, m_author);
    writer.writeAttribute(Tag::Uid, m_persistantId);
    writer.writeAttribute(Tag::Duration, QString::number(m_duration, 10));
    writer.writeTextElement(Tag::Description, m_description);
    writer.writeStartElement(Tag::NoiseSettings);
    writeNoiseSettings(writer);
    writer.writeEndElement();
    for (const auto &emitter : Cast::emitter(m_scenarioObjects))
        writeScenarioEmitter(writer, emitter);
    for (const auto &network : Cast::networks(m_scenarioObjects))
        writeScenarioNetwork(writer, network);
    writer.writeEndElement();
    writer.writeEndDocument();
}

QByteArray ScenarioDataXml::toXml()
{
    QByteArray xml;
    QBuffer buffer(&xml);
    buffer.open(QIODevice::WriteOnly);
    toXml(&buffer);
    buffer.close();
    return xml;
}

bool ScenarioDataXml::toXmlFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    toXml(&file);
    return true;
}

QSet<std::shared_ptr<ScenarioObject>> ScenarioDataXml::objectsForXml(
    const QString &xml, ISignalPackageProvider *provider)
{
    ScenarioDataXml document(provider);
    document.fromXml(xml.toUtf8());
    return document.scenarioObjects();
}

QString ScenarioDataXml::xmlForObjects(
    const QSet<std::shared_ptr<ScenarioObject>> &objects, ISignalPackageProvider *provider)
{
    ScenarioDataXml document(provider);
    document.setScenarioObjects(objects);
    return QString::fromUtf8(document.toXml());
}

void ScenarioDataXml::writeScenarioEmitter(
    QXmlStreamWriter &writer, std::shared_ptr<SzenarioEmitter> emitter)
{
    writer.writeStartElement(Tag::Emitter);
    writer.writeAttribute(Tag::ID, emitter->getId());
    writer.writeAttribute(Tag::Name, emitter->getName());
    writer.writeAttribute(Tag::Active, boolText(emitter->isActive()));
    if (emitter == m_defaultEmitter)
        writer.writeAttribute(Tag::Default, Tag::True);
    if (emitter->isLinked())
        writer.writeAttribute(Tag::LinkTarget, emitter->linkTargetEmitter()->id());
    writer.writeTextElement(Tag::Description, emitter->getDescription());
    writer.writeTextElement(Tag::Class, emitter->getClass());
    writer.writeStartElement(Tag::Transmitter);
    writeTransmitterSettings(writer, emitter->getTranmitterSettings());
    writer.writeEndElement();
    writer.writeStartElement(Tag::Frequency);
    writeFrequencySettings(writer, emitter->getFrequencySettings());
    writer.writeEndElement();
    // A member's timetable is the network's, written with the network.
    if (!emitter->hasNetwork()) {
        writer.writeStartElement(Tag::EmissionSettings);
        writeEmissionSettings(writer, emitter->emissionSettings());
        writer.writeEndElement();
    }
    writer.writeStartElement(Tag::Position);
    CommonDataXml::writePositionSettings(emitter->getPositionSettings(), writer);
    writer.writeEndElement();
    writer.writeEndElement();
}

void ScenarioDataXml::writeScenarioNetwork(
    QXmlStreamWriter &writer, std::shared_ptr<ScenarioNetwork> network)
{
    writer.writeStartElement(Tag::Network);
    writer.writeAttribute(Tag::ID, network->id());
    writer.writeAttribute(Tag::Name, network->name());
    writer.writeAttribute(Tag::Active, boolText(network->isActive()));
    writer.writeTextElement(Tag::Description, network->description());
    writer.writeTextElement(Tag::Color, network->color().name());
    writer.writeTextElement(Tag::NetworkType, networkTypeToString(network->networkType()));
    writer.writeStartElement(Tag::Frequency);
    writeFrequencySettings(writer, network->frequencySettings());
    writer.writeEndElement();
    writer.writeStartElement(Tag::EmissionSettings);
    writeEmissionSettings(writer, network->emissionSettings());
    writer.writeEndElement();
    const auto head = network->headEmitter();
    for (const auto &member : network->emitter()) {
        // Members outside this document are dropped.
        if (!m_scenarioObjects.contains(member))
            continue;
        writer.writeStartElement(Tag::Emitter);
        if (member == head)
            writer.writeAttribute(Tag::Head, Tag::True);
        writer.writeCharacters(member->id());
        writer.writeEndElement();
    }
    writer.writeEndElement();
}

void ScenarioDataXml::writeNoiseSettings(QXmlStreamWriter &writer)
{
    const ScenarioNoiseSettings &noise = *m_noiseSettings;
    writer.writeTextElement(Tag::Density, number(noise.noiseDensity()));
    writer.writeTextElement(Tag::Deviation, number(noise.noiseDeviation()));
    writer.writeTextElement(
        Tag::FrequencyDependentDensity, number(noise.frequencyDependentNoiseDensity()));
    writer.writeTextElement(
        Tag::FrequencyDependentGranularity, number(noise.frequencyDependentNoiseGranularity()));
    writer.writeTextElement(
        Tag::FrequencyDependentVariability, number(noise.frequencyDependentNoiseVariability()));
    writer.writeTextElement(Tag::AzimuthErrorDeviation, number(noise.azimuthErrorDeviation()));
}

void ScenarioDataXml::writeTransmitterSettings(
    QXmlStreamWriter &writer, const TransmitterSettings *settings)
{
    writer.writeTextElement(Tag::Power, number(settings->getPower()));
    writer.writeStartElement(Tag::Antenna);
    // Written as an attribute, read back only from a child: a saved type comes back "Default".
    writer.writeAttribute(Tag::Type, settings->getAntennaType());
    writer.writeTextElement(Tag::Gain, number(settings->getAntennaGain()));
    writer.writeTextElement(Tag::HeightOverGround, number(settings->getAntennaHeight()));
    writer.writeTextElement(Tag::Direction, number(settings->getAntennaDirection()));
    writer.writeEndElement();
}

void ScenarioDataXml::writeFrequencySettings(
    QXmlStreamWriter &writer, const IFrequencySettings *settings)
{
    if (!settings)
        return;
    switch (settings->getType()) {
    case FrequencyFixed:
        writer.writeTextElement(Tag::Fixed, number(settings->getCenterFrequency()));
        break;
    case FrequencySlowHopper:
        if (const auto *hopper = dynamic_cast<const FrequencySettings_SlowHopper *>(settings)) {
            writer.writeStartElement(Tag::SlowHopper);
            writer.writeAttribute(
                Tag::EndBehavior, CommonDataXml::endBehaviorToString(hopper->getEndBehavior()));
            for (const FrequencyStep &step : hopper->getFrequencySteps()) {
                writer.writeStartElement(Tag::Frequency);
                writer.writeAttribute(Tag::Duration, QString::number(step.duration, 10));
                writer.writeCharacters(number(step.frequency));
                writer.writeEndElement();
            }
            writer.writeEndElement();
        }
        break;
    case FrequencyChirp:
        if (const auto *chirp = dynamic_cast<const FrequencySettings_Chirp *>(settings)) {
            writer.writeStartElement(Tag::Chirp);
            writer.writeTextElement(Tag::StartFrequency, number(chirp->getStartFrequency()));
            writer.writeTextElement(Tag::StopFrequency, number(chirp->getStopFrequency()));
            writer.writeTextElement(Tag::Duration, QString::number(chirp->getDuration(), 10));
            writer.writeTextElement(Tag::TimeslotOffset, number(chirp->getTimeslotOffset()));
            writer.writeEndElement();
        }
        break;
    case FrequencyFastHopper:
        if (const auto *hopper = dynamic_cast<const FrequencySettings_FastHopper *>(settings)) {
            writer.writeStartElement(Tag::FastHopper);
            writer.writeTextElement(Tag::MinimumFrequency, number(hopper->getMinimumFrequency()));
            writer.writeTextElement(Tag::MaximumFrequency, number(hopper->getMaximumFrequency()));
            writer.writeTextElement(Tag::HoppCount, QString::number(hopper->getHoppCount(), 10));
            writer.writeTextElement(Tag::HoppRate, QString::number(hopper->getHoppRate(), 10));
            writer.writeTextElement(Tag::HoppSet, QString::number(hopper->getHoppSet(), 10));
            writer.writeTextElement(Tag::TimeslotOffset, number(hopper->getTimeslotOffset()));
            writer.writeEndElement();
        }
        break;
    }
}

void ScenarioDataXml::writeEmissionSettings(QXmlStreamWriter &writer, EmissionSettings *settings)
{
    writer.writeAttribute(Tag::Broadcast, boolText(settings->isBroadcast()));
    writer.writeAttribute(Tag::Duration, QString::number(settings->duration(), 10));
    uint id = 0;
    for (const auto &emission : settings->emissions()) {
        emission->id = id++;
        writer.writeEmptyElement(Tag::Emission);
        writer.writeAttribute(Tag::ID, QString::number(emission->id, 10));
        writer.writeAttribute(Tag::StartTime, QString::number(emission->start, 10));
        writer.writeAttribute(Tag::Duration, QString::number(emission->duration, 10));
        writer.writeAttribute(
            Tag::Emitter, emission->emitter ? emission->emitter->id() : QString());
        if (emission->signalPackage)
            writer.writeAttribute(Tag::SignalPackage, emission->signalPackage->id());
    }
    writeGroups(writer, settings);
}

void ScenarioDataXml::writeGroups(QXmlStreamWriter &writer, EmissionSettings *settings)
{
    uint id = 0;
    for (const auto &group : settings->groups())
        group->id = id++;
    writer.writeStartElement(Tag::Groups);
    for (const auto &group : settings->groups()) {
        writer.writeStartElement(Tag::Group);
        writer.writeAttribute(Tag::ID, QString::number(group->id, 10));
        // A file may name an unknown emission, which leaves a null member with no id to write.
        for (const auto &member : qAsConst(group->members)) {
            if (member)
                writer.writeTextElement(Tag::EmissionId, QString::number(member->id, 10));
        }
        for (const auto &subGroup : qAsConst(group->subGroups)) {
            if (subGroup)
                writer.writeTextElement(Tag::GroupId, QString::number(subGroup->id, 10));
        }
        writer.writeEndElement();
    }
    writer.writeEndElement();
}

} // namespace Simulation
