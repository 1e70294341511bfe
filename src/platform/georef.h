#pragma once

#include <radiosim/radiosim_export.h>

// Geodesy on the WGS84 ellipsoid. Coordinate pairs are (longitude, latitude) in decimal
// degrees, passed by pointer to two doubles; distances are in km.
namespace Georef {

// The point reached from start along azimuth (degrees) after distance (km).
RADIOSIM_EXPORT void destination(const double *start, double azimuth, double distance, double *out);
// Initial azimuth from a to b as a compass bearing in [0, 360).
RADIOSIM_EXPORT double azimuth(const double *a, const double *b);
// Distance from a to b in km, times factor.
RADIOSIM_EXPORT double distance(const double *a, const double *b, float factor);
// Degrees, minutes, seconds and a hemisphere letter (N, S, E, W; S and W negate) to decimal
// degrees.
RADIOSIM_EXPORT double sexagesimalToDecimal(int degrees, int minutes, int seconds, char hemisphere);

} // namespace Georef
