#pragma once

#include <radiosim/packages/signalpackageprovider.h>
#include <radiosim/radiosim_export.h>

#include <QDir>
#include <QMap>
#include <QReadWriteLock>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace Simulation {

// A flat local copy of a repository's signal packages: one directory with the files of every
// package named after its cleaned id ("%1.xml", "%1.ssf", "%1.wav", "%1.sdf", "%1.rdf"), so
// an id leads to its files without a search. Descriptors and data file objects are loaded on
// first demand and kept. The built-in default package answers for every unknown id, and its
// shape and audio for packages without their own.
//
// Use: prepareCacheForUse() once, then updateCache() with the repository's package folder.
// All operations may be called from any thread; lookups run in parallel.
class RADIOSIM_EXPORT SignalPackageCache : public ISignalPackageProvider
{
public:
    // Stores the arguments; the directory is not created.
    SignalPackageCache(const QString &cacheDirectory, const QString &defaultFolderName);
    // Deletes every data file object it handed out.
    ~SignalPackageCache() override;
    SignalPackageCache(const SignalPackageCache &) = delete;
    SignalPackageCache &operator=(const SignalPackageCache &) = delete;

    // Unpacks the built-in default package into the folder defaultFolderName of the cache and
    // makes it the default. An archive that cannot be opened leaves no default.
    void prepareCacheForUse();
    // Copies into the cache whatever of the packages below packageFolder it lacks, in parallel
    // on the global thread pool, holding the write lock until all copies are done. A file that
    // exists is never replaced: a package changed under the same id stays stale until
    // clearCache(). The second argument has no effect.
    void updateCache(const QString &packageFolder, bool);
    // Removes the files of the cache directory; descriptors and objects already loaded stay.
    void clearCache();
    // Forgets every descriptor and data file object; objects of packages that were looked up
    // are deleted, the others stay alive until the cache is destroyed. Files stay.
    void deleteAllSignalpackages();

    bool validSignalPackageId(const QString &id) override;
    // Stored under the id asked for, also when it is an update id; an unknown id answers the
    // default (null before prepareCacheForUse()) and stores nothing.
    std::shared_ptr<SignalPackage> signalPackage(const QString &id) override;
    std::shared_ptr<SignalPackage> defaultSignalPackage() override;
    // One object per package id, opened once, kept even if it failed to open; without a file
    // of its own, an object on the default package's file. The caller sets the package
    // duration on it.
    SignalShapeFile *signalShapeFile(std::shared_ptr<SignalPackage> package) override;
    AudioFile *audioFile(std::shared_ptr<SignalPackage> package) override;
    // Null, with nothing stored, for a package without such a file.
    SymbolDataFile *symbolDataFile(std::shared_ptr<SignalPackage> package) override;
    ResultDataFile *resultDataFile(std::shared_ptr<SignalPackage> package) override;

private:
    QStringList listSignalPackages(const QString &folder);
    // Runs on a worker thread and takes no lock: it touches only files and reads cacheDir.
    // Answers the cleaned ids it made descriptors for; nothing uses them.
    QStringList cachePackage(const QString &packageFolder);
    QString cleanId(QString id);
    // Without a cache file of the package, the object opens fallback, or there is none.
    template <typename File>
    File *dataFile(QMap<QString, File *> &files, const std::shared_ptr<SignalPackage> &package,
        const QString &suffix, const QString *fallback);
    template <typename File> void retire(File *file);

    QDir cacheDir;
    QString defaultFolderName;
    QString defaultSignalShapePath;
    QString defaultAudioPath;
    std::shared_ptr<SignalPackage> defaultPackage;
    QMap<QString, std::shared_ptr<SignalPackage>> packages;
    QMap<QString, SignalShapeFile *> signalShapeFiles;
    QMap<QString, AudioFile *> audioFiles;
    QMap<QString, SymbolDataFile *> symbolDataFiles;
    QMap<QString, ResultDataFile *> resultDataFiles;
    // Objects that left the maps while callers may still hold them: replaced after two threads
    // loaded the same key, or dropped by deleteAllSignalpackages(). Freed with the cache.
    std::vector<std::shared_ptr<void>> retired;
    QReadWriteLock lock { QReadWriteLock::Recursive };
};

} // namespace Simulation
