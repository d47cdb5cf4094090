#pragma once
// Property records and value parsers of the OMML reader, shared by the element
// walk. Every reader starts from the model's defaults and ignores children it
// does not know.

#include "omml/omml_model.h"

#include "omml/xml_element_tree.h"

#include <cstring>

namespace ommlread {

// Compared inline: most comparisons fail on the length alone.
inline bool is(QStringView tag, const char* name)
{
    const size_t size = std::strlen(name);
    if (size_t(tag.size()) != size)
        return false;
    for (size_t i = 0; i < size; ++i) {
        if (tag[qsizetype(i)].unicode() != static_cast<unsigned char>(name[i]))
            return false;
    }
    return true;
}

// m:jc of a paragraph's properties: "left", "right", "center", anything else centerGroup.
OJustification justificationValue(const KXmlElement& element);

// m:rPr, w:rPr and m:ctrlPr, each from its defaults.
OMathRunProperties readMathRunProperties(const KXmlElement& element);
OWordRunProperties readWordRunProperties(const KXmlElement& element);
OControlProperties readControlProperties(const KXmlElement& element);

// Properties elements that hold nothing but m:ctrlPr.
template <class Kind> void controlOnlyProperties(Kind& kind, const KXmlElement& properties)
{
    properties.forEachChild([&](const KXmlElement& child, QStringView tag) {
        if (is(tag, "m:ctrlPr"))
            kind.ctrlPr = readControlProperties(child);
    });
}

// Property readers: each fills a freshly defaulted record from the children of
// one properties element (m:fPr, m:naryPr, ...); unknown children are ignored.
void fractionProperties(OFraction& f, const KXmlElement& properties);
void radicalProperties(ORadical& r, const KXmlElement& properties);
void naryProperties(ONaryOperator& n, const KXmlElement& properties);
void delimiterProperties(ODelimiter& d, const KXmlElement& properties);
void accentProperties(OAccent& a, const KXmlElement& properties);
void barProperties(OBar& b, const KXmlElement& properties);
void borderBoxProperties(OBorderBox& b, const KXmlElement& properties);
void groupCharProperties(OGroupChar& g, const KXmlElement& properties);
void boxProperties(OBox& b, const KXmlElement& properties);
void phantomProperties(OPhantom& p, const KXmlElement& properties);
void matrixProperties(OMatrix& m, const KXmlElement& properties);

} // namespace ommlread
