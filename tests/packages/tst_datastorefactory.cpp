#include <radiosim/documents/scenariodataxml.h>
#include <radiosim/packages/datastorefactory.h>
#include <radiosim/packages/signalpackage.h>
#include <radiosim/packages/signalpackagecache.h>
#include <radiosim/platform/cfgcenter.h>

#include "testhelpers.h"

#include <QtTest>
#include <QtWidgets>

#include <memory>

using namespace Simulation;

namespace {

const QString failureText = QStringLiteral("There is an error in your simulation repository "
                                           "configuration. The repository is either not "
                                           "accessible or not writable!");
// Title, text, icon and buttons of a critical dialog with an Ok button.
const QString failureDialog = QStringLiteral("Simulation System|") + failureText
    + QStringLiteral("|%1|%2").arg(QMessageBox::Critical).arg(QMessageBox::Ok);

bool writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly)
        && file.write(content) == content.size();
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The names in folder, sorted, hidden ones too, folders with a trailing slash; "-" when the
// folder does not exist.
QString listing(const QString &folder)
{
    if (!QFileInfo(folder).isDir())
        return QStringLiteral("-");
    QStringList names;
    for (const QFileInfo &entry : QDir(folder).entryInfoList(
             QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDir::Name))
        names << entry.fileName() + (entry.isDir() ? "/" : "");
    return names.join(' ');
}

// Creates the entries below root, folders ending in a slash, files empty.
bool prepare(const QString &root, const QStringList &entries)
{
    for (const QString &entry : entries) {
        const QString path = root + '/' + entry;
        if (!(entry.endsWith('/') ? QDir().mkpath(path) : writeFile(path, QByteArray())))
            return false;
    }
    return true;
}

} // namespace

class tst_DataStoreFactory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void storeDirectories_data();
    void storeDirectories();
    void initializeSetsUpTheTree();
    void defaultDataServesTheCacheAndScenario();
    void failureShowsTheDialog_data();
    void failureShowsTheDialog();
    void readOnlyRepositoryShowsTheDialog();
    void traceLineAwayFromTheInterfaceThread();
    void noPackageStore();

private:
    // A handle on the section "Repository" of a configuration file of its own.
    std::unique_ptr<ICfg> configuration(const QByteArray &ini);
    // "true" or "false", then the dialog that was shown, if any.
    QString initialize(ICfg *cfg);
    QString freshRoot();

    QTemporaryDir m_dir;
    int m_count = 0;
    QTimer m_dialogCloser;
    QString m_dialog;
};

void tst_DataStoreFactory::initTestCase()
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

std::unique_ptr<ICfg> tst_DataStoreFactory::configuration(const QByteArray &ini)
{
    const QString file = m_dir.filePath(QStringLiteral("cfg%1.ini").arg(++m_count));
    if (!writeFile(file, ini))
        return nullptr;
    CfgCenter::setConfigurationFile(file);
    return std::unique_ptr<ICfg>(
        CfgCenter::CreateCfg(QStringLiteral("Repository"), CfgCenter::ViewSystem, QString()));
}

QString tst_DataStoreFactory::initialize(ICfg *cfg)
{
    m_dialog.clear();
    const bool result = DataStoreFactory::initializeDataStore(cfg);
    return QLatin1String(result ? "true" : "false")
        + (m_dialog.isEmpty() ? QString() : QLatin1Char('|') + m_dialog);
}

QString tst_DataStoreFactory::freshRoot()
{
    const QString root = m_dir.filePath(QStringLiteral("root%1").arg(++m_count));
    return QDir().mkpath(root) ? root : QString();
}

void tst_DataStoreFactory::storeDirectories_data()
{
    const QString sep = QDir::separator();
    const QString temp = QDir::tempPath() + sep;
    columns<QByteArray, QString>("ini", "expected");
    row("repository", QByteArray("[Repository/FileSystem]\nRepository=/srv/sim\n"),
        QStringList(
            { "/srv/sim" + sep + "Files", "/srv/sim" + sep + "Icons", "/srv/sim" + sep + "Radar",
                "/srv/sim" + sep + "Sessions", "/srv/sim" + sep + "SignalPackages" })
            .join('|'));
    row("section without the key", QByteArray("[Repository/FileSystem]\nOther=1\n"),
        QStringList({ temp + "Files", temp + "Icons", temp + "Radar", temp + "Sessions",
                        temp + "SignalPackages" })
            .join('|'));
    row("no section", QByteArray("[Repository]\nRepository=/srv/sim\n"), QString("||||"));
    row("empty root", QByteArray("[Repository/FileSystem]\nRepository=\n"), QString("||||"));
    row("not INI", QByteArray("\xff\xfe[[[=\0\n=\x01", 11), QString("||||"));
}

void tst_DataStoreFactory::storeDirectories()
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
}

void tst_DataStoreFactory::initializeSetsUpTheTree()
{
    const QString root = freshRoot();
    QVERIFY(prepare(root, { "Sessions/old/file", "Icons/" }));
    // Read and execute rights of a directory survive; write rights are added for everyone.
    const auto readable = QFile::ReadOwner | QFile::ExeOwner | QFile::ReadUser | QFile::ExeUser;
    const auto writable
        = QFile::WriteOwner | QFile::WriteUser | QFile::WriteGroup | QFile::WriteOther;
    QVERIFY(QFile::setPermissions(root + "/Icons", readable));
    const auto cfg = configuration("[Repository/FileSystem]\nRepository=" + root.toUtf8() + "\n");

    QCOMPARE(initialize(cfg.get()), QStringLiteral("true"));
    QCOMPARE(listing(root), QStringLiteral("Files/ Icons/ SignalPackages/"));
    QCOMPARE(listing(root + "/Files"), QStringLiteral("Varnow-Heide/"));
    QVERIFY(!listing(root + "/SignalPackages").contains("~tmp.zip"));
    QVERIFY(QFileInfo(DataStoreFactory::defaultSignalPackage(root + "/SignalPackages"))
                .path()
                .endsWith("/SignalPackages/VuH-Default"));
    QCOMPARE(QFileInfo(root + "/Icons").permissions(), readable | writable);
    for (const char *name : { "/Files", "/SignalPackages" })
        QVERIFY((QFileInfo(root + name).permissions() & (readable | writable))
            == (readable | writable));

    // A second start leaves the user's scenario and files alone and removes the sessions.
    const QString scenario = DataStoreFactory::defaultScenario(root + "/Files");
    QVERIFY(QFile::remove(scenario) || !QFile::exists(scenario));
    QVERIFY(writeFile(scenario, "edited") && prepare(root, { "Sessions/", "Files/mine" }));
    QCOMPARE(initialize(cfg.get()), QStringLiteral("true"));
    QCOMPARE(listing(root), QStringLiteral("Files/ Icons/ SignalPackages/"));
    QCOMPARE(listing(root + "/Files"), QStringLiteral("Varnow-Heide/ mine"));
    QCOMPARE(readFile(scenario), QByteArray("edited"));
}

// The start of an application: the repository set up on an empty root feeds the cache, and the
// default scenario loads from the repository with the cache as its provider.
void tst_DataStoreFactory::defaultDataServesTheCacheAndScenario()
{
    const QString root = freshRoot();
    const auto cfg = configuration("[Repository/FileSystem]\nRepository=" + root.toUtf8() + "\n");
    QCOMPARE(initialize(cfg.get()), QStringLiteral("true"));
    const QString packages = DataStoreFactory::signalPackageStoreDir(cfg.get());
    const QString library = packages + "/VuH-Default";
    QCOMPARE(listing(library), QStringLiteral(".library .lock Default/ Gauss 10kHz/ Rect 10kHz/"));
    for (const char *package : { "/Default", "/Gauss 10kHz", "/Rect 10kHz" })
        QCOMPARE(listing(library + package), QStringLiteral("Signal.ssf Signal.wav Signal.xml"));
    const QString scenario
        = DataStoreFactory::defaultScenario(DataStoreFactory::fileStoreDir(cfg.get()));
    QCOMPARE(readFile(scenario), readFile(QStringLiteral(":/DefaultData/Default.sce.exp")));

    // The library is unpacked anew at each start.
    const QByteArray descriptor = readFile(library + "/Default/Signal.xml");
    QVERIFY(writeFile(library + "/Default/Signal.xml", "edited"));
    QVERIFY(QFile::remove(library + "/Rect 10kHz/Signal.wav"));
    QCOMPARE(initialize(cfg.get()), QStringLiteral("true"));
    QCOMPARE(readFile(library + "/Default/Signal.xml"), descriptor);
    QCOMPARE(listing(library + "/Rect 10kHz"), QStringLiteral("Signal.ssf Signal.wav Signal.xml"));

    const QString cacheDirectory = m_dir.filePath(QStringLiteral("cache%1").arg(++m_count));
    QVERIFY(QDir().mkpath(cacheDirectory));
    SignalPackageCache cache(cacheDirectory, QStringLiteral("Default"));
    cache.prepareCacheForUse();
    cache.updateCache(packages, false);
    for (const char *id : { "/Default/Default", "/Default/Gauss10k", "/Default/Rect10k" })
        QVERIFY2(cache.validSignalPackageId(QLatin1String(id)), id);

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

void tst_DataStoreFactory::failureShowsTheDialog_data()
{
    columns<QByteArray, QStringList, QString>("ini", "entries", "after");
    row("no configuration", QByteArray(), QStringList { "Sessions/" }, QString("Sessions/"));
    row("no section", QByteArray("[Repository]\nRepository=%1\n"), QStringList { "Sessions/" },
        QString("Sessions/"));
    row("not INI", QByteArray("\xff\xfe[[[=\0\n=%1", 11), QStringList { "Sessions/" },
        QString("Sessions/"));
    row("empty root", QByteArray("[Repository/FileSystem]\nRepository=\n"), QStringList(),
        QString());
    // The root itself is never created.
    row("missing root", QByteArray("[Repository/FileSystem]\nRepository=%1/missing\n"),
        QStringList(), QString());
    row("root is a file", QByteArray("[Repository/FileSystem]\nRepository=%1/file\n"),
        QStringList { "file" }, QString("file"));
    // All three are tried; the sessions went before.
    row("package store is a file", QByteArray("[Repository/FileSystem]\nRepository=%1\n"),
        QStringList { "Sessions/", "SignalPackages" }, QString("Files/ Icons/ SignalPackages"));
    row("library folder is a file", QByteArray("[Repository/FileSystem]\nRepository=%1\n"),
        QStringList { "SignalPackages/VuH-Default" }, QString("Files/ Icons/ SignalPackages/"));
}

void tst_DataStoreFactory::failureShowsTheDialog()
{
    QFETCH(QByteArray, ini);
    QFETCH(QStringList, entries);
    const QString root = freshRoot();
    QVERIFY(prepare(root, entries));
    const auto cfg = configuration(ini.replace("%1", root.toUtf8()));
    QCOMPARE(initialize(ini.isEmpty() ? nullptr : cfg.get()), "false|" + failureDialog);
    QTEST(listing(root), "after");
}

void tst_DataStoreFactory::readOnlyRepositoryShowsTheDialog()
{
    const QString root = freshRoot();
    QVERIFY(QFile::setPermissions(root, QFile::ReadOwner | QFile::ExeOwner));
    const bool mayWrite = QDir(root).mkdir(QStringLiteral("probe"));
    if (!mayWrite) {
        const auto cfg
            = configuration("[Repository/FileSystem]\nRepository=" + root.toUtf8() + "\n");
        QCOMPARE(initialize(cfg.get()), "false|" + failureDialog);
        QCOMPARE(listing(root), QString());
    }
    QVERIFY(QFile::setPermissions(root, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    if (mayWrite)
        QSKIP("This user may write into a read-only directory");
}

void tst_DataStoreFactory::traceLineAwayFromTheInterfaceThread()
{
    QTest::ignoreMessage(QtCriticalMsg, qPrintable("Simulation System: " + failureText));
    bool result = true;
    // A thread of its own: a pool's task may run on the thread that waits for it.
    std::unique_ptr<QThread> thread(
        QThread::create([&result] { result = DataStoreFactory::initializeDataStore(nullptr); }));
    thread->start();
    QVERIFY(thread->wait(10000));
    QVERIFY(!result);
}

void tst_DataStoreFactory::noPackageStore()
{
    const auto cfg = configuration("[Repository/FileSystem]\nRepository=/srv/sim\n");
    QVERIFY(!DataStoreFactory::createSignalPackageStore(nullptr, false));
    QVERIFY(!DataStoreFactory::createSignalPackageStore(cfg.get(), true));
}

QTEST_MAIN(tst_DataStoreFactory)
#include "tst_datastorefactory.moc"
