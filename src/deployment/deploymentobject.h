#pragma once

#include <radiosim/radiosim_export.h>
#include <radiosim/units/settings.h>
#include <radiosim/units/sharedpointerhash.h>
#include <radiosim/units/simulationtypes.h>

#include <QSet>
#include <QString>

#include <memory>

namespace Simulation {

class DeploymentDevice;
class DeploymentStation;

// Antenna of a simulated receiver.
struct ReceiverSettings
{
    // m
    double antennaHeight = 7.0;
    // dB
    double antennaGain = 0.0;
};

// A simulated receiving station or device of a deployment. Always held by std::shared_ptr.
// The position settings are an owned raw pointer and never null.
class RADIOSIM_EXPORT DeploymentObject : public std::enable_shared_from_this<DeploymentObject>
{
public:
    // The numbers are stored by applications and stay fixed.
    enum eTypes { Device = 0, Station = 1 };

    // Copying by value would share the owned position settings: copy() and clone() are the
    // deep operations.
    DeploymentObject(const DeploymentObject &) = delete;
    DeploymentObject &operator=(const DeploymentObject &) = delete;

    virtual eTypes type() const = 0;
    virtual QString name() const;
    virtual void setName(const QString &value);
    virtual IPositionSettings *positionSettings() const;
    // Takes id, name, icon id and a clone of other's effective position settings; the
    // derived classes take their own fields only from an object of their own kind.
    virtual void copy(std::shared_ptr<DeploymentObject> other);
    // Null when the object is not held by a std::shared_ptr.
    virtual std::shared_ptr<DeploymentObject> clone() = 0;
    virtual ~DeploymentObject();

    QString id() const { return m_id; }
    void setId(const QString &value) { m_id = value; }
    QString iconId() const { return m_iconId; }
    void setIconId(const QString &value) { m_iconId = value; }
    // Always the object's own settings, even for a device with a station. Takes ownership and
    // deletes the former object; null is refused, the same pointer again is a no-op.
    void setPositionSettings(IPositionSettings *settings);

    // These go through the virtual positionSettings(): a device with a station reads and
    // moves the station.
    TPos position() const;
    void setPosition(TPos value);
    TPos positionAt(uint time) const;
    double headingAt(uint time) const;
    double speedAt(uint time) const;

protected:
    // A fixed position at longitude 0, latitude 0.
    DeploymentObject();
    explicit DeploymentObject(const QString &id);

    // `blank` after copy() from this object; null when this object is not held by a
    // std::shared_ptr.
    std::shared_ptr<DeploymentObject> copiedInto(std::shared_ptr<DeploymentObject> blank);

private:
    QString m_id;
    QString m_name;
    QString m_iconId;
    IPositionSettings *m_positionSettings = new PositionSettingsFixed({});
};

// A simulated receiver: stand-alone with a position of its own, or at its station.
class RADIOSIM_EXPORT DeploymentDevice : public DeploymentObject
{
public:
    // Values are the applications' own; the library only keeps it.
    enum State : qint32 {};

    explicit DeploymentDevice(const QString &id);
    ~DeploymentDevice() override;

    eTypes type() const override;
    // The station's settings while the device has a station.
    IPositionSettings *positionSettings() const override;
    // The state is not taken; the station is shared, not copied.
    void copy(std::shared_ptr<DeploymentObject> other) override;
    std::shared_ptr<DeploymentObject> clone() override;

    bool hasStation() const { return m_station != nullptr; }
    std::shared_ptr<DeploymentStation> station() const { return m_station; }
    // Only stores; the station's device set is the caller's to keep.
    void setStation(std::shared_ptr<DeploymentStation> value) { m_station = value; }
    QString deviceType() const { return m_deviceType; }
    void setDeviceType(const QString &value) { m_deviceType = value; }
    QString machine() const { return m_machine; }
    void setMachine(const QString &value) { m_machine = value; }
    State state() const { return m_state; }
    void setState(State value) { m_state = value; }
    QString configuredStationId() const { return m_configuredStationId; }
    void setConfiguredStationId(const QString &value) { m_configuredStationId = value; }
    const ReceiverSettings &receiverSettings() const { return m_receiverSettings; }
    ReceiverSettings &receiverSettings() { return m_receiverSettings; }

private:
    std::shared_ptr<DeploymentStation> m_station;
    QString m_deviceType;
    QString m_machine;
    State m_state = State(0);
    QString m_configuredStationId;
    ReceiverSettings m_receiverSettings;
};

// A site of devices. It has no name apart from its id.
class RADIOSIM_EXPORT DeploymentStation : public DeploymentObject
{
public:
    DeploymentStation();
    explicit DeploymentStation(const QString &id);
    ~DeploymentStation() override;

    eTypes type() const override;
    // The id.
    QString name() const override;
    // Sets the id; the inherited name stays empty.
    void setName(const QString &value) override;
    // The device set is shared: the devices are not duplicated.
    void copy(std::shared_ptr<DeploymentObject> other) override;
    std::shared_ptr<DeploymentObject> clone() override;

    // These touch only the set; the devices' station pointers are the caller's to keep.
    // False when the device is already in the set.
    bool addDevice(std::shared_ptr<DeploymentDevice> device);
    // False when the device is not in the set.
    bool removeDevice(std::shared_ptr<DeploymentDevice> device);
    QSet<std::shared_ptr<DeploymentDevice>> devices() const { return m_devices; }

private:
    QSet<std::shared_ptr<DeploymentDevice>> m_devices;
};

// Breaks the reference cycles between devices and their stations, on both sides, so that a
// discarded deployment can die. The objects keep everything else.
RADIOSIM_EXPORT void releaseDeployment(const QSet<std::shared_ptr<DeploymentObject>> &objects);

} // namespace Simulation
