#pragma once
// Expected OMML text for converter tests, written element by element so that a
// whole converter output can be compared with one string.

#include "latex2omml/ast2omml.h"
#include "omml/omml_writer.h"

#include <QString>

#include <ostream>

// Readable failure messages for QString comparisons.
inline void PrintTo(const QString& text, std::ostream* os)
{
    *os << text.toStdString();
}

namespace omml_text {

inline const QString kFonts =
    QStringLiteral("<w:rFonts w:ascii=\"Cambria Math\" w:hAnsi=\"Cambria Math\" w:hint=\"default\"/>");
// The default control properties: fonts only.
inline const QString kCtrl =
    QStringLiteral("<m:ctrlPr><w:rPr>") + kFonts + QStringLiteral("</w:rPr></m:ctrlPr>");

// A run in the default style (roman, no m:sty), optionally with extra w:rPr content.
inline QString r(const QString& text, const QString& wordExtra = QString())
{
    return QStringLiteral("<m:r><m:rPr><m:scr m:val=\"roman\"/></m:rPr><w:rPr>") + kFonts + wordExtra +
           QStringLiteral("</w:rPr><m:t>") + text + QStringLiteral("</m:t></m:r>");
}

// An operator name run: roman and plain.
inline QString rp(const QString& text)
{
    return QStringLiteral("<m:r><m:rPr><m:scr m:val=\"roman\"/><m:sty m:val=\"p\"/></m:rPr><w:rPr>") +
           kFonts + QStringLiteral("</w:rPr><m:t>") + text + QStringLiteral("</m:t></m:r>");
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

inline QString frac(const QString& num, const QString& den, const QString& type = QString(),
                    const QString& ctrl = kCtrl)
{
    const QString typeXml = type.isEmpty() ? QString() : val("m:type", type);
    return wrap("m:f", wrap("m:fPr", typeXml + ctrl) + wrap("m:num", num) + wrap("m:den", den));
}

inline QString sSup(const QString& e, const QString& sup)
{
    return wrap("m:sSup", wrap("m:sSupPr", kCtrl) + wrap("m:e", e) + wrap("m:sup", sup));
}

inline QString sSub(const QString& e, const QString& sub)
{
    return wrap("m:sSub", wrap("m:sSubPr", kCtrl) + wrap("m:e", e) + wrap("m:sub", sub));
}

inline QString sSubSup(const QString& e, const QString& sub, const QString& sup)
{
    return wrap("m:sSubSup",
                wrap("m:sSubSupPr", kCtrl) + wrap("m:e", e) + wrap("m:sub", sub) + wrap("m:sup", sup));
}

inline QString d(const QString& beg, const QString& end, const QString& e, const QString& ctrl = kCtrl)
{
    return wrap("m:d", wrap("m:dPr", ctrl + val("m:begChr", beg) + val("m:endChr", end)) + wrap("m:e", e));
}

// A radical; a null `deg` means no degree (an empty m:deg element).
inline QString rad(const QString& e, const QString& deg, bool degHide, const QString& ctrl = kCtrl)
{
    const QString degXml = deg.isNull() ? QStringLiteral("<m:deg/>") : wrap("m:deg", deg);
    return wrap("m:rad",
                wrap("m:radPr", ctrl + val("m:degHide", degHide ? "on" : "off")) + degXml + wrap("m:e", e));
}

inline QString nary(const QString& chr, bool undOvr, bool subHide, bool supHide, const QString& sub,
                    const QString& sup, const QString& e, const QString& ctrl = kCtrl)
{
    return wrap("m:nary",
                wrap("m:naryPr", ctrl + val("m:chr", chr) + val("m:limLoc", undOvr ? "undOvr" : "subSup") +
                                     val("m:subHide", subHide ? "on" : "off") +
                                     val("m:supHide", supHide ? "on" : "off")) +
                    wrap("m:sub", sub) + wrap("m:sup", sup) + wrap("m:e", e));
}

inline QString func(const QString& fName, const QString& e, const QString& ctrl = kCtrl)
{
    return wrap("m:func", wrap("m:funcPr", ctrl) + wrap("m:fName", fName) + wrap("m:e", e));
}

inline QString limLow(const QString& e, const QString& lim, const QString& ctrl = kCtrl)
{
    return wrap("m:limLow", wrap("m:limLowPr", ctrl) + wrap("m:e", e) + wrap("m:lim", lim));
}

inline QString limUpp(const QString& e, const QString& lim, const QString& ctrl = kCtrl)
{
    return wrap("m:limUpp", wrap("m:limUppPr", ctrl) + wrap("m:e", e) + wrap("m:lim", lim));
}

inline QString bar(const QString& pos, const QString& e)
{
    return wrap("m:bar", wrap("m:barPr", val("m:pos", pos)) + wrap("m:e", e));
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

} // namespace omml_text
