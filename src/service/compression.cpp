#include "compression_p.h"

#include <QtEndian>

#include <zlib.h>

namespace Simulation {

namespace {

// Deflate packs at most 1032 bytes into one.
constexpr qint64 MaxDeflateRatio = 1032;
constexpr int HeaderSize = 4;
constexpr int Step = 64 * 1024;

} // namespace

bool isCompressedForm(const QByteArray &data)
{
    if (data.size() < HeaderSize + 2)
        return false;
    const uint cmf = uchar(data.at(HeaderSize));
    const uint flg = uchar(data.at(HeaderSize + 1));
    const bool deflate = (cmf & 0x0f) == 8 && (cmf >> 4) <= 7;
    return deflate && (cmf * 256 + flg) % 31 == 0;
}

QByteArray uncompressOrEmpty(const QByteArray &data, int maxSize)
{
    if (!isCompressedForm(data))
        return {};

    z_stream stream {};
    if (inflateInit(&stream) != Z_OK)
        return {};
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(data.constData() + HeaderSize));
    stream.avail_in = uInt(data.size() - HeaderSize);
    // The size field only sizes the first buffer, and only as far as the data can reach.
    const qint64 claimed = qFromBigEndian<quint32>(data.constData());
    const qint64 reachable = MaxDeflateRatio * data.size();
    QByteArray out(
        int(qBound<qint64>(1, qMin(claimed, reachable), qint64(maxSize) + 1)), Qt::Uninitialized);
    int result = Z_OK;
    while (result == Z_OK) {
        if (stream.total_out == uLong(out.size())) {
            if (out.size() > maxSize)
                break;
            out.resize(int(qMin<qint64>(qint64(out.size()) * 2 + Step, qint64(maxSize) + 1)));
        }
        stream.next_out = reinterpret_cast<Bytef *>(out.data() + stream.total_out);
        stream.avail_out = uInt(out.size() - int(stream.total_out));
        result = inflate(&stream, Z_NO_FLUSH);
    }
    const int size = int(stream.total_out);
    inflateEnd(&stream);
    if (result != Z_STREAM_END || size > maxSize)
        return {};
    out.resize(size);
    return out;
}

} // namespace Simulation
