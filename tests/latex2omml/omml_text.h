#pragma once
// Shared by the converter tests: expected OMML text written element by element,
// syntax trees for the cases LaTeX text cannot reach, and the conversion of
// LaTeX text or a tree into OMML text.

#include "latex/latex_parser.h"
#include "latex2omml/ast2omml.h"
#include "omml/omml_writer.h"

#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

#include <ostream>
#include <utility>
#include <vector>

// Readable failure messages for QString comparisons.
inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << text.toStdString();
}

namespace omml_text {

inline const QString kFonts =
    QStringLiteral("<w:rFonts w:ascii=\"Cambria Math\" w:hAnsi=\"Cambria Math\" w:hint=\"default\"/>");

// How a run or a control-properties element looks. `math`: whether the math run
// properties are written (for runs; control properties hold the word run properties only).
struct Look {
    QString scr = QStringLiteral("roman");
    QString sty;
    bool italic = false;
    bool bold = false;
    QString colour;
    bool math = true;
    bool nor = false; // normal text: m:nor in place of the script and style
};

inline Look sty(const char* style, bool italic = false, bool bold = false)
{
    Look look;
    look.sty = QString::fromUtf8(style);
    look.italic = italic;
    look.bold = bold;
    return look;
}

// Normal text, as the text fonts write it.
inline Look nor(bool italic = false, bool bold = false)
{
    Look look;
    look.nor = true;
    look.italic = italic;
    look.bold = bold;
    return look;
}

inline Look scr(const char* script)
{
    Look look;
    look.scr = QString::fromUtf8(script);
    return look;
}

inline Look colour(const char* hex, Look look = Look())
{
    look.colour = QString::fromUtf8(hex);
    return look;
}

// An element with content; the stream writer closes an element without content at once.
inline QString wrap(const QString& element, const QString& content)
{
    if (content.isEmpty())
        return "<" + element + "/>";
    return "<" + element + ">" + content + "</" + element + ">";
}

inline QString val(const QString& element, const QString& value)
{
    return "<" + element + " m:val=\"" + value + "\"/>";
}

inline QString properties(const Look& look)
{
    const QString scriptAndStyle =
        look.nor ? QStringLiteral("<m:nor/>")
                 : val("m:scr", look.scr) + (look.sty.isEmpty() ? QString() : val("m:sty", look.sty));
    const QString math = look.math ? wrap("m:rPr", scriptAndStyle) : QString();
    QString word = kFonts;
    if (look.italic)
        word += QStringLiteral("<w:i/>");
    if (look.bold)
        word += QStringLiteral("<w:b/>");
    if (!look.colour.isEmpty())
        word += "<w:color w:val=\"" + look.colour + "\"/>";
    return math + wrap("w:rPr", word);
}

// Run text; white space at either end is marked as kept.
inline QString t(const QString& text)
{
    const QString spaces = QStringLiteral(" \t\n\r");
    const bool kept = !text.isEmpty() && (spaces.contains(text.front()) || spaces.contains(text.back()));
    return (kept ? QStringLiteral("<m:t xml:space=\"preserve\">") : QStringLiteral("<m:t>")) + text +
           "</m:t>";
}

inline QString r(const QString& text, const Look& look = Look())
{
    return "<m:r>" + properties(look) + t(text) + "</m:r>";
}

// An operator name run: roman and plain.
inline QString rp(const QString& text)
{
    return r(text, sty("p"));
}

// Control properties; by default those of the default style (fonts only). A math
// style (\mathbf's) is not written there: the runs carry it.
inline QString ctrl(Look look = Look())
{
    look.math = false;
    return wrap("m:ctrlPr", properties(look));
}

inline QString ctrlOf(const Look& look)
{
    return ctrl(look);
}

inline const QString kCtrl = ctrl();

// An element `name` with its properties element holding `pr`, then its parts in order.
inline QString element(const QString& name, const QString& pr,
                       const std::vector<std::pair<QString, QString>>& parts)
{
    QString xml = wrap("m:" + name + "Pr", pr);
    for (const auto& [part, content] : parts)
        xml += wrap("m:" + part, content);
    return wrap("m:" + name, xml);
}

inline QString frac(const QString& num, const QString& den, const QString& type = QString(),
                    const QString& ctrlXml = kCtrl)
{
    const QString typeXml = type.isEmpty() ? QString() : val("m:type", type);
    return element("f", typeXml + ctrlXml, {{"num", num}, {"den", den}});
}

inline QString sSup(const QString& e, const QString& sup)
{
    return element("sSup", kCtrl, {{"e", e}, {"sup", sup}});
}

inline QString sSub(const QString& e, const QString& sub)
{
    return element("sSub", kCtrl, {{"e", e}, {"sub", sub}});
}

inline QString sSubSup(const QString& e, const QString& sub, const QString& sup)
{
    return element("sSubSup", kCtrl, {{"e", e}, {"sub", sub}, {"sup", sup}});
}

inline QString d(const QString& beg, const QString& end, const QString& e, const QString& ctrlXml = kCtrl)
{
    return element("d", val("m:begChr", beg) + val("m:endChr", end) + ctrlXml, {{"e", e}});
}

// A delimiter of several elements set off by a separator.
inline QString dSep(const QString& beg, const QString& sep, const QString& end, const QStringList& elements,
                    const QString& ctrlXml = kCtrl)
{
    std::vector<std::pair<QString, QString>> parts;
    for (const QString& e : elements)
        parts.push_back({"e", e});
    return element("d", val("m:begChr", beg) + val("m:sepChr", sep) + val("m:endChr", end) + ctrlXml, parts);
}

// A radical; a null `deg` means no degree (an empty m:deg element).
inline QString rad(const QString& e, const QString& deg, bool degHide, const QString& ctrlXml = kCtrl)
{
    const QString degXml = deg.isNull() ? QStringLiteral("<m:deg/>") : wrap("m:deg", deg);
    return wrap("m:rad", wrap("m:radPr", val("m:degHide", degHide ? "on" : "off") + ctrlXml) + degXml +
                             wrap("m:e", e));
}

inline QString nary(const QString& chr, bool undOvr, bool subHide, bool supHide, const QString& sub,
                    const QString& sup, const QString& e, const QString& ctrlXml = kCtrl)
{
    return element("nary",
                   val("m:chr", chr) + val("m:limLoc", undOvr ? "undOvr" : "subSup") +
                       val("m:subHide", subHide ? "on" : "off") + val("m:supHide", supHide ? "on" : "off") +
                       ctrlXml,
                   {{"sub", sub}, {"sup", sup}, {"e", e}});
}

inline QString func(const QString& fName, const QString& e, const QString& ctrlXml = kCtrl)
{
    return element("func", ctrlXml, {{"fName", fName}, {"e", e}});
}

inline QString limLow(const QString& e, const QString& lim, const QString& ctrlXml = kCtrl)
{
    return element("limLow", ctrlXml, {{"e", e}, {"lim", lim}});
}

inline QString limUpp(const QString& e, const QString& lim, const QString& ctrlXml = kCtrl)
{
    return element("limUpp", ctrlXml, {{"e", e}, {"lim", lim}});
}

inline QString bar(const QString& pos, const QString& e)
{
    return element("bar", val("m:pos", pos), {{"e", e}});
}

// A matrix with the columns given by their justifications; every column counts 1
// and the column gaps are 0.
inline QString matrix(const QStringList& columns, const std::vector<QStringList>& rows,
                      const QString& ctrlXml = kCtrl)
{
    QString columnsXml;
    for (const QString& jc : columns)
        columnsXml += wrap("m:mc", wrap("m:mcPr", val("m:count", "1") + val("m:mcJc", jc)));
    QString xml = wrap("m:mPr", val("m:plcHide", "off") + val("m:cGpRule", "0") + val("m:cGp", "0") +
                                    wrap("m:mcs", columnsXml) + ctrlXml);
    for (const QStringList& cells : rows) {
        QString cellsXml;
        for (const QString& cell : cells)
            cellsXml += wrap("m:e", cell);
        xml += wrap("m:mr", cellsXml);
    }
    return wrap("m:m", xml);
}

inline QString eqArr(const QStringList& rows, const QString& ctrlXml = kCtrl)
{
    std::vector<std::pair<QString, QString>> lines;
    for (const QString& line : rows)
        lines.push_back({"e", line});
    return element("eqArr", ctrlXml, lines);
}

// `flags`: the switches that are on, in writing order; `hidden` puts the four
// hide switches first.
inline QString borderBox(const QStringList& flags, const QString& e, const QString& ctrlXml = kCtrl,
                         bool hidden = true)
{
    QString flagsXml;
    const QStringList all =
        (hidden ? QStringList{"hideTop", "hideBot", "hideLeft", "hideRight"} : QStringList()) + flags;
    for (const QString& flag : all)
        flagsXml += val("m:" + flag, "1");
    return element("borderBox", flagsXml + ctrlXml, {{"e", e}});
}

inline QString frame(const QString& e, const QString& ctrlXml = kCtrl)
{
    return borderBox({}, e, ctrlXml, false);
}

inline QString box(const QString& e, const QString& ctrlXml = kCtrl)
{
    return element("box", val("m:noBreak", "on") + ctrlXml, {{"e", e}});
}

inline QString acc(const QString& chr, const QString& e, const QString& ctrlXml = kCtrl)
{
    return element("acc", val("m:chr", chr) + ctrlXml, {{"e", e}});
}

inline QString groupChr(const QString& chr, const QString& pos, const QString& vertJc, const QString& e,
                        const QString& ctrlXml = kCtrl)
{
    return element("groupChr", val("m:chr", chr) + val("m:pos", pos) + val("m:vertJc", vertJc) + ctrlXml,
                   {{"e", e}});
}

// A phantom; by default hidden (\phantom). `flags` are the zero flags that are on.
inline QString phant(const QString& e, const QStringList& flags = {}, bool show = false)
{
    QString pr = show ? QString() : val("m:show", "off");
    for (const QString& flag : flags)
        pr += val("m:" + flag, "on");
    return element("phant", pr + kCtrl, {{"e", e}});
}

inline QString sPre(const QString& e, const QString& sub, const QString& sup)
{
    return element("sPre", kCtrl, {{"sub", sub}, {"sup", sup}, {"e", e}});
}

// The XML of a converter result: each node written in turn.
inline QString xmlOf(const KOmmlNodeList& nodes)
{
    QString text;
    for (const KOmmlNodePtr& node : nodes)
        if (node)
            text += ommlNodeToXml(*node);
    return text;
}

// ---- syntax trees ------------------------------------------------------------------

inline KLatexNodePtr text(const QString& content)
{
    return makeText(content);
}

template <class... Nodes> KLatexNodeList list(Nodes&&... nodes)
{
    KLatexNodeList result;
    (result.push_back(std::forward<Nodes>(nodes)), ...);
    return result;
}

template <class... Nodes> KLatexNodePtr group(Nodes&&... nodes)
{
    return makeGroup(list(std::forward<Nodes>(nodes)...));
}

inline KLatexArg arg(KLatexNodePtr node, bool optional = false)
{
    return KLatexArg{optional, std::move(node)};
}

// A braced argument holding a group with one text, as the parser builds it.
inline KLatexArg braced(const char* content)
{
    return arg(group(text(QString::fromUtf8(content))));
}

template <class... Args> KLatexNodePtr command(const char* name, Args&&... args)
{
    KLatexArgs list;
    (list.push_back(std::forward<Args>(args)), ...);
    return makeCommand(QString::fromUtf8(name), std::move(list));
}

// ---- conversion --------------------------------------------------------------------

inline QString convertTree(const KLatexNodePtr& node, bool renderMode = false)
{
    KLatexAst2Omml converter;
    converter.prepare(renderMode);
    return xmlOf(converter.convert(*node));
}

inline QString convertLatex(const QString& source, bool renderMode = false)
{
    LatexDiagnostics diagnostics;
    const KLatexNodePtr root = parseLatex(source, diagnostics);
    return root ? convertTree(root, renderMode) : QStringLiteral("<no tree>");
}

// One row of a table-driven test: LaTeX text and the whole OMML expected.
struct LatexCase {
    const char* latex;
    QString omml;
};

inline void PrintTo(const LatexCase& c, std::ostream* os)
{
    *os << c.latex;
}

// The rows are instantiated by each test file; the test itself is in ast2omml_test.cpp.
class LatexToOmml : public ::testing::TestWithParam<LatexCase> {};

} // namespace omml_text
