#include "omml_text.h"

using namespace omml_text;

namespace {

TEST_P(LatexToOmml, ConvertsToExactOmml)
{
    EXPECT_EQ(convertLatex(QString::fromUtf8(GetParam().latex)), GetParam().omml) << GetParam().latex;
}

const QString kSum = QStringLiteral("\u2211"), kInt = QStringLiteral("\u222B"), kNone;

INSTANTIATE_TEST_SUITE_P(
    Dispatch, LatexToOmml,
    ::testing::Values(
        LatexCase{"", kNone}, LatexCase{"}", kNone}, LatexCase{"ab", r("ab")},
        LatexCase{"\xF0\x9D\x94\xB8"
                  "b",
                  r(QString::fromUtf8("\xF0\x9D\x94\xB8") + "b")},
        LatexCase{"\\foo{x}y", r("\\fooxy")}, LatexCase{"a\\foo^2", r("a") + sSup(r("\\foo"), r("2"))},
        LatexCase{"\\mathbf{\\foo}", r("\\foo")},
        LatexCase{"a\\hphantom{x}", r("a") + phant(r("x"), {"zeroAsc", "zeroDesc"})},
        // \smash shows its content without height and depth, or without the side it names.
        LatexCase{"\\smash{x}\\smash[t]{y}\\smash[b]{z}", phant(r("x"), {"zeroAsc", "zeroDesc"}, true) +
                                                           phant(r("y"), {"zeroAsc"}, true) +
                                                           phant(r("z"), {"zeroDesc"}, true)},
        LatexCase{"a\\lcm^2", r("a") + func(limUpp(limLow(rp("lcm"), kNone), r("2")), kNone)},
        LatexCase{"x_i", sSub(r("x"), r("i"))}, LatexCase{"x_i^2", sSubSup(r("x"), r("i"), r("2"))},
        LatexCase{"_3^2", sSubSup(kNone, r("3"), r("2"))},
        LatexCase{"\\left( x \\right.", d("(", "", r("x"))},
        LatexCase{"\\left\\uparrow x \\right)", d(QStringLiteral("\u2191"), ")", r("x"))},
        LatexCase{"\\left x\\right y", d("x", "y", kNone)},
        LatexCase{"\\left\\{ x \\right\\}", d("{", "}", r("x"))},
        LatexCase{"\\left< x \\right>", d(QStringLiteral("\u27E8"), QStringLiteral("\u27E9"), r("x"))},
        LatexCase{"\\left\\lgroup\\right\\|", d(QStringLiteral("\u27EE"), QStringLiteral("\u2016"), kNone)}));

// The group post-pass: operators take the following node, \limits and \nolimits merge.
INSTANTIATE_TEST_SUITE_P(
    Groups, LatexToOmml,
    ::testing::Values(LatexCase{"\\sum_{i=1}^n x_i",
                                nary(kSum, true, false, false, r("i=1"), r("n"), sSub(r("x"), r("i")))},
                      LatexCase{"a+\\sum", r("a+") + nary(kSum, true, true, true, kNone, kNone, kNone)},
                      LatexCase{"\\sum x y", nary(kSum, true, true, true, kNone, kNone, r("x")) + r("y")},
                      LatexCase{"\\sum\\sum x", nary(kSum, true, true, true, kNone, kNone,
                                                     nary(kSum, true, true, true, kNone, kNone, kNone)) +
                                                    r("x")},
                      LatexCase{"\\sin x y", func(rp("sin"), r("x")) + r("y")},
                      LatexCase{"\\int\\limits_0^1 f",
                                nary(kInt, true, false, false, r("0"), r("1"), r("f"))},
                      LatexCase{"\\sum\\nolimits f", nary(kSum, false, true, true, kNone, kNone, r("f"))},
                      // The operator's own scripts are lost when the marker carries scripts.
                      LatexCase{"\\int_a\\limits^b f", nary(kInt, true, true, false, kNone, r("b"), r("f"))},
                      LatexCase{"x\\limits", r("x")},
                      LatexCase{"x\\limits_a^b", sSubSup(r("x"), r("a"), r("b"))},
                      LatexCase{"\\alpha\\limits^2", sSup(r(QStringLiteral("\u03B1")), r("2"))},
                      LatexCase{"\\lim\\nolimits_{x}", sSub(r("lim"), r("x"))},
                      LatexCase{"\\log\\limits_x y", func(limLow(rp("log"), r("x")), r("y"))},
                      LatexCase{"\\limits x", r("\\limitsx")}));

TEST(ConverterCore, UnknownCommandIsRedInRenderMode)
{
    EXPECT_EQ(convertLatex("a\\foo", true), r("a") + r("\\foo", colour("ff0000")));
    EXPECT_EQ(convertLatex("a\\foo"), r("a\\foo"));
}

TEST(ConverterCore, TreesTextCannotReach)
{
    // A row converts cell by cell without merging; the fence flag is not consulted.
    EXPECT_EQ(convertTree(makeRow(list(group(text("a")), group(text("b"))))), r("a") + r("b"));
    EXPECT_EQ(convertTree(makeLeftRight("[", "]", group(text("x")), false)), d("[", "]", r("x")));
    EXPECT_EQ(convertTree(makeScript(text("x"), nullptr, nullptr)), kNone);
    EXPECT_EQ(convertTree(command("alpha", braced("x"))), kNone);
    // A literal converts its arguments after its name, skipping missing ones; a size
    // switch converts them alone.
    EXPECT_EQ(convertTree(command("nolimits", braced("x"), arg(nullptr), arg(command("beta")))),
              r("\\nolimits") + r("x") + r(QStringLiteral("\u03B2")));
    EXPECT_EQ(convertTree(command("tiny", braced("x"), arg(nullptr), arg(command("beta")))),
              r("x") + r(QStringLiteral("\u03B2")));
    EXPECT_EQ(convertTree(command("operatorname", arg(nullptr))), kNone);
    EXPECT_EQ(convertTree(command("operatorname", braced("rank"), braced("x"))), rp("rank"));
}

TEST(ConverterCore, ConvertingDoesNotChangeTheTree)
{
    LatexDiagnostics diagnostics;
    const KLatexNodePtr root =
        parseLatex(QStringLiteral("\\int_a\\limits^b x^{\\nolimits c}\\sum\\limits"), diagnostics);
    const QString first = convertTree(root);
    EXPECT_EQ(convertTree(root), first);
    EXPECT_EQ(first, nary(kInt, true, true, false, kNone, r("b"), sSup(r("x"), r("\\nolimitsc"))) +
                         nary(kSum, true, true, true, kNone, kNone, kNone));
}

TEST(ConverterCore, RunsCopyEveryFieldOfTheCurrentStyle)
{
    KLatexAst2Omml converter;
    converter.prepare(true);
    OControlProperties style;
    style.mathProps = OMathRunProperties{OScript::fraktur, OStyle::bold};
    style.wordProps.asciiFont = "Serif";
    style.wordProps.italic = style.wordProps.bold = true;
    style.wordProps.color = QColor(0, 128, 255);
    converter.pushStyle(style);
    EXPECT_EQ(xmlOf(converter.convert(*group(text("a"), command("alpha")))),
              QStringLiteral("<m:r><m:rPr><m:scr m:val=\"fraktur\"/><m:sty m:val=\"b\"/></m:rPr><w:rPr>"
                             "<w:rFonts w:ascii=\"Serif\" w:hAnsi=\"Cambria Math\" w:hint=\"default\"/>"
                             "<w:i/><w:b/><w:color w:val=\"0080ff\"/></w:rPr><m:t>a\u03B1</m:t></m:r>"));
    // prepare empties the stack; popping past the default style keeps the default.
    converter.prepare(false);
    converter.popStyle();
    converter.popStyle();
    EXPECT_FALSE(converter.renderMode());
    EXPECT_EQ(xmlOf(converter.convert(*text("b"))), r("b"));
}

KLatexNodePtr nestedGroups(int levels)
{
    KLatexNodePtr node = text("x");
    for (int i = 0; i < levels; ++i)
        node = group(std::move(node));
    return node;
}

TEST(ConverterCore, DeepNestingStopsAtTheLimit)
{
    const int limit = KLatexAst2Omml::kMaxDepth;
    // The root group is the first level, so the text sits at depth levels + 1.
    EXPECT_EQ(convertTree(nestedGroups(limit - 1)), r("x"));
    EXPECT_EQ(convertTree(nestedGroups(limit)), kNone);
    EXPECT_EQ(convertTree(nestedGroups(2 * limit)), kNone);
    KLatexNodePtr scripts = text("x");
    for (int i = 0; i < 2 * limit; ++i)
        scripts = makeScript(std::move(scripts), text("2"), nullptr);
    EXPECT_TRUE(convertTree(scripts).startsWith("<m:sSup>"));
}

TEST(ConverterCore, HugeAndDeepInputStaysBounded)
{
    // More items than one list may hold: the parser cuts the list, the converter
    // still returns one merged run.
    const QString xml = convertLatex(QString(100000, QLatin1Char('a')));
    EXPECT_TRUE(xml.startsWith("<m:r>"));
    EXPECT_EQ(xml.count("<m:r>"), 1);
    convertLatex(QString(5000, QLatin1Char('{')) + "x" + QString(5000, QLatin1Char('}')));
    convertLatex(QString("\\frac{").repeated(3000) + "x" + QString("}{y}").repeated(3000));
}

} // namespace
