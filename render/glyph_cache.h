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

class KGlyphFont {
public:
    explicit KGlyphFont(const QFont& font);

    const QFont& font() const { return m_font; }
    const QFontMetricsF& metrics() const { return m_metrics; }
    // The horizontal advance of one UTF-16 unit.
    double advance(QChar c) const;
    // One UTF-16 unit as an outline with its baseline origin at (x, y).
    QPainterPath glyphPath(QChar c, double x, double y) const;
    // A whole text as an outline with its baseline origin at (0, 0).
    QPainterPath textPath(const QString& text) const;

private:
    QFont m_font;
    QFontMetricsF m_metrics;
    mutable QHash<char16_t, double> m_advances;
    mutable QHash<char16_t, QPainterPath> m_paths;
};

// The font of family `family` at `pointSize` points (unset when not positive),
// italic and weight 75 as asked; cached per thread, valid for the thread's life.
const KGlyphFont& glyphFont(const QString& family, double pointSize, bool italic, bool bold);
