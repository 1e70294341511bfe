#pragma once

#include "feeddevice.h"

#include <radiosim/platform/trace.h>
#include <radiosim/service/simulationdevice.h>

#include <QCoreApplication>
#include <QIODevice>
#include <QStringList>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

// Collects the library's trace lines (message part only) while installed; other messages go
// to the previous handler.
struct TraceCapture
{
    TraceCapture()
    {
        lines.clear();
        previous = qInstallMessageHandler(&TraceCapture::handle);
        ErrorHandler::Instance()->setTraceClasses(
            ErrorHandler::TraceConnection | ErrorHandler::TraceCommands);
    }
    ~TraceCapture()
    {
        ErrorHandler::Instance()->setTraceClasses(0);
        qInstallMessageHandler(previous);
    }
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &message)
    {
        if (qstrcmp(context.category, "radiosim.trace") == 0)
            lines.append(message.section(QStringLiteral("): "), 1));
        else
            previous(type, context, message);
    }
    static inline QStringList lines;
    static inline QtMessageHandler previous = nullptr;
};

// Both ends of one loopback TCP connection.
struct SocketPair
{
    QTcpServer server;
    QTcpSocket client;
    QTcpSocket *accepted = nullptr;

    bool open()
    {
        if (!server.listen(QHostAddress::LocalHost, 0))
            return false;
        client.connectToHost(QHostAddress::LocalHost, server.serverPort());
        if (!client.waitForConnected(5000) || !server.waitForNewConnection(5000))
            return false;
        accepted = server.nextPendingConnection();
        return accepted != nullptr;
    }
};

inline Simulation::SimulationDeviceConfiguration sampleDevice(const QString &id)
{
    Simulation::SimulationDeviceConfiguration device;
    device.setId(id);
    device.setName(QStringLiteral("Receiver ") + id);
    device.setStationId(QStringLiteral("st-7"));
    device.setStationName(QStringLiteral("Hill & Dale <north>"));
    device.setMachine(QStringLiteral("host-a"));
    device.setMachineId(QStringLiteral("m-42"));
    device.setDeviceType(QStringLiteral("RX"));
    device.setPositionLongitude(8.5);
    device.setPositionLatitude(48.25);
    return device;
}

inline QString flatten(const Simulation::SimulationDeviceConfiguration &d)
{
    return QStringList { d.id(), d.name(), d.stationId(), d.stationName(), d.machine(),
        d.machineId(), d.deviceType(), QString::number(d.positionLongitude(), 'g', 17),
        QString::number(d.positionLatitude(), 'g', 17) }
        .join(QLatin1Char('|'));
}
