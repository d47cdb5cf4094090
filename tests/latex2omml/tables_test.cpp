#include "latex2omml/tables.h"
#include "omml_text.h"

using namespace omml_text;

namespace {

TEST(Tables, NamesOutsideTheTablesAreNotFound)
{
    for (const char* name : {"", "ALPHA", "label", "nonumber", "definecolor", "\\\\", "sum\\limits\\limits"})
        EXPECT_EQ(lookupCommand(QString::fromUtf8(name)), nullptr) << name;
    for (const char* name : {"equations", "Matrix", "CD*"})
        EXPECT_EQ(lookupEnvironment(QString::fromUtf8(name)), nullptr) << name;
    for (const char* token : {"\\uparrow", "\\lbrace ", "langle", ""})
        EXPECT_EQ(lookupDelimiter(QString::fromUtf8(token)), nullptr) << token;
}

// Spot checks of the tables through LaTeX text.
INSTANTIATE_TEST_SUITE_P(
    Tables, LatexToOmml,
    ::testing::Values(LatexCase{"\\alpha\\epsilon\\varepsilon\\phi\\varphi",
                                r(QStringLiteral("\u03B1\u03F5\u03B5\u03D5\u03C6"))},
                      LatexCase{"\\Beta\\Rho\\S", rp("BP") + r(QStringLiteral("\u00A7"))},
                      LatexCase{"\\mathit{\\Beta}", r("B", sty("i"))},
                      LatexCase{"\\operatorname{arg\\,max}", rp(QStringLiteral("arg\u2009max"))},
                      LatexCase{"\\exp x", func(rp("exp"), r("x"))},
                      LatexCase{"\\log x", func(rp("log"), r("x"))}, LatexCase{"\\mathbf{\\tiny}", ""},
                      LatexCase{"\\displaystyle{x}", r("x")}, LatexCase{"\\displaystyle", ""},
                      LatexCase{"\\middle|", r("|")},
                      LatexCase{"\\triangledown", r(QStringLiteral("\u25BD"))},
                      LatexCase{"a\\,b\\;c\\quad d\\qquad\\!e",
                                r(QStringLiteral("a\u2009b\u2004c\u2003d\u2003\u2003e"))},
                      LatexCase{"\\{\\}\\|\\#\\&", r(QStringLiteral("{}\u2016#&amp;"))},
                      LatexCase{"a~b", r(QStringLiteral("a\u00A0b"))},
                      LatexCase{"\\operatorname{rank} A", func(rp("rank"), r("A"))},
                      LatexCase{"\\gt\\lt\\textregistered", r(QStringLiteral("&gt;&lt;\u00AE"))}));

} // namespace
