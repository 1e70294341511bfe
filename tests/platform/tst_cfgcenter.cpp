#include <radiosim/platform/cfgcenter.h>

#include <QtTest>

#include <memory>

using Cfg = std::unique_ptr<ICfg>;

class tst_CfgCenter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void defaultFileIsPerUser();
    void readsHandWrittenFile_data();
    void readsHandWrittenFile();
    void sectionExists_data();
    void sectionExists();
    void writtenValuesReachTheFileAndOtherHandles();
    void changesOnDiskAreSeenByOpenHandles();
    void machineIdIsStableAndAlphanumeric();

private:
    Cfg open(const QStringList &path) const;
    QTemporaryDir m_dir;
    QString m_file;
};

void tst_CfgCenter::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QVERIFY(m_dir.isValid());
    m_file = m_dir.filePath(QStringLiteral("radiosim.ini"));
    QFile file(m_file);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[Simulation]\n"
               "SimulationServer=127.0.0.2\n"
               "SimulationCache=/var/cache/radiosim\n"
               "Label=Stra\xc3\x9f\x65 \xe6\x9d\xb1\n"
               "Listed=one, two\n"
               "Port=not a number\n"
               "\n"
               "[Simulation/Ports]\n"
               "SimulationServer=1234\n"
               "Fraction=2.5\n"
               "\n"
               "[Simulation/SimulationRepository/FileSystem]\n"
               "Repository=/srv/repository\n");
    file.close();
    CfgCenter::setConfigurationFile(m_file);
}

void tst_CfgCenter::defaultFileIsPerUser()
{
    CfgCenter::setConfigurationFile(QString());
    const QString expected = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/radiosim/radiosim.ini");
    QCOMPARE(CfgCenter::configurationFile(), expected);
    CfgCenter::setConfigurationFile(m_file);
    QCOMPARE(CfgCenter::configurationFile(), m_file);
}

// Each handle is reached the way the library does: CreateCfg on the top section, then
// OpenSection for every further level.
Cfg tst_CfgCenter::open(const QStringList &path) const
{
    Cfg cfg(CfgCenter::CreateCfg(path.value(0), CfgCenter::ViewSystem, QString()));
    for (int i = 1; i < path.size(); ++i)
        cfg.reset(cfg->OpenSection(path[i], 0));
    return cfg;
}

void tst_CfgCenter::readsHandWrittenFile_data()
{
    QTest::addColumn<QStringList>("section");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("number");
    const QStringList simulation { QStringLiteral("Simulation") };
    const QStringList ports { QStringLiteral("Simulation"), QStringLiteral("Ports") };
    const QStringList fileSystem { QStringLiteral("Simulation"),
        QStringLiteral("SimulationRepository"), QStringLiteral("FileSystem") };
    const QStringList missing { QStringLiteral("Simulation"), QStringLiteral("Nowhere") };
    QTest::newRow("text") << simulation << "SimulationServer"
                          << "127.0.0.2" << -1.0;
    QTest::newRow("UTF-8 text") << simulation << "Label" << QStringLiteral("Straße 東") << -1.0;
    QTest::newRow("unquoted comma") << simulation << "Listed"
                                    << "one, two" << -1.0;
    QTest::newRow("missing key") << simulation << "SimulationEditor"
                                 << "default" << -1.0;
    QTest::newRow("not a number") << simulation << "Port"
                                  << "not a number" << -1.0;
    QTest::newRow("nested number") << ports << "SimulationServer"
                                   << "1234" << 1234.0;
    QTest::newRow("nested fraction") << ports << "Fraction"
                                     << "2.5" << 2.5;
    QTest::newRow("three levels") << fileSystem << "Repository"
                                  << "/srv/repository" << -1.0;
    QTest::newRow("missing section") << missing << "SimulationServer"
                                     << "default" << -1.0;
    QTest::newRow("parent's key is not inherited") << ports << "SimulationCache"
                                                   << "default" << -1.0;
    QTest::newRow("root handle") << QStringList() << "Simulation/Ports/SimulationServer"
                                 << "1234" << 1234.0;
}

void tst_CfgCenter::readsHandWrittenFile()
{
    QFETCH(QStringList, section);
    QFETCH(QString, key);
    QFETCH(QString, text);
    QFETCH(double, number);
    const Cfg cfg = open(section);
    QCOMPARE(cfg->GetString(key, QStringLiteral("default"), 0), text);
    QCOMPARE(cfg->GetNumber(key, -1.0, 0), number);
}

void tst_CfgCenter::sectionExists_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("exists");
    QTest::newRow("with keys") << "Ports" << true;
    QTest::newRow("only sub-sections") << "SimulationRepository" << true;
    QTest::newRow("nested by path") << "SimulationRepository/FileSystem" << true;
    QTest::newRow("missing") << "FileSystem" << false;
    QTest::newRow("a key is no section") << "SimulationServer" << false;
    QTest::newRow("empty name") << "" << true;
}

void tst_CfgCenter::sectionExists()
{
    QFETCH(QString, name);
    QFETCH(bool, exists);
    QCOMPARE(open({ QStringLiteral("Simulation") })->SectionExists(name, 0), exists);
}

void tst_CfgCenter::writtenValuesReachTheFileAndOtherHandles()
{
    const QString file = m_dir.filePath(QStringLiteral("written/settings.ini"));
    CfgCenter::setConfigurationFile(file);
    {
        const Cfg ports = open({ QStringLiteral("Tool"), QStringLiteral("Ports") });
        ports->SetValue(QStringLiteral("Service"), 57400);
        ports->SetValue(QStringLiteral("Path"), QStringLiteral("C:\\data, with comma"));
    }
    const Cfg reread = open({ QStringLiteral("Tool"), QStringLiteral("Ports") });
    QCOMPARE(reread->GetNumber(QStringLiteral("Service"), 0.0, 0), 57400.0);
    QCOMPARE(reread->GetString(QStringLiteral("Path"), QString(), 0),
        QStringLiteral("C:\\data, with comma"));

    QSettings independent(file, QSettings::IniFormat);
    QCOMPARE(independent.value(QStringLiteral("Tool/Ports/Service")).toInt(), 57400);
    CfgCenter::setConfigurationFile(m_file);
}

void tst_CfgCenter::changesOnDiskAreSeenByOpenHandles()
{
    const QString file = m_dir.filePath(QStringLiteral("changing.ini"));
    const auto writeFile = [&](const QByteArray &content) {
        QFile out(file);
        QVERIFY(out.open(QIODevice::WriteOnly | QIODevice::Truncate));
        out.write(content);
    };
    writeFile("[Simulation]\nSimulationServer=127.0.0.2\n");
    CfgCenter::setConfigurationFile(file);
    const Cfg cfg = open({ QStringLiteral("Simulation") });
    CfgCenter::setConfigurationFile(m_file);
    QCOMPARE(cfg->GetString(QStringLiteral("SimulationServer"), QString(), 0),
        QStringLiteral("127.0.0.2"));

    writeFile("[Simulation]\nSimulationServer=localhost.localdomain\n");
    QCOMPARE(cfg->GetString(QStringLiteral("SimulationServer"), QString(), 0),
        QStringLiteral("localhost.localdomain"));
}

void tst_CfgCenter::machineIdIsStableAndAlphanumeric()
{
    const QString id = CfgCenter::GetMachineId();
    QVERIFY(!id.isEmpty());
    QVERIFY2(QRegExp(QStringLiteral("[0-9A-Za-z]+")).exactMatch(id), qPrintable(id));
    QCOMPARE(CfgCenter::GetMachineId(), id);
}

QTEST_GUILESS_MAIN(tst_CfgCenter)
#include "tst_cfgcenter.moc"
