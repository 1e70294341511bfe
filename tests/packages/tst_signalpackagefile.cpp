#include <radiosim/packages/signalpackagefile.h>

#include "testhelpers.h"

#include <QDomDocument>
#include <QTemporaryDir>
#include <QtTest>

using namespace Simulation;

namespace {

// Every field of a package in one line.
QString describe(const SignalPackage &p)
{
    return QStringLiteral("%1 t%2 [%3] %4/%5 bw%6 m%7 '%8' d%9 %10%11%12")
        .arg(p.id())
        .arg(p.timestamp())
        .arg(p.updateIds().join(QLatin1Char(',')), p.name(), p.author())
        .arg(double(p.signalBandwidth()))
        .arg(int(p.analogModulation()))
        .arg(p.digitalModulation())
        .arg(p.duration())
        .arg(int(p.hasAudioContent()))
        .arg(int(p.hasSymbolDataContent()))
        .arg(int(p.hasResultDataContent()));
}

// A descriptor as the default data holds it: version, library and content sections, and bytes
// behind the root.
const QByteArray defaultDescriptor = R"(<?xml version="1.0" encoding="UTF-8"?>
<SignalPackage FileFormatVersion="1" Version="3" Timestamp="1289821292" UID="/Default/Default">
    <UpdateID UID="/Old/One"/>
    <MetaData>
        <Name>Default - Gauss 10kHz</Name>
        <Author>Varnow-Heide</Author>
        <Library>Default</Library>
        <Created>1289821292000</Created>
        <UserEditable>false</UserEditable>
    </MetaData>
    <UpdateID UID="/Old/One"/>
    <Bandwidth>10000</Bandwidth>
    <AnalogModulation>None</AnalogModulation>
    <Duration>3000</Duration>
    <DigitalModulation></DigitalModulation>
    <SignalShape>
        <Name>gauss</Name>
        <SourceName>gauss.ssf</SourceName>
        <Checksum>1540999075</Checksum>
        <Format></Format>
        <Duration>10000</Duration>
    </SignalShape>
</SignalPackage>
)"
                                     "\r\n\x1a\0\0tail<x>";

SignalPackage package(const QString &id, AnalogModulations modulation, const QString &digital)
{
    SignalPackage p;
    p.setId(id);
    p.setName(QStringLiteral("n"));
    p.setAnalogModulation(modulation);
    p.setDigitalModulation(digital);
    p.setSignalBandwidth(1234567.0f);
    p.setDuration(3000);
    p.setTimestamp(4294967295u);
    return p;
}

// Name, sorted attributes in braces, then the text of a leaf or the children in parentheses.
QString outline(const QDomElement &element)
{
    QStringList attributes;
    const QDomNamedNodeMap map = element.attributes();
    for (int i = 0; i < map.count(); ++i)
        attributes << map.item(i).nodeName() + QLatin1Char('=') + map.item(i).nodeValue();
    attributes.sort();
    QString text = element.tagName();
    if (!attributes.isEmpty())
        text += QLatin1Char('{') + attributes.join(QLatin1Char(',')) + QLatin1Char('}');
    QStringList children;
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement())
        children << outline(child);
    if (!children.isEmpty())
        return text + QLatin1Char('(') + children.join(QLatin1Char(' ')) + QLatin1Char(')');
    return element.text().isEmpty() ? text : text + QLatin1Char('=') + element.text();
}

} // namespace

Q_DECLARE_METATYPE(SignalPackage)

// The private reader and writer, reached through the public in-memory and file forms.
class tst_SignalPackageFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void read_data()
    {
        columns<QByteArray, QString>("xml", "package");
        row("default data, stray bytes behind the root", defaultDescriptor,
            QStringLiteral("/Default/Default t1289821292 [/Old/One,/Old/One] "
                           "Default - Gauss 10kHz/Varnow-Heide bw10000 m0 '' d3000 000"));
        row("no update ids, bad numbers, digital modulation",
            QByteArray("<SignalPackage Timestamp='-1' UID='x'><Bandwidth>wide</Bandwidth>"
                       "<AnalogModulation>Digital</AnalogModulation><Duration>99999999999"
                       "</Duration><DigitalModulation>PSK</DigitalModulation></SignalPackage>"),
            QStringLiteral("x t0 [] / bw0 m5 'PSK' d0 000"));
        row("any root name is read", QByteArray("<Other UID='y'><Duration>7</Duration></Other>"),
            QStringLiteral("y t0 [] / bw0 m0 '' d7 000"));
        row("garbage", QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16),
            QStringLiteral(" t0 [] / bw0 m0 '' d0 000"));
        row("a 4 MB id", QByteArray("<SignalPackage UID='") + QByteArray(1 << 22, 'u') + "'/>",
            QString(1 << 22, QLatin1Char('u')) + QStringLiteral(" t0 [] / bw0 m0 '' d0 000"));
        row("empty", QByteArray(), QStringLiteral(" t0 [] / bw0 m0 '' d0 000"));
        row("cut in the meta data", defaultDescriptor.left(defaultDescriptor.indexOf("</Author>")),
            QStringLiteral("/Default/Default t1289821292 [/Old/One] "
                           "Default - Gauss 10kHz/ bw0 m0 '' d0 000"));
        row("50,000 levels deep: not read",
            QByteArray("<SignalPackage UID='d'>") + QByteArray("<a>").repeated(50000)
                + QByteArray("</a>").repeated(50000) + "</SignalPackage>",
            QStringLiteral(" t0 [] / bw0 m0 '' d0 000"));
        row("300 entities: not read",
            "<!DOCTYPE S [" + QByteArray("<!ENTITY e 'x'>").repeated(300)
                + "]><SignalPackage UID='d'/>",
            QStringLiteral(" t0 [] / bw0 m0 '' d0 000"));
        row("much stray markup behind the root: not read",
            QByteArray("<SignalPackage UID='d'/>") + QByteArray("<a>").repeated(300),
            QStringLiteral(" t0 [] / bw0 m0 '' d0 000"));
    }
    void read()
    {
        QFETCH(QByteArray, xml);
        QFETCH(QString, package);
        QCOMPARE(describe(SignalPackageFile::signalPackage(xml)), package);
    }

    // Written through a file, read back as a tree: the attribute order of the DOM writer
    // follows a hash and varies between runs.
    void write_data()
    {
        columns<SignalPackage, QString>("package", "tree");
        SignalPackage twice
            = package(QStringLiteral("/p"), ModulationDigital, QStringLiteral("PSK"));
        twice.setUpdateIds({ QStringLiteral("/u"), QStringLiteral("/u") });
        row("digital, one update id written twice", twice,
            QStringLiteral("SignalPackage{FileFormatVersion=0,Timestamp=4294967295,UID=/p}("
                           "UpdateID{UID=/u} MetaData(Name=n Author) Bandwidth=1.23457e+06 "
                           "AnalogModulation=Digital Duration=3000 DigitalModulation=PSK)"));
        row("a digital name counts only with Digital",
            package(QStringLiteral("/a"), ModulationAM, QStringLiteral("PSK")),
            QStringLiteral("SignalPackage{FileFormatVersion=0,Timestamp=4294967295,UID=/a}("
                           "MetaData(Name=n Author) Bandwidth=1.23457e+06 AnalogModulation=AM "
                           "Duration=3000)"));
        row("read back: None becomes CW, only the package fields stay",
            SignalPackageFile::signalPackage(defaultDescriptor),
            QStringLiteral("SignalPackage{FileFormatVersion=0,Timestamp=1289821292,"
                           "UID=/Default/Default}(UpdateID{UID=/Old/One} MetaData("
                           "Name=Default - Gauss 10kHz Author=Varnow-Heide) Bandwidth=10000 "
                           "AnalogModulation=CW Duration=3000)"));
    }
    void write()
    {
        QFETCH(SignalPackage, package);
        QFETCH(QString, tree);
        QTemporaryDir dir;
        const QString fileName = dir.filePath(QStringLiteral("Signal.xml"));
        QFile old(fileName);
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.write(QByteArray(4096, 'x'));
        old.close();

        QVERIFY(SignalPackageFile::signalPackageFile(package, fileName));
        QFile file(fileName);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        QVERIFY2(bytes.startsWith("<SignalPackage ")
                && bytes.contains("\n    <MetaData>\n        <Name>"),
            bytes.constData());
        QDomDocument document;
        QVERIFY(document.setContent(bytes));
        QCOMPARE(outline(document.documentElement()), tree);

        SignalPackage expected = package;
        expected.setUpdateIds(
            QSet<QString>(package.updateIds().begin(), package.updateIds().end()).values());
        if (!expected.hasDigitalModulation())
            expected.setDigitalModulation(QString());
        QCOMPARE(describe(SignalPackageFile::signalPackage(fileName)), describe(expected));
    }

    void filesThatCannotBeOpened()
    {
        QTemporaryDir dir;
        const QString missing = dir.filePath(QStringLiteral("none/Signal.xml"));
        QCOMPARE(describe(SignalPackageFile::signalPackage(missing)), describe(SignalPackage()));
        QVERIFY(!SignalPackageFile::signalPackageFile(SignalPackage(), missing));
    }
};

QTEST_GUILESS_MAIN(tst_SignalPackageFile)
#include "tst_signalpackagefile.moc"
