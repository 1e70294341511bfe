#include "servicetesthelpers.h"

#include <radiosim/service/tcpserverconnector.h>

using namespace Simulation;

class tst_TcpServerConnector : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reconnectsAfterDisconnectAndServerRestart();
    void hostAndPortFromText_data();
    void hostAndPortFromText();
    void unreachableServerIsRetriedWithTraceLines_data();
    void unreachableServerIsRetriedWithTraceLines();
};

// The signal comes before the trace line of the same event. Deliberately no way to stay away:
// only destroying the connector ends the connection, and a server gone is retried without pause.
void tst_TcpServerConnector::reconnectsAfterDisconnectAndServerRestart()
{
    TraceCapture trace;
    QTcpServer server;
    QVERIFY(server.listen(QHostAddress::LocalHost, 0));
    const quint16 port = server.serverPort();
    const QString address = QString("127.0.0.1:%1").arg(port);
    TcpServerConnector connector(address);
    QSignalSpy connected(&connector, &TcpServerConnector::connectedToServer);
    QSignalSpy disconnected(&connector, &TcpServerConnector::disconnectedFromServer);
    int linesAtSignal = -1;
    connect(&connector, &TcpServerConnector::connectedToServer, this,
        [&]() { linesAtSignal = trace.lines.size(); });
    connector.connectToServer();
    QVERIFY(!connector.isConnected());
    QTRY_VERIFY(connector.isConnected());
    QCOMPARE(linesAtSignal, 1);
    QCOMPARE(
        trace.lines, QStringList({ "Try to connect to: " + address, "Connected to: " + address }));

    connector.disconnectFromServer();
    QTRY_COMPARE(disconnected.count(), 1);
    QTRY_COMPARE(connected.count(), 2);

    QTRY_VERIFY(server.hasPendingConnections());
    trace.lines.clear();
    while (server.hasPendingConnections())
        delete server.nextPendingConnection();
    server.close();
    QTRY_COMPARE(disconnected.count(), 2);
    QTRY_VERIFY(trace.lines.contains("Disconneted from: " + address));
    QTRY_VERIFY(trace.lines.filter("Error while connecting to:").size() >= 2);
    QVERIFY(!connector.isConnected());

    QVERIFY(server.listen(QHostAddress::LocalHost, port));
    QTRY_COMPARE_WITH_TIMEOUT(connected.count(), 3, 10000);
    QVERIFY(connector.isConnected());
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
    QCOMPARE(trace.lines.value(0), "Try to connect to: " + address);
}

// Lines start as given, in turn; %1 is the address.
void tst_TcpServerConnector::unreachableServerIsRetriedWithTraceLines_data()
{
    QTest::addColumn<quint32>("classes");
    QTest::addColumn<QStringList>("starts");
    QTest::addColumn<int>("awaited");
    const QString attempt = "Try to connect to: %1";
    const QString error = "Error while connecting to: %1; ";
    QTest::newRow("both") << quint32(ErrorHandler::TraceConnection | ErrorHandler::TraceCommands)
                          << QStringList { attempt, error } << 5;
    QTest::newRow("connection changes only")
        << quint32(ErrorHandler::TraceConnection) << QStringList { attempt } << 1;
    QTest::newRow("socket errors only")
        << quint32(ErrorHandler::TraceCommands) << QStringList { error, attempt } << 3;
}

// A refusal is no disconnection.
void tst_TcpServerConnector::unreachableServerIsRetriedWithTraceLines()
{
    QFETCH(quint32, classes);
    QFETCH(QStringList, starts);
    QFETCH(int, awaited);
    QTcpServer probe;
    QVERIFY(probe.listen(QHostAddress::LocalHost, 0));
    const QString address = QString("127.0.0.1:%1").arg(probe.serverPort());
    probe.close();

    TraceCapture trace;
    ErrorHandler::Instance()->setTraceClasses(classes);
    {
        TcpServerConnector connector(address);
        QSignalSpy disconnected(&connector, &TcpServerConnector::disconnectedFromServer);
        connector.connectToServer();
        QTRY_VERIFY(trace.lines.size() >= awaited);
        QTest::qWait(30);
        QCOMPARE(disconnected.count(), 0);
    }
    for (int i = 0; i < trace.lines.size(); ++i)
        QVERIFY2(trace.lines.at(i).startsWith(starts.at(i % starts.size()).arg(address)),
            qPrintable(trace.lines.at(i)));
    if (classes == ErrorHandler::TraceConnection)
        QCOMPARE(trace.lines.size(), 1);
}

QTEST_GUILESS_MAIN(tst_TcpServerConnector)
#include "tst_tcpserverconnector.moc"
