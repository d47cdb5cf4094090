// Tabular environments (matrices, cases, alignments), the plain matrix commands
// (\pmatrix{..} and relatives) and the \big family of sized delimiters.
#include "latex2omml/handlers.h"
#include "latex2omml/tables.h"

#include <QHash>

#include <algorithm>

namespace {

// ---- rows and matrices -------------------------------------------------------

using KRows = std::vector<OMatrixRow>;

// The commands that draw rules between the rows of a table. They show no text; a rule under
// the last row leaves no row of its own.
bool isRule(const KLatexNode* node)
{
    QString name;
    if (const auto* command = latexAs<KLatexCommand>(node))
        name = command->name;
    else if (const auto* unknown = latexAs<KLatexUnknownCommand>(node))
        name = unknown->name;
    return name == QLatin1String("hline") || name == QLatin1String("hdashline") ||
           name == QLatin1String("cline") || name == QLatin1String("cdashline");
}

// A row of rules only: the cells hold rule commands and nothing else.
bool onlyRules(const KLatexNode* node)
{
    const auto* row = latexAs<KLatexRow>(node);
    if (!row || row->cells.empty())
        return false;
    bool any = false;
    for (const auto& cell : row->cells) {
        const auto* group = latexAs<KLatexGroup>(cell.get());
        if (!group)
            return false;
        for (const auto& child : group->children) {
            if (!isRule(child.get()))
                return false;
            any = true;
        }
    }
    return any;
}

// One row per node: a row node gives one cell per entry, anything else a row of
// one cell. A table always has at least one cell, even for an empty body.
KRows buildRows(KLatexAst2Omml& ast, const KLatexNodeList& nodes)
{
    KRows rows;
    for (const auto& node : nodes) {
        if (!node || (&node == &nodes.back() && !rows.empty() && onlyRules(node.get())))
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

// Gives the columns of a matrix the justifications listed, in order; the columns past the list
// keep theirs.
void justifyColumns(OMatrix& matrix, const std::vector<OColumnJustification>& justifications)
{
    for (std::size_t i = 0; i < matrix.columns.size() && i < justifications.size(); ++i)
        matrix.columns[i].justification = justifications[i];
}

// A column format as written, braces included (plainText would drop them).
void columnFormatText(const KLatexNode* node, QString& out, bool outer)
{
    if (const auto* text = latexAs<KLatexText>(node)) {
        out += text->text;
    } else if (const auto* group = latexAs<KLatexGroup>(node)) {
        if (!outer)
            out += QLatin1Char('{');
        for (const auto& child : group->children)
            columnFormatText(child.get(), out, false);
        if (!outer)
            out += QLatin1Char('}');
    }
}

// The text of the brace group that starts at `at` (which holds '{'), and the index after it.
QString bracedText(const QString& text, int& at)
{
    if (at >= text.size() || text[at] != QLatin1Char('{'))
        return QString();
    int depth = 0;
    const int start = at + 1;
    for (; at < text.size(); ++at) {
        if (text[at] == QLatin1Char('{'))
            ++depth;
        else if (text[at] == QLatin1Char('}') && --depth == 0)
            break;
    }
    const QString inner = text.mid(start, at - start);
    ++at;
    return inner;
}

// Enough columns for any table a person writes; a repetition past it is cut.
constexpr std::size_t kMaxSpecifiedColumns = 1024;

// The justification of each column of an array's column format: l, c and r, paragraph columns
// (p, m, b) flush left, *{n}{..} repeated; rules (|, :) and inserted material (@{..}, !{..},
// >{..}, <{..}) take no column.
void readColumns(const QString& text, std::vector<OColumnJustification>& out, int depth)
{
    int at = 0;
    while (at < text.size() && out.size() < kMaxSpecifiedColumns) {
        const QChar c = text[at++];
        switch (c.unicode()) {
        case u'l':
            out.push_back(OColumnJustification::left);
            break;
        case u'c':
            out.push_back(OColumnJustification::center);
            break;
        case u'r':
            out.push_back(OColumnJustification::right);
            break;
        case u'p':
        case u'm':
        case u'b':
        case u'X':
            out.push_back(OColumnJustification::left);
            bracedText(text, at);
            break;
        case u'@':
        case u'!':
        case u'>':
        case u'<':
            bracedText(text, at);
            break;
        case u'*': {
            const int count = bracedText(text, at).trimmed().toInt();
            const QString repeated = bracedText(text, at);
            for (int i = 0; i < count && depth < 8 && out.size() < kMaxSpecifiedColumns; ++i)
                readColumns(repeated, out, depth + 1);
            break;
        }
        default:
            break;
        }
    }
}

std::vector<OColumnJustification> columnFormat(const KLatexNode* node)
{
    QString text;
    columnFormatText(node, text, true);
    std::vector<OColumnJustification> columns;
    readColumns(text, columns, 0);
    return columns;
}

// How the columns of a table environment are justified as its arguments say: the
// column format of array and subarray, the [l], [c] or [r] of the starred matrices. Empty
// when the arguments say nothing.
std::vector<OColumnJustification> specifiedColumns(const KLatexEnv& env, std::size_t columns)
{
    for (const KLatexArg& arg : env.args) {
        if (!arg.node)
            continue;
        if (!arg.optional && (env.name == QLatin1String("array") || env.name == QLatin1String("subarray") ||
                              env.name == QLatin1String("darray")))
            return columnFormat(arg.node.get());
        if (arg.optional && env.name.endsWith(QLatin1Char('*'))) {
            const QString option = plainText(arg.node.get()).trimmed();
            std::vector<OColumnJustification> one;
            if (option.size() == 1)
                readColumns(option, one, 0);
            if (one.empty())
                return {};
            return std::vector<OColumnJustification>(columns, one.front());
        }
    }
    return {};
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
enum class KStrut { big, Big, bigg, Bigg };

KStrut strutForHeight(double height)
{
    if (height < 1.8)
        return KStrut::big;
    if (height < 2.4)
        return KStrut::Big;
    return height < 3.0 ? KStrut::bigg : KStrut::Bigg;
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

// An invisible body of no width that stretches the fence: a bar for \big, two
// stacked spaces for \Big, three for \bigg, four for \Bigg.
KOmmlNodePtr strut(KStrut size)
{
    OPhantom phantom;
    phantom.show = false;
    phantom.zeroWid = true;
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
    case KStrut::Bigg:
        phantom.e = makeOmmlList(stackedSpaces(stackedSpaces(stackedSpaces(spaceRun()))));
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
        for (std::size_t i = 0; i < row.size(); ++i) {
            // The cells meet at an alignment point, which an equation array marks with `&`.
            if (i > 0)
                line.push_back(ast.makeStyledRun(QStringLiteral("&")));
            appendNodes(line, std::move(row[i]));
        }
        lines.rows.push_back(std::move(line));
    }
    lines.ctrlPr = ast.currentStyle();
    return lines;
}

// The lines of a cases* environment: the first cell of each row in math, the others as text.
// A $ in the text switches to math and back, as it does in TeX.
OEquationArray textColumnLines(KLatexAst2Omml& ast, const KLatexNodeList& body)
{
    OControlProperties text = ast.currentStyle();
    if (!text.mathProps)
        text.mathProps = OMathRunProperties{};
    const OControlProperties math = ast.currentStyle();
    OEquationArray lines;
    for (const auto& node : body) {
        if (!node)
            continue;
        KOmmlNodeList line;
        const auto* row = latexAs<KLatexRow>(node.get());
        if (!row) {
            appendNodes(line, ast.convert(*node));
            lines.rows.push_back(std::move(line));
            continue;
        }
        for (std::size_t i = 0; i < row->cells.size(); ++i) {
            const KLatexNode* cell = row->cells[i].get();
            if (i > 0) {
                ast.pushStyle(math);
                line.push_back(ast.makeStyledRun(QStringLiteral("&")));
                ast.popStyle();
            }
            if (!cell)
                continue;
            if (i == 0) {
                appendNodes(line, ast.convert(*cell));
                continue;
            }
            bool inMath = false;
            std::vector<const KLatexNode*> piece;
            auto flush = [&] {
                ast.pushStyle(inMath ? math : text);
                appendNodes(line, ast.convertSequence(piece));
                ast.popStyle();
                piece.clear();
            };
            const auto* group = latexAs<KLatexGroup>(cell);
            if (!group) {
                piece.push_back(cell);
            } else {
                for (const auto& child : group->children) {
                    const auto* dollar = latexAs<KLatexText>(child.get());
                    if (dollar && dollar->text == QLatin1String("$")) {
                        flush();
                        inMath = !inMath;
                    } else {
                        piece.push_back(child.get());
                    }
                }
            }
            flush();
        }
        lines.rows.push_back(std::move(line));
    }
    if (lines.rows.empty())
        lines.rows.emplace_back();
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
    // The columns are centred unless the column format (array) or the alignment option
    // (the starred matrices) says otherwise; rules in the column format show nothing.
    KOmmlNodePtr matrix = centredMatrix(ast, buildRows(ast, env.body));
    if (auto* built = ommlAs<OMatrix>(matrix.get()))
        justifyColumns(*built, specifiedColumns(env, built->columns.size()));
    const KLatexEnvironment* entry = lookupEnvironment(env.name);
    return fenced(std::move(matrix), entry ? entry->delimiters : QString());
}

KOmmlNodeList casesEnvironment(KLatexAst2Omml& ast, const KLatexEnv& env)
{
    // The starred forms set what follows the first column as text.
    OEquationArray lines =
        env.name.endsWith(QLatin1Char('*')) ? textColumnLines(ast, env.body) : equationLines(ast, env.body);

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

KOmmlNodeList equationArrayEnvironment(KLatexAst2Omml& ast, const KLatexEnv& env)
{
    // eqnarray sets three columns per equation: right, centre, left.
    KOmmlNodePtr matrix = centredMatrix(ast, buildRows(ast, env.body));
    if (auto* built = ommlAs<OMatrix>(matrix.get())) {
        for (std::size_t i = 0; i < built->columns.size(); ++i) {
            const std::size_t place = i % 3;
            built->columns[i].justification = place == 0   ? OColumnJustification::right
                                              : place == 1 ? OColumnJustification::center
                                                           : OColumnJustification::left;
        }
    }
    return makeOmmlList(std::move(matrix));
}

KOmmlNodeList displayEnvironment(KLatexAst2Omml& ast, const KLatexEnv& env)
{
    // A displayed equation is its content; lines broken in it are centred lines.
    if (env.body.size() == 1 && env.body.front() && !latexAs<KLatexRow>(env.body.front().get()))
        return ast.convert(*env.body.front());
    return makeOmmlList(makeOmmlNode(equationLines(ast, env.body)));
}

KOmmlNodeList unknownEnvironment(KLatexAst2Omml& ast, const KLatexEnv& env)
{
    // An environment without a table entry keeps what it holds: its content, or its cells
    // and rows as a matrix with centred columns.
    if (env.body.size() == 1 && env.body.front() && !latexAs<KLatexRow>(env.body.front().get()))
        return ast.convert(*env.body.front());
    return makeOmmlList(centredMatrix(ast, buildRows(ast, env.body)));
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

KMiddleFence middleFence(const KLatexCommand& command)
{
    KMiddleFence fence{argumentNode(command.args, 0)};
    while (const auto* group = latexAs<KLatexGroup>(fence.node)) {
        if (group->children.size() != 1)
            break;
        fence.node = group->children.front().get();
    }
    QString token;
    if (const auto* text = latexAs<KLatexText>(fence.node))
        token = text->text;
    else if (const auto* named = latexAs<KLatexCommand>(fence.node))
        token = QLatin1Char('\\') + named->name;
    fence.character = fence.node ? lookupDelimiter(token) : nullptr;
    return fence;
}

KOmmlNodeList middleDelimiter(KLatexAst2Omml& ast, const KLatexCommand& command)
{
    // A \middle that is not a separator of its \left..\right (one of several
    // different ones): the fence character as a run of the body.
    const KMiddleFence fence = middleFence(command);
    if (!fence.node)
        return {};
    if (!fence.character)
        return ast.convert(*fence.node);
    if (fence.character->isEmpty())
        return {};
    return makeOmmlList(ast.makeStyledRun(*fence.character));
}
