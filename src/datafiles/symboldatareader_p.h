#pragma once

#include "constantratestream_p.h"

#include <QIODevice>

#include <vector>

// Reader of the payload of a symbol data file, chosen by the header's payload type.
class ISpecificReader
{
public:
    virtual ~ISpecificReader();
    // Reads the payload's own header at the device's current position.
    virtual bool readHeader() = 0;
    virtual std::vector<unsigned char> readData(uint startMs, uint durationMs) = 0;
    // Milliseconds.
    virtual uint length() = 0;
    virtual float symbolRate() = 0;
    virtual void setSymbolRate(uint rate) = 0;
};

// Constant bit rate: the rate, the symbol count, then one byte per symbol.
class CBRReader : public ISpecificReader
{
public:
    explicit CBRReader(QIODevice *device);

    bool readHeader() override;
    // The symbols of the stretch but the last one; a stretch over the end wraps to the first.
    std::vector<unsigned char> readData(uint startMs, uint durationMs) override;
    uint length() override;
    float symbolRate() override;
    // The file's rate stands.
    void setSymbolRate(uint rate) override;

private:
    Simulation::ConstantRateStream stream() const;

    QIODevice *device; // not owned
    float rate = 0.0f;
    quint64 symbolCount = 0;
};
