#pragma once

#include <radiosim/radiosim_export.h>

#include <QList>
#include <QString>

#include <memory>
#include <vector>

namespace Simulation {

class WaveFileReaderPrivate;

// Reader of RIFF/WAVE files: one walk over the chunks at open() notes the format, the place of
// the samples and the cue points; samples are then read by frame number. One file position
// serves every read, so reads on one object must be serialised by its owner.
class RADIOSIM_EXPORT WaveFileReader
{
public:
    struct Format
    {
        quint16 channels = 0;
        quint32 sampleRate = 0;
        quint16 blockAlign = 0; // bytes per frame
        quint16 bitsPerSample = 0;
    };

    struct CuePoint
    {
        quint32 id = 0;
        quint32 sampleOffset = 0; // within the "data" chunk
        QString label;
    };

    explicit WaveFileReader(const QString &fileName);
    ~WaveFileReader();
    WaveFileReader(const WaveFileReader &) = delete;
    WaveFileReader &operator=(const WaveFileReader &) = delete;

    // Succeeds for "RIFF"/"WAVE" even when "fmt " or "data" is missing; a format other than
    // PCM or extensible, or a cue or label chunk that overruns its chunk, fails and closes.
    // Opening again appends the cue points found again.
    bool open();
    void close();

    const Format &format() const;
    // Frames in the "data" chunk; 0 without a usable format.
    uint length() const;
    // Ascending by id. A label without its cue comes with id and offset 0.
    const QList<CuePoint> cuePoints() const;

    // A first frame whose stretch passes the end starts at firstFrame mod length() instead,
    // without shortening the count, so the read can still run past the data. out holds
    // channels x frameCount elements, read by block align: a frame wider than that space is
    // refused rather than read past it. False for a count of 0 and for a short read.
    bool readSamples(uint firstFrame, uint frameCount, std::vector<unsigned char> &out) const;
    bool readSamples(uint firstFrame, uint frameCount, std::vector<short> &out) const;
    // Appends to out, converted in single precision: 16-bit samples as value / 32767, 8-bit
    // samples as (value + 127) / 128 with the byte unsigned, so 0 gives 0.9921875. Other
    // sample sizes, and a failed read, leave out untouched and answer false.
    bool readSamples(uint firstFrame, uint frameCount, std::vector<float> &out) const;

private:
    template <typename T>
    bool readFrames(uint firstFrame, uint frameCount, std::vector<T> &out) const;

    std::unique_ptr<WaveFileReaderPrivate> d;
};

} // namespace Simulation
