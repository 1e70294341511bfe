#pragma once

#include <radiosim/radiosim_export.h>

#include <QString>

#include <memory>
#include <vector>

namespace Simulation {

class AudioFilePrivate;

// The audio of a signal package: a mono wave file at 32000 Hz, so one millisecond is exactly
// 32 frames, read by milliseconds of the package's time. Copies share one file and position.
// open() and readSamples() are serialised, so any thread may read.
class RADIOSIM_EXPORT AudioFile
{
public:
    explicit AudioFile(const QString &fileName);
    ~AudioFile();
    AudioFile(const AudioFile &other);
    AudioFile &operator=(const AudioFile &other);

    // False for any file that is not mono at 32000 Hz; such a file is still left open.
    bool open();
    // Whole milliseconds in the file.
    uint length() const;
    // The loop of readSamples(); to be set before the first read.
    void setPackageDuration(uint milliseconds);
    // durationMs x 32 samples (one for a duration of 0) from startMs modulo the package
    // duration. A stretch over the end of the file is not joined to its head: what the read
    // cannot deliver stays 0, as does everything while the package duration is 0.
    std::vector<short> readSamples(uint startMs, uint durationMs);

private:
    std::shared_ptr<AudioFilePrivate> d;
};

} // namespace Simulation
