#include "signalpackageprovider.h"

namespace Simulation {

ISignalPackageProvider::~ISignalPackageProvider() = default;

} // namespace Simulation
