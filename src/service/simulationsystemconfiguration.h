#pragma once

#include <radiosim/radiosim_export.h>

#include <QString>

#include <memory>

class ICfg;

namespace Simulation {

// Where the server is, which ports the programs use, and where the repository and the cache
// lie, read from the section "Simulation" of the configuration store at every call, so a
// changed configuration is seen at once. Before loadConfiguation() every getter gives its
// default and the repository functions their null results.
class RADIOSIM_EXPORT SimulationSystemConfiguration
{
public:
    SimulationSystemConfiguration();
    // Frees the handles on the root, "SimulationRepository" and "Ports", in this order.
    ~SimulationSystemConfiguration();
    // Two objects owning the same handles could not both be destroyed.
    SimulationSystemConfiguration(const SimulationSystemConfiguration &) = delete;
    SimulationSystemConfiguration &operator=(const SimulationSystemConfiguration &) = delete;

    // Opens the handles; a second call replaces them.
    void loadConfiguation();

    // Root key "SimulationCache", default the system's temporary directory.
    QString simulationCacheDirectory() const;
    // Root key "SimulationServer", default "127.0.0.1".
    QString simulationServerAddress() const;
    // Keys of "Ports": "SimulationServer" (57401), "SimulationService" (57400) and
    // "SimulationEditor" (57409). A number outside 0 to 65535 gives the default as well.
    quint16 simulationServerPort() const;
    quint16 simulationServicePort() const;
    quint16 simulationSupervisorPort() const;

    // DataStoreFactory on the section "SimulationRepository".
    bool initializeDataStore() const;
    QString fileStoreDir() const;
    QString iconStoreDir() const;
    QString radarStoreDir() const;
    QString signalPackageStoreDir() const;
    QString defaultScenario() const;
    QString defaultSignalPackage() const;

    // Three forms, tried in order:
    // "Coord <longitude> <latitude>", decimal numbers; the only form that answers false.
    // A letter and a number, a blank, a letter and a number ("E8.5 N48.2"): a decimal position
    // as the operator types it.
    // Anything else by fixed columns, "E008 30 15.00 N48 12 30.00": hemisphere letter,
    // degrees, minutes and seconds of each coordinate, the seconds truncated to whole ones;
    // missing columns read as 0 and the answer is true whatever the text.
    static bool coordsFromConfigurationString(
        const QString &text, double &longitude, double &latitude);

private:
    quint16 port(const QString &key, quint16 defaultPort) const;

    std::unique_ptr<ICfg> m_pCfg;
    std::unique_ptr<ICfg> m_pRepositoryCfg;
    std::unique_ptr<ICfg> m_pPortsCfg;
};

} // namespace Simulation
