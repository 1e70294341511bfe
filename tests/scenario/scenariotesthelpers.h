#pragma once

#include <radiosim/scenario/emissionsettings.h>
#include <radiosim/scenario/frequencysettings.h>
#include <radiosim/scenario/positionsettings.h>
#include <radiosim/scenario/scenarionetwork.h>
#include <radiosim/scenario/scenarioobject.h>
#include <radiosim/units/settings.h>

#include "testhelpers.h"

#include <QStringList>
#include <QTest>
#include <QVector>

// A slow hopper of one 25 MHz step that ends (INACTIVE) at `end`; a fixed 25 MHz for NoEnd.
inline Simulation::IFrequencySettings *frequencyEndingAt(uint end)
{
    if (end == Simulation::NoEnd)
        return new Simulation::FrequencySettingsFixed;
    auto *hopper = new Simulation::FrequencySettings_SlowHopper;
    hopper->setFrequencySteps({ { 25e6, end } });
    hopper->setEndBehavior(Simulation::EndInactive);
    return hopper;
}

// A route that ends (INACTIVE) at `end`: one leg of about 11 ms, the rest dwelling at its
// start; a fixed point for NoEnd.
inline Simulation::IPositionSettings *positionEndingAt(uint end)
{
    if (end == Simulation::NoEnd)
        return new Simulation::PositionSettingsFixed({});
    auto *route = new Simulation::PositionSettingsPtp({ 11.0, 48.0 }, 0.000001);
    route->setEndBehavior(Simulation::EndInactive);
    Simulation::MovementPoint first = route->getPoint(0);
    first.dwellTime = end - route->activeUntil();
    route->setPoint(0, first);
    return route;
}

// Ten steps of 100 ms on 1 to 10 MHz, repeating: step k covers [100k, 100k + 100).
inline Simulation::IFrequencySettings *tenStepHopper()
{
    auto *hopper = new Simulation::FrequencySettings_SlowHopper;
    QList<Simulation::FrequencyStep> steps;
    for (int k = 0; k < 10; ++k)
        steps.append({ 1e6 * (k + 1), 100 });
    hopper->setFrequencySteps(steps);
    hopper->setEndBehavior(Simulation::EndRestart);
    return hopper;
}

inline std::shared_ptr<Simulation::SzenarioEmitter> makeEmitter(const char *id)
{
    return std::make_shared<Simulation::SzenarioEmitter>(QLatin1String(id), QLatin1String(id));
}

// Both sides of a membership, as the document reader sets them.
inline void join(const std::shared_ptr<Simulation::ScenarioNetwork> &network,
    const std::shared_ptr<Simulation::SzenarioEmitter> &member)
{
    network->addEmitter(member);
    member->setScenarioNetwork(network);
}

// Network "N" that the members have joined.
inline std::shared_ptr<Simulation::ScenarioNetwork> makeNetwork(
    std::initializer_list<std::shared_ptr<Simulation::SzenarioEmitter>> members = {})
{
    const auto network = std::make_shared<Simulation::ScenarioNetwork>(QStringLiteral("N"));
    for (const auto &member : members)
        join(network, member);
    return network;
}

// Both sides of a link, as the document reader sets them.
inline void link(const std::shared_ptr<Simulation::SzenarioEmitter> &emitter,
    const std::shared_ptr<Simulation::SzenarioEmitter> &target)
{
    emitter->setLinkTargetEmitter(target);
    target->addLinkedEmitter(emitter);
}

inline boost::shared_ptr<Simulation::EmissionSettings::Emission> addEntry(
    Simulation::EmissionSettings *settings, qint64 start, qint64 duration,
    std::shared_ptr<Simulation::SzenarioEmitter> emitter = nullptr)
{
    auto emission = settings->createEmission();
    emission->start = start;
    emission->duration = duration;
    emission->emitter = emitter;
    settings->addEmission(emission);
    return emission;
}

// Entries as (start, length) pairs.
using Table = QVector<QPair<qint64, qint64>>;

inline void fill(Simulation::EmissionSettings *settings, const Table &table, qint64 period,
    bool broadcast, const std::shared_ptr<Simulation::SzenarioEmitter> &emitter = nullptr)
{
    settings->setBroadcast(broadcast);
    settings->setDuration(period);
    for (const auto &entry : table)
        addEntry(settings, entry.first, entry.second, emitter);
}

// "begin+length" per record, with "@MHz" when the frequency is set, so that one comparison
// checks a whole list.
inline QStringList spans(const QList<Simulation::HRActivity> &records)
{
    QStringList result;
    for (const auto &record : records) {
        QString text = QStringLiteral("%1+%2").arg(record.start).arg(record.duration);
        if (record.frequency != 0.0)
            text += QStringLiteral("@%1").arg(record.frequency / 1e6);
        result << text;
    }
    return result;
}
