#pragma once

// Scenarios and a package provider for the document tests and benchmarks; needs no test
// library.

#include <radiosim/packages/signalpackage.h>
#include <radiosim/packages/signalpackageprovider.h>
#include <radiosim/scenario/frequencysettings.h>
#include <radiosim/scenario/positionsettings.h>
#include <radiosim/scenario/scenarionetwork.h>
#include <radiosim/scenario/scenarioobject.h>

#include <QColor>
#include <QHash>
#include <QSet>
#include <QStringList>
#include <QVector>

#include <memory>

namespace Simulation {

using Package = std::shared_ptr<SignalPackage>;
using Objects = QSet<std::shared_ptr<ScenarioObject>>;

// Knows the packages it was given, the first being the default, and answers any other id with
// the default, as the cache does.
class FakeProvider : public ISignalPackageProvider
{
public:
    explicit FakeProvider(const QStringList &ids = { QStringLiteral("/Default/Default") })
    {
        for (const QString &id : ids) {
            packages.insert(id, std::make_shared<SignalPackage>());
            packages[id]->setId(id);
        }
        fallback = packages.value(ids.value(0));
    }
    bool validSignalPackageId(const QString &id) override { return packages.contains(id); }
    Package signalPackage(const QString &id) override { return packages.value(id, fallback); }
    Package defaultSignalPackage() override { return fallback; }
    SignalShapeFile *signalShapeFile(Package) override { return nullptr; }
    AudioFile *audioFile(Package) override { return nullptr; }
    SymbolDataFile *symbolDataFile(Package) override { return nullptr; }
    ResultDataFile *resultDataFile(Package) override { return nullptr; }

    QHash<QString, Package> packages;
    Package fallback;
};

// A scenario as an editor builds one: emitters with `entries` timetable entries each, every
// tenth on a five-point route. With networks, that many networks of five members sharing a
// timetable, and every seventh emitter linked to the one before it. Times are whole seconds
// and values short, so that everything survives six significant digits.
inline Objects generatedScenario(int emitters, int entries, int networks, const Package &package)
{
    Objects objects;
    QVector<std::shared_ptr<SzenarioEmitter>> all;
    const auto addEntry = [&package](EmissionSettings *timetable, qint64 start, qint64 duration,
                              const std::shared_ptr<SzenarioEmitter> &emitter) {
        auto emission = timetable->createEmission();
        *emission = { 0, nullptr, start, duration, emitter, package };
        timetable->addEmission(emission);
        return emission;
    };
    for (int i = 0; i < emitters; ++i) {
        const auto emitter = std::make_shared<SzenarioEmitter>(
            QStringLiteral("E%1").arg(i), QStringLiteral("Emitter %1").arg(i));
        emitter->setClass(QStringLiteral("Emitter-White.ico"));
        emitter->getFrequencySettings()->setCenterFrequency(3e7 + 25000.0 * (i % 4000));
        const TPos at { 11.0 + (i % 100) * 0.01, 48.0 + (i / 100) * 0.001 };
        if (i % 10 == 0) {
            auto *route = new PositionSettingsPtp(at, 0.01);
            QVector<MovementPoint> points;
            for (int k = 0; k < 5; ++k)
                points.append({ { at.lon + 0.01 * k, at.lat + 0.005 * (k % 2) }, 0,
                    k % 2 ? 0u : 1000u * k, k % 2 == 0, QStringLiteral("P%1").arg(k), 30.0 + k });
            route->setMovements(points);
            route->setEndBehavior(EndBehaviourType(i % 3));
            emitter->setPositionSettings(route);
        } else {
            emitter->setPositionSettings(new PositionSettingsFixed(at));
        }
        emitter->emissionSettings()->setDuration(qint64(entries) * 10000);
        for (int k = 0; k < entries; ++k)
            addEntry(emitter->emissionSettings(), k * 10000, 4000 + (i % 5) * 1000, emitter);
        all << emitter;
        objects.insert(emitter);
    }
    for (int i = 7; networks > 0 && i < emitters; i += 7) {
        all[i]->setLinkTargetEmitter(all[i - 1]);
        all[i - 1]->addLinkedEmitter(all[i]);
    }
    for (int n = 0; n < networks && 5 * n + 5 <= emitters; ++n) {
        const auto network = std::make_shared<ScenarioNetwork>(QStringLiteral("N%1").arg(n));
        network->setColor(QColor(QStringLiteral("#006400")));
        network->emissionSettings()->setDuration(50000);
        auto group = network->emissionSettings()->createGroup();
        for (int k = 0; k < 5; ++k) {
            const auto member = all[5 * n + k];
            network->addEmitter(member);
            member->setScenarioNetwork(network);
            group->members << addEntry(network->emissionSettings(), k * 10000, 5000, member);
        }
        network->setHeadEmitter(all[5 * n]);
        network->emissionSettings()->addGroup(group);
        objects.insert(network);
    }
    return objects;
}

} // namespace Simulation
