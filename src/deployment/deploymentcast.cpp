#include "deploymentcast.h"

namespace Simulation {
namespace Cast {

namespace {

template <typename Derived>
QSet<std::shared_ptr<Derived>> filtered(const QSet<std::shared_ptr<DeploymentObject>> &objects)
{
    QSet<std::shared_ptr<Derived>> result;
    for (const auto &object : objects) {
        if (auto derived = std::dynamic_pointer_cast<Derived>(object))
            result.insert(derived);
    }
    return result;
}

template <typename Derived>
QSet<std::shared_ptr<DeploymentObject>> widened(const QSet<std::shared_ptr<Derived>> &derived)
{
    QSet<std::shared_ptr<DeploymentObject>> result;
    result.reserve(derived.size());
    for (const auto &object : derived)
        result.insert(object);
    return result;
}

} // namespace

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
    return filtered<DeploymentDevice>(objects);
}

QSet<std::shared_ptr<DeploymentStation>> stations(
    const QSet<std::shared_ptr<DeploymentObject>> &objects)
{
    return filtered<DeploymentStation>(objects);
}

QSet<std::shared_ptr<DeploymentObject>> objects(
    const QSet<std::shared_ptr<DeploymentDevice>> &devices)
{
    return widened(devices);
}

QSet<std::shared_ptr<DeploymentObject>> objects(
    const QSet<std::shared_ptr<DeploymentStation>> &stations)
{
    return widened(stations);
}

} // namespace Cast
} // namespace Simulation
