#pragma once

#include <radiosim/radiosim_export.h>
#include <radiosim/scenario/scenarionetwork.h>
#include <radiosim/scenario/scenarioobject.h>

#include <QSet>

#include <memory>

namespace Simulation {
namespace Cast {

// Null when the dynamic type does not fit.
RADIOSIM_EXPORT std::shared_ptr<SzenarioEmitter> emitter(std::shared_ptr<ScenarioObject> object);
RADIOSIM_EXPORT std::shared_ptr<ScenarioNetwork> network(std::shared_ptr<ScenarioObject> object);
// By type(): plain and ELINT emitters.
RADIOSIM_EXPORT bool isEmitter(std::shared_ptr<ScenarioObject> object);
RADIOSIM_EXPORT bool isNetwork(std::shared_ptr<ScenarioObject> object);

// The set forms filter.
RADIOSIM_EXPORT QSet<std::shared_ptr<SzenarioEmitter>> emitter(
    const QSet<std::shared_ptr<ScenarioObject>> &objects);
RADIOSIM_EXPORT QSet<std::shared_ptr<ScenarioNetwork>> networks(
    const QSet<std::shared_ptr<ScenarioObject>> &objects);
RADIOSIM_EXPORT QSet<std::shared_ptr<ScenarioObject>> objects(
    const QSet<std::shared_ptr<SzenarioEmitter>> &emitters);
RADIOSIM_EXPORT QSet<std::shared_ptr<ScenarioObject>> objects(
    const QSet<std::shared_ptr<ScenarioNetwork>> &networks);

} // namespace Cast
} // namespace Simulation
