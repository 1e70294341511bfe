#include "compression_p.h"

namespace Simulation {

QByteArray uncompressOrEmpty(const QByteArray &data)
{
    if (data.size() < 6)
        return {};
    const uint cmf = uchar(data.at(4));
    const uint flg = uchar(data.at(5));
    const bool deflate = (cmf & 0x0f) == 8 && (cmf >> 4) <= 7;
    if (!deflate || (cmf * 256 + flg) % 31 != 0)
        return {};
    return qUncompress(data);
}

} // namespace Simulation
