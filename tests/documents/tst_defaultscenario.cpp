#include "documentstesthelpers.h"

#include <QDomDocument>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

using namespace Simulation;

namespace {

QByteArray resource()
{
    QFile file(QStringLiteral(":/DefaultData/Default.sce.exp"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
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
    void loads()
    {
        FakeProvider provider;
        ScenarioDataXml document(&provider);
        QVERIFY(document.fromXmlFile(QStringLiteral(":/DefaultData/Default.sce.exp")));
        QCOMPARE(QStringLiteral("%1 %2").arg(document.getName()).arg(document.getDuration()),
            QStringLiteral("Default 600000"));
        QVERIFY(!document.isOlderFileVersion());
        QCOMPARE(document.getNoiseSettings().azimuthErrorDeviation(), 1.0);
        QCOMPARE(document.getDefaultEmitter()->id(), QStringLiteral("EM01"));
        const Objects objects = document.scenarioObjects();
        QCOMPARE(Cast::emitter(objects).size(), 16);

        // Every frequency kind and route end, the network, the link, the long route.
        QSet<QString> seen;
        for (const auto &object : objects) {
            for (const auto &emission : object->ScenarioObject::emissionSettings()->emissions())
                seen << "package " + emission->signalPackage->id();
            if (const auto network = Cast::network(object))
                seen << describeNetwork(network).section(" fixed", 0, 0).section(" slow", 0, 0);
            const auto emitter = Cast::emitter(object);
            if (!emitter)
                continue;
            seen << describeFrequency(emitter->getFrequencySettings()).section(' ', 0, 1);
            if (emitter->isLinked())
                seen << emitter->id() + " rides with " + emitter->linkTargetEmitter()->id();
            if (const auto *route
                = dynamic_cast<const PositionSettingsPtp *>(emitter->positionSettings()))
                seen << QStringLiteral("%1 route %2 ms, last leg %3, first speed %4")
                            .arg(endText(route->getEndBehavior()))
                            .arg(route->activeUntil())
                            .arg(route->getMovments().last().transitionTime)
                            .arg(num(route->getMovments().first().speed));
        }
        QStringList kinds = seen.values();
        kinds.sort();
        QCOMPARE(kinds.filter(QRegularExpression("^(?!fixed)")),
            QStringList({ "EM07 rides with EM06",
                "INACTIVE route 300922 ms, last leg 8509, first speed 1.56788e-299",
                "RESTART route 4294967295 ms, last leg 0, first speed 1.56788e-299",
                "STOP route 4294967295 ms, last leg 0, first speed 1.56788e-299",
                "chirp 1.5e+07-1.7e+07/2000+0.25", "chirp 5.6e+07-5.65e+07/10000+0.8",
                "fast 4.45e+07-4.65e+07",
                "net NET01 'Border network' #006400 H head=EM08 [EM08 EM09 EM10 EM11]",
                "package /Default/Default", "slow INACTIVE", "slow RESTART", "slow STOP" }));
        QVERIFY(kinds.contains("fixed 8e+07"));
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
        QCOMPARE(root.attribute("FileFormatVersion"), QStringLiteral("4"));
        QCOMPARE(root.attribute("Uid"), before.documentElement().attribute("Uid"));
        // Written although the file lacks it: the default stood in.
        QDomElement noise = root.firstChildElement("NoiseSettings");
        QCOMPARE(
            noise.removeChild(noise.firstChildElement("AzimuthErrorDeviation")).toElement().text(),
            QStringLiteral("1"));
        QCOMPARE(canonical(root).split('\n'), canonical(before.documentElement()).split('\n'));

        const QString xmllint = QStandardPaths::findExecutable(QStringLiteral("xmllint"));
        if (xmllint.isEmpty())
            QSKIP("xmllint is not installed");
        QTemporaryDir dir;
        QFile file(dir.filePath(QStringLiteral("saved.scexml")));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(saved) == saved.size());
        file.close();
        QProcess lint;
        lint.start(xmllint, { QStringLiteral("--noout"), file.fileName() });
        QVERIFY(lint.waitForFinished(30000));
        QCOMPARE(
            lint.readAllStandardError() + QByteArray::number(lint.exitCode()), QByteArray("0"));
    }

    void playsWithNoEmitterSilent()
    {
        ScenarioDataXml document(nullptr);
        QVERIFY(document.fromXml(resource()));
        const Objects objects = document.scenarioObjects();
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

    // Whatever a document built dies with releaseScenario and the last owner letting go.
    void releaseFreesEverything_data()
    {
        columns<QByteArray>("xml");
        row("default scenario", resource());
        const Objects generated = generatedScenario(200, 5, 6, std::make_shared<SignalPackage>());
        row("generated, with networks and links",
            ScenarioDataXml::xmlForObjects(generated, nullptr).toUtf8());
        releaseScenario(generated);
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
        Objects objects = document->scenarioObjects();
        const Survivors survivors(objects);
        QVERIFY(survivors.count() > 0);
        releaseScenario(objects);
        objects.clear();
        document.reset();
        QCOMPARE(survivors.count(), 0L);
    }
};

QTEST_GUILESS_MAIN(tst_DefaultScenario)
#include "tst_defaultscenario.moc"
