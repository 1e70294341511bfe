#include <radiosim/service/xmlelement.h>

#include <QtTest>

using namespace Simulation;

class tst_XmlElement : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void unparsableTextGivesNullElement();
    void madeElementSerialisesWithoutDeclaration();
    void onlyMadeElementsSerialise();
    void setChildTextReplacesFirstChild();
    void setChildTextNumberForms_data();
    void setChildTextNumberForms();
    void childPresence_data();
    void childPresence();
    void typedQueries_data();
    void typedQueries();
    void rememberedNamesServeTheFollowingRead();
    void childByNameOrPosition_data();
    void childByNameOrPosition();
    void appendElementCopiesDeepOnce();
    void listsAndStructure();
    void doubleAttributeReadTellsNonZero();
};

void tst_XmlElement::unparsableTextGivesNullElement()
{
    XmlElement element = XmlElement::fromByteArray("this is not <xml");
    QVERIFY(!element.isValid());
    QVERIFY(element.tagName().isEmpty());
    QVERIFY(!element.hasChild(QStringLiteral("a")));
    QVERIFY(!element.hasChild(QString()));
    QVERIFY(!element.hasAttribute(QStringLiteral("a")));
    QVERIFY(!element.hasIntChildRemembered(QStringLiteral("a")));
    QVERIFY(element.text().isEmpty());
    QVERIFY(!element.child(QStringLiteral(""), -1).isValid());
}

void tst_XmlElement::madeElementSerialisesWithoutDeclaration()
{
    XmlElement command(QStringLiteral("Command"));
    XmlElement message(QStringLiteral("StartScenario"));
    message.setAttribute(QStringLiteral("Id"), QStringLiteral("a<b"));
    message.setChildText(QStringLiteral("Name"), QStringLiteral("Müller & Söhne"));
    command.appendElement(message);
    command.appendElement(XmlElement(QStringLiteral("HeartBeat")));
    const QByteArray expected = "<Command>\n"
                                "    <StartScenario Id=\"a&lt;b\">\n"
                                "        <Name>M\xc3\xbcller &amp; S\xc3\xb6hne</Name>\n"
                                "    </StartScenario>\n"
                                "    <HeartBeat/>\n"
                                "</Command>\n";
    QCOMPARE(command.toByteArray(), expected);

    const XmlElement parsed = XmlElement::fromByteArray(expected);
    QCOMPARE(parsed.child(QStringLiteral("StartScenario")).text(QStringLiteral("Name")),
        QStringLiteral("Müller & Söhne"));
    QCOMPARE(parsed.child(QStringLiteral("StartScenario")).attribute(QStringLiteral("Id")),
        QStringLiteral("a<b"));
}

void tst_XmlElement::onlyMadeElementsSerialise()
{
    XmlElement parsed = XmlElement::fromByteArray("<Root><A>1</A></Root>");
    QVERIFY(parsed.isValid());
    QVERIFY(parsed.toByteArray().isEmpty());
    QVERIFY(parsed.child(QStringLiteral("A")).toByteArray().isEmpty());

    // Writes to an element without its own document are ignored, not crashes.
    parsed.setChildText(QStringLiteral("B"), QStringLiteral("x"));
    parsed.setAttribute(QStringLiteral("k"), QStringLiteral("v"));
    QVERIFY(!parsed.hasChild(QStringLiteral("B")));
    QVERIFY(!parsed.hasAttribute(QStringLiteral("k")));
}

void tst_XmlElement::setChildTextReplacesFirstChild()
{
    XmlElement element(QStringLiteral("Root"));
    element.setChildText(QStringLiteral("Name"), QStringLiteral("first"));
    element.setChildText(QStringLiteral("Name"), QStringLiteral("second"));
    QCOMPARE(element.childNames(), QStringList { QStringLiteral("Name") });
    QCOMPARE(element.text(QStringLiteral("Name")), QStringLiteral("second"));
    QCOMPARE(element.toByteArray(), QByteArray("<Root>\n    <Name>second</Name>\n</Root>\n"));
}

void tst_XmlElement::setChildTextNumberForms_data()
{
    QTest::addColumn<QString>("written");
    QTest::addColumn<QString>("expected");

    XmlElement e(QStringLiteral("R"));
    const auto write = [&e](auto value) {
        e.setChildText(QStringLiteral("V"), value);
        return e.text(QStringLiteral("V"));
    };
    QTest::newRow("bool true") << write(true) << "true";
    QTest::newRow("bool false") << write(false) << "false";
    QTest::newRow("negative int") << write(-42) << "-42";
    QTest::newRow("largest uint") << write(4294967295u) << "4294967295";
    QTest::newRow("largest quint64")
        << write(Q_UINT64_C(18446744073709551615)) << "18446744073709551615";
    QTest::newRow("double six digits") << write(8.123456789) << "8.12346";
    QTest::newRow("small double") << write(0.000012345678) << "1.23457e-05";
    QTest::newRow("whole double") << write(48.0) << "48";
}

void tst_XmlElement::setChildTextNumberForms()
{
    QFETCH(QString, written);
    QTEST(written, "expected");
}

void tst_XmlElement::childPresence_data()
{
    QTest::addColumn<QByteArray>("xml");
    QTest::addColumn<bool>("present");
    QTest::addColumn<QString>("text");
    QTest::newRow("empty element counts") << QByteArray("<R><Name/></R>") << true << "";
    QTest::newRow("with text") << QByteArray("<R><Name>abc</Name></R>") << true << "abc";
    QTest::newRow("missing") << QByteArray("<R><Other>x</Other></R>") << false << "";
    QTest::newRow("attribute is no child") << QByteArray("<R Name=\"x\"/>") << false << "";
}

void tst_XmlElement::childPresence()
{
    QFETCH(QByteArray, xml);
    const XmlElement element = XmlElement::fromByteArray(xml);
    QTEST(element.hasChild(QStringLiteral("Name")), "present");
    QTEST(element.text(QStringLiteral("Name")), "text");
}

void tst_XmlElement::typedQueries_data()
{
    QTest::addColumn<QString>("value");
    QTest::addColumn<bool>("isBool");
    QTest::addColumn<bool>("isInt");
    QTest::addColumn<bool>("isUInt");
    QTest::addColumn<bool>("isUInt64");
    QTest::addColumn<bool>("isDouble");
    QTest::newRow("true") << "true" << true << false << false << false << false;
    QTest::newRow("false") << "false" << true << false << false << false << false;
    QTest::newRow("True is no bool") << "True" << false << false << false << false << false;
    QTest::newRow("1 is no bool") << "1" << false << true << true << true << true;
    QTest::newRow("negative") << "-5" << false << true << false << false << true;
    QTest::newRow("above int") << "4294967295" << false << false << true << true << true;
    QTest::newRow("above uint") << "4294967296" << false << false << false << true << true;
    QTest::newRow("largest quint64")
        << "18446744073709551615" << false << false << false << true << true;
    QTest::newRow("above quint64")
        << "18446744073709551616" << false << false << false << false << true;
    QTest::newRow("fraction") << "1.5" << false << false << false << false << true;
    QTest::newRow("letters") << "abc" << false << false << false << false << false;
    QTest::newRow("empty") << "" << false << false << false << false << false;
}

void tst_XmlElement::typedQueries()
{
    QFETCH(QString, value);
    QFETCH(bool, isBool);
    QFETCH(bool, isInt);
    QFETCH(bool, isUInt);
    QFETCH(bool, isUInt64);
    QFETCH(bool, isDouble);

    XmlElement element(QStringLiteral("R"));
    element.setChildText(QStringLiteral("V"), value);
    element.setAttribute(QStringLiteral("a"), value);
    const QString child = QStringLiteral("V");
    const QString attribute = QStringLiteral("a");

    QCOMPARE(element.hasBoolChild(child), isBool);
    QCOMPARE(element.hasIntChild(child), isInt);
    QCOMPARE(element.hasUIntChild(child), isUInt);
    QCOMPARE(element.hasUInt64Child(child), isUInt64);
    QCOMPARE(element.hasDoubleChild(child), isDouble);
    QCOMPARE(element.hasBoolAttribute(attribute), isBool);
    QCOMPARE(element.hasIntAttribute(attribute), isInt);
    QCOMPARE(element.hasUIntAttribute(attribute), isUInt);
    QCOMPARE(element.hasDoubleAttribute(attribute), isDouble);
    QCOMPARE(element.boolChild(child), value == QLatin1String("true"));
    QCOMPARE(element.boolAttribute(attribute), value == QLatin1String("true"));
}

void tst_XmlElement::rememberedNamesServeTheFollowingRead()
{
    XmlElement element
        = XmlElement::fromByteArray("<R a=\"7\" b=\"9\">"
                                    "<Count>12</Count><Big>18446744073709551615</Big>"
                                    "<Flag>true</Flag><Ratio>2.5</Ratio><Text>t</Text>"
                                    "<Device3><Data>d</Data></Device3></R>");
    QVERIFY(element.hasIntAttributeRemembered(QStringLiteral("b")));
    QCOMPARE(element.intAttribute(), 9);
    QCOMPARE(element.attribute(), QStringLiteral("9"));
    QVERIFY(element.hasUIntAttributeRemembered(QStringLiteral("a")));
    QCOMPARE(element.uintAttribute(), 7u);

    QVERIFY(element.hasIntChildRemembered(QStringLiteral("Count")));
    QCOMPARE(element.intChild(), 12);
    QCOMPARE(element.uintChild(), 12u);
    QVERIFY(element.hasUInt64ChildRemembered(QStringLiteral("Big")));
    QCOMPARE(element.uint64Child(), Q_UINT64_C(18446744073709551615));
    QVERIFY(element.hasBoolChildRemembered(QStringLiteral("Flag")));
    QVERIFY(element.boolChild());
    QVERIFY(element.hasDoubleChildRemembered(QStringLiteral("Ratio")));
    QCOMPARE(element.doubleChild(), 2.5);
    QVERIFY(element.hasChildRemembered(QStringLiteral("Text")));
    QCOMPARE(element.text(), QStringLiteral("t"));
    QCOMPARE(element.child(QString()).tagName(), QStringLiteral("Text"));

    // A failed remembering query still remembers: the following read answers for that name.
    QVERIFY(!element.hasIntChildRemembered(QStringLiteral("Text")));
    QCOMPARE(element.intChild(), 0);
    QVERIFY(!element.hasChildRemembered(QStringLiteral("Missing")));
    QVERIFY(element.text().isNull());

    QVERIFY(element.hasChildElementRemembered(QStringLiteral("Device"), 3));
    QCOMPARE(element.child(QString()).text(QStringLiteral("Data")), QStringLiteral("d"));
    QVERIFY(!element.hasChildElement(QStringLiteral("Device"), 2));
}

void tst_XmlElement::childByNameOrPosition_data()
{
    QTest::addColumn<QString>("tag");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("expected");
    QTest::newRow("any name gives first") << "" << -1 << "a";
    QTest::newRow("null name, none remembered, position 2") << QString() << 2 << "b";
    QTest::newRow("null name, position 1") << QString() << 1 << "a";
    QTest::newRow("past the end gives last") << QString() << 9 << "Item1";
    QTest::newRow("composed name") << "Item" << 1 << "Item1";
    QTest::newRow("plain name") << "b" << -1 << "b";
    QTest::newRow("missing name") << "zzz" << -1 << "";
}

void tst_XmlElement::childByNameOrPosition()
{
    QFETCH(QString, tag);
    QFETCH(int, index);
    const XmlElement element = XmlElement::fromByteArray("<R>text<a/><b/><c/><Item1/></R>");
    QTEST(element.child(tag, index).tagName(), "expected");
}

void tst_XmlElement::appendElementCopiesDeepOnce()
{
    XmlElement root(QStringLiteral("Root"));
    XmlElement part(QStringLiteral("Part"));
    part.setChildText(QStringLiteral("Inner"), 5);
    root.appendElement(part);
    part.setChildText(QStringLiteral("Inner"), 6);
    QCOMPARE(root.child(QStringLiteral("Part")).intChild(QStringLiteral("Inner")), 5);

    const XmlElement appended = root.child(QStringLiteral("Part"));
    root.appendElement(appended);
    QCOMPARE(root.childNames(), QStringList { QStringLiteral("Part") });
}

void tst_XmlElement::listsAndStructure()
{
    // An index of 0 is composed into the name too; only a negative one leaves it bare.
    QCOMPARE(XmlElement(QStringLiteral("Device"), 0).tagName(), QStringLiteral("Device0"));
    QCOMPARE(XmlElement(QStringLiteral("Device"), 3).tagName(), QStringLiteral("Device3"));
    QCOMPARE(XmlElement(QStringLiteral("Command"), -1).tagName(), QStringLiteral("Command"));

    XmlElement element(QStringLiteral("R"));
    element.setAttribute(QStringLiteral("Count"), quint64(3));
    element.setAttribute(QStringLiteral("On"), true);
    element.setChildText(QStringLiteral("Item"), QStringLiteral("1"));
    element.ensureChild(QStringLiteral("Other"));
    element.ensureChild(QStringLiteral("Other"));
    element.ensureChild(QStringLiteral("Item"));
    QCOMPARE(
        element.childNames(), (QStringList { QStringLiteral("Item"), QStringLiteral("Other") }));
    QCOMPARE(element.attribute(QStringLiteral("On")), QStringLiteral("true"));
    QCOMPARE(element.attribute(QStringLiteral("Count")), QStringLiteral("3"));
    QCOMPARE(element.attributeNames().size(), 2);

    const XmlElement parsed = XmlElement::fromByteArray("<R><X>1</X><Y/><X>2</X></R>");
    const QList<XmlElement> xs = parsed.children(QStringLiteral("X"));
    QCOMPARE(xs.size(), 2);
    QCOMPARE(xs.at(1).text(), QStringLiteral("2"));
    QCOMPARE(parsed.childNames(),
        (QStringList { QStringLiteral("X"), QStringLiteral("Y"), QStringLiteral("X") }));

    element.removeChild(QStringLiteral("Item"));
    QCOMPARE(element.childNames(), QStringList { QStringLiteral("Other") });
}

void tst_XmlElement::doubleAttributeReadTellsNonZero()
{
    const XmlElement element = XmlElement::fromByteArray("<R a=\"2.5\" z=\"0\" n=\"abc\"/>");
    QCOMPARE(element.doubleAttribute(QStringLiteral("a")), true);
    QCOMPARE(element.doubleAttribute(QStringLiteral("z")), false);
    QCOMPARE(element.doubleAttribute(QStringLiteral("n")), false);
}

QTEST_GUILESS_MAIN(tst_XmlElement)
#include "tst_xmlelement.moc"
