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

TEST(CommandArgTable, HoldsEveryNameOnceWithItsShape)
{
    EXPECT_EQ(std::size(kTable), std::size_t(806));
    std::map<QString, ArgShape> last;
    for (const CommandArgEntry& entry : kTable)
        last[QString::fromUtf16(entry.name)] = entry.shape;
    ASSERT_EQ(last.size(), std::size_t(802));
    EXPECT_EQ(commandArgTableSize(), 802);

    std::map<ArgShape, int> perShape;
    for (const auto& [name, shape] : last) {
        EXPECT_EQ(commandArgShape(name), shape) << name.toStdString();
        ++perShape[shape];
    }
    EXPECT_EQ(perShape[ArgShape::OneArg], 167);
    EXPECT_EQ(perShape[ArgShape::TwoArgs], 18);
    EXPECT_EQ(perShape[ArgShape::OptArgThenArg], 17);
    EXPECT_EQ(perShape[ArgShape::Special], 44);
    EXPECT_EQ(perShape[ArgShape::NoArgs], 556);
    EXPECT_EQ(perShape.count(ArgShape::Unknown), 0u);
}

TEST(CommandArgTable, LookupIsExactAndCaseSensitive)
{
    EXPECT_EQ(commandArgShape(QStringLiteral("frac")), ArgShape::TwoArgs);
    EXPECT_EQ(commandArgShape(QStringLiteral("Frac")), ArgShape::Unknown);
    EXPECT_EQ(commandArgShape(QStringLiteral("frac*")), ArgShape::Unknown);
    EXPECT_EQ(commandArgShape(QStringLiteral("operatorname*")), ArgShape::OneArg);
    EXPECT_EQ(commandArgShape(QStringLiteral("\\\\")), ArgShape::Special);
    EXPECT_EQ(commandArgShape(QStringLiteral("ldots")), ArgShape::NoArgs);
    EXPECT_EQ(commandArgShape(QString()), ArgShape::Unknown);
    EXPECT_EQ(commandArgShape(QStringLiteral("foo")), ArgShape::Unknown);
}

// How a user types the command that reaches the table under this key, or empty
// when the lexer or the parser consumes it before any lookup.
QString sourceFor(const QString& key)
{
    static const std::map<QString, QString> typed = {
        {QStringLiteral("space_thin"), QStringLiteral("\\,")},
        {QStringLiteral("space_med"), QStringLiteral("\\:")},
        {QStringLiteral("space_thick"), QStringLiteral("\\;")},
        {QStringLiteral("space_negthin"), QStringLiteral("\\!")},
        {QStringLiteral("space_quad"), QStringLiteral("\\quad")},
        {QStringLiteral("space_qquad"), QStringLiteral("\\qquad")},
        {QStringLiteral("space_normal"), QStringLiteral("\\ ")},
        {QStringLiteral("nbsp"), QStringLiteral("~")},
    };
    static const QStringList consumed = {
        QStringLiteral("thinspace"), QStringLiteral("medspace"), QStringLiteral("thickspace"),
        QStringLiteral("quad"),      QStringLiteral("qquad"),    QStringLiteral("!"),
        QStringLiteral(","),         QStringLiteral(":"),        QStringLiteral(";"),
        QStringLiteral("left"),      QStringLiteral("right"),    QStringLiteral("begin"),
        QStringLiteral("end"),       QStringLiteral("\\\\"),     QStringLiteral("pmatrix"),
        QStringLiteral("bmatrix"),   QStringLiteral("vmatrix"),  QStringLiteral("Vmatrix"),
        QStringLiteral("Bmatrix"),
    };
    const auto found = typed.find(key);
    if (found != typed.end())
        return found->second;
    if (consumed.contains(key))
        return QString();
    return QLatin1Char('\\') + key;
}

// Their bracket and first brace are read as one colour value by the lexer.
bool isColourCommand(const QString& key)
{
    return key == QLatin1String("color") || key == QLatin1String("textcolor") ||
           key == QLatin1String("colorbox") || key == QLatin1String("fcolorbox");
}

QString argPattern(const KLatexArgs& args)
{
    QString pattern;
    for (const KLatexArg& arg : args)
        pattern.append(arg.optional ? QLatin1Char('o') : QLatin1Char('m'));
    return pattern;
}

// "\key[o]{a}{b}" tells the five shapes apart by what the command takes and what it reports.
TEST(CommandArgTable, EveryReachableKeyReadsItsShape)
{
    const std::map<ArgShape, std::pair<QString, QString>> expected = {
        {ArgShape::NoArgs, {QString(), QString()}},
        {ArgShape::OneArg, {QString(), QStringLiteral("E_arg_missing")}},
        {ArgShape::TwoArgs, {QString(), QStringLiteral("E_arg1_missing E_arg2_missing")}},
        {ArgShape::OptArgThenArg, {QStringLiteral("om"), QString()}},
        {ArgShape::Special, {QStringLiteral("om"), QString()}},
    };
    int checked = 0;
    for (const CommandArgEntry& entry : kTable) {
        const QString key = QString::fromUtf16(entry.name);
        const QString source = sourceFor(key);
        if (source.isEmpty() || isColourCommand(key))
            continue;
        LatexDiagnostics diagnostics;
        const KLatexNodePtr root = parseLatex(source + QStringLiteral("[o]{a}{b}"), diagnostics);
        const auto* group = latexAs<KLatexGroup>(root.get());
        ASSERT_TRUE(group && !group->children.empty()) << key.toStdString();
        const auto* command = latexAs<KLatexCommand>(group->children.front().get());
        ASSERT_NE(command, nullptr) << key.toStdString();
        EXPECT_EQ(command->name, key);
        QStringList codes;
        for (const LatexDiagnostic& d : diagnostics)
            codes << d.code;
        EXPECT_EQ(argPattern(command->args), expected.at(entry.shape).first) << key.toStdString();
        EXPECT_EQ(codes.join(QLatin1Char(' ')), expected.at(entry.shape).second) << key.toStdString();
        ++checked;
    }
    EXPECT_EQ(checked, 806 - 19 - 4); // 19 keys never reach the table; 4 colour commands are below
}

TEST(CommandArgTable, ColourCommandsReadTheirShape)
{
    EXPECT_EQ(
        parseToText(QStringLiteral("\\color{red}{x}")).tree,
        QStringLiteral(
            "Group\n  Command \"color\"\n    arg\n      Group\n        Text \"red\"\n    arg\n      Group\n"
            "        Text \"x\"\n"));
    EXPECT_EQ(
        parseToText(QStringLiteral("\\textcolor[rgb]{1,0,0}{x}")).tree,
        QStringLiteral("Group\n  Command \"textcolor\"\n  Text \"[rgb]{1,0,0}\"\n  Group\n    Text \"x\"\n"));
    const ParsedText colorbox = parseToText(QStringLiteral("\\colorbox{red}"));
    EXPECT_EQ(colorbox.tree,
              QStringLiteral("Group\n  Command \"colorbox\"\n    arg\n      Group\n        Text \"red\"\n"));
    EXPECT_EQ(colorbox.diagnostics,
              QStringLiteral("2 E_arg2_missing 14+0 \\colorbox missing second argument."));
    EXPECT_EQ(
        parseToText(QStringLiteral("\\fcolorbox{red}{blue}{x}")).tree,
        QStringLiteral(
            "Group\n  Command \"fcolorbox\"\n    arg\n      Group\n        Text \"red\"\n  Group\n"
            "    Text \"b\"\n    Text \"l\"\n    Text \"u\"\n    Text \"e\"\n  Group\n    Text \"x\"\n"));
}

TEST(CommandArgTable, MissingNameBecomesUnknownCommandReadingLikeSpecial)
{
    const ParsedText parsed = parseToText(QStringLiteral("\\Frac{a}{b}\\foo*"));
    EXPECT_EQ(parsed.tree,
              QStringLiteral("Group\n  Unknown \"Frac\"\n    arg\n      Group\n        Text \"a\"\n  Group\n"
                             "    Text \"b\"\n  Unknown \"foo*\"\n"));
    EXPECT_EQ(parsed.diagnostics, QString());
}

} // namespace
