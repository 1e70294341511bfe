#include "frequencysettings.h"

#include <radiosim/platform/msrand.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numeric>

namespace Simulation {

namespace {

// One of 0.00 .. 0.99; a new chirp or fast hopper advances the thread's generator by one.
float randomTimeslotOffset()
{
    return float((MsRuntime::rand() % 100) / 100.0);
}

// Truncation toward zero to 64 bits. NaN and values out of range give the integer
// indefinite value of the x86 conversion, whose low 32 bits are 0, instead of undefined
// behaviour.
qint64 truncate(double value)
{
    constexpr double limit = 9223372036854775808.0;
    if (value >= -limit && value < limit)
        return qint64(value);
    return std::numeric_limits<qint64>::min();
}

bool lowerFrequency(const FrequencyStep &a, const FrequencyStep &b)
{
    return a.frequency < b.frequency;
}

// The low 32 bits, as the time arithmetic of the hop and sweep grids uses them.
uint low32(qint64 value)
{
    return uint(quint64(value));
}

} // namespace

FrequencySettings_Chirp::FrequencySettings_Chirp()
    : timeslotOffset(randomTimeslotOffset())
{
}

FrequencySettingsType FrequencySettings_Chirp::getType() const
{
    return FrequencyChirp;
}

double FrequencySettings_Chirp::getCenterFrequency() const
{
    return (stopFrequency + startFrequency) * 0.5;
}

void FrequencySettings_Chirp::setCenterFrequency(double frequency)
{
    const double shift = getCenterFrequency() - frequency;
    startFrequency -= shift;
    stopFrequency -= shift;
}

double FrequencySettings_Chirp::getMinimumFrequency() const
{
    return std::min(startFrequency, stopFrequency);
}

double FrequencySettings_Chirp::getMaximumFrequency() const
{
    return std::max(startFrequency, stopFrequency);
}

double FrequencySettings_Chirp::getFrequencyAt(uint time) const
{
    if (duration == 0)
        return 0.0;
    const float d = float(duration);
    const float x = float(time) - d * timeslotOffset;
    const uint r = low32(truncate(x)) % duration;
    const float phase = float(r) / d;
    return double(phase) * (stopFrequency - startFrequency) + startFrequency;
}

bool FrequencySettings_Chirp::isTimeDependend() const
{
    return true;
}

bool FrequencySettings_Chirp::isActiveAt(uint) const
{
    return true;
}

QList<HRActivity> FrequencySettings_Chirp::calculateHRActivities(
    uint start, uint length, double resolution) const
{
    return collectHRActivities(start, length, resolution);
}

void FrequencySettings_Chirp::visitHRActivities(
    uint start, uint length, double resolution, const HRActivitySink &sink) const
{
    const double slope = std::fabs(startFrequency - stopFrequency) / double(float(duration));
    const double steps = std::ceil(resolution / slope);
    // Zero resolution, equal frequencies or zero duration leave no positive step, and the
    // loop below would never end.
    if (!(steps >= 1.0))
        return;
    const uint step = low32(truncate(steps));
    const uint end = start + length;
    if (step == 0 || start >= end)
        return;
    uint t = start;
    uint next;
    do {
        next = t + step;
        const uint upper = std::min(next, end);
        if (upper > start && upper != std::max(t, start)
            && !sink(HRActivity { t, step, getFrequencyAt(t) }))
            return;
        t = next;
    } while (next < end);
}

uint FrequencySettings_Chirp::activeUntil() const
{
    return NoEnd;
}

bool FrequencySettings_Chirp::equal(const IFrequencySettings *other) const
{
    const auto *chirp = dynamic_cast<const FrequencySettings_Chirp *>(other);
    return chirp && compareFrequency(float(startFrequency), float(chirp->startFrequency))
        && compareFrequency(float(stopFrequency), float(chirp->stopFrequency))
        && duration == chirp->duration;
}

IFrequencySettings *FrequencySettings_Chirp::clone() const
{
    auto *copy = new FrequencySettings_Chirp;
    copy->startFrequency = startFrequency;
    copy->stopFrequency = stopFrequency;
    copy->duration = duration;
    copy->timeslotOffset = timeslotOffset;
    return copy;
}

FrequencySettings_FastHopper::FrequencySettings_FastHopper()
    : timeslotOffset(randomTimeslotOffset())
{
}

void FrequencySettings_FastHopper::setMinimumFrequency(double value)
{
    minimumFrequency = value;
    invalidateFrequencyList();
}

void FrequencySettings_FastHopper::setMaximumFrequency(double value)
{
    maximumFrequency = value;
    invalidateFrequencyList();
}

void FrequencySettings_FastHopper::setHoppCount(uint value)
{
    hoppCount = value;
    invalidateFrequencyList();
}

void FrequencySettings_FastHopper::setHoppRate(uint value)
{
    hoppRate = value;
    invalidateFrequencyList();
}

void FrequencySettings_FastHopper::setHoppSet(uint value)
{
    hoppSet = value;
    invalidateFrequencyList();
}

FrequencySettingsType FrequencySettings_FastHopper::getType() const
{
    return FrequencyFastHopper;
}

double FrequencySettings_FastHopper::getCenterFrequency() const
{
    return (maximumFrequency + minimumFrequency) * 0.5;
}

void FrequencySettings_FastHopper::setCenterFrequency(double frequency)
{
    const double shift = getCenterFrequency() - frequency;
    minimumFrequency -= shift;
    maximumFrequency -= shift;
    invalidateFrequencyList();
}

double FrequencySettings_FastHopper::getMinimumFrequency() const
{
    return minimumFrequency;
}

double FrequencySettings_FastHopper::getMaximumFrequency() const
{
    return maximumFrequency;
}

double FrequencySettings_FastHopper::getFrequencyAt(uint time) const
{
    if (hoppCount == 0 || hoppRate == 0)
        return 0.0;
    setupFrequencyList();
    return channelAt(time, 1000.0f / float(hoppRate));
}

double FrequencySettings_FastHopper::channelAt(uint time, float hop) const
{
    const qint64 x = truncate(float(time) - hop * timeslotOffset);
    const qint64 i = truncate(float(low32(x)) / hop);
    return frequencyList[low32(i) % hoppCount];
}

bool FrequencySettings_FastHopper::isTimeDependend() const
{
    return true;
}

bool FrequencySettings_FastHopper::isActiveAt(uint) const
{
    return true;
}

QList<HRActivity> FrequencySettings_FastHopper::calculateHRActivities(
    uint start, uint length, double resolution) const
{
    return collectHRActivities(start, length, resolution);
}

void FrequencySettings_FastHopper::visitHRActivities(
    uint start, uint length, double, const HRActivitySink &sink) const
{
    if (hoppCount == 0 || hoppRate == 0)
        return;
    setupFrequencyList();
    // Slots are laid out on whole ms, but each piece takes its channel as getFrequencyAt does.
    const float channelHop = 1000.0f / float(hoppRate);
    const double hop = double(std::ceil(channelHop));
    const qint64 offset = truncate(double(timeslotOffset) * hop);
    qint64 k = truncate(double(low32(offset + start)) / hop);
    if (!sink(HRActivity { start, quint64(offset),
            channelAt(low32(truncate(double(offset) * 0.5 + start)), channelHop) }))
        return;
    const uint end = start + length;
    for (double x = double(k) * hop; double(end) > x; x = double(++k) * hop) {
        const uint slotStart = low32(truncate(std::ceil(x)) + offset);
        const uint slotEnd = low32(truncate(std::floor(slotStart + hop)));
        const uint lo = std::max(slotStart, start);
        const uint hi = std::min(slotEnd, end);
        if (hi > start && hi != lo) {
            // A slot that begins behind the window end has hi below lo and a length wrapped
            // to nearly 2^32; kept, the merge with the timetable drops it for its begin.
            const uint span = hi - lo;
            if (!sink(HRActivity {
                    lo, span, channelAt(low32(truncate(span * 0.5 + lo)), channelHop) }))
                return;
        }
    }
}

uint FrequencySettings_FastHopper::activeUntil() const
{
    return NoEnd;
}

bool FrequencySettings_FastHopper::equal(const IFrequencySettings *other) const
{
    const auto *hopper = dynamic_cast<const FrequencySettings_FastHopper *>(other);
    return hopper && compareFrequency(float(minimumFrequency), float(hopper->minimumFrequency))
        && compareFrequency(float(maximumFrequency), float(hopper->maximumFrequency))
        && hoppCount == hopper->hoppCount && hoppRate == hopper->hoppRate
        && hoppSet == hopper->hoppSet;
}

IFrequencySettings *FrequencySettings_FastHopper::clone() const
{
    auto *copy = new FrequencySettings_FastHopper;
    copy->minimumFrequency = minimumFrequency;
    copy->maximumFrequency = maximumFrequency;
    copy->hoppCount = hoppCount;
    copy->hoppRate = hoppRate;
    copy->hoppSet = hoppSet;
    copy->timeslotOffset = timeslotOffset;
    return copy;
}

// Eight passes of swaps, each with a random partner biased by the running index. Channel
// numbers are shuffled instead of frequencies, half the memory to move, and become
// frequencies at the end with the same raster formula. The partner (r + i) mod n is taken as
// (r + i mod n) mod n, which needs no division per swap and equals it while r + i stays
// within 32 bits; the wrapped sum is used beyond. The generator runs as a local copy whose
// final state goes back to the thread through srand, so the thread continues exactly as
// after 8 * n calls of rand.
void FrequencySettings_FastHopper::setupFrequencyList() const
{
    if (frequencyList.size() == hoppCount)
        return;
    const uint n = hoppCount;
    std::vector<uint> channels(n);
    std::iota(channels.begin(), channels.end(), 0u);
    const uint swaps = 8u * n;
    // The partners follow from the generator alone, not from the channels: they are worked out
    // Lead swaps ahead into a ring, and each one's line is prefetched for the swap that writes it.
    constexpr uint Lead = 32;
    std::array<uint, Lead> partners;
    uint state = hoppSet;
    uint planned = 0;
    uint bPlanned = 0;
    auto plan = [&] {
        state = MsRuntime::nextState(state);
        const auto r = uint(MsRuntime::output(state));
        uint a;
        if (r + planned < planned) {
            a = (r + planned) % n;
        } else {
            a = r + bPlanned;
            if (a >= n)
                a %= n;
        }
        __builtin_prefetch(&channels[a], 1);
        partners[planned % Lead] = a;
        if (++bPlanned == n)
            bPlanned = 0;
        ++planned;
    };
    while (planned < std::min(Lead, swaps))
        plan();
    uint b = 0;
    for (uint i = 0; i < swaps; ++i) {
        const uint a = partners[i % Lead];
        if (planned < swaps)
            plan();
        std::swap(channels[a], channels[b]);
        if (++b == n)
            b = 0;
    }
    MsRuntime::srand(state);
    // The detour through float matters only for counts above 2^24.
    const double spacing = (maximumFrequency - minimumFrequency) / double(float(n));
    frequencyList.resize(n);
    for (uint i = 0; i < n; ++i)
        frequencyList[i] = channels[i] * spacing + minimumFrequency;
}

void FrequencySettings_FastHopper::invalidateFrequencyList()
{
    frequencyList.clear();
}

FrequencySettings_SlowHopper::FrequencySettings_SlowHopper() = default;

int FrequencySettings_SlowHopper::rows() const
{
    return frequencySteps.size();
}

void FrequencySettings_SlowHopper::setFrequencySteps(const QList<FrequencyStep> &steps)
{
    frequencySteps = steps;
    resetLength();
}

double FrequencySettings_SlowHopper::getFrequency(int row) const
{
    if (row < 0 || row >= rows())
        return -1.0;
    return frequencySteps.at(row).frequency;
}

uint FrequencySettings_SlowHopper::getDuration(int row) const
{
    if (row < 0 || row >= rows())
        return 0;
    return frequencySteps.at(row).duration;
}

uint FrequencySettings_SlowHopper::getTime(int row) const
{
    uint time = 0;
    const int last = std::min(row, rows());
    for (int i = 0; i < last; ++i)
        time += frequencySteps.at(i).duration;
    return time;
}

void FrequencySettings_SlowHopper::setFrequency(int row, double frequency)
{
    resetLength();
    if (row >= 0 && row < rows())
        frequencySteps[row].frequency = frequency;
}

void FrequencySettings_SlowHopper::setDuration(int row, uint stepDuration)
{
    resetLength();
    if (row >= 0 && row < rows())
        frequencySteps[row].duration = stepDuration;
}

void FrequencySettings_SlowHopper::setTime(int row, uint time)
{
    resetLength();
    if (row <= 0 || row >= rows())
        return;
    if (time > getTime(row - 1))
        frequencySteps[row - 1].duration += time - getTime(row);
}

void FrequencySettings_SlowHopper::insertStep(int row)
{
    if (row < 0 && !frequencySteps.isEmpty())
        frequencySteps.append(frequencySteps.last());
    else if (row >= 0 && row < rows())
        frequencySteps.insert(row + 1, frequencySteps.at(row));
}

void FrequencySettings_SlowHopper::removeStep(int row)
{
    if (row >= 1 && row < rows())
        frequencySteps.removeAt(row);
}

FrequencySettingsType FrequencySettings_SlowHopper::getType() const
{
    return FrequencySlowHopper;
}

double FrequencySettings_SlowHopper::getCenterFrequency() const
{
    return frequencySteps.isEmpty() ? 0.0 : frequencySteps.first().frequency;
}

void FrequencySettings_SlowHopper::setCenterFrequency(double frequency)
{
    resetLength();
    if (frequencySteps.isEmpty())
        return;
    const double shift = frequencySteps.first().frequency - frequency;
    for (FrequencyStep &step : frequencySteps)
        step.frequency -= shift;
}

double FrequencySettings_SlowHopper::getMinimumFrequency() const
{
    if (frequencySteps.isEmpty())
        return 0.0;
    return std::min_element(frequencySteps.cbegin(), frequencySteps.cend(), lowerFrequency)
        ->frequency;
}

double FrequencySettings_SlowHopper::getMaximumFrequency() const
{
    if (frequencySteps.isEmpty())
        return 0.0;
    return std::max_element(frequencySteps.cbegin(), frequencySteps.cend(), lowerFrequency)
        ->frequency;
}

double FrequencySettings_SlowHopper::getFrequencyAt(uint time) const
{
    if (frequencySteps.isEmpty())
        return 0.0;
    uint a = 0;
    for (const FrequencyStep &step : frequencySteps) {
        if (a <= time && time - a < step.duration)
            return step.frequency;
        a += step.duration;
    }
    // Only a time beyond the total recurses, so a table whose sum wraps past 32 bits
    // cannot recurse without end.
    if (endBehavior == EndRestart && a != 0 && time >= a)
        return getFrequencyAt(time % a);
    return frequencySteps.last().frequency;
}

bool FrequencySettings_SlowHopper::isTimeDependend() const
{
    return true;
}

bool FrequencySettings_SlowHopper::isActiveAt(uint time) const
{
    return endBehavior != EndInactive || time <= getTime(rows());
}

QList<HRActivity> FrequencySettings_SlowHopper::calculateHRActivities(
    uint start, uint windowLength, double resolution) const
{
    return collectHRActivities(start, windowLength, resolution);
}

void FrequencySettings_SlowHopper::visitHRActivities(
    uint start, uint windowLength, double, const HRActivitySink &sink) const
{
    if (frequencySteps.isEmpty())
        return;
    const uint total = calculateLength();
    const uint n = uint(rows());
    if (start > total && endBehavior == EndStop) {
        sink(HRActivity { start, windowLength, frequencySteps.last().frequency });
        return;
    }
    if ((start > total && endBehavior == EndInactive) || total == 0)
        return;
    const uint phase = start % total;
    const uint base = start - phase;
    const uint end = windowLength + phase;
    if (end == 0)
        return;
    const bool holdsLast = endBehavior == EndStop || endBehavior == EndInactive;
    uint a = 0;
    // A stale total over a table whose durations are all 0 would never advance.
    uint aAtPassStart = 0;
    for (uint i = 0;; ++i) {
        if (i % n == 0 && i > 0) {
            if (a == aAtPassStart)
                break;
            aAtPassStart = a;
        }
        const FrequencyStep &step = frequencySteps.at(int(i % n));
        const uint prev = a;
        uint next = a + step.duration;
        if (next == total && holdsLast) {
            next = end;
            a = end;
        }
        if (next > phase && prev < end) {
            const uint from = std::max(prev, phase);
            if (!sink(HRActivity { from + base, std::min(next, end) - from, step.frequency }))
                return;
        }
        a += step.duration;
        if (a >= end)
            break;
    }
}

uint FrequencySettings_SlowHopper::activeUntil() const
{
    return endBehavior > EndRestart ? calculateLength() : NoEnd;
}

bool FrequencySettings_SlowHopper::equal(const IFrequencySettings *other) const
{
    const auto *hopper = dynamic_cast<const FrequencySettings_SlowHopper *>(other);
    if (!hopper || hopper->rows() != rows())
        return false;
    return std::equal(frequencySteps.cbegin(), frequencySteps.cend(),
        hopper->frequencySteps.cbegin(), [](const FrequencyStep &a, const FrequencyStep &b) {
            return compareFrequency(float(a.frequency), float(b.frequency))
                && a.duration == b.duration;
        });
}

IFrequencySettings *FrequencySettings_SlowHopper::clone() const
{
    auto *copy = new FrequencySettings_SlowHopper;
    copy->frequencySteps = frequencySteps;
    copy->endBehavior = endBehavior;
    return copy;
}

uint FrequencySettings_SlowHopper::calculateLength() const
{
    if (length == 0)
        length = getTime(rows());
    return length;
}

void FrequencySettings_SlowHopper::resetLength()
{
    length = 0;
}

} // namespace Simulation
