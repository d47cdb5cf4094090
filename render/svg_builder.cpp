// Paints a typeset tree onto Qt's SVG generator. Everything Qt-side (buffer,
// generator, painter) is local to one build, so builds on several threads are independent.

#include "render/svg_builder.h"

#include "render/glyph_cache.h"
#include "render/math_font.h"

#include <QBuffer>
#include <QPainter>
#include <QSvgGenerator>

#include <climits>
#include <cmath>

namespace {

constexpr double kMargin = 2.0; // points of white space on each side of the formula
const QString kBlack = QStringLiteral("#000000");

// Nearest integer with halves rounded up; sizes that do not fit an int become 0.
int roundHalfUp(double value)
{
    const double rounded = std::floor(value + 0.5);
    if (!std::isfinite(rounded) || rounded < INT_MIN || rounded > INT_MAX)
        return 0;
    return static_cast<int>(rounded);
}

bool finite(double a, double b, double c)
{
    return std::isfinite(a) && std::isfinite(b) && std::isfinite(c);
}

const QString& colourOr(const QString& colour, const QString& fallback)
{
    return colour.isEmpty() ? fallback : colour;
}

// A glyph run: each character drawn on its own, 0.1 x size further apart than the font's
// advances. A surrogate pair is one character, drawn and advanced as a whole.
void paintGlyph(QPainter& painter, const KTypoNode& node, double x, double y)
{
    if (node.text.isEmpty())
        return;
    const auto* glyph = dynamic_cast<const KTypoGlyph*>(&node);
    if (glyph && glyph->mathFace >= 0) {
        // One glyph of the math font: its outline in em, scaled to the size, origin on the baseline.
        if (!finite(x, y, node.ascent) || !std::isfinite(node.fontSize))
            return;
        const KMathGlyphInfo& info =
            KMathFont::instance().info(KMathGlyph{glyph->mathFace, glyph->glyphIndex});
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(colourOr(node.fillColor, kBlack)));
        painter.drawPath(
            QTransform(node.fontSize, 0, 0, node.fontSize, x, y + node.ascent).map(info.outline));
        return;
    }
    const KGlyphFont& font = glyphFont(node.fontFamily, node.fontSize, node.italic == 1, node.bold == 1);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(colourOr(node.fillColor, kBlack)));
    if (!finite(x, y, node.ascent))
        return;
    const double baseline = y + node.ascent;
    const double spacing = 0.1 * node.fontSize;
    double penX = x;
    const QStringView text(node.text);
    for (int i = 0; i < text.size();) {
        const int length = characterLength(text, i);
        const QStringView character = text.mid(i, length);
        painter.drawPath(font.glyphPath(character, penX, baseline));
        penX += font.advance(character) + spacing;
        i += length;
    }
}

void paintStroke(QPainter& painter, const KTypoStrokePath& node, double x, double y)
{
    painter.setPen(QPen(QBrush(QColor(colourOr(node.strokeColor, kBlack))), node.penWidth, Qt::SolidLine,
                        Qt::RoundCap, Qt::SvgMiterJoin));
    painter.setBrush(Qt::NoBrush);
    if (!node.path.isEmpty()) {
        painter.drawPath(node.path.translated(x, y));
        return;
    }
    // An empty path is a horizontal rule through the middle of the box.
    const double ruleY = y + node.height * 0.5;
    if (!finite(node.width, x, ruleY))
        return;
    painter.drawLine(QPointF(x, ruleY), QPointF(x + node.width, ruleY));
}

// Relative comparison, so that factors like 1 + 1e-15 count as 1.
bool isOne(double value)
{
    return std::abs(value - 1.0) <= 1e-12 * std::max(1.0, std::abs(value));
}

void paintGrowGlyph(QPainter& painter, const KTypoGrowGlyph& node, double x, double y)
{
    if (node.text.isEmpty())
        return;
    const KGlyphFont& font = glyphFont(node.fontFamily, node.fontSize, node.italic == 1, node.bold == 1);
    const QString& colour = colourOr(node.growColor, colourOr(node.fillColor, kBlack));
    double scaleX = node.scaleX;
    double scaleY = node.scaleY;
    if (isOne(scaleX) && isOne(scaleY))
        scaleX = scaleY = node.scale;
    if (!std::isfinite(scaleX) || !std::isfinite(scaleY) || scaleX <= 0 || scaleY <= 0)
        scaleX = scaleY = 1.0;
    if (!finite(x, y, node.ascent))
        return;
    const QPainterPath path =
        QTransform().translate(x, y + node.ascent).scale(scaleX, scaleY).map(font.textPath(node.text));
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(colour));
    painter.drawPath(path);
}

} // namespace

QString KSvgBuilder::build(const KTypoNode* root) const
{
    if (!root)
        return {};
    const double width = root->width + 2 * kMargin;
    const double height = root->height + 2 * kMargin;
    QByteArray bytes;
    {
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QSvgGenerator generator;
        generator.setOutputDevice(&buffer);
        generator.setSize(QSize(roundHalfUp(width), roundHalfUp(height)));
        generator.setViewBox(QRectF(0, 0, width, height));
        generator.setTitle(QStringLiteral("Math Formula"));
        generator.setDescription(QStringLiteral("Generated by KSvgBuilder"));
        QPainter painter;
        if (!painter.begin(&generator))
            return {};
        painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing |
                               QPainter::SmoothPixmapTransform);
        painter.translate(kMargin, kMargin);
        paint(painter, *root, 0, 0);
        painter.end();
        buffer.close();
    }
    const int nul = bytes.indexOf('\0');
    if (nul >= 0)
        bytes.truncate(nul);
    return QString::fromUtf8(bytes);
}

void KSvgBuilder::paint(QPainter& painter, const KTypoNode& node, double parentX, double parentY) const
{
    if (node.kind < kTypoLine || node.kind > kTypoFill)
        return;
    const double x = parentX + node.x;
    const double y = parentY + node.y;
    switch (node.kind) {
    case kTypoGlyph:
        paintGlyph(painter, node, x, y);
        return;
    case kTypoStroke:
        if (const auto* stroke = dynamic_cast<const KTypoStrokePath*>(&node))
            paintStroke(painter, *stroke, x, y);
        return;
    case kTypoGrow:
        if (const auto* grow = dynamic_cast<const KTypoGrowGlyph*>(&node))
            paintGrowGlyph(painter, *grow, x, y);
        return;
    default:
        for (const KTypoNodePtr& child : node.children) {
            if (child)
                paint(painter, *child, x, y);
        }
    }
}
