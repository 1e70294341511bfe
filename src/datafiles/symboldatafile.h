#pragma once

#include <radiosim/radiosim_export.h>

#include <QString>

#include <memory>
#include <vector>

namespace Simulation {

class SymbolDataFilePrivate;

// The modulation symbols of a signal package, read by milliseconds. Symbols loop at the file's
// own length, not at the package's. Copies share one file and position; open(), close(),
// readSymbols() and setSymbolRate() are serialised, so any thread may read.
class RADIOSIM_EXPORT SymbolDataFile
{
public:
    explicit SymbolDataFile(const QString &fileName);
    ~SymbolDataFile();
    SymbolDataFile(const SymbolDataFile &other);
    SymbolDataFile &operator=(const SymbolDataFile &other);

    // False for another magic or version, an unknown payload type or a short header; the file
    // is then closed.
    bool open();
    void close();
    bool isOpen() const;
    // Milliseconds; 0 while not open.
    uint length() const;
    // Symbols per second; 0 while not open.
    float symbolRate() const;
    // Ignored by the constant rate payload: the file's rate stands.
    void setSymbolRate(uint rate);
    unsigned char symbolValency() const;
    // Always empty: nothing sets it.
    QString modulation() const;
    // Does nothing: symbols loop at their own length.
    void setPackageDuration(uint milliseconds);
    // The symbols of the stretch but its last one, by design; a stretch over the end of the
    // file wraps to its start. Empty while not open.
    std::vector<unsigned char> readSymbols(uint startMs, uint durationMs);

private:
    std::shared_ptr<SymbolDataFilePrivate> d;
};

} // namespace Simulation
