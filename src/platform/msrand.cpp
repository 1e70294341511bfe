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
    state = nextState(state);
    return output(state);
}

} // namespace MsRuntime
