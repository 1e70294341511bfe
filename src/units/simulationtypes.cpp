#include "simulationtypes.h"

#include <cmath>
#include <new>

namespace Simulation {

namespace {

// Enough for the records of a busy window; beyond it, freed nodes go back to the heap.
constexpr int KeptNodes = 4096;

struct FreeNode
{
    FreeNode *next;
};

// Plain data in the initial-exec model: reached with one load, where the general model
// would call into the dynamic loader on every record.
struct FreeNodes
{
    FreeNode *head;
    int count;
    bool reaperArmed;
    // Set when the list was handed back as the thread ended: nodes freed after that, by the
    // destructors of static lists say, go straight to the heap.
    bool gone;
};
__attribute__((tls_model("initial-exec"))) thread_local FreeNodes freeNodes {};

struct FreeNodesReaper
{
    ~FreeNodesReaper()
    {
        freeNodes.gone = true;
        while (FreeNode *node = freeNodes.head) {
            freeNodes.head = node->next;
            ::operator delete(node);
        }
    }
};
thread_local FreeNodesReaper reaper;

} // namespace

void *HRActivity::operator new(std::size_t size)
{
    FreeNodes &nodes = freeNodes;
    if (size == sizeof(HRActivity) && nodes.head) {
        FreeNode *node = nodes.head;
        nodes.head = node->next;
        --nodes.count;
        return node;
    }
    return ::operator new(size);
}

void HRActivity::operator delete(void *memory, std::size_t size) noexcept
{
    FreeNodes &nodes = freeNodes;
    if (memory && size == sizeof(HRActivity) && !nodes.gone && nodes.count < KeptNodes) {
        if (!nodes.reaperArmed) {
            // The first use of the reaper registers its destructor for this thread.
            static_cast<void>(&reaper);
            nodes.reaperArmed = true;
        }
        nodes.head = new (memory) FreeNode { nodes.head };
        ++nodes.count;
        return;
    }
    ::operator delete(memory);
}

bool compareFrequency(float a, float b)
{
    return std::fabs(a - b) < 0.001;
}

QString stringForFrequencySettingsType(FrequencySettingsType type)
{
    switch (type) {
    case FrequencyFixed:
        return QStringLiteral("Fixed Frequency");
    case FrequencySlowHopper:
        return QStringLiteral("Slow Frequency Hopper");
    case FrequencyChirp:
        return QStringLiteral("Frequency Chirp");
    case FrequencyFastHopper:
        return QStringLiteral("Fast Frequency Hopper");
    }
    return QString();
}

QString stringForPositionSettingsType(PositionSettingsType type)
{
    switch (type) {
    case PositionFixed:
        return QStringLiteral("Fixed Position");
    case PositionMovement:
        return QStringLiteral("Movement");
    }
    return QString();
}

QString stringForNetworkType(NetworkType type)
{
    return type == NetworkHierarchical ? QStringLiteral("Hierarchical") : QStringLiteral("Star");
}

QString analogModulationToString(AnalogModulations modulation)
{
    switch (modulation) {
    case ModulationNone:
        return QStringLiteral("CW");
    case ModulationAM:
        return QStringLiteral("AM");
    case ModulationFM:
        return QStringLiteral("FM");
    case ModulationLSB:
        return QStringLiteral("LSB");
    case ModulationUSB:
        return QStringLiteral("USB");
    case ModulationDigital:
        return QStringLiteral("Digital");
    }
    return QStringLiteral("None");
}

AnalogModulations analogModulationFromString(const QString &text)
{
    if (text == QLatin1String("AM"))
        return ModulationAM;
    if (text == QLatin1String("FM"))
        return ModulationFM;
    if (text == QLatin1String("LSB"))
        return ModulationLSB;
    if (text == QLatin1String("USB"))
        return ModulationUSB;
    if (text == QLatin1String("Digital"))
        return ModulationDigital;
    return ModulationNone;
}

} // namespace Simulation
