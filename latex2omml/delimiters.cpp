// Tabular environments (matrices, cases, alignments), the plain matrix commands
// (\pmatrix{..} and relatives) and the \big family of sized delimiters.
#include "latex2omml/handlers.h"
#include "latex2omml/tables.h"

#include <QHash>

#include <algorithm>

namespace {

// ---- rows and matrices -------------------------------------------------------

using KRows = std::vector<OMatrixRow>;

// One row per node: a row node gives one cell per entry, anything else a row of
// one cell. A table always has at least one cell, even for an empty body.
KRows buildRows(KLatexAst2Omml& ast, const KLatexNodeList& nodes)
{
    KRows rows;
    for (const auto& node : nodes) {
        if (!node)
            continue;
        OMatrixRow row;
        if (const auto* cells = latexAs<KLatexRow>(node.get())) {
            for (const auto& cell : cells->cells)
                row.push_back(cell ? ast.convert(*cell) : KOmmlNodeList{});
        } else {
            row.push_back(ast.convert(*node));
        }
        rows.push_back(std::move(row));
    }
    if (rows.empty()) {
        rows.emplace_back();
        rows.back().emplace_back();
    }
    return rows;
}

// Rows are not padded: the widest row decides how many columns are described.
KOmmlNodePtr buildMatrix(KLatexAst2Omml& ast, KRows rows, OColumnJustification first,
                         OColumnJustification second)
{
    size_t columns = 0;
    for (const auto& row : rows)
        columns = std::max(columns, row.size());
    OMatrix matrix;
    matrix.rows = std::move(rows);
    for (size_t i = 0; i < columns; ++i)
        matrix.columns.push_back(OMatrixColumn{QStringLiteral("1"), i % 2 == 0 ? first : second});
    matrix.cGp = QStringLiteral("0");
    matrix.cGpRule = QStringLiteral("0");
    matrix.plcHide = false;
    matrix.ctrlPr = ast.currentStyle();
    return makeOmmlNode(std::move(matrix));
}

KOmmlNodePtr centredMatrix(KLatexAst2Omml& ast, KRows rows)
{
    return buildMatrix(ast, std::move(rows), OColumnJustification::center, OColumnJustification::center);
}

// Puts a matrix between the first and the last character of a fence pair; no
// fences leave the matrix bare.
KOmmlNodeList fenced(KOmmlNodePtr matrix, const QString& fences)
{
    if (fences.isEmpty())
        return makeOmmlList(std::move(matrix));
    ODelimiter delimiter;
    delimiter.begChr = fences.left(1);
    delimiter.endChr = fences.right(1);
    delimiter.e = makeOmmlList(std::move(matrix));
    return makeOmmlList(makeOmmlNode(std::move(delimiter)));
}

// ---- sized delimiters --------------------------------------------------------

// Nominal heights of the \big family, in units of the normal fence height.
enum class KStrut { big, Big, bigg };

KStrut strutForHeight(double height)
{
    if (height < 1.8)
        return KStrut::big;
    return height < 2.4 ? KStrut::Big : KStrut::bigg;
}

const QHash<QString, double>& delimiterHeights()
{
    static const QHash<QString, double> table = {
        {QStringLiteral("big"), 1.2},
        {QStringLiteral("Big"), 1.8},
        {QStringLiteral("bigg"), 2.4},
        {QStringLiteral("Bigg"), 3.0},
    };
    return table;
}

KOmmlNodePtr spaceRun()
{
    return makePlainRun(QStringLiteral(" "));
}

KOmmlNodePtr stackedSpaces(KOmmlNodePtr top)
{
    OFraction fraction;
    fraction.type = OFractionType::noBar;
    fraction.num = makeOmmlList(std::move(top));
    fraction.den = makeOmmlList(spaceRun());
    return makeOmmlNode(std::move(fraction));
}

// An invisible body that stretches the fence: a bar for \big, two stacked spaces
// for \Big, three for \bigg and \Bigg.
KOmmlNodePtr strut(KStrut size)
{
    OPhantom phantom;
    switch (size) {
    case KStrut::big:
        phantom.e = makeOmmlList(makePlainRun(QStringLiteral("|")));
        break;
    case KStrut::Big:
        phantom.e = makeOmmlList(stackedSpaces(spaceRun()));
        break;
    case KStrut::bigg:
        phantom.e = makeOmmlList(stackedSpaces(stackedSpaces(spaceRun())));
        break;
    }
    return makeOmmlNode(std::move(phantom));
}

// One line of an equation array per row; the cells of a row follow each other.
OEquationArray equationLines(KLatexAst2Omml& ast, const KLatexNodeList& body)
{
    OEquationArray lines;
    for (auto& row : buildRows(ast, body)) {
        KOmmlNodeList line;
        for (auto& cell : row)
            appendNodes(line, std::move(cell));
        lines.rows.push_back(std::move(line));
    }
    lines.ctrlPr = ast.currentStyle();
    return lines;
}

bool isLineBreak(const KLatexNode* node)
{
    const auto* command = latexAs<KLatexCommand>(node);
    return command && (command->name == QLatin1String("\\\\") || command->name == QLatin1String("\\\\*") ||
                       command->name == QLatin1String("cr"));
}

} // namespace

KOmmlNodeList matrixEnvironment(KLatexAst2Omml& ast, const KLatexEnv& env)
{
    // Arguments such as an array's column format do not change the OMML.
    KOmmlNodePtr matrix = centredMatrix(ast, buildRows(ast, env.body));
    const KLatexEnvironment* entry = lookupEnvironment(env.name);
    return fenced(std::move(matrix), entry ? entry->delimiters : QString());
}

KOmmlNodeList casesEnvironment(KLatexAst2Omml& ast, const KLatexEnv& env)
{
    OEquationArray lines = equationLines(ast, env.body);

    // One brace only: on the left for cases and dcases, on the right for rcases.
    const KLatexEnvironment* entry = lookupEnvironment(env.name);
    const QString brace = entry ? entry->delimiters : QString();
    const bool closing = brace == QLatin1String("}");
    ODelimiter delimiter;
    delimiter.begChr = closing ? QString() : brace;
    delimiter.endChr = closing ? brace : QString();
    delimiter.e = makeOmmlList(makeOmmlNode(std::move(lines)));
    delimiter.ctrlPr = ast.currentStyle();
    return makeOmmlList(makeOmmlNode(std::move(delimiter)));
}

KOmmlNodeList alignEnvironment(KLatexAst2Omml& ast, const KLatexEnv& env)
{
    // Alignment points pair up: each odd column is set flush right against the
    // following flush-left one.
    return makeOmmlList(
        buildMatrix(ast, buildRows(ast, env.body), OColumnJustification::right, OColumnJustification::left));
}

KOmmlNodeList matrixCommand(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    const KLatexNode* body = argumentNode(command.args, 0);
    if (!body)
        return {};
    const KLatexSymbol* entry = lookupCommand(command.name);
    const QString fences = entry ? entry->text : QString();
    KRows rows;
    if (const auto* group = latexAs<KLatexGroup>(body)) {
        rows = buildRows(ast, group->children);
    } else {
        rows.emplace_back();
        rows.back().push_back(ast.convert(*body));
    }
    return fenced(centredMatrix(ast, std::move(rows)), fences);
}

KOmmlNodeList bigDelimiter(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    const KLatexNode* argument = argumentNode(command.args, 0);
    if (!argument)
        return {};
    KOmmlNodeList converted = ast.convert(*argument);
    const ORun* run = converted.empty() ? nullptr : ommlAs<ORun>(converted.front().get());
    if (!run || run->text.isEmpty())
        return converted;
    const QString fence = run->text;

    // The size comes from the name without its l, r or m suffix; the side from the suffix.
    QString size = command.name;
    if (size.endsWith(QLatin1Char('l')) || size.endsWith(QLatin1Char('r')) || size.endsWith(QLatin1Char('m')))
        size.chop(1);
    const bool closing = command.name.endsWith(QLatin1Char('r'));

    ODelimiter delimiter;
    // A middle fence (\bigm) is shown on the opening side, like the plain form.
    delimiter.begChr = closing ? QString() : fence;
    delimiter.endChr = closing ? fence : QString();
    delimiter.e = makeOmmlList(strut(strutForHeight(delimiterHeights().value(size, 1.2))));
    return makeOmmlList(makeOmmlNode(std::move(delimiter)));
}

KOmmlNodeList gatheredEnvironment(KLatexAst2Omml& ast, const KLatexEnv& env)
{
    // Centred lines without alignment points: an equation array.
    return makeOmmlList(makeOmmlNode(equationLines(ast, env.body)));
}

KOmmlNodeList substack(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    // \substack{i<j \\ k}: one line of an equation array per line break.
    const KLatexNode* body = argumentNode(command.args, 0);
    if (!body || command.args.size() != 1)
        return {};
    std::vector<std::vector<const KLatexNode*>> lines(1);
    auto take = [&lines](const KLatexNode* node) {
        if (isLineBreak(node))
            lines.emplace_back();
        else if (node)
            lines.back().push_back(node);
    };
    if (const auto* group = latexAs<KLatexGroup>(body)) {
        for (const auto& child : group->children) {
            if (const auto* row = latexAs<KLatexRow>(child.get())) {
                for (const auto& cell : row->cells)
                    take(cell.get());
                if (!lines.back().empty())
                    lines.emplace_back();
            } else {
                take(child.get());
            }
        }
    } else {
        take(body);
    }
    // A line break at the very end opens no further line.
    if (lines.size() > 1 && lines.back().empty())
        lines.pop_back();
    if (lines.size() == 1)
        return ast.convertSequence(lines.front());
    OEquationArray array;
    for (const auto& line : lines)
        array.rows.push_back(ast.convertSequence(line));
    array.ctrlPr = ast.currentStyle();
    return makeOmmlList(makeOmmlNode(std::move(array)));
}

KOmmlNodeList middleDelimiter(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    // \middle| inside \left..\right: the fence character as a run of the body.
    const KLatexNode* fence = argumentNode(command.args, 0);
    if (!fence)
        return {};
    while (const auto* group = latexAs<KLatexGroup>(fence)) {
        if (group->children.size() != 1)
            break;
        fence = group->children.front().get();
    }
    QString token;
    if (const auto* text = latexAs<KLatexText>(fence))
        token = text->text;
    else if (const auto* named = latexAs<KLatexCommand>(fence))
        token = QLatin1Char('\\') + named->name;
    const QString* character = lookupDelimiter(token);
    if (!character)
        return ast.convert(*fence);
    if (character->isEmpty())
        return {};
    return makeOmmlList(ast.makeStyledRun(*character));
}
