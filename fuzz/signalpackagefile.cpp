// A package descriptor, read and written again.

#include "fuzzhelpers.h"

#include <radiosim/packages/signalpackagefile.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const Simulation::SignalPackage package
        = Simulation::SignalPackageFile::signalPackage(bytesOf(data, size));
    Simulation::SignalPackageFile::signalPackageFile(package, fileOf(data, 0, "xml"));
    return 0;
}
