#include "scenariotesthelpers.h"

#include <radiosim/scenario/cast.h>

#include <QtTest>

using namespace Simulation;

class tst_ScenarioNetwork : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void membershipKeepsSetAndListInStep()
    {
        ScenarioNetwork network(QStringLiteral("N"));
        QVERIFY(!network.headEmitter() && !network.emitterActiveAt(10));
        const auto a = makeEmitter("A"), b = makeEmitter("B"), outsider = makeEmitter("O");
        QVERIFY(network.addEmitter(a) && !network.addEmitter(a) && network.addEmitter(b));
        QVERIFY(!network.emitterForIndex(-1) && !network.emitterForIndex(2));
        // Membership is the network's side only.
        QVERIFY(!a->hasNetwork());
        network.setHeadEmitter(b);
        QCOMPARE(network.emitterList(), (QList<std::shared_ptr<SzenarioEmitter>> { b, a }));
        // An outsider heads the list without becoming a member.
        network.setHeadEmitter(outsider);
        QVERIFY(network.headEmitter() == outsider && !network.containsEmitter(outsider));
        QCOMPARE(network.emitter().size(), 2);

        QVERIFY(network.removeEmitter(a) && !network.removeEmitter(a));
        QVERIFY(!network.containsEmitter(a) && network.containsEmitter(b));
        QVERIFY(network.indexForEmitter(a) == -1 && network.emitterForIndex(1) == b);
        QCOMPARE(network.emitterList(), (QList<std::shared_ptr<SzenarioEmitter>> { outsider, b }));
    }

    void removeEmitterDropsItsEntries()
    {
        const auto a = makeEmitter("A"), b = makeEmitter("B"), stranger = makeEmitter("S");
        const auto network = makeNetwork({ a, b });
        EmissionSettings *table = network->emissionSettings();
        for (qint64 start : { 0, 200, 400 })
            addEntry(table, start, 100, a);
        addEntry(table, 100, 100, b);
        addEntry(table, 300, 100, stranger);
        QVERIFY(!network->removeEmitter(stranger) && network->removeEmitter(a));
        QCOMPARE(table->emissions().size(), 2);
        QCOMPARE(table->activeEmitterAt(150), b);
        // The emitter keeps its own pointer: clearing it is the caller's task.
        QCOMPARE(a->network(), network);
        releaseScenario({ network, a, b, stranger });
    }

    void cloneSharesMembersCopyHasNone()
    {
        const auto a = makeEmitter("A"), b = makeEmitter("B");
        const auto network = makeNetwork({ a, b });
        network->setHeadEmitter(b);
        network->setColor(Qt::blue);
        network->setNetworkType(NetworkHierarchical);
        network->emissionSettings()->setDuration(500);

        const auto clone = Cast::network(network->clone());
        QVERIFY(clone && clone != network && a->network() == network);
        QCOMPARE(clone->emitterList(), network->emitterList());
        QCOMPARE(clone->emitter(), network->emitter());
        QVERIFY(clone->emissionSettings() != network->emissionSettings());
        QCOMPARE(clone->emissionSettings()->duration(), qint64(500));

        ScenarioNetwork copy(QStringLiteral("C"), network);
        QVERIFY(copy.emitterList().isEmpty());
        for (const ScenarioNetwork *made : { clone.get(), &copy }) {
            QCOMPARE(made->color(), QColor(Qt::blue));
            QCOMPARE(made->networkType(), NetworkHierarchical);
        }
        releaseScenario({ network, clone, a, b });
    }
};

QTEST_GUILESS_MAIN(tst_ScenarioNetwork)
#include "tst_scenarionetwork.moc"
