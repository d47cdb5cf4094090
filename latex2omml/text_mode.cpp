// What running text writes with control sequences: accents on letters
// (\'e, \"o, \v{c}), verbatim text (\verb|x^2|) and characters by their code (\char65).
#include "latex2omml/handlers.h"

#include <QHash>

namespace {

struct KTextAccent {
    char16_t mark;    // the combining mark put on the letter
    char16_t spacing; // the mark on its own, for an accent on nothing (\^{})
};

const QHash<QString, KTextAccent>& textAccents()
{
    static const QHash<QString, KTextAccent> table = {
        {QStringLiteral("'"), {0x0301, 0x00B4}}, {QStringLiteral("`"), {0x0300, 0x0060}},
        {QStringLiteral("^"), {0x0302, 0x005E}}, {QStringLiteral("\""), {0x0308, 0x00A8}},
        {QStringLiteral("~"), {0x0303, 0x007E}}, {QStringLiteral("="), {0x0304, 0x00AF}},
        {QStringLiteral("."), {0x0307, 0x02D9}}, {QStringLiteral("H"), {0x030B, 0x02DD}},
        {QStringLiteral("r"), {0x030A, 0x02DA}}, {QStringLiteral("u"), {0x0306, 0x02D8}},
        {QStringLiteral("v"), {0x030C, 0x02C7}}, {QStringLiteral("c"), {0x0327, 0x00B8}},
        {QStringLiteral("d"), {0x0323, 0x002E}}, {QStringLiteral("b"), {0x0331, 0x005F}},
        {QStringLiteral("k"), {0x0328, 0x02DB}}, {QStringLiteral("t"), {0x0361, 0x2040}},
    };
    return table;
}

// The letter with the mark on its last character, composed into one character where
// Unicode has one. The dotless i and j take the mark as i and j do.
QString withMark(QString text, char16_t mark)
{
    if (text.endsWith(QChar(0x0131)))
        text[text.size() - 1] = QLatin1Char('i');
    else if (text.endsWith(QChar(0x0237)))
        text[text.size() - 1] = QLatin1Char('j');
    text.append(QChar(mark));
    return text.normalized(QString::NormalizationForm_C);
}

} // namespace

KOmmlNodeList textAccent(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    const auto found = textAccents().constFind(command.name);
    if (found == textAccents().constEnd() || command.args.size() > 1)
        return {};
    KOmmlNodeList content = ast.convertArgument(command.args, 0);
    if (content.empty())
        return makeOmmlList(ast.makeStyledRun(QString(QChar(found->spacing))));
    if (content.size() == 1) {
        if (auto* run = ommlAs<ORun>(content.front().get()); run && !run->text.isEmpty()) {
            run->text = withMark(run->text, found->mark);
            return content;
        }
    }
    // A mark over a structure: an accent element.
    OAccent accent;
    accent.chr = QString(QChar(found->mark));
    accent.e = std::move(content);
    accent.ctrlPr = ast.currentStyle();
    return makeOmmlList(makeOmmlNode(std::move(accent)));
}

KOmmlNodeList verbatim(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    // The lexer hands the text over untouched, as one text node; \verb* shows its spaces.
    const QString text = plainText(argumentNode(command.args, 0));
    OControlProperties style = ast.currentStyle();
    style.mathProps = OMathRunProperties{};
    style.mathProps->script = OScript::monospace;
    style.mathProps->style = OStyle::plain;
    ast.pushStyle(style);
    KOmmlNodeList result = makeOmmlList(ast.makeStyledRun(
        command.name.endsWith(QLatin1Char('*')) ? QString(text).replace(QLatin1Char(' '), QChar(0x2423))
                                                : text));
    ast.popStyle();
    return result;
}
