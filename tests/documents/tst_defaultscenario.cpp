#include <radiosim/documents/scenariodataxml.h>

#include "documentstesthelpers.h"

#include <QDomDocument>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

using namespace Simulation;

namespace {

const QString defaultScenario = QStringLiteral(":/DefaultData/Default.sce.exp");

QByteArray resource()
{
    QFile file(defaultScenario);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString sixDigits(const QString &text)
{
    bool number = false;
    const double value = text.toDouble(&number);
    return number ? QString::number(value, 'g', 6) : text;
}

// An element with its attributes sorted and its numbers at six significant digits; the
// emitters and networks of the root and the members of a network in sorted order, since the
// writer follows a hash.
QString canonical(const QDomElement &element)
{
    QStringList attributes;
    const QDomNamedNodeMap map = element.attributes();
    for (int i = 0; i < map.count(); ++i)
        attributes << map.item(i).nodeName() + QLatin1Char('=')
                + sixDigits(map.item(i).nodeValue());
    attributes.sort();
    QStringList children;
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement())
        children << canonical(child);
    if (element.tagName() == QLatin1String("Scenario")
        || element.tagName() == QLatin1String("Network"))
        children.sort();
    QString text = element.tagName() + QLatin1Char('{') + attributes.join(QLatin1Char(','))
        + QLatin1Char('}');
    if (children.isEmpty())
        return text + QLatin1Char('=') + sixDigits(element.text());
    return text + QLatin1Char('(') + children.join(QLatin1Char(' ')) + QLatin1Char(')');
}

// The children of the root, one canonical line each, sorted.
QStringList canonicalChildren(const QDomElement &root)
{
    QStringList children;
    for (QDomElement child = root.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement())
        children << canonical(child);
    children.sort();
    return children;
}

QDomElement root(const QByteArray &xml)
{
    QDomDocument document;
    document.setContent(xml);
    return document.documentElement();
}

// Every frequency kind and route end of the scenario, and what it says of its network,
// link and longest route.
QStringList highlights(const QSet<std::shared_ptr<ScenarioObject>> &objects)
{
    QStringList kinds;
    for (const auto &emitter : Cast::emitter(objects)) {
        kinds << describeFrequency(emitter->getFrequencySettings()).section(QLatin1Char(' '), 0, 1);
        if (const auto *route
            = dynamic_cast<const PositionSettingsPtp *>(emitter->positionSettings())) {
            kinds << QStringLiteral("route ") + endText(route->getEndBehavior());
            if (route->getEndBehavior() == EndInactive)
                kinds << QStringLiteral("inactive route %1 ms, last leg %2, first speed %3")
                             .arg(route->activeUntil())
                             .arg(route->getMovments().last().transitionTime)
                             .arg(num(route->getMovments().first().speed));
        }
        if (emitter->isLinked())
            kinds << emitter->id() + QStringLiteral(" rides with ")
                    + emitter->linkTargetEmitter()->id();
    }
    kinds.removeDuplicates();
    kinds.sort();
    return kinds;
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
        QVERIFY(document.fromXmlFile(defaultScenario));
        QCOMPARE(document.getName(), QStringLiteral("Default"));
        QCOMPARE(document.getDuration(), 600000u);
        QVERIFY(!document.isOlderFileVersion());
        QCOMPARE(document.getNoiseSettings().azimuthErrorDeviation(), 1.0);
        const auto objects = document.scenarioObjects();
        QCOMPARE(Cast::emitter(objects).size(), 16);
        QCOMPARE(Cast::networks(objects).size(), 1);
        QCOMPARE(document.getDefaultEmitter()->id(), QStringLiteral("EM01"));

        QSet<QString> packages;
        for (const auto &object : objects) {
            for (const auto &emission : object->ScenarioObject::emissionSettings()->emissions())
                packages << (emission->signalPackage ? emission->signalPackage->id() : QString());
        }
        QCOMPARE(packages, QSet<QString> { QStringLiteral("/Default/Default") });

        const auto network = *Cast::networks(objects).begin();
        QCOMPARE(describeNetwork(network).section(QLatin1Char('|'), 0, 0),
            QStringLiteral("net NET01 'Border network' desc 'Four stations that answer in turn' "
                           "#006400 H head EM08 [EM08 EM09 EM10 EM11] "));
        QSet<QString> named;
        for (const auto &emission : network->emissionSettings()->emissions())
            named << emission->emitter->id();
        QCOMPARE(named.size(), 4);

        QCOMPARE(highlights(objects),
            QStringList({ "EM07 rides with EM06", "chirp 1.5e+07-1.7e+07/2000+0.25",
                "chirp 5.6e+07-5.65e+07/10000+0.8", "fast 4.45e+07-4.65e+07", "fixed 1.18325e+08",
                "fixed 1.56e+08", "fixed 1.6945e+08", "fixed 4.2e+07", "fixed 4.46e+08",
                "fixed 8e+07", "inactive route 300922 ms, last leg 8509, first speed 1.56788e-299",
                "route INACTIVE", "route RESTART", "route STOP", "slow INACTIVE", "slow RESTART",
                "slow STOP" }));
        releaseScenario(objects);
    }

    void savesEqualAtSixDigits()
    {
        const QByteArray original = resource();
        FakeProvider provider;
        ScenarioDataXml document(&provider);
        QVERIFY(document.fromXml(original));
        const QByteArray saved = document.toXml();
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("saved.scexml"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(saved) == saved.size());
        file.close();

        QDomElement savedRoot = root(saved);
        QCOMPARE(savedRoot.attribute(QStringLiteral("FileFormatVersion")), QStringLiteral("4"));
        QCOMPARE(savedRoot.attribute(QStringLiteral("Uid")),
            root(original).attribute(QStringLiteral("Uid")));
        QDomElement noise = savedRoot.firstChildElement(QStringLiteral("NoiseSettings"));
        QDomElement azimuth = noise.firstChildElement(QStringLiteral("AzimuthErrorDeviation"));
        QCOMPARE(azimuth.text(), QStringLiteral("1"));
        noise.removeChild(azimuth);
        QCOMPARE(canonicalChildren(savedRoot), canonicalChildren(root(original)));

        const QString xmllint = QStandardPaths::findExecutable(QStringLiteral("xmllint"));
        if (xmllint.isEmpty())
            QSKIP("xmllint is not installed");
        QProcess lint;
        lint.start(xmllint, { QStringLiteral("--noout"), path });
        QVERIFY(lint.waitForFinished(30000));
        QCOMPARE(lint.readAllStandardError(), QByteArray());
        QCOMPARE(lint.exitCode(), 0);
        releaseScenario(document.scenarioObjects());
    }

    void playsWithNoEmitterSilent()
    {
        ScenarioDataXml document(nullptr);
        QVERIFY(document.fromXml(resource()));
        const auto objects = document.scenarioObjects();
        QStringList silent;
        int records = 0;
        for (const auto &emitter : Cast::emitter(objects)) {
            int own = 0;
            for (uint start = 0; start < document.getDuration(); start += 100)
                own += emitter->calculateBursts(start, 100, 10000.0).size();
            if (own == 0)
                silent << emitter->id();
            records += own;
        }
        QCOMPARE(silent, QStringList());
        QVERIFY2(records > 50000, qPrintable(QString::number(records)));
        releaseScenario(objects);
    }

    // Whatever a document built dies with releaseScenario and the last owner letting go.
    void releaseFreesEverything_data()
    {
        columns<QByteArray>("xml");
        row("default scenario", resource());
        const auto package = std::make_shared<SignalPackage>();
        const auto generated = generatedScenario(200, 5, 6, package);
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
        auto objects = document->scenarioObjects();
        const Survivors survivors(objects);
        QVERIFY(survivors.count() > 0);
        releaseScenario(objects);
        objects.clear();
        document.reset();
        QCOMPARE(survivors.count(), 0);
    }
};

QTEST_GUILESS_MAIN(tst_DefaultScenario)
#include "tst_defaultscenario.moc"
