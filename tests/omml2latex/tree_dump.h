#pragma once
// A compact, unambiguous text form of a LaTeX syntax tree, so that tests can
// compare whole trees:
//   text        'x'
//   group       (a b c), empty ()
//   command     \name{arg}[opt]        a null argument node prints as {} or []
//   script      S(base ^sup _sub)      a missing part is left out
//   brace group LR{body}               LR*(body) when it uses \left/\right
//   row         R[cell & cell]
//   environment E:name[row row]

#include "latex/latex_ast.h"

#include <QStringList>

inline QString dumpTree(const KLatexNode* node);

inline QString dumpArgs(const KLatexArgs& args)
{
    QString out;
    for (const KLatexArg& arg : args) {
        const QString inner = arg.node ? dumpTree(arg.node.get()) : QString();
        out += arg.optional ? "[" + inner + "]" : "{" + inner + "}";
    }
    return out;
}

inline QString dumpList(const KLatexNodeList& nodes, const QString& separator)
{
    QStringList parts;
    for (const KLatexNodePtr& node : nodes)
        parts << (node ? dumpTree(node.get()) : QStringLiteral("null"));
    return parts.join(separator);
}

inline QString dumpTree(const KLatexNode* node)
{
    if (!node)
        return QStringLiteral("null");
    if (auto* g = latexAs<KLatexGroup>(node))
        return "(" + dumpList(g->children, " ") + ")";
    if (auto* t = latexAs<KLatexText>(node))
        return "'" + t->text + "'";
    if (auto* c = latexAs<KLatexCommand>(node))
        return "\\" + c->name + dumpArgs(c->args);
    if (auto* e = latexAs<KLatexEnv>(node))
        return "E:" + e->name + dumpArgs(e->args) + "[" + dumpList(e->body, " ") + "]";
    if (auto* r = latexAs<KLatexRow>(node))
        return "R[" + dumpList(r->cells, " & ") + "]";
    if (auto* s = latexAs<KLatexScript>(node)) {
        QString out = "S(" + dumpTree(s->base.get());
        if (s->sup)
            out += " ^" + dumpTree(s->sup.get());
        if (s->sub)
            out += " _" + dumpTree(s->sub.get());
        return out + ")";
    }
    if (auto* lr = latexAs<KLatexLeftRight>(node)) {
        if (lr->useLeftRight)
            return "LR*" + lr->left + "(" + dumpTree(lr->body.get()) + ")" + lr->right;
        return "LR" + lr->left + dumpTree(lr->body.get()) + lr->right;
    }
    if (auto* u = latexAs<KLatexUnknownCommand>(node))
        return "?\\" + u->name + dumpArgs(u->args);
    return QStringLiteral("<valueless>");
}
