// `formulaconv layout`: the typeset tree as JSON, checked field by field against
// the geometry the renderer derives from the resolved font.

#include "cli_support.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <functional>

namespace {

constexpr double kEps = 1e-9;

QJsonObject layoutJson(const QStringList& args, const QByteArray& stdinText = {})
{
    const CliResult r = runCli(QStringList{"layout"} + args, stdinText);
    EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_TRUE(r.out.endsWith("}\n"));
    QJsonParseError error;
    const QJsonDocument doc = QJsonDocument::fromJson(r.out, &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << error.errorString().toStdString();
    return doc.object();
}

// Every node of the tree, depth first, in painting order.
void collect(const QJsonObject& node, std::vector<QJsonObject>& out)
{
    out.push_back(node);
    for (const QJsonValue child : node.value("children").toArray())
        collect(child.toObject(), out);
}
std::vector<QJsonObject> nodesOf(const QJsonObject& root, const QString& kind)
{
    std::vector<QJsonObject> all;
    collect(root, all);
    std::vector<QJsonObject> result;
    for (const QJsonObject& n : all) {
        if (n.value("kind").toString() == kind)
            result.push_back(n);
    }
    return result;
}

TEST(CliLayout, ParenthesesAreFontGlyphsAroundTheRun)
{
    const QJsonObject alone = nodesOf(layoutJson({"--size", "10", "x"}), "glyph").at(0);
    const double x = alone.value("width").toDouble();

    const QJsonObject root = layoutJson({"--size", "10", "\\left( x \\right)"});
    EXPECT_EQ(root.value("kind").toString(), "line");
    EXPECT_TRUE(nodesOf(root, "stroke").empty());
    const QJsonArray top = root.value("children").toArray();
    ASSERT_EQ(top.size(), 1);
    const QJsonObject fence = top[0].toObject();
    const QJsonArray parts = fence.value("children").toArray();
    ASSERT_EQ(parts.size(), 3);
    const QJsonObject open = parts[0].toObject();
    const QJsonObject body = parts[1].toObject();
    const QJsonObject close = parts[2].toObject();
    // Fence, letter, fence side by side with no space between an opening and an ordinary atom.
    EXPECT_NEAR(open.value("x").toDouble(), 0, kEps);
    EXPECT_NEAR(body.value("x").toDouble(), open.value("width").toDouble(), kEps);
    EXPECT_NEAR(body.value("width").toDouble(), x, kEps);
    EXPECT_NEAR(close.value("x").toDouble(), body.value("x").toDouble() + x, kEps);
    EXPECT_NEAR(fence.value("width").toDouble(), close.value("x").toDouble() + close.value("width").toDouble(),
                kEps);
    EXPECT_EQ(body.value("text").toString(), QString::fromUtf8("\U0001D465"));
    EXPECT_EQ(body.value("italic").toInt(-1), 1);
    EXPECT_EQ(nodesOf(open, "glyph").at(0).value("text").toString(), "(");
    EXPECT_EQ(nodesOf(close, "glyph").at(0).value("text").toString(), ")");
    // The parentheses reach above and below the letter.
    EXPECT_GT(open.value("height").toDouble(), body.value("height").toDouble());
    EXPECT_GE(open.value("ascent").toDouble(), body.value("ascent").toDouble());
}

TEST(CliLayout, ColouredRunsArePaintedInTheirColourAndStructuresStayBlack)
{
    struct Case {
        const char* latex;
        const char* colour;
    } cases[] = {{"\\color{red}{x}", "#ff0000"},
                 {"\\color{red}{\\frac{a}{b}}", "#ff0000"},
                 {"\\color{green}{\\left[\\hat{x}\\right]}", "#008000"}};
    for (const Case& c : cases) {
        const QJsonObject root = layoutJson({c.latex});
        const std::vector<QJsonObject> glyphs = nodesOf(root, "glyph");
        ASSERT_FALSE(glyphs.empty()) << c.latex;
        // The letters take the colour; fences and accents are drawn by their structures, in black.
        for (const QJsonObject& g : glyphs) {
            const QString text = g.value("text").toString();
            const bool letter = text.size() == 2 && text.at(0).isHighSurrogate();
            if (letter)
                EXPECT_EQ(g.value("fill").toString(), QString::fromUtf8(c.colour)) << c.latex;
            else
                EXPECT_FALSE(g.contains("fill")) << c.latex << " " << text.toStdString();
        }
        for (const QJsonObject& s : nodesOf(root, "stroke"))
            EXPECT_EQ(s.value("stroke").toString(), "#000000") << c.latex;
        for (const QJsonObject& g : nodesOf(root, "grow"))
            EXPECT_EQ(g.value("grow").toString(), "#000000") << c.latex;
    }
    // Uncoloured text has no fill at all.
    for (const QJsonObject& g : nodesOf(layoutJson({"a+b"}), "glyph"))
        EXPECT_FALSE(g.contains("fill"));
}

TEST(CliLayout, LargeOperatorsAreGlyphsOfTheMathFont)
{
    const double size = 12;
    const QJsonObject root = layoutJson({"\\sum_{i} x"});
    EXPECT_TRUE(nodesOf(root, "grow").empty());
    const std::vector<QJsonObject> glyphs = nodesOf(root, "glyph");
    ASSERT_FALSE(glyphs.empty());
    const QJsonObject sum = glyphs[0];
    EXPECT_EQ(sum.value("text").toString(), QString::fromUtf8("\u2211"));
    // At display size: taller than the letters' em.
    EXPECT_GT(sum.value("height").toDouble(), size);
    EXPECT_NEAR(sum.value("fontSize").toDouble(), size, kEps);
    EXPECT_FALSE(sum.contains("path"));

    // An accent is a glyph of the font too, set above the letter.
    const QJsonObject hatted = layoutJson({"\\hat{x}"});
    EXPECT_TRUE(nodesOf(hatted, "grow").empty());
    const std::vector<QJsonObject> marks = nodesOf(hatted, "glyph");
    ASSERT_EQ(marks.size(), 2u);
    EXPECT_EQ(marks[0].value("text").toString(), QString::fromUtf8("\u0302"));
    EXPECT_FALSE(marks[0].contains("path"));
}

TEST(CliLayout, OmmlInputAndPrettyPrinting)
{
    const QByteArray omml =
        "<m:oMathPara xmlns:m=\"http://schemas.openxmlformats.org/officeDocument/2006/math\">"
        "<m:oMath><m:bar><m:barPr><m:pos m:val=\"bot\"/></m:barPr><m:e><m:r><m:t>ab</m:t>"
        "</m:r></m:e></m:bar></m:oMath></m:oMathPara>";
    const double size = 20;
    const QJsonObject base =
        layoutJson({"--omml", "--size", "20",
                    "<m:oMathPara xmlns:m=\"http://schemas.openxmlformats.org/officeDocument/2006/math\">"
                    "<m:oMath><m:r><m:t>ab</m:t></m:r></m:oMath></m:oMathPara>"});
    const double w = base.value("width").toDouble();
    const double line = base.value("height").toDouble();
    const double ascent = base.value("ascent").toDouble();
    for (const QStringList& args : {QStringList{"--omml", "--size", "20", QString::fromUtf8(omml)},
                                    QStringList{"--omml", "--size", "20", "--pretty", "-"}}) {
        const QJsonObject root = layoutJson(args, omml);
        const QJsonObject bar = root.value("children").toArray().at(0).toObject();
        EXPECT_NEAR(bar.value("width").toDouble(), w, kEps);
        EXPECT_NEAR(bar.value("ascent").toDouble(), ascent, kEps);
        EXPECT_NEAR(bar.value("fontSize").toDouble(), size, kEps);
        // The rule lies under the letters, a gap below their depth.
        const QJsonObject rule = bar.value("children").toArray().at(0).toObject();
        EXPECT_EQ(rule.value("kind").toString(), "stroke");
        EXPECT_NEAR(rule.value("width").toDouble(), w, kEps);
        EXPECT_GT(rule.value("y").toDouble(), line);
        EXPECT_GT(bar.value("height").toDouble(), rule.value("y").toDouble() + rule.value("height").toDouble());
        EXPECT_FALSE(rule.contains("path"));
    }
    const CliResult compact = runCli({"layout", "--omml", QString::fromUtf8(omml)});
    const CliResult pretty = runCli({"layout", "--pretty", "--omml", QString::fromUtf8(omml)});
    EXPECT_EQ(compact.out.count('\n'), 1);
    EXPECT_GT(pretty.out.count('\n'), 10);
    EXPECT_TRUE(pretty.out.startsWith("{\n  \"kind\": \"line\",\n  \"x\": 0,"));
    EXPECT_EQ(QJsonDocument::fromJson(compact.out), QJsonDocument::fromJson(pretty.out));
}

TEST(CliLayout, TextIsEscapedAndNonBmpCharactersSurvive)
{
    const QJsonObject root = layoutJson({"--", "\"\xF0\x9D\x91\xA5"});
    QString text;
    for (const QJsonObject& g : nodesOf(root, "glyph"))
        text += g.value("text").toString();
    EXPECT_TRUE(text.contains(QString::fromUtf8("\xF0\x9D\x91\xA5"))) << text.toStdString();
    EXPECT_TRUE(text.contains('"')) << text.toStdString();
}

} // namespace
