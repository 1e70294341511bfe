#include "simulationsystemconfiguration.h"

#include <radiosim/packages/datastorefactory.h>
#include <radiosim/platform/cfgcenter.h>
#include <radiosim/platform/georef.h>
#include <radiosim/units/units.h>

#include <QDir>
#include <QLocale>
#include <QRegExp>

namespace Simulation {

namespace {

const QString simulationSection = QStringLiteral("Simulation");
const QString repositorySection = QStringLiteral("SimulationRepository");
const QString portsSection = QStringLiteral("Ports");
const QString cacheKey = QStringLiteral("SimulationCache");
const QString serverKey = QStringLiteral("SimulationServer");
const QString serviceKey = QStringLiteral("SimulationService");
const QString editorKey = QStringLiteral("SimulationEditor");
const QString defaultServerAddress = QStringLiteral("127.0.0.1");

// Whole seconds; a number no int holds (or none at all) is 0.
int wholeSeconds(double seconds)
{
    return seconds > -2147483648.0 && seconds < 2147483648.0 ? int(seconds) : 0;
}

// One coordinate of the column form: hemisphere letter, degrees, minutes and seconds start at
// these columns of the text.
double sexagesimalColumns(const QString &text, int letter, int degrees, int degreeWidth)
{
    const QByteArray hemisphere = text.mid(letter, 1).toLatin1();
    const int minutes = degrees + degreeWidth + 1;
    return Georef::sexagesimalToDecimal(text.mid(degrees, degreeWidth).toInt(),
        text.mid(minutes, 2).toInt(), wholeSeconds(text.mid(minutes + 3, 5).toDouble()),
        hemisphere.isEmpty() ? '\0' : hemisphere.at(0));
}

} // namespace

SimulationSystemConfiguration::SimulationSystemConfiguration() = default;

SimulationSystemConfiguration::~SimulationSystemConfiguration()
{
    m_pCfg.reset();
    m_pRepositoryCfg.reset();
    m_pPortsCfg.reset();
}

void SimulationSystemConfiguration::loadConfiguation()
{
    m_pCfg.reset(CfgCenter::CreateCfg(simulationSection, CfgCenter::ViewSystem, QString()));
    m_pRepositoryCfg.reset(m_pCfg ? m_pCfg->OpenSection(repositorySection, 0) : nullptr);
    m_pPortsCfg.reset(m_pCfg ? m_pCfg->OpenSection(portsSection, 0) : nullptr);
}

QString SimulationSystemConfiguration::simulationCacheDirectory() const
{
    return m_pCfg ? m_pCfg->GetString(cacheKey, QDir::tempPath(), 0) : QDir::tempPath();
}

QString SimulationSystemConfiguration::simulationServerAddress() const
{
    return m_pCfg ? m_pCfg->GetString(serverKey, defaultServerAddress, 0) : defaultServerAddress;
}

quint16 SimulationSystemConfiguration::port(const QString &key, quint16 defaultPort) const
{
    if (!m_pPortsCfg)
        return defaultPort;
    const double number = m_pPortsCfg->GetNumber(key, defaultPort, 0);
    // Negated test, so that NaN is refused too.
    if (!(number >= 0.0 && number < 65536.0))
        return defaultPort;
    return quint16(number);
}

quint16 SimulationSystemConfiguration::simulationServerPort() const
{
    return port(serverKey, 57401);
}

quint16 SimulationSystemConfiguration::simulationServicePort() const
{
    return port(serviceKey, 57400);
}

quint16 SimulationSystemConfiguration::simulationSupervisorPort() const
{
    return port(editorKey, 57409);
}

bool SimulationSystemConfiguration::initializeDataStore() const
{
    return DataStoreFactory::initializeDataStore(m_pRepositoryCfg.get());
}

QString SimulationSystemConfiguration::fileStoreDir() const
{
    return DataStoreFactory::fileStoreDir(m_pRepositoryCfg.get());
}

QString SimulationSystemConfiguration::iconStoreDir() const
{
    return DataStoreFactory::iconStoreDir(m_pRepositoryCfg.get());
}

QString SimulationSystemConfiguration::radarStoreDir() const
{
    return DataStoreFactory::radarStoreDir(m_pRepositoryCfg.get());
}

QString SimulationSystemConfiguration::signalPackageStoreDir() const
{
    return DataStoreFactory::signalPackageStoreDir(m_pRepositoryCfg.get());
}

QString SimulationSystemConfiguration::defaultScenario() const
{
    return DataStoreFactory::defaultScenario(fileStoreDir());
}

QString SimulationSystemConfiguration::defaultSignalPackage() const
{
    return DataStoreFactory::defaultSignalPackage(signalPackageStoreDir());
}

bool SimulationSystemConfiguration::coordsFromConfigurationString(
    const QString &text, double &longitude, double &latitude)
{
    QRegExp decimal(QStringLiteral("Coord\\s(.*)\\s(.*)"));
    if (decimal.exactMatch(text)) {
        longitude = decimal.cap(1).toDouble();
        latitude = decimal.cap(2).toDouble();
        return false;
    }
    if (QRegExp(QStringLiteral("(\\w)([\\d\\.,]+) (\\w)([\\d\\.,]+)")).exactMatch(text)) {
        const Units::Position_t position
            = Units::Position::fromString(text, Units::Position::FormatDecimal, QLocale());
        longitude = position.longitude;
        latitude = position.latitude;
        return true;
    }
    longitude = sexagesimalColumns(text, 0, 1, 3);
    latitude = sexagesimalColumns(text, 14, 15, 2);
    return true;
}

} // namespace Simulation
