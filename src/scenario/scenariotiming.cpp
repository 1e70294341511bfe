#include "scenariotiming.h"

#include <radiosim/platform/orvoos.h>

#include <atomic>

namespace Simulation {

namespace {
std::atomic<IOrvoOS *> replacementClock { nullptr };
}

void ScenarioNoiseSettings::setDefaults()
{
    *this = ScenarioNoiseSettings();
}

bool ScenarioNoiseSettings::operator==(const ScenarioNoiseSettings &other) const
{
    return qFuzzyCompare(m_noiseDensity, other.m_noiseDensity)
        && qFuzzyCompare(m_noiseDeviation, other.m_noiseDeviation)
        && qFuzzyCompare(m_frequencyDependentNoiseDensity, other.m_frequencyDependentNoiseDensity)
        && qFuzzyCompare(
            m_frequencyDependentNoiseGranularity, other.m_frequencyDependentNoiseGranularity)
        && qFuzzyCompare(
            m_frequencyDependentNoiseVariability, other.m_frequencyDependentNoiseVariability)
        && qFuzzyCompare(m_azimuthErrorDeviation, other.m_azimuthErrorDeviation);
}

quint64 ScenarioTimingHelper::currentTimeStamp()
{
    IOrvoOS *clock = replacementClock.load();
    return (clock ? clock : OrvoOS::Instance())->currentTimeStampUs();
}

void ScenarioTimingHelper::setClock(IOrvoOS *clock)
{
    replacementClock.store(clock);
}

uint ScenarioTimingHelper::calculateCurrentScenarioTime(
    quint64 startTimestamp, uint scenarioStartTime)
{
    return uint(currentTimeStamp() / 1000 - startTimestamp / 1000 - scenarioStartTime);
}

void ScenarioTimingHelper::startScenarioTime(quint64 timestamp, uint scenarioTime)
{
    m_startTimestamp = timestamp - quint64(scenarioTime) * 1000;
    m_scenarioStartTime = 0;
    m_paused = false;
    m_stopped = false;
}

void ScenarioTimingHelper::pauseScenarioTime(uint scenarioTime)
{
    m_paused = true;
    m_pausedTime = scenarioTime;
}

void ScenarioTimingHelper::stopScenarioTime()
{
    m_paused = true;
    m_stopped = true;
    m_pausedTime = 0;
}

uint ScenarioTimingHelper::scenarioTime() const
{
    if (m_paused)
        return m_pausedTime;
    return uint((currentTimeStamp() - m_startTimestamp) / 1000);
}

} // namespace Simulation
