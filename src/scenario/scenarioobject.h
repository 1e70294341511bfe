#pragma once

#include <radiosim/radiosim_export.h>
#include <radiosim/scenario/emissionsettings.h>
#include <radiosim/units/settings.h>
#include <radiosim/units/sharedpointerhash.h>
#include <radiosim/units/simulationtypes.h>

#include <QList>
#include <QSet>
#include <QString>

#include <memory>

namespace Simulation {

class ScenarioNetwork;
class ScenarioObject;
class SignalPackage;

// Breaks the reference cycles of a discarded scenario so that its objects can die: links in
// both directions, network memberships, and every timetable entry and group. The objects
// are unusable as a scenario afterwards.
RADIOSIM_EXPORT void releaseScenario(const QSet<std::shared_ptr<ScenarioObject>> &objects);

// An emitter or a network of a scenario. Always held by std::shared_ptr; the settings
// objects are owned raw pointers, and the setters delete the object they replace.
class RADIOSIM_EXPORT ScenarioObject : public std::enable_shared_from_this<ScenarioObject>
{
public:
    enum ScenarioObjectType { ObjectNetwork = 0, ObjectEmitter = 1, ObjectElintEmitter = 2 };

    explicit ScenarioObject(const QString &objectId);
    // Takes description, flags, a deep copy of the timetable and a clone of the frequency
    // settings from `source`.
    ScenarioObject(
        const QString &objectId, const QString &objectName, std::shared_ptr<ScenarioObject> source);
    ScenarioObject(const ScenarioObject &) = delete;
    ScenarioObject &operator=(const ScenarioObject &) = delete;

    virtual ~ScenarioObject();
    virtual ScenarioObjectType type() const = 0;
    virtual QString id() const;
    virtual void setId(const QString &value);
    virtual QString name() const;
    virtual void setName(const QString &value);
    virtual QString description() const;
    virtual void setDescription(const QString &value);
    // The object's own; a network member asks its network through getFrequencySettings.
    virtual IFrequencySettings *frequencySettings() const;
    // Takes ownership; the same pointer again is a no-op.
    virtual void setFrequencySettings(IFrequencySettings *settings);
    virtual EmissionSettings *emissionSettings() const;
    virtual bool isActive() const;
    // Visibility flags are not copied.
    virtual void copy(std::shared_ptr<ScenarioObject> source);
    // Null when the object is not held by a std::shared_ptr.
    virtual std::shared_ptr<ScenarioObject> clone() = 0;

    void setActive(bool value) { m_active = value; }
    bool isVisibleOnMap() const { return m_visibleOnMap; }
    bool isVisibleOnTimeline() const { return m_visibleOnTimeline; }
    void setVisibleOnMap(bool value) { m_visibleOnMap = value; }
    void setVisibleOnTimeline(bool value) { m_visibleOnTimeline = value; }

protected:
    // `blank` after copy() from this object; null when this object is not held by a
    // std::shared_ptr.
    std::shared_ptr<ScenarioObject> copiedInto(std::shared_ptr<ScenarioObject> blank);

private:
    void copySettings(const std::shared_ptr<ScenarioObject> &source);

    QString m_id;
    QString m_name;
    QString m_description;
    IFrequencySettings *m_frequencySettings = new FrequencySettingsFixed;
    EmissionSettings *m_emissionSettings = new EmissionSettings;
    bool m_active = true;
    bool m_visibleOnMap = false;
    bool m_visibleOnTimeline = false;
};

// A radio emitter. A network takes over its frequency and timetable, a link target its
// position; every time query goes through these effective settings.
class RADIOSIM_EXPORT SzenarioEmitter : public ScenarioObject
{
public:
    SzenarioEmitter(const QString &objectId, const QString &objectName);
    // Network and linked emitters are not taken over; the position is a clone of the
    // source's effective one.
    SzenarioEmitter(const QString &objectId, const QString &objectName,
        std::shared_ptr<SzenarioEmitter> source);
    ~SzenarioEmitter() override;

    ScenarioObjectType type() const override;
    // The network's timetable while the emitter has a network.
    EmissionSettings *emissionSettings() const override;
    // Only from another emitter; the network stays.
    void copy(std::shared_ptr<ScenarioObject> source) override;
    // Always a plain emitter with the same id and no network.
    std::shared_ptr<ScenarioObject> clone() override;
    virtual bool isActiveAt(uint time) const;
    virtual const QSet<std::shared_ptr<SzenarioEmitter>> &linkedEmitter() const;
    // The reverse direction of a link is the caller's to keep.
    virtual void addLinkedEmitter(std::shared_ptr<SzenarioEmitter> emitter);
    virtual void removeLinkedEmitter(std::shared_ptr<SzenarioEmitter> emitter);

    QString getId() const { return id(); }
    QString getName() const { return name(); }
    QString getDescription() const { return description(); }
    QString getClass() const { return m_emitterClass; }
    void setClass(const QString &value) { m_emitterClass = value; }
    TransmitterSettings *getTranmitterSettings() const { return m_transmitterSettings; }
    IFrequencySettings *getFrequencySettings() const;
    // Follows the link chain to its end; null if the chain is a cycle.
    IPositionSettings *getPositionSettings() const;
    // The own settings, ignoring any link.
    IPositionSettings *positionSettings() const { return m_positionSettings; }
    // Takes ownership and deletes the former object; the same pointer again is a no-op.
    void setPositionSettings(IPositionSettings *settings);
    TPos getPositionAt(uint time) const;
    double headingAt(uint time) const;
    double getFrequencyAt(uint time) const;
    std::shared_ptr<SignalPackage> signalPackageAt(uint time) const;
    qint64 timeActiveAt(uint time) const;
    // Constant-frequency stretches on air in [start, start + length), ms, cut at the end of
    // the effective settings; the resolution in Hz only matters to chirps. Neighbouring
    // records are not joined. Does not look at isActive().
    QList<HRActivity> calculateBursts(uint start, uint length, double resolution) const;
    std::shared_ptr<ScenarioNetwork> network() const { return m_network; }
    // Only stores; the network's member list is the caller's to keep.
    void setScenarioNetwork(std::shared_ptr<ScenarioNetwork> value) { m_network = value; }
    bool hasNetwork() const { return m_network != nullptr; }
    bool isLinked() const { return m_linkTarget != nullptr; }
    std::shared_ptr<SzenarioEmitter> linkTargetEmitter() const { return m_linkTarget; }
    // A link to the emitter itself is ignored.
    void setLinkTargetEmitter(std::shared_ptr<SzenarioEmitter> target);
    // The whole link tree that holds this emitter, itself included; relies on both
    // directions of each link agreeing. Empty for a link cycle, and when this emitter heads
    // the tree but is not held by a std::shared_ptr.
    QSet<std::shared_ptr<SzenarioEmitter>> affectedLinkedEmitter();

private:
    friend void releaseScenario(const QSet<std::shared_ptr<ScenarioObject>> &);

    const SzenarioEmitter *linkRoot() const;

    QString m_emitterClass;
    TransmitterSettings *m_transmitterSettings = new TransmitterSettings;
    IPositionSettings *m_positionSettings = new PositionSettingsFixed(TPos());
    std::shared_ptr<ScenarioNetwork> m_network;
    QSet<std::shared_ptr<SzenarioEmitter>> m_linkedEmitter;
    std::shared_ptr<SzenarioEmitter> m_linkTarget;
};

// Driven by its EDW files instead of the timetable.
class RADIOSIM_EXPORT ElintScenarioEmitter : public SzenarioEmitter
{
public:
    ElintScenarioEmitter(const QString &objectId, const QString &objectName);

    ScenarioObjectType type() const override;
    // Always on air, also when switched off.
    bool isActiveAt(uint time) const override;

    bool SetEDWFile(const QString &fileName);
    bool SetEDWFile2(const QString &fileName);
    const QString &getEDWFile() const { return m_edwFile; }
    const QString &getEDWFile2() const { return m_edwFile2; }

private:
    QString m_edwFile;
    QString m_edwFile2;
};

} // namespace Simulation
