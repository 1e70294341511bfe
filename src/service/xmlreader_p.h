#pragma once

#include <radiosim/radiosim_export.h>

#include <QByteArray>
#include <QDomDocument>

namespace Simulation {

// The document QDomDocument::setContent builds from the bytes, without namespace processing,
// as far as elements, attributes, text, CDATA, comments and processing instructions go. Qt's
// parser reads through a SAX reader at half the stream reader's speed or less, so documents in
// the form messages take are read with QXmlStreamReader instead; the rest, and any the stream
// reader refuses, go to Qt's parser, which keeps the tree up to its error.
RADIOSIM_EXPORT QDomDocument domFromByteArray(const QByteArray &xml);

} // namespace Simulation
