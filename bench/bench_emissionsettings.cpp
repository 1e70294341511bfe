#include "../tests/allocationcounter.h"

#include <radiosim/scenario/emissionsettings.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

namespace {

constexpr int Entries = 10000;
constexpr int Queries = 4096;

// Other processes' cache pressure hits the lookup harder than the baselines; for a fair
// ratio run with --benchmark_enable_random_interleaving=true.

// A timetable of 10,000 entries with random gaps and lengths, and query times over two
// periods, so that the wrap is part of every lookup.
struct Fixture
{
    Simulation::EmissionSettings settings;
    std::vector<qint64> starts;
    std::vector<boost::shared_ptr<Simulation::EmissionSettings::Emission>> entries;
    std::vector<uint> times;
    qint64 period = 0;

    Fixture()
    {
        std::mt19937 random(20240611);
        std::uniform_int_distribution<int> gap(1, 400);
        std::uniform_int_distribution<int> length(1, 300);
        qint64 start = 0;
        for (int i = 0; i < Entries; ++i) {
            start += gap(random);
            auto emission = settings.createEmission();
            emission->start = start;
            emission->duration = length(random);
            settings.addEmission(emission);
            starts.push_back(start);
            entries.push_back(emission);
        }
        period = start + 1000;
        settings.setDuration(period);
        std::uniform_int_distribution<uint> when(0, uint(2 * period));
        for (int i = 0; i < Queries; ++i)
            times.push_back(when(random));
    }
};

const Fixture &fixture()
{
    static const Fixture instance;
    return instance;
}

// Bare sorted search over the same start times, with the same reduction into the period.
void BM_LowerBoundBaseline(benchmark::State &state)
{
    const Fixture &data = fixture();
    size_t i = 0;
    for (auto _ : state) {
        const qint64 key = data.times[i++ % Queries] % data.period;
        benchmark::DoNotOptimize(std::lower_bound(data.starts.begin(), data.starts.end(), key));
    }
}
BENCHMARK(BM_LowerBoundBaseline)->Repetitions(10)->ReportAggregatesOnly(true);

// The same, handing out a reference-counted handle to the entry before the bound as a lookup
// must: the part of the cost that the interface itself demands.
void BM_LowerBoundReturningHandle(benchmark::State &state)
{
    const Fixture &data = fixture();
    size_t i = 0;
    for (auto _ : state) {
        const qint64 key = data.times[i++ % Queries] % data.period;
        const auto found = std::lower_bound(data.starts.begin(), data.starts.end(), key);
        boost::shared_ptr<Simulation::EmissionSettings::Emission> handle;
        if (found != data.starts.begin())
            handle = data.entries[size_t(found - data.starts.begin()) - 1];
        benchmark::DoNotOptimize(handle);
    }
}
BENCHMARK(BM_LowerBoundReturningHandle)->Repetitions(10)->ReportAggregatesOnly(true);

void BM_EmissionAt(benchmark::State &state)
{
    const Fixture &data = fixture();
    size_t i = 0;
    const long before = allocations.load();
    for (auto _ : state)
        benchmark::DoNotOptimize(data.settings.emissionAt(data.times[i++ % Queries]));
    state.counters["allocs/query"] = benchmark::Counter(
        double(allocations.load() - before), benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_EmissionAt)->Repetitions(10)->ReportAggregatesOnly(true);

// Filling a table entry by entry in start order, as a document reader does: each insertion
// moves the keys behind it and recounts the buckets.
void BM_FillTimetable(benchmark::State &state)
{
    const Fixture &data = fixture();
    const auto count = size_t(state.range(0));
    for (auto _ : state) {
        Simulation::EmissionSettings settings;
        for (size_t i = 0; i < count; ++i)
            settings.addEmission(data.entries[i]);
        benchmark::DoNotOptimize(settings.emissions().size());
    }
    state.SetComplexityN(state.range(0));
}
BENCHMARK(BM_FillTimetable)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(Entries)
    ->Unit(benchmark::kMicrosecond)
    ->Complexity();

} // namespace
