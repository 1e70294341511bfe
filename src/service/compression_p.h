#pragma once

#include <QByteArray>

namespace Simulation {

// Whether the bytes have the form qCompress gives: a 4-byte size, then a zlib header.
bool isCompressedForm(const QByteArray &data);

// The inverse of qCompress (4-byte size, then a zlib stream), for bytes from a peer. Anything
// else gives an empty array: bytes that aren't that form, a corrupt or incomplete stream, and a
// stream that inflates to more than maxSize bytes, which stops as soon as it passes it, so a
// small bomb can't take memory. Nothing is printed.
QByteArray uncompressOrEmpty(const QByteArray &data, int maxSize);

} // namespace Simulation
