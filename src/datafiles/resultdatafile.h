#pragma once

#include <radiosim/radiosim_export.h>

#include <QByteArray>
#include <QString>

#include <memory>

namespace Simulation {

class ResultDataFilePrivate;

// A stream of two-byte result items at a constant rate, read by milliseconds; it loops at its
// own length. Copies share one file and position; open(), close() and readResultData() are
// serialised, so any thread may read.
class RADIOSIM_EXPORT ResultDataFile
{
public:
    enum ResultDataType { ConstantRate = 0 };

    explicit ResultDataFile(const QString &fileName);
    ~ResultDataFile();
    ResultDataFile(const ResultDataFile &other);
    ResultDataFile &operator=(const ResultDataFile &other);

    // False for another magic or version, an unknown payload type or a short header. Unlike
    // the other data files, a refused file stays open.
    bool open();
    // Closes the file; what the header told is kept.
    void close();
    bool isOpen() const;
    // Milliseconds; 0 before a header was read.
    uint length() const;
    // The items of the stretch, complete; a stretch over the end of the file wraps to its
    // start. Empty before a header was read and while the file is closed.
    QByteArray readResultData(uint startMs, uint durationMs);
    ResultDataType resultDataType() const { return ConstantRate; }
    // Does nothing: the items loop at their own length.
    void setPackageDuration(uint milliseconds);

private:
    std::shared_ptr<ResultDataFilePrivate> d;
};

} // namespace Simulation
