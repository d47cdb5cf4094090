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

// The LaTeX spacing command that shows a space character of run text at its width,
// or an empty name for the line-layout characters (tab, line feed, separators) that
// a reader does not see as a space of their own.
QString spacingCommand(QChar c)
{
    switch (c.unicode()) {
    case 0x0020:
        return QStringLiteral("space_normal");
    case 0x00A0:
        return QStringLiteral("nbsp");
    case 0x2006: // sixth, punctuation, thin, hair and narrow no-break spaces
    case 0x2008:
    case 0x2009:
    case 0x200A:
    case 0x202F:
        return QStringLiteral("space_thin");
    case 0x2005: // four-per-em and medium mathematical spaces
    case 0x205F:
        return QStringLiteral("space_med");
    case 0x2004:
        return QStringLiteral("space_thick");
    case 0x2000: // en quad, en space, figure space
    case 0x2002:
    case 0x2007:
        return QStringLiteral("enspace");
    case 0x2001: // em quad, em space, ideographic space
    case 0x2003:
    case 0x3000:
        return QStringLiteral("space_quad");
    default:
        return {};
    }
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

// Splits run text into words (letters and digits) and single other characters.
// Characters are kept as they are: a Greek letter or an operator stays one Unicode
// character in its own text node. A space becomes the spacing command of its
// width, since LaTeX drops the spaces of math text; two em spaces are one \qquad.
KLatexNodePtr runTextToLatex(const QString& text)
{
    KLatexNodeList pieces;
    QString word;
    const auto flushWord = [&] {
        if (!word.isEmpty())
            pieces.push_back(makeText(word));
        word.clear();
    };
    const QString quad = QStringLiteral("space_quad");
    for (const QChar c : text) {
        if (isRunSpace(c)) {
            flushWord();
            const QString name = spacingCommand(c);
            if (name.isEmpty())
                continue;
            auto* previous = pieces.empty() ? nullptr : latexAs<KLatexCommand>(pieces.back().get());
            if (name == quad && previous && previous->name == quad)
                previous->name = QStringLiteral("space_qquad");
            else
                pieces.push_back(makeCommand(name));
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
