#include "repositoryhelpers.h"

#include <radiosim/packages/signalpackagefolder.h>

#include <QtTest>

using namespace Simulation;

class tst_SignalPackageFolder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { QVERIFY(m_dir.isValid()); }

    // The folder's name wins over the descriptor's; the flags come from the files alone.
    void packages_data()
    {
        columns<QString, QByteArray, QStringList, bool, QString>(
            "folder", "xml", "contents", "valid", "package");
        row("every file", QString("Alpha"), descriptor("/L/A"),
            QStringList { "ssf", "wav", "sdf", "rdf" }, true,
            QString("/L/A t7 [] Alpha/ bw0 m0 '' d3000 111"));
        row("symbols without audio", QString("Beta"), descriptor("/L/B"), QStringList { "sdf" },
            true, QString("/L/B t7 [] Beta/ bw0 m0 '' d3000 010"));
        row("name up to the first full stop", QString("a.b"), descriptor("/L/C"), QStringList(),
            true, QString("/L/C t7 [] a/ bw0 m0 '' d3000 000"));
        row("shape alone is no package", QString("Shape"), QByteArray(),
            QStringList { "ssf", "wav" }, false, QString(" t0 [] Shape/ bw0 m0 '' d0 100"));
    }

    void packages()
    {
        QFETCH(QString, folder);
        QFETCH(QByteArray, xml);
        QFETCH(QStringList, contents);
        QFETCH(bool, valid);
        QFETCH(QString, package);
        const QString path = m_dir.filePath(folder);
        QVERIFY(writePackage(path, xml, 1, contents));
        if (xml.isEmpty())
            QVERIFY(QFile::remove(path + "/Signal.xml"));
        QCOMPARE(SignalPackageFolder::isValid(path), valid);
        QCOMPARE(describe(SignalPackageFolder::signalPackage(path)), package);
    }

    void setSignalPackageWritesTheDescriptor()
    {
        SignalPackage package;
        package.setId("/Written/One");
        package.setDuration(1234);
        const QString folder = m_dir.filePath("Written");
        QVERIFY(QDir().mkpath(folder));
        SignalPackageFolder::setSignalPackage(folder, package);
        QCOMPARE(describe(SignalPackageFolder::signalPackage(folder)),
            QString("/Written/One t0 [] Written/ bw0 m0 '' d1234 000"));
        // A folder that doesn't exist takes nothing and reports nothing.
        SignalPackageFolder::setSignalPackage(m_dir.filePath("missing"), package);
        QVERIFY(!QFile::exists(m_dir.filePath("missing")));
    }

private:
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(tst_SignalPackageFolder)
#include "tst_signalpackagefolder.moc"
