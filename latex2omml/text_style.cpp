// Commands that change how their argument looks rather than building structure:
// math alphabets and text fonts (through the style stack), colour, boxes,
// explicit spaces and the modulo notations.
#include "latex2omml/handlers.h"

#include <QHash>
#include <QRegularExpression>

#include <optional>

namespace {

KOmmlNodeList convertStyled(KLatexAst2Omml& ast, const OControlProperties& style, const KLatexNode& node)
{
    ast.pushStyle(style);
    KOmmlNodeList result = ast.convert(node);
    ast.popStyle();
    return result;
}

// ---- math alphabets ----------------------------------------------------------

struct KMathAlphabet {
    std::optional<OScript> script;
    std::optional<OStyle> style;
    bool operatorName = false; // \mathop: the argument becomes the name of a function
};

const QHash<QString, KMathAlphabet>& mathAlphabets()
{
    static const QHash<QString, KMathAlphabet> table = {
        {QStringLiteral("mathbb"), {OScript::doubleStruck, {}}},
        {QStringLiteral("mathbf"), {{}, OStyle::bold}},
        {QStringLiteral("bf"), {{}, OStyle::bold}},
        {QStringLiteral("boldsymbol"), {{}, OStyle::boldItalic}},
        {QStringLiteral("pmb"), {{}, OStyle::boldItalic}},
        {QStringLiteral("mathcal"), {OScript::script, {}}},
        {QStringLiteral("mathscr"), {OScript::script, {}}},
        {QStringLiteral("cal"), {OScript::script, {}}},
        {QStringLiteral("mathit"), {{}, OStyle::italic}},
        {QStringLiteral("it"), {{}, OStyle::italic}},
        {QStringLiteral("mathrm"), {{}, OStyle::plain}},
        {QStringLiteral("rm"), {{}, OStyle::plain}},
        {QStringLiteral("mathfrak"), {OScript::fraktur, {}}},
        {QStringLiteral("mathsf"), {OScript::sansSerif, {}}},
        {QStringLiteral("sf"), {OScript::sansSerif, {}}},
        {QStringLiteral("mathtt"), {OScript::monospace, {}}},
        {QStringLiteral("tt"), {OScript::monospace, {}}},
        {QStringLiteral("mathop"), {{}, OStyle::plain, true}},
        {QStringLiteral("mathrel"), {{}, OStyle::plain}},
        {QStringLiteral("mathbin"), {{}, OStyle::plain}},
        {QStringLiteral("mathord"), {{}, OStyle::plain}},
        {QStringLiteral("mathpunct"), {{}, OStyle::plain}},
        {QStringLiteral("mathopen"), {{}, OStyle::plain}},
        {QStringLiteral("mathclose"), {{}, OStyle::plain}},
        {QStringLiteral("mathinner"), {{}, OStyle::plain}},
    };
    return table;
}

// ---- text fonts --------------------------------------------------------------

struct KTextFont {
    std::optional<OScript> script;
    std::optional<OStyle> style;
    bool bold = false;
    bool italic = false;
};

const QHash<QString, KTextFont>& textFonts()
{
    static const QHash<QString, KTextFont> table = {
        {QStringLiteral("text"), {}},
        {QStringLiteral("textrm"), {}},
        {QStringLiteral("textnormal"), {}},
        {QStringLiteral("textup"), {}},
        {QStringLiteral("textmd"), {}},
        {QStringLiteral("textsl"), {}},
        {QStringLiteral("textsc"), {}},
        {QStringLiteral("textbf"), {{}, OStyle::bold, true, false}},
        {QStringLiteral("textit"), {{}, OStyle::italic, false, true}},
        {QStringLiteral("emph"), {{}, OStyle::italic, false, true}},
        {QStringLiteral("textsf"), {OScript::sansSerif, {}}},
        {QStringLiteral("texttt"), {OScript::monospace, {}}},
    };
    return table;
}

// ---- colour ------------------------------------------------------------------

const QString kDefaultColour = QStringLiteral("#000000");

// The colour text of a \color argument. The lexer delivers a colour name as one
// text; `\#` followed by six hex digits is the hexadecimal form.
QString colourText(const KLatexNode& spec)
{
    if (const auto* text = latexAs<KLatexText>(&spec))
        return text->text;
    const auto* group = latexAs<KLatexGroup>(&spec);
    if (!group || group->children.empty())
        return kDefaultColour;
    QString value;
    bool hexadecimal = false;
    for (const auto& child : group->children) {
        if (const auto* text = latexAs<KLatexText>(child.get()))
            value = text->text;
        else if (const auto* command = latexAs<KLatexCommand>(child.get()))
            hexadecimal = hexadecimal || command->name == QLatin1String("#");
    }
    if (value.isEmpty())
        return kDefaultColour;
    if (!hexadecimal)
        return value;
    static const QRegularExpression sixHexDigits(QStringLiteral("^[0-9A-Fa-f]{6}$"));
    return sixHexDigits.match(value).hasMatch() ? QLatin1Char('#') + value : kDefaultColour;
}

// ---- boxes -------------------------------------------------------------------

enum class KBoxKind { border, noBreak };

const QHash<QString, KBoxKind>& boxKinds()
{
    static const QHash<QString, KBoxKind> table = {
        {QStringLiteral("fbox"), KBoxKind::border},  {QStringLiteral("boxed"), KBoxKind::border},
        {QStringLiteral("mbox"), KBoxKind::noBreak}, {QStringLiteral("hbox"), KBoxKind::noBreak},
        {QStringLiteral("vbox"), KBoxKind::noBreak},
    };
    return table;
}

// ---- spaces ------------------------------------------------------------------

// The widths are in em; a dimension in another unit is first converted.
struct KSpaceStep {
    double minimum;
    const char16_t* text;
};
constexpr KSpaceStep kSpaceSteps[] = {
    {2.0, u"\u2003\u2003"}, {1.0, u"\u2003"}, {0.5, u"\u2002"}, {0.25, u"\u2004"}, {0.16, u"\u2005"},
};
const char16_t* const kThinSpace = u"\u2009";

const QHash<QString, double>& unitsPerEm()
{
    // mu is 1/18 em; a point is taken as 1/12 em and an ex as half an em. Other
    // units, and a bare number, count as em.
    static const QHash<QString, double> table = {
        {QStringLiteral("mu"), 1.0 / 18.0},
        {QStringLiteral("pt"), 1.0 / 12.0},
        {QStringLiteral("ex"), 0.5},
    };
    return table;
}

QString dimensionText(const KLatexNode* node)
{
    if (const auto* text = latexAs<KLatexText>(node))
        return text->text;
    QString joined;
    if (const auto* group = latexAs<KLatexGroup>(node))
        for (const auto& child : group->children)
            if (const auto* text = latexAs<KLatexText>(child.get()))
                joined += text->text;
    return joined;
}

// ---- modulo ------------------------------------------------------------------

// A piece is a run of fixed text, or (text null) the converted argument.
struct KModuloPiece {
    const char16_t* text;
};
struct KModuloForm {
    bool readsArgument;
    std::vector<KModuloPiece> pieces;
};

const QHash<QString, KModuloForm>& moduloForms()
{
    static const QHash<QString, KModuloForm> table = {
        {QStringLiteral("bmod"), {false, {{u"\u2005"}, {u"mod"}, {u"\u2005"}}}},
        {QStringLiteral("pmod"), {true, {{u"\u2005"}, {u"(mod\u2009"}, {nullptr}, {u")\u2009"}}}},
        {QStringLiteral("pod"), {true, {{u"\u2005"}, {u"("}, {nullptr}, {u")\u2009"}}}},
        {QStringLiteral("mod"), {true, {{u"\u2005"}, {u"mod\u2009"}, {nullptr}, {u"\u2009"}}}},
    };
    return table;
}

} // namespace

KOmmlNodeList mathFont(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    const KLatexNode* content = argumentNode(command.args, 0);
    if (!content)
        return {};
    const auto found = mathAlphabets().constFind(command.name);
    if (found == mathAlphabets().constEnd())
        return ast.convert(*content);

    // Every alphabet starts again from upright roman, so \mathbf{\mathit{x}} is italic only.
    OControlProperties style = ast.currentStyle();
    style.mathProps = OMathRunProperties{};
    if (found->script)
        style.mathProps->script = *found->script;
    if (found->style)
        style.mathProps->style = *found->style;
    KOmmlNodeList converted = convertStyled(ast, style, *content);
    if (!found->operatorName)
        return converted;

    // The group post-pass hands the following node to the function as its operand.
    OFunction function;
    function.fName = std::move(converted);
    function.ctrlPr = ast.currentStyle();
    return makeOmmlList(makeOmmlNode(std::move(function)));
}

KOmmlNodeList textFont(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    const KLatexNode* content = argumentNode(command.args, 0);
    if (!content)
        return {};
    OControlProperties style = ast.currentStyle();
    if (!style.mathProps)
        style.mathProps = OMathRunProperties{};
    const auto found = textFonts().constFind(command.name);
    if (found != textFonts().constEnd()) {
        if (found->script)
            style.mathProps->script = *found->script;
        if (found->style)
            style.mathProps->style = *found->style;
        if (found->bold)
            style.wordProps.bold = true;
        if (found->italic)
            style.wordProps.italic = true;
    }
    return convertStyled(ast, style, *content);
}

// The arguments after an optional colour model ([rgb]), which has no OMML form.
KLatexArgs::const_iterator afterColourModel(const KLatexArgs& args)
{
    return !args.empty() && args.front().optional ? args.begin() + 1 : args.begin();
}

KOmmlNodeList color(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    const auto first = afterColourModel(command.args);
    if (command.args.end() - first != 2 || !first[0].node || !first[1].node)
        return {};
    const QString name = colourText(*first[0].node);
    KOmmlNodeList converted = ast.convert(*first[1].node);
    if (name.isEmpty())
        return {};
    for (auto& node : converted)
        if (node)
            applyColour(*node, name);
    return converted;
}

KOmmlNodeList colorBox(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    // The colours have no OMML form; only the content, the last argument, is kept (\colorbox{c}{x},
    // \fcolorbox{frame}{background}{x}).
    const auto first = afterColourModel(command.args);
    if (command.args.end() - first < 2 || !first[0].node)
        return {};
    return ast.convert(command.args.back().node.get());
}

KOmmlNodeList box(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    const KLatexNode* content = argumentNode(command.args, 0);
    if (!content)
        return {};
    KOmmlNodeList converted = ast.convert(*content);
    const auto found = boxKinds().constFind(command.name);
    if (found == boxKinds().constEnd())
        return {};
    if (*found == KBoxKind::border) {
        OBorderBox border;
        border.e = std::move(converted);
        border.ctrlPr = ast.currentStyle();
        return makeOmmlList(makeOmmlNode(std::move(border)));
    }
    OBox plain;
    plain.e = std::move(converted);
    plain.ctrlPr = ast.currentStyle();
    plain.noBreak = true;
    return makeOmmlList(makeOmmlNode(std::move(plain)));
}

KOmmlNodeList space(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    const KLatexNode* dimension = argumentNode(command.args, 0);
    if (!dimension)
        return makeOmmlList(ast.makeStyledRun(QString::fromUtf16(kThinSpace)));

    static const QRegularExpression pattern(
        QStringLiteral("(-?\\d+\\.?\\d*)\\s*(em|mu|pt|ex|mm|cm|in|pc|bp|dd|cc|sp)?"));
    const QRegularExpressionMatch match = pattern.match(dimensionText(dimension));
    if (!match.hasMatch())
        return {};
    double width = match.captured(1).toDouble();
    width *= unitsPerEm().value(match.captured(2), 1.0);
    // Negative and zero spaces have no character; they produce nothing.
    if (!(width > 0))
        return {};
    const char16_t* text = kThinSpace;
    for (const KSpaceStep& step : kSpaceSteps) {
        if (width >= step.minimum) {
            text = step.text;
            break;
        }
    }
    return makeOmmlList(ast.makeStyledRun(QString::fromUtf16(text)));
}

KOmmlNodeList modulo(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    const auto found = moduloForms().constFind(command.name);
    if (found == moduloForms().constEnd())
        return {};
    const KLatexNode* operand = argumentNode(command.args, 0);
    if (found->readsArgument && !operand)
        return {};
    KOmmlNodeList result;
    for (const KModuloPiece& piece : found->pieces) {
        if (piece.text) {
            result.push_back(ast.makeStyledRun(QString::fromUtf16(piece.text)));
            continue;
        }
        appendNodes(result, ast.convert(*operand));
    }
    return result;
}
