#include <radiosim/platform/ovzip.h>

#include "testhelpers.h"

#include <QtTest>

using Entries = QList<QPair<QString, QByteArray>>;

namespace {

// Every file and folder below folder, relative to it, sorted.
QStringList filesBelow(const QString &folder)
{
    QStringList found;
    QDirIterator it(folder, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System,
        QDirIterator::Subdirectories);
    while (it.hasNext())
        found.append(QDir(folder).relativeFilePath(it.next()));
    found.sort();
    return found;
}

bool succeeds(const QString &program, const QStringList &arguments, const QByteArray &input = {})
{
    return runTool(program, arguments, input) != "(failed)";
}

} // namespace

// Archives are built by Python's zipfile and checked with unzip -t, so the fixtures come from
// tools nobody here wrote; hostile names are stored exactly as given. A fixture that could not
// be built comes back as an empty path, which the following open() refuses.
class tst_OvZip : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        for (const char *tool : { "python3", "unzip" })
            QVERIFY2(!QStandardPaths::findExecutable(tool).isEmpty(), tool);
        QRandomGenerator random(17); // more than one read chunk, and incompressible
        for (int i = 0; i < 200 * 1024; ++i)
            m_binary.append(char(random.bounded(256)));
    }

    void init()
    {
        m_dir.reset(new QTemporaryDir);
        QVERIFY(m_dir->isValid());
    }

    void listsAndExtractsEveryEntryOrOneFolderAndRepairsOnRepeat()
    {
        const Entries entries
            = { { "a.txt", "alpha" }, { "empty/", {} }, { "Grüße/東京.txt", "utf" }, { "sub/", {} },
                  { "sub/data.bin", m_binary }, { "sub/deeper/c.txt", "gamma" } };
        OvZip::Archive archive(makeZip("all.zip", entries));
        QVERIFY(archive.open(OvZip::Archive::ZipRead));
        QCOMPARE(archive.files(),
            QStringList({ "a.txt", "empty/", "Grüße/東京.txt", "sub/", "sub/data.bin",
                "sub/deeper/c.txt" }));
        const QString one = m_dir->filePath("one/by/one.txt");
        QVERIFY(archive.extractToFile("Grüße/東京.txt", one) && contentOf(one) == "utf");
        QVERIFY(!archive.extractToFile("missing.txt", one + QLatin1Char('2')));

        const QDir target(m_dir->filePath("out"));
        const auto checkComplete = [&] {
            QCOMPARE(filesBelow(target.path()),
                QStringList({ "Grüße", "Grüße/東京.txt", "a.txt", "empty", "sub", "sub/data.bin",
                    "sub/deeper", "sub/deeper/c.txt" }));
            for (const auto &[name, content] : entries) {
                if (!name.endsWith(QLatin1Char('/')))
                    QCOMPARE(contentOf(target.filePath(name)), content);
            }
        };
        QVERIFY(archive.extractToFolder(target.path()));
        checkComplete();
        // A damaged earlier unpack: one file gone, one truncated, one made read-only.
        QVERIFY(QFile::remove(target.filePath("sub/deeper/c.txt")));
        QVERIFY(QFile::resize(target.filePath("sub/data.bin"), 10));
        QVERIFY(QFile::setPermissions(target.filePath("a.txt"), QFileDevice::ReadOwner));
        QVERIFY(archive.extractToFolder("/", target.path()));
        checkComplete();

        // One folder, named with or without slashes; a prefix of a name or another case is none.
        const QStringList inner = { "data.bin", "deeper", "deeper/c.txt" };
        const QPair<QString, QStringList> folders[]
            = { { "/sub", inner }, { "sub/", inner }, { "/su", {} }, { "/SUB", {} } };
        const QString folderTarget = m_dir->filePath("SignalPackages/sub");
        for (const auto &[folder, files] : folders) {
            QVERIFY(QDir(folderTarget).removeRecursively());
            QVERIFY2(archive.extractToFolder(folder, folderTarget) == !files.isEmpty(),
                qPrintable(folder));
            QCOMPARE(filesBelow(folderTarget), files);
        }

        archive.close();
        QVERIFY(archive.files().isEmpty() && !archive.extractToFile("a.txt", one));
    }

    // Hostile names between good entries, and links in the target that lead out of it: the good
    // entries are unpacked, the answers are false, and nothing outside the target changes.
    void writesNothingOutsideTheTarget()
    {
        const QDir outside(m_dir->filePath("outside"));
        const QDir target(m_dir->filePath("deep/target"));
        QVERIFY(QDir().mkpath(outside.path()) && QDir().mkpath(target.path()));
        QVERIFY(!writeFile(outside.filePath("victim.txt"), "untouched").isEmpty());
        QVERIFY(QFile::link(outside.path(), target.filePath("linkdir")));
        QVERIFY(QFile::link(outside.filePath("victim.txt"), target.filePath("linkfile.txt")));
        QVERIFY(!QFile::exists("/abs.txt"));

        const QStringList hostile = { "../evil.txt", "/abs.txt", "sub/../../evil.txt",
            "..\\evil.txt", "C:/evil.txt", ".." };
        Entries entries = { { "good.txt", "good" }, { "sub/after.txt", "after" } };
        for (const QString &name : hostile)
            entries.insert(1, { name, "evil" });
        OvZip::Archive archive(makeZip("hostile.zip", entries));
        QVERIFY(archive.open(1));
        QVERIFY(!archive.extractToFolder(target.path()));
        for (const QString &name : hostile)
            QVERIFY2(!archive.extractToFile(name, target.filePath(name)), qPrintable(name));
        OvZip::Archive links(makeZip("links.zip",
            { { "linkdir/new.txt", "evil" }, { "linkdir/sub/new.txt", "evil" },
                { "linkfile.txt", "replaced" } }));
        QVERIFY(links.open(1));
        QVERIFY(!links.extractToFolder(target.path()));

        QCOMPARE(filesBelow(m_dir->path()),
            QStringList({ "deep", "deep/target", "deep/target/good.txt", "deep/target/linkdir",
                "deep/target/linkfile.txt", "deep/target/sub", "deep/target/sub/after.txt",
                "hostile.zip", "links.zip", "outside", "outside/victim.txt" }));
        QCOMPARE(contentOf(outside.filePath("victim.txt")), QByteArray("untouched"));
        QVERIFY(!QFileInfo(target.filePath("linkfile.txt")).isSymLink()
            && contentOf(target.filePath("linkfile.txt")) == "replaced");
        QVERIFY(!QFile::exists("/abs.txt"));
    }

    // A stored entry whose bytes no longer match its CRC, and entries that would unpack past
    // 1 GiB (deflated 230:1) or past 1000 times their packed size (zeros, 1027:1), leave no file
    // behind; their neighbour is unpacked.
    void corruptAndOversizedEntriesLeaveNoFile()
    {
        const QString zip = m_dir->filePath("bad.zip");
        const char *script = "import sys, zipfile\n"
                             "with zipfile.ZipFile(sys.argv[1], 'w', zipfile.ZIP_DEFLATED, "
                             "compresslevel=1) as z:\n"
                             "    with z.open('big.bin', 'w') as f:\n"
                             "        for n in range(1025): f.write(bytes(1 << 20))\n"
                             "    z.writestr('zeros.bin', bytes(10 << 20), compresslevel=9)\n"
                             "    z.writestr('data.txt', b'x' * 4096, zipfile.ZIP_STORED)\n"
                             "    z.writestr('ok.txt', b'ok')\n";
        QVERIFY(succeeds("python3", { "-c", script, zip }));
        QByteArray bytes = contentOf(zip);
        const int at = bytes.indexOf(QByteArray(4096, 'x'));
        QVERIFY(at > 0);
        bytes[at + 100] = 'y';
        QVERIFY(!writeFile(zip, bytes).isEmpty());

        OvZip::Archive archive(zip);
        QVERIFY(archive.open(OvZip::Archive::ZipRead));
        for (const QString entry : { "big.bin", "zeros.bin", "data.txt" }) {
            const QString target = m_dir->filePath(entry);
            QVERIFY2(
                !archive.extractToFile(entry, target) && !QFile::exists(target), qPrintable(entry));
        }
        QVERIFY(!archive.extractToFolder(m_dir->filePath("out")));
        QCOMPARE(filesBelow(m_dir->filePath("out")), QStringList({ "ok.txt" }));
    }

    // Empty, a truncated end record, no file at all, and a mode other than reading.
    void unusableArchives()
    {
        const QPair<QString, int> archives[] = {
            { writeFile(m_dir->filePath("empty.zip"), QByteArray()), 1 },
            { writeFile(m_dir->filePath("end.zip"), QByteArray("PK\x05\x06\0\0", 6)), 1 },
            { m_dir->filePath("missing.zip"), 1 },
            { makeZip("good.zip", { { "a.txt", "a" } }), 2 },
        };
        for (const auto &[path, mode] : archives) {
            QVERIFY(!path.isEmpty());
            OvZip::Archive archive(path);
            QVERIFY2(!archive.open(mode), qPrintable(path));
            QVERIFY(archive.files().isEmpty() && !archive.extractToFolder(m_dir->filePath("out"))
                && !archive.extractToFile("a.txt", m_dir->filePath("a")));
            archive.close();
        }
    }

private:
    // Entry names as given, deflated.
    QString makeZip(const QString &name, const Entries &entries)
    {
        QJsonArray list;
        for (const auto &[entry, content] : entries)
            list.append(QJsonArray { entry, QString::fromLatin1(content.toBase64()) });
        const QString path = m_dir->filePath(name);
        const char *script
            = "import base64, json, sys, zipfile\n"
              "with zipfile.ZipFile(sys.argv[1], 'w') as z:\n"
              "    for n, d in json.load(sys.stdin):\n"
              "        z.writestr(zipfile.ZipInfo(n), base64.b64decode(d), zipfile.ZIP_DEFLATED)\n";
        return succeeds("python3", { "-c", script, path }, QJsonDocument(list).toJson())
                && succeeds("unzip", { "-tqq", path })
            ? path
            : QString();
    }

    QScopedPointer<QTemporaryDir> m_dir;
    QByteArray m_binary;
};

QTEST_GUILESS_MAIN(tst_OvZip)
#include "tst_ovzip.moc"
