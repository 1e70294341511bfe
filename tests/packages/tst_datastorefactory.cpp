#include <radiosim/documents/scenariodataxml.h>
#include <radiosim/packages/datastorefactory.h>
#include <radiosim/packages/signalpackage.h>
#include <radiosim/packages/signalpackagecache.h>
#include <radiosim/platform/cfgcenter.h>

#include "repositoryhelpers.h"

#include <QtTest>
#include <QtWidgets>

#include <memory>

using namespace Simulation;

namespace {

const QString failureText = QStringLiteral("There is an error in your simulation repository "
                                           "configuration. The repository is either not "
                                           "accessible or not writable!");
// Title, text, icon and buttons of a critical dialog with an Ok button.
const QString failureDialog = QStringLiteral("false|Simulation System|") + failureText
    + QStringLiteral("|%1|%2").arg(QMessageBox::Critical).arg(QMessageBox::Ok);
const auto readable = QFile::ReadOwner | QFile::ExeOwner | QFile::ReadUser | QFile::ExeUser;
const auto writable = QFile::WriteOwner | QFile::WriteUser | QFile::WriteGroup | QFile::WriteOther;

// Creates the entries below root: folders end in a slash, files are empty, and "!" takes the
// write rights from root.
bool prepare(const QString &root, const QStringList &entries)
{
    for (const QString &entry : entries) {
        const QString path = root + '/' + entry;
        const bool done = entry == "!" ? QFile::setPermissions(root, readable)
            : entry.endsWith('/')
            ? QDir().mkpath(path)
            : QDir().mkpath(QFileInfo(path).path()) && !writeFile(path, {}).isEmpty();
        if (!done)
            return false;
    }
    return true;
}

} // namespace

class tst_DataStoreFactory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        // The dialog is modal: the timer answers it from inside its event loop, and runs all the
        // time, so that an unexpected dialog cannot hang a test.
        m_dialogCloser.setInterval(10);
        connect(&m_dialogCloser, &QTimer::timeout, this, [this] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box)
                return;
            m_dialog = QStringLiteral("%1|%2|%3|%4")
                           .arg(box->windowTitle(), box->text())
                           .arg(box->icon())
                           .arg(box->standardButtons());
            box->done(0);
        });
        m_dialogCloser.start();
    }

    void storeDirectories_data()
    {
        const auto below = [](const QString &root) {
            QStringList paths;
            for (const char *name : { "Files", "Icons", "Radar", "Sessions", "SignalPackages" })
                paths << root + QDir::separator() + name;
            return paths.join('|');
        };
        columns<QByteArray, QString>("ini", "expected");
        row("repository", QByteArray("[Repository/FileSystem]\nRepository=/srv/sim\n"),
            below("/srv/sim"));
        row("section without the key", QByteArray("[Repository/FileSystem]\nOther=1\n"),
            below(QDir::tempPath()));
        row("no section", QByteArray("[Repository]\nRepository=/srv/sim\n"), QString("||||"));
        row("empty root", QByteArray("[Repository/FileSystem]\nRepository=\n"), QString("||||"));
        row("not INI", QByteArray("\xff\xfe[[[=\0\n=\x01", 11), QString("||||"));
    }

    void storeDirectories()
    {
        QFETCH(QByteArray, ini);
        const auto cfg = configuration(ini);
        QVERIFY(cfg);
        const QStringList directories { DataStoreFactory::fileStoreDir(cfg.get()),
            DataStoreFactory::iconStoreDir(cfg.get()), DataStoreFactory::radarStoreDir(cfg.get()),
            DataStoreFactory::sessionStoreDir(cfg.get()),
            DataStoreFactory::signalPackageStoreDir(cfg.get()) };
        QTEST(directories.join('|'), "expected");
        QVERIFY(DataStoreFactory::fileStoreDir(nullptr).isNull());
        QCOMPARE(DataStoreFactory::defaultScenario(QStringLiteral("/srv/sim/Files")),
            QStringLiteral("/srv/sim/Files/Varnow-Heide/Default.scexml"));
        QCOMPARE(DataStoreFactory::defaultSignalPackage(QStringLiteral("/srv/sim/SignalPackages")),
            QStringLiteral("/srv/sim/SignalPackages/VuH-Default/Default"));
        QVERIFY(!DataStoreFactory::createSignalPackageStore(cfg.get(), true));
    }

    // The start of an application: the repository set up on an empty root feeds the cache, and
    // the default scenario loads from it with the cache as its provider.
    void initializeFeedsTheCacheAndTheDefaultScenario()
    {
        const QString root = freshDirectory();
        const auto cfg = configuration("[Repository/FileSystem]\nRepository=%1\n", root);
        QCOMPARE(initialize(cfg.get()), QStringLiteral("true"));
        QCOMPARE(listing(root), QStringLiteral("Files/ Icons/ SignalPackages/"));
        for (const char *name : { "/Files", "/Icons", "/SignalPackages" })
            QVERIFY((QFileInfo(root + name).permissions() & (readable | writable))
                == (readable | writable));
        const QString packages = DataStoreFactory::signalPackageStoreDir(cfg.get());
        const QString library = packages + "/VuH-Default";
        QCOMPARE(listing(packages), QStringLiteral("VuH-Default/"));
        QCOMPARE(
            listing(library), QStringLiteral(".library .lock Default/ Gauss 10kHz/ Rect 10kHz/"));
        const QString scenario
            = DataStoreFactory::defaultScenario(DataStoreFactory::fileStoreDir(cfg.get()));
        QCOMPARE(contentOf(scenario), contentOf(QStringLiteral(":/DefaultData/Default.sce.exp")));

        // A second start removes the sessions, unpacks the library anew, leaves the user's
        // scenario and files alone, and adds write rights to read and execute rights.
        const QByteArray original = contentOf(library + "/Default/Signal.xml");
        QVERIFY(QFile::remove(scenario) && !writeFile(scenario, "edited").isEmpty());
        QVERIFY(!writeFile(library + "/Default/Signal.xml", "edited").isEmpty());
        QVERIFY(QFile::remove(library + "/Rect 10kHz/Signal.wav"));
        QVERIFY(prepare(root, { "Sessions/old/file", "Files/mine" }));
        QVERIFY(QFile::setPermissions(root + "/Icons", readable));
        QCOMPARE(initialize(cfg.get()), QStringLiteral("true"));
        QCOMPARE(listing(root), QStringLiteral("Files/ Icons/ SignalPackages/"));
        QCOMPARE(QFileInfo(root + "/Icons").permissions(), readable | writable);
        QCOMPARE(listing(root + "/Files"), QStringLiteral("Varnow-Heide/ mine"));
        QCOMPARE(contentOf(scenario), QByteArray("edited"));
        QCOMPARE(contentOf(library + "/Default/Signal.xml"), original);
        for (const char *package : { "/Default", "/Gauss 10kHz", "/Rect 10kHz" })
            QCOMPARE(
                listing(library + package), QStringLiteral("Signal.ssf Signal.wav Signal.xml"));

        const QString cacheDirectory = freshDirectory();
        SignalPackageCache cache(cacheDirectory, QStringLiteral("Default"));
        cache.prepareCacheForUse();
        cache.updateCache(packages, false);
        for (const char *id : { "/Default/Default", "/Default/Gauss10k", "/Default/Rect10k" })
            QVERIFY2(cache.validSignalPackageId(QLatin1String(id)), id);

        QVERIFY(QFile::remove(scenario));
        QCOMPARE(initialize(cfg.get()), QStringLiteral("true"));
        ScenarioDataXml document(&cache);
        QVERIFY(document.fromXmlFile(scenario));
        QCOMPARE(document.scenarioObjects().size(), 17);
        QStringList emissions;
        for (const auto &object : document.scenarioObjects()) {
            for (const auto &emission : object->ScenarioObject::emissionSettings()->emissions())
                emissions << (emission->signalPackage ? emission->signalPackage->id() : "none");
        }
        emissions.removeDuplicates();
        QCOMPARE(emissions, QStringList { "/Default/Default" });
        releaseScenario(document.scenarioObjects());
    }

    void failureShowsTheDialog_data()
    {
        const QByteArray repository = "[Repository/FileSystem]\nRepository=%1";
        columns<QByteArray, QStringList, QString>("ini", "entries", "after");
        row("no configuration", QByteArray(), QStringList { "Sessions/" }, QString("Sessions/"));
        row("no section", QByteArray("[Repository]\nRepository=%1\n"), QStringList { "Sessions/" },
            QString("Sessions/"));
        row("not INI", QByteArray("\xff\xfe[[[=\0\n=%1", 11), QStringList { "Sessions/" },
            QString("Sessions/"));
        row("empty root", QByteArray("[Repository/FileSystem]\nRepository=\n"), QStringList(),
            QString());
        // The root itself is never created.
        row("missing root", repository + "/missing", QStringList(), QString());
        row("root is a file", repository + "/file", QStringList { "file" }, QString("file"));
        row("read-only root", repository, QStringList { "!" }, QString());
        // All three are tried; the sessions went before.
        row("package store is a file", repository, QStringList { "Sessions/", "SignalPackages" },
            QString("Files/ Icons/ SignalPackages"));
        row("library folder is a file", repository, QStringList { "SignalPackages/VuH-Default" },
            QString("Files/ Icons/ SignalPackages/"));
    }

    void failureShowsTheDialog()
    {
        QFETCH(QByteArray, ini);
        QFETCH(QStringList, entries);
        const QString root = freshDirectory();
        QVERIFY(prepare(root, entries));
        if (entries.contains("!") && QFileInfo(root).isWritable())
            QSKIP("This user may write into a read-only directory");
        const auto cfg = configuration(ini, root);
        QCOMPARE(initialize(ini.isEmpty() ? nullptr : cfg.get()), failureDialog);
        QTEST(listing(root), "after");
    }

    void traceLineAwayFromTheInterfaceThread()
    {
        QTest::ignoreMessage(QtCriticalMsg, qPrintable("Simulation System: " + failureText));
        bool result = true;
        // A thread of its own: a pool's task may run on the thread that waits for it.
        std::unique_ptr<QThread> thread(QThread::create(
            [&result] { result = DataStoreFactory::initializeDataStore(nullptr); }));
        thread->start();
        QVERIFY(thread->wait(10000));
        QVERIFY(!result);
    }

private:
    // A handle on the section "Repository" of a configuration file of its own; %1 in ini
    // stands for root.
    std::unique_ptr<ICfg> configuration(QByteArray ini, const QString &root = QString())
    {
        const QString file = m_dir.filePath(QStringLiteral("cfg%1.ini").arg(++m_count));
        if (writeFile(file, ini.replace("%1", root.toUtf8())).isEmpty())
            return nullptr;
        CfgCenter::setConfigurationFile(file);
        return std::unique_ptr<ICfg>(
            CfgCenter::CreateCfg(QStringLiteral("Repository"), CfgCenter::ViewSystem, QString()));
    }

    // "true" or "false", then the dialog that was shown, if any.
    QString initialize(ICfg *cfg)
    {
        m_dialog.clear();
        const bool result = DataStoreFactory::initializeDataStore(cfg);
        return QLatin1String(result ? "true" : "false")
            + (m_dialog.isEmpty() ? QString() : QLatin1Char('|') + m_dialog);
    }

    QString freshDirectory()
    {
        const QString path = m_dir.filePath(QStringLiteral("dir%1").arg(++m_count));
        return QDir().mkpath(path) ? path : QString();
    }

    QTemporaryDir m_dir;
    int m_count = 0;
    QTimer m_dialogCloser;
    QString m_dialog;
};

QTEST_MAIN(tst_DataStoreFactory)
#include "tst_datastorefactory.moc"
