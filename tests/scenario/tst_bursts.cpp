#include "scenariotesthelpers.h"

#include <radiosim/scenario/emissionsettings.h>
#include <radiosim/scenario/scenarionetwork.h>
#include <radiosim/scenario/scenarioobject.h>

#include <QtTest>

using namespace Simulation;
using Table = QVector<QPair<qint64, qint64>>;

class tst_Bursts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ownTimetable_data();
    void ownTimetable();
    void switchedOffEmitterStillCalculates();
    void networkListsOnlyTheMembersEntries();
    void broadcastNetworkPutsEveryMemberOnAir();
    void linkTargetPositionLimitsTheWindow();
    void frequencyPiecesIntersectTheTimetable_data();
    void frequencyPiecesIntersectTheTimetable();
    void elintFollowsItsTimetable();
    void streamedPiecesGiveTheListMerge_data();
    void streamedPiecesGiveTheListMerge();
};

void tst_Bursts::ownTimetable_data()
{
    QTest::addColumn<Table>("table");
    QTest::addColumn<qint64>("period");
    QTest::addColumn<bool>("broadcast");
    QTest::addColumn<uint>("frequencyEnd");
    QTest::addColumn<uint>("positionEnd");
    QTest::addColumn<uint>("start");
    QTest::addColumn<uint>("length");
    QTest::addColumn<QStringList>("expected");

    const Table whole { { 0, 600000 } };
    const Table two { { 0, 200 }, { 400, 200 } };
    QTest::newRow("broadcast") << whole << qint64(600000) << true << NoEnd << NoEnd << 1000u << 500u
                               << QStringList { "1000+500@25" };
    QTest::newRow("two entries, clipped to the window")
        << two << qint64(1000) << false << NoEnd << NoEnd << 100u << 400u
        << QStringList { "100+100@25", "400+100@25" };
    QTest::newRow("next period") << two << qint64(1000) << false << NoEnd << NoEnd << 1100u << 400u
                                 << QStringList { "1100+100@25", "1400+100@25" };
    QTest::newRow("entry from before the window")
        << Table { { 900, 200 } } << qint64(1000) << false << NoEnd << NoEnd << 1950u << 100u
        << QStringList { "1950+100@25" };
    QTest::newRow("empty timetable")
        << Table() << qint64(1000) << false << NoEnd << NoEnd << 0u << 1000u << QStringList();
    QTest::newRow("empty broadcast timetable")
        << Table() << qint64(1000) << true << NoEnd << NoEnd << 0u << 1000u << QStringList();
    QTest::newRow("length 0") << whole << qint64(600000) << true << NoEnd << NoEnd << 1000u << 0u
                              << QStringList();
    QTest::newRow("frequency ends inside the window")
        << whole << qint64(600000) << true << 300u << NoEnd << 250u << 100u
        << QStringList { "250+50@25" };
    QTest::newRow("frequency ended at the start")
        << whole << qint64(600000) << true << 300u << NoEnd << 300u << 100u << QStringList();
    QTest::newRow("position ends inside the window")
        << whole << qint64(600000) << true << NoEnd << 300u << 250u << 100u
        << QStringList { "250+50@25" };
    QTest::newRow("earlier of both ends") << two << qint64(1000) << false << 450u << 500u << 100u
                                          << 400u << QStringList { "100+100@25", "400+50@25" };
    QTest::newRow("window past the 32-bit range ends there")
        << whole << qint64(600000) << true << NoEnd << NoEnd << 4294967000u << 1000u
        << QStringList { "4294967000+295@25" };
}

void tst_Bursts::ownTimetable()
{
    QFETCH(Table, table);
    QFETCH(qint64, period);
    QFETCH(bool, broadcast);
    QFETCH(uint, frequencyEnd);
    QFETCH(uint, positionEnd);
    QFETCH(uint, start);
    QFETCH(uint, length);
    QFETCH(QStringList, expected);

    const auto emitter = makeEmitter(QStringLiteral("E"));
    emitter->setFrequencySettings(frequencyEndingAt(frequencyEnd));
    emitter->setPositionSettings(positionEndingAt(positionEnd));
    EmissionSettings *timetable = emitter->emissionSettings();
    timetable->setBroadcast(broadcast);
    timetable->setDuration(period);
    for (const auto &entry : table)
        addEntry(timetable, entry.first, entry.second, emitter);

    QCOMPARE(spans(emitter->calculateBursts(start, length, 1.0)), expected);
    releaseScenario({ emitter });
}

void tst_Bursts::switchedOffEmitterStillCalculates()
{
    const auto emitter = makeEmitter(QStringLiteral("E"));
    emitter->emissionSettings()->setDuration(1000);
    addEntry(emitter->emissionSettings(), 0, 200, emitter);
    addEntry(emitter->emissionSettings(), 400, 200, emitter);
    const QStringList on = spans(emitter->calculateBursts(100, 2000, 1.0));
    emitter->setActive(false);
    QCOMPARE(spans(emitter->calculateBursts(100, 2000, 1.0)), on);
    QCOMPARE(on.size(), 5);
    releaseScenario({ emitter });
}

void tst_Bursts::networkListsOnlyTheMembersEntries()
{
    const auto network = std::make_shared<ScenarioNetwork>(QStringLiteral("N"));
    network->frequencySettings()->setCenterFrequency(30e6);
    const auto a = makeEmitter(QStringLiteral("A"));
    const auto b = makeEmitter(QStringLiteral("B"));
    join(network, a);
    join(network, b);
    EmissionSettings *timetable = network->emissionSettings();
    timetable->setDuration(1000);
    addEntry(timetable, 0, 100, a);
    addEntry(timetable, 100, 100, b);
    addEntry(timetable, 300, 100, a);
    // The members' own timetables and frequencies are out of use.
    a->ScenarioObject::emissionSettings()->makeContinousActive(a, nullptr);

    QCOMPARE(spans(a->calculateBursts(0, 1000, 1.0)), (QStringList { "0+100@30", "300+100@30" }));
    QCOMPARE(spans(b->calculateBursts(0, 1000, 1.0)), QStringList { "100+100@30" });
    releaseScenario({ network, a, b });
}

void tst_Bursts::broadcastNetworkPutsEveryMemberOnAir()
{
    const auto network = std::make_shared<ScenarioNetwork>(QStringLiteral("N"));
    const auto a = makeEmitter(QStringLiteral("A"));
    const auto b = makeEmitter(QStringLiteral("B"));
    join(network, a);
    join(network, b);
    network->emissionSettings()->setDuration(1000);
    network->emissionSettings()->setBroadcast(true);
    network->emissionSettings()->makeContinousActive(a, nullptr);

    QCOMPARE(spans(a->calculateBursts(200, 300, 1.0)), QStringList { "200+300@25" });
    QCOMPARE(spans(b->calculateBursts(200, 300, 1.0)), QStringList { "200+300@25" });
    releaseScenario({ network, a, b });
}

void tst_Bursts::linkTargetPositionLimitsTheWindow()
{
    const auto target = makeEmitter(QStringLiteral("T"));
    target->setPositionSettings(positionEndingAt(300));
    const auto emitter = makeEmitter(QStringLiteral("E"));
    emitter->setLinkTargetEmitter(target);
    target->addLinkedEmitter(emitter);
    emitter->emissionSettings()->setDuration(1000);
    emitter->emissionSettings()->setBroadcast(true);
    emitter->emissionSettings()->makeContinousActive(emitter, nullptr);

    QCOMPARE(spans(emitter->calculateBursts(250, 100, 1.0)), QStringList { "250+50@25" });
    QVERIFY(emitter->calculateBursts(300, 100, 1.0).isEmpty());
    releaseScenario({ target, emitter });
}

void tst_Bursts::frequencyPiecesIntersectTheTimetable_data()
{
    QTest::addColumn<Table>("table");
    QTest::addColumn<uint>("start");
    QTest::addColumn<uint>("length");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("entry across two hops")
        << Table { { 150, 100 } } << 0u << 1000u << QStringList { "150+50@2", "200+50@3" };
    QTest::newRow("hop across two entries") << Table { { 110, 20 }, { 160, 20 } } << 100u << 100u
                                            << QStringList { "110+20@2", "160+20@2" };
    QTest::newRow("entry clipped at both window ends")
        << Table { { 50, 400 } } << 120u << 200u
        << QStringList { "120+80@2", "200+100@3", "300+20@4" };
    QTest::newRow("gap between entries")
        << Table { { 0, 50 }, { 250, 50 } } << 0u << 400u << QStringList { "0+50@1", "250+50@3" };
}

void tst_Bursts::frequencyPiecesIntersectTheTimetable()
{
    QFETCH(Table, table);
    QFETCH(uint, start);
    QFETCH(uint, length);
    QFETCH(QStringList, expected);

    const auto emitter = makeEmitter(QStringLiteral("E"));
    emitter->setFrequencySettings(tenStepHopper());
    emitter->emissionSettings()->setDuration(100000);
    for (const auto &entry : table)
        addEntry(emitter->emissionSettings(), entry.first, entry.second, emitter);

    QCOMPARE(spans(emitter->calculateBursts(start, length, 1.0)), expected);
    releaseScenario({ emitter });
}

void tst_Bursts::elintFollowsItsTimetable()
{
    const auto elint = std::make_shared<ElintScenarioEmitter>(QStringLiteral("EL"), QString());
    QVERIFY(elint->isActiveAt(500));
    QVERIFY(elint->calculateBursts(0, 1000, 1.0).isEmpty());
    elint->emissionSettings()->setDuration(1000);
    addEntry(elint->emissionSettings(), 100, 100, elint);
    QCOMPARE(spans(elint->calculateBursts(0, 1000, 1.0)), QStringList { "100+100@25" });
    releaseScenario({ elint });
}

// The merge over whole lists, cursor against cursor, as an independent reading of the rule.
static QList<HRActivity> listMerge(
    const QList<HRActivity> &pieces, const QList<HRActivity> &onAir, quint64 start, quint64 end)
{
    QList<HRActivity> result;
    int f = 0;
    int a = 0;
    while (f < pieces.size() && a < onAir.size()) {
        const quint64 fEnd = pieces[f].start + pieces[f].duration;
        const quint64 aEnd = onAir[a].start + onAir[a].duration;
        if (onAir[a].start >= fEnd) {
            ++f;
        } else if (pieces[f].start >= aEnd) {
            ++a;
        } else {
            const quint64 lo = std::max({ start, onAir[a].start, pieces[f].start });
            const quint64 hi = std::min({ end, aEnd, fEnd });
            result.append({ lo, hi - lo, pieces[f].frequency });
            if (hi == aEnd)
                ++a;
            else if (hi == fEnd)
                ++f;
            else
                break;
        }
    }
    return result;
}

void tst_Bursts::streamedPiecesGiveTheListMerge_data()
{
    QTest::addColumn<int>("kind");
    QTest::newRow("chirp") << 0;
    QTest::newRow("fast hopper") << 1;
    QTest::newRow("slow hopper") << 2;
}

void tst_Bursts::streamedPiecesGiveTheListMerge()
{
    QFETCH(int, kind);
    const auto emitter = makeEmitter(QStringLiteral("E"));
    IFrequencySettings *frequency = kind == 0
        ? static_cast<IFrequencySettings *>(new FrequencySettings_Chirp)
        : kind == 1 ? static_cast<IFrequencySettings *>(new FrequencySettings_FastHopper)
                    : tenStepHopper();
    emitter->setFrequencySettings(frequency);
    EmissionSettings *timetable = emitter->emissionSettings();
    timetable->setDuration(3000);
    addEntry(timetable, 100, 7, emitter);
    addEntry(timetable, 250, 400, emitter);
    addEntry(timetable, 655, 1, emitter);
    addEntry(timetable, 1200, 1500, emitter);

    int records = 0;
    for (uint start = 0; start < 6000; start += 37) {
        const uint length = 20 + start % 150;
        const QList<HRActivity> expected
            = listMerge(frequency->calculateHRActivities(start, length, 1500.0),
                timetable->calculateHRActivities(emitter.get(), start, length), start,
                quint64(start) + length);
        const QList<HRActivity> actual = emitter->calculateBursts(start, length, 1500.0);
        QCOMPARE(spans(actual), spans(expected));
        records += actual.size();
    }
    QVERIFY(records > 100);
    releaseScenario({ emitter });
}

QTEST_GUILESS_MAIN(tst_Bursts)
#include "tst_bursts.moc"
