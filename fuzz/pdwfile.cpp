// A PDW file read record by record to its end.

#include "fuzzhelpers.h"

#include <radiosim/datafiles/pdwfile.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    PDWFile file(fileOf(data, size, "pdw"), false, false);
    CPackedPDW record;
    // One read past the end still answers 32; a loop that went on beyond it would hang.
    for (size_t reads = 0; file.getPDW(&record) == 32; ++reads)
        if (reads > size / 32 + 1)
            std::abort();
    return 0;
}
