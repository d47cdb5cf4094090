// Paints a finished OMML subtree in one colour: every run gets the colour in its
// word run properties, and every structure that carries control properties gets
// it there too, so that the fences, bars and strokes of the structure match the
// text inside it.
#include "latex2omml/handlers.h"

namespace {

// A converted formula is never this deep; the limit only keeps a hostile tree
// from exhausting the stack. Deeper nodes keep their colour.
constexpr int kColourDepthLimit = 1024;

class KColourPainter {
public:
    explicit KColourPainter(const QString& name) : m_name(name) { m_colour.setNamedColor(name); }

    void visit(KOmmlNode& node)
    {
        if (m_depth >= kColourDepthLimit)
            return;
        ++m_depth;
        std::visit([this](auto& alternative) { paint(alternative); }, node.value);
        --m_depth;
    }

private:
    // Replaces any earlier colour; a name that does not parse gives an invalid colour.
    void setColour(std::optional<QColor>& colour) const { colour = m_colour; }
    void setColour(OControlProperties& ctrlPr) const { setColour(ctrlPr.wordProps.color); }

    // Children are painted only for a non-empty name.
    void children(KOmmlNodeList& list)
    {
        if (m_name.isEmpty())
            return;
        for (auto& child : list)
            if (child)
                visit(*child);
    }
    void child(KOmmlNodePtr& node)
    {
        if (!m_name.isEmpty() && node)
            visit(*node);
    }

    void paint(OMathParagraph& p) { child(p.equation); }
    void paint(OMathEquation& e) { children(e.children); }
    void paint(ORun& r) { setColour(r.wordProps.color); }
    void paint(OFraction& f)
    {
        setColour(f.ctrlPr);
        children(f.num);
        children(f.den);
    }
    void paint(OSuperscript& s)
    {
        children(s.e);
        children(s.sup);
    }
    void paint(OSubscript& s)
    {
        children(s.e);
        children(s.sub);
    }
    void paint(OSubSuperscript& s)
    {
        children(s.e);
        children(s.sub);
        children(s.sup);
    }
    void paint(ORadical& r)
    {
        setColour(r.ctrlPr);
        if (r.deg)
            children(*r.deg);
        children(r.e);
    }
    void paint(ONaryOperator& n)
    {
        setColour(n.ctrlPr);
        children(n.sub);
        children(n.sup);
        children(n.e);
    }
    void paint(OLimitLower& l)
    {
        children(l.e);
        children(l.lim);
    }
    void paint(OLimitUpper& l)
    {
        children(l.e);
        children(l.lim);
    }
    void paint(OFunction& f)
    {
        setColour(f.ctrlPr);
        children(f.fName);
        children(f.e);
    }
    void paint(ODelimiter& d)
    {
        setColour(d.ctrlPr);
        children(d.e);
        for (KOmmlNodeList& element : d.separated)
            children(element);
    }
    void paint(OAccent& a)
    {
        setColour(a.ctrlPr);
        children(a.e);
    }
    // A bar has no control properties of its own.
    void paint(OBar& b) { children(b.e); }
    void paint(OBorderBox& b)
    {
        setColour(b.ctrlPr);
        children(b.e);
    }
    void paint(OGroupChar& g)
    {
        setColour(g.ctrlPr);
        children(g.e);
    }
    void paint(OMatrix& m)
    {
        setColour(m.ctrlPr);
        for (auto& row : m.rows)
            for (auto& cell : row)
                children(cell);
    }
    void paint(OBox& b)
    {
        setColour(b.ctrlPr);
        children(b.e);
    }
    void paint(OEquationArray& a)
    {
        for (auto& row : a.rows)
            children(row);
    }
    void paint(OPhantom& p) { children(p.e); }
    void paint(OPreSubSuperscript& s)
    {
        children(s.e);
        children(s.sub);
        children(s.sup);
    }

    const QString& m_name;
    QColor m_colour;
    int m_depth = 0;
};

} // namespace

void applyColour(KOmmlNode& node, const QString& colourName)
{
    KColourPainter(colourName).visit(node);
}
