#pragma once

#include <radiosim/radiosim_export.h>

#include <QObject>
#include <QString>

class QTcpSocket;

namespace Simulation {

// Client side of the connection to a simulation server. Keeps trying for as long as it lives:
// after a failed attempt and after every disconnection the next attempt starts at once, with
// no pause but one turn of the event loop. disconnectFromServer() therefore reconnects too;
// destroying the connector is the way to end the connection for good.
class RADIOSIM_EXPORT TcpServerConnector : public QObject
{
    Q_OBJECT

public:
    // "host:port"; a text without a port gives port 0. Nothing is validated.
    explicit TcpServerConnector(const QString &sHostAndPort);
    TcpServerConnector(const QString &sHost, quint16 uiPort);
    ~TcpServerConnector() override;

    bool isConnected() const;
    // Owned by the connector.
    QTcpSocket *socket();

Q_SIGNALS:
    void connectedToServer();
    void disconnectedFromServer();

public Q_SLOTS:
    // Returns at once; the attempt starts from the event loop, so this is safe to call from a
    // slot of the socket's own signals.
    void connectToServer();
    void disconnectFromServer();

private Q_SLOTS:
    void slotConnected();
    void slotError();
    void slotDisconnected();
    void slotStartConnection();

private:
    void setUpSocket();
    void report(const QString &sText) const;

    QString m_sHost;
    quint16 m_uiPort = 0;
    QTcpSocket *m_pSocket = nullptr;
};

} // namespace Simulation
