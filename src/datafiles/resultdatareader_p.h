#pragma once

#include "constantratestream_p.h"

#include <QByteArray>
#include <QIODevice>

namespace Simulation {

// Reader of the payload of a result data file, chosen by the header's payload type.
class ISpecificReader
{
public:
    virtual ~ISpecificReader();
    // Reads the payload's own header at the device's current position.
    virtual bool readHeader() = 0;
    // Milliseconds.
    virtual uint length() = 0;
    virtual QByteArray readData(uint startMs, uint durationMs) = 0;
};

// Constant rate: the rate, the item count, a further value, then two bytes per item.
class DT_CBR_Reader : public ISpecificReader
{
public:
    explicit DT_CBR_Reader(QIODevice *device);

    bool readHeader() override;
    uint length() override;
    // The items of the stretch, complete; a stretch over the end wraps to the first item.
    QByteArray readData(uint startMs, uint durationMs) override;

private:
    ConstantRateStream stream() const;

    QIODevice *device; // not owned
    float rate = 0.0f;
    quint64 itemCount = 0;
    quint32 headerValue = 0; // kept, not interpreted
};

} // namespace Simulation
