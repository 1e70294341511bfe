#pragma once

#include <radiosim/scenario/emissionsettings.h>
#include <radiosim/scenario/scenarionetwork.h>
#include <radiosim/scenario/scenarioobject.h>
#include <radiosim/units/settings.h>

#include <QStringList>

// Fixed behaviours that end at a given time, standing in for hoppers and routes with an
// INACTIVE end.
class LimitedFrequency : public Simulation::FrequencySettingsFixed
{
public:
    explicit LimitedFrequency(uint endTime)
        : end(endTime)
    {
    }
    bool isActiveAt(uint time) const override { return time <= end; }
    uint activeUntil() const override { return end; }
    IFrequencySettings *clone() const override { return new LimitedFrequency(*this); }

private:
    uint end;
};

class LimitedPosition : public Simulation::PositionSettingsFixed
{
public:
    LimitedPosition(const Simulation::TPos &where, uint endTime)
        : PositionSettingsFixed(where)
        , end(endTime)
    {
    }
    bool isActiveAt(uint time) const override { return time <= end; }
    uint activeUntil() const override { return end; }
    IPositionSettings *clone() override { return new LimitedPosition(*this); }

private:
    uint end;
};

// Hops every 100 ms on the 100 ms grid, hop k on k + 1 MHz; the pieces are
// clipped to the window, as a hopper's are.
class SteppedFrequency : public Simulation::FrequencySettingsFixed
{
public:
    QList<Simulation::HRActivity> calculateHRActivities(
        uint start, uint length, double) const override
    {
        QList<Simulation::HRActivity> pieces;
        const quint64 end = quint64(start) + length;
        for (quint64 begin = start; begin < end;) {
            const quint64 hopEnd = std::min(end, (begin / 100 + 1) * 100);
            pieces.append({ begin, hopEnd - begin, 1e6 * double(begin / 100 + 1) });
            begin = hopEnd;
        }
        return pieces;
    }
    IFrequencySettings *clone() const override { return new SteppedFrequency(*this); }
};

inline std::shared_ptr<Simulation::SzenarioEmitter> makeEmitter(const QString &id)
{
    return std::make_shared<Simulation::SzenarioEmitter>(id, id);
}

// Both sides of a membership, as the document reader sets them.
inline void join(const std::shared_ptr<Simulation::ScenarioNetwork> &network,
    const std::shared_ptr<Simulation::SzenarioEmitter> &member)
{
    network->addEmitter(member);
    member->setScenarioNetwork(network);
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
