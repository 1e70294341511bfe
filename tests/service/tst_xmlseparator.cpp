#include "servicetesthelpers.h"

#include <radiosim/service/xmlseparator_p.h>

#include <QtEndian>
#include <QtTest>

namespace {

// A message as the protocol writes it: indented, with text that needs more than one UTF-8
// byte, and the line feed that follows every document.
const QByteArray Message = "<Command>\n"
                           "    <RegisterSimulation Id=\"dev-1\">\n"
                           "        <Name>M\xc3\xbcller \xe2\x82\xac 5 &gt; 4</Name>\n"
                           "    </RegisterSimulation>\n"
                           "</Command>\n";
const QByteArray Delivered = Message.chopped(1);
constexpr auto Auto = XmlSeparator::ModeAutoDetect;
constexpr auto Plain = XmlSeparator::ModePlainXml;
constexpr auto BigEndian = XmlSeparator::ModeBigEndianSize;
constexpr auto LittleEndian = XmlSeparator::ModeLittleEndianSize;

QByteArray frame(const QByteArray &payload, XmlSeparator::Mode mode)
{
    QByteArray size(4, '\0');
    mode == BigEndian ? qToBigEndian(quint32(payload.size()), size.data())
                      : qToLittleEndian(quint32(payload.size()), size.data());
    return size + payload;
}

// A separator on a hand-fed device, with what it delivers and reports recorded.
struct Reader
{
    explicit Reader(XmlSeparator::Mode mode = Plain)
        : separator(&device, mode, nullptr)
    {
    }
    QList<QByteArray> documents() const
    {
        QList<QByteArray> all;
        for (const QList<QVariant> &arguments : spy)
            all << arguments.at(0).toByteArray();
        return all;
    }

    FeedDevice device;
    XmlSeparator separator;
    QSignalSpy spy { &separator, &XmlSeparator::xmlReceived };
    QSignalSpy errors { &separator, &XmlSeparator::errorOccured };
};

} // namespace

class tst_XmlSeparator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void documentFedInPieces();
    void declarationAndMultiByteTail();
    void pauseResumeAndReset();
    void autoDetection_data();
    void autoDetection();
    void framedModes_data();
    void framedModes();
    void uncompressedFirstFrameSwitchesCompressionOffForGood();
    void endlessDocumentIsDroppedAtTheCap_data();
    void endlessDocumentIsDroppedAtTheCap();
    void unreadableCompressedFrameIsDropped_data();
    void unreadableCompressedFrameIsDropped();
};

// Nothing comes before the root's last '>' is in; blanks before and between documents are
// dropped.
void tst_XmlSeparator::documentFedInPieces()
{
    const QByteArray stream = " \r\n\t" + Message + "\n\t " + Message;
    const QList<QByteArray> both { Delivered, Delivered };
    const int first = 4 + Message.lastIndexOf('>');
    const int second = first + Message.size() + 3;
    for (int split = 0; split <= stream.size(); ++split) {
        Reader r;
        r.device.feed(stream.left(split));
        QCoreApplication::processEvents();
        QCOMPARE(r.spy.count(), int(split > first) + int(split > second));
        r.device.feed(stream.mid(split));
        QTRY_COMPARE(r.documents(), both);
    }
    Reader r;
    for (const char c : stream)
        r.device.feed(QByteArray(1, c));
    QTRY_COMPARE(r.documents(), both);
}

// Documents come from the event loop, in order, a declaration with its document. Slices are
// measured in characters but cut in bytes: behind the last but one '>' every extra UTF-8 byte
// costs one byte at the end of the document. Peers rely on the cut as it is.
void tst_XmlSeparator::declarationAndMultiByteTail()
{
    const QByteArray declared = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a>1</a>";
    Reader r;
    r.device.feed(declared + "\n" + declared + "<r><b/>M\xc3\xbc\xc3\xbc</r><s/>");
    QCOMPARE(r.spy.count(), 0);
    QTRY_COMPARE(r.documents(),
        QList<QByteArray>({ declared, declared, "<r><b/>M\xc3\xbc\xc3\xbc</", "<s/>" }));
}

// An error stops reading, and resuming alone meets it again. A reset drops the error and a half
// document, but not the documents already queued. Resuming reads what waits at once, without a
// new readyRead; enabling twice still listens once.
void tst_XmlSeparator::pauseResumeAndReset()
{
    Reader r;
    r.device.feed("<a></b><c/>");
    QCOMPARE(r.errors.count(), 1);
    QCOMPARE(r.device.readyReadConnections(), 0);
    r.separator.resume();
    QCOMPARE(r.errors.count(), 2);

    r.separator.reset();
    QCOMPARE(r.device.readyReadConnections(), 1);
    r.device.feed("<e/><f/><g");
    r.separator.reset();
    r.separator.setEnabled(false);
    QTRY_COMPARE(r.spy.count(), 2);
    r.device.feed("<h/>");
    r.separator.setDisabled(false);
    r.separator.setEnabled(true);
    QCOMPARE(r.device.readyReadConnections(), 1);
    QTRY_COMPARE(r.documents(), QList<QByteArray>({ "<e/>", "<f/>", "<h/>" }));
    r.separator.pause();
    r.separator.pause();
    QCOMPARE(r.device.readyReadConnections(), 0);
}

void tst_XmlSeparator::autoDetection_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<int>("mode");
    QTest::newRow("declaration") << QByteArray("<?xm") << int(Plain);
    QTest::newRow("little-endian 16 MiB taken for text")
        << QByteArray("\x10\x00\x00\x01", 4) << int(Plain);
    QTest::newRow("three bytes decide nothing") << QByteArray("<Co") << int(Auto);
}

// Nothing is sent before the mode is known, and plain text is never compressed. The size modes
// are detected in the framed tests.
void tst_XmlSeparator::autoDetection()
{
    QFETCH(QByteArray, head);
    QFETCH(int, mode);
    Reader r(Auto);
    r.separator.setCompression(true);
    r.device.feed(head);
    QCOMPARE(int(r.separator.mode()), mode);
    QCOMPARE(r.separator.sendXml(Message), mode != Auto);
    QCOMPARE(r.device.written(), mode == Plain ? Message : QByteArray());
}

void tst_XmlSeparator::framedModes_data()
{
    QTest::addColumn<int>("modeValue");
    QTest::addColumn<bool>("detect");
    QTest::addColumn<bool>("compressed");
    for (const bool compressed : { false, true })
        for (const bool detect : { false, true })
            for (const auto mode : { BigEndian, LittleEndian })
                QTest::addRow("%s%s%s", mode == BigEndian ? "big-endian" : "little-endian",
                    detect ? ", detected" : "", compressed ? ", compressed" : "")
                    << int(mode) << detect << compressed;
}

// Frames are not parsed: any payload, even one that isn't XML, passes whole, whether the stream
// comes byte by byte or all in one read.
void tst_XmlSeparator::framedModes()
{
    QFETCH(int, modeValue);
    QFETCH(bool, detect);
    QFETCH(bool, compressed);
    const auto mode = XmlSeparator::Mode(modeValue);

    Reader writer(mode);
    writer.separator.setCompression(compressed);
    writer.separator.setCompressionLevel(9);
    const QList<QByteArray> payloads { Message, "not xml <<", QByteArray(300, 'x') };
    QByteArray expected;
    for (const QByteArray &payload : payloads) {
        QVERIFY(writer.separator.sendXml(payload));
        expected += frame(compressed ? qCompress(payload, 9) : payload, mode);
    }
    const QByteArray stream = writer.device.written();
    QCOMPARE(stream, expected);

    for (const int chunk : { 1, int(stream.size()) }) {
        Reader r(detect ? Auto : mode);
        r.separator.setCompression(compressed);
        for (int i = 0; i < stream.size(); i += chunk)
            r.device.feed(stream.mid(i, chunk));
        QTRY_COMPARE(r.documents(), payloads);
        QCOMPARE(int(r.separator.mode()), int(mode));
    }
}

// Both ends start with compression on; the client's first frame comes uncompressed from a plain
// writer, so the server answers uncompressed and delivers compressed frames as they stand.
void tst_XmlSeparator::uncompressedFirstFrameSwitchesCompressionOffForGood()
{
    Reader r(Auto);
    r.separator.setCompression(true);
    r.device.feed(frame(Message, BigEndian));
    QTRY_COMPARE(r.spy.count(), 1);
    QCOMPARE(int(r.separator.mode()), int(BigEndian));
    QVERIFY(r.separator.sendXml("<Reply/>"));
    QCOMPARE(r.device.written(), frame("<Reply/>", BigEndian));
    const QByteArray packed = qCompress(QByteArray("<c/>"));
    r.device.feed(frame(packed, BigEndian));
    QTRY_COMPARE(r.documents(), QList<QByteArray>({ Message, packed }));
}

void tst_XmlSeparator::endlessDocumentIsDroppedAtTheCap_data()
{
    QTest::addColumn<int>("modeValue");
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<QByteArray>("slice");
    const QByteArray items = QByteArray("<Item a=\"1\">").append(1000, 'x').append("</Item>");
    QTest::newRow("one long text")
        << int(Plain) << QByteArray("<Command><Data>") << QByteArray(1 << 20, 'x');
    QTest::newRow("endless siblings")
        << int(Plain) << QByteArray("<Command>") << items.repeated((1 << 20) / items.size());
    QTest::newRow("frame of 4 GiB")
        << int(BigEndian) << QByteArray("\xff\xff\xff\xff", 4) << QByteArray(1 << 20, 'x');
}

// 100 MiB of one document, in slices of 1 MiB: what is held stays within the cap and one
// slice, the device is drained, the error comes once, and a separator on another connection
// goes on meanwhile. A reset takes documents again.
void tst_XmlSeparator::endlessDocumentIsDroppedAtTheCap()
{
    QFETCH(int, modeValue);
    QFETCH(QByteArray, head);
    QFETCH(QByteArray, slice);
    Reader flood { XmlSeparator::Mode(modeValue) };
    Reader other;
    flood.device.feed(head);
    qint64 most = 0;
    for (int i = 0; i < 100; ++i) {
        flood.device.feed(slice);
        most = qMax(most, flood.separator.bufferedBytes());
        QCOMPARE(flood.device.bytesAvailable(), qint64(0));
        other.device.feed(Message);
    }
    QVERIFY2(
        most <= XmlSeparator::MaxDocumentSize + slice.size(), qPrintable(QString::number(most)));
    QCOMPARE(flood.separator.bufferedBytes(), qint64(0));
    QCOMPARE(flood.errors.count(), 1);
    QVERIFY(flood.errors.at(0).at(0).toString().startsWith("Document larger than 33554432 bytes"));
    QTRY_COMPARE(other.spy.count(), 100);
    QVERIFY(other.errors.isEmpty());

    flood.separator.reset();
    flood.device.feed(modeValue == Plain ? Message : frame(Message, BigEndian));
    QTRY_COMPARE(
        flood.documents(), QList<QByteArray>({ modeValue == Plain ? Delivered : Message }));
}

void tst_XmlSeparator::unreadableCompressedFrameIsDropped_data()
{
    QTest::addColumn<QByteArray>("payload");
    QTest::newRow("inflates past the cap")
        << qCompress(QByteArray(XmlSeparator::MaxDocumentSize + 1, ' '), 9);
    QByteArray corrupt = qCompress(Message);
    corrupt[corrupt.size() / 2] = char(corrupt[corrupt.size() / 2] ^ 0x55);
    QTest::newRow("corrupt") << corrupt;
    QTest::newRow("cut short") << qCompress(Message).chopped(8);
}

// A compressed frame that can't be inflated within the cap is reported and dropped; the frames
// around it arrive, and compression stays on.
void tst_XmlSeparator::unreadableCompressedFrameIsDropped()
{
    QFETCH(QByteArray, payload);
    Reader r { BigEndian };
    r.device.feed(frame(qCompress(Message), BigEndian) + frame(payload, BigEndian)
        + frame(qCompress(Message), BigEndian));
    QTRY_COMPARE(r.documents(), QList<QByteArray>({ Message, Message }));
    QCOMPARE(r.errors.count(), 1);
    QVERIFY(r.errors.at(0).at(0).toString().startsWith("Compressed document corrupt or larger"));
}

QTEST_GUILESS_MAIN(tst_XmlSeparator)
#include "tst_xmlseparator.moc"
