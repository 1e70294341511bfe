// The separator in each of its modes, fed a stream in slices. Byte 0 chooses the mode (bits 0
// and 1) and the longest slice, 1 to 64 bytes (bits 2 to 7); the rest is the stream, cut into
// slices whose lengths follow from byte 0.

#include "feeddevice.h"
#include "fuzzhelpers.h"

#include <radiosim/service/xmlseparator_p.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    ensureApplication();
    if (size == 0)
        return 0;
    FeedDevice device;
    XmlSeparator separator(&device, XmlSeparator::Mode(data[0] & 3), nullptr);
    const QByteArray stream = bytesOf(data + 1, size - 1);
    quint32 random = data[0];
    for (int at = 0; at < stream.size();) {
        random = random * 1103515245u + 12345u;
        const int length = int(random >> 16) % ((data[0] >> 2) + 1) + 1;
        device.feed(stream.mid(at, length));
        at += length;
        QCoreApplication::sendPostedEvents();
    }
    // The size modes cut one frame per pass through the event loop.
    for (int pass = 0; pass <= stream.size() / 4; ++pass)
        QCoreApplication::sendPostedEvents();
    return 0;
}
