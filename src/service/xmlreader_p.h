#pragma once

#include <radiosim/radiosim_export.h>

#include <QByteArray>
#include <QDomDocument>

namespace Simulation {

// The document QDomDocument::setContent builds from the bytes, without namespace processing,
// as far as elements, attributes, text, CDATA, comments and processing instructions go. Qt's
// parser reads through a SAX reader that spends a hundred instructions and more on a byte, so
// documents in the plain form our messages take (elements, quoted attributes, text with the
// predefined entities, ASCII names) are read in one pass of our own; the rest, and anything
// that pass refuses, go to Qt's parser, which keeps the tree up to its error.
RADIOSIM_EXPORT QDomDocument domFromByteArray(const QByteArray &xml);

} // namespace Simulation
