#pragma once
// Fonts as the renderer uses them, with what is identical from call to call kept
// per thread: the resolved font and its metrics per family, size and style, and
// the outline and advance of each character drawn in it. Each thread has its own
// cache, so no lock is taken and Qt's font objects never cross threads.

#include <QChar>
#include <QFont>
#include <QFontMetricsF>
#include <QHash>
#include <QPainterPath>
#include <QString>
#include <QStringView>

class KGlyphFont {
public:
    explicit KGlyphFont(const QFont& font);

    const QFont& font() const { return m_font; }
    const QFontMetricsF& metrics() const { return m_metrics; }
    // The horizontal advance of one character: a single UTF-16 unit, or a surrogate
    // pair (a character outside the Basic Multilingual Plane) taken together.
    double advance(QStringView character) const;
    // One character, as for advance, as an outline with its baseline origin at (x, y).
    QPainterPath glyphPath(QStringView character, double x, double y) const;
    // A whole text as an outline with its baseline origin at (0, 0).
    QPainterPath textPath(const QString& text) const;

private:
    QFont m_font;
    QFontMetricsF m_metrics;
    // Keyed by code point; a lone surrogate keys as its own unit, which no pair decodes to.
    mutable QHash<char32_t, double> m_advances;
    mutable QHash<char32_t, QPainterPath> m_paths;
};

// The number of UTF-16 units of the character starting at `index`: 2 for a high
// surrogate followed by a low one, else 1 (a lone surrogate counts as a character).
int characterLength(QStringView text, int index);
// The number of characters of `text` in that sense.
int characterCount(QStringView text);

// The font of family `family` at `pointSize` points (unset when not positive),
// italic and weight 75 as asked; cached per thread, valid for the thread's life.
const KGlyphFont& glyphFont(const QString& family, double pointSize, bool italic, bool bold);
