#include "scenariochecker.h"

#include <radiosim/packages/signalpackageprovider.h>
#include <radiosim/scenario/cast.h>
#include <radiosim/scenario/emissionsettings.h>

namespace Simulation {

bool ScenarioChecker::checkAndFixScenario(
    const QSet<std::shared_ptr<ScenarioObject>> &objects, ISignalPackageProvider *provider)
{
    for (const auto &emitter : Cast::emitter(objects)) {
        if (!checkAndFixEmissionSettings(emitter->emissionSettings(), provider))
            m_invalidSignalPackages = true;
        if (!emitter->getFrequencySettings()) {
            emitter->setFrequencySettings(new FrequencySettingsFixed);
            m_nullPointerSettings = true;
        }
        if (!emitter->getPositionSettings()) {
            emitter->setPositionSettings(new PositionSettingsFixed(TPos()));
            m_nullPointerSettings = true;
        }
    }
    for (const auto &network : Cast::networks(objects)) {
        if (!checkAndFixEmissionSettings(network->emissionSettings(), provider))
            m_invalidSignalPackages = true;
        if (!network->frequencySettings()) {
            network->setFrequencySettings(new FrequencySettingsFixed);
            m_nullPointerSettings = true;
        }
    }
    return m_invalidSignalPackages || m_invalidClasses || m_nullPointerSettings;
}

bool ScenarioChecker::scenarioUsesClass(
    const QString &emitterClass, const QSet<std::shared_ptr<ScenarioObject>> &objects)
{
    bool used = false;
    for (const auto &emitter : Cast::emitter(objects))
        used = used || emitter->getClass() == emitterClass;
    return used;
}

bool ScenarioChecker::scenarioUsesSignalPackage(
    std::shared_ptr<SignalPackage> package, const QSet<std::shared_ptr<ScenarioObject>> &objects)
{
    for (const auto &object : objects) {
        if (object && findSignalPackage(package, object->emissionSettings()))
            return true;
    }
    return false;
}

bool ScenarioChecker::checkAndFixEmissionSettings(
    EmissionSettings *settings, ISignalPackageProvider *provider)
{
    bool valid = true;
    for (const auto &emission : settings->emissions()) {
        if (emission->signalPackage)
            continue;
        valid = false;
        if (provider)
            emission->signalPackage = provider->defaultSignalPackage();
    }
    return valid;
}

bool ScenarioChecker::findSignalPackage(
    std::shared_ptr<SignalPackage> package, EmissionSettings *settings)
{
    for (const auto &emission : settings->emissions()) {
        if (emission->signalPackage == package)
            return true;
    }
    return false;
}

} // namespace Simulation
