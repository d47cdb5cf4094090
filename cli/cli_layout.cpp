#include "cli/cli_layout.h"

#include "latex/latex_dump.h"
#include "latex/latex_parser.h"
#include "latex2omml/ast2omml.h"
#include "omml/omml_reader.h"
#include "render/render.h"

#include <QTransform>

#include <cmath>

namespace {

// The shortest text that reads back as the same double; JSON has no infinities or NaN.
QString number(double value)
{
    if (!std::isfinite(value))
        return QStringLiteral("null");
    if (value == 0)
        return QStringLiteral("0");
    return QString::number(value, 'g', QLocale::FloatingPointShortest);
}

QString kindName(int kind)
{
    switch (kind) {
    case kTypoGlyph:
        return QStringLiteral("glyph");
    case kTypoStroke:
        return QStringLiteral("stroke");
    case kTypoGrow:
        return QStringLiteral("grow");
    default:
        // Containers, and the reserved kinds that paint like them.
        return QStringLiteral("line");
    }
}

// SVG path data: M and L for points, C for cubic segments (quadratic curves are
// already cubics inside QPainterPath).
QString svgPathData(const QPainterPath& path)
{
    QStringList parts;
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element e = path.elementAt(i);
        switch (e.type) {
        case QPainterPath::MoveToElement:
            parts << QStringLiteral("M") + number(e.x) << number(e.y);
            break;
        case QPainterPath::LineToElement:
            parts << QStringLiteral("L") + number(e.x) << number(e.y);
            break;
        case QPainterPath::CurveToElement:
            parts << QStringLiteral("C") + number(e.x) << number(e.y);
            break;
        case QPainterPath::CurveToDataElement:
            parts << number(e.x) << number(e.y);
            break;
        }
    }
    return parts.join(QLatin1Char(' '));
}

class JsonWriter {
public:
    explicit JsonWriter(bool pretty) : m_pretty(pretty) {}

    void node(const KTypoNode& n, int level)
    {
        m_text += QLatin1Char('{');
        m_first = true;
        field(level, QStringLiteral("kind"), jsonQuote(kindName(n.kind)));
        field(level, QStringLiteral("x"), number(n.x));
        field(level, QStringLiteral("y"), number(n.y));
        field(level, QStringLiteral("width"), number(n.width));
        field(level, QStringLiteral("height"), number(n.height));
        field(level, QStringLiteral("ascent"), number(n.ascent));
        field(level, QStringLiteral("fontSize"), number(n.fontSize));
        field(level, QStringLiteral("penWidth"), number(n.penWidth));
        const bool drawsText = n.kind == kTypoGlyph || n.kind == kTypoGrow;
        if (drawsText)
            field(level, QStringLiteral("text"), jsonQuote(n.text));
        if (!n.fillColor.isEmpty())
            field(level, QStringLiteral("fill"), jsonQuote(n.fillColor));
        if (!n.strokeColor.isEmpty())
            field(level, QStringLiteral("stroke"), jsonQuote(n.strokeColor));
        if (!n.growColor.isEmpty())
            field(level, QStringLiteral("grow"), jsonQuote(n.growColor));
        if (drawsText) {
            field(level, QStringLiteral("italic"), QString::number(n.italic));
            field(level, QStringLiteral("bold"), QString::number(n.bold));
        }
        if (n.kind == kTypoStroke) {
            const auto& stroke = static_cast<const KTypoStrokePath&>(n);
            if (!stroke.path.isEmpty())
                field(level, QStringLiteral("path"), jsonQuote(svgPathData(stroke.path)));
        }
        if (n.kind == kTypoGrow) {
            const auto& grow = static_cast<const KTypoGrowGlyph&>(n);
            field(level, QStringLiteral("scale"), number(grow.scale));
            // A one-way stretch (a widened accent) shows only in these.
            if (grow.scaleX != 1.0)
                field(level, QStringLiteral("scaleX"), number(grow.scaleX));
            if (grow.scaleY != 1.0)
                field(level, QStringLiteral("scaleY"), number(grow.scaleY));
        }
        if (!n.children.empty()) {
            key(level, QStringLiteral("children"));
            m_text += QLatin1Char('[');
            bool firstChild = true;
            for (const KTypoNodePtr& child : n.children) {
                if (!child)
                    continue;
                if (!firstChild)
                    m_text += QLatin1Char(',');
                firstChild = false;
                newline(level + 2);
                node(*child, level + 2);
            }
            newline(level + 1);
            m_text += QLatin1Char(']');
            m_first = false;
        }
        newline(level);
        m_text += QLatin1Char('}');
    }

    QString text() const { return m_text; }

private:
    void newline(int level)
    {
        if (m_pretty)
            m_text += QLatin1Char('\n') + QString(2 * level, QLatin1Char(' '));
    }
    void key(int level, const QString& name)
    {
        if (!m_first)
            m_text += QLatin1Char(',');
        m_first = false;
        newline(level + 1);
        m_text += jsonQuote(name) + (m_pretty ? QStringLiteral(": ") : QStringLiteral(":"));
    }
    void field(int level, const QString& name, const QString& value)
    {
        key(level, name);
        m_text += value;
    }

    QString m_text;
    bool m_pretty = false;
    bool m_first = true;
};

KTypoNodePtr layoutLatex(const QString& latex, double size)
{
    // The same front half as LaTeX to SVG: render mode, so unknown commands show.
    LatexDiagnostics diagnostics;
    const KLatexNodePtr tree = parseLatex(latex, diagnostics, KLatexParser::kItemLimit);
    if (!tree || !latexAs<KLatexGroup>(tree.get()))
        return nullptr;
    KLatexAst2Omml converter;
    converter.prepare(true);
    const KOmmlNodePtr equation = makeOmmlNode(OMathEquation{converter.convert(*tree)});
    return layoutEquation(equation.get(), size);
}

KTypoNodePtr layoutOmml(const QString& omml, double size)
{
    const KOmmlNodePtr root = readOmmlDocument(omml);
    const auto* paragraph = ommlAs<OMathParagraph>(root.get());
    if (!paragraph)
        return nullptr;
    return layoutEquation(paragraph->equation.get(), size);
}

} // namespace

QString typoTreeJson(const KTypoNode& root, bool pretty)
{
    JsonWriter writer(pretty);
    writer.node(root, 0);
    return writer.text();
}

int runLayout(const QString& input, bool omml, double size, bool pretty, QTextStream& out, QTextStream& err)
{
    if (input.isEmpty()) {
        err << "formulaconv: layout: empty input\n";
        return 1;
    }
    const KTypoNodePtr root = omml ? layoutOmml(input, size) : layoutLatex(input, size);
    if (!root) {
        err << "formulaconv: layout: "
            << (omml ? "the input is not a readable m:oMathPara document" : "the input produced no result")
            << "\n";
        return 1;
    }
    out << typoTreeJson(*root, pretty) << "\n";
    out.flush();
    return 0;
}
