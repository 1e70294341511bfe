#include "defaultdata.h"

#include <radiosim/documents/scenariochecker.h>
#include <radiosim/platform/ovzip.h>
#include <radiosim/scenario/cast.h>

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>

#include <algorithm>

using namespace Simulation;

namespace {

const QString LibraryName = QStringLiteral("VuH-Default");

template <typename T> void sortById(QList<std::shared_ptr<T>> &objects)
{
    std::sort(objects.begin(), objects.end(),
        [](const std::shared_ptr<T> &a, const std::shared_ptr<T> &b) { return a->id() < b->id(); });
}

} // namespace

bool DefaultLibrary::prepare(QString &error)
{
    if (!m_dir.isValid()) {
        error = QStringLiteral("cannot create a temporary directory: %1").arg(m_dir.errorString());
        return false;
    }
    const QDir dir(m_dir.path());
    // The archive reader wants a file of its own.
    const QString archivePath = dir.filePath(LibraryName + QStringLiteral(".zip"));
    OvZip::Archive archive(archivePath);
    if (!QFile::copy(QStringLiteral(":/DefaultData/VuH-Default.zip"), archivePath)
        || !archive.open(OvZip::Archive::ZipRead)
        || !archive.extractToFolder(QLatin1Char('/') + LibraryName, libraryFolder())
        || !dir.mkpath(QStringLiteral("cache"))) {
        error = QStringLiteral("cannot unpack the default signal library into %1").arg(dir.path());
        return false;
    }
    archive.close();
    m_cache = std::make_unique<SignalPackageCache>(
        dir.filePath(QStringLiteral("cache")), QStringLiteral("Default"));
    m_cache->prepareCacheForUse();
    m_cache->updateCache(libraryFolder(), false);
    return true;
}

QString DefaultLibrary::libraryFolder() const
{
    return QDir(m_dir.path()).filePath(LibraryName);
}

ScenarioFile::ScenarioFile(ISignalPackageProvider *provider)
    : m_provider(provider)
    , m_document(provider)
{
}

ScenarioFile::~ScenarioFile()
{
    releaseScenario(m_objects);
}

QString ScenarioFile::defaultScenario()
{
    return QStringLiteral(":/DefaultData/Default.sce.exp");
}

bool ScenarioFile::load(const QString &path, QString &error)
{
    const QString name = path.isEmpty() ? defaultScenario() : path;
    QFile file(name);
    if (QFileInfo(name).isDir()) {
        error = QStringLiteral("cannot be opened: it is a directory");
        return false;
    }
    if (!file.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("cannot be opened: %1").arg(file.errorString());
        return false;
    }
    return read(file, error);
}

bool ScenarioFile::load(const QByteArray &xml, QString &error)
{
    QBuffer buffer;
    buffer.setData(xml);
    buffer.open(QIODevice::ReadOnly);
    return read(buffer, error);
}

bool ScenarioFile::read(QIODevice &device, QString &error)
{
    if (m_document.fromXml(&device)) {
        m_objects = m_document.scenarioObjects();
        return true;
    }
    // The reader only says no; the root it met makes a better message.
    device.seek(0);
    QXmlStreamReader reader(&device);
    error = reader.readNextStartElement()
        ? QStringLiteral("not a scenario: the root element is <%1>, not <Scenario>")
              .arg(reader.name())
        : QStringLiteral("not a scenario: no XML element in it");
    return false;
}

QStringList ScenarioFile::check()
{
    ScenarioChecker checker;
    checker.checkAndFixScenario(m_objects, m_provider);
    QStringList repairs;
    if (checker.hadInvalidSignalPackages()) {
        repairs << (m_provider ? QStringLiteral("emissions without a signal package were given the "
                                                "default package")
                               : QStringLiteral("emissions without a signal package stay without"));
    }
    if (checker.hadNullPointerSettings()) {
        repairs << QStringLiteral("missing frequency or position settings were replaced by a "
                                  "fixed 25 MHz and the position 0, 0");
    }
    return repairs;
}

QList<std::shared_ptr<SzenarioEmitter>> ScenarioFile::emitters() const
{
    QList<std::shared_ptr<SzenarioEmitter>> list = Cast::emitter(m_objects).values();
    sortById(list);
    return list;
}

QList<std::shared_ptr<ScenarioNetwork>> ScenarioFile::networks() const
{
    QList<std::shared_ptr<ScenarioNetwork>> list = Cast::networks(m_objects).values();
    sortById(list);
    return list;
}

bool LoadedScenario::load(const QString &path, QString &error)
{
    name = path.isEmpty() ? QStringLiteral("default scenario") : path;
    if (!library.prepare(error))
        return false;
    file = std::make_unique<ScenarioFile>(library.cache());
    if (!file->load(path, error)) {
        error = name + QStringLiteral(": ") + error;
        return false;
    }
    repairs = file->check();
    return true;
}
