#include "datafiletesthelpers.h"

#include <radiosim/datafiles/pdwfile.h>

#include <QtTest>

#include <cstring>

namespace {

CPackedPDW pdw(quint32 number)
{
    CPackedPDW record;
    std::memset(record.bytes, 0, sizeof record.bytes);
    qToLittleEndian(number, record.bytes);
    return record;
}

// The block headers of a file as "records@number/length", records as their first word.
QString layout(const QByteArray &bytes)
{
    QStringList blocks;
    for (int at = 0; at + 32 <= bytes.size();) {
        const auto word = [&](int index) {
            return qFromLittleEndian<quint32>(bytes.constData() + at + 4 * index);
        };
        if (word(0) != 0xFB746572 || word(3) != 512 || word(4) != 2 || word(5) != 0 || word(7) != 8)
            return QStringLiteral("no header at %1").arg(at);
        blocks << QStringLiteral("%1@%2/%3").arg(word(6)).arg(word(2)).arg(word(1));
        at += 32 * (1 + int(word(6)));
    }
    return blocks.join(' ');
}

} // namespace

class tst_PDWFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writing_data()
    {
        const auto row = columns<int, bool, int, QString>("adds", "headers", "size", "blocks");
        row("2500 in blocks", 2500, true, 3 * 32 + 80000, "1000@0/8008 1000@1/8008 500@2/4008");
        row("2500 plain", 2500, false, 80000, "");
        row("none, one empty block", 0, true, 32, "0@0/8");
        row("exactly 1000", 1000, true, 32 + 32000, "1000@0/8008");
    }

    void writing()
    {
        QFETCH(int, adds);
        QFETCH(bool, headers);
        QFETCH(int, size);
        QFETCH(QString, blocks);
        const QString path = scratch("a.pdw");
        {
            PDWFile file(path, true, headers);
            QVERIFY(file.is_open());
            QVector<int> counts;
            for (int i = 0; i < adds; ++i) {
                CPackedPDW record = pdw(quint32(i));
                counts << file.addPDW(&record);
            }
            // The buffer goes out at the 1001st add, not at the 1000th.
            if (adds > 1000)
                QCOMPARE(counts.mid(998, 4), QVector<int>({ 999, 1000, 1, 2 }));
        }
        const QByteArray bytes = contentOf(path);
        QCOMPARE(bytes.size(), size);
        if (headers)
            QCOMPARE(layout(bytes), blocks);
        else
            QCOMPARE(qFromLittleEndian<quint32>(bytes.constData() + 32 * 2499), 2499u);
    }

    // 64 bytes give two records, then a record of zeros, then the end. Headers come as records.
    void reading()
    {
        const QString path = writeFile(scratch("a.pdw"), QByteArray(64, '\x11'));
        PDWFile file(path, false, true);
        QVERIFY(file.is_open());
        CPackedPDW record = pdw(7);
        QStringList reads;
        for (int i = 0; i < 5; ++i) {
            const int size = file.getPDW(&record);
            reads << QStringLiteral("%1:%2").arg(size).arg(
                qFromLittleEndian<quint32>(record.bytes), 0, 16);
        }
        QCOMPARE(reads.join(' '), QString("32:11111111 32:11111111 32:0 0:0 0:0"));
    }

    // Cut under an open reader: the reading loop ends instead of running on.
    void fileTruncatedWhileOpen()
    {
        const QString path = writeFile(scratch("a.pdw"), QByteArray(32000, '\x11'));
        PDWFile file(path, false, false);
        CPackedPDW record = pdw(0);
        QVERIFY(file.getPDW(&record) == 32 && QFile::resize(path, 32 * 10 + 7));
        int records = 1;
        while (file.getPDW(&record) == 32 && records < 2000)
            ++records;
        QVERIFY2(records < 1000, qPrintable(QString::number(records)));
    }

    // No file: nothing is read or written, and adds past one block are refused.
    void unopenedFile()
    {
        PDWFile file(scratch("no/such/folder/a.pdw"), true, true);
        QVERIFY(!file.is_open());
        CPackedPDW record = pdw(1);
        QCOMPARE(file.getPDW(&record), 0);
        int last = 0;
        for (int i = 0; i < 2500; ++i)
            last = file.addPDW(&record);
        QCOMPARE(last, 1000);
        PDWFile missing(scratch("missing.pdw"), false, false);
        QVERIFY(!missing.is_open() && missing.getPDW(&record) == 0);
    }
};

QTEST_GUILESS_MAIN(tst_PDWFile)
#include "tst_pdwfile.moc"
