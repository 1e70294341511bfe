#include <radiosim/service/xmlelement.h>
#include <radiosim/service/xmlreader_p.h>
#include <radiosim/service/xmlwriter_p.h>

#include <QDomDocument>

#include <QtTest>

using namespace Simulation;

class tst_XmlElement : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nullAndParsedElementsIgnoreWrites();
    void typedQueries_data();
    void typedQueries();
    void rememberedNamesServeTheFollowingRead();
    void childByNameOrPosition_data();
    void childByNameOrPosition();
    void listsAndStructure();
    void nestingAndEntityLimits_data();
    void nestingAndEntityLimits();
    void writerGivesQtsBytes_data();
    void writerGivesQtsBytes();
    void readerGivesQtsTree_data();
    void readerGivesQtsTree();
};

namespace {

// A tree as text: elements with their attributes sorted, and every other node with its value.
QString outline(const QDomNode &node)
{
    QString out;
    for (QDomNode n = node.firstChild(); !n.isNull(); n = n.nextSibling()) {
        if (!n.isElement()) {
            out += QStringLiteral("(%1 %2)").arg(n.nodeType()).arg(n.nodeValue());
            continue;
        }
        QStringList attributes;
        const QDomNamedNodeMap map = n.attributes();
        for (int i = 0; i < map.count(); ++i)
            attributes << map.item(i).nodeName() + '=' + map.item(i).nodeValue();
        attributes.sort();
        out += QStringLiteral("<%1 %2>%3</>").arg(n.nodeName(), attributes.join('|'), outline(n));
    }
    return out;
}

} // namespace

// Only made elements own a document to write into; the record tests show that parsed ones
// don't serialise.
void tst_XmlElement::nullAndParsedElementsIgnoreWrites()
{
    XmlElement null = XmlElement::fromByteArray("this is not <xml");
    QVERIFY(!null.isValid() && null.text().isEmpty());
    QVERIFY(!null.hasChild("a") && !null.hasChild(QString()) && !null.hasAttribute("a"));
    QVERIFY(!null.hasIntChildRemembered("a") && !null.child("", -1).isValid());

    XmlElement parsed = XmlElement::fromByteArray("<Root><A>1</A></Root>");
    parsed.setChildText("B", QString("x"));
    parsed.setAttribute("k", QString("v"));
    QVERIFY(!parsed.hasChild("B") && !parsed.hasAttribute("k"));
}

// kinds: b bool, i int, u uint, U quint64, d double.
void tst_XmlElement::typedQueries_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("kinds");
    const char *const rows[][3] = { { "true", "true", "b" }, { "false", "false", "b" },
        { "True is no bool", "True", "" }, { "zero", "0", "iuUd" }, { "negative", "-5", "id" },
        { "above int", "4294967295", "uUd" }, { "above uint", "4294967296", "Ud" },
        { "largest quint64", "18446744073709551615", "Ud" },
        { "above quint64", "18446744073709551616", "d" }, { "fraction", "1.5", "d" },
        { "empty", "", "" } };
    for (const auto &row : rows)
        QTest::newRow(row[0]) << QString(row[1]) << QString(row[2]);
}

// The same text as child and as attribute; attributes know no quint64. doubleAttribute() only
// tells whether the value is a non-zero number.
void tst_XmlElement::typedQueries()
{
    QFETCH(QString, value);
    QFETCH(QString, kinds);
    XmlElement element("R");
    element.setChildText("V", value);
    element.setAttribute("a", value);
    QCOMPARE(element.hasBoolChild("V"), kinds.contains('b'));
    QCOMPARE(element.hasIntChild("V"), kinds.contains('i'));
    QCOMPARE(element.hasUIntChild("V"), kinds.contains('u'));
    QCOMPARE(element.hasUInt64Child("V"), kinds.contains('U'));
    QCOMPARE(element.hasDoubleChild("V"), kinds.contains('d'));
    QCOMPARE(element.hasBoolAttribute("a"), kinds.contains('b'));
    QCOMPARE(element.hasIntAttribute("a"), kinds.contains('i'));
    QCOMPARE(element.hasUIntAttribute("a"), kinds.contains('u'));
    QCOMPARE(element.hasDoubleAttribute("a"), kinds.contains('d'));
    QCOMPARE(element.boolChild("V"), value == "true");
    QCOMPARE(element.boolAttribute("a"), value == "true");
    QCOMPARE(element.doubleAttribute("a"), kinds.contains('d') && value != "0");
}

// A failed remembering query still remembers: the following read answers for that name.
void tst_XmlElement::rememberedNamesServeTheFollowingRead()
{
    XmlElement element
        = XmlElement::fromByteArray("<R a=\"7\" b=\"9\"><Big>18446744073709551615</Big>"
                                    "<Text>t</Text><Device3><Data>d</Data></Device3></R>");
    QVERIFY(element.hasIntAttributeRemembered("b"));
    QCOMPARE(element.intAttribute(), 9);
    QVERIFY(element.hasUIntAttributeRemembered("a"));
    QCOMPARE(element.uintAttribute(), 7u);
    QVERIFY(element.hasUInt64ChildRemembered("Big"));
    QCOMPARE(element.uint64Child(), Q_UINT64_C(18446744073709551615));
    QVERIFY(!element.hasIntChildRemembered("Text"));
    QCOMPARE(element.intChild(), 0);
    QCOMPARE(element.child(QString()).tagName(), "Text");
    QVERIFY(element.hasChildElementRemembered("Device", 3));
    QCOMPARE(element.child(QString()).text("Data"), "d");
}

void tst_XmlElement::childByNameOrPosition_data()
{
    QTest::addColumn<QString>("tag");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("expected");
    QTest::newRow("any name gives first") << "" << -1 << "a";
    QTest::newRow("null name, none remembered, position 2") << QString() << 2 << "b";
    QTest::newRow("past the end gives last") << QString() << 9 << "Item1";
    QTest::newRow("composed name") << "Item" << 1 << "Item1";
    QTest::newRow("missing name") << "zzz" << -1 << "";
}

void tst_XmlElement::childByNameOrPosition()
{
    QFETCH(QString, tag);
    QFETCH(int, index);
    const XmlElement element = XmlElement::fromByteArray("<R>text<a/><b/><c/><Item1/></R>");
    QTEST(element.child(tag, index).tagName(), "expected");
}

void tst_XmlElement::listsAndStructure()
{
    XmlElement element("R");
    element.setAttribute("Count", quint64(3));
    element.setAttribute("On", true);
    QCOMPARE(element.attribute("On") + element.attribute("Count"), "true3");
    QCOMPARE(element.attributeNames().size(), 2);
    element.setChildText("Item", QString("1"));
    element.ensureChild("Other");
    element.ensureChild("Other");
    element.ensureChild("Item");
    element.removeChild("Item");
    QCOMPARE(element.childNames(), QStringList { "Other" });

    // Appending copies deeply, and appending an element's own child adds nothing. Setting a child
    // again replaces its text.
    XmlElement part("Part");
    part.setChildText("Inner", 5);
    element.appendElement(part);
    part.setChildText("Inner", 6);
    element.appendElement(element.child("Part"));
    QCOMPARE(element.childNames(), QStringList({ "Other", "Part" }));
    QCOMPARE(element.child("Part").intChild("Inner"), 5);
    QCOMPARE(part.intChild("Inner"), 6);

    // An empty child counts, an attribute is no child.
    const XmlElement parsed = XmlElement::fromByteArray("<R N=\"a\"><X>1</X><Y/><X>2</X></R>");
    QCOMPARE(parsed.childNames(), QStringList({ "X", "Y", "X" }));
    QCOMPARE(parsed.children("X").at(1).text(), "2");
    QVERIFY(parsed.hasChild("Y") && !parsed.hasChild("N") && !parsed.hasChild("Z"));
}

// The DOM parser overflows the stack some ten thousand levels down and slows with the square of
// an entity chain: documents beyond 256 of either give a null element, shallow wide ones parse.
void tst_XmlElement::nestingAndEntityLimits_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<bool>("valid");
    const auto nested = [](int levels) {
        return QByteArray("<a>").repeated(levels) + QByteArray("</a>").repeated(levels);
    };
    const auto chain = [](int entities) {
        QByteArray xml = "<!DOCTYPE a [<!ENTITY e0 \"x\">";
        for (int i = 1; i < entities; ++i)
            xml += QString::asprintf("<!ENTITY e%d \"&e%d;\">", i, i - 1).toLatin1();
        return xml + QString::asprintf("]><a>&e%d;</a>", entities - 1).toLatin1();
    };
    QTest::newRow("256 levels") << nested(256) << true;
    QTest::newRow("257 levels") << nested(257) << false;
    QTest::newRow("50000 levels") << nested(50000) << false;
    QTest::newRow("2000 siblings")
        << "<r>" + QByteArray("<a>&amp;</a>").repeated(2000) + "</r>" << true;
    QTest::newRow("chain of 256 entities") << chain(256) << true;
    QTest::newRow("chain of 20000 entities") << chain(20000) << false;
}

void tst_XmlElement::nestingAndEntityLimits()
{
    QFETCH(QByteArray, xml);
    QTEST(XmlElement::fromByteArray(xml).isValid(), "valid");
}

void tst_XmlElement::writerGivesQtsBytes_data()
{
    QTest::addColumn<QString>("text");
    QString controls;
    for (ushort c = 1; c < 32; ++c)
        controls += QChar(c);
    QString everyUnit;
    for (uint c = 1; c <= 0xffff; ++c)
        everyUnit += QChar(ushort(c));
    QTest::newRow("empty") << QString("");
    QTest::newRow("blanks only") << QString(" \t \n ");
    QTest::newRow("markup") << QString("<a href=\"x\">&amp; 'q' ]]> ]> ]]]>> &</a>");
    QTest::newRow("control characters") << controls;
    QTest::newRow("line ends") << QString("a\r\nb\rc\nd\te\r");
    QTest::newRow("non-ASCII") << QString::fromUtf8(
        "Empfänger Ω 中文 \xf0\x9f\x93\xa1 \xef\xbf\xbf");
    QTest::newRow("lone surrogates") << QString("a") + QChar(0xdc00) + "b" + QChar(0xd800);
    QTest::newRow("every code unit") << everyUnit;
}

// The writer against Qt's on one document with every kind of place a text can take: several
// attributes (their order is Qt's hash order), element text, mixed content, an empty element,
// and a copy of a parsed element. A comment falls back to Qt's writer.
void tst_XmlElement::writerGivesQtsBytes()
{
    QFETCH(QString, text);
    QDomDocument document;
    QDomElement root = document.createElement("Command");
    document.appendChild(root);
    for (const char *name : { "Id", "DeviceId", "b", "Name", "x" })
        root.setAttribute(name, text + name);
    QDomElement child = document.createElement("Text");
    child.appendChild(document.createTextNode(text));
    root.appendChild(child);
    QDomElement mixed = document.createElement("Mixed");
    mixed.appendChild(document.createTextNode(text));
    mixed.appendChild(document.createElement("Inner"));
    mixed.appendChild(document.createTextNode(text));
    mixed.appendChild(document.createElement("Last")).appendChild(document.createElement("Deep"));
    root.appendChild(mixed);
    root.appendChild(document.createElement("Empty"));
    QDomDocument parsed;
    QVERIFY(parsed.setContent(QByteArray("<P a=\"1\"><Q>t &amp; u</Q><R/></P>")));
    root.appendChild(document.importNode(parsed.documentElement(), true));
    QCOMPARE(domToByteArray(document), document.toByteArray(4));

    XmlElement element("R", 3);
    element.setAttribute("a", text);
    element.setChildText("T", text);
    const QByteArray written = element.toByteArray();
    QDomDocument reference;
    QDomElement referenceRoot = reference.createElement("R3");
    reference.appendChild(referenceRoot);
    referenceRoot.setAttribute("a", text);
    referenceRoot.appendChild(reference.createElement("T"))
        .appendChild(reference.createTextNode(text));
    QCOMPARE(written, reference.toByteArray(4));

    mixed.appendChild(document.createComment(text));
    QCOMPARE(domToByteArray(document), document.toByteArray(4));
}

void tst_XmlElement::readerGivesQtsTree_data()
{
    QTest::addColumn<QByteArray>("xml");
    XmlElement message("Command");
    const QString nasty = QString::fromUtf8("<a & \"b\" 'c'> ]]> \r\n\t\xc2\xa0\xe3\x80\x80 "
                                            "\xf0\x9f\x93\xa1 \x01 end");
    message.setAttribute("Id", nasty);
    message.setChildText("Text", nasty);
    message.setChildText("Blank", QString(" \n "));
    QTest::newRow("a message of ours") << message.toByteArray();
    XmlElement plain("Command");
    const QString printable
        = QString::fromUtf8("<a & \"b\" 'c'> ]]> \xc2\xa0 \xf0\x9f\x93\xa1 end");
    plain.setAttribute("Id", printable);
    plain.setChildText("Text", printable);
    plain.setChildText("Blank", QString(" \n "));
    QTest::newRow("a message of ours without line ends") << plain.toByteArray();
    const char *const rows[][2] = {
        { "blank and mixed text", "<a>\n  <b>  </b> x <c/>y\n</a>" },
        { "entities", "<a t=\"&lt;&amp;&gt;&quot;&apos;\">&lt;&amp;&gt;&quot;&apos;</a>" },
        { "unicode blanks", "<a><b>\xc2\xa0</b><c>\xe3\x80\x80</c><d>\xc2\xa0x</d></a>" },
        { "character references", "<a x=\"&#9;&#10;\">&#x1F4E1;&#65;&#xD;</a>" },
        { "raw line ends", "<a x=\"1\r\n2\t3\">l1\r\nl2\rl3</a>" },
        { "declaration, comment, CDATA",
            "<?xml version=\"1.0\"?><a><!-- c --><![CDATA[<x>]]></a>" },
        { "names the stream reader reads otherwise", "<a$b c$d=\"1\"><S::X/></a$b>" },
        { "cut short", "<a><b>text</b><c x=\"1\">more" },
        { "after the root", "<a/><b/>" },
        { "undeclared entity", "<a>&nope;</a>" },
        { "byte order marks", "\xef\xbb\xbf<a>x<b>\xef\xbb\xbf\t</b></a>" },
        { "invalid UTF-8", "<a>\xff\xfe</a>" },
    };
    for (const auto &row : rows)
        QTest::newRow(row[0]) << QByteArray(row[1]);
    QTest::newRow("a NUL byte") << QByteArray("<a><b x=\"1\"/>\0<c/></a>", 22);
}

// Messages are read without Qt's parser where the stream reader reads them alike; the tree is
// Qt's in every case, what our writer gives and documents either parser reads otherwise.
void tst_XmlElement::readerGivesQtsTree()
{
    QFETCH(QByteArray, xml);
    QDomDocument qts { QString() };
    qts.setContent(xml);
    QCOMPARE(outline(domFromByteArray(xml)), outline(qts));
}

QTEST_GUILESS_MAIN(tst_XmlElement)
#include "tst_xmlelement.moc"
