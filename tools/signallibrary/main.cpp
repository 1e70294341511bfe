// Writes the default signal library into the folder given as the only argument:
// "VuH-Default.zip" with the three default packages, "Default.zip" with the default package
// alone, and "signallibrary.qrc", which puts both under ":/DefaultData".
//
// It runs before the library is built, so it writes the descriptors itself.

#include <quazip/quazip.h>
#include <quazip/quazipfile.h>
#include <quazip/quazipnewinfo.h>

#include <QCoreApplication>
#include <QDataStream>
#include <QDateTime>
#include <QDir>
#include <QDomDocument>
#include <QSaveFile>
#include <QVector>

#include <zlib.h>

#include <cmath>
#include <cstdio>

namespace {

constexpr quint32 Timestamp = 1289821292; // seconds since 1970, as the library's packages say

struct Shape
{
    QString name;
    QVector<float> bins;
    float firstLevel;
    float secondLevel;
};

// One record 10 times a second for 10 s, all records alike.
QByteArray shapeFile(const Shape &shape)
{
    double sumOfSquares = 0.0;
    for (const float bin : shape.bins)
        sumOfSquares += double(bin) * bin;
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    out.setFloatingPointPrecision(QDataStream::SinglePrecision);
    const quint64 records = 100;
    out.writeRawData("V&H-SSF", 7);
    out << quint32(2) << quint32(10000) << float(2e-14 * sumOfSquares) << records << quint32(10)
        << quint32(shape.bins.size());
    for (quint64 record = 0; record < records; ++record) {
        out << record * 100000000 << shape.firstLevel << shape.secondLevel;
        for (const float bin : shape.bins)
            out << bin;
    }
    return bytes;
}

Shape gaussShape()
{
    Shape shape { QStringLiteral("gauss"), QVector<float>(512), 0.0f, 1.0f };
    double sumOfSquares = 0.0;
    for (int i = 0; i < shape.bins.size(); ++i) {
        shape.bins[i] = float(std::exp(-double((i - 256) * (i - 256)) / (2.0 * 40.0 * 40.0)));
        sumOfSquares += double(shape.bins[i]) * shape.bins[i];
    }
    shape.firstLevel = float(std::sqrt(sumOfSquares));
    return shape;
}

Shape rectShape()
{
    return { QStringLiteral("rect"), QVector<float>(256, 0.0625f), 0.0625f, 1.0f };
}

// Mono, 16 bit, 32000 Hz: 95990 frames of a 1000 Hz sine, in the plain 44-byte wave form.
QByteArray sineFile()
{
    const quint32 frames = 95990;
    const quint32 rate = 32000;
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    out.writeRawData("RIFF", 4);
    out << quint32(36 + 2 * frames);
    out.writeRawData("WAVEfmt ", 8);
    out << quint32(16) << quint16(1) << quint16(1) << rate << quint32(2 * rate) << quint16(2)
        << quint16(16);
    out.writeRawData("data", 4);
    out << quint32(2 * frames);
    for (quint32 frame = 0; frame < frames; ++frame)
        out << qint16(std::lround(32730.0 * std::sin(2.0 * M_PI * 1000.0 * frame / rate)));
    return bytes;
}

quint32 crc32Of(const QByteArray &bytes)
{
    return quint32(
        crc32(0L, reinterpret_cast<const Bytef *>(bytes.constData()), uInt(bytes.size())));
}

struct Content
{
    QString element;
    QString name;
    QString source;
    QByteArray bytes;
    quint32 duration;
};

struct Package
{
    QString folder;
    QString id;
    QString name;
    Content shape;
    Content audio;
};

void appendText(
    QDomDocument &document, QDomElement &parent, const QString &tag, const QString &text)
{
    QDomElement element = document.createElement(tag);
    if (!text.isEmpty())
        element.appendChild(document.createTextNode(text));
    parent.appendChild(element);
}

// A content section tells the data file's name, source, CRC-32 as stored and length.
void appendContent(QDomDocument &document, QDomElement &root, const Content &content)
{
    QDomElement section = document.createElement(content.element);
    appendText(document, section, QStringLiteral("Name"), content.name);
    appendText(document, section, QStringLiteral("SourceName"), content.source);
    appendText(
        document, section, QStringLiteral("Checksum"), QString::number(crc32Of(content.bytes)));
    appendText(document, section, QStringLiteral("Format"), QString());
    appendText(document, section, QStringLiteral("Duration"), QString::number(content.duration));
    root.appendChild(section);
}

// As the default data has them: with the fields the library ignores, "None" for no
// modulation, and a zero byte behind the root.
QByteArray descriptor(const Package &package)
{
    QDomDocument document;
    QDomElement root = document.createElement(QStringLiteral("SignalPackage"));
    root.setAttribute(QStringLiteral("FileFormatVersion"), 0);
    root.setAttribute(QStringLiteral("Timestamp"), Timestamp);
    root.setAttribute(QStringLiteral("UID"), package.id);
    root.setAttribute(QStringLiteral("Version"), 1);
    document.appendChild(root);
    QDomElement meta = document.createElement(QStringLiteral("MetaData"));
    appendText(document, meta, QStringLiteral("Name"), package.name);
    appendText(document, meta, QStringLiteral("Author"), QStringLiteral("Varnow-Heide"));
    appendText(document, meta, QStringLiteral("Library"), QStringLiteral("Default"));
    appendText(
        document, meta, QStringLiteral("Created"), QString::number(qint64(Timestamp) * 1000));
    appendText(document, meta, QStringLiteral("UserEditable"), QStringLiteral("false"));
    root.appendChild(meta);
    appendText(document, root, QStringLiteral("Bandwidth"), QStringLiteral("10000"));
    appendText(document, root, QStringLiteral("AnalogModulation"), QStringLiteral("None"));
    appendText(document, root, QStringLiteral("Duration"), QStringLiteral("3000"));
    appendText(document, root, QStringLiteral("DigitalModulation"), QString());
    appendContent(document, root, package.shape);
    appendContent(document, root, package.audio);
    return document.toByteArray(4) + QByteArray(1, 0);
}

struct Entry
{
    QString name; // a folder ends with '/'
    QByteArray bytes;
};

bool writeZip(const QString &path, const QVector<Entry> &entries)
{
    QuaZip zip(path);
    if (!zip.open(QuaZip::mdCreate))
        return false;
    // A fixed date, so that every build makes the same bytes.
    const QDateTime date = QDateTime::fromSecsSinceEpoch(Timestamp, Qt::UTC);
    for (const Entry &entry : entries) {
        const bool folder = entry.name.endsWith(QLatin1Char('/'));
        QuaZipNewInfo info(entry.name);
        info.dateTime = date;
        info.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup
            | QFile::ReadOther
            | (folder ? QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther
                      : QFile::Permissions()));
        QuaZipFile file(&zip);
        if (!file.open(
                QIODevice::WriteOnly, info, nullptr, 0, folder ? 0 : Z_DEFLATED, Z_BEST_COMPRESSION)
            || file.write(entry.bytes) != entry.bytes.size())
            return false;
        file.close();
        if (file.getZipError() != ZIP_OK)
            return false;
    }
    zip.close();
    return zip.getZipError() == ZIP_OK;
}

bool writeText(const QString &path, const QByteArray &text)
{
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.commit();
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: signallibrary <output folder>\n");
        return 2;
    }
    const QDir out(QString::fromLocal8Bit(argv[1]));
    if (!out.mkpath(QStringLiteral(".")))
        return 1;

    const Content gauss { QStringLiteral("SignalShape"), QStringLiteral("gauss"),
        QStringLiteral("gauss.ssf"), shapeFile(gaussShape()), 10000 };
    const Content rect { QStringLiteral("SignalShape"), QStringLiteral("rect"),
        QStringLiteral("rect.ssf"), shapeFile(rectShape()), 10000 };
    const Content sine { QStringLiteral("Audio"), QStringLiteral("sine"),
        QStringLiteral("sine.wav"), sineFile(), 2999 };
    const Package packages[] = {
        { QStringLiteral("Default"), QStringLiteral("/Default/Default"),
            QStringLiteral("Default - Gauss 10kHz"), gauss, sine },
        { QStringLiteral("Gauss 10kHz"), QStringLiteral("/Default/Gauss10k"),
            QStringLiteral("Gauss 10kHz"), gauss, sine },
        { QStringLiteral("Rect 10kHz"), QStringLiteral("/Default/Rect10k"),
            QStringLiteral("Rect 10kHz"), rect, sine },
    };

    const QString library = QStringLiteral("VuH-Default/");
    QVector<Entry> libraryEntries { { library, {} }, { library + QStringLiteral(".library"), {} },
        { library + QStringLiteral(".lock"), {} } };
    QVector<Entry> defaultEntries;
    for (const Package &package : packages) {
        const QVector<Entry> files { { QStringLiteral("Signal.ssf"), package.shape.bytes },
            { QStringLiteral("Signal.wav"), package.audio.bytes },
            { QStringLiteral("Signal.xml"), descriptor(package) } };
        const QString folder = library + package.folder + QLatin1Char('/');
        libraryEntries.append({ folder, {} });
        for (const Entry &file : files)
            libraryEntries.append({ folder + file.name, file.bytes });
        if (defaultEntries.isEmpty())
            defaultEntries = files;
    }

    const QByteArray qrc = "<!DOCTYPE RCC><RCC version=\"1.0\">\n"
                           "<qresource prefix=\"/DefaultData\">\n"
                           "    <file>Default.zip</file>\n"
                           "    <file>VuH-Default.zip</file>\n"
                           "</qresource>\n"
                           "</RCC>\n";
    if (!writeZip(out.filePath(QStringLiteral("VuH-Default.zip")), libraryEntries)
        || !writeZip(out.filePath(QStringLiteral("Default.zip")), defaultEntries)
        || !writeText(out.filePath(QStringLiteral("signallibrary.qrc")), qrc)) {
        std::fprintf(stderr, "signallibrary: cannot write into %s\n", argv[1]);
        return 1;
    }
    return 0;
}
