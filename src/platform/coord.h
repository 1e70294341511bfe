#pragma once

#include <radiosim/radiosim_export.h>

#include <QString>

// Text forms of a position. The numbers are stored by callers and stay fixed; 5 and 6 have no
// form of their own and are written and read as CoordDecimal, as is any unknown value.
enum CoordFormat {
    CoordDecimal = 0, // E8.5 N48.2: hemisphere letter, decimal degrees, longitude first
    CoordGeoLong = 1, // E011°25'15.00"N48°11'48.12": fixed columns, no blank
    CoordGeoShort = 2, // E011°25.2500' N48°11.8020': degrees and decimal minutes
    CoordUtm = 3, // 32n 679851 5340250, or n 2096454 1452981 for the poles (UPS)
    CoordMgrs = 4, // 32UPU7985140250: one-metre precision
    CoordReserved5 = 5,
    CoordReserved6 = 6,
    CoordQth = 7 // JN58re: six-character Maidenhead locator
};

// A position on WGS84 and its text forms. Never throws: a text that cannot be read leaves the
// position at (0, 0), and a position that has no text form (not finite, latitude beyond 90, or
// outside what UTM/UPS covers) gives an empty text.
class RADIOSIM_EXPORT Coord
{
public:
    // Decimal degrees; the two leading fields, longitude first, are part of the interface.
    double longitude = 0.0;
    double latitude = 0.0;

    Coord() = default;
    Coord(double lon, double lat);

    QString GetString(CoordFormat format);
    void SetString(const QString &text, CoordFormat format);
    // A QRegExp pattern (default syntax, case-sensitive) that every text GetString writes in
    // that format matches exactly.
    QString getMaskRegExp(CoordFormat format) const;
};
