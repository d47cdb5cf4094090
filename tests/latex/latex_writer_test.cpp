#include "latex/latex_writer.h"

#include <gtest/gtest.h>

#include <functional>
#include <ostream>

// Readable failure messages for whole-text comparisons.
static void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

namespace {

KLatexNodePtr t(const char* text)
{
    return makeText(text);
}

KLatexNodePtr cmd(const char* name)
{
    return makeCommand(QString::fromUtf8(name));
}

KLatexArg arg(KLatexNodePtr node)
{
    return KLatexArg{false, std::move(node)};
}

KLatexArg opt(KLatexNodePtr node)
{
    return KLatexArg{true, std::move(node)};
}

template <class... Args> KLatexArgs args(Args&&... items)
{
    KLatexArgs list;
    (list.push_back(std::forward<Args>(items)), ...);
    return list;
}

template <class... Nodes> KLatexNodeList nodes(Nodes&&... items)
{
    KLatexNodeList list;
    (list.push_back(std::forward<Nodes>(items)), ...);
    return list;
}

template <class... Nodes> KLatexNodePtr group(Nodes&&... items)
{
    return makeGroup(nodes(std::forward<Nodes>(items)...));
}

template <class... Args> KLatexNodePtr cmd(const char* name, Args&&... items)
{
    return makeCommand(QString::fromUtf8(name), args(std::forward<Args>(items)...));
}

template <class... Cells> KLatexNodePtr row(Cells&&... cells)
{
    return makeRow(nodes(std::forward<Cells>(cells)...));
}

KLatexNodePtr lineBreak(const char* spacing = nullptr)
{
    if (!spacing)
        return cmd("\\\\");
    return cmd("\\\\", opt(t(spacing)));
}

KLatexNodePtr script(KLatexNodePtr base, KLatexNodePtr sup, KLatexNodePtr sub)
{
    return makeScript(std::move(base), std::move(sup), std::move(sub));
}

KLatexNodePtr fraction(const char* num, const char* den)
{
    return cmd("frac", arg(t(num)), arg(t(den)));
}

KLatexNodePtr unknown(const char* name)
{
    return makeUnknownCommand(QString::fromUtf8(name));
}

KLatexWriterOptions bareArguments()
{
    KLatexWriterOptions options;
    options.bareSimpleArguments = true;
    return options;
}

KLatexWriterOptions bracedScripts()
{
    KLatexWriterOptions options;
    options.bareSimpleScripts = false;
    return options;
}

KLatexWriterOptions unbroken()
{
    KLatexWriterOptions options;
    options.breakEnvironmentRows = false;
    return options;
}

struct WriteCase {
    const char* name;
    std::function<KLatexNodePtr()> build;
    QString expected;
    KLatexWriterOptions options = {};
};

void expectCases(const std::vector<WriteCase>& cases)
{
    for (const WriteCase& c : cases) {
        const KLatexNodePtr tree = c.build();
        EXPECT_EQ(KLatexWriter::write(tree.get(), c.options), c.expected) << c.name;
    }
}

TEST(LatexWriterGroup, SpacingBetweenPieces)
{
    expectCases({
        {"ControlWordThenLetter", [] { return group(cmd("alpha"), t("x")); }, "\\alpha x"},
        {"ControlWordThenLetterB", [] { return group(cmd("alpha"), t("b")); }, "\\alpha b"},
        {"ControlWordThenDigit", [] { return group(cmd("alpha"), t("1")); }, "\\alpha 1"},
        {"ControlWordThenControlWord", [] { return group(cmd("alpha"), cmd("beta")); }, "\\alpha\\beta"},
        {"ControlWordThenOther", [] { return group(cmd("alpha"), t("+")); }, "\\alpha+"},
        {"DigitThenLetter", [] { return group(t("1"), t("x")); }, "1 x"},
        {"DigitThenDigit", [] { return group(t("2"), t("3")); }, "2 3"},
        {"LettersAroundOperator", [] { return group(t("x"), t("+"), t("y")); }, "x+y"},
        {"OtherThenControlWord", [] { return group(t("+"), cmd("alpha")); }, "+\\alpha"},
        {"BraceThenLetter", [] { return group(fraction("a", "b"), t("x")); }, "\\frac{a}{b} x"},
        {"BraceThenDigit", [] { return group(fraction("a", "b"), t("2")); }, "\\frac{a}{b}2"},
        {"BraceThenOther", [] { return group(fraction("a", "b"), t("+")); }, "\\frac{a}{b}+"},
        {"EscapedBraceThenLetter", [] { return group(t("}"), t("x")); }, "\\} x"},
        {"ControlSymbolThenLetter", [] { return group(cmd("{"), t("x")); }, "\\{x"},
        {"UnicodeLetters", [] { return group(t("α"), t("β")); }, "α β"},
        {"UnicodeLetterThenOperator", [] { return group(t("α"), t("=")); }, "α="},
        {"ArabicIndicDigitThenLetter", [] { return group(t("\u0663"), t("x")); }, "\u0663 x"},
        {"SurrogatesAreNotLetters", [] { return group(t("\U0001D465"), t("y")); }, "\U0001D465y"},
        {"ControlWordThenSurrogates", [] { return group(cmd("alpha"), t("\U0001D465")); },
         "\\alpha\U0001D465"},
        {"NullAndEmptyChildrenSkipped", [] { return group(nullptr, t("a"), nullptr, group(), t("b")); },
         "a b"},
        {"EmptyGroup", [] { return group(); }, ""},
    });
}

TEST(LatexWriterGroup, LastClassIsOneValuePerRun)
{
    expectCases({
        // The inner group ends with a control word, so the outer group, seeing a
        // letter come next, separates it although "+" precedes.
        {"NestedGroupEndingInControlWord", [] { return group(t("+"), group(t("x"), cmd("alpha"))); },
         "+ x\\alpha"},
        {"ScriptEndingInControlWord", [] { return group(t("+"), script(t("x"), cmd("alpha"), nullptr)); },
         "+ x^\\alpha"},
        {"ScriptEndingInStarredCommand", [] { return group(t("+"), script(t("x"), cmd("foo*"), nullptr)); },
         "+x^\\foo*"},
        {"ScriptEndingInUnicodeCommand", [] { return group(t("+"), script(t("x"), cmd("é"), nullptr)); },
         "+ x^\\é"},
        {"GroupEndingInLeftRight",
         [] { return group(t("+"), group(t("x"), makeLeftRight("(", ")", t("y"), true))); },
         "+ x\\left( y \\right)"},
    });
}

TEST(LatexWriterText, Escaping)
{
    expectCases({
        {"Percent", [] { return t("50%"); }, "50\\%"},
        {"Underscore", [] { return t("a_b"); }, "a\\_b"},
        {"AllTen", [] { return t("#$%&\\^_{}~"); }, "\\#\\$\\%\\&\\\\\\^\\_\\{\\}\\~"},
        {"OthersUnchanged", [] { return t("<>|[]()'\"@!"); }, "<>|[]()'\"@!"},
        {"NonBmpUnchanged", [] { return t("\U0001D400\u2211"); }, "\U0001D400\u2211"},
    });
}

TEST(LatexWriterCommand, SpacingNames)
{
    expectCases({
        {"Thin", [] { return group(t("a"), cmd("space_thin"), t("b")); }, "a\\,b"},
        {"Med", [] { return group(t("a"), cmd("space_med"), t("b")); }, "a\\:b"},
        {"Thick", [] { return group(t("a"), cmd("space_thick"), t("b")); }, "a\\;b"},
        {"NegThin", [] { return group(t("a"), cmd("space_negthin"), t("b")); }, "a\\!b"},
        {"Quad", [] { return group(t("a"), cmd("space_quad"), t("b")); }, "a\\quad b"},
        {"QQuad", [] { return group(t("a"), cmd("space_qquad"), t("b")); }, "a\\qquad b"},
        {"Normal", [] { return group(t("a"), cmd("space_normal"), t("b")); }, "a b"},
        {"QuadAlone", [] { return cmd("space_quad"); }, "\\quad "},
        {"NormalAlone", [] { return cmd("space_normal"); }, " "},
        {"ArgumentsNotPrinted", [] { return cmd("space_thin", arg(t("x"))); }, "\\,"},
        {"UnknownSpacing", [] { return makeUnknownCommand("space_quad", args(arg(t("x")))); }, "\\quad "},
        {"OtherNamesAreCommands", [] { return group(cmd("enspace"), cmd("nbsp"), t("x")); },
         "\\enspace\\nbsp x"},
    });
}

TEST(LatexWriterCommand, LeftAndRight)
{
    expectCases({
        {"Paren", [] { return cmd("left", arg(t("("))); }, "\\left("},
        {"Dot", [] { return cmd("left", arg(t("."))); }, "\\left."},
        {"CommandDelimiter", [] { return cmd("right", arg(cmd("rangle"))); }, "\\right\\rangle"},
        {"EscapedBrace", [] { return cmd("left", arg(t("{"))); }, "\\left\\{"},
        {"BracedDelimiterUnwrapped",
         [] { return cmd("left", arg(makeLeftRight("{", "}", group(t("("), cmd("space_normal")), false))); },
         "\\left("},
        {"BracedEmptyUnwrapped", [] { return cmd("left", arg(makeLeftRight("{", "}", group(), false))); },
         "\\left"},
        {"NestedBracesKept",
         [] {
             return cmd("right", arg(makeLeftRight("{", "}", makeLeftRight("{", "}", t("x"), false), false)));
         },
         "\\right{{x}}"},
        {"OptionalFirstArgumentUsed", [] { return cmd("left", opt(t("["))); }, "\\left["},
        {"OnlyFirstArgument", [] { return cmd("left", arg(t("(")), arg(t("x"))); }, "\\left("},
        {"NoArguments", [] { return cmd("left"); }, "\\left"},
        {"NullArgument", [] { return cmd("left", arg(nullptr)); }, "\\left"},
        {"FollowedByLetter", [] { return group(cmd("left", arg(t("("))), t("x")); }, "\\left(x"},
        {"UnknownLeftIsPlain", [] { return makeUnknownCommand("left", args(arg(t("(")))); }, "\\left{(}"},
    });
}

TEST(LatexWriterCommand, LineBreak)
{
    expectCases({
        {"Plain", [] { return lineBreak(); }, "\\\\"},
        {"Starred", [] { return cmd("\\\\*"); }, "\\\\*"},
        {"SpacingNormalised", [] { return lineBreak("3 pt"); }, "\\\\[3pt]"},
        {"StarredWithSpacing", [] { return cmd("\\\\*", opt(t("2 em"))); }, "\\\\*[2em]"},
        {"SpacingKeptWhenNotInteger", [] { return lineBreak("1.5 em"); }, "\\\\[1.5 em]"},
        {"MandatoryArgumentIgnored", [] { return cmd("\\\\", arg(t("3pt"))); }, "\\\\"},
        {"NullOptionalIgnored", [] { return cmd("\\\\", opt(nullptr)); }, "\\\\"},
        {"FollowedByLetter", [] { return group(lineBreak(), t("x")); }, "\\\\x"},
    });
}

TEST(LatexWriterCommand, ArgumentsAndSimpleNodes)
{
    expectCases({
        {"FractionBraced", [] { return fraction("1", "2"); }, "\\frac{1}{2}"},
        {"FractionBare", [] { return fraction("1", "2"); }, "\\frac12", bareArguments()},
        {"EmptyOptional", [] { return cmd("sqrt", opt(group()), arg(t("x"))); }, "\\sqrt[]{x}"},
        {"NullOptional", [] { return cmd("sqrt", opt(nullptr), arg(t("x"))); }, "\\sqrt[]{x}"},
        {"NullMandatoryBracedEvenBare", [] { return cmd("sqrt", arg(nullptr)); }, "\\sqrt{}",
         bareArguments()},
        {"OptionalNeverBare", [] { return cmd("sqrt", opt(t("3")), arg(t("x"))); }, "\\sqrt[3]x",
         bareArguments()},
        {"SingleChildGroupsUnwrap", [] { return cmd("hat", arg(group(group(t("a"))))); }, "\\hata",
         bareArguments()},
        {"CommandWithoutArgumentsIsSimple", [] { return cmd("hat", arg(cmd("alpha"))); }, "\\hat\\alpha",
         bareArguments()},
        {"TwoCodeUnitsAreNotSimple", [] { return cmd("hat", arg(t("ab"))); }, "\\hat{ab}", bareArguments()},
        {"SurrogatePairIsNotSimple", [] { return cmd("hat", arg(t("\U0001D465"))); }, "\\hat{\U0001D465}",
         bareArguments()},
        {"CommandWithArgumentsIsNotSimple", [] { return cmd("hat", arg(fraction("1", "2"))); },
         "\\hat{\\frac12}", bareArguments()},
        {"UnknownCommandIsNotSimple", [] { return cmd("hat", arg(unknown("foo"))); }, "\\hat{\\foo}",
         bareArguments()},
        {"EmptyGroupIsNotSimple", [] { return cmd("hat", arg(group())); }, "\\hat{}", bareArguments()},
        {"GroupWithNullChildIsNotSimple", [] { return cmd("hat", arg(group(nullptr))); }, "\\hat{}",
         bareArguments()},
        {"GroupOfTwoIsNotSimple", [] { return cmd("hat", arg(group(t("a"), t("+")))); }, "\\hat{a+}",
         bareArguments()},
        {"ScriptIsNotSimple", [] { return cmd("hat", arg(script(t("a"), t("2"), nullptr))); }, "\\hat{a^2}",
         bareArguments()},
        {"StarredName", [] { return cmd("operatorname*", arg(t("lim"))); }, "\\operatorname*{lim}"},
        {"UnknownWithArguments", [] { return makeUnknownCommand("foo", args(opt(t("o")), arg(t("m")))); },
         "\\foo[o]{m}"},
        {"UnknownLineBreakIsPlain", [] { return makeUnknownCommand("\\\\", args(opt(t("2 pt")))); },
         "\\\\\\[2 pt]"},
    });
}

TEST(LatexWriterScript, Parts)
{
    expectCases({
        {"BareSimpleParts", [] { return script(t("x"), t("2"), t("i")); }, "x^2_i"},
        {"BracedWhenOptionOff", [] { return script(t("x"), t("2"), t("i")); }, "x^{2}_{i}", bracedScripts()},
        {"SubscriptOnly", [] { return script(t("x"), nullptr, t("i")); }, "x_i"},
        {"GroupOfTwoBraced", [] { return script(t("x"), group(t("a"), t("b")), nullptr); }, "x^{a b}"},
        {"CommandBare", [] { return script(t("x"), cmd("prime"), nullptr); }, "x^\\prime"},
        {"EmptyBase", [] { return script(group(), t("2"), t("3")); }, "^2_3"},
        {"NullBase",
         [] {
             auto node = std::make_unique<KLatexNode>();
             node->value = KLatexScript{nullptr, t("2"), nullptr};
             return node;
         },
         "^2"},
        {"FollowedByDigit", [] { return group(script(t("x"), t("2"), nullptr), t("3")); }, "x^2 3"},
        {"FollowedByLetterAfterBrace", [] { return group(script(t("x"), t("ab"), nullptr), t("y")); },
         "x^{ab} y"},
    });
}

TEST(LatexWriterLeftRight, Delimiters)
{
    expectCases({
        {"LeftRight", [] { return makeLeftRight("(", ")", t("x"), true); }, "\\left( x \\right)"},
        {"NoFences", [] { return makeLeftRight(".", ".", t("x"), true); }, "\\left. x \\right."},
        {"CommandFences", [] { return makeLeftRight("\\langle", "\\rangle", t("x"), true); },
         "\\left\\langle x \\right\\rangle"},
        {"Bare", [] { return makeLeftRight("|", "|", t("x"), false); }, "|x|"},
        {"EmptyBody", [] { return makeLeftRight("(", ")", group(), true); }, "\\left(  \\right)"},
        {"FollowedByLetter", [] { return group(makeLeftRight("(", ")", t("x"), true), t("y")); },
         "\\left( x \\right)y"},
    });
}

TEST(LatexWriterRow, Cells)
{
    expectCases({
        {"TwoCells", [] { return row(t("a"), t("b")); }, "a & b"},
        {"Terminated", [] { return row(t("a"), t("b"), lineBreak()); }, "a & b \\\\"},
        {"TerminatedWithSpacing", [] { return row(t("a"), t("b"), lineBreak("3 pt")); }, "a & b \\\\[3pt]"},
        {"StarredTerminator", [] { return row(t("a"), cmd("\\\\*")); }, "a \\\\*"},
        {"NullCell", [] { return row(t("a"), nullptr, t("c")); }, "a &  & c"},
        {"CellEndingInSpace", [] { return row(cmd("space_quad"), lineBreak()); }, "\\quad \\\\"},
        {"OnlyTerminator", [] { return row(lineBreak()); }, "\\\\"},
        {"Empty", [] { return row(); }, ""},
        {"LineBreakNotLastIsACell", [] { return row(lineBreak(), t("a")); }, "\\\\ & a"},
        {"UnknownLineBreakIsACell", [] { return row(t("a"), makeUnknownCommand("\\\\")); }, "a & \\\\\\"},
    });
}

TEST(LatexWriterEnvironment, Layout)
{
    expectCases({
        {"WorkedExample",
         [] { return makeEnvironment("pmatrix", {}, nodes(row(t("a"), t("b")), row(t("c"), t("d")))); },
         "\\begin{pmatrix}\n\ta & b \\\\\n\tc & d\n\\end{pmatrix}"},
        {"EmptyKnown", [] { return makeEnvironment("pmatrix", {}, {}); }, "\\begin{pmatrix}\n\\end{pmatrix}"},
        {"UnknownStaysOnOneLine",
         [] { return makeEnvironment("equation", {}, nodes(group(t("x"), t("="), t("1")))); },
         "\\begin{equation}x=1\\end{equation}"},
        {"BreakingOff",
         [] { return makeEnvironment("pmatrix", {}, nodes(row(t("a"), t("b")), row(t("c"), t("d")))); },
         "\\begin{pmatrix}a & bc & d\\end{pmatrix}", unbroken()},
        {"RowWithSpacingGetsNoSecondBreak",
         [] {
             return makeEnvironment("aligned", {},
                                    nodes(row(t("a"), t("b"), lineBreak("3 pt")), row(t("c"))));
         },
         "\\begin{aligned}\n\ta & b \\\\[3pt]\n\tc\n\\end{aligned}"},
        {"TerminatedLastRowKeepsItsBreak",
         [] { return makeEnvironment("cases", {}, nodes(row(t("a"), lineBreak()))); },
         "\\begin{cases}\n\ta \\\\\n\\end{cases}"},
        {"NullAndEmptyRows",
         [] { return makeEnvironment("matrix", {}, nodes(row(t("a")), nullptr, row(), row(t("b")))); },
         "\\begin{matrix}\n\ta \\\\\n\t \\\\\n\t \\\\\n\tb\n\\end{matrix}"},
        {"BreakNotAtRowEnd",
         [] { return makeEnvironment("gather", {}, nodes(row(lineBreak(), t("a")), row(t("b")))); },
         "\\begin{gather}\n\t\\\\ & a \\\\\n\tb\n\\end{gather}"},
        {"Arguments", [] { return makeEnvironment("array", args(arg(t("cc"))), nodes(row(t("1"), t("2")))); },
         "\\begin{array}{cc}\n\t1 & 2\n\\end{array}"},
        {"StarredKnown", [] { return makeEnvironment("align*", {}, nodes(row(t("x")))); },
         "\\begin{align*}\n\tx\n\\end{align*}"},
        {"Nested",
         [] {
             auto inner = makeEnvironment("pmatrix", {}, nodes(row(t("x")), row(t("y"))));
             return makeEnvironment("bmatrix", {}, nodes(row(std::move(inner), t("z"))));
         },
         "\\begin{bmatrix}\n\t\\begin{pmatrix}\n\t\tx \\\\\n\t\ty\n\\end{pmatrix} & z\n\\end{bmatrix}"},
        {"CustomIndent", [] { return makeEnvironment("smallmatrix", {}, nodes(row(t("a")), row(t("b")))); },
         "\\begin{smallmatrix}\n  a \\\\\n  b\n\\end{smallmatrix}",
         [] {
             KLatexWriterOptions options;
             options.indent = QStringLiteral("  ");
             return options;
         }()},
        {"FollowedByLetter", [] { return group(makeEnvironment("matrix", {}, nodes(row(t("a")))), t("x")); },
         "\\begin{matrix}\n\ta\n\\end{matrix} x"},
    });
}

TEST(LatexWriterEnvironment, EveryKnownNameBreaksRows)
{
    const char* known[] = {"cases",       "dcases",   "rcases",      "matrix",    "pmatrix",  "bmatrix",
                           "vmatrix",     "Vmatrix",  "smallmatrix", "array",     "pmatrix*", "bmatrix*",
                           "vmatrix*",    "Vmatrix*", "matrix*",     "aligned",   "align",    "align*",
                           "alignat",     "alignat*", "alignedat",   "gather",    "gather*",  "split",
                           "flalign",     "flalign*", "eqnarray",    "eqnarray*", "gathered", "smallpmatrix",
                           "smallbmatrix"};
    ASSERT_EQ(std::size(known), 31u);
    for (const char* name : known) {
        const KLatexNodePtr env = makeEnvironment(name, {}, nodes(row(t("a"))));
        EXPECT_EQ(KLatexWriter::write(env.get()), QString("\\begin{%1}\n\ta\n\\end{%1}").arg(name)) << name;
    }
    for (const char* name : {"equation", "Bmatrix", "CD", "subarray", "PMATRIX", "multline"}) {
        const KLatexNodePtr env = makeEnvironment(name, {}, nodes(row(t("a"))));
        EXPECT_EQ(KLatexWriter::write(env.get()), QString("\\begin{%1}a\\end{%1}").arg(name)) << name;
    }
}

TEST(LatexWriterDimension, Normalise)
{
    const std::pair<const char*, const char*> cases[] = {
        {"2 pt", "2pt"},
        {" 2 pt ", "2pt"},
        {"1.5 em", "1.5 em"},
        {"3pt", "3pt"},
        {"2 px", "2 px"},
        {"2 pt x", "2 pt x"},
        {"2  pt", "2  pt"},
        {"x pt", "x pt"},
        {"-2 pt", "-2 pt"},
        {"2 PT", "2 PT"},
        {"", ""},
        {"   ", ""},
        {"12 em", "12em"},
        {"1 ex", "1ex"},
        {"1 mm", "1mm"},
        {"1 cm", "1cm"},
        {"1 in", "1in"},
        {"1 bp", "1bp"},
        {"1 pc", "1pc"},
        {"1 dd", "1dd"},
        {"1 cc", "1cc"},
        {"1 sp", "1sp"},
        {"\u0662 pt", "\u0662pt"},
        {"2\tpt", "2\tpt"},
    };
    for (const auto& [input, expected] : cases)
        EXPECT_EQ(KLatexWriter::normaliseDimension(QString::fromUtf8(input)), QString::fromUtf8(expected))
            << input;
}

// Builds a chain of single-child groups around a text, and tears it down
// iteratively so that the test itself does not recurse once per level.
class GroupChain {
public:
    explicit GroupChain(int levels) : m_root(t("x"))
    {
        for (int i = 0; i < levels; ++i)
            m_root = group(std::move(m_root));
    }
    ~GroupChain()
    {
        while (m_root) {
            KLatexGroup* g = latexAs<KLatexGroup>(m_root.get());
            KLatexNodePtr next = g && !g->children.empty() ? std::move(g->children.front()) : nullptr;
            m_root = std::move(next);
        }
    }
    const KLatexNode* root() const { return m_root.get(); }

private:
    KLatexNodePtr m_root;
};

TEST(LatexWriterLimits, NestingGuard)
{
    EXPECT_EQ(KLatexWriter::write(nullptr), QString());
    {
        const GroupChain chain(kMaxLatexWriteDepth - 1);
        EXPECT_EQ(KLatexWriter::write(chain.root()), QStringLiteral("x"));
    }
    {
        const GroupChain chain(kMaxLatexWriteDepth);
        EXPECT_EQ(KLatexWriter::write(chain.root()), QString());
    }
    {
        const GroupChain chain(100000);
        EXPECT_EQ(KLatexWriter::write(chain.root()), QString());
    }
}

TEST(LatexWriterLimits, WideTreesPrintWhole)
{
    KLatexNodeList children;
    for (int i = 0; i < 100000; ++i)
        children.push_back(t(i % 2 ? "x" : "+"));
    const KLatexNodePtr root = makeGroup(std::move(children));
    const QString printed = KLatexWriter::write(root.get());
    EXPECT_EQ(printed.size(), 100000);
    EXPECT_TRUE(printed.startsWith(QStringLiteral("+x+x")));
}

} // namespace
