#pragma once

#include <radiosim/radiosim_export.h>

#include <QByteArray>
#include <QString>

namespace Simulation {

// Travels as its decimal number; a reader accepts any int, also values not listed here.
enum ScenarioDataState : int {
    ScenarioDataNone = 0,
    ScenarioDataLoading = 1,
    ScenarioDataLoaded = 2,
    ScenarioDataError = 3
};

// Who a simulation device is and where it stands. Positions in decimal degrees; they cross
// the wire with six significant digits and lose precision each time.
class RADIOSIM_EXPORT SimulationDeviceConfiguration
{
public:
    QString id() const;
    void setId(const QString &sId);
    QString name() const;
    void setName(const QString &sName);
    QString deviceType() const;
    void setDeviceType(const QString &sDeviceType);
    QString stationId() const;
    void setStationId(const QString &sStationId);
    QString stationName() const;
    void setStationName(const QString &sStationName);
    QString machine() const;
    void setMachine(const QString &sMachine);
    QString machineId() const;
    void setMachineId(const QString &sMachineId);
    double positionLongitude() const;
    void setPositionLongitude(double dLongitude);
    double positionLatitude() const;
    void setPositionLatitude(double dLatitude);

    // A non-null base is parsed and written into; a parsed element owns no document, so the
    // result is then empty.
    QByteArray toXml(const QByteArray &base) const;
    // Tries every field; a missing or unconvertible one keeps its value and makes the result
    // false. The root tag isn't looked at.
    bool fromXml(const QByteArray &xml);

private:
    QString m_sId;
    QString m_sName;
    QString m_sDeviceType;
    QString m_sStationId;
    QString m_sStationName;
    QString m_sMachine;
    QString m_sMachineId;
    double m_dPositionLongitude = 0.0;
    double m_dPositionLatitude = 0.0;
};

class RADIOSIM_EXPORT SimulationDeviceState
{
public:
    ScenarioDataState scenarioDataState() const;
    void setScenarioDataState(ScenarioDataState state);

    QByteArray toXml(const QByteArray &base) const;
    // Any int is taken, in or out of the enumeration's range.
    bool fromXml(const QByteArray &xml);

private:
    ScenarioDataState m_scenarioDataState = ScenarioDataNone;
};

} // namespace Simulation
