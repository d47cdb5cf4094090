#include "omml/omml_reader.h"
#include "omml/omml_reader_properties.h"

#include <QDomDocument>
#include <QDomElement>
#include <QXmlInputSource>
#include <QXmlSimpleReader>
#include <QXmlStreamReader>

#include <algorithm>

namespace {

using namespace ommlread;

template <class Kind> struct ArgumentSlot {
    const char* tag;
    KOmmlNodeList Kind::*list;
};

class KOmmlXmlReader {
public:
    KOmmlNodePtr element(const KXmlElement& element)
    {
        if (m_depth >= kMaxOmmlReadDepth)
            return nullptr;
        using Read = KOmmlNodePtr (*)(KOmmlXmlReader&, const KXmlElement&);
        struct Entry {
            const char* tag;
            Read read;
        };
        static const Entry kElements[] = {
            {"m:oMathPara", [](KOmmlXmlReader& r, const KXmlElement& e) { return r.paragraph(e); }},
            {"m:oMath", [](KOmmlXmlReader& r, const KXmlElement& e) { return r.equation(e); }},
            {"m:r", [](KOmmlXmlReader& r, const KXmlElement& e) { return r.run(e); }},
            {"m:d", [](KOmmlXmlReader& r, const KXmlElement& e) { return r.delimiter(e); }},
            {"m:m", [](KOmmlXmlReader& r, const KXmlElement& e) { return r.matrix(e); }},
            {"m:f",
             [](KOmmlXmlReader& r, const KXmlElement& e) {
                 return r.structure<OFraction>(e, "m:fPr", fractionProperties,
                                               {{"m:num", &OFraction::num}, {"m:den", &OFraction::den}});
             }},
            {"m:sSup",
             [](KOmmlXmlReader& r, const KXmlElement& e) {
                 return r.structure<OSuperscript>(e, "m:sSupPr", controlOnlyProperties<OSuperscript>,
                                                  {{"m:e", &OSuperscript::e}, {"m:sup", &OSuperscript::sup}});
             }},
            {"m:sSub",
             [](KOmmlXmlReader& r, const KXmlElement& e) {
                 return r.structure<OSubscript>(e, "m:sSubPr", controlOnlyProperties<OSubscript>,
                                                {{"m:e", &OSubscript::e}, {"m:sub", &OSubscript::sub}});
             }},
            {"m:sSubSup",
             [](KOmmlXmlReader& r, const KXmlElement& e) {
                 return r.structure<OSubSuperscript>(e, "m:sSubSupPr", controlOnlyProperties<OSubSuperscript>,
                                                     {{"m:e", &OSubSuperscript::e},
                                                      {"m:sub", &OSubSuperscript::sub},
                                                      {"m:sup", &OSubSuperscript::sup}});
             }},
            {"m:rad", [](KOmmlXmlReader& r, const KXmlElement& e) { return r.radical(e); }},
            {"m:nary",
             [](KOmmlXmlReader& r, const KXmlElement& e) {
                 return r.structure<ONaryOperator>(e, "m:naryPr", naryProperties,
                                                   {{"m:sub", &ONaryOperator::sub},
                                                    {"m:sup", &ONaryOperator::sup},
                                                    {"m:e", &ONaryOperator::e}});
             }},
            {"m:func",
             [](KOmmlXmlReader& r, const KXmlElement& e) {
                 return r.structure<OFunction>(e, "m:funcPr", controlOnlyProperties<OFunction>,
                                               {{"m:fName", &OFunction::fName}, {"m:e", &OFunction::e}});
             }},
            {"m:limLow",
             [](KOmmlXmlReader& r, const KXmlElement& e) {
                 return r.structure<OLimitLower>(e, "m:limLowPr", controlOnlyProperties<OLimitLower>,
                                                 {{"m:e", &OLimitLower::e}, {"m:lim", &OLimitLower::lim}});
             }},
            {"m:limUpp",
             [](KOmmlXmlReader& r, const KXmlElement& e) {
                 return r.structure<OLimitUpper>(e, "m:limUppPr", controlOnlyProperties<OLimitUpper>,
                                                 {{"m:e", &OLimitUpper::e}, {"m:lim", &OLimitUpper::lim}});
             }},
            {"m:acc",
             [](KOmmlXmlReader& r, const KXmlElement& e) {
                 return r.structure<OAccent>(e, "m:accPr", accentProperties, {{"m:e", &OAccent::e}});
             }},
            {"m:bar",
             [](KOmmlXmlReader& r, const KXmlElement& e) {
                 return r.structure<OBar>(e, "m:barPr", barProperties, {{"m:e", &OBar::e}});
             }},
            {"m:borderBox",
             [](KOmmlXmlReader& r, const KXmlElement& e) {
                 return r.structure<OBorderBox>(e, "m:borderBoxPr", borderBoxProperties,
                                                {{"m:e", &OBorderBox::e}});
             }},
            {"m:groupChr",
             [](KOmmlXmlReader& r, const KXmlElement& e) {
                 return r.structure<OGroupChar>(e, "m:groupChrPr", groupCharProperties,
                                                {{"m:e", &OGroupChar::e}});
             }},
            {"m:box",
             [](KOmmlXmlReader& r, const KXmlElement& e) {
                 return r.structure<OBox>(e, "m:boxPr", boxProperties, {{"m:e", &OBox::e}});
             }},
            {"m:eqArr", [](KOmmlXmlReader& r, const KXmlElement& e) { return r.equationArray(e); }},
            {"m:phant",
             [](KOmmlXmlReader& r, const KXmlElement& e) {
                 return r.structure<OPhantom>(e, "m:phantPr", phantomProperties, {{"m:e", &OPhantom::e}});
             }},
            {"m:sPre",
             [](KOmmlXmlReader& r, const KXmlElement& e) {
                 return r.structure<OPreSubSuperscript>(e, "m:sPrePr",
                                                        controlOnlyProperties<OPreSubSuperscript>,
                                                        {{"m:e", &OPreSubSuperscript::e},
                                                         {"m:sub", &OPreSubSuperscript::sub},
                                                         {"m:sup", &OPreSubSuperscript::sup}});
             }},
        };
        const QStringView tag = element.tagName();
        for (const Entry& entry : kElements) {
            if (is(tag, entry.tag)) {
                ++m_depth;
                KOmmlNodePtr node = entry.read(*this, element);
                --m_depth;
                return node;
            }
        }
        return nullptr;
    }

private:
    KOmmlNodeList nodes(const KXmlElement& parent)
    {
        KOmmlNodeList list;
        appendNodes(parent, list);
        return list;
    }

    // Documents wrap math in links, tracked insertions, content controls and
    // fields; what they hold is read as if it stood in their place. Deleted or
    // moved-away content, bookmarks and proofing marks are unknown elements and
    // vanish.
    static bool isWrapper(QStringView tag)
    {
        static const char* const kWrappers[] = {
            "w:hyperlink", "w:ins",        "w:moveTo",    "w:smartTag", "w:customXml",
            "w:sdt",       "w:sdtContent", "w:fldSimple", "w:dir",      "w:bdo",
        };
        for (const char* wrapper : kWrappers) {
            if (is(tag, wrapper))
                return true;
        }
        return false;
    }

    void appendNodes(const KXmlElement& parent, KOmmlNodeList& list)
    {
        parent.forEachChild([&](const KXmlElement& child, QStringView tag) {
            if (isWrapper(tag)) {
                if (m_depth >= kMaxOmmlReadDepth)
                    return;
                ++m_depth;
                appendNodes(child, list);
                --m_depth;
            } else if (KOmmlNodePtr node = element(child)) {
                list.push_back(std::move(node));
            }
        });
    }

    // The common shape: a properties element replaces the whole property record
    // by a fresh one filled from its children; an argument element replaces
    // that argument, so the last occurrence wins; anything else is ignored.
    template <class Kind>
    KOmmlNodePtr structure(const KXmlElement& element, const char* propertiesTag,
                           void (*readProperties)(Kind&, const KXmlElement&),
                           std::initializer_list<ArgumentSlot<Kind>> arguments)
    {
        Kind kind;
        element.forEachChild([&](const KXmlElement& child, QStringView tag) {
            if (is(tag, propertiesTag)) {
                Kind fresh;
                for (const ArgumentSlot<Kind>& slot : arguments)
                    fresh.*slot.list = std::move(kind.*slot.list);
                kind = std::move(fresh);
                readProperties(kind, child);
                return;
            }
            for (const ArgumentSlot<Kind>& slot : arguments) {
                if (is(tag, slot.tag)) {
                    kind.*slot.list = nodes(child);
                    return;
                }
            }
        });
        return makeOmmlNode(std::move(kind));
    }

    KOmmlNodePtr paragraph(const KXmlElement& element)
    {
        OMathParagraph p;
        element.forEachChild([&](const KXmlElement& child, QStringView tag) {
            if (is(tag, "m:oMathParaPr")) {
                p.justification = OJustification::centerGroup;
                child.forEachChild([&](const KXmlElement& prop, QStringView propTag) {
                    if (is(propTag, "m:jc"))
                        p.justification = justificationValue(prop);
                });
            } else if (is(tag, "m:oMath")) {
                // Only the last equation of a paragraph is kept.
                p.equation = this->element(child);
            }
        });
        return makeOmmlNode(std::move(p));
    }

    KOmmlNodePtr equation(const KXmlElement& element) { return makeOmmlNode(OMathEquation{nodes(element)}); }

    KOmmlNodePtr run(const KXmlElement& element)
    {
        ORun r;
        element.forEachChild([&](const KXmlElement& child, QStringView tag) {
            if (is(tag, "m:rPr"))
                r.mathProps = readMathRunProperties(child);
            else if (is(tag, "w:rPr"))
                r.wordProps = readWordRunProperties(child);
            else if (is(tag, "m:t"))
                r.text = child.text(); // the last m:t wins; texts are not joined
        });
        return makeOmmlNode(std::move(r));
    }

    // Every m:e is kept: the first is the delimiter's element, the others follow
    // it each after a separator.
    KOmmlNodePtr delimiter(const KXmlElement& element)
    {
        ODelimiter d;
        bool first = true;
        element.forEachChild([&](const KXmlElement& child, QStringView tag) {
            if (is(tag, "m:dPr")) {
                ODelimiter fresh;
                fresh.e = std::move(d.e);
                fresh.separated = std::move(d.separated);
                d = std::move(fresh);
                delimiterProperties(d, child);
            } else if (is(tag, "m:e")) {
                if (first)
                    d.e = nodes(child);
                else
                    d.separated.push_back(nodes(child));
                first = false;
            }
        });
        return makeOmmlNode(std::move(d));
    }

    KOmmlNodePtr radical(const KXmlElement& element)
    {
        ORadical r;
        element.forEachChild([&](const KXmlElement& child, QStringView tag) {
            if (is(tag, "m:radPr")) {
                r.ctrlPr = {};
                r.degHide = false;
                radicalProperties(r, child);
            } else if (is(tag, "m:deg")) {
                // An empty degree leaves the radical as it was, without one by default.
                KOmmlNodeList deg = nodes(child);
                if (!deg.empty())
                    r.deg = std::move(deg);
            } else if (is(tag, "m:e")) {
                r.e = nodes(child);
            }
        });
        return makeOmmlNode(std::move(r));
    }

    KOmmlNodePtr equationArray(const KXmlElement& element)
    {
        OEquationArray a;
        element.forEachChild([&](const KXmlElement& child, QStringView tag) {
            if (is(tag, "m:eqArrPr")) {
                a.ctrlPr = {};
                controlOnlyProperties(a, child);
            } else if (is(tag, "m:e")) {
                a.rows.push_back(nodes(child)); // empty rows are kept
            }
        });
        return makeOmmlNode(std::move(a));
    }

    KOmmlNodePtr matrix(const KXmlElement& element)
    {
        OMatrix m;
        element.forEachChild([&](const KXmlElement& child, QStringView tag) {
            if (is(tag, "m:mPr")) {
                std::vector<OMatrixRow> rows = std::move(m.rows);
                m = OMatrix{};
                m.rows = std::move(rows);
                matrixProperties(m, child);
            } else if (is(tag, "m:mr")) {
                OMatrixRow row;
                child.forEachChild([&](const KXmlElement& cell, QStringView cellTag) {
                    if (is(cellTag, "m:e"))
                        row.push_back(nodes(cell));
                });
                // A row without cells is dropped.
                if (!row.empty())
                    m.rows.push_back(std::move(row));
            }
        });
        return makeOmmlNode(std::move(m));
    }

    int m_depth = 0;
};

// Upper estimate of element nesting over raw text, for text the streaming
// parser rejects but the DOM parser may still accept (duplicate attributes,
// control characters, markup in entities). Comments, CDATA sections,
// processing instructions and declarations are skipped; quoted attribute values
// may hold ">".
int rawNestingDepth(const QString& xml)
{
    const int n = xml.size();
    int depth = 0;
    int deepest = 0;
    int i = 0;
    auto skipPast = [&](const char* terminator, int from) {
        const int at = xml.indexOf(QLatin1String(terminator), from);
        return at < 0 ? n : at + int(qstrlen(terminator));
    };
    while (i < n) {
        if (xml.at(i) != QLatin1Char('<')) {
            ++i;
            continue;
        }
        const QStringRef rest = xml.midRef(i);
        if (rest.startsWith(QLatin1String("<!--"))) {
            i = skipPast("-->", i + 4);
        } else if (rest.startsWith(QLatin1String("<![CDATA["))) {
            i = skipPast("]]>", i + 9);
        } else if (rest.startsWith(QLatin1String("<?"))) {
            i = skipPast("?>", i + 2);
        } else if (rest.startsWith(QLatin1String("</"))) {
            depth = std::max(depth - 1, 0);
            i = skipPast(">", i + 2);
        } else {
            // A start tag or a declaration; declarations may hold a bracketed
            // internal subset with quoted texts.
            const bool declaration = rest.startsWith(QLatin1String("<!"));
            QChar quote;
            int brackets = 0;
            int j = i + 1;
            for (; j < n; ++j) {
                const QChar c = xml.at(j);
                if (!quote.isNull()) {
                    if (c == quote)
                        quote = QChar();
                } else if (c == QLatin1Char('"') || c == QLatin1Char('\'')) {
                    quote = c;
                } else if (declaration && c == QLatin1Char('[')) {
                    ++brackets;
                } else if (declaration && c == QLatin1Char(']')) {
                    brackets = std::max(brackets - 1, 0);
                } else if (c == QLatin1Char('>') && brackets == 0) {
                    break;
                }
            }
            if (!declaration) {
                deepest = std::max(deepest, depth + 1);
                if (j >= n || xml.at(j - 1) != QLatin1Char('/'))
                    ++depth;
            }
            i = j + 1;
        }
    }
    return deepest;
}

// Measures element nesting before the DOM parser, which recurses per level,
// sees the text. The streaming parser keeps its own stack and is exact for
// well-formed text; where it stops at an error the raw estimate takes over.
bool nestingWithinLimit(const QString& xml)
{
    QXmlStreamReader reader(xml);
    reader.setNamespaceProcessing(false);
    int depth = 0;
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            if (++depth > kMaxOmmlReadDepth)
                return false;
            break;
        case QXmlStreamReader::EndElement:
            --depth;
            break;
        default:
            break;
        }
    }
    return !reader.hasError() || rawNestingDepth(xml) <= kMaxOmmlReadDepth;
}

} // namespace

KOmmlNodePtr readOmmlElement(const QDomElement& element)
{
    KXmlElementTree tree;
    copyDomElementTree(element, tree);
    KOmmlXmlReader reader;
    return reader.element(KXmlElement(&tree, 0));
}

KOmmlNodePtr readOmmlDocumentDom(const QString& xml)
{
    if (!nestingWithinLimit(xml))
        return nullptr;
    // The parser is set up as QDomDocument::setContent(QString) sets it up,
    // except that it reports white-space-only text: run text of only a space
    // is content, and the element tree drops the indentation itself.
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    QXmlInputSource source;
    source.setData(xml);
    QXmlSimpleReader parser;
    parser.setFeature(QStringLiteral("http://xml.org/sax/features/namespaces"), false);
    parser.setFeature(QStringLiteral("http://xml.org/sax/features/namespace-prefixes"), true);
    parser.setFeature(QStringLiteral("http://trolltech.com/xml/features/report-whitespace-only-CharData"),
                      true);
    QDomDocument document;
    const bool parsed = document.setContent(&source, &parser);
    QT_WARNING_POP
    if (!parsed)
        return nullptr;
    return readOmmlElement(document.documentElement());
}

KOmmlNodePtr readOmmlDocument(const QString& xml)
{
    KXmlElementTree tree;
    switch (readXmlElementTree(xml, kMaxOmmlReadDepth, tree)) {
    case KXmlStreamResult::read:
        break;
    case KXmlStreamResult::tooDeep:
        return nullptr;
    case KXmlStreamResult::unsupported:
        return readOmmlDocumentDom(xml);
    }
    KOmmlXmlReader reader;
    return reader.element(KXmlElement(&tree, 0));
}
