#pragma once

#include <QByteArray>

namespace Simulation {

// Whether a document may go to the DOM parser: at most 256 element levels and 256 entity
// declarations. The parser recurses once per level and runs out of stack some ten thousand
// levels down; its time grows with the square of a chain of entities that name each other.
// Our documents are a few levels deep and declare no entities.
//
// A document the stream reader cannot read through is refused, unless takeBroken: then what
// was read must stay within the limits and what follows the error must be too short to pass
// them, since the DOM parser keeps the tree up to its own error.
bool isModestXml(const QByteArray &xml, bool takeBroken);

} // namespace Simulation
