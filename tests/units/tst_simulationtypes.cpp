#include <radiosim/units/settings.h>
#include <radiosim/units/simulationtypes.h>

#include <QtTest>

#include <memory>

using namespace Simulation;

class tst_SimulationTypes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void typeTexts();
    void modulationTextsAreAsymmetric();
    void compareFrequency_data();
    void compareFrequency();
    void fixedFrequencyAnswersItsCentre();
    void fixedFrequencyEqualityIsByClassAndCoarse();
    void fixedPositionEqualityIsExact();
    void transmitterDefaults();
    void antennaDirectionWrapsOnlyUpwards_data();
    void antennaDirectionWrapsOnlyUpwards();
};

void tst_SimulationTypes::typeTexts()
{
    QCOMPARE(stringForFrequencySettingsType(FrequencyChirp), QStringLiteral("Frequency Chirp"));
    QCOMPARE(stringForFrequencySettingsType(FrequencyFastHopper),
        QStringLiteral("Fast Frequency Hopper"));
    QCOMPARE(stringForFrequencySettingsType(FrequencySettingsType(4)), QString());
    QCOMPARE(stringForPositionSettingsType(PositionMovement), QStringLiteral("Movement"));
    QCOMPARE(stringForPositionSettingsType(PositionSettingsType(2)), QString());
    QCOMPARE(stringForNetworkType(NetworkHierarchical), QStringLiteral("Hierarchical"));
    QCOMPARE(stringForNetworkType(NetworkType(7)), QStringLiteral("Star"));
}

void tst_SimulationTypes::modulationTextsAreAsymmetric()
{
    QCOMPARE(analogModulationToString(ModulationNone), QStringLiteral("CW"));
    QCOMPARE(analogModulationFromString(analogModulationToString(ModulationNone)), ModulationNone);
    QCOMPARE(analogModulationToString(AnalogModulations(9)), QStringLiteral("None"));
    QCOMPARE(analogModulationFromString(QStringLiteral("None")), ModulationNone);
    QCOMPARE(analogModulationFromString(QStringLiteral("Digital")), ModulationDigital);
    QCOMPARE(analogModulationFromString(QStringLiteral("fm")), ModulationNone);
}

void tst_SimulationTypes::compareFrequency_data()
{
    QTest::addColumn<double>("a");
    QTest::addColumn<double>("b");
    QTest::addColumn<bool>("equal");
    QTest::newRow("within tolerance") << 100.0 << 100.0005 << true;
    QTest::newRow("outside tolerance") << 100.0 << 100.002 << false;
    QTest::newRow("same float at 1 GHz") << 1.0e9 << 1.00000002e9 << true;
    QTest::newRow("tens of Hz at 1 GHz") << 1.0e9 << 1.0e9 + 30.0 << true;
    QTest::newRow("a float step apart at 1 GHz") << 1.0e9 << 1.0e9 + 64.0 << false;
}

void tst_SimulationTypes::compareFrequency()
{
    QFETCH(double, a);
    QFETCH(double, b);
    QFETCH(bool, equal);
    QCOMPARE(Simulation::compareFrequency(float(a), float(b)), equal);
}

void tst_SimulationTypes::fixedFrequencyAnswersItsCentre()
{
    FrequencySettingsFixed fixed;
    QCOMPARE(fixed.getFrequencyAt(123), 25000000.0);
    QVERIFY(!fixed.isTimeDependend());
    QVERIFY(fixed.isActiveAt(4000000000u));
    QCOMPARE(fixed.activeUntil(), 4294967295u);
    const QList<HRActivity> pieces = fixed.calculateHRActivities(10, 20, 1.0);
    QCOMPARE(pieces.size(), 1);
    QCOMPARE(pieces.first().start, quint64(10));
    QCOMPARE(pieces.first().duration, quint64(20));
    QCOMPARE(pieces.first().frequency, 25000000.0);

    fixed.setCenterFrequency(1.0e6);
    QCOMPARE(fixed.getMinimumFrequency(), 1.0e6);
    QCOMPARE(fixed.getMaximumFrequency(), 1.0e6);
}

void tst_SimulationTypes::fixedFrequencyEqualityIsByClassAndCoarse()
{
    FrequencySettingsFixed a;
    std::unique_ptr<IFrequencySettings> b(a.clone());
    QVERIFY(a.equal(b.get()));
    b->setCenterFrequency(25000000.0 + 1.0);
    QVERIFY(a.equal(b.get()));
    b->setCenterFrequency(25000000.0 + 2.0);
    QVERIFY(!a.equal(b.get()));
    QVERIFY(!a.equal(nullptr));
}

void tst_SimulationTypes::fixedPositionEqualityIsExact()
{
    PositionSettingsFixed a({ 11.0, 48.0 });
    std::unique_ptr<IPositionSettings> b(a.clone());
    QVERIFY(a.equal(b.get()));
    b->setPosition({ 11.0, 48.0 + 1e-12 });
    QVERIFY(!a.equal(b.get()));
    QVERIFY(!a.equal(nullptr));
    QCOMPARE(a.getPositionAt(99).lon, 11.0);
    QCOMPARE(a.headingAt(99), 0.0);
    QCOMPARE(a.speedAt(99), 0.0);
}

void tst_SimulationTypes::transmitterDefaults()
{
    TransmitterSettings settings;
    QCOMPARE(settings.getPower(), 1.0f);
    QCOMPARE(settings.getAntennaType(), QStringLiteral("Default"));
    QCOMPARE(settings.getAntennaGain(), 0.0f);
    QCOMPARE(settings.getAntennaHeight(), 2.0f);
    QCOMPARE(settings.getAntennaDirection(), 0.0f);
}

void tst_SimulationTypes::antennaDirectionWrapsOnlyUpwards_data()
{
    QTest::addColumn<float>("input");
    QTest::addColumn<float>("stored");
    QTest::newRow("360") << 360.0f << 0.0f;
    QTest::newRow("725") << 725.0f << 5.0f;
    QTest::newRow("359.5") << 359.5f << 359.5f;
    QTest::newRow("negative kept") << -10.0f << -10.0f;
}

void tst_SimulationTypes::antennaDirectionWrapsOnlyUpwards()
{
    QFETCH(float, input);
    QFETCH(float, stored);
    TransmitterSettings settings;
    settings.setAntennaDirection(input);
    QCOMPARE(settings.getAntennaDirection(), stored);
}

QTEST_GUILESS_MAIN(tst_SimulationTypes)
#include "tst_simulationtypes.moc"
