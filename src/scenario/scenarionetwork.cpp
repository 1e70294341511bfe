#include "scenarionetwork.h"

#include <radiosim/scenario/cast.h>
#include <radiosim/scenario/emissionsettings.h>

namespace Simulation {

ScenarioNetwork::ScenarioNetwork(const QString &objectId)
    : ScenarioObject(objectId)
{
}

ScenarioNetwork::ScenarioNetwork(const QString &objectId, std::shared_ptr<ScenarioNetwork> source)
    : ScenarioObject(objectId, objectId, source)
{
    if (!source)
        return;
    m_color = source->color();
    m_networkType = source->networkType();
}

ScenarioObject::ScenarioObjectType ScenarioNetwork::type() const
{
    return ObjectNetwork;
}

void ScenarioNetwork::copy(std::shared_ptr<ScenarioObject> source)
{
    if (!Cast::isNetwork(source))
        return;
    const auto network = Cast::network(source);
    ScenarioObject::copy(source);
    m_color = network->m_color;
    m_networkType = network->m_networkType;
    m_emitter = network->m_emitter;
    m_emitterList = network->m_emitterList;
}

std::shared_ptr<ScenarioObject> ScenarioNetwork::clone()
{
    return copiedInto(std::make_shared<ScenarioNetwork>(id()));
}

bool ScenarioNetwork::addEmitter(std::shared_ptr<SzenarioEmitter> member)
{
    if (m_emitter.contains(member))
        return false;
    m_emitter.insert(member);
    m_emitterList.append(member);
    return true;
}

bool ScenarioNetwork::removeEmitter(std::shared_ptr<SzenarioEmitter> member)
{
    if (!m_emitter.remove(member))
        return false;
    m_emitterList.removeAll(member);
    emissionSettings()->removeEmissions(member);
    return true;
}

bool ScenarioNetwork::containsEmitter(std::shared_ptr<SzenarioEmitter> member) const
{
    return m_emitter.contains(member);
}

int ScenarioNetwork::indexForEmitter(std::shared_ptr<SzenarioEmitter> member) const
{
    return m_emitterList.indexOf(member);
}

std::shared_ptr<SzenarioEmitter> ScenarioNetwork::emitterForIndex(int index) const
{
    return m_emitterList.value(index);
}

std::shared_ptr<SzenarioEmitter> ScenarioNetwork::headEmitter() const
{
    return m_emitterList.value(0);
}

void ScenarioNetwork::setHeadEmitter(std::shared_ptr<SzenarioEmitter> head)
{
    m_emitterList.removeAll(head);
    m_emitterList.prepend(head);
}

std::shared_ptr<SzenarioEmitter> ScenarioNetwork::emitterActiveAt(uint time) const
{
    return emissionSettings()->activeEmitterAt(time);
}

} // namespace Simulation
