#pragma once

#include <radiosim/radiosim_export.h>
#include <radiosim/units/simulationtypes.h>

#include <QString>
#include <QStringList>

namespace Simulation {

// Descriptor of a signal package: what it is called, which ids it answers to and what its
// signal is like. A plain value, shared as std::shared_ptr once it sits in the cache.
class RADIOSIM_EXPORT SignalPackage
{
public:
    QString id() const { return m_id; }
    void setId(const QString &value) { m_id = value; }
    const QStringList &updateIds() const { return m_updateIds; }
    void setUpdateIds(const QStringList &value) { m_updateIds = value; }
    QString path() const { return m_path; }
    void setPath(const QString &value) { m_path = value; }
    QString name() const { return m_name; }
    void setName(const QString &value) { m_name = value; }
    QString author() const { return m_author; }
    void setAuthor(const QString &value) { m_author = value; }
    quint32 timestamp() const { return m_timestamp; }
    void setTimestamp(quint32 value) { m_timestamp = value; }
    float signalBandwidth() const { return m_signalBandwidth; }
    void setSignalBandwidth(float value) { m_signalBandwidth = value; }
    AnalogModulations analogModulation() const { return m_analogModulation; }
    void setAnalogModulation(AnalogModulations value) { m_analogModulation = value; }
    QString digitalModulation() const { return m_digitalModulation; }
    void setDigitalModulation(const QString &value) { m_digitalModulation = value; }
    // Milliseconds.
    quint32 duration() const { return m_duration; }
    void setDuration(quint32 value) { m_duration = value; }
    bool hasAudioContent() const { return m_hasAudioContent; }
    void setHasAudioContent(bool value) { m_hasAudioContent = value; }
    bool hasSymbolDataContent() const { return m_hasSymbolDataContent; }
    void setHasSymbolDataContent(bool value) { m_hasSymbolDataContent = value; }
    bool hasResultDataContent() const { return m_hasResultDataContent; }
    void setHasResultDataContent(bool value) { m_hasResultDataContent = value; }

    // A digital modulation name counts only with the analog modulation Digital.
    bool hasDigitalModulation() const;
    // "path/name"; an empty path still gives the leading slash.
    QString fullName() const;
    // Every character that is unsafe in a file name becomes one underscore, so different ids
    // can map to the same text. Reentrant: called from the cache's worker threads.
    static QString cleanId(QString id);
    QString cleanId() const;

private:
    QString m_id;
    QStringList m_updateIds;
    QString m_path;
    QString m_name;
    QString m_author;
    quint32 m_timestamp = 0;
    float m_signalBandwidth = 0.0f;
    AnalogModulations m_analogModulation = ModulationNone;
    QString m_digitalModulation;
    quint32 m_duration = 0;
    bool m_hasAudioContent = false;
    bool m_hasSymbolDataContent = false;
    bool m_hasResultDataContent = false;
};

} // namespace Simulation
