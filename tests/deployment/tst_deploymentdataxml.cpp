#include "deploymenttesthelpers.h"

#include <radiosim/deployment/deploymentcast.h>
#include <radiosim/deployment/deploymentdataxml.h>
#include <radiosim/platform/cfgcenter.h>
#include <radiosim/scenario/positionsettings.h>

#include <QtTest>

#include <vector>

using namespace Simulation;

namespace {

// The document on one line: name, author, persistent id, description, then every device and
// station under its key, stations with their sorted members.
QString summary(const DeploymentDataXml &document)
{
    QStringList parts { QStringList {
        document.name(), document.author(), document.persistantId(), document.description() }
                            .join('|') };
    for (auto it = document.devices().cbegin(); it != document.devices().cend(); ++it) {
        const IPositionSettings *settings = it.value()->positionSettings();
        parts << it.key() + '=' + describe(*it.value())
                + (settings->getType() == PositionMovement
                        ? QStringLiteral("|route until %1").arg(settings->activeUntil())
                        : QString());
    }
    for (auto it = document.stations().cbegin(); it != document.stations().cend(); ++it) {
        QStringList members;
        for (const auto &device : it.value()->devices())
            members << device->id();
        members.sort();
        parts << it.key() + '=' + describe(*it.value()) + '[' + members.join(',') + ']';
    }
    return parts.join(QStringLiteral(" ; "));
}

QByteArray document(const QByteArray &root, const QByteArray &children)
{
    return "<?xml version=\"1.0\"?>\n<SimulationDeployment " + root + ">" + children
        + "</SimulationDeployment>\n";
}

// Two sites' worth: a device at its station, a stand-alone one, a station of its own.
void fill(DeploymentDataXml &deployment)
{
    const auto station = std::make_shared<DeploymentStation>(QStringLiteral("S1"));
    station->setIconId(QStringLiteral("station_friend"));
    station->setPosition({ 8.5, 48.25 });
    const auto atStation = makeDevice(QStringLiteral("D1"), { 1.0, 1.0 });
    atStation->setIconId(QStringLiteral("ant_friend"));
    atStation->setMachine(QStringLiteral("M1"));
    atStation->setConfiguredStationId(QStringLiteral("C1"));
    atStation->setDeviceType(QStringLiteral("VHF"));
    atStation->receiverSettings() = { 12.5, 3.14159265 };
    join(station, atStation);
    const auto alone = makeDevice(QStringLiteral("D2"), { 8.123456789012345, -48.1 });
    deployment.setName(QStringLiteral("Field"));
    deployment.setAuthor(QStringLiteral("Ops"));
    deployment.setPersistantId(QStringLiteral("P1"));
    deployment.setDescription(QStringLiteral("Two sites & more"));
    deployment.setDevices({ atStation, alone });
    deployment.setStations({ station });
}

} // namespace

class tst_DeploymentDataXml : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesTheDocumentForm();
    void fromXml_data();
    void fromXml();
    void readingMergesAndMakesThePersistentIdOnce();
    void largeDeploymentRoundTrip();

private:
    QTemporaryDir m_dir;
};

void tst_DeploymentDataXml::writesTheDocumentForm()
{
    DeploymentDataXml deployment;
    fill(deployment);
    QCOMPARE(QString::fromUtf8(deployment.toXml()),
        QStringLiteral(R"(<?xml version="1.0" encoding="UTF-8"?>
<SimulationDeployment FileFormatVersion="1" Name="Field" Author="Ops" PersistantId="P1">
    <Description>Two sites &amp; more</Description>
    <Device ID="D1" Name="name of D1">
        <IconId>ant_friend</IconId>
        <Machine>M1</Machine>
        <ConfiguredStationID>C1</ConfiguredStationID>
        <DeviceType>VHF</DeviceType>
        <ReceiverSettings>
            <AntennaHeight>12.5</AntennaHeight>
            <AntennaGain>3.14159</AntennaGain>
        </ReceiverSettings>
        <Station>S1</Station>
    </Device>
    <Device ID="D2" Name="name of D2">
        <IconId></IconId>
        <Machine></Machine>
        <ConfiguredStationID></ConfiguredStationID>
        <DeviceType></DeviceType>
        <ReceiverSettings>
            <AntennaHeight>7</AntennaHeight>
            <AntennaGain>0</AntennaGain>
        </ReceiverSettings>
        <Position>
            <Fixed>
                <Lon>8.1234567890123</Lon>
                <Lat>-48.1</Lat>
            </Fixed>
        </Position>
    </Device>
    <Station ID="S1" Name="S1">
        <IconId>station_friend</IconId>
        <Position>
            <Fixed>
                <Lon>8.5</Lon>
                <Lat>48.25</Lat>
            </Fixed>
        </Position>
    </Station>
</SimulationDeployment>
)"));

    // Read back from a file, all but the configured station id.
    const QString path = m_dir.filePath(QStringLiteral("field.xml"));
    DeploymentDataXml back;
    QVERIFY(deployment.toXmlFile(path) && back.fromXmlFile(path));
    QCOMPARE(summary(back), summary(deployment).replace("|C1|", "||"));
    QVERIFY(!deployment.toXmlFile(m_dir.path()) && !back.fromXmlFile(m_dir.path()));
    QVERIFY(!back.fromXmlFile(m_dir.filePath(QStringLiteral("missing.xml"))));
    releaseDeployment(deployment);
    releaseDeployment(back);
}

void tst_DeploymentDataXml::fromXml_data()
{
    columns<QByteArray, bool, QString>("xml", "result", "summary");
    row("empty", QByteArray(), false, QString("kept|||"));
    row("garbage", QByteArray("\x89PNG\r\n\x1a\n"), false, QString("kept|||"));
    row("other root", QByteArray("<Scenario Name=\"x\"/>"), false, QString("kept|||"));
    row("header, description element over attribute",
        document("FileFormatVersion=\"1\" Name=\"N\" Author=\"A\" PersistantId=\"P\" "
                 "Description=\"attribute\"",
            "<Description>element</Description>"),
        true, QString("N|A|P|element"));
    row("version 0 position",
        document("",
            "<Device ID=\"D\"><Position><Latitude>48.25</Latitude><Fixed><Lon>1</Lon></Fixed>"
            "<Longitude>8.5</Longitude></Position></Device>"),
        true, QString("||| ; D=D|||8.5,48.25|-||||7/0"));
    row("later versions read the new form",
        document("FileFormatVersion=\"2\"",
            "<Device ID=\"D\"><Position><Longitude>8.5</Longitude></Position></Device>"
            "<Station ID=\"S\" Name=\"S\"><Position><Fixed><Lon>8.5</Lon><Lat>x</Lat></Fixed>"
            "</Position></Station>"),
        true, QString("||| ; D=D|||0,0|-||||7/0 ; S=S|S||8.5,0[]"));
    // A renamed station keeps its key.
    row("station written later",
        document("FileFormatVersion=\"1\"",
            "<Device ID=\"D\" Name=\"d\"><Station>S</Station><Machine>M</Machine></Device>"
            "<Other><Station ID=\"X\"/></Other>"
            "<Station ID=\"S\" Name=\"Renamed\"><IconId>i</IconId>"
            "<Position><Fixed><Lon>1</Lon><Lat>2</Lat></Fixed></Position></Station>"),
        true, QString("||| ; D=D|d||1,2|Renamed||M||7/0 ; S=Renamed|Renamed|i|1,2[D]"));
    row("dangling station", document("", "<Device ID=\"D\"><Station>Nowhere</Station></Device>"),
        true, QString("||| ; D=D|||0,0|Nowhere||||7/0 ; Nowhere=Nowhere|Nowhere||0,0[D]"));
    row("device fields",
        document("",
            "<Device ID=\"D\"><ConfiguredStationID>C</ConfiguredStationID><DeviceType>T"
            "</DeviceType><ReceiverSettings><AntennaGain>-2.5</AntennaGain><X/>"
            "</ReceiverSettings></Device><Device ID=\"E\"><ReceiverSettings>"
            "<AntennaHeight>tall</AntennaHeight></ReceiverSettings></Device>"),
        true, QString("||| ; D=D|||0,0|-|T|||7/-2.5 ; E=E|||0,0|-||||0/0"));
    // The children of an object without ID pass through the root's loop, and the first end
    // tag ends the reading.
    row("device without ID",
        document("",
            "<Device Name=\"x\"><IconId>i</IconId><Station ID=\"S\" Name=\"S\"/></Device>"
            "<Device ID=\"D\"/><Description>late</Description>"),
        true, QString("||| ; S=S|S||0,0[]"));
    row("station without ID",
        document("", "<Station><Device ID=\"D\"/></Station><Station ID=\"S\"/>"), true,
        QString("||| ; D=D|||0,0|-||||7/0"));
    row("truncated",
        QByteArray("<SimulationDeployment Name=\"N\"><Device ID=\"D\"><Machine>M</Machine><Stat"),
        true, QString("N||| ; D=D|||0,0|-||M||7/0"));
}

void tst_DeploymentDataXml::fromXml()
{
    QFETCH(QByteArray, xml);
    DeploymentDataXml deployment;
    deployment.setName(QStringLiteral("kept"));
    QTEST(deployment.fromXml(xml), "result");
    QTEST(summary(deployment), "summary");
    releaseDeployment(deployment);
}

void tst_DeploymentDataXml::readingMergesAndMakesThePersistentIdOnce()
{
    DeploymentDataXml deployment;
    fill(deployment);
    const auto station = deployment.stations().value(QStringLiteral("S1"));
    QVERIFY(deployment.fromXml(document("Name=\"Field 7\"",
        "<Device ID=\"D2\"><Station>S1</Station></Device><Device ID=\"D3\"/>")));
    QCOMPARE(summary(deployment).section(" ; ", 0, 0), QStringLiteral("Field 7|||"));
    QVERIFY(deployment.devices().size() == 3 && station->devices().size() == 2);

    const uint before = QDateTime::currentDateTime().toTime_t();
    const QByteArray first = deployment.toXml();
    const QStringList parts = deployment.persistantId().split('-');
    QVERIFY(parts.size() == 3 && parts[1].toUInt() - before <= 2);
    QCOMPARE(
        QStringList({ parts[0], parts[2] }), QStringList({ "Field 7", CfgCenter::GetMachineId() }));
    QCOMPARE(deployment.toXml(), first);
    releaseDeployment(deployment);
}

// 1,000 devices, half of them at one of 100 stations, the others alone, some on routes; and a
// version 0 document converted.
void tst_DeploymentDataXml::largeDeploymentRoundTrip()
{
    std::vector<std::weak_ptr<DeploymentObject>> watched;
    {
        QVector<std::shared_ptr<DeploymentStation>> stations;
        for (int s = 0; s < 100; ++s) {
            stations << std::make_shared<DeploymentStation>(QStringLiteral("S%1").arg(s));
            stations.last()->setPosition({ s * 0.1, 45.0 + s * 0.01 });
        }
        QSet<std::shared_ptr<DeploymentDevice>> devices;
        for (int d = 0; d < 1000; ++d) {
            auto device = makeDevice(QStringLiteral("D%1").arg(d, 4, 10, QLatin1Char('0')),
                { 7.0 + d * 1e-3, 47.0 + d * 1e-4 });
            device->setMachine(QStringLiteral("M%1").arg(d % 7));
            device->receiverSettings().antennaHeight = d % 30;
            if (d % 2 == 0)
                join(stations[d % 100], device);
            else if (d % 10 == 1)
                device->setPositionSettings(
                    new PositionSettingsPtp({ 7.0, 47.0 + d * 1e-3 }, 0.01 * (d % 9 + 1)));
            devices << device;
        }
        DeploymentDataXml deployment;
        deployment.setName(QStringLiteral("Large"));
        deployment.setDevices(devices);
        deployment.setStations({ stations.begin(), stations.end() });
        const QString path = m_dir.filePath(QStringLiteral("large.xml"));
        QVERIFY(deployment.toXmlFile(path));
        QCOMPARE(
            QProcess::execute(QStringLiteral("xmllint"), { QStringLiteral("--noout"), path }), 0);
        DeploymentDataXml back;
        QVERIFY(back.fromXmlFile(path));
        QCOMPARE(back.devices().size(), 1000);
        QCOMPARE(back.stations().size(), 100);
        QCOMPARE(summary(back), summary(deployment));
        for (const DeploymentDataXml *document : { &deployment, &back }) {
            watched.insert(watched.end(), document->devices().begin(), document->devices().end());
            watched.insert(watched.end(), document->stations().begin(), document->stations().end());
        }
        releaseDeployment(deployment);
        releaseDeployment(back);
    }
    for (const auto &object : watched)
        QVERIFY(object.expired());

    const QByteArray version0 = document("Name=\"Old\" PersistantId=\"P\"",
        "<Station ID=\"S\" Name=\"S\">"
        "<Position><Longitude>8.5</Longitude><Latitude>48.25</Latitude></Position></Station>"
        "<Device ID=\"D\"><Station>S</Station>"
        "<Position><Longitude>8.75</Longitude><Latitude>1</Latitude></Position></Device>"
        "<Device ID=\"E\">"
        "<Position><Longitude>9.5</Longitude><Latitude>49.25</Latitude></Position></Device>");
    DeploymentDataXml old;
    QVERIFY(old.fromXml(version0));
    const QByteArray converted = old.toXml();
    QVERIFY(converted.contains("FileFormatVersion=\"1\""));
    QVERIFY(!converted.contains("Longitude"));
    DeploymentDataXml back;
    QVERIFY(back.fromXml(converted));
    // A device with a station puts its old position on the station.
    QCOMPARE(summary(back),
        QStringLiteral(
            "Old||P| ; D=D|||8.75,1|S||||7/0 ; E=E|||9.5,49.25|-||||7/0 ; S=S|S||8.75,1[D]"));
    QCOMPARE(summary(back), summary(old));
    releaseDeployment(old);
    releaseDeployment(back);
}

QTEST_GUILESS_MAIN(tst_DeploymentDataXml)
#include "tst_deploymentdataxml.moc"
