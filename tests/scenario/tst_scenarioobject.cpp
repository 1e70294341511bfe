#include "scenariotesthelpers.h"

#include <radiosim/packages/signalpackage.h>
#include <radiosim/scenario/cast.h>
#include <radiosim/scenario/emissionsettings.h>
#include <radiosim/scenario/scenarionetwork.h>
#include <radiosim/scenario/scenarioobject.h>

#include <QtTest>

#include <vector>

using namespace Simulation;

namespace {

void link(
    const std::shared_ptr<SzenarioEmitter> &emitter, const std::shared_ptr<SzenarioEmitter> &target)
{
    emitter->setLinkTargetEmitter(target);
    target->addLinkedEmitter(emitter);
}

QStringList ids(const QSet<std::shared_ptr<SzenarioEmitter>> &emitters)
{
    QStringList result;
    for (const auto &emitter : emitters)
        result << emitter->id();
    result.sort();
    return result;
}

} // namespace

class tst_ScenarioObject : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newEmitterIsNeverOnAir();
    void switchedOffEmitterStillAnswers();
    void isActiveAt_data();
    void isActiveAt();
    void networkTakesOverFrequencyAndTimetable();
    void linkChainSharesTheRootPosition();
    void linkedEmitterRidesOnAMovingTarget();
    void affectedLinkedEmitterIsTheWholeTree();
    void linkToItselfIsIgnored();
    void linkCycleGivesNeutralAnswers();
    void settersTakeOwnership();
    void copyingConstructorTakesEffectivePosition();
    void cloneCopiesDeeplyButNotVisibility();
    void elintIsAlwaysOnAirAndClonesPlain();
    void cloneNeedsASharedPointer();
    void copyFromANetworkChangesNothing();
    void casts();
    void releasedScenarioDies();
};

void tst_ScenarioObject::newEmitterIsNeverOnAir()
{
    SzenarioEmitter emitter(QStringLiteral("EM1"), QStringLiteral("x"));
    QCOMPARE(emitter.type(), ScenarioObject::ObjectEmitter);
    QCOMPARE(emitter.getFrequencyAt(0), 25000000.0);
    QCOMPARE(emitter.getPositionAt(0).lon, 0.0);
    QCOMPARE(emitter.getPositionAt(0).lat, 0.0);
    QVERIFY(!emitter.hasNetwork() && !emitter.isLinked());
    for (uint time : { 0u, 1u, 1000u, 4294967295u })
        QVERIFY(!emitter.isActiveAt(time));
    QCOMPARE(emitter.timeActiveAt(5), qint64(-1));
    QVERIFY(!emitter.signalPackageAt(5));
}

void tst_ScenarioObject::switchedOffEmitterStillAnswers()
{
    const auto emitter = makeEmitter(QStringLiteral("E"));
    const auto package = std::make_shared<SignalPackage>();
    emitter->emissionSettings()->setDuration(1000);
    emitter->emissionSettings()->setBroadcast(true);
    emitter->emissionSettings()->makeContinousActive(emitter, package);
    emitter->setPositionSettings(new PositionSettingsFixed({ 8.5, 47.25 }));
    emitter->setActive(false);

    QVERIFY(!emitter->isActiveAt(500));
    QCOMPARE(emitter->getFrequencyAt(500), 25000000.0);
    QCOMPARE(emitter->getPositionAt(500).lat, 47.25);
    QCOMPARE(emitter->signalPackageAt(500), package);
    QCOMPARE(emitter->timeActiveAt(1500), qint64(500));
    releaseScenario({ emitter });
}

void tst_ScenarioObject::isActiveAt_data()
{
    QTest::addColumn<bool>("inNetwork");
    QTest::addColumn<uint>("frequencyEnd");
    QTest::addColumn<uint>("positionEnd");
    QTest::addColumn<uint>("time");
    QTest::addColumn<bool>("active");

    QTest::newRow("own timetable") << false << NoEnd << NoEnd << 150u << true;
    QTest::newRow("own timetable, off air") << false << NoEnd << NoEnd << 250u << false;
    QTest::newRow("frequency ended") << false << 100u << NoEnd << 150u << false;
    QTest::newRow("position ended") << false << NoEnd << 100u << 150u << false;
    QTest::newRow("network names it") << true << NoEnd << NoEnd << 150u << true;
    QTest::newRow("network names another") << true << NoEnd << NoEnd << 350u << false;
    QTest::newRow("network ignores own frequency end") << true << 100u << NoEnd << 150u << true;
    QTest::newRow("network, position ended") << true << NoEnd << 100u << 150u << false;
}

void tst_ScenarioObject::isActiveAt()
{
    QFETCH(bool, inNetwork);
    QFETCH(uint, frequencyEnd);
    QFETCH(uint, positionEnd);
    QFETCH(uint, time);
    QFETCH(bool, active);

    const auto emitter = makeEmitter(QStringLiteral("E"));
    const auto other = makeEmitter(QStringLiteral("O"));
    const auto network = std::make_shared<ScenarioNetwork>(QStringLiteral("N"));
    emitter->setFrequencySettings(frequencyEndingAt(frequencyEnd));
    emitter->setPositionSettings(positionEndingAt(positionEnd));
    // Same table in both places: on air (100, 200], another emitter (300, 400].
    for (EmissionSettings *table : { emitter->emissionSettings(), network->emissionSettings() }) {
        table->setDuration(1000);
        addEntry(table, 100, 100, emitter);
        addEntry(table, 300, 100, other);
    }
    if (inNetwork) {
        join(network, emitter);
    }
    QCOMPARE(emitter->isActiveAt(time), active);
    releaseScenario({ emitter, other, network });
}

void tst_ScenarioObject::networkTakesOverFrequencyAndTimetable()
{
    const auto emitter = makeEmitter(QStringLiteral("E"));
    const auto network = std::make_shared<ScenarioNetwork>(QStringLiteral("N"));
    network->frequencySettings()->setCenterFrequency(10e6);
    IFrequencySettings *own = emitter->frequencySettings();

    emitter->setScenarioNetwork(network);
    QCOMPARE(emitter->getFrequencySettings(), network->frequencySettings());
    QCOMPARE(emitter->emissionSettings(), network->emissionSettings());
    QCOMPARE(emitter->frequencySettings(), own);
    QCOMPARE(emitter->getFrequencyAt(0), 10e6);

    emitter->setScenarioNetwork(nullptr);
    QCOMPARE(emitter->getFrequencySettings(), own);
    QCOMPARE(emitter->getFrequencyAt(0), 25e6);
}

void tst_ScenarioObject::linkChainSharesTheRootPosition()
{
    const auto a = makeEmitter(QStringLiteral("A"));
    const auto b = makeEmitter(QStringLiteral("B"));
    const auto c = makeEmitter(QStringLiteral("C"));
    c->setPositionSettings(new PositionSettingsFixed({ 13.4, 52.5 }));
    link(a, b);
    link(b, c);

    QCOMPARE(a->getPositionSettings(), c->positionSettings());
    QCOMPARE(b->getPositionSettings(), c->positionSettings());
    QCOMPARE(a->getPositionAt(0).lon, 13.4);
    QVERIFY(a->positionSettings() != c->positionSettings());
    // Frequency is untouched by a link.
    c->frequencySettings()->setCenterFrequency(1e6);
    QCOMPARE(a->getFrequencyAt(0), 25e6);
    releaseScenario({ a, b, c });
}

void tst_ScenarioObject::linkedEmitterRidesOnAMovingTarget()
{
    const auto target = makeEmitter(QStringLiteral("T"));
    auto *route = new PositionSettingsPtp({ 11.0, 48.0 }, 0.1);
    route->setEndBehavior(EndInactive);
    target->setPositionSettings(route);
    const auto rider = makeEmitter(QStringLiteral("R"));
    rider->setPositionSettings(new PositionSettingsFixed({ 1.0, 2.0 }));
    rider->setLinkTargetEmitter(target);
    target->addLinkedEmitter(rider);

    const uint halfway = route->activeUntil() / 2;
    for (uint time : { 0u, halfway, route->activeUntil() }) {
        const TPos expected = route->getPositionAt(time);
        QCOMPARE(rider->getPositionAt(time).lon, expected.lon);
        QCOMPARE(rider->getPositionAt(time).lat, expected.lat);
        QCOMPARE(rider->headingAt(time), route->headingAt(time));
    }
    QVERIFY(rider->getPositionAt(halfway).lon > 11.04 && rider->getPositionAt(halfway).lon < 11.06);
    QCOMPARE(rider->getPositionSettings()->activeUntil(), route->activeUntil());
    QVERIFY(rider->headingAt(halfway) > 0.0 && rider->headingAt(halfway) < 90.0);
    releaseScenario({ target, rider });
}

void tst_ScenarioObject::affectedLinkedEmitterIsTheWholeTree()
{
    // R <- A <- A1, R <- A <- A2 <- A21, R <- B; X stands apart.
    std::map<QString, std::shared_ptr<SzenarioEmitter>> tree;
    for (const char *id : { "R", "A", "A1", "A2", "A21", "B", "X" })
        tree[QLatin1String(id)] = makeEmitter(QLatin1String(id));
    link(tree["A"], tree["R"]);
    link(tree["A1"], tree["A"]);
    link(tree["A2"], tree["A"]);
    link(tree["A21"], tree["A2"]);
    link(tree["B"], tree["R"]);

    const QStringList expected { "A", "A1", "A2", "A21", "B", "R" };
    for (const auto &entry : tree) {
        if (entry.first == QLatin1String("X"))
            QCOMPARE(ids(entry.second->affectedLinkedEmitter()), QStringList { "X" });
        else
            QCOMPARE(ids(entry.second->affectedLinkedEmitter()), expected);
    }
    QSet<std::shared_ptr<ScenarioObject>> all;
    for (const auto &entry : tree)
        all.insert(entry.second);
    releaseScenario(all);
}

void tst_ScenarioObject::linkToItselfIsIgnored()
{
    const auto a = makeEmitter(QStringLiteral("A"));
    const auto b = makeEmitter(QStringLiteral("B"));
    a->setLinkTargetEmitter(b);
    a->setLinkTargetEmitter(a);
    QCOMPARE(a->linkTargetEmitter(), b);
    a->setLinkTargetEmitter(nullptr);
    QVERIFY(!a->isLinked());
}

void tst_ScenarioObject::linkCycleGivesNeutralAnswers()
{
    const auto a = makeEmitter(QStringLiteral("A"));
    const auto b = makeEmitter(QStringLiteral("B"));
    const auto c = makeEmitter(QStringLiteral("C"));
    link(a, b);
    link(b, c);
    link(c, a);
    a->emissionSettings()->makeContinousActive(a, nullptr);

    QVERIFY(!a->getPositionSettings());
    QCOMPARE(a->getPositionAt(10).lon, 0.0);
    QCOMPARE(a->headingAt(10), 0.0);
    QVERIFY(!a->isActiveAt(10));
    QVERIFY(a->affectedLinkedEmitter().isEmpty());
    QCOMPARE(a->calculateBursts(0, 100, 1.0).size(), 1);
    releaseScenario({ a, b, c });
}

void tst_ScenarioObject::settersTakeOwnership()
{
    SzenarioEmitter emitter(QStringLiteral("E"), QString());
    IFrequencySettings *frequency = emitter.frequencySettings();
    emitter.setFrequencySettings(frequency);
    QCOMPARE(emitter.frequencySettings(), frequency);
    IPositionSettings *position = emitter.positionSettings();
    emitter.setPositionSettings(position);
    QCOMPARE(emitter.positionSettings(), position);

    emitter.setFrequencySettings(nullptr);
    emitter.setPositionSettings(nullptr);
    QCOMPARE(emitter.getFrequencyAt(3), 0.0);
    QCOMPARE(emitter.getPositionAt(3).lat, 0.0);
    QVERIFY(!emitter.isActiveAt(3));
    QVERIFY(emitter.calculateBursts(0, 100, 1.0).isEmpty());
}

void tst_ScenarioObject::copyingConstructorTakesEffectivePosition()
{
    const auto target = makeEmitter(QStringLiteral("T"));
    target->setPositionSettings(new PositionSettingsFixed({ 2.0, 3.0 }));
    const auto source = makeEmitter(QStringLiteral("S"));
    link(source, target);
    source->setClass(QStringLiteral("Emitter-White.ico"));
    source->setDescription(QStringLiteral("d"));
    source->setVisibleOnMap(true);
    source->getTranmitterSettings()->setPower(7.0f);
    const auto network = std::make_shared<ScenarioNetwork>(QStringLiteral("N"));
    source->setScenarioNetwork(network);

    const auto copy
        = std::make_shared<SzenarioEmitter>(QStringLiteral("C"), QStringLiteral("c"), source);
    QCOMPARE(copy->getDescription(), QStringLiteral("d"));
    QVERIFY(copy->isVisibleOnMap());
    QCOMPARE(copy->getClass(), QStringLiteral("Emitter-White.ico"));
    QCOMPARE(copy->getTranmitterSettings()->getPower(), 7.0f);
    QCOMPARE(copy->linkTargetEmitter(), target);
    QVERIFY(!copy->hasNetwork());
    QVERIFY(copy->positionSettings() != target->positionSettings());
    QVERIFY(copy->positionSettings()->equal(target->positionSettings()));
    releaseScenario({ target, source, network, copy });
}

void tst_ScenarioObject::cloneCopiesDeeplyButNotVisibility()
{
    const auto source = makeEmitter(QStringLiteral("S"));
    const auto linked = makeEmitter(QStringLiteral("L"));
    link(linked, source);
    source->setVisibleOnMap(true);
    source->setVisibleOnTimeline(true);
    source->setActive(false);
    source->getTranmitterSettings()->setAntennaDirection(90.0f);
    source->frequencySettings()->setCenterFrequency(5e6);
    source->setPositionSettings(new PositionSettingsFixed({ 1.0, 1.0 }));
    source->emissionSettings()->makeContinousActive(source, nullptr);

    const auto clone = Cast::emitter(source->clone());
    QVERIFY(clone);
    QVERIFY(!clone->isActive());
    QVERIFY(!clone->isVisibleOnMap() && !clone->isVisibleOnTimeline());
    QCOMPARE(clone->getTranmitterSettings()->getAntennaDirection(), 90.0f);
    QVERIFY(clone->frequencySettings() != source->frequencySettings());
    QCOMPARE(clone->getFrequencyAt(0), 5e6);
    QVERIFY(clone->positionSettings() != source->positionSettings());
    QCOMPARE(clone->getPositionAt(0).lon, 1.0);
    QCOMPARE(clone->emissionSettings()->emissions().size(), 1);
    QVERIFY(clone->emissionSettings()->emissions().first()
        != source->emissionSettings()->emissions().first());
    QCOMPARE(clone->emissionSettings()->emissions().first()->emitter, source);
    QCOMPARE(ids(clone->linkedEmitter()), QStringList { "L" });
    releaseScenario({ source, linked, clone });
}

void tst_ScenarioObject::elintIsAlwaysOnAirAndClonesPlain()
{
    const auto elint = std::make_shared<ElintScenarioEmitter>(QStringLiteral("EL"), QString());
    QVERIFY(elint->SetEDWFile(QStringLiteral("a.edw")));
    elint->setActive(false);
    QVERIFY(elint->isActiveAt(0) && elint->isActiveAt(123456));
    const auto clone = elint->clone();
    QCOMPARE(clone->type(), ScenarioObject::ObjectEmitter);
    QCOMPARE(clone->id(), QStringLiteral("EL"));
    QVERIFY(!std::dynamic_pointer_cast<ElintScenarioEmitter>(clone));
}

void tst_ScenarioObject::cloneNeedsASharedPointer()
{
    SzenarioEmitter emitter(QStringLiteral("E"), QString());
    QVERIFY(!emitter.clone());
    ScenarioNetwork network(QStringLiteral("N"));
    QVERIFY(!network.clone());
    QVERIFY(emitter.affectedLinkedEmitter().isEmpty());
}

void tst_ScenarioObject::copyFromANetworkChangesNothing()
{
    const auto emitter = makeEmitter(QStringLiteral("E"));
    const auto network = std::make_shared<ScenarioNetwork>(QStringLiteral("N"));
    network->setDescription(QStringLiteral("net"));
    IFrequencySettings *before = emitter->frequencySettings();
    emitter->copy(network);
    QCOMPARE(emitter->id(), QStringLiteral("E"));
    QVERIFY(emitter->getDescription().isEmpty());
    QCOMPARE(emitter->frequencySettings(), before);
    emitter->copy(nullptr);
    QCOMPARE(emitter->id(), QStringLiteral("E"));

    network->copy(emitter);
    QCOMPARE(network->description(), QStringLiteral("net"));
}

void tst_ScenarioObject::casts()
{
    const std::shared_ptr<ScenarioObject> plain = makeEmitter(QStringLiteral("P"));
    const std::shared_ptr<ScenarioObject> elint
        = std::make_shared<ElintScenarioEmitter>(QStringLiteral("EL"), QString());
    const std::shared_ptr<ScenarioObject> network
        = std::make_shared<ScenarioNetwork>(QStringLiteral("N"));

    QVERIFY(Cast::isEmitter(elint) && !Cast::isEmitter(network) && !Cast::isEmitter(nullptr));
    QVERIFY(Cast::isNetwork(network) && !Cast::isNetwork(plain) && !Cast::isNetwork(nullptr));
    QVERIFY(!Cast::emitter(network) && !Cast::network(plain));

    const QSet<std::shared_ptr<ScenarioObject>> all { plain, elint, network };
    const auto emitters = Cast::emitter(all);
    QCOMPARE(ids(emitters), (QStringList { "EL", "P" }));
    const auto networks = Cast::networks(all);
    QCOMPARE(networks.size(), 1);
    QCOMPARE(Cast::objects(emitters) + Cast::objects(networks), all);
}

void tst_ScenarioObject::releasedScenarioDies()
{
    std::vector<std::weak_ptr<ScenarioObject>> watched;
    {
        const auto a = makeEmitter(QStringLiteral("A"));
        const auto b = makeEmitter(QStringLiteral("B"));
        const auto c = makeEmitter(QStringLiteral("C"));
        const auto d = std::make_shared<ElintScenarioEmitter>(QStringLiteral("D"), QString());
        const auto network = std::make_shared<ScenarioNetwork>(QStringLiteral("N"));
        join(network, a);
        join(network, b);
        network->setHeadEmitter(c);
        addEntry(network->emissionSettings(), 0, 100, a);
        addEntry(network->emissionSettings(), 100, 100, b);
        link(c, d);
        link(b, c);
        c->emissionSettings()->makeContinousActive(c, nullptr);
        // Groups that refer to each other and to their entries, as an editor sets them.
        EmissionSettings *table = network->emissionSettings();
        const auto parent = table->createGroup();
        const auto child = table->createGroup();
        child->parent = parent;
        parent->subGroups << child;
        child->members << table->emissions();
        for (const auto &emission : table->emissions())
            emission->group = child;
        table->addGroup(parent);
        table->addGroup(child);

        const QSet<std::shared_ptr<ScenarioObject>> scenario { a, b, c, d, network };
        for (const auto &object : scenario)
            watched.push_back(object);
        releaseScenario(scenario);
    }
    for (const auto &object : watched)
        QVERIFY(object.expired());
}

QTEST_GUILESS_MAIN(tst_ScenarioObject)
#include "tst_scenarioobject.moc"
