#include "simulationstablemodel.h"

#include <radiosim/units/units.h>

#include <QColor>

namespace Simulation {

namespace {

const int ColumnCount = 5;

QString columnText(const SimulationDeviceConfiguration &configuration, int column)
{
    switch (column) {
    case 0:
        return configuration.name();
    case 1:
        return configuration.machine();
    case 2:
        return configuration.stationName();
    case 3:
        return configuration.deviceType();
    default:
        return Units::Position::toString(configuration.positionLongitude(),
            configuration.positionLatitude(), Units::Position::FormatDecimal, QLocale());
    }
}

QVariant stateColour(int state)
{
    switch (state) {
    case ScenarioDataNone:
        return QColor(Qt::black);
    case ScenarioDataLoading:
        return QColor(Qt::darkYellow);
    case ScenarioDataLoaded:
        return QColor(Qt::darkGreen);
    case ScenarioDataError:
        return QColor(Qt::darkRed);
    default:
        return QVariant();
    }
}

} // namespace

int SimulationsTableModel::rowCount(const QModelIndex &) const
{
    return m_deviceIds.size();
}

int SimulationsTableModel::columnCount(const QModelIndex &) const
{
    return ColumnCount;
}

QVariant SimulationsTableModel::data(const QModelIndex &index, int role) const
{
    // An index kept from before a reset may point past the end.
    if (!index.isValid() || index.row() >= m_deviceIds.size() || index.column() >= ColumnCount)
        return QVariant();
    const QString &id = m_deviceIds.at(index.row());
    if (role == Qt::DisplayRole) {
        const auto configuration = m_configurations.constFind(id);
        return configuration == m_configurations.cend()
            ? QString()
            : columnText(*configuration, index.column());
    }
    if (role == Qt::ForegroundRole)
        return stateColour(m_states.value(id).scenarioDataState());
    return QVariant();
}

bool SimulationsTableModel::setData(const QModelIndex &, const QVariant &, int)
{
    return false;
}

QVariant SimulationsTableModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QVariant();
    switch (section) {
    case 0:
        return tr("Name");
    case 1:
        return tr("Machine");
    case 2:
        return tr("Station");
    case 3:
        return tr("Type");
    case 4:
        return tr("Position");
    default:
        return QVariant();
    }
}

Qt::ItemFlags SimulationsTableModel::flags(const QModelIndex &index) const
{
    return QAbstractTableModel::flags(index);
}

void SimulationsTableModel::registerSimulation(const SimulationDeviceConfiguration &configuration)
{
    beginResetModel();
    m_deviceIds.append(configuration.id());
    m_configurations.insert(configuration.id(), configuration);
    m_states.insert(configuration.id(), SimulationDeviceState());
    endResetModel();
}

void SimulationsTableModel::unregisterSimulation(const QString &id)
{
    beginResetModel();
    if (m_deviceIds.removeAll(id) > 0) {
        m_configurations.remove(id);
        m_states.remove(id);
    }
    endResetModel();
}

void SimulationsTableModel::updateSimulationState(
    const QString &id, const SimulationDeviceState &state)
{
    beginResetModel();
    m_states.insert(id, state);
    endResetModel();
}

void SimulationsTableModel::setAllSimulationsLoading()
{
    beginResetModel();
    for (SimulationDeviceState &state : m_states)
        state.setScenarioDataState(ScenarioDataLoading);
    endResetModel();
}

} // namespace Simulation
