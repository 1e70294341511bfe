#include "compression_p.h"

#include <QtEndian>

namespace Simulation {

namespace {

// Deflate packs at most 1032 bytes into one.
constexpr quint64 MaxDeflateRatio = 1032;

} // namespace

QByteArray uncompressOrEmpty(const QByteArray &data)
{
    if (data.size() < 6)
        return {};
    const uint cmf = uchar(data.at(4));
    const uint flg = uchar(data.at(5));
    const bool deflate = (cmf & 0x0f) == 8 && (cmf >> 4) <= 7;
    if (!deflate || (cmf * 256 + flg) % 31 != 0)
        return {};
    // qUncompress reserves what the size field says before it inflates, and grows the buffer
    // when that is short. A field beyond what the data can hold would only reserve memory for
    // nothing, up to 2 GiB from a few bytes: it is lowered, which leaves the result the same.
    const quint64 most = MaxDeflateRatio * quint64(data.size());
    if (qFromBigEndian<quint32>(data.constData()) <= most)
        return qUncompress(data);
    QByteArray lowered = data;
    qToBigEndian(quint32(most), lowered.data());
    return qUncompress(lowered);
}

} // namespace Simulation
