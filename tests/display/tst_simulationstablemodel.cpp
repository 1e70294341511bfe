#include <testhelpers.h>

#include <radiosim/display/simulationstablemodel.h>

#include <QAbstractItemModelTester>
#include <QIdentityProxyModel>
#include <QSignalSpy>
#include <QtTest>

using namespace Simulation;

namespace {

// What the position column shows for every device below.
const QString PositionText = QStringLiteral("E8.1234 N48.5678");

// The tester walks every parent it is given; the model answers its row count under valid
// parents too, so only a view that says "no children there" can be walked to an end.
class FlatProxy : public QIdentityProxyModel
{
public:
    int rowCount(const QModelIndex &parent) const override
    {
        return parent.isValid() ? 0 : QIdentityProxyModel::rowCount(parent);
    }
};

SimulationDeviceConfiguration device(const QString &id, const QString &name)
{
    SimulationDeviceConfiguration configuration;
    configuration.setId(id);
    configuration.setName(name);
    configuration.setMachine("pc-" + id);
    configuration.setStationName("st-" + id);
    configuration.setDeviceType(QStringLiteral("RX"));
    configuration.setPositionLongitude(8.1234);
    configuration.setPositionLatitude(48.5678);
    return configuration;
}

// The state colours by their names, "none" for no colour, others by value; a colour that does
// not come as a QColor shows the type it comes as.
QString colourName(const QVariant &colour)
{
    if (colour.userType() != QMetaType::QColor)
        return colour.isValid() ? colour.typeName() : "none";
    for (auto [global, name] : { std::pair { Qt::black, "black" }, { Qt::darkYellow, "darkYellow" },
             { Qt::darkGreen, "darkGreen" }, { Qt::darkRed, "darkRed" } })
        if (colour.value<QColor>() == global)
            return name;
    return colour.value<QColor>().name();
}

// "text|text|text|text|@ colour" by row, "; " between rows, '@' for PositionText. The colour
// of every cell is read; cells that differ from the rest show as "black/darkRed".
QString flatten(const QAbstractItemModel &model)
{
    QStringList rows;
    for (int row = 0; row < model.rowCount(); ++row) {
        QStringList cells, colours;
        for (int column = 0; column < model.columnCount(); ++column) {
            const QModelIndex index = model.index(row, column);
            cells << index.data().toString().replace(PositionText, QStringLiteral("@"));
            colours << colourName(index.data(Qt::ForegroundRole));
        }
        colours.removeDuplicates();
        rows << cells.join('|') + ' ' + colours.join('/');
    }
    return rows.join(QStringLiteral("; "));
}

// "+id name" registers, "-id" unregisters, "id=n" sets state n, "*" sets all loading.
void apply(SimulationsTableModel &model, const QString &step)
{
    const QString rest = step.mid(1);
    if (step.startsWith('+'))
        model.registerSimulation(device(rest.section(' ', 0, 0), rest.section(' ', 1)));
    else if (step.startsWith('-'))
        model.unregisterSimulation(rest);
    else if (step == QLatin1String("*"))
        model.setAllSimulationsLoading();
    else {
        SimulationDeviceState state;
        state.setScenarioDataState(ScenarioDataState(step.section('=', 1).toInt()));
        model.updateSimulationState(step.section('=', 0, 0), state);
    }
}

} // namespace

class tst_SimulationsTableModel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyChangeIsOneReset_data()
    {
        columns<QStringList, QString>("steps", "table");
        row("in order of registration, each state its colour, 7 none",
            QStringList { "+a A", "+b B", "+c C", "+d D", "+e E", "b=1", "c=2", "d=3", "e=7" },
            QString("A|pc-a|st-a|RX|@ black; B|pc-b|st-b|RX|@ darkYellow; "
                    "C|pc-c|st-c|RX|@ darkGreen; D|pc-d|st-d|RX|@ darkRed; E|pc-e|st-e|RX|@ none"));
        row("an id twice: two rows of the last record", QStringList { "+a Old", "+b B", "+a New" },
            QString("New|pc-a|st-a|RX|@ black; B|pc-b|st-b|RX|@ black; New|pc-a|st-a|RX|@ black"));
        row("unregistering removes every row of the id",
            QStringList { "+a Old", "+b B", "+a New", "b=3", "-a" },
            QString("B|pc-b|st-b|RX|@ darkRed"));
        row("unknown id: no row, yet a reset", QStringList { "+a A", "-x", "x=2" },
            QString("A|pc-a|st-a|RX|@ black"));
        row("registration starts again at 0",
            QStringList { "+a A", "a=3", "-a", "+a A", "a=2", "+a A" },
            QString("A|pc-a|st-a|RX|@ black; A|pc-a|st-a|RX|@ black"));
        row("all loading", QStringList { "+a A", "+b B", "a=3", "b=7", "x=2", "*" },
            QString("A|pc-a|st-a|RX|@ darkYellow; B|pc-b|st-b|RX|@ darkYellow"));
        row("all loading on an empty model", QStringList { "*" }, QString());
    }
    // Each step resets once, and the views still read the old table when told of the reset.
    void everyChangeIsOneReset()
    {
        QFETCH(QStringList, steps);
        QFETCH(QString, table);
        SimulationsTableModel model;
        FlatProxy flat;
        flat.setSourceModel(&model);
        QAbstractItemModelTester tester(
            &flat, QAbstractItemModelTester::FailureReportingMode::QtTest);
        QStringList seenBeforeReset;
        connect(&model, &QAbstractItemModel::modelAboutToBeReset, this,
            [&] { seenBeforeReset << flatten(model); });
        QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
        QSignalSpy inserts(&model, &QAbstractItemModel::rowsInserted);
        QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);

        QStringList before;
        for (const QString &step : steps) {
            before << flatten(model);
            apply(model, step);
        }

        QCOMPARE(flatten(model), table);
        QCOMPARE(seenBeforeReset, before);
        QCOMPARE(resets.count(), steps.size());
        QCOMPARE(inserts.count() + changes.count(), 0);
    }

    void readOnlyCellsAndHeader()
    {
        SimulationsTableModel model;
        model.registerSimulation(device("a", "Alpha"));
        model.registerSimulation(device("b", "Bravo"));
        const QModelIndex cell = model.index(1, 0);

        QString header;
        for (auto [orientation, role] : { std::pair { Qt::Horizontal, Qt::DisplayRole },
                 { Qt::Vertical, Qt::DisplayRole }, { Qt::Horizontal, Qt::ToolTipRole } }) {
            for (int section = -1; section <= 5; ++section) {
                const QVariant text = model.headerData(section, orientation, role);
                header += text.isValid() ? text.toString() + '|' : QStringLiteral("-|");
            }
        }
        QCOMPARE(header,
            QString("-|Name|Machine|Station|Type|Position|-|" + QString("-|").repeated(14)));

        for (int role : { Qt::EditRole, Qt::ToolTipRole, Qt::DecorationRole, Qt::BackgroundRole })
            QVERIFY2(!cell.data(role).isValid(), qPrintable(QString::number(role)));
        QVERIFY(!model.data(QModelIndex(), Qt::DisplayRole).isValid());
        QVERIFY(!model.setData(cell, QStringLiteral("Changed"), Qt::EditRole));
        QCOMPARE(cell.data().toString(), QStringLiteral("Bravo"));
        QCOMPARE(
            model.flags(cell), Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemNeverHasChildren);

        // The counts ignore the parent: a table's cell answers like the root.
        QCOMPARE(model.rowCount(cell), 2);
        QCOMPARE(model.columnCount(cell), 5);
    }
};

QTEST_MAIN(tst_SimulationsTableModel)
#include "tst_simulationstablemodel.moc"
