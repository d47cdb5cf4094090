// Run text scanning and the style wrapping shared by runs and structures.

#include "omml2latex/omml_to_latex.h"
#include "omml2latex/tables.h"

#include <QSet>

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
    if (mathProps && mathProps->normalText && !wordProps.bold && !wordProps.italic)
        return QStringLiteral("text");
    if (wordProps.bold)
        return QStringLiteral("textbf");
    if (wordProps.italic)
        return QStringLiteral("textit");
    // Upright monospace and sans-serif are what \texttt and \textsf write.
    if (mathProps && mathProps->style == OStyle::plain && mathProps->script == OScript::monospace)
        return QStringLiteral("texttt");
    if (mathProps && mathProps->style == OStyle::plain && mathProps->script == OScript::sansSerif)
        return QStringLiteral("textsf");
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

namespace {

// What a piece of run text is, for the style commands that wrap only what they change.
enum class PieceKind { word, symbol, alphabet, space, other };

struct Piece {
    KLatexNodePtr node;
    PieceKind kind;
    QString text; // the characters the piece stands for
};

bool isPrime(char32_t c)
{
    return c == 0x2032 || c == 0x2033 || c == 0x2034 || c == 0x2057;
}

int primeCount(char32_t c)
{
    switch (c) {
    case 0x2033:
        return 2;
    case 0x2034:
        return 3;
    case 0x2057:
        return 4;
    default:
        return 1;
    }
}

QString fromCodePoint(char32_t c)
{
    const uint ucs4 = c;
    return QString::fromUcs4(&ucs4, 1);
}

constexpr uint kCombiningNot = 0x0338;

// The amssymb command of a relation struck through by a combining long solidus.
QString negatedCommand(char32_t c)
{
    switch (c) {
    case 0x2266:
        return QStringLiteral("nleqq");
    case 0x2267:
        return QStringLiteral("ngeqq");
    case 0x2A7D:
        return QStringLiteral("nleqslant");
    case 0x2A7E:
        return QStringLiteral("ngeqslant");
    case 0x2AC5:
        return QStringLiteral("nsubseteqq");
    case 0x2AC6:
        return QStringLiteral("nsupseteqq");
    default:
        return {};
    }
}

// A character as LaTeX: its command, or itself.
KLatexNodePtr characterNode(char32_t c)
{
    const QString name = symbolCommand(c);
    return name.isEmpty() ? makeText(fromCodePoint(c)) : makeCommand(name);
}

// Splits run text into pieces: words of letters and digits; characters that have a
// command (\theta, \le) as that command; letters of a mathematical alphabet as
// its command around the plain letters (\mathbb{R}); every other character alone.
// Prime characters are apostrophes on the baseline and \prime inside a script, where an
// apostrophe would be a second superscript; an apostrophe stays one (x^{'} is valid). A space becomes the
// spacing command of its width, since LaTeX drops the spaces of math text; two em spaces are one \qquad.
std::vector<Piece> runPieces(const QString& text, bool inScript)
{
    std::vector<Piece> pieces;
    QString word;
    const auto flushWord = [&] {
        if (!word.isEmpty())
            pieces.push_back({makeText(word), PieceKind::word, word});
        word.clear();
    };
    const QString quad = QStringLiteral("space_quad");
    const QVector<uint> codePoints = text.toUcs4();
    for (int i = 0; i < codePoints.size(); ++i) {
        const uint u = codePoints[i];
        const auto c = char32_t(u);
        const QChar unit = u < 0x10000 ? QChar(ushort(u)) : QChar();
        KMathAlphanumeric alphanumeric;
        const QString negated =
            i + 1 < codePoints.size() && codePoints[i + 1] == kCombiningNot ? negatedCommand(c) : QString();
        if (!negated.isEmpty()) {
            flushWord();
            pieces.push_back({makeCommand(negated), PieceKind::symbol, fromCodePoint(c)});
            ++i;
        } else if (u < 0x10000 && isRunSpace(unit)) {
            flushWord();
            const QString name = spacingCommand(unit);
            if (name.isEmpty())
                continue;
            auto* previous = pieces.empty() ? nullptr : latexAs<KLatexCommand>(pieces.back().node.get());
            if (name == quad && previous && previous->name == quad)
                previous->name = QStringLiteral("space_qquad");
            else
                pieces.push_back({makeCommand(name), PieceKind::space, QString(unit)});
        } else if (c == 0x2212) {
            flushWord();
            pieces.push_back({makeText(QStringLiteral("-")), PieceKind::other, QStringLiteral("-")});
        } else if (c == '\\') {
            // Escaped, a backslash would be a line break.
            flushWord();
            pieces.push_back({makeCommand(QStringLiteral("backslash")), PieceKind::other, QString()});
        } else if (isPrime(c)) {
            flushWord();
            const int count = primeCount(c);
            for (int i = 0; i < count; ++i) {
                if (inScript)
                    pieces.push_back({makeCommand(QStringLiteral("prime")), PieceKind::other, QString()});
                else
                    pieces.push_back({makeText(QStringLiteral("'")), PieceKind::other, QString()});
            }
        } else if (!symbolCommand(c).isEmpty()) {
            flushWord();
            pieces.push_back({makeCommand(symbolCommand(c)), PieceKind::symbol, fromCodePoint(c)});
        } else if (mathAlphanumeric(c, &alphanumeric)) {
            flushWord();
            KLatexNodePtr plain = characterNode(alphanumeric.base);
            if (alphanumeric.command.isEmpty()) {
                pieces.push_back({std::move(plain), PieceKind::word, fromCodePoint(alphanumeric.base)});
                continue;
            }
            // Neighbours of one alphabet share its command: \mathbb{NZ}.
            auto* previous = pieces.empty() ? nullptr : latexAs<KLatexCommand>(pieces.back().node.get());
            if (pieces.empty() || pieces.back().kind != PieceKind::alphabet ||
                previous->name != alphanumeric.command) {
                KLatexArgs args;
                args.push_back(KLatexArg{false, makeGroup()});
                pieces.push_back({makeCommand(alphanumeric.command, std::move(args)), PieceKind::alphabet,
                                  fromCodePoint(c)});
                previous = latexAs<KLatexCommand>(pieces.back().node.get());
            }
            auto* body = latexAs<KLatexGroup>(previous->args.front().node.get());
            auto* last = body->children.empty() ? nullptr : latexAs<KLatexText>(body->children.back().get());
            const auto* plainText = latexAs<KLatexText>(plain.get());
            if (last && plainText)
                last->text += plainText->text;
            else
                body->children.push_back(std::move(plain));
        } else if (u < 0x10000 ? isWordChar(unit) : QChar::isLetterOrNumber(u)) {
            word.append(fromCodePoint(c));
        } else {
            flushWord();
            pieces.push_back({makeText(fromCodePoint(c)), PieceKind::other, fromCodePoint(c)});
        }
    }
    flushWord();
    return pieces;
}

KLatexNodePtr joined(KLatexNodeList nodes)
{
    if (nodes.empty())
        return nullptr;
    if (nodes.size() == 1)
        return std::move(nodes.front());
    return makeGroup(std::move(nodes));
}

// Whether a math alphabet command changes how a character is drawn: letters for
// \mathrm (the capital Greek letters are upright already), letters and digits
// for the others. Operators, punctuation and fences look the same in every alphabet.
bool changedBy(const QString& command, const QString& text)
{
    const bool roman = command == QLatin1String("mathrm");
    for (const uint u : text.toUcs4()) {
        if (roman && u >= 0x0391 && u <= 0x03A9)
            continue;
        if (QChar::isLetter(u) || (!roman && QChar::isDigit(u)))
            return true;
    }
    return false;
}

// The commands that draw letters and digits in another alphabet and leave the
// rest of the run as it is. \mathtt wraps whole runs: monospace is also the face
// of verbatim text, where every character counts.
bool isLetterAlphabet(const QString& command)
{
    static const QSet<QString> alphabets = {
        QStringLiteral("mathrm"), QStringLiteral("mathbf"),  QStringLiteral("mathit"),
        QStringLiteral("mathsf"), QStringLiteral("mathcal"), QStringLiteral("mathfrak"),
        QStringLiteral("mathbb"),
    };
    return alphabets.contains(command);
}

// The pieces with every stretch of pieces the command changes wrapped in it:
// \mathrm{d}x. Spaces next to a changed piece go inside (\mathbf{a\ b}+c), where
// they keep the style of the text they belong to.
KLatexNodeList wrapChanged(std::vector<Piece> pieces, const QString& command)
{
    KLatexNodeList out;
    KLatexNodeList group;
    KLatexNodeList spaces;
    const auto flushGroup = [&] {
        if (!group.empty()) {
            KLatexArgs args;
            args.push_back(KLatexArg{false, joined(std::move(group))});
            out.push_back(makeCommand(command, std::move(args)));
        }
        group.clear();
        for (KLatexNodePtr& space : spaces)
            out.push_back(std::move(space));
        spaces.clear();
    };
    for (Piece& piece : pieces) {
        if (piece.kind == PieceKind::space) {
            (group.empty() ? spaces : group).push_back(std::move(piece.node));
        } else if ((piece.kind == PieceKind::word || piece.kind == PieceKind::symbol) &&
                   changedBy(command, piece.text)) {
            for (KLatexNodePtr& space : spaces)
                group.push_back(std::move(space));
            spaces.clear();
            group.push_back(std::move(piece.node));
        } else {
            flushGroup();
            out.push_back(std::move(piece.node));
        }
    }
    flushGroup();
    return out;
}

KLatexNodeList nodesOf(std::vector<Piece> pieces)
{
    KLatexNodeList nodes;
    for (Piece& piece : pieces)
        nodes.push_back(std::move(piece.node));
    return nodes;
}

} // namespace

KLatexNodePtr runTextToLatex(const QString& text, bool inScript)
{
    return joined(nodesOf(runPieces(text, inScript)));
}

KLatexNodePtr KOmmlToLatexConverter::runToLatex(const ORun& run, bool inScript, const QString& enclosing)
{
    const OWordRunProperties& word = run.wordProps;
    const QString command = word.bold || word.italic ? QString() : fontCommand(&run.mathProps, word);
    if (!command.isEmpty() && command == enclosing) {
        OWordRunProperties colourOnly;
        colourOnly.asciiFont.clear();
        colourOnly.color = word.color;
        return applyStyle(runTextToLatex(run.text, inScript), nullptr, colourOnly);
    }
    if (!isLetterAlphabet(command)) {
        KLatexNodePtr text = runTextToLatex(run.text, inScript);
        return applyStyle(std::move(text), &run.mathProps, run.wordProps);
    }
    KLatexNodePtr text = joined(wrapChanged(runPieces(run.text, inScript), command));
    // The alphabet is applied; what is left to add is the colour.
    OWordRunProperties colourOnly;
    colourOnly.asciiFont.clear();
    colourOnly.color = word.color;
    return applyStyle(std::move(text), nullptr, colourOnly);
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
        // A colour without a name is written in xcolor's HTML model; "#" is no colour name to TeX.
        KLatexArgs args;
        const QString name = colourName(*wordProps.color);
        if (name.startsWith(QLatin1Char('#'))) {
            args.push_back(KLatexArg{true, makeText(QStringLiteral("HTML"))});
            args.push_back(KLatexArg{false, makeText(name.mid(1).toUpper())});
        } else {
            args.push_back(KLatexArg{false, makeText(name)});
        }
        args.push_back(KLatexArg{false, std::move(node)});
        node = makeCommand(QStringLiteral("textcolor"), std::move(args));
    }
    return node;
}

KLatexNodePtr KOmmlToLatexConverter::applyControlStyle(KLatexNodePtr node, const OControlProperties& ctrlPr)
{
    // The italic and bold switches of a structure's control character are not its
    // content's style: word processors set the italic one on every structure, as math
    // letters are italic, and \textit or \textbf cannot hold a fraction or a root.
    // The content's own runs carry the style that matters.
    OWordRunProperties word = ctrlPr.wordProps;
    word.italic = false;
    word.bold = false;
    const bool asked = !word.asciiFont.isEmpty() || word.color || ctrlPr.mathProps.has_value();
    if (!asked)
        return node;
    return applyStyle(std::move(node), ctrlPr.mathProps ? &*ctrlPr.mathProps : nullptr, word);
}
