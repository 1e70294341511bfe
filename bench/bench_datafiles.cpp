#include "../tests/allocationcounter.h"

#include <radiosim/datafiles/audiofile.h>
#include <radiosim/datafiles/signalshapefile.h>
#include <radiosim/packages/signalpackagecache.h>

#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtEndian>

#include <random>
#include <vector>

namespace {

constexpr quint32 Records = 5000; // 500 s at 10 records a second
constexpr quint32 Bins = 512;
constexpr qint64 RecordSize = 16 + 4 * Bins;
constexpr uint ShapeDuration = Records * 100;
constexpr uint AudioSeconds = 60;
constexpr int Times = 8192;
constexpr int Packages = 1000;

template <typename T> void append(QByteArray &bytes, T value)
{
    char le[sizeof(T)];
    qToLittleEndian(value, le);
    bytes.append(le, int(sizeof(T)));
}

QByteArray shapeFile(quint32 records, quint32 bins)
{
    QByteArray bytes("V&H-SSF");
    append<quint32>(bytes, 2);
    append<quint32>(bytes, 10000);
    append<float>(bytes, 2e-14f);
    append<quint64>(bytes, records);
    append<quint32>(bytes, 10);
    append<quint32>(bytes, bins);
    for (quint32 r = 0; r < records; ++r) {
        append<quint64>(bytes, quint64(r) * 100000000);
        append<float>(bytes, 1.0f);
        append<float>(bytes, 2.0f);
        for (quint32 b = 0; b < bins; ++b)
            append<float>(bytes, float(r + b));
    }
    return bytes;
}

QByteArray waveFile(quint32 frames)
{
    QByteArray bytes("RIFF");
    append<quint32>(bytes, 36 + 2 * frames);
    bytes += "WAVEfmt ";
    for (const quint32 word : { 16u, 0x10001u, 32000u, 64000u, 0x100002u })
        append<quint32>(bytes, word);
    bytes += "data";
    append<quint32>(bytes, 2 * frames);
    for (quint32 f = 0; f < frames; ++f)
        append<qint16>(bytes, qint16(f));
    return bytes;
}

bool write(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

// A shape file of 5000 records of 512 bins (10 MB), a minute of audio, and times stepped by
// 1 ms and spread at random over the shape.
struct Fixture
{
    QTemporaryDir dir;
    QString shape = dir.filePath("shape.ssf");
    QString audio = dir.filePath("audio.wav");
    std::vector<uint> stepped;
    std::vector<uint> random;

    Fixture()
    {
        if (!write(shape, shapeFile(Records, Bins))
            || !write(audio, waveFile(AudioSeconds * 32000)))
            std::abort();
        std::mt19937 generator(19);
        std::uniform_int_distribution<uint> when(0, ShapeDuration - 1);
        for (int i = 0; i < Times; ++i) {
            stepped.push_back(uint(i));
            random.push_back(when(generator));
        }
    }
};

Fixture &fixture()
{
    static Fixture instance;
    return instance;
}

const std::vector<uint> &times(const benchmark::State &state)
{
    return state.range(0) ? fixture().random : fixture().stepped;
}

// The least a reader must do: map the time to its record, and seek and read the record when
// it is not the one read last, into a buffer made once. Buffered as Qt opens files by default,
// head and bins in two reads as the record is used; or unbuffered, the record in one read.
void BM_ShapeBare(benchmark::State &state)
{
    const std::vector<uint> &when = times(state);
    const bool unbuffered = state.range(1);
    QFile file(fixture().shape);
    file.open(unbuffered ? QIODevice::ReadOnly | QIODevice::Unbuffered : QIODevice::ReadOnly);
    std::vector<char> record(RecordSize);
    qint64 current = -1;
    size_t i = 0;
    for (auto _ : state) {
        const qint64 position = 35 + RecordSize * ((when[i++ % Times] % ShapeDuration) / 100);
        if (position != current) {
            file.seek(position);
            if (unbuffered) {
                file.read(record.data(), RecordSize);
            } else {
                file.read(record.data(), 16);
                file.read(record.data() + 16, RecordSize - 16);
            }
            current = position;
        }
        benchmark::DoNotOptimize(record.data());
    }
}
BENCHMARK(BM_ShapeBare)
    ->ArgNames({ "random", "unbuffered" })
    ->ArgsProduct({ { 0, 1 }, { 0, 1 } })
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

void BM_ShapeReadSpectrum(benchmark::State &state)
{
    const std::vector<uint> &when = times(state);
    Simulation::SignalShapeFile shape(fixture().shape);
    shape.open();
    shape.setPackageDuration(ShapeDuration);
    size_t i = 0;
    const long before = allocations.load();
    for (auto _ : state) {
        shape.readSpectrum(when[i++ % Times]);
        benchmark::DoNotOptimize(shape.spectrum().data());
    }
    state.counters["allocs/call"] = benchmark::Counter(
        double(allocations.load() - before), benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_ShapeReadSpectrum)
    ->ArgName("random")
    ->Arg(0)
    ->Arg(1)
    ->Repetitions(5)
    ->ReportAggregatesOnly(true);

// 10 ms stretches in play order; the bare read fills a fresh vector of the same 320 samples,
// as the interface hands one out.
void BM_AudioBare(benchmark::State &state)
{
    QFile file(fixture().audio);
    file.open(QIODevice::ReadOnly);
    uint ms = 0;
    for (auto _ : state) {
        std::vector<short> samples(320);
        file.seek(44 + qint64(ms % (AudioSeconds * 1000 - 10)) * 64);
        file.read(reinterpret_cast<char *>(samples.data()), 640);
        benchmark::DoNotOptimize(samples.data());
        ms += 10;
    }
}
BENCHMARK(BM_AudioBare)->Repetitions(5)->ReportAggregatesOnly(true);

void BM_AudioReadSamples(benchmark::State &state)
{
    Simulation::AudioFile audio(fixture().audio);
    audio.open();
    audio.setPackageDuration(AudioSeconds * 1000 - 10);
    uint ms = 0;
    const long before = allocations.load();
    for (auto _ : state) {
        benchmark::DoNotOptimize(audio.readSamples(ms, 10).data());
        ms += 10;
    }
    state.counters["allocs/call"] = benchmark::Counter(
        double(allocations.load() - before), benchmark::Counter::kAvgIterations);
}
BENCHMARK(BM_AudioReadSamples)->Repetitions(5)->ReportAggregatesOnly(true);

// 1,000 packages in 10 libraries of 10 groups: descriptor, a shape of 10 records of 64 bins,
// 100 ms of audio, and symbol data in every tenth (3.3 MB in all).
struct Repository
{
    QTemporaryDir dir;
    QString root = dir.filePath("repository");

    Repository()
    {
        const QByteArray shape = shapeFile(10, 64);
        const QByteArray audio = waveFile(3200);
        for (int p = 0; p < Packages; ++p) {
            const QString folder = QStringLiteral("%1/Lib%2/Group%3/Package %4")
                                       .arg(root)
                                       .arg(p / 100)
                                       .arg(p / 10 % 10)
                                       .arg(p);
            const QByteArray xml = "<SignalPackage UID=\"/Bench/" + QByteArray::number(p)
                + "\" Timestamp=\"1\"><UpdateID UID=\"/Old/" + QByteArray::number(p)
                + "\"/><MetaData><Name>P</Name></MetaData><Duration>1000</Duration></"
                  "SignalPackage>";
            if (!QDir().mkpath(folder) || !write(folder + "/Signal.xml", xml)
                || !write(folder + "/Signal.ssf", shape) || !write(folder + "/Signal.wav", audio)
                || (p % 10 == 0 && !write(folder + "/Signal.sdf", QByteArray(100, 's'))))
                std::abort();
        }
    }
};

Repository &repository()
{
    static Repository instance;
    return instance;
}

// First run into an empty cache, then a second over the full one, which only reads the
// descriptors.
void BM_UpdateCache(benchmark::State &state)
{
    const bool second = state.range(0);
    const QString cacheDir = repository().dir.filePath("cache");
    for (auto _ : state) {
        state.PauseTiming();
        if (!second || !QDir(cacheDir).exists()) {
            QDir(cacheDir).removeRecursively();
            QDir().mkpath(cacheDir);
            if (second)
                Simulation::SignalPackageCache(cacheDir, "Default")
                    .updateCache(repository().root, false);
        }
        state.ResumeTiming();
        Simulation::SignalPackageCache cache(cacheDir, "Default");
        cache.updateCache(repository().root, false);
    }
    state.counters["files"] = double(QDir(cacheDir).entryList(QDir::Files).size());
}
BENCHMARK(BM_UpdateCache)
    ->ArgName("second")
    ->Arg(0)
    ->Arg(1)
    ->Iterations(3)
    ->Repetitions(3)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// Copying the same files one by one on this thread, no descriptor read: what the first run
// costs the file system alone.
void BM_UpdateCacheBareCopy(benchmark::State &state)
{
    const QString cacheDir = repository().dir.filePath("bare");
    for (auto _ : state) {
        state.PauseTiming();
        QDir(cacheDir).removeRecursively();
        QDir().mkpath(cacheDir);
        state.ResumeTiming();
        for (int p = 0; p < Packages; ++p) {
            const QString folder = QStringLiteral("%1/Lib%2/Group%3/Package %4")
                                       .arg(repository().root)
                                       .arg(p / 100)
                                       .arg(p / 10 % 10)
                                       .arg(p);
            const QString id = QStringLiteral("%1/_Bench_%2").arg(cacheDir).arg(p);
            QFile::copy(folder + "/Signal.xml", id + ".xml");
            QFile::copy(
                folder + "/Signal.xml", QStringLiteral("%1/_Old_%2.xml").arg(cacheDir).arg(p));
            QFile::copy(folder + "/Signal.ssf", id + ".ssf");
            QFile::copy(folder + "/Signal.wav", id + ".wav");
            if (p % 10 == 0)
                QFile::copy(folder + "/Signal.sdf", id + ".sdf");
        }
    }
}
BENCHMARK(BM_UpdateCacheBareCopy)
    ->Iterations(3)
    ->Repetitions(3)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace
