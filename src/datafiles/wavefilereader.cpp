#include "wavefilereader.h"

#include "chunkfilereader_p.h"

#include <QtEndian>

#include <map>

namespace Simulation {

namespace {

constexpr quint16 FormatPcm = 1;
constexpr quint16 FormatExtensible = 65534;
constexpr qint64 CueRecordSize = 24;

bool isId(const char *id, const char (&expected)[5])
{
    return std::equal(id, id + 4, expected);
}

} // namespace

class WaveFileReaderPrivate
{
public:
    bool walk();
    bool readFormat();
    bool readCues();
    bool readList(quint32 listSize);
    bool readLabel(quint32 labelSize);

    QString fileName;
    ChunkFileReader file;
    quint32 dataOffset = 0;
    quint32 dataSize = 0;
    WaveFileReader::Format format;
    QList<WaveFileReader::CuePoint> cuePoints;
    std::map<quint32, WaveFileReader::CuePoint> cuesById;
};

bool WaveFileReaderPrivate::walk()
{
    ChunkFileReader::ChunkHeader header;
    char wave[4];
    if (!file.readChunkHeader(header) || !isId(header.id, "RIFF")
        || !file.readInChunk(wave, sizeof wave) || !std::equal(wave, wave + 4, "WAVE"))
        return false;

    bool ok = true;
    while (file.readChunkHeader(header)) {
        if (isId(header.id, "fmt ")) {
            ok = readFormat() && ok;
        } else if (isId(header.id, "data")) {
            dataOffset = quint32(file.pos());
            dataSize = header.size;
        } else if (isId(header.id, "cue ")) {
            ok = readCues() && ok;
        } else if (isId(header.id, "LIST")) {
            ok = readList(header.size) && ok;
        }
        file.seek(file.leaveChunk());
    }
    return ok;
}

bool WaveFileReaderPrivate::readFormat()
{
    char bytes[16];
    if (!file.readInChunk(bytes, sizeof bytes))
        return false;
    const quint16 tag = qFromLittleEndian<quint16>(bytes);
    if (tag != FormatPcm && tag != FormatExtensible)
        return false;
    format.channels = qFromLittleEndian<quint16>(bytes + 2);
    format.sampleRate = qFromLittleEndian<quint32>(bytes + 4);
    format.blockAlign = qFromLittleEndian<quint16>(bytes + 12);
    format.bitsPerSample = qFromLittleEndian<quint16>(bytes + 14);
    return true;
}

bool WaveFileReaderPrivate::readCues()
{
    char countBytes[4];
    if (!file.readInChunk(countBytes, sizeof countBytes))
        return false;
    const qint64 size = qFromLittleEndian<quint32>(countBytes) * CueRecordSize;
    QByteArray records;
    if (!file.readInChunk(records, size))
        return false;
    for (qint64 at = 0; at < size; at += CueRecordSize) {
        const char *record = records.constData() + at;
        if (!std::equal(record + 8, record + 12, "data"))
            continue;
        const quint32 id = qFromLittleEndian<quint32>(record);
        WaveFileReader::CuePoint &cue = cuesById[id];
        cue.id = id;
        cue.sampleOffset = qFromLittleEndian<quint32>(record + 20);
    }
    return true;
}

bool WaveFileReaderPrivate::readList(quint32 listSize)
{
    char type[4];
    if (!file.readInChunk(type, sizeof type) || !std::equal(type, type + 4, "adtl"))
        return true;
    // No sub-chunk header is begun within the last 8 bytes of the list.
    const qint64 limit = file.pos() + qint64(listSize) - 12;
    bool ok = true;
    ChunkFileReader::ChunkHeader header;
    // A header that cannot be read ends the walk: the position would not move again.
    while (file.pos() < limit && file.readChunkHeader(header)) {
        if (ok && isId(header.id, "labl"))
            ok = readLabel(header.size);
        file.seek(file.leaveChunk());
    }
    return ok;
}

bool WaveFileReaderPrivate::readLabel(quint32 labelSize)
{
    char idBytes[4];
    if (!file.readInChunk(idBytes, sizeof idBytes))
        return false;
    QByteArray text;
    if (!file.readInChunk(text, qint64(labelSize) - 4))
        return false;
    cuesById[qFromLittleEndian<quint32>(idBytes)].label = QString::fromLatin1(text);
    return true;
}

WaveFileReader::WaveFileReader(const QString &fileName)
    : d(std::make_unique<WaveFileReaderPrivate>())
{
    d->fileName = fileName;
}

WaveFileReader::~WaveFileReader()
{
    close();
}

bool WaveFileReader::open()
{
    close();
    d->file.setFileName(d->fileName);
    // QFile would warn on the console about an empty name.
    if (d->fileName.isEmpty() || !d->file.open(QIODevice::ReadOnly) || d->file.isSequential()) {
        close();
        return false;
    }
    const bool ok = d->walk();
    for (const auto &entry : d->cuesById)
        d->cuePoints.append(entry.second);
    d->cuesById.clear();
    d->file.leaveAllChunks();
    if (!ok)
        close();
    return ok;
}

void WaveFileReader::close()
{
    d->file.close();
}

const WaveFileReader::Format &WaveFileReader::format() const
{
    return d->format;
}

uint WaveFileReader::length() const
{
    return d->format.blockAlign ? d->dataSize / d->format.blockAlign : 0;
}

const QList<WaveFileReader::CuePoint> WaveFileReader::cuePoints() const
{
    return d->cuePoints;
}

template <typename T>
bool WaveFileReader::readFrames(uint firstFrame, uint frameCount, std::vector<T> &out) const
{
    const uint frames = length();
    if (frames == 0 || !d->file.isOpen())
        return false;
    if (quint64(firstFrame) + frameCount > frames)
        firstFrame %= frames;
    const qint64 bytes = qint64(d->format.blockAlign) * frameCount;
    const quint64 elements = quint64(d->format.channels) * frameCount;
    // Frames wider than channels x sizeof(T) would be read past the end of out. Every sample
    // takes a byte at least: more channels than bytes per frame is a broken header, whose
    // channel count must not size out.
    if (bytes == 0 || quint64(bytes) > elements * sizeof(T)
        || d->format.channels > d->format.blockAlign
        || !d->file.seek(d->dataOffset + qint64(d->format.blockAlign) * firstFrame))
        return false;
    out.resize(elements);
    return d->file.read(reinterpret_cast<char *>(out.data()), bytes) == bytes;
}

bool WaveFileReader::readSamples(
    uint firstFrame, uint frameCount, std::vector<unsigned char> &out) const
{
    return readFrames(firstFrame, frameCount, out);
}

bool WaveFileReader::readSamples(uint firstFrame, uint frameCount, std::vector<short> &out) const
{
    return readFrames(firstFrame, frameCount, out);
}

bool WaveFileReader::readSamples(uint firstFrame, uint frameCount, std::vector<float> &out) const
{
    const auto append = [&](const auto &samples, auto convert) {
        out.reserve(out.size() + samples.size());
        for (const auto sample : samples)
            out.push_back(convert(sample));
    };
    if (d->format.bitsPerSample == 8) {
        std::vector<unsigned char> samples;
        if (!readFrames(firstFrame, frameCount, samples))
            return false;
        append(samples, [](unsigned char value) { return float(value + 127) * 0.0078125f; });
        return true;
    }
    if (d->format.bitsPerSample == 16) {
        std::vector<short> samples;
        if (!readFrames(firstFrame, frameCount, samples))
            return false;
        append(samples, [](short value) { return float(value) / 32767.0f; });
        return true;
    }
    return false;
}

} // namespace Simulation
