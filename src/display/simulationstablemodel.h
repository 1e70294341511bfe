#pragma once

#include <radiosim/radiosim_export.h>
#include <radiosim/service/simulationdevice.h>

#include <QAbstractTableModel>
#include <QMap>
#include <QStringList>

namespace Simulation {

// The operator's table of simulation devices: one read-only row per registration, five
// columns, the text coloured by the device's ScenarioDataState. Fed by the application; it
// connects to nothing itself. Every change resets the whole model, so a view loses its
// selection on each state update.
//
// The counts answer the same under any parent, a valid one included; a view of a table never
// asks, but a generic tree walker would see every row repeat below itself.
class RADIOSIM_EXPORT SimulationsTableModel : public QAbstractTableModel
{
public:
    int rowCount(const QModelIndex &parent = QModelIndex()) const override;
    int columnCount(const QModelIndex &parent = QModelIndex()) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    // Read-only: always false.
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    // Horizontal display texts of the five columns; rows stay unnumbered.
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

    // Appends a row, also for an id that is there already; the id's state becomes 0.
    void registerSimulation(const SimulationDeviceConfiguration &configuration);
    // Removes every row of the id. An unknown id still resets the model.
    void unregisterSimulation(const QString &id);
    // An unknown id gets a state entry and no row.
    void updateSimulationState(const QString &id, const SimulationDeviceState &state);
    // ScenarioDataLoading for every id with a state, with or without a row.
    void setAllSimulationsLoading();

private:
    QStringList m_deviceIds;
    QMap<QString, SimulationDeviceConfiguration> m_configurations;
    QMap<QString, SimulationDeviceState> m_states;
};

} // namespace Simulation
