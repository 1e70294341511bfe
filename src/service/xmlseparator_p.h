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
class RADIOSIM_EXPORT XmlSeparator : public QObject
{
    Q_OBJECT

public:
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
    QByteArray takeChunk(int &position, bool bSkipWhiteSpace) const;
    QByteArray uncompressed(const QByteArray &payload);

    quint32 m_mode = ModePlainXml;
    QXmlStreamReader *m_reader = nullptr;
    QIODevice *m_device = nullptr;
    QByteArray m_xml;
    QByteArray m_buffer;
    int m_compressionLevel = -1;
    bool m_compress = false;
    bool m_uncompress = true;
};
