#pragma once

#include <radiosim/radiosim_export.h>
#include <radiosim/units/simulationtypes.h>

#include <QString>

namespace Simulation {

// Initial azimuth from `from` to `to`, compass degrees in [0, 360).
RADIOSIM_EXPORT double azimuth(const TPos &from, const TPos &to);
// Earth distance in km on the WGS84 ellipsoid.
RADIOSIM_EXPORT double distance(const TPos &from, const TPos &to);
// The point reached from `from` along `azimuth` degrees after `distance` km.
RADIOSIM_EXPORT TPos position(const TPos &from, double azimuth, double distance);

// Recursive copy. Existing files are not overwritten, so copying again over the same target
// answers false. A missing source answers true, with the target created.
RADIOSIM_EXPORT bool copyDir(const QString &source, const QString &target);
// Recursive removal; the first failure stops the walk and leaves the rest in place.
RADIOSIM_EXPORT bool removeDir(const QString &path);

} // namespace Simulation
