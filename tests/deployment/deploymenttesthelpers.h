#pragma once

#include <radiosim/deployment/deploymentobject.h>

#include "testhelpers.h"

#include <QString>

// An object flattened to one line: id, name, icon, position, and for a device its station (or
// "-"), type, machine, configured station id and antenna.
inline QString describe(const Simulation::DeploymentObject &object)
{
    const Simulation::TPos position = object.position();
    QString text = QStringLiteral("%1|%2|%3|%4,%5")
                       .arg(object.id(), object.name(), object.iconId())
                       .arg(position.lon, 0, 'g', 14)
                       .arg(position.lat, 0, 'g', 14);
    if (const auto *device = dynamic_cast<const Simulation::DeploymentDevice *>(&object)) {
        const Simulation::ReceiverSettings &receiver = device->receiverSettings();
        text += QStringLiteral("|%1|%2|%3|%4|%5/%6")
                    .arg(device->hasStation() ? device->station()->id() : QStringLiteral("-"),
                        device->deviceType(), device->machine(), device->configuredStationId())
                    .arg(receiver.antennaHeight)
                    .arg(receiver.antennaGain);
    }
    return text;
}

inline std::shared_ptr<Simulation::DeploymentDevice> makeDevice(
    const QString &id, Simulation::TPos position = {})
{
    auto device = std::make_shared<Simulation::DeploymentDevice>(id);
    device->setName(QStringLiteral("name of ") + id);
    device->setPosition(position);
    return device;
}

// Both sides of a membership, as the document reader sets them.
inline void join(const std::shared_ptr<Simulation::DeploymentStation> &station,
    const std::shared_ptr<Simulation::DeploymentDevice> &device)
{
    station->addDevice(device);
    device->setStation(station);
}
