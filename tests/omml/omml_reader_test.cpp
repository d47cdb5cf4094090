#include "omml_test_support.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <tuple>

namespace {

// The writer prints every field the model keeps, so its text serves as a dump.
const auto readDump = [](const QString& xml) {
    const KOmmlNodePtr node = readOmmlDocument(xml);
    return node ? ommlNodeToXml(*node) : QStringLiteral("<null>");
};
const auto bareRun = [](const QString& text) { return el("m:r", el("m:t", text)); };

TEST(OmmlReader, WrittenModelsReadBackUnchanged)
{
    for (const KindCase& c : kindCases())
        EXPECT_EQ(readDump(c.xml), c.readBack);
}

TEST(OmmlReader, ReadsWholeElements)
{
    const QString a = runXml("a"), b = runXml("b"), e = "<m:e/>", top = "<m:pos m:val=\"top\"/>";
    const QString nary = "<m:limLoc m:val=\"subSup\"/><m:subHide m:val=\"off\"/><m:supHide m:val=\"off\"/>";
    const QString parens = "<m:begChr m:val=\"(\"/><m:endChr m:val=\")\"/>",
                  mPr = "<m:plcHide m:val=\"off\"/>" + kCtrl;
    const std::pair<QString, QString> cases[] = {
        {el("m:oMath", bareRun("x")), equationXml(runXml("x"))},
        {el("m:oMathPara", el("m:oMath", bareRun("a")) + el("m:oMath", bareRun("b"))),
         paragraphXml("centerGroup", equationXml(b))},
        {"<m:r><m:t>a</m:t><m:t>b</m:t></m:r>", runXml("b")},
        // A later w:rPr replaces an earlier one.
        {kind("sSup",
              "<m:ctrlPr><m:rPr><m:scr "
              "m:val=\"script\"/></m:rPr><w:rPr><w:i/></w:rPr><w:rPr><w:b/></w:rPr></m:ctrlPr>",
              ""),
         kind("sSup", "<m:ctrlPr><w:rPr>" + kFonts + "<w:b/></w:rPr></m:ctrlPr>", "<m:e/><m:sup/>")},
        // A second properties element starts from the defaults again.
        {"<m:f><m:fPr><m:type "
         "m:val=\"lin\"/><m:ctrlPr><w:rPr><w:b/></w:rPr></m:ctrlPr></m:fPr><m:fPr/></m:f>",
         kind("f", kCtrl, "<m:num/><m:den/>")},
        // Control properties stay on the structure; its runs start from the run defaults.
        {kind("f", "<m:ctrlPr><w:rPr><w:b/></w:rPr></m:ctrlPr>", el("m:num", bareRun("a"))),
         kind("f", "<m:ctrlPr><w:rPr>" + kFonts + "<w:b/></w:rPr></m:ctrlPr>", el("m:num", a) + "<m:den/>")},
        {"<m:rad/>", kind("rad", "<m:degHide m:val=\"off\"/>" + kCtrl, "<m:deg/>" + e)},
        {"<m:nary/>", kind("nary", "<m:chr m:val=\"\u222B\"/>" + nary + kCtrl, "<m:sub/><m:sup/>" + e)},
        {"<m:nary><m:naryPr><m:chr/></m:naryPr></m:nary>",
         kind("nary", nary + kCtrl, "<m:sub/><m:sup/>" + e)},
        // Every element of a delimiter is kept, the separator "|" when none is given.
        {el("m:d", el("m:e", bareRun("a")) + el("m:e", bareRun("b"))),
         kind("d", "<m:begChr m:val=\"(\"/><m:sepChr m:val=\"|\"/><m:endChr m:val=\")\"/>" + kCtrl,
              el("m:e", a) + el("m:e", b))},
        {"<m:d><m:dPr><m:begChr/><m:endChr m:val=\"]\"/></m:dPr></m:d>",
         kind("d", "<m:begChr m:val=\"\"/><m:endChr m:val=\"]\"/>" + kCtrl, e)},
        {el("m:acc", el("m:e", bareRun("a"))),
         kind("acc", "<m:chr m:val=\"\u0302\"/>" + kCtrl, el("m:e", a))},
        {"<m:bar/>", kind("bar", top, e)},
        {"<m:bar><m:barPr/></m:bar>", kind("bar", "<m:pos m:val=\"bot\"/>", e)},
        {kind("bar", top + "<m:ctrlPr><w:rPr><w:b/></w:rPr></m:ctrlPr>", ""), kind("bar", top, e)},
        {"<m:groupChr/>",
         kind("groupChr", "<m:chr m:val=\"\u23DF\"/><m:pos m:val=\"bot\"/><m:vertJc m:val=\"top\"/>" + kCtrl,
              e)},
        {"<m:box/>", kind("box", "<m:noBreak m:val=\"on\"/>" + kCtrl, e)},
        {"<m:rad><m:deg>" + bareRun("3") + "</m:deg><m:deg/><m:e>" + bareRun("a") + "</m:e></m:rad>",
         kind("rad", "<m:degHide m:val=\"off\"/>" + kCtrl, el("m:deg", runXml("3")) + el("m:e", a))},
        {"<m:m><m:mr/><m:mr><m:e/></m:mr><m:mr><m:x/></m:mr></m:m>",
         el("m:m", el("m:mPr", mPr) + "<m:mr><m:e/></m:mr>")},
        // Unknown elements vanish with their content; tags are case-sensitive literal names.
        {"<m:oMath><m:foo>" + bareRun("a") + "</m:foo><mml:f/>" + bareRun("b") +
             "<w:r><m:r/></w:r></m:oMath>",
         equationXml(b)},
        {"<m:oMath><m:R><m:t>a</m:t></m:R><M:r/></m:oMath>", "<m:oMath " + kNsDeclarations + "/>"},
    };
    for (const auto& [xml, expected] : cases)
        EXPECT_EQ(readDump(xml), expected) << xml.toStdString();

    // An empty m:deg leaves the degree absent, not present and empty.
    const KOmmlNodePtr rad = readOmmlDocument("<m:rad><m:deg/></m:rad>");
    ASSERT_TRUE(ommlAs<ORadical>(rad.get()));
    EXPECT_FALSE(ommlAs<ORadical>(rad.get())->deg.has_value());
}

TEST(OmmlReader, ReadsThroughTheMarkupDocumentsPutAroundMath)
{
    const QString a = runXml("a"), b = runXml("b");
    const QString track = " w:id=\"1\" w:author=\"Reviewer\" w:date=\"2024-01-01T00:00:00Z\"";
    const std::pair<QString, QString> cases[] = {
        // Links, insertions, moves, smart tags, custom markup, content controls and fields hold
        // what stands in their place; nested ones too.
        {"<w:hyperlink r:id=\"rId1\">" + bareRun("a") + "</w:hyperlink>", a},
        {"<w:ins" + track + ">" + bareRun("a") + "</w:ins>", a},
        {"<w:moveTo" + track + ">" + bareRun("a") + "</w:moveTo>", a},
        {"<w:smartTag w:element=\"x\">" + bareRun("a") + "</w:smartTag>", a},
        {"<w:customXml w:element=\"x\"><w:customXmlPr/>" + bareRun("a") + "</w:customXml>", a},
        {"<w:sdt><w:sdtPr><w:id w:val=\"1\"/></w:sdtPr><w:sdtContent>" + bareRun("a") +
             "</w:sdtContent></w:sdt>",
         a},
        {"<w:fldSimple w:instr=\"x\">" + bareRun("a") + "</w:fldSimple>", a},
        {"<w:ins" + track + "><w:hyperlink w:anchor=\"x\">" + bareRun("a") + "</w:hyperlink></w:ins>" +
             bareRun("b"),
         a + b},
        // Deleted and moved-away text, bookmarks and proofing marks are left out.
        {"<w:del" + track + ">" + bareRun("a") + "</w:del>" + bareRun("b"), b},
        {"<w:moveFrom" + track + ">" + bareRun("a") + "</w:moveFrom>" + bareRun("b"), b},
        {"<w:bookmarkStart w:id=\"0\" w:name=\"x\"/>" + bareRun("a") +
             "<w:proofErr w:type=\"gramStart\"/><w:bookmarkEnd w:id=\"0\"/>",
         a},
    };
    for (const auto& [inner, expected] : cases) {
        EXPECT_EQ(readDump(el("m:oMath", inner)), equationXml(expected)) << inner.toStdString();
        // Inside an argument as well.
        EXPECT_EQ(readDump(el("m:sSup", el("m:e", inner))),
                  kind("sSup", kCtrl, el("m:e", expected) + "<m:sup/>"))
            << inner.toStdString();
    }
}

TEST(OmmlReader, SeparatorsAndPhantomFlags)
{
    const QString a = runXml("a"), b = runXml("b"), ea = el("m:e", a);
    const QString on = " m:val=\"on\"/>";
    const std::pair<QString, QString> cases[] = {
        // Every element of a delimiter is kept with its separator, which may come after them.
        {"<m:d><m:e>" + bareRun("a") + "</m:e><m:dPr><m:sepChr m:val=\",\"/></m:dPr><m:e>" + bareRun("b") +
             "</m:e><m:e/></m:d>",
         kind("d", "<m:begChr m:val=\"(\"/><m:sepChr m:val=\",\"/><m:endChr m:val=\")\"/>" + kCtrl,
              ea + el("m:e", b) + "<m:e/>")},
        // A phantom shows its content unless m:show says otherwise; a flag without a value is on.
        {el("m:phant", el("m:e", bareRun("a"))), kind("phant", kCtrl, ea)},
        {"<m:phant><m:phantPr><m:show/><m:zeroWid/></m:phantPr><m:e>" + bareRun("a") + "</m:e></m:phant>",
         kind("phant", "<m:zeroWid" + on + kCtrl, ea)},
        {"<m:phant><m:phantPr><m:show m:val=\"false\"/><m:zeroAsc m:val=\"1\"/><m:zeroDesc m:val=\"true\"/>"
         "<m:transp m:val=\"0\"/></m:phantPr></m:phant>",
         kind("phant", "<m:show m:val=\"off\"/><m:zeroAsc" + on + "<m:zeroDesc" + on + kCtrl, "<m:e/>")},
        // Control properties inside a tracked insertion are in force, deleted ones are not.
        {"<m:sSup><m:sSupPr><m:ctrlPr><w:ins w:id=\"1\" w:author=\"Reviewer\" "
         "w:date=\"2024-01-01T00:00:00Z\">"
         "<w:rPr><w:b/></w:rPr></w:ins></m:ctrlPr></m:sSupPr></m:sSup>",
         kind("sSup", "<m:ctrlPr><w:rPr>" + kFonts + "<w:b/></w:rPr></m:ctrlPr>", "<m:e/><m:sup/>")},
        {"<m:sSup><m:sSupPr><m:ctrlPr><w:del w:id=\"1\" w:author=\"Reviewer\" "
         "w:date=\"2024-01-01T00:00:00Z\">"
         "<w:rPr><w:b/></w:rPr></w:del></m:ctrlPr></m:sSupPr></m:sSup>",
         kind("sSup", kCtrl, "<m:e/><m:sup/>")},
        // Normal text stays normal text.
        {"<m:r><m:rPr><m:nor/></m:rPr><m:t>if</m:t></m:r>",
         "<m:r><m:rPr><m:nor/></m:rPr><w:rPr>" + kFonts + "</w:rPr><m:t>if</m:t></m:r>"},
        {"<m:r><m:rPr><m:nor m:val=\"off\"/></m:rPr><m:t>if</m:t></m:r>", runXml("if")},
    };
    for (const auto& [xml, expected] : cases)
        EXPECT_EQ(readDump(xml), expected) << xml.toStdString();
}

TEST(OmmlReader, PropertyValues)
{
    auto pr = [](const char* kind, const char* inner) {
        return QString("<m:%1><m:%1Pr>%2</m:%1Pr></m:%1>").arg(kind, inner);
    };
    // Each row: a document with %1 for the attribute, the element as written back with %1 for the
    // expected text, and "input=expected" pairs separated by "|"; "~" stands for a missing attribute.
    const std::tuple<QString, QString, const char*> rows[] = {
        // On/off: trimmed and case-folded "on" or "1"; anything else, "true" included, is off.
        {pr("rad", "<m:degHide%1/>"), "<m:degHide m:val=\"%1\"/>",
         "on=on| ON =on|\t1\n=on|true=off|yes=off|~=off"},
        {pr("nary", "<m:subHide%1/>"), "<m:subHide m:val=\"%1\"/>", "1=on"},
        {pr("nary", "<m:supHide%1/>"), "<m:supHide m:val=\"%1\"/>", "1=on"},
        {"<m:m><m:mPr><m:plcHide%1/></m:mPr></m:m>", "<m:plcHide m:val=\"%1\"/>", "1=on"},
        {pr("box", "<m:noBreak%1/>"), "<m:noBreak m:val=\"%1\"/>", "off=off|~=off"},
        // Position: trimmed and case-folded "top"; everything else is bottom.
        {pr("bar", "<m:pos%1/>"), "<m:pos m:val=\"%1\"/>", " TOP =top|center=bot"},
        {pr("groupChr", "<m:pos%1/>"), "<m:pos m:val=\"%1\"/>", "top=top|~=bot"},
        // The fraction type and the border flags are compared exactly.
        {"<m:f><m:fPr><m:type%1/></m:fPr></m:f>", "<m:fPr><m:type m:val=\"%1\"/>",
         "skw=skw|lin=lin|noBar=noBar|nobar=noBar"},
        {"<m:f><m:fPr><m:type%1/></m:fPr></m:f>", "<m:fPr><m:ctrlPr>%1", "NOBAR=| lin="},
        {pr("borderBox", "<m:hideTop%1/>"), "<m:hideTop m:val=\"%1\"/>" + kCtrl + "</m:borderBoxPr>",
         "true=1|on=1"},
        {pr("borderBox", "<m:hideTop%1/>"), "<m:borderBoxPr>" + kCtrl + "</m:borderBoxPr>%1", "ON=| 1=|~="},
        // Folded enumerations with their fallbacks.
        {"<m:oMathPara><m:oMathParaPr><m:jc%1/></m:oMathParaPr></m:oMathPara>", "<m:jc m:val=\"%1\"/>",
         "left=left| Right =right|CENTER=center|justify=centerGroup"},
        {pr("nary", "<m:limLoc%1/>"), "<m:limLoc m:val=\"%1\"/>", " UNDOVR =undOvr|under=subSup"},
        {pr("groupChr", "<m:vertJc%1/>"), "<m:vertJc m:val=\"%1\"/>", "Bottom=bot| bot =bot|center=top"},
        {"<m:m><m:mPr><m:mcs><m:mc><m:mcPr><m:mcJc%1/></m:mcPr></m:mc></m:mcs></m:mPr></m:m>",
         "<m:mcJc m:val=\"%1\"/>", "left=left| RIGHT =right|inside=center"},
        {"<m:r><m:rPr><m:scr%1/></m:rPr></m:r>", "<m:rPr><m:scr m:val=\"%1\"/></m:rPr>",
         "script=script| Fraktur=fraktur|DOUBLE-STRUCK=double-struck|double=roman"},
        {"<m:r><m:rPr><m:sty%1/></m:rPr></m:r>", "<m:sty m:val=\"%1\"/>",
         "p=p|plain=p|b=b|Bold=b|i=i|italic=i|BI=bi|boldItalic=bi|x=p|~=p"},
    };
    for (const auto& [xml, written, pairs] : rows)
        for (const QString& pair : QString(pairs).split('|')) {
            const QString value = pair.section('=', 0, 0), expected = pair.section('=', 1);
            const QString read = readDump(xml.arg(value == "~" ? QString() : " m:val=\"" + value + "\""));
            EXPECT_TRUE(read.contains(written.arg(expected)))
                << xml.toStdString() << " [" << pair.toStdString() << "] read as " << read.toStdString();
        }
    for (const char* flag :
         {"hideTop", "hideBot", "hideLeft", "hideRight", "strikeH", "strikeV", "strikeBLTR", "strikeTLBR"})
        EXPECT_TRUE(readDump(pr("borderBox", qPrintable(QString("<m:%1 m:val=\"1\"/>").arg(flag))))
                        .contains(QString("<m:%1 m:val=\"1\"/>").arg(flag) + kCtrl + "</m:borderBoxPr>"))
            << flag;
}

TEST(OmmlReader, WordRunProperties)
{
    const std::pair<QString, QString> cases[] = {
        // rFonts replaces both slots, missing attributes by empty strings; the hint is always default.
        {"<w:rFonts w:ascii=\"Body\"/>", "<w:rFonts w:ascii=\"Body\" w:hint=\"default\"/>"},
        {"<w:rFonts w:ascii=\"A\" w:h-ansi=\"B\"/>",
         "<w:rFonts w:ascii=\"A\" w:hAnsi=\"B\" w:hint=\"default\"/>"},
        {"<w:rFonts w:hAnsi=\"C\" w:h-ansi=\"B\" w:hint=\"eastAsia\"/>",
         "<w:rFonts w:hAnsi=\"C\" w:hint=\"default\"/>"},
        {"<w:b w:val=\"0\"/>", kFonts + "<w:b/>"},
        {"<w:color w:val=\"FF0000\"/>", kFonts + "<w:color w:val=\"ff0000\"/>"},
        {"<w:color w:val=\"auto\"/>", kFonts},
        {"<w:color w:val=\"f00\"/>", kFonts},
        {"<w:color w:val=\"gg0000\"/>", kFonts},
        {"<w:color w:val=\"00ff00\"/><w:color w:val=\"auto\"/>", kFonts + "<w:color w:val=\"00ff00\"/>"},
        {"<w:sz w:val=\"24\"/><w:u/>", kFonts},
    };
    for (const auto& [inner, expected] : cases)
        EXPECT_EQ(readDump("<m:r><w:rPr>" + inner + "</w:rPr><m:t>x</m:t></m:r>"),
                  "<m:r><m:rPr><m:scr m:val=\"roman\"/></m:rPr><w:rPr>" + expected +
                      "</w:rPr><m:t>x</m:t></m:r>")
            << inner.toStdString();
    const KOmmlNodePtr red = readOmmlDocument("<m:r><w:rPr><w:color w:val=\"FF0000\"/></w:rPr></m:r>");
    ASSERT_TRUE(red);
    EXPECT_EQ(ommlAs<ORun>(red.get())->wordProps.color, QColor(255, 0, 0, 255)); // opaque
}

TEST(OmmlReader, NormalTextRuns)
{
    // m:nor without a value is on, as word processors write it; normal text drops the script and style.
    const std::pair<QString, QString> cases[] = {
        {"<m:nor/>", "<m:nor/>"},
        {"<m:nor m:val=\"on\"/>", "<m:nor/>"},
        {"<m:sty m:val=\"p\"/><m:nor/>", "<m:nor/>"},
        {"<m:nor m:val=\"off\"/>", "<m:scr m:val=\"roman\"/>"},
        {"<m:nor m:val=\"0\"/><m:sty m:val=\"b\"/>", "<m:scr m:val=\"roman\"/><m:sty m:val=\"b\"/>"},
    };
    for (const auto& [inner, expected] : cases)
        EXPECT_EQ(readDump("<m:r><m:rPr>" + inner + "</m:rPr><m:t>x</m:t></m:r>"),
                  "<m:r><m:rPr>" + expected + "</m:rPr><w:rPr>" + kFonts + "</w:rPr><m:t>x</m:t></m:r>")
            << inner.toStdString();
}

TEST(OmmlReader, WordProcessorShapedDocument)
{
    // Indented, commented, with declarations, xml:space and properties the model does not keep.
    const QString xml = QStringLiteral(
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n<!-- formula -->\n"
        "<m:oMathPara xmlns:m=\"http://schemas.openxmlformats.org/officeDocument/2006/math\"\n"
        "             xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\">\n"
        "  <m:oMathParaPr>\n    <m:jc m:val=\"left\"/>\n  </m:oMathParaPr>\n  <m:oMath>\n"
        "    <m:r>\n      <w:rPr>\n        <w:rFonts w:ascii=\"Cambria Math\" w:hAnsi=\"Cambria Math\"/>\n"
        "      </w:rPr>\n      <m:t xml:space=\"preserve\">x </m:t>\n    </m:r>\n"
        "    <m:r><m:t xml:space=\"preserve\">   </m:t></m:r>\n"
        "    <m:d>\n      <m:dPr>\n        <m:sepChr m:val=\",\"/>\n        <m:grow/>\n"
        "        <m:ctrlPr><w:rPr><w:rFonts w:ascii=\"Cambria Math\" w:hAnsi=\"Cambria Math\"/><w:i/></w:rPr>"
        "</m:ctrlPr>\n      </m:dPr>\n      <m:e><m:r><m:t>a</m:t></m:r></m:e>\n    </m:d>\n"
        "    <?processing instruction?>\n    <w:bookmarkStart w:id=\"0\"/>\n"
        "    <m:r><m:t><![CDATA[<y>]]></m:t></m:r>\n  </m:oMath>\n</m:oMathPara>\n");
    const QString italicCtrl = "<m:ctrlPr><w:rPr>" + kFonts + "<w:i/></w:rPr></m:ctrlPr>";
    EXPECT_EQ(readDump(xml),
              paragraphXml("left", equationXml(runXml("x ") + runXml("   ") +
                                               "<m:d><m:dPr><m:begChr m:val=\"(\"/><m:endChr m:val=\")\"/>" +
                                               italicCtrl + "</m:dPr>" + el("m:e", runXml("a")) + "</m:d>" +
                                               runXml("&lt;y&gt;"))));
}

TEST(OmmlReader, RunTextOfOnlyWhiteSpaceIsKept)
{
    const QString thin(QChar(0x2009)), noBreak(QChar(0xA0));
    const std::pair<QString, QString> cases[] = {
        {bareRun(" "), runXml(" ")},
        {bareRun(noBreak), runXml(noBreak)},
        {bareRun("&#x2009;"), runXml(thin)},
        {bareRun("\t \n"), runXml("\t \n")},
        {"<m:r><m:t xml:space=\"preserve\"> </m:t></m:r>", runXml(" ")},
        {bareRun(" <!-- c --> "), runXml("  ")},
        {bareRun(" <u>x</u> "), runXml(" x ")},
        // Only text directly inside run text counts; deeper white space is still indentation.
        {bareRun("<u> </u>"), runXml("")},
        // Indentation between elements is dropped, also around run text.
        {"<m:oMath>\n  <m:r>\n    <m:t> </m:t>\n  </m:r>\n  <m:r><m:t>b</m:t></m:r>\n</m:oMath>",
         equationXml(runXml(" ") + runXml("b"))},
        {"<m:f>\n <m:num>" + thin + "</m:num>\t<m:den> " + bareRun(thin) + " </m:den>\n</m:f>",
         kind("f", kCtrl, "<m:num/>" + el("m:den", runXml(thin)))},
    };
    for (const auto& [xml, expected] : cases)
        EXPECT_EQ(readDump(xml), expected) << xml.toStdString();
}

TEST(OmmlReader, UnreadableInputGivesNull)
{
    for (const char* input : {"", "   ", "not xml", "<m:oMath>", "<m:oMath></m:r>", "<m:oMath/><m:oMath/>",
                              "<w:document><w:body><m:oMathPara/></w:body></w:document>", "<mml:f/>", "<f/>",
                              "<m:t>x</m:t>", "<m:e/>", "<M:OMATH/>"})
        EXPECT_FALSE(readOmmlDocument(QString::fromUtf8(input))) << input;
}

QString nestedBoxes(int boxes)
{
    return "<m:oMathPara><m:oMath>" + QString("<m:box><m:e>").repeated(boxes) + bareRun("x") +
           QString("</m:e></m:box>").repeated(boxes) + "</m:oMath></m:oMathPara>";
}

TEST(OmmlReader, NestingIsLimited)
{
    // Paragraph, equation, two levels per box, then m:r and m:t.
    const int boxes = (kMaxOmmlReadDepth - 4) / 2;
    ASSERT_EQ(2 * boxes + 4, kMaxOmmlReadDepth);
    const QString read = readDump(nestedBoxes(boxes));
    EXPECT_EQ(read.count("<m:box>"), boxes);
    EXPECT_TRUE(read.contains("<m:t>x</m:t>"));
    EXPECT_FALSE(readOmmlDocument(nestedBoxes(boxes + 1)));
    EXPECT_FALSE(readOmmlDocument(nestedBoxes(50000)));
    const QString unknown = QString("<x>").repeated(100000);
    EXPECT_FALSE(readOmmlDocument("<m:oMath>" + unknown + "</m:oMath>"));
    // Unclosed deep input is rejected before the nesting is ever built.
    EXPECT_FALSE(readOmmlDocument(unknown));
}

TEST(OmmlReader, TextOnlyTheDomParserAcceptsIsMeasuredToo)
{
    // Duplicate attributes and control character references: the DOM parser
    // reads these, so the nesting check must not turn them away.
    const KOmmlNodePtr duplicate =
        readOmmlDocument("<m:r a=\"1\" a=\"/>\"><!-- <x><x> --><m:t><![CDATA[<y><y>]]>&#1;</m:t></m:r>");
    ASSERT_TRUE(ommlAs<ORun>(duplicate.get()));
    EXPECT_EQ(ommlAs<ORun>(duplicate.get())->text, QString("<y><y>") + QChar(1));
    // Markup inside an internal entity is expanded by the DOM parser.
    EXPECT_EQ(
        readDump(
            "<!DOCTYPE m:oMath [<!ENTITY e \"<m:r><m:t>q</m:t></m:r>\"><!-- ] > -->]><m:oMath>&e;</m:oMath>"),
        equationXml(runXml("q")));
    // The DOM parser drops references to undeclared entities.
    EXPECT_EQ(readDump("<m:r><m:t>a&nbsp;b</m:t></m:r>"), runXml("ab"));

    const QString deep = QString("<m:oMath>").repeated(kMaxOmmlReadDepth);
    const QString closing = QString("</m:oMath>").repeated(kMaxOmmlReadDepth);
    const QString markupInComments = "<!--" + QString("<x>").repeated(5000) + "-->";
    EXPECT_TRUE(readOmmlDocument("<m:oMath a=\"1\" a=\"2\">" + markupInComments + deep.mid(9) + closing));
    EXPECT_FALSE(readOmmlDocument("<m:oMath a=\"1\" a=\"2\">" + deep + closing));
}

} // namespace
