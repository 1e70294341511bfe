#include "audiofile.h"

#include "locks_p.h"
#include "wavefilereader.h"

#include <atomic>

namespace Simulation {

namespace {
constexpr uint FramesPerMs = 32;
}

class AudioFilePrivate
{
public:
    explicit AudioFilePrivate(const QString &fileName)
        : reader(fileName)
    {
    }

    std::atomic<uint> packageDuration { 0 };
    WaveFileReader reader;
    QMutex mutex;
};

AudioFile::AudioFile(const QString &fileName)
    : d(std::make_shared<AudioFilePrivate>(fileName))
{
}

AudioFile::~AudioFile() = default;
AudioFile::AudioFile(const AudioFile &other) = default;
AudioFile &AudioFile::operator=(const AudioFile &other) = default;

bool AudioFile::open()
{
    MutexLocker locker(&d->mutex);
    const WaveFileReader::Format &format = d->reader.format();
    return d->reader.open() && format.channels == 1 && format.sampleRate == 32000;
}

uint AudioFile::length() const
{
    return d->reader.length() >> 5;
}

void AudioFile::setPackageDuration(uint milliseconds)
{
    d->packageDuration.store(milliseconds, std::memory_order_relaxed);
}

std::vector<short> AudioFile::readSamples(uint startMs, uint durationMs)
{
    MutexLocker locker(&d->mutex);
    const uint count = std::max(durationMs * FramesPerMs, 1u);
    std::vector<short> samples(count);
    const uint packageDuration = d->packageDuration.load(std::memory_order_relaxed);
    const uint frames = d->reader.length();
    if (packageDuration == 0 || frames == 0)
        return samples;
    quint64 start = quint64(startMs % packageDuration) * FramesPerMs;
    if (start + count >= frames)
        start %= frames;
    d->reader.readSamples(uint(start), count, samples);
    return samples;
}

} // namespace Simulation
