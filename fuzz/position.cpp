// Position texts in every format, through Coord and through Units. A text that is read must
// give a position on the globe.

#include "fuzzhelpers.h"

#include <radiosim/platform/coord.h>
#include <radiosim/units/units.h>

#include <cmath>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = textOf(data, size);
    for (int format = CoordDecimal; format <= CoordQth; ++format) {
        Coord coord;
        coord.SetString(text, CoordFormat(format));
        if (!(std::abs(coord.longitude) <= 180.0 && std::abs(coord.latitude) <= 90.0))
            std::abort();
        coord.GetString(CoordFormat(format));
    }
    for (Units::Position::Format format : Units::Position::formats()) {
        Units::Position::fromString(text, format);
        Units::Position::validString(text, format);
    }
    return 0;
}
