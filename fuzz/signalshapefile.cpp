// A signal shape file, its records read in order and by jumps within a package duration of
// one minute.

#include "fuzzhelpers.h"

#include <radiosim/datafiles/signalshapefile.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Simulation::SignalShapeFile shape(fileOf(data, size, "ssf"));
    if (!shape.open())
        return 0;
    shape.setPackageDuration(60000);
    for (uint milliseconds = 0; milliseconds < 1000; milliseconds += 50)
        shape.readSpectrum(milliseconds);
    for (const Stretch &stretch : stretchesFor(shape.duration()))
        shape.readSpectrum(stretch.start);
    return 0;
}
