#include "symboldatafile.h"

#include "locks_p.h"
#include "symboldatareader_p.h"

#include <QFile>
#include <QtEndian>

#include <cstring>

using Simulation::ConstantRateStream;

namespace {
constexpr qint64 HeaderSize = 29;
constexpr qint64 PayloadHeaderSize = 12;
constexpr char Magic[] = "V&H-SDF";
} // namespace

ISpecificReader::~ISpecificReader() = default;

CBRReader::CBRReader(QIODevice *readFrom)
    : device(readFrom)
{
}

bool CBRReader::readHeader()
{
    char header[PayloadHeaderSize];
    if (device->read(header, PayloadHeaderSize) != PayloadHeaderSize)
        return false;
    rate = qFromLittleEndian<float>(header);
    symbolCount = qFromLittleEndian<quint64>(header + 4);
    return true;
}

std::vector<unsigned char> CBRReader::readData(uint startMs, uint durationMs)
{
    std::vector<unsigned char> symbols;
    stream().read(startMs, durationMs, symbols);
    // The last symbol of every stretch is dropped; stored scenarios were played that way.
    if (!symbols.empty())
        symbols.pop_back();
    return symbols;
}

uint CBRReader::length()
{
    return stream().length();
}

float CBRReader::symbolRate()
{
    return rate;
}

void CBRReader::setSymbolRate(uint)
{
}

ConstantRateStream CBRReader::stream() const
{
    return { device, HeaderSize + PayloadHeaderSize, 1, rate, symbolCount };
}

namespace Simulation {

class SymbolDataFilePrivate
{
public:
    explicit SymbolDataFilePrivate(const QString &fileName)
        : file(fileName)
    {
    }

    void close()
    {
        reader.reset();
        file.close();
    }

    QString modulation;
    quint8 symbolValency = 0;
    std::unique_ptr<ISpecificReader> reader;
    QFile file;
    QMutex mutex;
};

SymbolDataFile::SymbolDataFile(const QString &fileName)
    : d(std::make_shared<SymbolDataFilePrivate>(fileName))
{
}

SymbolDataFile::~SymbolDataFile() = default;
SymbolDataFile::SymbolDataFile(const SymbolDataFile &other) = default;
SymbolDataFile &SymbolDataFile::operator=(const SymbolDataFile &other) = default;

bool SymbolDataFile::open()
{
    MutexLocker locker(&d->mutex);
    d->close();
    // QFile would warn on the console about an empty name.
    if (d->file.fileName().isEmpty() || !d->file.open(QIODevice::ReadOnly | QIODevice::Unbuffered))
        return false;
    char header[HeaderSize];
    if (d->file.read(header, HeaderSize) == HeaderSize && std::memcmp(header, Magic, 7) == 0
        && qFromLittleEndian<quint32>(header + 7) == 0) {
        d->symbolValency = quint8(header[27]);
        if (header[28] == 0) {
            d->reader = std::make_unique<CBRReader>(&d->file);
            if (d->reader->readHeader())
                return true;
        }
    }
    d->close();
    return false;
}

void SymbolDataFile::close()
{
    MutexLocker locker(&d->mutex);
    d->close();
}

bool SymbolDataFile::isOpen() const
{
    return d->file.isOpen();
}

uint SymbolDataFile::length() const
{
    return d->reader ? d->reader->length() : 0;
}

float SymbolDataFile::symbolRate() const
{
    return d->reader ? d->reader->symbolRate() : 0.0f;
}

void SymbolDataFile::setSymbolRate(uint rate)
{
    MutexLocker locker(&d->mutex);
    if (d->reader)
        d->reader->setSymbolRate(rate);
}

unsigned char SymbolDataFile::symbolValency() const
{
    return d->symbolValency;
}

QString SymbolDataFile::modulation() const
{
    return d->modulation;
}

void SymbolDataFile::setPackageDuration(uint)
{
}

std::vector<unsigned char> SymbolDataFile::readSymbols(uint startMs, uint durationMs)
{
    MutexLocker locker(&d->mutex);
    return d->reader ? d->reader->readData(startMs, durationMs) : std::vector<unsigned char>();
}

} // namespace Simulation
