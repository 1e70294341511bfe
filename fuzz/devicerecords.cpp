// Both device records read from the same bytes; a record read whole is written again.

#include "fuzzhelpers.h"

#include <radiosim/service/simulationdevice.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Simulation::SimulationDeviceConfiguration configuration;
    if (configuration.fromXml(bytesOf(data, size)))
        configuration.toXml(QByteArray());
    Simulation::SimulationDeviceState state;
    if (state.fromXml(bytesOf(data, size)))
        state.toXml(QByteArray());
    return 0;
}
