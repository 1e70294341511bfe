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
    deployment.fromXml(document(
        "FileFormatVersion=\"1\" Name=\"Field\" Author=\"Ops\" PersistantId=\"P1\"",
        "<Description>Two sites &amp; more</Description>"
        "<Device ID=\"D1\" Name=\"name of D1\"><IconId>ant_friend</IconId><Machine>M1</Machine>"
        "<DeviceType>VHF</DeviceType><ReceiverSettings><AntennaHeight>12.5</AntennaHeight>"
        "<AntennaGain>3.14159265</AntennaGain></ReceiverSettings><Station>S1</Station></Device>"
        "<Device ID=\"D2\" Name=\"name of D2\"><Position><Fixed><Lon>8.123456789012345</Lon>"
        "<Lat>-48.1</Lat></Fixed></Position></Device><Station ID=\"S1\" Name=\"S1\"><IconId>"
        "station_friend</IconId><Position><Fixed><Lon>8.5</Lon><Lat>48.25</Lat></Fixed></Position>"
        "</Station>"));
    deployment.devices().value(QStringLiteral("D1"))->setConfiguredStationId(QStringLiteral("C1"));
}

} // namespace

class tst_DeploymentDataXml : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writesTheDocumentForm()
    {
        DeploymentDataXml deployment;
        fill(deployment);
        const QString xml = QString::fromUtf8(deployment.toXml());
        QVERIFY(xml.contains(">\n    <Device ID=\"D1\" Name=\"name of D1\">\n        <IconId>"));
        QCOMPARE(QString(xml).remove(QRegularExpression(QStringLiteral("\\n *"))),
            QStringLiteral(
                R"(<?xml version="1.0" encoding="UTF-8"?>)"
                R"(<SimulationDeployment FileFormatVersion="1" Name="Field" Author="Ops" PersistantId="P1">)"
                R"(<Description>Two sites &amp; more</Description><Device ID="D1" Name="name of D1">)"
                R"(<IconId>ant_friend</IconId><Machine>M1</Machine><ConfiguredStationID>C1)"
                R"(</ConfiguredStationID><DeviceType>VHF</DeviceType><ReceiverSettings>)"
                R"(<AntennaHeight>12.5</AntennaHeight><AntennaGain>3.14159</AntennaGain>)"
                R"(</ReceiverSettings><Station>S1</Station></Device><Device ID="D2" Name="name of D2">)"
                R"(<IconId></IconId><Machine></Machine><ConfiguredStationID></ConfiguredStationID>)"
                R"(<DeviceType></DeviceType><ReceiverSettings><AntennaHeight>7</AntennaHeight>)"
                R"(<AntennaGain>0</AntennaGain></ReceiverSettings><Position><Fixed><Lon>8.1234567890123)"
                R"(</Lon><Lat>-48.1</Lat></Fixed></Position></Device><Station ID="S1" Name="S1">)"
                R"(<IconId>station_friend</IconId><Position><Fixed><Lon>8.5</Lon><Lat>48.25</Lat></Fixed>)"
                R"(</Position></Station></SimulationDeployment>)"));

        // Read back from a file, all but the configured station id; what was read dies when
        // released.
        const QString path = m_dir.filePath(QStringLiteral("field.xml"));
        QVERIFY(deployment.toXmlFile(path));
        QCOMPARE(
            QProcess::execute(QStringLiteral("xmllint"), { QStringLiteral("--noout"), path }), 0);
        std::weak_ptr<DeploymentObject> station;
        {
            DeploymentDataXml back;
            QVERIFY(back.fromXmlFile(path));
            QCOMPARE(summary(back), summary(deployment).replace("|C1|", "||"));
            QVERIFY(!deployment.toXmlFile(m_dir.path()) && !back.fromXmlFile(m_dir.path()));
            QVERIFY(!back.fromXmlFile(m_dir.filePath(QStringLiteral("missing.xml"))));
            station = back.stations().first();
            releaseDeployment(back);
        }
        QVERIFY(station.expired());
        releaseDeployment(deployment);
    }

    void fromXml_data()
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
        // A device with a station puts its old position on the station.
        row("version 0 positions",
            document("",
                "<Station ID=\"S\" Name=\"S\"><Position><Longitude>8.5</Longitude></Position>"
                "</Station><Device ID=\"D\"><Station>S</Station><Position><Longitude>8.75"
                "</Longitude><Latitude>1</Latitude></Position></Device><Device ID=\"E\"><Position>"
                "<Latitude>48.25</Latitude><Fixed><Lon>1</Lon></Fixed><Longitude>8.5</Longitude>"
                "</Position></Device>"),
            true,
            QString("||| ; D=D|||8.75,1|S||||7/0 ; E=E|||8.5,48.25|-||||7/0 ; S=S|S||8.75,1[D]"));
        row("later versions read the new form",
            document("FileFormatVersion=\"2\"",
                "<Device ID=\"D\"><Position><Longitude>8.5</Longitude></Position></Device>"
                "<Device ID=\"R\"><Position><Movement EndBehavior=\"INACTIVE\"><Position "
                "Major=\"true\" Speed=\"36\"><Lon>7"
                "</Lon></Position><Position Major=\"true\" "
                "Speed=\"36\"><Lon>7.01</Lon></Position></Movement>"
                "</Position></Device>"
                "<Station ID=\"S\" Name=\"S\"><Position><Fixed><Lon>8.5</Lon><Lat>x</Lat></Fixed>"
                "</Position></Station>"),
            true,
            QString("||| ; D=D|||0,0|-||||7/0 ; R=R|||7,0|-||||7/0|route until 111319 ; "
                    "S=S|S||8.5,0[]"));
        // A renamed station keeps its key.
        row("station written later",
            document("FileFormatVersion=\"1\"",
                "<Device ID=\"D\" Name=\"d\"><Station>S</Station><Machine>M</Machine></Device>"
                "<Other><Station ID=\"X\"/></Other>"
                "<Station ID=\"S\" Name=\"Renamed\"><IconId>i</IconId>"
                "<Position><Fixed><Lon>1</Lon><Lat>2</Lat></Fixed></Position></Station>"),
            true, QString("||| ; D=D|d||1,2|Renamed||M||7/0 ; S=Renamed|Renamed|i|1,2[D]"));
        row("dangling station",
            document("", "<Device ID=\"D\"><Station>Nowhere</Station></Device>"), true,
            QString("||| ; D=D|||0,0|Nowhere||||7/0 ; Nowhere=Nowhere|Nowhere||0,0[D]"));
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
            QByteArray(
                "<SimulationDeployment Name=\"N\"><Device ID=\"D\"><Machine>M</Machine><Stat"),
            true, QString("N||| ; D=D|||0,0|-||M||7/0"));
    }
    void fromXml()
    {
        QFETCH(QByteArray, xml);
        DeploymentDataXml deployment, back;
        deployment.setName(QStringLiteral("kept"));
        QTEST(deployment.fromXml(xml), "result");
        QTEST(summary(deployment), "summary");
        // What was read is written in the current form and reads back the same, stations under
        // their ids.
        QVERIFY(back.fromXml(deployment.toXml()));
        const QRegularExpression keys(QStringLiteral(" ; \\w+="));
        QCOMPARE(summary(back).remove(keys), summary(deployment).remove(keys));
        releaseDeployment(deployment);
        releaseDeployment(back);
    }

    void readingMergesAndMakesThePersistentIdOnce()
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
        QCOMPARE(QStringList({ parts[0], parts[2] }),
            QStringList({ "Field 7", CfgCenter::GetMachineId() }));
        QCOMPARE(deployment.toXml(), first);
        releaseDeployment(deployment);
        deployment.setDevices({ nullptr, makeDevice(QStringLiteral("X")) });
        deployment.setStations({ nullptr });
        QCOMPARE(
            summary(deployment).section(" ; ", 1), QStringLiteral("X=X|name of X||0,0|-||||7/0"));
    }

private:
    QTemporaryDir m_dir;
};

QTEST_GUILESS_MAIN(tst_DeploymentDataXml)
#include "tst_deploymentdataxml.moc"
