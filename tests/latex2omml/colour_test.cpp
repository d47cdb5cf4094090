#include "latex2omml/handlers.h"
#include "omml/omml_reader.h"
#include "omml_text.h"

using namespace omml_text;

namespace {

const QString kNs = QStringLiteral("http://schemas.openxmlformats.org/officeDocument/2006/math");

QString paragraph(const QString& content)
{
    const QString ns =
        "xmlns:m=\"" + kNs + "\" xmlns:w=\"http://schemas.openxmlformats.org/wordprocessingml/2006/main\"";
    const QString equation = "<m:oMath " + ns;
    return "<m:oMathPara " + ns + "><m:oMathParaPr>" + val("m:jc", "centerGroup") + "</m:oMathParaPr>" +
           (content.isEmpty() ? equation + "/>" : equation + ">" + content + "</m:oMath>") + "</m:oMathPara>";
}

// Every element kind once, its runs in `look`; `own` is the control properties of
// the kinds that carry their own colour, the others keep the default ones.
QString everyKind(const Look& look, const QString& own)
{
    const QString a = r("a", look), b = r("b", look);
    return a + frac(a, b, "", own) + sSup(a, b) + sSub(a, b) + sSubSup(a, b, a) + rad(a, b, false, own) +
           rad(a, QString(), true, own) + nary(QStringLiteral("\u222B"), false, false, false, b, a, a, own) +
           limLow(a, b) + limUpp(a, b) + func(a, b, own) + d("(", ")", a, own) +
           acc(QStringLiteral("\u0302"), a, own) + bar("top", a) + frame(a, own) +
           groupChr(QStringLiteral("\u23DF"), "bot", "top", a, own) +
           matrix({"center", "center"}, {{a, b}, {a}}, own) + box(a, own) + eqArr({a, b}) + phant(a) +
           sPre(a, b, a);
}

QString painted(const QString& xml, const QString& name)
{
    KOmmlNodePtr node = readOmmlDocument(xml);
    if (!node)
        return QStringLiteral("<unreadable>");
    applyColour(*node, name);
    return ommlNodeToXml(*node);
}

TEST(ColourPass, PaintsRunsAndTheControlPropertiesOfEveryKindThatHasThem)
{
    const QString plain = paragraph(everyKind(Look(), kCtrl));
    ASSERT_EQ(painted(plain, ""), plain);
    EXPECT_EQ(painted(plain, "red"), paragraph(everyKind(colour("ff0000"), ctrl(colour("ff0000")))));
    // An earlier colour is replaced.
    EXPECT_EQ(painted(paragraph(everyKind(colour("0000ff"), kCtrl)), "red"),
              paragraph(everyKind(colour("ff0000"), ctrl(colour("ff0000")))));
    EXPECT_EQ(painted(paragraph(""), "red"), paragraph(""));
}

TEST(ColourPass, EmptyNameSetsOnlyTheNodeItself)
{
    // The structure's own colour is set (to the invalid colour an empty name
    // gives); nothing below it is touched.
    KOmmlNodePtr node = readOmmlDocument(frac(r("a"), r("b", colour("0000ff"))));
    applyColour(*node, QString());
    const auto* fraction = ommlAs<OFraction>(node.get());
    ASSERT_TRUE(fraction->ctrlPr.wordProps.color.has_value());
    EXPECT_FALSE(fraction->ctrlPr.wordProps.color->isValid());
    EXPECT_FALSE(ommlAs<ORun>(fraction->num[0].get())->wordProps.color.has_value());
    EXPECT_EQ(*ommlAs<ORun>(fraction->den[0].get())->wordProps.color, QColor(0, 0, 255));
}

TEST(ColourPass, NameFormsThatQColorReads)
{
    const std::pair<const char*, const char*> names[] = {
        {"red", "ff0000"},       {"#F00", "ff0000"},       {"#ff8000", "ff8000"},  {"DarkGreen", "006400"},
        {"#80ff0000", "ff0000"}, {"#fff000000", "ff0000"}, {"nonsense", "000000"},
    };
    for (const auto& [name, written] : names)
        EXPECT_EQ(painted(r("a"), name), r("a", colour(written))) << name;
}

TEST(ColourPass, VeryDeepTreesStopWithoutCrashing)
{
    KOmmlNodePtr node = makeOmmlNode(ORun{QStringLiteral("a"), {}, {}});
    for (int i = 0; i < 5000; ++i)
        node = makeOmmlNode(OBox{makeOmmlList(std::move(node)), {}, true});
    applyColour(*node, QStringLiteral("red"));
    // The outer boxes are painted; the innermost run lies beyond the depth limit.
    EXPECT_TRUE(ommlAs<OBox>(node.get())->ctrlPr.wordProps.color.has_value());
    const KOmmlNode* innermost = node.get();
    while (const auto* box = ommlAs<OBox>(innermost))
        innermost = box->e[0].get();
    EXPECT_FALSE(ommlAs<ORun>(innermost)->wordProps.color.has_value());
    // Release the chain iteratively so that destruction does not recurse 5000 levels.
    while (auto* box = ommlAs<OBox>(node.get())) {
        KOmmlNodePtr child = std::move(box->e[0]);
        node = std::move(child);
    }
}

} // namespace
