#include "units.h"

#include <QObject>
#include <QRegExp>
#include <QTime>

#include <cmath>

namespace Units {

namespace {

struct FormatEntry
{
    Position::Format format;
    CoordFormat coordFormat;
    const char *name;
};

const FormatEntry FormatTable[] = {
    { Position::FormatDecimal, CoordDecimal, QT_TRANSLATE_NOOP("QObject", "Decimal") },
    { Position::FormatGeoLong, CoordGeoLong, QT_TRANSLATE_NOOP("QObject", "Geo long") },
    { Position::FormatGeoShort, CoordGeoShort, QT_TRANSLATE_NOOP("QObject", "Geo short") },
    { Position::FormatUtm, CoordUtm, QT_TRANSLATE_NOOP("QObject", "UTM") },
    { Position::FormatMgrs, CoordMgrs, QT_TRANSLATE_NOOP("QObject", "MGRS (NATO UTM)") },
    { Position::FormatQth, CoordQth, QT_TRANSLATE_NOOP("QObject", "Maidenhead QTH") },
};

const FormatEntry *entryOf(Position::Format format)
{
    for (const FormatEntry &entry : FormatTable) {
        if (entry.format == format)
            return &entry;
    }
    return nullptr;
}

// The display unit of a value in Hz: divisor, prefix and decimals for a fixed layout. The
// reading side shares the divisor so that a bare number is taken in the displayed unit.
struct Scale
{
    double divisor;
    const char *prefix;
    int decimals;
};

Scale scaleOf(double frequency)
{
    if (frequency < 1000.0)
        return { 1.0, "", 0 };
    if (frequency < 10000000.0)
        return { 1000.0, "k", 3 };
    if (frequency < 1000000000.0)
        return { 1000000.0, "M", 6 };
    return { 1000000000.0, "G", 6 };
}

double prefixFactor(const QString &unit)
{
    if (unit == QLatin1String("k"))
        return 1000.0;
    if (unit == QLatin1String("m"))
        return 1000000.0;
    if (unit == QLatin1String("g"))
        return 1000000000.0;
    return 1.0;
}

} // namespace

Position_t::Position_t(double lon, double lat)
    : longitude(lon)
    , latitude(lat)
{
}

QList<Position::Format> Position::formats()
{
    QList<Format> result;
    for (const FormatEntry &entry : FormatTable)
        result.append(entry.format);
    return result;
}

QString Position::formatName(Format format)
{
    const FormatEntry *entry = entryOf(format);
    if (!entry)
        return QStringLiteral("ERROR INVALID COORDINATES FORMAT");
    return QObject::tr(entry->name);
}

CoordFormat Position::formatToCoordFormat(Format format)
{
    const FormatEntry *entry = entryOf(format);
    return entry ? entry->coordFormat : CoordDecimal;
}

Position::Format Position::coordFormatToFormat(CoordFormat format)
{
    for (const FormatEntry &entry : FormatTable) {
        if (entry.coordFormat == format)
            return entry.format;
    }
    return FormatDecimal;
}

QString Position::toString(double longitude, double latitude, Format format, const QLocale &)
{
    return Coord(longitude, latitude).GetString(formatToCoordFormat(format));
}

QString Position::toString(const Position_t &position, Format format, const QLocale &locale)
{
    return toString(position.longitude, position.latitude, format, locale);
}

Position_t Position::fromString(const QString &text, Format format, const QLocale &)
{
    Coord coord;
    coord.SetString(text, formatToCoordFormat(format));
    return { coord.longitude, coord.latitude };
}

bool Position::validString(const QString &text, Format format, const QLocale &)
{
    // Created once, thread-safely, and only read afterwards.
    static const Coord maskSource;
    const QRegExp mask(maskSource.getMaskRegExp(formatToCoordFormat(format)), Qt::CaseSensitive);
    return mask.exactMatch(text);
}

bool Position::equal(const Position_t &a, const Position_t &b)
{
    return std::abs(a.latitude - b.latitude) < 0.00000001
        && std::abs(b.latitude - b.latitude) < 0.00000001;
}

QString Frequency::s_sRegex = QStringLiteral("(\\d+[.,]?\\d*)\\W*([hHkKmMgG]?).*");

bool Frequency::validString(const QString &text)
{
    return QRegExp(s_sRegex, Qt::CaseSensitive).exactMatch(text);
}

double Frequency::fromString(const QString &text, double reference)
{
    QRegExp pattern(s_sRegex, Qt::CaseSensitive);
    if (!pattern.exactMatch(text))
        return 0.0;
    QString number = pattern.cap(1);
    const QString unit = pattern.cap(2).toLower();
    bool ok = false;
    const double value
        = QLocale().toDouble(number.replace(QLatin1Char(','), QLatin1Char('.')), &ok);
    if (!ok)
        return 0.0;
    const double factor
        = unit.isEmpty() && reference != 0.0 ? scaleOf(reference).divisor : prefixFactor(unit);
    return value * factor;
}

QString Frequency::toString(double frequency, bool fixedDecimals, bool *ok)
{
    const Scale scale = scaleOf(frequency);
    QString number;
    if (fixedDecimals)
        number.setNum(frequency / scale.divisor, 'f', scale.decimals);
    else
        number = QStringLiteral("%1").arg(frequency / scale.divisor, 0, 'f', -1, QLatin1Char(' '));
    if (ok)
        *ok = true;
    return QStringLiteral("%1 %2Hz").arg(number, QLatin1String(scale.prefix));
}

bool Frequency::equal(double a, double b)
{
    return std::abs(a - b) < 0.000001;
}

QString Duration::toString(uint milliseconds)
{
    // addMSecs takes an int, so values from 2^31 on count back from midnight. Qt's own sum
    // overflows for the first day's worth of them; handing it less than a day avoids that.
    constexpr qint64 MSecsPerDay = 86400000;
    const int withinDay = int(qint64(int(milliseconds)) % MSecsPerDay);
    return QTime(0, 0, 0, 0).addMSecs(withinDay).toString(QStringLiteral("hh:mm:ss's'"));
}

} // namespace Units
