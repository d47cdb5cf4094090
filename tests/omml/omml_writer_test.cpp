#include "omml_test_support.h"

#include <QXmlStreamReader>

#include <gtest/gtest.h>

namespace {

template <class Alternative> QString write(Alternative&& alternative)
{
    return ommlNodeToXml(*makeOmmlNode(std::forward<Alternative>(alternative)));
}

TEST(OmmlWriter, EveryKindAsWholeElement)
{
    for (const KindCase& c : kindCases())
        EXPECT_EQ(ommlNodeToXml(*c.node), c.xml) << c.xml.toStdString();
}

TEST(OmmlWriter, ParagraphDeclaresNamespaceTwiceAndJustifies)
{
    EXPECT_EQ(ommlParagraphToXml(OMathParagraph{makeOmmlNode(OMathEquation{one("x")})}),
              paragraphXml("centerGroup", equationXml(runXml("x"))));
    const std::pair<int, const char*> texts[] = {
        {0, "centerGroup"}, {1, "left"}, {2, "right"}, {3, "center"}, {42, "centerGroup"}};
    for (const auto& [value, text] : texts)
        EXPECT_EQ(ommlParagraphToXml(OMathParagraph{nullptr, OJustification(value)}), paragraphXml(text, ""));
}

TEST(OmmlWriter, EnumerationTextsAndOutOfRangeFallbacks)
{
    auto has = [](const QString& xml, const char* element, const char* text) {
        return xml.contains(QString("<m:%1 m:val=\"%2\"/>").arg(element, text));
    };
    const std::pair<int, const char*> scripts[] = {{0, "roman"},         {1, "script"},     {2, "fraktur"},
                                                   {3, "double-struck"}, {4, "sans-serif"}, {5, "monospace"},
                                                   {6, "roman"},         {-1, "roman"}};
    for (const auto& [v, text] : scripts)
        EXPECT_TRUE(has(write(ORun{{}, {OScript(v), std::nullopt}, {}}), "scr", text)) << v;
    const std::pair<int, const char*> styles[] = {{0, "p"}, {1, "b"}, {2, "i"}, {3, "bi"}, {9, "p"}};
    for (const auto& [v, text] : styles)
        EXPECT_TRUE(has(write(ORun{{}, {OScript::roman, OStyle(v)}, {}}), "sty", text)) << v;
    const std::pair<int, const char*> vertical[] = {{0, "bot"}, {1, "top"}, {2, "center"}, {7, "center"}};
    for (const auto& [v, text] : vertical)
        EXPECT_TRUE(has(write(OGroupChar{{}, {}, "x", {}, OVerticalJustification(v)}), "vertJc", text)) << v;
    const std::pair<int, const char*> columns[] = {{0, "left"}, {1, "center"}, {2, "right"}, {5, "center"}};
    for (const auto& [v, text] : columns)
        EXPECT_TRUE(has(write(OMatrix{{}, {{{}, OColumnJustification(v)}}}), "mcJc", text)) << v;
    const std::pair<int, const char*> fractions[] = {{1, "nobar"}, {2, "lin"}, {3, "skw"}};
    for (const auto& [v, text] : fractions)
        EXPECT_TRUE(write(OFraction{{}, {}, {}, OFractionType(v)})
                        .startsWith(QString("<m:f><m:fPr><m:type m:val=\"%1\"/><m:ctrlPr>").arg(text)))
            << v;
}

TEST(OmmlWriter, NullChildrenAreSkipped)
{
    EXPECT_EQ(write(OMathEquation{makeOmmlList(nullptr, run("a"), nullptr)}), equationXml(runXml("a")));
    EXPECT_EQ(ommlParagraphToXml(OMathParagraph{}), paragraphXml("centerGroup", ""));
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
