#include "omml2latex/tables.h"
#include "tests/omml2latex/qstring_printer.h"

#include <gtest/gtest.h>

namespace {

TEST(OmmlToLatexTables, HaveEveryEntry)
{
    EXPECT_EQ(accentCommands().size(), 40); // 41 pairs, one key twice
    EXPECT_EQ(naryCommands().size(), 18);
    EXPECT_EQ(delimiterCommands().size(), 13);
    EXPECT_EQ(groupCharCommands().size(), 7);
    EXPECT_EQ(arrowCommands().size(), 6);
}

struct CharCase {
    const KCharTable& (*table)();
    const char16_t* key;
    const char* expected;
};

class LooksUpCharacter : public ::testing::TestWithParam<CharCase> {};

TEST_P(LooksUpCharacter, OrFallsBackToIt)
{
    const CharCase& c = GetParam();
    EXPECT_EQ(c.table().value(QString::fromUtf16(c.key)), QString::fromUtf8(c.expected));
}

INSTANTIATE_TEST_SUITE_P(
    Tables, LooksUpCharacter,
    ::testing::Values(
        CharCase{accentCommands, u"\u20D7", "overrightarrow"}, CharCase{accentCommands, u"\u0302", "hat"},
        CharCase{accentCommands, u"\u0300", "grave"}, CharCase{accentCommands, u"\u23DF", "underbrace"},
        CharCase{accentCommands, u"\u033F", "overequal"}, CharCase{accentCommands, u"\u20F0", "asteraccent"},
        CharCase{accentCommands, u"x", "x"}, CharCase{naryCommands, u"\u2A0C", "iiiint"},
        CharCase{naryCommands, u"\u2A02", "bigotimes"}, CharCase{naryCommands, u"\u2210", "coprod"},
        CharCase{naryCommands, u"+", "+"}, CharCase{delimiterCommands, u"\u3008", "langle"},
        CharCase{delimiterCommands, u"\u27EB", "rrangle"}, CharCase{delimiterCommands, u"\u2225", "parallel"},
        CharCase{delimiterCommands, u"(", "("}, CharCase{groupCharCommands, u"\u23B4", "overbracket"},
        CharCase{groupCharCommands, u"\u23DD", "underparen"}, CharCase{arrowCommands, u"\u21D0", "Leftarrow"},
        CharCase{arrowCommands, u"\u2194", "leftrightarrow"}));

TEST(OmmlToLatexTables, DelimiterNames)
{
    EXPECT_EQ(delimiterName(""), ".");
    EXPECT_EQ(delimiterName("("), "(");
    EXPECT_EQ(delimiterName("}"), "}");
    EXPECT_EQ(delimiterName(QString::fromUtf16(u"\u3008")), "langle");
    EXPECT_EQ(delimiterName(QString::fromUtf16(u"\u230B")), "rfloor");
}

TEST(OmmlToLatexTables, NameSets)
{
    for (const char* name : {"sin", "arccot", "csch", "lg", "hom", "gcd", "lcm", "mod", "bmod"})
        EXPECT_TRUE(isFunctionName(name)) << name;
    for (const char* name : {"Sin", "sgn", "lim", "", "arg"})
        EXPECT_FALSE(isFunctionName(name)) << name;
    for (const char* name : {"lim", "limsup", "liminf", "max", "min", "sup", "inf"})
        EXPECT_TRUE(isLimitName(name)) << name;
    for (const char* name : {"Lim", "sin", "lim inf", ""})
        EXPECT_FALSE(isLimitName(name)) << name;
}

TEST(OmmlToLatexTables, FontFamilies)
{
    const std::pair<const char*, const char*> cases[] = {
        {"monotype corsiva", "mathcal"},
        {"courier new", "mathtt"},
        {"cambria math", ""},
        {"arial black", "mathsf"},
        {"dejavu sans mono", "mathsf"},
        {"unifraktur gothic", "mathfrak"},
        {"double struck", "mathbb"},
        {"brush script mt", "mathcal"},
        {"", ""},
        {"Courier", ""}, // the lookup expects a lower-cased name
    };
    for (const auto& [font, command] : cases)
        EXPECT_EQ(fontFamilyCommand(font), command) << font;
}

TEST(OmmlToLatexTables, StyleAndScriptCommands)
{
    EXPECT_EQ(styleCommand(OStyle::plain), "mathrm");
    EXPECT_EQ(styleCommand(OStyle::bold), "mathbf");
    EXPECT_EQ(styleCommand(OStyle::italic), "mathit");
    EXPECT_EQ(styleCommand(OStyle::boldItalic), "boldsymbol");
    EXPECT_EQ(scriptCommand(OScript::script), "mathcal");
    EXPECT_EQ(scriptCommand(OScript::fraktur), "mathfrak");
    EXPECT_EQ(scriptCommand(OScript::doubleStruck), "mathbb");
    EXPECT_EQ(scriptCommand(OScript::sansSerif), "mathsf");
    EXPECT_EQ(scriptCommand(OScript::roman), "");
    EXPECT_EQ(scriptCommand(OScript::monospace), "");
}

TEST(OmmlToLatexTables, ColourNames)
{
    const std::pair<QRgb, const char*> cases[] = {
        {0xFFFF0000, "red"},      {0xFF00FF00, "green"},   {0xFF000000, "black"},   {0xFFC0504D, "darkred"},
        {0xFF800000, "darkred"},  {0xFFF79646, "orange"},  {0xFFFFA500, "orange"},  {0xFF4F81BD, "steelblue"},
        {0xFF404040, "darkgray"}, {0xFF123456, "#123456"}, {0xFF0A0B0C, "#0a0b0c"}, {0x80FF0000, "red"},
        {0xFFFFFFFE, "#fffffe"},
    };
    for (const auto& [rgb, name] : cases)
        EXPECT_EQ(colourName(QColor::fromRgba(rgb)), name) << std::hex << rgb;
    EXPECT_EQ(colourName(QColor()), "");
}

} // namespace
