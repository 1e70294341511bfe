// A deployment document, read, written again and released.

#include "fuzzhelpers.h"

#include <radiosim/deployment/deploymentdataxml.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    Simulation::DeploymentDataXml deployment;
    if (deployment.fromXml(bytesOf(data, size)))
        deployment.toXml();
    Simulation::releaseDeployment(deployment);
    return 0;
}
