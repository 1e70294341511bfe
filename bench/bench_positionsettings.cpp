#include <radiosim/scenario/positionsettings.h>
#include <radiosim/units/geodesy.h>

#include <benchmark/benchmark.h>

#include <vector>

using namespace Simulation;

namespace {
// A zig-zag route of `count` major points about 1 km apart, with a dwell at every tenth.
PositionSettingsPtp makeRoute(int count)
{
    QVector<MovementPoint> points(count);
    for (int i = 0; i < count; ++i) {
        points[i].position = TPos { 11.0 + 0.01 * i, 48.0 + 0.005 * (i % 2) };
        points[i].major = true;
        points[i].speed = 40.0 + i % 7;
        points[i].dwellTime = i % 10 == 0 ? 5000 : 0;
    }
    PositionSettingsPtp route({ 0.0, 0.0 }, 0.01);
    route.setMovements(points);
    route.setEndBehavior(EndStop);
    return route;
}

// Query times spread evenly over the whole route, so the walk covers half the legs on average.
std::vector<uint> spreadTimes(const PositionSettingsPtp &route)
{
    const uint total = route.getArivalTime(route.getMovments().size() - 1);
    std::vector<uint> times(257);
    for (size_t i = 0; i < times.size(); ++i)
        times[i] = uint(quint64(total) * i / times.size());
    return times;
}

template <typename Query> void runQueries(benchmark::State &state, Query query)
{
    const PositionSettingsPtp route = makeRoute(int(state.range(0)));
    const std::vector<uint> times = spreadTimes(route);
    size_t next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(query(route, times[next]));
        next = next + 1 == times.size() ? 0 : next + 1;
    }
    state.SetComplexityN(state.range(0));
}

// Baseline: the bare linear search for the running leg over plain leg times, no geometry.
void BM_BareLegSearch(benchmark::State &state)
{
    const PositionSettingsPtp route = makeRoute(int(state.range(0)));
    const std::vector<uint> times = spreadTimes(route);
    std::vector<uint> legTimes;
    for (const MovementPoint &point : route.getMovments())
        legTimes.push_back(point.dwellTime + point.transitionTime);
    legTimes.pop_back();
    size_t next = 0;
    for (auto _ : state) {
        const uint time = times[next];
        uint begin = 0;
        size_t leg = 0;
        while (leg < legTimes.size() && time >= begin + legTimes[leg])
            begin += legTimes[leg++];
        benchmark::DoNotOptimize(leg);
        next = next + 1 == times.size() ? 0 : next + 1;
    }
    state.SetComplexityN(state.range(0));
}

// Baseline: one geodesic inverse, which headingAt and speedAt each pay once per query.
void BM_BareAzimuth(benchmark::State &state)
{
    const TPos from { 11.0, 48.0 };
    TPos to { 11.01, 48.005 };
    for (auto _ : state) {
        benchmark::DoNotOptimize(to);
        benchmark::DoNotOptimize(azimuth(from, to));
    }
}

void BM_GetPositionAt(benchmark::State &state)
{
    runQueries(
        state, [](const PositionSettingsPtp &route, uint t) { return route.getPositionAt(t); });
}

void BM_HeadingAt(benchmark::State &state)
{
    runQueries(state, [](const PositionSettingsPtp &route, uint t) { return route.headingAt(t); });
}

void BM_SpeedAt(benchmark::State &state)
{
    runQueries(state, [](const PositionSettingsPtp &route, uint t) { return route.speedAt(t); });
}
} // namespace

BENCHMARK(BM_BareLegSearch)->Arg(10)->Arg(100)->Arg(1000)->Complexity(benchmark::oN);
BENCHMARK(BM_BareAzimuth);
BENCHMARK(BM_GetPositionAt)->Arg(10)->Arg(100)->Arg(1000)->Complexity(benchmark::oN);
BENCHMARK(BM_HeadingAt)->Arg(10)->Arg(100)->Arg(1000)->Complexity(benchmark::oN);
BENCHMARK(BM_SpeedAt)->Arg(10)->Arg(100)->Arg(1000)->Complexity(benchmark::oN);
