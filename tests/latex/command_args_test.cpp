#include "latex/command_args.h"
#include "tests/latex/test_support.h"

#include <gtest/gtest.h>

namespace {

// The signature follows the argument shape unless the command's LaTeX arguments differ (those rows
// are read through the parser in tex_arguments_test); names are exact and case-sensitive, and a name
// outside the table reads one brace group only.
TEST(CommandArgTable, SignatureFollowsTheShape)
{
    const std::pair<const char*, const char*> cases[] = {
        {"frac", "mm"}, {"hat", "m"},  {"sqrt", "om"}, {"alpha", ""}, {"space_thin", ""}, {"over", "og"},
        {"foo", "g"},   {"Frac", "g"}, {"frac*", "g"}, {"", "g"},     {"\\\\", "g"}};
    for (const auto& [name, signature] : cases)
        EXPECT_EQ(QString::fromLatin1(commandSignature(QString::fromLatin1(name))),
                  QString::fromLatin1(signature))
            << name;
}

} // namespace
