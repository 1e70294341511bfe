#include <radiosim/units/geodesy.h>

#include <QtTest>

using namespace Simulation;

Q_DECLARE_METATYPE(TPos)

// GeodSolve (GeographicLib) on one input line of numbers; its answer split into numbers.
static QVector<double> geodSolve(const QStringList &arguments, std::initializer_list<double> input)
{
    QStringList line;
    for (double value : input)
        line << QString::number(value, 'g', 17);
    QProcess process;
    process.start(QStringLiteral("GeodSolve"),
        arguments + QStringList { QStringLiteral("-p"), QStringLiteral("9") });
    process.write(line.join(QLatin1Char(' ')).toUtf8() + '\n');
    process.closeWriteChannel();
    QVector<double> numbers;
    if (process.waitForFinished(10000)) {
        for (const QString &word :
            QString::fromUtf8(process.readAllStandardOutput()).simplified().split(QLatin1Char(' ')))
            numbers << word.toDouble();
    }
    return numbers;
}

static bool writeFile(const QString &path, const QByteArray &content = {})
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly)
        && file.write(content) == content.size();
}

class tst_Geodesy : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY2(!QStandardPaths::findExecutable(QStringLiteral("GeodSolve")).isEmpty(),
            "GeodSolve (geographiclib-tools) is not installed");
    }

    void distanceExample()
    {
        const double km = distance({ 11.4208, 48.1967 }, { 11.4013, 48.1576 });
        QVERIFY2(qAbs(km - 4.582) / 4.582 < 0.001, qPrintable(QString::number(km, 'f', 6)));
    }

    void inverseAgreesWithGeodSolve_data()
    {
        QTest::addColumn<TPos>("from");
        QTest::addColumn<TPos>("to");
        QTest::newRow("short, north-east")
            << TPos { 11.4208, 48.1967 } << TPos { 11.4013, 48.1576 };
        QTest::newRow("across the equator") << TPos { -47.9, -15.8 } << TPos { -74.0, 40.7 };
        QTest::newRow("across the date line") << TPos { 179.5, -16.0 } << TPos { -178.0, -18.5 };
        QTest::newRow("due west, southern") << TPos { 151.2, -33.9 } << TPos { 115.9, -31.9 };
        QTest::newRow("due north is 0, not 360") << TPos { 11.0, 48.0 } << TPos { 11.0, 49.0 };
        QTest::newRow("due south") << TPos { 11.0, 48.0 } << TPos { 11.0, 47.0 };
    }

    void inverseAgreesWithGeodSolve()
    {
        QFETCH(TPos, from);
        QFETCH(TPos, to);
        const QVector<double> out
            = geodSolve({ QStringLiteral("-i") }, { from.lat, from.lon, to.lat, to.lon });
        QCOMPARE(out.size(), 3);
        const double expectedAzimuth = out[0] < 0 ? out[0] + 360.0 : out[0];
        QVERIFY(qAbs(azimuth(from, to) - expectedAzimuth) < 1e-9);
        QVERIFY(qAbs(distance(from, to) - out[2] / 1000.0) < 1e-9);
    }

    void directAgreesWithGeodSolve_data()
    {
        QTest::addColumn<TPos>("from");
        QTest::addColumn<double>("azimuthDeg");
        QTest::addColumn<double>("km");
        QTest::newRow("north-east 10 km") << TPos { 11.0, 48.0 } << 45.0 << 10.0;
        QTest::newRow("south-west 500 km") << TPos { -70.6, -33.4 } << 225.0 << 500.0;
        QTest::newRow("due north across the pole") << TPos { 0.0, 89.9 } << 0.0 << 50.0;
    }

    void directAgreesWithGeodSolve()
    {
        QFETCH(TPos, from);
        QFETCH(double, azimuthDeg);
        QFETCH(double, km);
        const QVector<double> out = geodSolve({}, { from.lat, from.lon, azimuthDeg, km * 1000.0 });
        QCOMPARE(out.size(), 3);
        const TPos reached = position(from, azimuthDeg, km);
        QVERIFY(qAbs(reached.lat - out[0]) < 1e-9);
        QVERIFY(qAbs(reached.lon - out[1]) < 1e-9);
    }

    void copyDir()
    {
        QTemporaryDir dir;
        QVERIFY(Simulation::copyDir(
            dir.filePath(QStringLiteral("missing")), dir.filePath(QStringLiteral("a/b"))));
        QVERIFY(QFileInfo(dir.filePath(QStringLiteral("a/b"))).isDir());

        QVERIFY(writeFile(dir.filePath(QStringLiteral("src/sub/.hidden/data.bin")), "payload"));
        const QString target = dir.filePath(QStringLiteral("dst"));
        QVERIFY(Simulation::copyDir(dir.filePath(QStringLiteral("src")), target));
        QFile copied(target + QStringLiteral("/sub/.hidden/data.bin"));
        QVERIFY(copied.open(QIODevice::ReadOnly));
        QCOMPARE(copied.readAll(), QByteArray("payload"));
        QVERIFY(!Simulation::copyDir(dir.filePath(QStringLiteral("src")), target)); // no overwrite
    }

    // A link inside the tree goes, what it points to stays; a missing tree is no failure.
    void removeDir()
    {
        QTemporaryDir dir;
        const QString root = dir.filePath(QStringLiteral("tree"));
        const QString outside = dir.filePath(QStringLiteral("keep"));
        QVERIFY(writeFile(root + QStringLiteral("/x/y/f.txt")) && QDir().mkpath(outside));
        QVERIFY(QFile::link(outside, root + QStringLiteral("/link")));
        QVERIFY(Simulation::removeDir(root));
        QVERIFY(!QFileInfo::exists(root));
        QVERIFY(QFileInfo(outside).isDir());
        QVERIFY(Simulation::removeDir(root));
    }
};

QTEST_GUILESS_MAIN(tst_Geodesy)
#include "tst_geodesy.moc"
