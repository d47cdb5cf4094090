#include "latex/latex_dump.h"

namespace {

// Deeper than any tree the parser builds; a guard for trees built by hand.
constexpr int kMaxDumpDepth = 4096;

class TreeDumper {
public:
    QString result;

    void node(const KLatexNode* n, int level)
    {
        if (!n) {
            line(level, QStringLiteral("null"));
            return;
        }
        if (level > kMaxDumpDepth) {
            line(level, QStringLiteral("..."));
            return;
        }
        std::visit([&](const auto& kind) { visit(kind, level); }, n->value);
    }

private:
    void line(int level, const QString& text)
    {
        result.append(QString(level * 2, QLatin1Char(' '))).append(text).append(QLatin1Char('\n'));
    }

    void list(const KLatexNodeList& nodes, int level)
    {
        for (const KLatexNodePtr& child : nodes)
            node(child.get(), level);
    }

    void args(const KLatexArgs& arguments, int level)
    {
        for (const KLatexArg& arg : arguments) {
            line(level, arg.optional ? QStringLiteral("optarg") : QStringLiteral("arg"));
            node(arg.node.get(), level + 1);
        }
    }

    void visit(const KLatexGroup& group, int level)
    {
        line(level, QStringLiteral("Group"));
        list(group.children, level + 1);
    }
    void visit(const KLatexText& text, int level)
    {
        line(level, QStringLiteral("Text ") + jsonQuote(text.text));
    }
    void visit(const KLatexCommand& command, int level)
    {
        line(level, QStringLiteral("Command ") + jsonQuote(command.name));
        args(command.args, level + 1);
    }
    void visit(const KLatexEnv& env, int level)
    {
        line(level, QStringLiteral("Env ") + jsonQuote(env.name));
        args(env.args, level + 1);
        line(level + 1, QStringLiteral("body"));
        list(env.body, level + 2);
    }
    void visit(const KLatexRow& row, int level)
    {
        line(level, QStringLiteral("Row"));
        list(row.cells, level + 1);
    }
    void visit(const KLatexScript& script, int level)
    {
        line(level, QStringLiteral("Script"));
        part(QStringLiteral("base"), script.base.get(), level + 1);
        part(QStringLiteral("sup"), script.sup.get(), level + 1);
        part(QStringLiteral("sub"), script.sub.get(), level + 1);
    }
    void visit(const KLatexLeftRight& fence, int level)
    {
        QString text =
            QStringLiteral("LeftRight ") + jsonQuote(fence.left) + QLatin1Char(' ') + jsonQuote(fence.right);
        if (fence.useLeftRight)
            text.append(QStringLiteral(" left-right"));
        line(level, text);
        node(fence.body.get(), level + 1);
    }
    void visit(const KLatexUnknownCommand& command, int level)
    {
        line(level, QStringLiteral("Unknown ") + jsonQuote(command.name));
        args(command.args, level + 1);
    }

    void part(const QString& label, const KLatexNode* n, int level)
    {
        if (!n)
            return;
        line(level, label);
        node(n, level + 1);
    }
};

} // namespace

QString dumpLatexTree(const KLatexNode* root)
{
    TreeDumper dumper;
    dumper.node(root, 0);
    return dumper.result;
}

QString jsonQuote(const QString& text)
{
    QString quoted;
    quoted.reserve(text.size() + 2);
    quoted.append(QLatin1Char('"'));
    for (const QChar c : text) {
        switch (c.unicode()) {
        case u'"':
            quoted.append(QStringLiteral("\\\""));
            break;
        case u'\\':
            quoted.append(QStringLiteral("\\\\"));
            break;
        case u'\n':
            quoted.append(QStringLiteral("\\n"));
            break;
        case u'\r':
            quoted.append(QStringLiteral("\\r"));
            break;
        case u'\t':
            quoted.append(QStringLiteral("\\t"));
            break;
        case u'\b':
            quoted.append(QStringLiteral("\\b"));
            break;
        case u'\f':
            quoted.append(QStringLiteral("\\f"));
            break;
        default:
            if (c.unicode() < 0x20)
                quoted.append(QStringLiteral("\\u%1").arg(int(c.unicode()), 4, 16, QLatin1Char('0')));
            else
                quoted.append(c);
        }
    }
    quoted.append(QLatin1Char('"'));
    return quoted;
}
