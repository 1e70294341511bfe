#pragma once

#include <radiosim/radiosim_export.h>

#include <QtGlobal>

class IOrvoOS;

namespace Simulation {

// Noise model of a whole scenario, owned by its document.
class RADIOSIM_EXPORT ScenarioNoiseSettings
{
public:
    // The defaults are those of the fields below.
    void setDefaults();

    double noiseDensity() const { return m_noiseDensity; }
    void setNoiseDensity(double value) { m_noiseDensity = value; }
    double noiseDeviation() const { return m_noiseDeviation; }
    void setNoiseDeviation(double value) { m_noiseDeviation = value; }
    double frequencyDependentNoiseDensity() const { return m_frequencyDependentNoiseDensity; }
    void setFrequencyDependentNoiseDensity(double value)
    {
        m_frequencyDependentNoiseDensity = value;
    }
    double frequencyDependentNoiseGranularity() const
    {
        return m_frequencyDependentNoiseGranularity;
    }
    void setFrequencyDependentNoiseGranularity(double value)
    {
        m_frequencyDependentNoiseGranularity = value;
    }
    double frequencyDependentNoiseVariability() const
    {
        return m_frequencyDependentNoiseVariability;
    }
    void setFrequencyDependentNoiseVariability(double value)
    {
        m_frequencyDependentNoiseVariability = value;
    }
    double azimuthErrorDeviation() const { return m_azimuthErrorDeviation; }
    void setAzimuthErrorDeviation(double value) { m_azimuthErrorDeviation = value; }

    // Fuzzy per field, relative 1e-12; an exact zero equals only an exact zero.
    bool operator==(const ScenarioNoiseSettings &other) const;

private:
    double m_noiseDensity = -35.0;
    double m_noiseDeviation = -45.0;
    double m_frequencyDependentNoiseDensity = -35.0;
    double m_frequencyDependentNoiseGranularity = 0.4;
    double m_frequencyDependentNoiseVariability = 0.0;
    double m_azimuthErrorDeviation = 1.0;
};

// The scenario clock of a running simulation: maps microsecond time stamps of the shared clock
// to ms of scenario time. Starts stopped; to go on after a pause, start again with the current
// time stamp and the paused time.
class RADIOSIM_EXPORT ScenarioTimingHelper
{
public:
    // µs of the clock that all processes of one simulation share.
    static quint64 currentTimeStamp();
    // Replaces that clock, e.g. by a simulated one; null restores the system's. Not owned.
    static void setClock(IOrvoOS *clock);
    // Divides each operand by 1000 before subtracting, so it can differ by 1 ms from
    // scenarioTime(), which divides the difference. A start in the future wraps.
    static uint calculateCurrentScenarioTime(quint64 startTimestamp, uint scenarioStartTime);

    // timestamp in µs at which the scenario stands at scenarioTime ms.
    void startScenarioTime(quint64 timestamp, uint scenarioTime);
    void pauseScenarioTime(uint scenarioTime);
    void stopScenarioTime();
    uint scenarioTime() const;

    bool isPaused() const { return m_paused; }
    bool isStopped() const { return m_stopped; }
    // Always 0: a start offset lives in startTimestamp().
    uint scenarioStartTime() const { return m_scenarioStartTime; }
    // µs at which scenario time 0 lay.
    quint64 startTimestamp() const { return m_startTimestamp; }

private:
    quint64 m_startTimestamp = 0;
    uint m_scenarioStartTime = 0;
    uint m_pausedTime = 0;
    bool m_paused = true;
    bool m_stopped = true;
};

} // namespace Simulation
