#include "scenariotesthelpers.h"

#include <radiosim/scenario/cast.h>
#include <radiosim/scenario/emissionsettings.h>
#include <radiosim/scenario/scenarionetwork.h>
#include <radiosim/scenario/scenarioobject.h>

#include <QtTest>

using namespace Simulation;

class tst_ScenarioNetwork : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newNetworkIsAnEmptyRedStar();
    void membershipKeepsSetAndListInStep();
    void removeEmitterDropsItsEntriesAndEmptyGroups();
    void headEmitterReordersTheListOnly();
    void emitterForIndexOutOfRange_data();
    void emitterForIndexOutOfRange();
    void cloneSharesMembersInOrder();
    void copyingConstructorStartsWithoutMembers();
};

void tst_ScenarioNetwork::newNetworkIsAnEmptyRedStar()
{
    ScenarioNetwork network(QStringLiteral("N"));
    QCOMPARE(network.type(), ScenarioObject::ObjectNetwork);
    QCOMPARE(network.color(), QColor(QStringLiteral("#f00")));
    QCOMPARE(network.networkType(), NetworkStar);
    QVERIFY(network.emitter().isEmpty());
    QVERIFY(network.emitterList().isEmpty());
    QVERIFY(!network.headEmitter());
    QVERIFY(!network.emitterActiveAt(10));
}

void tst_ScenarioNetwork::membershipKeepsSetAndListInStep()
{
    ScenarioNetwork network(QStringLiteral("N"));
    const auto a = makeEmitter(QStringLiteral("A"));
    const auto b = makeEmitter(QStringLiteral("B"));
    QVERIFY(network.addEmitter(a));
    QVERIFY(!network.addEmitter(a));
    QVERIFY(network.addEmitter(b));
    QCOMPARE(network.emitterList(), (QList<std::shared_ptr<SzenarioEmitter>> { a, b }));
    QCOMPARE(network.emitter().size(), 2);
    QVERIFY(network.containsEmitter(b));
    // Membership is the network's side only.
    QVERIFY(!a->hasNetwork());

    QVERIFY(network.removeEmitter(a));
    QVERIFY(!network.removeEmitter(a));
    QVERIFY(!network.containsEmitter(a));
    QCOMPARE(network.indexForEmitter(a), -1);
    QCOMPARE(network.indexForEmitter(b), 0);
}

void tst_ScenarioNetwork::removeEmitterDropsItsEntriesAndEmptyGroups()
{
    const auto network = std::make_shared<ScenarioNetwork>(QStringLiteral("N"));
    const auto a = makeEmitter(QStringLiteral("A"));
    const auto b = makeEmitter(QStringLiteral("B"));
    const auto stranger = makeEmitter(QStringLiteral("S"));
    join(network, a);
    join(network, b);
    EmissionSettings *table = network->emissionSettings();
    for (qint64 start : { 0, 200, 400 })
        addEntry(table, start, 100, a);
    addEntry(table, 100, 100, b);
    addEntry(table, 300, 100, stranger);
    const auto groupOfA = table->createGroup();
    const auto outer = table->createGroup();
    for (const auto &emission : table->emissions()) {
        if (emission->emitter == a)
            groupOfA->members << emission;
    }
    outer->subGroups << groupOfA;
    table->addGroup(outer);
    table->addGroup(groupOfA);

    QVERIFY(!network->removeEmitter(stranger));
    QCOMPARE(table->emissions().size(), 5);

    QVERIFY(network->removeEmitter(a));
    QCOMPARE(table->emissions().size(), 2);
    QVERIFY(table->groups().isEmpty());
    QCOMPARE(table->activeEmitterAt(150), b);
    // The emitter keeps its own pointer: clearing it is the caller's task.
    QCOMPARE(a->network(), network);
    releaseScenario({ network, a, b, stranger });
}

void tst_ScenarioNetwork::headEmitterReordersTheListOnly()
{
    ScenarioNetwork network(QStringLiteral("N"));
    const auto a = makeEmitter(QStringLiteral("A"));
    const auto b = makeEmitter(QStringLiteral("B"));
    const auto outsider = makeEmitter(QStringLiteral("O"));
    network.addEmitter(a);
    network.addEmitter(b);

    network.setHeadEmitter(b);
    QCOMPARE(network.indexForEmitter(b), 0);
    QCOMPARE(network.indexForEmitter(a), 1);
    QCOMPARE(network.headEmitter(), b);
    QCOMPARE(network.emitterList().size(), 2);

    network.setHeadEmitter(outsider);
    QCOMPARE(network.headEmitter(), outsider);
    QVERIFY(!network.containsEmitter(outsider));
    QCOMPARE(network.emitterList().size(), 3);
    QCOMPARE(network.emitter().size(), 2);
}

void tst_ScenarioNetwork::emitterForIndexOutOfRange_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("expected");
    QTest::newRow("-1") << -1 << QString();
    QTest::newRow("0") << 0 << QStringLiteral("A");
    QTest::newRow("1") << 1 << QStringLiteral("B");
    QTest::newRow("n") << 2 << QString();
}

void tst_ScenarioNetwork::emitterForIndexOutOfRange()
{
    QFETCH(int, index);
    QFETCH(QString, expected);
    ScenarioNetwork network(QStringLiteral("N"));
    network.addEmitter(makeEmitter(QStringLiteral("A")));
    network.addEmitter(makeEmitter(QStringLiteral("B")));
    const auto found = network.emitterForIndex(index);
    QCOMPARE(found ? found->id() : QString(), expected);
}

void tst_ScenarioNetwork::cloneSharesMembersInOrder()
{
    const auto network = std::make_shared<ScenarioNetwork>(QStringLiteral("N"));
    const auto a = makeEmitter(QStringLiteral("A"));
    const auto b = makeEmitter(QStringLiteral("B"));
    join(network, a);
    join(network, b);
    network->setHeadEmitter(b);
    network->setColor(Qt::blue);
    network->setNetworkType(NetworkHierarchical);
    network->emissionSettings()->setDuration(500);

    const auto clone = Cast::network(network->clone());
    QVERIFY(clone && clone != network);
    QCOMPARE(clone->id(), QStringLiteral("N"));
    QCOMPARE(clone->color(), QColor(Qt::blue));
    QCOMPARE(clone->networkType(), NetworkHierarchical);
    QCOMPARE(clone->emitterList(), network->emitterList());
    QCOMPARE(clone->emitter(), network->emitter());
    QVERIFY(clone->emissionSettings() != network->emissionSettings());
    QCOMPARE(clone->emissionSettings()->duration(), qint64(500));
    QCOMPARE(a->network(), network);
    releaseScenario({ network, clone, a, b });
}

void tst_ScenarioNetwork::copyingConstructorStartsWithoutMembers()
{
    const auto source = std::make_shared<ScenarioNetwork>(QStringLiteral("S"));
    source->setColor(Qt::green);
    source->setNetworkType(NetworkHierarchical);
    source->setVisibleOnTimeline(true);
    source->addEmitter(makeEmitter(QStringLiteral("A")));

    ScenarioNetwork copy(QStringLiteral("C"), source);
    QCOMPARE(copy.name(), QStringLiteral("C"));
    QCOMPARE(copy.color(), QColor(Qt::green));
    QCOMPARE(copy.networkType(), NetworkHierarchical);
    QVERIFY(copy.isVisibleOnTimeline());
    QVERIFY(copy.emitterList().isEmpty());
}

QTEST_GUILESS_MAIN(tst_ScenarioNetwork)
#include "tst_scenarionetwork.moc"
