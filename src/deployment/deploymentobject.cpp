#include "deploymentobject.h"

#include <radiosim/deployment/deploymentcast.h>

namespace Simulation {

DeploymentObject::DeploymentObject() = default;

DeploymentObject::DeploymentObject(const QString &id)
    : m_id(id)
{
}

DeploymentObject::~DeploymentObject()
{
    delete m_positionSettings;
}

QString DeploymentObject::name() const
{
    return m_name;
}

void DeploymentObject::setName(const QString &value)
{
    m_name = value;
}

IPositionSettings *DeploymentObject::positionSettings() const
{
    return m_positionSettings;
}

void DeploymentObject::copy(std::shared_ptr<DeploymentObject> other)
{
    if (!other)
        return;
    m_id = other->id();
    m_name = other->name();
    m_iconId = other->iconId();
    setPositionSettings(other->positionSettings()->clone());
}

std::shared_ptr<DeploymentObject> DeploymentObject::copiedInto(
    std::shared_ptr<DeploymentObject> blank)
{
    const std::shared_ptr<DeploymentObject> self = weak_from_this().lock();
    if (!self)
        return nullptr;
    blank->copy(self);
    return blank;
}

void DeploymentObject::setPositionSettings(IPositionSettings *settings)
{
    if (!settings || settings == m_positionSettings)
        return;
    delete m_positionSettings;
    m_positionSettings = settings;
}

TPos DeploymentObject::position() const
{
    return positionSettings()->getPosition();
}

void DeploymentObject::setPosition(TPos value)
{
    positionSettings()->setPosition(value);
}

TPos DeploymentObject::positionAt(uint time) const
{
    return positionSettings()->getPositionAt(time);
}

double DeploymentObject::headingAt(uint time) const
{
    return positionSettings()->headingAt(time);
}

double DeploymentObject::speedAt(uint time) const
{
    return positionSettings()->speedAt(time);
}

DeploymentDevice::DeploymentDevice(const QString &id)
    : DeploymentObject(id)
{
}

DeploymentDevice::~DeploymentDevice() = default;

DeploymentObject::eTypes DeploymentDevice::type() const
{
    return Device;
}

IPositionSettings *DeploymentDevice::positionSettings() const
{
    return m_station ? m_station->positionSettings() : DeploymentObject::positionSettings();
}

void DeploymentDevice::copy(std::shared_ptr<DeploymentObject> other)
{
    DeploymentObject::copy(other);
    const auto device = Cast::device(other);
    if (!device)
        return;
    m_station = device->station();
    m_deviceType = device->deviceType();
    m_machine = device->machine();
    m_configuredStationId = device->configuredStationId();
    m_receiverSettings = device->receiverSettings();
}

std::shared_ptr<DeploymentObject> DeploymentDevice::clone()
{
    return copiedInto(std::make_shared<DeploymentDevice>(id()));
}

DeploymentStation::DeploymentStation() = default;

DeploymentStation::DeploymentStation(const QString &id)
    : DeploymentObject(id)
{
}

DeploymentStation::~DeploymentStation() = default;

DeploymentObject::eTypes DeploymentStation::type() const
{
    return Station;
}

QString DeploymentStation::name() const
{
    return id();
}

void DeploymentStation::setName(const QString &value)
{
    setId(value);
}

void DeploymentStation::copy(std::shared_ptr<DeploymentObject> other)
{
    DeploymentObject::copy(other);
    if (const auto station = Cast::station(other))
        m_devices = station->devices();
}

std::shared_ptr<DeploymentObject> DeploymentStation::clone()
{
    return copiedInto(std::make_shared<DeploymentStation>());
}

bool DeploymentStation::addDevice(std::shared_ptr<DeploymentDevice> device)
{
    if (m_devices.contains(device))
        return false;
    m_devices.insert(device);
    return true;
}

bool DeploymentStation::removeDevice(std::shared_ptr<DeploymentDevice> device)
{
    return m_devices.remove(device);
}

void releaseDeployment(const QSet<std::shared_ptr<DeploymentObject>> &objects)
{
    for (const auto &object : objects) {
        if (const auto device = Cast::device(object)) {
            if (const auto station = device->station())
                station->removeDevice(device);
            device->setStation(nullptr);
        } else if (const auto station = Cast::station(object)) {
            for (const auto &member : station->devices()) {
                if (member && member->station() == station)
                    member->setStation(nullptr);
                station->removeDevice(member);
            }
        }
    }
}

} // namespace Simulation
