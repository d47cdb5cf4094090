#include "latex2omml/handlers.h"
#include "latex2omml/tables.h"
#include "omml_text.h"

#include <set>

using namespace omml_text;

namespace {

template <class Lookup>
void expectDistinctAndFound(const std::vector<QString>& keys, std::size_t count, Lookup found)
{
    EXPECT_EQ(keys.size(), count);
    EXPECT_EQ(std::set<QString>(keys.begin(), keys.end()).size(), count);
    for (const QString& key : keys)
        EXPECT_TRUE(found(key)) << key.toStdString();
}

TEST(Tables, EveryKeyIsPresentOnceAndNothingElse)
{
    expectDistinctAndFound(commandTableKeys(), 905, [](const QString& k) { return lookupCommand(k); });
    expectDistinctAndFound(environmentTableKeys(), 32, [](const QString& k) { return lookupEnvironment(k); });
    expectDistinctAndFound(delimiterMapKeys(), 36, [](const QString& k) { return lookupDelimiter(k); });
    for (const char* name : {"", "ALPHA", "label", "nonumber", "definecolor", "\\\\", "sum\\limits\\limits"})
        EXPECT_EQ(lookupCommand(QString::fromUtf8(name)), nullptr) << name;
    for (const char* name : {"equation", "multline", "Matrix"})
        EXPECT_EQ(lookupEnvironment(QString::fromUtf8(name)), nullptr) << name;
    for (const char* token : {"\\uparrow", "\\lbrace ", "langle", ""})
        EXPECT_EQ(lookupDelimiter(QString::fromUtf8(token)), nullptr) << token;
}

using CommandFunction = KOmmlNodeList (*)(KLatexAst2Omml&, const KLatexCommand&);

// Every command-table entry produces something with no, one or two arguments;
// the families that use the entry's text show it exactly.
TEST(Tables, EveryCommandEntryConverts)
{
    for (const QString& key : commandTableKeys()) {
        const KLatexSymbol* entry = lookupCommand(key);
        const CommandFunction family = *entry->command.target<CommandFunction>();
        const std::string name = key.toStdString();
        const QByteArray latin = key.toUtf8();
        const QString bare = convertTree(command(latin.constData()));
        QString expected = bare; // families whose bare form does not show the text
        if (family == symbol)
            expected = r(entry->text.toHtmlEscaped());
        else if (family == naryOperator)
            expected = nary(entry->text, key.endsWith("\\limits"), true, true, "", "", "");
        else if (family == function)
            expected = func(rp(entry->text), "");
        else if (family == limitFunction)
            expected = func(limLow(rp(entry->text), ""), "");
        EXPECT_EQ(bare, expected) << name;
        // Up to six braced arguments (\genfrac takes six).
        bool converts = !bare.isEmpty();
        for (std::size_t count = 1; count <= 6 && !converts; ++count) {
            KLatexArgs args;
            for (std::size_t i = 0; i < count; ++i)
                args.push_back(braced("a"));
            converts = !convertTree(makeCommand(key, std::move(args))).isEmpty();
        }
        // Only the commands that show nothing at all convert to nothing with arguments too.
        EXPECT_EQ(converts, family != hidden) << name;
    }
}

// Spot checks of the tables through LaTeX text.
INSTANTIATE_TEST_SUITE_P(
    Tables, LatexToOmml,
    ::testing::Values(
        LatexCase{"\\alpha\\epsilon\\varepsilon\\phi\\varphi",
                  r(QStringLiteral("\u03B1\u03F5\u03B5\u03D5\u03C6"))},
        LatexCase{"\\Beta\\Rho\\S", r(QStringLiteral("BP\u00A7"))}, LatexCase{"\\exp x", r("expx")},
        LatexCase{"\\log x", func(rp("log"), r("x"))}, LatexCase{"\\tiny x", r("x")},
        LatexCase{"\\mathbf{\\tiny}", ""}, LatexCase{"\\displaystyle{x}", r("x")},
        LatexCase{"\\displaystyle", ""}, LatexCase{"\\substack{a}", r("a")}, LatexCase{"\\middle|", r("|")},
        LatexCase{"\\triangledown", r(QStringLiteral("\u25BD"))},
        LatexCase{"a\\,b\\;c\\quad d\\qquad\\!e", r(QStringLiteral("a\u2009b\u2004c\u2003d\u2003\u2003e"))},
        LatexCase{"\\{\\}\\|\\#\\&", r(QStringLiteral("{}\u2016#&amp;"))},
        LatexCase{"a~b", r(QStringLiteral("a\u00A0b"))}, LatexCase{"\\operatorname{rank} A", r("rankA")},
        LatexCase{"\\gt\\lt\\textregistered", r(QStringLiteral("&gt;&lt;\u00AE"))}));

} // namespace
