// The string writer against the QXmlStreamWriter it replaces: both must give
// the same text for every model, whatever characters its texts hold.
#include "omml_test_support.h"

#include <QXmlStreamWriter>

#include <gtest/gtest.h>

namespace {

QString throughStreamWriter(const KOmmlNode& node)
{
    QString text;
    QXmlStreamWriter xml(&text);
    xml.setAutoFormatting(false);
    writeOmmlNode(node, xml);
    return text;
}

QString paragraphThroughStreamWriter(const OMathParagraph& paragraph)
{
    QString text;
    QXmlStreamWriter xml(&text);
    xml.setAutoFormatting(false);
    writeOmmlParagraph(paragraph, xml);
    return text;
}

void expectSameAsStreamWriter(const KOmmlNode& node)
{
    const QString expected = throughStreamWriter(node);
    EXPECT_EQ(ommlNodeToXml(node), expected) << expected.toStdString();
}

// A run whose text, fonts and colour carry `text`, inside a delimiter whose
// fences and a matrix whose column texts carry it too: every place a text is written.
KOmmlNodePtr everyTextSlot(const QString& text)
{
    ORun r{text, {OScript::fraktur, OStyle::bold}, {}};
    r.wordProps.asciiFont = text;
    r.wordProps.hAnsiFont = text;
    r.wordProps.color = QColor(1, 2, 3);
    ODelimiter d{makeOmmlList(makeOmmlNode(std::move(r))), text, text, {}};
    OMatrix m;
    m.columns = {{text, OColumnJustification::left}};
    m.cGp = text;
    m.cGpRule = text;
    OMatrixRow row;
    row.push_back(makeOmmlList(makeOmmlNode(std::move(d))));
    m.rows.push_back(std::move(row));
    return makeOmmlNode(std::move(m));
}

TEST(OmmlWriterAgainstStreamWriter, EveryKind)
{
    for (const KindCase& c : kindCases())
        expectSameAsStreamWriter(*c.node);
    for (OJustification jc : {OJustification::centerGroup, OJustification::left, OJustification::center}) {
        OMathParagraph p{makeOmmlNode(OMathEquation{one("x")}), jc};
        EXPECT_EQ(ommlParagraphToXml(p), paragraphThroughStreamWriter(p));
    }
    EXPECT_EQ(ommlParagraphToXml(OMathParagraph{}), paragraphThroughStreamWriter(OMathParagraph{}));
}

TEST(OmmlWriterAgainstStreamWriter, EveryUtf16CodeUnitInEverySlot)
{
    // Code units in blocks, so that each block is one text; lone surrogates,
    // controls and U+FFFE/U+FFFF are among them and must be dropped alike.
    for (int first = 0; first < 0x10000; first += 0x800) {
        QString block;
        for (int u = first; u < first + 0x800; ++u)
            block += QChar(u);
        expectSameAsStreamWriter(*everyTextSlot(block));
    }
}

TEST(OmmlWriterAgainstStreamWriter, HostileAndEmptyTexts)
{
    const QString pair = QString::fromUtf16(u"\U0001D400");
    const QString cases[] = {
        QString(),
        " ",
        "\t\n\r",
        "a\r\nb",
        "<&>\"'",
        "]]>",
        pair,
        pair + pair.left(1),          // a pair, then a lone high surrogate at the end
        pair.right(1) + pair,         // a lone low surrogate before a pair
        QString(QChar(0xD800)) + "x", // a high surrogate followed by no low one
        QString(100000, QChar('&')),  // far longer than the room reserved up front
    };
    for (const QString& text : cases)
        expectSameAsStreamWriter(*everyTextSlot(text));
}

TEST(OmmlWriterAgainstStreamWriter, AppendsAfterExistingText)
{
    QString text = QStringLiteral("prefix");
    appendOmmlNode(*run("a<b"), text);
    EXPECT_EQ(text, "prefix" + throughStreamWriter(*run("a<b")));
}

} // namespace
