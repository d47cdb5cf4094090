#include "omml_text.h"

using namespace omml_text;

namespace {

const QString x = r("x"), fab = frac(r("a"), r("b")), kRight = QStringLiteral("\u2192");
const Look bold = sty("b");
const QStringList falling = {"strikeTLBR"}, rising = {"strikeBLTR"};
// Braces take the current style with the italic switch on.
const QString braceCtrl = ctrl(sty("", true));

QString over(const QString& chr, const QString& e, const QString& ctrlXml = braceCtrl)
{
    return groupChr(chr, "top", "bot", e, ctrlXml);
}

QString under(const QString& chr, const QString& e, const QString& ctrlXml = braceCtrl)
{
    return groupChr(chr, "bot", "top", e, ctrlXml);
}

INSTANTIATE_TEST_SUITE_P(
    Marks, LatexToOmml,
    ::testing::Values(
        LatexCase{"\\hat{x}", acc(QStringLiteral("\u0302"), x)},
        LatexCase{"\\vec{\\frac{a}{b}}", acc(QStringLiteral("\u20D7"), fab)},
        LatexCase{"\\mathbf{\\hat{x}}", acc(QStringLiteral("\u0302"), r("x", bold), ctrlOf(bold))},
        LatexCase{"\\overline{AB}", bar("top", r("AB"))}, LatexCase{"\\underline{x}", bar("bot", x)},
        // Without braces \not takes the one character that follows, as TeX does.
        LatexCase{"\\not=", borderBox(falling, r("="))},
        LatexCase{"\\not{ab}", borderBox(falling, r("a")) + borderBox(falling, r("b"))},
        LatexCase{"\\not{\\frac{a}{b}}", borderBox(rising, fab)},
        LatexCase{"\\not{a\\sqrt{b}}",
                  borderBox(falling, r("a")) + borderBox(rising, rad(r("b"), QString(), true))},
        LatexCase{"\\mathbf{\\not{\\in}}", borderBox(falling, r(QStringLiteral("\u2208")), ctrlOf(bold))},
        LatexCase{"\\not{}", ""}, LatexCase{"\\cancel{x}", borderBox(rising, x)},
        LatexCase{"\\bcancel{x}", borderBox(falling, x)},
        LatexCase{"\\xcancel{x}", borderBox({"strikeBLTR", "strikeTLBR"}, x)},
        LatexCase{"\\cancelto{0}{x}", sSup(borderBox(rising, x), r("0"))},
        // A brace's label is set over or under it as a limit; the other script on the far side.
        LatexCase{"\\overbrace{a+b}^{n}", limUpp(over(QStringLiteral("\u23DE"), r("a+b")), r("n"))},
        LatexCase{"\\underbrace{x}_{k}", limLow(under(QStringLiteral("\u23DF"), x), r("k"))},
        LatexCase{"\\overbrace{x}^{n}_{m}",
                  limLow(limUpp(over(QStringLiteral("\u23DE"), x), r("n")), r("m"))},
        LatexCase{"\\underbrace{x}^{n}", limUpp(under(QStringLiteral("\u23DF"), x), r("n"))},
        LatexCase{"\\overbracket{x}^{n}", sSup(over(QStringLiteral("\u23B4"), x), r("n"))},
        LatexCase{"\\mathbf{\\underbrace{x}}",
                  under(QStringLiteral("\u23DF"), r("x", bold), ctrlOf(sty("b", true)))}));

INSTANTIATE_TEST_SUITE_P(
    Arrows, LatexToOmml,
    ::testing::Values(
        LatexCase{"\\xrightarrow{f}", groupChr(kRight, "bot", "top", r("f"))},
        LatexCase{"\\xrightarrow[g]{}", groupChr(kRight, "top", "bot", r("g"))},
        LatexCase{"\\xrightarrow[gg]{f}", limUpp(groupChr(kRight, "top", "bot", r("gg")), r("f"))},
        LatexCase{"\\xrightarrow[g]{ff}", limLow(groupChr(kRight, "bot", "top", r("ff")), r("g"))},
        LatexCase{"\\xrightarrow[\\sqrt{a}]{f}",
                  limUpp(groupChr(kRight, "top", "bot", rad(r("a"), QString(), true)), r("f"))},
        // A character outside the BMP counts two code units.
        LatexCase{"\\xrightarrow[\xF0\x9D\x91\xA5]{ff}",
                  limUpp(groupChr(kRight, "top", "bot", r(QString::fromUtf8("\xF0\x9D\x91\xA5"))), r("ff"))},
        LatexCase{"\\xrightarrow{}", r(kRight)},
        LatexCase{"\\mathbf{\\xrightarrow[g]{ff}}",
                  limLow(groupChr(kRight, "bot", "top", r("ff", bold), ctrlOf(bold)), r("g", bold),
                         ctrlOf(bold))}));

TEST(Decorations, ArgumentsTextCannotGive)
{
    for (const char* name : {"hat", "overline", "not", "xcancel"})
        EXPECT_EQ(convertTree(command(name)), "") << name;
    for (const char* name : {"hat", "wideutilde", "overline", "underline"})
        EXPECT_EQ(convertTree(command(name, braced("x"), braced("y"))), "") << name;
    EXPECT_EQ(convertTree(command("cancelto", braced("0"))), "");
    EXPECT_EQ(convertTree(command("underbrace")), under(QStringLiteral("\u23DF"), ""));
    EXPECT_EQ(convertTree(command("xrightarrow", arg(group(text("g")), true))),
              groupChr(kRight, "top", "bot", r("g")));
    // The last label of each kind wins.
    EXPECT_EQ(convertTree(command("xleftarrow", arg(group(text("a")), true), braced("b"),
                                  arg(group(text("cc")), true), braced("d"))),
              limUpp(groupChr(QStringLiteral("\u2190"), "top", "bot", r("cc")), r("d")));
}

TEST(Decorations, NegationSplitsNonBmpTextIntoCodeUnits)
{
    const QString clef = QString::fromUtf8("\xF0\x9D\x84\x9E");
    KLatexAst2Omml converter;
    converter.prepare(false);
    const KOmmlNodeList result = converter.convert(*group(command("not", arg(text(clef)))));
    ASSERT_EQ(result.size(), 2u);
    for (int i = 0; i < 2; ++i) {
        const auto* box = ommlAs<OBorderBox>(result[i].get());
        ASSERT_TRUE(box && box->e.size() == 1u && box->strikeTLBR && !box->strikeBLTR);
        EXPECT_EQ(ommlAs<ORun>(box->e[0].get())->text, QString(clef.at(i)));
    }
}

} // namespace
