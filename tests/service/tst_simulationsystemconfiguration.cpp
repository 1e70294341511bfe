#include <radiosim/platform/cfgcenter.h>
#include <radiosim/service/simulationsystemconfiguration.h>

#include "datafiles/datafiletesthelpers.h"

#include <QtTest>

using namespace Simulation;

namespace {

const char failureLine[] = "Simulation System: There is an error in your simulation repository "
                           "configuration. The repository is either not accessible or not "
                           "writable!";

QString answers(const SimulationSystemConfiguration &configuration)
{
    return QStringLiteral("%1|%2|%3|%4|%5")
        .arg(configuration.simulationCacheDirectory(), configuration.simulationServerAddress())
        .arg(configuration.simulationServerPort())
        .arg(configuration.simulationServicePort())
        .arg(configuration.simulationSupervisorPort());
}

} // namespace

class tst_SimulationSystemConfiguration : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_file = m_dir.filePath(QStringLiteral("radiosim.ini"));
        CfgCenter::setConfigurationFile(m_file);
    }

    void gettersReadTheirKeys_data()
    {
        const QString defaults = QDir::tempPath() + QStringLiteral("|127.0.0.1|57401|57400|57409");
        columns<QByteArray, QString>("ini", "expected");
        row("no file", QByteArray(), defaults);
        row("not INI", QByteArray("\x89PNG\r\n\x1a\n\0\0[[=\xff\n=\n", 14), defaults);
        row("all set",
            QByteArray("[Simulation]\nSimulationCache=/var/cache/sim\nSimulationServer=10.0.0.7\n"
                       "[Simulation/Ports]\nSimulationServer=1\nSimulationService=2\n"
                       "SimulationEditor=65535\n"),
            QStringLiteral("/var/cache/sim|10.0.0.7|1|2|65535"));
        // The supervisor port is the editor's key; ports are not taken from the root.
        row("wrong places",
            QByteArray("[Simulation]\nSimulationService=1\n[Simulation/Ports]\n"
                       "SimulationSupervisor=2\nSimulationCache=/x\n"),
            defaults);
        row("no ports",
            QByteArray("[Simulation/Ports]\nSimulationServer=65536\nSimulationService=-1\n"
                       "SimulationEditor=port\n"),
            defaults);
    }

    void gettersReadTheirKeys()
    {
        QFETCH(QByteArray, ini);
        QFile::remove(m_file);
        QVERIFY(ini.isNull() || !writeFile(m_file, ini).isEmpty());
        SimulationSystemConfiguration configuration;
        configuration.loadConfiguation();
        QTEST(answers(configuration), "expected");
    }

    // The handles read the store at every call, and a second load replaces them.
    void changesAreSeenAtTheNextCall()
    {
        QVERIFY(!writeFile(m_file, "[Simulation/Ports]\nSimulationService=1\n").isEmpty());
        SimulationSystemConfiguration configuration;
        configuration.loadConfiguation();
        QCOMPARE(configuration.simulationServicePort(), quint16(1));
        QVERIFY(!writeFile(m_file, "[Simulation/Ports]\nSimulationService=22\n").isEmpty());
        QCOMPARE(configuration.simulationServicePort(), quint16(22));
        configuration.loadConfiguation();
        QCOMPARE(configuration.simulationServicePort(), quint16(22));
    }

    // Before loadConfiguation() nothing is read; without a QApplication the one message of
    // the data store is a trace line.
    void repositoryBelowItsSection()
    {
        const QString root = m_dir.filePath(QStringLiteral("repository"));
        QVERIFY(!writeFile(m_file,
            "[Simulation/SimulationRepository/FileSystem]\nRepository=" + root.toUtf8() + "\n")
                     .isEmpty());
        SimulationSystemConfiguration configuration;
        QTest::ignoreMessage(QtCriticalMsg, failureLine);
        QVERIFY(!configuration.initializeDataStore());
        QCOMPARE(answers(configuration), QDir::tempPath() + "|127.0.0.1|57401|57400|57409");
        QVERIFY(configuration.fileStoreDir().isNull());

        configuration.loadConfiguation();
        const QString files = root + QDir::separator() + "Files";
        QCOMPARE(configuration.radarStoreDir(), root + QDir::separator() + "Radar");
        QCOMPARE(configuration.defaultScenario(), files + "/Varnow-Heide/Default.scexml");
        QCOMPARE(configuration.defaultSignalPackage(),
            root + QDir::separator() + "SignalPackages/VuH-Default/Default");
        QTest::ignoreMessage(QtCriticalMsg, failureLine);
        QVERIFY(!configuration.initializeDataStore());
        QVERIFY(QDir().mkpath(root) && configuration.initializeDataStore());
        QVERIFY(QFileInfo(configuration.iconStoreDir()).isDir()
            && QFileInfo(configuration.signalPackageStoreDir()).isDir()
            && QFileInfo(files).isDir());
    }

    void coordsFromConfigurationString_data()
    {
        columns<QString, QString>("text", "expected");
        row("decimal", QStringLiteral("Coord 8.5 48.2"), QStringLiteral("8.5 48.2 false"));
        row("decimal, comma", QStringLiteral("Coord 8,5 -48.2"), QStringLiteral("0 -48.2 false"));
        row("decimal, letters", QStringLiteral("Coord east north"), QStringLiteral("0 0 false"));
        row("letter and number", QStringLiteral("E8.5 N48.2"), QStringLiteral("8.5 48.2 true"));
        row("letter and number, west", QStringLiteral("W8.5 S48.2"),
            QStringLiteral("-8.5 -48.2 true"));
        // The fraction of the seconds is dropped.
        row("columns", QStringLiteral("E008 30 15.75 N48 12 30.00"),
            QStringLiteral("8.504166667 48.20833333 true"));
        row("columns, west and south", QStringLiteral("W122 15 00.00 S33 52 12.00"),
            QStringLiteral("-122.25 -33.87 true"));
        row("columns, cut short", QStringLiteral("E008 30 15"),
            QStringLiteral("8.504166667 0 true"));
        // The letter-and-number form comes first.
        row("columns, cut to a letter and a number twice", QStringLiteral("E008 30"),
            QStringLiteral("8 30 true"));
        row("columns, letters", QStringLiteral("Exx8 3y zz.zz Nab cd ef.gh"),
            QStringLiteral("0 0 true"));
        row("columns, seconds no int holds", QStringLiteral("E008 30 9e99  N48 12 inf  "),
            QStringLiteral("8.5 48.2 true"));
        row("empty", QString(), QStringLiteral("0 0 true"));
    }

    void coordsFromConfigurationString()
    {
        QFETCH(QString, text);
        double longitude = -1.0;
        double latitude = -1.0;
        const bool result = SimulationSystemConfiguration::coordsFromConfigurationString(
            text, longitude, latitude);
        QTEST(QStringLiteral("%1 %2 %3")
                  .arg(longitude, 0, 'g', 10)
                  .arg(latitude, 0, 'g', 10)
                  .arg(result ? "true" : "false"),
            "expected");
    }

private:
    QTemporaryDir m_dir;
    QString m_file;
};

QTEST_GUILESS_MAIN(tst_SimulationSystemConfiguration)
#include "tst_simulationsystemconfiguration.moc"
