#include <radiosim/packages/signalpackagefile.h>

#include "repositoryhelpers.h"

#include <QDomDocument>
#include <QTemporaryDir>
#include <QtTest>

using namespace Simulation;

namespace {

// A descriptor as the default data holds it: version, library and content sections, and bytes
// behind the root.
const QByteArray defaultDescriptor = R"(<?xml version="1.0" encoding="UTF-8"?>
<SignalPackage FileFormatVersion="1" Version="3" Timestamp="1289821292" UID="/Default/Default">
    <UpdateID UID="/Old/One"/>
    <MetaData>
        <Name>Default - Gauss 10kHz</Name>
        <Author>Varnow-Heide</Author>
        <Library>Default</Library><Created>1289821292000</Created><UserEditable>false</UserEditable>
    </MetaData>
    <UpdateID UID="/Old/One"/>
    <Bandwidth>10000</Bandwidth>
    <AnalogModulation>None</AnalogModulation>
    <Duration>3000</Duration>
    <DigitalModulation></DigitalModulation>
    <SignalShape><Name>gauss</Name><Checksum>1540999075</Checksum><Duration>10000</Duration>
    </SignalShape>
</SignalPackage>
)"
                                     "\r\n\x1a\0\0tail<x>";

// Name, sorted attributes in braces, then the text of a leaf or the children in parentheses.
QString outline(const QDomElement &element)
{
    QStringList attributes;
    for (int i = 0; i < element.attributes().count(); ++i) {
        const QDomNode item = element.attributes().item(i);
        attributes << item.nodeName() + '=' + item.nodeValue();
    }
    attributes.sort();
    const QString text
        = element.tagName() + (attributes.isEmpty() ? "" : '{' + attributes.join(',') + '}');
    QStringList children;
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement())
        children << outline(child);
    if (!children.isEmpty())
        return text + '(' + children.join(' ') + ')';
    return element.text().isEmpty() ? text : text + '=' + element.text();
}

} // namespace

// The private reader and writer, reached through the public in-memory and file forms.
class tst_SignalPackageFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void read_data()
    {
        const QString nothing = QStringLiteral(" t0 [] / bw0 m0 '' d0 000");
        const auto row = columns<QByteArray, QString>("xml", "package");
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
        row("garbage", QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16), nothing);
        row("a 4 MB id", QByteArray("<SignalPackage UID='") + QByteArray(1 << 22, 'u') + "'/>",
            QString(1 << 22, 'u') + nothing);
        row("empty", QByteArray(), nothing);
        row("cut in the meta data", defaultDescriptor.left(defaultDescriptor.indexOf("</Author>")),
            QStringLiteral("/Default/Default t1289821292 [/Old/One] "
                           "Default - Gauss 10kHz/ bw0 m0 '' d0 000"));
        row("50,000 levels deep: not read",
            "<SignalPackage UID='d'>" + QByteArray("<a>").repeated(50000)
                + QByteArray("</a>").repeated(50000) + "</SignalPackage>",
            nothing);
        row("300 entities: not read",
            "<!DOCTYPE S [" + QByteArray("<!ENTITY e 'x'>").repeated(300)
                + "]><SignalPackage UID='d'/>",
            nothing);
        row("much stray markup behind the root: not read",
            "<SignalPackage UID='d'/>" + QByteArray("<a>").repeated(300), nothing);
    }
    void read()
    {
        QFETCH(QByteArray, xml);
        QFETCH(QString, package);
        QCOMPARE(describe(SignalPackageFile::signalPackage(xml)), package);
    }

    // Read from a descriptor, written through a file, read back as a tree: the attribute order of
    // the DOM writer follows a hash and varies between runs.
    void write_data()
    {
        const auto row = columns<QByteArray, QString>("xml", "tree");
        const QByteArray fields
            = "<MetaData><Name>n</Name></MetaData><Bandwidth>1234567</Bandwidth>"
              "<Duration>3000</Duration><DigitalModulation>PSK</DigitalModulation>";
        row("digital, one update id written twice",
            "<P UID='/p' Timestamp='4294967295'><UpdateID UID='/u'/><UpdateID UID='/u'/>" + fields
                + "<AnalogModulation>Digital</AnalogModulation></P>",
            QStringLiteral("Timestamp=4294967295,UID=/p}(UpdateID{UID=/u} MetaData(Name=n Author) "
                           "Bandwidth=1.23457e+06 AnalogModulation=Digital Duration=3000 "
                           "DigitalModulation=PSK)"));
        row("a digital name counts only with Digital",
            "<P UID='/a' Timestamp='4294967295'>" + fields
                + "<AnalogModulation>AM</AnalogModulation></P>",
            QStringLiteral("Timestamp=4294967295,UID=/a}(MetaData(Name=n Author) "
                           "Bandwidth=1.23457e+06 AnalogModulation=AM Duration=3000)"));
        row("None becomes CW, only the package fields stay", defaultDescriptor,
            QStringLiteral("Timestamp=1289821292,UID=/Default/Default}(UpdateID{UID=/Old/One} "
                           "MetaData(Name=Default - Gauss 10kHz Author=Varnow-Heide) "
                           "Bandwidth=10000 AnalogModulation=CW Duration=3000)"));
    }
    void write()
    {
        QFETCH(QByteArray, xml);
        QFETCH(QString, tree);
        const SignalPackage package = SignalPackageFile::signalPackage(xml);
        QTemporaryDir dir;
        const QString fileName = dir.filePath(QStringLiteral("Signal.xml"));
        QVERIFY(!writeFile(fileName, QByteArray(4096, 'x')).isEmpty());
        QVERIFY(SignalPackageFile::signalPackageFile(package, fileName));
        const QByteArray bytes = contentOf(fileName);
        QVERIFY2(bytes.startsWith("<SignalPackage ")
                && bytes.contains("\n    <MetaData>\n        <Name>"),
            bytes.constData());
        QDomDocument document;
        QVERIFY(document.setContent(bytes));
        QCOMPARE(outline(document.documentElement()), "SignalPackage{FileFormatVersion=0," + tree);

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
