#pragma once

#include <radiosim/packages/signalpackage.h>
#include <radiosim/packages/signalpackageprovider.h>
#include <radiosim/scenario/cast.h>
#include <radiosim/scenario/frequencysettings.h>
#include <radiosim/scenario/positionsettings.h>

#include "generatedscenario.h"
#include "testhelpers.h"

#include <QHash>
#include <QSet>
#include <QStringList>

#include <algorithm>
#include <memory>
#include <vector>

inline QString num(double value)
{
    return QString::number(value, 'g', 6);
}

inline QString endText(Simulation::EndBehaviourType value)
{
    static const char *const names[] = { "STOP", "RESTART", "INACTIVE" };
    return QLatin1String(uint(value) < 3 ? names[value] : "?");
}

// "fixed 8e+07", "chirp 1.5e+07-1.7e+07/2000+0.25", "fast 4.45e+07-4.65e+07 n1000 r100 s0+0.5",
// "slow STOP 1.4e+07/30000 ...", "none".
inline QString describeFrequency(const Simulation::IFrequencySettings *settings)
{
    using namespace Simulation;
    if (!settings)
        return QStringLiteral("none");
    if (const auto *chirp = dynamic_cast<const FrequencySettings_Chirp *>(settings))
        return QStringLiteral("chirp %1-%2/%3+%4")
            .arg(num(chirp->getStartFrequency()), num(chirp->getStopFrequency()))
            .arg(chirp->getDuration())
            .arg(num(chirp->getTimeslotOffset()));
    if (const auto *fast = dynamic_cast<const FrequencySettings_FastHopper *>(settings))
        return QStringLiteral("fast %1-%2 n%3 r%4 s%5+%6")
            .arg(num(fast->getMinimumFrequency()), num(fast->getMaximumFrequency()))
            .arg(fast->getHoppCount())
            .arg(fast->getHoppRate())
            .arg(fast->getHoppSet())
            .arg(num(fast->getTimeslotOffset()));
    if (const auto *slow = dynamic_cast<const FrequencySettings_SlowHopper *>(settings)) {
        QString text = QStringLiteral("slow ") + endText(slow->getEndBehavior());
        for (const FrequencyStep &step : slow->getFrequencySteps())
            text += QStringLiteral(" %1/%2").arg(num(step.frequency)).arg(step.duration);
        return text;
    }
    return QStringLiteral("fixed ") + num(settings->getCenterFrequency());
}

inline QString describePoint(const Simulation::MovementPoint &point)
{
    QString text = QStringLiteral("%1,%2 %3+%4")
                       .arg(QString::number(point.position.lon, 'g', 14),
                           QString::number(point.position.lat, 'g', 14))
                       .arg(point.dwellTime)
                       .arg(point.transitionTime);
    if (point.major)
        text += QStringLiteral(" %1 '%2'").arg(num(point.speed), point.name);
    return text;
}

// "at 11.4,48.2" or "route INACTIVE [points; ...]", "none".
inline QString describePosition(const Simulation::IPositionSettings *settings)
{
    using namespace Simulation;
    if (!settings)
        return QStringLiteral("none");
    if (const auto *route = dynamic_cast<const PositionSettingsPtp *>(settings)) {
        QStringList points;
        for (const MovementPoint &point : route->getMovments())
            points << describePoint(point);
        return QStringLiteral("route %1 [%2]")
            .arg(endText(route->getEndBehavior()), points.join(QStringLiteral("; ")));
    }
    return QStringLiteral("at %1,%2")
        .arg(QString::number(settings->getPosition().lon, 'g', 14),
            QString::number(settings->getPosition().lat, 'g', 14));
}

// "B600000: 0+600000>EM01@/Default/Default#0 | 0[e0 e1 g1]": broadcast or manual (M), the
// period, each entry with emitter, package and id, then each group with members and subgroups.
inline QString describeTimetable(const Simulation::EmissionSettings *settings)
{
    QStringList entries;
    for (const auto &emission : settings->emissions())
        entries << QStringLiteral("%1+%2>%3@%4#%5")
                       .arg(emission->start)
                       .arg(emission->duration)
                       .arg(emission->emitter ? emission->emitter->id() : QStringLiteral("-"),
                           emission->signalPackage ? emission->signalPackage->id()
                                                   : QStringLiteral("-"))
                       .arg(emission->id);
    QStringList groups;
    for (const auto &group : settings->groups()) {
        QStringList parts;
        for (const auto &member : group->members)
            parts << (member ? QStringLiteral("e%1").arg(member->id) : QStringLiteral("e-"));
        for (const auto &sub : group->subGroups)
            parts << QStringLiteral("g%1").arg(sub->id);
        groups << QStringLiteral("%1[%2]").arg(group->id).arg(parts.join(QLatin1Char(' ')));
    }
    QString text = QStringLiteral("%1%2: %3")
                       .arg(QLatin1Char(settings->isBroadcast() ? 'B' : 'M'))
                       .arg(settings->duration())
                       .arg(entries.join(QLatin1Char(' ')));
    if (!groups.isEmpty())
        text += QStringLiteral(" | ") + groups.join(QLatin1Char(' '));
    return text;
}

// Everything of an emitter that a document carries, effective settings as a writer sees them.
inline QString describeEmitter(const std::shared_ptr<Simulation::SzenarioEmitter> &emitter)
{
    using namespace Simulation;
    const TransmitterSettings *tx = emitter->getTranmitterSettings();
    QString text
        = QStringLiteral("%1%2 '%3'%4 class '%5' desc '%6' | tx %7 %8 %9 %10 %11")
              .arg(emitter->type() == ScenarioObject::ObjectElintEmitter ? QStringLiteral("elint ")
                                                                         : QString(),
                  emitter->id(), emitter->name(),
                  emitter->isActive() ? QString() : QStringLiteral(" off"), emitter->getClass(),
                  emitter->description())
              .arg(num(tx->getPower()), tx->getAntennaType(), num(tx->getAntennaGain()),
                  num(tx->getAntennaHeight()), num(tx->getAntennaDirection()));
    if (emitter->isLinked())
        text += QStringLiteral(" | link ") + emitter->linkTargetEmitter()->id();
    if (emitter->hasNetwork())
        text += QStringLiteral(" | net ") + emitter->network()->id();
    text += QStringLiteral(" | ") + describeFrequency(emitter->getFrequencySettings());
    if (!emitter->hasNetwork())
        text += QStringLiteral(" | ") + describeTimetable(emitter->emissionSettings());
    return text + QStringLiteral(" | ") + describePosition(emitter->getPositionSettings());
}

inline QString describeNetwork(const std::shared_ptr<Simulation::ScenarioNetwork> &network)
{
    QStringList members;
    for (const auto &member : network->emitter())
        members << member->id();
    std::sort(members.begin(), members.end());
    const auto head = network->headEmitter();
    return QStringLiteral("net %1 '%2'%3 desc '%4' %5 %6 head %7 [%8] | %9 | %10")
        .arg(network->id(), network->name(),
            network->isActive() ? QString() : QStringLiteral(" off"), network->description(),
            network->color().isValid() ? network->color().name() : QStringLiteral("invalid"),
            network->networkType() == Simulation::NetworkHierarchical ? QStringLiteral("H")
                                                                      : QStringLiteral("S"),
            head ? head->id() : QStringLiteral("-"), members.join(QLatin1Char(' ')))
        .arg(describeFrequency(network->frequencySettings()),
            describeTimetable(network->emissionSettings()));
}

// One line per object, sorted by id, so that one comparison checks a whole scenario.
inline QStringList describeScenario(
    const QSet<std::shared_ptr<Simulation::ScenarioObject>> &objects)
{
    QStringList lines;
    for (const auto &emitter : Simulation::Cast::emitter(objects))
        lines << describeEmitter(emitter);
    for (const auto &network : Simulation::Cast::networks(objects))
        lines << describeNetwork(network);
    lines.sort();
    return lines;
}

// Watches objects die: after releaseScenario and the last owner letting go, none may be left.
class Survivors
{
public:
    explicit Survivors(const QSet<std::shared_ptr<Simulation::ScenarioObject>> &objects)
    {
        for (const auto &object : objects)
            m_watched.push_back(object);
    }
    int count() const
    {
        return int(std::count_if(m_watched.begin(), m_watched.end(),
            [](const std::weak_ptr<Simulation::ScenarioObject> &object) {
                return !object.expired();
            }));
    }

private:
    std::vector<std::weak_ptr<Simulation::ScenarioObject>> m_watched;
};
