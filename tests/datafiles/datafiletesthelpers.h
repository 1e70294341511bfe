#pragma once

// Byte builders for hand-made data files, and short text forms of what the readers deliver.

#include "testhelpers.h"

#include <QStringList>
#include <QTemporaryDir>
#include <QtEndian>

#include <vector>

// value as little-endian bytes.
template <typename T> QByteArray le(T value)
{
    QByteArray bytes(int(sizeof(T)), Qt::Uninitialized);
    qToLittleEndian(value, bytes.data());
    return bytes;
}

// A RIFF chunk: identifier, size, payload and the pad byte of an odd size.
inline QByteArray chunk(const QByteArray &id, const QByteArray &payload)
{
    return id + le<quint32>(quint32(payload.size())) + payload
        + (payload.size() % 2 ? QByteArray(1, '\0') : QByteArray());
}

inline QByteArray wave(const QByteArray &chunks)
{
    return chunk("RIFF", "WAVE" + chunks);
}

inline QByteArray fmt(quint16 tag, quint16 channels, quint32 rate, quint16 align, quint16 bits)
{
    return chunk("fmt ",
        le(tag) + le(channels) + le(rate) + le(quint32(rate * align)) + le(align) + le(bits));
}

// Mono, 16 bit, 32000 Hz; frame f holds f & 0x7fff.
inline QByteArray rampWave(quint32 frames)
{
    QByteArray data;
    for (quint32 frame = 0; frame < frames; ++frame)
        data += le<qint16>(qint16(frame & 0x7fff));
    return wave(fmt(1, 1, 32000, 2, 16) + chunk("data", data));
}

// A path in a folder that lives as long as the test program.
inline QString scratch(const QString &name)
{
    static const QTemporaryDir dir;
    return dir.filePath(name);
}

// Runs of consecutive values as "first-last", so "0-98" or "990-999,0-9".
template <typename Values> QString runs(const Values &values)
{
    QStringList parts;
    for (size_t i = 0; i < size_t(values.size());) {
        size_t last = i;
        while (last + 1 < size_t(values.size()) && values[last + 1] == values[last] + 1)
            ++last;
        parts << (last == i ? QString::number(values[i])
                            : QStringLiteral("%1-%2").arg(values[i]).arg(values[last]));
        i = last + 1;
    }
    return parts.join(QLatin1Char(','));
}

// Symbol i is i mod 256, item i the 16-bit number i.
inline QByteArray symbolFile(quint64 count, float rate, quint32 version = 0, char payloadType = 0)
{
    QByteArray bytes = "V&H-SDF" + le(version) + QByteArray(16, 'r') + char(4) + payloadType
        + le(rate) + le(count);
    for (quint64 i = 0; i < count; ++i)
        bytes += char(i);
    return bytes;
}

inline QByteArray resultFile(
    quint64 count, float rate, const QByteArray &magic = "V&H-RDF", char payloadType = 0)
{
    QByteArray bytes
        = magic + le<quint32>(0) + payloadType + le(rate) + le(count) + le<quint32>(77);
    for (quint64 i = 0; i < count; ++i)
        bytes += le(quint16(i));
    return bytes;
}

// A signal shape file: record r holds the levels levels(r) and the bins r + b / 10.
template <typename Levels>
QByteArray shapeFile(quint64 records, quint32 perSecond, quint32 bins, Levels levels,
    quint32 version = 2, const QByteArray &magic = "V&H-SSF")
{
    QByteArray bytes = magic + le(version) + le<quint32>(10000) + le(2e-14f) + le(records)
        + le(perSecond) + le(bins);
    for (quint64 r = 0; r < records; ++r) {
        const QPair<float, float> pair = levels(r);
        bytes += le<quint64>(r * 100000000) + le(pair.first) + le(pair.second);
        for (quint32 b = 0; b < bins; ++b)
            bytes += le(float(r) + float(b) / 10.0f);
    }
    return bytes;
}
