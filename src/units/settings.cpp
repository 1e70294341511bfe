#include "settings.h"

#include <cmath>

namespace Simulation {

IFrequencySettings::~IFrequencySettings() = default;

void IFrequencySettings::visitHRActivities(
    uint start, uint length, double resolution, const HRActivitySink &sink) const
{
    const QList<HRActivity> pieces = calculateHRActivities(start, length, resolution);
    for (const HRActivity &piece : pieces) {
        if (!sink(piece))
            return;
    }
}

QList<HRActivity> IFrequencySettings::collectHRActivities(
    uint start, uint length, double resolution) const
{
    return collectActivities(
        [&](const HRActivitySink &sink) { visitHRActivities(start, length, resolution, sink); });
}
IPositionSettings::~IPositionSettings() = default;

FrequencySettingsType FrequencySettingsFixed::getType() const
{
    return FrequencyFixed;
}

double FrequencySettingsFixed::getCenterFrequency() const
{
    return centerFrequency;
}

void FrequencySettingsFixed::setCenterFrequency(double frequency)
{
    centerFrequency = frequency;
}

double FrequencySettingsFixed::getMinimumFrequency() const
{
    return centerFrequency;
}

double FrequencySettingsFixed::getMaximumFrequency() const
{
    return centerFrequency;
}

double FrequencySettingsFixed::getFrequencyAt(uint) const
{
    return centerFrequency;
}

bool FrequencySettingsFixed::isTimeDependend() const
{
    return false;
}

bool FrequencySettingsFixed::isActiveAt(uint) const
{
    return true;
}

QList<HRActivity> FrequencySettingsFixed::calculateHRActivities(
    uint start, uint length, double) const
{
    return { HRActivity { start, length, centerFrequency } };
}

void FrequencySettingsFixed::visitHRActivities(
    uint start, uint length, double, const HRActivitySink &sink) const
{
    sink(HRActivity { start, length, centerFrequency });
}

uint FrequencySettingsFixed::activeUntil() const
{
    return NoEnd;
}

bool FrequencySettingsFixed::equal(const IFrequencySettings *other) const
{
    const auto *fixed = dynamic_cast<const FrequencySettingsFixed *>(other);
    return fixed && compareFrequency(float(centerFrequency), float(fixed->centerFrequency));
}

IFrequencySettings *FrequencySettingsFixed::clone() const
{
    return new FrequencySettingsFixed(*this);
}

PositionSettingsFixed::PositionSettingsFixed(const TPos &initial)
    : position(initial)
{
}

PositionSettingsType PositionSettingsFixed::getType() const
{
    return PositionFixed;
}

TPos PositionSettingsFixed::getPosition() const
{
    return position;
}

void PositionSettingsFixed::setPosition(const TPos &value)
{
    position = value;
}

TPos PositionSettingsFixed::getPositionAt(uint) const
{
    return position;
}

double PositionSettingsFixed::headingAt(uint) const
{
    return 0.0;
}

double PositionSettingsFixed::speedAt(uint) const
{
    return 0.0;
}

bool PositionSettingsFixed::isTimeDependend() const
{
    return false;
}

bool PositionSettingsFixed::isActiveAt(uint) const
{
    return true;
}

uint PositionSettingsFixed::activeUntil() const
{
    return NoEnd;
}

bool PositionSettingsFixed::equal(const IPositionSettings *other)
{
    const auto *fixed = dynamic_cast<const PositionSettingsFixed *>(other);
    return fixed && fixed->position.lon == position.lon && fixed->position.lat == position.lat;
}

IPositionSettings *PositionSettingsFixed::clone()
{
    return new PositionSettingsFixed(position);
}

void TransmitterSettings::setAntennaDirection(float value)
{
    if (value >= 360.0f)
        value = value - std::floor(value / 360.0f) * 360.0f;
    antennaDirection = value;
}

} // namespace Simulation
