// A scenario document of any form version, read against a provider that knows the default
// package; what was read is checked, written again and released.

#include "fuzzhelpers.h"
#include "generatedscenario.h"

#include <radiosim/documents/scenariochecker.h>
#include <radiosim/documents/scenariodataxml.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static Simulation::FakeProvider provider;
    Simulation::ScenarioDataXml scenario(&provider);
    if (scenario.fromXml(bytesOf(data, size))) {
        Simulation::ScenarioChecker().checkAndFixScenario(scenario.scenarioObjects(), &provider);
        scenario.toXml();
    }
    Simulation::releaseScenario(scenario.scenarioObjects());
    return 0;
}
