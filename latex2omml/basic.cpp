// The simplest handler families: a command that stands for characters, a command
// shown as its own backslashed name, a command that is its argument, a switch that
// shows nothing of its own, and a command that shows nothing at all.
#include "latex2omml/handlers.h"
#include "latex2omml/tables.h"

KOmmlNodeList symbol(KLatexAst2Omml& converter, const KLatexCommand& command)
{
    if (!command.args.empty())
        return {};
    const KLatexSymbol* entry = lookupCommand(command.name);
    if (!entry)
        return {};
    KOmmlNodePtr run = converter.makeStyledRun(entry->text);
    // Capital Greek letters written with the Latin letter of the same shape stand upright, as
    // the other capital Greek letters do, unless a style says otherwise.
    auto* styled = ommlAs<ORun>(run.get());
    const bool latinLetter =
        entry->text.size() == 1 && entry->text.at(0).unicode() < 0x80 && entry->text.at(0).isLetter();
    if (styled && latinLetter && !styled->mathProps.style)
        styled->mathProps.style = OStyle::plain;
    return makeOmmlList(std::move(run));
}

KOmmlNodeList literal(KLatexAst2Omml& converter, const KLatexCommand& command)
{
    KOmmlNodeList result = makeOmmlList(makePlainRun(QLatin1Char('\\') + command.name));
    for (const KLatexArg& arg : command.args)
        appendNodes(result, converter.convert(arg.node.get()));
    return result;
}

KOmmlNodeList firstArgument(KLatexAst2Omml& converter, const KLatexCommand& command)
{
    return converter.convertArgument(command.args, 0);
}

KOmmlNodeList declaration(KLatexAst2Omml& converter, const KLatexCommand& command)
{
    // A size or weight switch changes how what follows looks; what follows stays.
    KOmmlNodeList result;
    for (const KLatexArg& arg : command.args)
        appendNodes(result, converter.convert(arg.node.get()));
    return result;
}

KOmmlNodeList hidden(KLatexAst2Omml&, const KLatexCommand&)
{
    return {};
}
