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

// "\key[o]{a}{b}" tells the shapes apart by the arguments the command takes and the codes it reports.
// Keys typed differently (spacing, "~"), taken by the lexer or parser first, or read as colours are skipped.
TEST(CommandArgTable, EveryReachableKeyReadsItsShape)
{
    const std::map<ArgShape, QString> expected = {
        {ArgShape::NoArgs, QString()},
        {ArgShape::OneArg, QStringLiteral("m")},   // the bracket itself, read as TeX reads one token
        {ArgShape::TwoArgs, QStringLiteral("mm")}, // "[" and "o"
        {ArgShape::OptArgThenArg, QStringLiteral("om")},
        {ArgShape::Special, QStringLiteral("om")},
    };
    const QStringList skipped =
        QStringLiteral(
            "space_thin space_med space_thick space_negthin space_quad space_qquad space_normal nbsp "
            "thinspace medspace thickspace quad qquad ! , : ; left right begin end \\\\ pmatrix bmatrix "
            "vmatrix Vmatrix Bmatrix color textcolor colorbox fcolorbox")
            .split(QLatin1Char(' '));
    std::map<QString, ArgShape> last;
    int checked = 0;
    for (const CommandArgEntry& entry : kTable) {
        const QString key = QString::fromUtf16(entry.name);
        last[key] = entry.shape;
        EXPECT_NE(entry.shape, ArgShape::Unknown) << key.toStdString();
        if (skipped.contains(key))
            continue;
        LatexDiagnostics diagnostics;
        const KLatexNodePtr root =
            parseLatex(QLatin1Char('\\') + key + QStringLiteral("[o]{a}{b}"), diagnostics);
        const auto* command =
            latexAs<KLatexCommand>(latexAs<KLatexGroup>(root.get())->children.front().get());
        ASSERT_NE(command, nullptr) << key.toStdString();
        EXPECT_EQ(command->name, key);
        QString pattern;
        for (const KLatexArg& arg : command->args)
            pattern += arg.optional ? QLatin1Char('o') : QLatin1Char('m');
        for (const LatexDiagnostic& d : diagnostics)
            pattern += QLatin1Char(' ') + d.code;
        EXPECT_EQ(pattern, expected.at(entry.shape)) << key.toStdString();
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

} // namespace
