#pragma once

#include <radiosim/radiosim_export.h>

#include <QString>

#include <memory>

namespace Simulation {

class SignalPackage;
class SignalShapeFile;
class AudioFile;
class SymbolDataFile;
class ResultDataFile;

// A store of packages that a repository may offer. Only named, as the result of the data store
// factory, which has none to give: no operation of it exists.
class ISignalPackageStore;

// The way in which scenario code and devices reach packages and their data files.
// The file objects stay owned by the provider.
class RADIOSIM_EXPORT ISignalPackageProvider
{
public:
    virtual ~ISignalPackageProvider();
    virtual bool validSignalPackageId(const QString &id) = 0;
    // The default package when the id is unknown.
    virtual std::shared_ptr<SignalPackage> signalPackage(const QString &id) = 0;
    virtual std::shared_ptr<SignalPackage> defaultSignalPackage() = 0;
    virtual SignalShapeFile *signalShapeFile(std::shared_ptr<SignalPackage> package) = 0;
    virtual AudioFile *audioFile(std::shared_ptr<SignalPackage> package) = 0;
    virtual SymbolDataFile *symbolDataFile(std::shared_ptr<SignalPackage> package) = 0;
    virtual ResultDataFile *resultDataFile(std::shared_ptr<SignalPackage> package) = 0;
};

} // namespace Simulation
