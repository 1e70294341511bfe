#pragma once

#include <radiosim/radiosim_export.h>

#include <QString>

class ICfg;

namespace Simulation {

class ISignalPackageStore;

// The directory tree of the simulation repository. Its root is the key "Repository" of the
// section "FileSystem" of the configuration handed in (default: the system's temporary
// directory). The ...StoreDir functions give the null string without a configuration or
// without that section.
class RADIOSIM_EXPORT DataStoreFactory
{
public:
    // Sets the tree up at start: removes "Sessions", makes "SignalPackages", "Icons" and
    // "Files" and makes them writable, unpacks the built-in default signal library anew into
    // "SignalPackages/VuH-Default", and copies the default scenario once. The root itself is
    // never created. False after the one message the library shows: a critical dialog, or a
    // critical trace line where no dialog can be shown (no QApplication, not its thread).
    // Failures after the library folder exists go unreported and answer true.
    static bool initializeDataStore(ICfg *cfg);
    static QString fileStoreDir(ICfg *cfg);
    static QString iconStoreDir(ICfg *cfg);
    static QString radarStoreDir(ICfg *cfg);
    static QString sessionStoreDir(ICfg *cfg);
    static QString signalPackageStoreDir(ICfg *cfg);
    static QString defaultScenario(QString const &fileStoreDir);
    static QString defaultSignalPackage(QString const &signalPackageStoreDir);
    // A repository offers no package store: always null.
    static ISignalPackageStore *createSignalPackageStore(ICfg *cfg, bool);
};

} // namespace Simulation
