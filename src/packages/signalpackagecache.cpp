#include "signalpackagecache.h"

#include "signalpackage.h"
#include "signalpackagefile.h"
#include "signalpackagefolder.h"

#include <radiosim/datafiles/audiofile.h>
#include <radiosim/datafiles/locks_p.h>
#include <radiosim/datafiles/resultdatafile.h>
#include <radiosim/datafiles/signalshapefile.h>
#include <radiosim/datafiles/symboldatafile.h>
#include <radiosim/platform/ovzip.h>

#include <QRunnable>
#include <QSet>
#include <QThreadPool>

#include <condition_variable>
#include <mutex>

namespace Simulation {

namespace {

const QString xmlSuffix = QStringLiteral(".xml");
const QString shapeSuffix = QStringLiteral(".ssf");
const QString audioSuffix = QStringLiteral(".wav");
const QString symbolSuffix = QStringLiteral(".sdf");
const QString resultSuffix = QStringLiteral(".rdf");

// The thread pool passes tasks on inside Qt, out of the thread sanitizer's sight; this marks
// the hand-over for it. A fixed address, since a task can read nothing before it is marked.
char taskHandOver;

// Write rights added to what the file has: where the flags are the whole mode, as on POSIX,
// write rights alone would take the read rights away.
void makeWritable(const QString &path)
{
    QFile::setPermissions(path,
        QFile::permissions(path) | QFile::WriteOwner | QFile::WriteUser | QFile::WriteGroup
            | QFile::WriteOther);
}

// Package folders below folder, depth first; a folder reached a second time through a link is
// passed over, so a link to a parent cannot make the walk endless.
void collectPackages(const QString &folder, QSet<QString> &visited, QStringList &found)
{
    const QFileInfoList entries
        = QDir(folder).entryInfoList(QDir::Dirs | QDir::NoDot | QDir::NoDotDot, QDir::NoSort);
    for (const QFileInfo &entry : entries) {
        const QString path = entry.absoluteFilePath();
        if (SignalPackageFolder::isValid(path)) {
            found.append(path);
            continue;
        }
        const QString canonical = entry.canonicalFilePath();
        if (!visited.contains(canonical)) {
            visited.insert(canonical);
            collectPackages(path, visited, found);
        }
    }
}

} // namespace

SignalPackageCache::SignalPackageCache(const QString &cacheDirectory, const QString &defaultFolder)
    : cacheDir(cacheDirectory)
    , defaultFolderName(defaultFolder)
{
    // QDir works its absolute path out on first use and stores it; done here, the worker
    // threads of updateCache() only read it.
    cacheDir.absolutePath();
}

SignalPackageCache::~SignalPackageCache()
{
    deleteAllSignalpackages();
}

void SignalPackageCache::prepareCacheForUse()
{
    WriteLocker locker(&lock);
    cacheDir.mkdir(defaultFolderName);
    const QDir folder(cacheDir.absoluteFilePath(defaultFolderName));
    const QString zip = folder.absoluteFilePath(QStringLiteral("tmp.zip"));
    QFile::copy(QStringLiteral(":/DefaultData/Default.zip"), zip);
    OvZip::Archive archive(zip);
    if (archive.open(OvZip::Archive::ZipRead)) {
        for (const QString &name : archive.files())
            archive.extractToFile(name, folder.absoluteFilePath(name));
        defaultPackage = std::make_shared<SignalPackage>(
            SignalPackageFolder::signalPackage(folder.absolutePath()));
        defaultSignalShapePath = SignalPackageFolder::signalShapeFilePath(folder.absolutePath());
        defaultAudioPath = SignalPackageFolder::audioFilePath(folder.absolutePath());
        archive.close();
    }
    // Copies out of the resources are read-only.
    makeWritable(zip);
    QFile::remove(zip);
}

void SignalPackageCache::updateCache(const QString &packageFolder, bool)
{
    WriteLocker locker(&lock);
    // The end of the tasks is counted under a standard mutex rather than through futures:
    // Qt's futures hand results over inside Qt's own library, out of the thread sanitizer's
    // sight, while this hand-over stays in view.
    std::mutex mutex;
    std::condition_variable finished;
    int running = 0;
    for (const QString &folder : listSignalPackages(packageFolder)) {
        QRunnable *task = QRunnable::create([this, folder, &mutex, &finished, &running] {
            LockNotes::acquired(&taskHandOver);
            cachePackage(folder);
            const std::lock_guard<std::mutex> guard(mutex);
            if (--running == 0)
                finished.notify_all();
        });
        {
            const std::lock_guard<std::mutex> guard(mutex);
            ++running;
        }
        LockNotes::released(&taskHandOver);
        QThreadPool::globalInstance()->start(task);
    }
    std::unique_lock<std::mutex> wait(mutex);
    finished.wait(wait, [&running] { return running == 0; });
}

QStringList SignalPackageCache::listSignalPackages(const QString &folder)
{
    QSet<QString> visited { QFileInfo(folder).canonicalFilePath() };
    QStringList found;
    collectPackages(folder, visited, found);
    return found;
}

QStringList SignalPackageCache::cachePackage(const QString &packageFolder)
{
    QStringList cached;
    if (SignalPackageFolder::isValid(packageFolder)) {
        const SignalPackage package = SignalPackageFolder::signalPackage(packageFolder);
        const QString id = cleanId(package.id());
        const QString descriptor = SignalPackageFolder::signalFilePath(packageFolder);
        if (!cacheDir.exists(id + xmlSuffix)) {
            QFile::copy(descriptor, cacheDir.absoluteFilePath(id + xmlSuffix));
            for (const QString &updateId : package.updateIds()) {
                const QString cleaned = cleanId(updateId);
                QFile::copy(descriptor, cacheDir.absoluteFilePath(cleaned + xmlSuffix));
                cached.append(cleaned);
            }
        }
        // Each file by itself: a copy from a file that doesn't exist fails and leaves none.
        const QPair<QString, QString> files[]
            = { { SignalPackageFolder::signalShapeFilePath(packageFolder), shapeSuffix },
                  { SignalPackageFolder::audioFilePath(packageFolder), audioSuffix },
                  { SignalPackageFolder::symbolDataFilePath(packageFolder), symbolSuffix },
                  { SignalPackageFolder::resultDataFilePath(packageFolder), resultSuffix } };
        for (const auto &[source, suffix] : files) {
            const QString target = cacheDir.absoluteFilePath(id + suffix);
            if (!QFile::exists(target))
                QFile::copy(source, target);
        }
        cached.append(id);
    }
    return cached;
}

QString SignalPackageCache::cleanId(QString id)
{
    return SignalPackage::cleanId(std::move(id));
}

void SignalPackageCache::clearCache()
{
    WriteLocker locker(&lock);
    for (const QString &name : cacheDir.entryList(QDir::NoFilter, QDir::NoSort))
        cacheDir.remove(name);
}

template <typename File> void SignalPackageCache::retire(File *file)
{
    if (file)
        retired.push_back(std::shared_ptr<File>(file));
}

void SignalPackageCache::deleteAllSignalpackages()
{
    WriteLocker locker(&lock);
    const auto release = [this](auto &files) {
        for (auto it = files.cbegin(); it != files.cend(); ++it) {
            if (packages.contains(it.key()))
                delete it.value();
            else
                retire(it.value());
        }
        files.clear();
    };
    release(signalShapeFiles);
    release(audioFiles);
    release(symbolDataFiles);
    release(resultDataFiles);
    packages.clear();
}

bool SignalPackageCache::validSignalPackageId(const QString &id)
{
    // Read under the lock: a map read while another thread inserts can crash.
    ReadLocker locker(&lock);
    return packages.contains(id) || cacheDir.exists(cleanId(id) + xmlSuffix);
}

std::shared_ptr<SignalPackage> SignalPackageCache::signalPackage(const QString &id)
{
    ReadLocker reader(&lock);
    const auto found = packages.constFind(id);
    if (found != packages.cend())
        return found.value();
    reader.unlock();

    // Two threads may miss together; both load, and the later one's descriptor stays.
    WriteLocker writer(&lock);
    QFile file(cacheDir.absoluteFilePath(cleanId(id) + xmlSuffix));
    if (!file.open(QIODevice::ReadOnly))
        return defaultPackage;
    const auto package
        = std::make_shared<SignalPackage>(SignalPackageFile::signalPackage(file.readAll()));
    packages.insert(id, package);
    return package;
}

std::shared_ptr<SignalPackage> SignalPackageCache::defaultSignalPackage()
{
    ReadLocker locker(&lock);
    return defaultPackage;
}

template <typename File>
File *SignalPackageCache::dataFile(QMap<QString, File *> &files,
    const std::shared_ptr<SignalPackage> &package, const QString &suffix, const QString *fallback)
{
    if (!package)
        return nullptr;
    const QString key = package->id();
    ReadLocker reader(&lock);
    if (File *file = files.value(key))
        return file;
    reader.unlock();

    WriteLocker writer(&lock);
    QString path = cacheDir.absoluteFilePath(cleanId(key) + suffix);
    if (!QFile::exists(path)) {
        if (!fallback)
            return nullptr;
        path = *fallback;
    }
    auto *file = new File(path);
    file->open();
    // A second thread that missed too: its object replaces the first, which lives on.
    retire(files.value(key));
    files.insert(key, file);
    return file;
}

SignalShapeFile *SignalPackageCache::signalShapeFile(std::shared_ptr<SignalPackage> package)
{
    return dataFile(signalShapeFiles, package, shapeSuffix, &defaultSignalShapePath);
}

AudioFile *SignalPackageCache::audioFile(std::shared_ptr<SignalPackage> package)
{
    return dataFile(audioFiles, package, audioSuffix, &defaultAudioPath);
}

SymbolDataFile *SignalPackageCache::symbolDataFile(std::shared_ptr<SignalPackage> package)
{
    return dataFile(symbolDataFiles, package, symbolSuffix, nullptr);
}

ResultDataFile *SignalPackageCache::resultDataFile(std::shared_ptr<SignalPackage> package)
{
    return dataFile(resultDataFiles, package, resultSuffix, nullptr);
}

} // namespace Simulation
