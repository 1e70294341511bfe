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

// Knows the packages it was given and answers anything else with its default package, as the
// cache does; counts what it was asked.
class FakeProvider : public Simulation::ISignalPackageProvider
{
public:
    explicit FakeProvider(const QStringList &ids = { QStringLiteral("/Default/Default") })
    {
        for (const QString &id : ids) {
            auto package = std::make_shared<Simulation::SignalPackage>();
            package->setId(id);
            packages.insert(id, package);
        }
        fallback = packages.value(ids.value(0));
    }
    bool validSignalPackageId(const QString &id) override { return packages.contains(id); }
    std::shared_ptr<Simulation::SignalPackage> signalPackage(const QString &id) override
    {
        ++asked;
        return packages.value(id, fallback);
    }
    std::shared_ptr<Simulation::SignalPackage> defaultSignalPackage() override { return fallback; }
    Simulation::SignalShapeFile *signalShapeFile(
        std::shared_ptr<Simulation::SignalPackage>) override
    {
        return nullptr;
    }
    Simulation::AudioFile *audioFile(std::shared_ptr<Simulation::SignalPackage>) override
    {
        return nullptr;
    }
    Simulation::SymbolDataFile *symbolDataFile(std::shared_ptr<Simulation::SignalPackage>) override
    {
        return nullptr;
    }
    Simulation::ResultDataFile *resultDataFile(std::shared_ptr<Simulation::SignalPackage>) override
    {
        return nullptr;
    }

    QHash<QString, std::shared_ptr<Simulation::SignalPackage>> packages;
    std::shared_ptr<Simulation::SignalPackage> fallback;
    int asked = 0;
};

// A scenario the way an editor builds one: `emitters` emitters with `entries` timetable entries
// each, every tenth on a five-point route; with `networks`, that many networks of five members
// with a shared timetable, and every seventh emitter linked to the one before it. Times are
// whole seconds so that every value survives six significant digits.
inline QSet<std::shared_ptr<Simulation::ScenarioObject>> generatedScenario(int emitters,
    int entries, int networks, const std::shared_ptr<Simulation::SignalPackage> &package)
{
    using namespace Simulation;
    QSet<std::shared_ptr<ScenarioObject>> objects;
    QVector<std::shared_ptr<SzenarioEmitter>> all;
    for (int i = 0; i < emitters; ++i) {
        const auto emitter = std::make_shared<SzenarioEmitter>(
            QStringLiteral("E%1").arg(i), QStringLiteral("Emitter %1").arg(i));
        emitter->setClass(QStringLiteral("Emitter-White.ico"));
        emitter->setDescription(QStringLiteral("generated"));
        auto *fixed = new FrequencySettingsFixed;
        fixed->setCenterFrequency(3e7 + 25000.0 * (i % 4000));
        emitter->setFrequencySettings(fixed);
        const TPos at { 11.0 + (i % 100) * 0.01, 48.0 + (i / 100) * 0.001 };
        if (i % 10 == 0) {
            auto *route = new PositionSettingsPtp(at, 0.01);
            QVector<MovementPoint> points;
            for (int k = 0; k < 5; ++k) {
                MovementPoint point;
                point.position = { at.lon + 0.01 * k, at.lat + 0.005 * (k % 2) };
                point.major = k % 2 == 0;
                point.speed = 30.0 + k;
                point.dwellTime = point.major ? 1000u * k : 0u;
                point.name = point.major ? QStringLiteral("P%1").arg(k) : QString();
                points << point;
            }
            route->setMovements(points);
            route->setEndBehavior(EndBehaviourType(i % 3));
            emitter->setPositionSettings(route);
        } else {
            emitter->setPositionSettings(new PositionSettingsFixed(at));
        }
        EmissionSettings *timetable = emitter->emissionSettings();
        timetable->setDuration(qint64(entries) * 10000);
        for (int k = 0; k < entries; ++k) {
            auto emission = timetable->createEmission();
            emission->start = qint64(k) * 10000;
            emission->duration = 4000 + (i % 5) * 1000;
            emission->emitter = emitter;
            emission->signalPackage = package;
            timetable->addEmission(emission);
        }
        all << emitter;
        objects.insert(emitter);
    }
    for (int i = 7; networks > 0 && i < emitters; i += 7) {
        all[i]->setLinkTargetEmitter(all[i - 1]);
        all[i - 1]->addLinkedEmitter(all[i]);
    }
    for (int n = 0; n < networks && 5 * n + 5 <= emitters; ++n) {
        const auto network = std::make_shared<ScenarioNetwork>(QStringLiteral("N%1").arg(n));
        network->setName(QStringLiteral("Network %1").arg(n));
        network->setColor(QColor(QStringLiteral("#006400")));
        EmissionSettings *timetable = network->emissionSettings();
        timetable->setDuration(50000);
        auto group = timetable->createGroup();
        for (int k = 0; k < 5; ++k) {
            const auto member = all[5 * n + k];
            network->addEmitter(member);
            member->setScenarioNetwork(network);
            auto emission = timetable->createEmission();
            emission->start = k * 10000;
            emission->duration = 5000;
            emission->emitter = member;
            emission->signalPackage = package;
            timetable->addEmission(emission);
            group->members << emission;
        }
        network->setHeadEmitter(network->emitterList().value(0));
        timetable->addGroup(group);
        objects.insert(network);
    }
    return objects;
}
