#include "xmlelement.h"

#include "xmllimits_p.h"
#include "xmlreader_p.h"
#include "xmlwriter_p.h"

namespace Simulation {

namespace {

const QString True = QStringLiteral("true");
const QString False = QStringLiteral("false");

QString composedName(const QString &sTag, int iIndex)
{
    return iIndex >= 0 ? sTag + QString::number(iIndex, 10) : sTag;
}

bool isBoolText(const QString &text)
{
    return text == True || text == False;
}

bool isDoubleText(const QString &text)
{
    bool ok = false;
    text.toDouble(&ok);
    return ok;
}

bool isIntText(const QString &text)
{
    bool ok = false;
    text.toInt(&ok, 10);
    return ok;
}

bool isUIntText(const QString &text)
{
    bool ok = false;
    text.toUInt(&ok, 10);
    return ok;
}

bool isUInt64Text(const QString &text)
{
    bool ok = false;
    text.toULongLong(&ok, 10);
    return ok;
}

} // namespace

XmlElement::XmlElement() = default;

XmlElement::XmlElement(const QDomElement &element)
    : m_element(element)
{
}

XmlElement::XmlElement(const QString &sTag, int iIndex)
{
    m_element = m_doc.createElement(composedName(sTag, iIndex));
    m_doc.appendChild(m_element);
}

XmlElement XmlElement::fromByteArray(const QByteArray &xml)
{
    if (!isModestXml(xml, false))
        return XmlElement();
    return XmlElement(domFromByteArray(xml).documentElement());
}

QString XmlElement::tagName() const
{
    return m_element.tagName();
}

bool XmlElement::isValid() const
{
    return !m_element.isNull();
}

XmlElement XmlElement::child(const QString &sTag, int iIndex) const
{
    const QString name = sTag.isNull() ? m_sLastChild : composedName(sTag, iIndex);
    if (!name.isEmpty())
        return XmlElement(m_element.firstChildElement(name));

    QDomElement current = m_element.firstChildElement();
    for (int position = 1; position < iIndex && !current.isNull(); ++position)
        current = current.nextSiblingElement();
    if (current.isNull())
        current = m_element.lastChildElement();
    return XmlElement(current);
}

QList<XmlElement> XmlElement::children(const QString &sTag) const
{
    QList<XmlElement> result;
    for (QDomElement e = m_element.firstChildElement(sTag); !e.isNull();
         e = e.nextSiblingElement(sTag))
        result.append(XmlElement(e));
    return result;
}

QStringList XmlElement::attributeNames() const
{
    QStringList names;
    const QDomNamedNodeMap attributes = m_element.attributes();
    for (int i = 0; i < attributes.count(); ++i)
        names.append(attributes.item(i).nodeName());
    return names;
}

QStringList XmlElement::childNames() const
{
    QStringList names;
    for (QDomElement e = m_element.firstChildElement(); !e.isNull(); e = e.nextSiblingElement())
        names.append(e.tagName());
    return names;
}

QString XmlElement::attribute(const QString &sName) const
{
    return m_element.attribute(attributeName(sName));
}

QString XmlElement::text(const QString &sName) const
{
    return childText(childName(sName));
}

void XmlElement::setAttribute(const QString &sName, const QString &sValue)
{
    if (!m_doc.isNull())
        m_element.setAttribute(sName, sValue);
}

void XmlElement::setAttribute(const QString &sName, quint64 uiValue)
{
    if (!m_doc.isNull())
        m_element.setAttribute(sName, uiValue);
}

void XmlElement::setAttribute(const QString &sName, bool bValue)
{
    setAttribute(sName, bValue ? True : False);
}

void XmlElement::setChildText(const QString &sName, const QString &sText)
{
    if (m_doc.isNull())
        return;
    QDomElement target = m_element.firstChildElement(sName);
    if (target.isNull()) {
        target = m_doc.createElement(sName);
        m_element.appendChild(target);
    } else {
        while (target.hasChildNodes())
            target.removeChild(target.firstChild());
    }
    target.appendChild(m_doc.createTextNode(sText));
}

void XmlElement::setChildText(const QString &sName, bool bValue)
{
    setChildText(sName, bValue ? True : False);
}

void XmlElement::setChildText(const QString &sName, int iValue)
{
    setChildText(sName, QString::number(iValue, 10));
}

void XmlElement::setChildText(const QString &sName, uint uiValue)
{
    setChildText(sName, QString::number(uiValue, 10));
}

void XmlElement::setChildText(const QString &sName, quint64 uiValue)
{
    setChildText(sName, QString::number(uiValue, 10));
}

void XmlElement::setChildText(const QString &sName, double dValue)
{
    setChildText(sName, QString::number(dValue, 'g', 6));
}

void XmlElement::ensureChild(const QString &sName)
{
    if (!m_doc.isNull() && m_element.firstChildElement(sName).isNull())
        m_element.appendChild(m_doc.createElement(sName));
}

void XmlElement::removeChild(const QString &sName)
{
    const QDomElement target = m_element.firstChildElement(sName);
    if (!target.isNull())
        m_element.removeChild(target);
}

void XmlElement::appendElement(const XmlElement &other)
{
    if (m_doc.isNull() || other.m_element.parentNode() == m_element)
        return;
    m_element.appendChild(m_doc.importNode(other.m_element, true));
}

QByteArray XmlElement::toByteArray() const
{
    return domToByteArray(m_doc);
}

bool XmlElement::hasAttribute(const QString &sName) const
{
    return !m_element.isNull() && m_element.hasAttribute(sName);
}

bool XmlElement::hasAttributeRemembered(const QString &sName)
{
    return attributeRemembered(sName, &XmlElement::hasAttribute);
}

bool XmlElement::hasChild(const QString &sName) const
{
    return !m_element.isNull() && (sName.isEmpty() || !m_element.firstChildElement(sName).isNull());
}

bool XmlElement::hasChildRemembered(const QString &sName)
{
    return childRemembered(sName, &XmlElement::hasChild);
}

bool XmlElement::hasChildElement(const QString &sTag, int iIndex) const
{
    return !m_element.isNull() && !m_element.firstChildElement(composedName(sTag, iIndex)).isNull();
}

bool XmlElement::hasChildElementRemembered(const QString &sTag, int iIndex)
{
    m_sLastChild = composedName(sTag, iIndex);
    return hasChildElement(sTag, iIndex);
}

bool XmlElement::hasBoolAttribute(const QString &sName) const
{
    return hasAttribute(sName) && isBoolText(attribute(sName));
}

bool XmlElement::hasBoolAttributeRemembered(const QString &sName)
{
    return attributeRemembered(sName, &XmlElement::hasBoolAttribute);
}

bool XmlElement::hasDoubleAttribute(const QString &sName) const
{
    return hasAttribute(sName) && isDoubleText(attribute(sName));
}

bool XmlElement::hasDoubleAttributeRemembered(const QString &sName)
{
    return attributeRemembered(sName, &XmlElement::hasDoubleAttribute);
}

bool XmlElement::hasIntAttribute(const QString &sName) const
{
    return hasAttribute(sName) && isIntText(attribute(sName));
}

bool XmlElement::hasIntAttributeRemembered(const QString &sName)
{
    return attributeRemembered(sName, &XmlElement::hasIntAttribute);
}

bool XmlElement::hasUIntAttribute(const QString &sName) const
{
    return hasAttribute(sName) && isUIntText(attribute(sName));
}

bool XmlElement::hasUIntAttributeRemembered(const QString &sName)
{
    return attributeRemembered(sName, &XmlElement::hasUIntAttribute);
}

bool XmlElement::boolAttribute(const QString &sName) const
{
    return attribute(sName) == True;
}

bool XmlElement::doubleAttribute(const QString &sName) const
{
    return attribute(sName).toDouble() != 0.0;
}

int XmlElement::intAttribute(const QString &sName) const
{
    return attribute(sName).toInt(nullptr, 10);
}

uint XmlElement::uintAttribute(const QString &sName) const
{
    return attribute(sName).toUInt(nullptr, 10);
}

bool XmlElement::hasBoolChild(const QString &sName) const
{
    return isBoolText(childText(sName));
}

bool XmlElement::hasBoolChildRemembered(const QString &sName)
{
    return childRemembered(sName, &XmlElement::hasBoolChild);
}

bool XmlElement::hasDoubleChild(const QString &sName) const
{
    return isDoubleText(childText(sName));
}

bool XmlElement::hasDoubleChildRemembered(const QString &sName)
{
    return childRemembered(sName, &XmlElement::hasDoubleChild);
}

bool XmlElement::hasIntChild(const QString &sName) const
{
    return isIntText(childText(sName));
}

bool XmlElement::hasIntChildRemembered(const QString &sName)
{
    return childRemembered(sName, &XmlElement::hasIntChild);
}

bool XmlElement::hasUIntChild(const QString &sName) const
{
    return isUIntText(childText(sName));
}

bool XmlElement::hasUIntChildRemembered(const QString &sName)
{
    return childRemembered(sName, &XmlElement::hasUIntChild);
}

bool XmlElement::hasUInt64Child(const QString &sName) const
{
    return isUInt64Text(childText(sName));
}

bool XmlElement::hasUInt64ChildRemembered(const QString &sName)
{
    return childRemembered(sName, &XmlElement::hasUInt64Child);
}

bool XmlElement::boolChild(const QString &sName) const
{
    return text(sName) == True;
}

double XmlElement::doubleChild(const QString &sName) const
{
    return text(sName).toDouble();
}

int XmlElement::intChild(const QString &sName) const
{
    return text(sName).toInt(nullptr, 10);
}

uint XmlElement::uintChild(const QString &sName) const
{
    return text(sName).toUInt(nullptr, 10);
}

quint64 XmlElement::uint64Child(const QString &sName) const
{
    return text(sName).toULongLong(nullptr, 10);
}

QString XmlElement::attributeName(const QString &sName) const
{
    return sName.isNull() ? m_sLastAttribute : sName;
}

QString XmlElement::childName(const QString &sName) const
{
    return sName.isNull() ? m_sLastChild : sName;
}

QString XmlElement::childText(const QString &sName) const
{
    const QDomElement element = sName.isEmpty() ? m_element : m_element.firstChildElement(sName);
    // A lone text node's value is shared, not copied: a scenario sent as text is megabytes.
    const QDomNode only = element.firstChild();
    if (only.isText() && only == element.lastChild())
        return only.nodeValue();
    return element.text();
}

bool XmlElement::attributeRemembered(
    const QString &sName, bool (XmlElement::*test)(const QString &) const)
{
    m_sLastAttribute = sName;
    return (this->*test)(sName);
}

bool XmlElement::childRemembered(
    const QString &sName, bool (XmlElement::*test)(const QString &) const)
{
    m_sLastChild = sName;
    return (this->*test)(sName);
}

} // namespace Simulation
