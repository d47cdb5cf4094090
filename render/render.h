#pragma once
// The renderer's entry points: an OMML equation in, a typeset tree or an SVG document out.

#include "omml/omml_model.h"
#include "render/typo_node.h"

#include <QString>

// Sizes outside (0, kMaxFontSize] and non-finite sizes render nothing.
inline constexpr double kMaxFontSize = 4096.0;

// Lays out an OMathEquation at `fontSize` points. Null when the node is missing
// or not an equation, when the size is unusable, or when no QGuiApplication runs.
KTypoNodePtr layoutEquation(const KOmmlNode* equation, double fontSize);

// layoutEquation, then the SVG builder; empty whenever the layout gives nothing.
QString renderEquation(const KOmmlNode* equation, double fontSize);
