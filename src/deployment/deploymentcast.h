#pragma once

#include <radiosim/deployment/deploymentobject.h>
#include <radiosim/radiosim_export.h>

#include <QSet>

#include <memory>

namespace Simulation {
namespace Cast {

// Null when the dynamic type does not fit.
RADIOSIM_EXPORT std::shared_ptr<DeploymentDevice> device(std::shared_ptr<DeploymentObject> object);
RADIOSIM_EXPORT std::shared_ptr<DeploymentStation> station(
    std::shared_ptr<DeploymentObject> object);
// By type(); false for null.
RADIOSIM_EXPORT bool isDevice(std::shared_ptr<DeploymentObject> object);
RADIOSIM_EXPORT bool isStation(std::shared_ptr<DeploymentObject> object);

// The set forms filter.
RADIOSIM_EXPORT QSet<std::shared_ptr<DeploymentDevice>> devices(
    const QSet<std::shared_ptr<DeploymentObject>> &objects);
RADIOSIM_EXPORT QSet<std::shared_ptr<DeploymentStation>> stations(
    const QSet<std::shared_ptr<DeploymentObject>> &objects);
RADIOSIM_EXPORT QSet<std::shared_ptr<DeploymentObject>> objects(
    const QSet<std::shared_ptr<DeploymentDevice>> &devices);
RADIOSIM_EXPORT QSet<std::shared_ptr<DeploymentObject>> objects(
    const QSet<std::shared_ptr<DeploymentStation>> &stations);

} // namespace Cast
} // namespace Simulation
