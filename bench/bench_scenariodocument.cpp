// Reading and writing a large scenario document, against a bare QXmlStreamReader pass over the
// same bytes and a bare QXmlStreamWriter writing the same elements from plain structs, in the
// same run.
#include "../tests/documents/generatedscenario.h"

#include <radiosim/documents/scenariodataxml.h>
#include <radiosim/scenario/cast.h>

#include <benchmark/benchmark.h>

#include <QBuffer>
#include <QCoreApplication>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <malloc.h>

using namespace Simulation;

namespace {

constexpr int Emitters = 10000;
constexpr int Entries = 20;

const std::shared_ptr<SignalPackage> &package()
{
    static const std::shared_ptr<SignalPackage> defaultPackage = [] {
        auto p = std::make_shared<SignalPackage>();
        p->setId(QStringLiteral("/Default/Default"));
        return p;
    }();
    return defaultPackage;
}

const QSet<std::shared_ptr<ScenarioObject>> &objects()
{
    static const auto all = [] {
        // The objects hold each other; they are let go when the application ends.
        qAddPostRoutine([] { releaseScenario(objects()); });
        return generatedScenario(Emitters, Entries, 0, package());
    }();
    return all;
}

QByteArray write(ScenarioDataXml &document)
{
    QByteArray xml;
    QBuffer buffer(&xml);
    buffer.open(QIODevice::WriteOnly);
    document.toXml(&buffer);
    return xml;
}

const QByteArray &document()
{
    static const QByteArray xml = [] {
        ScenarioDataXml data(nullptr);
        data.setName(QStringLiteral("Generated"));
        data.setPersistantId(QStringLiteral("Generated-0-0"));
        data.setDuration(600000);
        data.setScenarioObjects(objects());
        return write(data);
    }();
    return xml;
}

// The document's content as an application might keep it without the model.
struct PlainPoint
{
    double lon, lat;
    uint dwell, transition;
    bool major;
    double speed;
    QString name;
};

struct PlainEntry
{
    qint64 start, duration;
};

struct PlainEmitter
{
    QString id, name, description, emitterClass, antennaType;
    bool active;
    float power, gain, height, direction;
    double frequency;
    bool broadcast;
    qint64 period;
    QVector<PlainEntry> entries;
    QString package;
    int endBehaviour;
    QVector<PlainPoint> points;
    double lon, lat;
};

QVector<PlainEmitter> plainEmitters()
{
    QVector<PlainEmitter> result;
    for (const auto &emitter : Cast::emitter(objects())) {
        const TransmitterSettings *tx = emitter->getTranmitterSettings();
        const EmissionSettings *timetable = emitter->emissionSettings();
        PlainEmitter plain { emitter->id(), emitter->name(), emitter->description(),
            emitter->getClass(), tx->getAntennaType(), emitter->isActive(), tx->getPower(),
            tx->getAntennaGain(), tx->getAntennaHeight(), tx->getAntennaDirection(),
            emitter->getFrequencySettings()->getCenterFrequency(), timetable->isBroadcast(),
            timetable->duration(), {}, package()->id(), -1, {},
            emitter->getPositionSettings()->getPosition().lon,
            emitter->getPositionSettings()->getPosition().lat };
        for (const auto &emission : timetable->emissions())
            plain.entries.append({ emission->start, emission->duration });
        if (const auto *route
            = dynamic_cast<const PositionSettingsPtp *>(emitter->getPositionSettings())) {
            plain.endBehaviour = route->getEndBehavior();
            for (const MovementPoint &p : route->getMovments())
                plain.points.append({ p.position.lon, p.position.lat, p.dwellTime, p.transitionTime,
                    p.major, p.speed, p.name });
        }
        result.append(plain);
    }
    return result;
}

QString number(double value)
{
    return QString::number(value, 'g', 6);
}

QString coordinate(double value)
{
    return QString::number(value, 'g', 14);
}

QString truth(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

void writeCoordinate(QXmlStreamWriter &w, double lon, double lat)
{
    w.writeTextElement(QStringLiteral("Lon"), coordinate(lon));
    w.writeTextElement(QStringLiteral("Lat"), coordinate(lat));
}

void writePlain(QIODevice *device, const QVector<PlainEmitter> &emitters)
{
    static const char *const ends[] = { "STOP", "RESTART", "INACTIVE" };
    QXmlStreamWriter w(device);
    w.setAutoFormatting(true);
    w.writeStartDocument();
    w.writeStartElement(QStringLiteral("Scenario"));
    w.writeAttribute(QStringLiteral("FileFormatVersion"), QString::number(4));
    w.writeAttribute(QStringLiteral("Name"), QStringLiteral("Generated"));
    w.writeAttribute(QStringLiteral("Author"), QString());
    w.writeAttribute(QStringLiteral("Uid"), QStringLiteral("Generated-0-0"));
    w.writeAttribute(QStringLiteral("Duration"), QString::number(600000));
    w.writeTextElement(QStringLiteral("Description"), QString());
    w.writeStartElement(QStringLiteral("NoiseSettings"));
    for (const auto &[tag, value] :
        { std::pair<const char *, double> { "Density", -35 }, { "Deviation", -45 },
            { "FrequencyDependentDensity", -35 }, { "FrequencyDependentGranularity", 0.4 },
            { "FrequencyDependentVariability", 0 }, { "AzimuthErrorDeviation", 1 } })
        w.writeTextElement(QLatin1String(tag), number(value));
    w.writeEndElement();
    for (const PlainEmitter &e : emitters) {
        w.writeStartElement(QStringLiteral("Emitter"));
        w.writeAttribute(QStringLiteral("ID"), e.id);
        w.writeAttribute(QStringLiteral("Name"), e.name);
        w.writeAttribute(QStringLiteral("Active"), truth(e.active));
        w.writeTextElement(QStringLiteral("Description"), e.description);
        w.writeTextElement(QStringLiteral("Class"), e.emitterClass);
        w.writeStartElement(QStringLiteral("Transmitter"));
        w.writeTextElement(QStringLiteral("Power"), number(e.power));
        w.writeStartElement(QStringLiteral("Antenna"));
        w.writeAttribute(QStringLiteral("Type"), e.antennaType);
        w.writeTextElement(QStringLiteral("Gain"), number(e.gain));
        w.writeTextElement(QStringLiteral("HeightOverGround"), number(e.height));
        w.writeTextElement(QStringLiteral("Direction"), number(e.direction));
        w.writeEndElement();
        w.writeEndElement();
        w.writeStartElement(QStringLiteral("Frequency"));
        w.writeTextElement(QStringLiteral("Fixed"), number(e.frequency));
        w.writeEndElement();
        w.writeStartElement(QStringLiteral("EmissionSettings"));
        w.writeAttribute(QStringLiteral("Broadcast"), truth(e.broadcast));
        w.writeAttribute(QStringLiteral("Duration"), QString::number(e.period));
        for (int i = 0; i < e.entries.size(); ++i) {
            w.writeEmptyElement(QStringLiteral("Emission"));
            w.writeAttribute(QStringLiteral("ID"), QString::number(i));
            w.writeAttribute(QStringLiteral("StartTime"), QString::number(e.entries[i].start));
            w.writeAttribute(QStringLiteral("Duration"), QString::number(e.entries[i].duration));
            w.writeAttribute(QStringLiteral("Emitter"), e.id);
            w.writeAttribute(QStringLiteral("SignalPackage"), e.package);
        }
        w.writeEmptyElement(QStringLiteral("Groups"));
        w.writeEndElement();
        w.writeStartElement(QStringLiteral("Position"));
        if (e.points.isEmpty()) {
            w.writeStartElement(QStringLiteral("Fixed"));
            writeCoordinate(w, e.lon, e.lat);
        } else {
            w.writeStartElement(QStringLiteral("Movement"));
            w.writeAttribute(QStringLiteral("EndBehavior"), QLatin1String(ends[e.endBehaviour]));
            for (const PlainPoint &p : e.points) {
                w.writeStartElement(QStringLiteral("Position"));
                w.writeAttribute(QStringLiteral("DWellTime"), QString::number(p.dwell));
                w.writeAttribute(QStringLiteral("TransitionTime"), QString::number(p.transition));
                w.writeAttribute(QStringLiteral("Major"), truth(p.major));
                if (p.major) {
                    w.writeAttribute(QStringLiteral("Speed"), number(p.speed));
                    w.writeAttribute(QStringLiteral("Name"), p.name);
                }
                writeCoordinate(w, p.lon, p.lat);
                w.writeEndElement();
            }
        }
        w.writeEndElement();
        w.writeEndElement();
        w.writeEndElement();
    }
    w.writeEndElement();
    w.writeEndDocument();
}

void BM_BareRead(benchmark::State &state)
{
    const QByteArray &xml = document();
    qint64 visited = 0;
    for (auto _ : state) {
        QBuffer buffer;
        buffer.setData(xml);
        buffer.open(QIODevice::ReadOnly);
        QXmlStreamReader reader(&buffer);
        while (!reader.atEnd()) {
            switch (reader.readNext()) {
            case QXmlStreamReader::StartElement:
                visited += reader.name().size();
                for (const QXmlStreamAttribute &attribute : reader.attributes())
                    visited += attribute.value().size();
                break;
            case QXmlStreamReader::Characters:
                visited += reader.text().size();
                break;
            default:
                break;
            }
        }
    }
    benchmark::DoNotOptimize(visited);
    state.SetBytesProcessed(state.iterations() * xml.size());
    state.counters["document_bytes"] = xml.size();
}

void BM_Read(benchmark::State &state)
{
    const QByteArray &xml = document();
    FakeProvider provider;
    for (auto _ : state) {
        auto data = std::make_unique<ScenarioDataXml>(&provider);
        data->fromXml(xml);
        state.PauseTiming();
        releaseScenario(data->scenarioObjects());
        data.reset();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * xml.size());

    // Heap in use for one loaded document, per emitter.
    const size_t before = mallinfo2().uordblks;
    auto data = std::make_unique<ScenarioDataXml>(&provider);
    data->fromXml(xml);
    const size_t after = mallinfo2().uordblks;
    state.counters["bytes_per_emitter"] = double(after - before) / Emitters;
    releaseScenario(data->scenarioObjects());
}

void BM_BareWrite(benchmark::State &state)
{
    const QVector<PlainEmitter> emitters = plainEmitters();
    qint64 bytes = 0;
    for (auto _ : state) {
        QByteArray xml;
        QBuffer buffer(&xml);
        buffer.open(QIODevice::WriteOnly);
        writePlain(&buffer, emitters);
        bytes = xml.size();
    }
    if (bytes != document().size())
        state.SkipWithError("the plain writer writes another document");
    state.SetBytesProcessed(state.iterations() * bytes);
}

void BM_Write(benchmark::State &state)
{
    ScenarioDataXml data(nullptr);
    data.setName(QStringLiteral("Generated"));
    data.setPersistantId(QStringLiteral("Generated-0-0"));
    data.setDuration(600000);
    data.setScenarioObjects(objects());
    qint64 bytes = 0;
    for (auto _ : state)
        bytes = write(data).size();
    state.SetBytesProcessed(state.iterations() * bytes);
}

} // namespace

BENCHMARK(BM_BareRead)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Read)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BareWrite)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Write)->Unit(benchmark::kMillisecond);
