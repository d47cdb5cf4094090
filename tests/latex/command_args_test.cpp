#include "latex/command_args.h"
#include "tests/latex/test_support.h"

#include <gtest/gtest.h>

#include <map>

namespace {

struct CommandArgEntry {
    const char16_t* name;
    ArgShape shape;
};

const CommandArgEntry kTable[] = {
#include "latex/command_args.inc"
};

TEST(CommandArgTable, LookupIsExactAndCaseSensitive)
{
    EXPECT_EQ(commandArgTableSize(), 802);
    EXPECT_EQ(commandArgShape(QStringLiteral("frac")), ArgShape::TwoArgs);
    EXPECT_EQ(commandArgShape(QStringLiteral("operatorname*")), ArgShape::OneArg);
    EXPECT_EQ(commandArgShape(QStringLiteral("\\\\")), ArgShape::Special);
    EXPECT_EQ(commandArgShape(QStringLiteral("ldots")), ArgShape::NoArgs);
    for (const char* missing : {"Frac", "frac*", "", "foo"})
        EXPECT_EQ(commandArgShape(QString::fromLatin1(missing)), ArgShape::Unknown) << missing;
}

// Each reachable key followed by seven brace groups takes one group per brace-reading letter of its
// signature, and with a bracket group in front an optional argument exactly when the signature
// starts with one. Keys typed differently (spacing, "~"), taken by the lexer or parser first, or read
// as colours are skipped.
TEST(CommandArgTable, EveryReachableKeyReadsItsSignature)
{
    const QStringList skipped =
        QStringLiteral(
            "space_thin space_med space_thick space_negthin space_quad space_qquad space_normal nbsp "
            "thinspace medspace thickspace quad qquad ! , : ; left right begin end \\\\ pmatrix bmatrix "
            "vmatrix Vmatrix Bmatrix color textcolor colorbox fcolorbox")
            .split(QLatin1Char(' '));
    auto pattern = [](const QString& source) {
        LatexDiagnostics diagnostics;
        const KLatexNodePtr root = parseLatex(source, diagnostics);
        const auto& first = latexAs<KLatexGroup>(root.get())->children.front();
        QString result;
        if (const auto* command = latexAs<KLatexCommand>(first.get()))
            for (const KLatexArg& arg : command->args)
                result += arg.optional ? QLatin1Char('o') : QLatin1Char('m');
        for (const LatexDiagnostic& d : diagnostics)
            result += QLatin1Char(' ') + d.code;
        return result;
    };
    std::map<QString, ArgShape> last;
    int checked = 0;
    for (const CommandArgEntry& entry : kTable) {
        const QString key = QString::fromUtf16(entry.name);
        last[key] = entry.shape;
        EXPECT_NE(entry.shape, ArgShape::Unknown) << key.toStdString();
        if (skipped.contains(key))
            continue;
        const QString signature = QString::fromLatin1(commandSignature(key));
        QString braced;
        for (const QChar letter : signature)
            if (letter != QLatin1Char('o') && letter != QLatin1Char('p') && letter != QLatin1Char('='))
                braced += QLatin1Char('m');
        const QString groups = QStringLiteral("{a}{b}{c}{d}{e}{f}{g}");
        EXPECT_EQ(pattern(QLatin1Char('\\') + key + groups), braced) << key.toStdString();
        if (signature.startsWith(QLatin1Char('o'))) {
            EXPECT_EQ(pattern(QLatin1Char('\\') + key + QStringLiteral("[o]") + groups),
                      QLatin1Char('o') + braced)
                << key.toStdString();
        }
        ++checked;
    }
    EXPECT_EQ(checked, 806 - 31);
    std::map<ArgShape, int> perShape; // a later entry for the same name wins
    for (const auto& [name, shape] : last) {
        EXPECT_EQ(commandArgShape(name), shape) << name.toStdString();
        ++perShape[shape];
    }
    EXPECT_EQ(perShape, (std::map<ArgShape, int>{{ArgShape::NoArgs, 556},
                                                 {ArgShape::OneArg, 167},
                                                 {ArgShape::TwoArgs, 18},
                                                 {ArgShape::OptArgThenArg, 17},
                                                 {ArgShape::Special, 44}}));
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
