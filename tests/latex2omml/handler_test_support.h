#pragma once
// Builders shared by the handler family tests: syntax trees written as nested
// calls, the conversion of a tree to OMML text, and the expected OMML text of
// each element kind.

#include "latex2omml/ast2omml.h"
#include "omml/omml_writer.h"

#include <QStringList>

#include <initializer_list>
#include <utility>

#include <ostream>

// Readable failure messages: gtest finds this through argument-dependent lookup.
inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << '"' << text.toStdString() << '"';
}

namespace l2o_test {

// ---- syntax trees --------------------------------------------------------------

inline KLatexNodePtr T(const char* text)
{
    return makeText(text);
}

inline KLatexNodePtr T(const QString& text)
{
    return makeText(text);
}

template <class... Nodes> KLatexNodeList L(Nodes&&... nodes)
{
    KLatexNodeList list;
    (list.push_back(std::forward<Nodes>(nodes)), ...);
    return list;
}

template <class... Nodes> KLatexNodePtr G(Nodes&&... nodes)
{
    return makeGroup(L(std::forward<Nodes>(nodes)...));
}

// A mandatory ({..}) and an optional ([..]) argument.
inline KLatexArg A(KLatexNodePtr node)
{
    return KLatexArg{false, std::move(node)};
}
inline KLatexArg O(KLatexNodePtr node)
{
    return KLatexArg{true, std::move(node)};
}

template <class... Args> KLatexArgs Args_(Args&&... args)
{
    KLatexArgs list;
    (list.push_back(std::forward<Args>(args)), ...);
    return list;
}

template <class... Args> KLatexNodePtr C(const char* name, Args&&... args)
{
    return makeCommand(QString::fromUtf8(name), Args_(std::forward<Args>(args)...));
}

template <class... Cells> KLatexNodePtr Row(Cells&&... cells)
{
    return makeRow(L(std::forward<Cells>(cells)...));
}

inline KLatexNodePtr Env(const char* name, KLatexNodeList body, KLatexArgs args = {})
{
    return makeEnvironment(QString::fromUtf8(name), std::move(args), std::move(body));
}

inline KLatexNodePtr Sup(KLatexNodePtr base, KLatexNodePtr sup)
{
    return makeScript(std::move(base), std::move(sup), nullptr);
}

// ---- conversion ----------------------------------------------------------------

inline QString toXml(const KOmmlNodeList& nodes)
{
    QString xml;
    for (const auto& node : nodes)
        if (node)
            xml += ommlNodeToXml(*node);
    return xml;
}

// Converts a tree (wrapped into a root group unless it is one) and writes the
// resulting node list as OMML text, one element after another.
inline QString convertTree(KLatexNodePtr node)
{
    KLatexAst2Omml converter;
    converter.prepare(false);
    if (!latexAs<KLatexGroup>(node.get()))
        node = G(std::move(node));
    return toXml(converter.convert(*node));
}

// ---- expected OMML text ----------------------------------------------------------

// How a run or a control-properties element looks. `math` says whether the math
// run properties are written (always for runs, only for styled structures).
struct Look {
    QString scr = QStringLiteral("roman");
    QString sty;
    bool italic = false;
    bool bold = false;
    QString colour;
    bool math = true;
};

inline Look styled(const char* sty)
{
    Look look;
    look.sty = QString::fromUtf8(sty);
    return look;
}

inline Look script(const char* scr)
{
    Look look;
    look.scr = QString::fromUtf8(scr);
    return look;
}

inline Look coloured(const char* colour)
{
    Look look;
    look.colour = QString::fromUtf8(colour);
    return look;
}

// The look of the default style as control properties: no math run properties.
inline Look plainControl()
{
    Look look;
    look.math = false;
    return look;
}

inline Look colouredControl(const char* colour)
{
    Look look = plainControl();
    look.colour = QString::fromUtf8(colour);
    return look;
}

inline QString mathPr(const Look& look)
{
    if (!look.math)
        return {};
    QString xml = "<m:rPr><m:scr m:val=\"" + look.scr + "\"/>";
    if (!look.sty.isEmpty())
        xml += "<m:sty m:val=\"" + look.sty + "\"/>";
    return xml + "</m:rPr>";
}

inline QString wordPr(const Look& look)
{
    QString xml = QStringLiteral(
        "<w:rPr><w:rFonts w:ascii=\"Cambria Math\" w:hAnsi=\"Cambria Math\" w:hint=\"default\"/>");
    if (look.italic)
        xml += QStringLiteral("<w:i/>");
    if (look.bold)
        xml += QStringLiteral("<w:b/>");
    if (!look.colour.isEmpty())
        xml += "<w:color w:val=\"" + look.colour + "\"/>";
    return xml + "</w:rPr>";
}

inline QString run(const QString& text, const Look& look = Look())
{
    return "<m:r>" + mathPr(look) + wordPr(look) + "<m:t>" + text + "</m:t></m:r>";
}

inline QString ctrl(const Look& look = plainControl())
{
    return "<m:ctrlPr>" + mathPr(look) + wordPr(look) + "</m:ctrlPr>";
}

inline QString val(const QString& name, const QString& value)
{
    return "<m:" + name + " m:val=\"" + value + "\"/>";
}

inline QString arg(const QString& name, const QString& content)
{
    return content.isEmpty() ? "<m:" + name + "/>" : "<m:" + name + ">" + content + "</m:" + name + ">";
}

inline QString delim(const QString& beg, const QString& end, const QString& e,
                     const QString& ctrlXml = ctrl())
{
    return "<m:d><m:dPr>" + ctrlXml + val("begChr", beg) + val("endChr", end) + "</m:dPr>" + arg("e", e) +
           "</m:d>";
}

// A matrix with the columns given by their justifications; every column counts 1
// and the column gaps are 0.
inline QString matrix(const QStringList& columns, const std::vector<QStringList>& rows,
                      const QString& ctrlXml = ctrl())
{
    QString xml = QStringLiteral("<m:m><m:mPr>");
    if (!columns.isEmpty()) {
        xml += QStringLiteral("<m:mcs>");
        for (const QString& jc : columns)
            xml += "<m:mc><m:mcPr>" + val("count", "1") + val("mcJc", jc) + "</m:mcPr></m:mc>";
        xml += QStringLiteral("</m:mcs>");
    }
    xml += val("cGp", "0") + val("cGpRule", "0") + val("plcHide", "off") + ctrlXml + "</m:mPr>";
    for (const QStringList& row : rows) {
        QString cells;
        for (const QString& cell : row)
            cells += arg("e", cell);
        xml += arg("mr", cells);
    }
    return xml + "</m:m>";
}

inline QString eqArr(const QStringList& rows, const QString& ctrlXml = ctrl())
{
    QString xml = "<m:eqArr><m:eqArrPr>" + ctrlXml + "</m:eqArrPr>";
    for (const QString& row : rows)
        xml += arg("e", row);
    return xml + "</m:eqArr>";
}

// flags: the names of the switches that are on, in writing order.
inline QString borderBox(const QStringList& flags, const QString& e, const QString& ctrlXml = ctrl())
{
    QString xml = "<m:borderBox><m:borderBoxPr>" + ctrlXml;
    for (const QString& flag : flags)
        xml += val(flag, "1");
    return xml + "</m:borderBoxPr>" + arg("e", e) + "</m:borderBox>";
}

inline QStringList hiddenSides(std::initializer_list<const char*> strokes)
{
    QStringList flags = {"hideTop", "hideBot", "hideLeft", "hideRight"};
    for (const char* stroke : strokes)
        flags << QString::fromUtf8(stroke);
    return flags;
}

inline QString boxEl(const QString& e, const QString& ctrlXml = ctrl())
{
    return "<m:box><m:boxPr>" + ctrlXml + val("noBreak", "on") + "</m:boxPr>" + arg("e", e) + "</m:box>";
}

inline QString accentEl(const QString& chr, const QString& e, const QString& ctrlXml = ctrl())
{
    return "<m:acc><m:accPr>" + val("chr", chr) + ctrlXml + "</m:accPr>" + arg("e", e) + "</m:acc>";
}

inline QString barEl(const QString& pos, const QString& e)
{
    return "<m:bar><m:barPr>" + val("pos", pos) + "</m:barPr>" + arg("e", e) + "</m:bar>";
}

inline QString groupChr(const QString& chr, const QString& pos, const QString& vertJc, const QString& e,
                        const QString& ctrlXml = ctrl())
{
    return "<m:groupChr><m:groupChrPr>" + ctrlXml + val("chr", chr) + val("pos", pos) +
           val("vertJc", vertJc) + "</m:groupChrPr>" + arg("e", e) + "</m:groupChr>";
}

inline QString withCtrl(const QString& name, const QString& ctrlXml, const QString& parts)
{
    return "<m:" + name + "><m:" + name + "Pr>" + ctrlXml + "</m:" + name + "Pr>" + parts + "</m:" + name +
           ">";
}

inline QString limUpp(const QString& e, const QString& lim, const QString& ctrlXml = ctrl())
{
    return withCtrl("limUpp", ctrlXml, arg("e", e) + arg("lim", lim));
}

inline QString limLow(const QString& e, const QString& lim, const QString& ctrlXml = ctrl())
{
    return withCtrl("limLow", ctrlXml, arg("e", e) + arg("lim", lim));
}

inline QString sSup(const QString& e, const QString& sup, const QString& ctrlXml = ctrl())
{
    return withCtrl("sSup", ctrlXml, arg("e", e) + arg("sup", sup));
}

inline QString func(const QString& fName, const QString& e, const QString& ctrlXml = ctrl())
{
    return withCtrl("func", ctrlXml, arg("fName", fName) + arg("e", e));
}

inline QString phant(const QString& e)
{
    return withCtrl("phant", ctrl(), arg("e", e));
}

inline QString frac(const QString& type, const QString& num, const QString& den,
                    const QString& ctrlXml = ctrl())
{
    const QString typeXml = type.isEmpty() ? QString() : val("type", type);
    return "<m:f><m:fPr>" + typeXml + ctrlXml + "</m:fPr>" + arg("num", num) + arg("den", den) + "</m:f>";
}

} // namespace l2o_test
