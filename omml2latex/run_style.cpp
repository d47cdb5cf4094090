// Run text scanning and the style wrapping shared by runs and structures.

#include "omml2latex/omml_to_latex.h"
#include "omml2latex/tables.h"

namespace {

KLatexNodePtr wrapInCommand(const QString& name, KLatexNodePtr node)
{
    KLatexArgs args;
    args.push_back(KLatexArg{false, std::move(node)});
    return makeCommand(name, std::move(args));
}

bool isRunSpace(QChar c)
{
    const ushort u = c.unicode();
    return (u >= 9 && u <= 13) || u == 32 || u == 133 || u == 160 || (u >= 128 && c.isSpace());
}

bool isWordChar(QChar c)
{
    const ushort u = c.unicode();
    if (u < 128)
        return (u >= '0' && u <= '9') || (u >= 'A' && u <= 'Z') || (u >= 'a' && u <= 'z');
    return c.isLetterOrNumber();
}

bool isOpaqueBlack(const QColor& colour)
{
    return colour.isValid() && colour.red() == 0 && colour.green() == 0 && colour.blue() == 0 &&
           colour.alpha() == 255;
}

QString fontCommand(const OMathRunProperties* mathProps, const OWordRunProperties& wordProps)
{
    if (wordProps.bold)
        return QStringLiteral("textbf");
    if (wordProps.italic)
        return QStringLiteral("textit");
    if (mathProps && mathProps->style)
        return styleCommand(*mathProps->style);
    const QString family = fontFamilyCommand(wordProps.asciiFont.toLower());
    if (!family.isEmpty())
        return family;
    if (mathProps)
        return scriptCommand(mathProps->script);
    return {};
}

} // namespace

// Splits run text into words (letters and digits) and single other characters;
// white space only separates. Characters are kept as they are: a Greek letter
// or an operator stays one Unicode character in its own text node.
KLatexNodePtr runTextToLatex(const QString& text)
{
    KLatexNodeList pieces;
    QString word;
    const auto flushWord = [&] {
        if (!word.isEmpty())
            pieces.push_back(makeText(word));
        word.clear();
    };
    for (const QChar c : text) {
        if (isRunSpace(c)) {
            flushWord();
        } else if (isWordChar(c)) {
            word.append(c);
        } else {
            flushWord();
            pieces.push_back(makeText(QString(c)));
        }
    }
    flushWord();
    if (pieces.empty())
        return nullptr;
    if (pieces.size() == 1)
        return std::move(pieces.front());
    return makeGroup(std::move(pieces));
}

KLatexNodePtr KOmmlToLatexConverter::applyStyle(KLatexNodePtr node, const OMathRunProperties* mathProps,
                                                const OWordRunProperties& wordProps)
{
    if (wordProps.bold && wordProps.italic)
        node = wrapInCommand(QStringLiteral("textit"), std::move(node));
    const QString command = fontCommand(mathProps, wordProps);
    if (!command.isEmpty())
        node = wrapInCommand(command, std::move(node));
    if (wordProps.color && !isOpaqueBlack(*wordProps.color)) {
        KLatexArgs args;
        args.push_back(KLatexArg{false, makeText(colourName(*wordProps.color))});
        args.push_back(KLatexArg{false, std::move(node)});
        node = makeCommand(QStringLiteral("textcolor"), std::move(args));
    }
    return node;
}

KLatexNodePtr KOmmlToLatexConverter::applyControlStyle(KLatexNodePtr node, const OControlProperties& ctrlPr)
{
    const OWordRunProperties& word = ctrlPr.wordProps;
    const bool asked =
        !word.asciiFont.isEmpty() || word.italic || word.bold || word.color || ctrlPr.mathProps.has_value();
    if (!asked)
        return node;
    return applyStyle(std::move(node), ctrlPr.mathProps ? &*ctrlPr.mathProps : nullptr, word);
}
