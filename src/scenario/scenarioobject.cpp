#include "scenarioobject.h"

#include <radiosim/scenario/cast.h>
#include <radiosim/scenario/scenarionetwork.h>

#include <QVarLengthArray>

#include <algorithm>

namespace Simulation {

ScenarioObject::ScenarioObject(const QString &objectId)
    : m_id(objectId)
{
}

ScenarioObject::ScenarioObject(
    const QString &objectId, const QString &objectName, std::shared_ptr<ScenarioObject> source)
    : m_id(objectId)
    , m_name(objectName)
{
    if (!source)
        return;
    m_description = source->description();
    m_visibleOnMap = source->isVisibleOnMap();
    m_visibleOnTimeline = source->isVisibleOnTimeline();
    m_active = source->isActive();
    copySettings(source);
}

ScenarioObject::~ScenarioObject()
{
    delete m_frequencySettings;
    delete m_emissionSettings;
}

QString ScenarioObject::id() const
{
    return m_id;
}

void ScenarioObject::setId(const QString &value)
{
    m_id = value;
}

QString ScenarioObject::name() const
{
    return m_name;
}

void ScenarioObject::setName(const QString &value)
{
    m_name = value;
}

QString ScenarioObject::description() const
{
    return m_description;
}

void ScenarioObject::setDescription(const QString &value)
{
    m_description = value;
}

IFrequencySettings *ScenarioObject::frequencySettings() const
{
    return m_frequencySettings;
}

void ScenarioObject::setFrequencySettings(IFrequencySettings *settings)
{
    if (settings == m_frequencySettings)
        return;
    delete m_frequencySettings;
    m_frequencySettings = settings;
}

EmissionSettings *ScenarioObject::emissionSettings() const
{
    return m_emissionSettings;
}

bool ScenarioObject::isActive() const
{
    return m_active;
}

void ScenarioObject::copy(std::shared_ptr<ScenarioObject> source)
{
    if (!source)
        return;
    m_id = source->id();
    m_name = source->name();
    m_description = source->description();
    m_active = source->isActive();
    copySettings(source);
}

std::shared_ptr<ScenarioObject> ScenarioObject::copiedInto(std::shared_ptr<ScenarioObject> blank)
{
    const std::shared_ptr<ScenarioObject> self = weak_from_this().lock();
    if (!self)
        return nullptr;
    blank->copy(self);
    return blank;
}

void ScenarioObject::copySettings(const std::shared_ptr<ScenarioObject> &source)
{
    // Into the own timetable, even when a network's is the effective one; the source's
    // effective timetable is the one copied.
    if (const EmissionSettings *timetable = source->emissionSettings())
        *m_emissionSettings = *timetable;
    const IFrequencySettings *frequency = source->frequencySettings();
    setFrequencySettings(frequency ? frequency->clone() : nullptr);
}

SzenarioEmitter::SzenarioEmitter(const QString &objectId, const QString &objectName)
    : ScenarioObject(objectId)
{
    setName(objectName);
}

SzenarioEmitter::SzenarioEmitter(
    const QString &objectId, const QString &objectName, std::shared_ptr<SzenarioEmitter> source)
    : ScenarioObject(objectId, objectName, source)
{
    if (!source)
        return;
    m_linkTarget = source->linkTargetEmitter();
    m_emitterClass = source->getClass();
    *m_transmitterSettings = *source->getTranmitterSettings();
    IPositionSettings *position = source->getPositionSettings();
    setPositionSettings(position ? position->clone() : nullptr);
}

SzenarioEmitter::~SzenarioEmitter()
{
    delete m_transmitterSettings;
    delete m_positionSettings;
}

ScenarioObject::ScenarioObjectType SzenarioEmitter::type() const
{
    return ObjectEmitter;
}

EmissionSettings *SzenarioEmitter::emissionSettings() const
{
    return m_network ? m_network->emissionSettings() : ScenarioObject::emissionSettings();
}

void SzenarioEmitter::copy(std::shared_ptr<ScenarioObject> source)
{
    if (!Cast::isEmitter(source))
        return;
    const auto emitter = Cast::emitter(source);
    ScenarioObject::copy(source);
    m_emitterClass = emitter->getClass();
    *m_transmitterSettings = *emitter->getTranmitterSettings();
    IPositionSettings *position = emitter->positionSettings();
    setPositionSettings(position ? position->clone() : nullptr);
    m_linkTarget = emitter->m_linkTarget;
    m_linkedEmitter = emitter->m_linkedEmitter;
}

std::shared_ptr<ScenarioObject> SzenarioEmitter::clone()
{
    return copiedInto(std::make_shared<SzenarioEmitter>(id(), name()));
}

bool SzenarioEmitter::isActiveAt(uint time) const
{
    if (!isActive())
        return false;
    const IPositionSettings *position = getPositionSettings();
    const bool positionActive = position && position->isActiveAt(time);
    if (m_network)
        return positionActive && m_network->emitterActiveAt(time).get() == this;
    if (!positionActive)
        return false;
    const IFrequencySettings *frequency = frequencySettings();
    if (!frequency || !frequency->isActiveAt(time))
        return false;
    return ScenarioObject::emissionSettings()->isActiveAt(time);
}

const QSet<std::shared_ptr<SzenarioEmitter>> &SzenarioEmitter::linkedEmitter() const
{
    return m_linkedEmitter;
}

void SzenarioEmitter::addLinkedEmitter(std::shared_ptr<SzenarioEmitter> emitter)
{
    m_linkedEmitter.insert(emitter);
}

void SzenarioEmitter::removeLinkedEmitter(std::shared_ptr<SzenarioEmitter> emitter)
{
    m_linkedEmitter.remove(emitter);
}

IFrequencySettings *SzenarioEmitter::getFrequencySettings() const
{
    return m_network ? m_network->frequencySettings() : frequencySettings();
}

const SzenarioEmitter *SzenarioEmitter::linkRoot() const
{
    // Two pointers at different speeds: a link cycle makes them meet instead of running on.
    const SzenarioEmitter *slow = this;
    const SzenarioEmitter *fast = this;
    while (fast->m_linkTarget) {
        fast = fast->m_linkTarget.get();
        if (!fast->m_linkTarget)
            break;
        fast = fast->m_linkTarget.get();
        slow = slow->m_linkTarget.get();
        if (slow == fast)
            return nullptr;
    }
    return fast;
}

IPositionSettings *SzenarioEmitter::getPositionSettings() const
{
    const SzenarioEmitter *root = linkRoot();
    return root ? root->m_positionSettings : nullptr;
}

void SzenarioEmitter::setPositionSettings(IPositionSettings *settings)
{
    if (settings == m_positionSettings)
        return;
    delete m_positionSettings;
    m_positionSettings = settings;
}

TPos SzenarioEmitter::getPositionAt(uint time) const
{
    const IPositionSettings *position = getPositionSettings();
    return position ? position->getPositionAt(time) : TPos();
}

double SzenarioEmitter::headingAt(uint time) const
{
    const IPositionSettings *position = getPositionSettings();
    return position ? position->headingAt(time) : 0.0;
}

double SzenarioEmitter::getFrequencyAt(uint time) const
{
    const IFrequencySettings *frequency = getFrequencySettings();
    return frequency ? frequency->getFrequencyAt(time) : 0.0;
}

std::shared_ptr<SignalPackage> SzenarioEmitter::signalPackageAt(uint time) const
{
    const EmissionSettings *timetable = emissionSettings();
    return timetable ? timetable->signalPackageAt(time) : nullptr;
}

qint64 SzenarioEmitter::timeActiveAt(uint time) const
{
    const EmissionSettings *timetable = emissionSettings();
    return timetable ? timetable->timeActiveAt(time) : -1;
}

QList<HRActivity> SzenarioEmitter::calculateBursts(uint start, uint length, double resolution) const
{
    QList<HRActivity> bursts;
    const IFrequencySettings *frequency = getFrequencySettings();
    const IPositionSettings *position = getPositionSettings();
    const EmissionSettings *timetable = emissionSettings();
    if (!frequency || !timetable)
        return bursts;

    uint limit = frequency->activeUntil();
    if (position)
        limit = std::min(limit, position->activeUntil());
    limit = std::min(limit, timetable->activeUntil());
    if (start >= limit)
        return bursts;
    // A window that runs past the 32-bit range ends at the limit as well.
    uint end = start + length;
    if (quint64(start) + length > limit) {
        end = limit;
        length = limit - start;
    }
    if (length == 0)
        return bursts;

    // Rarely more than a few stretches in a window: kept on the stack.
    QVarLengthArray<HRActivity, 16> onAir;
    auto collect = [&onAir](const HRActivity &stretch) {
        onAir.append(stretch);
        return true;
    };
    timetable->visitHRActivities(this, start, length, collect);
    // Off air for the whole window: the frequency pieces could not add a record.
    if (onAir.isEmpty())
        return bursts;
    // Each frequency piece f is met with the on-air stretches from cursor a on: the
    // intersection of both lists, clipped to the window. Answering false ends the producer
    // once the stretches or the window are used up.
    auto a = onAir.cbegin();
    auto meet = [&](const HRActivity &f) {
        const quint64 fEnd = f.start + f.duration;
        while (a != onAir.cend()) {
            const quint64 aEnd = a->start + a->duration;
            if (a->start >= fEnd)
                return true;
            if (f.start >= aEnd) {
                ++a;
                continue;
            }
            const quint64 lo = std::max({ quint64(start), a->start, f.start });
            const quint64 hi = std::min({ quint64(end), aEnd, fEnd });
            bursts.append({ lo, hi - lo, f.frequency });
            if (hi == aEnd)
                ++a;
            else
                return hi == fEnd;
        }
        return false;
    };
    frequency->visitHRActivities(start, length, resolution, meet);
    return bursts;
}

void SzenarioEmitter::setLinkTargetEmitter(std::shared_ptr<SzenarioEmitter> target)
{
    if (target.get() == this)
        return;
    m_linkTarget = target;
}

QSet<std::shared_ptr<SzenarioEmitter>> SzenarioEmitter::affectedLinkedEmitter()
{
    QSet<std::shared_ptr<SzenarioEmitter>> tree;
    const SzenarioEmitter *rootEmitter = linkRoot();
    if (!rootEmitter)
        return tree;
    const auto root = std::const_pointer_cast<SzenarioEmitter>(
        std::static_pointer_cast<const SzenarioEmitter>(rootEmitter->weak_from_this().lock()));
    if (!root)
        return tree;
    tree.insert(root);

    // Depth first without recursion: the way back up is the link target, and the position
    // in its set is found again by hash. Each emitter is entered once, and a climb never
    // exceeds the depth reached, so links that disagree cannot make the walk run on.
    std::shared_ptr<SzenarioEmitter> current = root;
    auto position = current->m_linkedEmitter.constBegin();
    int climbs = 0;
    for (;;) {
        if (position != current->m_linkedEmitter.constEnd()) {
            const std::shared_ptr<SzenarioEmitter> child = *position;
            if (!child || tree.contains(child)) {
                ++position;
                continue;
            }
            tree.insert(child);
            current = child;
            position = current->m_linkedEmitter.constBegin();
            climbs = 0;
            continue;
        }
        if (!current->m_linkTarget || ++climbs > tree.size())
            break;
        const std::shared_ptr<SzenarioEmitter> left = current;
        current = current->m_linkTarget;
        position = current->m_linkedEmitter.constFind(left);
        if (position != current->m_linkedEmitter.constEnd())
            ++position;
    }
    return tree;
}

ElintScenarioEmitter::ElintScenarioEmitter(const QString &objectId, const QString &objectName)
    : SzenarioEmitter(objectId, objectName)
{
}

ScenarioObject::ScenarioObjectType ElintScenarioEmitter::type() const
{
    return ObjectElintEmitter;
}

bool ElintScenarioEmitter::isActiveAt(uint) const
{
    return true;
}

bool ElintScenarioEmitter::SetEDWFile(const QString &fileName)
{
    m_edwFile = fileName;
    return true;
}

bool ElintScenarioEmitter::SetEDWFile2(const QString &fileName)
{
    m_edwFile2 = fileName;
    return true;
}

namespace {

void releaseTimetable(EmissionSettings *timetable)
{
    // Groups and entries may point at each other (parent, group), so empty them one by one.
    for (const auto &group : timetable->groups()) {
        group->parent.reset();
        group->subGroups.clear();
        group->members.clear();
    }
    for (const auto &emission : timetable->emissions()) {
        emission->group.reset();
        emission->emitter.reset();
    }
    timetable->clearAll();
}

} // namespace

void releaseScenario(const QSet<std::shared_ptr<ScenarioObject>> &objects)
{
    for (const auto &object : objects) {
        if (!object)
            continue;
        releaseTimetable(object->ScenarioObject::emissionSettings());
        if (const auto network = Cast::network(object)) {
            for (const auto &member : qAsConst(network->m_emitterList)) {
                if (member && member->m_network == network)
                    member->m_network.reset();
            }
            network->m_emitter.clear();
            network->m_emitterList.clear();
        } else if (const auto emitter = Cast::emitter(object)) {
            if (emitter->m_linkTarget)
                emitter->m_linkTarget->m_linkedEmitter.remove(emitter);
            for (const auto &linked : qAsConst(emitter->m_linkedEmitter)) {
                if (linked && linked->m_linkTarget == emitter)
                    linked->m_linkTarget.reset();
            }
            emitter->m_linkTarget.reset();
            emitter->m_linkedEmitter.clear();
            emitter->m_network.reset();
        }
    }
}

} // namespace Simulation
