#include "cast.h"

#include <radiosim/units/sharedpointerset_p.h>

namespace Simulation {
namespace Cast {

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
    return filteredSet<SzenarioEmitter>(objects);
}

QSet<std::shared_ptr<ScenarioNetwork>> networks(
    const QSet<std::shared_ptr<ScenarioObject>> &objects)
{
    return filteredSet<ScenarioNetwork>(objects);
}

QSet<std::shared_ptr<ScenarioObject>> objects(
    const QSet<std::shared_ptr<SzenarioEmitter>> &emitters)
{
    return widenedSet<ScenarioObject>(emitters);
}

QSet<std::shared_ptr<ScenarioObject>> objects(
    const QSet<std::shared_ptr<ScenarioNetwork>> &networks)
{
    return widenedSet<ScenarioObject>(networks);
}

} // namespace Cast
} // namespace Simulation
