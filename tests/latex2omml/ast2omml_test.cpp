#include "latex2omml/ast2omml.h"
#include "omml_text.h"
#include "tree_builders.h"

#include <gtest/gtest.h>

#include <functional>

using namespace omml_text;
using namespace tree;

namespace {

QString convertToXml(const KLatexNode& root, bool renderMode = false)
{
    KLatexAst2Omml converter;
    converter.prepare(renderMode);
    return xmlOf(converter.convert(root));
}

struct TreeCase {
    const char* name;
    std::function<KLatexNodePtr()> build;
    QString expected;
};

const QString kSum = QStringLiteral("\u2211");
const QString kInt = QStringLiteral("\u222B");

std::vector<TreeCase> dispatchCases()
{
    return {
        {"TextIsOneRun", [] { return text("xy"); }, r("xy")},
        {"NeighbouringRunsMerge", [] { return group(text("a"), text("b"), text("c")); }, r("abc")},
        {"UnknownCommandIsBackslashedText", [] { return unknown("foo"); }, r("\\foo")},
        {"UnknownCommandMergesWithPlainText", [] { return group(text("a"), unknown("foo")); }, r("a\\foo")},
        {"UnknownCommandIgnoresArguments",
         [] {
             return makeUnknownCommand("foo", [] {
                 KLatexArgs args;
                 args.push_back(braced(text("x")));
                 return args;
             }());
         },
         r("\\foo")},
        {"CommandOutsideTableGivesNothing",
         [] { return group(text("a"), command("hphantom", braced(text("x")))); }, r("a")},
        {"EnvironmentOutsideTableGivesNothing",
         [] { return makeEnvironment("Bmatrix", {}, list(group(text("x")))); }, QString()},
        {"RowConcatenatesWithoutMerging", [] { return makeRow(list(group(text("a")), group(text("b")))); },
         r("a") + r("b")},
        {"EmptyGroup", [] { return group(); }, QString()},
        {"Superscript", [] { return sup(text("x"), text("2")); }, sSup(r("x"), r("2"))},
        {"Subscript", [] { return sub(text("x"), text("i")); }, sSub(r("x"), r("i"))},
        {"SubSuperscript", [] { return subSup(text("x"), text("i"), text("2")); },
         sSubSup(r("x"), r("i"), r("2"))},
        {"ScriptOnEmptyBase", [] { return sub(group(), text("3")); }, sSub(QString(), r("3"))},
        {"ScriptWithoutScriptsGivesNothing", [] { return makeScript(text("x"), nullptr, nullptr); },
         QString()},
        {"ScriptOnSymbolCommand", [] { return sup(command("alpha"), text("2")); },
         sSup(r(QStringLiteral("\u03B1")), r("2"))},
        {"ScriptOnUnknownTableCommandGivesNothing",
         [] { return group(text("a"), sup(command("hphantom"), text("2"))); }, r("a")},
        {"ScriptOnParserUnknownCommand", [] { return sup(unknown("foo"), text("2")); },
         sSup(r("\\foo"), r("2"))},
        {"FenceWithOpenRight", [] { return leftRight("(", ".", group(text("x"))); }, d("(", "", r("x"))},
        {"FenceAngles", [] { return leftRight("<", ">", group(text("x"))); },
         d(QStringLiteral("\u27E8"), QStringLiteral("\u27E9"), r("x"))},
        {"FenceEscapedBraces", [] { return leftRight("\\{", "\\}", group(text("x"))); }, d("{", "}", r("x"))},
        {"FenceNamedDelimiters", [] { return leftRight("\\lfloor", "\\|", group()); },
         d(QStringLiteral("\u230A"), QStringLiteral("\u2016"), QString())},
        {"FenceUnknownLeftGivesNothing", [] { return leftRight("\\uparrow", ")", group(text("x"))); },
         QString()},
        {"FenceUnknownRightGivesNothing", [] { return leftRight("(", "\\downarrow", group(text("x"))); },
         QString()},
        {"FenceWithoutLeftRightFlagConverts", [] { return makeLeftRight("[", "]", group(text("x")), false); },
         d("[", "]", r("x"))},
    };
}

std::vector<TreeCase> groupCases()
{
    return {
        {"SumTakesFollowingNode",
         [] {
             return group(subSup(command("sum"), group(text("i"), text("="), text("1")), text("n")),
                          sub(text("x"), text("i")));
         },
         nary(kSum, false, false, false, r("i=1"), r("n"), sSub(r("x"), r("i")))},
        {"SumAtEndKeepsEmptyOperand", [] { return group(text("a"), command("sum")); },
         r("a") + nary(kSum, false, true, true, QString(), QString(), QString())},
        {"TakenRunIsNotMergedFurther", [] { return group(command("sum"), text("x"), text("y")); },
         nary(kSum, false, true, true, QString(), QString(), r("x")) + r("y")},
        {"TakenOperatorTakesNothing", [] { return group(command("sum"), command("sum"), text("x")); },
         nary(kSum, false, true, true, QString(), QString(),
              nary(kSum, false, true, true, QString(), QString(), QString())) +
             r("x")},
        {"FunctionTakesOneNode", [] { return group(command("sin"), text("x"), text("y")); },
         func(rp("sin"), r("x")) + r("y")},
        {"LimitsOnScriptOfLimits",
         [] { return group(command("int"), subSup(command("limits"), text("0"), text("1")), text("f")); },
         nary(kInt, true, false, false, r("0"), r("1"), r("f"))},
        {"LimitsAfterScriptedOperator",
         [] { return group(subSup(command("int"), text("0"), text("1")), command("limits"), text("f")); },
         nary(kInt, true, false, false, r("0"), r("1"), r("f"))},
        {"NoLimitsAfterPlainOperator", [] { return group(command("sum"), command("nolimits"), text("f")); },
         nary(kSum, false, true, true, QString(), QString(), r("f"))},
        {"ScriptsOfOperatorLostWhenMarkerHasScripts",
         [] { return group(sub(command("int"), text("a")), sup(command("limits"), text("b")), text("f")); },
         nary(kInt, true, true, false, QString(), r("b"), r("f"))},
        {"LimitsOnTextIsDropped", [] { return group(text("x"), command("limits")); }, r("x")},
        {"ScriptsOfDroppedLimitsGoToText",
         [] { return group(text("x"), subSup(command("limits"), text("a"), text("b"))); },
         sSubSup(r("x"), r("a"), r("b"))},
        {"LimitsOnCommandWithoutKeyIsDropped", [] { return group(command("alpha"), command("limits")); },
         r(QStringLiteral("\u03B1"))},
        {"ScriptedLimitsOnCommandWithoutKey",
         [] { return group(command("alpha"), sup(command("limits"), text("2"))); },
         sSup(r(QStringLiteral("\u03B1")), r("2"))},
        {"NoLimitsGivesSymbolEntryWithPlainSubscript",
         [] { return group(command("lim"), sub(command("nolimits"), text("x"))); }, sSub(r("lim"), r("x"))},
        {"LimitsGivesLimitFunction",
         [] { return group(command("log"), sub(command("limits"), text("x")), text("y")); },
         func(limLow(rp("log"), r("x")), r("y"))},
        {"SecondLimitsIsDropped", [] { return group(command("int"), command("limits"), command("limits")); },
         nary(kInt, true, true, true, QString(), QString(), QString())},
        {"RepeatedScriptedMarkersNest",
         [] {
             return group(text("x"), sup(command("limits"), text("a")), sup(command("nolimits"), text("b")));
         },
         sSup(sSup(r("x"), r("a")), r("b"))},
        {"LimitsAtStartOfGroup", [] { return group(command("limits"), text("x")); }, r("\\limitsx")},
    };
}

class DispatchCase : public ::testing::TestWithParam<TreeCase> {};

TEST_P(DispatchCase, ConvertsToExpectedOmml)
{
    const KLatexNodePtr root = GetParam().build();
    ASSERT_TRUE(root);
    EXPECT_EQ(convertToXml(*root), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Nodes, DispatchCase, ::testing::ValuesIn(dispatchCases()),
                         [](const auto& info) { return std::string(info.param.name); });
INSTANTIATE_TEST_SUITE_P(Groups, DispatchCase, ::testing::ValuesIn(groupCases()),
                         [](const auto& info) { return std::string(info.param.name); });

TEST(ConverterCore, UnknownCommandIsRedInRenderMode)
{
    const KLatexNodePtr root = group(text("a"), unknown("foo"));
    EXPECT_EQ(convertToXml(*root, true), r("a") + r("\\foo", "<w:color w:val=\"ff0000\"/>"));
}

TEST(ConverterCore, ConvertingDoesNotChangeTheTree)
{
    // Limits merging rebuilds nodes; the tree itself must stay as it was.
    const KLatexNodePtr root =
        group(sub(command("int"), text("a")), sup(command("limits"), text("b")), text("x"),
              sup(command("nolimits"), text("c")), command("sum"), command("limits"));
    const QString first = convertToXml(*root);
    EXPECT_EQ(convertToXml(*root), first);
    const auto* children = &latexAs<KLatexGroup>(root.get())->children;
    ASSERT_EQ(children->size(), 6u);
    EXPECT_EQ(latexAs<KLatexCommand>(latexAs<KLatexScript>((*children)[1].get())->base.get())->name,
              "limits");
}

TEST(ConverterCore, RunsTakeTheCurrentStyle)
{
    KLatexAst2Omml converter;
    converter.prepare(false);
    OControlProperties style;
    style.mathProps = OMathRunProperties{OScript::fraktur, OStyle::bold};
    style.wordProps.asciiFont = "Serif";
    style.wordProps.italic = true;
    style.wordProps.bold = true;
    style.wordProps.color = QColor(0, 128, 255);
    converter.pushStyle(style);
    const KLatexNodePtr root = group(text("a"), command("alpha"));
    const QString xml = xmlOf(converter.convert(*root));
    converter.popStyle();
    EXPECT_EQ(xml, QStringLiteral("<m:r><m:rPr><m:scr m:val=\"fraktur\"/><m:sty m:val=\"b\"/></m:rPr><w:rPr>"
                                  "<w:rFonts w:ascii=\"Serif\" w:hAnsi=\"Cambria Math\" w:hint=\"default\"/>"
                                  "<w:i/><w:b/><w:color w:val=\"0080ff\"/></w:rPr><m:t>a\u03B1</m:t></m:r>"));
    // Back at the default style.
    EXPECT_EQ(xmlOf(converter.convert(*text("b"))), r("b"));
}

TEST(ConverterCore, RunsDifferingInOneColourDoNotMerge)
{
    KLatexAst2Omml converter;
    converter.prepare(false);
    KOmmlNodeList runs;
    appendNodes(runs, converter.convert(*text("a")));
    OControlProperties red;
    red.wordProps.color = QColor(255, 0, 0);
    converter.pushStyle(red);
    appendNodes(runs, converter.convert(*text("b")));
    converter.popStyle();
    EXPECT_EQ(xmlOf(runs), r("a") + r("b", "<w:color w:val=\"ff0000\"/>"));
}

TEST(ConverterCore, StyleStackKeepsItsDefault)
{
    KLatexAst2Omml converter;
    EXPECT_FALSE(converter.currentStyle().wordProps.italic);
    converter.popStyle();
    converter.popStyle();
    EXPECT_EQ(converter.currentStyle().wordProps.asciiFont, "Cambria Math");
    converter.prepare(false);
    EXPECT_EQ(xmlOf(converter.convert(*text("a"))), r("a"));
}

TEST(ConverterCore, PrepareRestoresDefaultStyle)
{
    KLatexAst2Omml converter;
    converter.prepare(true);
    OControlProperties style;
    style.wordProps.bold = true;
    converter.pushStyle(style);
    converter.prepare(false);
    EXPECT_FALSE(converter.currentStyle().wordProps.bold);
    EXPECT_FALSE(converter.currentStyle().mathProps.has_value());
    EXPECT_FALSE(converter.renderMode());
    const KRunProperties properties = converter.currentRunProperties();
    EXPECT_EQ(properties.mathProps.script, OScript::roman);
    EXPECT_FALSE(properties.mathProps.style.has_value());
    EXPECT_EQ(properties.wordProps.asciiFont, "Cambria Math");
}

KLatexNodePtr nestedGroups(int levels, KLatexNodePtr inner)
{
    KLatexNodePtr node = std::move(inner);
    for (int i = 0; i < levels; ++i)
        node = group(std::move(node));
    return node;
}

TEST(ConverterCore, DeepNestingStopsAtTheLimit)
{
    const int limit = KLatexAst2Omml::kMaxDepth;
    // The root group is the first level, so the text sits at depth levels + 1.
    EXPECT_EQ(convertToXml(*nestedGroups(limit - 1, text("x"))), r("x"));
    EXPECT_EQ(convertToXml(*nestedGroups(limit, text("x"))), QString());
    EXPECT_EQ(convertToXml(*nestedGroups(2 * limit, text("x"))), QString());
}

TEST(ConverterCore, DeepScriptChainDoesNotCrash)
{
    KLatexNodePtr node = text("x");
    for (int i = 0; i < 2 * KLatexAst2Omml::kMaxDepth; ++i)
        node = sup(std::move(node), text("2"));
    KLatexAst2Omml converter;
    converter.prepare(false);
    const KOmmlNodeList result = converter.convert(*node);
    EXPECT_EQ(result.size(), 1u);
}

TEST(ConverterCore, NonBmpTextStaysWhole)
{
    const KLatexNodePtr root = group(text("\xF0\x9D\x94\xB8"), text("b"));
    EXPECT_EQ(convertToXml(*root), r(QString::fromUtf8("\xF0\x9D\x94\xB8") + "b"));
}

TEST(ConverterCore, LongFlatGroupMergesIntoOneRun)
{
    KLatexNodeList children;
    for (int i = 0; i < 5000; ++i)
        children.push_back(text("a"));
    KLatexAst2Omml converter;
    converter.prepare(false);
    const KOmmlNodeList result = converter.convert(*makeGroup(std::move(children)));
    ASSERT_EQ(result.size(), 1u);
    EXPECT_EQ(ommlAs<ORun>(result.front().get())->text, QString(5000, QLatin1Char('a')));
}

TEST(ConverterCore, ArgumentHelpers)
{
    KLatexArgs args;
    args.push_back(braced(text("a")));
    args.push_back(arg(nullptr));
    EXPECT_NE(argumentNode(args, 0), nullptr);
    EXPECT_EQ(argumentNode(args, 1), nullptr);
    EXPECT_EQ(argumentNode(args, 2), nullptr);
    EXPECT_FALSE(hasExactArguments(args, 2));
    EXPECT_FALSE(hasExactArguments(args, 1));
    args.pop_back();
    EXPECT_TRUE(hasExactArguments(args, 1));
    EXPECT_FALSE(hasExactArguments({}, 1));
    EXPECT_TRUE(hasExactArguments({}, 0));
}

} // namespace
