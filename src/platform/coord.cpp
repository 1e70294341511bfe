#include "coord.h"

#include <GeographicLib/DMS.hpp>
#include <GeographicLib/GeoCoords.hpp>
#include <GeographicLib/Math.hpp>
#include <GeographicLib/MGRS.hpp>
#include <GeographicLib/UTMUPS.hpp>

#include <QRegExp>
#include <QStringList>

#include <algorithm>
#include <cmath>

using GeographicLib::DMS;
using GeographicLib::GeoCoords;
using GeographicLib::MGRS;
using GeographicLib::UTMUPS;

namespace {

// Every text form we read is far shorter; the cap keeps GeographicLib's string scanning away
// from megabytes of input.
constexpr int MaxTextLength = 256;

const QChar Zero = QLatin1Char('0');

// Hemisphere letter and magnitude in whole units of the written precision. Rounding happens
// before the split, so 59.999" carries into the minute and a value that rounds to zero keeps
// the positive letter.
struct Rounded
{
    QChar letter;
    qint64 units = 0;
};

Rounded rounded(double value, double unitsPerDegree, char positive, char negative)
{
    const qint64 units = qRound64(std::abs(value) * unitsPerDegree);
    return { QLatin1Char(value < 0.0 && units > 0 ? negative : positive), units };
}

QString decimalPart(double value, char positive, char negative)
{
    const Rounded r = rounded(value, 1e6, positive, negative);
    QString number = QString::number(double(r.units) / 1e6, 'f', 6);
    while (number.endsWith(Zero))
        number.chop(1);
    if (number.endsWith(QLatin1Char('.')))
        number.chop(1);
    return r.letter + number;
}

// Degrees, minutes and seconds to 1/100", degrees zero-padded to degreeWidth.
QString geoLongPart(double value, int degreeWidth, char positive, char negative)
{
    const Rounded r = rounded(value, 360000.0, positive, negative);
    return QStringLiteral("%1%2\u00B0%3'%4.%5\"")
        .arg(r.letter)
        .arg(r.units / 360000, degreeWidth, 10, Zero)
        .arg(r.units / 6000 % 60, 2, 10, Zero)
        .arg(r.units / 100 % 60, 2, 10, Zero)
        .arg(r.units % 100, 2, 10, Zero);
}

// Degrees and minutes to 1/10000'.
QString geoShortPart(double value, int degreeWidth, char positive, char negative)
{
    const Rounded r = rounded(value, 600000.0, positive, negative);
    return QStringLiteral("%1%2\u00B0%3.%4'")
        .arg(r.letter)
        .arg(r.units / 600000, degreeWidth, 10, Zero)
        .arg(r.units / 10000 % 60, 2, 10, Zero)
        .arg(r.units % 10000, 4, 10, Zero);
}

// One level of the locator grid: how many cells, their size in degrees, and the first symbol.
struct QthLevel
{
    int cells;
    double width;
    double height;
    char first;
};
const QthLevel QthLevels[]
    = { { 18, 20.0, 10.0, 'A' }, { 10, 2.0, 1.0, '0' }, { 24, 2.0 / 24.0, 1.0 / 24.0, 'a' } };

// Cell index of value in [0, cells), the east and north edges folded into the last cell.
int qthCell(double &value, double size, int cells)
{
    const int cell = std::clamp(int(std::floor(value / size)), 0, cells - 1);
    value -= cell * size;
    return cell;
}

QString qthText(double lon, double lat)
{
    double x = lon + 180.0;
    double y = lat + 90.0;
    QString text;
    for (const QthLevel &level : QthLevels) {
        text += QLatin1Char(char(level.first + qthCell(x, level.width, level.cells)));
        text += QLatin1Char(char(level.first + qthCell(y, level.height, level.cells)));
    }
    return text;
}

// Locators of 2, 4 or 6 symbols, letters in either case; the result is the cell's centre.
bool readQth(const QString &text, double &lon, double &lat)
{
    if (text.size() != 2 && text.size() != 4 && text.size() != 6)
        return false;
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;
    for (int i = 0; i < text.size(); i += 2) {
        const QthLevel &level = QthLevels[i / 2];
        const bool upper = level.first == 'A';
        const auto cell = [&](QChar symbol) {
            return (upper ? symbol.toUpper() : symbol.toLower()).unicode() - level.first;
        };
        const int cx = cell(text[i]);
        const int cy = cell(text[i + 1]);
        if (cx < 0 || cx >= level.cells || cy < 0 || cy >= level.cells)
            return false;
        x += cx * level.width;
        y += cy * level.height;
        width = level.width;
        height = level.height;
    }
    lon = x + width / 2.0 - 180.0;
    lat = y + height / 2.0 - 90.0;
    return true;
}

// Whether GeographicLib's degree decoder may be given one half of a pair: only the characters
// our forms use, and at most degrees, minutes and seconds, in that order. The decoder numbers a
// ':' component after the one before it and writes past its three-component buffer when that
// goes beyond the seconds ("1:2:3:4", "1\"2:3"); GeographicLib 2.1 takes the process down on
// such a text.
bool isDegreeHalf(const QString &half)
{
    const QChar prime = QLatin1Char('\'');
    int next = 0;
    for (int i = 0; i < half.size(); ++i) {
        const QChar c = half.at(i);
        int component = -1;
        if (c == QLatin1Char(':')) {
            component = next;
        } else if (c == QLatin1Char('d') || c == QLatin1Char('D') || c == QChar(0x00B0)) {
            component = 0;
        } else if (c == prime) {
            // The decoder reads two primes as a double prime.
            component = half.mid(i + 1, 1) == prime ? 2 : 1;
            i += component - 1;
        } else if (c == QLatin1Char('"')) {
            component = 2;
        } else if (!QStringLiteral("0123456789.+-NSEWnsew").contains(c)) {
            return false;
        }
        if (component >= 3)
            return false;
        if (component >= 0)
            next = component + 1;
    }
    return true;
}

// Two angles with hemisphere letters (or signs, longitude first): decimal, degree-minute or
// degree-minute-second. The halves are split at blanks or, in the blank-free column layout,
// at the second hemisphere letter. A comma is read as the decimal point.
bool readPair(QString text, double &lon, double &lat)
{
    text.replace(QLatin1Char(','), QLatin1Char('.'));
    QStringList halves = text.split(QRegExp(QStringLiteral("\\s+")), Qt::SkipEmptyParts);
    if (halves.size() == 1) {
        const int split = text.indexOf(QRegExp(QStringLiteral("[NSEW]")), 1);
        if (split < 0)
            return false;
        halves = QStringList { text.left(split), text.mid(split) };
    }
    if (halves.size() != 2 || !isDegreeHalf(halves[0]) || !isDegreeHalf(halves[1]))
        return false;
    DMS::DecodeLatLon(halves[0].toStdString(), halves[1].toStdString(), lat, lon, true);
    // Latitude is range-checked by the decoder, longitude is not.
    return std::abs(lon) <= 180.0;
}

bool readUtm(const QString &text, double &lon, double &lat)
{
    const QStringList parts = text.simplified().split(QLatin1Char(' '));
    if (parts.size() != 3)
        return false;
    int zone = 0;
    bool northp = false;
    UTMUPS::DecodeZone(parts[0].toStdString(), zone, northp);
    bool okX = false;
    bool okY = false;
    const double x = parts[1].toDouble(&okX);
    const double y = parts[2].toDouble(&okY);
    if (!okX || !okY || !std::isfinite(x) || !std::isfinite(y))
        return false;
    UTMUPS::Reverse(zone, northp, x, y, lat, lon);
    return true;
}

// The centre of the square the reference names, as a reader of GeoConvert's output expects.
bool readMgrs(const QString &text, double &lon, double &lat)
{
    // A zone has at most two digits. GeographicLib sums any run of leading digits into an int
    // before it looks at the length, which overflows from the tenth digit on.
    if (text.indexOf(QRegExp(QStringLiteral("^[0-9]{3}"))) == 0)
        return false;
    int zone = 0;
    bool northp = false;
    double x = 0.0;
    double y = 0.0;
    int precision = 0;
    MGRS::Reverse(text.toStdString(), zone, northp, x, y, precision, true);
    if (zone == UTMUPS::INVALID)
        return false;
    UTMUPS::Reverse(zone, northp, x, y, lat, lon);
    return true;
}

bool read(const QString &text, CoordFormat format, double &lon, double &lat)
{
    switch (format) {
    case CoordUtm:
        return readUtm(text, lon, lat);
    case CoordMgrs:
        return readMgrs(text, lon, lat);
    case CoordQth:
        return readQth(text, lon, lat);
    default:
        return readPair(text, lon, lat);
    }
}

QString write(double lon, double lat, CoordFormat format)
{
    switch (format) {
    case CoordGeoLong:
        return geoLongPart(lon, 3, 'E', 'W') + geoLongPart(lat, 2, 'N', 'S');
    case CoordGeoShort:
        return geoShortPart(lon, 3, 'E', 'W') + QLatin1Char(' ') + geoShortPart(lat, 2, 'N', 'S');
    case CoordUtm:
        return QString::fromStdString(GeoCoords(lat, lon).UTMUPSRepresentation(0, true));
    case CoordMgrs:
        return QString::fromStdString(GeoCoords(lat, lon).MGRSRepresentation(0));
    case CoordQth:
        return qthText(lon, lat);
    default:
        return decimalPart(lon, 'E', 'W') + QLatin1Char(' ') + decimalPart(lat, 'N', 'S');
    }
}

} // namespace

Coord::Coord(double lon, double lat)
    : longitude(lon)
    , latitude(lat)
{
}

QString Coord::GetString(CoordFormat format)
{
    if (!std::isfinite(longitude) || !std::isfinite(latitude) || std::abs(latitude) > 90.0)
        return {};
    try {
        return write(GeographicLib::Math::AngNormalize(longitude), latitude, format);
    } catch (...) {
        return {};
    }
}

void Coord::SetString(const QString &text, CoordFormat format)
{
    longitude = 0.0;
    latitude = 0.0;
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty() || trimmed.size() > MaxTextLength)
        return;
    double lon = 0.0;
    double lat = 0.0;
    try {
        if (!read(trimmed, format, lon, lat))
            return;
    } catch (...) {
        return;
    }
    if (std::isfinite(lon) && std::isfinite(lat)) {
        longitude = lon;
        latitude = lat;
    }
}

QString Coord::getMaskRegExp(CoordFormat format) const
{
    switch (format) {
    case CoordGeoLong:
        return QStringLiteral(
            "[EW]\\d{3}\u00B0\\d{2}'\\d{2}\\.\\d{2}\"[NS]\\d{2}\u00B0\\d{2}'\\d{2}"
            "\\.\\d{2}\"");
    case CoordGeoShort:
        return QStringLiteral("[EW]\\d{3}\u00B0\\d{2}\\.\\d{4}' [NS]\\d{2}\u00B0\\d{2}\\.\\d{4}'");
    case CoordUtm:
        return QStringLiteral("(\\d{1,2})?[nsNS] \\d{1,7} \\d{1,8}");
    case CoordMgrs:
        return QStringLiteral("(\\d{2}[C-HJ-NP-X]|[ABYZ])[A-HJ-NP-Z]{2}(\\d\\d){0,5}");
    case CoordQth:
        return QStringLiteral("[A-R]{2}(\\d{2}([a-x]{2})?)?");
    default:
        return QStringLiteral("[EW]\\d{1,3}(\\.\\d+)? [NS]\\d{1,2}(\\.\\d+)?");
    }
}
