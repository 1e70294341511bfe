#include "constantratestream_p.h"

#include <cmath>
#include <limits>

namespace Simulation {

namespace {

// The item at milliseconds: the product in single precision, widened, then divided and floored
// in double precision.
double itemAt(quint64 milliseconds, float rate)
{
    return std::floor(double(float(milliseconds) * rate) / 1000.0);
}

} // namespace

uint ConstantRateStream::length() const
{
    const float milliseconds = float(itemCount * 1000) / rate;
    return milliseconds >= 0.0f && milliseconds < 4294967296.0f ? uint(milliseconds) : 0;
}

template <typename Bytes>
void ConstantRateStream::readInto(uint startMs, uint durationMs, Bytes &out) const
{
    const uint total = length();
    if (total == 0 || !device || !device->isOpen())
        return;
    const uint start = startMs % total;
    const double first = itemAt(start, rate);
    // No more than one byte array can hold, whatever the duration asked for.
    const double count = std::min(itemAt(quint64(start) + durationMs, rate) - first,
        double(std::numeric_limits<int>::max() / itemSize));
    if (!(count > 0.0))
        return;
    quint64 item = quint64(first);
    quint64 remaining = quint64(count);
    // A header may claim far more items than the file holds: no more room than the file's bytes.
    const qint64 fileBytes = std::max<qint64>(device->size(), 0);
    out.reserve(out.size() + std::min<qint64>(qint64(remaining) * itemSize, fileBytes));
    while (remaining != 0) {
        quint64 take = remaining;
        if (item + take > itemCount)
            take = item < itemCount ? itemCount - item : 0;
        const qint64 bytes = qint64(take) * itemSize;
        const auto size = out.size();
        // Past the end, QFile warns on the console where the file system refuses the offset.
        const qint64 offset = dataOffset + qint64(item) * itemSize;
        if (offset > fileBytes || !device->seek(offset))
            return;
        const qint64 readable = std::min(bytes, std::max<qint64>(fileBytes - device->pos(), 0));
        out.resize(size + readable);
        const qint64 got = device->read(reinterpret_cast<char *>(out.data()) + size, readable);
        if (got != bytes) {
            out.resize(size + std::max<qint64>(got, 0));
            return;
        }
        if (take == remaining)
            return;
        remaining -= take;
        item = 0;
    }
}

void ConstantRateStream::read(uint startMs, uint durationMs, std::vector<unsigned char> &out) const
{
    readInto(startMs, durationMs, out);
}

void ConstantRateStream::read(uint startMs, uint durationMs, QByteArray &out) const
{
    readInto(startMs, durationMs, out);
}

} // namespace Simulation
