#include <radiosim/units/units.h>

#include <QtTest>

using Units::Position;
using Units::Position_t;

class tst_Units : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Units and Coord number the formats differently: stored numbers and text go through this
    // mapping.
    void formatMapping()
    {
        const CoordFormat coordFormats[]
            = { CoordDecimal, CoordGeoLong, CoordGeoShort, CoordUtm, CoordMgrs, CoordQth };
        for (int i = 0; i < 6; ++i)
            QVERIFY(Position::formatToCoordFormat(Position::Format(i)) == coordFormats[i]
                && Position::coordFormatToFormat(coordFormats[i]) == Position::Format(i));
        for (CoordFormat unknown : { CoordReserved5, CoordReserved6 })
            QCOMPARE(Position::coordFormatToFormat(unknown), Position::FormatDecimal);

        // The locator has another number in Coord: these pass only through the format map.
        const QString text = QStringLiteral("JN58re");
        QCOMPARE(Position::toString(Position_t(11.42, 48.19), Position::FormatQth), text);
        QVERIFY(Position::validString(text, Position::FormatQth)
            && !Position::validString(text + QLatin1Char('x'), Position::FormatQth));
        const Position_t read = Position::fromString(text, Position::FormatQth);
        QVERIFY(qAbs(read.longitude - 11.42) < 0.05 && qAbs(read.latitude - 48.19) < 0.05);
    }

    // Coord does the reading; this only shows that nothing is lost on the way.
    void positionNeverThrows()
    {
        const QString texts[] = { QString(), QString(1 << 20, QLatin1Char('7')),
            QStringLiteral("Ωλ€ 東京"), QStringLiteral("§$%&/()=?") };
        for (Position::Format format : Position::formats()) {
            for (const QString &text : texts) {
                const Position_t read = Position::fromString(text, format);
                QVERIFY2(read.longitude == 0.0 && read.latitude == 0.0
                        && !Position::validString(text, format),
                    qPrintable(Position::formatName(format) + QLatin1Char(' ') + text.left(10)));
            }
        }
    }

    // Position::equal compares latitudes only, to 1e-8; Frequency::equal to 1e-6 Hz.
    void equality()
    {
        const std::tuple<Position_t, Position_t, bool> positions[]
            = { { { 11.0, 48.0 }, { 12.0, 48.0 }, true },
                  { { 0.0, 48.0 }, { 0.0, 48.000000005 }, true },
                  { { 0.0, 48.0 }, { 0.0, 48.00000002 }, false } };
        for (const auto &[a, b, equal] : positions)
            QVERIFY(Position::equal(a, b) == equal && Position::equal(b, a) == equal);
        const std::tuple<double, double, bool> frequencies[]
            = { { 1.0, 1.0000001, true }, { 1.0, 1.000002, false } };
        for (const auto &[a, b, equal] : frequencies)
            QVERIFY(
                Units::Frequency::equal(a, b) == equal && Units::Frequency::equal(b, a) == equal);
    }

    void frequencyToString()
    {
        const std::tuple<double, bool, QString> cases[] = {
            { 999.0, true, "999 Hz" },
            { 1000.0, true, "1.000 kHz" },
            { 9999999.0, true, "9999.999 kHz" }, // the kHz range runs up to 10 MHz
            { 10000000.0, true, "10.000000 MHz" },
            { 1e9, true, "1.000000 GHz" },
            { -2000.0, true, "-2000 Hz" },
            { 999.5, false, "999.500000 Hz" },
        };
        for (const auto &[frequency, fixedDecimals, text] : cases) {
            bool ok = false;
            QCOMPARE(Units::Frequency::toString(frequency, fixedDecimals, &ok), text);
            QVERIFY(ok && Units::Frequency::toString(frequency, fixedDecimals) == text);
        }
    }

    // A bare number is read in the unit its reference is shown in (0: Hz); "m" is mega.
    void frequencyFromString()
    {
        const std::tuple<QString, double, double, bool> cases[] = {
            { "12,5 MHz", 0.0, 12500000.0, true },
            { "12.5m", 0.0, 12500000.0, true },
            { "12", 8000000.0, 12000.0, true },
            { "3 kHz", 5e9, 3000.0, true },
            { "1.2 G", 0.0, 1200000000.0, true },
            { "12 foo", 0.0, 12.0, true }, // the tail is not checked
            { "abc", 0.0, 0.0, false },
            { "-5 kHz", 0.0, 0.0, false },
        };
        for (const auto &[text, reference, frequency, valid] : cases) {
            QCOMPARE(Units::Frequency::fromString(text, reference), frequency);
            QCOMPARE(Units::Frequency::validString(text), valid);
        }
    }

    // Fractions of a second are dropped and a day wraps to zero; from 2^31 on, the value counts
    // back from midnight.
    void durationToString()
    {
        const QPair<uint, QString> cases[]
            = { { 86399999u, "23:59:59s" }, { 86400000u, "00:00:00s" },
                  { 2147483648u, "03:28:36s" }, { 4294967295u, "23:59:59s" } };
        for (const auto &[milliseconds, text] : cases)
            QCOMPARE(Units::Duration::toString(milliseconds), text);
    }
};

QTEST_GUILESS_MAIN(tst_Units)
#include "tst_units.moc"
