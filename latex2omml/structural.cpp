// Handler families that build structure: fractions and binomials, radicals,
// large operators with their limits, named functions, limit-type operators and
// stacked expressions.
#include "latex2omml/handlers.h"
#include "latex2omml/tables.h"

#include <QHash>
#include <QRegularExpression>
#include <QSet>

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
KOmmlNodePtr fenced(KOmmlNodePtr fraction, const OControlProperties& style, QString open, QString close)
{
    ODelimiter delimiter;
    delimiter.e = makeOmmlList(std::move(fraction));
    delimiter.begChr = std::move(open);
    delimiter.endChr = std::move(close);
    delimiter.ctrlPr = style;
    return makeOmmlNode(std::move(delimiter));
}

KOmmlNodePtr parenthesised(KOmmlNodePtr fraction, const OControlProperties& style)
{
    return fenced(std::move(fraction), style, QStringLiteral("("), QStringLiteral(")"));
}

// A fraction from the two braced arguments that start at `first`, which must be
// the last two arguments.
KOmmlNodeList buildFraction(KLatexAst2Omml& converter, const KLatexArgs& args, OFractionType type,
                            bool inParentheses, std::size_t first = 0)
{
    if (args.size() != first + 2 || !argumentNode(args, first) || !argumentNode(args, first + 1) ||
        args[first].optional || args[first + 1].optional)
        return {};
    OFraction fraction;
    fraction.num = converter.convertArgument(args, first);
    fraction.den = converter.convertArgument(args, first + 1);
    fraction.ctrlPr = converter.currentStyle();
    fraction.type = type;
    KOmmlNodePtr node = makeOmmlNode(std::move(fraction));
    if (inParentheses)
        node = parenthesised(std::move(node), converter.currentStyle());
    return makeOmmlList(std::move(node));
}

// What a bracketed argument before the two braced ones means.
enum class KLeadingOption { refused, ignored, shownBefore };

struct KFractionForm {
    OFractionType type = OFractionType::bar;
    bool parenthesised = false;
    KLeadingOption option = KLeadingOption::refused;
};

const QHash<QString, KFractionForm>& fractionForms()
{
    static const QHash<QString, KFractionForm> table = {
        {QStringLiteral("frac"), {}},
        {QStringLiteral("dfrac"), {}},
        {QStringLiteral("cfrac"), {OFractionType::bar, false, KLeadingOption::ignored}},
        {QStringLiteral("tfrac"), {OFractionType::linear}},
        {QStringLiteral("sfrac"), {OFractionType::skewed}},
        {kBinom, {OFractionType::noBar, true}},
        {QStringLiteral("dbinom"), {OFractionType::noBar, true}},
        {QStringLiteral("tbinom"), {OFractionType::noBar, true}},
        {QStringLiteral("nicefrac"), {OFractionType::skewed, false, KLeadingOption::ignored}},
        {QStringLiteral("unitfrac"), {OFractionType::skewed, false, KLeadingOption::shownBefore}},
    };
    return table;
}

// The fence a \genfrac delimiter argument names: "(" or "\langle" through the
// \left/\right delimiter map, another command through its character, "." or
// nothing for no fence.
QString fenceCharacter(const KLatexNode* node)
{
    while (const auto* group = latexAs<KLatexGroup>(node)) {
        if (group->children.size() != 1)
            break;
        node = group->children.front().get();
    }
    QString token;
    if (const auto* text = latexAs<KLatexText>(node))
        token = text->text.trimmed();
    else if (const auto* command = latexAs<KLatexCommand>(node))
        token = QLatin1Char('\\') + command->name;
    if (token.isEmpty())
        return {};
    if (const QString* fence = lookupDelimiter(token))
        return *fence;
    if (const auto* command = latexAs<KLatexCommand>(node)) {
        const KLatexSymbol* entry = lookupCommand(command->name);
        return entry ? entry->text : QString();
    }
    return token;
}

// A \genfrac rule thickness of zero (0pt, 0, 0.0em) draws no bar; an empty one
// is the default rule.
bool isZeroThickness(const QString& thickness)
{
    static const QRegularExpression number(QStringLiteral("^\\s*([0-9]*\\.?[0-9]+)"));
    const QRegularExpressionMatch match = number.match(thickness);
    return match.hasMatch() && match.captured(1).toDouble() == 0.0;
}

// The large operators whose limits TeX sets above and below in a display; the
// integrals keep theirs beside the sign.
const QSet<QString>& limitsAboveInDisplay()
{
    static const QSet<QString> names = {
        QStringLiteral("sum"),       QStringLiteral("prod"),     QStringLiteral("coprod"),
        QStringLiteral("bigwedge"),  QStringLiteral("bigvee"),   QStringLiteral("bigcap"),
        QStringLiteral("bigcup"),    QStringLiteral("bigodot"),  QStringLiteral("bigoplus"),
        QStringLiteral("bigotimes"), QStringLiteral("bigsqcup"), QStringLiteral("biguplus"),
    };
    return names;
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

KOmmlNodeList limitFunctionOf(KLatexAst2Omml& converter, KOmmlNodeList name, KOmmlNodeList limit)
{
    OLimitLower limitLower;
    limitLower.e = std::move(name);
    limitLower.lim = std::move(limit);
    limitLower.ctrlPr = converter.currentStyle();
    OFunction function;
    function.fName = makeOmmlList(makeOmmlNode(std::move(limitLower)));
    function.ctrlPr = converter.currentStyle();
    return makeOmmlList(makeOmmlNode(std::move(function)));
}

KOmmlNodeList limitFunctionOf(KLatexAst2Omml& converter, KOmmlNodePtr nameElement, KOmmlNodeList limit)
{
    return limitFunctionOf(converter, makeOmmlList(std::move(nameElement)), std::move(limit));
}

// The scripts written in one \sideset argument: `{_a^b}` (a script on nothing),
// or anything else, such as a prime, as the upper one.
struct KSideScripts {
    const KLatexNode* sub = nullptr;
    const KLatexNode* sup = nullptr;
};

KSideScripts sideScripts(const KLatexNode* node)
{
    while (const auto* group = latexAs<KLatexGroup>(node)) {
        if (group->children.size() != 1)
            break;
        node = group->children.front().get();
    }
    if (const auto* script = latexAs<KLatexScript>(node))
        return {script->sub.get(), script->sup.get()};
    const auto* group = latexAs<KLatexGroup>(node);
    if (!node || (group && group->children.empty()))
        return {};
    return {nullptr, node};
}

std::optional<KOmmlNodeList> convertIfPresent(KLatexAst2Omml& converter, const KLatexNode* node)
{
    if (!node)
        return std::nullopt;
    return converter.convert(*node);
}

} // namespace

KOmmlNodeList fraction(KLatexAst2Omml& converter, const KLatexCommand& command)
{
    const auto found = fractionForms().constFind(command.name);
    const KFractionForm form = found == fractionForms().constEnd() ? KFractionForm{} : *found;
    const bool leadingOption = !command.args.empty() && command.args.front().optional;
    if (!leadingOption)
        return buildFraction(converter, command.args, form.type, form.parenthesised);
    if (form.option == KLeadingOption::refused)
        return {};
    // \nicefrac[font]{a}{b} and \unitfrac[value]{a}{b}: the fraction is the two braced arguments.
    KOmmlNodeList result;
    if (form.option == KLeadingOption::shownBefore)
        result = converter.convertArgument(command.args, 0);
    KOmmlNodeList built = buildFraction(converter, command.args, form.type, form.parenthesised, 1);
    if (built.empty())
        return {};
    appendNodes(result, std::move(built));
    return result;
}

KOmmlNodeList infixFraction(KLatexAst2Omml& converter, const KLatexCommand& command)
{
    // {n \brace k} and {n \brack k}: the two parts stacked without a rule, in braces or brackets.
    const bool braced = command.name == QLatin1String("brace");
    if (braced || command.name == QLatin1String("brack")) {
        KOmmlNodeList stacked = buildFraction(converter, command.args, OFractionType::noBar, false);
        if (stacked.empty())
            return {};
        return makeOmmlList(fenced(std::move(stacked.front()), converter.currentStyle(),
                                   braced ? QStringLiteral("{") : QStringLiteral("["),
                                   braced ? QStringLiteral("}") : QStringLiteral("]")));
    }
    const bool withoutBar = command.name == QLatin1String("atop") || command.name == kChoose;
    return buildFraction(converter, command.args, withoutBar ? OFractionType::noBar : OFractionType::bar,
                         command.name == kChoose);
}

KOmmlNodeList generalFraction(KLatexAst2Omml& converter, const KLatexCommand& command)
{
    // \genfrac{left}{right}{thickness}{style}{numerator}{denominator}
    constexpr std::size_t kArguments = 6;
    if (!hasExactArguments(command.args, kArguments))
        return {};
    const QString left = fenceCharacter(argumentNode(command.args, 0));
    const QString right = fenceCharacter(argumentNode(command.args, 1));
    const OFractionType type =
        isZeroThickness(plainText(argumentNode(command.args, 2))) ? OFractionType::noBar : OFractionType::bar;
    OFraction built;
    built.num = converter.convertArgument(command.args, 4);
    built.den = converter.convertArgument(command.args, 5);
    built.ctrlPr = converter.currentStyle();
    built.type = type;
    KOmmlNodePtr node = makeOmmlNode(std::move(built));
    if (left.isEmpty() && right.isEmpty())
        return makeOmmlList(std::move(node));
    ODelimiter delimiter;
    delimiter.e = makeOmmlList(std::move(node));
    delimiter.begChr = left;
    delimiter.endChr = right;
    delimiter.ctrlPr = converter.currentStyle();
    return makeOmmlList(makeOmmlNode(std::move(delimiter)));
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
    // The composite keys "int\limits", "sum\nolimits", ... say where the limits go;
    // otherwise they go where TeX puts them in a display.
    const QString placement = command.name.section(QLatin1Char('\\'), -1);
    const bool above =
        placement == QLatin1String("limits") ||
        (placement != QLatin1String("nolimits") && limitsAboveInDisplay().contains(command.name));
    nary.limLoc = above ? OLimitLocation::undOvr : OLimitLocation::subSup;
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

KOmmlNodeList operatorName(KLatexAst2Omml& converter, const KLatexCommand& command)
{
    // \operatorname{sgn}: an upright name applied to what follows, as \sin is. A
    // name made of more than letters and digits (arg\,max) stays upright text.
    const KLatexNode* name = argumentNode(command.args, 0);
    const QString text = command.args.size() == 1 && name ? plainText(name) : QString();
    bool plain = !text.isEmpty();
    std::vector<const KLatexNode*> pending{name};
    while (plain && !pending.empty()) {
        const KLatexNode* current = pending.back();
        pending.pop_back();
        if (const auto* group = latexAs<KLatexGroup>(current)) {
            for (const KLatexNodePtr& child : group->children)
                pending.push_back(child.get());
        } else if (!latexAs<KLatexText>(current)) {
            plain = false;
        }
    }
    for (const QChar c : text)
        plain = plain && c.isLetterOrNumber();
    if (!plain) {
        OControlProperties upright = converter.currentStyle();
        upright.mathProps = OMathRunProperties{};
        upright.mathProps->style = OStyle::plain;
        converter.pushStyle(upright);
        KOmmlNodeList converted = firstArgument(converter, command);
        converter.popStyle();
        return converted;
    }
    OFunction result;
    result.fName = makeOmmlList(makeNameRun(text));
    result.ctrlPr = converter.currentStyle();
    return makeOmmlList(makeOmmlNode(std::move(result)));
}

KOmmlNodeList operatorNameScript(KLatexAst2Omml& converter, const KLatexScript& script)
{
    KOmmlNodeList function = functionScript(converter, script);
    if (!function.empty())
        return function;
    // A name that stays upright text carries its scripts as any base does.
    std::optional<KOmmlNodeList> lower;
    std::optional<KOmmlNodeList> upper;
    if (script.sub)
        lower = converter.convert(*script.sub);
    if (script.sup)
        upper = converter.convert(*script.sup);
    KOmmlNodePtr element =
        makeScriptElement(converter.convert(*script.base), std::move(lower), std::move(upper));
    return element ? makeOmmlList(std::move(element)) : KOmmlNodeList();
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
    if (name != QLatin1String("varinjlim") && name != QLatin1String("varprojlim"))
        return {};
    // The arrow under "lim" belongs to the name, so that limits written as a subscript go below it.
    OGroupChar arrow;
    arrow.e = makeOmmlList(makeNameRun(kLim));
    arrow.chr = name == QLatin1String("varinjlim") ? QStringLiteral("\u2192") : QStringLiteral("\u2190");
    arrow.pos = OPosition::bottom;
    arrow.vertJc = OVerticalJustification::top;
    arrow.ctrlPr = converter.currentStyle();
    return limitFunctionOf(converter, makeOmmlNode(std::move(arrow)), {});
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

KOmmlNodeList limitOperatorName(KLatexAst2Omml& converter, const KLatexCommand& command)
{
    // \operatorname*{arg\,max}: an upright operator name that takes its limits below.
    const KLatexNode* name = argumentNode(command.args, 0);
    if (!name || command.args.size() != 1)
        return {};
    converter.pushStyle(uprightStyle(converter.currentStyle()));
    KOmmlNodeList converted = converter.convert(*name);
    converter.popStyle();
    return limitFunctionOf(converter, std::move(converted), {});
}

KOmmlNodeList limitOperatorNameScript(KLatexAst2Omml& converter, const KLatexScript& script)
{
    return applyLimits(converter, script, limitOperatorName);
}

KOmmlNodeList sideset(KLatexAst2Omml& converter, const KLatexCommand& command)
{
    // \sideset{_a^b}{_c^d}\sum: scripts before and after an operator, which comes
    // as the third argument.
    const std::size_t count = command.args.size();
    if (count < 2 || count > 3)
        return {};
    const KSideScripts before = sideScripts(argumentNode(command.args, 0));
    const KSideScripts after = sideScripts(argumentNode(command.args, 1));
    KOmmlNodeList operand = converter.convertArgument(command.args, 2);
    if (after.sub || after.sup) {
        auto* nary = operand.size() == 1 ? ommlAs<ONaryOperator>(operand.front().get()) : nullptr;
        if (nary && nary->subHide && nary->supHide) {
            // The operator's own limit slots hold the scripts after it, beside it.
            nary->limLoc = OLimitLocation::subSup;
            if (after.sub) {
                nary->subHide = false;
                nary->sub = converter.convert(*after.sub);
            }
            if (after.sup) {
                nary->supHide = false;
                nary->sup = converter.convert(*after.sup);
            }
        } else {
            operand =
                makeOmmlList(makeScriptElement(std::move(operand), convertIfPresent(converter, after.sub),
                                               convertIfPresent(converter, after.sup)));
        }
    }
    if (!before.sub && !before.sup)
        return operand;
    OPreSubSuperscript prescripts;
    prescripts.e = std::move(operand);
    prescripts.sub = converter.convert(before.sub);
    prescripts.sup = converter.convert(before.sup);
    prescripts.ctrlPr = converter.currentStyle();
    return makeOmmlList(makeOmmlNode(std::move(prescripts)));
}
