#include <radiosim/units/geodesy.h>

#include <QtTest>

using namespace Simulation;

// Cross-checks against GeographicLib's GeodSolve tool: values nobody here computed.
class tst_Geodesy : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void distanceExample();
    void inverseAgreesWithGeodSolve_data();
    void inverseAgreesWithGeodSolve();
    void directAgreesWithGeodSolve_data();
    void directAgreesWithGeodSolve();
    void azimuthIsACompassBearing();
    void copyDirFromMissingSourceCreatesTarget();
    void copyDirRefusesToOverwrite();
    void removeDirRemovesTreeAndToleratesMissing();

private:
    QStringList geodSolve(const QStringList &arguments, const QString &input);
    QString m_geodSolve;
};

void tst_Geodesy::initTestCase()
{
    m_geodSolve = QStandardPaths::findExecutable(QStringLiteral("GeodSolve"));
    QVERIFY2(!m_geodSolve.isEmpty(), "GeodSolve (geographiclib-tools) is not installed");
}

QStringList tst_Geodesy::geodSolve(const QStringList &arguments, const QString &input)
{
    QProcess process;
    process.start(m_geodSolve, arguments);
    process.write(input.toUtf8() + '\n');
    process.closeWriteChannel();
    if (!process.waitForFinished(10000))
        return {};
    return QString::fromUtf8(process.readAllStandardOutput()).simplified().split(QLatin1Char(' '));
}

void tst_Geodesy::distanceExample()
{
    const double km = distance({ 11.4208, 48.1967 }, { 11.4013, 48.1576 });
    QVERIFY2(qAbs(km - 4.582) / 4.582 < 0.001, qPrintable(QString::number(km, 'f', 6)));
}

void tst_Geodesy::inverseAgreesWithGeodSolve_data()
{
    QTest::addColumn<double>("lon1");
    QTest::addColumn<double>("lat1");
    QTest::addColumn<double>("lon2");
    QTest::addColumn<double>("lat2");
    QTest::newRow("short, north-east") << 11.4208 << 48.1967 << 11.4013 << 48.1576;
    QTest::newRow("across the equator") << -47.9 << -15.8 << -74.0 << 40.7;
    QTest::newRow("across the date line") << 179.5 << -16.0 << -178.0 << -18.5;
    QTest::newRow("due west, southern") << 151.2 << -33.9 << 115.9 << -31.9;
}

void tst_Geodesy::inverseAgreesWithGeodSolve()
{
    QFETCH(double, lon1);
    QFETCH(double, lat1);
    QFETCH(double, lon2);
    QFETCH(double, lat2);
    const QStringList out
        = geodSolve({ QStringLiteral("-i"), QStringLiteral("-p"), QStringLiteral("9") },
            QStringLiteral("%1 %2 %3 %4")
                .arg(lat1, 0, 'g', 17)
                .arg(lon1, 0, 'g', 17)
                .arg(lat2, 0, 'g', 17)
                .arg(lon2, 0, 'g', 17));
    QCOMPARE(out.size(), 3);
    double expectedAzimuth = out[0].toDouble();
    if (expectedAzimuth < 0)
        expectedAzimuth += 360.0;
    const double expectedKm = out[2].toDouble() / 1000.0;
    QVERIFY(qAbs(azimuth({ lon1, lat1 }, { lon2, lat2 }) - expectedAzimuth) < 1e-9);
    QVERIFY(qAbs(distance({ lon1, lat1 }, { lon2, lat2 }) - expectedKm) < 1e-9);
}

void tst_Geodesy::directAgreesWithGeodSolve_data()
{
    QTest::addColumn<double>("lon");
    QTest::addColumn<double>("lat");
    QTest::addColumn<double>("azimuthDeg");
    QTest::addColumn<double>("km");
    QTest::newRow("north-east 10 km") << 11.0 << 48.0 << 45.0 << 10.0;
    QTest::newRow("south-west 500 km") << -70.6 << -33.4 << 225.0 << 500.0;
    QTest::newRow("due north across the pole") << 0.0 << 89.9 << 0.0 << 50.0;
}

void tst_Geodesy::directAgreesWithGeodSolve()
{
    QFETCH(double, lon);
    QFETCH(double, lat);
    QFETCH(double, azimuthDeg);
    QFETCH(double, km);
    const QStringList out = geodSolve({ QStringLiteral("-p"), QStringLiteral("9") },
        QStringLiteral("%1 %2 %3 %4")
            .arg(lat, 0, 'g', 17)
            .arg(lon, 0, 'g', 17)
            .arg(azimuthDeg, 0, 'g', 17)
            .arg(km * 1000.0, 0, 'g', 17));
    QCOMPARE(out.size(), 3);
    const TPos reached = position({ lon, lat }, azimuthDeg, km);
    QVERIFY(qAbs(reached.lat - out[0].toDouble()) < 1e-9);
    QVERIFY(qAbs(reached.lon - out[1].toDouble()) < 1e-9);
}

void tst_Geodesy::azimuthIsACompassBearing()
{
    const TPos origin { 11.0, 48.0 };
    QVERIFY(qAbs(azimuth(origin, { 10.0, 48.0 }) - 270.0) < 1.0);
    QVERIFY(qAbs(azimuth(origin, { 11.0, 47.0 }) - 180.0) < 1e-9);
    const double north = azimuth(origin, { 11.0, 49.0 });
    QVERIFY(north >= 0.0 && north < 360.0);
    QVERIFY(qAbs(north) < 1e-9);
}

void tst_Geodesy::copyDirFromMissingSourceCreatesTarget()
{
    QTemporaryDir dir;
    const QString target = dir.filePath(QStringLiteral("a/b"));
    QVERIFY(copyDir(dir.filePath(QStringLiteral("missing")), target));
    QVERIFY(QFileInfo(target).isDir());
}

void tst_Geodesy::copyDirRefusesToOverwrite()
{
    QTemporaryDir dir;
    const QString source = dir.filePath(QStringLiteral("src"));
    QVERIFY(QDir().mkpath(source + QStringLiteral("/sub/.hidden")));
    QFile file(source + QStringLiteral("/sub/.hidden/data.bin"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("payload");
    file.close();

    const QString target = dir.filePath(QStringLiteral("dst"));
    QVERIFY(copyDir(source, target));
    QFile copied(target + QStringLiteral("/sub/.hidden/data.bin"));
    QVERIFY(copied.open(QIODevice::ReadOnly));
    QCOMPARE(copied.readAll(), QByteArray("payload"));
    QVERIFY(!copyDir(source, target));
}

void tst_Geodesy::removeDirRemovesTreeAndToleratesMissing()
{
    QTemporaryDir dir;
    const QString root = dir.filePath(QStringLiteral("tree"));
    QVERIFY(QDir().mkpath(root + QStringLiteral("/x/y")));
    QFile file(root + QStringLiteral("/x/y/f.txt"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();

    // A link inside the tree goes, what it points to stays.
    const QString outside = dir.filePath(QStringLiteral("keep"));
    QVERIFY(QDir().mkpath(outside));
    QVERIFY(QFile::link(outside, root + QStringLiteral("/link")));

    QVERIFY(removeDir(root));
    QVERIFY(!QFileInfo::exists(root));
    QVERIFY(QFileInfo(outside).isDir());
    QVERIFY(removeDir(root));
}

QTEST_GUILESS_MAIN(tst_Geodesy)
#include "tst_geodesy.moc"
