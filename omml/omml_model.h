#pragma once
// The in-memory Office Math model: one node kind per OMML element, held in a
// tagged union. Producers (the XML reader, the LaTeX converter) build it
// bottom-up; consumers (the XML writer, the LaTeX converter, the renderer) visit it.

#include <QColor>
#include <QString>

#include <cstdint>
#include <memory>
#include <optional>
#include <variant>
#include <vector>

struct KOmmlNode;
using KOmmlNodePtr = std::unique_ptr<KOmmlNode>;
// Ordered children; null entries are legal and every consumer skips them.
using KOmmlNodeList = std::vector<KOmmlNodePtr>;

enum class OJustification : int32_t { centerGroup = 0, left = 1, right = 2, center = 3 };
enum class OScript : int32_t {
    roman = 0,
    script = 1,
    fraktur = 2,
    doubleStruck = 3,
    sansSerif = 4,
    monospace = 5
};
enum class OStyle : int32_t { plain = 0, bold = 1, italic = 2, boldItalic = 3 };
enum class OFractionType : int32_t { bar = 0, noBar = 1, linear = 2, skewed = 3 };
enum class OLimitLocation : int32_t { subSup = 0, undOvr = 1 };
enum class OPosition : int32_t { top = 0, bottom = 1 };
enum class OVerticalJustification : int32_t { bottom = 0, top = 1, center = 2 };
enum class OColumnJustification : int32_t { left = 0, center = 1, right = 2 };
enum class OFontHint : int32_t { defaultHint = 0 };

inline const QString kDefaultMathFont = QStringLiteral("Cambria Math");

// m:rPr
struct OMathRunProperties {
    OScript script = OScript::roman;
    std::optional<OStyle> style;
    // m:nor: normal text (words inside a formula), set upright in the text font; such a run
    // carries no script or style.
    bool normalText = false;
};

// w:rPr
struct OWordRunProperties {
    QString asciiFont = kDefaultMathFont;
    QString hAnsiFont = kDefaultMathFont;
    OFontHint hint = OFontHint::defaultHint;
    bool italic = false;
    bool bold = false;
    std::optional<QColor> color;
};

// m:ctrlPr
struct OControlProperties {
    std::optional<OMathRunProperties> mathProps;
    OWordRunProperties wordProps;
};

struct OMathParagraph {
    KOmmlNodePtr equation;
    OJustification justification = OJustification::centerGroup;
};

struct OMathEquation {
    KOmmlNodeList children;
};

struct ORun {
    QString text;
    OMathRunProperties mathProps;
    OWordRunProperties wordProps;
};

struct OFraction {
    KOmmlNodeList num;
    KOmmlNodeList den;
    OControlProperties ctrlPr;
    OFractionType type = OFractionType::bar;
};

struct OSuperscript {
    KOmmlNodeList e;
    KOmmlNodeList sup;
    OControlProperties ctrlPr;
};

struct OSubscript {
    KOmmlNodeList e;
    KOmmlNodeList sub;
    OControlProperties ctrlPr;
};

struct OSubSuperscript {
    KOmmlNodeList e;
    KOmmlNodeList sub;
    KOmmlNodeList sup;
    OControlProperties ctrlPr;
};

struct ORadical {
    KOmmlNodeList e;
    // Absent and present-but-empty are different states.
    std::optional<KOmmlNodeList> deg;
    OControlProperties ctrlPr;
    bool degHide = false;
};

struct ONaryOperator {
    KOmmlNodeList e;
    KOmmlNodeList sub;
    KOmmlNodeList sup;
    OControlProperties ctrlPr;
    QString chr = QStringLiteral("\u222B");
    OLimitLocation limLoc = OLimitLocation::subSup;
    bool subHide = false;
    bool supHide = false;
};

struct OLimitLower {
    KOmmlNodeList e;
    KOmmlNodeList lim;
    OControlProperties ctrlPr;
};

struct OLimitUpper {
    KOmmlNodeList e;
    KOmmlNodeList lim;
    OControlProperties ctrlPr;
};

struct OFunction {
    KOmmlNodeList fName;
    KOmmlNodeList e;
    OControlProperties ctrlPr;
};

struct ODelimiter {
    KOmmlNodeList e; // the first (often the only) element
    // An empty string means no fence on that side.
    QString begChr = QStringLiteral("(");
    QString endChr = QStringLiteral(")");
    OControlProperties ctrlPr;
    // The elements after the first, each set off from the one before by sepChr:
    // (a, b) is "(" a "," b ")". An empty sepChr separates without a sign.
    std::vector<KOmmlNodeList> separated;
    QString sepChr = QStringLiteral("|");
};

struct OAccent {
    KOmmlNodeList e;
    OControlProperties ctrlPr;
    QString chr = QStringLiteral("\u0302");
};

struct OBar {
    KOmmlNodeList e;
    OPosition pos = OPosition::top;
};

struct OBorderBox {
    KOmmlNodeList e;
    OControlProperties ctrlPr;
    bool hideTop = false;
    bool hideBot = false;
    bool hideLeft = false;
    bool hideRight = false;
    bool strikeH = false;
    bool strikeV = false;
    bool strikeBLTR = false;
    bool strikeTLBR = false;
};

struct OGroupChar {
    KOmmlNodeList e;
    OControlProperties ctrlPr;
    QString chr = QStringLiteral("\u23DF");
    OPosition pos = OPosition::bottom;
    OVerticalJustification vertJc = OVerticalJustification::top;
};

struct OMatrixColumn {
    QString count; // m:count as written; empty when not given
    OColumnJustification justification = OColumnJustification::center;
};

using OMatrixRow = std::vector<KOmmlNodeList>; // one node list per cell

struct OMatrix {
    std::vector<OMatrixRow> rows;
    std::vector<OMatrixColumn> columns;
    QString cGp;
    QString cGpRule;
    bool plcHide = false;
    OControlProperties ctrlPr;
};

struct OBox {
    KOmmlNodeList e;
    OControlProperties ctrlPr;
    bool noBreak = true;
};

struct OEquationArray {
    std::vector<KOmmlNodeList> rows; // one per m:e
    OControlProperties ctrlPr;
};

struct OPhantom {
    KOmmlNodeList e;
    OControlProperties ctrlPr;
    // A phantom shows its content unless show is off; the zero flags take away
    // its width, its height above the baseline and its depth below it. A
    // transparent phantom spaces its neighbours as its content would.
    bool show = true;
    bool zeroWid = false;
    bool zeroAsc = false;
    bool zeroDesc = false;
    bool transp = false;
};

struct OPreSubSuperscript {
    KOmmlNodeList e;
    KOmmlNodeList sub;
    KOmmlNodeList sup;
    OControlProperties ctrlPr;
};

// The index order is part of the model: visitors dispatch on it.
using KOmmlVariant =
    std::variant<OMathParagraph, OMathEquation, ORun, OFraction, OSuperscript, OSubscript, OSubSuperscript,
                 ORadical, ONaryOperator, OLimitLower, OLimitUpper, OFunction, ODelimiter, OAccent, OBar,
                 OBorderBox, OGroupChar, OMatrix, OBox, OEquationArray, OPhantom, OPreSubSuperscript>;

struct KOmmlNode {
    KOmmlVariant value;
};

// Wraps one alternative into a freshly allocated node.
template <class Alternative> KOmmlNodePtr makeOmmlNode(Alternative&& alternative)
{
    return std::make_unique<KOmmlNode>(KOmmlNode{KOmmlVariant(std::forward<Alternative>(alternative))});
}

// Builds a node list from nodes given by value (handy for converters and tests).
template <class... Nodes> KOmmlNodeList makeOmmlList(Nodes&&... nodes)
{
    KOmmlNodeList list;
    list.reserve(sizeof...(nodes));
    (list.push_back(std::forward<Nodes>(nodes)), ...);
    return list;
}

// Returns the alternative of the requested kind, or null for a null node or another kind.
template <class Alternative> Alternative* ommlAs(KOmmlNode* node)
{
    return node ? std::get_if<Alternative>(&node->value) : nullptr;
}
template <class Alternative> const Alternative* ommlAs(const KOmmlNode* node)
{
    return node ? std::get_if<Alternative>(&node->value) : nullptr;
}
