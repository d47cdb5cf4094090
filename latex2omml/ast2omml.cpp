#include "latex2omml/ast2omml.h"

#include "latex2omml/handlers.h"
#include "latex2omml/tables.h"

#include <QColor>

#include <algorithm>

namespace {

const QString kLimits = QStringLiteral("limits");
const QString kNoLimits = QStringLiteral("nolimits");

// Keeps the nesting counter balanced on every way out of a conversion.
class KDepthGuard {
public:
    explicit KDepthGuard(int& depth) : m_depth(depth) { ++m_depth; }
    ~KDepthGuard() { --m_depth; }
    KDepthGuard(const KDepthGuard&) = delete;
    KDepthGuard& operator=(const KDepthGuard&) = delete;
    bool tooDeep() const { return m_depth > KLatexAst2Omml::kMaxDepth; }

private:
    int& m_depth;
};

KLatexNodePtr cloneNode(const KLatexNode* node, int depth);

KLatexNodeList cloneList(const KLatexNodeList& list, int depth)
{
    KLatexNodeList copy;
    copy.reserve(list.size());
    for (const KLatexNodePtr& child : list)
        copy.push_back(cloneNode(child.get(), depth));
    return copy;
}

KLatexArgs cloneArgs(const KLatexArgs& args, int depth)
{
    KLatexArgs copy;
    copy.reserve(args.size());
    for (const KLatexArg& arg : args)
        copy.push_back(KLatexArg{arg.optional, cloneNode(arg.node.get(), depth)});
    return copy;
}

// Deep copy of a subtree, for the limits merging that rebuilds nodes of a tree it
// may not change. Beyond the nesting limit the copy is an empty group, which the
// converter would not have reached anyway.
KLatexNodePtr cloneNode(const KLatexNode* node, int depth)
{
    if (!node)
        return nullptr;
    if (depth > KLatexAst2Omml::kMaxDepth)
        return makeGroup();
    const int next = depth + 1;
    struct KCloner {
        int next;
        KLatexVariant operator()(const KLatexGroup& n) const
        {
            return KLatexGroup{cloneList(n.children, next)};
        }
        KLatexVariant operator()(const KLatexText& n) const { return n; }
        KLatexVariant operator()(const KLatexCommand& n) const
        {
            return KLatexCommand{n.name, cloneArgs(n.args, next)};
        }
        KLatexVariant operator()(const KLatexEnv& n) const
        {
            return KLatexEnv{n.name, cloneArgs(n.args, next), cloneList(n.body, next)};
        }
        KLatexVariant operator()(const KLatexRow& n) const { return KLatexRow{cloneList(n.cells, next)}; }
        KLatexVariant operator()(const KLatexScript& n) const
        {
            return KLatexScript{cloneNode(n.base.get(), next), cloneNode(n.sup.get(), next),
                                cloneNode(n.sub.get(), next)};
        }
        KLatexVariant operator()(const KLatexLeftRight& n) const
        {
            return KLatexLeftRight{n.left, n.right, cloneNode(n.body.get(), next), n.useLeftRight};
        }
        KLatexVariant operator()(const KLatexUnknownCommand& n) const
        {
            return KLatexUnknownCommand{n.name, cloneArgs(n.args, next)};
        }
    };
    return std::make_unique<KLatexNode>(KLatexNode{std::visit(KCloner{next}, node->value)});
}

// One child position of a group during limits merging: either the original
// child or a node rebuilt by the merge, which then owns it.
struct KSlot {
    const KLatexNode* node = nullptr;
    KLatexNodePtr owned;

    void set(KLatexNodePtr replacement)
    {
        owned = std::move(replacement);
        node = owned.get();
    }
    void clear()
    {
        owned.reset();
        node = nullptr;
    }
    // The slot's node as an owned tree: moved when the slot owns it, copied otherwise.
    KLatexNodePtr take(int depth)
    {
        KLatexNodePtr result = owned ? std::move(owned) : cloneNode(node, depth);
        clear();
        return result;
    }
};

// The command a limits marker or an operator is: a plain command, or the
// command that is the base of a script.
const KLatexCommand* commandOrScriptBase(const KLatexNode* node)
{
    if (const auto* command = latexAs<KLatexCommand>(node))
        return command;
    if (const auto* script = latexAs<KLatexScript>(node))
        return latexAs<KLatexCommand>(script->base.get());
    return nullptr;
}

bool isLimitsMarker(const KLatexCommand* command)
{
    return command && (command->name == kLimits || command->name == kNoLimits);
}

// A command named `name` carrying a copy of `source`'s arguments.
KLatexNodePtr renamedCommand(const QString& name, const KLatexCommand& source, int depth)
{
    return makeCommand(name, cloneArgs(source.args, depth));
}

// The script `source` with a new base; its scripts are moved or copied along.
KLatexNodePtr rebasedScript(KLatexNodePtr base, KSlot& source, int depth)
{
    if (source.owned) {
        auto* script = latexAs<KLatexScript>(source.owned.get());
        KLatexNodePtr result = makeScript(std::move(base), std::move(script->sup), std::move(script->sub));
        source.clear();
        return result;
    }
    const auto* script = latexAs<KLatexScript>(source.node);
    return makeScript(std::move(base), cloneNode(script->sup.get(), depth),
                      cloneNode(script->sub.get(), depth));
}

bool sameColour(const std::optional<QColor>& a, const std::optional<QColor>& b)
{
    if (a.has_value() != b.has_value())
        return false;
    return !a || *a == *b;
}

bool sameRunProperties(const ORun& a, const ORun& b)
{
    return a.mathProps.script == b.mathProps.script && a.mathProps.style == b.mathProps.style &&
           a.mathProps.normalText == b.mathProps.normalText &&
           a.wordProps.asciiFont == b.wordProps.asciiFont && a.wordProps.hAnsiFont == b.wordProps.hAnsiFont &&
           a.wordProps.hint == b.wordProps.hint && a.wordProps.italic == b.wordProps.italic &&
           a.wordProps.bold == b.wordProps.bold && sameColour(a.wordProps.color, b.wordProps.color);
}

// Whether a math alphabet draws a character otherwise than plain math does: \mathrm
// changes letters (the capital Greek letters are upright already), the other
// alphabets letters and digits. Operators, punctuation and fences look the same in
// every alphabet, so TeX's \mathrm{h.c.} is h and c upright between plain dots.
bool changedByAlphabet(const OMathRunProperties& props, uint c)
{
    const bool romanOnly = props.style == OStyle::plain;
    if (romanOnly && c >= 0x0391 && c <= 0x03A9)
        return false;
    return QChar::isLetter(c) || (!romanOnly && QChar::isDigit(c));
}

// A run of a math alphabet as runs that keep the alphabet only where it changes
// something: \mathbf{-16.68} is "-", "16" bold, ".", "68" bold. A space belongs to
// the stretch before it (at the start, to the one after). Text fonts (bold or
// italic switches) and monospace keep the whole run.
std::vector<ORun> splitByAlphabet(const ORun& run)
{
    const bool alphabet = run.mathProps.style.has_value() || run.mathProps.script != OScript::roman;
    // Monospace is also the face of verbatim text and addresses, where every character counts.
    const bool monospace = run.mathProps.script == OScript::monospace;
    if (!alphabet || monospace || run.wordProps.bold || run.wordProps.italic)
        return {run};
    const QVector<uint> codePoints = run.text.toUcs4();
    // 1 changed, 0 unchanged, -1 a space, which takes its neighbour's kind.
    std::vector<int> kinds;
    for (const uint c : codePoints)
        kinds.push_back(QChar::isSpace(c) ? -1 : int(changedByAlphabet(run.mathProps, c)));
    const auto firstKnown = std::find_if(kinds.begin(), kinds.end(), [](int k) { return k != -1; });
    if (firstKnown == kinds.end())
        return {run};
    int previous = *firstKnown;
    for (int& kind : kinds) {
        if (kind == -1)
            kind = previous;
        previous = kind;
    }
    std::vector<ORun> pieces;
    for (int i = 0; i < codePoints.size(); ++i) {
        if (i == 0 || kinds[i] != kinds[i - 1])
            pieces.push_back(ORun{QString(), kinds[i] ? run.mathProps : OMathRunProperties{}, run.wordProps});
        pieces.back().text += QString::fromUcs4(&codePoints[i], 1);
    }
    return pieces;
}

// The runs of a converted list split where their alphabet changes nothing; a piece
// joins the run before it when their properties are equal.
KOmmlNodeList splitAlphabetRuns(KOmmlNodeList nodes)
{
    KOmmlNodeList output;
    output.reserve(nodes.size());
    for (KOmmlNodePtr& node : nodes) {
        auto* run = ommlAs<ORun>(node.get());
        if (!run) {
            output.push_back(std::move(node));
            continue;
        }
        std::vector<ORun> pieces = splitByAlphabet(*run);
        if (pieces.size() == 1 && sameRunProperties(pieces.front(), *run)) {
            output.push_back(std::move(node));
            continue;
        }
        for (ORun& piece : pieces) {
            auto* last = output.empty() ? nullptr : ommlAs<ORun>(output.back().get());
            if (last && sameRunProperties(*last, piece))
                last->text += piece.text;
            else
                output.push_back(makeOmmlNode(std::move(piece)));
        }
    }
    return output;
}

// A run of spaces alone keeps an alphabet only next to a run of that alphabet, where
// the spaces belong to its text; elsewhere (\textrm{ , } after math) they are plain
// spaces and join the runs around them.
KOmmlNodeList withoutLoneAlphabetSpaces(KOmmlNodeList nodes)
{
    const auto runAt = [&](std::size_t i) {
        return i < nodes.size() ? ommlAs<ORun>(nodes[i].get()) : nullptr;
    };
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        ORun* run = runAt(i);
        const bool alphabet =
            run && (run->mathProps.style.has_value() || run->mathProps.script != OScript::roman);
        if (!alphabet || run->text.trimmed().size() != 0 || run->text.isEmpty())
            continue;
        const ORun* before = i > 0 ? runAt(i - 1) : nullptr;
        const ORun* after = runAt(i + 1);
        if ((before && sameRunProperties(*before, *run)) || (after && sameRunProperties(*after, *run)))
            continue;
        run->mathProps = OMathRunProperties{};
    }
    KOmmlNodeList output;
    output.reserve(nodes.size());
    for (KOmmlNodePtr& node : nodes) {
        auto* run = ommlAs<ORun>(node.get());
        auto* last = output.empty() ? nullptr : ommlAs<ORun>(output.back().get());
        if (run && last && sameRunProperties(*last, *run))
            last->text += run->text;
        else
            output.push_back(std::move(node));
    }
    return output;
}

// Merges neighbouring runs of equal properties and hands every n-ary operator and
// function the node that follows it as its operand.
KOmmlNodeList postProcess(KOmmlNodeList accumulated)
{
    KOmmlNodeList output;
    output.reserve(accumulated.size());
    const std::size_t count = accumulated.size();
    auto nextNode = [&](std::size_t from) {
        while (from < count && !accumulated[from])
            ++from;
        return from;
    };
    for (std::size_t i = nextNode(0); i < count; i = nextNode(i + 1)) {
        KOmmlNodePtr node = std::move(accumulated[i]);
        if (auto* run = ommlAs<ORun>(node.get())) {
            for (std::size_t j = nextNode(i + 1); j < count; j = nextNode(j + 1)) {
                const auto* following = ommlAs<ORun>(accumulated[j].get());
                if (!following || !sameRunProperties(*run, *following))
                    break;
                run->text += following->text;
                i = j;
            }
        } else if (auto* nary = ommlAs<ONaryOperator>(node.get())) {
            const std::size_t j = nextNode(i + 1);
            if (j < count) {
                nary->e.push_back(std::move(accumulated[j]));
                i = j;
            }
        } else if (auto* function = ommlAs<OFunction>(node.get())) {
            const std::size_t j = nextNode(i + 1);
            if (j < count) {
                function->e.push_back(std::move(accumulated[j]));
                i = j;
            }
        }
        output.push_back(std::move(node));
    }
    return withoutLoneAlphabetSpaces(std::move(output));
}

// A command whose table entry counts the node after it among its arguments
// (\sideset{..}{..}\sum) gets that node as its last argument when the parser
// left it outside.
void takeFollowingOperand(KSlot& current, KSlot& next, int depth)
{
    const auto* command = latexAs<KLatexCommand>(current.node);
    if (!command)
        return;
    const KLatexSymbol* entry = lookupCommand(command->name);
    if (!entry || entry->arity == 0 || command->args.size() + 1 != entry->arity)
        return;
    KLatexArgs args = cloneArgs(command->args, depth);
    args.push_back(KLatexArg{false, next.take(depth)});
    current.set(makeCommand(command->name, std::move(args)));
}

} // namespace

struct KLatexAst2Omml::KDispatch {
    KLatexAst2Omml& converter;

    KOmmlNodeList operator()(const KLatexGroup& group) const { return converter.convertGroup(group); }
    KOmmlNodeList operator()(const KLatexText& text) const
    {
        return makeOmmlList(converter.makeStyledRun(text.text));
    }
    KOmmlNodeList operator()(const KLatexCommand& command) const
    {
        const KLatexSymbol* entry = lookupCommand(command.name);
        return entry ? entry->command(converter, command) : KOmmlNodeList();
    }
    KOmmlNodeList operator()(const KLatexEnv& environment) const
    {
        const KLatexEnvironment* entry = lookupEnvironment(environment.name);
        return entry ? entry->handler(converter, environment) : unknownEnvironment(converter, environment);
    }
    KOmmlNodeList operator()(const KLatexRow& row) const
    {
        KOmmlNodeList result;
        for (const KLatexNodePtr& cell : row.cells)
            appendNodes(result, converter.convert(cell.get()));
        return result;
    }
    KOmmlNodeList operator()(const KLatexScript& script) const { return converter.convertScript(script); }
    KOmmlNodeList operator()(const KLatexLeftRight& fence) const { return converter.convertLeftRight(fence); }
    KOmmlNodeList operator()(const KLatexUnknownCommand& command) const
    {
        return converter.convertUnknown(command);
    }
};

void KLatexAst2Omml::prepare(bool renderMode)
{
    m_styles.clear();
    m_styles.push_back(OControlProperties{});
    m_renderMode = renderMode;
    m_depth = 0;
}

KOmmlNodeList KLatexAst2Omml::convert(const KLatexNode& node)
{
    KDepthGuard guard(m_depth);
    if (guard.tooDeep())
        return {};
    return splitAlphabetRuns(std::visit(KDispatch{*this}, node.value));
}

KOmmlNodeList KLatexAst2Omml::convert(const KLatexNode* node)
{
    return node ? convert(*node) : KOmmlNodeList();
}

KOmmlNodeList KLatexAst2Omml::convertArgument(const KLatexArgs& args, std::size_t index)
{
    return convert(argumentNode(args, index));
}

KRunProperties KLatexAst2Omml::currentRunProperties() const
{
    const OControlProperties& style = currentStyle();
    return KRunProperties{style.mathProps.value_or(OMathRunProperties{}), style.wordProps};
}

KOmmlNodePtr KLatexAst2Omml::makeStyledRun(QString text) const
{
    KRunProperties properties = currentRunProperties();
    return makeOmmlNode(ORun{std::move(text), properties.mathProps, std::move(properties.wordProps)});
}

KOmmlNodeList KLatexAst2Omml::convertGroup(const KLatexGroup& group)
{
    std::vector<const KLatexNode*> children;
    children.reserve(group.children.size());
    for (const KLatexNodePtr& child : group.children)
        children.push_back(child.get());
    return convertSequence(children);
}

KOmmlNodeList KLatexAst2Omml::convertSequence(const std::vector<const KLatexNode*>& nodes)
{
    const std::size_t count = nodes.size();
    std::vector<KSlot> slots(count);
    for (std::size_t i = 0; i < count; ++i)
        slots[i].node = nodes[i];

    KOmmlNodeList accumulated;
    for (std::size_t i = 0; i < count; ++i) {
        KSlot& current = slots[i];
        if (!current.node)
            continue;
        if (i + 1 < count && slots[i + 1].node)
            takeFollowingOperand(current, slots[i + 1], m_depth);
        if (i + 1 < count && slots[i + 1].node) {
            KSlot& next = slots[i + 1];
            const bool nextIsScript = latexAs<KLatexScript>(next.node) != nullptr;
            const KLatexCommand* marker = commandOrScriptBase(next.node);
            if (isLimitsMarker(marker)) {
                const KLatexCommand* operatorCommand = commandOrScriptBase(current.node);
                const bool currentIsScript = latexAs<KLatexScript>(current.node) != nullptr;
                QString key;
                if (operatorCommand)
                    key = operatorCommand->name + QLatin1Char('\\') + marker->name;
                if (operatorCommand && lookupCommand(key)) {
                    if (currentIsScript && !nextIsScript) {
                        // The operator takes the marker into its name and keeps its scripts.
                        KLatexNodePtr base = renamedCommand(key, *operatorCommand, m_depth);
                        current.set(rebasedScript(std::move(base), current, m_depth));
                        next.clear();
                    } else {
                        // The marker becomes the operator; scripts on the operator are lost.
                        KLatexNodePtr command = renamedCommand(key, *marker, m_depth);
                        if (nextIsScript)
                            next.set(rebasedScript(std::move(command), next, m_depth));
                        else
                            next.set(std::move(command));
                        current.clear();
                        continue;
                    }
                } else if (nextIsScript) {
                    // A marker that cannot merge gives its scripts to what precedes it.
                    KLatexNodePtr base = current.take(m_depth);
                    next.set(rebasedScript(std::move(base), next, m_depth));
                    continue;
                } else {
                    next.clear();
                }
            }
        }
        appendNodes(accumulated, convert(current.node));
    }
    return postProcess(std::move(accumulated));
}

KOmmlNodeList KLatexAst2Omml::convertScript(const KLatexScript& script)
{
    // An operator name the argument table does not know (\sgn, \sen) takes its
    // limits as the known ones do.
    if (const auto* unknown = latexAs<KLatexUnknownCommand>(script.base.get())) {
        const KLatexSymbol* entry = lookupCommand(unknown->name);
        if (entry && entry->script && unknown->args.empty()) {
            const KLatexScript known{makeCommand(unknown->name), cloneNode(script.sup.get(), m_depth),
                                     cloneNode(script.sub.get(), m_depth)};
            return entry->script(*this, known);
        }
    }
    if (const auto* baseCommand = latexAs<KLatexCommand>(script.base.get())) {
        const KLatexSymbol* entry = lookupCommand(baseCommand->name);
        if (!entry)
            return {};
        if (entry->script)
            return entry->script(*this, script);
    }
    KOmmlNodeList base = convert(script.base.get());
    std::optional<KOmmlNodeList> sub;
    std::optional<KOmmlNodeList> sup;
    if (script.sub)
        sub = convert(*script.sub);
    if (script.sup)
        sup = convert(*script.sup);
    KOmmlNodePtr element = makeScriptElement(std::move(base), std::move(sub), std::move(sup));
    return element ? makeOmmlList(std::move(element)) : KOmmlNodeList();
}

namespace {

// The fence for a \left or \right token. A token outside the delimiter map still
// fences its body, so that neither the body nor the fence a reader sees is lost: a
// command the command table gives a character for (\uparrow, \Vert) is fenced by
// that character, and any other single character (\left x) by itself. Only a
// command with no character of its own (an unknown name) leaves that side open.
QString fenceFor(const QString& token)
{
    if (const QString* fence = lookupDelimiter(token))
        return *fence;
    if (token.startsWith(QLatin1Char('\\'))) {
        const KLatexSymbol* entry = lookupCommand(token.mid(1));
        return entry && QStringView(entry->text).toUcs4().size() == 1 ? entry->text : QString();
    }
    return QStringView(token).toUcs4().size() == 1 ? token : QString();
}

// The fence of a \middle, or nothing when the node is not a \middle with a
// delimiter for its argument.
std::optional<QString> separatorOf(const KLatexNode* node)
{
    const auto* command = latexAs<KLatexCommand>(node);
    if (!command || command->name != QLatin1String("middle"))
        return std::nullopt;
    const KMiddleFence fence = middleFence(*command);
    if (!fence.character)
        return std::nullopt;
    return *fence.character;
}

} // namespace

KOmmlNodeList KLatexAst2Omml::convertLeftRight(const KLatexLeftRight& fence)
{
    ODelimiter delimiter;
    delimiter.begChr = fenceFor(fence.left);
    delimiter.endChr = fenceFor(fence.right);
    // \left( a \middle| b \right) is one delimiter of two elements with a separator;
    // a body whose \middle fences differ keeps them as characters of one element.
    std::vector<const KLatexNode*> children;
    if (const auto* group = latexAs<KLatexGroup>(fence.body.get())) {
        for (const KLatexNodePtr& child : group->children)
            children.push_back(child.get());
    } else {
        children.push_back(fence.body.get());
    }
    std::optional<QString> separator;
    bool oneSeparator = true;
    std::vector<std::vector<const KLatexNode*>> pieces(1);
    for (const KLatexNode* child : children) {
        if (const std::optional<QString> middle = separatorOf(child)) {
            oneSeparator = oneSeparator && (!separator || *separator == *middle);
            separator = middle;
            pieces.emplace_back();
        } else {
            pieces.back().push_back(child);
        }
    }
    if (!separator || !oneSeparator) {
        delimiter.e = convert(fence.body.get());
        return makeOmmlList(makeOmmlNode(std::move(delimiter)));
    }
    delimiter.sepChr = *separator;
    delimiter.e = convertSequence(pieces.front());
    for (std::size_t i = 1; i < pieces.size(); ++i)
        delimiter.separated.push_back(convertSequence(pieces[i]));
    return makeOmmlList(makeOmmlNode(std::move(delimiter)));
}

KOmmlNodeList KLatexAst2Omml::convertUnknown(const KLatexUnknownCommand& command)
{
    // A command the argument table does not know may still be one the command table
    // knows (\colon, \hdots, the size switches): it converts by its row.
    if (const KLatexSymbol* entry = lookupCommand(command.name))
        return convertUnknownByEntry(command, *entry);
    KOmmlNodePtr run = makePlainRun(QLatin1Char('\\') + command.name);
    if (m_renderMode)
        ommlAs<ORun>(run.get())->wordProps.color = QColor(255, 0, 0);
    KOmmlNodeList result = makeOmmlList(std::move(run));
    // A macro this converter does not know still shows what it was given.
    for (const KLatexArg& arg : command.args)
        appendNodes(result, convertArgumentAsContent(arg));
    return result;
}

KOmmlNodeList KLatexAst2Omml::convertUnknownByEntry(const KLatexUnknownCommand& command,
                                                    const KLatexSymbol& entry)
{
    // A command that stands for characters takes no argument: what the parser read
    // after it is content of its own (and an operator name takes it as its operand).
    // Bracket groups are never arguments of these commands; they stay the math they
    // are, where they stand.
    const bool character = !entry.text.isEmpty();
    KOmmlNodeList before;
    KLatexArgs given;
    std::vector<const KLatexArg*> after;
    for (const KLatexArg& arg : command.args) {
        if (!arg.node)
            continue;
        if (arg.optional && !character && given.empty())
            appendNodes(before, convertArgumentAsContent(arg));
        else if (arg.optional || character)
            after.push_back(&arg);
        else
            given.push_back(KLatexArg{false, cloneNode(arg.node.get(), m_depth)});
    }
    KOmmlNodeList result = std::move(before);
    appendNodes(result, entry.command(*this, KLatexCommand{command.name, std::move(given)}));
    for (const KLatexArg* arg : after)
        appendNodes(result, convertArgumentAsContent(*arg));
    return result;
}

KOmmlNodeList KLatexAst2Omml::convertArgumentAsContent(const KLatexArg& arg)
{
    KOmmlNodeList result;
    if (!arg.node)
        return result;
    if (arg.optional)
        result.push_back(makeStyledRun(QStringLiteral("[")));
    appendNodes(result, convert(*arg.node));
    if (arg.optional)
        result.push_back(makeStyledRun(QStringLiteral("]")));
    return result;
}

const KLatexNode* argumentNode(const KLatexArgs& args, std::size_t index)
{
    return index < args.size() ? args[index].node.get() : nullptr;
}

OControlProperties uprightStyle(const OControlProperties& current)
{
    OControlProperties style = current;
    style.mathProps = OMathRunProperties{};
    style.mathProps->style = OStyle::plain;
    return style;
}

const KLatexNode* lastMandatoryArgument(const KLatexArgs& args)
{
    for (auto it = args.rbegin(); it != args.rend(); ++it)
        if (!it->optional)
            return it->node.get();
    return nullptr;
}

QString plainText(const KLatexNode* node)
{
    // Walked with an explicit stack so that no nesting depth can exhaust the call stack.
    QString joined;
    std::vector<const KLatexNode*> pending{node};
    while (!pending.empty()) {
        const KLatexNode* current = pending.back();
        pending.pop_back();
        if (const auto* text = latexAs<KLatexText>(current)) {
            joined += text->text;
        } else if (const auto* group = latexAs<KLatexGroup>(current)) {
            for (auto it = group->children.rbegin(); it != group->children.rend(); ++it)
                pending.push_back(it->get());
        }
    }
    return joined;
}

bool hasExactArguments(const KLatexArgs& args, std::size_t count)
{
    if (args.size() != count)
        return false;
    for (const KLatexArg& arg : args)
        if (!arg.node)
            return false;
    return true;
}

KOmmlNodePtr makePlainRun(QString text)
{
    return makeOmmlNode(ORun{std::move(text), OMathRunProperties{}, OWordRunProperties{}});
}

void appendNodes(KOmmlNodeList& target, KOmmlNodeList&& source)
{
    if (target.empty()) {
        target = std::move(source);
        return;
    }
    target.reserve(target.size() + source.size());
    for (KOmmlNodePtr& node : source)
        target.push_back(std::move(node));
    source.clear();
}

KOmmlNodePtr makeScriptElement(KOmmlNodeList base, std::optional<KOmmlNodeList> sub,
                               std::optional<KOmmlNodeList> sup)
{
    if (sub && sup)
        return makeOmmlNode(OSubSuperscript{std::move(base), std::move(*sub), std::move(*sup), {}});
    if (sub)
        return makeOmmlNode(OSubscript{std::move(base), std::move(*sub), {}});
    if (sup)
        return makeOmmlNode(OSuperscript{std::move(base), std::move(*sup), {}});
    return nullptr;
}
