#include "omml2latex/omml_to_latex.h"
#include "tests/omml2latex/omml_builders.h"
#include "tests/omml2latex/qstring_printer.h"
#include "tests/omml2latex/tree_dump.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

QString u16(const char16_t* text)
{
    return QString::fromUtf16(text);
}

struct TreeCase {
    const char* name;
    std::function<KOmmlNodePtr()> build;
    QString expected; // tree dump; "null" when the element converts to nothing
};

void PrintTo(const TreeCase& c, std::ostream* os)
{
    *os << c.name;
}

QString convertToDump(const KOmmlNodePtr& node)
{
    KOmmlToLatexConverter converter;
    return dumpTree(converter.convert(node.get()).get());
}

KOmmlNodePtr fraction(OFractionType type, KOmmlNodeList num = one("a"), KOmmlNodeList den = one("b"))
{
    OFraction f;
    f.num = std::move(num);
    f.den = std::move(den);
    f.type = type;
    return makeOmmlNode(std::move(f));
}

KOmmlNodePtr radical(std::optional<KOmmlNodeList> deg, bool degHide)
{
    ORadical r;
    r.e = one("x");
    r.deg = std::move(deg);
    r.degHide = degHide;
    return makeOmmlNode(std::move(r));
}

KOmmlNodePtr nary(const QString& chr, OLimitLocation loc, bool subHide, bool supHide,
                  bool emptyLimits = false)
{
    ONaryOperator n;
    n.chr = chr;
    n.limLoc = loc;
    n.subHide = subHide;
    n.supHide = supHide;
    n.e = one("x");
    if (!emptyLimits) {
        n.sub = one("a");
        n.sup = one("b");
    }
    return makeOmmlNode(std::move(n));
}

KOmmlNodePtr limitLower(KOmmlNodeList base)
{
    OLimitLower l;
    l.e = std::move(base);
    l.lim = one("n");
    return makeOmmlNode(std::move(l));
}

KOmmlNodePtr function(KOmmlNodeList name)
{
    OFunction f;
    f.fName = std::move(name);
    f.e = one("x");
    return makeOmmlNode(std::move(f));
}

KOmmlNodePtr delimiter(const QString& beg, const QString& end, KOmmlNodeList content)
{
    ODelimiter d;
    d.begChr = beg;
    d.endChr = end;
    d.e = std::move(content);
    return makeOmmlNode(std::move(d));
}

KOmmlNodePtr accent(const QString& chr)
{
    OAccent a;
    a.chr = chr;
    a.e = one("x");
    return makeOmmlNode(std::move(a));
}

KOmmlNodePtr borderBox(bool hideAll, bool bltr, bool tlbr, bool h = false, bool v = false)
{
    OBorderBox b;
    b.e = one("x");
    b.hideTop = b.hideBot = b.hideLeft = hideAll;
    b.hideRight = hideAll;
    b.strikeBLTR = bltr;
    b.strikeTLBR = tlbr;
    b.strikeH = h;
    b.strikeV = v;
    return makeOmmlNode(std::move(b));
}

KOmmlNodePtr groupChar(const QString& chr, OPosition pos)
{
    OGroupChar g;
    g.e = one("x");
    g.chr = chr;
    g.pos = pos;
    return makeOmmlNode(std::move(g));
}

OMatrixRow matrixRow(std::initializer_list<const char*> cells)
{
    OMatrixRow row;
    for (const char* cell : cells)
        row.push_back(*cell ? one(cell) : KOmmlNodeList{});
    return row;
}

template <class... Rows> KOmmlNodePtr matrix(Rows... rows)
{
    OMatrix m;
    (m.rows.push_back(std::move(rows)), ...);
    return makeOmmlNode(std::move(m));
}

KOmmlNodePtr equationArray(std::initializer_list<const char*> rows)
{
    OEquationArray a;
    for (const char* row : rows)
        a.rows.push_back(*row ? one(row) : KOmmlNodeList{});
    return makeOmmlNode(std::move(a));
}

template <class Structure>
KOmmlNodePtr withBase(KOmmlNodeList base, KOmmlNodeList first, KOmmlNodeList second = {})
{
    Structure s;
    s.e = std::move(base);
    if constexpr (std::is_same_v<Structure, OSuperscript>) {
        s.sup = std::move(first);
    } else if constexpr (std::is_same_v<Structure, OSubscript>) {
        s.sub = std::move(first);
    } else {
        s.sub = std::move(first);
        s.sup = std::move(second);
    }
    return makeOmmlNode(std::move(s));
}

class ConvertsElement : public ::testing::TestWithParam<TreeCase> {};

TEST_P(ConvertsElement, ToExactTree)
{
    EXPECT_EQ(convertToDump(GetParam().build()), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    EveryKind, ConvertsElement,
    ::testing::Values(
        TreeCase{"ParagraphIsNotConverted", [] { return makeOmmlNode(OMathParagraph{makeOmmlNode(OMathEquation{one("x")})}); },
                 "null"},
        TreeCase{"EmptyEquation", [] { return makeOmmlNode(OMathEquation{}); }, "null"},
        TreeCase{"EquationWithOneChild", [] { return makeOmmlNode(OMathEquation{one("x")}); }, "'x'"},
        TreeCase{"EquationSkipsNullChildren",
                 [] { return makeOmmlNode(OMathEquation{makeOmmlList(KOmmlNodePtr(), run("x"), KOmmlNodePtr())}); },
                 "'x'"},
        TreeCase{"EquationWithOneBlankRun", [] { return makeOmmlNode(OMathEquation{one("  ")}); }, "null"},
        TreeCase{"EquationWithSeveralChildren",
                 [] { return makeOmmlNode(OMathEquation{makeOmmlList(run("a"), run("  "), run("b"))}); }, "('a' 'b')"},
        TreeCase{"EquationOfBlankRunsIsEmptyGroup",
                 [] { return makeOmmlNode(OMathEquation{makeOmmlList(run(" "), run(" "))}); }, "()"},
        TreeCase{"FractionBar", [] { return fraction(OFractionType::bar); }, "\\frac{'a'}{'b'}"},
        TreeCase{"FractionNoBar", [] { return fraction(OFractionType::noBar); }, "\\binom{'a'}{'b'}"},
        TreeCase{"FractionLinear", [] { return fraction(OFractionType::linear); }, "\\tfrac{'a'}{'b'}"},
        TreeCase{"FractionSkewed", [] { return fraction(OFractionType::skewed); }, "\\sfrac{'a'}{'b'}"},
        TreeCase{"FractionOfUnknownType", [] { return fraction(static_cast<OFractionType>(9)); },
                 "\\frac{'a'}{'b'}"},
        TreeCase{"FractionEmptyNumerator", [] { return fraction(OFractionType::bar, {}, one("D")); },
                 "\\frac{()}{'D'}"},
        TreeCase{"Superscript", [] { return withBase<OSuperscript>(one("x"), one("2")); }, "S('x' ^'2')"},
        TreeCase{"SuperscriptEmptyBase", [] { return withBase<OSuperscript>({}, one("2")); }, "S(() ^'2')"},
        TreeCase{"Subscript", [] { return withBase<OSubscript>(one("x"), one("i")); }, "S('x' _'i')"},
        TreeCase{"SubSuperscript", [] { return withBase<OSubSuperscript>(one("x"), one("i"), one("2")); },
                 "S('x' ^'2' _'i')"},
        TreeCase{"SubSuperscriptEmptyScripts", [] { return withBase<OSubSuperscript>(one("x"), {}, {}); },
                 "S('x' ^() _())"},
        TreeCase{"RadicalWithDegree", [] { return radical(one("3"), false); }, "\\sqrt['3']{'x'}"},
        TreeCase{"RadicalWithoutDegree", [] { return radical(std::nullopt, false); }, "\\sqrt[()]{'x'}"},
        TreeCase{"RadicalWithEmptyDegree", [] { return radical(KOmmlNodeList{}, false); }, "\\sqrt[()]{'x'}"},
        TreeCase{"RadicalDegreeOfNullsOnly", [] { return radical(makeOmmlList(KOmmlNodePtr()), false); },
                 "\\sqrt[()]{'x'}"},
        TreeCase{"RadicalDegreeHidden", [] { return radical(std::nullopt, true); }, "\\sqrt{'x'}"},
        TreeCase{"RadicalDegreePresentButHidden", [] { return radical(one("3"), true); }, "\\sqrt{'x'}"},
        TreeCase{"NarySumUnderOver", [] { return nary(u16(u"\u2211"), OLimitLocation::undOvr, false, false); },
                 "(S((\\sum \\limits) ^'b' _'a') LR{'x'})"},
        TreeCase{"NaryIntegralSubSup", [] { return nary(u16(u"\u222B"), OLimitLocation::subSup, false, false); },
                 "(S((\\int \\nolimits) ^'b' _'a') LR{'x'})"},
        TreeCase{"NaryLowerHidden", [] { return nary(u16(u"\u2211"), OLimitLocation::undOvr, true, false); },
                 "(S((\\sum \\limits) ^'b') LR{'x'})"},
        TreeCase{"NaryUpperHidden", [] { return nary(u16(u"\u222E"), OLimitLocation::subSup, false, true); },
                 "(S((\\oint \\nolimits) _'a') LR{'x'})"},
        TreeCase{"NaryBothHidden", [] { return nary(u16(u"\u220F"), OLimitLocation::undOvr, true, true); },
                 "((\\prod \\limits) LR{'x'})"},
        TreeCase{"NaryEmptyLimitsKept", [] { return nary(u16(u"\u222B"), OLimitLocation::subSup, false, false, true); },
                 "(S((\\int \\nolimits) ^() _()) LR{'x'})"},
        TreeCase{"NaryEmptyCharIsDropped", [] { return nary("", OLimitLocation::undOvr, false, false); }, "null"},
        TreeCase{"NaryUnlistedCharIsTheName", [] { return nary(u16(u"\u2A0B"), OLimitLocation::subSup, true, true); },
                 QString::fromUtf16(u"((\\\u2A0B \\nolimits) LR{'x'})")},
        TreeCase{"LimitLowerKnownName", [] { return limitLower(one("Lim ")); }, "S(\\lim _'n')"},
        TreeCase{"LimitLowerKnownNameDropsRest",
                 [] { return limitLower(makeOmmlList(run("max"), run("f"))); }, "S(\\max _'n')"},
        TreeCase{"LimitLowerOtherBase", [] { return limitLower(one("x")); }, "\\underset{'n'}{'x'}"},
        TreeCase{"LimitLowerBaseNotARun",
                 [] { return limitLower(makeOmmlList(fraction(OFractionType::bar), run("lim"))); },
                 "\\underset{'n'}{(\\frac{'a'}{'b'} 'lim')}"},
        TreeCase{"LimitLowerEmptyBase", [] { return limitLower({}); }, "null"},
        TreeCase{"LimitUpper",
                 [] {
                     OLimitUpper l;
                     l.e = one("x");
                     l.lim = one("n");
                     return makeOmmlNode(std::move(l));
                 },
                 "\\overset{'n'}{'x'}"},
        TreeCase{"FunctionKnownName", [] { return function(one("sin")); }, "(\\sin LR{'x'})"},
        TreeCase{"FunctionKnownNameAnyCase", [] { return function(one(" COS ")); }, "(\\cos LR{'x'})"},
        TreeCase{"FunctionOtherName", [] { return function(one("Sgn")); }, "(\\operatorname{'Sgn'} LR{'x'})"},
        TreeCase{"FunctionBlankName", [] { return function(one("  ")); }, "(() LR{'x'})"},
        TreeCase{"FunctionNameOfTwoRuns", [] { return function(makeOmmlList(run("s"), run("n"))); },
                 "(('s' 'n') LR{'x'})"},
        TreeCase{"FunctionSuperscriptName",
                 [] { return function(makeOmmlList(withBase<OSuperscript>(one("sin"), one("2")))); },
                 "(S(\\sin ^'2') LR{'x'})"},
        TreeCase{"FunctionSubscriptName",
                 [] { return function(makeOmmlList(withBase<OSubscript>(one("log"), one("2")))); },
                 "(S(\\log _'2') LR{'x'})"},
        TreeCase{"FunctionSubSuperscriptOtherName",
                 [] { return function(makeOmmlList(withBase<OSubSuperscript>(one("f"), one("i"), {}))); },
                 "(S(\\operatorname{'f'} ^() _'i') LR{'x'})"},
        TreeCase{"FunctionScriptNameNotARun",
                 [] {
                     return function(makeOmmlList(
                         withBase<OSuperscript>(makeOmmlList(run("a"), run("b")), one("2"))));
                 },
                 "(S(('a' 'b') ^'2') LR{'x'})"},
        TreeCase{"FunctionEmptyArgument",
                 [] {
                     OFunction f;
                     f.fName = one("tan");
                     return makeOmmlNode(std::move(f));
                 },
                 "(\\tan LR{()})"},
        TreeCase{"DelimiterBinomial",
                 [] { return delimiter("(", ")", makeOmmlList(fraction(OFractionType::noBar, one("n"), one("k")))); },
                 "\\binom{'n'}{'k'}"},
        TreeCase{"DelimiterAroundBarFraction",
                 [] { return delimiter("(", ")", makeOmmlList(fraction(OFractionType::bar))); },
                 "(\\left{'('} \\frac{'a'}{'b'} \\right{')'})"},
        TreeCase{"DelimiterBracketsAroundNoBarFraction",
                 [] { return delimiter("[", "]", makeOmmlList(fraction(OFractionType::noBar))); },
                 "(\\left{'['} \\binom{'a'}{'b'} \\right{']'})"},
        TreeCase{"DelimiterCases",
                 [] { return delimiter("{", "", makeOmmlList(equationArray({"a", "b"}))); },
                 "E:cases[R['a'] R['b']]"},
        TreeCase{"DelimiterCasesOneRow", [] { return delimiter("{", "", makeOmmlList(equationArray({"a"}))); },
                 "R['a']"},
        TreeCase{"DelimiterBraceBothSidesAroundArray",
                 [] { return delimiter("{", "}", makeOmmlList(equationArray({"a", "b"}))); },
                 "(\\left{'{'} E:cases[R['a'] R['b']] \\right{'}'})"},
        TreeCase{"DelimiterNamedFences", [] { return delimiter(u16(u"\u27E8"), u16(u"\u3009"), one("x")); },
                 "(\\left{\\langle} 'x' \\right{\\rangle})"},
        TreeCase{"DelimiterNoFences", [] { return delimiter("", "", one("x")); },
                 "(\\left{'.'} 'x' \\right{'.'})"},
        TreeCase{"DelimiterUnlistedFences", [] { return delimiter(u16(u"\u2016"), "|", one("x")); },
                 QString::fromUtf16(u"(\\left{'\u2016'} 'x' \\right{'|'})")},
        TreeCase{"DelimiterEmptyContent", [] { return delimiter("(", ")", {}); },
                 "(\\left{'('} () \\right{')'})"},
        TreeCase{"DelimiterSeveralContentElements", [] { return delimiter("|", "|", makeOmmlList(run("a"), run("b"))); },
                 "(\\left{'|'} ('a' 'b') \\right{'|'})"},
        TreeCase{"AccentHat", [] { return accent(u16(u"\u0302")); }, "\\hat{'x'}"},
        TreeCase{"AccentVectorArrow", [] { return accent(u16(u"\u20D7")); }, "\\overrightarrow{'x'}"},
        TreeCase{"AccentUnlisted", [] { return accent("~"); }, "\\~{'x'}"},
        TreeCase{"AccentEmptyChar", [] { return accent(""); }, "null"},
        TreeCase{"BarTop", [] { return makeOmmlNode(OBar{one("x"), OPosition::top}); }, "\\overline{'x'}"},
        TreeCase{"BarBottom", [] { return makeOmmlNode(OBar{one("x"), OPosition::bottom}); }, "\\underline{'x'}"},
        TreeCase{"BorderBoxPlain", [] { return borderBox(false, false, false); }, "\\boxed{'x'}"},
        TreeCase{"BorderBoxAllHidden", [] { return borderBox(true, false, false, true, true); }, "\\boxed{'x'}"},
        TreeCase{"BorderBoxStrikeUp", [] { return borderBox(true, true, false); }, "\\cancel{'x'}"},
        TreeCase{"BorderBoxStrikeDown", [] { return borderBox(true, false, true); }, "\\bcancel{'x'}"},
        TreeCase{"BorderBoxStrikeBoth", [] { return borderBox(true, true, true); }, "\\xcancel{'x'}"},
        TreeCase{"BorderBoxVisibleWithStrikes", [] { return borderBox(false, true, true); }, "\\boxed{'x'}"},
        TreeCase{"BorderBoxOneSideVisible",
                 [] {
                     KOmmlNodePtr node = borderBox(true, true, false);
                     ommlAs<OBorderBox>(node.get())->hideLeft = false;
                     return node;
                 },
                 "\\boxed{'x'}"},
        TreeCase{"GroupCharDefault", [] { return makeOmmlNode(OGroupChar{one("x")}); }, "\\underbrace{'x'}"},
        TreeCase{"GroupCharIgnoresPosition", [] { return groupChar(u16(u"\u23DE"), OPosition::bottom); },
                 "\\overbrace{'x'}"},
        TreeCase{"GroupCharBracket", [] { return groupChar(u16(u"\u23B5"), OPosition::bottom); },
                 "\\underbracket{'x'}"},
        TreeCase{"GroupCharArrowOver", [] { return groupChar(u16(u"\u2192"), OPosition::top); },
                 "\\overset{\\rightarrow}{'x'}"},
        TreeCase{"GroupCharArrowUnder", [] { return groupChar(u16(u"\u21D4"), OPosition::bottom); },
                 "\\underset{\\Leftrightarrow}{'x'}"},
        TreeCase{"GroupCharOtherSymbol", [] { return groupChar("=", OPosition::top); }, "\\overset{'='}{'x'}"},
        TreeCase{"GroupCharEmpty", [] { return groupChar("", OPosition::bottom); }, "\\underset{}{'x'}"},
        TreeCase{"Matrix", [] { return matrix(matrixRow({"a", "b"}), matrixRow({"c", "d"})); },
                 "E:matrix[R['a' & 'b'] R['c' & 'd']]"},
        TreeCase{"MatrixRaggedRowsArePadded", [] { return matrix(matrixRow({"a", "b"}), matrixRow({"c", "d", "e"})); },
                 "E:matrix[R['a' & 'b' & ()] R['c' & 'd' & 'e']]"},
        TreeCase{"MatrixEmptyCell", [] { return matrix(matrixRow({"", "b"})); }, "E:matrix[R[() & 'b']]"},
        TreeCase{"MatrixRowWithoutCells", [] { return matrix(OMatrixRow{}); }, "E:matrix[R[()]]"},
        TreeCase{"MatrixWithoutRows", [] { return matrix(); }, "null"},
        TreeCase{"BoxNoBreak", [] { return makeOmmlNode(OBox{one("x")}); }, "\\mbox{'x'}"},
        TreeCase{"BoxBreakable",
                 [] {
                     OBox b;
                     b.e = one("x");
                     b.noBreak = false;
                     return makeOmmlNode(std::move(b));
                 },
                 "'x'"},
        TreeCase{"EquationArray", [] { return equationArray({"a", "", "c"}); }, "E:cases[R['a'] R[()] R['c']]"},
        TreeCase{"EquationArrayOneRow", [] { return equationArray({"a"}); }, "R['a']"},
        TreeCase{"EquationArrayWithoutRows", [] { return equationArray({}); }, "null"},
        TreeCase{"Phantom", [] { return makeOmmlNode(OPhantom{one("x")}); }, "\\phantom{'x'}"},
        TreeCase{"PreSubSuperscript",
                 [] { return makeOmmlNode(OPreSubSuperscript{one("x"), one("a"), one("b")}); },
                 "(S(() ^'b' _'a') 'x')"},
        TreeCase{"PreSubSuperscriptEmpty", [] { return makeOmmlNode(OPreSubSuperscript{}); },
                 "(S(() ^() _()) ())"}),
    [](const ::testing::TestParamInfo<TreeCase>& info) { return std::string(info.param.name); });

struct RunCase {
    const char* name;
    QString text;
    QString expected;
};

class ScansRunText : public ::testing::TestWithParam<RunCase> {};

TEST_P(ScansRunText, IntoWordsAndSymbols)
{
    EXPECT_EQ(convertToDump(run(GetParam().text)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    RunText, ScansRunText,
    ::testing::Values(RunCase{"WordsAndOperators", "sin x+1", "('sin' 'x' '+' '1')"},
                      RunCase{"OneWord", "abc12", "'abc12'"}, RunCase{"Empty", "", "null"},
                      RunCase{"OnlyWhiteSpace", " \t\n\r\v\f", "null"},
                      RunCase{"NextLineAndNoBreakSpace", QString::fromUtf16(u"a\u0085b\u00A0c"),
                              "('a' 'b' 'c')"},
                      RunCase{"UnicodeSpaces", QString::fromUtf16(u"a\u2003b\u3000c"), "('a' 'b' 'c')"},
                      RunCase{"GreekLettersJoinWords", QString::fromUtf16(u"\u03B1\u03B2x"),
                              QString::fromUtf16(u"'\u03B1\u03B2x'")},
                      RunCase{"UnicodeNumbersJoinWords", QString::fromUtf16(u"x\u00B2\u0663"),
                              QString::fromUtf16(u"'x\u00B2\u0663'")},
                      RunCase{"DecimalPoint", "12.5", "('12' '.' '5')"},
                      RunCase{"SpecialCharactersStandAlone", "a{b}_%", "('a' '{' 'b' '}' '_' '%')"},
                      RunCase{"OperatorSymbols", QString::fromUtf16(u"a\u2264b\u00B1c"),
                              QString::fromUtf16(u"('a' '\u2264' 'b' '\u00B1' 'c')")},
                      // Code units are scanned one at a time: a surrogate is not a letter.
                      RunCase{"NonBmpLetterSplitsIntoUnits", QString::fromUtf16(u"a\U0001D465b"),
                              QString::fromUtf16(u"('a' '\xD835' '\xDC65' 'b')")}),
    [](const ::testing::TestParamInfo<RunCase>& info) { return std::string(info.param.name); });

struct StyleCase {
    const char* name;
    OMathRunProperties mathProps;
    OWordRunProperties wordProps;
    QString expected;
};

class WrapsRunStyle : public ::testing::TestWithParam<StyleCase> {};

TEST_P(WrapsRunStyle, InFontAndColourCommands)
{
    const StyleCase& c = GetParam();
    EXPECT_EQ(convertToDump(styledRun("x", c.mathProps, c.wordProps)), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    RunStyle, WrapsRunStyle,
    ::testing::Values(
        StyleCase{"Default", {}, {}, "'x'"},
        StyleCase{"BoldItalic", {}, wordProps(true, true), "\\textbf{\\textit{'x'}}"},
        StyleCase{"Bold", {}, wordProps(true, false), "\\textbf{'x'}"},
        StyleCase{"Italic", {}, wordProps(false, true), "\\textit{'x'}"},
        StyleCase{"BoldBeatsStyle", mathStyle(OStyle::plain), wordProps(true, false), "\\textbf{'x'}"},
        StyleCase{"StylePlain", mathStyle(OStyle::plain), {}, "\\mathrm{'x'}"},
        StyleCase{"StyleBold", mathStyle(OStyle::bold), {}, "\\mathbf{'x'}"},
        StyleCase{"StyleItalic", mathStyle(OStyle::italic), {}, "\\mathit{'x'}"},
        StyleCase{"StyleBoldItalic", mathStyle(OStyle::boldItalic), {}, "\\boldsymbol{'x'}"},
        StyleCase{"StyleBeatsFont", mathStyle(OStyle::bold), wordProps(false, false, "Courier New"),
                  "\\mathbf{'x'}"},
        StyleCase{"FontCourierNew", {}, wordProps(false, false, "Courier New"), "\\mathtt{'x'}"},
        StyleCase{"FontMonotypeCorsivaSortsAfterMono",
                  {},
                  wordProps(false, false, "Monotype Corsiva"),
                  "\\mathcal{'x'}"},
        StyleCase{"FontSansWinsOverMono", {}, wordProps(false, false, "DejaVu Sans Mono"), "\\mathsf{'x'}"},
        StyleCase{"FontOldEnglish", {}, wordProps(false, false, "Old English Text MT"), "\\mathfrak{'x'}"},
        StyleCase{"FontUnlisted", {}, wordProps(false, false, "Cambria Math"), "'x'"},
        StyleCase{"FontBeatsScript", mathScript(OScript::fraktur), wordProps(false, false, "Arial"),
                  "\\mathsf{'x'}"},
        StyleCase{"ScriptScript", mathScript(OScript::script), {}, "\\mathcal{'x'}"},
        StyleCase{"ScriptFraktur", mathScript(OScript::fraktur), {}, "\\mathfrak{'x'}"},
        StyleCase{"ScriptDoubleStruck", mathScript(OScript::doubleStruck), {}, "\\mathbb{'x'}"},
        StyleCase{"ScriptSansSerif", mathScript(OScript::sansSerif), {}, "\\mathsf{'x'}"},
        StyleCase{"ScriptMonospace", mathScript(OScript::monospace), {}, "'x'"},
        // Without a font name a script alone does not ask for wrapping.
        StyleCase{"ScriptOnlyWithoutFont", mathScript(OScript::doubleStruck), wordProps(false, false, ""),
                  "'x'"},
        StyleCase{"StyleWithoutFont", mathStyle(OStyle::plain), wordProps(false, false, ""), "\\mathrm{'x'}"},
        StyleCase{"ColourRed", {}, colouredProps(QColor(255, 0, 0)), "\\textcolor{'red'}{'x'}"},
        StyleCase{
            "ColourUnlisted", {}, colouredProps(QColor(0x1B, 0x18, 0x18)), "\\textcolor{'#1b1818'}{'x'}"},
        StyleCase{"ColourSecondDarkRed",
                  {},
                  colouredProps(QColor(0xC0, 0x50, 0x4D)),
                  "\\textcolor{'darkred'}{'x'}"},
        StyleCase{
            "ColourSecondOrange", {}, colouredProps(QColor(0xF7, 0x96, 0x46)), "\\textcolor{'orange'}{'x'}"},
        StyleCase{"ColourBlackIsDefault", {}, colouredProps(QColor(0, 0, 0)), "'x'"},
        StyleCase{
            "ColourTranslucentBlack", {}, colouredProps(QColor(0, 0, 0, 128)), "\\textcolor{'black'}{'x'}"},
        StyleCase{"ColourInvalid", {}, colouredProps(QColor()), "\\textcolor{}{'x'}"},
        StyleCase{"ColourAroundFont", mathStyle(OStyle::bold), colouredProps(QColor(0, 0, 255)),
                  "\\textcolor{'blue'}{\\mathbf{'x'}}"}),
    [](const ::testing::TestParamInfo<StyleCase>& info) { return std::string(info.param.name); });

TEST(WrapsRunStyle, AroundSeveralWords)
{
    EXPECT_EQ(convertToDump(styledRun("d x", mathStyle(OStyle::plain), {})), "\\mathrm{('d' 'x')}");
}

TEST(WrapsRunStyle, BlankStyledRunKeepsItsWrapper)
{
    EXPECT_EQ(convertToDump(styledRun(" ", {}, wordProps(true, true))), "\\textbf{\\textit{}}");
    EXPECT_EQ(convertToDump(styledRun(" ", mathScript(OScript::script), {})), "\\mathcal{}");
    EXPECT_EQ(convertToDump(styledRun(" ", {}, {})), "null");
}

struct ControlCase {
    const char* name;
    OControlProperties ctrlPr;
    QString expected;
};

OControlProperties control(std::optional<OMathRunProperties> mathProps, OWordRunProperties wordProps)
{
    return OControlProperties{mathProps, wordProps};
}

class WrapsStructureStyle : public ::testing::TestWithParam<ControlCase> {};

TEST_P(WrapsStructureStyle, FromControlProperties)
{
    OFraction f;
    f.num = one("a");
    f.den = one("b");
    f.ctrlPr = GetParam().ctrlPr;
    EXPECT_EQ(convertToDump(makeOmmlNode(std::move(f))), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    ControlStyle, WrapsStructureStyle,
    ::testing::Values(
        ControlCase{"Default", {}, "\\frac{'a'}{'b'}"},
        ControlCase{"NothingAsked", control(std::nullopt, wordProps(false, false, "")), "\\frac{'a'}{'b'}"},
        ControlCase{"MathPropsWithoutStyle", control(OMathRunProperties{}, wordProps(false, false, "")),
                    "\\frac{'a'}{'b'}"},
        ControlCase{"MathPropsStyle", control(mathStyle(OStyle::bold), {}), "\\mathbf{\\frac{'a'}{'b'}}"},
        ControlCase{"MathPropsScript",
                    control(mathScript(OScript::doubleStruck), wordProps(false, false, "")),
                    "\\mathbb{\\frac{'a'}{'b'}}"},
        ControlCase{"Bold", control(std::nullopt, wordProps(true, false)), "\\textbf{\\frac{'a'}{'b'}}"},
        ControlCase{"Font", control(std::nullopt, wordProps(false, false, "Consolas")),
                    "\\mathtt{\\frac{'a'}{'b'}}"},
        ControlCase{"Colour", control(std::nullopt, colouredProps(QColor(0x80, 0x80, 0x80))),
                    "\\textcolor{'gray'}{\\frac{'a'}{'b'}}"}),
    [](const ::testing::TestParamInfo<ControlCase>& info) { return std::string(info.param.name); });

TEST(WrapsStructureStyle, BinomialTakesTheDelimiterProperties)
{
    OFraction f;
    f.type = OFractionType::noBar;
    f.num = one("n");
    f.den = one("k");
    f.ctrlPr.wordProps.italic = true;
    ODelimiter d;
    d.e = makeOmmlList(makeOmmlNode(std::move(f)));
    d.ctrlPr.wordProps.bold = true;
    EXPECT_EQ(convertToDump(makeOmmlNode(std::move(d))), "\\textbf{\\binom{'n'}{'k'}}");
}

TEST(WrapsStructureStyle, CasesKeepBothWrappers)
{
    OEquationArray array;
    array.rows.push_back(one("a"));
    array.rows.push_back(one("b"));
    array.ctrlPr.mathProps = mathStyle(OStyle::plain);
    ODelimiter d;
    d.begChr = "{";
    d.endChr = "";
    d.e = makeOmmlList(makeOmmlNode(std::move(array)));
    d.ctrlPr.wordProps.color = QColor(255, 0, 0);
    EXPECT_EQ(convertToDump(makeOmmlNode(std::move(d))),
              "\\textcolor{'red'}{\\mathrm{E:cases[R['a'] R['b']]}}");
}

TEST(WrapsStructureStyle, EmptyAccentKeepsItsWrapper)
{
    OAccent a;
    a.chr = "";
    a.e = one("x");
    a.ctrlPr.mathProps = mathStyle(OStyle::plain);
    EXPECT_EQ(convertToDump(makeOmmlNode(std::move(a))), "\\mathrm{}");
}

TEST(WrapsStructureStyle, BarHasNoStyle)
{
    // OBar carries no control properties; its argument keeps its own style.
    OBar bar{makeOmmlList(styledRun("x", {}, wordProps(true, false)))};
    EXPECT_EQ(convertToDump(makeOmmlNode(std::move(bar))), "\\overline{\\textbf{'x'}}");
}

TEST(ConvertsList, DropsNothingAndUnwrapsOne)
{
    KOmmlToLatexConverter converter;
    EXPECT_EQ(dumpTree(converter.convertList({}).get()), "()");
    EXPECT_EQ(dumpTree(converter.convertList(makeOmmlList(run(" "), run("x"))).get()), "'x'");
    EXPECT_EQ(dumpTree(converter.convertList(makeOmmlList(run(" "), KOmmlNodePtr())).get()), "()");
    EXPECT_EQ(dumpTree(converter.convert(nullptr).get()), "null");
}

// Builds a chain of phantoms `depth` deep and dismantles it iteratively, so
// that neither building nor destroying the model recurses.
class PhantomChain {
public:
    explicit PhantomChain(int depth)
    {
        root = run("x");
        for (int i = 0; i < depth; ++i)
            root = makeOmmlNode(OPhantom{makeOmmlList(std::move(root))});
    }
    ~PhantomChain()
    {
        while (root) {
            KOmmlNodePtr next;
            if (auto* p = ommlAs<OPhantom>(root.get()); p && !p->e.empty())
                next = std::move(p->e.front());
            root = std::move(next);
        }
    }
    KOmmlNodePtr root;
};

int countPhantoms(const KLatexNode* node)
{
    int count = 0;
    while (const auto* c = latexAs<KLatexCommand>(node)) {
        if (c->name != "phantom" || c->args.size() != 1)
            break;
        ++count;
        node = c->args.front().node.get();
    }
    return count;
}

TEST(ConverterDepthGuard, KeepsShallowNesting)
{
    PhantomChain chain(50);
    KOmmlToLatexConverter converter;
    KLatexNodePtr tree = converter.convert(chain.root.get());
    EXPECT_EQ(countPhantoms(tree.get()), 50);
}

TEST(ConverterDepthGuard, CutsHostileNesting)
{
    PhantomChain chain(100000);
    KOmmlToLatexConverter converter;
    KLatexNodePtr tree = converter.convert(chain.root.get());
    ASSERT_NE(tree, nullptr);
    // Every level below the limit converts; the innermost one is an empty group.
    EXPECT_EQ(countPhantoms(tree.get()), KOmmlToLatexConverter::kMaxDepth);
    // The converter is reusable after hitting the limit.
    EXPECT_EQ(convertToDump(makeOmmlNode(OPhantom{one("y")})), "\\phantom{'y'}");
    EXPECT_EQ(dumpTree(converter.convert(makeOmmlNode(OPhantom{one("y")}).get()).get()), "\\phantom{'y'}");
}

} // namespace

namespace {

TEST(ConvertsMatrix, DoesNotPadWithoutBound)
{
    // One row of 3000 cells among 3000 rows of one cell: padding every row
    // would need nine million cells, so the rows keep their own lengths.
    OMatrix m;
    OMatrixRow wide;
    for (int i = 0; i < 3000; ++i)
        wide.push_back(one("a"));
    m.rows.push_back(std::move(wide));
    for (int i = 0; i < 3000; ++i) {
        OMatrixRow narrow;
        narrow.push_back(one("b"));
        m.rows.push_back(std::move(narrow));
    }
    KOmmlToLatexConverter converter;
    const KLatexNodePtr tree = converter.convert(makeOmmlNode(std::move(m)).get());
    const auto* env = latexAs<KLatexEnv>(tree.get());
    ASSERT_NE(env, nullptr);
    ASSERT_EQ(env->body.size(), 3001u);
    EXPECT_EQ(latexAs<KLatexRow>(env->body.front().get())->cells.size(), 3000u);
    EXPECT_EQ(latexAs<KLatexRow>(env->body.back().get())->cells.size(), 1u);
}

TEST(ConvertsMatrix, PadsUpToTheBudget)
{
    // 500 rows of up to 500 cells stay within the budget and are padded.
    OMatrix m;
    for (int r = 0; r < 500; ++r) {
        OMatrixRow row;
        for (int c = 0; c <= r; ++c)
            row.push_back(one("a"));
        m.rows.push_back(std::move(row));
    }
    KOmmlToLatexConverter converter;
    const KLatexNodePtr tree = converter.convert(makeOmmlNode(std::move(m)).get());
    const auto* env = latexAs<KLatexEnv>(tree.get());
    ASSERT_NE(env, nullptr);
    for (const KLatexNodePtr& row : env->body)
        ASSERT_EQ(latexAs<KLatexRow>(row.get())->cells.size(), 500u);
}

} // namespace
