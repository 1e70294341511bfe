#pragma once

#include <radiosim/units/settings.h>

// Fixed behaviours that end at a given time, standing in for hoppers and routes with an
// INACTIVE end.
class LimitedFrequency : public Simulation::FrequencySettingsFixed
{
public:
    explicit LimitedFrequency(uint endTime)
        : end(endTime)
    {
    }
    bool isActiveAt(uint time) const override { return time <= end; }
    uint activeUntil() const override { return end; }
    IFrequencySettings *clone() const override { return new LimitedFrequency(*this); }

private:
    uint end;
};

class LimitedPosition : public Simulation::PositionSettingsFixed
{
public:
    LimitedPosition(const Simulation::TPos &where, uint endTime)
        : PositionSettingsFixed(where)
        , end(endTime)
    {
    }
    bool isActiveAt(uint time) const override { return time <= end; }
    uint activeUntil() const override { return end; }
    IPositionSettings *clone() override { return new LimitedPosition(*this); }

private:
    uint end;
};
