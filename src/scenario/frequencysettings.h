#pragma once

#include <radiosim/radiosim_export.h>
#include <radiosim/units/settings.h>

#include <QList>

#include <vector>

namespace Simulation {

// A repeating linear sweep from the start frequency towards the stop frequency.
class RADIOSIM_EXPORT FrequencySettings_Chirp : public IFrequencySettings
{
public:
    // Draws the phase from the calling thread's run-time generator.
    FrequencySettings_Chirp();
    FrequencySettings_Chirp(const FrequencySettings_Chirp &) = default;
    FrequencySettings_Chirp &operator=(const FrequencySettings_Chirp &) = default;

    double getStartFrequency() const { return startFrequency; }
    void setStartFrequency(double value) { startFrequency = value; }
    double getStopFrequency() const { return stopFrequency; }
    void setStopFrequency(double value) { stopFrequency = value; }
    uint getDuration() const { return duration; }
    void setDuration(uint value) { duration = value; }
    float getTimeslotOffset() const { return timeslotOffset; }
    void setTimeslotOffset(float value) { timeslotOffset = value; }

    FrequencySettingsType getType() const override;
    double getCenterFrequency() const override;
    void setCenterFrequency(double frequency) override;
    double getMinimumFrequency() const override;
    double getMaximumFrequency() const override;
    // Time passes through float, so times above 2^24 ms lose their lowest bits; a time
    // below the phase offset wraps to a large unsigned value. Stored scenarios rely on both.
    double getFrequencyAt(uint time) const override;
    bool isTimeDependend() const override;
    bool isActiveAt(uint time) const override;
    // Steps within which the frequency moves by at most resolution Hz. The last step keeps
    // its full length past the window end; the caller clips. Empty when no positive step
    // exists (zero resolution, equal frequencies, zero duration).
    QList<HRActivity> calculateHRActivities(
        uint start, uint length, double resolution) const override;
    void visitHRActivities(
        uint start, uint length, double resolution, const HRActivitySink &sink) const override;
    uint activeUntil() const override;
    // The phase takes no part.
    bool equal(const IFrequencySettings *other) const override;
    IFrequencySettings *clone() const override;

private:
    double startFrequency = 24000000.0;
    double stopFrequency = 26000000.0;
    uint duration = 1000;
    // Phase as a fraction of duration.
    float timeslotOffset = 0.0f;
};

// A pseudo-random channel sequence generated from a seed; only the seed is stored in
// documents, so the sequence must come out the same on every rebuild and platform.
class RADIOSIM_EXPORT FrequencySettings_FastHopper : public IFrequencySettings
{
public:
    // Draws the phase from the calling thread's run-time generator.
    FrequencySettings_FastHopper();
    FrequencySettings_FastHopper(const FrequencySettings_FastHopper &) = default;
    FrequencySettings_FastHopper &operator=(const FrequencySettings_FastHopper &) = default;

    // The setters of the four values that shape the sequence discard the channel list,
    // even when the value does not change.
    void setMinimumFrequency(double value);
    void setMaximumFrequency(double value);
    uint getHoppCount() const { return hoppCount; }
    void setHoppCount(uint value);
    uint getHoppRate() const { return hoppRate; }
    void setHoppRate(uint value);
    uint getHoppSet() const { return hoppSet; }
    void setHoppSet(uint value);
    float getTimeslotOffset() const { return timeslotOffset; }
    void setTimeslotOffset(float value) { timeslotOffset = value; }

    FrequencySettingsType getType() const override;
    double getCenterFrequency() const override;
    void setCenterFrequency(double frequency) override;
    double getMinimumFrequency() const override;
    double getMaximumFrequency() const override;
    // Builds the channel list if needed, which reseeds and advances the calling thread's
    // generator. 0.0 without channels or hops.
    double getFrequencyAt(uint time) const override;
    bool isTimeDependend() const override;
    bool isActiveAt(uint time) const override;
    // A head record over the phase offset, then one record per hop. The hop time is rounded
    // up to whole ms here, unlike in getFrequencyAt, so each piece takes the channel at its
    // middle; the head may overlap the first hop. Empty without channels or hops.
    QList<HRActivity> calculateHRActivities(
        uint start, uint length, double resolution) const override;
    void visitHRActivities(
        uint start, uint length, double resolution, const HRActivitySink &sink) const override;
    uint activeUntil() const override;
    // The phase takes no part.
    bool equal(const IFrequencySettings *other) const override;
    IFrequencySettings *clone() const override;

private:
    void setupFrequencyList() const;
    void invalidateFrequencyList();
    // The channel of the slot at `time` for a slot length of `hop` ms, on a built list.
    double channelAt(uint time, float hop) const;

    double minimumFrequency = 24000000.0;
    // Never itself a channel: the top channel lies one spacing below it.
    double maximumFrequency = 26000000.0;
    uint hoppCount = 1000;
    // Hops per second.
    uint hoppRate = 100;
    uint hoppSet = 0;
    // Phase of the hop grid as a fraction of a hop.
    float timeslotOffset = 0.0f;
    // Valid exactly while its size equals hoppCount; rebuilt inside const queries.
    mutable std::vector<double> frequencyList;
};

struct FrequencyStep
{
    double frequency = 0.0;
    uint duration = 0;
};

// An explicit table of frequency steps, rows 0-based.
class RADIOSIM_EXPORT FrequencySettings_SlowHopper : public IFrequencySettings
{
public:
    FrequencySettings_SlowHopper();
    FrequencySettings_SlowHopper(const FrequencySettings_SlowHopper &) = default;
    FrequencySettings_SlowHopper &operator=(const FrequencySettings_SlowHopper &) = default;

    int rows() const;
    const QList<FrequencyStep> &getFrequencySteps() const { return frequencySteps; }
    void setFrequencySteps(const QList<FrequencyStep> &steps);
    // -1.0 out of range.
    double getFrequency(int row) const;
    // 0 out of range.
    uint getDuration(int row) const;
    // Start of the row: 0 below row 1, the total length beyond the end.
    uint getTime(int row) const;
    void setFrequency(int row, double frequency);
    void setDuration(int row, uint stepDuration);
    // Moves the start of row by lengthening or shortening the row before it; a start at or
    // before the previous row's start is ignored.
    void setTime(int row, uint time);
    // A negative row appends a copy of the last step, a row in range gets a copy right
    // behind it. Leaves the cached length stale.
    void insertStep(int row);
    // The first step is never removed. Leaves the cached length stale.
    void removeStep(int row);
    EndBehaviourType getEndBehavior() const { return endBehavior; }
    void setEndBehavior(EndBehaviourType value) { endBehavior = value; }

    FrequencySettingsType getType() const override;
    // The first step's frequency.
    double getCenterFrequency() const override;
    // Shifts every step so that the first lands on frequency.
    void setCenterFrequency(double frequency) override;
    double getMinimumFrequency() const override;
    double getMaximumFrequency() const override;
    // Walks the table afresh; after the end, RESTART wraps and the others hold the last
    // frequency. 0.0 for an empty table.
    double getFrequencyAt(uint time) const override;
    bool isTimeDependend() const override;
    bool isActiveAt(uint time) const override;
    // Works with the cached length, stale or not. Empty for an empty table or a table
    // without length.
    QList<HRActivity> calculateHRActivities(
        uint start, uint length, double resolution) const override;
    void visitHRActivities(
        uint start, uint length, double resolution, const HRActivitySink &sink) const override;
    // The cached length for INACTIVE, stale or not.
    uint activeUntil() const override;
    // endBehavior takes no part.
    bool equal(const IFrequencySettings *other) const override;
    IFrequencySettings *clone() const override;

private:
    uint calculateLength() const;
    void resetLength();

    QList<FrequencyStep> frequencySteps { FrequencyStep { 25000000.0, 1000 } };
    EndBehaviourType endBehavior = EndRestart;
    // Sum of all durations, 0 while not known.
    mutable uint length = 0;
};

} // namespace Simulation
