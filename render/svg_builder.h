#pragma once
// Paints a typeset tree into a standalone SVG document.

#include "render/typo_node.h"

#include <QString>

class QPainter;

class KSvgBuilder {
public:
    // The SVG text, with a 2 pt margin around the root; empty for a null root
    // or when painting cannot begin.
    QString build(const KTypoNode* root) const;
    // The recursive walk: paints `node` whose parent's top-left is at (parentX, parentY).
    void paint(QPainter& painter, const KTypoNode& node, double parentX, double parentY) const;
};
