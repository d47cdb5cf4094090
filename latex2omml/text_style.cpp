// Commands that change how their argument looks rather than building structure:
// math alphabets and text fonts (through the style stack), colour, boxes,
// explicit spaces and the modulo notations.
#include "latex2omml/handlers.h"

#include <QColor>
#include <QHash>
#include <QRegularExpression>

#include <algorithm>
#include <optional>
#include <vector>

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
        {QStringLiteral("Bbb"), {OScript::doubleStruck, {}}},
        {QStringLiteral("frak"), {OScript::fraktur, {}}},
        {QStringLiteral("mathbf"), {{}, OStyle::bold}},
        {QStringLiteral("bold"), {{}, OStyle::bold}},
        {QStringLiteral("bf"), {{}, OStyle::bold}},
        {QStringLiteral("boldsymbol"), {{}, OStyle::boldItalic}},
        {QStringLiteral("pmb"), {{}, OStyle::boldItalic}},
        {QStringLiteral("bm"), {{}, OStyle::boldItalic}},
        {QStringLiteral("mathbit"), {{}, OStyle::boldItalic}},
        {QStringLiteral("mathnormal"), {{}, {}}},
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
        {QStringLiteral("intertext"), {}},
        {QStringLiteral("shortintertext"), {}},
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
    QString joined; // a mix (red!30!blue) arrives as its pieces
    bool hexadecimal = false;
    for (const auto& child : group->children) {
        if (const auto* text = latexAs<KLatexText>(child.get())) {
            value = text->text;
            joined += text->text;
        }
        else if (const auto* command = latexAs<KLatexCommand>(child.get()))
            hexadecimal = hexadecimal || command->name == QLatin1String("#");
    }
    if (value.isEmpty())
        return kDefaultColour;
    if (!hexadecimal)
        return joined.contains(QLatin1Char('!')) ? joined : value;
    static const QRegularExpression sixHexDigits(QStringLiteral("^[0-9A-Fa-f]{6}$"));
    return sixHexDigits.match(value).hasMatch() ? QLatin1Char('#') + value : kDefaultColour;
}

// A colour of the PostScript driver's palette (BurntOrange, CarnationPink), which LaTeX
// documents name with xcolor's dvipsnames option; invalid for any other name.
QColor paletteColour(const QString& name)
{
    struct KPaletteEntry {
        const char16_t* name;
        QRgb rgb;
    };
    static const KPaletteEntry kPalette[] = {
#include "latex2omml/dvips_colours.inc"
    };
    static const QHash<QString, QRgb> table = [] {
        QHash<QString, QRgb> built;
        for (const KPaletteEntry& entry : kPalette)
            built.insert(QString::fromUtf16(entry.name), entry.rgb);
        return built;
    }();
    const auto found = table.constFind(name);
    return found == table.constEnd() ? QColor() : QColor::fromRgb(*found);
}

QColor namedColour(const QString& name)
{
    if (QColor::isValidColor(name))
        return QColor(name);
    return paletteColour(name.trimmed());
}

QString hexName(const QColor& colour)
{
    return colour.name(QColor::HexRgb);
}

// A colour name as the colour keywords, the "#" forms and the palette name it, and as xcolor
// mixes them: "red!30" is 30% red in white, "red!30!blue" 30% red in blue, and so on from the
// left. What cannot be read is left as written (and then paints black).
QString resolveColourName(const QString& text)
{
    if (QColor::isValidColor(text))
        return text;
    const QStringList parts = text.split(QLatin1Char('!'));
    QColor colour = namedColour(parts.front());
    for (int i = 1; colour.isValid() && i < parts.size(); i += 2) {
        bool ok = false;
        const double percent = parts[i].trimmed().toDouble(&ok);
        const QColor other = i + 1 < parts.size() ? namedColour(parts[i + 1]) : QColor(Qt::white);
        if (!ok || percent < 0 || percent > 100 || !other.isValid())
            return text;
        const double share = percent / 100;
        auto mix = [share](int a, int b) { return qRound(share * a + (1 - share) * b); };
        colour = QColor(mix(colour.red(), other.red()), mix(colour.green(), other.green()),
                        mix(colour.blue(), other.blue()));
    }
    return colour.isValid() ? hexName(colour) : text;
}

// The value of \color[model]{value} in xcolor's models rgb, RGB, HTML, gray, cmyk and cmy, as
// "#rrggbb"; empty when the model is another or the value does not fit it.
QString colourFromModel(const QString& model, const QString& value)
{
    const QString trimmed = value.trimmed();
    if (model == QLatin1String("HTML")) {
        static const QRegularExpression sixHexDigits(QStringLiteral("^[0-9A-Fa-f]{6}$"));
        return sixHexDigits.match(trimmed).hasMatch() ? (QLatin1Char('#') + trimmed).toLower() : QString();
    }
    std::vector<double> numbers;
    for (const QString& part : trimmed.split(QLatin1Char(','))) {
        bool ok = false;
        numbers.push_back(part.trimmed().toDouble(&ok));
        if (!ok)
            return {};
    }
    const bool whole = model == QLatin1String("RGB");
    for (double n : numbers)
        if (n < 0 || n > (whole ? 255 : 1))
            return {};
    auto channel = [](double unit) { return qBound(0, qRound(unit * 255), 255); };
    auto rgb = [&](double r, double g, double b) { return hexName(QColor(channel(r), channel(g), channel(b))); };
    const std::size_t count = numbers.size();
    if (model == QLatin1String("rgb") && count == 3)
        return rgb(numbers[0], numbers[1], numbers[2]);
    if (whole && count == 3)
        return rgb(numbers[0] / 255, numbers[1] / 255, numbers[2] / 255);
    if (model == QLatin1String("gray") && count == 1)
        return rgb(numbers[0], numbers[0], numbers[0]);
    if (model == QLatin1String("cmy") && count == 3)
        return rgb(1 - numbers[0], 1 - numbers[1], 1 - numbers[2]);
    if (model == QLatin1String("cmyk") && count == 4) {
        const double k = numbers[3];
        return rgb(1 - std::min(1.0, numbers[0] + k), 1 - std::min(1.0, numbers[1] + k),
                   1 - std::min(1.0, numbers[2] + k));
    }
    return {};
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

// The framed and sized boxes that take options before their content.
enum class KFrame { always, never, whenAsked };

const QHash<QString, KFrame>& framedBoxes()
{
    static const QHash<QString, KFrame> table = {
        {QStringLiteral("framebox"), KFrame::always},
        {QStringLiteral("fcolorbox"), KFrame::always},
        {QStringLiteral("makebox"), KFrame::never},
        // \bbox[options]{x} draws a frame only when the options ask for a border.
        {QStringLiteral("bbox"), KFrame::whenAsked},
    };
    return table;
}

// The current style with its runs made normal text.
OControlProperties normalTextStyle(const KLatexAst2Omml& ast)
{
    OControlProperties style = ast.currentStyle();
    style.mathProps = OMathRunProperties{};
    style.mathProps->normalText = true;
    return style;
}

OBorderBox borderAround(KOmmlNodeList content, const OControlProperties& ctrlPr)
{
    OBorderBox border;
    border.e = std::move(content);
    border.ctrlPr = ctrlPr;
    return border;
}

// ---- enclosures --------------------------------------------------------------

// What one \enclose notation adds: sides of a frame, or a stroke.
struct KNotation {
    bool top = false, bottom = false, left = false, right = false;
    bool strikeH = false, strikeV = false, strikeBLTR = false, strikeTLBR = false;
};

const std::vector<std::pair<QString, KNotation>>& notations()
{
    // Longer names first, so that scanning text without separators finds them whole.
    static const std::vector<std::pair<QString, KNotation>> table = {
        {QStringLiteral("updiagonalstrike"), {false, false, false, false, false, false, true, false}},
        {QStringLiteral("downdiagonalstrike"), {false, false, false, false, false, false, false, true}},
        {QStringLiteral("updiagonalarrow"), {false, false, false, false, false, false, true, false}},
        {QStringLiteral("northeastarrow"), {false, false, false, false, false, false, true, false}},
        {QStringLiteral("horizontalstrike"), {false, false, false, false, true, false, false, false}},
        {QStringLiteral("verticalstrike"), {false, false, false, false, false, true, false, false}},
        {QStringLiteral("phasorangle"), {true, true, true, true}},
        {QStringLiteral("roundedbox"), {true, true, true, true}},
        {QStringLiteral("actuarial"), {true, false, false, true}},
        {QStringLiteral("madruwb"), {false, true, false, true}},
        {QStringLiteral("longdiv"), {true, false, true, false}},
        {QStringLiteral("radical"), {true, true, true, true}},
        {QStringLiteral("circle"), {true, true, true, true}},
        {QStringLiteral("bottom"), {false, true, false, false}},
        {QStringLiteral("right"), {false, false, false, true}},
        {QStringLiteral("left"), {false, false, true, false}},
        {QStringLiteral("box"), {true, true, true, true}},
        {QStringLiteral("top"), {true, false, false, false}},
    };
    return table;
}

// The union of the notations named in the text, which may run together once the
// lexer has dropped the spaces between them. Nothing recognised is a full frame.
KNotation readNotation(const QString& text)
{
    KNotation result;
    bool any = false;
    const QString lower = text.toLower();
    for (int i = 0; i < lower.size();) {
        bool matched = false;
        for (const auto& [name, notation] : notations()) {
            if (!lower.midRef(i).startsWith(name))
                continue;
            result.top |= notation.top;
            result.bottom |= notation.bottom;
            result.left |= notation.left;
            result.right |= notation.right;
            result.strikeH |= notation.strikeH;
            result.strikeV |= notation.strikeV;
            result.strikeBLTR |= notation.strikeBLTR;
            result.strikeTLBR |= notation.strikeTLBR;
            i += name.size();
            matched = any = true;
            break;
        }
        if (!matched)
            ++i;
    }
    if (!any)
        result.top = result.bottom = result.left = result.right = true;
    return result;
}

// ---- labels ------------------------------------------------------------------

struct KLabelForm {
    const char16_t* open;
    const char16_t* close;
};

const QHash<QString, KLabelForm>& labelForms()
{
    // An equation tag and a reference to one show in parentheses; a plain
    // reference shows its key.
    static const QHash<QString, KLabelForm> table = {
        {QStringLiteral("tag"), {u"(", u")"}},
        {QStringLiteral("tag*"), {u"", u""}},
        {QStringLiteral("eqref"), {u"(", u")"}},
        {QStringLiteral("ref"), {u"", u""}},
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
    // Words in the roman text font are normal text, upright whatever math style surrounds them;
    // the sans-serif and typewriter faces keep their alphabet, upright unless the command chose a style.
    if (style.mathProps->script == OScript::roman) {
        style.mathProps->normalText = true;
        style.mathProps->style.reset();
    } else if (!style.mathProps->style) {
        style.mathProps->style = OStyle::plain;
    }
    return convertStyled(ast, style, *content);
}

KOmmlNodeList letterCase(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    // \uppercase and \MakeUppercase change the case of the letters of their
    // argument; the runs at the argument's top level are changed, structures kept.
    KOmmlNodeList result = ast.convertArgument(command.args, 0);
    const bool upper = command.name.contains(QLatin1String("pper"));
    for (KOmmlNodePtr& node : result) {
        if (auto* run = ommlAs<ORun>(node.get()))
            run->text = upper ? run->text.toUpper() : run->text.toLower();
    }
    return result;
}

KOmmlNodeList textScript(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    // \textsubscript and \textsuperscript raise or lower upright text after what
    // precedes them; the script element has an empty base.
    const KLatexNode* content = argumentNode(command.args, 0);
    if (!content)
        return {};
    OControlProperties style = ast.currentStyle();
    if (!style.mathProps)
        style.mathProps = OMathRunProperties{};
    KOmmlNodeList script = convertStyled(ast, style, *content);
    const bool lower = command.name == QLatin1String("textsubscript");
    KOmmlNodePtr element = lower ? makeScriptElement({}, std::move(script), std::nullopt)
                                 : makeScriptElement({}, std::nullopt, std::move(script));
    return makeOmmlList(std::move(element));
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
    QString name = colourText(*first[0].node);
    if (first != command.args.begin()) {
        const QString model = plainText(command.args.front().node.get()).trimmed();
        const QString fromModel = colourFromModel(model, plainText(first[0].node.get()));
        name = fromModel.isEmpty() ? kDefaultColour : fromModel;
    } else {
        name = resolveColourName(name);
    }
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
    // The background colour has no OMML form; only the content, the last argument, is kept.
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
    const auto found = boxKinds().constFind(command.name);
    if (found == boxKinds().constEnd())
        return {};
    // A box that is not a frame holds text: its words are normal text.
    KOmmlNodeList converted =
        convertStyled(ast, *found == KBoxKind::noBreak ? normalTextStyle(ast) : ast.currentStyle(), *content);
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
            const QString text = QString::fromUtf16(piece.text);
            KOmmlNodePtr run = ast.makeStyledRun(text);
            // The word "mod" is upright, as an operator name is.
            auto* styled = ommlAs<ORun>(run.get());
            if (styled && text.contains(QLatin1String("mod")) && !styled->mathProps.style)
                styled->mathProps.style = OStyle::plain;
            result.push_back(std::move(run));
            continue;
        }
        appendNodes(result, ast.convert(*operand));
    }
    return result;
}

KOmmlNodeList phantom(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    // \phantom reserves the space of its content and shows nothing; \hphantom keeps
    // only its width, \vphantom only its height and depth. \smash shows its content
    // without height and depth; \smash[t] drops only the height, \smash[b] only the depth.
    if (command.name == QLatin1String("smash")) {
        const KLatexNode* content = lastMandatoryArgument(command.args);
        if (!content)
            return {};
        QString side;
        for (const KLatexArg& arg : command.args)
            if (arg.optional)
                side = plainText(arg.node.get()).trimmed();
        OPhantom smashed;
        smashed.e = ast.convert(*content);
        smashed.ctrlPr = ast.currentStyle();
        smashed.zeroAsc = side != QLatin1String("b");
        smashed.zeroDesc = side != QLatin1String("t");
        return makeOmmlList(makeOmmlNode(std::move(smashed)));
    }
    const KLatexNode* content = argumentNode(command.args, 0);
    if (!content)
        return {};
    OPhantom hidden;
    hidden.e = ast.convert(*content);
    hidden.ctrlPr = ast.currentStyle();
    hidden.show = false;
    if (command.name == QLatin1String("hphantom")) {
        hidden.zeroAsc = true;
        hidden.zeroDesc = true;
    } else if (command.name == QLatin1String("vphantom")) {
        hidden.zeroWid = true;
    }
    return makeOmmlList(makeOmmlNode(std::move(hidden)));
}

KOmmlNodeList framedBox(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    // Widths, positions and colours before the content have no OMML form.
    const KLatexNode* content = lastMandatoryArgument(command.args);
    const auto found = framedBoxes().constFind(command.name);
    if (!content || found == framedBoxes().constEnd())
        return {};
    bool framed = *found == KFrame::always;
    if (*found == KFrame::whenAsked) {
        for (const KLatexArg& arg : command.args)
            if (arg.optional &&
                plainText(arg.node.get()).contains(QLatin1String("border"), Qt::CaseInsensitive))
                framed = true;
        if (!framed)
            return ast.convert(*content);
    }
    if (framed) {
        KOmmlNodeList converted = ast.convert(*content);
        return makeOmmlList(makeOmmlNode(borderAround(std::move(converted), ast.currentStyle())));
    }
    // An unframed box holds text, as \mbox does.
    KOmmlNodeList converted = convertStyled(ast, normalTextStyle(ast), *content);
    OBox plain;
    plain.e = std::move(converted);
    plain.ctrlPr = ast.currentStyle();
    plain.noBreak = true;
    return makeOmmlList(makeOmmlNode(std::move(plain)));
}

KOmmlNodeList enclosure(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    // \enclose{notation}[attributes]{content}
    std::vector<const KLatexNode*> mandatory;
    for (const KLatexArg& arg : command.args)
        if (!arg.optional)
            mandatory.push_back(arg.node.get());
    if (mandatory.size() != 2 || !mandatory[1])
        return {};
    const KNotation notation = readNotation(plainText(mandatory[0]));
    OBorderBox border = borderAround(ast.convert(*mandatory[1]), ast.currentStyle());
    border.hideTop = !notation.top;
    border.hideBot = !notation.bottom;
    border.hideLeft = !notation.left;
    border.hideRight = !notation.right;
    border.strikeH = notation.strikeH;
    border.strikeV = notation.strikeV;
    border.strikeBLTR = notation.strikeBLTR;
    border.strikeTLBR = notation.strikeTLBR;
    return makeOmmlList(makeOmmlNode(std::move(border)));
}

KOmmlNodeList unicodeCharacter(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    // \unicode{x2208} (hexadecimal after x) or \unicode{8712} (decimal).
    const KLatexNode* code = lastMandatoryArgument(command.args);
    if (!code)
        return {};
    const QString written = plainText(code).trimmed();
    QString digits = written;
    int base = 10;
    if (digits.startsWith(QLatin1String("0x"), Qt::CaseInsensitive)) {
        digits = digits.mid(2);
        base = 16;
    } else if (digits.startsWith(QLatin1Char('x'), Qt::CaseInsensitive)) {
        digits = digits.mid(1);
        base = 16;
    }
    bool ok = false;
    const uint value = digits.toUInt(&ok, base);
    constexpr uint kLastCodePoint = 0x10FFFF;
    const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
    if (!ok || value == 0 || value > kLastCodePoint || surrogate) {
        // Not a character: show what was written rather than lose it.
        return written.isEmpty() ? KOmmlNodeList() : makeOmmlList(ast.makeStyledRun(written));
    }
    const char32_t character = value;
    return makeOmmlList(ast.makeStyledRun(QString::fromUcs4(&character, 1)));
}

KOmmlNodeList equationLabel(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    const KLatexNode* content = lastMandatoryArgument(command.args);
    const auto found = labelForms().constFind(command.name);
    if (!content || found == labelForms().constEnd())
        return {};
    // Labels are text: upright, whatever the surrounding math style is.
    ast.pushStyle(uprightStyle(ast.currentStyle()));
    KOmmlNodeList result;
    if (*found->open)
        result.push_back(ast.makeStyledRun(QString::fromUtf16(found->open)));
    appendNodes(result, ast.convert(*content));
    if (*found->close)
        result.push_back(ast.makeStyledRun(QString::fromUtf16(found->close)));
    ast.popStyle();
    return result;
}

KOmmlNodeList spannedCell(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    // \multicolumn{count}{columns}{content}: only the content is visible.
    const KLatexNode* content = lastMandatoryArgument(command.args);
    return command.args.size() < 3 || !content ? KOmmlNodeList() : ast.convert(*content);
}
