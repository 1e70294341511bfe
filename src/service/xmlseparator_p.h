#pragma once

#include <radiosim/radiosim_export.h>

#include <QByteArray>
#include <QObject>
#include <QString>

class QIODevice;
class QXmlStreamReader;

// Cuts the byte stream of a device into whole XML documents and writes documents to it.
//
// In plain XML mode a document ends where its root element ends; the reader is fed one tag at
// a time because it rejects anything after a root element. The size modes carry each document
// behind a 4-byte payload size. Documents are always delivered from the event loop, so a
// receiver may pause, reset or delete socket objects without the cutter's state changing
// under it.
//
// A document, or a frame's payload, may hold at most MaxDocumentSize bytes. A larger one is
// reported through errorOccured(), its bytes are dropped, and everything the device delivers
// after it is read and dropped too, so a peer that never ends its document can't make memory
// grow. reset() makes the separator take documents again.
class RADIOSIM_EXPORT XmlSeparator : public QObject
{
    Q_OBJECT

public:
    // 32 MiB: ten times the largest scenario sent uncompressed.
    static constexpr int MaxDocumentSize = 32 * 1024 * 1024;

    enum Mode : quint32 {
        // Decided by the first four bytes received; nothing can be sent before.
        ModeAutoDetect = 0,
        ModePlainXml = 1,
        ModeBigEndianSize = 2,
        ModeLittleEndianSize = 3
    };

    XmlSeparator(QIODevice *device, QObject *parent);
    XmlSeparator(QIODevice *device, Mode mode, QObject *parent);
    ~XmlSeparator() override;

    Mode mode() const;
    QIODevice *device() const;
    // Compression of outgoing frames in the size modes; plain XML is never compressed.
    void setCompression(bool bCompress);
    void setCompressionLevel(int iLevel);
    int compressionLevel() const;
    // Bytes held for the document in progress and not yet cut.
    qint64 bufferedBytes() const;

Q_SIGNALS:
    void xmlReceived(const QByteArray &Xml);
    void errorOccured(const QString &sErrorString);
    // Emitted inside the parser; exists only to pass through the queued self-connection.
    void queued_xmlReceived(const QByteArray &Xml);

public Q_SLOTS:
    bool sendXml(const QByteArray &Xml);
    void setEnabled(bool bEnabled);
    void setDisabled(bool bDisabled);
    void pause();
    void resume();
    // Drops the document in progress and all buffered bytes; doesn't read.
    void reset();

private Q_SLOTS:
    void readNewData();

private:
    void reconnectDevice();
    bool detectMode();
    void cutDocuments();
    void cutFrame();
    enum class Cut { Incomplete, Complete, Failed };
    Cut cutChunk(const QByteArray &chunk);
    int nextPossibleEnd(int from);
    void dropOversizedDocument();
    void deliverFrame(const QByteArray &payload);

    quint32 m_mode = ModePlainXml;
    QXmlStreamReader *m_reader = nullptr;
    QIODevice *m_device = nullptr;
    QByteArray m_xml;
    QByteArray m_buffer;
    int m_compressionLevel = -1;
    bool m_compress = false;
    bool m_uncompress = true;
    bool m_discarding = false;
    // Where the scan for the end of a document stands: the byte before, and whether the last
    // '<' opened an end tag.
    char m_previous = '>';
    bool m_inEndTag = false;
};
