#pragma once

#include <radiosim/radiosim_export.h>

// The pseudo-random generator of the Microsoft C run-time, reproduced exactly so that
// stored hop sequences come out the same. State is per thread and starts at 1, as there;
// the C library's own generator is left alone.
namespace MsRuntime {

constexpr int RandMax = 0x7fff;

// One step of the generator, and the value rand() gives for the state after it: for code
// that runs a local copy of the sequence.
constexpr unsigned int nextState(unsigned int state)
{
    return state * 214013u + 2531011u;
}
constexpr int output(unsigned int state)
{
    return int((state >> 16) & unsigned(RandMax));
}

RADIOSIM_EXPORT void srand(unsigned int seed);
// Next value in [0, RandMax].
RADIOSIM_EXPORT int rand();

} // namespace MsRuntime
