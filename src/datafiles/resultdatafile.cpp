#include "resultdatafile.h"

#include "locks_p.h"
#include "resultdatareader_p.h"

#include <QFile>
#include <QtEndian>

#include <cstring>

namespace Simulation {

namespace {
constexpr qint64 HeaderSize = 12;
constexpr qint64 PayloadHeaderSize = 16;
constexpr char Magic[] = "V&H-RDF";
} // namespace

ISpecificReader::~ISpecificReader() = default;

DT_CBR_Reader::DT_CBR_Reader(QIODevice *readFrom)
    : device(readFrom)
{
}

bool DT_CBR_Reader::readHeader()
{
    char header[PayloadHeaderSize];
    if (device->read(header, PayloadHeaderSize) != PayloadHeaderSize)
        return false;
    rate = qFromLittleEndian<float>(header);
    itemCount = qFromLittleEndian<quint64>(header + 4);
    headerValue = qFromLittleEndian<quint32>(header + 12);
    return true;
}

uint DT_CBR_Reader::length()
{
    return stream().length();
}

QByteArray DT_CBR_Reader::readData(uint startMs, uint durationMs)
{
    QByteArray items;
    stream().read(startMs, durationMs, items);
    return items;
}

ConstantRateStream DT_CBR_Reader::stream() const
{
    return { device, HeaderSize + PayloadHeaderSize, 2, rate, itemCount };
}

class ResultDataFilePrivate
{
public:
    explicit ResultDataFilePrivate(const QString &fileName)
        : file(fileName)
    {
    }

    QFile file;
    std::unique_ptr<ISpecificReader> reader;
    QMutex mutex;
};

ResultDataFile::ResultDataFile(const QString &fileName)
    : d(std::make_shared<ResultDataFilePrivate>(fileName))
{
}

ResultDataFile::~ResultDataFile() = default;
ResultDataFile::ResultDataFile(const ResultDataFile &other) = default;
ResultDataFile &ResultDataFile::operator=(const ResultDataFile &other) = default;

bool ResultDataFile::open()
{
    MutexLocker locker(&d->mutex);
    d->file.close();
    d->reader.reset();
    // QFile would warn on the console about an empty name.
    if (d->file.fileName().isEmpty() || !d->file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return false;
    char header[HeaderSize];
    if (d->file.read(header, HeaderSize) != HeaderSize || std::memcmp(header, Magic, 7) != 0
        || qFromLittleEndian<quint32>(header + 7) != 0 || header[11] != 0)
        return false;
    d->reader = std::make_unique<DT_CBR_Reader>(&d->file);
    return d->reader->readHeader();
}

void ResultDataFile::close()
{
    MutexLocker locker(&d->mutex);
    d->file.close();
}

bool ResultDataFile::isOpen() const
{
    return d->file.isOpen();
}

uint ResultDataFile::length() const
{
    return d->reader ? d->reader->length() : 0;
}

QByteArray ResultDataFile::readResultData(uint startMs, uint durationMs)
{
    MutexLocker locker(&d->mutex);
    return d->reader ? d->reader->readData(startMs, durationMs) : QByteArray();
}

void ResultDataFile::setPackageDuration(uint)
{
}

} // namespace Simulation
