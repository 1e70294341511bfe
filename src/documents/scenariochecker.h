#pragma once

#include <radiosim/radiosim_export.h>
#include <radiosim/scenario/scenarioobject.h>
#include <radiosim/units/sharedpointerhash.h>

#include <QSet>
#include <QString>

#include <memory>

namespace Simulation {

class EmissionSettings;
class ISignalPackageProvider;
class SignalPackage;

// The repair pass after loading: what a tolerant reader leaves empty (emissions without a
// package, a missing frequency or position behaviour) is filled in place. The flags accumulate
// over the runs of one checker, so a fresh report needs a new checker.
class RADIOSIM_EXPORT ScenarioChecker
{
public:
    // True when a flag is set, from this run or an earlier one. An emission without package
    // gets the provider's default package; without a provider it stays without one, and is
    // reported all the same.
    bool checkAndFixScenario(
        const QSet<std::shared_ptr<ScenarioObject>> &objects, ISignalPackageProvider *provider);
    // Never set: always false.
    bool hadInvalidClasses() const { return m_invalidClasses; }
    bool hadInvalidSignalPackages() const { return m_invalidSignalPackages; }
    bool hadNullPointerSettings() const { return m_nullPointerSettings; }

    // Exact text; the empty class matches an emitter without one.
    bool scenarioUsesClass(
        const QString &emitterClass, const QSet<std::shared_ptr<ScenarioObject>> &objects);
    // By object: a null package finds an emission without one.
    bool scenarioUsesSignalPackage(std::shared_ptr<SignalPackage> package,
        const QSet<std::shared_ptr<ScenarioObject>> &objects);

private:
    // False when some emission had no package.
    bool checkAndFixEmissionSettings(EmissionSettings *settings, ISignalPackageProvider *provider);
    bool findSignalPackage(std::shared_ptr<SignalPackage> package, EmissionSettings *settings);

    bool m_invalidSignalPackages = false;
    bool m_invalidClasses = false;
    bool m_nullPointerSettings = false;
};

} // namespace Simulation
