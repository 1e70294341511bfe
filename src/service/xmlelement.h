#pragma once

#include <radiosim/radiosim_export.h>

#include <QByteArray>
#include <QDomDocument>
#include <QDomElement>
#include <QList>
#include <QString>
#include <QStringList>

namespace Simulation {

// Value class over one DOM element with typed reads and writes of attributes and of child
// elements holding only text.
//
// A remembering query ("...Remembered") stores the name it asked for, so that the read which
// follows may pass a null name: `if (e.hasIntChildRemembered("Count")) n = e.intChild();`.
//
// Only an element made from a tag name owns its document: it alone can be written to and
// serialised. A wrapping or parsed element reads only; writes to it do nothing, since the
// document of a parsed element is gone once parsing returns.
class RADIOSIM_EXPORT XmlElement
{
public:
    XmlElement();
    explicit XmlElement(const QDomElement &element);
    // Root named sTag, or sTag followed by the decimal iIndex when iIndex >= 0.
    explicit XmlElement(const QString &sTag, int iIndex = -1);

    // A null element if the bytes don't parse, or if they nest elements more than 256 levels
    // deep or declare more than 256 entities.
    static XmlElement fromByteArray(const QByteArray &xml);

    QString tagName() const;
    bool isValid() const;

    // A null sTag stands for the remembered child name. An empty name picks by position,
    // counted from 1; a position past the end gives the last child.
    XmlElement child(const QString &sTag = QString(), int iIndex = -1) const;
    // In document order; an empty name gives the child elements of every name.
    QList<XmlElement> children(const QString &sTag) const;
    QStringList attributeNames() const;
    QStringList childNames() const;

    QString attribute(const QString &sName = QString()) const;
    // Text of the first child of that name; an empty name gives the element's own text.
    QString text(const QString &sName = QString()) const;

    // Pass a QString value: a bare string literal would convert to bool and pick that overload.
    void setAttribute(const QString &sName, const QString &sValue);
    void setAttribute(const QString &sName, quint64 uiValue);
    void setAttribute(const QString &sName, bool bValue);

    void setChildText(const QString &sName, const QString &sText);
    void setChildText(const QString &sName, bool bValue);
    void setChildText(const QString &sName, int iValue);
    void setChildText(const QString &sName, uint uiValue);
    void setChildText(const QString &sName, quint64 uiValue);
    // Six significant digits: all that crosses the wire.
    void setChildText(const QString &sName, double dValue);

    void ensureChild(const QString &sName);
    void removeChild(const QString &sName);
    // Deep copy of other into this document, unless other is already a child of this element.
    void appendElement(const XmlElement &other);

    // UTF-8, four-blank indentation, no declaration, line feed at the end. Empty for an
    // element that doesn't own its document.
    QByteArray toByteArray() const;

    bool hasAttribute(const QString &sName) const;
    bool hasAttributeRemembered(const QString &sName);
    // Present even when empty (`<Name/>`); an empty name tests the element itself.
    bool hasChild(const QString &sName) const;
    bool hasChildRemembered(const QString &sName);
    bool hasChildElement(const QString &sTag, int iIndex) const;
    bool hasChildElementRemembered(const QString &sTag, int iIndex);

    bool hasBoolAttribute(const QString &sName) const;
    bool hasBoolAttributeRemembered(const QString &sName);
    bool hasDoubleAttribute(const QString &sName) const;
    bool hasDoubleAttributeRemembered(const QString &sName);
    bool hasIntAttribute(const QString &sName) const;
    bool hasIntAttributeRemembered(const QString &sName);
    bool hasUIntAttribute(const QString &sName) const;
    bool hasUIntAttributeRemembered(const QString &sName);

    bool boolAttribute(const QString &sName = QString()) const;
    // Whether the value isn't 0, not the value: kept for existing callers of this form.
    bool doubleAttribute(const QString &sName = QString()) const;
    int intAttribute(const QString &sName = QString()) const;
    uint uintAttribute(const QString &sName = QString()) const;

    bool hasBoolChild(const QString &sName) const;
    bool hasBoolChildRemembered(const QString &sName);
    bool hasDoubleChild(const QString &sName) const;
    bool hasDoubleChildRemembered(const QString &sName);
    bool hasIntChild(const QString &sName) const;
    bool hasIntChildRemembered(const QString &sName);
    bool hasUIntChild(const QString &sName) const;
    bool hasUIntChildRemembered(const QString &sName);
    bool hasUInt64Child(const QString &sName) const;
    bool hasUInt64ChildRemembered(const QString &sName);

    // False unless the text is "true" or "false".
    bool boolChild(const QString &sName = QString()) const;
    double doubleChild(const QString &sName = QString()) const;
    int intChild(const QString &sName = QString()) const;
    uint uintChild(const QString &sName = QString()) const;
    quint64 uint64Child(const QString &sName = QString()) const;

private:
    QString attributeName(const QString &sName) const;
    QString childName(const QString &sName) const;
    QString childText(const QString &sName) const;
    bool attributeRemembered(const QString &sName, bool (XmlElement::*test)(const QString &) const);
    bool childRemembered(const QString &sName, bool (XmlElement::*test)(const QString &) const);

    QDomDocument m_doc;
    QDomElement m_element;
    QString m_sLastAttribute;
    QString m_sLastChild;
};

} // namespace Simulation
