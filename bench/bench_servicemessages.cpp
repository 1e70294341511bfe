// A 2 MB LoadScenario from the send call to the receiving end's signal over loopback TCP,
// uncompressed and compressed, against the same bytes through a bare socket pair in the same
// run; and the message writer against Qt's own on texts of growing size.
#include <radiosim/service/simulationservicecommunication.h>
#include <radiosim/service/xmlwriter_p.h>

#include <benchmark/benchmark.h>

#include <QDomDocument>
#include <QEventLoop>
#include <QFile>
#include <QTcpServer>
#include <QTcpSocket>

using Simulation::SimulationServiceCommunication;

namespace {

constexpr int ScenarioSize = 2 * 1024 * 1024;

// The default scenario repeated to 2 MB: markup all through, as a large scenario has.
const QByteArray &scenario()
{
    static const QByteArray data = [] {
        QFile file(QStringLiteral(":/DefaultData/Default.sce.exp"));
        file.open(QIODevice::ReadOnly);
        const QByteArray one = file.readAll();
        QByteArray all;
        while (all.size() < ScenarioSize)
            all += one;
        return all.left(ScenarioSize);
    }();
    return data;
}

struct Loopback
{
    QTcpServer server;
    QTcpSocket client;
    QTcpSocket *accepted = nullptr;

    Loopback()
    {
        server.listen(QHostAddress::LocalHost, 0);
        client.connectToHost(QHostAddress::LocalHost, server.serverPort());
        client.waitForConnected(5000);
        server.waitForNewConnection(5000);
        accepted = server.nextPendingConnection();
    }
};

void loadScenario(benchmark::State &state, bool bCompression)
{
    Loopback loopback;
    SimulationServiceCommunication sender(&loopback.client);
    SimulationServiceCommunication receiver(loopback.accepted);
    sender.setCompression(bCompression);
    receiver.setCompression(bCompression);
    QEventLoop loop;
    qint64 received = 0;
    QObject::connect(
        &receiver, &SimulationServiceCommunication::loadScenario, [&](const QByteArray &data) {
            received = data.size();
            loop.quit();
        });
    for (auto _ : state) {
        sender.sendLoadScenario(scenario());
        loop.exec();
    }
    if (received != scenario().size())
        state.SkipWithError("scenario damaged on the way");
    state.SetBytesProcessed(state.iterations() * scenario().size());
}

void BM_LoadScenarioUncompressed(benchmark::State &state)
{
    loadScenario(state, false);
}

void BM_LoadScenarioCompressed(benchmark::State &state)
{
    loadScenario(state, true);
}

// The baseline: the same bytes written to one socket and read whole from the other.
void BM_BareSocketTransfer(benchmark::State &state)
{
    Loopback loopback;
    QEventLoop loop;
    QByteArray received;
    QObject::connect(loopback.accepted, &QIODevice::readyRead, [&]() {
        received += loopback.accepted->readAll();
        if (received.size() == scenario().size())
            loop.quit();
    });
    for (auto _ : state) {
        received.clear();
        loopback.client.write(scenario());
        loop.exec();
    }
    state.SetBytesProcessed(state.iterations() * scenario().size());
}

QDomDocument messageDocument(int size)
{
    QDomDocument document;
    QDomElement root = document.createElement(QStringLiteral("Command"));
    document.appendChild(root);
    QDomElement message = document.createElement(QStringLiteral("LoadScenario"));
    root.appendChild(message);
    QDomElement data = document.createElement(QStringLiteral("ScenarioData"));
    message.appendChild(data);
    data.appendChild(document.createTextNode(QString::fromLatin1(scenario().left(size))));
    return document;
}

void BM_QtWriter(benchmark::State &state)
{
    const QDomDocument document = messageDocument(int(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(document.toByteArray(4));
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void BM_OurWriter(benchmark::State &state)
{
    const QDomDocument document = messageDocument(int(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(Simulation::domToByteArray(document));
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

} // namespace

BENCHMARK(BM_BareSocketTransfer)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadScenarioUncompressed)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_LoadScenarioCompressed)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_QtWriter)
    ->RangeMultiplier(4)
    ->Range(16 << 10, 256 << 10)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(BM_OurWriter)
    ->RangeMultiplier(4)
    ->Range(16 << 10, 2 << 20)
    ->Unit(benchmark::kMillisecond);
