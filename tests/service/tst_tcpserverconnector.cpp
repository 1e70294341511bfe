#include "servicetesthelpers.h"

#include <radiosim/service/tcpserverconnector.h>

using namespace Simulation;

class tst_TcpServerConnector : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void connectsAndTraces();
    void reconnectsAfterServerRestart();
    void disconnectingReconnects();
    void unreachableServerIsRetriedWithTraceLines();
    void hostAndPortFromText_data();
    void hostAndPortFromText();
    void traceLinesFollowTheirClassBits_data();
    void traceLinesFollowTheirClassBits();
};

void tst_TcpServerConnector::connectsAndTraces()
{
    TraceCapture trace;
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost, 0));
    const QString port = QString::number(server.serverPort());
    TcpServerConnector connector(QStringLiteral("127.0.0.1:") + port);

    // The signal comes before the trace line of the same event.
    int linesAtSignal = -1;
    connect(&connector, &TcpServerConnector::connectedToServer, this,
        [&]() { linesAtSignal = trace.lines().size(); });
    connector.connectToServer();
    QVERIFY(!connector.isConnected());
    QTRY_VERIFY(connector.isConnected());
    QCOMPARE(linesAtSignal, 1);
    QCOMPARE(trace.lines(),
        (QStringList { QStringLiteral("Try to connect to: 127.0.0.1:") + port,
            QStringLiteral("Connected to: 127.0.0.1:") + port }));
}

void tst_TcpServerConnector::reconnectsAfterServerRestart()
{
    TraceCapture trace;
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost, 0));
    const quint16 port = server.serverPort();
    TcpServerConnector connector(QStringLiteral("127.0.0.1"), port);
    QSignalSpy connected(&connector, &TcpServerConnector::connectedToServer);
    QSignalSpy disconnected(&connector, &TcpServerConnector::disconnectedFromServer);
    connector.connectToServer();
    QTRY_COMPARE(connected.count(), 1);
    QTRY_VERIFY(server.hasPendingConnections());

    // Server gone: the connection drops and refused attempts follow without pause.
    delete server.nextPendingConnection();
    server.close();
    QTRY_COMPARE(disconnected.count(), 1);
    QTRY_VERIFY(trace.lines().contains(QStringLiteral("Disconneted from: 127.0.0.1:%1").arg(port)));
    QTRY_VERIFY(trace.lines().filter(QStringLiteral("Error while connecting to:")).size() >= 2);
    QVERIFY(!connector.isConnected());

    QVERIFY(server.listen(QHostAddress::LocalHost, port));
    QTRY_COMPARE_WITH_TIMEOUT(connected.count(), 2, 10000);
    QVERIFY(connector.isConnected());
}

// Deliberately no way to stay away: only destroying the connector ends the connection.
void tst_TcpServerConnector::disconnectingReconnects()
{
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost, 0));
    TcpServerConnector connector(QStringLiteral("localhost:%1").arg(server.serverPort()));
    QSignalSpy connected(&connector, &TcpServerConnector::connectedToServer);
    QSignalSpy disconnected(&connector, &TcpServerConnector::disconnectedFromServer);
    connector.connectToServer();
    QTRY_COMPARE(connected.count(), 1);
    connector.disconnectFromServer();
    QTRY_COMPARE(disconnected.count(), 1);
    QTRY_COMPARE(connected.count(), 2);
}

void tst_TcpServerConnector::unreachableServerIsRetriedWithTraceLines()
{
    QTcpServer probe;
    QVERIFY(probe.listen(QHostAddress::LocalHost, 0));
    const quint16 port = probe.serverPort();
    probe.close();

    TraceCapture trace;
    TcpServerConnector connector(QStringLiteral("127.0.0.1"), port);
    QSignalSpy disconnected(&connector, &TcpServerConnector::disconnectedFromServer);
    connector.connectToServer();
    QTRY_VERIFY(trace.lines().size() >= 7);
    const QStringList lines = trace.lines().mid(0, 5);
    const QString address = QStringLiteral("127.0.0.1:%1").arg(port);
    QCOMPARE(lines.at(0), QStringLiteral("Try to connect to: ") + address);
    QVERIFY2(lines.at(1).startsWith(
                 QStringLiteral("Error while connecting to: ") + address + QStringLiteral("; ")),
        qPrintable(lines.at(1)));
    QCOMPARE(lines.at(2), QStringLiteral("Try to connect to: ") + address);
    QVERIFY(lines.at(3).startsWith(QStringLiteral("Error while connecting to: ")));
    // A refusal is no disconnection.
    QCOMPARE(disconnected.count(), 0);
}

void tst_TcpServerConnector::hostAndPortFromText_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("address");
    QTest::newRow("host and port") << "127.0.0.1:4711"
                                   << "127.0.0.1:4711";
    QTest::newRow("no colon gives port 0") << "serverhost"
                                           << "serverhost:0";
    QTest::newRow("two colons") << "a:1:2"
                                << "a:1";
    QTest::newRow("port not a number") << "h:x"
                                       << "h:0";
}

// The attempt's trace line names what was parsed; no attempt is awaited.
void tst_TcpServerConnector::hostAndPortFromText()
{
    QFETCH(QString, text);
    QFETCH(QString, address);
    TraceCapture trace;
    TcpServerConnector connector(text);
    connector.connectToServer();
    QCOMPARE(trace.lines().value(0), QStringLiteral("Try to connect to: ") + address);
}

void tst_TcpServerConnector::traceLinesFollowTheirClassBits_data()
{
    QTest::addColumn<quint32>("classes");
    QTest::addColumn<QStringList>("starts");
    QTest::newRow("connection changes only")
        << quint32(ErrorHandler::TraceConnection) << QStringList { "Try to connect to: " };
    QTest::newRow("socket errors only")
        << quint32(ErrorHandler::TraceCommands)
        << QStringList { "Error while connecting to: ", "Try to connect to: " };
}

void tst_TcpServerConnector::traceLinesFollowTheirClassBits()
{
    QFETCH(quint32, classes);
    QFETCH(QStringList, starts);
    QTcpServer probe;
    QVERIFY(probe.listen(QHostAddress::LocalHost, 0));
    const quint16 port = probe.serverPort();
    probe.close();

    TraceCapture trace;
    ErrorHandler::Instance()->setTraceClasses(classes);
    {
        TcpServerConnector connector(QStringLiteral("127.0.0.1"), port);
        connector.connectToServer();
        QTRY_VERIFY(trace.lines().size() >= starts.size());
        QTest::qWait(30);
    }
    for (int i = 0; i < trace.lines().size(); ++i)
        QVERIFY2(trace.lines().at(i).startsWith(starts.at(i % starts.size())),
            qPrintable(trace.lines().at(i)));
    if (classes == ErrorHandler::TraceConnection)
        QCOMPARE(trace.lines().size(), 1);
}

QTEST_GUILESS_MAIN(tst_TcpServerConnector)
#include "tst_tcpserverconnector.moc"
