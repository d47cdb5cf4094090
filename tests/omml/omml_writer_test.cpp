#include "omml/omml_writer.h"

#include <QXmlStreamReader>

#include <gtest/gtest.h>

#include <functional>

namespace {

const QString kNs = QStringLiteral("http://schemas.openxmlformats.org/officeDocument/2006/math");
const QString kFonts =
    QStringLiteral("<w:rFonts w:ascii=\"Cambria Math\" w:hAnsi=\"Cambria Math\" w:hint=\"default\"/>");
const QString kCtrl = QStringLiteral("<m:ctrlPr><w:rPr>") + kFonts + QStringLiteral("</w:rPr></m:ctrlPr>");

KOmmlNodePtr run(const QString& text)
{
    return makeOmmlNode(ORun{text, {}, {}});
}

QString runXml(const QString& text)
{
    return QStringLiteral("<m:r><m:rPr><m:scr m:val=\"roman\"/></m:rPr><w:rPr>") + kFonts +
           QStringLiteral("</w:rPr><m:t>") + text + QStringLiteral("</m:t></m:r>");
}

KOmmlNodeList one(const QString& text)
{
    return makeOmmlList(run(text));
}

struct KindCase {
    const char* name;
    std::function<KOmmlNodePtr()> build;
    QString expected;
};

std::vector<KindCase> kindCases()
{
    const QString a = runXml("a"), b = runXml("b"), c = runXml("c");
    return {
        {"Equation", [] { return makeOmmlNode(OMathEquation{one("a")}); },
         "<m:oMath xmlns:m=\"" + kNs + "\">" + a + "</m:oMath>"},
        {"Run", [] { return run("x"); }, runXml("x")},
        {"Fraction",
         [] {
             OFraction f;
             f.num = one("a");
             f.den = one("b");
             return makeOmmlNode(std::move(f));
         },
         "<m:f><m:fPr>" + kCtrl + "</m:fPr><m:num>" + a + "</m:num><m:den>" + b + "</m:den></m:f>"},
        {"Superscript",
         [] {
             return makeOmmlNode(OSuperscript{one("a"), one("b"), {}});
         },
         "<m:sSup><m:sSupPr>" + kCtrl + "</m:sSupPr><m:e>" + a + "</m:e><m:sup>" + b + "</m:sup></m:sSup>"},
        {"Subscript",
         [] {
             return makeOmmlNode(OSubscript{one("a"), one("b"), {}});
         },
         "<m:sSub><m:sSubPr>" + kCtrl + "</m:sSubPr><m:e>" + a + "</m:e><m:sub>" + b + "</m:sub></m:sSub>"},
        {"SubSuperscript",
         [] {
             return makeOmmlNode(OSubSuperscript{one("a"), one("b"), one("c"), {}});
         },
         "<m:sSubSup><m:sSubSupPr>" + kCtrl + "</m:sSubSupPr><m:e>" + a + "</m:e><m:sub>" + b +
             "</m:sub><m:sup>" + c + "</m:sup></m:sSubSup>"},
        {"PreSubSuperscript",
         [] {
             return makeOmmlNode(OPreSubSuperscript{one("a"), one("b"), one("c"), {}});
         },
         "<m:sPre><m:sPrePr>" + kCtrl + "</m:sPrePr><m:sub>" + b + "</m:sub><m:sup>" + c + "</m:sup><m:e>" +
             a + "</m:e></m:sPre>"},
        {"RadicalWithDegree",
         [] {
             ORadical r;
             r.e = one("a");
             r.deg = one("b");
             return makeOmmlNode(std::move(r));
         },
         "<m:rad><m:radPr>" + kCtrl + "<m:degHide m:val=\"off\"/></m:radPr><m:deg>" + b + "</m:deg><m:e>" +
             a + "</m:e></m:rad>"},
        {"NaryDefault", [] { return makeOmmlNode(ONaryOperator{}); },
         "<m:nary><m:naryPr>" + kCtrl +
             "<m:chr m:val=\"\u222B\"/><m:limLoc m:val=\"subSup\"/><m:subHide m:val=\"off\"/>"
             "<m:supHide m:val=\"off\"/></m:naryPr><m:sub/><m:sup/><m:e/></m:nary>"},
        {"NarySum",
         [] {
             ONaryOperator n;
             n.chr = QStringLiteral("\u2211");
             n.limLoc = OLimitLocation::undOvr;
             n.supHide = true;
             n.sub = one("b");
             n.e = one("a");
             return makeOmmlNode(std::move(n));
         },
         "<m:nary><m:naryPr>" + kCtrl +
             "<m:chr m:val=\"\u2211\"/><m:limLoc m:val=\"undOvr\"/><m:subHide m:val=\"off\"/>"
             "<m:supHide m:val=\"on\"/></m:naryPr><m:sub>" +
             b + "</m:sub><m:sup/><m:e>" + a + "</m:e></m:nary>"},
        {"LimitLower",
         [] {
             return makeOmmlNode(OLimitLower{one("a"), one("b"), {}});
         },
         "<m:limLow><m:limLowPr>" + kCtrl + "</m:limLowPr><m:e>" + a + "</m:e><m:lim>" + b +
             "</m:lim></m:limLow>"},
        {"LimitUpper",
         [] {
             return makeOmmlNode(OLimitUpper{one("a"), one("b"), {}});
         },
         "<m:limUpp><m:limUppPr>" + kCtrl + "</m:limUppPr><m:e>" + a + "</m:e><m:lim>" + b +
             "</m:lim></m:limUpp>"},
        {"Function",
         [] {
             return makeOmmlNode(OFunction{one("a"), one("b"), {}});
         },
         "<m:func><m:funcPr>" + kCtrl + "</m:funcPr><m:fName>" + a + "</m:fName><m:e>" + b +
             "</m:e></m:func>"},
        {"DelimiterDefault", [] { return makeOmmlNode(ODelimiter{one("a")}); },
         "<m:d><m:dPr>" + kCtrl + "<m:begChr m:val=\"(\"/><m:endChr m:val=\")\"/></m:dPr><m:e>" + a +
             "</m:e></m:d>"},
        {"AccentDefault", [] { return makeOmmlNode(OAccent{one("a")}); },
         "<m:acc><m:accPr><m:chr m:val=\"\u0302\"/>" + kCtrl + "</m:accPr><m:e>" + a + "</m:e></m:acc>"},
        {"BarDefaultOnTop", [] { return makeOmmlNode(OBar{one("a")}); },
         "<m:bar><m:barPr><m:pos m:val=\"top\"/></m:barPr><m:e>" + a + "</m:e></m:bar>"},
        {"BarBottom",
         [] {
             return makeOmmlNode(OBar{one("a"), OPosition::bottom});
         },
         "<m:bar><m:barPr><m:pos m:val=\"bot\"/></m:barPr><m:e>" + a + "</m:e></m:bar>"},
        {"BorderBoxAllFlags",
         [] {
             OBorderBox box{one("a")};
             box.hideTop = box.hideBot = box.hideLeft = box.hideRight = true;
             box.strikeH = box.strikeV = box.strikeBLTR = box.strikeTLBR = true;
             return makeOmmlNode(std::move(box));
         },
         "<m:borderBox><m:borderBoxPr>" + kCtrl +
             "<m:hideTop m:val=\"1\"/><m:hideBot m:val=\"1\"/><m:hideLeft m:val=\"1\"/>"
             "<m:hideRight m:val=\"1\"/><m:strikeH m:val=\"1\"/><m:strikeV m:val=\"1\"/>"
             "<m:strikeBLTR m:val=\"1\"/><m:strikeTLBR m:val=\"1\"/></m:borderBoxPr><m:e>" +
             a + "</m:e></m:borderBox>"},
        {"GroupCharDefault", [] { return makeOmmlNode(OGroupChar{one("a")}); },
         "<m:groupChr><m:groupChrPr>" + kCtrl +
             "<m:chr m:val=\"\u23DF\"/><m:pos m:val=\"bot\"/><m:vertJc m:val=\"top\"/></m:groupChrPr><m:e>" +
             a + "</m:e></m:groupChr>"},
        {"MatrixWithColumns",
         [] {
             OMatrix m;
             m.columns = {{QStringLiteral("2"), OColumnJustification::left},
                          {{}, OColumnJustification::right}};
             m.cGp = QStringLiteral("3");
             m.cGpRule = QStringLiteral("1");
             m.plcHide = true;
             OMatrixRow row;
             row.push_back(one("a"));
             row.push_back(one("b"));
             m.rows.push_back(std::move(row));
             m.rows.emplace_back();
             return makeOmmlNode(std::move(m));
         },
         "<m:m><m:mPr><m:mcs><m:mc><m:mcPr><m:count m:val=\"2\"/><m:mcJc m:val=\"left\"/></m:mcPr></m:mc>"
         "<m:mc><m:mcPr><m:mcJc m:val=\"right\"/></m:mcPr></m:mc></m:mcs><m:cGp m:val=\"3\"/>"
         "<m:cGpRule m:val=\"1\"/><m:plcHide m:val=\"on\"/>" +
             kCtrl + "</m:mPr><m:mr><m:e>" + a + "</m:e><m:e>" + b + "</m:e></m:mr><m:mr/></m:m>"},
        {"BoxDefault", [] { return makeOmmlNode(OBox{one("a")}); },
         "<m:box><m:boxPr>" + kCtrl + "<m:noBreak m:val=\"on\"/></m:boxPr><m:e>" + a + "</m:e></m:box>"},
        {"EquationArray",
         [] {
             OEquationArray eq;
             eq.rows.push_back(one("a"));
             eq.rows.emplace_back();
             return makeOmmlNode(std::move(eq));
         },
         "<m:eqArr><m:eqArrPr>" + kCtrl + "</m:eqArrPr><m:e>" + a + "</m:e><m:e/></m:eqArr>"},
        {"Phantom", [] { return makeOmmlNode(OPhantom{one("a")}); },
         "<m:phant><m:phantPr>" + kCtrl + "</m:phantPr><m:e>" + a + "</m:e></m:phant>"},
    };
}

class OmmlWriterKinds : public ::testing::TestWithParam<KindCase> {};

TEST_P(OmmlWriterKinds, WritesWholeElement)
{
    const KOmmlNodePtr node = GetParam().build();
    EXPECT_EQ(ommlNodeToXml(*node), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(AllKinds, OmmlWriterKinds, ::testing::ValuesIn(kindCases()),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(OmmlWriter, ParagraphDeclaresNamespaceTwiceAndJustifies)
{
    OMathParagraph paragraph;
    paragraph.equation = makeOmmlNode(OMathEquation{one("x")});
    EXPECT_EQ(ommlParagraphToXml(paragraph),
              "<m:oMathPara xmlns:m=\"" + kNs +
                  "\"><m:oMathParaPr><m:jc m:val=\"centerGroup\"/></m:oMathParaPr>"
                  "<m:oMath xmlns:m=\"" +
                  kNs + "\">" + runXml("x") + "</m:oMath></m:oMathPara>");
}

TEST(OmmlWriter, ParagraphJustificationTexts)
{
    const std::pair<int, const char*> cases[] = {
        {0, "centerGroup"}, {1, "left"}, {2, "right"}, {3, "center"}, {42, "centerGroup"}};
    for (const auto& [value, text] : cases) {
        OMathParagraph paragraph;
        paragraph.justification = static_cast<OJustification>(value);
        EXPECT_EQ(ommlParagraphToXml(paragraph), "<m:oMathPara xmlns:m=\"" + kNs +
                                                     "\"><m:oMathParaPr><m:jc m:val=\"" + text +
                                                     "\"/></m:oMathParaPr></m:oMathPara>")
            << value;
    }
}

TEST(OmmlWriter, RunPropertiesInFull)
{
    ORun r;
    r.text = QStringLiteral("x");
    r.mathProps.script = OScript::doubleStruck;
    r.mathProps.style = OStyle::boldItalic;
    r.wordProps.italic = true;
    r.wordProps.bold = true;
    r.wordProps.color = QColor(255, 0, 10);
    EXPECT_EQ(ommlNodeToXml(*makeOmmlNode(std::move(r))),
              "<m:r><m:rPr><m:scr m:val=\"double-struck\"/><m:sty m:val=\"bi\"/></m:rPr><w:rPr>" + kFonts +
                  "<w:i/><w:b/><w:color w:val=\"ff000a\"/></w:rPr><m:t>x</m:t></m:r>");
}

TEST(OmmlWriter, EnumerationTextsAndOutOfRangeFallbacks)
{
    const std::pair<int, const char*> scripts[] = {{0, "roman"},         {1, "script"},     {2, "fraktur"},
                                                   {3, "double-struck"}, {4, "sans-serif"}, {5, "monospace"},
                                                   {6, "roman"},         {-1, "roman"}};
    for (const auto& [value, text] : scripts) {
        ORun r;
        r.mathProps.script = static_cast<OScript>(value);
        EXPECT_TRUE(
            ommlNodeToXml(*makeOmmlNode(std::move(r))).contains(QString("<m:scr m:val=\"%1\"/>").arg(text)))
            << value;
    }
    const std::pair<int, const char*> styles[] = {{0, "p"}, {1, "b"}, {2, "i"}, {3, "bi"}, {9, "p"}};
    for (const auto& [value, text] : styles) {
        ORun r;
        r.mathProps.style = static_cast<OStyle>(value);
        EXPECT_TRUE(
            ommlNodeToXml(*makeOmmlNode(std::move(r))).contains(QString("<m:sty m:val=\"%1\"/>").arg(text)))
            << value;
    }
    const std::pair<int, const char*> vertical[] = {{0, "bot"}, {1, "top"}, {2, "center"}, {7, "center"}};
    for (const auto& [value, text] : vertical) {
        OGroupChar g;
        g.vertJc = static_cast<OVerticalJustification>(value);
        EXPECT_TRUE(ommlNodeToXml(*makeOmmlNode(std::move(g)))
                        .contains(QString("<m:vertJc m:val=\"%1\"/>").arg(text)))
            << value;
    }
    const std::pair<int, const char*> columns[] = {{0, "left"}, {1, "center"}, {2, "right"}, {5, "center"}};
    for (const auto& [value, text] : columns) {
        OMatrix m;
        m.columns.push_back({{}, static_cast<OColumnJustification>(value)});
        EXPECT_TRUE(
            ommlNodeToXml(*makeOmmlNode(std::move(m))).contains(QString("<m:mcJc m:val=\"%1\"/>").arg(text)))
            << value;
    }
    const std::pair<int, const char*> fractions[] = {{1, "nobar"}, {2, "lin"}, {3, "skw"}};
    for (const auto& [value, text] : fractions) {
        OFraction f;
        f.type = static_cast<OFractionType>(value);
        EXPECT_TRUE(ommlNodeToXml(*makeOmmlNode(std::move(f)))
                        .startsWith(QString("<m:f><m:fPr><m:type m:val=\"%1\"/><m:ctrlPr>").arg(text)))
            << value;
    }
}

TEST(OmmlWriter, EdgeCases)
{
    ODelimiter noFences;
    noFences.begChr.clear();
    noFences.endChr.clear();
    EXPECT_EQ(ommlNodeToXml(*makeOmmlNode(std::move(noFences))),
              "<m:d><m:dPr>" + kCtrl + "<m:begChr m:val=\"\"/><m:endChr m:val=\"\"/></m:dPr><m:e/></m:d>");

    EXPECT_EQ(ommlNodeToXml(*makeOmmlNode(ORadical{})),
              "<m:rad><m:radPr>" + kCtrl + "<m:degHide m:val=\"off\"/></m:radPr><m:deg/><m:e/></m:rad>");
    ORadical hidden;
    hidden.degHide = true;
    hidden.deg = KOmmlNodeList{};
    EXPECT_EQ(ommlNodeToXml(*makeOmmlNode(std::move(hidden))),
              "<m:rad><m:radPr>" + kCtrl + "<m:degHide m:val=\"on\"/></m:radPr><m:deg/><m:e/></m:rad>");

    EXPECT_EQ(ommlNodeToXml(*makeOmmlNode(OBorderBox{})),
              "<m:borderBox><m:borderBoxPr>" + kCtrl + "</m:borderBoxPr><m:e/></m:borderBox>");
    EXPECT_EQ(ommlNodeToXml(*makeOmmlNode(OMatrix{})),
              "<m:m><m:mPr><m:plcHide m:val=\"off\"/>" + kCtrl + "</m:mPr></m:m>");
    EXPECT_EQ(ommlNodeToXml(*run(QString())), runXml("").replace("<m:t></m:t>", "<m:t></m:t>"));
    EXPECT_TRUE(ommlNodeToXml(*run(QString())).endsWith("<m:t></m:t></m:r>"));

    ORun fontless;
    fontless.wordProps.asciiFont.clear();
    fontless.wordProps.hAnsiFont.clear();
    EXPECT_TRUE(ommlNodeToXml(*makeOmmlNode(std::move(fontless)))
                    .contains("<w:rPr><w:rFonts w:hint=\"default\"/></w:rPr>"));

    OAccent noChar;
    noChar.chr.clear();
    EXPECT_EQ(ommlNodeToXml(*makeOmmlNode(std::move(noChar))),
              "<m:acc><m:accPr>" + kCtrl + "</m:accPr><m:e/></m:acc>");

    OControlProperties styled;
    styled.mathProps = OMathRunProperties{OScript::fraktur, OStyle::plain};
    styled.wordProps.color = QColor(1, 2, 3);
    OPhantom phantom;
    phantom.ctrlPr = styled;
    EXPECT_EQ(
        ommlNodeToXml(*makeOmmlNode(std::move(phantom))),
        "<m:phant><m:phantPr><m:ctrlPr><m:rPr><m:scr m:val=\"fraktur\"/><m:sty m:val=\"p\"/></m:rPr><w:rPr>" +
            kFonts + "<w:color w:val=\"010203\"/></w:rPr></m:ctrlPr></m:phantPr><m:e/></m:phant>");
}

TEST(OmmlWriter, NullChildrenAreSkipped)
{
    KOmmlNodeList withNulls;
    withNulls.push_back(nullptr);
    withNulls.push_back(run("a"));
    withNulls.push_back(nullptr);
    EXPECT_EQ(ommlNodeToXml(*makeOmmlNode(OMathEquation{std::move(withNulls)})),
              ommlNodeToXml(*makeOmmlNode(OMathEquation{one("a")})));
    EXPECT_EQ(ommlParagraphToXml(OMathParagraph{}),
              "<m:oMathPara xmlns:m=\"" + kNs +
                  "\"><m:oMathParaPr><m:jc m:val=\"centerGroup\"/></m:oMathParaPr></m:oMathPara>");
}

bool isWellFormed(const QString& xml)
{
    // A fragment: the m: and w: prefixes are declared by the enclosing document.
    QXmlStreamReader reader(xml);
    reader.setNamespaceProcessing(false);
    while (!reader.atEnd())
        reader.readNext();
    return !reader.hasError();
}

TEST(OmmlWriter, ForbiddenCharactersAreLeftOut)
{
    const QString hostile = QString("a") + QChar(0x1) + QChar(0xD800) + "b" + QChar(0xFFFE) + QChar(0xFFFF) +
                            QChar(0xDC00) + "<&>\"" + QChar(0x9) + QChar(0xD83D) + QChar(0xDE00);
    ORun r;
    r.text = hostile;
    r.wordProps.asciiFont = hostile;
    const QString xml = ommlNodeToXml(*makeOmmlNode(std::move(r)));
    EXPECT_TRUE(isWellFormed(xml)) << xml.toStdString();
    EXPECT_TRUE(xml.contains(QString("<m:t>ab&lt;&amp;&gt;&quot;") + QChar(0x9) + QChar(0xD83D) +
                             QChar(0xDE00) + "</m:t>"))
        << xml.toStdString();

    ODelimiter d;
    d.begChr = QString(QChar(0xDBFF));
    d.endChr = QString(QChar(0x1F));
    EXPECT_TRUE(
        ommlNodeToXml(*makeOmmlNode(std::move(d))).contains("<m:begChr m:val=\"\"/><m:endChr m:val=\"\"/>"));
}

TEST(OmmlWriter, DeepNestingStaysBounded)
{
    KOmmlNodePtr node = run("x");
    for (int i = 0; i < 100000; ++i)
        node = makeOmmlNode(OSuperscript{makeOmmlList(std::move(node)), {}, {}});
    const QString xml = ommlNodeToXml(*node);
    EXPECT_TRUE(isWellFormed(xml));
    EXPECT_FALSE(xml.contains("<m:t>x</m:t>"));
    // Tear the chain down iteratively so the test itself does not recurse 100,000 levels.
    while (node) {
        auto& sup = std::get<OSuperscript>(node->value);
        KOmmlNodePtr next = sup.e.empty() ? nullptr : std::move(sup.e.front());
        if (next && !std::holds_alternative<OSuperscript>(next->value))
            next.reset();
        node = std::move(next);
    }
}

} // namespace
