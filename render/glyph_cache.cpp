#include "render/glyph_cache.h"

#include <QPointF>

#include <memory>
#include <tuple>
#include <unordered_map>

namespace {

constexpr int kBoldWeight = 75;

struct FontKey {
    QString family;
    double pointSize;
    bool italic;
    bool bold;
    bool operator==(const FontKey& other) const
    {
        return std::tie(family, pointSize, italic, bold) ==
               std::tie(other.family, other.pointSize, other.italic, other.bold);
    }
};

struct FontKeyHash {
    size_t operator()(const FontKey& key) const
    {
        return qHash(key.family) ^ (std::hash<double>()(key.pointSize) * 31) ^ (key.italic ? 0x9e37 : 0) ^
               (key.bold ? 0x79b9 : 0);
    }
};

} // namespace

KGlyphFont::KGlyphFont(const QFont& font) : m_font(font), m_metrics(font)
{
}

double KGlyphFont::advance(QChar c) const
{
    const auto found = m_advances.constFind(c.unicode());
    if (found != m_advances.constEnd())
        return *found;
    const double value = m_metrics.horizontalAdvance(c);
    m_advances.insert(c.unicode(), value);
    return value;
}

namespace {

// Qt places glyph outlines at positions held in 26.6 fixed point, cut toward zero.
double fixedPoint(double value)
{
    return static_cast<int>(value * 64.0) / 64.0;
}

} // namespace

QPainterPath KGlyphFont::glyphPath(QChar c, double x, double y) const
{
    auto found = m_paths.constFind(c.unicode());
    if (found == m_paths.constEnd()) {
        QPainterPath origin;
        origin.addText(QPointF(0, 0), m_font, QString(c));
        found = m_paths.insert(c.unicode(), origin);
    }
    return found->translated(fixedPoint(x), fixedPoint(y));
}

QPainterPath KGlyphFont::textPath(const QString& text) const
{
    QPainterPath path;
    path.addText(QPointF(0, 0), m_font, text);
    return path;
}

const KGlyphFont& glyphFont(const QString& family, double pointSize, bool italic, bool bold)
{
    thread_local std::unordered_map<FontKey, std::unique_ptr<KGlyphFont>, FontKeyHash> fonts;
    FontKey key{family, pointSize, italic, bold};
    auto found = fonts.find(key);
    if (found != fonts.end())
        return *found->second;
    QFont font(family);
    if (pointSize > 0)
        font.setPointSizeF(pointSize);
    font.setItalic(italic);
    if (bold)
        font.setWeight(kBoldWeight);
    auto entry = std::make_unique<KGlyphFont>(font);
    const KGlyphFont& result = *entry;
    fonts.emplace(std::move(key), std::move(entry));
    return result;
}
