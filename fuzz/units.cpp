// Frequency texts, read with and without a reference and written back, and duration texts of
// the number the first four bytes make.

#include "fuzzhelpers.h"

#include <radiosim/units/units.h>

#include <QtEndian>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = textOf(data, size);
    const double frequency = Units::Frequency::fromString(text);
    Units::Frequency::validString(text);
    Units::Frequency::toString(Units::Frequency::fromString(text, frequency), true);
    Units::Frequency::toString(frequency, false);
    if (size >= 4)
        Units::Duration::toString(qFromLittleEndian<quint32>(data));
    return 0;
}
