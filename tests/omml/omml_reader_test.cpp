#include "omml/omml_reader.h"
#include "omml/omml_writer.h"

#include <gtest/gtest.h>

#include <functional>
#include <ostream>

// Readable failure messages for whole-text comparisons.
static void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace {

const QString kNs = QStringLiteral("http://schemas.openxmlformats.org/officeDocument/2006/math");
const QString kFonts =
    QStringLiteral("<w:rFonts w:ascii=\"Cambria Math\" w:hAnsi=\"Cambria Math\" w:hint=\"default\"/>");
const QString kCtrl = QStringLiteral("<m:ctrlPr><w:rPr>") + kFonts + QStringLiteral("</w:rPr></m:ctrlPr>");

QString runXml(const QString& text)
{
    return QStringLiteral("<m:r><m:rPr><m:scr m:val=\"roman\"/></m:rPr><w:rPr>") + kFonts +
           QStringLiteral("</w:rPr><m:t>") + text + QStringLiteral("</m:t></m:r>");
}

QString bareRun(const QString& text)
{
    return QStringLiteral("<m:r><m:t>") + text + QStringLiteral("</m:t></m:r>");
}

KOmmlNodePtr run(const QString& text)
{
    return makeOmmlNode(ORun{text, {}, {}});
}

KOmmlNodeList one(const QString& text)
{
    return makeOmmlList(run(text));
}

// The writer prints every field the model keeps, so its text serves as a dump.
QString dump(const KOmmlNodePtr& node)
{
    return node ? ommlNodeToXml(*node) : QStringLiteral("<null>");
}

QString readDump(const QString& xml)
{
    return dump(readOmmlDocument(xml));
}

OControlProperties styledControl()
{
    OControlProperties ctrl;
    ctrl.mathProps = OMathRunProperties{OScript::fraktur, OStyle::bold};
    ctrl.wordProps.asciiFont = QStringLiteral("Arial");
    ctrl.wordProps.hAnsiFont = QStringLiteral("Arial Narrow");
    ctrl.wordProps.italic = true;
    ctrl.wordProps.bold = true;
    ctrl.wordProps.color = QColor(0x12, 0xab, 0xef);
    return ctrl;
}

// Models built in code with every property away from its default.
std::vector<std::pair<const char*, std::function<KOmmlNodePtr()>>> roundTripModels()
{
    return {
        {"Paragraph",
         [] {
             OMathParagraph p;
             p.justification = OJustification::right;
             p.equation = makeOmmlNode(OMathEquation{one("x")});
             return makeOmmlNode(std::move(p));
         }},
        {"EmptyParagraph",
         [] {
             return makeOmmlNode(OMathParagraph{nullptr, OJustification::center});
         }},
        {"Run",
         [] {
             ORun r;
             r.text = QStringLiteral("x \U0001D400<&>");
             r.mathProps = {OScript::sansSerif, OStyle::italic};
             r.wordProps.asciiFont = QStringLiteral("Symbol");
             r.wordProps.hAnsiFont.clear();
             r.wordProps.bold = true;
             r.wordProps.color = QColor(0, 0, 0);
             return makeOmmlNode(std::move(r));
         }},
        {"Fraction",
         [] {
             return makeOmmlNode(OFraction{one("a"), one("b"), styledControl(), OFractionType::skewed});
         }},
        {"Superscript",
         [] {
             return makeOmmlNode(OSuperscript{one("a"), one("b"), styledControl()});
         }},
        {"Subscript",
         [] {
             return makeOmmlNode(OSubscript{one("a"), one("b"), styledControl()});
         }},
        {"SubSuperscript",
         [] {
             return makeOmmlNode(OSubSuperscript{one("a"), one("b"), one("c"), styledControl()});
         }},
        {"PreSubSuperscript",
         [] {
             return makeOmmlNode(OPreSubSuperscript{one("a"), one("b"), one("c"), styledControl()});
         }},
        {"Radical",
         [] {
             return makeOmmlNode(ORadical{one("a"), one("3"), styledControl(), true});
         }},
        {"Nary",
         [] {
             return makeOmmlNode(ONaryOperator{one("a"), one("b"), one("c"), styledControl(),
                                               QStringLiteral("\u2211"), OLimitLocation::undOvr, true, true});
         }},
        {"LimitLower",
         [] {
             return makeOmmlNode(OLimitLower{one("a"), one("b"), styledControl()});
         }},
        {"LimitUpper",
         [] {
             return makeOmmlNode(OLimitUpper{one("a"), one("b"), styledControl()});
         }},
        {"Function",
         [] {
             return makeOmmlNode(OFunction{one("sin"), one("x"), styledControl()});
         }},
        {"Delimiter",
         [] {
             return makeOmmlNode(ODelimiter{one("a"), QStringLiteral("\u27E8"), QString(), styledControl()});
         }},
        {"Accent",
         [] {
             return makeOmmlNode(OAccent{one("a"), styledControl(), QStringLiteral("\u20D7")});
         }},
        {"BarBottom",
         [] {
             return makeOmmlNode(OBar{one("a"), OPosition::bottom});
         }},
        {"BarTop",
         [] {
             return makeOmmlNode(OBar{one("a"), OPosition::top});
         }},
        {"BorderBox",
         [] {
             return makeOmmlNode(
                 OBorderBox{one("a"), styledControl(), true, false, true, false, true, false, true, true});
         }},
        {"GroupChar",
         [] {
             return makeOmmlNode(OGroupChar{one("a"), styledControl(), QStringLiteral("\u23DE"),
                                            OPosition::top, OVerticalJustification::bottom});
         }},
        {"Matrix",
         [] {
             OMatrix m;
             m.columns = {{QStringLiteral("2"), OColumnJustification::left},
                          {{}, OColumnJustification::right},
                          {QStringLiteral("x"), OColumnJustification::center}};
             m.cGp = QStringLiteral("3");
             m.cGpRule = QStringLiteral("4");
             m.plcHide = true;
             m.ctrlPr = styledControl();
             OMatrixRow row;
             row.push_back(one("a"));
             row.emplace_back();
             m.rows.push_back(std::move(row));
             OMatrixRow second;
             second.push_back(one("c"));
             m.rows.push_back(std::move(second));
             return makeOmmlNode(std::move(m));
         }},
        {"Box",
         [] {
             return makeOmmlNode(OBox{one("a"), styledControl(), false});
         }},
        {"EquationArray",
         [] {
             OEquationArray a;
             a.rows.push_back(one("a"));
             a.rows.emplace_back();
             a.rows.push_back(one("b"));
             a.ctrlPr = styledControl();
             return makeOmmlNode(std::move(a));
         }},
        {"Phantom",
         [] {
             return makeOmmlNode(OPhantom{one("a"), styledControl()});
         }},
        {"Nested",
         [] {
             OFraction f{one("1"), {}, {}, OFractionType::linear};
             f.den.push_back(makeOmmlNode(OSuperscript{one("x"), one("2"), {}}));
             f.den.push_back(run("+"));
             return makeOmmlNode(OMathEquation{makeOmmlList(makeOmmlNode(std::move(f)))});
         }},
    };
}

TEST(OmmlReaderRoundTrip, WrittenModelsReadBackUnchanged)
{
    for (const auto& [name, build] : roundTripModels()) {
        const QString xml = dump(build());
        const KOmmlNodePtr read = readOmmlDocument(xml);
        ASSERT_TRUE(read) << name;
        EXPECT_EQ(dump(read), xml) << name;
    }
}

TEST(OmmlReaderRoundTrip, RadicalDegreePresenceSurvives)
{
    ORadical withDegree{one("a"), one("3"), {}, false};
    const KOmmlNodePtr read = readOmmlDocument(dump(makeOmmlNode(std::move(withDegree))));
    const ORadical* r = ommlAs<ORadical>(read.get());
    ASSERT_TRUE(r);
    ASSERT_TRUE(r->deg.has_value());
    EXPECT_EQ(r->deg->size(), 1u);

    // An empty m:deg, as written for a radical without degree, stays absent.
    const KOmmlNodePtr plain = readOmmlDocument(dump(makeOmmlNode(ORadical{one("a")})));
    ASSERT_TRUE(ommlAs<ORadical>(plain.get()));
    EXPECT_FALSE(ommlAs<ORadical>(plain.get())->deg.has_value());
}

struct ReadCase {
    const char* name;
    QString xml;
    QString expected; // dump of the result
};

std::vector<ReadCase> defaultCases()
{
    const QString a = runXml("a"), b = runXml("b");
    return {
        {"BareRunTakesRunDefaults", "<m:oMath>" + bareRun("x") + "</m:oMath>",
         "<m:oMath xmlns:m=\"" + kNs + "\">" + runXml("x") + "</m:oMath>"},
        {"ParagraphDefaults", "<m:oMathPara/>",
         "<m:oMathPara xmlns:m=\"" + kNs +
             "\"><m:oMathParaPr><m:jc m:val=\"centerGroup\"/></m:oMathParaPr></m:oMathPara>"},
        {"ParagraphKeepsLastEquation",
         "<m:oMathPara><m:oMath>" + bareRun("a") + "</m:oMath><m:oMath>" + bareRun("b") +
             "</m:oMath></m:oMathPara>",
         "<m:oMathPara xmlns:m=\"" + kNs + "\"><m:oMathParaPr><m:jc m:val=\"centerGroup\"/></m:oMathParaPr>" +
             "<m:oMath xmlns:m=\"" + kNs + "\">" + b + "</m:oMath></m:oMathPara>"},
        {"ParagraphPropertiesWithoutJcReset",
         "<m:oMathPara><m:oMathParaPr><m:jc m:val=\"left\"/></m:oMathParaPr><m:oMathParaPr/></m:oMathPara>",
         "<m:oMathPara xmlns:m=\"" + kNs +
             "\"><m:oMathParaPr><m:jc m:val=\"centerGroup\"/></m:oMathParaPr></m:oMathPara>"},
        {"EmptyRun", "<m:r/>", runXml("")},
        {"LastTextWins", "<m:r><m:t>a</m:t><m:t>b</m:t></m:r>", runXml("b")},
        {"FractionDefaults", "<m:f/>", "<m:f><m:fPr>" + kCtrl + "</m:fPr><m:num/><m:den/></m:f>"},
        {"LastArgumentWins",
         "<m:f><m:num>" + bareRun("a") + "</m:num><m:num>" + bareRun("b") + "</m:num></m:f>",
         "<m:f><m:fPr>" + kCtrl + "</m:fPr><m:num>" + b + "</m:num><m:den/></m:f>"},
        {"SecondPropertiesElementStartsFresh",
         "<m:f><m:fPr><m:type "
         "m:val=\"lin\"/><m:ctrlPr><w:rPr><w:b/></w:rPr></m:ctrlPr></m:fPr><m:fPr/></m:f>",
         "<m:f><m:fPr>" + kCtrl + "</m:fPr><m:num/><m:den/></m:f>"},
        {"NaryDefaults", "<m:nary/>",
         "<m:nary><m:naryPr>" + kCtrl +
             "<m:chr m:val=\"\u222B\"/><m:limLoc m:val=\"subSup\"/><m:subHide m:val=\"off\"/>"
             "<m:supHide m:val=\"off\"/></m:naryPr><m:sub/><m:sup/><m:e/></m:nary>"},
        {"NaryChrWithoutValueIsEmpty", "<m:nary><m:naryPr><m:chr/></m:naryPr></m:nary>",
         "<m:nary><m:naryPr>" + kCtrl +
             "<m:limLoc m:val=\"subSup\"/><m:subHide m:val=\"off\"/>"
             "<m:supHide m:val=\"off\"/></m:naryPr><m:sub/><m:sup/><m:e/></m:nary>"},
        {"DelimiterKeepsLastArgument",
         "<m:d><m:e>" + bareRun("a") + "</m:e><m:e>" + bareRun("b") + "</m:e></m:d>",
         "<m:d><m:dPr>" + kCtrl + "<m:begChr m:val=\"(\"/><m:endChr m:val=\")\"/></m:dPr><m:e>" + b +
             "</m:e></m:d>"},
        {"DelimiterBegChrWithoutValue", "<m:d><m:dPr><m:begChr/><m:endChr m:val=\"]\"/></m:dPr></m:d>",
         "<m:d><m:dPr>" + kCtrl + "<m:begChr m:val=\"\"/><m:endChr m:val=\"]\"/></m:dPr><m:e/></m:d>"},
        {"FreshDelimiterPropertiesStartFromParentheses",
         "<m:d><m:dPr><m:begChr m:val=\"[\"/></m:dPr><m:dPr><m:endChr m:val=\"|\"/></m:dPr></m:d>",
         "<m:d><m:dPr>" + kCtrl + "<m:begChr m:val=\"(\"/><m:endChr m:val=\"|\"/></m:dPr><m:e/></m:d>"},
        {"AccentDefaults", "<m:acc><m:e>" + bareRun("a") + "</m:e></m:acc>",
         "<m:acc><m:accPr><m:chr m:val=\"\u0302\"/>" + kCtrl + "</m:accPr><m:e>" + a + "</m:e></m:acc>"},
        {"BarWithoutPropertiesIsTop", "<m:bar/>",
         "<m:bar><m:barPr><m:pos m:val=\"top\"/></m:barPr><m:e/></m:bar>"},
        {"BarPropertiesWithoutPosIsBottom", "<m:bar><m:barPr/></m:bar>",
         "<m:bar><m:barPr><m:pos m:val=\"bot\"/></m:barPr><m:e/></m:bar>"},
        {"BarIgnoresControlProperties",
         "<m:bar><m:barPr><m:pos m:val=\"top\"/><m:ctrlPr><w:rPr><w:b/></w:rPr></m:ctrlPr></m:barPr></m:bar>",
         "<m:bar><m:barPr><m:pos m:val=\"top\"/></m:barPr><m:e/></m:bar>"},
        {"GroupCharDefaults", "<m:groupChr/>",
         "<m:groupChr><m:groupChrPr>" + kCtrl +
             "<m:chr m:val=\"\u23DF\"/><m:pos m:val=\"bot\"/><m:vertJc m:val=\"top\"/></m:groupChrPr>"
             "<m:e/></m:groupChr>"},
        {"BoxDefaults", "<m:box/>",
         "<m:box><m:boxPr>" + kCtrl + "<m:noBreak m:val=\"on\"/></m:boxPr><m:e/></m:box>"},
        {"BoxNoBreakWithoutValueIsOff", "<m:box><m:boxPr><m:noBreak/></m:boxPr></m:box>",
         "<m:box><m:boxPr>" + kCtrl + "<m:noBreak m:val=\"off\"/></m:boxPr><m:e/></m:box>"},
        {"RadicalEmptyDegreeKeepsEarlierDegree",
         "<m:rad><m:deg>" + bareRun("3") + "</m:deg><m:deg/><m:e>" + bareRun("a") + "</m:e></m:rad>",
         "<m:rad><m:radPr>" + kCtrl + "<m:degHide m:val=\"off\"/></m:radPr><m:deg>" + runXml("3") +
             "</m:deg><m:e>" + a + "</m:e></m:rad>"},
        {"MatrixRowWithoutCellsIsDropped", "<m:m><m:mr/><m:mr><m:e/></m:mr><m:mr><m:x/></m:mr></m:m>",
         "<m:m><m:mPr><m:plcHide m:val=\"off\"/>" + kCtrl + "</m:mPr><m:mr><m:e/></m:mr></m:m>"},
        {"MatrixColumnsAppendAcrossGroups",
         "<m:m><m:mPr><m:mcs><m:mc><m:mcPr><m:count m:val=\"2\"/></m:mcPr></m:mc></m:mcs>"
         "<m:mcs><m:mc/><m:mc><m:mcPr><m:mcJc m:val=\" RIGHT "
         "\"/></m:mcPr></m:mc><m:x/></m:mcs></m:mPr></m:m>",
         "<m:m><m:mPr><m:mcs><m:mc><m:mcPr><m:count m:val=\"2\"/><m:mcJc m:val=\"center\"/></m:mcPr></m:mc>"
         "<m:mc><m:mcPr><m:mcJc m:val=\"center\"/></m:mcPr></m:mc>"
         "<m:mc><m:mcPr><m:mcJc m:val=\"right\"/></m:mcPr></m:mc></m:mcs><m:plcHide m:val=\"off\"/>" +
             kCtrl + "</m:mPr></m:m>"},
        {"EquationArrayKeepsEmptyRows", "<m:eqArr><m:e/><m:e>" + bareRun("a") + "</m:e></m:eqArr>",
         "<m:eqArr><m:eqArrPr>" + kCtrl + "</m:eqArrPr><m:e/><m:e>" + a + "</m:e></m:eqArr>"},
        {"BorderBoxDefaults", "<m:borderBox/>",
         "<m:borderBox><m:borderBoxPr>" + kCtrl + "</m:borderBoxPr><m:e/></m:borderBox>"},
        {"UnknownChildrenVanishWithContent",
         "<m:oMath><m:foo>" + bareRun("a") + "</m:foo><mml:f/>" + bareRun("b") +
             "<w:r><m:r/></w:r></m:oMath>",
         "<m:oMath xmlns:m=\"" + kNs + "\">" + b + "</m:oMath>"},
        {"TagsAreCaseSensitive", "<m:oMath><m:R><m:t>a</m:t></m:R><M:r/></m:oMath>",
         "<m:oMath xmlns:m=\"" + kNs + "\"/>"},
    };
}

TEST(OmmlReaderDefaults, ReadsWholeElements)
{
    for (const ReadCase& c : defaultCases())
        EXPECT_EQ(readDump(c.xml), c.expected) << c.name;
}

TEST(OmmlReaderDefaults, NothingIsInherited)
{
    // The fraction's control properties never reach its runs, and a run inside
    // a styled run's neighbourhood starts from the run defaults.
    const KOmmlNodePtr node = readOmmlDocument(
        "<m:f><m:fPr><m:ctrlPr><m:rPr><m:sty m:val=\"b\"/></m:rPr><w:rPr><w:b/></w:rPr></m:ctrlPr></m:fPr>"
        "<m:num>" +
        bareRun("a") + "</m:num><m:den/></m:f>");
    const OFraction* f = ommlAs<OFraction>(node.get());
    ASSERT_TRUE(f);
    ASSERT_TRUE(f->ctrlPr.mathProps);
    EXPECT_EQ(f->ctrlPr.mathProps->style, OStyle::bold);
    EXPECT_TRUE(f->ctrlPr.wordProps.bold);
    ASSERT_EQ(f->num.size(), 1u);
    EXPECT_EQ(dump(f->num.front()), runXml("a"));
}

// Reads one property through a wrapping document and returns the resulting model dump.
template <class Kind, class Field>
void expectValues(const char* what, const std::function<QString(const QString&)>& wrap,
                  const std::vector<std::pair<QString, Field>>& cases, Field (*get)(const Kind&))
{
    for (const auto& [xmlValue, expected] : cases) {
        const KOmmlNodePtr node = readOmmlDocument(wrap(xmlValue));
        const Kind* kind = ommlAs<Kind>(node.get());
        ASSERT_TRUE(kind) << what << " " << xmlValue.toStdString();
        EXPECT_EQ(get(*kind), expected) << what << " value [" << xmlValue.toStdString() << "]";
    }
}

QString valAttr(const QString& value)
{
    return value == QLatin1String("<missing>") ? QString() : " m:val=\"" + value + "\"";
}

TEST(OmmlReaderValues, OnOff)
{
    const std::vector<std::pair<QString, bool>> cases = {
        {"on", true}, {"1", true}, {" ON ", true},       {"On", true},   {"true", false}, {"off", false},
        {"0", false}, {"", false}, {"<missing>", false}, {"yes", false}, {"\t1\n", true},
    };
    expectValues<ORadical, bool>(
        "degHide",
        [](const QString& v) { return "<m:rad><m:radPr><m:degHide" + valAttr(v) + "/></m:radPr></m:rad>"; },
        cases, [](const ORadical& r) { return r.degHide; });
    expectValues<ONaryOperator, bool>(
        "subHide",
        [](const QString& v) {
            return "<m:nary><m:naryPr><m:subHide" + valAttr(v) + "/></m:naryPr></m:nary>";
        },
        cases, [](const ONaryOperator& n) { return n.subHide; });
    expectValues<ONaryOperator, bool>(
        "supHide",
        [](const QString& v) {
            return "<m:nary><m:naryPr><m:supHide" + valAttr(v) + "/></m:naryPr></m:nary>";
        },
        cases, [](const ONaryOperator& n) { return n.supHide; });
    expectValues<OMatrix, bool>(
        "plcHide",
        [](const QString& v) { return "<m:m><m:mPr><m:plcHide" + valAttr(v) + "/></m:mPr></m:m>"; }, cases,
        [](const OMatrix& m) { return m.plcHide; });
    expectValues<OBox, bool>(
        "noBreak",
        [](const QString& v) { return "<m:box><m:boxPr><m:noBreak" + valAttr(v) + "/></m:boxPr></m:box>"; },
        cases, [](const OBox& b) { return b.noBreak; });
}

TEST(OmmlReaderValues, Position)
{
    const std::vector<std::pair<QString, OPosition>> cases = {
        {"top", OPosition::top},          {" TOP ", OPosition::top},     {"Top", OPosition::top},
        {"bot", OPosition::bottom},       {"bottom", OPosition::bottom}, {"", OPosition::bottom},
        {"<missing>", OPosition::bottom}, {"center", OPosition::bottom},
    };
    expectValues<OBar, OPosition>(
        "bar",
        [](const QString& v) { return "<m:bar><m:barPr><m:pos" + valAttr(v) + "/></m:barPr></m:bar>"; },
        cases, [](const OBar& b) { return b.pos; });
    expectValues<OGroupChar, OPosition>(
        "groupChr",
        [](const QString& v) {
            return "<m:groupChr><m:groupChrPr><m:pos" + valAttr(v) + "/></m:groupChrPr></m:groupChr>";
        },
        cases, [](const OGroupChar& g) { return g.pos; });
}

TEST(OmmlReaderValues, ExactFractionType)
{
    const std::vector<std::pair<QString, OFractionType>> cases = {
        {"skw", OFractionType::skewed}, {"lin", OFractionType::linear},    {"nobar", OFractionType::noBar},
        {"noBar", OFractionType::bar},  {" lin", OFractionType::bar},      {"SKW", OFractionType::bar},
        {"bar", OFractionType::bar},    {"<missing>", OFractionType::bar},
    };
    expectValues<OFraction, OFractionType>(
        "type", [](const QString& v) { return "<m:f><m:fPr><m:type" + valAttr(v) + "/></m:fPr></m:f>"; },
        cases, [](const OFraction& f) { return f.type; });
}

TEST(OmmlReaderValues, ExactBorderFlags)
{
    const std::vector<std::pair<QString, bool>> cases = {
        {"1", true},   {"true", true}, {"on", true},         {"ON", false},
        {" 1", false}, {"0", false},   {"<missing>", false}, {"off", false},
    };
    const char* flags[] = {"hideTop", "hideBot", "hideLeft",   "hideRight",
                           "strikeH", "strikeV", "strikeBLTR", "strikeTLBR"};
    bool OBorderBox::*const members[] = {
        &OBorderBox::hideTop, &OBorderBox::hideBot, &OBorderBox::hideLeft,   &OBorderBox::hideRight,
        &OBorderBox::strikeH, &OBorderBox::strikeV, &OBorderBox::strikeBLTR, &OBorderBox::strikeTLBR};
    for (int i = 0; i < 8; ++i) {
        for (const auto& [value, expected] : cases) {
            const KOmmlNodePtr node = readOmmlDocument(
                QString("<m:borderBox><m:borderBoxPr><m:%1%2/></m:borderBoxPr></m:borderBox>")
                    .arg(flags[i], valAttr(value)));
            const OBorderBox* box = ommlAs<OBorderBox>(node.get());
            ASSERT_TRUE(box);
            EXPECT_EQ(box->*members[i], expected) << flags[i] << " [" << value.toStdString() << "]";
            int set = 0;
            for (bool OBorderBox::*member : members)
                set += box->*member ? 1 : 0;
            EXPECT_EQ(set, expected ? 1 : 0) << flags[i];
        }
    }
}

TEST(OmmlReaderValues, FoldedEnumerations)
{
    expectValues<OMathParagraph, OJustification>(
        "jc",
        [](const QString& v) {
            return "<m:oMathPara><m:oMathParaPr><m:jc" + valAttr(v) + "/></m:oMathParaPr></m:oMathPara>";
        },
        {{"left", OJustification::left},
         {" Right ", OJustification::right},
         {"CENTER", OJustification::center},
         {"centerGroup", OJustification::centerGroup},
         {"centergroup", OJustification::centerGroup},
         {"justify", OJustification::centerGroup},
         {"<missing>", OJustification::centerGroup}},
        [](const OMathParagraph& p) { return p.justification; });
    expectValues<ONaryOperator, OLimitLocation>(
        "limLoc",
        [](const QString& v) {
            return "<m:nary><m:naryPr><m:limLoc" + valAttr(v) + "/></m:naryPr></m:nary>";
        },
        {{"undOvr", OLimitLocation::undOvr},
         {" UNDOVR ", OLimitLocation::undOvr},
         {"subSup", OLimitLocation::subSup},
         {"under", OLimitLocation::subSup},
         {"<missing>", OLimitLocation::subSup}},
        [](const ONaryOperator& n) { return n.limLoc; });
    expectValues<OGroupChar, OVerticalJustification>(
        "vertJc",
        [](const QString& v) {
            return "<m:groupChr><m:groupChrPr><m:vertJc" + valAttr(v) + "/></m:groupChrPr></m:groupChr>";
        },
        {{"bot", OVerticalJustification::bottom},
         {"Bottom", OVerticalJustification::bottom},
         {" bot ", OVerticalJustification::bottom},
         {"top", OVerticalJustification::top},
         {"center", OVerticalJustification::top},
         {"<missing>", OVerticalJustification::top}},
        [](const OGroupChar& g) { return g.vertJc; });
    expectValues<OMatrix, OColumnJustification>(
        "mcJc",
        [](const QString& v) {
            return "<m:m><m:mPr><m:mcs><m:mc><m:mcPr><m:mcJc" + valAttr(v) +
                   "/></m:mcPr></m:mc></m:mcs></m:mPr></m:m>";
        },
        {{"left", OColumnJustification::left},
         {"RIGHT", OColumnJustification::right},
         {"center", OColumnJustification::center},
         {"inside", OColumnJustification::center},
         {"<missing>", OColumnJustification::center}},
        [](const OMatrix& m) { return m.columns.at(0).justification; });
}

TEST(OmmlReaderValues, MathRunProperties)
{
    using Props = std::pair<OScript, std::optional<OStyle>>;
    const std::vector<std::pair<QString, Props>> cases = {
        {"", {OScript::roman, std::nullopt}},
        {"<m:scr m:val=\"script\"/>", {OScript::script, std::nullopt}},
        {"<m:scr m:val=\" Fraktur\"/>", {OScript::fraktur, std::nullopt}},
        {"<m:scr m:val=\"DOUBLE-STRUCK\"/>", {OScript::doubleStruck, std::nullopt}},
        {"<m:scr m:val=\"sans-serif\"/>", {OScript::sansSerif, std::nullopt}},
        {"<m:scr m:val=\"monospace\"/>", {OScript::monospace, std::nullopt}},
        {"<m:scr m:val=\"double\"/>", {OScript::roman, std::nullopt}},
        {"<m:scr m:val=\"script\"/><m:scr/>", {OScript::roman, std::nullopt}},
        {"<m:sty m:val=\"p\"/>", {OScript::roman, OStyle::plain}},
        {"<m:sty m:val=\"plain\"/>", {OScript::roman, OStyle::plain}},
        {"<m:sty m:val=\"b\"/>", {OScript::roman, OStyle::bold}},
        {"<m:sty m:val=\"Bold\"/>", {OScript::roman, OStyle::bold}},
        {"<m:sty m:val=\"i\"/>", {OScript::roman, OStyle::italic}},
        {"<m:sty m:val=\"italic\"/>", {OScript::roman, OStyle::italic}},
        {"<m:sty m:val=\"BI\"/>", {OScript::roman, OStyle::boldItalic}},
        {"<m:sty m:val=\"boldItalic\"/>", {OScript::roman, OStyle::boldItalic}},
        {"<m:sty/>", {OScript::roman, OStyle::plain}},
        {"<m:sty m:val=\"x\"/>", {OScript::roman, OStyle::plain}},
        {"<m:nor/><m:lit/>", {OScript::roman, std::nullopt}},
    };
    for (const auto& [inner, expected] : cases) {
        const KOmmlNodePtr node = readOmmlDocument("<m:r><m:rPr>" + inner + "</m:rPr></m:r>");
        const ORun* r = ommlAs<ORun>(node.get());
        ASSERT_TRUE(r);
        EXPECT_EQ(r->mathProps.script, expected.first) << inner.toStdString();
        EXPECT_EQ(r->mathProps.style, expected.second) << inner.toStdString();
    }
}

TEST(OmmlReaderValues, WordRunProperties)
{
    const std::vector<std::pair<QString, QString>> cases = {
        // rFonts replaces both slots, missing attributes by empty strings.
        {"<w:rFonts w:ascii=\"Arial\"/>", "<w:rFonts w:ascii=\"Arial\" w:hint=\"default\"/>"},
        {"<w:rFonts w:ascii=\"A\" w:h-ansi=\"B\"/>",
         "<w:rFonts w:ascii=\"A\" w:hAnsi=\"B\" w:hint=\"default\"/>"},
        {"<w:rFonts w:hAnsi=\"C\" w:h-ansi=\"B\" w:hint=\"eastAsia\"/>",
         "<w:rFonts w:hAnsi=\"C\" w:hint=\"default\"/>"},
        {"<w:rFonts/>", "<w:rFonts w:hint=\"default\"/>"},
        {"<w:b w:val=\"0\"/>", kFonts + "<w:b/>"},
        {"<w:i w:val=\"false\"/><w:b/>", kFonts + "<w:i/><w:b/>"},
        {"<w:color w:val=\"FF0000\"/>", kFonts + "<w:color w:val=\"ff0000\"/>"},
        {"<w:color w:val=\"ff0000\"/>", kFonts + "<w:color w:val=\"ff0000\"/>"},
        {"<w:color w:val=\"0a0B0c\"/>", kFonts + "<w:color w:val=\"0a0b0c\"/>"},
        {"<w:color w:val=\"auto\"/>", kFonts},
        {"<w:color w:val=\"f00\"/>", kFonts},
        {"<w:color w:val=\"gg0000\"/>", kFonts},
        {"<w:color w:val=\"-1-1-1\"/>", kFonts},
        {"<w:color w:val=\"+1+1+1\"/>", kFonts},
        {"<w:color w:val=\" ff000\"/>", kFonts},
        {"<w:color w:val=\"0000ff0\"/>", kFonts},
        {"<w:color/>", kFonts},
        {"<w:color w:val=\"00ff00\"/><w:color w:val=\"auto\"/>", kFonts + "<w:color w:val=\"00ff00\"/>"},
        {"<w:sz w:val=\"24\"/><w:u/>", kFonts},
    };
    for (const auto& [inner, expected] : cases) {
        const KOmmlNodePtr node = readOmmlDocument("<m:r><w:rPr>" + inner + "</w:rPr><m:t>x</m:t></m:r>");
        EXPECT_EQ(dump(node), "<m:r><m:rPr><m:scr m:val=\"roman\"/></m:rPr><w:rPr>" + expected +
                                  "</w:rPr><m:t>x</m:t></m:r>")
            << inner.toStdString();
    }
    const KOmmlNodePtr red = readOmmlDocument("<m:r><w:rPr><w:color w:val=\"FF0000\"/></w:rPr></m:r>");
    ASSERT_TRUE(ommlAs<ORun>(red.get()));
    EXPECT_EQ(ommlAs<ORun>(red.get())->wordProps.color, QColor(255, 0, 0, 255));
}

TEST(OmmlReaderValues, ControlProperties)
{
    const KOmmlNodePtr node =
        readOmmlDocument("<m:sSup><m:sSupPr><m:ctrlPr><m:rPr><m:scr m:val=\"script\"/></m:rPr>"
                         "<w:rPr><w:i/></w:rPr><w:rPr><w:b/></w:rPr></m:ctrlPr></m:sSupPr></m:sSup>");
    const OSuperscript* s = ommlAs<OSuperscript>(node.get());
    ASSERT_TRUE(s);
    ASSERT_TRUE(s->ctrlPr.mathProps);
    EXPECT_EQ(s->ctrlPr.mathProps->script, OScript::script);
    EXPECT_FALSE(s->ctrlPr.mathProps->style);
    // The second w:rPr replaces the first.
    EXPECT_FALSE(s->ctrlPr.wordProps.italic);
    EXPECT_TRUE(s->ctrlPr.wordProps.bold);

    const KOmmlNodePtr plain = readOmmlDocument("<m:sSup><m:sSupPr><m:ctrlPr/></m:sSupPr></m:sSup>");
    ASSERT_TRUE(ommlAs<OSuperscript>(plain.get()));
    EXPECT_FALSE(ommlAs<OSuperscript>(plain.get())->ctrlPr.mathProps);
}

TEST(OmmlReaderDocuments, WordProcessorShapedInput)
{
    // Indented, commented, with declarations, xml:space and properties the model does not keep.
    const QString xml = QStringLiteral(
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n"
        "<!-- formula -->\n"
        "<m:oMathPara xmlns:m=\"http://schemas.openxmlformats.org/officeDocument/2006/math\"\n"
        "             xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\">\n"
        "  <m:oMathParaPr>\n    <m:jc m:val=\"left\"/>\n  </m:oMathParaPr>\n"
        "  <m:oMath>\n"
        "    <m:r>\n      <w:rPr>\n        <w:rFonts w:ascii=\"Cambria Math\" w:hAnsi=\"Cambria Math\"/>\n"
        "      </w:rPr>\n      <m:t xml:space=\"preserve\">x </m:t>\n    </m:r>\n"
        "    <m:r><m:t xml:space=\"preserve\">   </m:t></m:r>\n"
        "    <m:d>\n      <m:dPr>\n        <m:sepChr m:val=\",\"/>\n        <m:grow/>\n"
        "        <m:ctrlPr><w:rPr><w:rFonts w:ascii=\"Cambria Math\" w:hAnsi=\"Cambria Math\"/><w:i/></w:rPr>"
        "</m:ctrlPr>\n"
        "      </m:dPr>\n      <m:e><m:r><m:t>a</m:t></m:r></m:e>\n    </m:d>\n"
        "    <?processing instruction?>\n"
        "    <w:bookmarkStart w:id=\"0\"/>\n"
        "    <m:r><m:t><![CDATA[<y>]]></m:t></m:r>\n"
        "  </m:oMath>\n"
        "</m:oMathPara>\n");
    const QString italicCtrl =
        QStringLiteral("<m:ctrlPr><w:rPr>") + kFonts + QStringLiteral("<w:i/></w:rPr></m:ctrlPr>");
    EXPECT_EQ(readDump(xml),
              "<m:oMathPara xmlns:m=\"" + kNs + "\"><m:oMathParaPr><m:jc m:val=\"left\"/></m:oMathParaPr>" +
                  "<m:oMath xmlns:m=\"" + kNs + "\">" + runXml("x ") + runXml("") + "<m:d><m:dPr>" +
                  italicCtrl + "<m:begChr m:val=\"(\"/><m:endChr m:val=\")\"/></m:dPr><m:e>" + runXml("a") +
                  "</m:e></m:d>" + runXml("&lt;y&gt;") + "</m:oMath></m:oMathPara>");
}

TEST(OmmlReaderDocuments, NonBmpAndEntities)
{
    const KOmmlNodePtr node = readOmmlDocument("<m:r><m:t>\U0001D49C\U0001D4B7&amp;&lt;</m:t></m:r>");
    const ORun* r = ommlAs<ORun>(node.get());
    ASSERT_TRUE(r);
    EXPECT_EQ(r->text, QStringLiteral("\U0001D49C\U0001D4B7&<"));
    EXPECT_EQ(r->text.size(), 6);

    const KOmmlNodePtr acc =
        readOmmlDocument("<m:acc><m:accPr><m:chr m:val=\"\U0001D400\"/></m:accPr></m:acc>");
    ASSERT_TRUE(ommlAs<OAccent>(acc.get()));
    EXPECT_EQ(ommlAs<OAccent>(acc.get())->chr, QStringLiteral("\U0001D400"));
}

TEST(OmmlReaderDocuments, EveryKindReadsAsDocumentElement)
{
    const char* tags[] = {"m:oMathPara", "m:oMath",  "m:r",       "m:d",   "m:m",         "m:f",
                          "m:sSup",      "m:sSub",   "m:sSubSup", "m:rad", "m:nary",      "m:func",
                          "m:limLow",    "m:limUpp", "m:acc",     "m:bar", "m:borderBox", "m:groupChr",
                          "m:box",       "m:eqArr",  "m:phant",   "m:sPre"};
    const size_t expectedIndex[] = {0,  1, 2,  12, 17, 3,  4,  5,  6,  7,  8,
                                    11, 9, 10, 13, 14, 15, 16, 18, 19, 20, 21};
    for (size_t i = 0; i < std::size(tags); ++i) {
        const KOmmlNodePtr node = readOmmlDocument(QString("<%1/>").arg(tags[i]));
        ASSERT_TRUE(node) << tags[i];
        EXPECT_EQ(node->value.index(), expectedIndex[i]) << tags[i];
    }
}

TEST(OmmlReaderFailures, UnreadableInputGivesNull)
{
    const char* inputs[] = {
        "",
        "   ",
        "not xml",
        "<m:oMath>",
        "<m:oMath></m:r>",
        "<m:oMath/><m:oMath/>",
        "<w:document><w:body><m:oMathPara/></w:body></w:document>",
        "<mml:f/>",
        "<f/>",
        "<m:t>x</m:t>",
        "<m:e/>",
        "<M:OMATH/>",
    };
    for (const char* input : inputs)
        EXPECT_FALSE(readOmmlDocument(QString::fromUtf8(input))) << input;
}

QString nestedBoxes(int boxes)
{
    QString xml = QStringLiteral("<m:oMathPara><m:oMath>");
    for (int i = 0; i < boxes; ++i)
        xml += QStringLiteral("<m:box><m:e>");
    xml += bareRun("x");
    for (int i = 0; i < boxes; ++i)
        xml += QStringLiteral("</m:e></m:box>");
    return xml + QStringLiteral("</m:oMath></m:oMathPara>");
}

int boxDepth(const KOmmlNode* node)
{
    int depth = 0;
    const OMathParagraph* p = ommlAs<OMathParagraph>(node);
    const OMathEquation* eq = p ? ommlAs<OMathEquation>(p->equation.get()) : nullptr;
    const KOmmlNodeList* list = eq ? &eq->children : nullptr;
    while (list && !list->empty()) {
        const OBox* box = ommlAs<OBox>(list->front().get());
        if (!box)
            break;
        ++depth;
        list = &box->e;
    }
    return depth;
}

TEST(OmmlReaderLimits, NestingUpToTheLimitReads)
{
    // Paragraph, equation, two levels per box, then m:r and m:t.
    const int boxes = (kMaxOmmlReadDepth - 4) / 2;
    ASSERT_EQ(2 * boxes + 4, kMaxOmmlReadDepth);
    const KOmmlNodePtr node = readOmmlDocument(nestedBoxes(boxes));
    ASSERT_TRUE(node);
    EXPECT_EQ(boxDepth(node.get()), boxes);
    EXPECT_FALSE(readOmmlDocument(nestedBoxes(boxes + 1)));
}

TEST(OmmlReaderLimits, HostileNestingIsUnreadable)
{
    EXPECT_FALSE(readOmmlDocument(nestedBoxes(50000)));
    QString unknown;
    for (int i = 0; i < 100000; ++i)
        unknown += QStringLiteral("<x>");
    EXPECT_FALSE(readOmmlDocument("<m:oMath>" + unknown + "</m:oMath>"));
    // Unclosed deep input is rejected before the nesting is ever built.
    EXPECT_FALSE(readOmmlDocument(unknown));
}

TEST(OmmlReaderLimits, TextOnlyTheDomParserAcceptsIsMeasuredToo)
{
    // Duplicate attributes and control character references: the DOM parser
    // reads these, so the nesting check must not turn them away.
    const KOmmlNodePtr duplicate =
        readOmmlDocument("<m:r a=\"1\" a=\"/>\"><!-- <x><x> --><m:t><![CDATA[<y><y>]]>&#1;</m:t></m:r>");
    const ORun* r = ommlAs<ORun>(duplicate.get());
    ASSERT_TRUE(r);
    EXPECT_EQ(r->text, QString("<y><y>") + QChar(1));

    // Markup inside an internal entity is expanded by the DOM parser.
    EXPECT_EQ(readDump("<!DOCTYPE m:oMath [<!ENTITY e \"<m:r><m:t>q</m:t></m:r>\"><!-- ] > -->]>"
                       "<m:oMath>&e;</m:oMath>"),
              "<m:oMath xmlns:m=\"" + kNs + "\">" + runXml("q") + "</m:oMath>");

    // The DOM parser drops references to undeclared entities.
    const KOmmlNodePtr entity = readOmmlDocument("<m:r><m:t>a&nbsp;b</m:t></m:r>");
    ASSERT_TRUE(ommlAs<ORun>(entity.get()));
    EXPECT_EQ(ommlAs<ORun>(entity.get())->text, QStringLiteral("ab"));

    QString deep;
    for (int i = 0; i < kMaxOmmlReadDepth; ++i)
        deep += QStringLiteral("<m:oMath>");
    QString closing;
    for (int i = 0; i < kMaxOmmlReadDepth; ++i)
        closing += QStringLiteral("</m:oMath>");
    const QString markupInComments =
        QStringLiteral("<!--") + QString("<x>").repeated(5000) + QStringLiteral("-->");
    const QString atLimit = "<m:oMath a=\"1\" a=\"2\">" + markupInComments + deep.mid(9) + closing;
    EXPECT_TRUE(readOmmlDocument(atLimit));
    const QString overLimit = "<m:oMath a=\"1\" a=\"2\">" + deep + closing;
    EXPECT_FALSE(readOmmlDocument(overLimit));
}

TEST(OmmlReaderLimits, MegabytesOfFlatInputRead)
{
    const int runs = 100000;
    QString xml = QStringLiteral("<m:oMath>");
    xml.reserve(runs * 40);
    for (int i = 0; i < runs; ++i)
        xml += QStringLiteral("<m:r><m:t>x</m:t></m:r>");
    xml += QStringLiteral("</m:oMath>");
    ASSERT_GT(xml.size(), 2000000);
    const KOmmlNodePtr node = readOmmlDocument(xml);
    const OMathEquation* eq = ommlAs<OMathEquation>(node.get());
    ASSERT_TRUE(eq);
    EXPECT_EQ(eq->children.size(), size_t(runs));
}

} // namespace
