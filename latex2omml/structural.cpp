// Handler families that build structure: fractions and binomials, radicals,
// large operators with their limits, named functions, limit-type operators and
// stacked expressions.
#include "latex2omml/handlers.h"
#include "latex2omml/tables.h"

namespace {

const QString kBinom = QStringLiteral("binom");
const QString kChoose = QStringLiteral("choose");
const QString kLim = QStringLiteral("lim");

// Operator names are upright whatever the surrounding style is.
KOmmlNodePtr makeNameRun(QString text)
{
    OMathRunProperties mathProps;
    mathProps.style = OStyle::plain;
    return makeOmmlNode(ORun{std::move(text), mathProps, OWordRunProperties{}});
}

// A binomial is a fraction without bar between round brackets.
KOmmlNodePtr parenthesised(KOmmlNodePtr fraction, const OControlProperties& style)
{
    ODelimiter delimiter;
    delimiter.e = makeOmmlList(std::move(fraction));
    delimiter.begChr = QStringLiteral("(");
    delimiter.endChr = QStringLiteral(")");
    delimiter.ctrlPr = style;
    return makeOmmlNode(std::move(delimiter));
}

KOmmlNodeList buildFraction(KLatexAst2Omml& converter, const KLatexCommand& command, OFractionType type,
                            bool inParentheses)
{
    if (!hasExactArguments(command.args, 2))
        return {};
    OFraction fraction;
    fraction.num = converter.convertArgument(command.args, 0);
    fraction.den = converter.convertArgument(command.args, 1);
    fraction.ctrlPr = converter.currentStyle();
    fraction.type = type;
    KOmmlNodePtr node = makeOmmlNode(std::move(fraction));
    if (inParentheses)
        node = parenthesised(std::move(node), converter.currentStyle());
    return makeOmmlList(std::move(node));
}

const KLatexSymbol* entryWithoutArguments(const KLatexCommand& command)
{
    return command.args.empty() ? lookupCommand(command.name) : nullptr;
}

// The single OFunction a limit handler produced, or null.
OFunction* onlyFunction(KOmmlNodeList& nodes)
{
    return nodes.size() == 1 ? ommlAs<OFunction>(nodes.front().get()) : nullptr;
}

// A subscript that is written but says nothing: `_{}` or `_{\left.\right.}`.
bool isEmptyLimit(const KLatexNode& sub)
{
    if (const auto* group = latexAs<KLatexGroup>(&sub))
        return group->children.empty();
    if (const auto* fence = latexAs<KLatexLeftRight>(&sub)) {
        if (!fence->body)
            return true;
        const auto* body = latexAs<KLatexGroup>(fence->body.get());
        return body && body->children.empty();
    }
    return false;
}

KOmmlNodeList applyLimits(KLatexAst2Omml& converter, const KLatexScript& script, const CommandHandler& build)
{
    const auto* base = latexAs<KLatexCommand>(script.base.get());
    if (!base)
        return {};
    KOmmlNodeList result = build(converter, *base);
    OFunction* function = onlyFunction(result);
    if (!function)
        return {};
    KOmmlNodeList lower;
    if (script.sub) {
        lower = converter.convert(*script.sub);
        if (isEmptyLimit(*script.sub))
            lower.clear();
    }
    KOmmlNodeList upper;
    if (script.sup)
        upper = converter.convert(*script.sup);
    auto* limitLower = function->fName.empty() ? nullptr : ommlAs<OLimitLower>(function->fName.front().get());
    if (limitLower) {
        if (!lower.empty())
            limitLower->lim = std::move(lower);
        if (!upper.empty()) {
            OLimitUpper limitUpper;
            limitUpper.e = std::move(function->fName);
            limitUpper.lim = std::move(upper);
            limitUpper.ctrlPr = converter.currentStyle();
            function->fName = makeOmmlList(makeOmmlNode(std::move(limitUpper)));
        }
    }
    return result;
}

KOmmlNodeList limitFunctionOf(KLatexAst2Omml& converter, KOmmlNodePtr nameElement, KOmmlNodeList limit)
{
    OLimitLower limitLower;
    limitLower.e = makeOmmlList(std::move(nameElement));
    limitLower.lim = std::move(limit);
    limitLower.ctrlPr = converter.currentStyle();
    OFunction function;
    function.fName = makeOmmlList(makeOmmlNode(std::move(limitLower)));
    function.ctrlPr = converter.currentStyle();
    return makeOmmlList(makeOmmlNode(std::move(function)));
}

} // namespace

KOmmlNodeList fraction(KLatexAst2Omml& converter, const KLatexCommand& command)
{
    OFractionType type = OFractionType::bar;
    if (command.name == QLatin1String("tfrac"))
        type = OFractionType::linear;
    else if (command.name == QLatin1String("sfrac"))
        type = OFractionType::skewed;
    else if (command.name == kBinom)
        type = OFractionType::noBar;
    return buildFraction(converter, command, type, command.name == kBinom);
}

KOmmlNodeList infixFraction(KLatexAst2Omml& converter, const KLatexCommand& command)
{
    const bool withoutBar = command.name == QLatin1String("atop") || command.name == kChoose;
    return buildFraction(converter, command, withoutBar ? OFractionType::noBar : OFractionType::bar,
                         command.name == kChoose);
}

KOmmlNodeList radical(KLatexAst2Omml& converter, const KLatexCommand& command)
{
    const std::size_t count = command.args.size();
    if (count < 1 || count > 2 || !hasExactArguments(command.args, count))
        return {};
    ORadical root;
    if (count == 1) {
        root.e = converter.convertArgument(command.args, 0);
        root.degHide = true;
    } else {
        // \sqrt[n]{x} writes the degree first; a degree in braces comes second.
        const bool degreeFirst = command.args[0].optional;
        root.deg = converter.convertArgument(command.args, degreeFirst ? 0 : 1);
        root.e = converter.convertArgument(command.args, degreeFirst ? 1 : 0);
        root.degHide = false;
    }
    root.ctrlPr = converter.currentStyle();
    return makeOmmlList(makeOmmlNode(std::move(root)));
}

KOmmlNodeList naryOperator(KLatexAst2Omml& converter, const KLatexCommand& command)
{
    const KLatexSymbol* entry = entryWithoutArguments(command);
    if (!entry)
        return {};
    ONaryOperator nary;
    nary.chr = entry->text;
    // The composite keys "int\limits", "sum\limits", ... put the limits above and below.
    nary.limLoc = command.name.section(QLatin1Char('\\'), -1) == QLatin1String("limits")
                      ? OLimitLocation::undOvr
                      : OLimitLocation::subSup;
    nary.subHide = true;
    nary.supHide = true;
    nary.ctrlPr = converter.currentStyle();
    return makeOmmlList(makeOmmlNode(std::move(nary)));
}

KOmmlNodeList naryScript(KLatexAst2Omml& converter, const KLatexScript& script)
{
    const auto* base = latexAs<KLatexCommand>(script.base.get());
    if (!base)
        return {};
    KOmmlNodeList result = naryOperator(converter, *base);
    if (result.empty())
        return {};
    auto* nary = ommlAs<ONaryOperator>(result.front().get());
    if (script.sub) {
        nary->subHide = false;
        KOmmlNodeList lower = converter.convert(*script.sub);
        if (!lower.empty())
            nary->sub = std::move(lower);
    }
    if (script.sup) {
        nary->supHide = false;
        KOmmlNodeList upper = converter.convert(*script.sup);
        if (!upper.empty())
            nary->sup = std::move(upper);
    }
    return result;
}

KOmmlNodeList function(KLatexAst2Omml& converter, const KLatexCommand& command)
{
    const KLatexSymbol* entry = entryWithoutArguments(command);
    if (!entry)
        return {};
    OFunction result;
    result.fName = makeOmmlList(makeNameRun(entry->text));
    result.ctrlPr = converter.currentStyle();
    return makeOmmlList(makeOmmlNode(std::move(result)));
}

KOmmlNodeList functionScript(KLatexAst2Omml& converter, const KLatexScript& script)
{
    if (!latexAs<KLatexCommand>(script.base.get()))
        return {};
    KOmmlNodeList result = converter.convert(*script.base);
    OFunction* converted = onlyFunction(result);
    if (!converted)
        return {};
    if (!script.sub && !script.sup)
        return result;
    std::optional<KOmmlNodeList> lower;
    std::optional<KOmmlNodeList> upper;
    if (script.sub)
        lower = converter.convert(*script.sub);
    if (script.sup)
        upper = converter.convert(*script.sup);
    KOmmlNodePtr element = makeScriptElement(std::move(converted->fName), std::move(lower), std::move(upper));
    converted->fName = makeOmmlList(std::move(element));
    return result;
}

KOmmlNodeList limitFunction(KLatexAst2Omml& converter, const KLatexCommand& command)
{
    const KLatexSymbol* entry = entryWithoutArguments(command);
    if (!entry)
        return {};
    return limitFunctionOf(converter, makeNameRun(entry->text), {});
}

KOmmlNodeList limitScript(KLatexAst2Omml& converter, const KLatexScript& script)
{
    return applyLimits(converter, script, limitFunction);
}

KOmmlNodeList limitVariant(KLatexAst2Omml& converter, const KLatexCommand& command)
{
    if (!entryWithoutArguments(command))
        return {};
    const QString& name = command.name;
    if (name == QLatin1String("varlimsup") || name == QLatin1String("varliminf")) {
        OBar bar;
        bar.e = makeOmmlList(makeNameRun(kLim));
        bar.pos = name == QLatin1String("varlimsup") ? OPosition::top : OPosition::bottom;
        return limitFunctionOf(converter, makeOmmlNode(std::move(bar)), {});
    }
    if (name == QLatin1String("varinjlim"))
        return limitFunctionOf(converter, makeNameRun(kLim),
                               makeOmmlList(makePlainRun(QStringLiteral("\u2192"))));
    if (name == QLatin1String("varprojlim"))
        return limitFunctionOf(converter, makeNameRun(kLim),
                               makeOmmlList(makePlainRun(QStringLiteral("\u2190"))));
    return {};
}

KOmmlNodeList limitVariantScript(KLatexAst2Omml& converter, const KLatexScript& script)
{
    return applyLimits(converter, script, limitVariant);
}

KOmmlNodeList stack(KLatexAst2Omml& converter, const KLatexCommand& command)
{
    if (!hasExactArguments(command.args, 2))
        return {};
    const bool over = command.name == QLatin1String("overset") || command.name == QLatin1String("stackrel");
    const bool under = command.name == QLatin1String("underset");
    if (!over && !under)
        return {};
    KOmmlNodeList label = converter.convertArgument(command.args, 0);
    KOmmlNodeList body = converter.convertArgument(command.args, 1);
    if (over)
        return makeOmmlList(
            makeOmmlNode(OLimitUpper{std::move(body), std::move(label), converter.currentStyle()}));
    return makeOmmlList(
        makeOmmlNode(OLimitLower{std::move(body), std::move(label), converter.currentStyle()}));
}
