#include "scenariodatabinary.h"

#include <QBuffer>
#include <QDataStream>

namespace Simulation {

namespace {

const QString NoLinkTarget = QStringLiteral("%%NONE%%");

// The smallest record the reader takes: six empty strings of a 32-bit length each and a flag.
constexpr qint64 SmallestRecord = 6 * 4 + 1;
// Records a stream lacks that still make emitters.
constexpr qint64 MissingRecordsKept = 1024;

} // namespace

ScenarioDataBinary::ScenarioDataBinary(ISignalPackageProvider *provider)
    : m_provider(provider)
{
}

void ScenarioDataBinary::toBinary(QIODevice *device)
{
    if (!device || !device->isWritable())
        return;
    QDataStream stream(device);
    stream << qint32(m_emitters.size());
    for (const auto &emitter : qAsConst(m_emitters))
        writeEmitter(stream, emitter);
}

QByteArray ScenarioDataBinary::toBinary()
{
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    toBinary(&buffer);
    return data;
}

void ScenarioDataBinary::fromBinary(QIODevice *device)
{
    // Unopened, the device has nothing to give: the count would read as 0.
    if (!device || !device->isReadable())
        return;
    QDataStream stream(device);
    qint32 count = 0;
    stream >> count;
    // Records the stream lacks still make emitters of empty strings, but a damaged count must
    // not make millions: no more than the remaining bytes could hold, and some more.
    const qint64 possible
        = qMax<qint64>(device->bytesAvailable(), 0) / SmallestRecord + MissingRecordsKept;
    const qint64 records = qMin<qint64>(count, possible);
    for (qint64 i = 0; i < records; ++i)
        m_emitters.insert(readEmitter(stream));
}

void ScenarioDataBinary::fromBinary(const QByteArray &data)
{
    QBuffer buffer;
    buffer.setData(data);
    fromBinary(&buffer);
}

std::shared_ptr<SzenarioEmitter> ScenarioDataBinary::readEmitter(QDataStream &stream)
{
    static QString text;
    static bool flag = false;
    stream >> text;
    const auto emitter = std::make_shared<SzenarioEmitter>(text, QString());
    stream >> text;
    emitter->setName(text);
    stream >> text;
    emitter->setDescription(text);
    stream >> flag;
    emitter->setActive(flag);
    stream >> text;
    emitter->setLinkTargetEmitter(emitterForId(text));
    stream >> text;
    stream >> text;
    emitter->setClass(text);
    return emitter;
}

void ScenarioDataBinary::writeEmitter(QDataStream &stream, std::shared_ptr<SzenarioEmitter> emitter)
{
    stream << emitter->id() << emitter->name() << emitter->description() << emitter->isActive()
           << (emitter == m_defaultEmitter)
           << (emitter->isLinked() ? emitter->linkTargetEmitter()->id() : NoLinkTarget)
           << emitter->getClass();
}

std::shared_ptr<SzenarioEmitter> ScenarioDataBinary::emitterForId(const QString &)
{
    return nullptr;
}

} // namespace Simulation
