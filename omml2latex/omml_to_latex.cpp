#include "omml2latex/omml_to_latex.h"

#include "latex/latex_writer.h"
#include "omml2latex/tables.h"

#include <algorithm>
#include <utility>

namespace {

// The most cells a matrix is padded to; real matrices stay far below it.
constexpr size_t kMaxPaddedCells = 1000000;

KLatexArg braceArg(KLatexNodePtr node)
{
    return KLatexArg{false, std::move(node)};
}

KLatexArg bracketArg(KLatexNodePtr node)
{
    return KLatexArg{true, std::move(node)};
}

KLatexNodePtr command(const QString& name, KLatexNodePtr a = nullptr, KLatexNodePtr b = nullptr)
{
    KLatexArgs args;
    if (a)
        args.push_back(braceArg(std::move(a)));
    if (b)
        args.push_back(braceArg(std::move(b)));
    return makeCommand(name, std::move(args));
}

// A plain brace group around a body, printed as "{body}".
KLatexNodePtr braced(KLatexNodePtr body)
{
    return makeLeftRight(QStringLiteral("{"), QStringLiteral("}"), std::move(body), false);
}

template <class... Nodes> KLatexNodePtr groupOf(Nodes... nodes)
{
    KLatexNodeList children;
    (children.push_back(std::move(nodes)), ...);
    return makeGroup(std::move(children));
}

// The non-null elements of a node list.
std::vector<const KOmmlNode*> present(const KOmmlNodeList& list)
{
    std::vector<const KOmmlNode*> nodes;
    for (const KOmmlNodePtr& node : list) {
        if (node)
            nodes.push_back(node.get());
    }
    return nodes;
}

const KOmmlNode* single(const KOmmlNodeList& list)
{
    const std::vector<const KOmmlNode*> nodes = present(list);
    return nodes.size() == 1 ? nodes.front() : nullptr;
}

// A function name that \operatorname can hold as it is: letters and digits.
bool isNameText(const QString& text)
{
    for (const QChar c : text) {
        if (!c.isLetterOrNumber())
            return false;
    }
    return true;
}

// Whether a list has runs at its top level and all of them are upright letters.
bool upright(const KOmmlNodeList& list)
{
    bool any = false;
    for (const KOmmlNode* node : present(list)) {
        if (const auto* run = ommlAs<ORun>(node)) {
            if (run->mathProps.style != OStyle::plain || run->wordProps.bold || run->wordProps.italic)
                return false;
            any = true;
        }
    }
    return any;
}

bool runIsStyled(const ORun& run)
{
    const OWordRunProperties& word = run.wordProps;
    return run.mathProps.style.has_value() || run.mathProps.normalText || !word.asciiFont.isEmpty() ||
           word.italic || word.bold ||
           word.color.has_value();
}

// The name and scripts of a function application, after a script element
// around the name has been taken apart.
struct FunctionName {
    const KOmmlNodeList* names = nullptr;
    const KOmmlNodeList* sub = nullptr;
    const KOmmlNodeList* sup = nullptr;
};

FunctionName splitFunctionName(const OFunction& function)
{
    FunctionName split{&function.fName};
    const KOmmlNode* only = single(function.fName);
    if (const auto* s = ommlAs<OSubscript>(only)) {
        split = {&s->e, &s->sub, nullptr};
    } else if (const auto* s = ommlAs<OSuperscript>(only)) {
        split = {&s->e, nullptr, &s->sup};
    } else if (const auto* s = ommlAs<OSubSuperscript>(only)) {
        split = {&s->e, &s->sub, &s->sup};
    }
    return split;
}

} // namespace

class KOmmlToLatexConverter::OmmlToLatexVisitor {
public:
    explicit OmmlToLatexVisitor(KOmmlToLatexConverter& converter) : m_converter(converter) {}

    KLatexNodePtr operator()(const OMathParagraph&) { return nullptr; }

    KLatexNodePtr operator()(const OMathEquation& equation)
    {
        const std::vector<const KOmmlNode*> children = present(equation.children);
        if (children.empty())
            return nullptr;
        if (children.size() == 1)
            return convert(children.front());
        return list(equation.children);
    }

    KLatexNodePtr operator()(const ORun& run)
    {
        if (!runIsStyled(run))
            return runTextToLatex(run.text, m_converter.m_scriptDepth > 0);
        return runToLatex(run, m_converter.m_scriptDepth > 0, m_converter.m_alphabet);
    }

    KLatexNodePtr operator()(const OFraction& fraction)
    {
        // A fraction without bar outside parentheses is {N \atop D}; \binom would add them.
        if (fraction.type == OFractionType::noBar)
            return styled(
                braced(groupOf(list(fraction.num), command(QStringLiteral("atop")), list(fraction.den))),
                fraction.ctrlPr);
        QString name = QStringLiteral("frac");
        if (fraction.type == OFractionType::linear)
            name = QStringLiteral("tfrac");
        else if (fraction.type == OFractionType::skewed)
            name = QStringLiteral("sfrac");
        return styled(command(name, list(fraction.num), list(fraction.den)), fraction.ctrlPr);
    }

    KLatexNodePtr operator()(const OSuperscript& script)
    {
        return styled(makeScript(list(script.e), scriptList(script.sup), nullptr), script.ctrlPr);
    }

    KLatexNodePtr operator()(const OSubscript& script)
    {
        return styled(makeScript(list(script.e), nullptr, scriptList(script.sub)), script.ctrlPr);
    }

    KLatexNodePtr operator()(const OSubSuperscript& script)
    {
        return styled(makeScript(list(script.e), scriptList(script.sup), scriptList(script.sub)),
                      script.ctrlPr);
    }

    KLatexNodePtr operator()(const ORadical& radical)
    {
        KLatexArgs args;
        if (radical.deg && !radical.degHide && !present(*radical.deg).empty())
            args.push_back(bracketArg(list(*radical.deg)));
        else if (!radical.degHide)
            args.push_back(bracketArg(makeGroup()));
        args.push_back(braceArg(list(radical.e)));
        return styled(makeCommand(QStringLiteral("sqrt"), std::move(args)), radical.ctrlPr);
    }

    KLatexNodePtr operator()(const ONaryOperator& nary)
    {
        if (nary.chr.isEmpty())
            return styled(nullptr, nary.ctrlPr);
        const QString name = naryCommands().value(nary.chr);
        // \limits or \nolimits only where the placement is not the operator's own in
        // display style: limits above and below a sum, beside an integral.
        const bool above = nary.limLoc == OLimitLocation::undOvr;
        KLatexNodePtr op = command(name);
        if (!naryCommands().contains(nary.chr) || above != naryLimitsAboveByDefault(name))
            op = groupOf(std::move(op),
                         command(above ? QStringLiteral("limits") : QStringLiteral("nolimits")));
        KLatexNodePtr sub = nary.subHide ? nullptr : scriptList(nary.sub);
        KLatexNodePtr sup = nary.supHide ? nullptr : scriptList(nary.sup);
        if (sub || sup)
            op = makeScript(std::move(op), std::move(sup), std::move(sub));
        KLatexNodePtr body = operand(list(nary.e));
        return styled(groupOf(std::move(op), std::move(body)), nary.ctrlPr);
    }

    KLatexNodePtr operator()(const OLimitLower& limit)
    {
        if (KLatexNodePtr brace = labelledBrace(limit.e, nullptr, &limit.lim))
            return styled(std::move(brace), limit.ctrlPr);
        const std::vector<const KOmmlNode*> base = present(limit.e);
        if (base.empty())
            return styled(nullptr, limit.ctrlPr);
        QString name;
        if (const auto* run = ommlAs<ORun>(base.front()))
            name = limitCommand(run->text);
        KLatexNodePtr lim = list(limit.lim);
        if (!name.isEmpty() && present(limit.lim).empty())
            return styled(command(name), limit.ctrlPr); // \gcd(a,b): no limit below
        if (!name.isEmpty())
            return styled(makeScript(command(name), nullptr, std::move(lim)), limit.ctrlPr);
        return styled(command(QStringLiteral("underset"), std::move(lim), list(limit.e)), limit.ctrlPr);
    }

    KLatexNodePtr operator()(const OLimitUpper& limit)
    {
        if (KLatexNodePtr brace = labelledBrace(limit.e, &limit.lim, nullptr))
            return styled(std::move(brace), limit.ctrlPr);
        return styled(command(QStringLiteral("overset"), list(limit.lim), list(limit.e)), limit.ctrlPr);
    }

    KLatexNodePtr operator()(const OFunction& function)
    {
        KLatexNodePtr argument = list(function.e);
        if (KLatexNodePtr name = namedLimits(function))
            return styled(groupOf(std::move(name), operand(std::move(argument))), function.ctrlPr);
        const FunctionName split = splitFunctionName(function);
        KLatexNodePtr name;
        if (const auto* run = ommlAs<ORun>(single(*split.names))) {
            const QString text = run->text.trimmed();
            if (isTexOperatorCommand(text))
                name = command(text);
            else if (!text.isEmpty() && isNameText(text))
                name = command(QStringLiteral("operatorname"), makeText(text));
            else if (text.isEmpty())
                name = list(function.fName);
            else if (!upright(*split.names))
                name = list(*split.names);
            else
                name = uprightOperator(*split.names); // \mathop{arg\,min}
        } else if (!upright(*split.names)) {
            name = list(*split.names);
        } else {
            name = uprightOperator(*split.names);
        }
        if (split.sub || split.sup) {
            KLatexNodePtr sub = split.sub ? scriptList(*split.sub) : nullptr;
            KLatexNodePtr sup = split.sup ? scriptList(*split.sup) : nullptr;
            name = makeScript(std::move(name), std::move(sup), std::move(sub));
        }
        KLatexNodePtr body = operand(std::move(argument));
        return styled(groupOf(std::move(name), std::move(body)), function.ctrlPr);
    }

    KLatexNodePtr operator()(const ODelimiter& delimiter)
    {
        if (!delimiter.separated.empty())
            return styled(groupOf(command(QStringLiteral("left"), fence(delimiter.begChr)),
                                  separated(delimiter),
                                  command(QStringLiteral("right"), fence(delimiter.endChr))),
                          delimiter.ctrlPr);
        if (KLatexNodePtr sized = sizedFence(delimiter))
            return styled(std::move(sized), delimiter.ctrlPr);
        const KOmmlNode* only = single(delimiter.e);
        if (delimiter.begChr == QLatin1String("(") && delimiter.endChr == QLatin1String(")")) {
            const auto* fraction = ommlAs<OFraction>(only);
            if (fraction && fraction->type == OFractionType::noBar) {
                return styled(command(QStringLiteral("binom"), list(fraction->num), list(fraction->den)),
                              delimiter.ctrlPr);
            }
        }
        if (delimiter.begChr == QLatin1String("{") && delimiter.endChr.isEmpty()) {
            if (const auto* array = ommlAs<OEquationArray>(only))
                return styled(styled(lines(*array, QStringLiteral("cases")), array->ctrlPr),
                              delimiter.ctrlPr);
        }
        KLatexNodePtr body = list(delimiter.e);
        KLatexNodePtr left = command(QStringLiteral("left"), fence(delimiter.begChr));
        KLatexNodePtr right = command(QStringLiteral("right"), fence(delimiter.endChr));
        return styled(groupOf(std::move(left), std::move(body), std::move(right)), delimiter.ctrlPr);
    }

    KLatexNodePtr operator()(const OAccent& accent)
    {
        if (accent.chr.isEmpty())
            return styled(nullptr, accent.ctrlPr);
        return styled(command(accentCommands().value(accent.chr), list(accent.e)), accent.ctrlPr);
    }

    KLatexNodePtr operator()(const OBar& bar)
    {
        const QString name =
            bar.pos == OPosition::bottom ? QStringLiteral("underline") : QStringLiteral("overline");
        return command(name, list(bar.e));
    }

    KLatexNodePtr operator()(const OBorderBox& box)
    {
        const bool allHidden = box.hideTop && box.hideBot && box.hideLeft && box.hideRight;
        const bool noneHidden = !box.hideTop && !box.hideBot && !box.hideLeft && !box.hideRight;
        const bool straight = box.strikeH || box.strikeV;
        const bool diagonal = box.strikeBLTR || box.strikeTLBR;
        // Partial frames and strokes that \boxed and the \cancel family cannot say.
        if (straight || (!allHidden && !noneHidden) || (noneHidden && diagonal))
            return styled(command(QStringLiteral("enclose"), makeText(encloseNotation(box)), list(box.e)),
                          box.ctrlPr);
        if (allHidden && box.strikeTLBR && !box.strikeBLTR) {
            // One struck-through symbol is a negated relation: \not\in, \not=.
            KLatexNodePtr body = list(box.e);
            const auto* symbol = latexAs<KLatexCommand>(body.get());
            const auto* text = latexAs<KLatexText>(body.get());
            const bool letter = text && text->text.front().isLetterOrNumber();
            if (((symbol && symbol->args.empty()) || (text && !letter)) && isLatexAtom(body.get()))
                return styled(groupOf(command(QStringLiteral("not")), std::move(body)), box.ctrlPr);
            return styled(command(QStringLiteral("bcancel"), std::move(body)), box.ctrlPr);
        }
        QString name = QStringLiteral("boxed");
        if (allHidden && box.strikeBLTR && box.strikeTLBR)
            name = QStringLiteral("xcancel");
        else if (allHidden && box.strikeBLTR)
            name = QStringLiteral("cancel");
        else if (allHidden && box.strikeTLBR)
            name = QStringLiteral("bcancel");
        return styled(command(name, list(box.e)), box.ctrlPr);
    }

    KLatexNodePtr operator()(const OGroupChar& group)
    {
        if (groupCharCommands().contains(group.chr))
            return styled(command(groupCharCommands().value(group.chr), list(group.e)), group.ctrlPr);
        // An arrow below its label, the label sitting on it: amsmath's extensible arrows.
        const bool underLabel = group.pos == OPosition::bottom && group.vertJc == OVerticalJustification::top;
        if (underLabel && group.chr == QStringLiteral("\u2192"))
            return styled(command(QStringLiteral("xrightarrow"), list(group.e)), group.ctrlPr);
        if (underLabel && group.chr == QStringLiteral("\u2190"))
            return styled(command(QStringLiteral("xleftarrow"), list(group.e)), group.ctrlPr);
        KLatexNodePtr symbol = arrowCommands().contains(group.chr) ? command(arrowCommands().value(group.chr))
                                                                   : makeText(group.chr);
        const QString name =
            group.pos == OPosition::top ? QStringLiteral("overset") : QStringLiteral("underset");
        KLatexArgs args;
        args.push_back(braceArg(std::move(symbol)));
        args.push_back(braceArg(list(group.e)));
        return styled(makeCommand(name, std::move(args)), group.ctrlPr);
    }

    KLatexNodePtr operator()(const OMatrix& matrix)
    {
        if (matrix.rows.empty())
            return styled(nullptr, matrix.ctrlPr);
        size_t columns = 1;
        for (const OMatrixRow& row : matrix.rows)
            columns = std::max(columns, row.size());
        // Short rows are padded to the full column count. One very long row
        // among many short ones would make padding quadratic in the input, so
        // past a generous cell budget the rows keep their own lengths.
        const bool pad = columns <= kMaxPaddedCells / matrix.rows.size();
        KLatexNodeList rows;
        for (const OMatrixRow& row : matrix.rows) {
            KLatexNodeList cells;
            // A last row of one empty cell is what a line break after the last row
            // leaves: written as that line break, it reads back as the same row.
            if (&row == &matrix.rows.back() && matrix.rows.size() > 1 && row.size() == 1 &&
                present(row.front()).empty()) {
                rows.push_back(makeRow({}));
                continue;
            }
            const size_t count = pad ? columns : std::max<size_t>(row.size(), 1);
            for (size_t i = 0; i < count; ++i)
                cells.push_back(i < row.size() ? list(row[i]) : makeGroup());
            rows.push_back(makeRow(std::move(cells)));
        }
        if (isAlignment(matrix))
            return styled(makeEnvironment(QStringLiteral("aligned"), {}, std::move(rows)), matrix.ctrlPr);
        // Columns justified otherwise than centred are an array's column format.
        const QString format = columnFormat(matrix);
        if (format.isEmpty())
            return styled(makeEnvironment(QStringLiteral("matrix"), {}, std::move(rows)), matrix.ctrlPr);
        KLatexArgs args;
        args.push_back(braceArg(makeText(format)));
        return styled(makeEnvironment(QStringLiteral("array"), std::move(args), std::move(rows)),
                      matrix.ctrlPr);
    }

    KLatexNodePtr operator()(const OBox& box)
    {
        KLatexNodePtr body = list(box.e);
        if (box.noBreak)
            body = command(QStringLiteral("mbox"), std::move(body));
        return styled(std::move(body), box.ctrlPr);
    }

    KLatexNodePtr operator()(const OEquationArray& array)
    {
        // Centred lines without a brace; \begin{gathered} reads back as the same array.
        return styled(lines(array, QStringLiteral("gathered")), array.ctrlPr);
    }

    KLatexNodePtr operator()(const OPhantom& phantom)
    {
        // A phantom that shows its content is that content, or \smash when it has lost its
        // height, its depth or both (but not its width).
        if (phantom.show) {
            if (phantom.zeroWid || (!phantom.zeroAsc && !phantom.zeroDesc))
                return styled(list(phantom.e), phantom.ctrlPr);
            KLatexArgs args;
            if (phantom.zeroAsc != phantom.zeroDesc)
                args.push_back(bracketArg(makeText(phantom.zeroAsc ? QStringLiteral("t") : QStringLiteral("b"))));
            args.push_back(braceArg(list(phantom.e)));
            return styled(makeCommand(QStringLiteral("smash"), std::move(args)), phantom.ctrlPr);
        }
        QString name = QStringLiteral("phantom");
        if (phantom.zeroAsc && phantom.zeroDesc && !phantom.zeroWid)
            name = QStringLiteral("hphantom");
        else if (phantom.zeroWid && !phantom.zeroAsc && !phantom.zeroDesc)
            name = QStringLiteral("vphantom");
        return styled(command(name, list(phantom.e)), phantom.ctrlPr);
    }

    KLatexNodePtr operator()(const OPreSubSuperscript& script)
    {
        // {}_{B}^{S}E: scripts on an empty base, then the base they stand before.
        KLatexNodePtr scripts = makeScript(makeGroup(), scriptList(script.sup), scriptList(script.sub));
        return styled(groupOf(std::move(scripts), list(script.e)), script.ctrlPr);
    }

private:
    // The elements of a delimiter with their separators: \middle where the
    // separator is a delimiter TeX can size, else the separator's character.
    KLatexNodePtr separated(const ODelimiter& delimiter)
    {
        const bool middle = isSizableFence(delimiter.sepChr);
        KLatexNodeList pieces;
        pieces.push_back(list(delimiter.e));
        for (const KOmmlNodeList& element : delimiter.separated) {
            if (middle)
                pieces.push_back(command(QStringLiteral("middle"), fence(delimiter.sepChr)));
            else if (KLatexNodePtr sign = runTextToLatex(delimiter.sepChr, m_converter.m_scriptDepth > 0))
                pieces.push_back(std::move(sign));
            pieces.push_back(list(element));
        }
        return makeGroup(std::move(pieces));
    }

    // \overbrace{x}^{n} and \underbrace{x}_{n}: the label is a limit on the brace's
    // side, and a limit on the other side around that is the other script. `base`
    // is what the limit `above` or `below` stands on; null when it is no brace.
    KLatexNodePtr labelledBrace(const KOmmlNodeList& base, const KOmmlNodeList* above,
                                const KOmmlNodeList* below)
    {
        static const QString kOverBrace = QStringLiteral("\u23DE");
        static const QString kUnderBrace = QStringLiteral("\u23DF");
        const KOmmlNode* inner = single(base);
        // The label nearest the brace: \overbrace{x}^{n}_{m} is n over m-under.
        if (!above) {
            if (const auto* upper = ommlAs<OLimitUpper>(inner)) {
                const auto* brace = ommlAs<OGroupChar>(single(upper->e));
                if (brace && brace->chr == kOverBrace) {
                    inner = single(upper->e);
                    above = &upper->lim;
                }
            }
        } else if (const auto* lower = ommlAs<OLimitLower>(inner)) {
            const auto* brace = ommlAs<OGroupChar>(single(lower->e));
            if (brace && brace->chr == kUnderBrace) {
                inner = single(lower->e);
                below = &lower->lim;
            }
        }
        const auto* brace = ommlAs<OGroupChar>(inner);
        if (!brace)
            return nullptr;
        const bool over = brace->chr == kOverBrace && brace->pos == OPosition::top;
        const bool under = brace->chr == kUnderBrace && brace->pos == OPosition::bottom;
        if ((!over || !above) && (!under || !below))
            return nullptr;
        KLatexNodePtr sup = above ? scriptList(*above) : nullptr;
        KLatexNodePtr sub = below ? scriptList(*below) : nullptr;
        return makeScript(convert(inner), std::move(sup), std::move(sub));
    }

    // A fence on one side around a hidden strut of no width is \bigl( or \bigr)
    // and their taller relatives, after the strut's height: a bar for \big, two,
    // three or four stacked lines for \Big, \bigg and \Bigg. Null otherwise.
    KLatexNodePtr sizedFence(const ODelimiter& delimiter)
    {
        const auto* strut = ommlAs<OPhantom>(single(delimiter.e));
        if (!strut || strut->show || !strut->zeroWid ||
            delimiter.begChr.isEmpty() == delimiter.endChr.isEmpty())
            return nullptr;
        const KOmmlNode* content = single(strut->e);
        int lines = ommlAs<ORun>(content) ? 1 : 0;
        while (const auto* stack = ommlAs<OFraction>(content)) {
            lines = std::max(lines, 1) + 1;
            content = single(stack->num);
        }
        static const char* const kSizes[] = {"big", "Big", "bigg", "Bigg"};
        if (lines < 1 || lines > 4)
            return nullptr;
        const bool opening = !delimiter.begChr.isEmpty();
        const QString name = QLatin1String(kSizes[lines - 1]) + QLatin1Char(opening ? 'l' : 'r');
        return command(name, fence(opening ? delimiter.begChr : delimiter.endChr));
    }

    // Characters TeX sizes as delimiters (\left, \middle, \big): brackets, bars,
    // the slash and the backslash, and those with a delimiter name; an empty
    // character is the null delimiter.
    static bool isSizableFence(const QString& chr)
    {
        static const QString kPlain = QStringLiteral("()[]{}|/\\\u2016");
        return chr.isEmpty() || (chr.size() == 1 && kPlain.contains(chr)) ||
               delimiterCommands().contains(chr);
    }

    // An operator name with limits below (and above): \lim_{L}^{U}, or
    // \operatorname*{name}_{L} for a name that is no limit command. Null when the
    // function's name is not of that shape.
    KLatexNodePtr namedLimits(const OFunction& function)
    {
        const KOmmlNode* only = single(function.fName);
        const OLimitLower* lower = ommlAs<OLimitLower>(only);
        const KOmmlNodeList* upper = nullptr;
        if (const auto* limitUpper = ommlAs<OLimitUpper>(only)) {
            lower = ommlAs<OLimitLower>(single(limitUpper->e));
            upper = &limitUpper->lim;
        }
        const auto* run = lower ? ommlAs<ORun>(single(lower->e)) : nullptr;
        const QString text = run ? run->text.trimmed() : QString();
        if (text.isEmpty())
            return nullptr;
        const QString lowered = limitCommand(text);
        KLatexNodePtr name;
        KLatexNodePtr sub;
        if (!lowered.isEmpty()) {
            if (!upper)
                return nullptr; // the limit element alone says it: \lim_{L}
            name = command(lowered);
            sub = list(lower->lim);
        } else {
            name = command(QStringLiteral("operatorname*"), spacedText(text));
            if (!present(lower->lim).empty())
                sub = list(lower->lim);
        }
        KLatexNodePtr sup = upper ? list(*upper) : nullptr;
        if (sub || sup)
            name = makeScript(std::move(name), std::move(sup), std::move(sub));
        return name;
    }

    // A name that is more than letters (arg\,min, dim_H) as one upright operator; its
    // letters need no \mathrm of their own inside \mathop.
    KLatexNodePtr uprightOperator(const KOmmlNodeList& names)
    {
        const QString outer = std::exchange(m_converter.m_alphabet, QStringLiteral("mathrm"));
        KLatexNodePtr name = command(QStringLiteral("mathop"), list(names));
        m_converter.m_alphabet = outer;
        return name;
    }

    // Columns justified right, left, right, ... are the alignment points of
    // \begin{aligned}, which reads back with the same justifications.
    static bool isAlignment(const OMatrix& matrix)
    {
        if (matrix.columns.empty())
            return false;
        for (std::size_t i = 0; i < matrix.columns.size(); ++i) {
            const OColumnJustification expected =
                i % 2 == 0 ? OColumnJustification::right : OColumnJustification::left;
            if (matrix.columns[i].justification != expected)
                return false;
        }
        return true;
    }

    // "lcr..." for the columns of a matrix, or empty when every column is centred. A table wider
    // than any written by hand keeps the first columns' justification only.
    static constexpr int kMaxSpecifiedColumns = 1024;
    static QString columnFormat(const OMatrix& matrix)
    {
        QString format;
        bool centred = true;
        for (const OMatrixColumn& column : matrix.columns) {
            QChar letter = QLatin1Char('c');
            if (column.justification == OColumnJustification::left)
                letter = QLatin1Char('l');
            else if (column.justification == OColumnJustification::right)
                letter = QLatin1Char('r');
            centred = centred && letter == QLatin1Char('c');
            // One column description may stand for several columns.
            const int count = std::max(1, column.count.toInt());
            for (int i = 0; i < count && format.size() < kMaxSpecifiedColumns; ++i)
                format += letter;
        }
        return centred ? QString() : format;
    }

    // Text in which each space is the control space "\ ", which survives reading.
    static KLatexNodePtr spacedText(const QString& text)
    {
        const QStringList words = text.split(QLatin1Char(' '));
        if (words.size() == 1)
            return makeText(text);
        KLatexNodeList pieces;
        for (int i = 0; i < words.size(); ++i) {
            if (i > 0)
                pieces.push_back(makeCommand(QStringLiteral(" ")));
            if (!words[i].isEmpty())
                pieces.push_back(makeText(words[i]));
        }
        return makeGroup(std::move(pieces));
    }

    // The cells of an equation array row: the row cut at the `&` alignment points of its runs.
    KLatexNodeList alignedCells(const KOmmlNodeList& row)
    {
        const bool marked = std::any_of(row.begin(), row.end(), [](const KOmmlNodePtr& node) {
            const auto* run = ommlAs<ORun>(node.get());
            return run && run->text.contains(QLatin1Char('&'));
        });
        KLatexNodeList cells;
        if (!marked) {
            cells.push_back(list(row));
            return cells;
        }
        KLatexNodeList cell;
        auto finish = [&] {
            cells.push_back(cell.size() == 1 ? std::move(cell.front()) : makeGroup(std::move(cell)));
            cell.clear();
        };
        for (const KOmmlNodePtr& node : row) {
            const auto* run = ommlAs<ORun>(node.get());
            if (!run || !run->text.contains(QLatin1Char('&'))) {
                if (KLatexNodePtr converted = m_converter.convert(node.get()))
                    cell.push_back(std::move(converted));
                continue;
            }
            const QStringList pieces = run->text.split(QLatin1Char('&'));
            for (int i = 0; i < pieces.size(); ++i) {
                if (i > 0)
                    finish();
                if (pieces[i].isEmpty())
                    continue;
                const KOmmlNodePtr piece = makeOmmlNode(ORun{pieces[i], run->mathProps, run->wordProps});
                if (KLatexNodePtr converted = m_converter.convert(piece.get()))
                    cell.push_back(std::move(converted));
            }
        }
        finish();
        return cells;
    }

    // The rows of an equation array, one cell each, as the environment `name`;
    // a single row stands alone.
    KLatexNodePtr lines(const OEquationArray& array, const QString& name)
    {
        if (array.rows.empty())
            return nullptr;
        KLatexNodeList rows;
        for (const KOmmlNodeList& row : array.rows)
            rows.push_back(makeRow(alignedCells(row)));
        if (rows.size() == 1)
            return std::move(rows.front());
        return makeEnvironment(name, {}, std::move(rows));
    }

    // The \enclose notations of a border box: the visible sides (or "box" for
    // all four) and the strokes.
    static QString encloseNotation(const OBorderBox& box)
    {
        QStringList notation;
        if (!box.hideTop && !box.hideBot && !box.hideLeft && !box.hideRight) {
            notation << QStringLiteral("box");
        } else {
            if (!box.hideTop)
                notation << QStringLiteral("top");
            if (!box.hideBot)
                notation << QStringLiteral("bottom");
            if (!box.hideLeft)
                notation << QStringLiteral("left");
            if (!box.hideRight)
                notation << QStringLiteral("right");
        }
        if (box.strikeH)
            notation << QStringLiteral("horizontalstrike");
        if (box.strikeV)
            notation << QStringLiteral("verticalstrike");
        if (box.strikeBLTR)
            notation << QStringLiteral("updiagonalstrike");
        if (box.strikeTLBR)
            notation << QStringLiteral("downdiagonalstrike");
        return notation.join(QLatin1Char(','));
    }

    // An operand of a large operator or a function: bare when it is one atom that
    // the LaTeX reader takes as the operand on its own (\sum_{i} x, \sin x), else
    // in braces so that all of it is read back as the operand (\sin{2x}).
    static KLatexNodePtr operand(KLatexNodePtr body)
    {
        if (isLatexAtom(body.get()))
            return body;
        return braced(std::move(body));
    }

    // A limit or script list; primes in it are \prime, not apostrophes.
    KLatexNodePtr scriptList(const KOmmlNodeList& nodes)
    {
        ++m_converter.m_scriptDepth;
        KLatexNodePtr converted = list(nodes);
        --m_converter.m_scriptDepth;
        return converted;
    }

    KLatexNodePtr convert(const KOmmlNode* node) { return m_converter.convert(node); }
    KLatexNodePtr list(const KOmmlNodeList& nodes) { return m_converter.convertList(nodes); }

    static KLatexNodePtr styled(KLatexNodePtr node, const OControlProperties& ctrlPr)
    {
        return applyControlStyle(std::move(node), ctrlPr);
    }

    // A fence of \left or \right: a command for a named delimiter, else the
    // character itself ("." for no fence).
    static KLatexNodePtr fence(const QString& chr)
    {
        if (chr == QLatin1String("\\"))
            return command(QStringLiteral("backslash")); // "\\" would be a line break
        const QString name = delimiterName(chr);
        if (name != chr && name != QLatin1String("."))
            return command(name);
        const QVector<uint> codePoints = chr.toUcs4();
        if (codePoints.size() == 1 && !symbolCommand(codePoints.front()).isEmpty())
            return command(symbolCommand(codePoints.front())); // \left\Vert
        return makeText(name);
    }

    KOmmlToLatexConverter& m_converter;
};

KLatexNodePtr KOmmlToLatexConverter::convert(const KOmmlNode* node)
{
    if (!node || m_depth >= kMaxDepth)
        return nullptr;
    ++m_depth;
    OmmlToLatexVisitor visitor(*this);
    KLatexNodePtr result = std::visit(visitor, node->value);
    --m_depth;
    return result;
}

namespace {

bool sameRunProperties(const ORun& a, const ORun& b)
{
    const OWordRunProperties& x = a.wordProps;
    const OWordRunProperties& y = b.wordProps;
    return a.mathProps.script == b.mathProps.script && a.mathProps.style == b.mathProps.style &&
           a.mathProps.normalText == b.mathProps.normalText && x.asciiFont == y.asciiFont && x.italic == y.italic && x.bold == y.bold && x.color == y.color;
}

} // namespace

KLatexNodePtr KOmmlToLatexConverter::convertList(const KOmmlNodeList& list)
{
    KLatexNodeList results;
    for (size_t i = 0; i < list.size(); ++i) {
        const KOmmlNode* node = list[i].get();
        // Neighbouring runs of one style are one run, so that they share one style
        // command: \mathrm{ab}, not \mathrm{a}\mathrm{b}.
        const ORun* run = ommlAs<ORun>(node);
        KOmmlNodePtr merged;
        if (run && runIsStyled(*run)) {
            size_t next = i + 1;
            while (next < list.size() && ommlAs<ORun>(list[next].get()) &&
                   sameRunProperties(*run, *ommlAs<ORun>(list[next].get())))
                ++next;
            if (next > i + 1) {
                ORun joined = *run;
                for (size_t j = i + 1; j < next; ++j)
                    joined.text += ommlAs<ORun>(list[j].get())->text;
                merged = makeOmmlNode(std::move(joined));
                node = merged.get();
                i = next - 1;
            }
        }
        if (KLatexNodePtr converted = convert(node))
            results.push_back(std::move(converted));
    }
    if (results.size() == 1)
        return std::move(results.front());
    return makeGroup(std::move(results));
}
