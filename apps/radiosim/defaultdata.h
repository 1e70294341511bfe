#pragma once

#include <radiosim/documents/scenariodataxml.h>
#include <radiosim/packages/signalpackagecache.h>

#include <QStringList>
#include <QTemporaryDir>

#include <memory>

// The built-in default signal library unpacked into a temporary directory, and a package cache
// prepared over it there: the provider of every scenario the tool reads. Both go with the
// object.
class DefaultLibrary
{
public:
    // False, with the reason in error, when the temporary directory or the unpacking fails.
    bool prepare(QString &error);
    Simulation::SignalPackageCache *cache() const { return m_cache.get(); }
    // The unpacked library: package folders below it.
    QString libraryFolder() const;

private:
    QTemporaryDir m_dir;
    std::unique_ptr<Simulation::SignalPackageCache> m_cache;
};

// One scenario document as the tool reads it: from a file, or the built-in default scenario
// when no file is named, with the checker run over it. The objects are released with it.
class ScenarioFile
{
public:
    explicit ScenarioFile(Simulation::ISignalPackageProvider *provider);
    ~ScenarioFile();
    ScenarioFile(const ScenarioFile &) = delete;
    ScenarioFile &operator=(const ScenarioFile &) = delete;

    // The resource path of the default scenario.
    static QString defaultScenario();

    // False, with the reason in error, for a file that cannot be opened or is no scenario.
    bool load(const QString &path, QString &error);
    // The same for bytes, e.g. from the wire.
    bool load(const QByteArray &xml, QString &error);
    // Runs the checker; what it repaired, one sentence each, empty for a clean scenario.
    QStringList check();

    Simulation::ScenarioDataXml &document() { return m_document; }
    const QSet<std::shared_ptr<Simulation::ScenarioObject>> &objects() const { return m_objects; }
    // Emitters ordered by id, so output does not follow the order of a hash set.
    QList<std::shared_ptr<Simulation::SzenarioEmitter>> emitters() const;
    QList<std::shared_ptr<Simulation::ScenarioNetwork>> networks() const;

private:
    bool read(QIODevice &device, QString &error);

    Simulation::ISignalPackageProvider *m_provider;
    Simulation::ScenarioDataXml m_document;
    QSet<std::shared_ptr<Simulation::ScenarioObject>> m_objects;
};

// What play, timeline, check, convert and serve start from: the default library, and one
// scenario read with it as provider and checked.
struct LoadedScenario
{
    // path empty: the default scenario. False, with the reason in error, when the library
    // cannot be prepared or the scenario not read.
    bool load(const QString &path, QString &error);

    DefaultLibrary library;
    std::unique_ptr<ScenarioFile> file;
    // What the checker repaired.
    QStringList repairs;
    // The path, or a name for the default scenario, for messages.
    QString name;
};
