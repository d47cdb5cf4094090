#include "latex2omml/ast2omml.h"
#include "omml_text.h"
#include "tree_builders.h"

#include <gtest/gtest.h>

#include <functional>

using namespace omml_text;
using namespace tree;

namespace {

struct StructuralCase {
    const char* name;
    std::function<KLatexNodePtr()> build;
    QString expected;
};

const QString kSum = QStringLiteral("\u2211");

std::vector<StructuralCase> fractionCases()
{
    return {
        {"Frac", [] { return command("frac", braced(text("1")), braced(text("2"))); }, frac(r("1"), r("2"))},
        {"Dfrac", [] { return command("dfrac", braced(text("a")), braced(text("b"))); },
         frac(r("a"), r("b"))},
        {"Cfrac", [] { return command("cfrac", braced(text("a")), braced(text("b"))); },
         frac(r("a"), r("b"))},
        {"TfracIsLinear", [] { return command("tfrac", braced(text("a")), braced(text("b"))); },
         frac(r("a"), r("b"), "lin")},
        {"SfracIsSkewed", [] { return command("sfrac", braced(text("a")), braced(text("b"))); },
         frac(r("a"), r("b"), "skw")},
        {"BinomIsBracketedNoBar", [] { return command("binom", braced(text("n")), braced(text("k"))); },
         d("(", ")", frac(r("n"), r("k"), "nobar"))},
        {"FracOneArgument", [] { return command("frac", braced(text("1"))); }, QString()},
        {"FracThreeArguments",
         [] { return command("frac", braced(text("1")), braced(text("2")), braced(text("3"))); }, QString()},
        {"FracArgumentWithoutNode", [] { return command("frac", braced(text("1")), arg(nullptr)); },
         QString()},
        {"FracEmptyArguments", [] { return command("frac", braced(), braced()); },
         frac(QString(), QString())},
        {"FracNested",
         [] {
             return command("frac", braced(command("frac", braced(text("a")), braced(text("b")))),
                            braced(text("c")));
         },
         frac(frac(r("a"), r("b")), r("c"))},
        {"Over", [] { return command("over", braced(text("a")), braced(text("b"))); }, frac(r("a"), r("b"))},
        {"Above", [] { return command("above", braced(text("a")), braced(text("b"))); },
         frac(r("a"), r("b"))},
        {"Atop", [] { return command("atop", braced(text("a")), braced(text("b"))); },
         frac(r("a"), r("b"), "nobar")},
        {"Choose", [] { return command("choose", braced(text("n")), braced(text("k"))); },
         d("(", ")", frac(r("n"), r("k"), "nobar"))},
        {"OverOneArgument", [] { return command("over", braced(text("a"))); }, QString()},
    };
}

std::vector<StructuralCase> radicalCases()
{
    return {
        {"SquareRoot", [] { return command("sqrt", braced(text("x"))); }, rad(r("x"), QString(), true)},
        {"RootWithDegree", [] { return command("sqrt", arg(group(text("3")), true), braced(text("x"))); },
         rad(r("x"), r("3"), false)},
        {"DegreeInBracesComesSecond", [] { return command("sqrt", braced(text("x")), braced(text("3"))); },
         rad(r("x"), r("3"), false)},
        {"EmptyDegreeIsShown", [] { return command("sqrt", arg(group(), true), braced(text("x"))); },
         rad(r("x"), "", false)},
        {"NoArguments", [] { return command("sqrt"); }, QString()},
        {"ThreeArguments",
         [] { return command("sqrt", braced(text("a")), braced(text("b")), braced(text("c"))); }, QString()},
        {"MissingDegreeNode", [] { return command("sqrt", arg(nullptr, true), braced(text("x"))); },
         QString()},
    };
}

std::vector<StructuralCase> operatorCases()
{
    const QString none;
    return {
        {"SumAlone", [] { return command("sum"); }, nary(kSum, false, true, true, none, none, none)},
        {"SumLimitsSubscript", [] { return sub(command("sum\\limits"), text("i")); },
         nary(kSum, true, false, true, r("i"), none, none)},
        {"SumNoLimitsKeepsSubSup", [] { return sup(command("sum\\nolimits"), text("n")); },
         nary(kSum, false, true, false, none, r("n"), none)},
        {"EmptySubscriptShowsEmptyLimit", [] { return sub(command("prod"), group()); },
         nary(QStringLiteral("\u220F"), false, false, true, none, none, none)},
        {"OperatorWithArgumentGivesNothing", [] { return command("sum", braced(text("x"))); }, none},
        {"ScriptOnOperatorWithArgumentGivesNothing",
         [] { return sup(command("sum", braced(text("x"))), text("n")); }, none},
        {"OintCharacter", [] { return command("oint"); },
         nary(QStringLiteral("\u222E"), false, true, true, none, none, none)},
        {"FunctionAlone", [] { return command("sin"); }, func(rp("sin"), none)},
        {"FunctionSquared", [] { return group(sup(command("sin"), text("2")), text("x")); },
         func(sSup(rp("sin"), r("2")), r("x"))},
        {"FunctionSubSup", [] { return subSup(command("log"), text("2"), text("k")); },
         func(sSubSup(rp("log"), r("2"), r("k")), none)},
        {"FunctionSubscript", [] { return sub(command("log"), text("b")); },
         func(sSub(rp("log"), r("b")), none)},
        {"FunctionWithArgumentGivesNothing", [] { return command("cos", braced(text("x"))); }, none},
        {"ScriptOnFunctionWithArgumentGivesNothing",
         [] { return sup(command("cos", braced(text("x"))), text("2")); }, none},
        {"Limit",
         [] { return group(sub(command("lim"), group(text("x"), command("to"), text("0"))), text("f")); },
         func(limLow(rp("lim"), r(QStringLiteral("x\u21920"))), r("f"))},
        {"LimitAlone", [] { return command("lim"); }, func(limLow(rp("lim"), none), none)},
        {"LimitEmptySubscript", [] { return sub(command("lim"), group()); },
         func(limLow(rp("lim"), none), none)},
        {"LimitEmptyFenceSubscript", [] { return sub(command("lim"), leftRight(".", ".", group())); },
         func(limLow(rp("lim"), none), none)},
        {"LimitFenceSubscriptKept", [] { return sub(command("lim"), leftRight("(", ")", group(text("n")))); },
         func(limLow(rp("lim"), d("(", ")", r("n"))), none)},
        {"MaxBothLimits", [] { return subSup(command("max"), text("a"), text("b")); },
         func(limUpp(limLow(rp("max"), r("a")), r("b")), none)},
        {"SupOnlyUpperLimit", [] { return sup(command("sup"), text("b")); },
         func(limUpp(limLow(rp("sup"), none), r("b")), none)},
        {"LimsupName", [] { return command("limsup"); }, func(limLow(rp("lim sup"), none), none)},
        {"LimitWithArgumentGivesNothing", [] { return command("lim", braced(text("x"))); }, none},
        {"VarLimSup", [] { return command("varlimsup"); }, func(limLow(bar("top", rp("lim")), none), none)},
        {"VarLimInf", [] { return command("varliminf"); }, func(limLow(bar("bot", rp("lim")), none), none)},
        {"VarInjLim", [] { return command("varinjlim"); },
         func(limLow(rp("lim"), r(QStringLiteral("\u2192"))), none)},
        {"VarProjLim", [] { return command("varprojlim"); },
         func(limLow(rp("lim"), r(QStringLiteral("\u2190"))), none)},
        {"VarInjLimSubscriptReplacesArrow", [] { return sub(command("varinjlim"), text("i")); },
         func(limLow(rp("lim"), r("i")), none)},
        {"VarLimSupBothLimits", [] { return subSup(command("varlimsup"), text("n"), text("m")); },
         func(limUpp(limLow(bar("top", rp("lim")), r("n")), r("m")), none)},
        {"Overset", [] { return command("overset", braced(text("!")), braced(text("="))); },
         limUpp(r("="), r("!"))},
        {"Stackrel", [] { return command("stackrel", braced(text("a")), braced(text("b"))); },
         limUpp(r("b"), r("a"))},
        {"Underset", [] { return command("underset", braced(text("a")), braced(text("b"))); },
         limLow(r("b"), r("a"))},
        {"OversetOneArgument", [] { return command("overset", braced(text("a"))); }, none},
    };
}

class StructuralHandler : public ::testing::TestWithParam<StructuralCase> {};

TEST_P(StructuralHandler, ConvertsToExpectedOmml)
{
    const KLatexNodePtr root = GetParam().build();
    ASSERT_TRUE(root);
    KLatexAst2Omml converter;
    converter.prepare(false);
    EXPECT_EQ(xmlOf(converter.convert(*root)), GetParam().expected);
}

const auto caseName = [](const auto& info) { return std::string(info.param.name); };
INSTANTIATE_TEST_SUITE_P(Fractions, StructuralHandler, ::testing::ValuesIn(fractionCases()), caseName);
INSTANTIATE_TEST_SUITE_P(Radicals, StructuralHandler, ::testing::ValuesIn(radicalCases()), caseName);
INSTANTIATE_TEST_SUITE_P(Operators, StructuralHandler, ::testing::ValuesIn(operatorCases()), caseName);

// Structures copy the whole current style as control properties; scripts and
// operator names do not follow it.
TEST(StructuralStyle, StructuresCopyTheCurrentStyle)
{
    KLatexAst2Omml converter;
    converter.prepare(false);
    OControlProperties style;
    style.mathProps = OMathRunProperties{OScript::roman, OStyle::bold};
    style.wordProps.bold = true;
    converter.pushStyle(style);
    const QString ctrl = "<m:ctrlPr><m:rPr><m:scr m:val=\"roman\"/><m:sty m:val=\"b\"/></m:rPr><w:rPr>" +
                         kFonts + "<w:b/></w:rPr></m:ctrlPr>";
    const QString boldRun = [](const QString& t) {
        return "<m:r><m:rPr><m:scr m:val=\"roman\"/><m:sty m:val=\"b\"/></m:rPr><w:rPr>" + kFonts +
               "<w:b/></w:rPr><m:t>" + t + "</m:t></m:r>";
    }("x");

    EXPECT_EQ(xmlOf(converter.convert(*command("frac", braced(text("x")), braced(text("x"))))),
              frac(boldRun, boldRun, QString(), ctrl));
    EXPECT_EQ(xmlOf(converter.convert(*command("binom", braced(text("x")), braced(text("x"))))),
              d("(", ")", frac(boldRun, boldRun, "nobar", ctrl), ctrl));
    EXPECT_EQ(xmlOf(converter.convert(*command("sqrt", braced(text("x"))))),
              rad(boldRun, QString(), true, ctrl));
    EXPECT_EQ(xmlOf(converter.convert(*sup(command("sum"), text("x")))),
              nary(kSum, false, true, false, QString(), boldRun, QString(), ctrl));
    EXPECT_EQ(xmlOf(converter.convert(*sup(command("sin"), text("x")))),
              func(sSup(rp("sin"), boldRun), "", ctrl));
    EXPECT_EQ(xmlOf(converter.convert(*subSup(command("lim"), text("x"), text("x")))),
              func(limUpp(limLow(rp("lim"), boldRun, ctrl), boldRun, ctrl), "", ctrl));
    EXPECT_EQ(xmlOf(converter.convert(*command("underset", braced(text("x")), braced(text("x"))))),
              limLow(boldRun, boldRun, ctrl));
    converter.popStyle();
    EXPECT_EQ(converter.currentStyle().mathProps.has_value(), false);
}

} // namespace
