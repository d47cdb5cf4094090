#include "omml_text.h"

using namespace omml_text;

namespace {

const QString kNone, kSum = QStringLiteral("\u2211"), a = r("a"), b = r("b"), x = r("x");
const QString nobar = QStringLiteral("noBar");

INSTANTIATE_TEST_SUITE_P(Fractions, LatexToOmml,
                         ::testing::Values(LatexCase{"\\frac{1}{2}", frac(r("1"), r("2"))},
                                           LatexCase{"\\tfrac{a}{b}", frac(a, b, "lin")},
                                           LatexCase{"\\sfrac{a}{b}", frac(a, b, "skw")},
                                           LatexCase{"\\frac{}{}", frac(kNone, kNone)},
                                           LatexCase{"\\binom{a}{b}", d("(", ")", frac(a, b, nobar))},
                                           LatexCase{"\\frac{1}", kNone},
                                           LatexCase{"{a \\over b}", frac(a, b)},
                                           LatexCase{"{a \\atop b}", frac(a, b, nobar)},
                                           LatexCase{"{a \\choose b}", d("(", ")", frac(a, b, nobar))},
                                           LatexCase{"\\sqrt{x}", rad(x, kNone, true)},
                                           LatexCase{"\\sqrt[3]{x}", rad(x, r("3"), false)},
                                           LatexCase{"\\sqrt[]{x}", rad(x, "", false)}));

INSTANTIATE_TEST_SUITE_P(
    Operators, LatexToOmml,
    ::testing::Values(
        LatexCase{"\\sum", nary(kSum, true, true, true, kNone, kNone, kNone)},
        LatexCase{"\\int", nary(QStringLiteral("\u222B"), false, true, true, kNone, kNone, kNone)},
        LatexCase{"\\int\\limits", nary(QStringLiteral("\u222B"), true, true, true, kNone, kNone, kNone)},
        LatexCase{"\\bigcup", nary(QStringLiteral("\u22C3"), true, true, true, kNone, kNone, kNone)},
        LatexCase{"\\bigoplus\\nolimits",
                  nary(QStringLiteral("\u2A01"), false, true, true, kNone, kNone, kNone)},
        LatexCase{"\\sum\\limits_{i}", nary(kSum, true, false, true, r("i"), kNone, kNone)},
        LatexCase{"\\sum\\nolimits^n", nary(kSum, false, true, false, kNone, r("n"), kNone)},
        LatexCase{"\\int\\frac{dx}{x}",
                  nary(QStringLiteral("\u222B"), false, true, true, kNone, kNone, frac(r("dx"), x))},
        LatexCase{"\\sin", func(rp("sin"), kNone)}, LatexCase{"\\sin^2 x", func(sSup(rp("sin"), r("2")), x)},
        LatexCase{"\\log_2^k", func(sSubSup(rp("log"), r("2"), r("k")), kNone)},
        LatexCase{"\\lim_{x\\to 0} f", func(limLow(rp("lim"), r(QStringLiteral("x\u21920"))), r("f"))},
        LatexCase{"\\lim", func(limLow(rp("lim"), kNone), kNone)},
        LatexCase{"\\lim_{\\left(n\\right)}", func(limLow(rp("lim"), d("(", ")", r("n"))), kNone)},
        LatexCase{"\\max_a^b", func(limUpp(limLow(rp("max"), a), b), kNone)},
        LatexCase{"\\limsup", func(limLow(rp("lim sup"), kNone), kNone)},
        LatexCase{"\\varlimsup", func(limLow(bar("top", rp("lim")), kNone), kNone)},
        // The arrow is part of the name; limits go below it.
        LatexCase{"\\varinjlim",
                  func(limLow(groupChr(QStringLiteral("\u2192"), "bot", "top", rp("lim")), kNone), kNone)},
        LatexCase{"\\varinjlim_{i}",
                  func(limLow(groupChr(QStringLiteral("\u2192"), "bot", "top", rp("lim")), r("i")), kNone)},
        LatexCase{"\\overset{!}{=}", limUpp(r("="), r("!"))}, LatexCase{"\\underset{a}{b}", limLow(b, a)}));

// Structures copy the whole current style as control properties; scripts and
// operator names do not follow it.
const Look bold = sty("b");
const QString bx = r("x", bold), by = r("y", bold), boldCtrl = ctrlOf(bold);

INSTANTIATE_TEST_SUITE_P(
    Styled, LatexToOmml,
    ::testing::Values(
        LatexCase{"\\mathbf{\\frac{x}{y}}", frac(bx, by, "", boldCtrl)},
        LatexCase{"\\mathbf{\\binom{x}{y}}", d("(", ")", frac(bx, by, nobar, boldCtrl), boldCtrl)},
        LatexCase{"\\mathbf{\\sqrt{x}}", rad(bx, kNone, true, boldCtrl)},
        LatexCase{"\\mathbf{\\sum^x}", nary(kSum, true, true, false, kNone, bx, kNone, boldCtrl)},
        LatexCase{"\\mathbf{\\sin^x}", func(sSup(rp("sin"), bx), kNone, boldCtrl)},
        LatexCase{"\\mathbf{\\lim_x^y}",
                  func(limUpp(limLow(rp("lim"), bx, boldCtrl), by, boldCtrl), kNone, boldCtrl)}));

TEST(Structural, ArgumentsTextCannotGiveAreRefused)
{
    EXPECT_EQ(convertTree(command("frac", braced("1"), braced("2"), braced("3"))), kNone);
    EXPECT_EQ(convertTree(command("over", braced("a"))), kNone);
    EXPECT_EQ(convertTree(command("sqrt")), kNone);
    EXPECT_EQ(convertTree(command("sqrt", arg(nullptr, true), braced("x"))), kNone);
    // A fence with nothing inside is no lower limit.
    EXPECT_EQ(convertTree(makeScript(command("lim"), nullptr, makeLeftRight(".", ".", group(), true))),
              func(limLow(rp("lim"), kNone), kNone));
    // A degree in braces comes second.
    EXPECT_EQ(convertTree(command("sqrt", braced("x"), braced("3"))), rad(x, r("3"), false));
    for (const char* name : {"sum", "cos", "lim", "varinjlim"}) {
        EXPECT_EQ(convertTree(command(name, braced("x"))), kNone) << name;
        EXPECT_EQ(convertTree(makeScript(command(name, braced("x")), text("2"), nullptr)), kNone) << name;
    }
}

} // namespace
