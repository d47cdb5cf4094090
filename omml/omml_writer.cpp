#include "omml/omml_writer.h"

#include <QXmlStreamWriter>

#include <algorithm>
#include <cstring>
#include <type_traits>
#include <vector>

namespace {

// Past this depth the remaining subtree is left out; the producers never build
// trees this deep, so it only guards against a stack overflow.
constexpr int kMaxWriteDepth = 2000;

// Room reserved up front for a paragraph: a short formula's OMML fits, so the
// text is not regrown many times while it is written.
constexpr int kTypicalParagraphSize = 4096;

bool isXmlChar(char32_t c)
{
    return c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c <= 0xD7FF) || (c >= 0xE000 && c <= 0xFFFD) ||
           (c >= 0x10000 && c <= 0x10FFFF);
}

// XML 1.0 cannot carry most C0 controls, lone surrogates or U+FFFE/U+FFFF, not
// even as character references, so they are dropped rather than written.
QString xmlSafe(const QString& text)
{
    const int n = text.size();
    int i = 0;
    for (; i < n; ++i) {
        const QChar c = text.at(i);
        if (c.isHighSurrogate() && i + 1 < n && text.at(i + 1).isLowSurrogate()) {
            ++i;
            continue;
        }
        if (c.isSurrogate() || !isXmlChar(c.unicode()))
            break;
    }
    if (i == n)
        return text;
    QString clean = text.left(i);
    for (; i < n; ++i) {
        const QChar c = text.at(i);
        if (c.isHighSurrogate() && i + 1 < n && text.at(i + 1).isLowSurrogate()) {
            clean += c;
            clean += text.at(++i);
        } else if (!c.isSurrogate() && isXmlChar(c.unicode())) {
            clean += c;
        }
    }
    return clean;
}

QString scriptText(OScript script)
{
    switch (script) {
    case OScript::script:
        return QStringLiteral("script");
    case OScript::fraktur:
        return QStringLiteral("fraktur");
    case OScript::doubleStruck:
        return QStringLiteral("double-struck");
    case OScript::sansSerif:
        return QStringLiteral("sans-serif");
    case OScript::monospace:
        return QStringLiteral("monospace");
    default:
        return QStringLiteral("roman");
    }
}

QString styleText(OStyle style)
{
    switch (style) {
    case OStyle::bold:
        return QStringLiteral("b");
    case OStyle::italic:
        return QStringLiteral("i");
    case OStyle::boldItalic:
        return QStringLiteral("bi");
    default:
        return QStringLiteral("p");
    }
}

QString justificationText(OJustification justification)
{
    switch (justification) {
    case OJustification::left:
        return QStringLiteral("left");
    case OJustification::right:
        return QStringLiteral("right");
    case OJustification::center:
        return QStringLiteral("center");
    default:
        return QStringLiteral("centerGroup");
    }
}

// A group character sits at the top or the bottom; anything else is read as top.
QString verticalJustificationText(OVerticalJustification justification)
{
    return justification == OVerticalJustification::bottom ? QStringLiteral("bot") : QStringLiteral("top");
}

QString columnJustificationText(OColumnJustification justification)
{
    switch (justification) {
    case OColumnJustification::left:
        return QStringLiteral("left");
    case OColumnJustification::right:
        return QStringLiteral("right");
    default:
        return QStringLiteral("center");
    }
}

QString onOff(bool flag)
{
    return flag ? QStringLiteral("on") : QStringLiteral("off");
}

QString positionText(OPosition position)
{
    return position == OPosition::bottom ? QStringLiteral("bot") : QStringLiteral("top");
}

// Appends XML text straight to a string with the same output as a
// QXmlStreamWriter without auto-formatting: the same escaping, an element
// closed with nothing written in it comes out self-closing, and an element
// holding a text (even an empty one) gets separate start and end tags. Names
// are written as given; no namespace processing. Texts are filtered of what
// XML cannot carry while they are escaped (see xmlSafe).
//
// The string is grown ahead and written through a pointer; the destructor cuts
// it to the length written.
class KXmlTextSink {
public:
    explicit KXmlTextSink(QString& out) : m_out(out), m_start(out.size())
    {
        m_open.reserve(32);
        const int capacity = std::max(out.capacity(), m_start + kMinimumRoom);
        m_out.resize(capacity);
        m_pos = m_out.data() + m_start;
        m_end = m_out.data() + m_out.size();
    }
    ~KXmlTextSink() { m_out.resize(int(m_pos - m_out.constData())); }
    KXmlTextSink(const KXmlTextSink&) = delete;
    KXmlTextSink& operator=(const KXmlTextSink&) = delete;

    void writeStartElement(QStringView name)
    {
        finishStartTag();
        put(u'<');
        put(name);
        m_open.push_back(name);
        m_inStartTag = true;
    }

    void writeEmptyElement(QStringView name)
    {
        finishStartTag();
        put(u'<');
        put(name);
        m_inStartTag = true;
        m_inEmptyElement = true;
    }

    void writeAttribute(QStringView name, QStringView value)
    {
        put(u' ');
        put(name);
        put(u"=\"");
        putEscaped(value, true);
        put(u'"');
    }

    void writeCharacters(QStringView text)
    {
        finishStartTag();
        putEscaped(text, false);
    }

    void writeTextElement(QStringView name, QStringView text)
    {
        writeStartElement(name);
        finishStartTag();
        putEscaped(text, false);
        writeEndElement();
    }

    void writeEndElement()
    {
        if (m_open.empty())
            return;
        if (m_inStartTag && !m_inEmptyElement) {
            put(u"/>");
            m_inStartTag = false;
            m_open.pop_back();
            return;
        }
        finishStartTag();
        put(u"</");
        put(m_open.back());
        put(u'>');
        m_open.pop_back();
    }

private:
    static constexpr int kMinimumRoom = 256;

    void finishStartTag()
    {
        if (!m_inStartTag)
            return;
        if (m_inEmptyElement)
            put(u"/>");
        else
            put(u'>');
        m_inStartTag = m_inEmptyElement = false;
    }

    void reserve(int more)
    {
        if (Q_UNLIKELY(m_end - m_pos < more))
            grow(more);
    }

    Q_NEVER_INLINE void grow(int more)
    {
        const int used = int(m_pos - m_out.constData());
        m_out.resize(std::max(2 * m_out.size(), used + more));
        m_pos = m_out.data() + used;
        m_end = m_out.data() + m_out.size();
    }

    void put(char16_t c)
    {
        reserve(1);
        *m_pos++ = QChar(c);
    }

    template <int N> void put(const char16_t (&literal)[N]) { put(QStringView(literal, N - 1)); }

    void put(QStringView text)
    {
        reserve(int(text.size()));
        std::memcpy(static_cast<void*>(m_pos), text.data(), size_t(text.size()) * sizeof(QChar));
        m_pos += text.size();
    }

    template <int N> static QChar* copy(QChar* out, const char16_t (&literal)[N])
    {
        for (int i = 0; i < N - 1; ++i)
            *out++ = QChar(literal[i]);
        return out;
    }

    // Markup characters always become entity references; in attribute values
    // tab, line feed and carriage return become character references so that
    // a reader's attribute normalisation keeps them. Characters XML cannot
    // carry are dropped.
    void putEscaped(QStringView text, bool inAttribute)
    {
        // Nearly every run and control carries the default font twice; its text
        // is shared with the constant, which needs no escaping.
        if (text.data() == kDefaultMathFont.constData() && text.size() == kDefaultMathFont.size()) {
            put(text);
            return;
        }
        constexpr int kLongestReplacement = 6; // "&quot;"
        // Bit i set: the character i below 0x40 is written as it is.
        constexpr quint64 kPlainAscii = 0xAFFFFFBB00000000ull;
        reserve(int(text.size()) * kLongestReplacement);
        QChar* out = m_pos;
        const QChar* const end = text.data() + text.size();
        for (const QChar* c = text.data(); c != end; ++c) {
            const char16_t u = c->unicode();
            if (u >= 0x40 ? u < 0xD800 : (kPlainAscii >> u) & 1) { // nothing to escape or drop
                *out++ = *c;
                continue;
            }
            switch (u) {
            case u'<':
                out = copy(out, u"&lt;");
                continue;
            case u'>':
                out = copy(out, u"&gt;");
                continue;
            case u'&':
                out = copy(out, u"&amp;");
                continue;
            case u'"':
                out = copy(out, u"&quot;");
                continue;
            case u'\t':
                out = inAttribute ? copy(out, u"&#9;") : copy(out, u"\t");
                continue;
            case u'\n':
                out = inAttribute ? copy(out, u"&#10;") : copy(out, u"\n");
                continue;
            case u'\r':
                out = inAttribute ? copy(out, u"&#13;") : copy(out, u"\r");
                continue;
            default:
                break;
            }
            if (c->isHighSurrogate()) {
                if (c + 1 != end && c[1].isLowSurrogate()) {
                    *out++ = c[0];
                    *out++ = c[1];
                    ++c;
                }
                continue;
            }
            if (!c->isSurrogate() && isXmlChar(u))
                *out++ = *c;
        }
        m_pos = out;
    }

    QString& m_out;
    int m_start;
    QChar* m_pos = nullptr;
    QChar* m_end = nullptr;
    // Names of the open elements, innermost last. They view the writer's
    // string literals, which outlive the sink.
    std::vector<QStringView> m_open;
    bool m_inStartTag = false;
    bool m_inEmptyElement = false;
};

// One handler per model kind over an XML sink: a QXmlStreamWriter, or the
// string sink above, which gives the same text several times faster.
template <class Xml> class KOmmlXmlWriter {
public:
    explicit KOmmlXmlWriter(Xml& xml) : m_xml(xml) {}

    void node(const KOmmlNode& node)
    {
        if (m_depth >= kMaxWriteDepth)
            return;
        ++m_depth;
        std::visit([this](const auto& alternative) { this->write(alternative); }, node.value);
        --m_depth;
    }

    void write(const OMathParagraph& p)
    {
        m_xml.writeStartElement(QStringLiteral("m:oMathPara"));
        namespaces();
        m_xml.writeStartElement(QStringLiteral("m:oMathParaPr"));
        val(QStringLiteral("m:jc"), justificationText(p.justification));
        m_xml.writeEndElement();
        if (p.equation)
            node(*p.equation);
        m_xml.writeEndElement();
    }

    void write(const OMathEquation& e)
    {
        m_xml.writeStartElement(QStringLiteral("m:oMath"));
        namespaces();
        nodes(e.children);
        m_xml.writeEndElement();
    }

    void write(const ORun& r)
    {
        m_xml.writeStartElement(QStringLiteral("m:r"));
        mathRunProperties(r.mathProps);
        wordRunProperties(r.wordProps);
        runText(r.text);
        m_xml.writeEndElement();
    }

    void write(const OFraction& f)
    {
        m_xml.writeStartElement(QStringLiteral("m:f"));
        m_xml.writeStartElement(QStringLiteral("m:fPr"));
        switch (f.type) {
        case OFractionType::noBar:
            val(QStringLiteral("m:type"), QStringLiteral("noBar"));
            break;
        case OFractionType::linear:
            val(QStringLiteral("m:type"), QStringLiteral("lin"));
            break;
        case OFractionType::skewed:
            val(QStringLiteral("m:type"), QStringLiteral("skw"));
            break;
        default:
            break;
        }
        controlProperties(f.ctrlPr);
        m_xml.writeEndElement();
        argument(QStringLiteral("m:num"), f.num);
        argument(QStringLiteral("m:den"), f.den);
        m_xml.writeEndElement();
    }

    void write(const OSuperscript& s)
    {
        begin(QStringLiteral("m:sSup"), QStringLiteral("m:sSupPr"), s.ctrlPr);
        argument(QStringLiteral("m:e"), s.e);
        argument(QStringLiteral("m:sup"), s.sup);
        m_xml.writeEndElement();
    }

    void write(const OSubscript& s)
    {
        begin(QStringLiteral("m:sSub"), QStringLiteral("m:sSubPr"), s.ctrlPr);
        argument(QStringLiteral("m:e"), s.e);
        argument(QStringLiteral("m:sub"), s.sub);
        m_xml.writeEndElement();
    }

    void write(const OSubSuperscript& s)
    {
        begin(QStringLiteral("m:sSubSup"), QStringLiteral("m:sSubSupPr"), s.ctrlPr);
        argument(QStringLiteral("m:e"), s.e);
        argument(QStringLiteral("m:sub"), s.sub);
        argument(QStringLiteral("m:sup"), s.sup);
        m_xml.writeEndElement();
    }

    void write(const OPreSubSuperscript& s)
    {
        begin(QStringLiteral("m:sPre"), QStringLiteral("m:sPrePr"), s.ctrlPr);
        argument(QStringLiteral("m:sub"), s.sub);
        argument(QStringLiteral("m:sup"), s.sup);
        argument(QStringLiteral("m:e"), s.e);
        m_xml.writeEndElement();
    }

    void write(const ORadical& r)
    {
        m_xml.writeStartElement(QStringLiteral("m:rad"));
        m_xml.writeStartElement(QStringLiteral("m:radPr"));
        val(QStringLiteral("m:degHide"), onOff(r.degHide));
        controlProperties(r.ctrlPr);
        m_xml.writeEndElement();
        if (r.deg)
            argument(QStringLiteral("m:deg"), *r.deg);
        else
            m_xml.writeEmptyElement(QStringLiteral("m:deg"));
        argument(QStringLiteral("m:e"), r.e);
        m_xml.writeEndElement();
    }

    void write(const ONaryOperator& n)
    {
        m_xml.writeStartElement(QStringLiteral("m:nary"));
        m_xml.writeStartElement(QStringLiteral("m:naryPr"));
        if (!n.chr.isEmpty())
            val(QStringLiteral("m:chr"), n.chr);
        val(QStringLiteral("m:limLoc"),
            n.limLoc == OLimitLocation::undOvr ? QStringLiteral("undOvr") : QStringLiteral("subSup"));
        val(QStringLiteral("m:subHide"), onOff(n.subHide));
        val(QStringLiteral("m:supHide"), onOff(n.supHide));
        controlProperties(n.ctrlPr);
        m_xml.writeEndElement();
        argument(QStringLiteral("m:sub"), n.sub);
        argument(QStringLiteral("m:sup"), n.sup);
        argument(QStringLiteral("m:e"), n.e);
        m_xml.writeEndElement();
    }

    void write(const OLimitLower& l)
    {
        begin(QStringLiteral("m:limLow"), QStringLiteral("m:limLowPr"), l.ctrlPr);
        argument(QStringLiteral("m:e"), l.e);
        argument(QStringLiteral("m:lim"), l.lim);
        m_xml.writeEndElement();
    }

    void write(const OLimitUpper& l)
    {
        begin(QStringLiteral("m:limUpp"), QStringLiteral("m:limUppPr"), l.ctrlPr);
        argument(QStringLiteral("m:e"), l.e);
        argument(QStringLiteral("m:lim"), l.lim);
        m_xml.writeEndElement();
    }

    void write(const OFunction& f)
    {
        begin(QStringLiteral("m:func"), QStringLiteral("m:funcPr"), f.ctrlPr);
        argument(QStringLiteral("m:fName"), f.fName);
        argument(QStringLiteral("m:e"), f.e);
        m_xml.writeEndElement();
    }

    void write(const ODelimiter& d)
    {
        m_xml.writeStartElement(QStringLiteral("m:d"));
        m_xml.writeStartElement(QStringLiteral("m:dPr"));
        val(QStringLiteral("m:begChr"), d.begChr);
        if (!d.separated.empty())
            val(QStringLiteral("m:sepChr"), d.sepChr);
        val(QStringLiteral("m:endChr"), d.endChr);
        controlProperties(d.ctrlPr);
        m_xml.writeEndElement();
        argument(QStringLiteral("m:e"), d.e);
        for (const KOmmlNodeList& element : d.separated)
            argument(QStringLiteral("m:e"), element);
        m_xml.writeEndElement();
    }

    void write(const OAccent& a)
    {
        m_xml.writeStartElement(QStringLiteral("m:acc"));
        m_xml.writeStartElement(QStringLiteral("m:accPr"));
        if (!a.chr.isEmpty())
            val(QStringLiteral("m:chr"), a.chr);
        controlProperties(a.ctrlPr);
        m_xml.writeEndElement();
        argument(QStringLiteral("m:e"), a.e);
        m_xml.writeEndElement();
    }

    void write(const OBar& b)
    {
        m_xml.writeStartElement(QStringLiteral("m:bar"));
        m_xml.writeStartElement(QStringLiteral("m:barPr"));
        val(QStringLiteral("m:pos"), positionText(b.pos));
        m_xml.writeEndElement();
        argument(QStringLiteral("m:e"), b.e);
        m_xml.writeEndElement();
    }

    void write(const OBorderBox& b)
    {
        m_xml.writeStartElement(QStringLiteral("m:borderBox"));
        m_xml.writeStartElement(QStringLiteral("m:borderBoxPr"));
        const std::pair<const char*, bool> flags[] = {
            {"m:hideTop", b.hideTop},       {"m:hideBot", b.hideBot},       {"m:hideLeft", b.hideLeft},
            {"m:hideRight", b.hideRight},   {"m:strikeH", b.strikeH},       {"m:strikeV", b.strikeV},
            {"m:strikeBLTR", b.strikeBLTR}, {"m:strikeTLBR", b.strikeTLBR},
        };
        for (const auto& [name, set] : flags) {
            if (set)
                val(QLatin1String(name), QStringLiteral("1"));
        }
        controlProperties(b.ctrlPr);
        m_xml.writeEndElement();
        argument(QStringLiteral("m:e"), b.e);
        m_xml.writeEndElement();
    }

    void write(const OGroupChar& g)
    {
        m_xml.writeStartElement(QStringLiteral("m:groupChr"));
        m_xml.writeStartElement(QStringLiteral("m:groupChrPr"));
        if (!g.chr.isEmpty())
            val(QStringLiteral("m:chr"), g.chr);
        val(QStringLiteral("m:pos"), positionText(g.pos));
        val(QStringLiteral("m:vertJc"), verticalJustificationText(g.vertJc));
        controlProperties(g.ctrlPr);
        m_xml.writeEndElement();
        argument(QStringLiteral("m:e"), g.e);
        m_xml.writeEndElement();
    }

    void write(const OMatrix& m)
    {
        m_xml.writeStartElement(QStringLiteral("m:m"));
        m_xml.writeStartElement(QStringLiteral("m:mPr"));
        val(QStringLiteral("m:plcHide"), onOff(m.plcHide));
        if (!m.cGpRule.isEmpty())
            val(QStringLiteral("m:cGpRule"), m.cGpRule);
        if (!m.cGp.isEmpty())
            val(QStringLiteral("m:cGp"), m.cGp);
        if (!m.columns.empty()) {
            m_xml.writeStartElement(QStringLiteral("m:mcs"));
            for (const OMatrixColumn& column : m.columns) {
                m_xml.writeStartElement(QStringLiteral("m:mc"));
                m_xml.writeStartElement(QStringLiteral("m:mcPr"));
                if (!column.count.isEmpty())
                    val(QStringLiteral("m:count"), column.count);
                val(QStringLiteral("m:mcJc"), columnJustificationText(column.justification));
                m_xml.writeEndElement();
                m_xml.writeEndElement();
            }
            m_xml.writeEndElement();
        }
        controlProperties(m.ctrlPr);
        m_xml.writeEndElement();
        // A matrix has at least one row and a row at least one cell: an empty
        // one is written as one empty cell.
        for (const OMatrixRow& row : m.rows) {
            m_xml.writeStartElement(QStringLiteral("m:mr"));
            for (const KOmmlNodeList& cell : row)
                argument(QStringLiteral("m:e"), cell);
            if (row.empty())
                m_xml.writeEmptyElement(QStringLiteral("m:e"));
            m_xml.writeEndElement();
        }
        if (m.rows.empty()) {
            m_xml.writeStartElement(QStringLiteral("m:mr"));
            m_xml.writeEmptyElement(QStringLiteral("m:e"));
            m_xml.writeEndElement();
        }
        m_xml.writeEndElement();
    }

    void write(const OBox& b)
    {
        m_xml.writeStartElement(QStringLiteral("m:box"));
        m_xml.writeStartElement(QStringLiteral("m:boxPr"));
        val(QStringLiteral("m:noBreak"), onOff(b.noBreak));
        controlProperties(b.ctrlPr);
        m_xml.writeEndElement();
        argument(QStringLiteral("m:e"), b.e);
        m_xml.writeEndElement();
    }

    void write(const OEquationArray& a)
    {
        begin(QStringLiteral("m:eqArr"), QStringLiteral("m:eqArrPr"), a.ctrlPr);
        for (const KOmmlNodeList& row : a.rows)
            argument(QStringLiteral("m:e"), row);
        // An array has at least one line.
        if (a.rows.empty())
            m_xml.writeEmptyElement(QStringLiteral("m:e"));
        m_xml.writeEndElement();
    }

    void write(const OPhantom& p)
    {
        m_xml.writeStartElement(QStringLiteral("m:phant"));
        m_xml.writeStartElement(QStringLiteral("m:phantPr"));
        // An absent m:show shows the content; the other flags are off when absent.
        if (!p.show)
            val(QStringLiteral("m:show"), onOff(false));
        const std::pair<const char*, bool> flags[] = {
            {"m:zeroWid", p.zeroWid},
            {"m:zeroAsc", p.zeroAsc},
            {"m:zeroDesc", p.zeroDesc},
            {"m:transp", p.transp},
        };
        for (const auto& [name, set] : flags) {
            if (set)
                val(QLatin1String(name), onOff(true));
        }
        controlProperties(p.ctrlPr);
        m_xml.writeEndElement();
        argument(QStringLiteral("m:e"), p.e);
        m_xml.writeEndElement();
    }

    // Control properties hold only the word-processing run properties; the math
    // style of a structure is carried by its runs.
    void controlProperties(const OControlProperties& ctrlPr)
    {
        m_xml.writeStartElement(QStringLiteral("m:ctrlPr"));
        wordRunProperties(ctrlPr.wordProps);
        m_xml.writeEndElement();
    }

private:
    void nodes(const KOmmlNodeList& list)
    {
        for (const KOmmlNodePtr& child : list) {
            if (child)
                node(*child);
        }
    }

    // White space at either end of a run's text is kept only where the text says
    // so: readers of documents trim it otherwise.
    void runText(const QString& text)
    {
        auto isXmlSpace = [](QChar c) {
            return c == QLatin1Char(' ') || c == QLatin1Char('\t') || c == QLatin1Char('\n') ||
                   c == QLatin1Char('\r');
        };
        if (text.isEmpty() || (!isXmlSpace(text.front()) && !isXmlSpace(text.back()))) {
            m_xml.writeTextElement(QStringLiteral("m:t"), safe(text));
            return;
        }
        m_xml.writeStartElement(QStringLiteral("m:t"));
        m_xml.writeAttribute(QStringLiteral("xml:space"), QStringLiteral("preserve"));
        m_xml.writeCharacters(safe(text));
        m_xml.writeEndElement();
    }

    void namespaces()
    {
        m_xml.writeAttribute(QStringLiteral("xmlns:m"), kOmmlNamespace);
        m_xml.writeAttribute(QStringLiteral("xmlns:w"), kWordNamespace);
    }

    void argument(const QString& name, const KOmmlNodeList& list)
    {
        m_xml.writeStartElement(name);
        nodes(list);
        m_xml.writeEndElement();
    }

    // Opens a structure whose properties element holds only control properties.
    void begin(const QString& name, const QString& propertiesName, const OControlProperties& ctrlPr)
    {
        m_xml.writeStartElement(name);
        m_xml.writeStartElement(propertiesName);
        controlProperties(ctrlPr);
        m_xml.writeEndElement();
    }

    void val(const QString& name, const QString& value)
    {
        m_xml.writeEmptyElement(name);
        m_xml.writeAttribute(QStringLiteral("m:val"), safe(value));
    }

    void mathRunProperties(const OMathRunProperties& props)
    {
        m_xml.writeStartElement(QStringLiteral("m:rPr"));
        if (props.normalText) {
            // Normal text takes the place of the script and the style.
            m_xml.writeEmptyElement(QStringLiteral("m:nor"));
        } else {
            val(QStringLiteral("m:scr"), scriptText(props.script));
            if (props.style)
                val(QStringLiteral("m:sty"), styleText(*props.style));
        }
        m_xml.writeEndElement();
    }

    void wordRunProperties(const OWordRunProperties& props)
    {
        m_xml.writeStartElement(QStringLiteral("w:rPr"));
        m_xml.writeEmptyElement(QStringLiteral("w:rFonts"));
        if (!props.asciiFont.isEmpty())
            m_xml.writeAttribute(QStringLiteral("w:ascii"), safe(props.asciiFont));
        if (!props.hAnsiFont.isEmpty())
            m_xml.writeAttribute(QStringLiteral("w:hAnsi"), safe(props.hAnsiFont));
        m_xml.writeAttribute(QStringLiteral("w:hint"), QStringLiteral("default"));
        if (props.italic)
            m_xml.writeEmptyElement(QStringLiteral("w:i"));
        if (props.bold)
            m_xml.writeEmptyElement(QStringLiteral("w:b"));
        if (props.color) {
            const QColor& c = *props.color;
            m_xml.writeEmptyElement(QStringLiteral("w:color"));
            m_xml.writeAttribute(QStringLiteral("w:val"), QStringLiteral("%1%2%3")
                                                              .arg(c.red(), 2, 16, QLatin1Char('0'))
                                                              .arg(c.green(), 2, 16, QLatin1Char('0'))
                                                              .arg(c.blue(), 2, 16, QLatin1Char('0')));
        }
        m_xml.writeEndElement();
    }

    // The string sink drops what XML cannot carry itself, while escaping.
    using SafeText = std::conditional_t<std::is_same_v<Xml, QXmlStreamWriter>, QString, const QString&>;
    static SafeText safe(const QString& text)
    {
        if constexpr (std::is_same_v<Xml, QXmlStreamWriter>)
            return xmlSafe(text);
        else
            return text;
    }

    Xml& m_xml;
    int m_depth = 0;
};

} // namespace

void writeOmmlParagraph(const OMathParagraph& paragraph, QXmlStreamWriter& xml)
{
    KOmmlXmlWriter<QXmlStreamWriter>(xml).write(paragraph);
}

void writeOmmlNode(const KOmmlNode& node, QXmlStreamWriter& xml)
{
    KOmmlXmlWriter<QXmlStreamWriter>(xml).node(node);
}

void appendOmmlParagraph(const OMathParagraph& paragraph, QString& xml)
{
    KXmlTextSink sink(xml);
    KOmmlXmlWriter<KXmlTextSink>(sink).write(paragraph);
}

void appendOmmlNode(const KOmmlNode& node, QString& xml)
{
    KXmlTextSink sink(xml);
    KOmmlXmlWriter<KXmlTextSink>(sink).node(node);
}

QString ommlParagraphToXml(const OMathParagraph& paragraph)
{
    QString text;
    text.reserve(kTypicalParagraphSize);
    appendOmmlParagraph(paragraph, text);
    return text;
}

QString ommlNodeToXml(const KOmmlNode& node)
{
    QString text;
    appendOmmlNode(node, text);
    return text;
}
