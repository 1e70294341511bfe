#include <radiosim/platform/coord.h>
#include <radiosim/units/geodesy.h>

#include "testhelpers.h"

#include <QtTest>

Q_DECLARE_METATYPE(CoordFormat)

namespace {

const QList<CoordFormat> AllFormats = { CoordDecimal, CoordGeoLong, CoordGeoShort, CoordUtm,
    CoordMgrs, CoordReserved5, CoordReserved6, CoordQth };

double metresBetween(double lon1, double lat1, double lon2, double lat2)
{
    return Simulation::distance({ lon1, lat1 }, { lon2, lat2 }) * 1000.0;
}

Coord read(const QString &text, CoordFormat format)
{
    Coord coord(12.0, 34.0);
    coord.SetString(text, format);
    return coord;
}

// GeographicLib's GeoConvert: "-u" for UTM, "-m" for MGRS.
QString geoConvert(const QString &option, double lon, double lat)
{
    return QString::fromUtf8(
        runTool("GeoConvert", { option, "-p", "0" },
            QStringLiteral("%1 %2\n").arg(lat, 0, 'g', 17).arg(lon, 0, 'g', 17).toUtf8()))
        .trimmed();
}

} // namespace

class tst_Coord : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void gridFormatsAgreeWithGeoConvert_data()
    {
        columns<CoordFormat, double, double>("format", "lon", "lat");
        const std::tuple<const char *, double, double> points[]
            = { { "north-east", 11.4208, 48.1967 }, { "south-west", -43.2, -22.9 },
                  { "Norway's wide zone", 5.5, 60.5 }, { "Svalbard", 15.0, 78.0 },
                  { "north pole cap", 10.0, 85.0 }, { "south pole cap", -120.0, -85.0 },
                  { "equator at the date line", -179.999, 0.0 } };
        for (const auto &[name, lon, lat] : points) {
            QTest::addRow("UTM %s", name) << CoordUtm << lon << lat;
            QTest::addRow("MGRS %s", name) << CoordMgrs << lon << lat;
        }
    }

    void gridFormatsAgreeWithGeoConvert()
    {
        QFETCH(CoordFormat, format);
        QFETCH(double, lon);
        QFETCH(double, lat);
        const QString expected = geoConvert(format == CoordUtm ? "-u" : "-m", lon, lat);
        QVERIFY2(!expected.isEmpty(), "GeoConvert (geographiclib-tools) failed or is missing");
        QCOMPARE(Coord(lon, lat).GetString(format), expected);
        const Coord back = read(expected, format);
        const double metres = metresBetween(lon, lat, back.longitude, back.latitude);
        QVERIFY2(metres < 1.0, qPrintable(QString::number(metres)));
    }

    void writtenText_data()
    {
        columns<CoordFormat, double, double, QString>("format", "lon", "lat", "text");
        QTest::newRow("QTH Innsbruck") << CoordQth << 11.42 << 48.19 << "JN58re";
        QTest::newRow("QTH Washington") << CoordQth << -77.0365 << 38.8977 << "FM18lv";
        QTest::newRow("QTH Sydney") << CoordQth << 151.2153 << -33.8568 << "QF56od";
        QTest::newRow("QTH south-west corner") << CoordQth << -180.0 << -90.0 << "AA00aa";
        QTest::newRow("QTH north-east edge folds inward") << CoordQth << 180.0 << 90.0 << "RR99xx";
        QTest::newRow("DMS south-west")
            << CoordGeoLong << -77.0365 << -33.8568 << "W077°02'11.40\"S33°51'24.48\"";
        QTest::newRow("DMS seconds carry into the degree")
            << CoordGeoLong << 0.99999999 << -0.000000001 << "E001°00'00.00\"N00°00'00.00\"";
        QTest::newRow("DMS date line and pole")
            << CoordGeoLong << 180.0 << 90.0 << "E180°00'00.00\"N90°00'00.00\"";
        QTest::newRow("decimal south-west")
            << CoordDecimal << -77.0365 << -33.8568 << "W77.0365 S33.8568";
    }

    // Read back, a text gives its position to within half its last digit: half a hundredth of a
    // second, or the centre of the locator's 5' x 2.5' sub-square, whatever the locator's case.
    void writtenText()
    {
        QFETCH(CoordFormat, format);
        QFETCH(double, lon);
        QFETCH(double, lat);
        QFETCH(QString, text);
        QCOMPARE(Coord(lon, lat).GetString(format), text);
        const bool qth = format == CoordQth;
        const Coord back = read(text, format);
        QVERIFY(qAbs(back.longitude - lon) <= (qth ? 2.5 / 60.0 : 0.005 / 3600.0) + 1e-9);
        QVERIFY(qAbs(back.latitude - lat) <= (qth ? 1.25 / 60.0 : 0.005 / 3600.0) + 1e-9);
        const Coord lower = read(text.toLower(), format);
        QVERIFY(!qth || (lower.longitude == back.longitude && lower.latitude == back.latitude));
    }

    // Other forms a person may type.
    void decimalInputForms()
    {
        const std::tuple<QString, double, double> texts[] = { { "E8,5 N48,2", 8.5, 48.2 },
            { "S48.2 W8.5", -8.5, -48.2 }, { "-8.5 48.2", -8.5, 48.2 },
            { "8:30:36 48:12", 8.51, 48.2 }, { "E8d30'36'' N48:12", 8.51, 48.2 } };
        for (const auto &[text, lon, lat] : texts) {
            const Coord coord = read(text, CoordDecimal);
            QVERIFY2(coord.longitude == lon && coord.latitude == lat, qPrintable(text));
        }
    }

    // Over a fixed pseudo-random spread plus the edges of the globe, each written text must pass
    // its own mask and survive a read-and-write round trip: unchanged, or for the grid formats,
    // whose read-back may cross a zone edge, within a metre.
    void everyWrittenTextMatchesItsMaskAndReadsBack()
    {
        QVector<QPair<double, double>> points
            = { { 0.0, 0.0 }, { 180.0, 90.0 }, { -180.0, -90.0 }, { 179.9999999, -89.9999999 },
                  { -0.0000001, 0.0000001 }, { 3.0, 84.0 }, { 3.0, -80.0 } };
        QRandomGenerator random(4711);
        for (int i = 0; i < 400; ++i)
            points.append({ random.bounded(360.0) - 180.0, random.bounded(180.0) - 90.0 });

        for (CoordFormat format : AllFormats) {
            const QRegExp mask(Coord().getMaskRegExp(format));
            QVERIFY(mask.isValid());
            for (const auto &[lon, lat] : points) {
                const QString written = Coord(lon, lat).GetString(format);
                const QString where = QString::asprintf(
                    "%d: %.17g %.17g -> '%s'", format, lon, lat, qPrintable(written));
                QVERIFY2(mask.exactMatch(written), qPrintable(where));
                Coord back = read(written, format);
                if (format == CoordUtm || format == CoordMgrs)
                    QVERIFY2(metresBetween(lon, lat, back.longitude, back.latitude) < 1.0,
                        qPrintable(where));
                else
                    QVERIFY2(back.GetString(format) == written, qPrintable(where));
            }
        }
    }

    // Neither a text that cannot be read nor a position without a text form may do harm.
    void unreadableTextAndUnwritablePosition()
    {
        const QStringList texts = { QString(), "   ", QString(1024 * 1024, QLatin1Char('9')),
            QString(1024 * 1024, QChar(0x00B0)), QStringLiteral("E1 N1 ").repeated(100000),
            "Ωλ€ 東京", "abc", "E999°99'99.99\"N99°99'99.99\"", "E10 N95", "nan inf", "32n nan inf",
            "99n 500000 5000000", "32n 500000", "32UPU79851402501", "SS99yy", QString(QChar(0)),
            // More than degrees, minutes and seconds in a half: GeographicLib's decoder would
            // write past its buffer.
            "1:2:3 4:54:6:5:6:6", "2:3:30:15.25:3:30 0", "1\"2:3 0", "1''2:3 0" };
        for (CoordFormat format : AllFormats) {
            for (const QString &text : texts) {
                const Coord coord = read(text, format);
                QVERIFY2(coord.longitude == 0.0 && coord.latitude == 0.0,
                    qPrintable(QString::number(format) + ": " + text.left(24)));
            }
            for (const auto &[lon, lat] :
                { qMakePair(10.0, 95.0), qMakePair(qQNaN(), 10.0), qMakePair(10.0, -qInf()) })
                QVERIFY2(Coord(lon, lat).GetString(format).isEmpty(),
                    qPrintable(QString::number(format)));
        }
    }
};

QTEST_GUILESS_MAIN(tst_Coord)
#include "tst_coord.moc"
