// A binary scenario stream, read and written again.

#include "fuzzhelpers.h"

#include <radiosim/documents/scenariodatabinary.h>

#include <QBuffer>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QBuffer buffer;
    buffer.setData(bytesOf(data, size));
    buffer.open(QIODevice::ReadOnly);
    Simulation::ScenarioDataBinary scenario(nullptr);
    scenario.fromBinary(&buffer);
    scenario.toBinary();
    return 0;
}
