#pragma once

#include <radiosim/radiosim_export.h>
#include <radiosim/scenario/scenarioobject.h>

#include <QColor>
#include <QList>
#include <QSet>

#include <memory>

namespace Simulation {

// A radio network: its members share the network's frequency settings and timetable, and
// the timetable names the member on air. Position stays each member's own.
class RADIOSIM_EXPORT ScenarioNetwork : public ScenarioObject
{
public:
    explicit ScenarioNetwork(const QString &objectId);
    // Colour and type from `source`; no members.
    ScenarioNetwork(const QString &objectId, std::shared_ptr<ScenarioNetwork> source);

    ScenarioObjectType type() const override;
    // Only from another network; the members are shared, not copied.
    void copy(std::shared_ptr<ScenarioObject> source) override;
    std::shared_ptr<ScenarioObject> clone() override;

    // The emitter's own network pointer is the caller's to set and clear.
    bool addEmitter(std::shared_ptr<SzenarioEmitter> member);
    // Also drops the member's timetable entries.
    bool removeEmitter(std::shared_ptr<SzenarioEmitter> member);
    bool containsEmitter(std::shared_ptr<SzenarioEmitter> member) const;
    const QSet<std::shared_ptr<SzenarioEmitter>> &emitter() const { return m_emitter; }
    // Index 0 is the head emitter.
    const QList<std::shared_ptr<SzenarioEmitter>> &emitterList() const { return m_emitterList; }
    int indexForEmitter(std::shared_ptr<SzenarioEmitter> member) const;
    std::shared_ptr<SzenarioEmitter> emitterForIndex(int index) const;
    std::shared_ptr<SzenarioEmitter> headEmitter() const;
    // Reorders the list only: an emitter that was never added heads the list without
    // becoming a member.
    void setHeadEmitter(std::shared_ptr<SzenarioEmitter> head);
    QColor color() const { return m_color; }
    void setColor(const QColor &value) { m_color = value; }
    // Descriptive only; no calculation depends on it.
    NetworkType networkType() const { return m_networkType; }
    void setNetworkType(NetworkType value) { m_networkType = value; }
    // The member the timetable names at `time`, null if none.
    std::shared_ptr<SzenarioEmitter> emitterActiveAt(uint time) const;

private:
    friend void releaseScenario(const QSet<std::shared_ptr<ScenarioObject>> &);

    QSet<std::shared_ptr<SzenarioEmitter>> m_emitter;
    QColor m_color { 255, 0, 0 };
    NetworkType m_networkType = NetworkStar;
    QList<std::shared_ptr<SzenarioEmitter>> m_emitterList;
};

} // namespace Simulation
