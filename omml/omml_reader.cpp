#include "omml/omml_reader.h"

#include <QDomDocument>
#include <QDomElement>
#include <QXmlStreamReader>

namespace {

QString mVal(const QDomElement& element)
{
    return element.attribute(QStringLiteral("m:val"));
}

QString folded(const QString& value)
{
    return value.trimmed().toLower();
}

// "on" and "1" switch a flag on; everything else, "true" and a missing value
// included, switches it off.
bool onOffValue(const QDomElement& element)
{
    const QString value = folded(mVal(element));
    return value == QLatin1String("on") || value == QLatin1String("1");
}

// Only "top" is top; "bot", "bottom", empty and unknown values are bottom.
OPosition positionValue(const QDomElement& element)
{
    return folded(mVal(element)) == QLatin1String("top") ? OPosition::top : OPosition::bottom;
}

// Border box flags compare the raw value; a missing value counts as "0".
bool borderFlagValue(const QDomElement& element)
{
    const QString value = mVal(element);
    return value == QLatin1String("1") || value == QLatin1String("true") || value == QLatin1String("on");
}

OJustification justificationValue(const QDomElement& element)
{
    const QString value = folded(mVal(element));
    if (value == QLatin1String("left"))
        return OJustification::left;
    if (value == QLatin1String("right"))
        return OJustification::right;
    if (value == QLatin1String("center"))
        return OJustification::center;
    return OJustification::centerGroup;
}

OFractionType fractionTypeValue(const QDomElement& element)
{
    // Compared exactly: "noBar" is not a fraction type and reads as bar.
    const QString value = mVal(element);
    if (value == QLatin1String("skw"))
        return OFractionType::skewed;
    if (value == QLatin1String("lin"))
        return OFractionType::linear;
    if (value == QLatin1String("nobar"))
        return OFractionType::noBar;
    return OFractionType::bar;
}

OScript scriptValue(const QDomElement& element)
{
    const QString value = folded(mVal(element));
    if (value == QLatin1String("script"))
        return OScript::script;
    if (value == QLatin1String("fraktur"))
        return OScript::fraktur;
    if (value == QLatin1String("double-struck"))
        return OScript::doubleStruck;
    if (value == QLatin1String("sans-serif"))
        return OScript::sansSerif;
    if (value == QLatin1String("monospace"))
        return OScript::monospace;
    return OScript::roman;
}

OStyle styleValue(const QDomElement& element)
{
    const QString value = folded(mVal(element));
    if (value == QLatin1String("b") || value == QLatin1String("bold"))
        return OStyle::bold;
    if (value == QLatin1String("i") || value == QLatin1String("italic"))
        return OStyle::italic;
    if (value == QLatin1String("bi") || value == QLatin1String("bolditalic"))
        return OStyle::boldItalic;
    return OStyle::plain;
}

OColumnJustification columnJustificationValue(const QDomElement& element)
{
    const QString value = folded(mVal(element));
    if (value == QLatin1String("left"))
        return OColumnJustification::left;
    if (value == QLatin1String("right"))
        return OColumnJustification::right;
    return OColumnJustification::center;
}

// Group characters know only bottom and top here; "center" reads as top.
OVerticalJustification verticalJustificationValue(const QDomElement& element)
{
    const QString value = folded(mVal(element));
    if (value == QLatin1String("bot") || value == QLatin1String("bottom"))
        return OVerticalJustification::bottom;
    return OVerticalJustification::top;
}

int hexDigit(QChar c)
{
    const ushort u = c.unicode();
    if (u >= '0' && u <= '9')
        return u - '0';
    if (u >= 'a' && u <= 'f')
        return u - 'a' + 10;
    if (u >= 'A' && u <= 'F')
        return u - 'A' + 10;
    return -1;
}

// Reads "rrggbb"; anything else ("auto", "f00", stray characters) gives nothing.
std::optional<QColor> colourValue(const QString& value)
{
    if (value.size() != 6)
        return std::nullopt;
    int components[3];
    for (int i = 0; i < 3; ++i) {
        const int high = hexDigit(value.at(2 * i));
        const int low = hexDigit(value.at(2 * i + 1));
        if (high < 0 || low < 0)
            return std::nullopt;
        components[i] = high * 16 + low;
    }
    return QColor(components[0], components[1], components[2], 255);
}

// Calls visit(child, tag) for each element child in document order; text,
// comments and processing instructions are skipped.
template <class Visit> void forEachChildElement(const QDomElement& parent, Visit&& visit)
{
    for (QDomNode node = parent.firstChild(); !node.isNull(); node = node.nextSibling()) {
        if (!node.isElement())
            continue;
        const QDomElement child = node.toElement();
        visit(child, child.tagName());
    }
}

bool is(const QString& tag, const char* name)
{
    return tag == QLatin1String(name);
}

OMathRunProperties readMathRunProperties(const QDomElement& element)
{
    OMathRunProperties props;
    forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
        if (is(tag, "m:scr"))
            props.script = scriptValue(child);
        else if (is(tag, "m:sty"))
            props.style = styleValue(child);
    });
    return props;
}

OWordRunProperties readWordRunProperties(const QDomElement& element)
{
    OWordRunProperties props;
    forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
        if (is(tag, "w:rFonts")) {
            props.asciiFont = child.attribute(QStringLiteral("w:ascii"));
            props.hAnsiFont = child.attribute(QStringLiteral("w:hAnsi"));
            // Older documents spell the attribute with a hyphen.
            if (props.hAnsiFont.isEmpty())
                props.hAnsiFont = child.attribute(QStringLiteral("w:h-ansi"));
            // The model knows a single hint, whatever the document says.
            props.hint = OFontHint::defaultHint;
        } else if (is(tag, "w:i")) {
            props.italic = true;
        } else if (is(tag, "w:b")) {
            props.bold = true;
        } else if (is(tag, "w:color")) {
            if (const auto colour = colourValue(child.attribute(QStringLiteral("w:val"))))
                props.color = colour;
        }
    });
    return props;
}

OControlProperties readControlProperties(const QDomElement& element)
{
    OControlProperties props;
    forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
        if (is(tag, "w:rPr"))
            props.wordProps = readWordRunProperties(child);
        else if (is(tag, "m:rPr"))
            props.mathProps = readMathRunProperties(child);
    });
    return props;
}

// A properties element holding nothing but m:ctrlPr.
OControlProperties readControlOnly(const QDomElement& element)
{
    OControlProperties ctrlPr;
    forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
        if (is(tag, "m:ctrlPr"))
            ctrlPr = readControlProperties(child);
    });
    return ctrlPr;
}

class KOmmlXmlReader {
public:
    KOmmlNodePtr element(const QDomElement& element)
    {
        if (m_depth >= kMaxOmmlReadDepth)
            return nullptr;
        using Read = KOmmlNodePtr (*)(KOmmlXmlReader&, const QDomElement&);
        struct Entry {
            const char* tag;
            Read read;
        };
        static const Entry kElements[] = {
            {"m:oMathPara", [](KOmmlXmlReader& r, const QDomElement& e) { return r.paragraph(e); }},
            {"m:oMath", [](KOmmlXmlReader& r, const QDomElement& e) { return r.equation(e); }},
            {"m:r", [](KOmmlXmlReader& r, const QDomElement& e) { return r.run(e); }},
            {"m:d", [](KOmmlXmlReader& r, const QDomElement& e) { return r.delimiter(e); }},
            {"m:m", [](KOmmlXmlReader& r, const QDomElement& e) { return r.matrix(e); }},
            {"m:f", [](KOmmlXmlReader& r, const QDomElement& e) { return r.fraction(e); }},
            {"m:sSup", [](KOmmlXmlReader& r, const QDomElement& e) { return r.superscript(e); }},
            {"m:sSub", [](KOmmlXmlReader& r, const QDomElement& e) { return r.subscript(e); }},
            {"m:sSubSup", [](KOmmlXmlReader& r, const QDomElement& e) { return r.subSuperscript(e); }},
            {"m:rad", [](KOmmlXmlReader& r, const QDomElement& e) { return r.radical(e); }},
            {"m:nary", [](KOmmlXmlReader& r, const QDomElement& e) { return r.nary(e); }},
            {"m:func", [](KOmmlXmlReader& r, const QDomElement& e) { return r.function(e); }},
            {"m:limLow", [](KOmmlXmlReader& r, const QDomElement& e) { return r.limitLower(e); }},
            {"m:limUpp", [](KOmmlXmlReader& r, const QDomElement& e) { return r.limitUpper(e); }},
            {"m:acc", [](KOmmlXmlReader& r, const QDomElement& e) { return r.accent(e); }},
            {"m:bar", [](KOmmlXmlReader& r, const QDomElement& e) { return r.bar(e); }},
            {"m:borderBox", [](KOmmlXmlReader& r, const QDomElement& e) { return r.borderBox(e); }},
            {"m:groupChr", [](KOmmlXmlReader& r, const QDomElement& e) { return r.groupChar(e); }},
            {"m:box", [](KOmmlXmlReader& r, const QDomElement& e) { return r.box(e); }},
            {"m:eqArr", [](KOmmlXmlReader& r, const QDomElement& e) { return r.equationArray(e); }},
            {"m:phant", [](KOmmlXmlReader& r, const QDomElement& e) { return r.phantom(e); }},
            {"m:sPre", [](KOmmlXmlReader& r, const QDomElement& e) { return r.preSubSuperscript(e); }},
        };
        const QString tag = element.tagName();
        for (const Entry& entry : kElements) {
            if (tag == QLatin1String(entry.tag)) {
                ++m_depth;
                KOmmlNodePtr node = entry.read(*this, element);
                --m_depth;
                return node;
            }
        }
        return nullptr;
    }

private:
    KOmmlNodeList nodes(const QDomElement& parent)
    {
        KOmmlNodeList list;
        forEachChildElement(parent, [&](const QDomElement& child, const QString&) {
            if (KOmmlNodePtr node = element(child))
                list.push_back(std::move(node));
        });
        return list;
    }

    KOmmlNodePtr paragraph(const QDomElement& element)
    {
        OMathParagraph p;
        forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
            if (is(tag, "m:oMathParaPr")) {
                p.justification = OJustification::centerGroup;
                forEachChildElement(child, [&](const QDomElement& prop, const QString& propTag) {
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

    KOmmlNodePtr equation(const QDomElement& element) { return makeOmmlNode(OMathEquation{nodes(element)}); }

    KOmmlNodePtr run(const QDomElement& element)
    {
        ORun r;
        forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
            if (is(tag, "m:rPr"))
                r.mathProps = readMathRunProperties(child);
            else if (is(tag, "w:rPr"))
                r.wordProps = readWordRunProperties(child);
            else if (is(tag, "m:t"))
                r.text = child.text();
        });
        return makeOmmlNode(std::move(r));
    }

    KOmmlNodePtr fraction(const QDomElement& element)
    {
        OFraction f;
        forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
            if (is(tag, "m:fPr")) {
                f.ctrlPr = {};
                f.type = OFractionType::bar;
                forEachChildElement(child, [&](const QDomElement& prop, const QString& propTag) {
                    if (is(propTag, "m:type"))
                        f.type = fractionTypeValue(prop);
                    else if (is(propTag, "m:ctrlPr"))
                        f.ctrlPr = readControlProperties(prop);
                });
            } else if (is(tag, "m:num")) {
                f.num = nodes(child);
            } else if (is(tag, "m:den")) {
                f.den = nodes(child);
            }
        });
        return makeOmmlNode(std::move(f));
    }

    KOmmlNodePtr superscript(const QDomElement& element)
    {
        OSuperscript s;
        forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
            if (is(tag, "m:sSupPr"))
                s.ctrlPr = readControlOnly(child);
            else if (is(tag, "m:e"))
                s.e = nodes(child);
            else if (is(tag, "m:sup"))
                s.sup = nodes(child);
        });
        return makeOmmlNode(std::move(s));
    }

    KOmmlNodePtr subscript(const QDomElement& element)
    {
        OSubscript s;
        forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
            if (is(tag, "m:sSubPr"))
                s.ctrlPr = readControlOnly(child);
            else if (is(tag, "m:e"))
                s.e = nodes(child);
            else if (is(tag, "m:sub"))
                s.sub = nodes(child);
        });
        return makeOmmlNode(std::move(s));
    }

    KOmmlNodePtr subSuperscript(const QDomElement& element)
    {
        OSubSuperscript s;
        forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
            if (is(tag, "m:sSubSupPr"))
                s.ctrlPr = readControlOnly(child);
            else if (is(tag, "m:e"))
                s.e = nodes(child);
            else if (is(tag, "m:sub"))
                s.sub = nodes(child);
            else if (is(tag, "m:sup"))
                s.sup = nodes(child);
        });
        return makeOmmlNode(std::move(s));
    }

    KOmmlNodePtr preSubSuperscript(const QDomElement& element)
    {
        OPreSubSuperscript s;
        forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
            if (is(tag, "m:sPrePr"))
                s.ctrlPr = readControlOnly(child);
            else if (is(tag, "m:e"))
                s.e = nodes(child);
            else if (is(tag, "m:sub"))
                s.sub = nodes(child);
            else if (is(tag, "m:sup"))
                s.sup = nodes(child);
        });
        return makeOmmlNode(std::move(s));
    }

    KOmmlNodePtr radical(const QDomElement& element)
    {
        ORadical r;
        forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
            if (is(tag, "m:radPr")) {
                r.ctrlPr = {};
                r.degHide = false;
                forEachChildElement(child, [&](const QDomElement& prop, const QString& propTag) {
                    if (is(propTag, "m:ctrlPr"))
                        r.ctrlPr = readControlProperties(prop);
                    else if (is(propTag, "m:degHide"))
                        r.degHide = onOffValue(prop);
                });
            } else if (is(tag, "m:deg")) {
                // An empty degree leaves the radical without one.
                KOmmlNodeList deg = nodes(child);
                if (!deg.empty())
                    r.deg = std::move(deg);
            } else if (is(tag, "m:e")) {
                r.e = nodes(child);
            }
        });
        return makeOmmlNode(std::move(r));
    }

    KOmmlNodePtr nary(const QDomElement& element)
    {
        ONaryOperator n;
        forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
            if (is(tag, "m:naryPr")) {
                const ONaryOperator defaults;
                n.ctrlPr = {};
                n.chr = defaults.chr;
                n.limLoc = defaults.limLoc;
                n.subHide = defaults.subHide;
                n.supHide = defaults.supHide;
                forEachChildElement(child, [&](const QDomElement& prop, const QString& propTag) {
                    if (is(propTag, "m:ctrlPr"))
                        n.ctrlPr = readControlProperties(prop);
                    else if (is(propTag, "m:chr"))
                        n.chr = mVal(prop);
                    else if (is(propTag, "m:limLoc"))
                        n.limLoc = folded(mVal(prop)) == QLatin1String("undovr") ? OLimitLocation::undOvr
                                                                                 : OLimitLocation::subSup;
                    else if (is(propTag, "m:subHide"))
                        n.subHide = onOffValue(prop);
                    else if (is(propTag, "m:supHide"))
                        n.supHide = onOffValue(prop);
                });
            } else if (is(tag, "m:sub")) {
                n.sub = nodes(child);
            } else if (is(tag, "m:sup")) {
                n.sup = nodes(child);
            } else if (is(tag, "m:e")) {
                n.e = nodes(child);
            }
        });
        return makeOmmlNode(std::move(n));
    }

    KOmmlNodePtr function(const QDomElement& element)
    {
        OFunction f;
        forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
            if (is(tag, "m:funcPr"))
                f.ctrlPr = readControlOnly(child);
            else if (is(tag, "m:fName"))
                f.fName = nodes(child);
            else if (is(tag, "m:e"))
                f.e = nodes(child);
        });
        return makeOmmlNode(std::move(f));
    }

    template <class Limit> KOmmlNodePtr limit(const QDomElement& element, const char* propertiesTag)
    {
        Limit l;
        forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
            if (is(tag, propertiesTag))
                l.ctrlPr = readControlOnly(child);
            else if (is(tag, "m:e"))
                l.e = nodes(child);
            else if (is(tag, "m:lim"))
                l.lim = nodes(child);
        });
        return makeOmmlNode(std::move(l));
    }

    KOmmlNodePtr limitLower(const QDomElement& element) { return limit<OLimitLower>(element, "m:limLowPr"); }
    KOmmlNodePtr limitUpper(const QDomElement& element) { return limit<OLimitUpper>(element, "m:limUppPr"); }

    KOmmlNodePtr delimiter(const QDomElement& element)
    {
        ODelimiter d;
        forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
            if (is(tag, "m:dPr")) {
                const ODelimiter defaults;
                d.begChr = defaults.begChr;
                d.endChr = defaults.endChr;
                d.ctrlPr = {};
                forEachChildElement(child, [&](const QDomElement& prop, const QString& propTag) {
                    // A missing value means no fence on that side.
                    if (is(propTag, "m:begChr"))
                        d.begChr = mVal(prop);
                    else if (is(propTag, "m:endChr"))
                        d.endChr = mVal(prop);
                    else if (is(propTag, "m:ctrlPr"))
                        d.ctrlPr = readControlProperties(prop);
                });
            } else if (is(tag, "m:e")) {
                // The model holds one argument; separated arguments keep the last.
                d.e = nodes(child);
            }
        });
        return makeOmmlNode(std::move(d));
    }

    KOmmlNodePtr accent(const QDomElement& element)
    {
        OAccent a;
        forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
            if (is(tag, "m:accPr")) {
                a.ctrlPr = {};
                a.chr = OAccent{}.chr;
                forEachChildElement(child, [&](const QDomElement& prop, const QString& propTag) {
                    if (is(propTag, "m:ctrlPr"))
                        a.ctrlPr = readControlProperties(prop);
                    else if (is(propTag, "m:chr"))
                        a.chr = mVal(prop);
                });
            } else if (is(tag, "m:e")) {
                a.e = nodes(child);
            }
        });
        return makeOmmlNode(std::move(a));
    }

    KOmmlNodePtr bar(const QDomElement& element)
    {
        OBar b;
        forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
            if (is(tag, "m:barPr")) {
                // A properties element without m:pos puts the bar below.
                b.pos = OPosition::bottom;
                forEachChildElement(child, [&](const QDomElement& prop, const QString& propTag) {
                    if (is(propTag, "m:pos"))
                        b.pos = positionValue(prop);
                });
            } else if (is(tag, "m:e")) {
                b.e = nodes(child);
            }
        });
        return makeOmmlNode(std::move(b));
    }

    KOmmlNodePtr borderBox(const QDomElement& element)
    {
        OBorderBox b;
        forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
            if (is(tag, "m:borderBoxPr")) {
                KOmmlNodeList e = std::move(b.e);
                b = OBorderBox{};
                b.e = std::move(e);
                forEachChildElement(child, [&](const QDomElement& prop, const QString& propTag) {
                    if (is(propTag, "m:ctrlPr"))
                        b.ctrlPr = readControlProperties(prop);
                    else if (is(propTag, "m:hideTop"))
                        b.hideTop = borderFlagValue(prop);
                    else if (is(propTag, "m:hideBot"))
                        b.hideBot = borderFlagValue(prop);
                    else if (is(propTag, "m:hideLeft"))
                        b.hideLeft = borderFlagValue(prop);
                    else if (is(propTag, "m:hideRight"))
                        b.hideRight = borderFlagValue(prop);
                    else if (is(propTag, "m:strikeH"))
                        b.strikeH = borderFlagValue(prop);
                    else if (is(propTag, "m:strikeV"))
                        b.strikeV = borderFlagValue(prop);
                    else if (is(propTag, "m:strikeBLTR"))
                        b.strikeBLTR = borderFlagValue(prop);
                    else if (is(propTag, "m:strikeTLBR"))
                        b.strikeTLBR = borderFlagValue(prop);
                });
            } else if (is(tag, "m:e")) {
                b.e = nodes(child);
            }
        });
        return makeOmmlNode(std::move(b));
    }

    KOmmlNodePtr groupChar(const QDomElement& element)
    {
        OGroupChar g;
        forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
            if (is(tag, "m:groupChrPr")) {
                const OGroupChar defaults;
                g.ctrlPr = {};
                g.chr = defaults.chr;
                g.pos = defaults.pos;
                g.vertJc = defaults.vertJc;
                forEachChildElement(child, [&](const QDomElement& prop, const QString& propTag) {
                    if (is(propTag, "m:ctrlPr"))
                        g.ctrlPr = readControlProperties(prop);
                    else if (is(propTag, "m:chr"))
                        g.chr = mVal(prop);
                    else if (is(propTag, "m:pos"))
                        g.pos = positionValue(prop);
                    else if (is(propTag, "m:vertJc"))
                        g.vertJc = verticalJustificationValue(prop);
                });
            } else if (is(tag, "m:e")) {
                g.e = nodes(child);
            }
        });
        return makeOmmlNode(std::move(g));
    }

    KOmmlNodePtr box(const QDomElement& element)
    {
        OBox b;
        forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
            if (is(tag, "m:boxPr")) {
                b.ctrlPr = {};
                b.noBreak = OBox{}.noBreak;
                forEachChildElement(child, [&](const QDomElement& prop, const QString& propTag) {
                    if (is(propTag, "m:ctrlPr"))
                        b.ctrlPr = readControlProperties(prop);
                    else if (is(propTag, "m:noBreak"))
                        b.noBreak = onOffValue(prop);
                });
            } else if (is(tag, "m:e")) {
                b.e = nodes(child);
            }
        });
        return makeOmmlNode(std::move(b));
    }

    KOmmlNodePtr equationArray(const QDomElement& element)
    {
        OEquationArray a;
        forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
            if (is(tag, "m:eqArrPr"))
                a.ctrlPr = readControlOnly(child);
            else if (is(tag, "m:e"))
                a.rows.push_back(nodes(child)); // empty rows are kept
        });
        return makeOmmlNode(std::move(a));
    }

    KOmmlNodePtr phantom(const QDomElement& element)
    {
        OPhantom p;
        forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
            if (is(tag, "m:phantPr"))
                p.ctrlPr = readControlOnly(child);
            else if (is(tag, "m:e"))
                p.e = nodes(child);
        });
        return makeOmmlNode(std::move(p));
    }

    static OMatrixColumn matrixColumn(const QDomElement& mc)
    {
        OMatrixColumn column;
        forEachChildElement(mc, [&](const QDomElement& child, const QString& tag) {
            if (!is(tag, "m:mcPr"))
                return;
            forEachChildElement(child, [&](const QDomElement& prop, const QString& propTag) {
                if (is(propTag, "m:count"))
                    column.count = mVal(prop);
                else if (is(propTag, "m:mcJc"))
                    column.justification = columnJustificationValue(prop);
            });
        });
        return column;
    }

    KOmmlNodePtr matrix(const QDomElement& element)
    {
        OMatrix m;
        forEachChildElement(element, [&](const QDomElement& child, const QString& tag) {
            if (is(tag, "m:mPr")) {
                m.columns.clear();
                m.cGp.clear();
                m.cGpRule.clear();
                m.plcHide = false;
                m.ctrlPr = {};
                forEachChildElement(child, [&](const QDomElement& prop, const QString& propTag) {
                    if (is(propTag, "m:mcs")) {
                        forEachChildElement(prop, [&](const QDomElement& mc, const QString& mcTag) {
                            if (is(mcTag, "m:mc"))
                                m.columns.push_back(matrixColumn(mc));
                        });
                    } else if (is(propTag, "m:cGp")) {
                        m.cGp = mVal(prop);
                    } else if (is(propTag, "m:cGpRule")) {
                        m.cGpRule = mVal(prop);
                    } else if (is(propTag, "m:plcHide")) {
                        m.plcHide = onOffValue(prop);
                    } else if (is(propTag, "m:ctrlPr")) {
                        m.ctrlPr = readControlProperties(prop);
                    }
                });
            } else if (is(tag, "m:mr")) {
                OMatrixRow row;
                forEachChildElement(child, [&](const QDomElement& cell, const QString& cellTag) {
                    if (is(cellTag, "m:e"))
                        row.push_back(nodes(cell));
                });
                if (!row.empty())
                    m.rows.push_back(std::move(row));
            }
        });
        return makeOmmlNode(std::move(m));
    }

    int m_depth = 0;
};

// Measures element nesting with the streaming parser, which keeps its own
// stack, before the DOM parser (which recurses per level) sees the text.
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
    // Text the streaming parser rejects is not read further: past the error
    // its nesting is unknown.
    return !reader.hasError();
}

} // namespace

KOmmlNodePtr readOmmlElement(const QDomElement& element)
{
    KOmmlXmlReader reader;
    return reader.element(element);
}

KOmmlNodePtr readOmmlDocument(const QString& xml)
{
    if (!nestingWithinLimit(xml))
        return nullptr;
    QDomDocument document;
    if (!document.setContent(xml))
        return nullptr;
    return readOmmlElement(document.documentElement());
}
