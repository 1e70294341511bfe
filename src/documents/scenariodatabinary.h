#pragma once

#include <radiosim/radiosim_export.h>
#include <radiosim/scenario/scenarionetwork.h>
#include <radiosim/scenario/scenarioobject.h>
#include <radiosim/units/sharedpointerhash.h>

#include <QByteArray>
#include <QMap>
#include <QSet>
#include <QString>

#include <memory>

class QDataStream;
class QIODevice;

namespace Simulation {

class ISignalPackageProvider;

// A scenario's emitters on a QDataStream (big-endian, no version, no markers): a signed 32-bit
// count, then per emitter id, name, description, active, default, link target id or
// "%%NONE%%", class. Nothing else of the scenario travels.
//
// The reader expects a record of another form, three strings where the writer puts the default
// flag and the link target (the second of them dropped), so it cannot read what the writer
// writes. Both forms stand: peers depend on each of them. Read emitters have no link target and
// none becomes the default emitter.
class RADIOSIM_EXPORT ScenarioDataBinary
{
public:
    explicit ScenarioDataBinary(ISignalPackageProvider *provider);

    // The device must be open for writing.
    void toBinary(QIODevice *device);
    QByteArray toBinary();
    // Adds the emitters of the stream to those held. The device must be open for reading;
    // a stream that ends early gives emitters of empty strings for the records it lacks.
    // Not reentrant: every reader shares one scratch string and flag.
    void fromBinary(QIODevice *device);
    // Hands on a buffer that it does not open, so nothing is read.
    void fromBinary(const QByteArray &data);

    QSet<std::shared_ptr<SzenarioEmitter>> scenarioEmitter() const { return m_emitters; }
    void setScenarioEmitter(const QSet<std::shared_ptr<SzenarioEmitter>> &emitters)
    {
        m_emitters = emitters;
    }
    // Carried, never streamed.
    QSet<std::shared_ptr<ScenarioNetwork>> scenarioNetworks() const { return m_networks; }
    void setScenarioNetworks(const QSet<std::shared_ptr<ScenarioNetwork>> &networks)
    {
        m_networks = networks;
    }
    std::shared_ptr<SzenarioEmitter> defaultEmitter() const { return m_defaultEmitter; }
    void setDefaultEmitter(std::shared_ptr<SzenarioEmitter> emitter) { m_defaultEmitter = emitter; }
    QString name() const { return m_name; }
    void setName(const QString &value) { m_name = value; }
    QString author() const { return m_author; }
    void setAuthor(const QString &value) { m_author = value; }
    QString description() const { return m_description; }
    void setDescription(const QString &value) { m_description = value; }
    uint duration() const { return m_duration; }
    void setDuration(uint value) { m_duration = value; }
    QString persistantId() const { return m_persistantId; }
    void setPersistantId(const QString &value) { m_persistantId = value; }

private:
    std::shared_ptr<SzenarioEmitter> readEmitter(QDataStream &stream);
    void writeEmitter(QDataStream &stream, std::shared_ptr<SzenarioEmitter> emitter);
    // Resolves nothing: always null.
    std::shared_ptr<SzenarioEmitter> emitterForId(const QString &id);

    ISignalPackageProvider *m_provider;
    QSet<std::shared_ptr<SzenarioEmitter>> m_emitters;
    QSet<std::shared_ptr<ScenarioNetwork>> m_networks;
    std::shared_ptr<SzenarioEmitter> m_defaultEmitter;
    QMap<QString, std::shared_ptr<SzenarioEmitter>> m_emitterMap;
    QString m_name;
    QString m_author;
    QString m_description;
    uint m_duration = 0;
    QString m_persistantId;
};

} // namespace Simulation
