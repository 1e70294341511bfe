#pragma once

#include <radiosim/packages/signalpackage.h>
#include <radiosim/radiosim_export.h>

#include <QByteArray>
#include <QString>

namespace Simulation {

// The descriptor "Signal.xml" of a package. Reading is tolerant: bytes that are no XML give
// a package of defaults, and bytes behind the root element are ignored. The content flags
// are never set from a descriptor.
class RADIOSIM_EXPORT SignalPackageFile
{
public:
    static SignalPackage signalPackage(const QByteArray &xml);
    // A package of defaults when the file cannot be opened.
    static SignalPackage signalPackage(const QString &fileName);
    // False only when the file cannot be opened; replaces what the file held.
    static bool signalPackageFile(const SignalPackage &package, const QString &fileName);

private:
    static SignalPackage readSignalPackageDescriptor(const QByteArray &xml);
    // Carries only the fields of SignalPackage: the version, library, creation and content
    // sections of a descriptor read before are lost, and "FileFormatVersion" is always 0.
    static QByteArray writeSignalPackageDescriptor(const SignalPackage &package);
};

} // namespace Simulation
