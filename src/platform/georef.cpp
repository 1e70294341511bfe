#include "georef.h"

#include <GeographicLib/Geodesic.hpp>

#include <cmath>

namespace Georef {

namespace {
// GeographicLib rejects nothing numeric but lets NaN through; a NaN or infinite input
// gives a NaN result, which the callers' neutral values cover.
const GeographicLib::Geodesic &wgs84()
{
    return GeographicLib::Geodesic::WGS84();
}
} // namespace

void destination(const double *start, double azimuth, double distance, double *out)
{
    double lat2 = 0.0;
    double lon2 = 0.0;
    wgs84().Direct(start[1], start[0], azimuth, distance * 1000.0, lat2, lon2);
    out[0] = lon2;
    out[1] = lat2;
}

double azimuth(const double *a, const double *b)
{
    double azi1 = 0.0;
    double azi2 = 0.0;
    wgs84().Inverse(a[1], a[0], b[1], b[0], azi1, azi2);
    if (!std::isfinite(azi1))
        return 0.0;
    double bearing = std::fmod(azi1, 360.0);
    if (bearing < 0.0)
        bearing += 360.0;
    // -0.0 and values that round up to 360 both belong at 0.
    return bearing >= 360.0 ? 0.0 : bearing + 0.0;
}

double distance(const double *a, const double *b, float factor)
{
    double metres = 0.0;
    wgs84().Inverse(a[1], a[0], b[1], b[0], metres);
    return metres / 1000.0 * double(factor);
}

double sexagesimalToDecimal(int degrees, int minutes, int seconds, char hemisphere)
{
    const double value = double(degrees) + double(minutes) / 60.0 + double(seconds) / 3600.0;
    return (hemisphere == 'S' || hemisphere == 's' || hemisphere == 'W' || hemisphere == 'w')
        ? -value
        : value;
}

} // namespace Georef
