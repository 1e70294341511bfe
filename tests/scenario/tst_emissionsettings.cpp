#include "../allocationcounter.h"
#include "scenariotesthelpers.h"

#include <radiosim/packages/signalpackage.h>

#include <QtTest>

#include <random>
#include <thread>

using namespace Simulation;
using EmissionPointer = boost::shared_ptr<EmissionSettings::Emission>;
using GroupPointer = boost::shared_ptr<EmissionSettings::Group>;

class tst_EmissionSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void emissionAtCoversFromJustBehindStartToEnd_data()
    {
        columns<Table, int, bool, uint, int, int>(
            "table", "period", "broadcast", "time", "entry", "timeActive");
        const Table single { { 100, 50 } };
        row("empty table", Table(), 1000, false, 120u, -1, -1);
        row("at start", single, 1000, false, 100u, -1, -1);
        row("just behind start", single, 1000, false, 101u, 0, 1);
        row("at end", single, 1000, false, 150u, 0, 50);
        row("behind end", single, 1000, false, 151u, -1, -1);
        row("second period", single, 1000, false, 1120u, 0, 20);
        row("default period, late time", single, 0, false, 4294967295u, -1, -1);
        const Table whole { { 0, 600000 } };
        row("continuous at 599999", whole, 600000, true, 599999u, 0, 599999);
        row("continuous at period wraps to 0", whole, 600000, true, 600000u, -1, -1);
        const Table backToBack { { 0, 100 }, { 100, 100 } };
        row("change belongs to earlier", backToBack, 1000, false, 100u, 0, 100);
        row("behind change", backToBack, 1000, false, 101u, 1, 1);
    }
    void emissionAtCoversFromJustBehindStartToEnd()
    {
        QFETCH(Table, table);
        QFETCH(int, period);
        QFETCH(bool, broadcast);
        QFETCH(uint, time);
        QFETCH(int, entry);
        EmissionSettings settings;
        fill(&settings, table, period, broadcast);
        const auto emitter = makeEmitter("E");
        settings.replaceEmitter(nullptr, emitter);
        const auto found = settings.emissionAt(time);
        QCOMPARE(found ? settings.emissions().indexOf(found) : -1, entry);
        QCOMPARE(settings.activeEmitterAt(time), entry >= 0 ? emitter : nullptr);
        QTEST(int(settings.timeActiveAt(time)), "timeActive");
    }

    void tableStaysSortedByStart()
    {
        EmissionSettings settings;
        settings.setDuration(1000);
        const auto late = addEntry(&settings, 300, 10);
        const auto first = addEntry(&settings, 100, 10);
        const auto second = addEntry(&settings, 100, 20);
        QCOMPARE(settings.emissions(), (QList<EmissionPointer> { second, first, late }));
        late->start = 50;
        settings.updateEmission(late);
        QCOMPARE(settings.emissions(), (QList<EmissionPointer> { late, second, first }));
        QCOMPARE(settings.emissionAt(55), late);
        // An editor that moves an entry within its neighbours need not re-sort it.
        late->start = 70;
        QVERIFY(!settings.emissionAt(55));
        QCOMPARE(settings.emissionAt(71), late);
        QCOMPARE(settings.timeActiveAt(80), qint64(10));
        QCOMPARE(spans(settings.calculateHRActivities(nullptr, 0, 90)), QStringList { "70+10" });
    }

    void lookupsAgreeWithAFullSearch_data()
    {
        columns<quint64, qint64, qint64>("spread", "offset", "period");
        row("dense", quint64(1000), qint64(0), qint64(0));
        row("few distinct starts", quint64(5), qint64(0), qint64(3000));
        row("around zero", quint64(4000000000), qint64(-1000), qint64(0));
        row("whole signed range", quint64(0), qint64(0), qint64(0));
    }
    // Random edits, including starts moved in place between their neighbours, each followed by
    // lookups at and around the starts and at random times, against a plain lower bound over the
    // live entries.
    void lookupsAgreeWithAFullSearch()
    {
        QFETCH(quint64, spread);
        QFETCH(qint64, offset);
        QFETCH(qint64, period);
        std::mt19937_64 random(11);
        auto someStart = [&] {
            return spread ? qint64(random() % spread) * (spread < 10 ? 1000 : 1) + offset
                          : qint64(random());
        };
        EmissionSettings table;
        table.setDuration(period);
        const auto &entries = table.emissions();
        auto expected = [&](uint time) -> EmissionPointer {
            const qint64 key = period > 0 ? time % period : time;
            const auto found = std::lower_bound(entries.cbegin(), entries.cend(), key,
                [](const EmissionPointer &entry, qint64 value) { return entry->start < value; });
            const EmissionPointer before = found == entries.cbegin() ? nullptr : *(found - 1);
            const bool covers
                = before && qint64(quint64(before->start) + quint64(before->duration)) >= key;
            return covers ? before : nullptr;
        };
        for (int step = 0; step < 3000; ++step) {
            const int at = entries.isEmpty() ? 0 : int(random() % uint(entries.size()));
            const auto action = entries.isEmpty() ? 0 : random() % 5;
            if (action < 2) {
                const qint64 start = someStart();
                addEntry(&table, start, qint64(random() % 300));
            } else if (action == 2) {
                const EmissionPointer entry = entries.at(at);
                entry->start = someStart();
                table.updateEmission(entry);
            } else if (action == 3) {
                table.removeEmission(entries.at(at));
            } else {
                const qint64 low = at > 0 ? entries.at(at - 1)->start : entries.at(at)->start - 50;
                const qint64 high = at + 1 < entries.size() ? entries.at(at + 1)->start
                                                            : entries.at(at)->start + 50;
                if (spread && low <= high)
                    entries.at(at)->start = low + qint64(random() % quint64(high - low + 1));
            }
            for (int probe = 0; probe < 20; ++probe) {
                uint time = uint(random());
                if (probe < 10 && !entries.isEmpty())
                    time = uint(
                        entries.at(int(random() % uint(entries.size())))->start + probe % 3 - 1);
                QVERIFY2(
                    table.emissionAt(time) == expected(time), qPrintable(QString::number(time)));
            }
        }
    }

    void setDuration()
    {
        EmissionSettings settings;
        const auto entry = addEntry(&settings, 0, 700);
        settings.setDuration(5000);
        QCOMPARE(entry->duration, qint64(700));
        // A broadcast's one entry spans the period; no period means the largest.
        settings.setBroadcast(true);
        for (qint64 none : { 0, -3 }) {
            settings.setDuration(none);
            QVERIFY(settings.duration() == std::numeric_limits<qint64>::max()
                && entry->duration == 700);
        }
        settings.setDuration(5000);
        QCOMPARE(entry->duration, qint64(5000));
    }

    void makeContinousActiveKeepsThePackage()
    {
        const auto emitter = makeEmitter("E");
        const auto package = std::make_shared<SignalPackage>();
        EmissionSettings settings;
        settings.setDuration(600000);
        addEntry(&settings, 50, 10)->signalPackage = package;
        addEntry(&settings, 80, 10);
        settings.addGroup(settings.createGroup());

        settings.makeContinousActive(emitter, nullptr);
        QVERIFY(settings.groups().isEmpty() && !settings.isBroadcast());
        QCOMPARE(settings.emissions().size(), 1);
        const auto entry = settings.emissions().first();
        QVERIFY(entry->start == 0 && entry->duration == 600000 && entry->id == 0);
        QVERIFY(entry->emitter == emitter && entry->signalPackage == package);

        EmissionSettings empty;
        empty.makeContinousActive(emitter, nullptr);
        QVERIFY(empty.emissions().size() == 1 && !empty.emissions().first()->signalPackage);
    }

    void removalCascadesThroughEmptyGroupsOnly()
    {
        EmissionSettings settings;
        const auto entry = addEntry(&settings, 10, 10), other = addEntry(&settings, 30, 10);
        const auto inner = settings.createGroup(), outer = settings.createGroup();
        const auto unrelated = settings.createGroup();
        inner->members << entry;
        outer->subGroups << inner;
        unrelated->members << other;
        for (const auto &group : { outer, inner, unrelated })
            settings.addGroup(group);

        settings.removeEmission(entry);
        QCOMPARE(settings.groups(), QList<GroupPointer> { unrelated });
        QCOMPARE(settings.emissions(), QList<EmissionPointer> { other });
        settings.removeGroup(unrelated);
        QVERIFY(settings.groups().isEmpty());
        QCOMPARE(settings.emissions(), QList<EmissionPointer> { other });
    }

    void assignmentCopiesTheGraphDeeply()
    {
        const auto emitter = makeEmitter("E");
        EmissionSettings source;
        fill(&source, { { 500, 10 }, { 100, 10 } }, 1000, true, emitter);
        const auto early = source.emissions().at(0), late = source.emissions().at(1);
        late->id = 7;
        const auto parent = source.createGroup(), child = source.createGroup();
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
        QVERIFY(copy.duration() == 1000 && copy.isBroadcast());
        QVERIFY(copy.emissions().size() == 2 && copy.groups().size() == 2);

        const auto copiedLate = copy.emissions().at(1);
        QVERIFY(copiedLate != late && copiedLate->id == 7u && copiedLate->emitter == emitter);
        // The entry's group pointer is copied as it stands, so it still names the old group.
        QCOMPARE(copiedLate->group, child);

        const auto copiedParent = copy.groups().at(0), copiedChild = copy.groups().at(1);
        QVERIFY(copiedParent->id == 0u && copiedParent->name.isEmpty() && !copiedChild->parent);
        QCOMPARE(copiedParent->subGroups, QList<GroupPointer> { copiedChild });
        QCOMPARE(
            copiedChild->members, (QList<EmissionPointer> { copiedLate, copy.emissions().at(0) }));

        // A subgroup that never joined the table has no counterpart.
        parent->subGroups << source.createGroup();
        copy = source;
        QCOMPARE(copy.groups().at(0)->subGroups.size(), 2);
        QVERIFY(!copy.groups().at(0)->subGroups.at(1));

        EmissionSettings &alias = copy;
        copy = alias;
        QVERIFY(copy.emissions().size() == 2 && copy.groups().size() == 2);

        // The parent and group pointers set above form cycles with the lists.
        child->parent.reset();
        late->group.reset();
        copiedLate->group.reset();
    }

    void hrActivities_data()
    {
        columns<Table, int, bool, uint, uint, QStringList>(
            "table", "period", "broadcast", "start", "length", "expected");
        const Table two { { 0, 200 }, { 400, 200 } };
        const QStringList none;
        row("empty table", Table(), 1000, false, 0u, 100u, none);
        row("empty broadcast table", Table(), 1000, true, 0u, 100u, none);
        row("broadcast ignores the entries", two, 1000, true, 1000u, 500u,
            QStringList { "1000+500" });
        row("not clipped at the beginning", two, 1000, false, 100u, 400u,
            QStringList { "0+200", "400+100" });
        row("start of an entry included", two, 1000, false, 400u, 1u,
            QStringList { "0+200", "400+1" });
        row("repeats with the period", two, 1000, false, 500u, 1000u,
            QStringList { "400+200", "1000+200", "1400+100" });
        row("entry running into the window", Table { { 900, 200 } }, 1000, false, 1950u, 100u,
            QStringList { "1900+150" });
        row("overrun of the previous period is lost", Table { { 100, 100 }, { 900, 200 } }, 1000,
            false, 1000u, 50u, none);
        row("default period from 0", Table { { 0, 100 } }, 0, false, 50u, 100u,
            QStringList { "0+100" });
        row("default period without an entry at 0 stops", Table { { 10, 100 } }, 0, false, 50u,
            100u, QStringList { "10+100" });
    }
    void hrActivities()
    {
        QFETCH(Table, table);
        QFETCH(int, period);
        QFETCH(bool, broadcast);
        QFETCH(uint, start);
        QFETCH(uint, length);
        EmissionSettings settings;
        fill(&settings, table, period, broadcast);
        QFETCH(QStringList, expected);
        QCOMPARE(spans(settings.calculateHRActivities(nullptr, start, length)), expected);
        // A visitor that has seen enough ends the walk.
        int seen = 0;
        auto firstOnly = [&seen](const HRActivity &) { return ++seen < 1; };
        settings.visitHRActivities(nullptr, start, length, firstOnly);
        QCOMPARE(seen, std::min(1, int(expected.size())));
    }

    // Two tables that disagree at every probe: a shared search key would mix their answers.
    void lookupsRunInParallelWithoutAllocating()
    {
        EmissionSettings even, odd;
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
                    const bool onAir = ((time % 20) < 10) == evenTable;
                    const auto found = table->emissionAt(time);
                    if ((found ? found->start : -1) != (onAir ? qint64(time) - 1 : -1))
                        ++wrong;
                }
            }
        };
        long before = allocations.load();
        even.createEmission();
        QVERIFY2(allocations.load() > before, "the counter must see the library's allocations");
        before = allocations.load();
        probe(&even, true);
        QCOMPARE(allocations.load(), before);
        std::thread first(probe, &even, true), second(probe, &odd, false);
        first.join();
        second.join();
        QCOMPARE(wrong.load(), 0);
    }
};

QTEST_GUILESS_MAIN(tst_EmissionSettings)
#include "tst_emissionsettings.moc"
