// domFromByteArray against Qt's own parser: whichever reader built ours, the trees must be the
// same, written out to the byte.

#include "fuzzhelpers.h"

#include <radiosim/service/xmlreader_p.h>

#include <QDomDocument>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray xml = bytesOf(data, size);
    // Qt's parser recurses once per level; XmlElement screens deep documents before either.
    if (xml.count('<') > 256)
        return 0;
    QDomDocument qts { QString() };
    qts.setContent(xml);
    if (Simulation::domFromByteArray(xml).toByteArray(-1) != qts.toByteArray(-1))
        abort();
    return 0;
}
