#include "datafiletesthelpers.h"

#include <radiosim/datafiles/audiofile.h>
#include <radiosim/datafiles/pdwfile.h>
#include <radiosim/datafiles/resultdatafile.h>
#include <radiosim/datafiles/signalshapefile.h>
#include <radiosim/datafiles/symboldatafile.h>
#include <radiosim/datafiles/wavefilereader.h>

#include <QTemporaryDir>
#include <QtTest>

using namespace Simulation;

// Each reader opens a whole file, which is then cut short on disk behind its back, as when a
// package is replaced while a device plays it: reads give less, never a crash.
class tst_TruncatedFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QVERIFY(m_dir.isValid()); }
    void waveAndAudio();
    void signalShape();
    void pdw();
    void symbolsAndResults();

private:
    bool truncate(const QString &path, qint64 size) { return QFile::resize(path, size); }

    QTemporaryDir m_dir;
};

// Frames past the cut can't be read: the wave reader refuses the read, the audio file leaves
// them 0.
void tst_TruncatedFiles::waveAndAudio()
{
    const QString path = writeFile(m_dir.filePath("a.wav"), rampWave(32000));
    WaveFileReader wave(path);
    AudioFile audio(path);
    QVERIFY(wave.open() && audio.open());
    audio.setPackageDuration(1000);
    QVERIFY(truncate(path, 44 + 2 * 100));
    std::vector<short> samples;
    QVERIFY(wave.readSamples(0, 100, samples));
    QCOMPARE(samples.back(), short(99));
    samples.clear();
    QVERIFY(!wave.readSamples(50, 100, samples));
    QVERIFY(!wave.readSamples(20000, 10, samples));
    const std::vector<short> read = audio.readSamples(0, 10);
    QCOMPARE(read.size(), size_t(320));
    QCOMPARE(read.at(99), short(99));
    QVERIFY(std::all_of(read.begin() + 100, read.end(), [](short s) { return s == 0; }));
    const std::vector<short> past = audio.readSamples(500, 10);
    QVERIFY(std::all_of(past.begin(), past.end(), [](short s) { return s == 0; }));
}

// A record past the cut leaves the current one as it was.
void tst_TruncatedFiles::signalShape()
{
    const auto levels = [](quint64 r) { return qMakePair(float(r), float(r) + 1); };
    const QByteArray bytes = shapeFile(100, 10, 8, levels);
    const QString path = writeFile(m_dir.filePath("a.ssf"), bytes);
    SignalShapeFile shape(path);
    QVERIFY(shape.open());
    shape.setPackageDuration(10000);
    shape.readSpectrum(100);
    QCOMPARE(shape.spectrum().at(0), 1.0f);
    QVERIFY(truncate(path, bytes.size() / 4));
    shape.readSpectrum(9000);
    QCOMPARE(int(shape.spectrum().size()), 8);
    shape.readSpectrum(200);
    QCOMPARE(shape.spectrum().at(0), 2.0f);
}

// The reading loop ends at the cut.
void tst_TruncatedFiles::pdw()
{
    const QString path = m_dir.filePath("a.pdw");
    {
        PDWFile writer(path, true, false);
        CPackedPDW record {};
        for (int i = 0; i < 1000; ++i)
            writer.addPDW(&record);
    }
    PDWFile reader(path, false, false);
    QVERIFY(reader.is_open());
    CPackedPDW record {};
    QCOMPARE(reader.getPDW(&record), 32);
    QVERIFY(truncate(path, 32 * 10 + 7));
    int records = 1;
    while (reader.getPDW(&record) == 32 && records < 2000)
        ++records;
    QVERIFY2(records < 1000, qPrintable(QString::number(records)));
}

// 100 symbols and 100 items are left of 1000 at 100 a second: a stretch across the cut stops
// there, one beyond it is empty.
void tst_TruncatedFiles::symbolsAndResults()
{
    const QString symbolPath = writeFile(m_dir.filePath("a.sdf"), symbolFile(1000, 100.0f));
    const QString resultPath = writeFile(m_dir.filePath("a.rdf"), resultFile(1000, 100.0f));
    SymbolDataFile symbols(symbolPath);
    ResultDataFile results(resultPath);
    QVERIFY(symbols.open() && results.open());
    QVERIFY(truncate(symbolPath, symbolFile(100, 100.0f).size()));
    QVERIFY(truncate(resultPath, resultFile(100, 100.0f).size()));
    const auto read = [&](uint start) {
        const std::vector<unsigned char> s = symbols.readSymbols(start, 1000);
        return runs(QVector<int>(s.begin(), s.end())) + ' '
            + QString::number(results.readResultData(start, 1000).size());
    };
    QCOMPARE(read(500), QString("50-98 100"));
    QCOMPARE(read(5000), QString(" 0"));
}

QTEST_GUILESS_MAIN(tst_TruncatedFiles)
#include "tst_truncatedfiles.moc"
