#pragma once

#include <radiosim/radiosim_export.h>

#include <QList>
#include <QString>
#include <QtGlobal>

#include <cstddef>

namespace Simulation {

// Longitude then latitude, decimal degrees. The field order is part of the interface.
struct TPos
{
    double lon = 0.0;
    double lat = 0.0;
};

// One stretch of activity on one constant frequency; times in ms of scenario time.
struct HRActivity
{
    quint64 start = 0;
    quint64 duration = 0;
    double frequency = 0.0;

    // A QList keeps each record in a heap node of its own, and a device builds and drops such
    // lists on its real-time path: nodes are recycled through a free list of each thread.
    RADIOSIM_EXPORT static void *operator new(std::size_t size);
    RADIOSIM_EXPORT static void operator delete(void *memory, std::size_t size) noexcept;
    // The two above hide the placement form, which QList uses for small types.
    static void *operator new(std::size_t, void *place) noexcept { return place; }
};

// The numbers of these enumerations are stored in files and stay fixed.
enum FrequencySettingsType {
    FrequencyFixed = 0,
    FrequencySlowHopper = 1,
    FrequencyChirp = 2,
    FrequencyFastHopper = 3
};

enum PositionSettingsType { PositionFixed = 0, PositionMovement = 1 };

enum NetworkType { NetworkHierarchical = 0, NetworkStar = 1 };

enum EndBehaviourType { EndStop = 0, EndRestart = 1, EndInactive = 2 };

enum AnalogModulations {
    ModulationNone = 0,
    ModulationAM = 1,
    ModulationFM = 2,
    ModulationLSB = 3,
    ModulationUSB = 4,
    ModulationDigital = 5
};

enum EmitterType { EmitterPlain = 0, EmitterElint = 1 };

// Equal within 0.001 after narrowing to float: at 1 GHz one float step is 64 Hz,
// so frequencies tens of Hz apart compare equal there. The frequency classes rely on it.
RADIOSIM_EXPORT bool compareFrequency(float a, float b);

RADIOSIM_EXPORT QString stringForFrequencySettingsType(FrequencySettingsType type);
RADIOSIM_EXPORT QString stringForPositionSettingsType(PositionSettingsType type);
// Any non-zero value reads as "Star".
RADIOSIM_EXPORT QString stringForNetworkType(NetworkType type);
// Value 0 prints as "CW"; unknown values print as "None", which reads back as 0.
RADIOSIM_EXPORT QString analogModulationToString(AnalogModulations modulation);
RADIOSIM_EXPORT AnalogModulations analogModulationFromString(const QString &text);

} // namespace Simulation
