#include "../allocationcounter.h"
#include "scenariotesthelpers.h"

#include <radiosim/packages/signalpackage.h>
#include <radiosim/scenario/emissionsettings.h>
#include <radiosim/scenario/scenarioobject.h>

#include <QtTest>

#include <thread>

using namespace Simulation;
using Table = QVector<QPair<qint64, qint64>>;

namespace {

using EmissionPointer = boost::shared_ptr<EmissionSettings::Emission>;

void fill(EmissionSettings &settings, const Table &table, qint64 period, bool broadcast)
{
    settings.setBroadcast(broadcast);
    settings.setDuration(period);
    for (const auto &entry : table)
        addEntry(&settings, entry.first, entry.second);
}

} // namespace

class tst_EmissionSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emissionAtCoversFromJustBehindStartToEnd_data();
    void emissionAtCoversFromJustBehindStartToEnd();
    void tableStaysSortedByStart();
    void startChangedInPlaceIsFollowed();
    void setDuration();
    void makeContinousActiveKeepsThePackage();
    void removalCascadesThroughEmptyGroupsOnly();
    void assignmentCopiesTheGraphDeeply();
    void selfAssignmentKeepsTheTable();
    void hrActivities_data();
    void hrActivities();
    void hrActivitiesFilterByEmitter();
    void queriesOnTwoTimetablesInParallel();
    void emissionAtDoesNotAllocate();
};

void tst_EmissionSettings::emissionAtCoversFromJustBehindStartToEnd_data()
{
    QTest::addColumn<Table>("table");
    QTest::addColumn<qint64>("period");
    QTest::addColumn<bool>("broadcast");
    QTest::addColumn<uint>("time");
    QTest::addColumn<int>("entry");
    QTest::addColumn<qint64>("timeActive");

    const Table single { { 100, 50 } };
    QTest::newRow("empty table") << Table() << qint64(1000) << false << 120u << -1 << qint64(-1);
    QTest::newRow("empty table, no period")
        << Table() << qint64(0) << false << 0u << -1 << qint64(-1);
    QTest::newRow("at start") << single << qint64(1000) << false << 100u << -1 << qint64(-1);
    QTest::newRow("just behind start") << single << qint64(1000) << false << 101u << 0 << qint64(1);
    QTest::newRow("at end") << single << qint64(1000) << false << 150u << 0 << qint64(50);
    QTest::newRow("behind end") << single << qint64(1000) << false << 151u << -1 << qint64(-1);
    QTest::newRow("second period") << single << qint64(1000) << false << 1120u << 0 << qint64(20);
    QTest::newRow("before first entry")
        << single << qint64(1000) << false << 50u << -1 << qint64(-1);

    const Table whole { { 0, 600000 } };
    QTest::newRow("continuous at 0") << whole << qint64(600000) << true << 0u << -1 << qint64(-1);
    QTest::newRow("continuous at 1") << whole << qint64(600000) << true << 1u << 0 << qint64(1);
    QTest::newRow("continuous at 599999")
        << whole << qint64(600000) << true << 599999u << 0 << qint64(599999);
    QTest::newRow("continuous at period wraps to 0")
        << whole << qint64(600000) << true << 600000u << -1 << qint64(-1);

    const Table backToBack { { 0, 100 }, { 100, 100 } };
    QTest::newRow("change belongs to earlier")
        << backToBack << qint64(1000) << false << 100u << 0 << qint64(100);
    QTest::newRow("behind change") << backToBack << qint64(1000) << false << 101u << 1 << qint64(1);
    QTest::newRow("default period, late time")
        << single << qint64(0) << false << 4294967295u << -1 << qint64(-1);
}

void tst_EmissionSettings::emissionAtCoversFromJustBehindStartToEnd()
{
    QFETCH(Table, table);
    QFETCH(qint64, period);
    QFETCH(bool, broadcast);
    QFETCH(uint, time);
    QFETCH(int, entry);
    QFETCH(qint64, timeActive);

    EmissionSettings settings;
    fill(settings, table, period, broadcast);
    const auto emitter = std::make_shared<SzenarioEmitter>(QStringLiteral("E"), QString());
    settings.replaceEmitter(nullptr, emitter);

    const auto found = settings.emissionAt(time);
    QCOMPARE(found ? settings.emissions().indexOf(found) : -1, entry);
    QCOMPARE(settings.isActiveAt(time), entry >= 0);
    QCOMPARE(settings.activeEmitterAt(time), entry >= 0 ? emitter : nullptr);
    QCOMPARE(settings.timeActiveAt(time), timeActive);
}

void tst_EmissionSettings::tableStaysSortedByStart()
{
    EmissionSettings settings;
    const auto late = addEntry(&settings, 300, 10);
    const auto first = addEntry(&settings, 100, 10);
    const auto second = addEntry(&settings, 100, 20);
    QCOMPARE(settings.emissions(), (QList<EmissionPointer> { second, first, late }));
    late->start = 50;
    settings.updateEmission(late);
    QCOMPARE(settings.emissions(), (QList<EmissionPointer> { late, second, first }));
    QCOMPARE(settings.emissionAt(55), late);
}

void tst_EmissionSettings::startChangedInPlaceIsFollowed()
{
    // An editor that moves an entry within its neighbours need not re-sort it.
    EmissionSettings settings;
    settings.setDuration(1000);
    const auto moved = addEntry(&settings, 100, 50);
    addEntry(&settings, 300, 50);
    moved->start = 120;
    QVERIFY(!settings.emissionAt(110));
    QCOMPARE(settings.emissionAt(121), moved);
    QCOMPARE(settings.timeActiveAt(170), qint64(50));
    QCOMPARE(spans(settings.calculateHRActivities(nullptr, 0, 200)), QStringList { "120+50" });
}

void tst_EmissionSettings::setDuration()
{
    EmissionSettings settings;
    const auto entry = addEntry(&settings, 0, 700);
    settings.setDuration(5000);
    QCOMPARE(settings.duration(), qint64(5000));
    QCOMPARE(entry->duration, qint64(700));

    settings.setBroadcast(true);
    settings.setDuration(0);
    QCOMPARE(settings.duration(), std::numeric_limits<qint64>::max());
    QCOMPARE(entry->duration, qint64(700));
    settings.setDuration(-3);
    QCOMPARE(settings.duration(), std::numeric_limits<qint64>::max());
    settings.setDuration(5000);
    QCOMPARE(entry->duration, qint64(5000));
}

void tst_EmissionSettings::makeContinousActiveKeepsThePackage()
{
    const auto emitter = std::make_shared<SzenarioEmitter>(QStringLiteral("E"), QString());
    const auto package = std::make_shared<SignalPackage>();
    EmissionSettings settings;
    settings.setDuration(600000);
    addEntry(&settings, 50, 10)->signalPackage = package;
    addEntry(&settings, 80, 10);
    settings.addGroup(settings.createGroup());

    settings.makeContinousActive(emitter, nullptr);
    QVERIFY(settings.groups().isEmpty());
    QCOMPARE(settings.emissions().size(), 1);
    const auto entry = settings.emissions().first();
    QCOMPARE(entry->start, qint64(0));
    QCOMPARE(entry->duration, qint64(600000));
    QCOMPARE(entry->emitter, emitter);
    QCOMPARE(entry->signalPackage, package);
    QCOMPARE(entry->id, 0u);
    QVERIFY(!settings.isBroadcast());

    EmissionSettings empty;
    empty.makeContinousActive(emitter, nullptr);
    QCOMPARE(empty.emissions().size(), 1);
    QCOMPARE(empty.emissions().first()->signalPackage, nullptr);
}

void tst_EmissionSettings::removalCascadesThroughEmptyGroupsOnly()
{
    EmissionSettings settings;
    const auto entry = addEntry(&settings, 10, 10);
    const auto other = addEntry(&settings, 30, 10);
    const auto inner = settings.createGroup();
    const auto outer = settings.createGroup();
    const auto unrelated = settings.createGroup();
    inner->members << entry;
    outer->subGroups << inner;
    unrelated->members << other;
    settings.addGroup(outer);
    settings.addGroup(inner);
    settings.addGroup(unrelated);

    settings.removeEmission(entry);
    QCOMPARE(settings.groups(), (QList<boost::shared_ptr<EmissionSettings::Group>> { unrelated }));
    QCOMPARE(settings.emissions(), (QList<EmissionPointer> { other }));
    settings.removeGroup(unrelated);
    QVERIFY(settings.groups().isEmpty());
    QCOMPARE(settings.emissions(), (QList<EmissionPointer> { other }));
}

void tst_EmissionSettings::assignmentCopiesTheGraphDeeply()
{
    const auto emitter = std::make_shared<SzenarioEmitter>(QStringLiteral("E"), QString());
    EmissionSettings source;
    source.setDuration(1000);
    source.setBroadcast(true);
    const auto late = addEntry(&source, 500, 10, emitter);
    const auto early = addEntry(&source, 100, 10, emitter);
    late->id = 7;
    const auto parent = source.createGroup();
    const auto child = source.createGroup();
    parent->id = 3;
    parent->name = QStringLiteral("parent");
    child->parent = parent;
    parent->subGroups << child;
    child->members << late << early;
    late->group = child;
    source.addGroup(parent);
    source.addGroup(child);

    EmissionSettings copy;
    addEntry(&copy, 1, 1);
    copy = source;
    QCOMPARE(copy.duration(), qint64(1000));
    QVERIFY(copy.isBroadcast());
    QCOMPARE(copy.emissions().size(), 2);
    QCOMPARE(copy.groups().size(), 2);

    const auto copiedLate = copy.emissions().at(1);
    QVERIFY(copiedLate != late);
    QCOMPARE(copiedLate->id, 7u);
    QCOMPARE(copiedLate->start, qint64(500));
    QCOMPARE(copiedLate->emitter, emitter);
    // The entry's group pointer is copied as it stands, so it still names the old group.
    QCOMPARE(copiedLate->group, child);

    const auto copiedParent = copy.groups().at(0);
    const auto copiedChild = copy.groups().at(1);
    QVERIFY(copiedParent != parent && copiedChild != child);
    QCOMPARE(copiedParent->id, 0u);
    QVERIFY(copiedParent->name.isEmpty());
    QCOMPARE(copiedChild->parent, nullptr);
    QCOMPARE(copiedParent->subGroups,
        (QList<boost::shared_ptr<EmissionSettings::Group>> { copiedChild }));
    QCOMPARE(copiedChild->members, (QList<EmissionPointer> { copiedLate, copy.emissions().at(0) }));

    copiedLate->start = 50;
    QCOMPARE(late->start, qint64(500));

    // A subgroup that never joined the table has no counterpart.
    parent->subGroups << source.createGroup();
    copy = source;
    QCOMPARE(copy.groups().at(0)->subGroups.size(), 2);
    QVERIFY(!copy.groups().at(0)->subGroups.at(1));

    // The parent and group pointers set above form cycles with the lists.
    child->parent.reset();
    late->group.reset();
    copiedLate->group.reset();
}

void tst_EmissionSettings::selfAssignmentKeepsTheTable()
{
    EmissionSettings settings;
    addEntry(&settings, 10, 10);
    settings.addGroup(settings.createGroup());
    EmissionSettings &alias = settings;
    settings = alias;
    QCOMPARE(settings.emissions().size(), 1);
    QCOMPARE(settings.groups().size(), 1);
}

void tst_EmissionSettings::hrActivities_data()
{
    QTest::addColumn<Table>("table");
    QTest::addColumn<qint64>("period");
    QTest::addColumn<bool>("broadcast");
    QTest::addColumn<uint>("start");
    QTest::addColumn<uint>("length");
    QTest::addColumn<QStringList>("expected");

    const Table two { { 0, 200 }, { 400, 200 } };
    QTest::newRow("empty table") << Table() << qint64(1000) << false << 0u << 100u << QStringList();
    QTest::newRow("empty broadcast table")
        << Table() << qint64(1000) << true << 0u << 100u << QStringList();
    QTest::newRow("broadcast ignores the entries")
        << two << qint64(1000) << true << 1000u << 500u << QStringList { "1000+500" };
    QTest::newRow("not clipped at the beginning")
        << two << qint64(1000) << false << 100u << 400u << QStringList { "0+200", "400+100" };
    QTest::newRow("start of an entry included")
        << two << qint64(1000) << false << 400u << 1u << QStringList { "0+200", "400+1" };
    QTest::newRow("repeats with the period") << two << qint64(1000) << false << 500u << 1000u
                                             << QStringList { "400+200", "1000+200", "1400+100" };
    QTest::newRow("entry running into the window")
        << Table { { 900, 200 } } << qint64(1000) << false << 1950u << 100u
        << QStringList { "1900+150" };
    QTest::newRow("overrun of the previous period is lost")
        << Table { { 100, 100 }, { 900, 200 } } << qint64(1000) << false << 1000u << 50u
        << QStringList();
    QTest::newRow("default period from 0")
        << Table { { 0, 100 } } << qint64(0) << false << 50u << 100u << QStringList { "0+100" };
    QTest::newRow("default period without an entry at 0 stops")
        << Table { { 10, 100 } } << qint64(0) << false << 50u << 100u << QStringList { "10+100" };
}

void tst_EmissionSettings::hrActivities()
{
    QFETCH(Table, table);
    QFETCH(qint64, period);
    QFETCH(bool, broadcast);
    QFETCH(uint, start);
    QFETCH(uint, length);
    QFETCH(QStringList, expected);

    EmissionSettings settings;
    fill(settings, table, period, broadcast);
    QCOMPARE(spans(settings.calculateHRActivities(nullptr, start, length)), expected);
}

void tst_EmissionSettings::hrActivitiesFilterByEmitter()
{
    const auto a = std::make_shared<SzenarioEmitter>(QStringLiteral("A"), QString());
    const auto b = std::make_shared<SzenarioEmitter>(QStringLiteral("B"), QString());
    EmissionSettings settings;
    settings.setDuration(300);
    addEntry(&settings, 0, 100, a);
    addEntry(&settings, 100, 100, b);
    addEntry(&settings, 200, 100, a);
    QCOMPARE(spans(settings.calculateHRActivities(a.get(), 50, 400)),
        (QStringList { "0+100", "200+100", "300+100" }));
    QCOMPARE(spans(settings.calculateHRActivities(b.get(), 50, 400)),
        (QStringList { "100+100", "400+50" }));
    QCOMPARE(spans(settings.calculateHRActivities(nullptr, 250, 100)),
        (QStringList { "200+100", "300+50" }));
}

void tst_EmissionSettings::queriesOnTwoTimetablesInParallel()
{
    // Two tables that disagree at every probe: a shared search key would mix their answers.
    EmissionSettings even;
    EmissionSettings odd;
    even.setDuration(20000);
    odd.setDuration(20000);
    for (qint64 start = 0; start < 20000; start += 20) {
        addEntry(&even, start, 9);
        addEntry(&odd, start + 10, 9);
    }
    std::atomic<int> wrong { 0 };
    auto probe = [&wrong](const EmissionSettings *table, bool evenTable) {
        for (int round = 0; round < 200; ++round) {
            for (uint time = 1; time < 20000; time += 10) {
                const bool firstHalf = (time % 20) < 10;
                const qint64 expected = firstHalf == evenTable ? qint64(time) - 1 : -1;
                const auto found = table->emissionAt(time);
                if ((found ? found->start : -1) != expected)
                    ++wrong;
            }
        }
    };
    std::thread first(probe, &even, true);
    std::thread second(probe, &odd, false);
    first.join();
    second.join();
    QCOMPARE(wrong.load(), 0);
}

void tst_EmissionSettings::emissionAtDoesNotAllocate()
{
    EmissionSettings settings;
    settings.setDuration(100000);
    for (qint64 start = 0; start < 100000; start += 100)
        addEntry(&settings, start, 50);
    const long beforeCreate = allocations.load();
    settings.createEmission();
    QVERIFY2(allocations.load() > beforeCreate, "the counter must see the library's allocations");

    long found = 0;
    const long before = allocations.load();
    for (uint time = 0; time < 300000; time += 7)
        found += settings.emissionAt(time) ? 1 : 0;
    const long allocated = allocations.load() - before;
    QCOMPARE(allocated, 0L);
    QVERIFY(found > 0);
}

QTEST_GUILESS_MAIN(tst_EmissionSettings)
#include "tst_emissionsettings.moc"
