#include <radiosim/platform/cfgcenter.h>
#include <radiosim/platform/msrand.h>

#include "documentstesthelpers.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

using namespace Simulation;

namespace {

QByteArray scenario(const QByteArray &body)
{
    return "<Scenario FileFormatVersion='4' Name='S'>" + body + "</Scenario>";
}

// The saved document without the writer's indentation, so that pieces of it can be looked for.
QString saved(ScenarioDataXml &document)
{
    return QString::fromUtf8(document.toXml()).remove(QRegularExpression(QStringLiteral("\\n *")));
}

} // namespace

class tst_ScenarioDataXml : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Root and header; a failed read leaves the document alone.
    void frame_data()
    {
        columns<QByteArray, QString>("xml", "document");
        row("empty", QByteArray(), QStringLiteral("false before 7 '' ''"));
        row("another root", QByteArray("<Deployment Name='x'/>"),
            QStringLiteral("false before 7 '' ''"));
        row("bare root", QByteArray("<Scenario/>"), QStringLiteral("true  0 '' '' older"));
        row("version 3",
            QByteArray("<Scenario FileFormatVersion='3' Name='n' Duration='600000' Uid='u'/>"),
            QStringLiteral("true n 600000 'u' '' older"));
        row("description element over attribute, in any order",
            QByteArray("<Scenario FileFormatVersion='4' Description='attr'><Description>elem"
                       "</Description><Odd><Description>x</Description></Odd></Scenario>"),
            QStringLiteral("true  0 '' 'elem'"));
        row("numbers out of range",
            QByteArray("<Scenario Duration='4294967296' FileFormatVersion='-4' Description='d'/>"),
            QStringLiteral("true  0 '' 'd' older"));
        // The reader decodes a block at a time: bytes that are no UTF-8 hide the whole block.
        row("bytes that are no UTF-8", QByteArray("<Scenario Name='n'/>\xfe\xff"),
            QStringLiteral("false before 7 '' ''"));
    }
    void frame()
    {
        QFETCH(QByteArray, xml);
        QFETCH(QString, document);
        ScenarioDataXml data(nullptr);
        data.setName(QStringLiteral("before"));
        data.setDuration(7);
        const bool ok = data.fromXml(xml);
        QCOMPARE(QStringLiteral("%1 %2 %3 '%4' '%5'%6")
                     .arg(ok ? "true" : "false", data.getName())
                     .arg(data.getDuration())
                     .arg(data.getPersistantId(), data.getDescription(),
                         ok && data.isOlderFileVersion() ? " older" : ""),
            document);
        QVERIFY(data.scenarioObjects().isEmpty());
    }

    // What the reader makes of each element and attribute, how it forgives, and where it stops
    // early, still answering true.
    void elements_data()
    {
        columns<QByteArray, QStringList>("body", "objects");
        row("attributes; Active by the letters of true; unknown children skipped",
            QByteArray("<Emitter ID='A' Name='Alpha' Active='no' Odd='1'><Description>d"
                       "</Description><Class>c.ico</Class><Odd><Class>x</Class></Odd></Emitter>"
                       "<Emitter ID='B' Active='TRUE-ish'/><Emitter ID='C' Active='1'/>"),
            QStringList { "A 'Alpha' off class=c.ico desc=d", "B", "C off" });
        row("transmitter: Type only as a child, direction wrapped at 360",
            QByteArray("<Emitter ID='A'><Transmitter><Power>12.5</Power><Antenna Type='Yagi'>"
                       "<Gain>3</Gain><HeightOverGround>x</HeightOverGround><Direction>725"
                       "</Direction></Antenna></Transmitter></Emitter><Emitter ID='B'>"
                       "<Transmitter><Antenna><Type>Dipole</Type><Direction>-10</Direction>"
                       "</Antenna></Transmitter></Emitter>"),
            QStringList { "A tx=12.5/Default/3/0/5", "B tx=1/Dipole/0/2/-10" });
        row("frequency: empty is none, absent stays 25 MHz, the last child wins",
            QByteArray(
                "<Emitter ID='A'><Frequency/></Emitter><Emitter ID='B'/><Emitter ID='C'>"
                "<Frequency><Fixed>8e+07</Fixed><Chirp/></Frequency></Emitter>"
                "<Emitter ID='D'><Frequency><Fixed>1e400</Fixed><Hop/></Frequency></Emitter>"),
            QStringList { "A none", "B", "C chirp 2.4e+07-2.6e+07/1000+0.41", "D fixed 0" });
        row("hoppers and chirp in any order; a slow hopper without end behaviour stops",
            QByteArray("<Emitter ID='A'><Frequency><FastHopper><HoppSet>3</HoppSet><HoppRate>50"
                       "</HoppRate><MinimumFrequency>4.45e+07</MinimumFrequency><HoppCount>1000"
                       "</HoppCount><TimeslotOffset>0.5</TimeslotOffset></FastHopper></Frequency>"
                       "</Emitter><Emitter ID='B'><Frequency><SlowHopper><Frequency Duration='100'>"
                       "1e7</Frequency><Step/><Frequency>2e7</Frequency></SlowHopper></Frequency>"
                       "</Emitter><Emitter ID='C'><Frequency><SlowHopper EndBehavior='INACTIVE'/>"
                       "</Frequency></Emitter><Emitter ID='D'><Frequency><Chirp><Duration>250"
                       "</Duration><StopFrequency>1</StopFrequency></Chirp></Frequency></Emitter>"),
            QStringList { "A fast 4.45e+07-2.6e+07 n1000 r50 s3+0.5",
                "B slow STOP 1e+07/100 2e+07/0", "C slow INACTIVE", "D chirp 2.4e+07-1/250+0.67" });
        row("timetable: Broadcast in any case, unlimited period, 64-bit times, references",
            QByteArray("<Emitter ID='A'><EmissionSettings Broadcast='True' "
                       "Duration='9223372036854775807'><Emission ID='7' StartTime='4294967296' "
                       "Duration='10' Emitter='A'/><Emission ID='8' StartTime='5' Duration='6' "
                       "Emitter='Ghost'/><Odd/></EmissionSettings></Emitter><Emitter ID='B'>"
                       "<EmissionSettings Broadcast=' true' Duration='600'><Emission/>"
                       "</EmissionSettings></Emitter>"),
            QStringList { "", "A B9223372036854775807: 0+10>A@-#7 5+6>Ghost@-#8",
                "B M600: 0+0>@-#0", "Ghost" });
        row("groups: forward references, orphans, unknown emissions",
            QByteArray("<Emitter ID='A'><EmissionSettings Duration='100'><Emission ID='3' "
                       "StartTime='10' Emitter='A'/><Groups><Odd/><Group ID='5'><GroupId>6"
                       "</GroupId><GroupId>9</GroupId><EmissionId>3</EmissionId><EmissionId>77"
                       "</EmissionId></Group><Group ID='6'><GroupId>6</GroupId></Group></Groups>"
                       "</EmissionSettings></Emitter>"),
            QStringList { "A M100: 10+0>A@-#3 | 5[e3 e- g6 g0] | 6[g6]" });
        row("links: to a later emitter, to one never defined, to itself, to the empty ID",
            QByteArray("<Emitter ID='A' LinkTarget='B'><Position><Fixed><Lon>1</Lon></Fixed>"
                       "</Position></Emitter><Emitter ID='B'><Position><Fixed><Lat>2</Lat>"
                       "</Fixed></Position></Emitter><Emitter ID='C' LinkTarget='Nowhere'/>"
                       "<Emitter ID='D' LinkTarget='D'/><Emitter ID='E' LinkTarget=''/>"),
            QStringList {
                "", "A link=B at 0,2", "B at 0,2", "C link=Nowhere", "D", "E link=", "Nowhere" });
        row("network: members before their elements, any Head value, odd colour and type",
            QByteArray("<Network ID='N' Name='Net' Active='false'><Color>no colour</Color>"
                       "<NetworkType>hierarchical</NetworkType><Frequency><Fixed>3e7</Fixed>"
                       "</Frequency><EmissionSettings Duration='50'><Emission Emitter='M1' "
                       "Duration='5'/></EmissionSettings><Emitter>M1</Emitter><Emitter Head='no'>"
                       "M2</Emitter></Network><Emitter ID='M1' Name='one'/><Network ID='H'>"
                       "<Color>#006400</Color><NetworkType>Hierarchical</NetworkType></Network>"),
            QStringList { "M1 'one' net=N fixed 3e+07", "M2 net=N fixed 3e+07",
                "net H '' #006400 H head=- [] fixed 2.5e+07 | M9223372036854775807: ",
                "net N 'Net' off invalid S head=M2 [M1 M2] fixed 3e+07 | M50: 0+5>M1@-#0" });
        row("cut: an emitter without ID, its children taken for the root's",
            QByteArray(
                "<Emitter ID='A'/><Emitter Name='x'><Class>c</Class></Emitter><Emitter ID='B'/>"),
            QStringList { "A" });
        row("cut: a network without ID",
            QByteArray("<Network><Emitter>A</Emitter></Network><Emitter ID='B'/>"), QStringList {});
        row("cut: a group without ID shifts the loops",
            QByteArray("<Emitter ID='A'><EmissionSettings Duration='5'><Groups><Group>"
                       "<EmissionId>0</EmissionId></Group><Group ID='1'/></Groups>"
                       "</EmissionSettings><Class>lost</Class></Emitter><Emitter ID='B'/>"),
            QStringList { "A M5: " });
        row("cut: EDWFile on a plain emitter, also one mentioned before its ElintEmitter element",
            QByteArray("<Emitter ID='R' LinkTarget='X'/><ElintEmitter ID='X'><EDWFile2>x"
                       "</EDWFile2><Class>lost</Class></ElintEmitter><Emitter ID='B'/>"),
            QStringList { "R link=X", "X" });
        row("an ELINT element keeps its files",
            QByteArray("<ElintEmitter ID='X'><EDWFile>a</EDWFile><EDWFile2>b</EDWFile2>"
                       "<Class>kept</Class></ElintEmitter>"),
            QStringList { "X elint class=kept" });
        row("cut: an element inside an emission is an XML error",
            QByteArray("<Emitter ID='A'><EmissionSettings Duration='9'><Emission StartTime='1' "
                       "Emitter='A'><x/></Emission></EmissionSettings></Emitter><Emitter ID='B'/>"),
            QStringList { "A M9: 1+0>A@-#0" });
        row("cut: an undefined entity", QByteArray("<Emitter ID='A'/>&undefined;<Emitter ID='B'/>"),
            QStringList { "A" });
    }
    void elements()
    {
        QFETCH(QByteArray, body);
        QFETCH(QStringList, objects);
        // Chirps and fast hoppers draw their phase as they are made.
        MsRuntime::srand(1);
        QCOMPARE(readObjects(scenario(body)), objects);
    }

    // Load and save: what the writer puts otherwise than it was read.
    void asymmetries_data()
    {
        columns<QByteArray, QStringList, QStringList>("body", "written", "absent");
        row("antenna type written as an attribute; ELINT written plain",
            QByteArray("<ElintEmitter ID='X'><EDWFile>a.edw</EDWFile><Transmitter><Antenna>"
                       "<Type>Dipole</Type></Antenna></Transmitter></ElintEmitter>"),
            QStringList { "<Emitter ID=\"X\" Name=\"\" Active=\"true\"><Description></Description>",
                "<Antenna Type=\"Dipole\"><Gain>" },
            QStringList { "<Type>", "Elint", "EDW" });
        row("noise: strangers skipped, the rest at its defaults",
            QByteArray("<NoiseSettings><Density>-20</Density><Noise>1</Noise>"
                       "<FrequencyDependentVariability>2.5</FrequencyDependentVariability>"
                       "</NoiseSettings>"),
            QStringList { "<NoiseSettings><Density>-20</Density><Deviation>-45</Deviation>"
                          "<FrequencyDependentDensity>-35</FrequencyDependentDensity>"
                          "<FrequencyDependentGranularity>0.4</FrequencyDependentGranularity>"
                          "<FrequencyDependentVariability>2.5</FrequencyDependentVariability>"
                          "<AzimuthErrorDeviation>1</AzimuthErrorDeviation></NoiseSettings>" },
            QStringList {});
        row("emission and group ids renumbered in list order",
            QByteArray("<Emitter ID='A'><EmissionSettings Duration='100'><Emission ID='7' "
                       "StartTime='50' Emitter='A'/><Emission ID='2' StartTime='10' Emitter='A'/>"
                       "<Groups><Group ID='9'><EmissionId>7</EmissionId><GroupId>9</GroupId>"
                       "</Group></Groups></EmissionSettings></Emitter>"),
            QStringList { "<Emission ID=\"0\" StartTime=\"10\" Duration=\"0\" Emitter=\"A\"/>"
                          "<Emission ID=\"1\" StartTime=\"50\"",
                "<Groups><Group ID=\"0\"><EmissionId>1</EmissionId><GroupId>0</GroupId></Group>" },
            QStringList {});
        row("six significant digits, fourteen for coordinates, the unlimited period as it is",
            QByteArray("<Emitter ID='A'><Frequency><Fixed>100012600</Fixed></Frequency><Position>"
                       "<Fixed><Lon>11.123456789012345</Lon></Fixed></Position></Emitter>"),
            QStringList { "<Fixed>1.00013e+08</Fixed>", "<Lon>11.123456789012</Lon>",
                "<EmissionSettings Broadcast=\"false\" "
                "Duration=\"9223372036854775807\"><Groups/>" },
            QStringList {});
        row("a member: the network's frequency, no timetable; a linked emitter: the target's place",
            QByteArray("<Emitter ID='M' LinkTarget='T' Default='false'><Frequency><Fixed>1</Fixed>"
                       "</Frequency><Position><Fixed><Lon>1</Lon></Fixed></Position></Emitter>"
                       "<Emitter ID='T'><Position><Fixed><Lon>7</Lon></Fixed></Position></Emitter>"
                       "<Network ID='N'><Frequency><Fixed>3e7</Fixed></Frequency><Emitter>M"
                       "</Emitter></Network>"),
            QStringList { "<Emitter ID=\"M\" Name=\"\" Active=\"true\" Default=\"true\" "
                          "LinkTarget=\"T\">",
                "<Frequency><Fixed>3e+07</Fixed></Frequency><Position><Fixed><Lon>7</Lon>",
                "<Emitter Head=\"true\">M</Emitter>" },
            QStringList { "<Fixed>1</Fixed>", "<Lon>1</Lon>",
                "</Transmitter><Frequency><Fixed>"
                "3e+07</Fixed></Frequency><Emission" });
    }
    void asymmetries()
    {
        QFETCH(QByteArray, body);
        QFETCH(QStringList, written);
        QFETCH(QStringList, absent);
        ScenarioDataXml document(nullptr);
        QVERIFY(document.fromXml(scenario(body)));
        const QString xml = saved(document);
        for (const QString &piece : written)
            QVERIFY2(xml.contains(piece), qPrintable(piece + QLatin1Char('\n') + xml));
        for (const QString &piece : absent)
            QVERIFY2(!xml.contains(piece), qPrintable(piece + QLatin1Char('\n') + xml));
        releaseScenario(document.scenarioObjects());
    }

    // Timing, network Activity and the early SignalPackage element, in a file of any version.
    void olderForms_data()
    {
        columns<QByteArray, QStringList>("body", "objects");
        const QString unlimited = QStringLiteral("9223372036854775807");
        row("Contionus after a package",
            QByteArray("<Emitter ID='A'><SignalPackage>/P</SignalPackage><Timing><Contionus/>"
                       "</Timing></Emitter>"),
            QStringList { "A B" + unlimited + ": 0+" + unlimited + ">A@/P#0" });
        row("Contious, the other spelling; a package that comes too late",
            QByteArray("<Emitter ID='A'><Timing><Contious>x</Contious></Timing><SignalPackage>/P"
                       "</SignalPackage></Emitter>"),
            QStringList { "A B" + unlimited + ": 0+" + unlimited + ">A@-#0" });
        row("Manual: gaps and stretches in turn, with groups; an unknown package",
            QByteArray("<Emitter ID='A'><SignalPackage>/Unknown</SignalPackage><Timing><Manual>"
                       "<Activity InactiveDuration='100' ActiveDuration='50' ID='4'/><Odd/>"
                       "<Activity InactiveDuration='10' ActiveDuration='20' ID='5'/><Groups>"
                       "<Group ID='0'><EmissionId>5</EmissionId></Group></Groups></Manual>"
                       "</Timing></Emitter>"),
            QStringList {
                "A M180: 100+50>A@/Default/Default#4 160+20>A@/Default/Default#5 | 0[e5]" });
        row("Manual: a stretch of 0 makes no emission and still moves on; a cut activity",
            QByteArray("<Emitter ID='A'><Timing><Manual><Activity InactiveDuration='100' "
                       "ActiveDuration='0'/><Activity InactiveDuration='10' ActiveDuration='20'/>"
                       "<Activity InactiveDuration='1' ActiveDuration='2'><x/></Activity></Manual>"
                       "</Timing></Emitter><Emitter ID='B'/>"),
            QStringList { "A M133: 110+20>A@-#0 131+2>A@-#0" });
        row("network Activity: an unknown emitter leaves a gap",
            QByteArray("<Emitter ID='A'/><Emitter ID='B'/><Network ID='N'><SignalPackage>/P"
                       "</SignalPackage><Activity><Manual><Activity Emitter='A' Duration='100' "
                       "ID='1'/><Activity Emitter='Nobody' Duration='50'/><Activity Emitter='B' "
                       "Duration='10' ID='3'/><Activity Emitter='B' Duration='0'/></Manual><Odd/>"
                       "</Activity></Network>"),
            QStringList { "A", "B",
                "net N '' #ff0000 S head=- [] fixed 2.5e+07 | M160: 0+100>A@/P#1 150+10>B@/P#3" });
    }
    void olderForms()
    {
        QFETCH(QByteArray, body);
        QFETCH(QStringList, objects);
        FakeProvider provider({ "/Default/Default", "/P" });
        QCOMPARE(readObjects(scenario(body), &provider), objects);
        // Without a provider the package element is an unknown one.
        QCOMPARE(readObjects(scenario(body)),
            QStringList(objects).replaceInStrings(QRegularExpression("@/[A-Za-z/]+"), "@-"));

        ScenarioDataXml document(&provider);
        QVERIFY(document.fromXml(scenario(body)));
        const QString xml = saved(document);
        QVERIFY(!xml.contains("Timing") && !xml.contains("Activity"));
        QCOMPARE(xml.contains("Broadcast=\"true\""), body.contains("Cont"));
        releaseScenario(document.scenarioObjects());
    }

    void badInput_data()
    {
        columns<QByteArray, int>("xml", "objects");
        const QByteArray deep = QByteArray("<a>").repeated(10000);
        row("10,000 levels in the root", scenario(deep), 0);
        row("10,000 levels in an emitter's frequency",
            scenario("<Emitter ID='A'><Frequency>" + deep), 1);
        row("10,000 nested emitters without ID",
            scenario(QByteArray("<Emitter>").repeated(10000) + "<Emitter ID='A'/>"), 1);
        row("a 4 MB name", scenario("<Emitter ID='A' Name='" + QByteArray(1 << 22, 'n') + "'/>"),
            1);
        QByteArray ring;
        for (int i = 0; i < 1000; ++i)
            ring += "<Emitter ID='" + QByteArray::number(i) + "' LinkTarget='"
                + QByteArray::number((i + 1) % 1000) + "'/>";
        row("1,000 emitters linked in a ring", scenario(ring), 1000);
    }
    void badInput()
    {
        QFETCH(QByteArray, xml);
        QFETCH(int, objects);
        ScenarioDataXml document(nullptr);
        QVERIFY(document.fromXml(xml));
        QCOMPARE(document.scenarioObjects().size(), objects);
        // A link ring has no position to write, and is written all the same.
        QVERIFY(!document.toXml().isEmpty());
        releaseScenario(document.scenarioObjects());
    }

    void persistentIdAndFiles()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("s.scexml"));
        ScenarioDataXml document(nullptr), read(nullptr);
        document.setName(QStringLiteral("a%2b"));
        const qint64 before = QDateTime::currentSecsSinceEpoch();
        QVERIFY(document.toXmlFile(path));
        const QString uid = document.getPersistantId();
        const auto match = QRegularExpression(QStringLiteral("^a(\\d+)b-(\\d+)-(.+)$")).match(uid);
        // A %2 in the name takes the time, as the three arg calls run in turn.
        QVERIFY2(match.hasMatch() && match.captured(1) == match.captured(2), qPrintable(uid));
        QVERIFY(qAbs(match.captured(1).toLongLong() - before) <= 1);
        QCOMPARE(match.captured(3), CfgCenter::GetMachineId());
        QVERIFY(read.fromXmlFile(path));
        document.toXml();
        QCOMPARE(QStringList({ read.getPersistantId(), document.getPersistantId() }),
            QStringList({ uid, uid }));
        QVERIFY(!read.fromXmlFile(dir.filePath(QStringLiteral("missing.scexml"))));
        QVERIFY(!document.toXmlFile(dir.filePath(QStringLiteral("no/such/dir.scexml"))));

        QVERIFY(document.fromXml(QByteArray("<Scenario Uid='kept'/>")));
        document.toXml();
        QCOMPARE(document.getPersistantId(), QStringLiteral("kept"));
    }

    // A second document adds to the first and resolves against its IDs; the last Default wins.
    void secondDocumentAddsToTheFirst()
    {
        ScenarioDataXml document(nullptr);
        QVERIFY(document.fromXml(scenario("<Emitter ID='A' Default=''/>")));
        const auto first = document.getDefaultEmitter();
        QVERIFY(document.fromXml(scenario("<Emitter ID='B' LinkTarget='A' Default='false'/>")));
        QCOMPARE(document.scenarioObjects().size(), 2);
        QVERIFY(first && document.getDefaultEmitter()->linkTargetEmitter() == first);
        releaseScenario(document.scenarioObjects());
    }

    // A fragment holds the objects given: a member outside them is dropped. Cut at any byte, it
    // reads what stands before the cut: at least every object whose start tag is whole.
    void fragmentsAndPrefixes()
    {
        QVERIFY(ScenarioDataXml::objectsForXml(QStringLiteral("<Deployment/>"), nullptr).isEmpty());
        const Objects generated = generatedScenario(5, 1, 1, nullptr);
        Objects part = generated;
        for (const auto &object : generated) {
            if (object->id() == QLatin1String("E4"))
                part.remove(object);
        }
        const QString xml = ScenarioDataXml::xmlForObjects(part, nullptr);
        releaseScenario(generated);
        QVERIFY(xml.contains(QStringLiteral("Name=\"\" Author=\"\" Uid=\"-")));
        const Objects objects = ScenarioDataXml::objectsForXml(xml, nullptr);
        QCOMPARE(describeScenario(objects).last(),
            QStringLiteral("net N0 '' #006400 S head=E0 [E0 E1 E2 E3] fixed 2.5e+07 | "
                           "M50000: 0+5000>E0@-#0 10000+5000>E1@-#1 20000+5000>E2@-#2 "
                           "30000+5000>E3@-#3 40000+5000>E4@-#4 | 0[e0 e1 e2 e3 e4]"));
        releaseScenario(objects);

        const int rootRead = xml.indexOf('>', xml.indexOf("<Scenario "));
        const QRegularExpression object(QStringLiteral("<(Emitter|Network) ID=[^>]*>"));
        for (int cut = 0; cut <= xml.size(); ++cut) {
            ScenarioDataXml document(nullptr);
            QCOMPARE(document.fromXml(xml.left(cut).toUtf8()), cut > rootRead);
            const Objects read = document.scenarioObjects();
            QVERIFY(read.size() >= xml.left(cut).count(object));
            QVERIFY(cut < xml.size() || read.size() == 6);
            releaseScenario(read);
        }
    }
};

QTEST_GUILESS_MAIN(tst_ScenarioDataXml)
#include "tst_scenariodataxml.moc"
