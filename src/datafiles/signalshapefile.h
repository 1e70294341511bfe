#pragma once

#include <radiosim/radiosim_export.h>

#include <QMutex>
#include <QString>

#include <atomic>
#include <vector>

class QFile;

namespace Simulation {

// Random-access reader of a signal shape file: equal spectrum records at a fixed rate, each
// with a pair of levels. One record at a time is current; every user of the object shares it.
class RADIOSIM_EXPORT SignalShapeFile
{
public:
    explicit SignalShapeFile(const QString &fileName);
    ~SignalShapeFile();
    SignalShapeFile(const SignalShapeFile &) = delete;
    SignalShapeFile &operator=(const SignalShapeFile &) = delete;

    // False for a missing file, a short header, another magic or version, and a header whose
    // one record would not fit in the file; the file is then closed.
    bool open();
    void close();
    bool isOpen() const;

    // The loop of readSpectrum(); to be set before the first read.
    void setPackageDuration(uint milliseconds);
    // Makes the record at milliseconds (modulo the package duration, then modulo the shape's
    // own length) the current one. No allocation; the file is read only when the record
    // changes and was not read ahead, and not sought when it already lies under the read
    // position. Any thread may call it. Does nothing before a successful open() and while the
    // package duration is 0.
    void readSpectrum(uint milliseconds);

    // The bins of the current record, binCount entries. The reference stays valid, and its
    // content changes with every readSpectrum(), so with several readers in parallel it holds
    // whichever record came last. The same holds for the two levels.
    const std::vector<float> &spectrum() const { return currentSpectrum; }
    // The smaller and the larger of the record's two levels.
    float maxLevelInSpectrum() const { return peakLevel; }
    float signalLevelInSpectrum() const { return signalLevel; }
    float basePower() const { return signalBasePower; }
    // Hertz.
    uint bandwidth() const { return signalBandwidth; }
    // Milliseconds: the record period times the low 32 bits of the record count.
    uint duration() const;
    // 2 once open() has succeeded, 0 before.
    uint version() const { return fileVersion; }
    // The header's counts, for tools that describe a file; 0 before a successful open().
    quint64 recordCount() const { return spectrumCount; }
    uint recordsPerSecond() const { return spectraPerSecond; }
    uint binsPerRecord() const { return binCount; }

private:
    bool readGlobalHeader();
    // The offset of the record at milliseconds, without the package loop; the record period
    // and count must not be 0.
    quint64 posInFile(uint milliseconds);
    // Makes the record at position available in readAhead, reading from the file only when it
    // is not there yet; answers how many of its bytes could be read.
    qint64 bufferRecord(qint64 position);

    QFile *file;
    quint64 spectrumCount = 0;
    quint32 spectraPerSecond = 0;
    quint32 spectrumPeriod = 0; // milliseconds per record
    quint32 binCount = 0;
    quint32 recordSize = 0;
    quint32 fileVersion = 0;
    quint32 signalBandwidth = 0;
    float signalBasePower = 0.0f;
    std::vector<float> currentSpectrum;
    float peakLevel = 0.0f;
    float signalLevel = 0.0f;
    quint64 currentRecordPos = 0; // below the first record: none read yet
    std::atomic<quint32> packageDuration { 0 };
    QMutex mutex;
    // Records read from the file and not handed over yet. Sequential play reads several
    // records at once, a jump only the one it lands on; the file is opened unbuffered.
    std::vector<char> readAhead;
    qint64 readAheadStart = -1;
    qint64 readAheadSize = 0;
};

} // namespace Simulation
