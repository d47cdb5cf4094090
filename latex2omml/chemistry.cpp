// Chemical formulas and physical units (\ce, \pu): upright text in which the
// count after an element or a closing bracket is its subscript and the reaction
// arrows written as -> or <=> become arrow characters.
#include "latex2omml/handlers.h"

#include <utility>

namespace {

// Groups nested deeper than this inside a formula are converted as they stand.
constexpr int kMaxInlineDepth = 64;

struct KArrow {
    const char16_t* written;
    const char16_t* character;
};
// Longer spellings first, so that "<->" is not read as "<-" followed by ">".
constexpr KArrow kArrows[] = {
    {u"<=>", u"\u21CC"},
    {u"<->", u"\u2194"},
    {u"->", u"\u2192"},
    {u"<-", u"\u2190"},
};

// A formula as a sequence of text stretches (neighbouring texts joined, groups
// opened) and the other nodes between them.
struct KItem {
    QString text;
    const KLatexNode* node = nullptr;
};

void flatten(const KLatexNode* node, std::vector<KItem>& items, int depth)
{
    if (!node)
        return;
    if (const auto* text = latexAs<KLatexText>(node)) {
        if (!items.empty() && !items.back().node)
            items.back().text += text->text;
        else
            items.push_back(KItem{text->text, nullptr});
        return;
    }
    const auto* group = latexAs<KLatexGroup>(node);
    if (group && depth < kMaxInlineDepth) {
        for (const auto& child : group->children)
            flatten(child.get(), items, depth + 1);
        return;
    }
    items.push_back(KItem{QString(), node});
}

bool isDigits(const QString& text)
{
    if (text.isEmpty())
        return false;
    for (const QChar c : text)
        if (!c.isDigit())
            return false;
    return true;
}

bool isLowerLetters(const QString& text)
{
    if (text.isEmpty())
        return false;
    for (const QChar c : text)
        if (!c.isLower())
            return false;
    return true;
}

class KFormulaBuilder {
public:
    explicit KFormulaBuilder(KLatexAst2Omml& ast) : m_ast(ast) {}

    void addText(const QString& text)
    {
        for (int i = 0; i < text.size();) {
            if (const KArrow* arrow = arrowAt(text, i)) {
                m_pending += QString::fromUtf16(arrow->character);
                i += int(std::char_traits<char16_t>::length(arrow->written));
                continue;
            }
            if (text.at(i).isDigit() && elementStart() >= 0) {
                int end = i;
                while (end < text.size() && text.at(end).isDigit())
                    ++end;
                KOmmlNodeList element = takeElement();
                m_result.push_back(makeScriptElement(std::move(element),
                                                     makeOmmlList(m_ast.makeStyledRun(text.mid(i, end - i))),
                                                     std::nullopt));
                i = end;
                continue;
            }
            m_pending += text.at(i);
            ++i;
        }
    }

    void addScript(const KLatexScript& script)
    {
        const auto* baseText = latexAs<KLatexText>(script.base.get());
        const QString base = baseText ? baseText->text : QString();
        KOmmlNodeList baseNodes;
        std::optional<KOmmlNodeList> sub;
        if (isLowerLetters(base) && elementStart() >= 0 && m_pending.back().isLetter()) {
            // Fe^{3+}: the script's base letter ends the element before it.
            m_pending += base;
            baseNodes = takeElement();
        } else if (isDigits(base) && !script.sub && elementStart() >= 0) {
            // SO4^{2-}: the count stays below, the charge goes above.
            baseNodes = takeElement();
            sub = makeOmmlList(m_ast.makeStyledRun(base));
        } else {
            flush();
            baseNodes = m_ast.convert(script.base.get());
        }
        if (script.sub)
            sub = m_ast.convert(*script.sub);
        std::optional<KOmmlNodeList> sup;
        if (script.sup)
            sup = m_ast.convert(*script.sup);
        if (KOmmlNodePtr element = makeScriptElement(std::move(baseNodes), std::move(sub), std::move(sup)))
            m_result.push_back(std::move(element));
    }

    void addNode(const KLatexNode& node)
    {
        if (const auto* script = latexAs<KLatexScript>(&node)) {
            addScript(*script);
            return;
        }
        flush();
        appendNodes(m_result, m_ast.convert(node));
    }

    KOmmlNodeList finish()
    {
        flush();
        return std::move(m_result);
    }

private:
    static const KArrow* arrowAt(const QString& text, int at)
    {
        for (const KArrow& arrow : kArrows)
            if (text.midRef(at).startsWith(QString::fromUtf16(arrow.written)))
                return &arrow;
        return nullptr;
    }

    // Where the element symbol (H, Na) or closing bracket that ends the pending
    // text starts, or -1 when the text does not end in one.
    int elementStart() const
    {
        int i = m_pending.size() - 1;
        if (i < 0)
            return -1;
        const QChar last = m_pending.at(i);
        if (last == QLatin1Char(')') || last == QLatin1Char(']'))
            return i;
        while (i > 0 && m_pending.at(i).isLower())
            --i;
        return m_pending.at(i).isUpper() ? i : -1;
    }

    // Emits the pending text before the element and returns the element's run.
    KOmmlNodeList takeElement()
    {
        const int start = elementStart();
        const QString element = m_pending.mid(start);
        m_pending.truncate(start);
        flush();
        return makeOmmlList(m_ast.makeStyledRun(element));
    }

    void flush()
    {
        if (!m_pending.isEmpty())
            m_result.push_back(m_ast.makeStyledRun(m_pending));
        m_pending.clear();
    }

    KLatexAst2Omml& m_ast;
    KOmmlNodeList m_result;
    QString m_pending;
};

} // namespace

KOmmlNodeList chemicalFormula(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    const KLatexNode* formula = lastMandatoryArgument(command.args);
    if (!formula)
        return {};
    std::vector<KItem> items;
    flatten(formula, items, 0);
    ast.pushStyle(uprightStyle(ast.currentStyle()));
    KFormulaBuilder builder(ast);
    for (const KItem& item : items) {
        if (item.node)
            builder.addNode(*item.node);
        else
            builder.addText(item.text);
    }
    KOmmlNodeList result = builder.finish();
    ast.popStyle();
    return result;
}

KOmmlNodeList physicalUnit(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    const KLatexNode* quantity = lastMandatoryArgument(command.args);
    if (!quantity)
        return {};
    ast.pushStyle(uprightStyle(ast.currentStyle()));
    KOmmlNodeList result = ast.convert(*quantity);
    ast.popStyle();
    return result;
}
