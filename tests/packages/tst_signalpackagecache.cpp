#include "repositoryhelpers.h"

#include <radiosim/datafiles/audiofile.h>
#include <radiosim/datafiles/resultdatafile.h>
#include <radiosim/datafiles/signalshapefile.h>
#include <radiosim/datafiles/symboldatafile.h>
#include <radiosim/packages/signalpackage.h>
#include <radiosim/packages/signalpackagecache.h>

#include <QtTest>

#include <atomic>
#include <thread>

using namespace Simulation;

namespace {

const QString repositoryListing = "Default/ _Gamma.ssf _Gamma.wav _Gamma.xml _Lib1_Alpha.rdf "
                                  "_Lib1_Alpha.sdf _Lib1_Alpha.ssf _Lib1_Alpha.wav _Lib1_Alpha.xml "
                                  "_Lib1_Beta.sdf _Lib1_Beta.ssf _Lib1_Beta.xml _Old_Alpha.xml "
                                  "_Older_Alpha.xml";

// What the cache hands out for a package: its id, then shape bin 0, first audio sample and
// the lengths of symbol and result data, "-" for none. The default shape's bin 0 is tiny, its
// audio starts at 0.
QString lookUp(SignalPackageCache &cache, const QString &id)
{
    const std::shared_ptr<SignalPackage> package = cache.signalPackage(id);
    if (!package)
        return "null";
    SignalShapeFile *shape = cache.signalShapeFile(package);
    shape->setPackageDuration(3000);
    shape->readSpectrum(0);
    AudioFile *audio = cache.audioFile(package);
    audio->setPackageDuration(3000);
    SymbolDataFile *symbols = cache.symbolDataFile(package);
    ResultDataFile *results = cache.resultDataFile(package);
    return QStringList({ package->id(), QString::number(shape->spectrum().at(0)),
                           QString::number(audio->readSamples(0, 1).at(0)),
                           symbols ? QString::number(symbols->length()) : "-",
                           results ? QString::number(results->length()) : "-" })
        .join(' ');
}

} // namespace

// A repository of nested folders: Alpha with every file and two update ids, Beta without
// audio (with a package folder inside it, which is no package), Gamma without symbol data,
// and a folder with a shape alone, which is no package either.
class tst_SignalPackageCache : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_dir.reset(new QTemporaryDir);
        QVERIFY(m_dir->isValid());
        m_repository = m_dir->filePath("repository");
        m_cacheDir = m_dir->filePath("cache");
        QVERIFY(QDir().mkpath(m_cacheDir));
        QVERIFY(writePackage(m_repository + "/Lib1/Alpha",
            descriptor("/Lib1/Alpha", { "/Old/Alpha", "/Older.Alpha" }), 1,
            { "ssf", "wav", "sdf", "rdf" }));
        QVERIFY(writePackage(
            m_repository + "/Lib1/Group/Beta", descriptor("/Lib1/Beta"), 2, { "ssf", "sdf" }));
        QVERIFY(writePackage(
            m_repository + "/Lib1/Group/Beta/Inner", descriptor("/Lib1/Nested"), 9, { "ssf" }));
        QVERIFY(writePackage(m_repository + "/Gamma", descriptor("/Gamma"), 3, { "ssf", "wav" }));
        QVERIFY(QDir().mkpath(m_repository + "/Plain/Deeper"));
        QVERIFY(!writeFile(m_repository + "/Plain/Deeper/Signal.ssf", numberedShape(8)).isEmpty());
        // A link back up the tree must not make the walk endless.
        QVERIFY(QFile::link(m_repository, m_repository + "/Plain/Up"));
    }

    // Before preparation there is no default and data file objects stay closed; preparation
    // unpacks the default, again over what is there.
    void preparationUnpacksTheDefault()
    {
        SignalPackageCache cache(m_cacheDir, "Default");
        QVERIFY(!cache.signalPackage("/Unknown") && !cache.defaultSignalPackage());
        auto package = std::make_shared<SignalPackage>();
        package->setId("/Lib1/Beta");
        SignalShapeFile *shape = cache.signalShapeFile(package);
        QVERIFY(shape && !shape->isOpen());
        QCOMPARE(cache.signalShapeFile(package), shape);
        QVERIFY(!cache.signalShapeFile(nullptr));

        for (int round = 0; round < 2; ++round) {
            cache.prepareCacheForUse();
            QCOMPARE(listing(m_cacheDir + "/Default"), QString("Signal.ssf Signal.wav Signal.xml"));
            QVERIFY(cache.defaultSignalPackage());
            QCOMPARE(describe(*cache.defaultSignalPackage()),
                QString("/Default/Default t1289821292 [] Default/Varnow-Heide bw10000 m0 '' d3000 "
                        "100"));
            QCOMPARE(
                lookUp(cache, "/Default/Default"), QString("/Default/Default 1.27541e-09 0 - -"));
        }
    }

    void lookups_data()
    {
        columns<QString, bool, QString>("id", "valid", "found");
        row("every file", QString("/Lib1/Alpha"), true, QString("/Lib1/Alpha 1 1 1000 1000"));
        // The descriptor under the update id names the new id, and the files follow that.
        row("update id", QString("/Old/Alpha"), true, QString("/Lib1/Alpha 1 1 1000 1000"));
        row("update id with a full stop", QString("/Older.Alpha"), true,
            QString("/Lib1/Alpha 1 1 1000 1000"));
        row("no audio: the default's", QString("/Lib1/Beta"), true,
            QString("/Lib1/Beta 2 0 2000 -"));
        row("no symbol data", QString("/Gamma"), true, QString("/Gamma 3 3 - -"));
        row("nested package", QString("/Lib1/Nested"), false,
            QString("/Default/Default 1.27541e-09 0 - -"));
        row("unknown", QString("/Unknown"), false, QString("/Default/Default 1.27541e-09 0 - -"));
    }

    void lookups()
    {
        QFETCH(QString, id);
        QFETCH(bool, valid);
        QFETCH(QString, found);
        const auto cache = filledCache();
        QCOMPARE(cache->validSignalPackageId(id), valid);
        QCOMPARE(lookUp(*cache, id), found);
        // Twice: the same descriptor, or again the default with nothing stored.
        const std::shared_ptr<SignalPackage> first = cache->signalPackage(id);
        QCOMPARE(cache->signalPackage(id), valid ? first : cache->defaultSignalPackage());
        QCOMPARE(lookUp(*cache, id), found);
    }

    void missingDataIsLookedForAgain()
    {
        const auto cache = filledCache();
        const std::shared_ptr<SignalPackage> gamma = cache->signalPackage("/Gamma");
        QVERIFY(!cache->symbolDataFile(gamma));
        QVERIFY(!writeFile(m_cacheDir + "/_Gamma.sdf", symbolData(5)).isEmpty());
        SymbolDataFile *symbols = cache->symbolDataFile(gamma);
        QVERIFY(symbols && symbols->length() == 500);
        QCOMPARE(cache->symbolDataFile(gamma), symbols);
    }

    // The repository's packages are copied flat. Later only what is missing is copied: new files
    // and packages come, a changed file stays stale and a cache file is never overwritten. A
    // missing repository changes nothing.
    void secondUpdateCopiesOnlyWhatIsNew()
    {
        const auto cache = filledCache();
        QCOMPARE(listing(m_cacheDir), repositoryListing);
        cache->updateCache(m_dir->filePath("missing"), true);
        QVERIFY(QFile::resize(m_cacheDir + "/_Lib1_Alpha.wav", 0));
        QVERIFY(QFile::remove(m_cacheDir + "/_Lib1_Beta.sdf"));
        QVERIFY(!writeFile(m_repository + "/Gamma/Signal.rdf", resultData(30)).isEmpty());
        QVERIFY(!writeFile(m_repository + "/Lib1/Alpha/Signal.ssf", numberedShape(5)).isEmpty());
        QVERIFY(
            writePackage(m_repository + "/Lib1/Delta", descriptor("/Lib1/Delta"), 4, { "ssf" }));
        cache->updateCache(m_repository, false);
        QCOMPARE(listing(m_cacheDir),
            QString(repositoryListing)
                .replace("_Gamma.ssf", "_Gamma.rdf _Gamma.ssf")
                .replace("_Lib1_Beta.xml", "_Lib1_Beta.xml _Lib1_Delta.ssf _Lib1_Delta.xml"));
        QCOMPARE(QFileInfo(m_cacheDir + "/_Lib1_Alpha.wav").size(), 0);
        QCOMPARE(lookUp(*cache, "/Lib1/Alpha").section(' ', 0, 1), QString("/Lib1/Alpha 1"));
        QCOMPARE(lookUp(*cache, "/Gamma"), QString("/Gamma 3 3 - 3000"));
    }

    void clearingRemovesTheFilesOnly()
    {
        const auto cache = filledCache();
        const QString before = lookUp(*cache, "/Lib1/Alpha");
        cache->clearCache();
        QCOMPARE(listing(m_cacheDir), QString("Default/"));
        QVERIFY(cache->validSignalPackageId("/Lib1/Alpha"));
        QVERIFY(!cache->validSignalPackageId("/Gamma"));
        // Loaded objects keep their open files.
        QCOMPARE(lookUp(*cache, "/Lib1/Alpha"), before);
        cache->updateCache(m_repository, false);
        QCOMPARE(listing(m_cacheDir), repositoryListing);
    }

    // Eight threads look packages up and read their data while another fills the cache.
    // Every answer is the package asked for or, before it is copied, the default.
    void lookupsRunWhileTheCacheIsUpdated()
    {
        SignalPackageCache cache(m_cacheDir, "Default");
        cache.prepareCacheForUse();
        const QStringList ids = { "/Lib1/Alpha", "/Old/Alpha", "/Lib1/Beta", "/Gamma", "/Unknown" };
        std::atomic<bool> updating { true };
        std::atomic<int> wrong { 0 };
        std::thread updater([&] {
            for (int round = 0; round < 3; ++round) {
                cache.updateCache(m_repository, false);
                cache.clearCache();
            }
            cache.updateCache(m_repository, false);
            updating = false;
        });
        std::vector<std::thread> readers;
        for (int t = 0; t < 8; ++t) {
            readers.emplace_back([&, t] {
                for (int round = 0; updating || round < 20; ++round) {
                    const QString id = ids.at((t + round) % ids.size());
                    cache.validSignalPackageId(id);
                    const std::shared_ptr<SignalPackage> package = cache.signalPackage(id);
                    SignalShapeFile *shape = cache.signalShapeFile(package);
                    shape->setPackageDuration(3000);
                    shape->readSpectrum(uint(round) * 100);
                    AudioFile *audio = cache.audioFile(package);
                    audio->setPackageDuration(3000);
                    audio->readSamples(uint(round), 1);
                    cache.symbolDataFile(package);
                    const QString expected = id.startsWith("/Old") ? "/Lib1/Alpha" : id;
                    if (package->id() != expected && package->id() != "/Default/Default")
                        ++wrong;
                }
            });
        }
        updater.join();
        for (std::thread &reader : readers)
            reader.join();
        QCOMPARE(wrong.load(), 0);
        QCOMPARE(listing(m_cacheDir), repositoryListing);
        // Objects made while the files were cleared away keep the default's data: deleting
        // forgets every loaded object, the default's too, and starts anew.
        const std::shared_ptr<SignalPackage> alpha = cache.signalPackage("/Lib1/Alpha");
        cache.deleteAllSignalpackages();
        QVERIFY(cache.signalPackage("/Lib1/Alpha") != alpha);
        QCOMPARE(lookUp(cache, "/Old/Alpha"), QString("/Lib1/Alpha 1 1 1000 1000"));
        QCOMPARE(cache.defaultSignalPackage()->id(), QString("/Default/Default"));
    }

private:
    std::unique_ptr<SignalPackageCache> filledCache()
    {
        auto cache = std::make_unique<SignalPackageCache>(m_cacheDir, "Default");
        cache->prepareCacheForUse();
        cache->updateCache(m_repository, false);
        return cache;
    }

    QScopedPointer<QTemporaryDir> m_dir;
    QString m_repository;
    QString m_cacheDir;
};

QTEST_GUILESS_MAIN(tst_SignalPackageCache)
#include "tst_signalpackagecache.moc"
