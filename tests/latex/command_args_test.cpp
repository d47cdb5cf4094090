#include "latex/command_args.h"
#include "tests/latex/test_support.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace {

TEST(CommandArgTable, LookupIsExactAndCaseSensitive)
{
    EXPECT_EQ(commandArgShape(QStringLiteral("frac")), ArgShape::TwoArgs);
    EXPECT_EQ(commandArgShape(QStringLiteral("operatorname*")), ArgShape::OneArg);
    EXPECT_EQ(commandArgShape(QStringLiteral("\\\\")), ArgShape::Special);
    EXPECT_EQ(commandArgShape(QStringLiteral("ldots")), ArgShape::NoArgs);
    for (const char* missing : {"Frac", "frac*", "", "foo"})
        EXPECT_EQ(commandArgShape(QString::fromLatin1(missing)), ArgShape::Unknown) << missing;
}

// Shapes give the signature unless the command's LaTeX arguments differ; unknown names read a brace
// group only.
TEST(CommandArgTable, SignaturesFollowLatex)
{
    const std::map<std::string, const char*> expected = {
        {"frac", "mm"},         {"hat", "m"},         {"sqrt", "om"},         {"alpha", ""},
        {"foo", "g"},           {"space_thin", ""},   {"genfrac", "mmmmmm"},  {"fcolorbox", "ommm"},
        {"linebreak", "o"},     {"middle", "m"},      {"newcommand", "coom"}, {"over", "og"},
        {"kern", "d"},          {"textcolor", "omm"}, {"enclose", "mom"},     {"framebox", "oom"},
        {"operatorname*", "m"}, {"substack", "m"},    {"unitfrac", "omm"},    {"rule", "omm"},
    };
    for (const auto& [name, signature] : expected)
        EXPECT_EQ(QString::fromLatin1(commandSignature(QString::fromStdString(name))),
                  QString::fromLatin1(signature))
            << name;
}

} // namespace
