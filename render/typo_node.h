#pragma once
// The typeset tree: positioned boxes that each draw one thing. The layout engine
// builds it, the SVG builder paints it. Lengths are points, y grows downward; a
// node's (x, y) is its top-left corner inside its parent, its baseline lies
// `ascent` below its top, and `top`/`bottom` are its extents around that baseline.

#include <QPainterPath>
#include <QString>

#include <memory>
#include <vector>

struct KTypoNode;
using KTypoNodePtr = std::unique_ptr<KTypoNode>;

// The painted kinds; 5 and 6 are reserved classes that paint like containers.
enum KTypoKind : int {
    kTypoLine = 1,
    kTypoGlyph = 2,
    kTypoStroke = 3,
    kTypoGrow = 4,
    kTypoBlock = 5,
    kTypoFill = 6
};

struct KTypoNode {
    virtual ~KTypoNode() = default;
    virtual void moveBy(double dx, double dy)
    {
        x += dx;
        y += dy;
    }
    // Takes ownership; an empty pointer is ignored.
    virtual void addChild(KTypoNodePtr child)
    {
        if (!child)
            return;
        child->parent = this;
        children.push_back(std::move(child));
    }

    KTypoNode* parent = nullptr;
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    double ascent = 0;
    double top = 0;
    double bottom = 0;
    double fontSize = 0;
    double penWidth = 1.0;
    std::vector<KTypoNodePtr> children;
    QString fontFamily;
    QString fillColor;   // text glyphs; empty means black
    QString strokeColor; // strokes; empty means black
    QString growColor;   // stretchy glyphs
    QString text;
    int kind = 0;
    int italic = 0;
    int bold = 0;

protected:
    explicit KTypoNode(int nodeKind) : kind(nodeKind) {}
};

// A container: a horizontal list, or any group of positioned children.
struct KTypoLine : KTypoNode {
    KTypoLine() : KTypoNode(kTypoLine) {}
};

// A run of text, painted character by character; or, with a math font glyph set
// (mathFace not negative), that one glyph of the math font scaled to fontSize.
struct KTypoGlyph : KTypoNode {
    KTypoGlyph() : KTypoNode(kTypoGlyph) {}
    int mathFace = -1;
    unsigned glyphIndex = 0;
    double italicCorrection = 0; // points
};

// A stroked outline; with an empty path, a horizontal rule through the middle of the box.
struct KTypoStrokePath : KTypoNode {
    KTypoStrokePath() : KTypoNode(kTypoStroke) {}
    QPainterPath path;
};

// A glyph stretched to a size: the font glyph scaled, uniformly or one way.
struct KTypoGrowGlyph : KTypoNode {
    KTypoGrowGlyph() : KTypoNode(kTypoGrow) {}
    double scale = 1.0;
    double scaleX = 1.0;
    double scaleY = 1.0;
};

// Reserved kinds: never created by the layout, painted like containers.
struct KTypoBlock : KTypoNode {
    KTypoBlock() : KTypoNode(kTypoBlock) {}
};
struct KTypoFillPath : KTypoNode {
    KTypoFillPath() : KTypoNode(kTypoFill) {}
};
