#pragma once

// Package folders and repositories written by the tests, with data files that tell their
// package apart: shape bin 0 and every audio sample hold the package's number.

#include <radiosim/packages/signalpackage.h>

#include "datafiles/datafiletesthelpers.h"

#include <QDir>

// A hand-written descriptor with the given update ids.
inline QByteArray descriptor(const QString &id, const QStringList &updateIds = {})
{
    QByteArray xml = "<SignalPackage UID=\"" + id.toUtf8() + "\" Timestamp=\"7\">";
    for (const QString &updateId : updateIds)
        xml += "<UpdateID UID=\"" + updateId.toUtf8() + "\"/>";
    return xml + "<MetaData><Name>N</Name></MetaData><Duration>3000</Duration></SignalPackage>";
}

inline QByteArray numberedShape(int number)
{
    return shapeFile(10, 10, 2, [](quint64) {
        return qMakePair(1.0f, 2.0f);
    }).replace(35 + 16, 4, le(float(number)));
}

inline QByteArray numberedAudio(int number)
{
    QByteArray data;
    for (int frame = 0; frame < 320; ++frame)
        data += le<qint16>(qint16(number));
    return wave(fmt(1, 1, 32000, 2, 16) + chunk("data", data));
}

inline QByteArray symbolData(quint64 count)
{
    return "V&H-SDF" + le<quint32>(0) + QByteArray(16, '\0') + char(2) + char(0) + le(10.0f)
        + le(count) + QByteArray(int(count), '\1');
}

inline QByteArray resultData(quint64 count)
{
    return "V&H-RDF" + le<quint32>(0) + char(0) + le(10.0f) + le(count) + le<quint32>(0)
        + QByteArray(int(2 * count), '\2');
}

// Writes a package folder: the descriptor, then the files named in contents among "ssf",
// "wav", "sdf" and "rdf", made for the package's number. False if a file could not be written.
inline bool writePackage(
    const QString &folder, const QByteArray &xml, int number, const QStringList &contents)
{
    if (!QDir().mkpath(folder) || writeFile(folder + "/Signal.xml", xml).isEmpty())
        return false;
    for (const QString &content : contents) {
        const QByteArray bytes = content == "ssf" ? numberedShape(number)
            : content == "wav"                    ? numberedAudio(number)
            : content == "sdf"                    ? symbolData(10 * quint64(number))
                                                  : resultData(10 * quint64(number));
        if (writeFile(folder + "/Signal." + content, bytes).isEmpty())
            return false;
    }
    return true;
}

// The names in folder, sorted, hidden ones too, folders with a trailing slash.
inline QString listing(const QString &folder)
{
    QStringList names;
    for (const QFileInfo &entry : QDir(folder).entryInfoList(
             QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden, QDir::Name))
        names << entry.fileName() + (entry.isDir() ? "/" : "");
    return names.join(' ');
}

// Every field of a package in one line: id, timestamp, update ids, name/author, bandwidth,
// modulations, duration, then the audio, symbol and result flags.
inline QString describe(const Simulation::SignalPackage &p)
{
    const auto number = [](auto value) { return QString::number(value); };
    return QStringList { p.id(), 't' + number(p.timestamp()), '[' + p.updateIds().join(',') + ']',
        p.name() + '/' + p.author(), "bw" + number(p.signalBandwidth()),
        'm' + number(p.analogModulation()), '\'' + p.digitalModulation() + '\'',
        'd' + number(p.duration()),
        number(p.hasAudioContent()) + number(p.hasSymbolDataContent())
            + number(p.hasResultDataContent()) }
        .join(' ');
}
