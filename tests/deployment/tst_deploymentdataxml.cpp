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
    void initTestCase() { QVERIFY(m_dir.isValid()); }
    void writesTheDocumentForm();
    void fromXml_data();
    void fromXml();
    void readingMergesById();
    void persistentIdIsMadeOnce();
    void files();
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

    // Read back, all but the configured station id.
    DeploymentDataXml back;
    QVERIFY(back.fromXml(deployment.toXml()));
    QCOMPARE(summary(back), summary(deployment).replace("|C1|", "||"));
    releaseDeployment(deployment);
    releaseDeployment(back);
}

void tst_DeploymentDataXml::fromXml_data()
{
    columns<QByteArray, bool, QString>("xml", "result", "summary");
    const QString untouched = QStringLiteral("kept|||");
    row("empty", QByteArray(), false, untouched);
    row("garbage", QByteArray("\x89PNG\r\n\x1a\n"), false, untouched);
    row("other root", QByteArray("<Scenario Name=\"x\"/>"), false, untouched);
    row("header only",
        document("FileFormatVersion=\"1\" Name=\"N\" Author=\"A\" PersistantId=\"P\" "
                 "Description=\"attribute\"",
            ""),
        true, QStringLiteral("N|A|P|attribute"));
    row("description element wins",
        document("Description=\"attribute\"", "<Description>element</Description>"), true,
        QStringLiteral("|||element"));
    row("version 0 position",
        document("",
            "<Device ID=\"D\"><Position><Latitude>48.25</Latitude><Fixed><Lon>1</Lon></Fixed>"
            "<Longitude>8.5</Longitude></Position></Device>"),
        true, QStringLiteral("||| ; D=D|||8.5,48.25|-||||7/0"));
    row("version 1 ignores the old form",
        document("FileFormatVersion=\"1\"",
            "<Device ID=\"D\"><Position><Longitude>8.5</Longitude></Position></Device>"),
        true, QStringLiteral("||| ; D=D|||0,0|-||||7/0"));
    row("version 2 reads the new form",
        document("FileFormatVersion=\"2\"",
            "<Station ID=\"S\"><Position><Fixed><Lon>8.5</Lon><Lat>x</Lat></Fixed>"
            "</Position></Station>"),
        true, QStringLiteral("||| ; S=|||8.5,0[]"));
    row("station written later",
        document("FileFormatVersion=\"1\"",
            "<Device ID=\"D\" Name=\"d\"><Station>S</Station><Machine>M</Machine></Device>"
            "<Other><Station ID=\"X\"/></Other>"
            "<Station ID=\"S\" Name=\"S\"><IconId>i</IconId>"
            "<Position><Fixed><Lon>1</Lon><Lat>2</Lat></Fixed></Position></Station>"),
        true, QStringLiteral("||| ; D=D|d||1,2|S||M||7/0 ; S=S|S|i|1,2[D]"));
    row("dangling station", document("", "<Device ID=\"D\"><Station>Nowhere</Station></Device>"),
        true, QStringLiteral("||| ; D=D|||0,0|Nowhere||||7/0 ; Nowhere=Nowhere|Nowhere||0,0[D]"));
    row("station renamed", document("", "<Station ID=\"S\" Name=\"Other\"/>"), true,
        QStringLiteral("||| ; S=Other|Other||0,0[]"));
    row("receiver settings",
        document("",
            "<Device ID=\"D\"><ReceiverSettings><AntennaGain>-2.5</AntennaGain><X/>"
            "</ReceiverSettings></Device>"
            "<Device ID=\"E\"><ReceiverSettings><AntennaHeight>tall</AntennaHeight>"
            "</ReceiverSettings></Device>"),
        true, QStringLiteral("||| ; D=D|||0,0|-||||7/-2.5 ; E=E|||0,0|-||||0/0"));
    row("configured station id skipped",
        document("", "<Device ID=\"D\"><ConfiguredStationID>C</ConfiguredStationID></Device>"),
        true, QStringLiteral("||| ; D=D|||0,0|-||||7/0"));
    // The children of a device without ID pass through the root's loop, and its end tag ends
    // the reading.
    row("device without ID",
        document("",
            "<Device Name=\"x\"><IconId>i</IconId><Station ID=\"S\" Name=\"S\"/></Device>"
            "<Device ID=\"D\"/><Description>late</Description>"),
        true, QStringLiteral("||| ; S=S|S||0,0[]"));
    row("station without ID",
        document("", "<Station><Device ID=\"D\"/></Station><Station ID=\"S\"/>"), true,
        QStringLiteral("||| ; D=D|||0,0|-||||7/0"));
    row("truncated",
        QByteArray("<SimulationDeployment Name=\"N\"><Device ID=\"D\"><Machine>M</Machine><Stat"),
        true, QStringLiteral("N||| ; D=D|||0,0|-||M||7/0"));
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

void tst_DeploymentDataXml::readingMergesById()
{
    DeploymentDataXml deployment;
    fill(deployment);
    const auto station = deployment.stations().value(QStringLiteral("S1"));
    QVERIFY(deployment.fromXml(document("FileFormatVersion=\"1\"",
        "<Device ID=\"D2\"><Station>S1</Station></Device><Device ID=\"D3\"/>")));
    QCOMPARE(deployment.devices().keys(), QStringList({ "D1", "D2", "D3" }));
    QCOMPARE(deployment.stations().value(QStringLiteral("S1")), station);
    QCOMPARE(station->devices().size(), 2);
    QCOMPARE(deployment.devices().value("D2")->name(), QString());
    QCOMPARE(deployment.persistantId(), QString());

    // Replacing the sets clears the maps first.
    releaseDeployment(deployment);
    deployment.setStations({});
    QVERIFY(deployment.stations().isEmpty());
}

void tst_DeploymentDataXml::persistentIdIsMadeOnce()
{
    DeploymentDataXml deployment;
    deployment.setName(QStringLiteral("Field 7"));
    const uint before = QDateTime::currentDateTime().toTime_t();
    const QByteArray first = deployment.toXml();
    const QStringList parts = deployment.persistantId().split('-');
    QCOMPARE(parts.size(), 3);
    QCOMPARE(parts[0], QStringLiteral("Field 7"));
    QVERIFY(parts[1].toUInt() >= before && parts[1].toUInt() <= before + 2);
    QCOMPARE(parts[2], CfgCenter::GetMachineId());
    QVERIFY(first.contains("PersistantId=\"" + deployment.persistantId().toUtf8() + '"'));
    QCOMPARE(deployment.toXml(), first);
}

void tst_DeploymentDataXml::files()
{
    DeploymentDataXml deployment;
    fill(deployment);
    const QString path = m_dir.filePath(QStringLiteral("field.xml"));
    QVERIFY(deployment.toXmlFile(path));
    QVERIFY(!deployment.toXmlFile(m_dir.path()));
    DeploymentDataXml back;
    QVERIFY(!back.fromXmlFile(m_dir.filePath(QStringLiteral("missing.xml"))));
    QVERIFY(!back.fromXmlFile(m_dir.path()));
    QVERIFY(back.fromXmlFile(path));
    QCOMPARE(back.toXml(), deployment.toXml().replace("C1", ""));
    releaseDeployment(deployment);
    releaseDeployment(back);
}

// 1,000 devices, half of them at one of 100 stations, the others alone, some on routes; and a
// version 0 document converted.
void tst_DeploymentDataXml::largeDeploymentRoundTrip()
{
    std::vector<std::weak_ptr<DeploymentObject>> watched;
    {
        QSet<std::shared_ptr<DeploymentStation>> stations;
        QVector<std::shared_ptr<DeploymentStation>> byNumber;
        for (int s = 0; s < 100; ++s) {
            auto station = std::make_shared<DeploymentStation>(QStringLiteral("S%1").arg(s));
            station->setPosition({ s * 0.1, 45.0 + s * 0.01 });
            stations << station;
            byNumber << station;
        }
        QSet<std::shared_ptr<DeploymentDevice>> devices;
        for (int d = 0; d < 1000; ++d) {
            auto device = makeDevice(QStringLiteral("D%1").arg(d, 4, 10, QLatin1Char('0')),
                { 7.0 + d * 1e-3, 47.0 + d * 1e-4 });
            device->setMachine(QStringLiteral("M%1").arg(d % 7));
            device->receiverSettings().antennaHeight = d % 30;
            if (d % 2 == 0)
                join(byNumber[d % 100], device);
            else if (d % 10 == 1)
                device->setPositionSettings(
                    new PositionSettingsPtp({ 7.0, 47.0 + d * 1e-3 }, 0.01 * (d % 9 + 1)));
            devices << device;
        }
        DeploymentDataXml deployment;
        deployment.setName(QStringLiteral("Large"));
        deployment.setDevices(devices);
        deployment.setStations(stations);
        const QString path = m_dir.filePath(QStringLiteral("large.xml"));
        QVERIFY(deployment.toXmlFile(path));

        QProcess xmllint;
        xmllint.start(QStringLiteral("xmllint"), { QStringLiteral("--noout"), path });
        QVERIFY(xmllint.waitForFinished(30000));
        QCOMPARE(xmllint.readAllStandardError(), QByteArray());
        QCOMPARE(xmllint.exitCode(), 0);

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
