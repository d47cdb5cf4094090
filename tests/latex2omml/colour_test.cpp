#include "handler_test_support.h"

#include "latex2omml/handlers.h"

#include <gtest/gtest.h>

#include <functional>

using namespace l2o_test;

namespace {

KOmmlNodePtr runNode(const char* text)
{
    return makeOmmlNode(ORun{QString::fromUtf8(text), {}, {}});
}

KOmmlNodeList oneRun(const char* text)
{
    return makeOmmlList(runNode(text));
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
             p.equation = makeOmmlNode(OMathEquation{oneRun("a")});
             return makeOmmlNode(std::move(p));
         },
         "<m:oMathPara xmlns:m=\"" + kNs + "\"><m:oMathParaPr>" + val("m:jc", "centerGroup") +
             "</m:oMathParaPr><m:oMath xmlns:m=\"" + kNs + "\">" + ra + "</m:oMath></m:oMathPara>"},
        {"ParagraphWithoutEquation", [] { return makeOmmlNode(OMathParagraph{}); },
         "<m:oMathPara xmlns:m=\"" + kNs + "\"><m:oMathParaPr>" + val("m:jc", "centerGroup") +
             "</m:oMathParaPr></m:oMathPara>"},
        {"Equation",
         [] { return makeOmmlNode(OMathEquation{makeOmmlList(runNode("a"), nullptr, runNode("b"))}); },
         "<m:oMath xmlns:m=\"" + kNs + "\">" + ra + rb + "</m:oMath>"},
        {"Run", [] { return runNode("a"); }, ra},
        {"Fraction",
         [] {
             OFraction f;
             f.num = oneRun("a");
             f.den = oneRun("b");
             return makeOmmlNode(std::move(f));
         },
         frac(ra, rb, QString(), redCtrl)},
        {"Superscript",
         [] {
             return makeOmmlNode(OSuperscript{oneRun("a"), oneRun("b"), {}});
         },
         sSup(ra, rb)},
        {"Subscript",
         [] {
             return makeOmmlNode(OSubscript{oneRun("a"), oneRun("b"), {}});
         },
         sSub(ra, rb)},
        {"SubSuperscript",
         [] {
             return makeOmmlNode(OSubSuperscript{oneRun("a"), oneRun("b"), oneRun("c"), {}});
         },
         sSubSup(ra, rb, rc)},
        {"RadicalWithDegree",
         [] {
             ORadical rad;
             rad.e = oneRun("a");
             rad.deg = oneRun("b");
             return makeOmmlNode(std::move(rad));
         },
         rad(ra, rb, false, redCtrl)},
        {"RadicalWithoutDegree",
         [] {
             ORadical rad;
             rad.e = oneRun("a");
             rad.degHide = true;
             return makeOmmlNode(std::move(rad));
         },
         rad(ra, QString(), true, redCtrl)},
        {"NaryOperator",
         [] {
             ONaryOperator n;
             n.e = oneRun("a");
             n.sub = oneRun("b");
             n.sup = oneRun("c");
             return makeOmmlNode(std::move(n));
         },
         nary(u8"\u222B", false, false, false, rb, rc, ra, redCtrl)},
        {"LimitLower",
         [] {
             return makeOmmlNode(OLimitLower{oneRun("a"), oneRun("b"), {}});
         },
         limLow(ra, rb)},
        {"LimitUpper",
         [] {
             return makeOmmlNode(OLimitUpper{oneRun("a"), oneRun("b"), {}});
         },
         limUpp(ra, rb)},
        {"Function",
         [] {
             return makeOmmlNode(OFunction{oneRun("a"), oneRun("b"), {}});
         },
         func(ra, rb, redCtrl)},
        {"Delimiter",
         [] {
             ODelimiter d;
             d.e = oneRun("a");
             return makeOmmlNode(std::move(d));
         },
         d("(", ")", ra, redCtrl)},
        {"Accent",
         [] {
             OAccent acc;
             acc.e = oneRun("a");
             return makeOmmlNode(std::move(acc));
         },
         accentEl(u8"\u0302", ra, redCtrl)},
        {"Bar",
         [] {
             return makeOmmlNode(OBar{oneRun("a"), OPosition::top});
         },
         bar("top", ra)},
        {"BorderBox",
         [] {
             OBorderBox box;
             box.e = oneRun("a");
             return makeOmmlNode(std::move(box));
         },
         borderBox({}, ra, redCtrl)},
        {"GroupChar",
         [] {
             OGroupChar g;
             g.e = oneRun("a");
             return makeOmmlNode(std::move(g));
         },
         groupChr(u8"\u23DF", "bot", "top", ra, redCtrl)},
        {"Matrix",
         [] {
             OMatrix m;
             m.rows.resize(2);
             m.rows[0].push_back(oneRun("a"));
             m.rows[0].push_back(oneRun("b"));
             m.rows[1].push_back(oneRun("c"));
             m.columns = {OMatrixColumn{QStringLiteral("1"), OColumnJustification::center},
                          OMatrixColumn{QStringLiteral("1"), OColumnJustification::center}};
             m.cGp = m.cGpRule = QStringLiteral("0");
             return makeOmmlNode(std::move(m));
         },
         matrix({"center", "center"}, {{ra, rb}, {rc}}, redCtrl)},
        {"Box",
         [] {
             OBox b;
             b.e = oneRun("a");
             return makeOmmlNode(std::move(b));
         },
         boxEl(ra, redCtrl)},
        {"EquationArray",
         [] {
             OEquationArray a;
             a.rows.push_back(oneRun("a"));
             a.rows.push_back(oneRun("b"));
             return makeOmmlNode(std::move(a));
         },
         eqArr({ra, rb})},
        {"Phantom",
         [] {
             return makeOmmlNode(OPhantom{oneRun("a"), {}});
         },
         phant(ra)},
        {"PreSubSuperscript",
         [] {
             return makeOmmlNode(OPreSubSuperscript{oneRun("a"), oneRun("b"), oneRun("c"), {}});
         },
         sPre(ra, rb, rc)},
    };
}

INSTANTIATE_TEST_SUITE_P(AllKinds, ColourKinds, ::testing::ValuesIn(kindCases()),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(ColourPass, ReachesRunsNestedInStructures)
{
    OFraction inner;
    inner.num = oneRun("a");
    inner.den = makeOmmlList(makeOmmlNode(OBar{oneRun("b"), OPosition::bottom}));
    KOmmlNodePtr root = makeOmmlNode(OMathEquation{makeOmmlList(makeOmmlNode(ODelimiter{
        makeOmmlList(makeOmmlNode(std::move(inner))), QStringLiteral("["), QStringLiteral("]"), {}}))});
    applyColour(*root, QStringLiteral("#0000ff"));
    const QString blue = ctrl(colouredControl("0000ff"));
    EXPECT_EQ(ommlNodeToXml(*root), "<m:oMath xmlns:m=\"" + kNs + "\">" +
                                        d("[", "]",
                                          frac(run("a", coloured("0000ff")),
                                               bar("bot", run("b", coloured("0000ff"))), QString(), blue),
                                          blue) +
                                        "</m:oMath>");
}

TEST(ColourPass, ReplacesAnEarlierColour)
{
    KOmmlNodePtr node = runNode("a");
    ommlAs<ORun>(node.get())->wordProps.color = QColor(0, 0, 255);
    applyColour(*node, QStringLiteral("red"));
    EXPECT_EQ(ommlNodeToXml(*node), ra);
}

TEST(ColourPass, EmptyNameSetsOnlyTheNodeItself)
{
    // The structure's own colour is set (to the invalid colour an empty name
    // gives); nothing below it is touched.
    OFraction f;
    f.num = oneRun("a");
    f.den = oneRun("b");
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
        KOmmlNodePtr node = runNode("a");
        applyColour(*node, QString::fromUtf8(name));
        EXPECT_EQ(ommlNodeToXml(*node), run("a", coloured(written))) << name;
    }
}

TEST(ColourPass, VeryDeepTreesStopWithoutCrashing)
{
    KOmmlNodePtr node = runNode("a");
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
