#pragma once
// Property records and value parsers of the OMML reader, shared by the element
// walk. Every reader starts from the model's defaults and ignores children it
// does not know.

#include "omml/omml_model.h"

#include <QDomElement>

namespace ommlread {

// Calls visit(child, tag) for each element child in document order; text,
// comments and processing instructions are skipped.
template <class Visit> void forEachChildElement(const QDomElement& parent, Visit&& visit)
{
    for (QDomNode node = parent.firstChild(); !node.isNull(); node = node.nextSibling()) {
        if (!node.isElement())
            continue;
        const QDomElement child = node.toElement();
        visit(child, child.tagName());
    }
}

inline bool is(const QString& tag, const char* name)
{
    return tag == QLatin1String(name);
}

// m:jc of a paragraph's properties: "left", "right", "center", anything else centerGroup.
OJustification justificationValue(const QDomElement& element);

// m:rPr, w:rPr and m:ctrlPr, each from its defaults.
OMathRunProperties readMathRunProperties(const QDomElement& element);
OWordRunProperties readWordRunProperties(const QDomElement& element);
OControlProperties readControlProperties(const QDomElement& element);

// Properties elements that hold nothing but m:ctrlPr.
template <class Kind> void controlOnlyProperties(Kind& kind, const QDomElement& properties)
{
    forEachChildElement(properties, [&](const QDomElement& child, const QString& tag) {
        if (is(tag, "m:ctrlPr"))
            kind.ctrlPr = readControlProperties(child);
    });
}

// Property readers: each fills a freshly defaulted record from the children of
// one properties element (m:fPr, m:naryPr, ...); unknown children are ignored.
void fractionProperties(OFraction& f, const QDomElement& properties);
void radicalProperties(ORadical& r, const QDomElement& properties);
void naryProperties(ONaryOperator& n, const QDomElement& properties);
void delimiterProperties(ODelimiter& d, const QDomElement& properties);
void accentProperties(OAccent& a, const QDomElement& properties);
void barProperties(OBar& b, const QDomElement& properties);
void borderBoxProperties(OBorderBox& b, const QDomElement& properties);
void groupCharProperties(OGroupChar& g, const QDomElement& properties);
void boxProperties(OBox& b, const QDomElement& properties);
void matrixProperties(OMatrix& m, const QDomElement& properties);

} // namespace ommlread
