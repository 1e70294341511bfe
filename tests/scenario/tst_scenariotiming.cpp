#include "scenariotesthelpers.h"

#include <radiosim/platform/orvoos.h>
#include <radiosim/scenario/scenariotiming.h>

#include <QtTest>

using namespace Simulation;

namespace {
class ManualClock : public IOrvoOS
{
public:
    quint64 currentTimeStampUs() const override { return now; }
    quint64 now = 0;
};
} // namespace

class tst_ScenarioTiming : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { ScenarioTimingHelper::setClock(&m_clock); }
    void cleanup() { ScenarioTimingHelper::setClock(nullptr); }
    void noiseCompareIsFuzzyButZeroIsExact_data()
    {
        columns<int, double, bool>("field", "value", "equal");
        QTest::newRow("density within 1e-12") << 0 << -35.0000000000001 << true;
        QTest::newRow("density beyond") << 0 << -35.0001 << false;
        QTest::newRow("deviation") << 1 << -45.1 << false;
        QTest::newRow("dependent density") << 2 << -34.0 << false;
        QTest::newRow("granularity") << 3 << 0.41 << false;
        QTest::newRow("tiny variability against zero") << 4 << 1e-300 << false;
        QTest::newRow("azimuth error") << 5 << 1.5 << false;
    }
    void noiseCompareIsFuzzyButZeroIsExact()
    {
        QFETCH(int, field);
        QFETCH(double, value);
        QFETCH(bool, equal);
        using Setter = void (ScenarioNoiseSettings::*)(double);
        const Setter setters[]
            = { &ScenarioNoiseSettings::setNoiseDensity, &ScenarioNoiseSettings::setNoiseDeviation,
                  &ScenarioNoiseSettings::setFrequencyDependentNoiseDensity,
                  &ScenarioNoiseSettings::setFrequencyDependentNoiseGranularity,
                  &ScenarioNoiseSettings::setFrequencyDependentNoiseVariability,
                  &ScenarioNoiseSettings::setAzimuthErrorDeviation };
        ScenarioNoiseSettings changed;
        (changed.*setters[field])(value);
        QCOMPARE(changed == ScenarioNoiseSettings(), equal);
        QCOMPARE(ScenarioNoiseSettings() == changed, equal);
        changed.setDefaults();
        QVERIFY(changed == ScenarioNoiseSettings());
    }

    // Steps "action clock(µs) argument(ms) time(ms) flags": 's' starts at the clock with the
    // argument as scenario time, 'p' pauses at the argument, 'x' stops, '-' only reads; flags are
    // P(aused) and S(topped).
    void clockStates_data()
    {
        QTest::addColumn<QString>("steps");
        QTest::newRow("start at 2000 ms") << "s 5000000 2000 2000 .., - 6000000 0 3000 .., "
                                             "- 6000999 0 3000 ..";
        // A new helper is paused and stopped; pausing it keeps it stopped.
        QTest::newRow("pause while stopped") << "- 123456789 0 0 PS, p 0 7000 7000 PS, "
                                                "- 900000000 0 7000 PS";
        QTest::newRow("pause while running, then stop")
            << "s 1000000 0 0 .., p 2000000 7000 7000 P., - 900000000 0 7000 P., x 3000000 0 0 PS, "
               "- 9000000 0 0 PS";
        QTest::newRow("resume after pause") << "s 10000000 0 0 .., p 14000000 4000 4000 P., "
                                               "s 60000000 4000 4000 .., - 60500000 0 4500 ..";
    }
    void clockStates()
    {
        QFETCH(QString, steps);
        ScenarioTimingHelper helper;
        for (const QString &step : steps.split(QStringLiteral(", "))) {
            const QStringList f = step.split(QLatin1Char(' '));
            m_clock.now = f[1].toULongLong();
            if (f[0] == QLatin1String("s"))
                helper.startScenarioTime(m_clock.now, f[2].toUInt());
            else if (f[0] == QLatin1String("p"))
                helper.pauseScenarioTime(f[2].toUInt());
            else if (f[0] == QLatin1String("x"))
                helper.stopScenarioTime();
            QCOMPARE(helper.scenarioTime(), f[3].toUInt());
            QCOMPARE(QStringLiteral("%1%2")
                         .arg(helper.isPaused() ? 'P' : '.')
                         .arg(helper.isStopped() ? 'S' : '.'),
                f[4]);
        }
    }

    void bothConversionsTruncateDifferently()
    {
        ScenarioTimingHelper helper;
        helper.startScenarioTime(5000000, 2000);
        QCOMPARE(helper.startTimestamp(), quint64(3000000));
        // The start lies 1.5 ms before the clock: the difference truncates to 1, the operands to 2.
        helper.startScenarioTime(1999, 0);
        m_clock.now = 3499;
        QCOMPARE(helper.scenarioTime(), 1u);
        QCOMPARE(ScenarioTimingHelper::calculateCurrentScenarioTime(1999, 0), 2u);
        QCOMPARE(ScenarioTimingHelper::calculateCurrentScenarioTime(1999, 2), 0u);
        QCOMPARE(ScenarioTimingHelper::calculateCurrentScenarioTime(5000000, 0), 4294962299u);
    }

private:
    ManualClock m_clock;
};

QTEST_GUILESS_MAIN(tst_ScenarioTiming)
#include "tst_scenariotiming.moc"
