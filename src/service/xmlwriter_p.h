#pragma once

#include <radiosim/radiosim_export.h>

#include <QByteArray>

class QDomDocument;

namespace Simulation {

// The bytes QDomDocument::toByteArray(4) gives, in time linear in the document. Qt's writer
// escapes a text by replacing one character at a time in place, which grows with the square
// of a long text full of markup: a scenario sent as text took seconds. A document holding
// other nodes than elements, attributes and text is left to Qt's writer.
RADIOSIM_EXPORT QByteArray domToByteArray(const QDomDocument &document);

} // namespace Simulation
