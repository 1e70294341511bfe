#pragma once

#include <QByteArray>

namespace Simulation {

// qUncompress, but bytes that can't be the qCompress form (4-byte size, then a zlib header)
// give an empty array without trying: qUncompress would reserve the size field's worth of
// memory for any text and warn on the console.
QByteArray uncompressOrEmpty(const QByteArray &data);

} // namespace Simulation
