#pragma once

#include <QFile>
#include <QVector>

// A RIFF file with the ends of the chunks that are open at the moment, innermost last, so that
// a read can be kept inside its chunk.
class ChunkFileReader : public QFile
{
public:
    struct ChunkHeader
    {
        char id[4] = {};
        quint32 size = 0; // payload bytes, without the pad byte of an odd size
    };

    // Reads a chunk header and opens the chunk; a short read opens nothing.
    bool readChunkHeader(ChunkHeader &header);
    // Offset just behind the innermost open chunk, its pad byte included.
    qint64 currentChunkEnd() const;
    // Closes the innermost chunk; the caller seeks to the offset returned.
    qint64 leaveChunk();
    // Reads exactly byteCount bytes that lie inside the innermost chunk.
    bool readInChunk(char *buffer, qint64 byteCount);
    // The same into a buffer of that size, made only once the bytes are known to be there.
    bool readInChunk(QByteArray &buffer, qint64 byteCount);
    void leaveAllChunks();

private:
    // Whether byteCount bytes from here lie inside the innermost chunk and inside the file.
    bool fitsInChunk(qint64 byteCount) const;

    QVector<qint64> m_chunkEnds;
};
