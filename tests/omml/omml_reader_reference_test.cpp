// The streaming OMML reader against the DOM reader it replaces: for every
// input both must build the same model (compared as written XML), and reject
// the same inputs. Documents are shaped the way word processors save them.
#include "omml_test_support.h"

#include "omml/xml_element_tree.h"

#include <gtest/gtest.h>

namespace {

QString modelText(const KOmmlNodePtr& node)
{
    return node ? ommlNodeToXml(*node) : QStringLiteral("<null>");
}

void expectSameAsDom(const QString& xml)
{
    const QString expected = modelText(readOmmlDocumentDom(xml));
    EXPECT_EQ(modelText(readOmmlDocument(xml)), expected) << "input: " << xml.toStdString();
}

// True when the streaming pass reads the text itself, without the DOM parser.
bool readsByStreaming(const QString& xml)
{
    KXmlElementTree tree;
    return readXmlElementTree(xml, kMaxOmmlReadDepth, tree) == KXmlStreamResult::read;
}

const QString kDeclarations =
    QStringLiteral("xmlns:m=\"http://schemas.openxmlformats.org/officeDocument/2006/math\" "
                   "xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\" "
                   "xmlns:mc=\"http://schemas.openxmlformats.org/markup-compatibility/2006\" "
                   "xmlns:w14=\"urn:example:wordprocessing-extensions\" mc:Ignorable=\"w14\"");

// A paragraph as a word processor saves it: declaration, CRLF line ends,
// indentation, namespaced run properties, xml:space, markup compatibility
// blocks, comments, a CDATA section, entity and character references.
QString savedParagraph(const QString& declaration, const QString& newline)
{
    const QStringList lines = {
        declaration,
        "<m:oMathPara " + kDeclarations + ">",
        "  <!-- saved by hand -->",
        "  <m:oMathParaPr><m:jc m:val=\"left\"/></m:oMathParaPr>",
        "  <m:oMath>",
        "    <m:r>",
        "      <w:rPr><w:rFonts w:ascii=\"Cambria Math\" w:hAnsi=\"Cambria Math\"/><w:i/>"
        "<w:color w:val=\"1F4E79\"/><w14:ligatures w14:val=\"none\"/></w:rPr>",
        "      <m:rPr><m:sty m:val=\"i\"/></m:rPr>",
        "      <m:t xml:space=\"preserve\"> a &lt; b &amp;&#x3B1;&#946; </m:t>",
        "    </m:r>",
        "    <mc:AlternateContent><mc:Choice Requires=\"w14\"><m:r><m:t>choice</m:t></m:r></mc:Choice>"
        "<mc:Fallback><m:r><m:t>fallback</m:t></m:r></mc:Fallback></mc:AlternateContent>",
        "    <m:f>",
        "      <m:fPr><m:type m:val=\"lin\"/><m:ctrlPr><w:rPr><w:rFonts w:ascii=\"Cambria "
        "Math\"/><w:b/></w:rPr>"
        "</m:ctrlPr></m:fPr>",
        "      <m:num><m:r><m:t><![CDATA[<x> & y]]></m:t></m:r></m:num>",
        "      <m:den><m:r><m:t>\U0001D465<?pi inside?>2</m:t></m:r></m:den>",
        "    </m:f>",
        "    <m:d><m:dPr><m:begChr m:val=\"&#x27E8;\"/><m:endChr m:val='&gt;'/></m:dPr>"
        "<m:e><m:nary><m:naryPr><m:chr m:val=\"&#8721;\"/><m:limLoc m:val=\" UndOvr \"/></m:naryPr>"
        "<m:sub><m:r><m:t>i=1</m:t></m:r></m:sub><m:sup/><m:e><m:r><m:t>\t</m:t></m:r></m:e></m:nary></m:e></"
        "m:d>",
        "    <m:m><m:mPr><m:mcs><m:mc><m:mcPr><m:count m:val=\"2\"/><m:mcJc m:val=\"right\"/></m:mcPr></m:mc>"
        "</m:mcs></m:mPr><m:mr><m:e><m:r><m:t>1</m:t></m:r></m:e><m:e/></m:mr></m:m>",
        "  </m:oMath>",
        "</m:oMathPara>",
        "",
    };
    return lines.join(newline);
}

TEST(OmmlReaderAgainstDom, WordProcessorDocuments)
{
    const QString declarations[] = {
        QString(),
        "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>",
        QString(QChar(0xFEFF)) + "<?xml version=\"1.0\" encoding=\"UTF-8\"?>",
        "<?xml version=\"1.0\" encoding=\"UTF-16\"?>",
        "<?xml version='1.0' encoding='ISO-8859-1'?>",
        QString(QChar(0xFEFF)),
    };
    for (const QString& declaration : declarations) {
        for (const QString newline : {"\n", "\r\n", "\r"}) {
            const QString xml = savedParagraph(declaration, newline);
            // The DOM parser refuses a text that starts with a byte order mark,
            // so such text goes to it; everything else is read by streaming.
            EXPECT_EQ(readsByStreaming(xml), !declaration.startsWith(QChar(0xFEFF))) << xml.toStdString();
            expectSameAsDom(xml);
        }
    }
    // A model was read, and more than an empty paragraph.
    EXPECT_TRUE(modelText(readOmmlDocument(savedParagraph(QString(), "\n"))).contains("&amp;αβ"));
}

TEST(OmmlReaderAgainstDom, TextsAndWhiteSpace)
{
    const QString texts[] = {
        "",
        " ",
        "  \t\n ",
        "\r\n",
        QString(QChar(0xA0)),
        "&#32;",
        "&#x20;&#xA0;",
        " <!-- c --> ",
        " <?p?> ",
        " <![CDATA[ ]]> ",
        "<![CDATA[]]>",
        "a<![CDATA[ ]]>b",
        "a&amp;b",
        "&lt;&gt;&quot;&apos;",
        "x<b>y</b>z",
        "<u> </u>",
        "\U0001F600",
        QString(QChar(0x2003)) + "x",
        QString(QChar(0x2009)),
        "\r\n<![CDATA[ ]]>\r",
        "a\r\nb\rc",
        "]]&gt;",
    };
    for (const QString& text : texts) {
        expectSameAsDom("<m:r><m:t>" + text + "</m:t></m:r>");
        expectSameAsDom("<m:r><m:t xml:space=\"preserve\">" + text + "</m:t><m:t>" + text + "</m:t></m:r>");
    }
}

TEST(OmmlReaderAgainstDom, AttributeValues)
{
    const QString values[] = {
        "",      " ",      "a\tb", "a\nb", "a\r\nb",     "&#9;",  "&#10;", "&#13;", "&#x3B1;",
        "&amp;", "&quot;", "&lt;", "'",    "\U0001D400", " top ", "ON",    "1 ",
    };
    for (const QString& value : values) {
        expectSameAsDom("<m:d><m:dPr><m:begChr m:val=\"" + value + "\"/><m:endChr m:val='" + value +
                        "'/></m:dPr></m:d>");
        expectSameAsDom("<m:r><w:rPr><w:rFonts w:ascii=\"" + value + "\" w:h-ansi=\"" + value +
                        "\"/></w:rPr><m:t>x</m:t></m:r>");
        expectSameAsDom("<m:groupChr><m:groupChrPr><m:pos m:val=\"" + value +
                        "\"/></m:groupChrPr></m:groupChr>");
    }
}

TEST(OmmlReaderAgainstDom, MalformedAndOddInput)
{
    const QString inputs[] = {
        "",
        "x",
        "<m:r>",
        "<m:r></m:t>",
        "<m:r/><m:r/>",
        "<m:r/>trailing",
        "  <m:r/>",
        "<!-- c --><m:r/><!-- d -->",
        "<?pi x?><m:r/>",
        "<m:r a=\"1\" a=\"2\"/>",
        "<m:r a='1\"/>",
        "<m:r a=1/>",
        "<m:r a=\"x<y\"/>",
        "<m:r>]]></m:r>",
        "<m:r>&bogus;</m:r>",
        "<m:r>&amp</m:r>",
        "<m:r>&#0;</m:r>",
        "<m:r>&#xD800;</m:r>",
        "<m:r>&#x110000;</m:r>",
        "<m:r>&#xFFFE;</m:r>",
        "<m:r>&#1;</m:r>",
        "<m:r><m:t>&#12345678901234567890;</m:t></m:r>",
        "<m:nary><m:naryPr><m:chr m:val=\"&#8721" + QString(QChar(0x3000)) + ";\"/></m:naryPr></m:nary>",
        "<m:r><m:t>&#x 41;&# 65;&#65 ;</m:t></m:r>",
        "<m:r><m:t>& amp;&amp ;&AMP;&#X41;</m:t></m:r>",
        "<m:r><m:t><![CDATA[&#x 41; & <!-- ]]>&amp;<!-- & --><?p & ?></m:t></m:r>",
        "<?xml version=\"2.0\"?><m:r/>",
        "<?xml version=\"1.0\" encoding=\"bogus\"?><m:r/>",
        " <?xml version=\"1.0\"?><m:r/>",
        "<m:r/><?xml version=\"1.0\"?>",
        "<?xml version=\"1.0\" standalone=\"maybe\"?><m:r/>",
        "<m:r xmlns:m=\"a\" xmlns:m=\"b\"/>",
        "<a:b:c/>",
        "<m:/>",
        "<m:r\u00B7/>",
        "<m:r><m:t>a</m:t></m:r \n>",
        "<m:r ><m:t >a</m:t ></m:r>",
        "<m:r><m:t>a</m:t></m:R>",
        "<!DOCTYPE m:r><m:r/>",
        "<!DOCTYPE m:r [<!ENTITY e \"<m:t>x</m:t>\">]><m:r>&e;</m:r>",
        "<!DOCTYPE m:r [<!ENTITY e \"text\">]><m:r><m:t>&e;</m:t></m:r>",
        "<m:r><!-- a -- b --></m:r>",
        "<m:r><!--></m:r>",
        "<m:r><![CDATA[x]]</m:r>",
        "<m:r><m:t>a" + QString(QChar(0xD800)) + "b</m:t></m:r>",
        "<m:r><m:t>a" + QString(QChar(0xFFFF)) + "</m:t></m:r>",
        "<m:r><m:t>a" + QString(QChar(0x1)) + "</m:t></m:r>",
        "<m:r><m:t>a" + QString(QChar(0)) + "</m:t></m:r>",
        "<m:r>" + QString(QChar(0xFEFF)) + "<m:t>a</m:t></m:r>",
        QString(QChar(0xFEFF)) + QString(QChar(0xFEFF)) + "<m:r/>",
        "<m:oMath><m:r><m:t>x</m:t></m:r></m:oMath>" + QString(QChar(0x1)),
        "<w:document><m:oMathPara><m:oMath/></m:oMathPara></w:document>",
        "<m:oMathPara><m:oMath><m:r><m:t>1</m:t></m:r></m:oMath><m:oMath><m:r><m:t>2</m:t></m:r></m:oMath></"
        "m:oMathPara>",
    };
    for (const QString& xml : inputs)
        expectSameAsDom(xml);
}

// The one deliberate difference: the DOM parser cuts a character reference
// above U+FFFF to its low 16 bits; the streaming reader reads the character
// the reference names, as a surrogate pair, like the same character written
// as it is.
TEST(OmmlReaderAgainstDom, ReferencesAboveTheBmpNameTheirCharacter)
{
    const QString literal =
        modelText(readOmmlDocument(QString::fromUtf16(u"<m:r><m:t>\U0001D465</m:t></m:r>")));
    EXPECT_TRUE(literal.contains(QString::fromUtf16(u"<m:t>\U0001D465</m:t>")));
    for (const QString reference : {"&#x1D465;", "&#119909;"}) {
        const QString xml = "<m:r><m:t>" + reference + "</m:t></m:r>";
        EXPECT_EQ(modelText(readOmmlDocument(xml)), literal);
        EXPECT_TRUE(modelText(readOmmlDocumentDom(xml)).contains(QString::fromUtf16(u"<m:t>\uD465</m:t>")));
    }
    const QString chr = "<m:acc><m:accPr><m:chr m:val=\"&#x1F600;\"/></m:accPr></m:acc>";
    EXPECT_TRUE(modelText(readOmmlDocument(chr)).contains(QString::fromUtf16(u"m:val=\"\U0001F600\"")));
}

// Run text of only white space is content in both stages; indentation is not.
TEST(OmmlReaderAgainstDom, WhiteSpaceRunTextIsKeptAlike)
{
    for (const QString tag : {"m:t", "w:t"}) {
        KXmlElementTree tree;
        const QString xml = "<w:r>\n <" + tag + "> </" + tag + ">\n <x>\t</x>\n</w:r>";
        ASSERT_EQ(readXmlElementTree(xml, kMaxOmmlReadDepth, tree), KXmlStreamResult::read);
        EXPECT_EQ(KXmlElement(&tree, 0).text(), " ") << tag.toStdString();
    }
    // A carriage return in run text is kept as written only by the DOM parser,
    // so such text goes to it; in indentation it is dropped and streaming goes on.
    const QString crInRunText = "<m:r><m:t>\r\n</m:t></m:r>";
    EXPECT_FALSE(readsByStreaming(crInRunText));
    EXPECT_EQ(modelText(readOmmlDocument(crInRunText)), modelText(readOmmlDocumentDom(crInRunText)));
    EXPECT_TRUE(modelText(readOmmlDocument(crInRunText)).contains("<m:t xml:space=\"preserve\">\r\n</m:t>"));
    EXPECT_TRUE(readsByStreaming("<m:r>\r\n<m:t> </m:t>\r\n</m:r>"));
    for (const QString xml : {"<?xml version=\"1.0\"?>\n<m:r>\n<m:t> </m:t>\n</m:r>\n",
                              "<m:oMath> <m:r> <m:t>\u2009</m:t> </m:r> <m:r/> </m:oMath>"})
        expectSameAsDom(xml);
}

TEST(OmmlReaderAgainstDom, EveryKind)
{
    for (const KindCase& c : kindCases())
        expectSameAsDom(c.xml);
}

TEST(OmmlReaderAgainstDom, DeepDocumentsAreRefusedAlike)
{
    const auto nested = [](int depth) {
        return QString("<m:box><m:e>").repeated(depth / 2) + QString("</m:e></m:box>").repeated(depth / 2);
    };
    for (int depth : {998, 1000, 1002, 4000})
        expectSameAsDom(nested(depth));
}

} // namespace
