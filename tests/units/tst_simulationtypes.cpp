#include <radiosim/units/settings.h>
#include <radiosim/units/simulationtypes.h>

#include <QtTest>

#include <memory>
#include <thread>

using namespace Simulation;

class tst_SimulationTypes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void names()
    {
        QCOMPARE(stringForFrequencySettingsType(FrequencyChirp), QStringLiteral("Frequency Chirp"));
        QCOMPARE(stringForNetworkType(NetworkHierarchical), QStringLiteral("Hierarchical"));
        // Files hold "CW" for no modulation and are read back by exact name only.
        QCOMPARE(analogModulationToString(ModulationNone), QStringLiteral("CW"));
        QCOMPARE(analogModulationFromString(QStringLiteral("Digital")), ModulationDigital);
        QCOMPARE(analogModulationFromString(QStringLiteral("fm")), ModulationNone);
    }

    void compareFrequency()
    {
        const std::tuple<float, float, bool> cases[] = { { 100.0f, 100.0005f, true },
            { 100.0f, 100.002f, false }, { 1.0e9f, 1.0e9f + 30.0f, true },
            { 1.0e9f, 1.0e9f + 64.0f, false } }; // one float step apart
        for (const auto &[a, b, equal] : cases)
            QVERIFY2(
                Simulation::compareFrequency(a, b) == equal, qPrintable(QString::number(b, 'f')));
    }

    void fixedSettings()
    {
        FrequencySettingsFixed fixed;
        QVERIFY(fixed.isActiveAt(4000000000u) && fixed.activeUntil() == 4294967295u);
        const QList<HRActivity> pieces = fixed.calculateHRActivities(10, 20, 1.0);
        QVERIFY(pieces.size() == 1 && pieces.first().start == 10 && pieces.first().duration == 20
            && pieces.first().frequency == fixed.getFrequencyAt(123));

        // Equal by class and at float precision: 1 Hz at 25 MHz falls on the same float.
        std::unique_ptr<IFrequencySettings> other(fixed.clone());
        other->setCenterFrequency(25000000.0 + 1.0);
        QVERIFY(fixed.equal(other.get()));
        other->setCenterFrequency(25000000.0 + 2.0);
        QVERIFY(!fixed.equal(other.get()) && !fixed.equal(nullptr));

        PositionSettingsFixed position({ 11.0, 48.0 });
        std::unique_ptr<IPositionSettings> moved(position.clone());
        QVERIFY(position.equal(moved.get()));
        moved->setPosition({ 11.0, 48.0 + 1e-12 });
        QVERIFY(!position.equal(moved.get()) && !position.equal(nullptr));
    }

    // The direction wraps from 360 upwards only.
    void antennaDirection()
    {
        TransmitterSettings settings;
        const QPair<float, float> directions[]
            = { { 360.0f, 0.0f }, { 725.0f, 5.0f }, { 359.5f, 359.5f }, { -10.0f, -10.0f } };
        for (const auto &[input, stored] : directions) {
            settings.setAntennaDirection(input);
            QCOMPARE(settings.getAntennaDirection(), stored);
        }
    }

    // Activity lists recycle their nodes through a free list per thread. Lists made in one
    // thread and dropped in another, and more nodes than a thread keeps, must come through
    // intact; two lists grown side by side must never share a node.
    void activityListsCrossThreads()
    {
        auto make = [](int count) {
            QList<HRActivity> list;
            for (int i = 0; i < count; ++i)
                list.append({ quint64(i), 1, double(i) });
            return list;
        };
        QList<HRActivity> fromWorker;
        std::thread([&] {
            fromWorker = make(10000);
            make(100);
        }).join();
        std::thread([list = make(5000)]() mutable { list.clear(); }).join();
        fromWorker.clear();
        QList<HRActivity> first;
        QList<HRActivity> second;
        for (int i = 0; i < 20000; ++i) {
            first.append({ quint64(i), 1, 0.0 });
            second.append({ quint64(i), 2, 0.0 });
        }
        for (int i = 0; i < 20000; ++i)
            QVERIFY(first.at(i).start == quint64(i) && first.at(i).duration == 1
                && second.at(i).start == quint64(i) && second.at(i).duration == 2);
    }
};

QTEST_GUILESS_MAIN(tst_SimulationTypes)
#include "tst_simulationtypes.moc"
