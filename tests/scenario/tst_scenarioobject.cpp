#include "scenariotesthelpers.h"

#include <radiosim/packages/signalpackage.h>
#include <radiosim/scenario/cast.h>

#include <QtTest>

#include <vector>

using namespace Simulation;

namespace {
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
    void switchedOffEmitterStillAnswers()
    {
        const auto emitter = makeEmitter("E");
        const auto package = std::make_shared<SignalPackage>();
        fill(emitter->emissionSettings(), {}, 1000, true);
        emitter->emissionSettings()->makeContinousActive(emitter, package);
        emitter->setPositionSettings(new PositionSettingsFixed({ 8.5, 47.25 }));
        emitter->setActive(false);

        QVERIFY(!emitter->isActiveAt(500) && emitter->getPositionAt(500).lat == 47.25);
        QCOMPARE(emitter->signalPackageAt(500), package);
        QCOMPARE(emitter->timeActiveAt(1500), qint64(500));
        QCOMPARE(spans(emitter->calculateBursts(100, 200, 1.0)), QStringList { "100+200@25" });
        releaseScenario({ emitter });
    }

    void isActiveAt_data()
    {
        columns<bool, uint, uint, uint, bool>(
            "inNetwork", "frequencyEnd", "positionEnd", "time", "active");
        QTest::newRow("own timetable") << false << NoEnd << NoEnd << 150u << true;
        QTest::newRow("own timetable, off air") << false << NoEnd << NoEnd << 250u << false;
        QTest::newRow("frequency ended") << false << 100u << NoEnd << 150u << false;
        QTest::newRow("position ended") << false << NoEnd << 100u << 150u << false;
        QTest::newRow("network names it") << true << NoEnd << NoEnd << 150u << true;
        QTest::newRow("network names another") << true << NoEnd << NoEnd << 350u << false;
        QTest::newRow("network ignores own frequency end") << true << 100u << NoEnd << 150u << true;
        QTest::newRow("network, position ended") << true << NoEnd << 100u << 150u << false;
    }
    void isActiveAt()
    {
        QFETCH(bool, inNetwork);
        QFETCH(uint, frequencyEnd);
        QFETCH(uint, positionEnd);
        QFETCH(uint, time);
        const auto emitter = makeEmitter("E"), other = makeEmitter("O");
        const auto network = makeNetwork();
        emitter->setFrequencySettings(frequencyEndingAt(frequencyEnd));
        emitter->setPositionSettings(positionEndingAt(positionEnd));
        // Same table in both places: on air (100, 200], another emitter (300, 400].
        for (EmissionSettings *table :
            { emitter->emissionSettings(), network->emissionSettings() }) {
            table->setDuration(1000);
            addEntry(table, 100, 100, emitter);
            addEntry(table, 300, 100, other);
        }
        if (inNetwork)
            join(network, emitter);
        QTEST(emitter->isActiveAt(time), "active");
        releaseScenario({ emitter, other, network });
    }

    void linkChainRidesOnTheRootsRoute()
    {
        const auto a = makeEmitter("A"), b = makeEmitter("B"), target = makeEmitter("T");
        auto *route = new PositionSettingsPtp({ 11.0, 48.0 }, 0.1);
        route->setEndBehavior(EndInactive);
        target->setPositionSettings(route);
        a->setPositionSettings(new PositionSettingsFixed({ 1.0, 2.0 }));
        link(a, b);
        link(b, target);
        QCOMPARE(a->getPositionSettings(), route);

        const uint end = route->activeUntil();
        QCOMPARE(a->getPositionAt(end / 2).lat, route->getPositionAt(end / 2).lat);
        QCOMPARE(a->headingAt(end / 2), route->headingAt(end / 2));
        // A link leaves the own position settings and the frequency alone.
        QVERIFY(a->positionSettings() != route);
        target->frequencySettings()->setCenterFrequency(1e6);
        QCOMPARE(a->getFrequencyAt(0), 25e6);
        // The root's route also ends the bursts.
        fill(a->emissionSettings(), {}, 1000, true);
        a->emissionSettings()->makeContinousActive(a, nullptr);
        QCOMPARE(spans(a->calculateBursts(end - 50, 100, 1.0)),
            QStringList { QStringLiteral("%1+50@25").arg(end - 50) });
        QVERIFY(a->calculateBursts(end, 100, 1.0).isEmpty());
        releaseScenario({ a, b, target });
    }

    void affectedLinkedEmitterIsTheWholeTree()
    {
        // R <- A <- A1, R <- A <- A2 <- A21, R <- B; X stands apart.
        std::map<QString, std::shared_ptr<SzenarioEmitter>> tree;
        QSet<std::shared_ptr<ScenarioObject>> all;
        for (const char *id : { "R", "A", "A1", "A2", "A21", "B", "X" })
            all << (tree[QLatin1String(id)] = makeEmitter(id));
        for (const auto &edge :
            { std::pair { "A", "R" }, { "A1", "A" }, { "A2", "A" }, { "A21", "A2" }, { "B", "R" } })
            link(tree[QLatin1String(edge.first)], tree[QLatin1String(edge.second)]);

        const QStringList linked { "A", "A1", "A2", "A21", "B", "R" };
        for (const auto &entry : tree) {
            const bool apart = entry.first == QLatin1String("X");
            QCOMPARE(
                ids(entry.second->affectedLinkedEmitter()), apart ? QStringList { "X" } : linked);
        }
        releaseScenario(all);
    }

    void badLinksAndMissingSettingsGiveNeutralAnswers()
    {
        const auto a = makeEmitter("A"), b = makeEmitter("B"), c = makeEmitter("C");
        a->setLinkTargetEmitter(b);
        a->setLinkTargetEmitter(a);
        QCOMPARE(a->linkTargetEmitter(), b);
        a->setLinkTargetEmitter(nullptr);
        QVERIFY(!a->isLinked());

        link(a, b);
        link(b, c);
        link(c, a);
        a->emissionSettings()->makeContinousActive(a, nullptr);
        QVERIFY(!a->getPositionSettings() && !a->isActiveAt(10));
        QVERIFY(a->getPositionAt(10).lon == 0.0 && a->headingAt(10) == 0.0);
        QVERIFY(a->affectedLinkedEmitter().isEmpty());
        QCOMPARE(a->calculateBursts(0, 100, 1.0).size(), 1);
        releaseScenario({ a, b, c });

        // Setting the owned object again must not free it; null settings leave neutral answers.
        SzenarioEmitter emitter(QStringLiteral("E"), QString());
        IFrequencySettings *frequency = emitter.frequencySettings();
        emitter.setFrequencySettings(frequency);
        emitter.setPositionSettings(emitter.positionSettings());
        QCOMPARE(emitter.getFrequencyAt(3), 25e6);
        emitter.setFrequencySettings(nullptr);
        emitter.setPositionSettings(nullptr);
        QVERIFY(emitter.getFrequencyAt(3) == 0.0 && emitter.getPositionAt(3).lat == 0.0);
        QVERIFY(!emitter.isActiveAt(3) && emitter.calculateBursts(0, 100, 1.0).isEmpty());
    }

    // The copying constructor takes the visibility and the effective route, clone() neither.
    void copiesAreDeep()
    {
        const auto target = makeEmitter("T"), source = makeEmitter("S"), linked = makeEmitter("L");
        target->setPositionSettings(new PositionSettingsFixed({ 2.0, 3.0 }));
        link(source, target);
        link(linked, source);
        source->setDescription(QStringLiteral("d"));
        source->setVisibleOnMap(true);
        source->setVisibleOnTimeline(true);
        source->setActive(false);
        source->getTranmitterSettings()->setPower(7.0f);
        source->getTranmitterSettings()->setAntennaDirection(90.0f);
        source->frequencySettings()->setCenterFrequency(5e6);
        source->setPositionSettings(new PositionSettingsFixed({ 1.0, 1.0 }));
        const auto network = makeNetwork();
        source->setScenarioNetwork(network);
        const auto copy
            = std::make_shared<SzenarioEmitter>(QStringLiteral("C"), QStringLiteral("c"), source);
        source->setScenarioNetwork(nullptr);
        source->emissionSettings()->makeContinousActive(source, nullptr);
        const auto clone = Cast::emitter(source->clone());
        QVERIFY(clone);
        for (const auto &made : { copy, clone }) {
            const TransmitterSettings *transmitter = made->getTranmitterSettings();
            QVERIFY(made->getDescription() == QLatin1String("d") && !made->isActive());
            QVERIFY(transmitter->getPower() == 7.0f && transmitter->getAntennaDirection() == 90.0f);
            QVERIFY(made->frequencySettings() != source->frequencySettings());
            QVERIFY(made->getFrequencyAt(0) == 5e6 && !made->hasNetwork());
            QCOMPARE(made->linkTargetEmitter(), target);
        }
        QVERIFY(copy->isVisibleOnMap() && copy->isVisibleOnTimeline());
        QVERIFY(!clone->isVisibleOnMap() && !clone->isVisibleOnTimeline());
        QVERIFY(copy->positionSettings() != target->positionSettings());
        QVERIFY(copy->positionSettings()->equal(target->positionSettings()));
        QVERIFY(clone->positionSettings() != source->positionSettings());
        QVERIFY(clone->positionSettings()->equal(source->positionSettings()));
        const auto entries = clone->emissionSettings()->emissions();
        QVERIFY(entries.size() == 1
            && entries.first() != source->emissionSettings()->emissions().first());
        // The entry still names the source.
        QCOMPARE(entries.first()->emitter, source);
        QCOMPARE(ids(clone->linkedEmitter()), QStringList { "L" });
        releaseScenario({ target, source, linked, network, copy, clone });
    }

    void elintIsAlwaysOnAirAndClonesPlain()
    {
        const auto elint = std::make_shared<ElintScenarioEmitter>(QStringLiteral("EL"), QString());
        elint->setActive(false);
        QVERIFY(elint->isActiveAt(0) && elint->isActiveAt(123456));
        // Its bursts follow the timetable all the same.
        fill(elint->emissionSettings(), { { 100, 100 } }, 1000, false, elint);
        QCOMPARE(spans(elint->calculateBursts(0, 1000, 1.0)), QStringList { "100+100@25" });
        const auto clone = elint->clone();
        QVERIFY(Cast::isEmitter(clone) && !std::dynamic_pointer_cast<ElintScenarioEmitter>(clone));
        releaseScenario({ elint, clone });
    }

    void refusesWhatItCannotTake()
    {
        SzenarioEmitter plain(QStringLiteral("P"), QString());
        // Without a shared pointer to itself there is nothing to clone or to follow.
        QVERIFY(!plain.clone() && plain.affectedLinkedEmitter().isEmpty());
        QVERIFY(!ScenarioNetwork(QStringLiteral("N")).clone());

        const auto emitter = makeEmitter("E");
        const auto network = makeNetwork();
        network->setDescription(QStringLiteral("net"));
        IFrequencySettings *before = emitter->frequencySettings();
        emitter->copy(network);
        emitter->copy(nullptr);
        QVERIFY(emitter->getDescription().isEmpty() && emitter->frequencySettings() == before);
        network->copy(emitter);
        QCOMPARE(network->description(), QStringLiteral("net"));
    }

    void casts()
    {
        const std::shared_ptr<ScenarioObject> plain = makeEmitter("P"), network = makeNetwork();
        const std::shared_ptr<ScenarioObject> elint
            = std::make_shared<ElintScenarioEmitter>(QStringLiteral("EL"), QString());
        QVERIFY(Cast::isEmitter(elint) && !Cast::isEmitter(network) && !Cast::isEmitter(nullptr));
        QVERIFY(Cast::isNetwork(network) && !Cast::isNetwork(plain) && !Cast::isNetwork(nullptr));
        QVERIFY(!Cast::emitter(network) && !Cast::network(plain));
        const QSet<std::shared_ptr<ScenarioObject>> all { plain, elint, network };
        QCOMPARE(ids(Cast::emitter(all)), (QStringList { "EL", "P" }));
        QCOMPARE(Cast::networks(all).size(), 1);
        QCOMPARE(Cast::objects(Cast::emitter(all)) + Cast::objects(Cast::networks(all)), all);
    }

    void releasedScenarioDies()
    {
        std::vector<std::weak_ptr<ScenarioObject>> watched;
        {
            const auto a = makeEmitter("A"), b = makeEmitter("B"), c = makeEmitter("C");
            const auto d = std::make_shared<ElintScenarioEmitter>(QStringLiteral("D"), QString());
            const auto network = makeNetwork({ a, b });
            network->setHeadEmitter(c);
            addEntry(network->emissionSettings(), 0, 100, a);
            addEntry(network->emissionSettings(), 100, 100, b);
            link(c, d);
            link(b, c);
            c->emissionSettings()->makeContinousActive(c, nullptr);
            // Groups that refer to each other and to their entries, as an editor sets them.
            EmissionSettings *table = network->emissionSettings();
            const auto parent = table->createGroup(), child = table->createGroup();
            child->parent = parent;
            parent->subGroups << child;
            child->members << table->emissions();
            for (const auto &emission : table->emissions())
                emission->group = child;
            table->addGroup(parent);
            table->addGroup(child);

            const QSet<std::shared_ptr<ScenarioObject>> scenario { a, b, c, d, network };
            watched.assign(scenario.begin(), scenario.end());
            releaseScenario(scenario);
        }
        for (const auto &object : watched)
            QVERIFY(object.expired());
    }
};

QTEST_GUILESS_MAIN(tst_ScenarioObject)
#include "tst_scenarioobject.moc"
