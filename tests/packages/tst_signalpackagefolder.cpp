#include "repositoryhelpers.h"

#include <radiosim/packages/signalpackagefolder.h>

#include <QtTest>

using namespace Simulation;

namespace {

// "id name timestamp duration [audio] [symbols] [results]".
QString flat(const SignalPackage &package)
{
    return QStringLiteral("%1 %2 %3 %4%5%6%7")
        .arg(package.id(), package.name())
        .arg(package.timestamp())
        .arg(package.duration())
        .arg(package.hasAudioContent() ? " audio" : "")
        .arg(package.hasSymbolDataContent() ? " symbols" : "")
        .arg(package.hasResultDataContent() ? " results" : "");
}

} // namespace

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
            QString("/L/A Alpha 7 3000 audio symbols results"));
        row("symbols without audio", QString("Beta"), descriptor("/L/B"), QStringList { "sdf" },
            true, QString("/L/B Beta 7 3000 symbols"));
        row("name up to the first full stop", QString("a.b"), descriptor("/L/C"), QStringList(),
            true, QString("/L/C a 7 3000"));
        row("shape alone is no package", QString("Shape"), QByteArray(),
            QStringList { "ssf", "wav" }, false, QString(" Shape 0 0 audio"));
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
        QCOMPARE(flat(SignalPackageFolder::signalPackage(path)), package);
    }

    void setSignalPackageWritesTheDescriptor()
    {
        SignalPackage package;
        package.setId("/Written/One");
        package.setDuration(1234);
        const QString folder = m_dir.filePath("Written");
        QVERIFY(QDir().mkpath(folder));
        SignalPackageFolder::setSignalPackage(folder, package);
        QCOMPARE(flat(SignalPackageFolder::signalPackage(folder)),
            QString("/Written/One Written 0 1234"));
        // A folder that doesn't exist takes nothing and reports nothing.
        SignalPackageFolder::setSignalPackage(m_dir.filePath("missing"), package);
        QVERIFY(!QFile::exists(m_dir.filePath("missing")));
    }

private:
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(tst_SignalPackageFolder)
#include "tst_signalpackagefolder.moc"
