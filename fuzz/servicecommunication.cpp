// A message document into the protocol's receive path, as the separator hands it over, at both
// settings of payload compression.

#include "fuzzhelpers.h"

#include <radiosim/service/simulationservicecommunication.h>
#include <radiosim/service/xmlseparator_p.h>

#include <QTcpSocket>

namespace {

// Open, and swallows what is written: the answers to heart beats go nowhere.
class SinkSocket : public QTcpSocket
{
public:
    SinkSocket() { setOpenMode(QIODevice::ReadWrite); }

protected:
    qint64 writeData(const char *, qint64 size) override { return size; }
};

struct Receiver
{
    explicit Receiver(bool compression) { communication.setCompression(compression); }
    SinkSocket socket;
    Simulation::SimulationServiceCommunication communication { &socket };
    XmlSeparator *separator = communication.findChild<XmlSeparator *>();
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    ensureApplication();
    static Receiver packed(true);
    static Receiver plain(false);
    Q_EMIT packed.separator->xmlReceived(bytesOf(data, size));
    Q_EMIT plain.separator->xmlReceived(bytesOf(data, size));
    return 0;
}
