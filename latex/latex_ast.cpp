#include "latex/latex_ast.h"

namespace {

KLatexNodePtr wrap(KLatexVariant value)
{
    return std::make_unique<KLatexNode>(KLatexNode{std::move(value)});
}

} // namespace

KLatexNodePtr makeText(QString text)
{
    if (text.isEmpty())
        return nullptr;
    return wrap(KLatexText{std::move(text)});
}

KLatexNodePtr makeText(const char* utf8)
{
    return makeText(QString::fromUtf8(utf8));
}

KLatexNodePtr makeGroup(KLatexNodeList children)
{
    return wrap(KLatexGroup{std::move(children)});
}

KLatexNodePtr makeCommand(QString name, KLatexArgs args)
{
    if (name.isEmpty())
        return nullptr;
    return wrap(KLatexCommand{std::move(name), std::move(args)});
}

KLatexNodePtr makeEnvironment(QString name, KLatexArgs args, KLatexNodeList body)
{
    if (name.isEmpty())
        return nullptr;
    return wrap(KLatexEnv{std::move(name), std::move(args), std::move(body)});
}

KLatexNodePtr makeScript(KLatexNodePtr base, KLatexNodePtr sup, KLatexNodePtr sub)
{
    if (!base)
        return nullptr;
    return wrap(KLatexScript{std::move(base), std::move(sup), std::move(sub)});
}

KLatexNodePtr makeLeftRight(QString left, QString right, KLatexNodePtr body, bool useLeftRight)
{
    if (!body)
        return nullptr;
    return wrap(KLatexLeftRight{std::move(left), std::move(right), std::move(body), useLeftRight});
}

KLatexNodePtr makeUnknownCommand(QString name, KLatexArgs args)
{
    if (name.isEmpty())
        return nullptr;
    return wrap(KLatexUnknownCommand{std::move(name), std::move(args)});
}

KLatexNodePtr makeRow(KLatexNodeList cells)
{
    return wrap(KLatexRow{std::move(cells)});
}
