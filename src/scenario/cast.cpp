#include "cast.h"

namespace Simulation {
namespace Cast {

namespace {

template <typename Derived>
QSet<std::shared_ptr<Derived>> filtered(const QSet<std::shared_ptr<ScenarioObject>> &objects)
{
    QSet<std::shared_ptr<Derived>> result;
    for (const auto &object : objects) {
        if (auto derived = std::dynamic_pointer_cast<Derived>(object))
            result.insert(derived);
    }
    return result;
}

template <typename Derived>
QSet<std::shared_ptr<ScenarioObject>> widened(const QSet<std::shared_ptr<Derived>> &derived)
{
    QSet<std::shared_ptr<ScenarioObject>> result;
    result.reserve(derived.size());
    for (const auto &object : derived)
        result.insert(object);
    return result;
}

} // namespace

std::shared_ptr<SzenarioEmitter> emitter(std::shared_ptr<ScenarioObject> object)
{
    return std::dynamic_pointer_cast<SzenarioEmitter>(object);
}

std::shared_ptr<ScenarioNetwork> network(std::shared_ptr<ScenarioObject> object)
{
    return std::dynamic_pointer_cast<ScenarioNetwork>(object);
}

bool isEmitter(std::shared_ptr<ScenarioObject> object)
{
    return object
        && (object->type() == ScenarioObject::ObjectEmitter
            || object->type() == ScenarioObject::ObjectElintEmitter);
}

bool isNetwork(std::shared_ptr<ScenarioObject> object)
{
    return object && object->type() == ScenarioObject::ObjectNetwork;
}

QSet<std::shared_ptr<SzenarioEmitter>> emitter(const QSet<std::shared_ptr<ScenarioObject>> &objects)
{
    return filtered<SzenarioEmitter>(objects);
}

QSet<std::shared_ptr<ScenarioNetwork>> networks(
    const QSet<std::shared_ptr<ScenarioObject>> &objects)
{
    return filtered<ScenarioNetwork>(objects);
}

QSet<std::shared_ptr<ScenarioObject>> objects(
    const QSet<std::shared_ptr<SzenarioEmitter>> &emitters)
{
    return widened(emitters);
}

QSet<std::shared_ptr<ScenarioObject>> objects(
    const QSet<std::shared_ptr<ScenarioNetwork>> &networks)
{
    return widened(networks);
}

} // namespace Cast
} // namespace Simulation
