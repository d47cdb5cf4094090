#include "omml_test_support.h"

#include <QXmlStreamReader>

#include <gtest/gtest.h>

namespace {

const auto write = [](auto&& alternative) { return ommlNodeToXml(*makeOmmlNode(std::move(alternative))); };

TEST(OmmlWriter, EveryKindAsWholeElement)
{
    for (const KindCase& c : kindCases())
        EXPECT_EQ(ommlNodeToXml(*c.node), c.xml) << c.xml.toStdString();
}

// The texts of in-range values are checked through the reader's property tests, which print what they read.
TEST(OmmlWriter, OutOfRangeValuesFallBack)
{
    EXPECT_EQ(ommlParagraphToXml(OMathParagraph{nullptr, OJustification(42)}),
              paragraphXml("centerGroup", ""));
    EXPECT_TRUE(write(ORun{{}, {OScript(6), OStyle(9)}, {}})
                    .contains("<m:scr m:val=\"roman\"/><m:sty m:val=\"p\"/>"));
    EXPECT_TRUE(write(ORun{{}, {OScript(-1), OStyle(-1)}, {}})
                    .contains("<m:scr m:val=\"roman\"/><m:sty m:val=\"p\"/>"));
    // A group character stands at the top or the bottom: any other value is written as top.
    for (int v : {2, 7})
        EXPECT_TRUE(write(OGroupChar{{}, {}, "x", {}, OVerticalJustification(v)})
                        .contains("<m:vertJc m:val=\"top\"/>"));
    EXPECT_TRUE(write(OMatrix{{}, {{{}, OColumnJustification(5)}}}).contains("<m:mcJc m:val=\"center\"/>"));
}

TEST(OmmlWriter, RunTextWithWhiteSpaceAtAnEndIsMarkedKept)
{
    const std::pair<QString, QString> cases[] = {
        {"a b", "<m:t>a b</m:t>"},
        {" ", "<m:t xml:space=\"preserve\"> </m:t>"},
        {"a\t", "<m:t xml:space=\"preserve\">a\t</m:t>"},
        {"\na", "<m:t xml:space=\"preserve\">\na</m:t>"},
        {QString(QChar(0x2005)) + "a", QString("<m:t>") + QChar(0x2005) + "a</m:t>"}, // not XML white space
        {"", "<m:t></m:t>"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_TRUE(write(ORun{text, {}, {}}).contains(expected)) << expected.toStdString();
}

TEST(OmmlWriter, NullChildrenAreSkipped)
{
    EXPECT_EQ(write(OMathEquation{makeOmmlList(nullptr, run("a"), nullptr)}), equationXml(runXml("a")));
}

bool isWellFormed(const QString& xml)
{
    // A fragment: the m: and w: prefixes are declared by the enclosing document.
    QXmlStreamReader reader(xml);
    reader.setNamespaceProcessing(false);
    while (!reader.atEnd())
        reader.readNext();
    return !reader.hasError();
}

TEST(OmmlWriter, ForbiddenCharactersAreLeftOut)
{
    const QString hostile = QString("a") + QChar(0x1) + QChar(0xD800) + "b" + QChar(0xFFFE) + QChar(0xFFFF) +
                            QChar(0xDC00) + "<&>\"" + QChar(0x9) + QChar(0xD83D) + QChar(0xDE00);
    ORun r{hostile, {}, {}};
    r.wordProps.asciiFont = hostile;
    const QString xml = write(std::move(r));
    EXPECT_TRUE(isWellFormed(xml)) << xml.toStdString();
    EXPECT_TRUE(xml.contains(QString("<m:t>ab&lt;&amp;&gt;&quot;\t\U0001F600</m:t>"))) << xml.toStdString();
    EXPECT_TRUE(write(ODelimiter{{}, QString(QChar(0xDBFF)), QString(QChar(0x1F))})
                    .contains("<m:begChr m:val=\"\"/><m:endChr m:val=\"\"/>"));
}

TEST(OmmlWriter, DeepNestingStaysBounded)
{
    KOmmlNodePtr node = run("x");
    for (int i = 0; i < 100000; ++i)
        node = makeOmmlNode(OSuperscript{makeOmmlList(std::move(node)), {}, {}});
    const QString xml = ommlNodeToXml(*node);
    EXPECT_TRUE(isWellFormed(xml));
    EXPECT_FALSE(xml.contains("<m:t>x</m:t>"));
    // Tear the chain down iteratively so the test itself does not recurse 100,000 levels.
    while (node) {
        auto& sup = std::get<OSuperscript>(node->value);
        KOmmlNodePtr next = sup.e.empty() ? nullptr : std::move(sup.e.front());
        if (next && !std::holds_alternative<OSuperscript>(next->value))
            next.reset();
        node = std::move(next);
    }
}

} // namespace
