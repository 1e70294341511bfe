#pragma once

#include <radiosim/radiosim_export.h>
#include <radiosim/units/settings.h>
#include <radiosim/units/simulationtypes.h>

#include <QList>
#include <QString>
#include <QVector>

#include <boost/shared_ptr.hpp>

#include <memory>

namespace Simulation {

class SignalPackage;
class SzenarioEmitter;

// Timetable of an emitter or network: who is on air when, with which package. Entries are
// sorted by start and repeat with the period `duration`; groups only serve editors and take
// no part in any time query. Times are ms, signed 64-bit inside the table.
//
// Queries keep no state, so different timetables may be queried from different threads.
class RADIOSIM_EXPORT EmissionSettings
{
public:
    struct Group;

    struct Emission
    {
        // Renumbered by the document writer; no meaning at run time.
        uint id = 0;
        // Carried along with the entry; the library neither sets nor reads it.
        boost::shared_ptr<Group> group;
        // Within the period.
        qint64 start = 0;
        qint64 duration = 0;
        std::shared_ptr<SzenarioEmitter> emitter;
        // A handle only: stored, compared and handed out, never looked into.
        std::shared_ptr<SignalPackage> signalPackage;
    };

    struct Group
    {
        uint id = 0;
        // Carried; the library neither sets nor reads it.
        boost::shared_ptr<Group> parent;
        QString name;
        QList<boost::shared_ptr<Group>> subGroups;
        QList<boost::shared_ptr<Emission>> members;
    };

    EmissionSettings() = default;
    // Shares the entries and groups with `other`.
    EmissionSettings(const EmissionSettings &other) = default;
    // Deep: new entries and groups with the same graph; emitters and packages stay shared.
    // Ids, parents and names of the new groups are left empty.
    EmissionSettings &operator=(const EmissionSettings &other);

    const QList<boost::shared_ptr<Emission>> &emissions() const { return m_emissions; }
    const QList<boost::shared_ptr<Group>> &groups() const { return m_groups; }

    boost::shared_ptr<Emission> createEmission() const;
    boost::shared_ptr<Group> createGroup() const;
    // Before the first entry whose start is not less, so equal starts come out newest first.
    void addEmission(boost::shared_ptr<Emission> emission);
    // Re-sorts an entry after its start changed.
    void updateEmission(boost::shared_ptr<Emission> emission);
    void addGroup(boost::shared_ptr<Group> group);
    // Also from every group; groups left empty vanish, upwards.
    void removeEmission(boost::shared_ptr<Emission> emission);
    void removeEmissions(std::shared_ptr<SzenarioEmitter> emitter);
    // The group's entries stay in the table.
    void removeGroup(boost::shared_ptr<Group> group);
    void clearEmptyGroups();
    void clearAll();
    void replaceEmitter(
        std::shared_ptr<SzenarioEmitter> oldEmitter, std::shared_ptr<SzenarioEmitter> newEmitter);
    void replaceSignalPackage(
        std::shared_ptr<SignalPackage> oldPackage, std::shared_ptr<SignalPackage> newPackage);

    bool isBroadcast() const { return m_broadcast; }
    void setBroadcast(bool value) { m_broadcast = value; }
    qint64 duration() const { return m_duration; }
    // Below 1 restores "no repeat"; a broadcast table's first entry follows the period.
    void setDuration(qint64 value);
    // One entry over the whole period; a null package keeps that of the first entry.
    // `broadcast` is left to the caller.
    void makeContinousActive(
        std::shared_ptr<SzenarioEmitter> emitter, std::shared_ptr<SignalPackage> package);

    // An entry covers (start, start + duration]: at its very start the entry before it
    // still answers, and nothing is on air at time 0. No allocation.
    boost::shared_ptr<Emission> emissionAt(uint time) const;
    std::shared_ptr<SzenarioEmitter> activeEmitterAt(uint time) const;
    std::shared_ptr<SignalPackage> signalPackageAt(uint time) const;
    bool isActiveAt(uint time) const;
    // How long the entry at `time` has been on air, -1 if none.
    qint64 timeActiveAt(uint time) const;
    // A timetable has no end of its own.
    uint activeUntil() const;
    // On-air stretches of `emitter` (all entries if null) from the window [start, start +
    // length), repeating with the period. Records begin at the entry's start, also before
    // the window, and include it; their frequency is not set.
    QList<HRActivity> calculateHRActivities(
        const SzenarioEmitter *emitter, uint start, uint length) const;
    // The same records one at a time, without a list; answering false ends the walk.
    void visitHRActivities(
        const SzenarioEmitter *emitter, uint start, uint length, const HRActivitySink &sink) const;

private:
    // An entry's start when it was sorted in, beside the entry itself, index for index with
    // `m_emissions`: lookups search these compact keys instead of following pointers per step.
    struct SortKey
    {
        qint64 start = 0;
        const Emission *entry = nullptr;
    };

    void detachGroup(const boost::shared_ptr<Group> &group);
    void removeEntry(const boost::shared_ptr<Emission> &emission);
    // Adds `delta` to the counts of the buckets above `start`; false when the buckets must be
    // rebuilt instead.
    bool countKey(qint64 start, int delta);
    void reindex();
    // The lower bound of `key` among the starts, without an allocation.
    int firstStartNotLess(qint64 key) const;

    QList<boost::shared_ptr<Emission>> m_emissions;
    QList<boost::shared_ptr<Group>> m_groups;
    // No repeat in practice.
    qint64 m_duration = 9223372036854775807LL;
    // The table stands for continuous emission.
    bool m_broadcast = false;
    QVector<SortKey> m_sortKeys;
    // Buckets of width 2^m_bucketShift from the smallest key up to the largest, one or two
    // keys each: m_bucketCounts[j] is the number of keys below m_bucketBase + (j << shift), so a
    // lookup searches only the keys of one bucket instead of the whole table.
    qint64 m_bucketBase = 0;
    int m_bucketShift = 0;
    QVector<int> m_bucketCounts;
};

} // namespace Simulation
