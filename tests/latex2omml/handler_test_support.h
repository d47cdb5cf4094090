#pragma once
// Additions for the handler family tests on top of the shared tree builders and
// expected-OMML builders: runs and control properties in any look, and the
// elements the structural tests do not need (matrices, boxes, accents, ...).

#include "latex/latex_parser.h"
#include "omml_text.h"
#include "tree_builders.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <functional>
#include <initializer_list>
#include <string>
#include <utility>

namespace l2o_test {

using namespace omml_text;
using tree::arg;
using tree::command;
using tree::group;
using tree::list;
using tree::sup;
using tree::text;

// ---- syntax trees --------------------------------------------------------------

inline KLatexNodePtr text(const QString& content)
{
    return makeText(content);
}

// An optional ([..]) argument.
inline KLatexArg opt(KLatexNodePtr node)
{
    return arg(std::move(node), true);
}

template <class... Args> KLatexArgs args(Args&&... arguments)
{
    KLatexArgs result;
    (result.push_back(std::forward<Args>(arguments)), ...);
    return result;
}

template <class... Cells> KLatexNodePtr row(Cells&&... cells)
{
    return makeRow(list(std::forward<Cells>(cells)...));
}

inline KLatexNodePtr env(const char* name, KLatexNodeList body, KLatexArgs arguments = {})
{
    return makeEnvironment(QString::fromUtf8(name), std::move(arguments), std::move(body));
}

// Converts a tree (wrapped into a root group unless it is one) and writes the
// resulting node list as OMML text, one element after another.
inline QString convertTree(KLatexNodePtr node)
{
    KLatexAst2Omml converter;
    converter.prepare(false);
    if (!latexAs<KLatexGroup>(node.get()))
        node = group(std::move(node));
    return xmlOf(converter.convert(*node));
}

// Parses LaTeX source and converts the tree the same way.
inline QString convertLatex(const char* source)
{
    LatexDiagnostics diagnostics;
    return convertTree(parseLatex(QString::fromUtf8(source), diagnostics));
}

// One table row of a LaTeX source test.
struct SourceCase {
    const char* source;
    QString expected;
};

inline void PrintTo(const SourceCase& c, std::ostream* os)
{
    *os << c.source;
}

class HandlerSources : public ::testing::TestWithParam<SourceCase> {
protected:
    void check() const
    {
        EXPECT_EQ(convertLatex(GetParam().source), GetParam().expected) << GetParam().source;
    }
};

// One table row of a tree test: the tree to convert and the whole OMML text expected.
struct TreeCase {
    const char* name;
    std::function<KLatexNodePtr()> tree;
    QString expected;
};

inline void PrintTo(const TreeCase& c, std::ostream* os)
{
    *os << c.name;
}

inline std::string caseName(const ::testing::TestParamInfo<TreeCase>& info)
{
    return info.param.name;
}

// Each test file derives its own fixture and writes one TEST_P that calls check().
class HandlerTrees : public ::testing::TestWithParam<TreeCase> {
protected:
    void check() const { EXPECT_EQ(convertTree(GetParam().tree()), GetParam().expected); }
};

// ---- runs and control properties ---------------------------------------------------

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
    const QString style = look.sty.isEmpty() ? QString() : val("m:sty", look.sty);
    return wrap("m:rPr", val("m:scr", look.scr) + style);
}

inline QString wordPr(const Look& look)
{
    QString extra;
    if (look.italic)
        extra += QStringLiteral("<w:i/>");
    if (look.bold)
        extra += QStringLiteral("<w:b/>");
    if (!look.colour.isEmpty())
        extra += "<w:color w:val=\"" + look.colour + "\"/>";
    return wrap("w:rPr", kFonts + extra);
}

inline QString run(const QString& content, const Look& look = Look())
{
    return "<m:r>" + mathPr(look) + wordPr(look) + "<m:t>" + content + "</m:t></m:r>";
}

inline QString ctrl(const Look& look = plainControl())
{
    return wrap("m:ctrlPr", mathPr(look) + wordPr(look));
}

// ---- elements ----------------------------------------------------------------------

// A matrix with the columns given by their justifications; every column counts 1
// and the column gaps are 0.
inline QString matrix(const QStringList& columns, const std::vector<QStringList>& rows,
                      const QString& ctrlXml = kCtrl)
{
    QString columnsXml;
    for (const QString& jc : columns)
        columnsXml += wrap("m:mc", wrap("m:mcPr", val("m:count", "1") + val("m:mcJc", jc)));
    const QString mcs = columns.isEmpty() ? QString() : wrap("m:mcs", columnsXml);
    QString xml =
        wrap("m:mPr", mcs + val("m:cGp", "0") + val("m:cGpRule", "0") + val("m:plcHide", "off") + ctrlXml);
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
    QString xml = wrap("m:eqArrPr", ctrlXml);
    for (const QString& line : rows)
        xml += wrap("m:e", line);
    return wrap("m:eqArr", xml);
}

// flags: the names of the switches that are on, in writing order.
inline QString borderBox(const QStringList& flags, const QString& e, const QString& ctrlXml = kCtrl)
{
    QString flagsXml;
    for (const QString& flag : flags)
        flagsXml += val("m:" + flag, "1");
    return wrap("m:borderBox", wrap("m:borderBoxPr", ctrlXml + flagsXml) + wrap("m:e", e));
}

inline QStringList hiddenSides(std::initializer_list<const char*> strokes)
{
    QStringList flags = {"hideTop", "hideBot", "hideLeft", "hideRight"};
    for (const char* stroke : strokes)
        flags << QString::fromUtf8(stroke);
    return flags;
}

inline QString boxEl(const QString& e, const QString& ctrlXml = kCtrl)
{
    return wrap("m:box", wrap("m:boxPr", ctrlXml + val("m:noBreak", "on")) + wrap("m:e", e));
}

inline QString accentEl(const QString& chr, const QString& e, const QString& ctrlXml = kCtrl)
{
    return wrap("m:acc", wrap("m:accPr", val("m:chr", chr) + ctrlXml) + wrap("m:e", e));
}

inline QString groupChr(const QString& chr, const QString& pos, const QString& vertJc, const QString& e,
                        const QString& ctrlXml = kCtrl)
{
    return wrap("m:groupChr", wrap("m:groupChrPr", ctrlXml + val("m:chr", chr) + val("m:pos", pos) +
                                                       val("m:vertJc", vertJc)) +
                                  wrap("m:e", e));
}

inline QString phant(const QString& e)
{
    return wrap("m:phant", wrap("m:phantPr", kCtrl) + wrap("m:e", e));
}

inline QString sPre(const QString& e, const QString& sub, const QString& sup)
{
    return wrap("m:sPre", wrap("m:sPrePr", kCtrl) + wrap("m:sub", sub) + wrap("m:sup", sup) + wrap("m:e", e));
}

} // namespace l2o_test
