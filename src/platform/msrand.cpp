#include "msrand.h"

namespace MsRuntime {

namespace {
thread_local unsigned int state = 1;
}

void srand(unsigned int seed)
{
    state = seed;
}

int rand()
{
    state = state * 214013u + 2531011u;
    return int((state >> 16) & 0x7fffu);
}

} // namespace MsRuntime
