#include "handler_test_support.h"

#include "latex2omml/handlers.h"

#include <gtest/gtest.h>

using namespace l2o_test;

namespace {

class DecorationTrees : public HandlerTrees {};

TEST_P(DecorationTrees, ConvertToExactOmml)
{
    check();
}

const QString x = run("x");
const Look bold = styled("b");

// Every accent and mark below: \name{x} is the accent with that mark over (or under) x.
struct MarkCase {
    const char* name;
    const char* mark;
};

class Accents : public ::testing::TestWithParam<MarkCase> {};

TEST_P(Accents, PutTheirMarkOnTheArgument)
{
    EXPECT_EQ(convertTree(command(GetParam().name, arg(group(text("x"))))),
              accentEl(QString::fromUtf8(GetParam().mark), x));
}

INSTANTIATE_TEST_SUITE_P(
    AllMarks, Accents,
    ::testing::Values(
        MarkCase{"grave", u8"\u0300"}, MarkCase{"acute", u8"\u0301"}, MarkCase{"hat", u8"\u0302"},
        MarkCase{"tilde", u8"\u0303"}, MarkCase{"bar", u8"\u0304"}, MarkCase{"overbar", u8"\u0305"},
        MarkCase{"overequal", u8"\u033F"}, MarkCase{"breve", u8"\u0306"}, MarkCase{"dot", u8"\u0307"},
        MarkCase{"ddot", u8"\u0308"}, MarkCase{"ovhook", u8"\u0309"}, MarkCase{"ocirc", u8"\u030A"},
        MarkCase{"check", u8"\u030C"}, MarkCase{"candra", u8"\u0310"}, MarkCase{"oturnedcomma", u8"\u0312"},
        MarkCase{"ocommatopright", u8"\u0315"}, MarkCase{"droang", u8"\u031A"}, MarkCase{"vec", u8"\u20D7"},
        MarkCase{"leftharpoonaccent", u8"\u20D0"}, MarkCase{"rightharpoonaccent", u8"\u20D1"},
        MarkCase{"vertoverlay", u8"\u20D2"}, MarkCase{"overleftarrow", u8"\u20D6"},
        MarkCase{"overrightarrow", u8"\u20D7"}, MarkCase{"dddot", u8"\u20DB"}, MarkCase{"ddddot", u8"\u20DC"},
        MarkCase{"overleftrightarrow", u8"\u20E1"}, MarkCase{"annuity", u8"\u20E7"},
        MarkCase{"widebridgeabove", u8"\u20E9"}, MarkCase{"asteraccent", u8"\u20F0"},
        MarkCase{"widetilde", u8"\u0303"}, MarkCase{"widehat", u8"\u0302"}, MarkCase{"mathring", u8"\u030A"},
        MarkCase{"v", u8"\u030C"}, MarkCase{"wideutilde", u8"\u0330"}, MarkCase{"threeunderdot", u8"\u20E8"},
        MarkCase{"underrightharpoondown", u8"\u20EC"}, MarkCase{"underleftharpoondown", u8"\u20ED"},
        MarkCase{"underleftarrow", u8"\u20EE"}, MarkCase{"underrightarrow", u8"\u20EF"}),
    [](const auto& info) { return std::string(info.param.name); });

std::vector<TreeCase> accentAndBarCases()
{
    return {
        {"AccentTakesTheCurrentStyle",
         [] { return command("mathbf", arg(group(command("hat", arg(group(text("x"))))))); },
         accentEl(u8"\u0302", run("x", bold), ctrl(bold))},
        {"AccentOverAStructure",
         [] { return command("vec", arg(group(command("frac", arg(text("a")), arg(text("b")))))); },
         accentEl(u8"\u20D7", frac(run("a"), run("b")))},
        {"AccentWithoutArgument", [] { return command("hat"); }, ""},
        {"AccentWithTwoArguments",
         [] { return command("hat", arg(group(text("x"))), arg(group(text("y")))); }, ""},
        {"UnderAccentWithTwoArguments",
         [] { return command("wideutilde", arg(group(text("x"))), arg(group(text("y")))); }, ""},
        {"AccentOnNothing", [] { return command("tilde", arg(group())); }, accentEl(u8"\u0303", "")},
        {"Overline", [] { return command("overline", arg(group(text("AB")))); }, bar("top", run("AB"))},
        {"Underline", [] { return command("underline", arg(group(text("x")))); }, bar("bot", x)},
        {"Underbar", [] { return command("underbar", arg(group(text("x")))); }, bar("bot", x)},
        {"BarHasNoControlProperties",
         [] { return command("mathbf", arg(group(command("overline", arg(group(text("x"))))))); },
         bar("top", run("x", bold))},
        {"BarWithoutArgument", [] { return command("overline"); }, ""},
        {"BarWithTwoArguments",
         [] { return command("underline", arg(group(text("x"))), arg(group(text("y")))); }, ""},
    };
}

INSTANTIATE_TEST_SUITE_P(AccentsAndBars, DecorationTrees, ::testing::ValuesIn(accentAndBarCases()), caseName);

const QStringList falling = hiddenSides({"strikeTLBR"});
const QStringList rising = hiddenSides({"strikeBLTR"});

std::vector<TreeCase> strikeCases()
{
    return {
        {"NotEquals", [] { return command("not", arg(text("="))); }, borderBox(falling, run("="))},
        {"NotStrikesEachCharacter", [] { return command("not", arg(group(text("ab")))); },
         borderBox(falling, run("a")) + borderBox(falling, run("b"))},
        {"NotOverAStructureRises",
         [] { return command("not", arg(group(command("frac", arg(text("a")), arg(text("b")))))); },
         borderBox(rising, frac(run("a"), run("b")))},
        {"NotOverMixedContent",
         [] { return command("not", arg(group(text("a"), command("sqrt", arg(text("b")))))); },
         borderBox(falling, run("a")) + borderBox(rising, rad(run("b"), QString(), true))},
        {"NotKeepsTheRunLookAndTakesTheStyle",
         [] { return command("mathbf", arg(group(command("not", arg(command("in")))))); },
         borderBox(falling, run(u8"\u2208", bold), ctrl(bold))},
        {"NotOfNothing", [] { return command("not", arg(group())); }, ""},
        {"NotWithoutArgument", [] { return command("not"); }, ""},
        {"Cancel", [] { return command("cancel", arg(group(text("x")))); }, borderBox(rising, x)},
        {"BackCancel", [] { return command("bcancel", arg(group(text("x")))); }, borderBox(falling, x)},
        {"CrossCancel", [] { return command("xcancel", arg(group(text("x")))); },
         borderBox(hiddenSides({"strikeBLTR", "strikeTLBR"}), x)},
        {"CancelTakesTheCurrentStyle",
         [] { return command("mathbf", arg(group(command("cancel", arg(group(text("x"))))))); },
         borderBox(rising, run("x", bold), ctrl(bold))},
        {"CancelTo", [] { return command("cancelto", arg(group(text("0"))), arg(group(text("x")))); },
         sSup(borderBox(rising, x), run("0"))},
        {"CancelWithoutArgument", [] { return command("xcancel"); }, ""},
        {"CancelToWithOneArgument", [] { return command("cancelto", arg(group(text("0")))); }, ""},
        {"CancelToWithoutValueNode", [] { return command("cancelto", arg(nullptr), arg(group(text("x")))); },
         ""},
    };
}

INSTANTIATE_TEST_SUITE_P(Strokes, DecorationTrees, ::testing::ValuesIn(strikeCases()), caseName);

Look italicControl(Look base = plainControl())
{
    base.italic = true;
    return base;
}

std::vector<TreeCase> groupCases()
{
    const QString braceCtrl = ctrl(italicControl());
    return {
        {"Overbrace", [] { return command("overbrace", arg(group(text("x")))); },
         groupChr(u8"\u23DE", "top", "bot", x, braceCtrl)},
        {"Overbracket", [] { return command("overbracket", arg(group(text("x")))); },
         groupChr(u8"\u23B4", "top", "bot", x, braceCtrl)},
        {"Overparen", [] { return command("overparen", arg(group(text("x")))); },
         groupChr(u8"\u23DC", "top", "bot", x, braceCtrl)},
        {"Underbrace", [] { return command("underbrace", arg(group(text("x")))); },
         groupChr(u8"\u23DF", "bot", "top", x, braceCtrl)},
        {"Underbracket", [] { return command("underbracket", arg(group(text("x")))); },
         groupChr(u8"\u23B5", "bot", "top", x, braceCtrl)},
        {"Underparen", [] { return command("underparen", arg(group(text("x")))); },
         groupChr(u8"\u23DD", "bot", "top", x, braceCtrl)},
        {"LabelAsAnOrdinaryScript",
         [] { return sup(command("overbrace", arg(group(text("a+b")))), group(text("n"))); },
         sSup(groupChr(u8"\u23DE", "top", "bot", run("a+b"), braceCtrl), run("n"))},
        {"BraceWithoutArgument", [] { return command("underbrace"); },
         groupChr(u8"\u23DF", "bot", "top", "", braceCtrl)},
        {"BraceTakesTheCurrentStyleInItalic",
         [] { return command("mathbf", arg(group(command("underbrace", arg(group(text("x"))))))); },
         groupChr(u8"\u23DF", "bot", "top", run("x", bold), ctrl(italicControl(bold)))},
    };
}

INSTANTIATE_TEST_SUITE_P(Braces, DecorationTrees, ::testing::ValuesIn(groupCases()), caseName);

TEST(Braces, OverGroupAcceptsOverequal)
{
    KLatexAst2Omml converter;
    converter.prepare(false);
    const auto overequal = command("overequal", arg(group(text("x"))));
    EXPECT_EQ(xmlOf(overGroup(converter, std::get<KLatexCommand>(overequal->value))),
              groupChr(u8"\u033F", "top", "bot", x, ctrl(italicControl())));
}

TEST(Braces, NamesOfTheOtherSideAreShownLiterally)
{
    KLatexAst2Omml converter;
    converter.prepare(false);
    const auto under = command("underbrace", arg(group(text("x"))));
    EXPECT_EQ(xmlOf(overGroup(converter, std::get<KLatexCommand>(under->value))), run("\\underbrace") + x);
    const auto over = command("overbrace", arg(group(text("x"))));
    EXPECT_EQ(xmlOf(underGroup(converter, std::get<KLatexCommand>(over->value))), run("\\overbrace") + x);
}

// Each arrow with one label above: the arrow runs under the label.
struct ArrowCase {
    const char* name;
    const char* arrow;
};

class Arrows : public ::testing::TestWithParam<ArrowCase> {};

TEST_P(Arrows, RunUnderTheirLabel)
{
    const QString arrow = QString::fromUtf8(GetParam().arrow);
    EXPECT_EQ(convertTree(command(GetParam().name, arg(group(text("f"))))),
              groupChr(arrow, "bot", "top", run("f")));
    EXPECT_EQ(convertTree(command(GetParam().name, arg(group()))), run(arrow));
}

INSTANTIATE_TEST_SUITE_P(
    AllArrows, Arrows,
    ::testing::Values(ArrowCase{"xrightarrow", u8"\u2192"}, ArrowCase{"xleftarrow", u8"\u2190"},
                      ArrowCase{"xRightarrow", u8"\u21D2"}, ArrowCase{"xLeftarrow", u8"\u21D0"},
                      ArrowCase{"xLeftrightarrow", u8"\u21D4"}, ArrowCase{"xleftrightarrow", u8"\u2194"},
                      ArrowCase{"xhookleftarrow", u8"\u21A9"}, ArrowCase{"xhookrightarrow", u8"\u21AA"},
                      ArrowCase{"xmapsto", u8"\u21A6"}, ArrowCase{"xtwoheadrightarrow", u8"\u21A0"},
                      ArrowCase{"xtwoheadleftarrow", u8"\u219E"}, ArrowCase{"xlongequal", "="},
                      ArrowCase{"xtofrom", u8"\u21C4"}),
    [](const auto& info) { return std::string(info.param.name); });

const QString right = QString::fromUtf8(u8"\u2192");

std::vector<TreeCase> arrowLabelCases()
{
    return {
        {"OnlyBelow", [] { return command("xrightarrow", opt(group(text("g"))), arg(group())); },
         groupChr(right, "top", "bot", run("g"))},
        {"OnlyBelowWithoutAbove", [] { return command("xrightarrow", opt(group(text("g")))); },
         groupChr(right, "top", "bot", run("g"))},
        {"EqualLengthsHugBelow",
         [] { return command("xrightarrow", opt(group(text("g"))), arg(group(text("f")))); },
         limUpp(groupChr(right, "top", "bot", run("g")), run("f"))},
        {"LongerBelowHugsBelow",
         [] { return command("xrightarrow", opt(group(text("gg"))), arg(group(text("f")))); },
         limUpp(groupChr(right, "top", "bot", run("gg")), run("f"))},
        {"LongerAboveHugsAbove",
         [] { return command("xrightarrow", opt(group(text("g"))), arg(group(text("ff")))); },
         limLow(groupChr(right, "bot", "top", run("ff")), run("g"))},
        {"StructureCountsOne",
         [] {
             return command("xrightarrow", opt(group(command("frac", arg(text("a")), arg(text("bb"))))),
                            arg(group(text("ff"))));
         },
         limLow(groupChr(right, "bot", "top", run("ff")), frac(run("a"), run("bb")))},
        {"StructureAndCharacterTie",
         [] {
             return command("xrightarrow", opt(group(command("sqrt", arg(text("a"))))),
                            arg(group(text("f"))));
         },
         limUpp(groupChr(right, "top", "bot", rad(run("a"), QString(), true)), run("f"))},
        {"NonBmpCountsTwoUnits",
         [] {
             return command("xrightarrow", opt(group(text(QString::fromUtf8(u8"\U0001D465")))),
                            arg(group(text("ff"))));
         },
         limUpp(groupChr(right, "top", "bot", run(QString::fromUtf8(u8"\U0001D465"))), run("ff"))},
        {"LastLabelOfEachKindWins",
         [] {
             return command("xleftarrow", opt(group(text("a"))), arg(group(text("b"))),
                            opt(group(text("cc"))), arg(group(text("d"))));
         },
         limUpp(groupChr(u8"\u2190", "top", "bot", run("cc")), run("d"))},
        {"EmptyLabels", [] { return command("xrightarrow", opt(group()), arg(group())); }, run(right)},
        {"NoArguments", [] { return command("xrightarrow"); }, run(right)},
        {"PlainArrowIgnoresTheStyle",
         [] { return command("mathbf", arg(group(command("xrightarrow", arg(group()))))); }, run(right)},
        {"LabelledArrowTakesTheStyle",
         [] { return command("mathbf", arg(group(command("xrightarrow", arg(group(text("f"))))))); },
         groupChr(right, "bot", "top", run("f", bold), ctrl(bold))},
        {"BothLabelsTakeTheStyle",
         [] {
             return command(
                 "mathbf", arg(group(command("xrightarrow", opt(group(text("g"))), arg(group(text("ff")))))));
         },
         limLow(groupChr(right, "bot", "top", run("ff", bold), ctrl(bold)), run("g", bold), ctrl(bold))},
    };
}

INSTANTIATE_TEST_SUITE_P(ArrowLabels, DecorationTrees, ::testing::ValuesIn(arrowLabelCases()), caseName);

class DecorationSources : public HandlerSources {};

TEST_P(DecorationSources, ConvertToExactOmml)
{
    check();
}

INSTANTIATE_TEST_SUITE_P(
    FromLatex, DecorationSources,
    ::testing::Values(
        SourceCase{"\\hat{x}", accentEl(u8"\u0302", x)},
        SourceCase{"\\vec{v}", accentEl(u8"\u20D7", run("v"))},
        SourceCase{"\\overline{AB}", bar("top", run("AB"))}, SourceCase{"\\underline{x}", bar("bot", x)},
        // \not takes a braced argument only; "\not=" leaves the "=" as an ordinary character.
        SourceCase{"\\not=", run("=")}, SourceCase{"\\not{=}", borderBox(falling, run("="))},
        SourceCase{"\\not{\\frac{a}{b}}", borderBox(rising, frac(run("a"), run("b")))},
        SourceCase{"\\cancel{x}", borderBox(rising, x)}, SourceCase{"\\bcancel{x}", borderBox(falling, x)},
        SourceCase{"\\xcancel{x}", borderBox(hiddenSides({"strikeBLTR", "strikeTLBR"}), x)},
        SourceCase{"\\cancelto{0}{x}", sSup(borderBox(rising, x), run("0"))},
        SourceCase{"\\overbrace{a+b}^{n}",
                   sSup(groupChr(u8"\u23DE", "top", "bot", run("a+b"), ctrl(italicControl())), run("n"))},
        SourceCase{"\\underbrace{x}_{k}",
                   sSub(groupChr(u8"\u23DF", "bot", "top", x, ctrl(italicControl())), run("k"))},
        SourceCase{"\\xrightarrow{f}", groupChr(right, "bot", "top", run("f"))},
        SourceCase{"\\xrightarrow[g]{f}", limUpp(groupChr(right, "top", "bot", run("g")), run("f"))},
        SourceCase{"\\xrightarrow[gg]{f}", limUpp(groupChr(right, "top", "bot", run("gg")), run("f"))},
        SourceCase{"\\xrightarrow[g]{ff}", limLow(groupChr(right, "bot", "top", run("ff")), run("g"))},
        SourceCase{"\\xrightarrow[g]{}", groupChr(right, "top", "bot", run("g"))},
        SourceCase{"\\xrightarrow{}", run(right)}));

TEST(Negation, SplitsNonBmpTextIntoCodeUnits)
{
    // One box per UTF-16 code unit: a character outside the BMP gives two boxes,
    // each holding one half of the surrogate pair.
    KLatexAst2Omml converter;
    converter.prepare(false);
    const QString clef = QString::fromUtf8(u8"\U0001D11E");
    const auto root = group(command("not", arg(text(clef))));
    const KOmmlNodeList result = converter.convert(*root);
    ASSERT_EQ(result.size(), 2u);
    for (int i = 0; i < 2; ++i) {
        const auto* box = ommlAs<OBorderBox>(result[i].get());
        ASSERT_NE(box, nullptr);
        ASSERT_EQ(box->e.size(), 1u);
        const auto* unit = ommlAs<ORun>(box->e[0].get());
        ASSERT_NE(unit, nullptr);
        EXPECT_EQ(unit->text, QString(clef.at(i)));
        EXPECT_TRUE(box->strikeTLBR);
        EXPECT_FALSE(box->strikeBLTR);
    }
}

} // namespace
