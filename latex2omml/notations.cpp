// Notations around an argument: brackets of quantum states and sets, frames open
// on some sides, circled letters, overlapping and raised content, and the
// commands that only link or label their content for a web page.
#include "latex2omml/handlers.h"
#include "latex2omml/tables.h"

#include <QHash>

namespace {

// ---- brackets ----------------------------------------------------------------

struct KBracketForm {
    const char16_t* open;
    const char16_t* close;
    bool grows; // the capitalised forms grow with their content
};

const QHash<QString, KBracketForm>& bracketForms()
{
    static const QHash<QString, KBracketForm> table = {
        {QStringLiteral("bra"), {u"\u27E8", u"|", false}},
        {QStringLiteral("Bra"), {u"\u27E8", u"|", true}},
        {QStringLiteral("ket"), {u"|", u"\u27E9", false}},
        {QStringLiteral("Ket"), {u"|", u"\u27E9", true}},
        {QStringLiteral("braket"), {u"\u27E8", u"\u27E9", false}},
        {QStringLiteral("Braket"), {u"\u27E8", u"\u27E9", true}},
        {QStringLiteral("set"), {u"{", u"}", false}},
        {QStringLiteral("Set"), {u"{", u"}", true}},
    };
    return table;
}

// ---- frames open on some sides -----------------------------------------------

struct KSides {
    bool top, bottom, left, right;
    bool strikeH;
};

const QHash<QString, KSides>& partialFrames()
{
    static const QHash<QString, KSides> table = {
        // The actuarial angle: a rule over the argument that turns down at its right end.
        {QStringLiteral("angl"), {true, false, false, true, false}},
        {QStringLiteral("angln"), {true, false, false, true, false}},
        // A phase angle: a rule under the argument with a slanted stroke at its left.
        {QStringLiteral("phase"), {false, true, true, false, false}},
        // Struck-out text: a horizontal stroke and no frame.
        {QStringLiteral("sout"), {false, false, false, false, true}},
    };
    return table;
}

OBorderBox frameWithSides(KOmmlNodeList content, const OControlProperties& style, const KSides& sides)
{
    OBorderBox box;
    box.e = std::move(content);
    box.ctrlPr = style;
    box.hideTop = !sides.top;
    box.hideBot = !sides.bottom;
    box.hideLeft = !sides.left;
    box.hideRight = !sides.right;
    box.strikeH = sides.strikeH;
    return box;
}

// The circled form of one letter or digit, or empty when there is none.
QString circledCharacter(const QString& text)
{
    if (text.size() != 1)
        return QString();
    const char16_t c = text.at(0).unicode();
    if (c >= u'A' && c <= u'Z')
        return QString(QChar(char16_t(0x24B6 + (c - u'A'))));
    if (c >= u'a' && c <= u'z')
        return QString(QChar(char16_t(0x24D0 + (c - u'a'))));
    if (c == u'0')
        return QString(QChar(char16_t(0x24EA)));
    if (c >= u'1' && c <= u'9')
        return QString(QChar(char16_t(0x2460 + (c - u'1'))));
    return QString();
}

// ---- content of web-page commands --------------------------------------------

// Which mandatory argument of a linking or labelling command is the visible content (from 0);
// -1 where nothing is visible in a formula.
const QHash<QString, int>& visibleArgument()
{
    static const QHash<QString, int> table = {
        {QStringLiteral("href"), 1},     {QStringLiteral("htmlClass"), 1},
        {QStringLiteral("htmlId"), 1},   {QStringLiteral("htmlStyle"), 1},
        {QStringLiteral("htmlData"), 1}, {QStringLiteral("mathchoice"), 0},
        {QStringLiteral("raisebox"), 1}, {QStringLiteral("includegraphics"), -1},
    };
    return table;
}

} // namespace

KOmmlNodeList bracketed(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    const KLatexNode* content = argumentNode(command.args, 0);
    const auto found = bracketForms().constFind(command.name);
    if (!content || found == bracketForms().constEnd())
        return {};
    KOmmlNodeList inner = ast.convert(*content);
    if (found->grows) {
        ODelimiter fence;
        fence.begChr = QString::fromUtf16(found->open);
        fence.endChr = QString::fromUtf16(found->close);
        fence.e = std::move(inner);
        fence.ctrlPr = ast.currentStyle();
        return makeOmmlList(makeOmmlNode(std::move(fence)));
    }
    KOmmlNodeList result = makeOmmlList(ast.makeStyledRun(QString::fromUtf16(found->open)));
    appendNodes(result, std::move(inner));
    result.push_back(ast.makeStyledRun(QString::fromUtf16(found->close)));
    return result;
}

KOmmlNodeList partialFrame(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    const auto found = partialFrames().constFind(command.name);
    if (found == partialFrames().constEnd())
        return {};
    // \angln is the angle around the letter n, as annuities write it.
    KOmmlNodeList content;
    if (command.name == QLatin1String("angln")) {
        content = makeOmmlList(ast.makeStyledRun(QStringLiteral("n")));
    } else {
        const KLatexNode* argument = argumentNode(command.args, 0);
        if (!argument)
            return {};
        content = ast.convert(*argument);
    }
    return makeOmmlList(makeOmmlNode(frameWithSides(std::move(content), ast.currentStyle(), *found)));
}

KOmmlNodeList circled(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    const KLatexNode* argument = argumentNode(command.args, 0);
    if (!argument)
        return {};
    const QString character = circledCharacter(plainText(argument).trimmed());
    if (!character.isEmpty())
        return makeOmmlList(ast.makeStyledRun(character));
    // Anything longer than one letter or digit goes into a round frame, drawn as a full one.
    return makeOmmlList(makeOmmlNode(
        frameWithSides(ast.convert(*argument), ast.currentStyle(), KSides{true, true, true, true, false})));
}

KOmmlNodeList visibleContent(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    const auto found = visibleArgument().constFind(command.name);
    if (found == visibleArgument().constEnd() || *found < 0)
        return {};
    std::size_t index = 0;
    for (const KLatexArg& arg : command.args) {
        if (arg.optional)
            continue;
        if (index++ == std::size_t(*found))
            return ast.convert(arg.node.get());
    }
    return {};
}

KOmmlNodeList uprightName(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    const KLatexSymbol* entry = lookupCommand(command.name);
    if (!entry || entry->text.isEmpty())
        return {};
    ast.pushStyle(uprightStyle(ast.currentStyle()));
    KOmmlNodeList result = makeOmmlList(ast.makeStyledRun(entry->text));
    ast.popStyle();
    return result;
}

KOmmlNodeList linkText(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    // \url{address}: the address itself, in a typewriter face.
    const KLatexNode* address = argumentNode(command.args, 0);
    if (!address)
        return {};
    OControlProperties style = ast.currentStyle();
    style.mathProps = OMathRunProperties{};
    style.mathProps->script = OScript::monospace;
    style.mathProps->style = OStyle::plain;
    ast.pushStyle(style);
    KOmmlNodeList result = ast.convert(*address);
    ast.popStyle();
    return result;
}
