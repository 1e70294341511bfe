// A symbol file, read at the head, across its end and far beyond.

#include "fuzzhelpers.h"

#include <radiosim/datafiles/symboldatafile.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Simulation::SymbolDataFile symbols(fileOf(data, size, "sdf"));
    if (!symbols.open())
        return 0;
    symbols.symbolRate();
    for (const Stretch &stretch : stretchesFor(symbols.length()))
        symbols.readSymbols(stretch.start, stretch.duration);
    return 0;
}
