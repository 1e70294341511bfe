// A result file, read at the head, across its end and far beyond.

#include "fuzzhelpers.h"

#include <radiosim/datafiles/resultdatafile.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Simulation::ResultDataFile results(fileOf(data, size, "rdf"));
    if (!results.open())
        return 0;
    for (const Stretch &stretch : stretchesFor(results.length()))
        results.readResultData(stretch.start, stretch.duration);
    return 0;
}
