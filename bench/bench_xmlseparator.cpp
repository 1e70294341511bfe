// Cutting a stream of protocol documents, delivery through the queued signal included, against
// a bare parse of the same documents with one reader in the same run.
#include "../tests/service/feeddevice.h"

#include <radiosim/service/simulationdevice.h>
#include <radiosim/service/xmlelement.h>
#include <radiosim/service/xmlseparator_p.h>

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QVector>
#include <QXmlStreamReader>

namespace {

constexpr int DocumentCount = 10000;
constexpr int SliceSize = 64 * 1024;

// State updates as the protocol writes them: the record travels as escaped text.
const QVector<QByteArray> &documents()
{
    static const QVector<QByteArray> all = [] {
        QVector<QByteArray> result;
        Simulation::SimulationDeviceState state;
        for (int i = 0; i < DocumentCount; ++i) {
            state.setScenarioDataState(Simulation::ScenarioDataState(i % 4));
            Simulation::XmlElement message(QStringLiteral("SimulationDeveiceStateUpdate"));
            message.setAttribute(QStringLiteral("Id"), QStringLiteral("device-%1").arg(i % 200));
            message.setChildText(QStringLiteral("State"), QString::fromUtf8(state.toXml({})));
            Simulation::XmlElement command(QStringLiteral("Command"));
            command.appendElement(message);
            result.append(command.toByteArray());
        }
        return result;
    }();
    return all;
}

QByteArray stream()
{
    QByteArray all;
    for (const QByteArray &document : documents())
        all += document;
    return all;
}

void BM_BareParse(benchmark::State &state)
{
    const QVector<QByteArray> &all = documents();
    const qint64 bytes = stream().size();
    QXmlStreamReader reader;
    for (auto _ : state) {
        for (const QByteArray &document : all) {
            reader.clear();
            reader.addData(document);
            while (!reader.atEnd())
                reader.readNext();
        }
    }
    state.SetItemsProcessed(state.iterations() * all.size());
    state.SetBytesProcessed(state.iterations() * bytes);
}

void BM_SeparatorCut(benchmark::State &state)
{
    const QByteArray all = stream();
    for (auto _ : state) {
        FeedDevice device;
        XmlSeparator separator(&device, nullptr);
        int received = 0;
        QObject::connect(&separator, &XmlSeparator::xmlReceived, [&received]() { ++received; });
        for (int at = 0; at < all.size(); at += SliceSize)
            device.feed(all.mid(at, SliceSize));
        while (received < DocumentCount)
            QCoreApplication::processEvents();
        benchmark::DoNotOptimize(received);
    }
    state.SetItemsProcessed(state.iterations() * DocumentCount);
    state.SetBytesProcessed(state.iterations() * all.size());
}

} // namespace

BENCHMARK(BM_BareParse)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SeparatorCut)->Unit(benchmark::kMillisecond);
