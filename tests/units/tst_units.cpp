#include <radiosim/units/units.h>

#include <QtTest>

using Units::Position;
using Units::Position_t;

Q_DECLARE_METATYPE(Position::Format)
Q_DECLARE_METATYPE(Position_t)

class tst_Units : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void formatTable_data();
    void formatTable();
    void unknownFormatValues();
    void positionTextGoesThroughCoord_data();
    void positionTextGoesThroughCoord();
    void positionNeverThrows_data();
    void positionNeverThrows();
    void positionEqualComparesLatitudeOnly_data();
    void positionEqualComparesLatitudeOnly();
    void frequencyToString_data();
    void frequencyToString();
    void frequencyFromString_data();
    void frequencyFromString();
    void frequencyEqual_data();
    void frequencyEqual();
    void durationToString_data();
    void durationToString();
};

void tst_Units::formatTable_data()
{
    QTest::addColumn<Position::Format>("format");
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("coordFormat");
    QTest::newRow("decimal") << Position::FormatDecimal << "Decimal" << 0;
    QTest::newRow("geo long") << Position::FormatGeoLong << "Geo long" << 1;
    QTest::newRow("geo short") << Position::FormatGeoShort << "Geo short" << 2;
    QTest::newRow("utm") << Position::FormatUtm << "UTM" << 3;
    QTest::newRow("mgrs") << Position::FormatMgrs << "MGRS (NATO UTM)" << 4;
    QTest::newRow("qth") << Position::FormatQth << "Maidenhead QTH" << 7;
}

void tst_Units::formatTable()
{
    QFETCH(Position::Format, format);
    QFETCH(QString, name);
    QFETCH(int, coordFormat);
    QCOMPARE(Position::formatName(format), name);
    QCOMPARE(int(Position::formatToCoordFormat(format)), coordFormat);
    QCOMPARE(Position::coordFormatToFormat(CoordFormat(coordFormat)), format);
}

void tst_Units::unknownFormatValues()
{
    const QList<Position::Format> expected = { Position::FormatDecimal, Position::FormatGeoLong,
        Position::FormatGeoShort, Position::FormatUtm, Position::FormatMgrs, Position::FormatQth };
    QCOMPARE(Position::formats(), expected);
    QCOMPARE(Position::formatName(Position::Format(9)),
        QStringLiteral("ERROR INVALID COORDINATES FORMAT"));
    QCOMPARE(Position::formatName(Position::Format(-1)),
        QStringLiteral("ERROR INVALID COORDINATES FORMAT"));
    QCOMPARE(int(Position::formatToCoordFormat(Position::Format(9))), 0);
    QCOMPARE(Position::coordFormatToFormat(CoordReserved5), Position::FormatDecimal);
    QCOMPARE(Position::coordFormatToFormat(CoordReserved6), Position::FormatDecimal);
    QCOMPARE(Position::coordFormatToFormat(CoordFormat(42)), Position::FormatDecimal);
}

void tst_Units::positionTextGoesThroughCoord_data()
{
    QTest::addColumn<Position::Format>("format");
    QTest::addColumn<QString>("text");
    QTest::newRow("decimal") << Position::FormatDecimal << QStringLiteral("E11.42 N48.19");
    QTest::newRow("qth") << Position::FormatQth << QStringLiteral("JN58re");
    QTest::newRow("utm") << Position::FormatUtm << QStringLiteral("32n 679851 5340250");
}

void tst_Units::positionTextGoesThroughCoord()
{
    QFETCH(Position::Format, format);
    QFETCH(QString, text);
    QCOMPARE(Position::toString(11.42, 48.19, format), text);
    QCOMPARE(Position::toString(Position_t(11.42, 48.19), format, QLocale(QLocale::German)), text);
    QVERIFY(Position::validString(text, format));
    QVERIFY(!Position::validString(text + QLatin1Char('x'), format));

    const Position_t read = Position::fromString(text, format);
    QVERIFY(qAbs(read.longitude - 11.42) < 0.05);
    QVERIFY(qAbs(read.latitude - 48.19) < 0.05);
}

void tst_Units::positionNeverThrows_data()
{
    QTest::addColumn<Position::Format>("format");
    QTest::addColumn<QString>("text");
    for (Position::Format format : Position::formats()) {
        const QString name = Position::formatName(format);
        QTest::addRow("%s empty", qPrintable(name)) << format << QString();
        QTest::addRow("%s huge", qPrintable(name)) << format << QString(1 << 20, QLatin1Char('7'));
        QTest::addRow("%s non-Latin", qPrintable(name)) << format << QStringLiteral("Ωλ€ 東京");
        QTest::addRow("%s garbage", qPrintable(name)) << format << QStringLiteral("§$%&/()=?");
    }
}

void tst_Units::positionNeverThrows()
{
    QFETCH(Position::Format, format);
    QFETCH(QString, text);
    const Position_t read = Position::fromString(text, format);
    QCOMPARE(read.longitude, 0.0);
    QCOMPARE(read.latitude, 0.0);
    QVERIFY(!Position::validString(text, format));
}

void tst_Units::positionEqualComparesLatitudeOnly_data()
{
    QTest::addColumn<Position_t>("a");
    QTest::addColumn<Position_t>("b");
    QTest::addColumn<bool>("equal");
    QTest::newRow("longitudes differ") << Position_t(11.0, 48.0) << Position_t(12.0, 48.0) << true;
    QTest::newRow("latitudes differ")
        << Position_t(11.0, 48.0) << Position_t(11.0, 48.001) << false;
    QTest::newRow("within 1e-8") << Position_t(0.0, 48.0) << Position_t(0.0, 48.000000005) << true;
    QTest::newRow("beyond 1e-8") << Position_t(0.0, 48.0) << Position_t(0.0, 48.00000002) << false;
}

void tst_Units::positionEqualComparesLatitudeOnly()
{
    QFETCH(Position_t, a);
    QFETCH(Position_t, b);
    QFETCH(bool, equal);
    QCOMPARE(Position::equal(a, b), equal);
    QCOMPARE(Position::equal(b, a), equal);
}

void tst_Units::frequencyToString_data()
{
    QTest::addColumn<double>("frequency");
    QTest::addColumn<bool>("fixedDecimals");
    QTest::addColumn<QString>("text");
    QTest::newRow("kHz fixed") << 1500.0 << true << "1.500 kHz";
    QTest::newRow("Hz fixed") << 999.0 << true << "999 Hz";
    QTest::newRow("MHz fixed") << 12500000.0 << true << "12.500000 MHz";
    QTest::newRow("GHz fixed") << 1e9 << true << "1.000000 GHz";
    QTest::newRow("5 MHz stays in kHz") << 5000000.0 << true << "5000.000 kHz";
    QTest::newRow("just below 10 MHz") << 9999999.0 << true << "9999.999 kHz";
    QTest::newRow("10 MHz switches") << 10000000.0 << true << "10.000000 MHz";
    QTest::newRow("1000 Hz is kHz") << 1000.0 << true << "1.000 kHz";
    QTest::newRow("default precision") << 12500000.0 << false << "12.500000 MHz";
    QTest::newRow("default precision, Hz") << 999.5 << false << "999.500000 Hz";
    QTest::newRow("negative stays in Hz") << -2000.0 << true << "-2000 Hz";
}

void tst_Units::frequencyToString()
{
    QFETCH(double, frequency);
    QFETCH(bool, fixedDecimals);
    QFETCH(QString, text);
    bool ok = false;
    QCOMPARE(Units::Frequency::toString(frequency, fixedDecimals, &ok), text);
    QVERIFY(ok);
    QCOMPARE(Units::Frequency::toString(frequency, fixedDecimals, nullptr), text);
}

void tst_Units::frequencyFromString_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("reference");
    QTest::addColumn<double>("frequency");
    QTest::addColumn<bool>("valid");
    QTest::newRow("comma and MHz") << "12,5 MHz" << 0.0 << 12500000.0 << true;
    QTest::newRow("lower-case m is mega") << "12.5m" << 0.0 << 12500000.0 << true;
    QTest::newRow("bare, no reference") << "12" << 0.0 << 12.0 << true;
    QTest::newRow("bare over kHz field") << "12" << 8000000.0 << 12000.0 << true;
    QTest::newRow("bare over MHz field") << "12" << 25000000.0 << 12000000.0 << true;
    QTest::newRow("bare over GHz field") << "12" << 5e9 << 12000000000.0 << true;
    QTest::newRow("bare over Hz field") << "12" << 999.0 << 12.0 << true;
    QTest::newRow("unit wins over reference") << "3 kHz" << 5e9 << 3000.0 << true;
    QTest::newRow("explicit Hz") << "440 Hz" << 25000000.0 << 440.0 << true;
    QTest::newRow("giga") << "1.2 G" << 0.0 << 1200000000.0 << true;
    QTest::newRow("letters only") << "abc" << 0.0 << 0.0 << false;
    QTest::newRow("tail accepts anything") << "12 foo" << 0.0 << 12.0 << true;
    QTest::newRow("empty") << "" << 0.0 << 0.0 << false;
    QTest::newRow("sign is not allowed") << "-5 kHz" << 0.0 << 0.0 << false;
    QTest::newRow("non-Latin") << "東京" << 0.0 << 0.0 << false;
}

void tst_Units::frequencyFromString()
{
    QFETCH(QString, text);
    QFETCH(double, reference);
    QFETCH(double, frequency);
    QFETCH(bool, valid);
    QCOMPARE(Units::Frequency::fromString(text, reference), frequency);
    QCOMPARE(Units::Frequency::validString(text), valid);
}

void tst_Units::frequencyEqual_data()
{
    QTest::addColumn<double>("a");
    QTest::addColumn<double>("b");
    QTest::addColumn<bool>("equal");
    QTest::newRow("within 1e-6") << 1.0 << 1.0000001 << true;
    QTest::newRow("beyond 1e-6") << 1.0 << 1.000002 << false;
    QTest::newRow("large and close") << 1e9 << 1e9 + 0.0000005 << true;
}

void tst_Units::frequencyEqual()
{
    QFETCH(double, a);
    QFETCH(double, b);
    QFETCH(bool, equal);
    QCOMPARE(Units::Frequency::equal(a, b), equal);
    QCOMPARE(Units::Frequency::equal(b, a), equal);
}

void tst_Units::durationToString_data()
{
    QTest::addColumn<uint>("milliseconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("zero") << 0u << "00:00:00s";
    QTest::newRow("fraction dropped") << 90500u << "00:01:30s";
    QTest::newRow("last second of a day") << 86399999u << "23:59:59s";
    QTest::newRow("a day wraps") << 86400000u << "00:00:00s";
}

void tst_Units::durationToString()
{
    QFETCH(uint, milliseconds);
    QFETCH(QString, text);
    QCOMPARE(Units::Duration::toString(milliseconds), text);
}

QTEST_GUILESS_MAIN(tst_Units)
#include "tst_units.moc"
