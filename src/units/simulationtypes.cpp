#include "simulationtypes.h"

#include <cmath>

namespace Simulation {

bool compareFrequency(float a, float b)
{
    return std::fabs(a - b) < 0.001;
}

QString stringForFrequencySettingsType(FrequencySettingsType type)
{
    switch (type) {
    case FrequencyFixed:
        return QStringLiteral("Fixed Frequency");
    case FrequencySlowHopper:
        return QStringLiteral("Slow Frequency Hopper");
    case FrequencyChirp:
        return QStringLiteral("Frequency Chirp");
    case FrequencyFastHopper:
        return QStringLiteral("Fast Frequency Hopper");
    }
    return QString();
}

QString stringForPositionSettingsType(PositionSettingsType type)
{
    switch (type) {
    case PositionFixed:
        return QStringLiteral("Fixed Position");
    case PositionMovement:
        return QStringLiteral("Movement");
    }
    return QString();
}

QString stringForNetworkType(NetworkType type)
{
    return type == NetworkHierarchical ? QStringLiteral("Hierarchical") : QStringLiteral("Star");
}

QString analogModulationToString(AnalogModulations modulation)
{
    switch (modulation) {
    case ModulationNone:
        return QStringLiteral("CW");
    case ModulationAM:
        return QStringLiteral("AM");
    case ModulationFM:
        return QStringLiteral("FM");
    case ModulationLSB:
        return QStringLiteral("LSB");
    case ModulationUSB:
        return QStringLiteral("USB");
    case ModulationDigital:
        return QStringLiteral("Digital");
    }
    return QStringLiteral("None");
}

AnalogModulations analogModulationFromString(const QString &text)
{
    if (text == QLatin1String("AM"))
        return ModulationAM;
    if (text == QLatin1String("FM"))
        return ModulationFM;
    if (text == QLatin1String("LSB"))
        return ModulationLSB;
    if (text == QLatin1String("USB"))
        return ModulationUSB;
    if (text == QLatin1String("Digital"))
        return ModulationDigital;
    return ModulationNone;
}

} // namespace Simulation
