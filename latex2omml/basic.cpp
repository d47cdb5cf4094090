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
    return makeOmmlList(converter.makeStyledRun(entry->text));
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
