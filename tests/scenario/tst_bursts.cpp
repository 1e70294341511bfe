#include "scenariotesthelpers.h"

#include <QtTest>

using namespace Simulation;

namespace {
// The merge over whole lists, cursor against cursor, as an independent reading of the rule.
QList<HRActivity> listMerge(
    const QList<HRActivity> &pieces, const QList<HRActivity> &onAir, quint64 start, quint64 end)
{
    QList<HRActivity> result;
    int f = 0, a = 0;
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
} // namespace

class tst_Bursts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ownTimetable_data()
    {
        columns<Table, bool, uint, uint, uint, uint, QStringList>(
            "table", "broadcast", "frequencyEnd", "positionEnd", "start", "length", "expected");
        // A broadcast table's period is 600000 ms, the others' 1000 ms.
        const Table whole { { 0, 600000 } }, two { { 0, 200 }, { 400, 200 } };
        using L = QStringList;
        row("broadcast", whole, true, NoEnd, NoEnd, 1000u, 500u, L { "1000+500@25" });
        row("two entries, clipped to the window", two, false, NoEnd, NoEnd, 100u, 400u,
            L { "100+100@25", "400+100@25" });
        row("entry from before the window", Table { { 900, 200 } }, false, NoEnd, NoEnd, 1950u,
            100u, L { "1950+100@25" });
        row("length 0", whole, true, NoEnd, NoEnd, 1000u, 0u, L());
        row("frequency ends inside the window", whole, true, 300u, NoEnd, 250u, 100u,
            L { "250+50@25" });
        row("frequency ended at the start", whole, true, 300u, NoEnd, 300u, 100u, L());
        row("earlier of both ends", two, false, 450u, 500u, 100u, 400u,
            L { "100+100@25", "400+50@25" });
        row("window past the 32-bit range ends there", whole, true, NoEnd, NoEnd, 4294967000u,
            1000u, L { "4294967000+295@25" });
    }
    void ownTimetable()
    {
        QFETCH(Table, table);
        QFETCH(bool, broadcast);
        QFETCH(uint, frequencyEnd);
        QFETCH(uint, positionEnd);
        QFETCH(uint, start);
        QFETCH(uint, length);
        const auto emitter = makeEmitter("E");
        emitter->setFrequencySettings(frequencyEndingAt(frequencyEnd));
        emitter->setPositionSettings(positionEndingAt(positionEnd));
        fill(emitter->emissionSettings(), table, broadcast ? 600000 : 1000, broadcast, emitter);
        QTEST(spans(emitter->calculateBursts(start, length, 1.0)), "expected");
        releaseScenario({ emitter });
    }

    void networkTimetableDecidesForItsMembers()
    {
        const auto a = makeEmitter("A"), b = makeEmitter("B");
        const auto network = makeNetwork({ a, b });
        network->frequencySettings()->setCenterFrequency(30e6);
        EmissionSettings *timetable = network->emissionSettings();
        fill(timetable, { { 0, 100 }, { 300, 100 } }, 1000, false, a);
        addEntry(timetable, 100, 100, b);
        // The members' own timetables and frequencies are out of use, though still theirs.
        a->ScenarioObject::emissionSettings()->makeContinousActive(a, nullptr);
        QVERIFY(a->getFrequencyAt(0) == 30e6 && a->frequencySettings()->getFrequencyAt(0) == 25e6);
        QCOMPARE(
            spans(a->calculateBursts(0, 1000, 1.0)), (QStringList { "0+100@30", "300+100@30" }));
        QCOMPARE(spans(b->calculateBursts(0, 1000, 1.0)), QStringList { "100+100@30" });
        // A broadcast puts every member on air at once.
        timetable->setBroadcast(true);
        for (const auto &member : { a, b })
            QCOMPARE(spans(member->calculateBursts(200, 300, 1.0)), QStringList { "200+300@30" });
        releaseScenario({ network, a, b });
    }

    // Ten steps of 100 ms from 1 MHz on against the timetable.
    void frequencyPiecesIntersectTheTimetable_data()
    {
        columns<Table, uint, uint, QStringList>("table", "start", "length", "expected");
        row("entry across two hops", Table { { 150, 100 } }, 0u, 1000u,
            QStringList { "150+50@2", "200+50@3" });
        row("hop across two entries", Table { { 110, 20 }, { 160, 20 } }, 100u, 100u,
            QStringList { "110+20@2", "160+20@2" });
        row("entry clipped at both window ends", Table { { 50, 400 } }, 120u, 200u,
            QStringList { "120+80@2", "200+100@3", "300+20@4" });
        row("gap between entries", Table { { 0, 50 }, { 250, 50 } }, 0u, 400u,
            QStringList { "0+50@1", "250+50@3" });
    }
    void frequencyPiecesIntersectTheTimetable()
    {
        QFETCH(Table, table);
        QFETCH(uint, start);
        QFETCH(uint, length);
        const auto emitter = makeEmitter("E");
        emitter->setFrequencySettings(tenStepHopper());
        fill(emitter->emissionSettings(), table, 100000, false, emitter);
        QTEST(spans(emitter->calculateBursts(start, length, 1.0)), "expected");
        releaseScenario({ emitter });
    }

    void streamedPiecesGiveTheListMerge()
    {
        const auto emitter = makeEmitter("E");
        EmissionSettings *timetable = emitter->emissionSettings();
        fill(timetable, { { 100, 7 }, { 250, 400 }, { 655, 1 }, { 1200, 1500 } }, 3000, false,
            emitter);
        IFrequencySettings *const kinds[]
            = { new FrequencySettings_Chirp, new FrequencySettings_FastHopper, tenStepHopper() };
        for (IFrequencySettings *frequency : kinds) {
            emitter->setFrequencySettings(frequency);
            int records = 0;
            for (uint start = 0; start < 6000; start += 37) {
                const uint length = 20 + start % 150;
                const QList<HRActivity> actual = emitter->calculateBursts(start, length, 1500.0);
                QCOMPARE(spans(actual),
                    spans(listMerge(frequency->calculateHRActivities(start, length, 1500.0),
                        timetable->calculateHRActivities(emitter.get(), start, length), start,
                        quint64(start) + length)));
                records += actual.size();
            }
            QVERIFY(records > 100);
        }
        releaseScenario({ emitter });
    }
};

QTEST_GUILESS_MAIN(tst_Bursts)
#include "tst_bursts.moc"
