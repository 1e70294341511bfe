#include "servicetesthelpers.h"

#include <radiosim/service/tcpserverconnector.h>

using namespace Simulation;

class tst_TcpServerConnector : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reconnectsAfterDisconnectAndServerRestart();
    void hostAndPortFromText();
    void unreachableServerIsRetriedWithTraceLines();
};

// Deliberately no way to stay away: only destroying the connector ends the connection, and a
// server gone is retried without pause.
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
    connector.connectToServer();
    QVERIFY(!connector.isConnected());
    QTRY_VERIFY(connector.isConnected());
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
}

// The attempt's trace line names what was parsed; no attempt is awaited.
void tst_TcpServerConnector::hostAndPortFromText()
{
    TraceCapture trace;
    for (const QString text : { "serverhost", "a:1:2" })
        TcpServerConnector(text).connectToServer();
    QCOMPARE(
        trace.lines, QStringList({ "Try to connect to: serverhost:0", "Try to connect to: a:1" }));
}

// A refusal is no disconnection. Only the first attempt is a connection line; refusals and the
// attempts that follow them are command lines.
void tst_TcpServerConnector::unreachableServerIsRetriedWithTraceLines()
{
    QTcpServer probe;
    QVERIFY(probe.listen(QHostAddress::LocalHost, 0));
    const QString address = QString("127.0.0.1:%1").arg(probe.serverPort());
    probe.close();
    const QString attempt = "Try to connect to: " + address;
    for (const quint32 classes : { ErrorHandler::TraceConnection, ErrorHandler::TraceCommands }) {
        TraceCapture trace;
        ErrorHandler::Instance()->setTraceClasses(classes);
        {
            TcpServerConnector connector(address);
            QSignalSpy disconnected(&connector, &TcpServerConnector::disconnectedFromServer);
            connector.connectToServer();
            QSignalSpy refused(connector.socket(), &QAbstractSocket::errorOccurred);
            QTRY_VERIFY(refused.count() >= 2);
            QCOMPARE(disconnected.count(), 0);
        }
        if (classes == ErrorHandler::TraceConnection) {
            QCOMPARE(trace.lines, QStringList { attempt });
            continue;
        }
        QVERIFY(trace.lines.size() >= 4);
        for (int i = 0; i < trace.lines.size(); ++i)
            QVERIFY2(trace.lines.at(i).startsWith(
                         i % 2 ? attempt : "Error while connecting to: " + address + "; "),
                qPrintable(trace.lines.at(i)));
    }
}

QTEST_GUILESS_MAIN(tst_TcpServerConnector)
#include "tst_tcpserverconnector.moc"
