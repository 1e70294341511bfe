#include "xmlreader_p.h"

#include <QTextCodec>

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

// The form our messages take, in which a plain reader builds what Qt's parser builds. Left to
// Qt's parser: declarations, comments, CDATA and processing instructions; character references
// (Qt's drops those beyond 16 bits); control characters and carriage returns (Qt's drops a lone
// one); tabs and line feeds inside attribute values (Qt's keeps them, the standard makes them
// blanks); and names beyond plain ASCII letters, digits, '_', '-' and '.'.
bool isPlainForm(const QByteArray &xml)
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

bool isXmlBlank(QChar c)
{
    return c == QLatin1Char(' ') || c == QLatin1Char('\t') || c == QLatin1Char('\n');
}

// Qt's parser drops character data that is all white space, in QChar's sense.
bool isBlank(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.isSpace(); });
}

// Reads the plain form in one pass: elements, attributes in quotes, text with the five
// predefined entities. Anything else ends the read with a null document.
class PlainReader
{
public:
    explicit PlainReader(const QString &text)
        : m_p(text.constData())
        , m_end(m_p + text.size())
    {
    }

    QDomDocument read()
    {
        QDomDocument document { QString() };
        QDomNode parent = document;
        QStringList open;
        bool rootRead = false;
        QString text;
        while (m_p != m_end) {
            if (*m_p != QLatin1Char('<')) {
                if (open.isEmpty() ? !skipBlanks() : !characters(QLatin1Char('<'), text))
                    return {};
                continue;
            }
            ++m_p;
            if (!text.isEmpty() && !isBlank(text))
                parent.appendChild(document.createTextNode(text));
            text.clear();
            if (skip(QLatin1Char('/'))) {
                if (open.isEmpty() || name() != open.last())
                    return {};
                skipBlanks();
                if (!skip(QLatin1Char('>')))
                    return {};
                open.removeLast();
                parent = parent.parentNode();
                rootRead = open.isEmpty();
                continue;
            }
            const QString tag = name();
            if (rootRead || tag.isEmpty())
                return {};
            QDomElement element = document.createElement(tag);
            parent.appendChild(element);
            const int opened = startTag(element);
            if (opened < 0)
                return {};
            if (opened > 0) {
                open.append(tag);
                parent = element;
            }
            rootRead = open.isEmpty();
        }
        return rootRead && open.isEmpty() ? document : QDomDocument();
    }

private:
    // The attributes and the end of a start tag: 1 when the element stays open, 0 for an
    // empty element, -1 for anything else.
    int startTag(QDomElement &element)
    {
        for (;;) {
            const bool blank = skipBlanks();
            if (skip(QLatin1Char('>')))
                return 1;
            if (skip(QLatin1Char('/')))
                return skip(QLatin1Char('>')) ? 0 : -1;
            const QString attribute = name();
            if (!blank || attribute.isEmpty() || element.hasAttribute(attribute))
                return -1;
            skipBlanks();
            if (!skip(QLatin1Char('=')))
                return -1;
            skipBlanks();
            if (m_p == m_end || (*m_p != QLatin1Char('"') && *m_p != QLatin1Char('\'')))
                return -1;
            const QChar quote = *m_p++;
            QString value;
            if (!characters(quote, value) || !skip(quote))
                return -1;
            element.setAttribute(attribute, value);
        }
    }

    // Up to stop or, in text, to the next tag; false for an entity other than the five, a
    // '<' in a value, "]]>", a noncharacter or a byte order mark, which Qt's parser drops.
    bool characters(QChar stop, QString &out)
    {
        const bool inText = stop == QLatin1Char('<');
        const QChar *run = m_p;
        for (; m_p != m_end && *m_p != stop; ++m_p) {
            const QChar c = *m_p;
            if (c.unicode() >= 0xfffe || c.unicode() == 0xfeff
                || (c == QLatin1Char('<') && !inText))
                return false;
            if (c == QLatin1Char('>') && m_p - run >= 2 && m_p[-1] == QLatin1Char(']')
                && m_p[-2] == QLatin1Char(']'))
                return false;
            if (c != QLatin1Char('&'))
                continue;
            out.append(run, int(m_p - run));
            const QChar entity = this->entity();
            if (entity.isNull())
                return false;
            out.append(entity);
            run = m_p + 1;
        }
        out.append(run, int(m_p - run));
        return true;
    }

    // At an '&': the character of a predefined entity, the reader left on its ';'.
    QChar entity()
    {
        static const std::pair<QLatin1String, char> entities[] = { { QLatin1String("lt;"), '<' },
            { QLatin1String("gt;"), '>' }, { QLatin1String("amp;"), '&' },
            { QLatin1String("quot;"), '"' }, { QLatin1String("apos;"), '\'' } };
        const QStringView rest(m_p + 1, m_end);
        for (const auto &[name, character] : entities) {
            if (rest.startsWith(name)) {
                m_p += name.size();
                return QLatin1Char(character);
            }
        }
        return {};
    }

    QString name()
    {
        const QChar *start = m_p;
        while (m_p != m_end && m_p->unicode() < 0x80 && isNameChar(char(m_p->unicode())))
            ++m_p;
        return QString(start, int(m_p - start));
    }

    bool skip(QChar c)
    {
        if (m_p == m_end || *m_p != c)
            return false;
        ++m_p;
        return true;
    }

    bool skipBlanks()
    {
        const QChar *start = m_p;
        while (m_p != m_end && isXmlBlank(*m_p))
            ++m_p;
        return m_p != start;
    }

    const QChar *m_p;
    const QChar *m_end;
};

// Null unless the bytes are valid UTF-8 in the plain form.
QDomDocument plainDocument(const QByteArray &xml)
{
    if (xml.startsWith("\xef\xbb\xbf") || !isPlainForm(xml))
        return {};
    QTextCodec::ConverterState state;
    const QString text
        = QTextCodec::codecForMib(106)->toUnicode(xml.constData(), xml.size(), &state);
    return state.invalidChars == 0 ? PlainReader(text).read() : QDomDocument();
}

} // namespace

QDomDocument domFromByteArray(const QByteArray &xml)
{
    const QDomDocument plain = plainDocument(xml);
    if (!plain.isNull())
        return plain;
    QDomDocument document { QString() };
    document.setContent(xml);
    return document;
}

} // namespace Simulation
