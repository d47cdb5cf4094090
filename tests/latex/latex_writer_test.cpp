#include "latex/latex_env.h"
#include "latex/latex_writer.h"
#include "test_support.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace {

const auto t = [](const char* text) { return makeText(text); };
const auto arg = [](KLatexNodePtr node) { return KLatexArg{false, std::move(node)}; };
const auto opt = [](KLatexNodePtr node) { return KLatexArg{true, std::move(node)}; };
template <class List>
const auto listOf = [](auto&&... items) {
    List list;
    (list.push_back(std::move(items)), ...);
    return list;
};
const auto nodes = listOf<KLatexNodeList>;
const auto args = listOf<KLatexArgs>;
const auto group = [](auto&&... items) { return makeGroup(nodes(std::move(items)...)); };
const auto cmd = [](const char* name, auto&&... items) {
    return makeCommand(name, args(std::move(items)...));
};
const auto row = [](auto&&... cells) { return makeRow(nodes(std::move(cells)...)); };
const auto env = [](const char* name, auto&&... rows) {
    return makeEnvironment(name, {}, nodes(std::move(rows)...));
};
const auto br = [](const char* spacing) { return cmd("\\\\", opt(t(spacing))); };
const auto script = [](KLatexNodePtr base, KLatexNodePtr sup, KLatexNodePtr sub = nullptr) {
    return makeScript(std::move(base), std::move(sup), std::move(sub));
};
const auto frac = [] { return cmd("frac", arg(t("a")), arg(t("b"))); };
const auto hat = [](KLatexNodePtr node) { return cmd("hat", arg(std::move(node))); };
const auto options = [](bool bareArguments, bool bareScripts = true, bool breakRows = true,
                        const char* indent = "\t") {
    return KLatexWriterOptions{bareArguments, bareScripts, breakRows, indent};
};

struct Case {
    KLatexNodePtr tree;
    QString expected;
    KLatexWriterOptions options = {};
};

TEST(LatexWriter, PrintsWholeTrees)
{
    const KLatexWriterOptions bare = options(true);
    Case cases[] = {
        // Spaces between pieces: after a control word before a letter, between alphanumerics, after "}".
        {group(cmd("alpha"), t("x")), "\\alpha x"},
        {group(cmd("alpha"), cmd("beta"), t("+"), cmd("gamma")), "\\alpha\\beta+\\gamma"},
        {group(t("1"), t("x"), t("+"), t("2"), t("3")), "1 x+23"},
        {group(frac(), t("x"), frac(), t("2")), "\\frac{a}{b} x\\frac{a}{b}2"},
        {group(t("}"), t("x"), cmd("{"), t("y")), "\\} x\\{y"},
        {group(t("α"), t("β"), t("\u0663"), t("x")), "α β \u0663 x"},
        {group(t("\U0001D465"), t("y"), cmd("alpha"), t("\U0001D465")), "\U0001D465y\\alpha\U0001D465"},
        {group(nullptr, t("a"), nullptr, group(), t("b")), "a b"},
        // Verbatim text between two equal characters it does not hold.
        {group(cmd("verb", arg(group(t("x^2 {")))), t("y")), "\\verb|x^2 {|y"},
        {group(cmd("verb*", arg(group(t("a|b+c"))))), "\\verb*!a|b+c!"},
        // The class of the last piece is one value for the whole run, set also inside children.
        {group(t("+"), group(t("x"), cmd("alpha"))), "+ x\\alpha"},
        {group(t("+"), script(t("x"), cmd("alpha"))), "+ x^\\alpha"},
        {group(t("+"), script(t("x"), cmd("foo*"))), "+x^\\foo*"},
        // Escaping.
        {t("#$%&\\^_{}~"), "\\#\\$\\%\\&\\\\\\^\\_\\{\\}\\~"},
        {t("<>|[]()'\"@!\U0001D400\u2211"), "<>|[]()'\"@!\U0001D400\u2211"},
        // Spacing commands, known or unknown, print their form and drop their arguments.
        {group(t("a"), cmd("space_thin"), cmd("space_med"), cmd("space_thick"), cmd("space_negthin"),
               cmd("space_quad"), cmd("space_qquad"), cmd("space_normal"), t("b")),
         "a\\,\\:\\;\\!\\quad \\qquad \\ b"},
        // A space of the text is a control space, braced as a script; the lexer's
        // no-break space is a tie.
        {group(t("if"), cmd("space_normal"), t("x"), cmd("nbsp"), t("y")), "if\\ x~y"},
        {script(t("x"), cmd("space_normal"), cmd("space_thin")), "x_{\\,}^{\\ }"},
        {cmd("left", arg(makeLeftRight("{", "}", group(t("\\"), cmd("space_normal")), false))), "\\left\\\\"},
        {makeUnknownCommand("space_quad", args(arg(t("x")))), "\\quad "},
        // \left and \right print their first argument, unwrapping a braced delimiter.
        {cmd("right", arg(cmd("rangle"))), "\\right\\rangle"},
        {cmd("left", arg(t("{"))), "\\left\\{"},
        {cmd("left", arg(t("x"))), "\\left x"},
        {cmd("left", arg(makeLeftRight("{", "}", group(), false))), "\\left"},
        {cmd("right", arg(makeLeftRight("{", "}", makeLeftRight("{", "}", t("x"), false), false))),
         "\\right{{x}}"},
        {makeUnknownCommand("left", args(arg(t("(")))), "\\left{(}"},
        // Line breaks take only an optional spacing, normalised.
        {br("3 pt"), "\\\\[3pt]"},
        {cmd("\\\\*", opt(t("2 em"))), "\\\\*[2em]"},
        {group(cmd("\\\\"), t("x")), "\\\\x"},
        {makeUnknownCommand("\\\\", args(opt(t("2 pt")))), "\\\\\\[2 pt]"},
        // Arguments, and which nodes count as simple.
        {frac(), "\\fracab", bare},
        {cmd("sqrt", opt(group()), arg(t("x"))), "\\sqrt[]{x}"},
        {cmd("sqrt", opt(nullptr), arg(nullptr)), "\\sqrt[]{}", bare},
        {makeUnknownCommand("foo", args(opt(t("o")), arg(t("m")))), "\\foo[o]{m}"},
        {hat(group(group(t("a")))), "\\hata", bare},
        {hat(cmd("alpha")), "\\hat\\alpha", bare},
        {hat(t("ab")), "\\hat{ab}", bare},
        {hat(t("\U0001D465")), "\\hat{\U0001D465}", bare},
        {hat(frac()), "\\hat{\\fracab}", bare},
        {hat(script(t("a"), t("2"))), "\\hat{a^2}", bare},
        // Scripts: subscript first, braces unless simple (or always with the option off).
        {script(t("x"), t("2"), t("i")), "x_i^2"},
        {script(t("x"), t("2"), t("i")), "x_{i}^{2}", options(false, false)},
        {script(t("x"), group(t("a"), t("b"))), "x^{a b}"},
        {script(group(), t("2"), t("3")), "{}_3^2"},
        {std::make_unique<KLatexNode>(KLatexNode{KLatexScript{nullptr, t("2"), nullptr}}), "{}^2"},
        {group(script(t("x"), t("2")), t("3")), "x^2 3"},
        // A base that ends in a script is closed in braces, and so is a base of
        // more than one atom; a number or a letter runs on into a script.
        {script(script(t("x"), nullptr, t("a")), nullptr, t("b")), "{x_a}_b"},
        {script(group(t("y"), script(t("x"), t("a"))), t("b")), "{yx^a}^b"},
        {script(script(t("x"), nullptr, t("a")), t("2")), "{x_a}^2"},
        {script(t("ab"), nullptr, t("n")), "{ab}_n"},
        {group(t("Torsio"), script(t("n"), nullptr, t("n"))), "Torsion_n"},
        {group(t("0.30"), script(t("4"), t("2"))), "0.304^2"},
        {group(cmd("circ"), script(t("h"), nullptr, t("1"))), "\\circ h_1"},
        {script(group(cmd("sum"), cmd("limits")), t("n"), t("i")), "\\sum\\limits_i^n"},
        {group(script(t("u"), t("d"), t("a")), script(group(), nullptr, t("m"))), "u_a^d{}_m"},
        // Delimited groups.
        {makeLeftRight("|", "|", t("x"), false), "|x|"},
        {makeLeftRight("(", ")", group(), true), "\\left(  \\right)"},
        {group(makeLeftRight("(", ")", t("x"), true), t("y")), "\\left( x \\right)y"},
        // Rows: cells joined by " & ", a trailing line break set off by one space.
        {row(t("a"), t("b"), br("3 pt")), "a & b \\\\[3pt]"},
        {row(t("a"), nullptr, t("c")), "a &  & c"},
        {row(cmd("\\\\"), t("a")), "\\\\ & a"},
        // Environments: known names one row a line, indented per level.
        {env("pmatrix", row(t("a"), t("b")), row(t("c"), t("d"))),
         "\\begin{pmatrix}\n\ta & b \\\\\n\tc & d\n\\end{pmatrix}"},
        {env("pmatrix"), "\\begin{pmatrix}\n\\end{pmatrix}"},
        {env("equation", group(t("x"), t("="), t("1"))), "\\begin{equation}x=1\\end{equation}"},
        {env("pmatrix", row(t("a"), t("b")), row(t("c"), t("d"))), "\\begin{pmatrix}a & bc & d\\end{pmatrix}",
         options(false, true, false)},
        {env("aligned", row(t("a"), t("b"), br("3 pt")), row(t("c"))),
         "\\begin{aligned}\n\ta & b \\\\[3pt]\n\tc\n\\end{aligned}"},
        {env("matrix", row(t("a")), nullptr, row(), row(t("b"))),
         "\\begin{matrix}\n\ta \\\\\n\t \\\\\n\t \\\\\n\tb\n\\end{matrix}"},
        {makeEnvironment("array", args(arg(t("cc"))), nodes(row(t("1"), t("2")))),
         "\\begin{array}{cc}\n\t1 & 2\n\\end{array}"},
        {env("bmatrix", row(env("pmatrix", row(t("x")), row(t("y"))), t("z"))),
         "\\begin{bmatrix}\n\t\\begin{pmatrix}\n\t\tx \\\\\n\t\ty\n\\end{pmatrix} & z\n\\end{bmatrix}"},
        {env("smallmatrix", row(t("a")), row(t("b"))),
         "\\begin{smallmatrix}\n  a \\\\\n  b\n\\end{smallmatrix}", options(false, true, true, "  ")},
        {group(env("matrix", row(t("a"))), t("x")), "\\begin{matrix}\n\ta\n\\end{matrix} x"},
        // An empty last row is the line break of the row before it, without a blank line.
        {env("matrix", row(t("a")), row()), "\\begin{matrix}\n\ta \\\\\n\\end{matrix}"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(KLatexWriter::write(c.tree.get(), c.options), c.expected);
}

TEST(LatexWriter, EveryKnownEnvironmentBreaksRows)
{
    // The writer breaks rows in exactly the environments the parser splits into rows.
    const QStringList& known = knownEnvironments();
    ASSERT_FALSE(known.isEmpty());
    for (const QString& name : known + QStringList{"equation", "Bmatrix", "CD", "PMATRIX", "multline"}) {
        const KLatexNodePtr tree = makeEnvironment(name, {}, nodes(row(t("a"))));
        const QString body = known.contains(name) ? "\n\ta\n" : "a";
        EXPECT_EQ(KLatexWriter::write(tree.get()), "\\begin{" + name + "}" + body + "\\end{" + name + "}");
    }
}

TEST(LatexWriter, NormalisesLineBreakDimensions)
{
    const std::pair<const char*, const char*> cases[] = {
        {"2 pt", "2pt"},   {" 2 pt ", "2pt"},    {"1.5 em", "1.5 em"},
        {"2 px", "2 px"},  {"2 pt x", "2 pt x"}, {"-2 pt", "-2 pt"},
        {"12 em", "12em"}, {"   ", ""},          {"\u0662 pt", "\u0662pt"}};
    for (const auto& [input, expected] : cases)
        EXPECT_EQ(KLatexWriter::normaliseDimension(QString::fromUtf8(input)), QString::fromUtf8(expected));
}

// Writes a chain of single-child groups around a text, then tears it down
// iteratively so that the test itself does not recurse once per level.
QString writeGroupChain(int levels)
{
    KLatexNodePtr root = t("x");
    for (int i = 0; i < levels; ++i)
        root = group(std::move(root));
    const QString written = KLatexWriter::write(root.get());
    while (KLatexGroup* g = latexAs<KLatexGroup>(root.get()))
        root = std::move(g->children.front());
    return written;
}

TEST(LatexWriter, HostileTrees)
{
    EXPECT_EQ(KLatexWriter::write(nullptr), QString());
    EXPECT_EQ(writeGroupChain(kMaxLatexWriteDepth - 1), QStringLiteral("x"));
    EXPECT_EQ(writeGroupChain(kMaxLatexWriteDepth), QString());
    EXPECT_EQ(writeGroupChain(100000), QString());

    KLatexNodeList children;
    for (int i = 0; i < 100000; ++i)
        children.push_back(t(i % 2 ? "x" : "+"));
    const KLatexNodePtr wide = makeGroup(std::move(children));
    const QString printed = KLatexWriter::write(wide.get());
    EXPECT_EQ(printed.size(), 100000);
    EXPECT_TRUE(printed.startsWith(QStringLiteral("+x+x")));
}

} // namespace
