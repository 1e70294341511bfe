#include "datafiletesthelpers.h"

#include <radiosim/datafiles/resultdatafile.h>
#include <radiosim/datafiles/symboldatafile.h>

#include <QtTest>

using namespace Simulation;

namespace {

// Symbol i is i mod 256, item i the 16-bit number i.
QByteArray symbolFile(quint64 count, float rate, quint32 version = 0, char payloadType = 0)
{
    QByteArray bytes = "V&H-SDF" + le(version) + QByteArray(16, 'r') + char(4) + payloadType
        + le(rate) + le(count);
    for (quint64 i = 0; i < count; ++i)
        bytes += char(i);
    return bytes;
}

QByteArray resultFile(
    quint64 count, float rate, const QByteArray &magic = "V&H-RDF", char payloadType = 0)
{
    QByteArray bytes
        = magic + le<quint32>(0) + payloadType + le(rate) + le(count) + le<quint32>(77);
    for (quint64 i = 0; i < count; ++i)
        bytes += le(quint16(i));
    return bytes;
}

QVector<int> items(const QByteArray &bytes)
{
    QVector<int> numbers;
    for (int i = 0; i + 1 < bytes.size(); i += 2)
        numbers << qFromLittleEndian<quint16>(bytes.constData() + i);
    return numbers;
}

QVector<int> symbols(const std::vector<unsigned char> &bytes)
{
    return QVector<int>(bytes.begin(), bytes.end());
}

} // namespace

class tst_ConstantRateFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QVERIFY(m_dir.isValid()); }

    // 1000 symbols and 1000 items at 100 a second: 10000 ms each. Symbols lose the last of
    // every stretch; result items don't.
    void stretches_data()
    {
        columns<uint, uint, QString, QString>("start", "duration", "symbols", "items");
        row("first second", 0u, 1000u, QString("0-98"), QString("0-99"));
        row("over the end wraps to the start", 9900u, 200u, QString("222-231,0-8"),
            QString("990-999,0-9"));
        row("the file's length loops", 10000u, 1000u, QString("0-98"), QString("0-99"));
        row("inside one item", 15u, 4u, QString(""), QString(""));
        row("one item", 15u, 10u, QString(""), QString("1"));
        row("duration 0", 0u, 0u, QString(""), QString(""));
    }

    void stretches()
    {
        QFETCH(uint, start);
        QFETCH(uint, duration);
        QFETCH(QString, symbols);
        QFETCH(QString, items);
        SymbolDataFile symbolFile(writeFile(m_dir.filePath("a.sdf"), ::symbolFile(1000, 100.0f)));
        ResultDataFile resultFile(writeFile(m_dir.filePath("a.rdf"), ::resultFile(1000, 100.0f)));
        QVERIFY(symbolFile.open() && resultFile.open());
        QCOMPARE(symbolFile.length(), 10000u);
        QCOMPARE(resultFile.length(), 10000u);
        QCOMPARE(runs(::symbols(symbolFile.readSymbols(start, duration))), symbols);
        QCOMPARE(runs(::items(resultFile.readResultData(start, duration))), items);
    }

    void symbolHeader()
    {
        SymbolDataFile file(writeFile(m_dir.filePath("a.sdf"), symbolFile(10, 2.5f)));
        QVERIFY(file.open() && file.isOpen());
        file.setSymbolRate(50);
        QCOMPARE(file.symbolRate(), 2.5f);
        QCOMPARE(file.length(), 4000u);
        QCOMPARE(int(file.symbolValency()), 4);
        QVERIFY(file.modulation().isEmpty());
        // Copies share the open file.
        SymbolDataFile copy = file;
        copy.close();
        QVERIFY(!file.isOpen() && file.readSymbols(0, 4000).empty() && file.length() == 0);
    }

    // Refused symbol files are closed again; refused result files stay open.
    void refusedFiles_data()
    {
        columns<QByteArray, QByteArray, bool>("symbolBytes", "resultBytes", "resultOpen");
        row("version 1", symbolFile(10, 1.0f, 1), resultFile(10, 1.0f, "V&H-RDF\x01"), true);
        row("payload type 1", symbolFile(10, 1.0f, 0, 1), resultFile(10, 1.0f, "V&H-RDF", 1), true);
        row("other magic", "X" + symbolFile(10, 1.0f).mid(1), resultFile(10, 1.0f, "V&H-SDF"),
            true);
        row("no payload header", symbolFile(0, 1.0f).left(29), resultFile(0, 1.0f).left(12), true);
        row("missing", QByteArray(), QByteArray(), false);
    }

    void refusedFiles()
    {
        QFETCH(QByteArray, symbolBytes);
        QFETCH(QByteArray, resultBytes);
        QFETCH(bool, resultOpen);
        const auto path = [&](const char *name, const QByteArray &bytes) {
            return bytes.isEmpty() ? m_dir.filePath("missing")
                                   : writeFile(m_dir.filePath(name), bytes);
        };
        SymbolDataFile symbols(path("a.sdf", symbolBytes));
        QVERIFY(!symbols.open() && !symbols.isOpen());
        QVERIFY(symbols.readSymbols(0, 1000).empty() && symbols.length() == 0
            && symbols.symbolRate() == 0.0f);
        ResultDataFile results(path("a.rdf", resultBytes));
        QCOMPARE(results.resultDataType(), ResultDataFile::ConstantRate);
        QVERIFY(!results.open());
        QCOMPARE(results.isOpen(), resultOpen);
        QVERIFY(results.readResultData(0, 1000).isEmpty() && results.length() == 0);
    }

    // Rates that give no length: nothing is read, nothing divides by zero.
    void ratesWithoutLength_data()
    {
        columns<float, quint64>("rate", "count");
        row("rate 0", 0.0f, quint64(10));
        row("negative rate", -5.0f, quint64(10));
        row("no symbols", 100.0f, quint64(0));
        row("longer than 2^32 ms", 0.001f, quint64(10000000));
    }

    void ratesWithoutLength()
    {
        QFETCH(float, rate);
        QFETCH(quint64, count);
        QByteArray symbolBytes = symbolFile(0, rate);
        symbolBytes.replace(33, 8, le(count));
        SymbolDataFile symbols(
            writeFile(m_dir.filePath("a.sdf"), symbolBytes + QByteArray(10, 'x')));
        QVERIFY(symbols.open());
        QCOMPARE(symbols.length(), 0u);
        QVERIFY(symbols.readSymbols(5, 1000).empty());
    }

    // Cut under an open reader: the stretch ends at the cut instead of reading on and on.
    void fileTruncatedWhileOpen()
    {
        const QString symbolPath = writeFile(m_dir.filePath("a.sdf"), symbolFile(1000, 100.0f));
        const QString resultPath = writeFile(m_dir.filePath("a.rdf"), resultFile(1000, 100.0f));
        SymbolDataFile symbols(symbolPath);
        ResultDataFile results(resultPath);
        QVERIFY(symbols.open() && results.open());
        QVERIFY(QFile::resize(symbolPath, 41 + 50) && QFile::resize(resultPath, 28 + 100));
        QCOMPARE(runs(::symbols(symbols.readSymbols(0, 4000000))), QString("0-48"));
        QCOMPARE(runs(::items(results.readResultData(0, 4000000))), QString("0-49"));
        results.close();
        QVERIFY(results.readResultData(0, 1000).isEmpty() && results.length() == 10000);
    }

    // A header that claims 2^40 items at 10^12 a second: a stretch ends with the file, and no
    // room is taken for what the header claims.
    void headerClaimsMoreThanTheFile()
    {
        QByteArray symbolBytes = symbolFile(10, 1e12f);
        symbolBytes.replace(33, 8, le(quint64(1) << 40));
        QByteArray resultBytes = resultFile(10, 1e12f);
        resultBytes.replace(16, 8, le(quint64(1) << 40));
        SymbolDataFile symbols(writeFile(m_dir.filePath("a.sdf"), symbolBytes));
        ResultDataFile results(writeFile(m_dir.filePath("a.rdf"), resultBytes));
        QVERIFY(symbols.open() && results.open());
        QCOMPARE(runs(::symbols(symbols.readSymbols(0, 20))), QString("0-8"));
        QCOMPARE(runs(::items(results.readResultData(0, 20))), QString("0-9"));
    }

private:
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(tst_ConstantRateFiles)
#include "tst_constantratefiles.moc"
