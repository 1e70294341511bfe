#include "signalshapefile.h"

#include "locks_p.h"

#include <QFile>
#include <QtEndian>

#include <cstring>
#include <limits>

namespace Simulation {

namespace {
constexpr qint64 HeaderSize = 35;
constexpr qint64 RecordHeadSize = 16;
constexpr char Magic[] = "V&H-SSF";
constexpr quint32 Version = 2;
constexpr size_t ReadAheadBytes = 16 * 1024;
} // namespace

SignalShapeFile::SignalShapeFile(const QString &fileName)
    : file(new QFile(fileName))
{
}

SignalShapeFile::~SignalShapeFile()
{
    close();
    delete file;
}

bool SignalShapeFile::open()
{
    MutexLocker locker(&mutex);
    file->close();
    // QFile would warn on the console about an empty name.
    if (file->fileName().isEmpty() || !file->open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return false;
    if (readGlobalHeader())
        return true;
    file->close();
    return false;
}

void SignalShapeFile::close()
{
    MutexLocker locker(&mutex);
    file->close();
}

bool SignalShapeFile::isOpen() const
{
    return file->isOpen();
}

void SignalShapeFile::setPackageDuration(uint milliseconds)
{
    packageDuration.store(milliseconds, std::memory_order_relaxed);
}

uint SignalShapeFile::duration() const
{
    return spectrumPeriod * quint32(spectrumCount);
}

bool SignalShapeFile::readGlobalHeader()
{
    char header[HeaderSize];
    if (!file || !file->isReadable() || file->read(header, HeaderSize) != HeaderSize
        || std::memcmp(header, Magic, 7) != 0 || qFromLittleEndian<quint32>(header + 7) != Version)
        return false;
    const quint32 bins = qFromLittleEndian<quint32>(header + 31);
    // One record that cannot be in the file is a broken header, not a reason to allocate.
    if (bins > (std::numeric_limits<quint32>::max() - RecordHeadSize) / 4
        || HeaderSize + RecordHeadSize + 4 * qint64(bins) > file->size())
        return false;
    signalBandwidth = qFromLittleEndian<quint32>(header + 11);
    signalBasePower = qFromLittleEndian<float>(header + 15);
    spectrumCount = qFromLittleEndian<quint64>(header + 19);
    spectraPerSecond = qFromLittleEndian<quint32>(header + 27);
    binCount = bins;
    // In single precision, the quotient first: 10 records a second give 100 ms.
    const float period = (1.0f / float(spectraPerSecond)) * 1000.0f;
    spectrumPeriod = spectraPerSecond ? quint32(period) : 0;
    recordSize = 4 * binCount + 16;
    fileVersion = Version;
    currentRecordPos = 0;
    currentSpectrum.clear();
    currentSpectrum.resize(binCount, 0.0f);
    readAhead.resize(std::max<size_t>(ReadAheadBytes / recordSize, 1) * recordSize);
    readAheadStart = -1;
    return true;
}

quint64 SignalShapeFile::posInFile(uint milliseconds)
{
    return quint64(recordSize) * ((milliseconds / spectrumPeriod) % spectrumCount) + HeaderSize;
}

qint64 SignalShapeFile::bufferRecord(qint64 position)
{
    const qint64 offset = position - readAheadStart;
    if (readAheadStart >= 0 && offset >= 0 && offset + recordSize <= readAheadSize)
        return recordSize;
    // The record right behind the last one starts a run of records: read ahead. Anything else
    // is a jump, where bytes beyond the one record would be wasted.
    const bool sequential = position == qint64(currentRecordPos) + recordSize;
    const qint64 wanted = sequential ? qint64(readAhead.size()) : recordSize;
    readAheadStart = position;
    readAheadSize = 0;
    if (file->pos() != position && !file->seek(position))
        return 0;
    readAheadSize = std::max<qint64>(file->read(readAhead.data(), wanted), 0);
    return std::min<qint64>(readAheadSize, recordSize);
}

void SignalShapeFile::readSpectrum(uint milliseconds)
{
    MutexLocker locker(&mutex);
    const uint loop = packageDuration.load(std::memory_order_relaxed);
    if (currentSpectrum.empty() || loop == 0 || spectrumPeriod == 0 || spectrumCount == 0
        || !file->isOpen())
        return;
    const quint64 position = posInFile(milliseconds % loop);
    if (position == currentRecordPos)
        return;
    const qint64 available = bufferRecord(qint64(position));
    // A short read keeps what it cannot replace: the levels here, the tail of the bins below.
    const char *record = readAhead.data() + (qint64(position) - readAheadStart);
    if (available >= RecordHeadSize) {
        const float first = qFromLittleEndian<float>(record + 8);
        const float second = qFromLittleEndian<float>(record + 12);
        // Equal levels or a NaN: the second is taken as the peak.
        peakLevel = first < second ? first : second;
        signalLevel = first < second ? second : first;
    }
    if (available > RecordHeadSize)
        std::memcpy(
            currentSpectrum.data(), record + RecordHeadSize, size_t(available - RecordHeadSize));
    currentRecordPos = position;
}

} // namespace Simulation
