#include "tcpserverconnector.h"

#include "servicetrace_p.h"

#include <QMetaObject>
#include <QTcpSocket>

namespace Simulation {

namespace {

QString tryToConnectText(const QString &host, quint16 port)
{
    return QStringLiteral("Try to connect to: %1:%2").arg(host).arg(port);
}

} // namespace

TcpServerConnector::TcpServerConnector(const QString &sHostAndPort)
    : TcpServerConnector(sHostAndPort.section(QLatin1Char(':'), 0, 0),
        quint16(sHostAndPort.section(QLatin1Char(':'), 1, 1).toInt()))
{
}

TcpServerConnector::TcpServerConnector(const QString &sHost, quint16 uiPort)
    : QObject(nullptr)
    , m_sHost(sHost)
    , m_uiPort(uiPort)
    , m_pSocket(new QTcpSocket(this))
{
    setUpSocket();
}

TcpServerConnector::~TcpServerConnector()
{
    m_pSocket->disconnectFromHost();
}

bool TcpServerConnector::isConnected() const
{
    return m_pSocket->state() == QAbstractSocket::ConnectedState;
}

QTcpSocket *TcpServerConnector::socket()
{
    return m_pSocket;
}

void TcpServerConnector::connectToServer()
{
    SERVICE_TRACE(ErrorHandler::TraceConnection, tryToConnectText(m_sHost, m_uiPort));
    QMetaObject::invokeMethod(this, "slotStartConnection", Qt::QueuedConnection);
}

void TcpServerConnector::disconnectFromServer()
{
    m_pSocket->disconnectFromHost();
}

void TcpServerConnector::slotConnected()
{
    Q_EMIT connectedToServer();
    SERVICE_TRACE(ErrorHandler::TraceConnection,
        QStringLiteral("Connected to: %1:%2").arg(m_sHost).arg(m_uiPort));
}

// An error on a working connection is left to the disconnected() path.
void TcpServerConnector::slotError()
{
    if (m_pSocket->state() == QAbstractSocket::ConnectedState)
        return;
    SERVICE_TRACE(ErrorHandler::TraceCommands,
        QStringLiteral("Error while connecting to: %1:%2; %3")
            .arg(m_sHost)
            .arg(m_uiPort)
            .arg(m_pSocket->errorString()));
    SERVICE_TRACE(ErrorHandler::TraceCommands, tryToConnectText(m_sHost, m_uiPort));
    QMetaObject::invokeMethod(this, "slotStartConnection", Qt::QueuedConnection);
}

void TcpServerConnector::slotDisconnected()
{
    SERVICE_TRACE(ErrorHandler::TraceConnection,
        QStringLiteral("Disconneted from: %1:%2").arg(m_sHost).arg(m_uiPort));
    Q_EMIT disconnectedFromServer();
    connectToServer();
}

void TcpServerConnector::slotStartConnection()
{
    m_pSocket->connectToHost(
        m_sHost, m_uiPort, QIODevice::ReadWrite, QAbstractSocket::AnyIPProtocol);
}

void TcpServerConnector::setUpSocket()
{
    connect(m_pSocket, &QTcpSocket::connected, this, &TcpServerConnector::slotConnected);
    connect(m_pSocket, &QAbstractSocket::errorOccurred, this, &TcpServerConnector::slotError);
    connect(m_pSocket, &QTcpSocket::disconnected, this, &TcpServerConnector::slotDisconnected);
}

// Kept empty: connection changes are written as trace lines at their place.
void TcpServerConnector::report(const QString &) const
{
}

} // namespace Simulation
