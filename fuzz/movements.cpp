// A movements document, read and written again.

#include "fuzzhelpers.h"

#include <radiosim/documents/commondataxml.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    using Simulation::CommonDataXml;
    CommonDataXml::xmlForMovements(CommonDataXml::movementsForXml(textOf(data, size)));
    return 0;
}
