#include "feeddevice.h"

#include <radiosim/service/xmlseparator_p.h>

#include <QTcpServer>
#include <QTcpSocket>
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

QByteArray frame(const QByteArray &payload, XmlSeparator::Mode mode)
{
    QByteArray size(4, '\0');
    if (mode == XmlSeparator::ModeBigEndianSize)
        qToBigEndian(quint32(payload.size()), size.data());
    else
        qToLittleEndian(quint32(payload.size()), size.data());
    return size + payload;
}

} // namespace

class tst_XmlSeparator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void twoDocumentsInOneReadArriveInOrderFromTheEventLoop();
    void documentSplitAtEveryByte();
    void documentFedByteByByte();
    void whiteSpaceAroundDocuments_data();
    void whiteSpaceAroundDocuments();
    void declarationIsDelivered();
    void multiByteTextInLastChunkLosesBytes();
    void malformedDocumentStopsReadingUntilReset();
    void autoDetection_data();
    void autoDetection();
    void nothingIsSentBeforeDetection();
    void framedModes_data();
    void framedModes();
    void framesCompressedBothWays_data();
    void framesCompressedBothWays();
    void uncompressedFirstFrameSwitchesCompressionOff();
    void uncompressedPeerOnRealSockets();
    void plainModeNeverCompresses();
    void pauseAndResume();
    void enablingTwiceKeepsOneConnection();
    void queuedDocumentsSurviveReset();
};

void tst_XmlSeparator::twoDocumentsInOneReadArriveInOrderFromTheEventLoop()
{
    FeedDevice device;
    XmlSeparator separator(&device, nullptr);
    QSignalSpy spy(&separator, &XmlSeparator::xmlReceived);
    device.feed(Message + "<Command><HeartBeat/></Command>\n");
    QCOMPARE(spy.count(), 0);
    QTRY_COMPARE(spy.count(), 2);
    QCOMPARE(spy.at(0).at(0).toByteArray(), Delivered);
    QCOMPARE(spy.at(1).at(0).toByteArray(), QByteArray("<Command><HeartBeat/></Command>"));
}

void tst_XmlSeparator::documentSplitAtEveryByte()
{
    const QByteArray stream = Message + Message;
    for (int split = 0; split <= stream.size(); ++split) {
        FeedDevice device;
        XmlSeparator separator(&device, nullptr);
        QSignalSpy spy(&separator, &XmlSeparator::xmlReceived);
        QSignalSpy errors(&separator, &XmlSeparator::errorOccured);
        device.feed(stream.left(split));
        QCoreApplication::processEvents();
        device.feed(stream.mid(split));
        QTRY_COMPARE_WITH_TIMEOUT(spy.count(), 2, 1000);
        QCOMPARE(errors.count(), 0);
        QCOMPARE(spy.at(0).at(0).toByteArray(), Delivered);
        QCOMPARE(spy.at(1).at(0).toByteArray(), Delivered);
    }
}

void tst_XmlSeparator::documentFedByteByByte()
{
    FeedDevice device;
    XmlSeparator separator(&device, nullptr);
    QSignalSpy spy(&separator, &XmlSeparator::xmlReceived);
    const QByteArray lastTag = "</Command>";
    for (int i = 0; i < Message.size(); ++i) {
        device.feed(Message.mid(i, 1));
        QCoreApplication::processEvents();
        // Nothing comes before the root's last '>' is in.
        if (i < Message.indexOf(lastTag) + lastTag.size() - 1)
            QCOMPARE(spy.count(), 0);
    }
    QTRY_COMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toByteArray(), Delivered);
}

void tst_XmlSeparator::whiteSpaceAroundDocuments_data()
{
    QTest::addColumn<QByteArray>("stream");
    QTest::addColumn<QList<QByteArray>>("documents");
    QTest::newRow("leading blanks of every kind")
        << QByteArray(" \r\n\t <a/>") << QList<QByteArray> { "<a/>" };
    QTest::newRow("between and inside")
        << QByteArray("<a> x\r\n\t</a>\n\n\t  <b>\n  <c/>\n</b>\n")
        << QList<QByteArray> { "<a> x\r\n\t</a>", "<b>\n  <c/>\n</b>" };
    QTest::newRow("only white space") << QByteArray(" \n\r\t  \n") << QList<QByteArray> {};
    QTest::newRow("nothing") << QByteArray() << QList<QByteArray> {};
}

void tst_XmlSeparator::whiteSpaceAroundDocuments()
{
    QFETCH(QByteArray, stream);
    QFETCH(QList<QByteArray>, documents);
    FeedDevice device;
    XmlSeparator separator(&device, nullptr);
    QSignalSpy spy(&separator, &XmlSeparator::xmlReceived);
    QSignalSpy errors(&separator, &XmlSeparator::errorOccured);
    device.feed(stream);
    QTRY_COMPARE(spy.count(), documents.size());
    QTest::qWait(20);
    QCOMPARE(spy.count(), documents.size());
    QCOMPARE(errors.count(), 0);
    for (int i = 0; i < documents.size(); ++i)
        QCOMPARE(spy.at(i).at(0).toByteArray(), documents.at(i));
}

void tst_XmlSeparator::declarationIsDelivered()
{
    FeedDevice device;
    XmlSeparator separator(&device, nullptr);
    QSignalSpy spy(&separator, &XmlSeparator::xmlReceived);
    const QByteArray document = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a>1</a>";
    device.feed("\n" + document + "\n" + document);
    QTRY_COMPARE(spy.count(), 2);
    QCOMPARE(spy.at(0).at(0).toByteArray(), document);
    QCOMPARE(spy.at(1).at(0).toByteArray(), document);
}

// Slices are measured in characters but cut in bytes: behind the last but one '>' every extra
// UTF-8 byte costs one byte at the end of the document. Peers rely on the cut as it is.
void tst_XmlSeparator::multiByteTextInLastChunkLosesBytes()
{
    FeedDevice device;
    XmlSeparator separator(&device, nullptr);
    QSignalSpy spy(&separator, &XmlSeparator::xmlReceived);
    device.feed("<r><b/>M\xc3\xbc\xc3\xbc</r><s/>");
    QTRY_COMPARE(spy.count(), 2);
    QCOMPARE(spy.at(0).at(0).toByteArray(), QByteArray("<r><b/>M\xc3\xbc\xc3\xbc</"));
    QCOMPARE(spy.at(1).at(0).toByteArray(), QByteArray("<s/>"));
}

void tst_XmlSeparator::malformedDocumentStopsReadingUntilReset()
{
    FeedDevice device;
    XmlSeparator separator(&device, nullptr);
    QSignalSpy spy(&separator, &XmlSeparator::xmlReceived);
    QSignalSpy errors(&separator, &XmlSeparator::errorOccured);
    device.feed("<a></b><c/>");
    QCOMPARE(errors.count(), 1);
    QVERIFY(!errors.at(0).at(0).toString().isEmpty());

    device.feed("<d/>");
    QCoreApplication::processEvents();
    QCOMPARE(spy.count(), 0);
    QCOMPARE(errors.count(), 1);

    // Resuming alone meets the same error again.
    separator.resume();
    QCOMPARE(errors.count(), 2);

    separator.reset();
    device.feed("<e/>");
    QTRY_COMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toByteArray(), QByteArray("<e/>"));
}

void tst_XmlSeparator::autoDetection_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<int>("mode");
    QTest::newRow("declaration") << QByteArray("<?xm") << int(XmlSeparator::ModePlainXml);
    QTest::newRow("big-endian size")
        << QByteArray("\x00\x00\x01\x00", 4) << int(XmlSeparator::ModeBigEndianSize);
    QTest::newRow("little-endian size")
        << QByteArray("\x20\x00\x00\x00", 4) << int(XmlSeparator::ModeLittleEndianSize);
    QTest::newRow("little-endian 16 MiB taken for text")
        << QByteArray("\x10\x00\x00\x01", 4) << int(XmlSeparator::ModePlainXml);
    QTest::newRow("three bytes decide nothing")
        << QByteArray("<Co") << int(XmlSeparator::ModeAutoDetect);
}

void tst_XmlSeparator::autoDetection()
{
    QFETCH(QByteArray, head);
    FeedDevice device;
    XmlSeparator separator(&device, XmlSeparator::ModeAutoDetect, nullptr);
    device.feed(head);
    QTEST(int(separator.mode()), "mode");
}

void tst_XmlSeparator::nothingIsSentBeforeDetection()
{
    FeedDevice device;
    XmlSeparator separator(&device, XmlSeparator::ModeAutoDetect, nullptr);
    QVERIFY(!separator.sendXml("<a/>"));
    QVERIFY(device.written().isEmpty());

    QSignalSpy spy(&separator, &XmlSeparator::xmlReceived);
    device.feed("<a/> <b/>");
    QTRY_COMPARE(spy.count(), 2);
    QVERIFY(separator.sendXml("<c/>"));
    QCOMPARE(device.written(), QByteArray("<c/>"));
}

void tst_XmlSeparator::framedModes_data()
{
    QTest::addColumn<int>("modeValue");
    QTest::addColumn<bool>("detect");
    QTest::newRow("big-endian") << int(XmlSeparator::ModeBigEndianSize) << false;
    QTest::newRow("little-endian") << int(XmlSeparator::ModeLittleEndianSize) << false;
    QTest::newRow("big-endian, detected") << int(XmlSeparator::ModeBigEndianSize) << true;
    QTest::newRow("little-endian, detected") << int(XmlSeparator::ModeLittleEndianSize) << true;
}

// Frames are not parsed: any payload, even one that isn't XML, passes whole.
void tst_XmlSeparator::framedModes()
{
    QFETCH(int, modeValue);
    const auto mode = XmlSeparator::Mode(modeValue);
    QFETCH(bool, detect);

    FeedDevice sender;
    XmlSeparator writer(&sender, mode, nullptr);
    const QList<QByteArray> payloads { Message, "not xml <<", QByteArray(300, 'x') };
    for (const QByteArray &payload : payloads)
        QVERIFY(writer.sendXml(payload));
    QCOMPARE(sender.written(),
        frame(payloads.at(0), mode) + frame(payloads.at(1), mode) + frame(payloads.at(2), mode));

    FeedDevice receiver;
    XmlSeparator reader(&receiver, detect ? XmlSeparator::ModeAutoDetect : mode, nullptr);
    QSignalSpy spy(&reader, &XmlSeparator::xmlReceived);
    const QByteArray stream = sender.written();
    for (int i = 0; i < stream.size(); ++i)
        receiver.feed(stream.mid(i, 1));
    QTRY_COMPARE(spy.count(), payloads.size());
    QCOMPARE(int(reader.mode()), int(mode));
    for (int i = 0; i < payloads.size(); ++i)
        QCOMPARE(spy.at(i).at(0).toByteArray(), payloads.at(i));
}

void tst_XmlSeparator::framesCompressedBothWays_data()
{
    framedModes_data();
}

void tst_XmlSeparator::framesCompressedBothWays()
{
    QFETCH(int, modeValue);
    const auto mode = XmlSeparator::Mode(modeValue);
    FeedDevice sender;
    XmlSeparator writer(&sender, mode, nullptr);
    writer.setCompression(true);
    writer.setCompressionLevel(9);
    QCOMPARE(writer.compressionLevel(), 9);
    QVERIFY(writer.sendXml(Message));
    QCOMPARE(sender.written(), frame(qCompress(Message, 9), mode));

    // All three frames in one read: one frame per pass through the event loop.
    QVERIFY(writer.sendXml("<b/>"));
    QVERIFY(writer.sendXml("<c/>"));
    FeedDevice receiver;
    XmlSeparator reader(&receiver, mode, nullptr);
    QSignalSpy spy(&reader, &XmlSeparator::xmlReceived);
    receiver.feed(sender.written());
    QTRY_COMPARE(spy.count(), 3);
    QCOMPARE(spy.at(0).at(0).toByteArray(), Message);
    QCOMPARE(spy.at(2).at(0).toByteArray(), QByteArray("<c/>"));
}

void tst_XmlSeparator::uncompressedFirstFrameSwitchesCompressionOff()
{
    FeedDevice device;
    XmlSeparator separator(&device, XmlSeparator::ModeBigEndianSize, nullptr);
    separator.setCompression(true);
    QSignalSpy spy(&separator, &XmlSeparator::xmlReceived);

    device.feed(frame("<a/>", XmlSeparator::ModeBigEndianSize));
    QTRY_COMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toByteArray(), QByteArray("<a/>"));

    QVERIFY(separator.sendXml("<b/>"));
    QCOMPARE(device.written(), frame("<b/>", XmlSeparator::ModeBigEndianSize));

    // For good: a compressed frame is now delivered as it stands.
    const QByteArray packed = qCompress(QByteArray("<c/>"));
    device.feed(frame(packed, XmlSeparator::ModeBigEndianSize));
    QTRY_COMPARE(spy.count(), 2);
    QCOMPARE(spy.at(1).at(0).toByteArray(), packed);
}

// Both ends start with compression on; the client's first frame goes out uncompressed from a
// plain writer, and the server answers uncompressed from then on.
void tst_XmlSeparator::uncompressedPeerOnRealSockets()
{
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost, 0));
    QTcpSocket client;
    client.connectToHost(QHostAddress::LocalHost, server.serverPort());
    QVERIFY(client.waitForConnected(5000));
    QVERIFY(server.waitForNewConnection(5000));
    QTcpSocket *accepted = server.nextPendingConnection();

    XmlSeparator serverEnd(accepted, XmlSeparator::ModeAutoDetect, nullptr);
    serverEnd.setCompression(true);
    QSignalSpy received(&serverEnd, &XmlSeparator::xmlReceived);
    client.write(frame(Message, XmlSeparator::ModeBigEndianSize));
    QTRY_COMPARE(received.count(), 1);
    QCOMPARE(received.at(0).at(0).toByteArray(), Message);
    QCOMPARE(int(serverEnd.mode()), int(XmlSeparator::ModeBigEndianSize));

    QVERIFY(serverEnd.sendXml("<Reply/>"));
    QTRY_COMPARE(client.bytesAvailable(), qint64(4 + 8));
    QCOMPARE(client.readAll(), frame("<Reply/>", XmlSeparator::ModeBigEndianSize));
}

void tst_XmlSeparator::plainModeNeverCompresses()
{
    FeedDevice device;
    XmlSeparator separator(&device, nullptr);
    separator.setCompression(true);
    QVERIFY(separator.sendXml(Message));
    QCOMPARE(device.written(), Message);
    QCOMPARE(separator.device(), &device);
}

void tst_XmlSeparator::pauseAndResume()
{
    FeedDevice device;
    XmlSeparator separator(&device, nullptr);
    QSignalSpy spy(&separator, &XmlSeparator::xmlReceived);
    separator.setEnabled(false);
    device.feed("<a/>");
    QTest::qWait(10);
    QCOMPARE(spy.count(), 0);

    // Resuming reads what waits at once, without a new readyRead.
    separator.setDisabled(false);
    QTRY_COMPARE(spy.count(), 1);

    separator.setDisabled(true);
    device.feed("<b/>");
    separator.setEnabled(true);
    QTRY_COMPARE(spy.count(), 2);
    QCOMPARE(spy.at(1).at(0).toByteArray(), QByteArray("<b/>"));
}

void tst_XmlSeparator::enablingTwiceKeepsOneConnection()
{
    FeedDevice device;
    XmlSeparator separator(&device, nullptr);
    QCOMPARE(device.readyReadConnections(), 1);
    separator.setEnabled(true);
    separator.setEnabled(true);
    QCOMPARE(device.readyReadConnections(), 1);
    separator.reset();
    QCOMPARE(device.readyReadConnections(), 1);
    separator.pause();
    separator.pause();
    QCOMPARE(device.readyReadConnections(), 0);
}

void tst_XmlSeparator::queuedDocumentsSurviveReset()
{
    FeedDevice device;
    XmlSeparator separator(&device, nullptr);
    QSignalSpy spy(&separator, &XmlSeparator::xmlReceived);
    device.feed("<a/><b/><c");
    separator.reset();
    separator.pause();
    QTRY_COMPARE(spy.count(), 2);

    // The half document went with the reset.
    separator.resume();
    device.feed("<d/>");
    QTRY_COMPARE(spy.count(), 3);
    QCOMPARE(spy.at(2).at(0).toByteArray(), QByteArray("<d/>"));
}

QTEST_GUILESS_MAIN(tst_XmlSeparator)
#include "tst_xmlseparator.moc"
