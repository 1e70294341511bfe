#include "chunkfilereader_p.h"

#include <QtEndian>

#include <limits>

bool ChunkFileReader::readChunkHeader(ChunkHeader &header)
{
    char bytes[8];
    if (read(bytes, sizeof bytes) != qint64(sizeof bytes))
        return false;
    std::copy(bytes, bytes + 4, header.id);
    header.size = qFromLittleEndian<quint32>(bytes + 4);
    m_chunkEnds.append(pos() + header.size + (header.size & 1));
    return true;
}

qint64 ChunkFileReader::currentChunkEnd() const
{
    return m_chunkEnds.isEmpty() ? 0 : m_chunkEnds.last();
}

qint64 ChunkFileReader::leaveChunk()
{
    return m_chunkEnds.isEmpty() ? pos() : m_chunkEnds.takeLast();
}

bool ChunkFileReader::fitsInChunk(qint64 byteCount) const
{
    const qint64 end = pos() + byteCount;
    return byteCount >= 0 && end <= currentChunkEnd() && end <= size();
}

bool ChunkFileReader::readInChunk(char *buffer, qint64 byteCount)
{
    return fitsInChunk(byteCount) && read(buffer, byteCount) == byteCount;
}

bool ChunkFileReader::readInChunk(QByteArray &buffer, qint64 byteCount)
{
    if (!fitsInChunk(byteCount) || byteCount > std::numeric_limits<int>::max())
        return false;
    buffer.resize(int(byteCount));
    return readInChunk(buffer.data(), byteCount);
}

void ChunkFileReader::leaveAllChunks()
{
    m_chunkEnds.clear();
}
