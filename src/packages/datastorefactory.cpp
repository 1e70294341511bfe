#include "datastorefactory.h"

#include <radiosim/platform/cfgcenter.h>
#include <radiosim/platform/ovzip.h>
#include <radiosim/platform/trace.h>
#include <radiosim/units/geodesy.h>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMessageBox>
#include <QThread>

#include <memory>

namespace Simulation {

namespace {

const QString fileSystemSection = QStringLiteral("FileSystem");
const QString repositoryKey = QStringLiteral("Repository");
const QString signalPackagesName = QStringLiteral("SignalPackages");
const QString iconsName = QStringLiteral("Icons");
const QString filesName = QStringLiteral("Files");
const QString radarName = QStringLiteral("Radar");
const QString sessionsName = QStringLiteral("Sessions");
const QString libraryName = QStringLiteral("VuH-Default");
const QString libraryInArchive = QStringLiteral("/VuH-Default");
const QString temporaryArchiveName = QStringLiteral("~tmp.zip");
const QString libraryResource = QStringLiteral(":/DefaultData/VuH-Default.zip");
const QString scenarioResource = QStringLiteral(":/DefaultData/Default.sce.exp");

// Write rights for everyone. On POSIX the flags replace the whole mode, so the read and
// execute rights a directory already has are added to them.
void makeWritable(const QString &path)
{
    QFile::setPermissions(path,
        QFile::permissions(path) | QFile::WriteOwner | QFile::WriteUser | QFile::WriteGroup
            | QFile::WriteOther);
}

// Null without a configured repository. An empty configured root is refused as well: it would
// put the tree at the top of the file system.
QString repositoryRoot(ICfg *cfg)
{
    if (!cfg || !cfg->SectionExists(fileSystemSection, 0))
        return QString();
    const std::unique_ptr<ICfg> section(cfg->OpenSection(fileSystemSection, 0));
    const QString root
        = section ? section->GetString(repositoryKey, QDir::tempPath(), 0) : QString();
    return root.isEmpty() ? QString() : root;
}

QString below(const QString &root, const QString &name)
{
    return root.isNull() ? QString() : root + QDir::separator() + name;
}

bool failed()
{
    const QString title = QObject::tr("Simulation System");
    const QString text = QObject::tr("There is an error in your simulation repository "
                                     "configuration. The repository is either not accessible or "
                                     "not writable!");
    const auto *application = qobject_cast<QApplication *>(QCoreApplication::instance());
    if (application && QThread::currentThread() == application->thread())
        QMessageBox::critical(nullptr, title, text, QMessageBox::Ok);
    else
        qCCritical(lcRadioSimTrace).noquote() << title + QStringLiteral(": ") + text;
    return false;
}

} // namespace

bool DataStoreFactory::initializeDataStore(ICfg *cfg)
{
    const QString root = repositoryRoot(cfg);
    if (root.isNull() || !QDir(root).exists())
        return failed();

    removeDir(below(root, sessionsName));

    const QString made[]
        = { below(root, signalPackagesName), below(root, iconsName), below(root, filesName) };
    bool allMade = true;
    for (const QString &directory : made)
        allMade = (QDir(directory).exists() || QDir().mkpath(directory)) && allMade;
    if (!allMade)
        return failed();
    for (const QString &directory : made)
        makeWritable(directory);

    const QString &packages = made[0];
    const QString library = below(packages, libraryName);
    if (!QDir(library).exists() && !QDir().mkpath(library))
        return failed();

    const QString archivePath = below(packages, temporaryArchiveName);
    makeWritable(archivePath);
    QFile::remove(archivePath);
    QFile::copy(libraryResource, archivePath);
    OvZip::Archive archive(archivePath);
    if (archive.open(OvZip::Archive::ZipRead)) {
        archive.extractToFolder(libraryInArchive, library);
        archive.close();
    }
    makeWritable(archivePath);
    QFile::remove(archivePath);

    const QString scenario = defaultScenario(made[2]);
    QFileInfo(scenario).dir().mkpath(QStringLiteral("."));
    QFile::copy(scenarioResource, scenario);
    return true;
}

QString DataStoreFactory::fileStoreDir(ICfg *cfg)
{
    return below(repositoryRoot(cfg), filesName);
}

QString DataStoreFactory::iconStoreDir(ICfg *cfg)
{
    return below(repositoryRoot(cfg), iconsName);
}

QString DataStoreFactory::radarStoreDir(ICfg *cfg)
{
    return below(repositoryRoot(cfg), radarName);
}

QString DataStoreFactory::sessionStoreDir(ICfg *cfg)
{
    return below(repositoryRoot(cfg), sessionsName);
}

QString DataStoreFactory::signalPackageStoreDir(ICfg *cfg)
{
    return below(repositoryRoot(cfg), signalPackagesName);
}

QString DataStoreFactory::defaultScenario(QString const &fileStoreDir)
{
    return QDir(fileStoreDir).absoluteFilePath(QStringLiteral("Varnow-Heide/Default.scexml"));
}

QString DataStoreFactory::defaultSignalPackage(QString const &signalPackageStoreDir)
{
    return QDir(signalPackageStoreDir).absoluteFilePath(QStringLiteral("VuH-Default/Default"));
}

ISignalPackageStore *DataStoreFactory::createSignalPackageStore(ICfg *, bool)
{
    return nullptr;
}

} // namespace Simulation
