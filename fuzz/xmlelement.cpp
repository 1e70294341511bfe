// XmlElement::fromByteArray, then the reads of the protocol on the root and on each child.

#include "fuzzhelpers.h"

#include <radiosim/service/xmlelement.h>

using Simulation::XmlElement;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    XmlElement root = XmlElement::fromByteArray(bytesOf(data, size));
    for (const QString &name : root.attributeNames()) {
        root.hasUIntAttributeRemembered(name);
        root.uintAttribute();
        root.boolAttribute(name);
        root.doubleAttribute(name);
    }
    for (const QString &name : root.childNames()) {
        root.hasUInt64ChildRemembered(name);
        root.uint64Child();
        root.boolChild(name);
        root.doubleChild(name);
        root.child(name).child(QStringLiteral(""), 2).text();
    }
    return 0;
}
