// The audio of a package, read by milliseconds within a package duration of one second.

#include "fuzzhelpers.h"

#include <radiosim/datafiles/audiofile.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Simulation::AudioFile audio(fileOf(data, size, "wav"));
    audio.open();
    audio.setPackageDuration(1000);
    for (const Stretch &stretch : stretchesFor(audio.length()))
        audio.readSamples(stretch.start, stretch.duration);
    return 0;
}
