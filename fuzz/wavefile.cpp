// A wave file: its chunks walked by open(), then frames read at the head, across the end and
// far beyond it, as bytes, as integers and as floats.

#include "fuzzhelpers.h"

#include <radiosim/datafiles/wavefilereader.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Simulation::WaveFileReader reader(fileOf(data, size, "wav"));
    if (!reader.open())
        return 0;
    reader.cuePoints();
    std::vector<unsigned char> bytes;
    std::vector<short> integers;
    std::vector<float> floats;
    for (const Stretch &stretch : stretchesFor(reader.length())) {
        reader.readSamples(stretch.start, stretch.duration, bytes);
        reader.readSamples(stretch.start, stretch.duration, integers);
        reader.readSamples(stretch.start, stretch.duration, floats);
    }
    return 0;
}
