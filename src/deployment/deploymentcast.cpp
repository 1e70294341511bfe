#include "deploymentcast.h"

#include <radiosim/units/sharedpointerset_p.h>

namespace Simulation {
namespace Cast {

std::shared_ptr<DeploymentDevice> device(std::shared_ptr<DeploymentObject> object)
{
    return std::dynamic_pointer_cast<DeploymentDevice>(object);
}

std::shared_ptr<DeploymentStation> station(std::shared_ptr<DeploymentObject> object)
{
    return std::dynamic_pointer_cast<DeploymentStation>(object);
}

bool isDevice(std::shared_ptr<DeploymentObject> object)
{
    return object && object->type() == DeploymentObject::Device;
}

bool isStation(std::shared_ptr<DeploymentObject> object)
{
    return object && object->type() == DeploymentObject::Station;
}

QSet<std::shared_ptr<DeploymentDevice>> devices(
    const QSet<std::shared_ptr<DeploymentObject>> &objects)
{
    return filteredSet<DeploymentDevice>(objects);
}

QSet<std::shared_ptr<DeploymentStation>> stations(
    const QSet<std::shared_ptr<DeploymentObject>> &objects)
{
    return filteredSet<DeploymentStation>(objects);
}

QSet<std::shared_ptr<DeploymentObject>> objects(
    const QSet<std::shared_ptr<DeploymentDevice>> &devices)
{
    return widenedSet<DeploymentObject>(devices);
}

QSet<std::shared_ptr<DeploymentObject>> objects(
    const QSet<std::shared_ptr<DeploymentStation>> &stations)
{
    return widenedSet<DeploymentObject>(stations);
}

} // namespace Cast
} // namespace Simulation
