#include "servicetesthelpers.h"

#include <radiosim/service/simulationdevice.h>

#include <QtTest>

using namespace Simulation;

namespace {

const QByteArray ConfigurationXml = "<Simulation::SimulationDeviceConfiguration>\n"
                                    "    <Id>dev-1</Id>\n"
                                    "    <Name>Receiver \xc3\xa4</Name>\n"
                                    "    <StationId>st-7</StationId>\n"
                                    "    <StationName>Hill &amp; Dale</StationName>\n"
                                    "    <Machine>host-a</Machine>\n"
                                    "    <MachineId>m-42</MachineId>\n"
                                    "    <DeviceType>RX</DeviceType>\n"
                                    "    <PositionLongitude>8.12346</PositionLongitude>\n"
                                    "    <PositionLatitude>-48.2</PositionLatitude>\n"
                                    "</Simulation::SimulationDeviceConfiguration>\n";

SimulationDeviceConfiguration configuration(
    const QStringList &texts, double longitude, double latitude)
{
    SimulationDeviceConfiguration device;
    device.setId(texts.at(0));
    device.setName(texts.at(1));
    device.setStationId(texts.at(2));
    device.setStationName(texts.at(3));
    device.setMachine(texts.at(4));
    device.setMachineId(texts.at(5));
    device.setDeviceType(texts.at(6));
    device.setPositionLongitude(longitude);
    device.setPositionLatitude(latitude);
    return device;
}

SimulationDeviceConfiguration sample()
{
    return configuration({ "dev-1", "Receiver ä", "st-7", "Hill & Dale", "host-a", "m-42", "RX" },
        8.123456789, -48.2);
}

SimulationDeviceConfiguration stale()
{
    return configuration(QVector<QString>(7, QStringLiteral("old")).toList(), -1.0, -1.0);
}

} // namespace

class tst_DeviceRecords : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void configurationWritesFixedFormAndReadsBack();
    void missingFieldKeepsOldValueAndFails_data();
    void missingFieldKeepsOldValueAndFails();
    void emptyElementSetsEmptyText();
    void anyRootTagIsRead();
    void notXmlLeavesRecordUnchanged();
    void writingIntoABaseGivesNothing();
    void stateForms_data();
    void stateForms();
    void stateAcceptsNumbersOutsideTheEnum();
};

// The longitude is written with six significant digits, and so comes back shortened.
void tst_DeviceRecords::configurationWritesFixedFormAndReadsBack()
{
    QCOMPARE(sample().toXml(QByteArray()), ConfigurationXml);
    SimulationDeviceConfiguration read;
    QVERIFY(read.fromXml(ConfigurationXml));
    SimulationDeviceConfiguration expected = sample();
    expected.setPositionLongitude(8.12346);
    QCOMPARE(flatten(read), flatten(expected));
}

void tst_DeviceRecords::missingFieldKeepsOldValueAndFails_data()
{
    QTest::addColumn<QString>("tag");
    QTest::addColumn<QString>("replacement");
    QTest::addColumn<int>("field");
    const QStringList tags { "Id", "Name", "StationId", "StationName", "Machine", "MachineId",
        "DeviceType", "PositionLongitude", "PositionLatitude" };
    for (int i = 0; i < tags.size(); ++i)
        QTest::newRow(qPrintable(tags.at(i) + " missing")) << tags.at(i) << QString() << i;
    QTest::newRow("longitude not a number") << "PositionLongitude"
                                            << "abc" << 7;
    QTest::newRow("latitude empty") << "PositionLatitude"
                                    << "" << 8;
}

void tst_DeviceRecords::missingFieldKeepsOldValueAndFails()
{
    QFETCH(QString, tag);
    QFETCH(QString, replacement);
    QFETCH(int, field);

    const QString open = QLatin1Char('<') + tag + QLatin1Char('>');
    const QString close = QStringLiteral("</") + tag + QLatin1Char('>');
    QString xml = QString::fromUtf8(ConfigurationXml);
    const int from = xml.indexOf(open);
    const int to = xml.indexOf(close) + close.size();
    xml.replace(from, to - from, replacement.isNull() ? QString() : open + replacement + close);

    SimulationDeviceConfiguration device = stale();
    QVERIFY(!device.fromXml(xml.toUtf8()));

    SimulationDeviceConfiguration expected;
    QVERIFY(expected.fromXml(ConfigurationXml));
    QStringList expectedFields = flatten(expected).split(QLatin1Char('|'));
    expectedFields[field] = flatten(stale()).split(QLatin1Char('|')).at(field);
    QCOMPARE(flatten(device), expectedFields.join(QLatin1Char('|')));
}

void tst_DeviceRecords::emptyElementSetsEmptyText()
{
    SimulationDeviceConfiguration device = stale();
    device.fromXml("<R><Name/></R>");
    QVERIFY(device.name().isEmpty());
    QCOMPARE(device.id(), QStringLiteral("old"));
}

void tst_DeviceRecords::anyRootTagIsRead()
{
    QByteArray xml = ConfigurationXml;
    xml.replace("Simulation::SimulationDeviceConfiguration", "Whatever");
    SimulationDeviceConfiguration device;
    QVERIFY(device.fromXml(xml));
    QCOMPARE(device.machineId(), QStringLiteral("m-42"));
}

void tst_DeviceRecords::notXmlLeavesRecordUnchanged()
{
    SimulationDeviceConfiguration device = stale();
    QVERIFY(!device.fromXml("Id=dev-1"));
    QCOMPARE(flatten(device), flatten(stale()));

    SimulationDeviceState state;
    state.setScenarioDataState(ScenarioDataError);
    QVERIFY(!state.fromXml("<broken"));
    QCOMPARE(state.scenarioDataState(), ScenarioDataError);
}

void tst_DeviceRecords::writingIntoABaseGivesNothing()
{
    QVERIFY(sample().toXml(ConfigurationXml).isEmpty());
    QVERIFY(SimulationDeviceState().toXml("<S/>").isEmpty());
}

void tst_DeviceRecords::stateForms_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<QByteArray>("xml");
    const auto form = [](const char *number) {
        return QByteArray("<Simulation::SimulationDeviceState>\n"
                          "    <ScenarioDataState>")
            + number + "</ScenarioDataState>\n</Simulation::SimulationDeviceState>\n";
    };
    QTest::newRow("none") << int(ScenarioDataNone) << form("0");
    QTest::newRow("loading") << int(ScenarioDataLoading) << form("1");
    QTest::newRow("loaded") << int(ScenarioDataLoaded) << form("2");
    QTest::newRow("error") << int(ScenarioDataError) << form("3");
}

void tst_DeviceRecords::stateForms()
{
    QFETCH(int, value);
    QFETCH(QByteArray, xml);
    SimulationDeviceState state;
    state.setScenarioDataState(ScenarioDataState(value));
    QCOMPARE(state.toXml(QByteArray()), xml);
    SimulationDeviceState read;
    read.setScenarioDataState(ScenarioDataError);
    QVERIFY(read.fromXml(xml));
    QCOMPARE(int(read.scenarioDataState()), value);
}

void tst_DeviceRecords::stateAcceptsNumbersOutsideTheEnum()
{
    SimulationDeviceState state;
    QCOMPARE(state.scenarioDataState(), ScenarioDataNone);
    QVERIFY(state.fromXml("<S><ScenarioDataState>7</ScenarioDataState></S>"));
    QCOMPARE(int(state.scenarioDataState()), 7);
    QVERIFY(state.fromXml("<S><ScenarioDataState>-3</ScenarioDataState></S>"));
    QCOMPARE(int(state.scenarioDataState()), -3);
    QVERIFY(!state.fromXml("<S><ScenarioDataState>two</ScenarioDataState></S>"));
    QCOMPARE(int(state.scenarioDataState()), -3);
}

QTEST_GUILESS_MAIN(tst_DeviceRecords)
#include "tst_devicerecords.moc"
