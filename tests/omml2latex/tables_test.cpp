#include "omml2latex/tables.h"
#include "tests/omml2latex/qstring_printer.h"

#include <gtest/gtest.h>

namespace {

// Spot checks of the lookups and their fallbacks; the rows themselves are used by the
// OMML text tests.
TEST(OmmlToLatexTables, LookUpOrFallBackToTheKey)
{
    EXPECT_EQ(accentCommands().value(QString::fromUtf16(u"\u20D7")), "overrightarrow");
    EXPECT_EQ(accentCommands().value("x"), "x");
    EXPECT_EQ(naryCommands().value("+"), "+");
    EXPECT_EQ(delimiterName(""), ".");
    EXPECT_EQ(delimiterName("("), "(");
    EXPECT_EQ(delimiterName(QString::fromUtf16(u"\u3008")), "langle");
}

TEST(OmmlToLatexTables, FontsAndColours)
{
    // The lookup expects a lower-cased name.
    for (const auto& [font, command] :
         {std::pair{"brush script mt", "mathcal"}, {"double struck", "mathbb"}, {"", ""}, {"Courier", ""}})
        EXPECT_EQ(fontFamilyCommand(font), command) << font;
    // Alpha is ignored; unnamed colours are written as lower-case hex.
    for (const auto& [rgb, name] :
         {std::pair<QRgb, const char*>{0x80FF0000, "red"}, {0xFF123456, "#123456"}, {0xFF0A0B0C, "#0a0b0c"}})
        EXPECT_EQ(colourName(QColor::fromRgba(rgb)), name) << std::hex << rgb;
}

} // namespace
