#include "orvoos.h"

#include <chrono>

IOrvoOS::~IOrvoOS() = default;

IOrvoOS *OrvoOS::Instance()
{
    static OrvoOS instance;
    return &instance;
}

quint64 OrvoOS::currentTimeStampUs() const
{
    using namespace std::chrono;
    return quint64(duration_cast<microseconds>(system_clock::now().time_since_epoch()).count());
}
