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

// Rising, but for the first five records, whose levels come in every order.
QPair<float, float> levels(quint64 record)
{
    const float nan = std::nanf("");
    const QPair<float, float> first[]
        = { { 1.0f, 8.0f }, { 8.0f, 1.0f }, { 3.0f, 3.0f }, { nan, 5.0f }, { 5.0f, nan } };
    return record < 5 ? first[record] : rising(record);
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
    void open_data()
    {
        const auto row = columns<QByteArray, QString>("bytes", "state");
        const QByteArray good = shapeFile(3, 10, 2, rising);
        row("good", good, "1 1 v2, 2 bins");
        row("header only, 34 bytes", good.left(34), "0 0 v0, 0 bins");
        row("version 1", shapeFile(3, 10, 2, rising, 1), "0 0 v0, 0 bins");
        row("other magic", shapeFile(3, 10, 2, rising, 2, "V&H-SDF"), "0 0 v0, 0 bins");
        row("more bins than the file holds",
            shapeFile(1, 10, 2, rising).replace(31, 4, le<quint32>(0x40000000)), "0 0 v0, 0 bins");
        row("truncated in the second record", good.left(35 + 24 + 10), "1 1 v2, 2 bins");
    }

    // What open answers, whether the file stays open, the version and the bins held.
    void open()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QString, state);
        SignalShapeFile shape(writeFile(scratch("a.ssf"), bytes));
        QCOMPARE(QStringLiteral("%1 %2 v%3, %4 bins")
                     .arg(shape.open())
                     .arg(shape.isOpen())
                     .arg(shape.version())
                     .arg(shape.spectrum().size()),
            state);
    }

    // 100 records at 10 a second: a shape of 10000 ms, each record 100 ms. The smaller level is
    // the peak; equal levels or a NaN give the second as the peak.
    void readSpectrum_data()
    {
        const auto row = columns<uint, uint, QString>("packageDuration", "ms", "record");
        row("first record", 3000, 0, "1/8: 0 0.1 0.2");
        row("levels the other way round", 3000, 100, "1/8: 1 1.1 1.2");
        row("equal levels", 3000, 250, "3/3: 2 2.1 2.2");
        row("NaN first", 3000, 300, "5/nan: 3 3.1 3.2");
        row("NaN second", 3000, 499, "nan/5: 4 4.1 4.2");
        row("inside a record", 3000, 2999, "1/31: 29 29.1 29.2");
        row("a shorter package loops before record 30", 3000, 3000, "1/8: 0 0.1 0.2");
        row("a longer package: the shape loops too", 20000, 10000, "1/8: 0 0.1 0.2");
        row("a longer package, second turn", 20000, 15050, "1/52: 50 50.1 50.2");
    }

    void readSpectrum()
    {
        QFETCH(uint, packageDuration);
        QFETCH(uint, ms);
        QFETCH(QString, record);
        SignalShapeFile shape(writeFile(scratch("a.ssf"), shapeFile(100, 10, 3, levels)));
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

    // Play in order and a jump back, over records of 4016 bytes, four to a read-ahead block:
    // every record comes out whole, at block edges too.
    void sequentialPlayCrossesReadAheadBlocks()
    {
        SignalShapeFile shape(writeFile(scratch("a.ssf"), shapeFile(100, 10, 1000, rising)));
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
        const QString path = writeFile(scratch("a.ssf"), bytes);
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
        const auto row = columns<QByteArray, uint>("bytes", "packageDuration");
        row("package duration 0", shapeFile(3, 10, 2, rising), 0);
        row("more than 1000 records a second", shapeFile(3, 2000, 2, rising), 1000);
        row("no records a second", shapeFile(3, 0, 2, rising), 1000);
        row("no records", shapeFile(0, 10, 2, rising) + QByteArray(24, '\x7f'), 1000);
    }

    void nothingIsReadWithoutAUsableLoop()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(uint, packageDuration);
        SignalShapeFile shape(writeFile(scratch("a.ssf"), bytes));
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
        const QString path = writeFile(scratch("a.ssf"), shapeFile(100, 10, 100, rising));
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
};

QTEST_GUILESS_MAIN(tst_SignalShapeFile)
#include "tst_signalshapefile.moc"
