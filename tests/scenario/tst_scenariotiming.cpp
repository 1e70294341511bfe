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
    void init();
    void cleanup();
    void noiseCompareIsFuzzyButZeroIsExact_data();
    void noiseCompareIsFuzzyButZeroIsExact();
    void setDefaultsRestoresEveryField();
    void newHelperIsStoppedAtZero();
    void startMapsClockToScenarioTime();
    void pauseHoldsTimeAndKeepsRunningState_data();
    void pauseHoldsTimeAndKeepsRunningState();
    void stopResetsToZero();
    void resumeGoesOnFromPausedTime();
    void bothConversionsTruncateDifferently();
    void systemClockIsRestored();

private:
    ManualClock m_clock;
};

void tst_ScenarioTiming::init()
{
    m_clock.now = 0;
    ScenarioTimingHelper::setClock(&m_clock);
}

void tst_ScenarioTiming::cleanup()
{
    ScenarioTimingHelper::setClock(nullptr);
}

void tst_ScenarioTiming::noiseCompareIsFuzzyButZeroIsExact_data()
{
    QTest::addColumn<int>("field");
    QTest::addColumn<double>("value");
    QTest::addColumn<bool>("equal");
    QTest::newRow("untouched") << -1 << 0.0 << true;
    QTest::newRow("density within 1e-12") << 0 << -35.0000000000001 << true;
    QTest::newRow("density beyond") << 0 << -35.0001 << false;
    QTest::newRow("deviation beyond") << 1 << -45.1 << false;
    QTest::newRow("dependent density beyond") << 2 << -34.0 << false;
    QTest::newRow("granularity within") << 3 << 0.4000000000000001 << true;
    QTest::newRow("granularity beyond") << 3 << 0.41 << false;
    QTest::newRow("tiny variability against exact zero") << 4 << 1e-300 << false;
    QTest::newRow("azimuth error beyond") << 5 << 1.5 << false;
}

void tst_ScenarioTiming::noiseCompareIsFuzzyButZeroIsExact()
{
    QFETCH(int, field);
    QFETCH(double, value);
    QFETCH(bool, equal);
    ScenarioNoiseSettings changed;
    switch (field) {
    case 0:
        changed.setNoiseDensity(value);
        break;
    case 1:
        changed.setNoiseDeviation(value);
        break;
    case 2:
        changed.setFrequencyDependentNoiseDensity(value);
        break;
    case 3:
        changed.setFrequencyDependentNoiseGranularity(value);
        break;
    case 4:
        changed.setFrequencyDependentNoiseVariability(value);
        break;
    case 5:
        changed.setAzimuthErrorDeviation(value);
        break;
    }
    QCOMPARE(changed == ScenarioNoiseSettings(), equal);
    QCOMPARE(ScenarioNoiseSettings() == changed, equal);
}

void tst_ScenarioTiming::setDefaultsRestoresEveryField()
{
    ScenarioNoiseSettings noise;
    noise.setNoiseDensity(1.0);
    noise.setNoiseDeviation(2.0);
    noise.setFrequencyDependentNoiseDensity(3.0);
    noise.setFrequencyDependentNoiseGranularity(4.0);
    noise.setFrequencyDependentNoiseVariability(5.0);
    noise.setAzimuthErrorDeviation(6.0);
    noise.setDefaults();
    QCOMPARE(noise.noiseDensity(), -35.0);
    QCOMPARE(noise.noiseDeviation(), -45.0);
    QCOMPARE(noise.frequencyDependentNoiseDensity(), -35.0);
    QCOMPARE(noise.frequencyDependentNoiseGranularity(), 0.4);
    QCOMPARE(noise.frequencyDependentNoiseVariability(), 0.0);
    QCOMPARE(noise.azimuthErrorDeviation(), 1.0);
}

void tst_ScenarioTiming::newHelperIsStoppedAtZero()
{
    m_clock.now = 123456789;
    const ScenarioTimingHelper helper;
    QVERIFY(helper.isPaused());
    QVERIFY(helper.isStopped());
    QCOMPARE(helper.scenarioTime(), 0u);
    QCOMPARE(helper.scenarioStartTime(), 0u);
}

void tst_ScenarioTiming::startMapsClockToScenarioTime()
{
    ScenarioTimingHelper helper;
    helper.startScenarioTime(5000000, 2000);
    QCOMPARE(helper.startTimestamp(), quint64(3000000));
    QVERIFY(!helper.isPaused());
    QVERIFY(!helper.isStopped());
    m_clock.now = 6000000;
    QCOMPARE(helper.scenarioTime(), 3000u);
    m_clock.now = 6000999;
    QCOMPARE(helper.scenarioTime(), 3000u);
    m_clock.now = 6001000;
    QCOMPARE(helper.scenarioTime(), 3001u);
}

void tst_ScenarioTiming::pauseHoldsTimeAndKeepsRunningState_data()
{
    QTest::addColumn<bool>("startFirst");
    QTest::newRow("paused while running") << true;
    QTest::newRow("paused while stopped") << false;
}

void tst_ScenarioTiming::pauseHoldsTimeAndKeepsRunningState()
{
    QFETCH(bool, startFirst);
    ScenarioTimingHelper helper;
    if (startFirst)
        helper.startScenarioTime(1000000, 0);
    helper.pauseScenarioTime(7000);
    QVERIFY(helper.isPaused());
    QCOMPARE(helper.isStopped(), !startFirst);
    for (quint64 now : { 0ull, 2000000ull, 900000000ull }) {
        m_clock.now = now;
        QCOMPARE(helper.scenarioTime(), 7000u);
    }
}

void tst_ScenarioTiming::stopResetsToZero()
{
    ScenarioTimingHelper helper;
    helper.startScenarioTime(1000000, 0);
    helper.pauseScenarioTime(7000);
    helper.stopScenarioTime();
    m_clock.now = 50000000;
    QVERIFY(helper.isPaused());
    QVERIFY(helper.isStopped());
    QCOMPARE(helper.scenarioTime(), 0u);
}

void tst_ScenarioTiming::resumeGoesOnFromPausedTime()
{
    ScenarioTimingHelper helper;
    helper.startScenarioTime(10000000, 0);
    m_clock.now = 14000000;
    helper.pauseScenarioTime(helper.scenarioTime());
    m_clock.now = 60000000;
    helper.startScenarioTime(m_clock.now, helper.scenarioTime());
    m_clock.now += 500000;
    QCOMPARE(helper.scenarioTime(), 4500u);
}

void tst_ScenarioTiming::bothConversionsTruncateDifferently()
{
    // The start lies 1.5 ms before the clock: the difference truncates to 1, the operands to 2.
    ScenarioTimingHelper helper;
    helper.startScenarioTime(1999, 0);
    m_clock.now = 3499;
    QCOMPARE(helper.scenarioTime(), 1u);
    QCOMPARE(ScenarioTimingHelper::calculateCurrentScenarioTime(1999, 0), 2u);
    QCOMPARE(ScenarioTimingHelper::calculateCurrentScenarioTime(1999, 2), 0u);
    QCOMPARE(ScenarioTimingHelper::calculateCurrentScenarioTime(5000000, 0), 4294962299u);
}

void tst_ScenarioTiming::systemClockIsRestored()
{
    ScenarioTimingHelper::setClock(nullptr);
    const quint64 system = OrvoOS::Instance()->currentTimeStampUs();
    const quint64 helper = ScenarioTimingHelper::currentTimeStamp();
    QVERIFY(helper >= system);
    QVERIFY(helper - system < 60000000ull);
}

QTEST_GUILESS_MAIN(tst_ScenarioTiming)
#include "tst_scenariotiming.moc"
