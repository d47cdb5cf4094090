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

int characterLength(QStringView text, int index)
{
    if (index + 1 < text.size() && text[index].isHighSurrogate() && text[index + 1].isLowSurrogate())
        return 2;
    return 1;
}

int characterCount(QStringView text)
{
    int count = 0;
    for (int i = 0; i < text.size(); i += characterLength(text, i))
        ++count;
    return count;
}

namespace {

char32_t codePointOf(QStringView character)
{
    if (character.size() == 2)
        return QChar::surrogateToUcs4(character[0], character[1]);
    return character.isEmpty() ? 0 : character[0].unicode();
}

} // namespace

double KGlyphFont::advance(QStringView character) const
{
    const char32_t key = codePointOf(character);
    const auto found = m_advances.constFind(key);
    if (found != m_advances.constEnd())
        return *found;
    // A single unit goes through the one-character measure, a pair through the text measure.
    const double value = character.size() == 1 ? m_metrics.horizontalAdvance(character[0])
                                               : m_metrics.horizontalAdvance(character.toString());
    m_advances.insert(key, value);
    return value;
}

namespace {

// Qt places glyph outlines at positions held in 26.6 fixed point, cut toward zero.
double fixedPoint(double value)
{
    return static_cast<int>(value * 64.0) / 64.0;
}

} // namespace

QPainterPath KGlyphFont::glyphPath(QStringView character, double x, double y) const
{
    const char32_t key = codePointOf(character);
    auto found = m_paths.constFind(key);
    if (found == m_paths.constEnd()) {
        QPainterPath origin;
        origin.addText(QPointF(0, 0), m_font, character.toString());
        found = m_paths.insert(key, origin);
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
