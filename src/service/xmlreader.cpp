#include "xmlreader_p.h"

#include <QXmlStreamReader>

#include <algorithm>

namespace Simulation {

namespace {

bool isNameStart(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool isNameChar(char c)
{
    return isNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

// Where the two parsers differ, the bytes go to Qt's: declarations, comments, CDATA and
// processing instructions; character references (Qt's drops those beyond 16 bits); control
// characters and carriage returns (Qt's drops a lone one); tabs and line feeds inside attribute
// values (Qt's keeps them, the stream reader makes them blanks); and names beyond plain ASCII
// letters, digits, '_', '-' and '.', whose rules the two read differently. The messages we
// write have none of these.
bool isStreamable(const QByteArray &xml)
{
    char previous = 0;
    char quote = 0;
    bool inTag = false;
    bool inName = false;
    for (const char c : xml) {
        if ((uchar(c) < 0x20 && c != '\t' && c != '\n') || (previous == '&' && c == '#'))
            return false;
        previous = c;
        if (quote) {
            if (c == quote)
                quote = 0;
            else if (c == '\t' || c == '\n')
                return false;
        } else if (!inTag) {
            inTag = c == '<';
            inName = false;
        } else if (isNameChar(c)) {
            if (!inName && !isNameStart(c))
                return false;
            inName = true;
        } else {
            if (c == '"' || c == '\'')
                quote = c;
            else if (c == '>')
                inTag = false;
            else if (c != ' ' && c != '\t' && c != '\n' && c != '/' && c != '=')
                return false;
            inName = false;
        }
    }
    return true;
}

// Qt's parser drops character data that is all white space, in QChar's sense.
bool isBlank(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.isSpace(); });
}

// Null when the stream reader refuses the document.
QDomDocument streamedDocument(const QByteArray &xml)
{
    QDomDocument document { QString() };
    QXmlStreamReader reader(xml);
    reader.setNamespaceProcessing(false);
    QDomNode parent = document;
    QString text;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::Characters) {
            text += reader.text();
            continue;
        }
        if (!text.isEmpty() && !isBlank(text))
            parent.appendChild(document.createTextNode(text));
        text.clear();
        if (token == QXmlStreamReader::StartElement) {
            QDomElement element = document.createElement(reader.qualifiedName().toString());
            for (const QXmlStreamAttribute &attribute : reader.attributes())
                element.setAttribute(
                    attribute.qualifiedName().toString(), attribute.value().toString());
            parent = parent.appendChild(element);
        } else if (token == QXmlStreamReader::EndElement) {
            parent = parent.parentNode();
        }
    }
    return reader.hasError() ? QDomDocument() : document;
}

} // namespace

QDomDocument domFromByteArray(const QByteArray &xml)
{
    if (isStreamable(xml)) {
        const QDomDocument document = streamedDocument(xml);
        if (!document.isNull())
            return document;
    }
    QDomDocument document { QString() };
    document.setContent(xml);
    return document;
}

} // namespace Simulation
