#include "datafiletesthelpers.h"

#include <radiosim/datafiles/resultdatafile.h>
#include <radiosim/datafiles/symboldatafile.h>

#include <QtTest>

using namespace Simulation;

namespace {

QString items(const QByteArray &bytes)
{
    QVector<int> numbers;
    for (int i = 0; i + 1 < bytes.size(); i += 2)
        numbers << qFromLittleEndian<quint16>(bytes.constData() + i);
    return runs(numbers);
}

QString symbols(const std::vector<unsigned char> &bytes)
{
    return runs(QVector<int>(bytes.begin(), bytes.end()));
}

} // namespace

class tst_ConstantRateFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // 1000 symbols and 1000 items at 100 a second: 10000 ms each. Symbols lose the last of
    // every stretch; result items don't.
    void stretches_data()
    {
        const auto row = columns<uint, uint, QString>("start", "duration", "symbolsAndItems");
        row("first second", 0, 1000, "0-98 0-99");
        row("over the end wraps to the start", 9900, 200, "222-231,0-8 990-999,0-9");
        row("the file's length loops", 10000, 1000, "0-98 0-99");
        row("inside one item", 15, 4, " ");
        row("one item", 15, 10, " 1");
        row("duration 0", 0, 0, " ");
    }

    void stretches()
    {
        QFETCH(uint, start);
        QFETCH(uint, duration);
        QFETCH(QString, symbolsAndItems);
        SymbolDataFile symbolFile(writeFile(scratch("a.sdf"), ::symbolFile(1000, 100.0f)));
        ResultDataFile resultFile(writeFile(scratch("a.rdf"), ::resultFile(1000, 100.0f)));
        QVERIFY(symbolFile.open() && resultFile.open());
        QVERIFY(symbolFile.length() == 10000 && resultFile.length() == 10000);
        QCOMPARE(symbols(symbolFile.readSymbols(start, duration)) + ' '
                + items(resultFile.readResultData(start, duration)),
            symbolsAndItems);
    }

    // 10 symbols at 2.5 a second last 4000 ms; the rate set is ignored. Copies share the file.
    // Closed, a symbol file forgets its length, a result file keeps it; neither reads.
    void headersAndClose()
    {
        SymbolDataFile file(writeFile(scratch("a.sdf"), symbolFile(10, 2.5f)));
        ResultDataFile results(writeFile(scratch("a.rdf"), resultFile(1000, 100.0f)));
        QVERIFY(file.open() && results.open());
        file.setSymbolRate(50);
        QCOMPARE(QStringLiteral("%1/s %2 ms, valency %3")
                     .arg(file.symbolRate())
                     .arg(file.length())
                     .arg(file.symbolValency()),
            QString("2.5/s 4000 ms, valency 4"));
        SymbolDataFile copy = file;
        copy.close();
        results.close();
        QVERIFY(!file.isOpen() && file.readSymbols(0, 4000).empty() && file.length() == 0);
        QVERIFY(results.readResultData(0, 1000).isEmpty() && results.length() == 10000);
    }

    // Refused symbol files are closed again; refused result files stay open. Neither reads.
    void refusedFiles_data()
    {
        const auto row
            = columns<QByteArray, QByteArray, bool>("symbolBytes", "resultBytes", "resultOpen");
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
        const auto path = [](const char *name, const QByteArray &bytes) {
            return bytes.isEmpty() ? scratch("missing") : writeFile(scratch(name), bytes);
        };
        SymbolDataFile symbols(path("a.sdf", symbolBytes));
        ResultDataFile results(path("a.rdf", resultBytes));
        QVERIFY(!symbols.open() && !results.open());
        QCOMPARE(QStringLiteral("%1 %2 %3 %4 | %5 %6 %7")
                     .arg(symbols.isOpen())
                     .arg(symbols.readSymbols(0, 1000).size())
                     .arg(symbols.length())
                     .arg(symbols.symbolRate())
                     .arg(results.isOpen())
                     .arg(results.readResultData(0, 1000).size())
                     .arg(results.length()),
            QStringLiteral("0 0 0 0 | %1 0 0").arg(resultOpen));
    }

    // Rates that give no length: nothing is read, nothing divides by zero.
    void ratesWithoutLength_data()
    {
        const auto row = columns<float, quint64>("rate", "count");
        row("rate 0", 0, 10);
        row("negative rate", -5, 10);
        row("no symbols", 100, 0);
        row("longer than 2^32 ms", 0.001f, 10000000);
    }

    void ratesWithoutLength()
    {
        QFETCH(float, rate);
        QFETCH(quint64, count);
        QByteArray symbolBytes = symbolFile(0, rate);
        symbolBytes.replace(33, 8, le(count));
        SymbolDataFile symbols(writeFile(scratch("a.sdf"), symbolBytes + QByteArray(10, 'x')));
        QVERIFY(symbols.open());
        QCOMPARE(symbols.length(), 0u);
        QVERIFY(symbols.readSymbols(5, 1000).empty());
    }

    // Cut under an open reader, or a header that claims 2^40 items at 10^12 a second: a
    // stretch ends with the file, no room is taken for what the header claims, and a stretch
    // past the end is empty.
    void stretchEndsWithTheFile_data()
    {
        const auto row = columns<QByteArray, QByteArray, int, int, uint, QString>(
            "symbolBytes", "resultBytes", "symbolCut", "resultCut", "duration", "symbolsAndItems");
        row("cut while open", symbolFile(1000, 100.0f), resultFile(1000, 100.0f), 41 + 50, 28 + 100,
            4000000, "0-48 0-49");
        row("header claims more", symbolFile(10, 1e12f).replace(33, 8, le(quint64(1) << 40)),
            resultFile(10, 1e12f).replace(16, 8, le(quint64(1) << 40)), -1, -1, 20, "0-8 0-9");
    }

    void stretchEndsWithTheFile()
    {
        QFETCH(QByteArray, symbolBytes);
        QFETCH(QByteArray, resultBytes);
        QFETCH(int, symbolCut);
        QFETCH(int, resultCut);
        QFETCH(uint, duration);
        const QString symbolPath = writeFile(scratch("a.sdf"), symbolBytes);
        const QString resultPath = writeFile(scratch("a.rdf"), resultBytes);
        SymbolDataFile symbols(symbolPath);
        ResultDataFile results(resultPath);
        QVERIFY(symbols.open() && results.open());
        QVERIFY(symbolCut < 0 || QFile::resize(symbolPath, symbolCut));
        QVERIFY(resultCut < 0 || QFile::resize(resultPath, resultCut));
        QTEST(::symbols(symbols.readSymbols(0, duration)) + ' '
                + items(results.readResultData(0, duration)),
            "symbolsAndItems");
        QVERIFY(symbols.readSymbols(5000, 1000).empty());
        QVERIFY(results.readResultData(5000, 1000).isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_ConstantRateFiles)
#include "tst_constantratefiles.moc"
