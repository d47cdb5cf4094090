#include "omml/xml_element_tree.h"

#include <QDomElement>
#include <QXmlStreamReader>

#include <array>

int KXmlElementTree::append(int parent, const Node& node)
{
    const int index = int(nodes.size());
    nodes.push_back(node);
    if (parent >= 0) {
        Node& p = nodes[size_t(parent)];
        if (p.lastChild >= 0)
            nodes[size_t(p.lastChild)].nextSibling = index;
        else
            p.firstChild = index;
        p.lastChild = index;
    }
    return index;
}

QStringView KXmlElement::tagName() const
{
    const KXmlElementTree::Node& node = m_tree->nodes[size_t(m_index)];
    return m_tree->view(node.name, node.nameSize);
}

QString KXmlElement::attribute(QLatin1String name) const
{
    const KXmlElementTree::Node& node = m_tree->nodes[size_t(m_index)];
    for (int i = node.attributes; i < node.attributeEnd; ++i) {
        const KXmlElementTree::Attribute& a = m_tree->attributes[size_t(i)];
        if (m_tree->view(a.name, a.nameSize) == name)
            return m_tree->view(a.value, a.valueSize).toString();
    }
    return QString();
}

QString KXmlElement::text() const
{
    QString text;
    appendText(text);
    return text;
}

void KXmlElement::appendText(QString& text) const
{
    for (int i = m_tree->nodes[size_t(m_index)].firstChild; i >= 0;
         i = m_tree->nodes[size_t(i)].nextSibling) {
        const KXmlElementTree::Node& node = m_tree->nodes[size_t(i)];
        if (node.isText)
            text.append(m_tree->chars.constData() + node.name, node.nameSize);
        else
            KXmlElement(m_tree, i).appendText(text);
    }
}

namespace {

bool allSpace(QStringView text)
{
    for (QChar c : text) {
        if (!c.isSpace())
            return false;
    }
    return true;
}

// Run text is character data: a run of nothing but a space (a thin space, a
// quad) is content, not indentation, so it is kept below these elements.
bool keepsWhiteSpace(QStringView tag)
{
    return tag == QLatin1String("m:t") || tag == QLatin1String("w:t");
}

// The two parsers read references outside the plain forms differently (the
// streaming parser, for one, takes white space inside a character
// reference); only "&#digits;", "&#xhex;" and the five predefined entities
// are left to it. `text` starts at the "&".
bool plainReference(QStringView text)
{
    static const QLatin1String kPredefined[] = {QLatin1String("&amp;"), QLatin1String("&lt;"),
                                                QLatin1String("&gt;"), QLatin1String("&quot;"),
                                                QLatin1String("&apos;")};
    if (text.size() > 1 && text[1] == QLatin1Char('#')) {
        const bool hex = text.size() > 2 && text[2] == QLatin1Char('x');
        qsizetype i = hex ? 3 : 2;
        const qsizetype digits = i;
        for (; i < text.size(); ++i) {
            const ushort u = text[i].unicode();
            const bool digit =
                (u >= '0' && u <= '9') || (hex && ((u >= 'a' && u <= 'f') || (u >= 'A' && u <= 'F')));
            if (!digit)
                break;
        }
        return i > digits && i < text.size() && text[i] == QLatin1Char(';');
    }
    for (QLatin1String entity : kPredefined) {
        if (text.startsWith(entity))
            return true;
    }
    return false;
}

// What a first look at the text finds.
struct KTextSurvey {
    bool streamable = true;       // see survey()
    bool hasControlSpace = false; // a tab, line feed or carriage return somewhere
    bool hasCarriageReturn = false;
};

// The streaming parser reads the text re-encoded as UTF-8, which cannot carry
// lone surrogates, and the DOM parser refuses a text that starts with a byte
// order mark; such text, and text with characters XML forbids, is left to the
// DOM parser.
KTextSurvey survey(const QString& xml)
{
    KTextSurvey result;
    if (xml.startsWith(QChar(0xFEFF))) {
        result.streamable = false;
        return result;
    }
    static const std::pair<QLatin1String, QLatin1String> kLiterals[] = {
        {QLatin1String("<!--"), QLatin1String("-->")},
        {QLatin1String("<![CDATA["), QLatin1String("]]>")},
        {QLatin1String("<?"), QLatin1String("?>")},
    };
    QLatin1String literalEnd;
    const QChar* const end = xml.constData() + xml.size();
    for (const QChar* c = xml.constData(); c != end; ++c) {
        const ushort u = c->unicode();
        if (u == '<' || u == '&' || (!literalEnd.isEmpty() && u == literalEnd[0].unicode())) {
            // References count only outside comments, CDATA sections and
            // processing instructions, where "&" stands for itself.
            const QStringView rest(c, end);
            if (!literalEnd.isEmpty()) {
                if (rest.startsWith(literalEnd)) {
                    c += literalEnd.size() - 1;
                    literalEnd = QLatin1String();
                }
                continue;
            }
            if (u == '&' && !plainReference(rest)) {
                result.streamable = false;
                return result;
            }
            if (u != '<' || rest.size() < 2 || (rest[1] != QLatin1Char('!') && rest[1] != QLatin1Char('?')))
                continue;
            for (const auto& [start, stop] : kLiterals) {
                if (rest.startsWith(start)) {
                    literalEnd = stop;
                    c += start.size() - 1;
                    break;
                }
            }
            continue;
        }
        if (u >= 0x20 && u < 0xD800)
            continue;
        if (u == '\t' || u == '\n') {
            result.hasControlSpace = true;
            continue;
        }
        if (u == '\r') {
            result.hasControlSpace = result.hasCarriageReturn = true;
            continue;
        }
        if (u >= 0xE000 && u < 0xFFFE)
            continue;
        if (c->isHighSurrogate() && c + 1 != end && c[1].isLowSurrogate()) {
            ++c;
            continue;
        }
        result.streamable = false;
        return result;
    }
    return result;
}

// The streaming parser turns a tab, line feed or carriage return written as
// such in an attribute value into a space, and a carriage return in text into
// a line feed; the DOM parser keeps them. `raw` is the text of one start tag.
bool quotedControlSpace(QStringView raw)
{
    QChar quote;
    for (QChar c : raw) {
        if (!quote.isNull()) {
            if (c == quote)
                quote = QChar();
            else if (c == QLatin1Char('\t') || c == QLatin1Char('\n') || c == QLatin1Char('\r'))
                return true;
        } else if (c == QLatin1Char('"') || c == QLatin1Char('\'')) {
            quote = c;
        }
    }
    return false;
}

// The two parsers judge names outside ASCII by different editions of the
// rules; names of ASCII letters, digits and "_:.-" they judge alike.
bool asciiName(QStringView name)
{
    static constexpr auto kNameChars = [] {
        std::array<bool, 128> table{};
        for (int c = 0; c < 128; ++c)
            table[size_t(c)] = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                               c == '_' || c == ':' || c == '.' || c == '-';
        return table;
    }();
    for (QChar c : name) {
        if (c.unicode() >= 128 || !kNameChars[c.unicode()])
            return false;
    }
    return true;
}

bool asciiNames(QStringView element, const QXmlStreamAttributes& attributes)
{
    if (!asciiName(element))
        return false;
    for (const QXmlStreamAttribute& a : attributes) {
        if (!asciiName(a.qualifiedName()))
            return false;
    }
    return true;
}

class KTreeBuilder {
public:
    explicit KTreeBuilder(KXmlElementTree& tree) : m_tree(tree) {}

    void startElement(QStringView name, const QXmlStreamAttributes& attributes)
    {
        flushText();
        KXmlElementTree::Node node;
        node.name = m_tree.store(name);
        node.nameSize = int(name.size());
        node.attributes = int(m_tree.attributes.size());
        for (const QXmlStreamAttribute& a : attributes) {
            KXmlElementTree::Attribute attribute;
            const QStringRef qualifiedName = a.qualifiedName();
            const QStringRef value = a.value();
            attribute.name = m_tree.store(qualifiedName);
            attribute.nameSize = qualifiedName.size();
            attribute.value = m_tree.store(value);
            attribute.valueSize = value.size();
            m_tree.attributes.push_back(attribute);
        }
        node.attributeEnd = int(m_tree.attributes.size());
        m_open.push_back(m_tree.append(m_open.empty() ? -1 : m_open.back(), node));
    }

    void endElement()
    {
        flushText();
        m_open.pop_back();
    }

    // Character data between two pieces of markup may come in several tokens
    // (around references); it is judged as a whole.
    void characters(QStringView text)
    {
        if (m_open.empty())
            return;
        if (m_pendingSize == 0)
            m_pending = m_tree.charsUsed;
        m_tree.store(text);
        m_pendingSize += int(text.size());
    }

    void cdata(QStringView text)
    {
        flushText();
        if (m_open.empty())
            return;
        KXmlElementTree::Node node;
        node.isText = true;
        node.name = m_tree.store(text);
        node.nameSize = int(text.size());
        m_tree.append(m_open.back(), node);
    }

    // Markup other than elements (a comment, a processing instruction) ends character data.
    void otherMarkup() { flushText(); }

    int depth() const { return int(m_open.size()); }

    // True when white-space-only text at this point is kept (inside run text).
    bool keepsWhiteSpaceHere() const
    {
        if (m_open.empty())
            return false;
        const KXmlElementTree::Node& node = m_tree.nodes[size_t(m_open.back())];
        return keepsWhiteSpace(m_tree.view(node.name, node.nameSize));
    }

private:
    void flushText()
    {
        if (m_pendingSize == 0)
            return;
        const QStringView text = m_tree.view(m_pending, m_pendingSize);
        if (allSpace(text) && !keepsWhiteSpaceHere()) {
            m_tree.charsUsed = m_pending;
        } else {
            KXmlElementTree::Node node;
            node.isText = true;
            node.name = m_pending;
            node.nameSize = m_pendingSize;
            m_tree.append(m_open.back(), node);
        }
        m_pendingSize = 0;
    }

    KXmlElementTree& m_tree;
    std::vector<int> m_open;
    int m_pending = 0;
    int m_pendingSize = 0;
};

void copyDomNode(const QDomElement& element, int parent, KXmlElementTree& tree)
{
    KXmlElementTree::Node node;
    const QString name = element.tagName();
    node.name = tree.store(name);
    node.nameSize = name.size();
    node.attributes = int(tree.attributes.size());
    const QDomNamedNodeMap attributes = element.attributes();
    for (int i = 0; i < attributes.size(); ++i) {
        const QDomAttr a = attributes.item(i).toAttr();
        KXmlElementTree::Attribute attribute;
        const QString attributeName = a.name();
        const QString value = a.value();
        attribute.name = tree.store(attributeName);
        attribute.nameSize = attributeName.size();
        attribute.value = tree.store(value);
        attribute.valueSize = value.size();
        tree.attributes.push_back(attribute);
    }
    node.attributeEnd = int(tree.attributes.size());
    const int index = tree.append(parent, node);
    const bool keepSpace = keepsWhiteSpace(name);
    for (QDomNode child = element.firstChild(); !child.isNull(); child = child.nextSibling()) {
        if (child.isElement()) {
            copyDomNode(child.toElement(), index, tree);
        } else if (child.isText()) { // CDATA sections are text nodes too
            const QString value = child.nodeValue();
            // Text that is only white space is indentation outside run text;
            // CDATA sections are kept as they are.
            if (!keepSpace && !child.isCDATASection() && allSpace(value))
                continue;
            KXmlElementTree::Node text;
            text.isText = true;
            text.name = tree.store(value);
            text.nameSize = value.size();
            tree.append(index, text);
        }
    }
}

} // namespace

KXmlStreamResult readXmlElementTree(const QString& xml, int maxDepth, KXmlElementTree& tree)
{
    const KTextSurvey text = survey(xml);
    if (!text.streamable)
        return KXmlStreamResult::unsupported;
    // Names and texts take fewer characters than the markup around them, and
    // a node or attribute costs at least a few characters of text.
    tree.chars.resize(xml.size()); // names and texts are never longer than the markup
    tree.nodes.reserve(size_t(xml.size() / 16));
    tree.attributes.reserve(size_t(xml.size() / 32));
    KTreeBuilder builder(tree);
    QXmlStreamReader reader(xml);
    reader.setNamespaceProcessing(false);
    // Where the current token starts in the text; only tracked when the text
    // holds the characters the two parsers treat differently.
    qint64 tokenStart = 0;
    const auto raw = [&] { return QStringView(xml).mid(tokenStart, reader.characterOffset() - tokenStart); };
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            if (builder.depth() >= maxDepth)
                return KXmlStreamResult::tooDeep;
            if (text.hasControlSpace && quotedControlSpace(raw()))
                return KXmlStreamResult::unsupported;
            if (!asciiNames(reader.qualifiedName(), reader.attributes()))
                return KXmlStreamResult::unsupported;
            builder.startElement(reader.qualifiedName(), reader.attributes());
            break;
        case QXmlStreamReader::EndElement:
            builder.endElement();
            break;
        case QXmlStreamReader::Characters:
            if (reader.isCDATA()) {
                builder.cdata(reader.text());
                break;
            }
            if (text.hasCarriageReturn && (!reader.isWhitespace() || builder.keepsWhiteSpaceHere()) &&
                raw().contains(QLatin1Char('\r')))
                return KXmlStreamResult::unsupported;
            builder.characters(reader.text());
            break;
        case QXmlStreamReader::ProcessingInstruction:
            if (!asciiName(reader.processingInstructionTarget()))
                return KXmlStreamResult::unsupported;
            builder.otherMarkup();
            break;
        case QXmlStreamReader::Comment:
            builder.otherMarkup();
            break;
        case QXmlStreamReader::DTD:
        case QXmlStreamReader::EntityReference:
            return KXmlStreamResult::unsupported;
        default:
            break;
        }
        if (text.hasControlSpace)
            tokenStart = reader.characterOffset();
    }
    if (reader.hasError() || tree.nodes.empty())
        return KXmlStreamResult::unsupported;
    return KXmlStreamResult::read;
}

void copyDomElementTree(const QDomElement& element, KXmlElementTree& tree)
{
    tree.chars.resize(256);
    copyDomNode(element, -1, tree);
}
