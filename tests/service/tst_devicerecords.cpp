#include "servicetesthelpers.h"

#include <radiosim/service/simulationdevice.h>

#include <QtTest>

using namespace Simulation;
using Record = SimulationDeviceConfiguration;

namespace {

const QByteArray ConfigurationXml = "<Simulation::SimulationDeviceConfiguration>\n"
                                    "    <Id>dev-1</Id>\n"
                                    "    <Name>Receiver \xc3\xa4</Name>\n"
                                    "    <StationId>st-7</StationId>\n"
                                    "    <StationName>Hill &amp; Dale &lt;north></StationName>\n"
                                    "    <Machine>host-a</Machine>\n"
                                    "    <MachineId>m-42</MachineId>\n"
                                    "    <DeviceType>RX</DeviceType>\n"
                                    "    <PositionLongitude>8.12346</PositionLongitude>\n"
                                    "    <PositionLatitude>48.25</PositionLatitude>\n"
                                    "</Simulation::SimulationDeviceConfiguration>\n";
const QStringList Tags { "Id", "Name", "StationId", "StationName", "Machine", "MachineId",
    "DeviceType", "PositionLongitude", "PositionLatitude" };

// The longitude is written with six significant digits, and so comes back shortened.
Record sample(double longitude = 8.123456789)
{
    Record device = sampleDevice("dev-1");
    device.setName("Receiver ä");
    device.setPositionLongitude(longitude);
    return device;
}

Record stale()
{
    Record device;
    for (auto set :
        { &Record::setId, &Record::setName, &Record::setStationId, &Record::setStationName,
            &Record::setMachine, &Record::setMachineId, &Record::setDeviceType })
        (device.*set)("old");
    device.setPositionLongitude(-1.0);
    device.setPositionLatitude(-1.0);
    return device;
}

} // namespace

class tst_DeviceRecords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void configurationWritesFixedFormAndReadsAnyRoot();
    void missingFieldKeepsOldValueAndFails_data();
    void missingFieldKeepsOldValueAndFails();
    void stateForms();
};

// A record written into a base document gives nothing.
void tst_DeviceRecords::configurationWritesFixedFormAndReadsAnyRoot()
{
    QVERIFY(sample().toXml(ConfigurationXml).isEmpty());
    QCOMPARE(sample().toXml(QByteArray()), ConfigurationXml);
    Record read = stale();
    QVERIFY(read.fromXml(QByteArray(ConfigurationXml).replace("Simulation::Simulation", "Any")));
    QCOMPARE(flatten(read), flatten(sample(8.12346)));
}

void tst_DeviceRecords::missingFieldKeepsOldValueAndFails_data()
{
    QTest::addColumn<QString>("tag");
    QTest::addColumn<QString>("replacement");
    for (const QString &tag : Tags)
        QTest::newRow(qPrintable(tag + " missing")) << tag << QString();
    QTest::newRow("longitude not a number") << "PositionLongitude"
                                            << "<PositionLongitude>abc</PositionLongitude>";
}

void tst_DeviceRecords::missingFieldKeepsOldValueAndFails()
{
    QFETCH(QString, tag);
    QFETCH(QString, replacement);
    QString xml = QString::fromUtf8(ConfigurationXml);
    xml.replace(QRegularExpression(QString("<%1>.*</%1>").arg(tag)), replacement);
    Record device = stale();
    QVERIFY(!device.fromXml(xml.toUtf8()));

    const int field = Tags.indexOf(tag);
    QStringList expected = flatten(sample(8.12346)).split('|');
    expected[field] = flatten(stale()).split('|').at(field);
    QCOMPARE(flatten(device), expected.join('|'));
}

// Numbers outside the enumeration cross as they are; text that isn't one changes nothing.
void tst_DeviceRecords::stateForms()
{
    for (const int value : { 7, -3 }) {
        const QByteArray xml = "<Simulation::SimulationDeviceState>\n    <ScenarioDataState>"
            + QByteArray::number(value)
            + "</ScenarioDataState>\n</Simulation::SimulationDeviceState>\n";
        SimulationDeviceState state;
        state.setScenarioDataState(ScenarioDataState(value));
        QCOMPARE(state.toXml(QByteArray()), xml);
        SimulationDeviceState read;
        QVERIFY(read.fromXml(xml));
        QCOMPARE(int(read.scenarioDataState()), value);
        QVERIFY(!read.fromXml("<S><ScenarioDataState>two</ScenarioDataState></S>"));
        QCOMPARE(int(read.scenarioDataState()), value);
        QVERIFY(read.toXml("<S/>").isEmpty());
    }
}

QTEST_GUILESS_MAIN(tst_DeviceRecords)
#include "tst_devicerecords.moc"
