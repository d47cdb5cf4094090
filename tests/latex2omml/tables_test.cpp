#include "latex2omml/handlers.h"
#include "latex2omml/tables.h"
#include "omml_text.h"
#include "tree_builders.h"

#include <gtest/gtest.h>

#include <set>

using namespace omml_text;
using namespace tree;

namespace {

using CommandFunction = KOmmlNodeList (*)(KLatexAst2Omml&, const KLatexCommand&);
using ScriptFunction = KOmmlNodeList (*)(KLatexAst2Omml&, const KLatexScript&);

CommandFunction commandFunctionOf(const KLatexSymbol& entry)
{
    const CommandFunction* target = entry.command.target<CommandFunction>();
    return target ? *target : nullptr;
}

ScriptFunction scriptFunctionOf(const KLatexSymbol& entry)
{
    const ScriptFunction* target = entry.script.target<ScriptFunction>();
    return target ? *target : nullptr;
}

template <class Keys>
void expectDistinctAndFound(const Keys& keys, std::size_t count, bool (*found)(const QString&))
{
    EXPECT_EQ(keys.size(), count);
    std::set<QString> distinct(keys.begin(), keys.end());
    EXPECT_EQ(distinct.size(), count);
    for (const QString& key : keys)
        EXPECT_TRUE(found(key)) << key.toStdString();
}

TEST(Tables, EveryKeyIsPresentOnce)
{
    expectDistinctAndFound(commandTableKeys(), 790,
                           [](const QString& k) { return lookupCommand(k) != nullptr; });
    expectDistinctAndFound(environmentTableKeys(), 23,
                           [](const QString& k) { return lookupEnvironment(k) != nullptr; });
    expectDistinctAndFound(delimiterMapKeys(), 36,
                           [](const QString& k) { return lookupDelimiter(k) != nullptr; });
}

TEST(Tables, LookupsAreCaseSensitiveAndHaveNoDefault)
{
    const char* absent[] = {
        "",       "ALPHA", "hphantom",        "fcolorbox",           "substack", "operatorname*", "lcm",
        "middle", "\\\\",  "Bmatrix\\limits", "sum\\limits\\limits", "dbinom"};
    for (const char* name : absent)
        EXPECT_EQ(lookupCommand(QString::fromUtf8(name)), nullptr) << name;
    const char* noEnvironment[] = {"Bmatrix", "alignat", "eqnarray", "gathered", "Matrix", "equation"};
    for (const char* name : noEnvironment)
        EXPECT_EQ(lookupEnvironment(QString::fromUtf8(name)), nullptr) << name;
    const char* noDelimiter[] = {"\\uparrow", "\\lbrace ", "langle", "\\\\", ""};
    for (const char* name : noDelimiter)
        EXPECT_EQ(lookupDelimiter(QString::fromUtf8(name)), nullptr) << name;
}

struct TextCase {
    const char* key;
    QString text;
    CommandFunction command;
    ScriptFunction script;
};

TEST(Tables, EntriesCarryTheirTextAndFamily)
{
    const TextCase cases[] = {
        {"alpha", QStringLiteral("\u03B1"), symbol, nullptr},
        {"epsilon", QStringLiteral("\u03F5"), symbol, nullptr},
        {"varepsilon", QStringLiteral("\u03B5"), symbol, nullptr},
        {"phi", QStringLiteral("\u03D5"), symbol, nullptr},
        {"varphi", QStringLiteral("\u03C6"), symbol, nullptr},
        {"Beta", "B", symbol, nullptr},
        {"Rho", "P", symbol, nullptr},
        {"S", QStringLiteral("\u00A7"), symbol, nullptr},
        {"|", QStringLiteral("\u2016"), symbol, nullptr},
        {"{", "{", symbol, nullptr},
        {"backslash", "\\", symbol, nullptr},
        {"lt", "<", symbol, nullptr},
        {"textregistered", QStringLiteral("\u00AE"), symbol, nullptr},
        {"space_qquad", QStringLiteral("\u2003\u2003"), symbol, nullptr},
        {"!", QStringLiteral("\u200B"), symbol, nullptr},
        {"exp", "exp", symbol, nullptr},
        {"lim\\nolimits", "lim", symbol, nullptr},
        {"limsup", "lim sup", limitFunction, limitScript},
        {"limsup\\limits", "limsup", limitFunction, limitScript},
        {"log", "log", function, functionScript},
        {"int\\limits", QStringLiteral("\u222B"), naryOperator, naryScript},
        {"bigsqcup", QStringLiteral("\u2A06"), naryOperator, naryScript},
        {"varinjlim", QStringLiteral("lim\u2192"), limitVariant, limitVariantScript},
        {"frac", "", fraction, nullptr},
        {"choose", "", infixFraction, nullptr},
        {"sqrt", "", radical, nullptr},
        {"stackrel", "", stack, nullptr},
        {"tiny", "", literal, nullptr},
        {"nolimits", "", literal, nullptr},
        {"operatorname", "", firstArgument, nullptr},
        {"space_negthin", "", firstArgument, nullptr},
        {"matrix", " ", matrixCommand, nullptr},
        {"Vmatrix", QStringLiteral("\u2016\u2016"), matrixCommand, nullptr},
        {"hat", QStringLiteral("\u0302"), accent, nullptr},
        {"wideutilde", QStringLiteral("\u0330"), underAccent, nullptr},
        {"overbrace", QStringLiteral("\u23DE"), overGroup, nullptr},
        {"underbrace", QStringLiteral("\u23DF"), underGroup, nullptr},
        {"underbar", "", bar, nullptr},
        {"not", "", negation, nullptr},
        {"xcancel", "", cancel, nullptr},
        {"xtofrom", "", extensibleArrow, nullptr},
        {"Biggm", "", bigDelimiter, nullptr},
        {"mathbb", "", mathFont, nullptr},
        {"emph", "", textFont, nullptr},
        {"textcolor", "", color, nullptr},
        {"colorbox", "", colorBox, nullptr},
        {"boxed", "", box, nullptr},
        {"hspace", "", space, nullptr},
        {"pod", "", modulo, nullptr},
    };
    for (const TextCase& c : cases) {
        const KLatexSymbol* entry = lookupCommand(QString::fromUtf8(c.key));
        ASSERT_NE(entry, nullptr) << c.key;
        EXPECT_EQ(entry->text, c.text) << c.key;
        EXPECT_EQ(commandFunctionOf(*entry), c.command) << c.key;
        EXPECT_EQ(scriptFunctionOf(*entry), c.script) << c.key;
        EXPECT_EQ(bool(entry->script), c.script != nullptr) << c.key;
    }
}

TEST(Tables, EnvironmentsAndDelimiters)
{
    using EnvironmentFunction = KOmmlNodeList (*)(KLatexAst2Omml&, const KLatexEnv&);
    const struct {
        const char* name;
        QString delimiters;
        EnvironmentFunction handler;
    } environments[] = {
        {"matrix", "", matrixEnvironment},
        {"Vmatrix*", QStringLiteral("\u2016\u2016"), matrixEnvironment},
        {"smallbmatrix", "[]", matrixEnvironment},
        {"array", "", matrixEnvironment},
        {"rcases", "}", casesEnvironment},
        {"dcases", "{", casesEnvironment},
        {"split", "", alignEnvironment},
        {"gather*", "", alignEnvironment},
    };
    for (const auto& e : environments) {
        const KLatexEnvironment* entry = lookupEnvironment(QString::fromUtf8(e.name));
        ASSERT_NE(entry, nullptr) << e.name;
        EXPECT_EQ(entry->delimiters, e.delimiters) << e.name;
        const EnvironmentFunction* target = entry->handler.target<EnvironmentFunction>();
        ASSERT_NE(target, nullptr);
        EXPECT_EQ(*target, e.handler) << e.name;
    }
    const std::pair<const char*, QString> delimiters[] = {
        {".", ""},
        {"<", QStringLiteral("\u27E8")},
        {"\\|", QStringLiteral("\u2016")},
        {"\xE2\x9F\xA6", QStringLiteral("\u27E6")},
        {"\\lgroup", QStringLiteral("\u27EE")},
        {"\\backslash", "\\"},
        {"\\rbrack", "]"},
        {"/", "/"},
    };
    for (const auto& [token, fence] : delimiters) {
        const QString* found = lookupDelimiter(QString::fromUtf8(token));
        ASSERT_NE(found, nullptr) << token;
        EXPECT_EQ(*found, fence) << token;
    }
}

QString convertCommand(KLatexNodePtr node)
{
    KLatexAst2Omml converter;
    converter.prepare(false);
    return xmlOf(converter.convert(*node));
}

TEST(BasicHandlers, WholeOutputs)
{
    EXPECT_EQ(convertCommand(command("alpha")), r(QStringLiteral("\u03B1")));
    EXPECT_EQ(convertCommand(command("alpha", braced(text("x")))), QString());
    EXPECT_EQ(convertCommand(command("gt")), r("&gt;"));
    EXPECT_EQ(convertCommand(command("&")), r("&amp;"));
    EXPECT_EQ(convertCommand(command("tiny")), r("\\tiny"));
    // The literal run and its converted arguments stay separate nodes until a group merges them.
    EXPECT_EQ(convertCommand(command("tiny", braced(text("x")), arg(nullptr), braced(command("beta")))),
              r("\\tiny") + r("x") + r(QStringLiteral("\u03B2")));
    EXPECT_EQ(convertCommand(group(command("tiny"), text("x"))), r("\\tinyx"));
    EXPECT_EQ(convertCommand(command("displaystyle", braced(text("x")))), r("x"));
    EXPECT_EQ(convertCommand(command("displaystyle")), QString());
    EXPECT_EQ(convertCommand(command("operatorname", arg(nullptr))), QString());
    EXPECT_EQ(convertCommand(command("operatorname", braced(text("rank")), braced(text("x")))), r("rank"));
}

TEST(BasicHandlers, LiteralIgnoresTheCurrentStyle)
{
    KLatexAst2Omml converter;
    converter.prepare(false);
    OControlProperties style;
    style.wordProps.italic = true;
    converter.pushStyle(style);
    EXPECT_EQ(xmlOf(converter.convert(*command("Huge"))), r("\\Huge"));
    EXPECT_EQ(xmlOf(converter.convert(*command("Alpha"))), r(QStringLiteral("\u0391"), "<w:i/>"));
    converter.popStyle();
}

// Every entry of the command table, given the arguments its family needs, yields
// the element its family builds. Families converted elsewhere are only required
// not to fail.
TEST(Tables, EveryEntryConvertsOnItsOwn)
{
    for (const QString& key : commandTableKeys()) {
        const KLatexSymbol* entry = lookupCommand(key);
        ASSERT_NE(entry, nullptr);
        const CommandFunction family = commandFunctionOf(*entry);
        ASSERT_NE(family, nullptr) << key.toStdString();
        const std::string name = key.toStdString();
        KLatexArgs args;
        if (family == fraction || family == infixFraction || family == stack) {
            args.push_back(braced(text("a")));
            args.push_back(braced(text("b")));
        } else if (family == radical || family == firstArgument) {
            args.push_back(braced(text("a")));
        }
        const KLatexNodePtr node = makeCommand(key, std::move(args));
        KLatexAst2Omml converter;
        converter.prepare(false);
        const KOmmlNodeList result = converter.convert(*node);
        EXPECT_EQ(converter.currentStyle().wordProps.bold, false) << name;

        const KOmmlNode* first = result.empty() ? nullptr : result.front().get();
        if (family == symbol) {
            ASSERT_EQ(result.size(), 1u) << name;
            ASSERT_NE(ommlAs<ORun>(first), nullptr) << name;
            EXPECT_EQ(ommlAs<ORun>(first)->text, entry->text) << name;
        } else if (family == literal) {
            EXPECT_EQ(xmlOf(result), r("\\" + key)) << name;
        } else if (family == firstArgument) {
            EXPECT_EQ(xmlOf(result), r("a")) << name;
        } else if (family == fraction || family == infixFraction) {
            ASSERT_EQ(result.size(), 1u) << name;
            const bool bracketed = key == "binom" || key == "choose";
            EXPECT_EQ(ommlAs<ODelimiter>(first) != nullptr, bracketed) << name;
            EXPECT_EQ(ommlAs<OFraction>(first) != nullptr, !bracketed) << name;
        } else if (family == radical) {
            EXPECT_EQ(xmlOf(result), rad(r("a"), QString(), true)) << name;
        } else if (family == stack) {
            EXPECT_EQ(xmlOf(result), key == "underset" ? limLow(r("b"), r("a")) : limUpp(r("b"), r("a")))
                << name;
        } else if (family == naryOperator) {
            const bool undOvr = key.endsWith("\\limits");
            EXPECT_EQ(xmlOf(result), nary(entry->text, undOvr, true, true, QString(), QString(), QString()))
                << name;
        } else if (family == function) {
            EXPECT_EQ(xmlOf(result), func(rp(entry->text), QString())) << name;
        } else if (family == limitFunction) {
            EXPECT_EQ(xmlOf(result), func(limLow(rp(entry->text), QString()), QString())) << name;
        } else if (family == limitVariant) {
            ASSERT_EQ(result.size(), 1u) << name;
            const auto* built = ommlAs<OFunction>(first);
            ASSERT_NE(built, nullptr) << name;
            ASSERT_EQ(built->fName.size(), 1u) << name;
            EXPECT_NE(ommlAs<OLimitLower>(built->fName.front().get()), nullptr) << name;
        }
    }
}

} // namespace
