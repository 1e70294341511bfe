#include <radiosim/scenario/frequencysettings.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

using namespace Simulation;

// Bare baseline for the channel list: a textbook linear shuffle (one pass, std::shuffle with
// minstd_rand) of the same raster of n frequencies.
static void BM_BaselineShuffle(benchmark::State &state)
{
    const auto n = size_t(state.range(0));
    std::vector<double> channels(n);
    std::minstd_rand engine;
    for (auto _ : state) {
        for (size_t i = 0; i < n; ++i)
            channels[i] = double(i) * 2000.0 + 24000000.0;
        std::shuffle(channels.begin(), channels.end(), engine);
        benchmark::DoNotOptimize(channels.data());
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_BaselineShuffle)
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

// Setting the seed again discards the list; the next query rebuilds it.
static void BM_FastHopperChannelList(benchmark::State &state)
{
    FrequencySettings_FastHopper hopper;
    hopper.setHoppCount(uint(state.range(0)));
    for (auto _ : state) {
        hopper.setHoppSet(0);
        benchmark::DoNotOptimize(hopper.getFrequencyAt(0));
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_FastHopperChannelList)
    ->RangeMultiplier(10)
    ->Range(10000, 1000000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

// Per-record cost of the pieces of a 100 ms window, against appending the same number of
// records to a list.
static void runWindow(
    benchmark::State &state, const IFrequencySettings &settings, double resolution)
{
    size_t records = 0;
    uint start = 0;
    for (auto _ : state) {
        const QList<HRActivity> pieces = settings.calculateHRActivities(start, 100, resolution);
        records += size_t(pieces.size());
        start += 100;
        benchmark::DoNotOptimize(pieces);
    }
    state.SetItemsProcessed(int64_t(records));
}

static void BM_BaselineAppendRecords(benchmark::State &state)
{
    size_t records = 0;
    for (auto _ : state) {
        QList<HRActivity> pieces;
        for (uint i = 0; i < 100; ++i)
            pieces.append(HRActivity { i, 1, 25000000.0 });
        records += size_t(pieces.size());
        benchmark::DoNotOptimize(pieces);
    }
    state.SetItemsProcessed(int64_t(records));
}
BENCHMARK(BM_BaselineAppendRecords);

// 2 MHz per 1000 ms at 1 kHz resolution: one record per ms.
static void BM_ChirpWindow(benchmark::State &state)
{
    runWindow(state, FrequencySettings_Chirp(), 1000.0);
}
BENCHMARK(BM_ChirpWindow);

// 100 hops per second: a head and ten hops per window.
static void BM_FastHopperWindow(benchmark::State &state)
{
    FrequencySettings_FastHopper hopper;
    hopper.getFrequencyAt(0);
    runWindow(state, hopper, 0.0);
}
BENCHMARK(BM_FastHopperWindow);

// Ten steps of 10 ms each, repeating: ten records per window.
static void BM_SlowHopperWindow(benchmark::State &state)
{
    FrequencySettings_SlowHopper hopper;
    QList<FrequencyStep> steps;
    for (int i = 0; i < 10; ++i)
        steps.append(FrequencyStep { 25000000.0 + i * 25000.0, 10 });
    hopper.setFrequencySteps(steps);
    runWindow(state, hopper, 0.0);
}
BENCHMARK(BM_SlowHopperWindow);
