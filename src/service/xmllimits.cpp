#include "xmllimits_p.h"

#include <QXmlStreamReader>

namespace Simulation {

namespace {
constexpr int MaxLevels = 256;

// Every level and every declaration begins with a '<' or comes out of an entity reference.
// Only a document type declaration can declare entities: without one, the thousands of
// references in a scenario sent as text are no markup.
int markupBytes(const QByteArray &xml, bool declaresEntities)
{
    return xml.count('<') + (declaresEntities ? xml.count('&') : 0);
}
} // namespace

bool isModestXml(const QByteArray &xml, bool takeBroken)
{
    // Few of those bytes need no look; a longer document is read through once.
    const bool declaresEntities = xml.contains("<!DOCTYPE");
    if (markupBytes(xml, declaresEntities) <= MaxLevels)
        return true;
    QXmlStreamReader reader(xml);
    int depth = 0;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            if (++depth > MaxLevels)
                return false;
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        case QXmlStreamReader::DTD:
            if (reader.entityDeclarations().size() > MaxLevels)
                return false;
            break;
        default:
            break;
        }
    }
    if (!reader.hasError())
        return true;
    // Characters read are never more than the bytes they came from, so the rest is counted
    // generously.
    return takeBroken
        && depth + markupBytes(xml.mid(int(reader.characterOffset())), declaresEntities)
        <= MaxLevels;
}

} // namespace Simulation
