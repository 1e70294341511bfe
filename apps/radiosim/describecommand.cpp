#include "commandline.h"
#include "commands.h"
#include "defaultdata.h"

#include <radiosim/datafiles/audiofile.h>
#include <radiosim/datafiles/pdwfile.h>
#include <radiosim/datafiles/resultdatafile.h>
#include <radiosim/datafiles/signalshapefile.h>
#include <radiosim/datafiles/symboldatafile.h>
#include <radiosim/datafiles/wavefilereader.h>
#include <radiosim/packages/signalpackagefile.h>
#include <radiosim/packages/signalpackagefolder.h>
#include <radiosim/platform/ovzip.h>
#include <radiosim/units/units.h>

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QMap>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <zlib.h>

#include <cstring>

using namespace Simulation;

namespace {

constexpr quint32 BlockHeaderMagic = 0xFB746572;

// CRC-32 of the whole file as stored, the checksum that descriptors carry; empty when the file
// cannot be read.
QString crc32Of(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    uLong crc = crc32(0L, Z_NULL, 0);
    while (!file.atEnd()) {
        const QByteArray chunk = file.read(1 << 16);
        crc = crc32(crc, reinterpret_cast<const Bytef *>(chunk.constData()), uInt(chunk.size()));
    }
    return QString::number(crc);
}

// The checksums of a descriptor's content sections by source kind ("SignalShape", "Audio"):
// the package reader passes over these sections, so they are read here.
QMap<QString, QString> descriptorChecksums(const QString &path)
{
    QMap<QString, QString> checksums;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return checksums;
    QXmlStreamReader reader(&file);
    if (!reader.readNextStartElement())
        return checksums;
    while (reader.readNextStartElement()) {
        const QString section = reader.name().toString();
        if (section != QLatin1String("SignalShape") && section != QLatin1String("Audio")) {
            reader.skipCurrentElement();
            continue;
        }
        while (reader.readNextStartElement()) {
            if (reader.name() == QLatin1String("Checksum"))
                checksums.insert(section, reader.readElementText());
            else
                reader.skipCurrentElement();
        }
    }
    return checksums;
}

class Describer
{
public:
    // False for a path that is none of the kinds known.
    bool describe(const QString &path, QString &error)
    {
        const QFileInfo info(path);
        if (!info.exists()) {
            error = QStringLiteral("%1: cannot be opened: No such file or directory").arg(path);
            return false;
        }
        if (info.isDir())
            return folder(path, error);
        const QString suffix = info.suffix().toLower();
        if (suffix == QLatin1String("xml"))
            return descriptor(path, QString());
        if (suffix == QLatin1String("zip"))
            return archive(path, error);
        if (suffix == QLatin1String("ssf") || suffix == QLatin1String("wav")
            || suffix == QLatin1String("sdf") || suffix == QLatin1String("rdf")
            || suffix == QLatin1String("pdw")) {
            return dataFile(path, suffix, QString());
        }
        error = QStringLiteral("%1: not a package, descriptor, zip archive or signal data file "
                               "(.ssf, .wav, .sdf, .rdf, .pdw)")
                    .arg(path);
        return false;
    }

private:
    bool folder(const QString &path, QString &error)
    {
        if (SignalPackageFolder::isValid(path))
            return package(path);
        QStringList packages;
        QDirIterator it(
            path, { QStringLiteral("Signal.xml") }, QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext())
            packages << QFileInfo(it.next()).path();
        packages.sort();
        if (packages.isEmpty()) {
            error = QStringLiteral("%1: holds no signal package").arg(path);
            return false;
        }
        printLine(QStringLiteral("library %1: %2 packages").arg(path).arg(packages.size()));
        for (const QString &folderPath : packages)
            package(folderPath);
        return true;
    }

    bool package(const QString &path)
    {
        const SignalPackage content = SignalPackageFolder::signalPackage(path);
        printLine(QStringLiteral("package %1").arg(path));
        printLine(QStringLiteral("  name (the folder's): %1").arg(content.name()));
        printLine(
            QStringLiteral("  content: shape%1%2%3")
                .arg(content.hasAudioContent() ? QStringLiteral(", audio") : QString(),
                    content.hasSymbolDataContent() ? QStringLiteral(", symbol data") : QString(),
                    content.hasResultDataContent() ? QStringLiteral(", result data") : QString()));
        const QString descriptorPath = SignalPackageFolder::signalFilePath(path);
        descriptor(descriptorPath, QStringLiteral("  "));
        const QMap<QString, QString> checksums = descriptorChecksums(descriptorPath);
        const QList<QPair<QString, QString>> files = {
            { SignalPackageFolder::signalShapeFilePath(path), checksums.value("SignalShape") },
            { SignalPackageFolder::audioFilePath(path), checksums.value("Audio") },
            { SignalPackageFolder::symbolDataFilePath(path), QString() },
            { SignalPackageFolder::resultDataFilePath(path), QString() },
        };
        for (const auto &file : files) {
            if (QFileInfo::exists(file.first))
                dataFile(file.first, QFileInfo(file.first).suffix(), file.second);
        }
        return true;
    }

    bool descriptor(const QString &path, const QString &indent)
    {
        const SignalPackage package = SignalPackageFile::signalPackage(path);
        const auto field = [&indent](const QString &name, const QString &value) {
            printLine(QStringLiteral("%1  %2: %3").arg(indent, name, value));
        };
        printLine(QStringLiteral("%1descriptor %2").arg(indent, path));
        field(QStringLiteral("id"), package.id());
        if (!package.updateIds().isEmpty())
            field(QStringLiteral("update ids"), package.updateIds().join(QStringLiteral(", ")));
        field(QStringLiteral("name"), package.name());
        field(QStringLiteral("author"), package.author());
        field(QStringLiteral("timestamp"),
            QStringLiteral("%1 (%2)")
                .arg(package.timestamp())
                .arg(QDateTime::fromSecsSinceEpoch(package.timestamp(), Qt::UTC)
                         .toString(Qt::ISODate)));
        field(QStringLiteral("bandwidth"), Units::Frequency::toString(package.signalBandwidth()));
        field(QStringLiteral("modulation"),
            package.hasDigitalModulation() ? package.digitalModulation()
                                           : analogModulationToString(package.analogModulation()));
        field(QStringLiteral("duration"), QStringLiteral("%1 ms").arg(package.duration()));
        const QMap<QString, QString> checksums = descriptorChecksums(path);
        for (auto it = checksums.cbegin(); it != checksums.cend(); ++it)
            field(it.key() + QStringLiteral(" checksum"), it.value());
        return true;
    }

    bool archive(const QString &path, QString &error)
    {
        OvZip::Archive zip(path);
        QTemporaryDir unpacked;
        if (!zip.open(OvZip::Archive::ZipRead) || !unpacked.isValid()) {
            error = QStringLiteral("%1: cannot be opened as a zip archive").arg(path);
            return false;
        }
        const QStringList entries = zip.files();
        printLine(QStringLiteral("archive %1: %2 entries").arg(path).arg(entries.size()));
        for (const QString &entry : entries)
            printLine(QStringLiteral("  ") + entry);
        // The packages inside are described from a copy unpacked aside.
        zip.extractToFolder(unpacked.path());
        zip.close();
        QString inner;
        folder(unpacked.path(), inner);
        return true;
    }

    bool dataFile(const QString &path, const QString &suffix, const QString &expectedChecksum)
    {
        const QString checksum = crc32Of(path);
        QString check;
        if (!expectedChecksum.isEmpty()) {
            check = expectedChecksum == checksum
                ? QStringLiteral(", as the descriptor says")
                : QStringLiteral(", the descriptor says %1").arg(expectedChecksum);
        }
        printLine(QStringLiteral("  %1: %2 bytes, CRC-32 %3%4")
                      .arg(path)
                      .arg(QFileInfo(path).size())
                      .arg(checksum, check));
        const auto field = [](const QString &text) { printLine(QStringLiteral("    ") + text); };
        if (suffix == QLatin1String("ssf")) {
            SignalShapeFile shape(path);
            if (!shape.open())
                return refused(QStringLiteral("signal shape"));
            shape.setPackageDuration(shape.duration());
            shape.readSpectrum(0);
            field(QStringLiteral("signal shape, version %1").arg(shape.version()));
            field(QStringLiteral("bandwidth %1, base power %2")
                      .arg(Units::Frequency::toString(shape.bandwidth()))
                      .arg(shape.basePower()));
            field(QStringLiteral("%1 records of %2 bins, %3 a second: %4 ms")
                      .arg(shape.recordCount())
                      .arg(shape.binsPerRecord())
                      .arg(shape.recordsPerSecond())
                      .arg(shape.duration()));
            field(QStringLiteral("first record: levels %1 and %2")
                      .arg(shape.maxLevelInSpectrum())
                      .arg(shape.signalLevelInSpectrum()));
        } else if (suffix == QLatin1String("wav")) {
            WaveFileReader wave(path);
            if (!wave.open())
                return refused(QStringLiteral("wave"));
            const WaveFileReader::Format &format = wave.format();
            field(QStringLiteral("wave: %1 channel(s), %2 Hz, %3 bits, %4 bytes a frame")
                      .arg(format.channels)
                      .arg(format.sampleRate)
                      .arg(format.bitsPerSample)
                      .arg(format.blockAlign));
            field(QStringLiteral("%1 frames: %2 ms")
                      .arg(wave.length())
                      .arg(format.sampleRate ? quint64(wave.length()) * 1000 / format.sampleRate
                                             : 0));
            field(QStringLiteral("%1 cue points").arg(wave.cuePoints().size()));
            for (const WaveFileReader::CuePoint &cue : wave.cuePoints()) {
                field(QStringLiteral("  cue %1 at frame %2%3")
                          .arg(cue.id)
                          .arg(cue.sampleOffset)
                          .arg(cue.label.isEmpty() ? QString() : QStringLiteral(": ") + cue.label));
            }
            AudioFile audio(path);
            field(audio.open() ? QStringLiteral("playable as package audio (mono, 32000 Hz)")
                               : QStringLiteral("not playable as package audio, which is mono at "
                                                "32000 Hz"));
        } else if (suffix == QLatin1String("sdf")) {
            SymbolDataFile symbols(path);
            if (!symbols.open())
                return refused(QStringLiteral("symbol data"));
            field(QStringLiteral("symbol data: %1 symbols a second, valency %2, %3 ms")
                      .arg(symbols.symbolRate())
                      .arg(symbols.symbolValency())
                      .arg(symbols.length()));
        } else if (suffix == QLatin1String("rdf")) {
            ResultDataFile results(path);
            if (!results.open())
                return refused(QStringLiteral("result data"));
            field(QStringLiteral("result data, constant rate: %1 ms").arg(results.length()));
        } else {
            pdw(path);
        }
        return true;
    }

    void pdw(const QString &path)
    {
        PDWFile file(path, false, false);
        quint64 records = 0;
        quint64 blocks = 0;
        CPackedPDW record;
        while (file.getPDW(&record) == 32) {
            quint32 first = 0;
            std::memcpy(&first, record.bytes, sizeof first);
            if (first == BlockHeaderMagic)
                ++blocks;
            else
                ++records;
        }
        // The read behind the last record still answers, with zeros or a partial record.
        records = records > 0 ? records - 1 : 0;
        printLine(QStringLiteral("    pulse descriptor words: %1 records of 32 bytes in %2 blocks")
                      .arg(records)
                      .arg(blocks));
    }

    static bool refused(const QString &kind)
    {
        printLine(QStringLiteral("    not a readable %1 file").arg(kind));
        return true;
    }
};

} // namespace

int runDescribe(const QStringList &arguments)
{
    CommandLine commandLine(QStringLiteral("describe"), QStringLiteral("describe [PATH]"),
        QStringLiteral("Shows what a signal package folder, a library of them, a descriptor, a "
                       "zip archive or a signal data file holds: header fields, format, length, "
                       "cue points, record counts, and the CRC-32 of each data file beside the "
                       "checksum its descriptor gives. Without PATH, the built-in default "
                       "signal library."));
    commandLine.parser().addPositionalArgument(QStringLiteral("PATH"),
        QStringLiteral("A package folder, a folder of packages, Signal.xml, a .zip archive, or "
                       "a .ssf, .wav, .sdf, .rdf or .pdw file."));
    if (!commandLine.parse(arguments, 1))
        return commandLine.status();
    DefaultLibrary library;
    QString path = commandLine.positional(0);
    QString error;
    if (path.isEmpty()) {
        if (!library.prepare(error))
            return commandLine.fail(error);
        path = library.libraryFolder();
    }
    Describer describer;
    if (!describer.describe(path, error))
        return commandLine.fail(error);
    return ExitOk;
}
