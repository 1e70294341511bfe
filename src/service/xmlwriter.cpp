#include "xmlwriter_p.h"

#include <QDomDocument>
#include <QDomElement>
#include <QDomNamedNodeMap>

namespace Simulation {

namespace {

constexpr int Indent = 4;

void appendReference(QString &out, ushort unit)
{
    out += QLatin1String("&#x");
    out += QString::number(unit, 16);
    out += QLatin1Char(';');
}

// Qt's escaping, character for character. Attribute values also escape quotes and every line
// break and tab; text escapes only carriage returns. '>' is escaped only after "]]". A lone
// surrogate becomes '?' in the final conversion, as in Qt's. Runs that need no escaping are
// appended whole: a scenario sent as text is megabytes of them.
void appendEscaped(QString &out, const QString &text, bool bAttribute)
{
    const QChar *data = text.constData();
    const int size = text.size();
    int plain = 0;
    for (int i = 0; i < size; ++i) {
        const ushort c = data[i].unicode();
        if (c > '>')
            continue;
        QLatin1String entity;
        if (c == '<')
            entity = QLatin1String("&lt;");
        else if (c == '&')
            entity = QLatin1String("&amp;");
        else if (c == '"' && bAttribute)
            entity = QLatin1String("&quot;");
        else if (c == '>' && i >= 2 && data[i - 1] == QLatin1Char(']')
            && data[i - 2] == QLatin1Char(']'))
            entity = QLatin1String("&gt;");
        else if (!(c == '\r' || ((c == '\n' || c == '\t') && bAttribute)))
            continue;
        out.append(data + plain, i - plain);
        if (entity.size() > 0)
            out += entity;
        else
            appendReference(out, c);
        plain = i + 1;
    }
    out.append(data + plain, size - plain);
}

bool isText(const QDomNode &node)
{
    return node.nodeType() == QDomNode::TextNode;
}

bool appendElement(QString &out, const QDomElement &element, int depth)
{
    if (!element.namespaceURI().isNull())
        return false;
    const QString indentation(depth * Indent, QLatin1Char(' '));
    if (!isText(element.previousSibling()))
        out += indentation;
    out += QLatin1Char('<');
    out += element.tagName();
    // Qt writes attributes in the order of its hash; the node map walks the same hash.
    const QDomNamedNodeMap attributes = element.attributes();
    for (int i = 0; i < attributes.count(); ++i) {
        const QDomAttr attribute = attributes.item(i).toAttr();
        if (!attribute.namespaceURI().isNull())
            return false;
        out += QLatin1Char(' ');
        out += attribute.name();
        out += QLatin1String("=\"");
        appendEscaped(out, attribute.value(), true);
        out += QLatin1Char('"');
    }
    const QDomNode first = element.firstChild();
    if (first.isNull()) {
        out += QLatin1String("/>");
    } else {
        out += QLatin1Char('>');
        if (!isText(first))
            out += QLatin1Char('\n');
        for (QDomNode node = first; !node.isNull(); node = node.nextSibling()) {
            if (node.isElement()) {
                if (!appendElement(out, node.toElement(), depth + 1))
                    return false;
            } else if (isText(node)) {
                appendEscaped(out, node.toText().data(), false);
            } else {
                return false;
            }
        }
        if (!isText(element.lastChild()))
            out += indentation;
        out += QLatin1String("</");
        out += element.tagName();
        out += QLatin1Char('>');
    }
    if (!isText(element.nextSibling()))
        out += QLatin1Char('\n');
    return true;
}

bool appendDocument(QString &out, const QDomDocument &document)
{
    if (!document.doctype().name().isEmpty())
        return false;
    for (QDomNode node = document.firstChild(); !node.isNull(); node = node.nextSibling()) {
        if (node.isDocumentType())
            continue;
        if (!node.isElement() || !appendElement(out, node.toElement(), 0))
            return false;
    }
    return true;
}

} // namespace

QByteArray domToByteArray(const QDomDocument &document)
{
    QString out;
    if (!appendDocument(out, document))
        return document.toByteArray(4);
    return out.toUtf8();
}

} // namespace Simulation
