#include <radiosim/platform/cfgcenter.h>

#include "testhelpers.h"

#include <QtTest>

#include <memory>

using Cfg = std::unique_ptr<ICfg>;

namespace {

// Reached the way the library does: CreateCfg on the top section, then OpenSection for every
// further level of the '/'-separated path.
Cfg open(const QString &path)
{
    const QStringList levels = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    Cfg cfg(CfgCenter::CreateCfg(levels.value(0), CfgCenter::ViewSystem, QString()));
    for (int i = 1; i < levels.size(); ++i)
        cfg.reset(cfg->OpenSection(levels[i], 0));
    return cfg;
}

} // namespace

class tst_CfgCenter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QStandardPaths::setTestModeEnabled(true);
        QVERIFY(m_dir.isValid());
        m_file = m_dir.filePath("radiosim.ini");
        QVERIFY(!writeFile(m_file,
            "[Simulation]\nSimulationServer=127.0.0.2\nSimulationCache=/var/cache/radiosim\n"
            "Label=Stra\xc3\x9f\x65 \xe6\x9d\xb1\nListed=one, two\nPort=not a number\n\n"
            "[Simulation/Ports]\nSimulationServer=1234\nFraction=2.5\n\n"
            "[Simulation/SimulationRepository/FileSystem]\nRepository=/srv/repository\n")
                     .isEmpty());
        CfgCenter::setConfigurationFile(QString());
        QCOMPARE(CfgCenter::configurationFile(),
            QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
                + QStringLiteral("/radiosim/radiosim.ini"));
        CfgCenter::setConfigurationFile(m_file);
    }

    void readsHandWrittenFile()
    {
        const std::tuple<QString, QString, QString, double> reads[] = {
            { "Simulation", "Label", "Straße 東", -1.0 },
            { "Simulation", "Listed", "one, two", -1.0 }, // unquoted comma
            { "Simulation", "SimulationEditor", "default", -1.0 },
            { "Simulation", "Port", "not a number", -1.0 },
            { "Simulation/Ports", "Fraction", "2.5", 2.5 },
            { "Simulation/SimulationRepository/FileSystem", "Repository", "/srv/repository", -1.0 },
            { "Simulation/Nowhere", "SimulationServer", "default", -1.0 },
            { "Simulation/Ports", "SimulationCache", "default", -1.0 }, // not inherited
            { "", "Simulation/Ports/SimulationServer", "1234", 1234.0 }, // from the root
        };
        for (const auto &[section, key, text, number] : reads) {
            const Cfg cfg = open(section);
            const QByteArray where = (section + QLatin1Char(':') + key).toUtf8();
            QVERIFY2(cfg->GetString(key, QStringLiteral("default"), 0) == text, where);
            QVERIFY2(cfg->GetNumber(key, -1.0, 0) == number, where);
        }
    }

    // A section exists when it holds a key, directly or below; the empty name is the section.
    void sectionExists()
    {
        const Cfg simulation = open("Simulation");
        const QPair<QString, bool> names[] = { { "Ports", true }, { "SimulationRepository", true },
            { "SimulationRepository/FileSystem", true }, { "FileSystem", false },
            { "SimulationServer", false }, { "", true } };
        for (const auto &[name, exists] : names)
            QVERIFY2(simulation->SectionExists(name, 0) == exists, qPrintable(name));
    }

    // A handle keeps the file it was made with and sees every later change to it, its own
    // writes, another handle's, and another writer's.
    void handlesSeeChangesToTheirFile()
    {
        const QString file = m_dir.filePath("written/settings.ini");
        CfgCenter::setConfigurationFile(file);
        const Cfg reader = open("Tool/Ports");
        open("Tool/Ports")->SetValue("Service", 57400);
        CfgCenter::setConfigurationFile(m_file);
        reader->SetValue("Path", "C:\\data, with comma");
        QCOMPARE(reader->GetNumber("Service", 0.0, 0), 57400.0);
        QCOMPARE(reader->GetString("Path", QString(), 0), QStringLiteral("C:\\data, with comma"));
        QCOMPARE(QSettings(file, QSettings::IniFormat).value("Tool/Ports/Service").toInt(), 57400);
        QVERIFY(!writeFile(file, "[Tool/Ports]\nService=1\n").isEmpty());
        QCOMPARE(reader->GetNumber("Service", 0.0, 0), 1.0);
    }

    void machineIdIsStable()
    {
        const QString id = CfgCenter::GetMachineId();
        QVERIFY2(QRegExp("[0-9A-F]{16}").exactMatch(id) && CfgCenter::GetMachineId() == id,
            qPrintable(id));
    }

private:
    QTemporaryDir m_dir;
    QString m_file;
};

QTEST_GUILESS_MAIN(tst_CfgCenter)
#include "tst_cfgcenter.moc"
