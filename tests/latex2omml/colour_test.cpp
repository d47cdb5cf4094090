#include "handler_test_support.h"

#include "latex2omml/handlers.h"

#include <gtest/gtest.h>

#include <functional>

using namespace l2o_test;

namespace {

KOmmlNodePtr r(const char* text)
{
    return makeOmmlNode(ORun{QString::fromUtf8(text), {}, {}});
}

KOmmlNodeList one(const char* text)
{
    return makeOmmlList(r(text));
}

const QString kNs = QStringLiteral("http://schemas.openxmlformats.org/officeDocument/2006/math");
const Look red = coloured("ff0000");
const QString ra = run("a", red), rb = run("b", red), rc = run("c", red);
const QString redCtrl = ctrl(colouredControl("ff0000"));

struct KindCase {
    const char* name;
    std::function<KOmmlNodePtr()> build;
    QString expected; // after painting the node "red"
};

void PrintTo(const KindCase& c, std::ostream* os)
{
    *os << c.name;
}

class ColourKinds : public ::testing::TestWithParam<KindCase> {};

TEST_P(ColourKinds, PaintRunsAndControlPropertiesAsTheirKindSays)
{
    KOmmlNodePtr node = GetParam().build();
    applyColour(*node, QStringLiteral("red"));
    EXPECT_EQ(ommlNodeToXml(*node), GetParam().expected);
}

std::vector<KindCase> kindCases()
{
    return {
        {"Paragraph",
         [] {
             OMathParagraph p;
             p.equation = makeOmmlNode(OMathEquation{one("a")});
             return makeOmmlNode(std::move(p));
         },
         "<m:oMathPara xmlns:m=\"" + kNs + "\"><m:oMathParaPr>" + val("jc", "centerGroup") +
             "</m:oMathParaPr><m:oMath xmlns:m=\"" + kNs + "\">" + ra + "</m:oMath></m:oMathPara>"},
        {"ParagraphWithoutEquation", [] { return makeOmmlNode(OMathParagraph{}); },
         "<m:oMathPara xmlns:m=\"" + kNs + "\"><m:oMathParaPr>" + val("jc", "centerGroup") +
             "</m:oMathParaPr></m:oMathPara>"},
        {"Equation", [] { return makeOmmlNode(OMathEquation{makeOmmlList(r("a"), nullptr, r("b"))}); },
         "<m:oMath xmlns:m=\"" + kNs + "\">" + ra + rb + "</m:oMath>"},
        {"Run", [] { return r("a"); }, ra},
        {"Fraction",
         [] {
             OFraction f;
             f.num = one("a");
             f.den = one("b");
             return makeOmmlNode(std::move(f));
         },
         frac("", ra, rb, redCtrl)},
        {"Superscript",
         [] {
             return makeOmmlNode(OSuperscript{one("a"), one("b"), {}});
         },
         sSup(ra, rb)},
        {"Subscript",
         [] {
             return makeOmmlNode(OSubscript{one("a"), one("b"), {}});
         },
         withCtrl("sSub", ctrl(), arg("e", ra) + arg("sub", rb))},
        {"SubSuperscript",
         [] {
             return makeOmmlNode(OSubSuperscript{one("a"), one("b"), one("c"), {}});
         },
         withCtrl("sSubSup", ctrl(), arg("e", ra) + arg("sub", rb) + arg("sup", rc))},
        {"RadicalWithDegree",
         [] {
             ORadical rad;
             rad.e = one("a");
             rad.deg = one("b");
             return makeOmmlNode(std::move(rad));
         },
         withCtrl("rad", redCtrl + val("degHide", "off"), arg("deg", rb) + arg("e", ra))},
        {"RadicalWithoutDegree",
         [] {
             ORadical rad;
             rad.e = one("a");
             rad.degHide = true;
             return makeOmmlNode(std::move(rad));
         },
         withCtrl("rad", redCtrl + val("degHide", "on"), "<m:deg/>" + arg("e", ra))},
        {"NaryOperator",
         [] {
             ONaryOperator n;
             n.e = one("a");
             n.sub = one("b");
             n.sup = one("c");
             return makeOmmlNode(std::move(n));
         },
         withCtrl("nary",
                  redCtrl + val("chr", u8"\u222B") + val("limLoc", "subSup") + val("subHide", "off") +
                      val("supHide", "off"),
                  arg("sub", rb) + arg("sup", rc) + arg("e", ra))},
        {"LimitLower",
         [] {
             return makeOmmlNode(OLimitLower{one("a"), one("b"), {}});
         },
         limLow(ra, rb)},
        {"LimitUpper",
         [] {
             return makeOmmlNode(OLimitUpper{one("a"), one("b"), {}});
         },
         limUpp(ra, rb)},
        {"Function",
         [] {
             return makeOmmlNode(OFunction{one("a"), one("b"), {}});
         },
         func(ra, rb, redCtrl)},
        {"Delimiter",
         [] {
             ODelimiter d;
             d.e = one("a");
             return makeOmmlNode(std::move(d));
         },
         delim("(", ")", ra, redCtrl)},
        {"Accent",
         [] {
             OAccent acc;
             acc.e = one("a");
             return makeOmmlNode(std::move(acc));
         },
         accentEl(u8"\u0302", ra, redCtrl)},
        {"Bar",
         [] {
             return makeOmmlNode(OBar{one("a"), OPosition::top});
         },
         barEl("top", ra)},
        {"BorderBox",
         [] {
             OBorderBox box;
             box.e = one("a");
             return makeOmmlNode(std::move(box));
         },
         borderBox({}, ra, redCtrl)},
        {"GroupChar",
         [] {
             OGroupChar g;
             g.e = one("a");
             return makeOmmlNode(std::move(g));
         },
         groupChr(u8"\u23DF", "bot", "top", ra, redCtrl)},
        {"Matrix",
         [] {
             OMatrix m;
             m.rows.resize(2);
             m.rows[0].push_back(one("a"));
             m.rows[0].push_back(one("b"));
             m.rows[1].push_back(one("c"));
             m.columns = {OMatrixColumn{QStringLiteral("1"), OColumnJustification::center},
                          OMatrixColumn{QStringLiteral("1"), OColumnJustification::center}};
             m.cGp = m.cGpRule = QStringLiteral("0");
             return makeOmmlNode(std::move(m));
         },
         matrix({"center", "center"}, {{ra, rb}, {rc}}, redCtrl)},
        {"Box",
         [] {
             OBox b;
             b.e = one("a");
             return makeOmmlNode(std::move(b));
         },
         boxEl(ra, redCtrl)},
        {"EquationArray",
         [] {
             OEquationArray a;
             a.rows.push_back(one("a"));
             a.rows.push_back(one("b"));
             return makeOmmlNode(std::move(a));
         },
         eqArr({ra, rb})},
        {"Phantom",
         [] {
             return makeOmmlNode(OPhantom{one("a"), {}});
         },
         phant(ra)},
        {"PreSubSuperscript",
         [] {
             return makeOmmlNode(OPreSubSuperscript{one("a"), one("b"), one("c"), {}});
         },
         withCtrl("sPre", ctrl(), arg("sub", rb) + arg("sup", rc) + arg("e", ra))},
    };
}

INSTANTIATE_TEST_SUITE_P(AllKinds, ColourKinds, ::testing::ValuesIn(kindCases()),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(ColourPass, ReachesRunsNestedInStructures)
{
    OFraction inner;
    inner.num = one("a");
    inner.den = makeOmmlList(makeOmmlNode(OBar{one("b"), OPosition::bottom}));
    KOmmlNodePtr root = makeOmmlNode(OMathEquation{makeOmmlList(makeOmmlNode(ODelimiter{
        makeOmmlList(makeOmmlNode(std::move(inner))), QStringLiteral("["), QStringLiteral("]"), {}}))});
    applyColour(*root, QStringLiteral("#0000ff"));
    const QString blue = ctrl(colouredControl("0000ff"));
    EXPECT_EQ(ommlNodeToXml(*root), "<m:oMath xmlns:m=\"" + kNs + "\">" +
                                        delim("[", "]",
                                              frac("", run("a", coloured("0000ff")),
                                                   barEl("bot", run("b", coloured("0000ff"))), blue),
                                              blue) +
                                        "</m:oMath>");
}

TEST(ColourPass, ReplacesAnEarlierColour)
{
    KOmmlNodePtr node = r("a");
    ommlAs<ORun>(node.get())->wordProps.color = QColor(0, 0, 255);
    applyColour(*node, QStringLiteral("red"));
    EXPECT_EQ(ommlNodeToXml(*node), ra);
}

TEST(ColourPass, EmptyNameSetsOnlyTheNodeItself)
{
    // The structure's own colour is set (to the invalid colour an empty name
    // gives); nothing below it is touched.
    OFraction f;
    f.num = one("a");
    f.den = one("b");
    ommlAs<ORun>(f.den[0].get())->wordProps.color = QColor(0, 0, 255);
    KOmmlNodePtr node = makeOmmlNode(std::move(f));
    applyColour(*node, QString());
    const auto* painted = ommlAs<OFraction>(node.get());
    ASSERT_TRUE(painted->ctrlPr.wordProps.color.has_value());
    EXPECT_FALSE(painted->ctrlPr.wordProps.color->isValid());
    EXPECT_FALSE(ommlAs<ORun>(painted->num[0].get())->wordProps.color.has_value());
    EXPECT_EQ(*ommlAs<ORun>(painted->den[0].get())->wordProps.color, QColor(0, 0, 255));
}

TEST(ColourPass, NameFormsThatQColorReads)
{
    const std::pair<const char*, const char*> names[] = {
        {"red", "ff0000"},       {"#F00", "ff0000"},       {"#ff8000", "ff8000"},  {"DarkGreen", "006400"},
        {"#80ff0000", "ff0000"}, {"#fff000000", "ff0000"}, {"nonsense", "000000"},
    };
    for (const auto& [name, written] : names) {
        KOmmlNodePtr node = r("a");
        applyColour(*node, QString::fromUtf8(name));
        EXPECT_EQ(ommlNodeToXml(*node), run("a", coloured(written))) << name;
    }
}

TEST(ColourPass, VeryDeepTreesStopWithoutCrashing)
{
    KOmmlNodePtr node = r("a");
    for (int i = 0; i < 5000; ++i)
        node = makeOmmlNode(OBox{makeOmmlList(std::move(node)), {}, true});
    applyColour(*node, QStringLiteral("red"));
    // The outer boxes are painted; the innermost run lies beyond the depth limit.
    EXPECT_TRUE(ommlAs<OBox>(node.get())->ctrlPr.wordProps.color.has_value());
    const KOmmlNode* innermost = node.get();
    while (const auto* box = ommlAs<OBox>(innermost))
        innermost = box->e[0].get();
    EXPECT_FALSE(ommlAs<ORun>(innermost)->wordProps.color.has_value());
    // Release the chain iteratively so that destruction does not recurse 5000 levels.
    while (auto* box = ommlAs<OBox>(node.get())) {
        KOmmlNodePtr child = std::move(box->e[0]);
        node = std::move(child);
    }
}

} // namespace
