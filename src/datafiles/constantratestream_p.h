#pragma once

#include <QByteArray>
#include <QIODevice>

#include <vector>

namespace Simulation {

// A stream of equal items at a constant rate from dataOffset on: the payload of the symbol and
// the result data files.
struct ConstantRateStream
{
    // Milliseconds that itemCount items last at rate items a second, reckoned in single
    // precision as the files' writers do; 0 for a rate that gives no finite length.
    uint length() const;
    // Appends the items from startMs (modulo length()) for durationMs, read straight into out;
    // a stretch over the end goes on at the first item. Reads nothing for a length of 0 and
    // stops at a short read, so a file cut while open gives a shorter result.
    void read(uint startMs, uint durationMs, std::vector<unsigned char> &out) const;
    void read(uint startMs, uint durationMs, QByteArray &out) const;

    QIODevice *device = nullptr;
    qint64 dataOffset = 0;
    int itemSize = 1;
    float rate = 0.0f;
    quint64 itemCount = 0;

private:
    template <typename Bytes> void readInto(uint startMs, uint durationMs, Bytes &out) const;
};

} // namespace Simulation
