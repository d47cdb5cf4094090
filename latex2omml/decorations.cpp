// Marks on or around an argument: accents and marks below, bars, the negation
// slash, cancellation strokes, horizontal braces and brackets, and extensible
// arrows with labels.
#include "latex2omml/handlers.h"
#include "latex2omml/tables.h"

#include <QHash>
#include <QSet>

namespace {

// Hides the four sides of a border box so that only its strokes show.
OBorderBox strokeBox(KOmmlNodeList content, const OControlProperties& ctrlPr)
{
    OBorderBox box;
    box.e = std::move(content);
    box.ctrlPr = ctrlPr;
    box.hideTop = box.hideBot = box.hideLeft = box.hideRight = true;
    return box;
}

// Accents and marks below share one shape: the mark comes from the command table.
KOmmlNodeList markedAccent(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    if (!hasExactArguments(command.args, 1))
        return {};
    KOmmlNodeList converted = ast.convert(*command.args[0].node);
    const KLatexSymbol* entry = lookupCommand(command.name);
    if (!entry)
        return {};
    OAccent accent;
    accent.e = std::move(converted);
    accent.ctrlPr = ast.currentStyle();
    accent.chr = entry->text;
    return makeOmmlList(makeOmmlNode(std::move(accent)));
}

const QHash<QString, OPosition>& barPositions()
{
    static const QHash<QString, OPosition> table = {
        {QStringLiteral("overline"), OPosition::top},
        {QStringLiteral("underline"), OPosition::bottom},
        {QStringLiteral("underbar"), OPosition::bottom},
    };
    return table;
}

struct KCancelStrokes {
    bool rising;  // bottom left to top right
    bool falling; // top left to bottom right
    bool withValue;
};

const QHash<QString, KCancelStrokes>& cancelStrokes()
{
    static const QHash<QString, KCancelStrokes> table = {
        {QStringLiteral("cancel"), {true, false, false}},
        {QStringLiteral("bcancel"), {false, true, false}},
        {QStringLiteral("xcancel"), {true, true, false}},
        {QStringLiteral("cancelto"), {true, false, true}},
    };
    return table;
}

// A horizontal brace or bracket: the character sits on the side named by pos,
// and the whole is aligned on the opposite side.
struct KGroupPlacement {
    OPosition pos;
    OVerticalJustification vertJc;
};
constexpr KGroupPlacement kOverPlacement = {OPosition::top, OVerticalJustification::bottom};
constexpr KGroupPlacement kUnderPlacement = {OPosition::bottom, OVerticalJustification::top};

KOmmlNodeList groupCharacter(KLatexAst2Omml& ast, const KLatexCommand& command, const QSet<QString>& accepted,
                             KGroupPlacement placement)
{
    if (!accepted.contains(command.name))
        return literal(ast, command);
    const KLatexSymbol* entry = lookupCommand(command.name);
    if (!entry)
        return {};
    OGroupChar group;
    group.e = ast.convertArgument(command.args, 0);
    group.chr = entry->text;
    group.pos = placement.pos;
    group.vertJc = placement.vertJc;
    // Braces and brackets are drawn in the slanted face, as a typeset brace is.
    group.ctrlPr = ast.currentStyle();
    group.ctrlPr.wordProps.italic = true;
    return makeOmmlList(makeOmmlNode(std::move(group)));
}

const QHash<QString, QString>& arrowCharacters()
{
    static const QHash<QString, QString> table = {
        {QStringLiteral("xrightarrow"), QStringLiteral("\u2192")},
        {QStringLiteral("xleftarrow"), QStringLiteral("\u2190")},
        {QStringLiteral("xRightarrow"), QStringLiteral("\u21D2")},
        {QStringLiteral("xLeftarrow"), QStringLiteral("\u21D0")},
        {QStringLiteral("xLeftrightarrow"), QStringLiteral("\u21D4")},
        {QStringLiteral("xleftrightarrow"), QStringLiteral("\u2194")},
        {QStringLiteral("xhookleftarrow"), QStringLiteral("\u21A9")},
        {QStringLiteral("xhookrightarrow"), QStringLiteral("\u21AA")},
        {QStringLiteral("xmapsto"), QStringLiteral("\u21A6")},
        {QStringLiteral("xtwoheadrightarrow"), QStringLiteral("\u21A0")},
        {QStringLiteral("xtwoheadleftarrow"), QStringLiteral("\u219E")},
        {QStringLiteral("xlongequal"), QStringLiteral("=")},
        {QStringLiteral("xtofrom"), QStringLiteral("\u21C4")},
        {QStringLiteral("xleftharpoondown"), QStringLiteral("\u21BD")},
        {QStringLiteral("xleftharpoonup"), QStringLiteral("\u21BC")},
        {QStringLiteral("xrightharpoondown"), QStringLiteral("\u21C1")},
        {QStringLiteral("xrightharpoonup"), QStringLiteral("\u21C0")},
        {QStringLiteral("xleftrightharpoons"), QStringLiteral("\u21CB")},
        {QStringLiteral("xrightleftharpoons"), QStringLiteral("\u21CC")},
    };
    return table;
}

// How wide a label is, for choosing which label the arrow hugs: text counts its
// code units, every structure counts one.
int labelLength(const KOmmlNodeList& label)
{
    int length = 0;
    for (const auto& node : label) {
        if (!node)
            continue;
        const auto* run = ommlAs<ORun>(node.get());
        length += run ? run->text.size() : 1;
    }
    return length;
}

KOmmlNodePtr arrowOver(KOmmlNodeList label, const QString& arrow, KGroupPlacement placement,
                       const OControlProperties& ctrlPr)
{
    OGroupChar group;
    group.e = std::move(label);
    group.ctrlPr = ctrlPr;
    group.chr = arrow;
    group.pos = placement.pos;
    group.vertJc = placement.vertJc;
    return makeOmmlNode(std::move(group));
}

} // namespace

KOmmlNodeList accent(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    return markedAccent(ast, command);
}

KOmmlNodeList underAccent(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    return markedAccent(ast, command);
}

KOmmlNodeList bar(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    if (!hasExactArguments(command.args, 1))
        return {};
    KOmmlNodeList converted = ast.convert(*command.args[0].node);
    const auto found = barPositions().constFind(command.name);
    if (found == barPositions().constEnd())
        return {};
    OBar line;
    line.e = std::move(converted);
    line.pos = *found;
    return makeOmmlList(makeOmmlNode(std::move(line)));
}

KOmmlNodeList negation(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    const KLatexNode* base = argumentNode(command.args, 0);
    if (!base)
        return {};
    KOmmlNodeList converted = ast.convert(*base);
    const OControlProperties& style = ast.currentStyle();
    KOmmlNodeList result;
    for (auto& node : converted) {
        if (!node)
            continue;
        if (const auto* run = ommlAs<ORun>(node.get())) {
            // Text is struck through character by character, with a falling slash.
            for (const QChar unit : run->text) {
                OBorderBox box = strokeBox(
                    makeOmmlList(makeOmmlNode(ORun{QString(unit), run->mathProps, run->wordProps})), style);
                box.strikeTLBR = true;
                result.push_back(makeOmmlNode(std::move(box)));
            }
            continue;
        }
        OBorderBox box = strokeBox(makeOmmlList(std::move(node)), style);
        box.strikeBLTR = true;
        result.push_back(makeOmmlNode(std::move(box)));
    }
    return result;
}

KOmmlNodeList cancel(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    const auto found = cancelStrokes().constFind(command.name);
    if (found == cancelStrokes().constEnd())
        return {};
    const KLatexNode* first = argumentNode(command.args, 0);
    if (!first)
        return {};
    if (!found->withValue) {
        OBorderBox box = strokeBox(ast.convert(*first), ast.currentStyle());
        box.strikeBLTR = found->rising;
        box.strikeTLBR = found->falling;
        return makeOmmlList(makeOmmlNode(std::move(box)));
    }

    // \cancelto{value}{content}: the struck content carries the value as a superscript.
    const KLatexNode* content = argumentNode(command.args, 1);
    if (!content)
        return {};
    OBorderBox box = strokeBox(ast.convert(*content), ast.currentStyle());
    box.strikeBLTR = found->rising;
    box.strikeTLBR = found->falling;
    OSuperscript script;
    script.e = makeOmmlList(makeOmmlNode(std::move(box)));
    script.sup = ast.convert(*first);
    return makeOmmlList(makeOmmlNode(std::move(script)));
}

KOmmlNodeList overGroup(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    static const QSet<QString> accepted = {QStringLiteral("overbrace"),     QStringLiteral("overbracket"),
                                           QStringLiteral("overparen"),     QStringLiteral("overequal"),
                                           QStringLiteral("wideparen"),     QStringLiteral("overgroup"),
                                           QStringLiteral("Overrightarrow")};
    return groupCharacter(ast, command, accepted, kOverPlacement);
}

KOmmlNodeList underGroup(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    static const QSet<QString> accepted = {QStringLiteral("underbrace"), QStringLiteral("underbracket"),
                                           QStringLiteral("underparen"), QStringLiteral("undergroup")};
    return groupCharacter(ast, command, accepted, kUnderPlacement);
}

KOmmlNodeList labelledBrace(KLatexAst2Omml& ast, const KLatexScript& script)
{
    // TeX sets the scripts of \overbrace and \underbrace as limits: the label over
    // or under the brace, centred on it, and a script on the other side under or
    // over the content.
    const auto* base = latexAs<KLatexCommand>(script.base.get());
    if (!base)
        return {};
    const bool over = base->name.startsWith(QLatin1String("over"));
    KOmmlNodeList built = over ? overGroup(ast, *base) : underGroup(ast, *base);
    if (built.size() != 1 || !ommlAs<OGroupChar>(built.front().get()))
        return built; // not a brace: nothing to label
    KOmmlNodePtr node = std::move(built.front());
    auto place = [&ast, &node](const KLatexNode* label, bool above) {
        if (!label)
            return;
        KOmmlNodeList converted = ast.convert(*label);
        if (above) {
            OLimitUpper upper;
            upper.e = makeOmmlList(std::move(node));
            upper.lim = std::move(converted);
            upper.ctrlPr = ast.currentStyle();
            node = makeOmmlNode(std::move(upper));
        } else {
            OLimitLower lower;
            lower.e = makeOmmlList(std::move(node));
            lower.lim = std::move(converted);
            lower.ctrlPr = ast.currentStyle();
            node = makeOmmlNode(std::move(lower));
        }
    };
    place(over ? script.sup.get() : script.sub.get(), over);
    place(over ? script.sub.get() : script.sup.get(), !over);
    return makeOmmlList(std::move(node));
}

KOmmlNodeList extensibleArrow(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    const QString arrow = arrowCharacters().value(command.name);
    KOmmlNodeList above;
    KOmmlNodeList below;
    for (const KLatexArg& argument : command.args) {
        if (!argument.node)
            continue;
        (argument.optional ? below : above) = ast.convert(*argument.node);
    }

    const OControlProperties& style = ast.currentStyle();
    if (above.empty() && below.empty())
        return makeOmmlList(makePlainRun(arrow));
    if (below.empty())
        return makeOmmlList(arrowOver(std::move(above), arrow, kUnderPlacement, style));
    if (above.empty())
        return makeOmmlList(arrowOver(std::move(below), arrow, kOverPlacement, style));

    // With two labels the arrow hugs the longer one and the other goes on the far side.
    if (labelLength(below) >= labelLength(above)) {
        OLimitUpper upper;
        upper.e = makeOmmlList(arrowOver(std::move(below), arrow, kOverPlacement, style));
        upper.lim = std::move(above);
        upper.ctrlPr = style;
        return makeOmmlList(makeOmmlNode(std::move(upper)));
    }
    OLimitLower lower;
    lower.e = makeOmmlList(arrowOver(std::move(above), arrow, kUnderPlacement, style));
    lower.lim = std::move(below);
    lower.ctrlPr = style;
    return makeOmmlList(makeOmmlNode(std::move(lower)));
}
