#include "emissionsettings.h"

#include <QHash>

#include <boost/make_shared.hpp>

#include <algorithm>
#include <limits>
#include <numeric>

namespace Simulation {

namespace {

using EmissionPointer = boost::shared_ptr<EmissionSettings::Emission>;
using EmissionList = QList<EmissionPointer>;

// The key lives on the caller's stack: no shared scratch record, no allocation.
EmissionList::const_iterator lowerBound(const EmissionList &emissions, qint64 start)
{
    return std::lower_bound(emissions.cbegin(), emissions.cend(), start,
        [](const EmissionPointer &emission, qint64 key) { return emission->start < key; });
}

// Entries that reach past the signed range wrap, as the times of stored tables always did.
qint64 wrappingSum(qint64 a, qint64 b)
{
    return qint64(quint64(a) + quint64(b));
}

bool sumOverflows(qint64 a, qint64 b)
{
    return b > 0 ? a > std::numeric_limits<qint64>::max() - b
                 : a < std::numeric_limits<qint64>::min() - b;
}

} // namespace

EmissionSettings &EmissionSettings::operator=(const EmissionSettings &other)
{
    if (this == &other)
        return *this;
    clearAll();
    m_broadcast = other.m_broadcast;
    m_duration = other.m_duration;

    QHash<const Group *, boost::shared_ptr<Group>> newGroups;
    for (const auto &group : other.m_groups) {
        auto copy = createGroup();
        m_groups.append(copy);
        newGroups.insert(group.get(), copy);
    }
    QHash<const Emission *, boost::shared_ptr<Emission>> newEmissions;
    for (const auto &emission : other.m_emissions) {
        auto copy = createEmission();
        *copy = *emission;
        addEmission(copy);
        newEmissions.insert(emission.get(), copy);
    }
    // Orphan subgroups and members outside the other table have no counterpart: they come
    // over as null pointers, so a group keeps its count of members.
    for (const auto &group : other.m_groups) {
        const auto &copy = newGroups.value(group.get());
        for (const auto &subGroup : group->subGroups)
            copy->subGroups.append(newGroups.value(subGroup.get()));
        for (const auto &member : group->members)
            copy->members.append(newEmissions.value(member.get()));
    }
    return *this;
}

boost::shared_ptr<EmissionSettings::Emission> EmissionSettings::createEmission() const
{
    // Count and entry in one block: the reference taken by a lookup touches the line that
    // the lookup has just read.
    return boost::make_shared<Emission>();
}

boost::shared_ptr<EmissionSettings::Group> EmissionSettings::createGroup() const
{
    return boost::make_shared<Group>();
}

void EmissionSettings::addEmission(boost::shared_ptr<Emission> emission)
{
    if (!emission)
        return;
    const int index = int(lowerBound(m_emissions, emission->start) - m_emissions.cbegin());
    m_emissions.insert(index, emission);
    m_sortKeys.insert(index, { emission->start, emission.get() });
    const bool crowded = m_bucketShift > 0 && m_sortKeys.size() > 2 * m_bucketCounts.size();
    if (crowded || !countKey(emission->start, 1))
        reindex();
}

void EmissionSettings::updateEmission(boost::shared_ptr<Emission> emission)
{
    removeEntry(emission);
    addEmission(emission);
}

void EmissionSettings::addGroup(boost::shared_ptr<Group> group)
{
    m_groups.append(group);
}

void EmissionSettings::removeEmission(boost::shared_ptr<Emission> emission)
{
    removeEntry(emission);
    for (const auto &group : qAsConst(m_groups))
        group->members.removeAll(emission);
    clearEmptyGroups();
}

void EmissionSettings::removeEmissions(std::shared_ptr<SzenarioEmitter> emitter)
{
    const EmissionList entries = m_emissions;
    for (const auto &emission : entries) {
        if (emission->emitter == emitter)
            removeEmission(emission);
    }
}

void EmissionSettings::removeGroup(boost::shared_ptr<Group> group)
{
    detachGroup(group);
    clearEmptyGroups();
}

void EmissionSettings::clearEmptyGroups()
{
    // Each removal can empty a parent group, so search again from the front.
    for (;;) {
        const auto empty = std::find_if(
            m_groups.cbegin(), m_groups.cend(), [](const boost::shared_ptr<Group> &group) {
                return group->subGroups.isEmpty() && group->members.isEmpty();
            });
        if (empty == m_groups.cend())
            return;
        detachGroup(*empty);
    }
}

void EmissionSettings::detachGroup(const boost::shared_ptr<Group> &group)
{
    // `group` may refer into m_groups: keep the object alive while the lists change.
    const boost::shared_ptr<Group> removed = group;
    m_groups.removeAll(removed);
    for (const auto &other : qAsConst(m_groups))
        other->subGroups.removeAll(removed);
}

void EmissionSettings::clearAll()
{
    m_groups.clear();
    m_emissions.clear();
    m_sortKeys.clear();
    m_bucketCounts.clear();
}

void EmissionSettings::removeEntry(const boost::shared_ptr<Emission> &emission)
{
    for (int i = m_emissions.size() - 1; i >= 0; --i) {
        if (m_emissions.at(i) == emission) {
            const qint64 start = m_sortKeys.at(i).start;
            m_emissions.removeAt(i);
            m_sortKeys.remove(i);
            if (!countKey(start, -1))
                reindex();
        }
    }
}

bool EmissionSettings::countKey(qint64 start, int delta)
{
    const int buckets = m_bucketCounts.size();
    if (buckets == 0 || start < m_bucketBase)
        return false;
    const quint64 bucket = (quint64(start) - quint64(m_bucketBase)) >> m_bucketShift;
    const int keys = m_sortKeys.size();
    if (bucket >= quint64(buckets)) {
        // Above every counted key, as when a table is filled in start order: the new buckets
        // count all keys but this one. A far outlier rebuilds instead of growing the counts.
        if (delta < 0 || bucket >= 4 * quint64(keys))
            return false;
        m_bucketCounts.resize(int(bucket) + 1);
        std::fill(m_bucketCounts.begin() + buckets, m_bucketCounts.end(), keys - 1);
        return true;
    }
    int *const counts = m_bucketCounts.data();
    for (int j = int(bucket) + 1; j < buckets; ++j)
        counts[j] += delta;
    return true;
}

void EmissionSettings::reindex()
{
    m_bucketCounts.clear();
    if (m_sortKeys.isEmpty())
        return;
    const auto [lowest, highest] = std::minmax_element(m_sortKeys.cbegin(), m_sortKeys.cend(),
        [](const SortKey &a, const SortKey &b) { return a.start < b.start; });
    const quint64 range = quint64(highest->start) - quint64(lowest->start);
    const auto limit = 2 * quint64(m_sortKeys.size());
    m_bucketBase = lowest->start;
    m_bucketShift = 0;
    while (m_bucketShift < 63 && (range >> m_bucketShift) >= limit)
        ++m_bucketShift;
    const auto buckets = int(range >> m_bucketShift) + 1;
    // Keys per bucket, shifted up by one bucket and summed: the number of keys below each
    // bucket's lower edge. Counting instead of searching stays exact if keys are out of order.
    m_bucketCounts.fill(0, buckets);
    for (const SortKey &sortKey : qAsConst(m_sortKeys)) {
        const auto bucket = int((quint64(sortKey.start) - quint64(m_bucketBase)) >> m_bucketShift);
        if (bucket + 1 < buckets)
            ++m_bucketCounts[bucket + 1];
    }
    std::partial_sum(m_bucketCounts.cbegin(), m_bucketCounts.cend(), m_bucketCounts.begin());
}

int EmissionSettings::firstStartNotLess(qint64 key) const
{
    const int keys = m_sortKeys.size();
    int low = 0;
    int high = keys;
    if (keys > 0) {
        if (key < m_bucketBase) {
            high = 0;
        } else {
            // Every key lies below the edge of the bucket after the last.
            const quint64 bucket = (quint64(key) - quint64(m_bucketBase)) >> m_bucketShift;
            const auto last = quint64(m_bucketCounts.size() - 1);
            if (bucket > last)
                low = keys;
            else
                low = m_bucketCounts.at(int(bucket));
            if (bucket < last)
                high = m_bucketCounts.at(int(bucket + 1));
        }
    }
    const auto found = std::lower_bound(m_sortKeys.cbegin() + low, m_sortKeys.cbegin() + high, key,
        [](const SortKey &sortKey, qint64 value) { return sortKey.start < value; });
    const int index = int(found - m_sortKeys.cbegin());
    // A key is stale when its entry's start was changed in place. While both neighbours agree
    // with their entries and enclose the key, a sorted table has its lower bound here.
    auto agrees = [this](int i) {
        const SortKey &sortKey = m_sortKeys.at(i);
        return sortKey.entry->start == sortKey.start;
    };
    const bool before = index == 0 || (m_sortKeys.at(index - 1).start < key && agrees(index - 1));
    const bool after = index == keys || (m_sortKeys.at(index).start >= key && agrees(index));
    if (before && after)
        return index;
    return int(lowerBound(m_emissions, key) - m_emissions.cbegin());
}

void EmissionSettings::replaceEmitter(
    std::shared_ptr<SzenarioEmitter> oldEmitter, std::shared_ptr<SzenarioEmitter> newEmitter)
{
    for (const auto &emission : qAsConst(m_emissions)) {
        if (emission->emitter == oldEmitter)
            emission->emitter = newEmitter;
    }
}

void EmissionSettings::replaceSignalPackage(
    std::shared_ptr<SignalPackage> oldPackage, std::shared_ptr<SignalPackage> newPackage)
{
    for (const auto &emission : qAsConst(m_emissions)) {
        if (emission->signalPackage == oldPackage)
            emission->signalPackage = newPackage;
    }
}

void EmissionSettings::setDuration(qint64 value)
{
    if (value < 1) {
        m_duration = std::numeric_limits<qint64>::max();
        return;
    }
    m_duration = value;
    if (m_broadcast && !m_emissions.isEmpty())
        m_emissions.first()->duration = value;
}

void EmissionSettings::makeContinousActive(
    std::shared_ptr<SzenarioEmitter> emitter, std::shared_ptr<SignalPackage> package)
{
    if (!package && !m_emissions.isEmpty())
        package = m_emissions.first()->signalPackage;
    clearAll();
    auto emission = createEmission();
    emission->start = 0;
    emission->duration = m_duration;
    emission->emitter = emitter;
    emission->signalPackage = package;
    addEmission(emission);
}

boost::shared_ptr<EmissionSettings::Emission> EmissionSettings::emissionAt(uint time) const
{
    qint64 key = time;
    if (m_duration > 0)
        key %= m_duration;
    const int index = firstStartNotLess(key);
    if (index == 0)
        return {};
    const Emission *before = m_sortKeys.at(index - 1).entry;
    if (wrappingSum(before->start, before->duration) >= key)
        return m_emissions.at(index - 1);
    return {};
}

std::shared_ptr<SzenarioEmitter> EmissionSettings::activeEmitterAt(uint time) const
{
    const auto emission = emissionAt(time);
    return emission ? emission->emitter : nullptr;
}

std::shared_ptr<SignalPackage> EmissionSettings::signalPackageAt(uint time) const
{
    const auto emission = emissionAt(time);
    return emission ? emission->signalPackage : nullptr;
}

bool EmissionSettings::isActiveAt(uint time) const
{
    return activeEmitterAt(time) != nullptr;
}

qint64 EmissionSettings::timeActiveAt(uint time) const
{
    const qint64 inPeriod = m_duration > 0 ? time % m_duration : time;
    const auto emission = emissionAt(uint(inPeriod));
    return emission ? inPeriod - emission->start : -1;
}

uint EmissionSettings::activeUntil() const
{
    return NoEnd;
}

QList<HRActivity> EmissionSettings::calculateHRActivities(
    const SzenarioEmitter *emitter, uint start, uint length) const
{
    return collectActivities(
        [&](const HRActivitySink &sink) { visitHRActivities(emitter, start, length, sink); });
}

void EmissionSettings::visitHRActivities(
    const SzenarioEmitter *emitter, uint start, uint length, const HRActivitySink &sink) const
{
    if (m_duration <= 0 || m_emissions.isEmpty())
        return;
    if (m_broadcast) {
        sink({ start, length, 0.0 });
        return;
    }
    const qint64 end = uint(start + length);
    qint64 base = start - start % m_duration;
    auto entry = m_emissions.cbegin() + firstStartNotLess(start - base);
    // The entry before may still run into the window; one of the previous period is lost.
    if (entry != m_emissions.cbegin())
        --entry;
    for (;;) {
        const Emission &emission = **entry;
        // Past the signed range (the default period without a real one) nothing is left.
        if (sumOverflows(emission.start, base))
            break;
        const qint64 begin = emission.start + base;
        if (begin >= end)
            break;
        if ((!emitter || emission.emitter.get() == emitter)
            && !sink({ quint64(begin), quint64(std::min(emission.duration, end - begin)), 0.0 }))
            return;
        if (++entry == m_emissions.cend()) {
            entry = m_emissions.cbegin();
            if (sumOverflows(base, m_duration))
                break;
            base += m_duration;
        }
    }
}

} // namespace Simulation
