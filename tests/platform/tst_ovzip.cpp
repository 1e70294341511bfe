#include <radiosim/platform/ovzip.h>

#include <QtTest>

using Entries = QList<QPair<QString, QByteArray>>;

// Archives are built by Python's zipfile and checked with unzip -t, so the fixtures come from
// tools nobody here wrote; hostile names are stored exactly as given. A fixture that could not
// be built comes back as an empty path, which the following open() refuses.
class tst_OvZip : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void listsEntries();
    void extractsEveryEntryAndRepairsOnRepeat();
    void extractsOneFolderWithoutItsPrefix_data();
    void extractsOneFolderWithoutItsPrefix();
    void refusesEntriesLeavingTheTarget_data();
    void refusesEntriesLeavingTheTarget();
    void doesNotFollowLinksOutOfTheTarget();
    void corruptEntryLeavesNoFile();
    void unusableArchives_data();
    void unusableArchives();

private:
    QString makeZip(const QString &name, const Entries &entries, bool compress = true);
    QStringList filesBelow(const QString &folder) const;
    QScopedPointer<QTemporaryDir> m_dir;
    QByteArray m_binary;
};

void tst_OvZip::initTestCase()
{
    QVERIFY2(!QStandardPaths::findExecutable(QStringLiteral("python3")).isEmpty(), "no python3");
    QVERIFY2(!QStandardPaths::findExecutable(QStringLiteral("unzip")).isEmpty(), "no unzip");
    // Larger than one read chunk, and not compressible to nothing.
    QRandomGenerator random(17);
    for (int i = 0; i < 200 * 1024; ++i)
        m_binary.append(char(random.bounded(256)));
}

void tst_OvZip::init()
{
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
}

QString tst_OvZip::makeZip(const QString &name, const Entries &entries, bool compress)
{
    QJsonArray list;
    for (const auto &entry : entries)
        list.append(QJsonArray { entry.first, QString::fromLatin1(entry.second.toBase64()) });
    const QString path = m_dir->filePath(name);
    const QString script = QStringLiteral(
        "import base64, json, sys, zipfile\n"
        "plan = json.load(sys.stdin)\n"
        "method = zipfile.ZIP_DEFLATED if plan['compress'] else zipfile.ZIP_STORED\n"
        "with zipfile.ZipFile(plan['path'], 'w') as z:\n"
        "    for name, data in plan['entries']:\n"
        "        info = zipfile.ZipInfo(name)\n"
        "        info.compress_type = method\n"
        "        z.writestr(info, base64.b64decode(data))\n");
    QProcess python;
    python.start(QStringLiteral("python3"), { QStringLiteral("-c"), script });
    python.write(QJsonDocument(QJsonObject {
                                   { QStringLiteral("path"), path },
                                   { QStringLiteral("compress"), compress },
                                   { QStringLiteral("entries"), list },
                               })
                     .toJson());
    python.closeWriteChannel();
    if (!python.waitForFinished(30000) || python.exitCode() != 0)
        return {};
    QProcess unzip;
    unzip.start(QStringLiteral("unzip"), { QStringLiteral("-tqq"), path });
    if (!unzip.waitForFinished(30000) || unzip.exitCode() != 0)
        return {};
    return path;
}

// Every file and folder below folder, relative to it, sorted.
QStringList tst_OvZip::filesBelow(const QString &folder) const
{
    QStringList found;
    QDirIterator it(folder, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System,
        QDirIterator::Subdirectories);
    while (it.hasNext())
        found.append(QDir(folder).relativeFilePath(it.next()));
    found.sort();
    return found;
}

void tst_OvZip::listsEntries()
{
    const Entries entries = { { QStringLiteral("a.txt"), "alpha" },
        { QStringLiteral("empty/"), QByteArray() }, { QStringLiteral("Grüße/東京.txt"), "utf" } };
    OvZip::Archive archive(makeZip(QStringLiteral("list.zip"), entries));
    QVERIFY(archive.files().isEmpty());
    QVERIFY(archive.open(OvZip::Archive::ZipRead));
    QCOMPARE(archive.files(),
        QStringList({ QStringLiteral("a.txt"), QStringLiteral("empty/"),
            QStringLiteral("Grüße/東京.txt") }));

    const QString target = m_dir->filePath(QStringLiteral("one/by/one.txt"));
    QVERIFY(archive.extractToFile(QStringLiteral("Grüße/東京.txt"), target));
    QFile file(target);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("utf"));
    QVERIFY(!archive.extractToFile(QStringLiteral("missing.txt"), target + QLatin1Char('2')));
    archive.close();
    QVERIFY(archive.files().isEmpty());
    QVERIFY(!archive.extractToFile(QStringLiteral("a.txt"), target));
}

void tst_OvZip::extractsEveryEntryAndRepairsOnRepeat()
{
    const Entries entries
        = { { QStringLiteral("a.txt"), "alpha" }, { QStringLiteral("sub/data.bin"), m_binary },
              { QStringLiteral("sub/deeper/c.txt"), "gamma" }, { QStringLiteral("empty/"), {} } };
    const QString target = m_dir->filePath(QStringLiteral("out"));
    OvZip::Archive archive(makeZip(QStringLiteral("all.zip"), entries));
    QVERIFY(archive.open(1));

    const auto checkComplete = [&] {
        QCOMPARE(filesBelow(target),
            QStringList({ QStringLiteral("a.txt"), QStringLiteral("empty"), QStringLiteral("sub"),
                QStringLiteral("sub/data.bin"), QStringLiteral("sub/deeper"),
                QStringLiteral("sub/deeper/c.txt") }));
        for (const auto &entry : entries) {
            if (entry.first.endsWith(QLatin1Char('/')))
                continue;
            QFile file(QDir(target).filePath(entry.first));
            QVERIFY(file.open(QIODevice::ReadOnly));
            QCOMPARE(file.readAll(), entry.second);
        }
    };
    QVERIFY(archive.extractToFolder(target));
    checkComplete();

    // A damaged earlier unpack: one file gone, one truncated, one made read-only.
    QVERIFY(QFile::remove(QDir(target).filePath(QStringLiteral("sub/deeper/c.txt"))));
    QFile truncated(QDir(target).filePath(QStringLiteral("sub/data.bin")));
    QVERIFY(truncated.resize(10));
    QVERIFY(QFile::setPermissions(
        QDir(target).filePath(QStringLiteral("a.txt")), QFileDevice::ReadOwner));
    QVERIFY(archive.extractToFolder(QStringLiteral("/"), target));
    checkComplete();
}

void tst_OvZip::extractsOneFolderWithoutItsPrefix_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<bool>("result");
    QTest::addColumn<QStringList>("files");
    const QStringList inner = { QStringLiteral("Default"), QStringLiteral("Default/Signal.xml"),
        QStringLiteral("top.txt") };
    QTest::newRow("leading slash") << "/VuH-Default" << true << inner;
    QTest::newRow("bare name") << "VuH-Default" << true << inner;
    QTest::newRow("trailing slash") << "VuH-Default/" << true << inner;
    QTest::newRow("a prefix of a name is no folder") << "/VuH" << false << QStringList();
    QTest::newRow("missing folder") << "/Elsewhere" << false << QStringList();
    QTest::newRow("case matters") << "/vuh-default" << false << QStringList();
}

void tst_OvZip::extractsOneFolderWithoutItsPrefix()
{
    QFETCH(QString, folder);
    QFETCH(bool, result);
    QFETCH(QStringList, files);
    OvZip::Archive archive(makeZip(QStringLiteral("folder.zip"),
        { { QStringLiteral("VuH-Default/"), {} },
            { QStringLiteral("VuH-Default/Default/Signal.xml"), "<Signal/>" },
            { QStringLiteral("VuH-Default/top.txt"), "top" },
            { QStringLiteral("Other/skip.txt"), "skip" }, { QStringLiteral("root.txt"), "r" } }));
    QVERIFY(archive.open(1));
    const QString target = m_dir->filePath(QStringLiteral("SignalPackages/VuH-Default"));
    QCOMPARE(archive.extractToFolder(folder, target), result);
    QCOMPARE(filesBelow(target), files);
}

void tst_OvZip::refusesEntriesLeavingTheTarget_data()
{
    QTest::addColumn<QString>("hostile");
    QTest::newRow("parent") << "../evil.txt";
    QTest::newRow("absolute") << "/abs.txt";
    QTest::newRow("climbs from a sub-folder") << "sub/../../evil.txt";
    QTest::newRow("backslashes") << "..\\evil.txt";
    QTest::newRow("drive letter") << "C:/evil.txt";
    QTest::newRow("only dots") << "..";
}

// The hostile entry sits between two good ones: both good ones are unpacked, the answer is
// false, and nothing appears anywhere but in the target.
void tst_OvZip::refusesEntriesLeavingTheTarget()
{
    QFETCH(QString, hostile);
    QVERIFY(!QFile::exists(QStringLiteral("/abs.txt")));
    const QString target = m_dir->filePath(QStringLiteral("deep/target"));
    OvZip::Archive archive(makeZip(QStringLiteral("hostile.zip"),
        { { QStringLiteral("good.txt"), "good" }, { hostile, "evil" },
            { QStringLiteral("sub/after.txt"), "after" } }));
    QVERIFY(archive.open(1));

    QVERIFY(!archive.extractToFolder(target));
    QVERIFY(!archive.extractToFile(hostile, QDir(target).filePath(hostile)));

    QCOMPARE(filesBelow(m_dir->path()),
        QStringList({ QStringLiteral("deep"), QStringLiteral("deep/target"),
            QStringLiteral("deep/target/good.txt"), QStringLiteral("deep/target/sub"),
            QStringLiteral("deep/target/sub/after.txt"), QStringLiteral("hostile.zip") }));
    QVERIFY(!QFile::exists(QStringLiteral("/abs.txt")));
}

void tst_OvZip::doesNotFollowLinksOutOfTheTarget()
{
    const QString outside = m_dir->filePath(QStringLiteral("outside"));
    const QString target = m_dir->filePath(QStringLiteral("target"));
    QVERIFY(QDir().mkpath(outside));
    QVERIFY(QDir().mkpath(target));
    QVERIFY(QFile::link(outside, QDir(target).filePath(QStringLiteral("linkdir"))));
    const QString victim = QDir(outside).filePath(QStringLiteral("victim.txt"));
    {
        QFile file(victim);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("untouched");
    }
    QVERIFY(QFile::link(victim, QDir(target).filePath(QStringLiteral("linkfile.txt"))));

    OvZip::Archive archive(makeZip(QStringLiteral("links.zip"),
        { { QStringLiteral("linkdir/new.txt"), "through the link" },
            { QStringLiteral("linkdir/sub/new.txt"), "through the link" },
            { QStringLiteral("linkfile.txt"), "replaced" } }));
    QVERIFY(archive.open(1));
    QVERIFY(!archive.extractToFolder(target));

    QCOMPARE(filesBelow(outside), QStringList { QStringLiteral("victim.txt") });
    QFile original(victim);
    QVERIFY(original.open(QIODevice::ReadOnly));
    QCOMPARE(original.readAll(), QByteArray("untouched"));
    const QFileInfo replaced(QDir(target).filePath(QStringLiteral("linkfile.txt")));
    QVERIFY(!replaced.isSymLink());
    QCOMPARE(replaced.size(), qint64(8));
}

void tst_OvZip::corruptEntryLeavesNoFile()
{
    const QByteArray content(4096, 'x');
    const QString zip
        = makeZip(QStringLiteral("crc.zip"), { { QStringLiteral("data.txt"), content } }, false);
    QVERIFY(!zip.isEmpty());
    QFile file(zip);
    QVERIFY(file.open(QIODevice::ReadWrite));
    QByteArray bytes = file.readAll();
    const int at = bytes.indexOf(content);
    QVERIFY(at > 0);
    bytes[at + 100] = 'y';
    file.seek(0);
    file.write(bytes);
    file.close();

    OvZip::Archive archive(zip);
    QVERIFY(archive.open(1));
    const QString target = m_dir->filePath(QStringLiteral("data.txt"));
    QVERIFY(!archive.extractToFile(QStringLiteral("data.txt"), target));
    QVERIFY(!QFile::exists(target));
    QVERIFY(!archive.extractToFolder(m_dir->filePath(QStringLiteral("folder"))));
    QCOMPARE(filesBelow(m_dir->filePath(QStringLiteral("folder"))), QStringList());
}

void tst_OvZip::unusableArchives_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("mode");
    QTest::newRow("not a zip") << QByteArray("plain text, no archive") << 1;
    QTest::newRow("empty file") << QByteArray() << 1;
    QTest::newRow("truncated end record") << QByteArray("PK\x05\x06\0\0", 6) << 1;
    QTest::newRow("no such file") << QByteArray("-") << 1;
    QTest::newRow("write mode") << QByteArray("valid") << 2;
}

void tst_OvZip::unusableArchives()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, mode);
    QString path = m_dir->filePath(QStringLiteral("bad.zip"));
    if (bytes == "valid") {
        path = makeZip(QStringLiteral("good.zip"), { { QStringLiteral("a.txt"), "a" } });
    } else if (bytes != "-") {
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    OvZip::Archive archive(path);
    QVERIFY(!archive.open(mode));
    QVERIFY(archive.files().isEmpty());
    QVERIFY(!archive.extractToFolder(m_dir->filePath(QStringLiteral("out"))));
    QVERIFY(!archive.extractToFile(QStringLiteral("a.txt"), m_dir->filePath(QStringLiteral("a"))));
    archive.close();
}

QTEST_GUILESS_MAIN(tst_OvZip)
#include "tst_ovzip.moc"
