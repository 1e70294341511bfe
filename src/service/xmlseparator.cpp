#include "xmlseparator_p.h"

#include "compression_p.h"

#include <QIODevice>
#include <QtEndian>
#include <QTimer>
#include <QXmlStreamReader>

namespace {

bool isBlank(char c)
{
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

} // namespace

XmlSeparator::XmlSeparator(QIODevice *device, QObject *parent)
    : XmlSeparator(device, ModePlainXml, parent)
{
}

XmlSeparator::XmlSeparator(QIODevice *device, Mode mode, QObject *parent)
    : QObject(parent)
    , m_mode(mode)
    , m_reader(new QXmlStreamReader)
    , m_device(device)
{
    connect(m_device, &QIODevice::readyRead, this, &XmlSeparator::readNewData);
    connect(this, &XmlSeparator::queued_xmlReceived, this, &XmlSeparator::xmlReceived,
        Qt::QueuedConnection);
}

XmlSeparator::~XmlSeparator()
{
    delete m_reader;
}

XmlSeparator::Mode XmlSeparator::mode() const
{
    return static_cast<Mode>(m_mode);
}

QIODevice *XmlSeparator::device() const
{
    return m_device;
}

void XmlSeparator::setCompression(bool bCompress)
{
    m_compress = bCompress;
}

void XmlSeparator::setCompressionLevel(int iLevel)
{
    m_compressionLevel = iLevel;
}

int XmlSeparator::compressionLevel() const
{
    return m_compressionLevel;
}

qint64 XmlSeparator::bufferedBytes() const
{
    return qint64(m_buffer.size()) + m_xml.size();
}

bool XmlSeparator::sendXml(const QByteArray &Xml)
{
    if (m_mode == ModePlainXml)
        return m_device->write(Xml) == Xml.size();
    if (m_mode != ModeBigEndianSize && m_mode != ModeLittleEndianSize)
        return false;

    const QByteArray payload = m_compress ? qCompress(Xml, m_compressionLevel) : Xml;
    QByteArray frame(4, '\0');
    const quint32 size = quint32(payload.size());
    if (m_mode == ModeBigEndianSize)
        qToBigEndian(size, frame.data());
    else
        qToLittleEndian(size, frame.data());
    frame += payload;
    return m_device->write(frame) == frame.size();
}

void XmlSeparator::setEnabled(bool bEnabled)
{
    if (bEnabled)
        resume();
    else
        pause();
}

void XmlSeparator::setDisabled(bool bDisabled)
{
    setEnabled(!bDisabled);
}

void XmlSeparator::pause()
{
    disconnect(m_device, &QIODevice::readyRead, this, &XmlSeparator::readNewData);
}

void XmlSeparator::resume()
{
    reconnectDevice();
    readNewData();
}

void XmlSeparator::reset()
{
    m_reader->clear();
    m_xml.clear();
    m_buffer.clear();
    m_discarding = false;
    m_previous = '>';
    m_inEndTag = false;
    reconnectDevice();
}

void XmlSeparator::readNewData()
{
    if (m_discarding) {
        m_device->readAll();
        return;
    }
    m_buffer += m_device->readAll();
    if (m_mode == ModeAutoDetect) {
        if (!detectMode())
            return;
        m_buffer += m_device->readAll();
    }
    if (m_mode == ModePlainXml)
        cutDocuments();
    else if (m_mode == ModeBigEndianSize || m_mode == ModeLittleEndianSize)
        cutFrame();
}

void XmlSeparator::reconnectDevice()
{
    pause();
    connect(m_device, &QIODevice::readyRead, this, &XmlSeparator::readNewData);
}

bool XmlSeparator::detectMode()
{
    if (m_buffer.size() < 4)
        return false;
    if (m_buffer.at(0) == '\0')
        m_mode = ModeBigEndianSize;
    else if (m_buffer.at(3) != '\0')
        m_mode = ModePlainXml;
    else
        m_mode = ModeLittleEndianSize;
    return true;
}

// The reader is fed up to the '>' before each place where the document can end, then up to
// that place, so a long text full of '>' costs few steps. Where it does end, the last piece
// is measured as ever: offsets are counted in the reader's characters but cut in bytes.
void XmlSeparator::cutDocuments()
{
    int position = 0;
    bool atStart = m_reader->characterOffset() == 0;
    for (;;) {
        if (atStart) {
            while (position < m_buffer.size() && isBlank(m_buffer.at(position)))
                ++position;
        }
        if (position >= m_buffer.size())
            break;
        const int end = nextPossibleEnd(position);
        int length = m_buffer.size() - position;
        if (end >= 0) {
            const int before = end > position ? m_buffer.lastIndexOf('>', end - 1) : -1;
            length = (before >= position ? before : end) + 1 - position;
        }
        const Cut cut = cutChunk(m_buffer.mid(position, length));
        position += length;
        if (cut == Cut::Failed)
            break;
        atStart = cut == Cut::Complete;
        if (m_xml.size() > MaxDocumentSize) {
            dropOversizedDocument();
            return;
        }
    }
    m_buffer.remove(0, position);
}

// Multi-byte text is safe before the last piece, because the rest of a piece is appended
// whenever the reader runs out of data.
XmlSeparator::Cut XmlSeparator::cutChunk(const QByteArray &chunk)
{
    m_reader->addData(chunk);
    int used = 0;
    for (;;) {
        const qint64 before = m_reader->characterOffset();
        const QXmlStreamReader::TokenType token = m_reader->readNext();
        const qint64 after = m_reader->characterOffset();
        const QXmlStreamReader::Error error = m_reader->error();
        if (error == QXmlStreamReader::NoError) {
            const int n = qMin(int(after - before), chunk.size() - used);
            m_xml.append(chunk.constData() + used, n);
            used += n;
            if (token != QXmlStreamReader::EndDocument)
                continue;
            Q_EMIT queued_xmlReceived(m_xml);
            m_xml.clear();
            m_reader->clear();
            return Cut::Complete;
        }
        if (error == QXmlStreamReader::PrematureEndOfDocumentError) {
            m_xml.append(chunk.constData() + used, chunk.size() - used);
            return Cut::Incomplete;
        }
        Q_EMIT errorOccured(m_reader->errorString());
        pause();
        return Cut::Failed;
    }
}

// A document ends at the '>' of an end tag or of an empty element's tag; text holds no '<',
// so a '>' in text ends nothing unless it follows a '/'. The scan goes on where it stopped.
int XmlSeparator::nextPossibleEnd(int from)
{
    const char *data = m_buffer.constData();
    for (int i = from; i < m_buffer.size(); ++i) {
        const char c = data[i];
        if (c == '>') {
            const bool end = m_previous == '/' || m_inEndTag;
            m_previous = c;
            m_inEndTag = false;
            if (end)
                return i;
            continue;
        }
        if (c == '<')
            m_inEndTag = false;
        else if (c == '/' && m_previous == '<')
            m_inEndTag = true;
        m_previous = c;
    }
    return -1;
}

void XmlSeparator::dropOversizedDocument()
{
    delete m_reader;
    m_reader = new QXmlStreamReader;
    m_xml.clear();
    m_buffer.clear();
    m_discarding = true;
    m_device->readAll();
    Q_EMIT errorOccured(QStringLiteral("Document larger than %1 bytes: dropped with the rest of "
                                       "the stream")
                            .arg(MaxDocumentSize));
}

void XmlSeparator::cutFrame()
{
    if (m_buffer.size() < 4)
        return;
    const uchar *head = reinterpret_cast<const uchar *>(m_buffer.constData());
    const qint64 size = m_mode == ModeBigEndianSize ? qFromBigEndian<quint32>(head)
                                                    : qFromLittleEndian<quint32>(head);
    if (size > MaxDocumentSize) {
        dropOversizedDocument();
        return;
    }
    if (m_buffer.size() < size + 4)
        return;
    const QByteArray payload = m_buffer.mid(4, int(size));
    m_buffer.remove(0, int(size) + 4);
    deliverFrame(payload);
    if (!m_buffer.isEmpty())
        QTimer::singleShot(0, this, &XmlSeparator::readNewData);
}

// A peer whose first frame isn't compressed switches compression off in both directions. A
// compressed frame that can't be inflated within the document cap is dropped; the frames
// after it are whole and still read.
void XmlSeparator::deliverFrame(const QByteArray &payload)
{
    if (m_uncompress && !Simulation::isCompressedForm(payload)) {
        m_compress = false;
        m_uncompress = false;
    }
    if (!m_uncompress) {
        Q_EMIT queued_xmlReceived(payload);
        return;
    }
    const QByteArray xml = Simulation::uncompressOrEmpty(payload, MaxDocumentSize);
    if (xml.isEmpty())
        Q_EMIT errorOccured(QStringLiteral("Compressed document corrupt or larger than %1 bytes: "
                                           "dropped")
                                .arg(MaxDocumentSize));
    else
        Q_EMIT queued_xmlReceived(xml);
}
