#include "datafiletesthelpers.h"

#include <radiosim/datafiles/signalshapefile.h>

#include <QtTest>

#include <cmath>

using namespace Simulation;

namespace {

QPair<float, float> rising(quint64 record)
{
    return { 1.0f, 2.0f + float(record) };
}

// "peak/signal: bins", at most three of them.
QString current(const SignalShapeFile &shape)
{
    QStringList bins;
    for (size_t i = 0; i < std::min<size_t>(shape.spectrum().size(), 3); ++i)
        bins << QString::number(shape.spectrum()[i]);
    return QStringLiteral("%1/%2: %3")
        .arg(shape.maxLevelInSpectrum())
        .arg(shape.signalLevelInSpectrum())
        .arg(bins.join(QLatin1Char(' ')));
}

} // namespace

class tst_SignalShapeFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QVERIFY(m_dir.isValid()); }

    void open_data()
    {
        columns<QByteArray, bool>("bytes", "opened");
        const QByteArray good = shapeFile(3, 10, 2, rising);
        row("good", good, true);
        row("header only, 34 bytes", good.left(34), false);
        row("version 1", shapeFile(3, 10, 2, rising, 1), false);
        row("other magic", shapeFile(3, 10, 2, rising, 2, "V&H-SDF"), false);
        row("more bins than the file holds",
            shapeFile(1, 10, 2, rising).replace(31, 4, le<quint32>(0x40000000)), false);
        row("truncated in the second record", good.left(35 + 24 + 10), true);
    }

    void open()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, opened);
        SignalShapeFile shape(writeFile(m_dir.filePath("a.ssf"), bytes));
        QCOMPARE(shape.version(), 0u);
        QCOMPARE(shape.recordCount(), 0u);
        QCOMPARE(shape.open(), opened);
        QCOMPARE(shape.isOpen(), opened);
        QCOMPARE(shape.version(), opened ? 2u : 0u);
        QCOMPARE(shape.spectrum().size(), size_t(opened ? 2 : 0));
        shape.close();
        QVERIFY(!shape.isOpen());
    }

    // 100 records at 10 a second: a shape of 10000 ms, each record 100 ms.
    void readSpectrum_data()
    {
        columns<uint, uint, QString>("packageDuration", "ms", "record");
        row("first record", 3000u, 0u, QString("1/2: 0 0.1 0.2"));
        row("inside a record", 3000u, 2999u, QString("1/31: 29 29.1 29.2"));
        row("a shorter package loops before record 30", 3000u, 3000u, QString("1/2: 0 0.1 0.2"));
        row("a longer package: the shape loops too", 20000u, 10000u, QString("1/2: 0 0.1 0.2"));
        row("a longer package, second turn", 20000u, 15050u, QString("1/52: 50 50.1 50.2"));
    }

    void readSpectrum()
    {
        QFETCH(uint, packageDuration);
        QFETCH(uint, ms);
        QFETCH(QString, record);
        SignalShapeFile shape(writeFile(m_dir.filePath("a.ssf"), shapeFile(100, 10, 3, rising)));
        QVERIFY(shape.open());
        QCOMPARE(shape.duration(), 10000u);
        QCOMPARE(shape.bandwidth(), 10000u);
        QCOMPARE(shape.basePower(), 2e-14f);
        QCOMPARE(shape.recordCount(), 100u);
        QCOMPARE(shape.recordsPerSecond(), 10u);
        QCOMPARE(shape.binsPerRecord(), 3u);
        shape.setPackageDuration(packageDuration);
        shape.readSpectrum(ms);
        QCOMPARE(current(shape), record);
    }

    // The smaller level is the peak; equal levels or a NaN give the second as the peak.
    void levelsAreSorted()
    {
        const float nan = std::nanf("");
        const QPair<float, float> pairs[]
            = { { 1.0f, 8.0f }, { 8.0f, 1.0f }, { 3.0f, 3.0f }, { nan, 5.0f }, { 5.0f, nan } };
        SignalShapeFile shape(writeFile(
            m_dir.filePath("a.ssf"), shapeFile(5, 10, 1, [&](quint64 r) { return pairs[r]; })));
        QVERIFY(shape.open());
        shape.setPackageDuration(500);
        QStringList levels;
        for (uint ms = 0; ms < 500; ms += 100) {
            shape.readSpectrum(ms);
            levels << QStringLiteral("%1/%2")
                          .arg(shape.maxLevelInSpectrum())
                          .arg(shape.signalLevelInSpectrum());
        }
        QCOMPARE(levels.join(' '), QString("1/8 1/8 3/3 5/nan nan/5"));
    }

    // Play in order and a jump back, over records of 4016 bytes, four to a read-ahead block:
    // every record comes out whole, at block edges too.
    void sequentialPlayCrossesReadAheadBlocks()
    {
        SignalShapeFile shape(writeFile(m_dir.filePath("a.ssf"), shapeFile(100, 10, 1000, rising)));
        QVERIFY(shape.open());
        shape.setPackageDuration(10000);
        QStringList wrong;
        for (uint ms = 0; ms < 20000; ms += 50) {
            shape.readSpectrum(ms % 10000 == 5000 ? 1234 : ms);
            const uint record = (ms % 10000 == 5000 ? 1234 : ms) % 10000 / 100;
            if (current(shape) != QStringLiteral("1/%1: %2 %2.1 %2.2").arg(record + 2).arg(record)
                || shape.spectrum().back() != float(record) + 99.9f)
                wrong << QString::number(ms);
        }
        QCOMPARE(wrong.join(' '), QString());
    }

    // The record on disk changes under an open reader: only a change of record reads again.
    void theCurrentRecordIsReadOnce()
    {
        const QByteArray bytes = shapeFile(100, 10, 2, rising);
        const QString path = writeFile(m_dir.filePath("a.ssf"), bytes);
        SignalShapeFile shape(path);
        QVERIFY(shape.open());
        shape.setPackageDuration(10000);
        shape.readSpectrum(500);
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadWrite) && file.seek(35 + 5 * 24 + 16));
        QVERIFY(file.write(le(-1.0f) + le(-2.0f)) == 8 && file.flush());
        shape.readSpectrum(599);
        QCOMPARE(current(shape), QString("1/7: 5 5.1"));
        shape.readSpectrum(600);
        shape.readSpectrum(500);
        QCOMPARE(current(shape), QString("1/7: -1 -2"));
    }

    // Zero divisors and unusable states leave the current record as it is.
    void nothingIsReadWithoutAUsableLoop_data()
    {
        columns<QByteArray, uint>("bytes", "packageDuration");
        row("package duration 0", shapeFile(3, 10, 2, rising), 0u);
        row("more than 1000 records a second", shapeFile(3, 2000, 2, rising), 1000u);
        row("no records a second", shapeFile(3, 0, 2, rising), 1000u);
        row("no records", shapeFile(0, 10, 2, rising) + QByteArray(24, '\x7f'), 1000u);
    }

    void nothingIsReadWithoutAUsableLoop()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(uint, packageDuration);
        SignalShapeFile shape(writeFile(m_dir.filePath("a.ssf"), bytes));
        shape.setPackageDuration(packageDuration);
        shape.readSpectrum(700);
        QVERIFY(shape.spectrum().empty());
        QVERIFY(shape.open());
        shape.readSpectrum(700);
        QCOMPARE(current(shape).section(':', 1), QString(" 0 0"));
    }

    // Records of 416 bytes, so that the one asked for after the cut lies beyond what the file
    // object has buffered: the failed read keeps the current record.
    void fileTruncatedWhileOpen()
    {
        const QString path = writeFile(m_dir.filePath("a.ssf"), shapeFile(100, 10, 100, rising));
        SignalShapeFile shape(path);
        QVERIFY(shape.open());
        shape.setPackageDuration(10000);
        shape.readSpectrum(200);
        QVERIFY(QFile::resize(path, 35 + 416));
        shape.readSpectrum(9000);
        QCOMPARE(current(shape), QString("1/4: 2 2.1 2.2"));
        shape.readSpectrum(0);
        QCOMPARE(current(shape), QString("1/2: 0 0.1 0.2"));
    }

private:
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(tst_SignalShapeFile)
#include "tst_signalshapefile.moc"
