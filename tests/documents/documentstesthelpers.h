#pragma once

#include <radiosim/documents/scenariodataxml.h>
#include <radiosim/scenario/cast.h>

#include "generatedscenario.h"
#include "testhelpers.h"

namespace Simulation {

inline QString num(double value)
{
    return QString::number(value, 'g', 6);
}

inline QString endText(EndBehaviourType value)
{
    return QStringList { "STOP", "RESTART", "INACTIVE" }.value(value, QStringLiteral("?"));
}

// "fixed 8e+07", "chirp 1.5e+07-1.7e+07/2000+0.25", "fast 4.45e+07-4.65e+07 n1000 r100 s0+0.5",
// "slow STOP 1.4e+07/30000 ...", "none".
inline QString describeFrequency(const IFrequencySettings *f)
{
    if (const auto *c = dynamic_cast<const FrequencySettings_Chirp *>(f))
        return QStringLiteral("chirp %1-%2/%3+%4")
            .arg(num(c->getStartFrequency()), num(c->getStopFrequency()))
            .arg(c->getDuration())
            .arg(num(c->getTimeslotOffset()));
    if (const auto *h = dynamic_cast<const FrequencySettings_FastHopper *>(f))
        return QStringLiteral("fast %1-%2 n%3 r%4 s%5+%6")
            .arg(num(h->getMinimumFrequency()), num(h->getMaximumFrequency()))
            .arg(h->getHoppCount())
            .arg(h->getHoppRate())
            .arg(h->getHoppSet())
            .arg(num(h->getTimeslotOffset()));
    if (const auto *s = dynamic_cast<const FrequencySettings_SlowHopper *>(f)) {
        QString text = QStringLiteral("slow ") + endText(s->getEndBehavior());
        for (const FrequencyStep &step : s->getFrequencySteps())
            text += QStringLiteral(" %1/%2").arg(num(step.frequency)).arg(step.duration);
        return text;
    }
    return f ? QStringLiteral("fixed ") + num(f->getCenterFrequency()) : QStringLiteral("none");
}

inline QString describePoint(const MovementPoint &p)
{
    QString text = QStringLiteral("%1,%2 %3+%4")
                       .arg(QString::number(p.position.lon, 'g', 14),
                           QString::number(p.position.lat, 'g', 14))
                       .arg(p.dwellTime)
                       .arg(p.transitionTime);
    return p.major ? text + QStringLiteral(" %1 '%2'").arg(num(p.speed), p.name) : text;
}

// "at 11.4,48.2", "route INACTIVE [points; ...]" or "none".
inline QString describePosition(const IPositionSettings *p)
{
    if (const auto *route = dynamic_cast<const PositionSettingsPtp *>(p)) {
        QStringList points;
        for (const MovementPoint &point : route->getMovments())
            points << describePoint(point);
        return QStringLiteral("route %1 [%2]")
            .arg(endText(route->getEndBehavior()), points.join(QStringLiteral("; ")));
    }
    return p ? QStringLiteral("at %1,%2")
                   .arg(QString::number(p->getPosition().lon, 'g', 14),
                       QString::number(p->getPosition().lat, 'g', 14))
             : QStringLiteral("none");
}

// "B600000: 0+600000>EM01@/Default/Default#0 | 0[e0 e- g1]": broadcast (B) or not (M), the
// period, the entries with emitter, package and id, then the groups with members and subgroups.
inline QString describeTimetable(const EmissionSettings *settings)
{
    QStringList entries;
    for (const auto &e : settings->emissions())
        entries << QStringLiteral("%1+%2>%3@%4#%5")
                       .arg(e->start)
                       .arg(e->duration)
                       .arg(e->emitter ? e->emitter->id() : QStringLiteral("-"),
                           e->signalPackage ? e->signalPackage->id() : QStringLiteral("-"))
                       .arg(e->id);
    QString text = QStringLiteral("%1%2: %3")
                       .arg(QLatin1Char(settings->isBroadcast() ? 'B' : 'M'))
                       .arg(settings->duration())
                       .arg(entries.join(QLatin1Char(' ')));
    for (const auto &group : settings->groups()) {
        QStringList parts;
        for (const auto &member : group->members)
            parts << (member ? QStringLiteral("e%1").arg(member->id) : QStringLiteral("e-"));
        for (const auto &sub : group->subGroups)
            parts << QStringLiteral("g%1").arg(sub->id);
        text += QStringLiteral(" | %1[%2]").arg(group->id).arg(parts.join(QLatin1Char(' ')));
    }
    return text;
}

// The fields of an emitter as a document carries them, effective settings as a writer sees them.
inline QStringList emitterFields(const std::shared_ptr<SzenarioEmitter> &e)
{
    const TransmitterSettings *tx = e->getTranmitterSettings();
    return { e->type() == ScenarioObject::ObjectElintEmitter ? "elint" : "", "'" + e->name() + "'",
        e->isActive() ? "" : "off", "class=" + e->getClass(), "desc=" + e->description(),
        QStringLiteral("tx=%1/%2/%3/%4/%5")
            .arg(num(tx->getPower()), tx->getAntennaType(), num(tx->getAntennaGain()),
                num(tx->getAntennaHeight()), num(tx->getAntennaDirection())),
        e->isLinked() ? "link=" + e->linkTargetEmitter()->id() : "",
        e->hasNetwork() ? "net=" + e->network()->id() : "",
        describeFrequency(e->getFrequencySettings()),
        e->hasNetwork() ? "" : describeTimetable(e->emissionSettings()),
        describePosition(e->getPositionSettings()) };
}

// The id and what differs from a new emitter, so that a line says only what was read:
// "A 'Alpha' off class=Emitter-White.ico fixed 8e+07".
inline QString describeEmitter(const std::shared_ptr<SzenarioEmitter> &emitter)
{
    static const QStringList defaults
        = emitterFields(std::make_shared<SzenarioEmitter>(QString(), QString()));
    const QStringList fields = emitterFields(emitter);
    QStringList text { emitter->id() };
    for (int i = 0; i < fields.size(); ++i) {
        if (fields[i] != defaults[i] && !fields[i].isEmpty())
            text << fields[i];
    }
    return text.join(QLatin1Char(' '));
}

inline QString describeNetwork(const std::shared_ptr<ScenarioNetwork> &network)
{
    QStringList members;
    for (const auto &member : network->emitter())
        members << member->id();
    members.sort();
    const auto head = network->headEmitter();
    return QStringLiteral("net %1 '%2'%3 %4 %5 head=%6 [%7] %8 | %9")
        .arg(network->id(), network->name(), network->isActive() ? "" : " off",
            network->color().isValid() ? network->color().name() : QStringLiteral("invalid"),
            network->networkType() == NetworkHierarchical ? "H" : "S", head ? head->id() : "-",
            members.join(QLatin1Char(' ')), describeFrequency(network->frequencySettings()),
            describeTimetable(network->emissionSettings()));
}

// One line per object, sorted, so that one comparison checks a whole scenario.
inline QStringList describeScenario(const Objects &objects)
{
    QStringList lines;
    for (const auto &emitter : Cast::emitter(objects))
        lines << describeEmitter(emitter);
    for (const auto &network : Cast::networks(objects))
        lines << describeNetwork(network);
    lines.sort();
    return lines;
}

// Reads the bytes into a new document, describes its objects and releases them.
inline QStringList readObjects(const QByteArray &xml, ISignalPackageProvider *provider = nullptr)
{
    ScenarioDataXml document(provider);
    document.fromXml(xml);
    const Objects objects = document.scenarioObjects();
    const QStringList lines = describeScenario(objects);
    releaseScenario(objects);
    return lines;
}

} // namespace Simulation
