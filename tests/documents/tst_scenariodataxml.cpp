#include <radiosim/documents/scenariodataxml.h>
#include <radiosim/platform/cfgcenter.h>
#include <radiosim/platform/msrand.h>

#include "documentstesthelpers.h"

#include <QDateTime>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

using namespace Simulation;

namespace {

QByteArray scenario(const QByteArray &body)
{
    return "<Scenario FileFormatVersion='4' Name='S'>" + body + "</Scenario>";
}

// Reads the bytes into a new document and describes its objects, one line each; the objects are
// released afterwards.
QStringList readObjects(const QByteArray &xml, ISignalPackageProvider *provider = nullptr)
{
    ScenarioDataXml document(provider);
    document.fromXml(xml);
    const auto objects = document.scenarioObjects();
    const QStringList lines = describeScenario(objects);
    releaseScenario(objects);
    return lines;
}

// An emitter as the constructor leaves it, under the given id.
QString plain(const QString &id)
{
    return id
        + QStringLiteral(" '' class '' desc '' | tx 1 Default 0 2 0 | fixed 2.5e+07 | "
                         "M9223372036854775807:  | at 0,0");
}

// The saved document without the writer's indentation, so that pieces of it can be looked for.
QString compact(const QByteArray &xml)
{
    return QString::fromUtf8(xml).remove(QRegularExpression(QStringLiteral("\\n *")));
}

} // namespace

class tst_ScenarioDataXml : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Root, header and what a failed read leaves alone.
    void frame_data()
    {
        columns<QByteArray, QString>("xml", "document");
        row("empty", QByteArray(), QStringLiteral("false 'before' 7 ''"));
        row("another root", QByteArray("<Deployment Name='x'/>"),
            QStringLiteral("false 'before' 7 ''"));
        row("no XML", QByteArray("\x00\x01\xff garbage", 12),
            QStringLiteral("false 'before' 7 ''"));
        row("bare root", QByteArray("<Scenario/>"), QStringLiteral("true '' 0 '' older 0 objects"));
        row("version 3",
            QByteArray("<Scenario FileFormatVersion='3' Name='n' Author='a' "
                       "Duration='600000' Uid='u'/>"),
            QStringLiteral("true 'n' 600000 'u' by a older 0 objects"));
        row("version 4, description as attribute and element",
            QByteArray("<Scenario FileFormatVersion='4' Description='attr'><Description>elem"
                       "</Description></Scenario>"),
            QStringLiteral("true '' 0 '' desc elem 0 objects"));
        row("element before attribute still wins",
            QByteArray(
                "<Scenario Description='attr' FileFormatVersion='5'><Unknown><Emitter ID='x'/>"
                "</Unknown></Scenario>"),
            QStringLiteral("true '' 0 '' desc attr 0 objects"));
        row("numbers out of range",
            QByteArray("<Scenario Duration='4294967296' FileFormatVersion='-4'/>"),
            QStringLiteral("true '' 0 '' older 0 objects"));
    }
    void frame()
    {
        QFETCH(QByteArray, xml);
        QFETCH(QString, document);
        ScenarioDataXml data(nullptr);
        data.setName(QStringLiteral("before"));
        data.setDuration(7);
        const bool ok = data.fromXml(xml);
        QString text = QStringLiteral("%1 '%2' %3 '%4'")
                           .arg(ok ? "true" : "false", data.getName())
                           .arg(data.getDuration())
                           .arg(data.getPersistantId());
        if (ok) {
            if (!data.getAuthor().isEmpty())
                text += QStringLiteral(" by ") + data.getAuthor();
            if (!data.getDescription().isEmpty())
                text += QStringLiteral(" desc ") + data.getDescription();
            if (data.isOlderFileVersion())
                text += QStringLiteral(" older");
            text += QStringLiteral(" %1 objects").arg(data.scenarioObjects().size());
        }
        QCOMPARE(text, document);
    }

    // What the reader makes of each element and attribute, and how it forgives.
    void elements_data()
    {
        columns<QByteArray, QStringList>("body", "objects");
        row("attributes; Active by the letters of true; unknown children skipped",
            QByteArray("<Emitter ID='A' Name='Alpha' Active='no' Odd='1'><Description>d"
                       "</Description><Class>Emitter-White.ico</Class><Odd><Class>x</Class></Odd>"
                       "</Emitter><Emitter ID='B' Active='TRUE-ish'/><Emitter ID='C' Active='1'/>"),
            QStringList { "A 'Alpha' off class 'Emitter-White.ico' desc 'd' | tx 1 Default 0 2 0 | "
                          "fixed 2.5e+07 | M9223372036854775807:  | at 0,0",
                plain("B"), plain("C").replace("C ''", "C '' off") });
        row("transmitter: Type only as a child, direction wrapped at 360",
            QByteArray("<Emitter ID='A'><Transmitter><Power>12.5</Power><Antenna Type='Yagi'>"
                       "<Gain>3</Gain><HeightOverGround>bad</HeightOverGround><Direction>725"
                       "</Direction></Antenna></Transmitter></Emitter><Emitter ID='B'><Transmitter>"
                       "<Antenna><Type>Dipole</Type><Direction>-10</Direction></Antenna>"
                       "</Transmitter></Emitter>"),
            QStringList { plain("A").replace("tx 1 Default 0 2 0", "tx 12.5 Default 3 0 5"),
                plain("B").replace("tx 1 Default 0 2 0", "tx 1 Dipole 0 2 -10") });
        row("frequency: empty is none, absent stays 25 MHz, the last child wins",
            QByteArray("<Emitter ID='A'><Frequency/></Emitter><Emitter ID='B'/>"
                       "<Emitter ID='C'><Frequency><Fixed>8e+07</Fixed><Chirp/></Frequency>"
                       "</Emitter><Emitter ID='D'><Frequency><Fixed>1.00013e+08</Fixed><Hop/>"
                       "</Frequency></Emitter>"),
            QStringList { plain("A").replace("fixed 2.5e+07", "none"), plain("B"),
                plain("C").replace("fixed 2.5e+07", "chirp 2.4e+07-2.6e+07/1000+0.41"),
                plain("D").replace("2.5e+07", "1.00013e+08") });
        row("hoppers and chirp in any order; slow hopper without end behaviour stops",
            QByteArray("<Emitter ID='A'><Frequency><FastHopper><HoppSet>3</HoppSet>"
                       "<MinimumFrequency>4.45e+07</MinimumFrequency><HoppCount>1000</HoppCount>"
                       "<MaximumFrequency>4.65e+07</MaximumFrequency><HoppRate>50</HoppRate>"
                       "<TimeslotOffset>0.5</TimeslotOffset></FastHopper></Frequency></Emitter>"
                       "<Emitter ID='B'><Frequency><SlowHopper><Frequency Duration='100'>1e7"
                       "</Frequency><Step/><Frequency>2e7</Frequency></SlowHopper></Frequency>"
                       "</Emitter><Emitter ID='C'><Frequency><SlowHopper EndBehavior='INACTIVE'/>"
                       "</Frequency></Emitter><Emitter ID='D'><Frequency><Chirp><Duration>250"
                       "</Duration><TimeslotOffset>0.25</TimeslotOffset><StopFrequency>1"
                       "</StopFrequency><StartFrequency>2</StartFrequency></Chirp></Frequency>"
                       "</Emitter>"),
            QStringList {
                plain("A").replace("fixed 2.5e+07", "fast 4.45e+07-4.65e+07 n1000 r50 s3+0.5"),
                plain("B").replace("fixed 2.5e+07", "slow STOP 1e+07/100 2e+07/0"),
                plain("C").replace("fixed 2.5e+07", "slow INACTIVE"),
                plain("D").replace("fixed 2.5e+07", "chirp 2-1/250+0.25") });
        row("timetable: Broadcast in any case, unlimited period, 64-bit times, references",
            QByteArray("<Emitter ID='A'><EmissionSettings Broadcast='True' "
                       "Duration='9223372036854775807'><Emission ID='7' StartTime='4294967296' "
                       "Duration='10' Emitter='A'/><Emission ID='8' StartTime='5' Duration='6' "
                       "Emitter='Ghost' SignalPackage='/Other'/><Odd/></EmissionSettings>"
                       "</Emitter><Emitter ID='B'><EmissionSettings Broadcast=' true' "
                       "Duration='600'><Emission StartTime='1' Duration='2'/></EmissionSettings>"
                       "</Emitter>"),
            QStringList { plain(""),
                plain("A").replace(
                    "M9223372036854775807: ", "B9223372036854775807: 0+10>A@-#7 5+6>Ghost@-#8"),
                plain("B").replace("M9223372036854775807: ", "M600: 1+2>@-#0"), plain("Ghost") });
        row("groups: forward references, orphans, unknown emissions",
            QByteArray("<Emitter ID='A'><EmissionSettings Duration='100'><Emission ID='3' "
                       "StartTime='10' Duration='1' Emitter='A'/><Emission ID='4' StartTime='20' "
                       "Duration='1' Emitter='A'/><Groups><Odd/><Group ID='5'><GroupId>6</GroupId>"
                       "<GroupId>9</GroupId><EmissionId>3</EmissionId><EmissionId>77</EmissionId>"
                       "</Group><Group ID='6'><EmissionId>4</EmissionId><GroupId>6</GroupId>"
                       "</Group></Groups></EmissionSettings></Emitter>"),
            QStringList { plain("A").replace("M9223372036854775807: ",
                "M100: 10+1>A@-#3 20+1>A@-#4 | 5[e3 e- g6 g0] 6[e4 g6]") });
        row("links: to a later emitter, to one never defined, to itself",
            QByteArray("<Emitter ID='A' LinkTarget='B'><Position><Fixed><Lon>1</Lon></Fixed>"
                       "</Position></Emitter><Emitter ID='B'><Position><Fixed><Lat>2</Lat></Fixed>"
                       "</Position></Emitter><Emitter ID='C' LinkTarget='Nowhere'/>"
                       "<Emitter ID='D' LinkTarget='D'/><Emitter ID='E' LinkTarget=''/>"),
            QStringList { plain(""),
                plain("A").replace("| fixed", "| link B | fixed").replace("at 0,0", "at 0,2"),
                plain("B").replace("at 0,0", "at 0,2"),
                plain("C").replace("| fixed", "| link Nowhere | fixed"), plain("D"),
                plain("E").replace("| fixed", "| link  | fixed"), plain("Nowhere") });
        row("network: members before their elements, any Head value, odd colour and type",
            QByteArray("<Network ID='N' Name='Net' Active='false'><Description>d</Description>"
                       "<Color>no colour</Color><NetworkType>hierarchical</NetworkType>"
                       "<Frequency><Fixed>3e7</Fixed></Frequency><EmissionSettings Duration='50'>"
                       "<Emission ID='0' StartTime='0' Duration='5' Emitter='M1'/>"
                       "</EmissionSettings><Emitter>M1</Emitter><Emitter Head='no'>M2</Emitter>"
                       "</Network><Emitter ID='M1' Name='one'/><Network Name='no ID'/>"
                       "<Emitter ID='M3'/>"),
            QStringList { "M1 'one' class '' desc '' | tx 1 Default 0 2 0 | net N | fixed 3e+07 "
                          "| at 0,0",
                "M2 '' class '' desc '' | tx 1 Default 0 2 0 | net N | fixed 3e+07 | at 0,0",
                "net N 'Net' off desc 'd' invalid S head M2 [M1 M2] | fixed 3e+07 | "
                "M50: 0+5>M1@-#0" });
        row("network: exact texts, any other type is a star",
            QByteArray("<Network ID='H'><Color>#006400</Color><NetworkType>Hierarchical"
                       "</NetworkType></Network><Network ID='S'><NetworkType>Ring</NetworkType>"
                       "</Network>"),
            QStringList { "net H '' desc '' #006400 H head - [] | fixed 2.5e+07 | "
                          "M9223372036854775807: ",
                "net S '' desc '' #ff0000 S head - [] | fixed 2.5e+07 | M9223372036854775807: " });
    }
    void elements()
    {
        QFETCH(QByteArray, body);
        QFETCH(QStringList, objects);
        // Chirps and fast hoppers draw their phase as they are made.
        MsRuntime::srand(1);
        QCOMPARE(readObjects(scenario(body)), objects);
    }

    void noiseSettings()
    {
        ScenarioDataXml document(nullptr);
        QVERIFY(document.fromXml(scenario("<NoiseSettings><Density>-20</Density><Noise>1</Noise>"
                                          "<FrequencyDependentVariability>2.5"
                                          "</FrequencyDependentVariability></NoiseSettings>")));
        ScenarioNoiseSettings expected;
        expected.setNoiseDensity(-20);
        expected.setFrequencyDependentNoiseVariability(2.5);
        QVERIFY(document.getNoiseSettings() == expected);
        QCOMPARE(document.getNoiseSettings().azimuthErrorDeviation(), 1.0);
    }

    // Load and save: what the writer puts differently from what was read.
    void asymmetries_data()
    {
        columns<QByteArray, QStringList, QStringList>("body", "saved", "absent");
        row("antenna type written as an attribute, read only as a child",
            QByteArray("<Emitter ID='A'><Transmitter><Antenna Type='Yagi'><Type>Dipole</Type>"
                       "</Antenna></Transmitter></Emitter>"),
            QStringList { "<Antenna Type=\"Dipole\"><Gain>0</Gain><HeightOverGround>2"
                          "</HeightOverGround><Direction>0</Direction></Antenna>" },
            QStringList { "<Type>" });
        row("an ELINT emitter comes back plain",
            QByteArray("<ElintEmitter ID='X' Name='e'><EDWFile>a.edw</EDWFile><EDWFile2>b.edw"
                       "</EDWFile2><Class>c</Class></ElintEmitter>"),
            QStringList { "<Emitter ID=\"X\" Name=\"e\" Active=\"true\"><Description></Description>"
                          "<Class>c</Class>" },
            QStringList { "Elint", "EDW" });
        row("emission and group ids renumbered in list order",
            QByteArray("<Emitter ID='A'><EmissionSettings Duration='100'><Emission ID='7' "
                       "StartTime='50' Duration='5' Emitter='A'/><Emission ID='2' StartTime='10' "
                       "Duration='5' Emitter='A'/><Groups><Group ID='9'><EmissionId>7</EmissionId>"
                       "<GroupId>9</GroupId></Group></Groups></EmissionSettings></Emitter>"),
            QStringList { "<EmissionSettings Broadcast=\"false\" Duration=\"100\">"
                          "<Emission ID=\"0\" StartTime=\"10\" Duration=\"5\" "
                          "Emitter=\"A\"/><Emission ID=\"1\" StartTime=\"50\" "
                          "Duration=\"5\" Emitter=\"A\"/><Groups><Group ID=\"0\">"
                          "<EmissionId>1</EmissionId><GroupId>0</GroupId></Group></Groups>" },
            QStringList {});
        row("six significant digits, fourteen for coordinates; no period written as such",
            QByteArray("<Emitter ID='A'><Frequency><Fixed>100012600</Fixed></Frequency>"
                       "<Position><Fixed><Lon>11.123456789012345</Lon><Lat>48.2</Lat></Fixed>"
                       "</Position></Emitter>"),
            QStringList { "<Fixed>1.00013e+08</Fixed>", "<Lon>11.123456789012</Lon>",
                "<EmissionSettings Broadcast=\"false\" Duration=\"9223372036854775807\">"
                "<Groups/></EmissionSettings>" },
            QStringList {});
        row("a member carries the network's frequency and no timetable",
            QByteArray("<Emitter ID='M'><Frequency><Fixed>1</Fixed></Frequency></Emitter>"
                       "<Network ID='N'><Frequency><Fixed>3e7</Fixed></Frequency><Emitter>M"
                       "</Emitter></Network>"),
            QStringList { "<Frequency><Fixed>3e+07</Fixed></Frequency><Position>",
                "<Emitter Head=\"true\">M</Emitter>" },
            QStringList { "<Fixed>1</Fixed>",
                "<Emitter ID=\"M\" Name=\"\" "
                "Active=\"true\"><Description/><Class/><Transm"
                "itter><Power>1</Power><Antenna Type=\"Default\">"
                "<Gain>0</Gain><HeightOverGround>2"
                "</HeightOverGround><Direction>0</Direction>"
                "</Antenna></Transmitter><Frequency><Fixed>3e+07"
                "</Fixed></Frequency><EmissionSettings" });
        row("a linked emitter carries its target's position; any Default value marks",
            QByteArray("<Emitter ID='L' LinkTarget='T' Default='false'><Position><Fixed><Lon>1"
                       "</Lon></Fixed></Position></Emitter><Emitter ID='T'><Position><Fixed>"
                       "<Lon>7</Lon></Fixed></Position></Emitter>"),
            QStringList { "<Emitter ID=\"L\" Name=\"\" Active=\"true\" Default=\"true\" "
                          "LinkTarget=\"T\">" },
            QStringList { "<Lon>1</Lon>",
                "<Emitter ID=\"T\" Name=\"\" Active=\"true\" "
                "Default" });
    }
    void asymmetries()
    {
        QFETCH(QByteArray, body);
        QFETCH(QStringList, saved);
        QFETCH(QStringList, absent);
        ScenarioDataXml document(nullptr);
        QVERIFY(document.fromXml(scenario(body)));
        const QString xml = compact(document.toXml());
        for (const QString &piece : saved)
            QVERIFY2(xml.contains(piece), qPrintable(piece + QLatin1Char('\n') + xml));
        for (const QString &piece : absent)
            QVERIFY2(!xml.contains(piece), qPrintable(piece + QLatin1Char('\n') + xml));
        releaseScenario(document.scenarioObjects());
    }

    // Timing, network Activity and the early SignalPackage element, in a file of any version.
    void olderForms_data()
    {
        columns<QByteArray, QStringList>("body", "objects");
        row("Contionus after a package",
            QByteArray("<Emitter ID='A'><SignalPackage>/P</SignalPackage><Timing><Contionus/>"
                       "</Timing></Emitter>"),
            QStringList { plain("A").replace(
                "M9223372036854775807: ", "B9223372036854775807: 0+9223372036854775807>A@/P#0") });
        row("Contious, the other spelling; the package comes too late",
            QByteArray("<Emitter ID='A'><Timing><Contious>x</Contious></Timing><SignalPackage>/P"
                       "</SignalPackage></Emitter>"),
            QStringList { plain("A").replace(
                "M9223372036854775807: ", "B9223372036854775807: 0+9223372036854775807>A@-#0") });
        row("Manual: gaps and stretches in turn, with groups",
            QByteArray("<Emitter ID='A'><SignalPackage>/Unknown</SignalPackage><Timing><Manual>"
                       "<Activity InactiveDuration='100' ActiveDuration='50' ID='4'/><Odd/>"
                       "<Activity InactiveDuration='10' ActiveDuration='20' ID='5'/><Groups>"
                       "<Group ID='0'><EmissionId>5</EmissionId></Group></Groups></Manual>"
                       "</Timing></Emitter>"),
            QStringList { plain("A").replace("M9223372036854775807: ",
                "M180: 100+50>A@/Default/Default#4 160+20>A@/Default/Default#5 | 0[e5]") });
        row("Manual: a stretch of 0 makes no emission and still moves on",
            QByteArray("<Emitter ID='A'><Timing><Manual><Activity InactiveDuration='100' "
                       "ActiveDuration='0'/><Activity InactiveDuration='10' ActiveDuration='20'/>"
                       "</Manual></Timing></Emitter>"),
            QStringList { plain("A").replace("M9223372036854775807: ", "M130: 110+20>A@-#0") });
        row("an empty Manual leaves no period",
            QByteArray("<Emitter ID='A'><EmissionSettings Duration='5'/><Timing><Manual/>"
                       "</Timing></Emitter>"),
            QStringList { plain("A") });
        row("network Activity: an unknown emitter leaves a gap",
            QByteArray("<Emitter ID='A'/><Emitter ID='B'/><Network ID='N'><SignalPackage>/P"
                       "</SignalPackage><Activity><Manual><Activity Emitter='A' Duration='100' "
                       "ID='1'/><Activity Emitter='Nobody' Duration='50'/><Activity Emitter='B' "
                       "Duration='10' ID='3'/><Activity Emitter='B' Duration='0'/></Manual><Odd/>"
                       "</Activity><Emitter>A</Emitter></Network>"),
            QStringList { plain("A").replace("| fixed 2.5e+07 | M9223372036854775807: ",
                              "| net N | fixed 2.5e+07"),
                plain("B"),
                "net N '' desc '' #ff0000 S head A [A] | fixed 2.5e+07 | "
                "M160: 0+100>A@/P#1 150+10>B@/P#3" });
    }
    void olderForms()
    {
        QFETCH(QByteArray, body);
        QFETCH(QStringList, objects);
        FakeProvider provider({ "/Default/Default", "/P" });
        QCOMPARE(readObjects(scenario(body), &provider), objects);
        // Without a provider the package element is an unknown one.
        QStringList unresolved = objects;
        unresolved.replaceInStrings(QRegularExpression("@/[A-Za-z/]+"), "@-");
        QCOMPARE(readObjects(scenario(body)), unresolved);
    }

    void olderFormIsSavedInTheCurrentForm()
    {
        FakeProvider provider;
        ScenarioDataXml document(&provider);
        QVERIFY(document.fromXml(QByteArray("<Scenario FileFormatVersion='2'><Emitter ID='A'>"
                                            "<SignalPackage>/Default/Default</SignalPackage>"
                                            "<Timing><Contionus/></Timing></Emitter></Scenario>")));
        QVERIFY(document.isOlderFileVersion());
        const QString xml = compact(document.toXml());
        QVERIFY2(xml.contains("<Scenario FileFormatVersion=\"4\"") && !xml.contains("Timing")
                && xml.contains(
                    "<EmissionSettings Broadcast=\"true\" Duration=\"9223372036854775807\">"
                    "<Emission ID=\"0\" StartTime=\"0\" Duration=\"9223372036854775807\" "
                    "Emitter=\"A\" SignalPackage=\"/Default/Default\"/>"),
            qPrintable(xml));
        releaseScenario(document.scenarioObjects());
    }

    // Where reading stops early and what it keeps; the read still answers true.
    void cutOff_data()
    {
        columns<QByteArray, QStringList, QString>("body", "objects", "description");
        row("an emitter without ID: its children taken for the root's",
            QByteArray("<Emitter Name='x'><Description>inner</Description><Class>c</Class>"
                       "</Emitter><Emitter ID='Lost'/><Description>late</Description>"),
            QStringList {}, QStringLiteral("inner"));
        row("a network without ID",
            QByteArray("<Emitter ID='A'/><Network><Emitter>A</Emitter></Network><Emitter ID='B'/>"),
            QStringList { plain("A") }, QString());
        row("a group without ID shifts the loops",
            QByteArray("<Emitter ID='A'><EmissionSettings Duration='5'><Groups><Group>"
                       "<EmissionId>0</EmissionId></Group><Group ID='1'/></Groups>"
                       "</EmissionSettings><Class>lost</Class></Emitter><Emitter ID='B'/>"),
            QStringList { plain("A").replace("M9223372036854775807: ", "M5: ") }, QString());
        row("EDWFile on a plain emitter",
            QByteArray("<Emitter ID='A'><EDWFile>x.edw</EDWFile><Class>lost</Class></Emitter>"
                       "<Emitter ID='B'/>"),
            QStringList { plain("A") }, QString());
        row("an ELINT element after a reference stays plain and is cut",
            QByteArray("<Emitter ID='R' LinkTarget='X'/><ElintEmitter ID='X'><EDWFile2>x"
                       "</EDWFile2><Class>lost</Class></ElintEmitter><Emitter ID='B'/>"),
            QStringList { plain("R").replace("| fixed", "| link X | fixed"), plain("X") },
            QString());
        row("an ELINT element keeps its files",
            QByteArray("<ElintEmitter ID='X'><EDWFile>a</EDWFile><EDWFile2>b</EDWFile2>"
                       "<Class>kept</Class></ElintEmitter>"),
            QStringList { "elint " + plain("X").replace("class ''", "class 'kept'") }, QString());
        row("an element inside an emission is an XML error",
            QByteArray("<Emitter ID='A'><EmissionSettings Duration='9'><Emission ID='0' "
                       "StartTime='1' Duration='2' Emitter='A'><x/></Emission></EmissionSettings>"
                       "</Emitter><Emitter ID='B'/>"),
            QStringList { plain("A").replace("M9223372036854775807: ", "M9: 1+2>A@-#0") },
            QString());
        row("an element inside an older activity",
            QByteArray("<Emitter ID='A'><Timing><Manual><Activity InactiveDuration='1' "
                       "ActiveDuration='2'><x/></Activity></Manual></Timing></Emitter>"
                       "<Emitter ID='B'/>"),
            QStringList { plain("A").replace("M9223372036854775807: ", "M3: 1+2>A@-#0") },
            QString());
        row("garbage after the first emitter",
            QByteArray("<Emitter ID='A'/>&undefined;<Emitter ID='B'/>"), QStringList { plain("A") },
            QString());
    }
    void cutOff()
    {
        QFETCH(QByteArray, body);
        QFETCH(QStringList, objects);
        QFETCH(QString, description);
        ScenarioDataXml document(nullptr);
        QVERIFY(document.fromXml(scenario(body)));
        QCOMPARE(document.getDescription(), description);
        const auto read = document.scenarioObjects();
        QCOMPARE(describeScenario(read), objects);
        releaseScenario(read);
    }

    // A document cut at every byte reads what stands before the cut.
    void everyPrefixReads()
    {
        const auto objects = generatedScenario(5, 1, 1, nullptr);
        const QByteArray xml = ScenarioDataXml::xmlForObjects(objects, nullptr).toUtf8();
        releaseScenario(objects);
        int fifth = -1;
        for (int i = 0; i < 5; ++i)
            fifth = xml.indexOf("<Emitter ID=", fifth + 1);
        const int middleOfFifth = xml.indexOf("<Transmitter>", fifth);
        const int rootRead = xml.indexOf('>', xml.indexOf("<Scenario "));
        for (int cut = 0; cut <= xml.size(); ++cut) {
            ScenarioDataXml document(nullptr);
            QCOMPARE(document.fromXml(xml.left(cut)), cut > rootRead);
            const auto read = document.scenarioObjects();
            if (cut == middleOfFifth) {
                QStringList emitters = describeScenario(read);
                QCOMPARE(emitters.size(), 5);
                const QString id = xml.mid(fifth + 13, xml.indexOf('"', fifth + 13) - fifth - 13);
                QVERIFY(emitters
                            .filter(QRegularExpression(
                                QStringLiteral("^%1 .*class 'Emitter-White.ico'"
                                               " desc 'generated' .*fixed 2.5e\\+07")
                                    .arg(id)))
                            .size()
                    == 1);
            }
            releaseScenario(read);
        }
    }

    void badInput_data()
    {
        columns<QByteArray, QString>("xml", "result");
        const QByteArray deep = QByteArray("<a>").repeated(10000);
        row("10,000 levels in the root", scenario(deep), QStringLiteral("true 0"));
        row("10,000 levels in an emitter's frequency",
            scenario("<Emitter ID='A'><Frequency>" + deep + "</Frequency></Emitter>"),
            QStringLiteral("true 1"));
        row("10,000 nested emitters without ID",
            scenario(QByteArray("<Emitter>").repeated(10000) + "<Emitter ID='A'/>"),
            QStringLiteral("true 1"));
        row("10,000 nested groups",
            scenario("<Emitter ID='A'><EmissionSettings><Groups>"
                + QByteArray("<Group ID='1'>").repeated(10000) + "</Group>"),
            QStringLiteral("true 1"));
        row("a 4 MB name", scenario("<Emitter ID='A' Name='" + QByteArray(1 << 22, 'n') + "'/>"),
            QStringLiteral("true 1"));
        // The reader decodes a block at a time: bytes that are no UTF-8 hide the whole block.
        row("bytes that are no UTF-8", QByteArray("<Scenario><Emitter ID='A'/>\xfe\xff"),
            QStringLiteral("false 0"));
        row("characters that are no XML", QByteArray("<Scenario><Emitter ID='A'/>\x01\x02<<"),
            QStringLiteral("true 1"));
        row(
            "1,000 emitters linked in a ring",
            [] {
                QByteArray body;
                for (int i = 0; i < 1000; ++i)
                    body += "<Emitter ID='" + QByteArray::number(i) + "' LinkTarget='"
                        + QByteArray::number((i + 1) % 1000) + "'/>";
                return scenario(body);
            }(),
            QStringLiteral("true 1000"));
    }
    void badInput()
    {
        QFETCH(QByteArray, xml);
        QFETCH(QString, result);
        ScenarioDataXml document(nullptr);
        const bool ok = document.fromXml(xml);
        const auto objects = document.scenarioObjects();
        QCOMPARE(QStringLiteral("%1 %2").arg(ok ? "true" : "false").arg(objects.size()), result);
        // A link cycle has no position to write, and is written all the same.
        QVERIFY(!document.toXml().isEmpty());
        releaseScenario(objects);
    }

    void persistentId()
    {
        ScenarioDataXml document(nullptr);
        document.setName(QStringLiteral("a%2b"));
        const qint64 before = QDateTime::currentSecsSinceEpoch();
        document.toXml();
        const qint64 after = QDateTime::currentSecsSinceEpoch();
        const QString uid = document.getPersistantId();
        const QRegularExpressionMatch match
            = QRegularExpression(QStringLiteral("^a(\\d+)b-(\\d+)-(.+)$")).match(uid);
        QVERIFY2(match.hasMatch() && match.captured(1) == match.captured(2), qPrintable(uid));
        QVERIFY(
            match.captured(1).toLongLong() >= before && match.captured(1).toLongLong() <= after);
        QCOMPARE(match.captured(3), CfgCenter::GetMachineId());
        QVERIFY(compact(document.toXml()).contains(QStringLiteral("Uid=\"%1\"").arg(uid)));
        QCOMPARE(document.getPersistantId(), uid);

        ScenarioDataXml read(nullptr);
        QVERIFY(read.fromXml(QByteArray("<Scenario Uid='kept'/>")));
        read.toXml();
        QCOMPARE(read.getPersistantId(), QStringLiteral("kept"));
    }

    void secondDocumentAddsToTheFirst()
    {
        ScenarioDataXml document(nullptr);
        QVERIFY(document.fromXml(scenario("<Emitter ID='A' Name='first' Default=''/>")));
        const auto first = document.getDefaultEmitter();
        QVERIFY(document.fromXml(scenario("<Emitter ID='B' LinkTarget='A' Default='false'/>")));
        QCOMPARE(document.scenarioObjects().size(), 2);
        const auto second = document.getDefaultEmitter();
        QVERIFY(
            second && second->id() == QStringLiteral("B") && second->linkTargetEmitter() == first);
        QCOMPARE(document.getName(), QStringLiteral("S"));
        releaseScenario(document.scenarioObjects());
    }

    void fragmentsAndFiles()
    {
        QVERIFY(ScenarioDataXml::objectsForXml(QStringLiteral("<Deployment/>"), nullptr).isEmpty());
        const auto outsider = std::make_shared<SzenarioEmitter>(QStringLiteral("O"), QString());
        const auto member = std::make_shared<SzenarioEmitter>(QStringLiteral("M"), QString());
        const auto network = std::make_shared<ScenarioNetwork>(QStringLiteral("N"));
        for (const auto &emitter : { outsider, member }) {
            network->addEmitter(emitter);
            emitter->setScenarioNetwork(network);
        }
        const QString xml = ScenarioDataXml::xmlForObjects({ network, member }, nullptr);
        QVERIFY(xml.contains(QStringLiteral("Name=\"\" Author=\"\" Uid=\"-")));
        const auto objects = ScenarioDataXml::objectsForXml(xml, nullptr);
        QCOMPARE(describeScenario(objects),
            QStringList(
                { "M '' class '' desc '' | tx 1 Default 0 2 0 | net N | fixed 2.5e+07 | at 0,0",
                    "net N '' desc '' #ff0000 S head M [M] | fixed 2.5e+07 | "
                    "M9223372036854775807: " }));
        releaseScenario(objects);
        releaseScenario({ network, member, outsider });

        QTemporaryDir dir;
        ScenarioDataXml document(nullptr);
        QVERIFY(!document.fromXmlFile(dir.filePath(QStringLiteral("missing.scexml"))));
        QVERIFY(!document.toXmlFile(dir.filePath(QStringLiteral("no/such/dir.scexml"))));
        document.setName(QStringLiteral("n"));
        const QString path = dir.filePath(QStringLiteral("s.scexml"));
        QVERIFY(document.toXmlFile(path));
        ScenarioDataXml read(nullptr);
        QVERIFY(read.fromXmlFile(path) && read.getName() == QStringLiteral("n"));
    }
};

QTEST_GUILESS_MAIN(tst_ScenarioDataXml)
#include "tst_scenariodataxml.moc"
