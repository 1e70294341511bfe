// Text forms of positions against the bare cost of printing and parsing two doubles, the
// floor that any coordinate text pays. Compare the per-format times with the baselines.
#include <radiosim/platform/coord.h>
#include <radiosim/units/units.h>

#include <benchmark/benchmark.h>

#include <QStringList>

namespace {

const double Longitude = 11.420833;
const double Latitude = 48.1967;

void everyFormat(benchmark::internal::Benchmark *benchmark)
{
    for (CoordFormat format :
        { CoordDecimal, CoordGeoLong, CoordGeoShort, CoordUtm, CoordMgrs, CoordQth })
        benchmark->Arg(format);
}

void BM_BaselineWriteTwoNumbers(benchmark::State &state)
{
    for (auto _ : state) {
        QString text = QString::number(Longitude, 'f', 6) + QLatin1Char(' ')
            + QString::number(Latitude, 'f', 6);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(BM_BaselineWriteTwoNumbers);

void BM_BaselineReadTwoNumbers(benchmark::State &state)
{
    const QString text = QStringLiteral("11.420833 48.196700");
    for (auto _ : state) {
        const QStringList parts = text.split(QLatin1Char(' '));
        double sum = parts[0].toDouble() + parts[1].toDouble();
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(BM_BaselineReadTwoNumbers);

void BM_GetString(benchmark::State &state)
{
    const CoordFormat format = CoordFormat(state.range(0));
    Coord coord(Longitude, Latitude);
    for (auto _ : state) {
        QString text = coord.GetString(format);
        benchmark::DoNotOptimize(text);
    }
}
BENCHMARK(BM_GetString)->Apply(everyFormat);

void BM_SetString(benchmark::State &state)
{
    const CoordFormat format = CoordFormat(state.range(0));
    const QString text = Coord(Longitude, Latitude).GetString(format);
    Coord coord;
    for (auto _ : state) {
        coord.SetString(text, format);
        benchmark::DoNotOptimize(coord.latitude);
    }
}
BENCHMARK(BM_SetString)->Apply(everyFormat);

// validString compiles its mask on every call, as an entry field checks each keystroke.
void BM_ValidString(benchmark::State &state)
{
    const QString text = QStringLiteral("E011°25'15.00\"N48°11'48.12\"");
    for (auto _ : state) {
        bool valid = Units::Position::validString(text, Units::Position::FormatGeoLong);
        benchmark::DoNotOptimize(valid);
    }
}
BENCHMARK(BM_ValidString);

} // namespace
