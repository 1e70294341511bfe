#include "documentstesthelpers.h"

#include <QDomDocument>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <vector>

using namespace Simulation;

namespace {

QByteArray resource()
{
    return contentOf(QStringLiteral(":/DefaultData/Default.sce.exp"));
}

QString sixDigits(const QString &text)
{
    bool number = false;
    const double value = text.toDouble(&number);
    return number ? QString::number(value, 'g', 6) : text;
}

// An element with its attributes sorted and its numbers at six significant digits; the
// children of the root and of a network sorted too, since the writer follows a hash there.
QString canonical(const QDomElement &element)
{
    QStringList attributes, children;
    const QDomNamedNodeMap map = element.attributes();
    for (int i = 0; i < map.count(); ++i)
        attributes << map.item(i).nodeName() + '=' + sixDigits(map.item(i).nodeValue());
    attributes.sort();
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement())
        children << canonical(child);
    if (element.tagName() == "Scenario" || element.tagName() == "Network")
        children.sort();
    const QString text = element.tagName() + '{' + attributes.join(',') + '}';
    return children.isEmpty() ? text + '=' + sixDigits(element.text())
                              : text + "(\n" + children.join('\n') + ')';
}

} // namespace

class tst_DefaultScenario : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Every frequency kind and route end, the network, the link, the long route, a package on
    // every emission; and no emitter silent.
    void loadsAndPlays()
    {
        FakeProvider provider;
        ScenarioDataXml document(&provider);
        QVERIFY(document.fromXmlFile(QStringLiteral(":/DefaultData/Default.sce.exp")));
        QCOMPARE(QStringLiteral("%1 %2 %3")
                     .arg(document.getName())
                     .arg(document.getDuration())
                     .arg(document.getDefaultEmitter()->id()),
            QStringLiteral("Default 600000 EM01"));
        QVERIFY(!document.isOlderFileVersion());
        const Objects objects = document.scenarioObjects();
        QCOMPARE(Cast::emitter(objects).size(), 16);
        const QString all = describeScenario(objects).join(QLatin1Char('\n'));
        for (const char *piece : { "\nEM07 ", " link=EM06 ", "fixed 8e+07",
                 "chirp 1.5e+07-1.7e+07/2000+0.25", "chirp 5.6e+07-5.65e+07/10000+0.8",
                 "fast 4.45e+07-4.65e+07", "slow INACTIVE", "slow RESTART", "slow STOP",
                 "route INACTIVE [", "route RESTART [", "route STOP [", "0+8509 ", "1.56788e-299",
                 "net NET01 'Border network' #006400 H head=EM08 [EM08 EM09 EM10 EM11]",
                 "@/Default/Default#" })
            QVERIFY2(all.contains(piece), piece);
        QVERIFY(!all.contains("@-"));

        QStringList silent;
        for (const auto &emitter : Cast::emitter(objects)) {
            int records = 0;
            for (uint start = 0; start < document.getDuration(); start += 100)
                records += emitter->calculateBursts(start, 100, 10000.0).size();
            if (records < 10)
                silent << emitter->id();
        }
        QCOMPARE(silent, QStringList());
        releaseScenario(objects);
    }

    void savesEqualAtSixDigits()
    {
        const QByteArray original = resource();
        FakeProvider provider;
        ScenarioDataXml document(&provider);
        QVERIFY(document.fromXml(original));
        const QByteArray saved = document.toXml();
        releaseScenario(document.scenarioObjects());

        QDomDocument before, after;
        QVERIFY(before.setContent(original) && after.setContent(saved));
        QDomElement root = after.documentElement();
        // Written although the file lacks it: the default stood in.
        QDomElement noise = root.firstChildElement("NoiseSettings");
        QCOMPARE(
            noise.removeChild(noise.firstChildElement("AzimuthErrorDeviation")).toElement().text(),
            QStringLiteral("1"));
        QCOMPARE(canonical(root).split('\n'), canonical(before.documentElement()).split('\n'));

        QTemporaryDir dir;
        const QString path = writeFile(dir.filePath(QStringLiteral("saved.scexml")), saved);
        QCOMPARE(
            QProcess::execute(QStringLiteral("xmllint"), { QStringLiteral("--noout"), path }), 0);
    }

    // Whatever a document built dies with releaseScenario and the last owner letting go.
    void releaseFreesEverything_data()
    {
        columns<QByteArray>("xml");
        row("default scenario", resource());
        row("timetables read twice, cyclic groups, self links, a link ring, references only",
            QByteArray("<Scenario><Emitter ID='A' LinkTarget='A'><EmissionSettings Duration='9'>"
                       "<Emission ID='0' StartTime='1' Duration='1' Emitter='Ghost'/><Groups>"
                       "<Group ID='0'><GroupId>0</GroupId><GroupId>1</GroupId><EmissionId>0"
                       "</EmissionId></Group><Group ID='1'><GroupId>0</GroupId></Group></Groups>"
                       "</EmissionSettings><EmissionSettings/><Frequency><Fixed>1</Fixed><Chirp/>"
                       "</Frequency><Position><Fixed/><Movement/><Fixed/></Position></Emitter>"
                       "<Emitter ID='B' LinkTarget='C'/><Emitter ID='C' LinkTarget='B'/>"
                       "<Network ID='N'><Emitter>A</Emitter><Emitter>B</Emitter><EmissionSettings>"
                       "<Emission Emitter='C'/><Groups><Group ID='3'><GroupId>3</GroupId></Group>"
                       "</Groups></EmissionSettings></Network><Network ID='N'/></Scenario>"));
    }
    void releaseFreesEverything()
    {
        QFETCH(QByteArray, xml);
        FakeProvider provider;
        auto document = std::make_unique<ScenarioDataXml>(&provider);
        QVERIFY(document->fromXml(xml));
        document->toXml();
        std::vector<std::weak_ptr<ScenarioObject>> watched;
        {
            const Objects objects = document->scenarioObjects();
            QVERIFY(!objects.isEmpty());
            watched.assign(objects.begin(), objects.end());
            releaseScenario(objects);
        }
        document.reset();
        for (const auto &object : watched)
            QVERIFY(object.expired());
    }
};

QTEST_GUILESS_MAIN(tst_DefaultScenario)
#include "tst_defaultscenario.moc"
