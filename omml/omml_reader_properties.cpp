#include "omml/omml_reader_properties.h"

namespace ommlread {

namespace {

QString mVal(const KXmlElement& element)
{
    return element.attribute(QLatin1String("m:val"));
}

QString folded(const QString& value)
{
    return value.trimmed().toLower();
}

// "on" and "1" switch a flag on; everything else, "true" and a missing value
// included, switches it off.
bool onOffValue(const KXmlElement& element)
{
    const QString value = folded(mVal(element));
    return value == QLatin1String("on") || value == QLatin1String("1");
}

// Only "top" is top; "bot", "bottom", empty and unknown values are bottom.
OPosition positionValue(const KXmlElement& element)
{
    return folded(mVal(element)) == QLatin1String("top") ? OPosition::top : OPosition::bottom;
}

// Border box flags compare the raw value; a missing value counts as "0".
bool borderFlagValue(const KXmlElement& element)
{
    const QString value = mVal(element);
    return value == QLatin1String("1") || value == QLatin1String("true") || value == QLatin1String("on");
}

// A flag of the standard's kind: present without a value, or with a value
// other than "off", "0" or "false", it is on.
bool flagValue(const KXmlElement& element)
{
    const QString value = folded(mVal(element));
    return value != QLatin1String("off") && value != QLatin1String("0") && value != QLatin1String("false");
}

OFractionType fractionTypeValue(const KXmlElement& element)
{
    // "noBar" is the standard's spelling; "nobar" is read as well.
    const QString value = mVal(element);
    if (value == QLatin1String("skw"))
        return OFractionType::skewed;
    if (value == QLatin1String("lin"))
        return OFractionType::linear;
    if (value == QLatin1String("noBar") || value == QLatin1String("nobar"))
        return OFractionType::noBar;
    return OFractionType::bar;
}

OScript scriptValue(const KXmlElement& element)
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

OStyle styleValue(const KXmlElement& element)
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

OColumnJustification columnJustificationValue(const KXmlElement& element)
{
    const QString value = folded(mVal(element));
    if (value == QLatin1String("left"))
        return OColumnJustification::left;
    if (value == QLatin1String("right"))
        return OColumnJustification::right;
    return OColumnJustification::center;
}

// Group characters know only bottom and top here; "center" reads as top.
OVerticalJustification verticalJustificationValue(const KXmlElement& element)
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

OMatrixColumn matrixColumn(const KXmlElement& mc)
{
    OMatrixColumn column;
    mc.forEachChild([&](const KXmlElement& child, QStringView tag) {
        if (!is(tag, "m:mcPr"))
            return;
        child.forEachChild([&](const KXmlElement& prop, QStringView propTag) {
            if (is(propTag, "m:count"))
                column.count = mVal(prop);
            else if (is(propTag, "m:mcJc"))
                column.justification = columnJustificationValue(prop);
        });
    });
    return column;
}

} // namespace

OJustification justificationValue(const KXmlElement& element)
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

OMathRunProperties readMathRunProperties(const KXmlElement& element)
{
    OMathRunProperties props;
    element.forEachChild([&](const KXmlElement& child, QStringView tag) {
        if (is(tag, "m:scr"))
            props.script = scriptValue(child);
        else if (is(tag, "m:sty"))
            props.style = styleValue(child);
        // Normal text, not math: words set upright in the text's own spacing.
        else if (is(tag, "m:nor"))
            props.normalText = flagValue(child);
    });
    return props;
}

OWordRunProperties readWordRunProperties(const KXmlElement& element)
{
    OWordRunProperties props;
    element.forEachChild([&](const KXmlElement& child, QStringView tag) {
        if (is(tag, "w:rFonts")) {
            props.asciiFont = child.attribute(QLatin1String("w:ascii"));
            props.hAnsiFont = child.attribute(QLatin1String("w:hAnsi"));
            // Older documents spell the attribute with a hyphen.
            if (props.hAnsiFont.isEmpty())
                props.hAnsiFont = child.attribute(QLatin1String("w:h-ansi"));
            // The model knows a single hint, whatever the document says.
            props.hint = OFontHint::defaultHint;
        } else if (is(tag, "w:i")) {
            props.italic = true;
        } else if (is(tag, "w:b")) {
            props.bold = true;
        } else if (is(tag, "w:color")) {
            if (const auto colour = colourValue(child.attribute(QLatin1String("w:val"))))
                props.color = colour;
        }
    });
    return props;
}

OControlProperties readControlProperties(const KXmlElement& element)
{
    OControlProperties props;
    element.forEachChild([&](const KXmlElement& child, QStringView tag) {
        if (is(tag, "w:rPr")) {
            props.wordProps = readWordRunProperties(child);
        } else if (is(tag, "m:rPr")) {
            props.mathProps = readMathRunProperties(child);
        } else if (is(tag, "w:ins")) {
            // A tracked change of formatting holds the properties now in force; those of
            // a deleted control character (w:del) are gone.
            child.forEachChild([&](const KXmlElement& inserted, QStringView insertedTag) {
                if (is(insertedTag, "w:rPr"))
                    props.wordProps = readWordRunProperties(inserted);
            });
        }
    });
    return props;
}

void fractionProperties(OFraction& f, const KXmlElement& properties)
{
    properties.forEachChild([&](const KXmlElement& child, QStringView tag) {
        if (is(tag, "m:type"))
            f.type = fractionTypeValue(child);
        else if (is(tag, "m:ctrlPr"))
            f.ctrlPr = readControlProperties(child);
    });
}

void radicalProperties(ORadical& r, const KXmlElement& properties)
{
    properties.forEachChild([&](const KXmlElement& child, QStringView tag) {
        if (is(tag, "m:ctrlPr"))
            r.ctrlPr = readControlProperties(child);
        else if (is(tag, "m:degHide"))
            r.degHide = onOffValue(child);
    });
}

void naryProperties(ONaryOperator& n, const KXmlElement& properties)
{
    properties.forEachChild([&](const KXmlElement& child, QStringView tag) {
        if (is(tag, "m:ctrlPr"))
            n.ctrlPr = readControlProperties(child);
        else if (is(tag, "m:chr"))
            n.chr = mVal(child);
        else if (is(tag, "m:limLoc"))
            n.limLoc = folded(mVal(child)) == QLatin1String("undovr") ? OLimitLocation::undOvr
                                                                      : OLimitLocation::subSup;
        else if (is(tag, "m:subHide"))
            n.subHide = onOffValue(child);
        else if (is(tag, "m:supHide"))
            n.supHide = onOffValue(child);
    });
}

void delimiterProperties(ODelimiter& d, const KXmlElement& properties)
{
    properties.forEachChild([&](const KXmlElement& child, QStringView tag) {
        // A missing value means no fence on that side.
        if (is(tag, "m:begChr"))
            d.begChr = mVal(child);
        else if (is(tag, "m:sepChr"))
            d.sepChr = mVal(child);
        else if (is(tag, "m:endChr"))
            d.endChr = mVal(child);
        else if (is(tag, "m:ctrlPr"))
            d.ctrlPr = readControlProperties(child);
    });
}

void accentProperties(OAccent& a, const KXmlElement& properties)
{
    properties.forEachChild([&](const KXmlElement& child, QStringView tag) {
        if (is(tag, "m:ctrlPr"))
            a.ctrlPr = readControlProperties(child);
        else if (is(tag, "m:chr"))
            a.chr = mVal(child);
    });
}

void barProperties(OBar& b, const KXmlElement& properties)
{
    // A properties element without m:pos puts the bar below; a bar has no
    // control properties.
    b.pos = OPosition::bottom;
    properties.forEachChild([&](const KXmlElement& child, QStringView tag) {
        if (is(tag, "m:pos"))
            b.pos = positionValue(child);
    });
}

void borderBoxProperties(OBorderBox& b, const KXmlElement& properties)
{
    struct Flag {
        const char* tag;
        bool OBorderBox::*member;
    };
    static const Flag kFlags[] = {
        {"m:hideTop", &OBorderBox::hideTop},       {"m:hideBot", &OBorderBox::hideBot},
        {"m:hideLeft", &OBorderBox::hideLeft},     {"m:hideRight", &OBorderBox::hideRight},
        {"m:strikeH", &OBorderBox::strikeH},       {"m:strikeV", &OBorderBox::strikeV},
        {"m:strikeBLTR", &OBorderBox::strikeBLTR}, {"m:strikeTLBR", &OBorderBox::strikeTLBR},
    };
    properties.forEachChild([&](const KXmlElement& child, QStringView tag) {
        if (is(tag, "m:ctrlPr")) {
            b.ctrlPr = readControlProperties(child);
            return;
        }
        for (const Flag& flag : kFlags) {
            if (is(tag, flag.tag))
                b.*flag.member = borderFlagValue(child);
        }
    });
}

void groupCharProperties(OGroupChar& g, const KXmlElement& properties)
{
    properties.forEachChild([&](const KXmlElement& child, QStringView tag) {
        if (is(tag, "m:ctrlPr"))
            g.ctrlPr = readControlProperties(child);
        else if (is(tag, "m:chr"))
            g.chr = mVal(child);
        else if (is(tag, "m:pos"))
            g.pos = positionValue(child);
        else if (is(tag, "m:vertJc"))
            g.vertJc = verticalJustificationValue(child);
    });
}

void boxProperties(OBox& b, const KXmlElement& properties)
{
    properties.forEachChild([&](const KXmlElement& child, QStringView tag) {
        if (is(tag, "m:ctrlPr"))
            b.ctrlPr = readControlProperties(child);
        else if (is(tag, "m:noBreak"))
            b.noBreak = onOffValue(child);
    });
}

void phantomProperties(OPhantom& p, const KXmlElement& properties)
{
    struct Flag {
        const char* tag;
        bool OPhantom::*member;
    };
    static const Flag kFlags[] = {
        {"m:show", &OPhantom::show},       {"m:zeroWid", &OPhantom::zeroWid},
        {"m:zeroAsc", &OPhantom::zeroAsc}, {"m:zeroDesc", &OPhantom::zeroDesc},
        {"m:transp", &OPhantom::transp},
    };
    properties.forEachChild([&](const KXmlElement& child, QStringView tag) {
        if (is(tag, "m:ctrlPr")) {
            p.ctrlPr = readControlProperties(child);
            return;
        }
        for (const Flag& flag : kFlags) {
            if (is(tag, flag.tag))
                p.*flag.member = flagValue(child);
        }
    });
}

void matrixProperties(OMatrix& m, const KXmlElement& properties)
{
    properties.forEachChild([&](const KXmlElement& child, QStringView tag) {
        if (is(tag, "m:mcs")) {
            // Several column groups append to one list.
            child.forEachChild([&](const KXmlElement& mc, QStringView mcTag) {
                if (is(mcTag, "m:mc"))
                    m.columns.push_back(matrixColumn(mc));
            });
        } else if (is(tag, "m:cGp")) {
            m.cGp = mVal(child);
        } else if (is(tag, "m:cGpRule")) {
            m.cGpRule = mVal(child);
        } else if (is(tag, "m:plcHide")) {
            m.plcHide = onOffValue(child);
        } else if (is(tag, "m:ctrlPr")) {
            m.ctrlPr = readControlProperties(child);
        }
    });
}
} // namespace ommlread
