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
    reconnectDevice();
}

void XmlSeparator::readNewData()
{
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

// Offsets are counted in the reader's characters but cut in bytes; multi-byte text is safe
// because the rest of a chunk is appended whenever the reader runs out of data.
void XmlSeparator::cutDocuments()
{
    int position = 0;
    QByteArray chunk = takeChunk(position, m_reader->characterOffset() == 0);
    while (!chunk.isEmpty()) {
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
                chunk = takeChunk(position, true);
            } else if (error == QXmlStreamReader::PrematureEndOfDocumentError) {
                m_xml.append(chunk.constData() + used, chunk.size() - used);
                chunk = takeChunk(position, false);
            } else {
                Q_EMIT errorOccured(m_reader->errorString());
                pause();
                chunk.clear();
            }
            break;
        }
    }
    m_buffer.remove(0, position);
}

void XmlSeparator::cutFrame()
{
    if (m_buffer.size() < 4)
        return;
    const uchar *head = reinterpret_cast<const uchar *>(m_buffer.constData());
    const qint64 size = m_mode == ModeBigEndianSize ? qFromBigEndian<quint32>(head)
                                                    : qFromLittleEndian<quint32>(head);
    if (m_buffer.size() < size + 4)
        return;
    const QByteArray payload = m_buffer.mid(4, int(size));
    m_buffer.remove(0, int(size) + 4);
    Q_EMIT queued_xmlReceived(uncompressed(payload));
    if (!m_buffer.isEmpty())
        QTimer::singleShot(0, this, &XmlSeparator::readNewData);
}

// The buffer is consumed from `position` on and compacted once per pass, so a large buffer
// holding many documents is cut in linear time.
QByteArray XmlSeparator::takeChunk(int &position, bool bSkipWhiteSpace) const
{
    if (bSkipWhiteSpace) {
        while (position < m_buffer.size() && isBlank(m_buffer.at(position)))
            ++position;
    }
    if (position >= m_buffer.size())
        return {};
    const int end = m_buffer.indexOf('>', position);
    const int length = end >= 0 ? end + 1 - position : m_buffer.size() - position;
    const QByteArray chunk = m_buffer.mid(position, length);
    position += length;
    return chunk;
}

// A peer whose first frame isn't compressed switches compression off in both directions.
QByteArray XmlSeparator::uncompressed(const QByteArray &payload)
{
    if (!m_uncompress)
        return payload;
    const QByteArray data = Simulation::uncompressOrEmpty(payload);
    if (!data.isEmpty())
        return data;
    m_compress = false;
    m_uncompress = false;
    return payload;
}
