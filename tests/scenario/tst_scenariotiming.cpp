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
    void init()
    {
        m_clock.now = 0;
        ScenarioTimingHelper::setClock(&m_clock);
    }
    void cleanup() { ScenarioTimingHelper::setClock(nullptr); }
    void noiseCompareIsFuzzyButZeroIsExact_data();
    void noiseCompareIsFuzzyButZeroIsExact();
    void clockStates_data();
    void clockStates();
    void bothConversionsTruncateDifferently();

private:
    ManualClock m_clock;
};

void tst_ScenarioTiming::noiseCompareIsFuzzyButZeroIsExact_data()
{
    QTest::addColumn<int>("field");
    QTest::addColumn<double>("value");
    QTest::addColumn<bool>("equal");
    QTest::newRow("untouched") << -1 << 0.0 << true;
    QTest::newRow("density within 1e-12") << 0 << -35.0000000000001 << true;
    QTest::newRow("density beyond") << 0 << -35.0001 << false;
    QTest::newRow("deviation") << 1 << -45.1 << false;
    QTest::newRow("dependent density") << 2 << -34.0 << false;
    QTest::newRow("granularity") << 3 << 0.41 << false;
    QTest::newRow("tiny variability against zero") << 4 << 1e-300 << false;
    QTest::newRow("azimuth error") << 5 << 1.5 << false;
}

void tst_ScenarioTiming::noiseCompareIsFuzzyButZeroIsExact()
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
    if (field >= 0)
        (changed.*setters[field])(value);
    QCOMPARE(changed == ScenarioNoiseSettings(), equal);
    QCOMPARE(ScenarioNoiseSettings() == changed, equal);
    changed.setDefaults();
    QVERIFY(changed == ScenarioNoiseSettings());
}

// Each step is (clock in µs, action, argument): 's' starts at the clock with the argument as
// scenario time, 'p' pauses at the argument, 'x' stops, '-' only reads.
void tst_ScenarioTiming::clockStates_data()
{
    QTest::addColumn<QString>("actions");
    QTest::addColumn<QList<quint64>>("clock");
    QTest::addColumn<QList<uint>>("arguments");
    QTest::addColumn<QList<uint>>("times");
    QTest::addColumn<QString>("states");
    QTest::newRow("new helper") << "-" << QList<quint64> { 123456789 } << QList<uint> { 0 }
                                << QList<uint> { 0 } << "PS";
    QTest::newRow("start at 2000 ms")
        << "s--" << QList<quint64> { 5000000, 6000000, 6000999 } << QList<uint> { 2000, 0, 0 }
        << QList<uint> { 2000, 3000, 3000 } << "......";
    QTest::newRow("pause while running")
        << "sp-" << QList<quint64> { 1000000, 2000000, 900000000 } << QList<uint> { 0, 7000, 0 }
        << QList<uint> { 0, 7000, 7000 } << "..P.P.";
    QTest::newRow("pause while stopped")
        << "p-" << QList<quint64> { 0, 900000000 } << QList<uint> { 7000, 0 }
        << QList<uint> { 7000, 7000 } << "PSPS";
    QTest::newRow("stop resets") << "spx-" << QList<quint64> { 1000000, 2000000, 3000000, 9000000 }
                                 << QList<uint> { 0, 7000, 0, 0 } << QList<uint> { 0, 7000, 0, 0 }
                                 << "..P.PSPS";
    QTest::newRow("resume after pause")
        << "sps-" << QList<quint64> { 10000000, 14000000, 60000000, 60500000 }
        << QList<uint> { 0, 4000, 4000, 0 } << QList<uint> { 0, 4000, 4000, 4500 } << "..P.....";
}

void tst_ScenarioTiming::clockStates()
{
    QFETCH(QString, actions);
    QFETCH(QList<quint64>, clock);
    QFETCH(QList<uint>, arguments);
    QFETCH(QList<uint>, times);
    QFETCH(QString, states);
    ScenarioTimingHelper helper;
    QString seen;
    for (int i = 0; i < actions.size(); ++i) {
        m_clock.now = clock[i];
        switch (actions[i].toLatin1()) {
        case 's':
            helper.startScenarioTime(clock[i], arguments[i]);
            break;
        case 'p':
            helper.pauseScenarioTime(arguments[i]);
            break;
        case 'x':
            helper.stopScenarioTime();
            break;
        }
        QCOMPARE(helper.scenarioTime(), times[i]);
        QCOMPARE(helper.scenarioStartTime(), 0u);
        seen += QLatin1Char(helper.isPaused() ? 'P' : '.');
        seen += QLatin1Char(helper.isStopped() ? 'S' : '.');
    }
    QCOMPARE(seen, states);
}

void tst_ScenarioTiming::bothConversionsTruncateDifferently()
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

QTEST_GUILESS_MAIN(tst_ScenarioTiming)
#include "tst_scenariotiming.moc"
