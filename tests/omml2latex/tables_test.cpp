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

TEST(OmmlToLatexTables, LookUpOrFallBackToTheKey)
{
    const std::tuple<const KCharTable& (*)(), const char16_t*, const char*> cases[] = {
        {accentCommands, u"\u20D7", "overrightarrow"}, {accentCommands, u"\u0302", "hat"},
        {accentCommands, u"\u20F0", "asteraccent"},    {accentCommands, u"x", "x"},
        {naryCommands, u"\u2A0C", "iiiint"},           {naryCommands, u"+", "+"},
        {delimiterCommands, u"\u27EB", "rrangle"},     {groupCharCommands, u"\u23DD", "underparen"},
        {arrowCommands, u"\u21D0", "Leftarrow"}};
    for (const auto& [table, key, expected] : cases)
        EXPECT_EQ(table().value(QString::fromUtf16(key)), expected) << expected;
    EXPECT_EQ(delimiterName(""), ".");
    EXPECT_EQ(delimiterName("("), "(");
    EXPECT_EQ(delimiterName(QString::fromUtf16(u"\u3008")), "langle");
}

TEST(OmmlToLatexTables, NamesFontsAndColours)
{
    EXPECT_TRUE(isFunctionName("arccot") && isFunctionName("bmod") && isLimitName("liminf"));
    EXPECT_FALSE(isFunctionName("Sin") || isFunctionName("lim") || isLimitName("lim inf") || isLimitName(""));
    // The lookup expects a lower-cased name.
    for (const auto& [font, command] : {std::pair{"brush script mt", "mathcal"},
                                        {"double struck", "mathbb"},
                                        {"unifraktur gothic", "mathfrak"},
                                        {"", ""},
                                        {"Courier", ""}})
        EXPECT_EQ(fontFamilyCommand(font), command) << font;
    // Alpha is ignored; unnamed colours are written as lower-case hex.
    for (const auto& [rgb, name] : {std::pair<QRgb, const char*>{0x80FF0000, "red"},
                                    {0xFF800000, "darkred"},
                                    {0xFF123456, "#123456"},
                                    {0xFF0A0B0C, "#0a0b0c"},
                                    {0xFFFFFFFE, "#fffffe"}})
        EXPECT_EQ(colourName(QColor::fromRgba(rgb)), name) << std::hex << rgb;
}

} // namespace
