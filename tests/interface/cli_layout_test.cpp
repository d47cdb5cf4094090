// `formulaconv layout`: the typeset tree as JSON, checked field by field against
// the geometry the renderer derives from the resolved font.

#include "cli_support.h"

#include <QFont>
#include <QFontMetricsF>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <gtest/gtest.h>

#include <functional>
#include <variant>

namespace {

constexpr double kEps = 1e-9;

QFontMetricsF metricsAt(double size)
{
    QFont font;
    font.setFamily(QStringLiteral("Times New Roman"));
    font.setPointSizeF(size);
    return QFontMetricsF(font);
}

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

// SVG path data split into command letters and numbers.
using PathToken = std::variant<QString, double>;
std::vector<PathToken> pathTokens(const QString& data)
{
    std::vector<PathToken> tokens;
    static const QRegularExpression token(QStringLiteral("([A-Za-z])|(-?[0-9.]+(?:e[-+]?[0-9]+)?)"));
    auto it = token.globalMatch(data);
    while (it.hasNext()) {
        const QRegularExpressionMatch m = it.next();
        if (!m.captured(1).isEmpty())
            tokens.emplace_back(m.captured(1));
        else
            tokens.emplace_back(m.captured(2).toDouble());
    }
    return tokens;
}
void expectPath(const QString& data, const std::vector<PathToken>& expected)
{
    const std::vector<PathToken> tokens = pathTokens(data);
    ASSERT_EQ(tokens.size(), expected.size()) << data.toStdString();
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (std::holds_alternative<QString>(expected[i]))
            EXPECT_EQ(std::get<QString>(tokens[i]), std::get<QString>(expected[i])) << i;
        else
            EXPECT_NEAR(std::get<double>(tokens[i]), std::get<double>(expected[i]), 1e-6) << i;
    }
}

void expectBox(const QJsonObject& n, const char* kind, double x, double y, double width, double height,
               double ascent, double fontSize, double penWidth)
{
    EXPECT_EQ(n.value("kind").toString(), QString::fromUtf8(kind));
    EXPECT_NEAR(n.value("x").toDouble(), x, kEps);
    EXPECT_NEAR(n.value("y").toDouble(), y, kEps);
    EXPECT_NEAR(n.value("width").toDouble(), width, kEps);
    EXPECT_NEAR(n.value("height").toDouble(), height, kEps);
    EXPECT_NEAR(n.value("ascent").toDouble(), ascent, kEps);
    EXPECT_NEAR(n.value("fontSize").toDouble(), fontSize, kEps);
    EXPECT_NEAR(n.value("penWidth").toDouble(), penWidth, kEps);
}

TEST(CliLayout, ParenthesesAroundARunFieldByField)
{
    const double size = 10;
    const double u = 1;
    // The run's own box, as the run layout sets it; the fences follow from it.
    const QJsonObject alone = nodesOf(layoutJson({"--size", "10", "x"}), "glyph").at(0);
    const double x = alone.value("width").toDouble();
    const double line = alone.value("height").toDouble();
    const double ascent = alone.value("ascent").toDouble();
    const double H = line + 2 * u;
    const double width = 0.15 * H + 2.5 + x + 2.5 + 0.15 * H;

    const QJsonObject root = layoutJson({"--size", "10", "\\left( x \\right)"});
    expectBox(root, "line", 0, 0, width, H, u + ascent, size, 1);
    EXPECT_FALSE(root.contains("text"));
    EXPECT_FALSE(root.contains("path"));
    const QJsonArray top = root.value("children").toArray();
    ASSERT_EQ(top.size(), 1);
    const QJsonObject fence = top[0].toObject();
    expectBox(fence, "line", 0, 0, width, H, u + ascent, size, 1);

    const QJsonArray parts = fence.value("children").toArray();
    ASSERT_EQ(parts.size(), 3);
    const QJsonObject open = parts[0].toObject();
    expectBox(open, "stroke", 0, 0, 0.15 * H, H, 0, 0, 1);
    EXPECT_EQ(open.value("stroke").toString(), "#000000");
    EXPECT_FALSE(open.contains("fill"));
    EXPECT_FALSE(open.contains("grow"));
    EXPECT_FALSE(open.contains("children"));
    expectPath(open.value("path").toString(),
               {QString("M"), 0.15 * H, 0.0, QString("C"), 0.0, 0.25 * H, 0.0, 0.75 * H, 0.15 * H, H});

    const QJsonObject body = parts[1].toObject();
    expectBox(body, "line", 0.15 * H + 2.5, u, x, line, ascent, size, 1);
    const std::vector<QJsonObject> glyphs = nodesOf(body, "glyph");
    ASSERT_EQ(glyphs.size(), 1u);
    expectBox(glyphs[0], "glyph", 0, 0, x, line, ascent, size, 1);
    EXPECT_EQ(glyphs[0].value("text").toString(), QString::fromUtf8("\U0001D465"));
    EXPECT_EQ(glyphs[0].value("italic").toInt(-1), 1);
    EXPECT_EQ(glyphs[0].value("bold").toInt(-1), 0);
    EXPECT_FALSE(glyphs[0].contains("fill"));
    EXPECT_FALSE(glyphs[0].contains("children"));

    const QJsonObject close = parts[2].toObject();
    expectBox(close, "stroke", 0.15 * H + 5 + x, 0, 0.15 * H, H, 0, 0, 1);
    expectPath(close.value("path").toString(),
               {QString("M"), 0.0, 0.0, QString("C"), 0.15 * H, 0.25 * H, 0.15 * H, 0.75 * H, 0.0, H});
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
        for (const QJsonObject& g : glyphs)
            EXPECT_EQ(g.value("fill").toString(), QString::fromUtf8(c.colour)) << c.latex;
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

    // A widened accent reports its horizontal stretch; it is drawn from the font, so no path.
    const QJsonObject hat = nodesOf(layoutJson({"\\hat{x}"}), "grow").at(0);
    EXPECT_EQ(hat.value("text").toString(), QString::fromUtf8("\u0302"));
    const double inkWidth = metricsAt(size).boundingRect(QChar(0x0302)).width();
    const double w = nodesOf(layoutJson({"x"}), "glyph").at(0).value("width").toDouble();
    EXPECT_NEAR(hat.value("scaleX").toDouble(1.0), std::max(0.5, std::max(6.0, w) / inkWidth), 1e-9);
    EXPECT_NEAR(hat.value("scale").toDouble(), 1, kEps);
    EXPECT_FALSE(hat.contains("path"));
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
        expectBox(bar, "line", 0, 0, w, line + 2 + 1, ascent, size, 1);
        const QJsonObject rule = bar.value("children").toArray().at(0).toObject();
        expectBox(rule, "stroke", 0, line + 2, w, 1, 0, 0, 1);
        expectPath(rule.value("path").toString(), {QString("M"), 0.0, 0.0, QString("L"), w, 0.0});
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
