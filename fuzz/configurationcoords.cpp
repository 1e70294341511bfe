// A position text of the configuration file in its three forms.

#include "fuzzhelpers.h"

#include <radiosim/service/simulationsystemconfiguration.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    double longitude = 0.0;
    double latitude = 0.0;
    Simulation::SimulationSystemConfiguration::coordsFromConfigurationString(
        textOf(data, size), longitude, latitude);
    return 0;
}
