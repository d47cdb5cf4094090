// OMML as word processors write it (run and control properties on everything,
// separators, phantoms with their flags, math inside links, tracked changes,
// content controls and fields) read into LaTeX through the host interface:
// every letter that is shown comes out, and what is deleted or hidden stays out.

#include "interface/converter_helper.h"
#include "tests/omml2latex/qstring_printer.h"

#include <gtest/gtest.h>

namespace {

using S = const QString&;

const QString kOpen =
    QStringLiteral("<m:oMathPara xmlns:m=\"http://schemas.openxmlformats.org/officeDocument/2006/math\" "
                   "xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\" "
                   "xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\">"
                   "<m:oMathParaPr><m:jc m:val=\"centerGroup\"/></m:oMathParaPr><m:oMath>");
const QString kClose = QStringLiteral("</m:oMath></m:oMathPara>");
const QString kFonts = QStringLiteral("<w:rFonts w:ascii=\"Cambria Math\" w:hAnsi=\"Cambria Math\"/>");
const QString kCtrl = "<m:ctrlPr><w:rPr>" + kFonts + "<w:i/></w:rPr></m:ctrlPr>";

const auto para = [](S body) { return kOpen + body + kClose; };
const auto m = [](S name, S body = {}) { return "<m:" + name + ">" + body + "</m:" + name + ">"; };
const auto v = [](S name, S value) { return "<m:" + name + " m:val=\"" + value + "\"/>"; };
// A math run as equation editors store one: the math font named, the style left to the math.
const auto r = [](S text) { return "<m:r><w:rPr>" + kFonts + "</w:rPr><m:t>" + text + "</m:t></m:r>"; };
const auto e = [](S text) { return m("e", r(text)); };
const auto delimiter = [](S properties, S elements) {
    return m("d", m("dPr", properties + kCtrl) + elements);
};
const auto phantom = [](S flags, S text) { return m("phant", m("phantPr", flags + kCtrl) + e(text)); };
const QString kTrack = QStringLiteral("w:id=\"7\" w:author=\"Reviewer\" w:date=\"2024-01-01T00:00:00Z\"");

struct FormCase {
    const char* name;
    QString body;  // inside m:oMath
    QString latex; // the whole LaTeX expected
};

void PrintTo(const FormCase& c, std::ostream* out)
{
    *out << c.name;
}

class WordProcessorForms : public ::testing::TestWithParam<FormCase> {};

TEST_P(WordProcessorForms, ReadAsLatex)
{
    const KFormulaConverterHelper helper;
    EXPECT_EQ(helper.ommlToLatex(para(GetParam().body)), GetParam().latex);
}

INSTANTIATE_TEST_SUITE_P(
    Separators, WordProcessorForms,
    ::testing::Values(
        FormCase{"angle brackets with a bar",
                 delimiter(v("begChr", "\u27E8") + v("sepChr", "|") + v("endChr", "\u27E9"), e("a") + e("b")),
                 "\\left\\langle a\\middle|b\\right\\rangle"},
        FormCase{"the default separator", delimiter({}, e("x") + e("y") + e("z")),
                 "\\left(x\\middle|y\\middle|z\\right)"},
        FormCase{"a comma, which TeX cannot size", delimiter(v("sepChr", ","), e("a") + e("b")),
                 "\\left(a,b\\right)"},
        FormCase{"no sign between", delimiter(v("sepChr", ""), e("a") + e("b")),
                 "\\left(a\\middle.b\\right)"},
        FormCase{"an empty element", delimiter(v("begChr", "[") + v("endChr", "]"), e("a") + "<m:e/>"),
                 "\\left[ a\\middle|\\right]"}));

INSTANTIATE_TEST_SUITE_P(
    Phantoms, WordProcessorForms,
    ::testing::Values(FormCase{"shown when m:show is absent", r("a") + phantom({}, "b"), "a b"},
                      FormCase{"hidden", r("a") + phantom(v("show", "0"), "b"), "a\\phantom{b}"},
                      FormCase{"hidden, width only",
                               phantom(v("show", "off") + v("zeroAsc", "on") + v("zeroDesc", "on"), "b"),
                               "\\hphantom{b}"},
                      FormCase{"hidden, height only", phantom("<m:show m:val=\"false\"/><m:zeroWid/>", "b"),
                               "\\vphantom{b}"},
                      FormCase{"transparent and shown", phantom("<m:transp/>", "b"), "b"},
                      FormCase{"a sized fence's strut",
                               delimiter(v("begChr", "(") + v("endChr", ""),
                                         m("e", phantom(v("show", "off") + v("zeroWid", "on"), "|"))) +
                                   r("x"),
                               "\\bigl(x"}));

INSTANTIATE_TEST_SUITE_P(
    Wrappers, WordProcessorForms,
    ::testing::Values(
        FormCase{"a hyperlinked subscript",
                 "<w:hyperlink r:id=\"rId5\" w:history=\"1\">" +
                     m("sSub", m("sSubPr", kCtrl) + e("A") + m("sub", r("2"))) + "</w:hyperlink>",
                 "A_2"},
        FormCase{"an inserted run, a deleted one",
                 r("a") + "<w:ins " + kTrack + ">" + r("b") + "</w:ins><w:del " + kTrack + ">" + r("c") +
                     "</w:del>",
                 "ab"},
        FormCase{"a moved run",
                 "<w:moveFrom " + kTrack + ">" + r("c") + "</w:moveFrom><w:moveTo " + kTrack + ">" + r("d") +
                     "</w:moveTo>",
                 "d"},
        FormCase{"a smart tag and custom markup",
                 "<w:smartTag w:uri=\"urn:example\" w:element=\"place\">" + r("a") +
                     "</w:smartTag><w:customXml w:element=\"term\"><w:customXmlPr/>" + r("b") +
                     "</w:customXml>",
                 "ab"},
        FormCase{"a content control",
                 "<w:sdt><w:sdtPr><w:alias w:val=\"term\"/></w:sdtPr><w:sdtContent>" + r("a") +
                     "</w:sdtContent></w:sdt>",
                 "a"},
        FormCase{"a simple field", "<w:fldSimple w:instr=\" QUOTE x \">" + r("x") + "</w:fldSimple>", "x"},
        FormCase{"bookmarks and proofing marks",
                 "<w:bookmarkStart w:id=\"0\" w:name=\"eq\"/>" + r("a") +
                     "<w:proofErr w:type=\"spellStart\"/>" + r("b") +
                     "<w:proofErr w:type=\"spellEnd\"/><w:bookmarkEnd w:id=\"0\"/>",
                 "ab"},
        FormCase{"wrappers inside an argument",
                 m("f", m("fPr", kCtrl) + m("num", "<w:ins " + kTrack + ">" + r("a") + "</w:ins>") +
                            m("den", "<w:hyperlink w:anchor=\"x\">" + r("b") + "</w:hyperlink>")),
                 "\\frac{a}{b}"}));

INSTANTIATE_TEST_SUITE_P(
    Structures, WordProcessorForms,
    ::testing::Values(
        FormCase{"a binomial",
                 delimiter({}, m("e", m("f", m("fPr", v("type", "noBar") + kCtrl) + m("num", r("n")) +
                                                 m("den", r("k"))))),
                 "\\binom{n}{k}"},
        FormCase{"a labelled brace over",
                 m("limUpp", m("limUppPr", kCtrl) +
                                 m("e", m("groupChr", m("groupChrPr", v("chr", "\u23DE") + v("pos", "top") +
                                                                          v("vertJc", "bot") + kCtrl) +
                                                          e("a"))) +
                                 m("lim", r("n"))),
                 "\\overbrace{a}^n"},
        FormCase{"a labelled brace under",
                 m("limLow", m("limLowPr", kCtrl) +
                                 m("e", m("groupChr", m("groupChrPr", v("chr", "\u23DF") + kCtrl) + e("a"))) +
                                 m("lim", r("k"))),
                 "\\underbrace{a}_k"},
        FormCase{"normal text",
                 r("x") + "<m:r><m:rPr><m:nor/></m:rPr><w:rPr>" + kFonts + "</w:rPr><m:t>if</m:t></m:r>",
                 "x\\text{if}"}));

} // namespace
