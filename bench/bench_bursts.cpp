// What a device asks continuously: the activity list of every emitter for the next window.
// 1,000 emitters (400 fixed, 200 chirps, 200 slow hoppers, 200 fast hoppers), each with a
// 20-entry timetable over a 600 s period, polled in 100 ms windows through 60 s.
#include <radiosim/scenario/emissionsettings.h>
#include <radiosim/scenario/frequencysettings.h>
#include <radiosim/scenario/scenarioobject.h>

#include <benchmark/benchmark.h>

#include <QList>
#include <QSet>

#include <memory>
#include <random>
#include <vector>

using namespace Simulation;

namespace {

constexpr uint Window = 100;
constexpr uint Covered = 60000;
constexpr qint64 Period = 600000;

IFrequencySettings *frequencyFor(int index, std::mt19937 &random)
{
    if (index < 400) {
        auto *fixed = new FrequencySettingsFixed;
        fixed->setCenterFrequency(20e6 + 25e3 * index);
        return fixed;
    }
    if (index < 600)
        return new FrequencySettings_Chirp;
    if (index < 800) {
        auto *hopper = new FrequencySettings_SlowHopper;
        QList<FrequencyStep> steps;
        for (int k = 0; k < 8; ++k)
            steps.append(
                { 30e6 + 1e5 * k, uint(std::uniform_int_distribution<>(200, 2000)(random)) });
        hopper->setFrequencySteps(steps);
        return hopper;
    }
    auto *hopper = new FrequencySettings_FastHopper;
    hopper->setHoppRate(100);
    hopper->setHoppSet(uint(index));
    return hopper;
}

// Twenty entries of 2 to 8 s, one in each 30 s slot of the period.
void fillTimetable(const std::shared_ptr<SzenarioEmitter> &emitter, std::mt19937 &random)
{
    EmissionSettings *timetable = emitter->emissionSettings();
    timetable->setDuration(Period);
    for (int slot = 0; slot < 20; ++slot) {
        auto entry = timetable->createEmission();
        entry->start = slot * 30000 + std::uniform_int_distribution<>(0, 20000)(random);
        entry->duration = std::uniform_int_distribution<>(2000, 8000)(random);
        entry->emitter = emitter;
        timetable->addEmission(entry);
    }
}

struct Scenario
{
    Scenario()
    {
        std::mt19937 random(20261123);
        for (int i = 0; i < 1000; ++i) {
            auto emitter = std::make_shared<SzenarioEmitter>(QString::number(i), QString());
            emitter->setFrequencySettings(frequencyFor(i, random));
            fillTimetable(emitter, random);
            // Builds the hop lists now, outside the timed loop.
            emitter->frequencySettings()->getFrequencyAt(0);
            emitters.push_back(emitter);
        }
    }
    ~Scenario()
    {
        QSet<std::shared_ptr<ScenarioObject>> objects;
        for (const auto &emitter : emitters)
            objects.insert(emitter);
        releaseScenario(objects);
    }
    std::vector<std::shared_ptr<SzenarioEmitter>> emitters;
};

const Scenario &scenario()
{
    static const Scenario instance;
    return instance;
}

void reportRates(benchmark::State &state, qint64 records)
{
    state.counters["records"] = double(records);
    state.counters["realtime_x"] = benchmark::Counter(
        Covered / 1000.0 * double(state.iterations()), benchmark::Counter::kIsRate);
    state.counters["s_per_record"]
        = benchmark::Counter(double(records) * double(state.iterations()),
            benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

void BM_CalculateBursts(benchmark::State &state)
{
    const auto &emitters = scenario().emitters;
    qint64 records = 0;
    for (auto _ : state) {
        records = 0;
        for (uint start = 0; start < Covered; start += Window) {
            for (const auto &emitter : emitters) {
                const QList<HRActivity> bursts = emitter->calculateBursts(start, Window, 1000.0);
                records += bursts.size();
                benchmark::DoNotOptimize(bursts);
            }
        }
    }
    reportRates(state, records);
}
BENCHMARK(BM_CalculateBursts)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

// The floor: building lists of the same number of records, with nothing calculated.
void BM_BareRecordLists(benchmark::State &state)
{
    const auto &emitters = scenario().emitters;
    QVector<int> sizes;
    for (uint start = 0; start < Covered; start += Window)
        for (const auto &emitter : emitters)
            sizes.append(emitter->calculateBursts(start, Window, 1000.0).size());
    qint64 records = 0;
    for (auto _ : state) {
        records = 0;
        for (int size : sizes) {
            QList<HRActivity> list;
            for (int i = 0; i < size; ++i)
                list.append(HRActivity { quint64(i), 1, 1e6 });
            records += list.size();
            benchmark::DoNotOptimize(list);
        }
    }
    reportRates(state, records);
}
BENCHMARK(BM_BareRecordLists)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

} // namespace
