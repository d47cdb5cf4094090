// The render entry: guards, the main-line context, the layout and the SVG builder.

#include "render/render.h"

#include "render/layout_engine.h"
#include "render/svg_builder.h"

#include <QCoreApplication>
#include <QGuiApplication>

#include <cmath>

namespace {

// Fonts need a running QGuiApplication; without one Qt would abort the process.
bool guiApplicationRuns()
{
    return qobject_cast<QGuiApplication*>(QCoreApplication::instance()) != nullptr;
}

} // namespace

KTypoNodePtr layoutEquation(const KOmmlNode* equation, double fontSize)
{
    if (!std::isfinite(fontSize) || fontSize <= 0 || fontSize > kMaxFontSize)
        return nullptr;
    const auto* root = ommlAs<OMathEquation>(equation);
    if (!root || !guiApplicationRuns())
        return nullptr;
    return layoutList(makeLayoutContext(fontSize), root->children);
}

QString renderEquation(const KOmmlNode* equation, double fontSize)
{
    const KTypoNodePtr root = layoutEquation(equation, fontSize);
    if (!root)
        return {};
    return KSvgBuilder().build(root.get());
}
