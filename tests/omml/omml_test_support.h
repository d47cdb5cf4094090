#pragma once
// Helpers shared by the OMML tests: readable QString failures, runs built in
// code, and the standard run and control property XML they serialise to.

#include "omml/omml_reader.h"
#include "omml/omml_writer.h"

#include <ostream>
#include <vector>

inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

const QString kNs = QStringLiteral("http://schemas.openxmlformats.org/officeDocument/2006/math");
const QString kWordNs = QStringLiteral("http://schemas.openxmlformats.org/wordprocessingml/2006/main");
const QString kNsDeclarations = "xmlns:m=\"" + kNs + "\" xmlns:w=\"" + kWordNs + "\"";
const QString kFonts =
    QStringLiteral("<w:rFonts w:ascii=\"Cambria Math\" w:hAnsi=\"Cambria Math\" w:hint=\"default\"/>");
const QString kCtrl = QStringLiteral("<m:ctrlPr><w:rPr>") + kFonts + QStringLiteral("</w:rPr></m:ctrlPr>");

inline const auto run = [](const QString& text) { return makeOmmlNode(ORun{text, {}, {}}); };
inline const auto one = [](const QString& text) { return makeOmmlList(run(text)); };
// A default run with the given text, as written.
// White space at either end of the text is marked as kept.
inline const auto runXml = [](const QString& text) {
    const QString spaces = QStringLiteral(" \t\n\r");
    const bool kept = !text.isEmpty() && (spaces.contains(text.front()) || spaces.contains(text.back()));
    return "<m:r><m:rPr><m:scr m:val=\"roman\"/></m:rPr><w:rPr>" + kFonts + "</w:rPr>" +
           (kept ? "<m:t xml:space=\"preserve\">" : "<m:t>") + text + "</m:t></m:r>";
};
// "<tag>" + content + "</tag>".
inline const auto el = [](const QString& tag, const QString& content) {
    return "<" + tag + ">" + content + "</" + tag + ">";
};
// "<m:tag><m:tagPr>" + props + "</m:tagPr>" + args + "</m:tag>".
inline const auto kind = [](const QString& tag, const QString& props, const QString& args) {
    return el("m:" + tag, el("m:" + tag + "Pr", props) + args);
};
inline const auto equationXml = [](const QString& content) {
    return "<m:oMath " + kNsDeclarations + ">" + content + "</m:oMath>";
};
inline const auto paragraphXml = [](const QString& jc, const QString& content) {
    return "<m:oMathPara " + kNsDeclarations + "><m:oMathParaPr><m:jc m:val=\"" + jc +
           "\"/></m:oMathParaPr>" + content + "</m:oMathPara>";
};

// One model per kind, most with every property away from its default, and its whole XML.
// The writer test compares the text; the reader test reads the text back.
struct KindCase {
    KOmmlNodePtr node;
    QString xml;
    QString readBack; // what the reader makes of xml, when that differs
};

inline std::vector<KindCase> kindCases()
{
    OControlProperties s;
    s.mathProps = OMathRunProperties{OScript::fraktur, OStyle::bold};
    s.wordProps = {"Body", "Body Narrow", {}, true, true, QColor(0x12, 0xab, 0xef)};
    // The math style of control properties is not written: it belongs on the runs.
    const QString S = "<m:ctrlPr><w:rPr><w:rFonts "
                      "w:ascii=\"Body\" w:hAnsi=\"Body Narrow\" w:hint=\"default\"/><w:i/><w:b/><w:color "
                      "w:val=\"12abef\"/></w:rPr></m:ctrlPr>";
    const QString a = runXml("a"), b = runXml("b"), c = runXml("c");
    const QString ea = el("m:e", a), on = "m:val=\"on\"/>", set = " m:val=\"1\"/>";
    std::vector<KindCase> cases;
    auto add = [&cases](auto&& alternative, const QString& xml, const QString& readBack = QString()) {
        cases.push_back({makeOmmlNode(std::move(alternative)), xml, readBack.isEmpty() ? xml : readBack});
    };
    // Without m:chr the reader keeps the default character; a matrix row without cells is dropped.
    auto withChr = [](QString xml, const QString& before, const char* chr) {
        return xml.replace(before, QString("<m:chr m:val=\"%1\"/>").arg(QString::fromUtf8(chr)) + before);
    };
    add(OMathParagraph{makeOmmlNode(OMathEquation{one("a")}), OJustification::right},
        paragraphXml("right", equationXml(a)));
    ORun r{"x \U0001D400<&>", {OScript::doubleStruck, OStyle::boldItalic}, {"Signs", "", {}, true, true, {}}};
    r.wordProps.color = QColor(255, 0, 10);
    add(std::move(r),
        "<m:r><m:rPr><m:scr m:val=\"double-struck\"/><m:sty m:val=\"bi\"/></m:rPr><w:rPr><w:rFonts "
        "w:ascii=\"Signs\" w:hint=\"default\"/><w:i/><w:b/><w:color w:val=\"ff000a\"/></w:rPr>"
        "<m:t>x \U0001D400&lt;&amp;&gt;</m:t></m:r>");
    add(ORun{"", {}, {"", "", {}, false, false, {}}},
        "<m:r><m:rPr><m:scr m:val=\"roman\"/></m:rPr><w:rPr><w:rFonts "
        "w:hint=\"default\"/></w:rPr><m:t></m:t></m:r>");
    add(OFraction{one("a"), one("b"), s, OFractionType::skewed},
        kind("f", "<m:type m:val=\"skw\"/>" + S, el("m:num", a) + el("m:den", b)));
    add(OSuperscript{one("a"), one("b"), s}, kind("sSup", S, ea + el("m:sup", b)));
    add(OSubscript{one("a"), one("b"), s}, kind("sSub", S, ea + el("m:sub", b)));
    add(OSubSuperscript{one("a"), one("b"), one("c"), s},
        kind("sSubSup", S, ea + el("m:sub", b) + el("m:sup", c)));
    add(OPreSubSuperscript{one("a"), one("b"), one("c"), s},
        kind("sPre", S, el("m:sub", b) + el("m:sup", c) + ea));
    add(ORadical{one("a"), one("b"), s, true}, kind("rad", "<m:degHide " + on + S, el("m:deg", b) + ea));
    add(ONaryOperator{one("a"), one("b"), {}, s, "\u2211", OLimitLocation::undOvr, false, true},
        kind("nary",
             "<m:chr m:val=\"\u2211\"/><m:limLoc m:val=\"undOvr\"/><m:subHide m:val=\"off\"/><m:supHide " +
                 on + S,
             el("m:sub", b) + "<m:sup/>" + ea));
    const QString chrless =
        kind("nary", "<m:limLoc m:val=\"subSup\"/><m:subHide m:val=\"off\"/><m:supHide " + on + kCtrl,
             "<m:sub/>" + el("m:sup", c) + "<m:e/>");
    add(ONaryOperator{{}, {}, one("c"), {}, "", {}, false, true}, chrless,
        withChr(chrless, "<m:limLoc", "\u222B"));
    add(OLimitLower{one("a"), one("b"), s}, kind("limLow", S, ea + el("m:lim", b)));
    add(OLimitUpper{one("a"), one("b"), s}, kind("limUpp", S, ea + el("m:lim", b)));
    add(OFunction{one("a"), one("b"), s}, kind("func", S, el("m:fName", a) + el("m:e", b)));
    add(ODelimiter{one("a"), "\U0001D400", "", s},
        kind("d", "<m:begChr m:val=\"\U0001D400\"/><m:endChr m:val=\"\"/>" + S, ea));
    ODelimiter separated{one("a"), "\u27E8", "\u27E9", {}};
    separated.separated.push_back(one("b"));
    separated.separated.emplace_back();
    separated.sepChr = ",";
    add(std::move(separated),
        kind("d", "<m:begChr m:val=\"\u27E8\"/><m:sepChr m:val=\",\"/><m:endChr m:val=\"\u27E9\"/>" + kCtrl,
             ea + el("m:e", b) + "<m:e/>"));
    add(OAccent{one("a"), s, "\u20D7"}, kind("acc", "<m:chr m:val=\"\u20D7\"/>" + S, ea));
    add(OAccent{one("a"), {}, ""}, kind("acc", kCtrl, ea),
        withChr(kind("acc", kCtrl, ea), "<m:ctrlPr>", "\u0302"));
    add(OBar{one("a"), OPosition::bottom}, kind("bar", "<m:pos m:val=\"bot\"/>", ea));
    add(OBorderBox{one("a"), s, true, false, true, false, true, false, true, true},
        kind("borderBox",
             "<m:hideTop" + set + "<m:hideLeft" + set + "<m:strikeH" + set + "<m:strikeBLTR" + set +
                 "<m:strikeTLBR" + set + S,
             ea));
    add(OBorderBox{{}, {}, false, true, false, true, false, true, false, false},
        kind("borderBox", "<m:hideBot" + set + "<m:hideRight" + set + "<m:strikeV" + set + kCtrl, "<m:e/>"));
    add(OGroupChar{one("a"), s, "\u23DE", OPosition::top, OVerticalJustification::bottom},
        kind("groupChr", "<m:chr m:val=\"\u23DE\"/><m:pos m:val=\"top\"/><m:vertJc m:val=\"bot\"/>" + S, ea));
    OMatrix m{{}, {{"2", OColumnJustification::left}, {{}, OColumnJustification::right}}, "3", "1", true, s};
    m.rows.resize(2);
    m.rows[0].push_back(one("a"));
    m.rows[0].emplace_back();
    add(std::move(m),
        "<m:m><m:mPr><m:plcHide " + on +
            "<m:cGpRule m:val=\"1\"/><m:cGp m:val=\"3\"/><m:mcs><m:mc><m:mcPr><m:count m:val=\"2\"/><m:mcJc "
            "m:val=\"left\"/></m:mcPr></m:mc><m:mc><m:mcPr><m:mcJc "
            "m:val=\"right\"/></m:mcPr></m:mc></m:mcs>" +
            S + "</m:mPr>" + el("m:mr", ea + "<m:e/>") + "<m:mr><m:e/></m:mr></m:m>");
    add(OBox{one("a"), s, false}, kind("box", "<m:noBreak m:val=\"off\"/>" + S, ea));
    OEquationArray array{{}, s};
    array.rows.push_back(one("a"));
    array.rows.emplace_back();
    add(std::move(array), kind("eqArr", S, ea + "<m:e/>"));
    add(OPhantom{one("a"), s}, kind("phant", S, ea));
    add(OPhantom{one("a"), {}, false, true, true, true, true},
        kind("phant",
             "<m:show m:val=\"off\"/><m:zeroWid " + on + "<m:zeroAsc " + on + "<m:zeroDesc " + on +
                 "<m:transp " + on + kCtrl,
             ea));
    return cases;
}
