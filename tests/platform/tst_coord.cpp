#include <radiosim/platform/coord.h>
#include <radiosim/units/geodesy.h>

#include <QtTest>

Q_DECLARE_METATYPE(CoordFormat)

namespace {

const QList<CoordFormat> AllFormats = { CoordDecimal, CoordGeoLong, CoordGeoShort, CoordUtm,
    CoordMgrs, CoordReserved5, CoordReserved6, CoordQth };

double metresBetween(double lon1, double lat1, double lon2, double lat2)
{
    return Simulation::distance({ lon1, lat1 }, { lon2, lat2 }) * 1000.0;
}

} // namespace

// UTM and MGRS are checked against GeographicLib's GeoConvert tool; the locators and the
// column layout against values worked out by hand.
class tst_Coord : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void gridFormatsAgreeWithGeoConvert_data();
    void gridFormatsAgreeWithGeoConvert();
    void maidenheadLocator_data();
    void maidenheadLocator();
    void geoLongKeepsItsColumns_data();
    void geoLongKeepsItsColumns();
    void decimalHemisphereLetters_data();
    void decimalHemisphereLetters();
    void everyWrittenTextMatchesItsMaskAndReadsBack_data();
    void everyWrittenTextMatchesItsMaskAndReadsBack();
    void unreadableTextGivesOrigin_data();
    void unreadableTextGivesOrigin();
    void positionWithoutTextFormGivesEmpty_data();
    void positionWithoutTextFormGivesEmpty();

private:
    QString geoConvert(const QString &option, double lon, double lat);
    QString m_geoConvert;
};

void tst_Coord::initTestCase()
{
    m_geoConvert = QStandardPaths::findExecutable(QStringLiteral("GeoConvert"));
    QVERIFY2(!m_geoConvert.isEmpty(), "GeoConvert (geographiclib-tools) is not installed");
}

QString tst_Coord::geoConvert(const QString &option, double lon, double lat)
{
    QProcess process;
    process.start(m_geoConvert, { option, QStringLiteral("-p"), QStringLiteral("0") });
    process.write(QStringLiteral("%1 %2\n").arg(lat, 0, 'g', 17).arg(lon, 0, 'g', 17).toUtf8());
    process.closeWriteChannel();
    if (!process.waitForFinished(10000))
        return {};
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

void tst_Coord::gridFormatsAgreeWithGeoConvert_data()
{
    QTest::addColumn<CoordFormat>("format");
    QTest::addColumn<double>("lon");
    QTest::addColumn<double>("lat");
    const struct
    {
        const char *name;
        double lon;
        double lat;
    } points[] = {
        { "north-east", 11.4208, 48.1967 },
        { "north-west", -77.0365, 38.8977 },
        { "south-east", 151.2153, -33.8568 },
        { "south-west", -43.2, -22.9 },
        { "Norway's wide zone", 5.5, 60.5 },
        { "Svalbard", 15.0, 78.0 },
        { "north pole cap", 10.0, 85.0 },
        { "south pole cap", -120.0, -85.0 },
        { "equator at the date line", -179.999, 0.0 },
    };
    for (const auto &point : points) {
        QTest::addRow("UTM %s", point.name) << CoordUtm << point.lon << point.lat;
        QTest::addRow("MGRS %s", point.name) << CoordMgrs << point.lon << point.lat;
    }
}

void tst_Coord::gridFormatsAgreeWithGeoConvert()
{
    QFETCH(CoordFormat, format);
    QFETCH(double, lon);
    QFETCH(double, lat);
    const QString expected
        = geoConvert(format == CoordUtm ? QStringLiteral("-u") : QStringLiteral("-m"), lon, lat);
    QVERIFY(!expected.isEmpty());

    QCOMPARE(Coord(lon, lat).GetString(format), expected);

    Coord read;
    read.SetString(expected, format);
    const double metres = metresBetween(lon, lat, read.longitude, read.latitude);
    QVERIFY2(metres < 1.0, qPrintable(QString::number(metres)));
}

void tst_Coord::maidenheadLocator_data()
{
    QTest::addColumn<double>("lon");
    QTest::addColumn<double>("lat");
    QTest::addColumn<QString>("locator");
    QTest::newRow("Innsbruck") << 11.42 << 48.19 << QStringLiteral("JN58re");
    QTest::newRow("Washington") << -77.0365 << 38.8977 << QStringLiteral("FM18lv");
    QTest::newRow("Sydney") << 151.2153 << -33.8568 << QStringLiteral("QF56od");
    QTest::newRow("south-west corner") << -180.0 << -90.0 << QStringLiteral("AA00aa");
    QTest::newRow("north-east edge folds inward") << 180.0 << 90.0 << QStringLiteral("RR99xx");
}

void tst_Coord::maidenheadLocator()
{
    QFETCH(double, lon);
    QFETCH(double, lat);
    QFETCH(QString, locator);
    QCOMPARE(Coord(lon, lat).GetString(CoordQth), locator);

    // The centre of a 5' x 2.5' sub-square lies within half a cell of any point in it.
    Coord read;
    read.SetString(locator, CoordQth);
    QVERIFY(qAbs(read.longitude - lon) <= 2.5 / 60.0 + 1e-9);
    QVERIFY(qAbs(read.latitude - lat) <= 1.25 / 60.0 + 1e-9);
    QCOMPARE(read.GetString(CoordQth), locator);

    Coord lowerCase;
    lowerCase.SetString(locator.toLower(), CoordQth);
    QCOMPARE(lowerCase.longitude, read.longitude);
    QCOMPARE(lowerCase.latitude, read.latitude);
}

void tst_Coord::geoLongKeepsItsColumns_data()
{
    QTest::addColumn<double>("lon");
    QTest::addColumn<double>("lat");
    QTest::addColumn<QString>("text");
    QTest::newRow("north-east") << 11.420833 << 48.1967
                                << QStringLiteral("E011°25'15.00\"N48°11'48.12\"");
    QTest::newRow("south-west") << -77.0365 << -33.8568
                                << QStringLiteral("W077°02'11.40\"S33°51'24.48\"");
    QTest::newRow("seconds carry into the degree")
        << 0.99999999 << -0.000000001 << QStringLiteral("E001°00'00.00\"N00°00'00.00\"");
    QTest::newRow("date line and pole")
        << 180.0 << 90.0 << QStringLiteral("E180°00'00.00\"N90°00'00.00\"");
}

void tst_Coord::geoLongKeepsItsColumns()
{
    QFETCH(double, lon);
    QFETCH(double, lat);
    QFETCH(QString, text);
    const QString written = Coord(lon, lat).GetString(CoordGeoLong);
    QCOMPARE(written, text);
    QCOMPARE(written.size(), 27);
    const QString separators = QStringLiteral("°'\"°'\"");
    const int columns[] = { 4, 7, 13, 17, 20, 26 };
    for (int i = 0; i < 6; ++i)
        QCOMPARE(written.at(columns[i]), separators.at(i));

    Coord read;
    read.SetString(written, CoordGeoLong);
    const double halfHundredthSecond = 0.005 / 3600.0 + 1e-12;
    QVERIFY(qAbs(read.longitude - lon) <= halfHundredthSecond);
    QVERIFY(qAbs(read.latitude - lat) <= halfHundredthSecond);
}

void tst_Coord::decimalHemisphereLetters_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("lon");
    QTest::addColumn<double>("lat");
    QTest::addColumn<bool>("written");
    QTest::newRow("east north") << QStringLiteral("E8.5 N48.2") << 8.5 << 48.2 << true;
    QTest::newRow("west south") << QStringLiteral("W77.0365 S33.8568") << -77.0365 << -33.8568
                                << true;
    QTest::newRow("decimal comma") << QStringLiteral("E8,5 N48,2") << 8.5 << 48.2 << false;
    QTest::newRow("latitude first by letter")
        << QStringLiteral("S48.2 W8.5") << -8.5 << -48.2 << false;
    QTest::newRow("signed, longitude first")
        << QStringLiteral("-8.5 48.2") << -8.5 << 48.2 << false;
}

// Written texts are the canonical layout; the other rows are forms a person may type.
void tst_Coord::decimalHemisphereLetters()
{
    QFETCH(QString, text);
    QFETCH(double, lon);
    QFETCH(double, lat);
    QFETCH(bool, written);
    Coord coord;
    coord.SetString(text, CoordDecimal);
    QCOMPARE(coord.longitude, lon);
    QCOMPARE(coord.latitude, lat);
    if (written)
        QCOMPARE(Coord(lon, lat).GetString(CoordDecimal), text);
}

void tst_Coord::everyWrittenTextMatchesItsMaskAndReadsBack_data()
{
    QTest::addColumn<CoordFormat>("format");
    for (CoordFormat format : AllFormats)
        QTest::addRow("format %d", int(format)) << format;
}

// Over a fixed pseudo-random spread plus the edges of the globe, each written text must pass
// its own mask and survive a read-and-write round trip: unchanged, or for the grid formats,
// whose read-back may cross a zone edge, within a metre.
void tst_Coord::everyWrittenTextMatchesItsMaskAndReadsBack()
{
    QFETCH(CoordFormat, format);
    QVector<QPair<double, double>> points = { { 0.0, 0.0 }, { 180.0, 90.0 }, { -180.0, -90.0 },
        { 179.9999999, -89.9999999 }, { -0.0000001, 0.0000001 }, { 3.0, 84.0 }, { 3.0, -80.0 } };
    QRandomGenerator random(4711);
    for (int i = 0; i < 400; ++i)
        points.append({ random.bounded(360.0) - 180.0, random.bounded(180.0) - 90.0 });

    const QRegExp mask(Coord().getMaskRegExp(format));
    QVERIFY(mask.isValid());
    for (const auto &point : points) {
        const QString written = Coord(point.first, point.second).GetString(format);
        const QString where = QStringLiteral("%1 %2 -> '%3'")
                                  .arg(point.first, 0, 'g', 17)
                                  .arg(point.second, 0, 'g', 17)
                                  .arg(written);
        QVERIFY2(mask.exactMatch(written), qPrintable(where));
        Coord read;
        read.SetString(written, format);
        if (format == CoordUtm || format == CoordMgrs)
            QVERIFY2(metresBetween(point.first, point.second, read.longitude, read.latitude) < 1.0,
                qPrintable(where));
        else
            QVERIFY2(read.GetString(format) == written, qPrintable(where));
    }
}

void tst_Coord::unreadableTextGivesOrigin_data()
{
    QTest::addColumn<CoordFormat>("format");
    QTest::addColumn<QString>("text");
    const QString texts[] = {
        QString(),
        QStringLiteral("   "),
        QString(1024 * 1024, QLatin1Char('9')),
        QString(1024 * 1024, QChar(0x00B0)),
        QStringLiteral("E1 N1 ").repeated(100000),
        QStringLiteral("Ωλ€ 東京"),
        QStringLiteral("abc"),
        QStringLiteral("E999°99'99.99\"N99°99'99.99\""),
        QStringLiteral("E10 N95"),
        QStringLiteral("nan inf"),
        QStringLiteral("32n nan inf"),
        QStringLiteral("99n 500000 5000000"),
        QStringLiteral("32n 500000"),
        QStringLiteral("32UPU79851402501"),
        QStringLiteral("SS99yy"),
        QString(QChar(0)),
    };
    for (CoordFormat format : AllFormats) {
        for (const QString &text : texts)
            QTest::addRow("format %d: %s", int(format), qPrintable(text.left(24)))
                << format << text;
    }
}

void tst_Coord::unreadableTextGivesOrigin()
{
    QFETCH(CoordFormat, format);
    QFETCH(QString, text);
    Coord coord(12.0, 34.0);
    coord.SetString(text, format);
    QCOMPARE(coord.longitude, 0.0);
    QCOMPARE(coord.latitude, 0.0);
}

void tst_Coord::positionWithoutTextFormGivesEmpty_data()
{
    QTest::addColumn<CoordFormat>("format");
    QTest::addColumn<double>("lon");
    QTest::addColumn<double>("lat");
    for (CoordFormat format : AllFormats) {
        QTest::addRow("format %d, latitude 95", int(format)) << format << 10.0 << 95.0;
        QTest::addRow("format %d, NaN", int(format)) << format << qQNaN() << 10.0;
        QTest::addRow("format %d, infinite", int(format)) << format << 10.0 << -qInf();
    }
}

void tst_Coord::positionWithoutTextFormGivesEmpty()
{
    QFETCH(CoordFormat, format);
    QFETCH(double, lon);
    QFETCH(double, lat);
    QCOMPARE(Coord(lon, lat).GetString(format), QString());
}

QTEST_GUILESS_MAIN(tst_Coord)
#include "tst_coord.moc"
