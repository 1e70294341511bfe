#pragma once

#include <radiosim/platform/coord.h>
#include <radiosim/radiosim_export.h>

#include <QList>
#include <QLocale>
#include <QString>

// Text forms of the quantities an operator reads and types. Static members only; the QLocale
// arguments are accepted for the callers' sake and not used.
namespace Units {

// Longitude then latitude, decimal degrees; the display side's twin of Simulation::TPos.
struct RADIOSIM_EXPORT Position_t
{
    double longitude = 0.0;
    double latitude = 0.0;

    Position_t() = default;
    Position_t(double lon, double lat);
};

class RADIOSIM_EXPORT Position
{
public:
    // Stored by callers; FormatQth stands for CoordFormat 7, the others for their own number.
    enum Format {
        FormatDecimal = 0,
        FormatGeoLong = 1,
        FormatGeoShort = 2,
        FormatUtm = 3,
        FormatMgrs = 4,
        FormatQth = 5
    };

    static QList<Format> formats();
    static QString formatName(Format format);
    static CoordFormat formatToCoordFormat(Format format);
    static Format coordFormatToFormat(CoordFormat format);

    static QString toString(
        double longitude, double latitude, Format format, const QLocale &locale = QLocale());
    static QString toString(
        const Position_t &position, Format format, const QLocale &locale = QLocale());
    // Text that cannot be read gives (0, 0).
    static Position_t fromString(
        const QString &text, Format format, const QLocale &locale = QLocale());
    static bool validString(const QString &text, Format format, const QLocale &locale = QLocale());

    // Compares the latitudes only: the longitude half of the test compares b's latitude with
    // itself. Positions of equal latitude are equal whatever their longitude; callers rely on it.
    static bool equal(const Position_t &a, const Position_t &b);
};

class RADIOSIM_EXPORT Frequency
{
public:
    // An entered frequency: a number with '.' or ',' and an optional unit prefix letter.
    // Set at load time, never changed.
    static QString s_sRegex;

    static bool validString(const QString &text);
    // Hz. A text without a unit is read in the unit that reference (Hz, usually the field's
    // current value) is displayed in; 0.0 as reference means Hz. "m" is mega, as is "M".
    static double fromString(const QString &text, double reference = 0.0);
    // Hz in, "<number> <prefix>Hz" out. The kHz range runs up to 10 MHz, so 5 MHz prints as kHz.
    static QString toString(double frequency, bool fixedDecimals = false, bool *ok = nullptr);
    static bool equal(double a, double b);
};

class RADIOSIM_EXPORT Duration
{
public:
    // hh:mm:ss followed by 's'; fractions of a second are dropped and 24 hours wrap to zero.
    static QString toString(uint milliseconds);
};

} // namespace Units
