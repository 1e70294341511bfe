#pragma once

#include <radiosim/packages/signalpackage.h>
#include <radiosim/radiosim_export.h>

#include <QString>

namespace Simulation {

// The fixed file names of a package folder; the folder's own name is free. Stateless, so the
// cache's worker threads call it freely. No path function tests for existence.
class RADIOSIM_EXPORT SignalPackageFolder
{
public:
    static QString signalFilePath(const QString &folder);
    static QString signalShapeFilePath(const QString &folder);
    static QString audioFilePath(const QString &folder);
    static QString symbolDataFilePath(const QString &folder);
    static QString resultDataFilePath(const QString &folder);
    // A folder is a package when it holds "Signal.xml".
    static bool isValid(const QString &folder);
    // The descriptor, named after the folder (up to its first full stop) whatever it says,
    // with the content flags from the files present. Without a descriptor the other fields
    // keep their defaults.
    static SignalPackage signalPackage(const QString &folder);
    static void setSignalPackage(const QString &folder, const SignalPackage &package);
};

} // namespace Simulation
