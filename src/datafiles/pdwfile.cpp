#include "pdwfile.h"

#include <QtEndian>

#include <cstring>

namespace {
constexpr quint32 BlockRecords = 1000;
constexpr int LengthWord = 1;
constexpr int NumberWord = 2;
constexpr int CountWord = 6;
} // namespace

PDWFile::PDWFile(const QString &fileName, bool forWriting, bool writeHeaders)
    : writeBlockHeaders(writeHeaders)
    , records(new CPackedPDW[BlockRecords]())
{
    const std::ios::openmode mode = forWriting ? std::ios::out | std::ios::trunc : std::ios::in;
    stream.open(fileName.toLatin1().constData(), mode | std::ios::binary);
}

PDWFile::~PDWFile()
{
    write();
}

int PDWFile::addPDW(CPackedPDW *record)
{
    quint32 &count = blockHeader[CountWord];
    if (count == BlockRecords)
        write();
    if (count == BlockRecords || !record)
        return int(count);
    records[count] = *record;
    return int(++count);
}

int PDWFile::getPDW(CPackedPDW *record)
{
    if (!record || !stream.is_open() || !stream.good())
        return 0;
    std::memset(record->bytes, 0, sizeof record->bytes);
    stream.read(reinterpret_cast<char *>(record->bytes), sizeof record->bytes);
    return int(sizeof record->bytes);
}

bool PDWFile::is_open()
{
    return stream.is_open();
}

void PDWFile::write()
{
    if (!stream.is_open())
        return;
    quint32 &count = blockHeader[CountWord];
    blockHeader[LengthWord] = (32 + 32 * count) / 4;
    if (writeBlockHeaders) {
        quint32 header[8];
        qToLittleEndian<quint32>(blockHeader, 8, header);
        stream.write(reinterpret_cast<const char *>(header), sizeof header);
    }
    stream.write(reinterpret_cast<const char *>(records.get()), std::streamsize(count) * 32);
    ++blockHeader[NumberWord];
    count = 0;
    blockHeader[LengthWord] = 32;
}
