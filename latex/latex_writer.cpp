#include "latex/latex_writer.h"

#include <QSet>

namespace {

const QString kLineBreak = QStringLiteral("\\\\");
const QString kStarredLineBreak = QStringLiteral("\\\\*");

// A fence after \left or \right; a letter used as a fence must not run into the
// command name (\left x, not \leftx).
QString spacedFence(const QString& fence)
{
    return !fence.isEmpty() && fence.front().isLetter() ? QLatin1Char(' ') + fence : fence;
}

// Letters and digits count per UTF-16 code unit, as the lexer reads them: a
// surrogate is neither, so a character outside the BMP never joins a control word.
bool isLetter(QChar c)
{
    const ushort u = c.unicode();
    if (u < 0x80)
        return (u >= 'A' && u <= 'Z') || (u >= 'a' && u <= 'z');
    return c.isLetter();
}

bool isDigit(QChar c)
{
    const ushort u = c.unicode();
    if (u < 0x80)
        return u >= '0' && u <= '9';
    return c.category() == QChar::Number_DecimalDigit;
}

bool isAlphanumeric(QChar c)
{
    return isLetter(c) || isDigit(c);
}

OutputClass characterClass(QChar c)
{
    if (isLetter(c))
        return OutputClass::letter;
    if (isDigit(c))
        return OutputClass::digit;
    return OutputClass::other;
}

// A piece beginning with a control word ends in a state where a following
// letter would extend that word; otherwise its last character decides.
OutputClass pieceClass(const QString& piece)
{
    if (piece.startsWith(QLatin1Char('\\')))
        return piece.size() > 1 && isLetter(piece.at(1)) ? OutputClass::controlWord : OutputClass::other;
    return piece.isEmpty() ? OutputClass::none : characterClass(piece.back());
}

bool allLetters(const QString& text)
{
    if (text.isEmpty())
        return false;
    for (const QChar c : text) {
        if (!isLetter(c))
            return false;
    }
    return true;
}

bool allDigits(const QString& text)
{
    for (const QChar c : text) {
        if (!isDigit(c))
            return false;
    }
    return !text.isEmpty();
}

// The lexer's normalised spacing names and how each is written back.
const QString* spacingForm(const QString& name)
{
    struct Spacing {
        QString name;
        QString printed;
    };
    static const Spacing kSpacing[] = {
        {QStringLiteral("space_thin"), QStringLiteral("\\,")},
        {QStringLiteral("space_med"), QStringLiteral("\\:")},
        {QStringLiteral("space_thick"), QStringLiteral("\\;")},
        {QStringLiteral("space_negthin"), QStringLiteral("\\!")},
        {QStringLiteral("space_quad"), QStringLiteral("\\quad ")},
        {QStringLiteral("space_qquad"), QStringLiteral("\\qquad ")},
        // A bare space would be dropped by the lexer; the control space keeps it.
        {QStringLiteral("space_normal"), QStringLiteral("\\ ")},
        {QStringLiteral("nbsp"), QStringLiteral("~")},
    };
    for (const Spacing& spacing : kSpacing) {
        if (spacing.name == name)
            return &spacing.printed;
    }
    return nullptr;
}

// The text without the control spaces (`\ `) at its end: around a \left or \right
// delimiter they are spacing, not part of the delimiter.
QString withoutTrailingControlSpaces(QString text)
{
    for (;;) {
        while (text.endsWith(QLatin1Char(' ')) && !text.endsWith(QLatin1String("\\ ")))
            text.chop(1);
        int backslashes = 0;
        while (backslashes + 1 < text.size() && text.at(text.size() - 2 - backslashes) == QLatin1Char('\\'))
            ++backslashes;
        if (!text.endsWith(QLatin1Char(' ')) || backslashes % 2 == 0)
            return text;
        text.chop(2);
    }
}

// Whether the text ends in a control word (\alpha), which a following letter would extend.
bool endsWithControlWord(const QString& text)
{
    int i = text.size();
    while (i > 0 && isLetter(text.at(i - 1)))
        --i;
    if (i == text.size() || i == 0 || text.at(i - 1) != QLatin1Char('\\'))
        return false;
    int backslashes = 0;
    while (i - 1 - backslashes >= 0 && text.at(i - 1 - backslashes) == QLatin1Char('\\'))
        ++backslashes;
    return backslashes % 2 == 1;
}

bool isKnownEnvironment(const QString& name)
{
    static const char* const kNames[] = {
#include "latex/latex_writer_environments.inc"
    };
    static const QSet<QString> kKnown = [] {
        QSet<QString> known;
        for (const char* environment : kNames)
            known.insert(QString::fromLatin1(environment));
        return known;
    }();
    return kKnown.contains(name);
}

bool isLineBreak(const QString& name)
{
    return name == kLineBreak || name == kStarredLineBreak;
}

// Commands whose argument is a delimiter, written right after the name: \left(,
// \middle|, \bigl\langle.
bool isFenceCommand(const QString& name)
{
    static const QSet<QString> kNames = {
        QStringLiteral("left"),  QStringLiteral("right"), QStringLiteral("middle"), QStringLiteral("bigl"),
        QStringLiteral("bigr"),  QStringLiteral("Bigl"),  QStringLiteral("Bigr"),   QStringLiteral("biggl"),
        QStringLiteral("biggr"), QStringLiteral("Biggl"), QStringLiteral("Biggr"),
    };
    return kNames.contains(name);
}

// Simple nodes can go without braces: a command without arguments or a single
// code unit of text, possibly wrapped in groups of one child.
bool isSimple(const KLatexNode* node)
{
    while (const KLatexGroup* group = latexAs<KLatexGroup>(node)) {
        if (group->children.size() != 1 || !group->children.front())
            return false;
        node = group->children.front().get();
    }
    // Spacing goes in braces: a bare control space would lose its space, and TeX
    // reads ^\, as a script of the macro's first token.
    if (const KLatexCommand* command = latexAs<KLatexCommand>(node))
        return command->args.empty() && !spacingForm(command->name) &&
               command->name != QLatin1String("enspace");
    // An apostrophe is a superscript prime of its own: x^' would be a double superscript.
    if (const KLatexText* text = latexAs<KLatexText>(node))
        return text->text.size() == 1 && text->text != QLatin1String("'");
    return false;
}

bool isEscaped(QChar c)
{
    switch (c.unicode()) {
    case '#':
    case '$':
    case '%':
    case '&':
    case '\\':
    case '^':
    case '_':
    case '{':
    case '}':
    case '~':
        return true;
    default:
        return false;
    }
}

// A row that already ends in a line break, possibly with its spacing argument,
// needs no second one from the environment.
bool endsWithLineBreak(const QString& row)
{
    const QString trimmed = row.trimmed();
    if (trimmed.endsWith(kLineBreak) || trimmed.endsWith(kStarredLineBreak))
        return true;
    const int open = trimmed.lastIndexOf(QStringLiteral("\\\\["));
    if (open < 0)
        return false;
    const int close = trimmed.lastIndexOf(QLatin1Char(']'));
    return close > open && close == trimmed.size() - 1;
}

} // namespace

KLatexWriter::KLatexWriter(const KLatexWriterOptions& options) : m_options(options)
{
}

QString KLatexWriter::write(const KLatexNode* root, const KLatexWriterOptions& options)
{
    if (!root)
        return QString();
    KLatexWriter writer(options);
    return writer.node(root);
}

QString KLatexWriter::normaliseDimension(const QString& text)
{
    static const QSet<QString> kUnits = {
        QStringLiteral("pt"), QStringLiteral("em"), QStringLiteral("ex"), QStringLiteral("mm"),
        QStringLiteral("cm"), QStringLiteral("in"), QStringLiteral("bp"), QStringLiteral("pc"),
        QStringLiteral("dd"), QStringLiteral("cc"), QStringLiteral("sp"),
    };
    const QString trimmed = text.trimmed();
    const int space = trimmed.indexOf(QLatin1Char(' '));
    if (space < 0)
        return trimmed;
    const QString number = trimmed.left(space);
    const QString unit = trimmed.mid(space + 1);
    if (allDigits(number) && allLetters(unit) && kUnits.contains(unit))
        return number + unit;
    return trimmed;
}

QString KLatexWriter::node(const KLatexNode* node)
{
    if (!node || m_nesting >= kMaxLatexWriteDepth)
        return QString();
    ++m_nesting;
    QString printed = std::visit([this](const auto& kind) { return print(kind); }, node->value);
    --m_nesting;
    return printed;
}

QString KLatexWriter::print(const KLatexGroup& group)
{
    QString result;
    bool afterScript = false;
    for (const KLatexNodePtr& child : group.children) {
        if (!child)
            continue;
        const bool afterControlWord = endsWithControlWord(result);
        const QString piece = node(child.get());
        if (piece.isEmpty())
            continue;
        const QChar first = piece.front();
        if (!result.isEmpty()) {
            const QChar last = result.back();
            // Digits run on (a number is one), and so does the base of a script,
            // unless what comes before ends in a script of its own (x^2 3, not x^23).
            const bool joins = !afterScript && !afterControlWord &&
                               ((isDigit(last) && isDigit(first)) || latexAs<KLatexScript>(child.get()));
            if ((last == QLatin1Char('}') && isLetter(first)) ||
                (isAlphanumeric(last) && isAlphanumeric(first) && !joins)) {
                result += QLatin1Char(' ');
                m_lastClass = OutputClass::other;
            }
            // Reads the class the child left behind, after the rule above.
            if (m_lastClass == OutputClass::controlWord && isLetter(first))
                result += QLatin1Char(' ');
            // A star right after a control word would make it the starred command.
            else if (first == QLatin1Char('*') && endsWithControlWord(result))
                result += QLatin1Char(' ');
        }
        result += piece;
        m_lastClass = pieceClass(piece);
        afterScript = latexAs<KLatexScript>(child.get()) != nullptr;
    }
    return result;
}

QString KLatexWriter::print(const KLatexText& text)
{
    QString result;
    result.reserve(text.text.size());
    for (const QChar c : text.text) {
        if (isEscaped(c))
            result += QLatin1Char('\\');
        result += c;
    }
    if (!result.isEmpty())
        m_lastClass = characterClass(result.back());
    return result;
}

QString KLatexWriter::print(const KLatexCommand& command)
{
    const QString& name = command.name;
    if (const QString* spacing = spacingForm(name)) {
        m_lastClass = OutputClass::other;
        return *spacing;
    }
    if (isFenceCommand(name)) {
        QString result = QLatin1Char('\\') + name;
        if (!command.args.empty() && command.args.front().node) {
            QString delimiter = node(command.args.front().node.get());
            // A braced delimiter such as "{(}" is written bare.
            if (delimiter.size() >= 2 && delimiter.startsWith(QLatin1Char('{')) &&
                delimiter.endsWith(QLatin1Char('}'))) {
                const QString inner =
                    withoutTrailingControlSpaces(delimiter.mid(1, delimiter.size() - 2)).trimmed();
                if (!inner.contains(QLatin1Char('{')) && !inner.contains(QLatin1Char('}')))
                    delimiter = inner;
            }
            result += spacedFence(delimiter);
        }
        m_lastClass = OutputClass::other;
        return result;
    }
    if (isLineBreak(name)) {
        QString result = kLineBreak;
        if (name.endsWith(QLatin1Char('*')))
            result += QLatin1Char('*');
        if (!command.args.empty() && command.args.front().optional && command.args.front().node)
            result += QLatin1Char('[') + normaliseDimension(node(command.args.front().node.get())) +
                      QLatin1Char(']');
        m_lastClass = OutputClass::other;
        return result;
    }
    if (name == QLatin1String("verb") || name == QLatin1String("verb*"))
        return verbatim(name, command.args);
    return plainCommand(name, command.args);
}

QString KLatexWriter::verbatim(const QString& name, const KLatexArgs& args)
{
    // \verb takes its text between two equal characters that the text does not hold.
    QString text;
    if (const auto* group = args.empty() ? nullptr : latexAs<KLatexGroup>(args.front().node.get()))
        for (const auto& child : group->children)
            if (const auto* part = latexAs<KLatexText>(child.get()))
                text += part->text;
    m_lastClass = OutputClass::other;
    for (const QChar delimiter : QStringLiteral("|!+/=:;.,-_@\"'`~^")) {
        if (!text.contains(delimiter))
            return QLatin1Char('\\') + name + delimiter + text + delimiter;
    }
    return QLatin1Char('\\') + name + QLatin1Char('|') + QString(text).remove(QLatin1Char('|')) +
           QLatin1Char('|');
}

QString KLatexWriter::print(const KLatexUnknownCommand& command)
{
    if (const QString* spacing = spacingForm(command.name)) {
        m_lastClass = OutputClass::other;
        return *spacing;
    }
    return plainCommand(command.name, command.args);
}

QString KLatexWriter::plainCommand(const QString& name, const KLatexArgs& args)
{
    QString result = QLatin1Char('\\') + name;
    m_lastClass = allLetters(name) ? OutputClass::controlWord : OutputClass::other;
    result += arguments(args);
    return result;
}

QString KLatexWriter::arguments(const KLatexArgs& args)
{
    QString result;
    for (const KLatexArg& arg : args) {
        const QString printed = node(arg.node.get());
        if (arg.optional)
            result += QLatin1Char('[') + printed + QLatin1Char(']');
        else if (m_options.bareSimpleArguments && arg.node && isSimple(arg.node.get()))
            result += printed;
        else
            result += QLatin1Char('{') + printed + QLatin1Char('}');
    }
    return result;
}

QString KLatexWriter::scriptPart(QChar marker, const KLatexNode* part)
{
    const QString printed = node(part);
    if (m_options.bareSimpleScripts && isSimple(part))
        return marker + printed;
    return marker + (QLatin1Char('{') + printed + QLatin1Char('}'));
}

namespace {

// The script a base ends with when printed: the base itself, or the last child
// of a group, followed down.
const KLatexScript* trailingScript(const KLatexNode* node)
{
    while (node) {
        if (const auto* script = latexAs<KLatexScript>(node))
            return script;
        const auto* group = latexAs<KLatexGroup>(node);
        if (!group)
            return nullptr;
        const KLatexNode* last = nullptr;
        for (const auto& child : group->children)
            if (child)
                last = child.get();
        node = last;
    }
    return nullptr;
}

const KLatexCommand* commandNamed(const KLatexNode* node, const char* name)
{
    const auto* command = latexAs<KLatexCommand>(node);
    return command && command->name == QLatin1String(name) ? command : nullptr;
}

// A large operator with its placement command, such as \sum\limits: the base of
// the limits that follow it, not a group that needs braces.
bool isOperatorWithPlacement(const KLatexGroup& group)
{
    return group.children.size() == 2 && latexAs<KLatexCommand>(group.children[0].get()) &&
           (commandNamed(group.children[1].get(), "limits") ||
            commandNamed(group.children[1].get(), "nolimits"));
}

bool isSpacing(const QString& name)
{
    return spacingForm(name) != nullptr || name == QLatin1String("enspace");
}

} // namespace

bool isLatexAtom(const KLatexNode* node)
{
    const KLatexGroup* group = latexAs<KLatexGroup>(node);
    while (group && group->children.size() == 1 && group->children.front()) {
        node = group->children.front().get();
        group = latexAs<KLatexGroup>(node);
    }
    if (!node)
        return false;
    if (group) {
        // \left( ... \right): one delimited atom.
        return group->children.size() == 3 && commandNamed(group->children[0].get(), "left") &&
               commandNamed(group->children[2].get(), "right");
    }
    if (const auto* text = latexAs<KLatexText>(node))
        return text->text.toUcs4().size() == 1 && text->text != QLatin1String("'") &&
               !text->text.front().isSpace();
    if (const auto* command = latexAs<KLatexCommand>(node))
        return !isSpacing(command->name) && !isLineBreak(command->name) &&
               command->name != QLatin1String("left") && command->name != QLatin1String("right");
    if (latexAs<KLatexUnknownCommand>(node))
        return true;
    if (const auto* script = latexAs<KLatexScript>(node)) {
        const KLatexGroup* base = latexAs<KLatexGroup>(script->base.get());
        return script->base && !(base && base->children.empty());
    }
    if (const auto* leftRight = latexAs<KLatexLeftRight>(node))
        return !leftRight->useLeftRight && leftRight->left == QLatin1String("{");
    return latexAs<KLatexEnv>(node) != nullptr;
}

QString KLatexWriter::print(const KLatexScript& script)
{
    QString result = node(script.base.get());
    // A base that is more than one atom is braced, so that the script belongs to
    // all of it ({ab}_n); so is a base that ends in a script, since TeX refuses a
    // second script on one base and x^{2}_{i} would set both on x ({u_a^d}_\mu).
    // An empty base is written {}.
    const KLatexNode* base = script.base.get();
    const KLatexGroup* baseGroup = latexAs<KLatexGroup>(base);
    const bool operatorBase = baseGroup && isOperatorWithPlacement(*baseGroup);
    const bool needsBraces = !operatorBase && (trailingScript(base) || !isLatexAtom(base));
    if (result.isEmpty() || needsBraces) {
        result = QLatin1Char('{') + result + QLatin1Char('}');
        m_lastClass = OutputClass::other;
    }
    // The subscript comes first, as people write it: x_{i}^{2}, \sum_{i=1}^{n}.
    if (script.sub)
        result += scriptPart(QLatin1Char('_'), script.sub.get());
    if (script.sup)
        result += scriptPart(QLatin1Char('^'), script.sup.get());
    return result;
}

QString KLatexWriter::print(const KLatexLeftRight& leftRight)
{
    const QString body = node(leftRight.body.get());
    m_lastClass = OutputClass::other;
    if (leftRight.useLeftRight)
        return QStringLiteral("\\left") + spacedFence(leftRight.left) + QLatin1Char(' ') + body +
               QLatin1Char(' ') + QStringLiteral("\\right") + spacedFence(leftRight.right);
    return leftRight.left + body + leftRight.right;
}

QString KLatexWriter::print(const KLatexRow& row)
{
    size_t cellCount = row.cells.size();
    const KLatexCommand* terminator = nullptr;
    if (cellCount > 0) {
        const KLatexCommand* last = latexAs<KLatexCommand>(row.cells.back().get());
        if (last && isLineBreak(last->name)) {
            terminator = last;
            --cellCount;
        }
    }
    QString result;
    for (size_t i = 0; i < cellCount; ++i) {
        result += node(row.cells[i].get());
        if (i + 1 < cellCount)
            result += QStringLiteral(" & ");
    }
    if (terminator) {
        const QString lineBreak = print(*terminator);
        if (!result.isEmpty() && !result.endsWith(QLatin1Char(' ')) &&
            !lineBreak.startsWith(QLatin1Char(' ')))
            result += QLatin1Char(' ');
        result += lineBreak;
    }
    m_lastClass = OutputClass::other;
    return result;
}

QString KLatexWriter::print(const KLatexEnv& env)
{
    QString result = QStringLiteral("\\begin{") + env.name + QLatin1Char('}');
    result += arguments(env.args);
    if (m_options.breakEnvironmentRows && isKnownEnvironment(env.name)) {
        result += QLatin1Char('\n');
        ++m_depth;
        const size_t count = env.body.size();
        for (size_t i = 0; i < count; ++i) {
            const KLatexNode* element = env.body[i].get();
            const QString printed = element ? node(element) : QString();
            // An empty last row is the line break before it; its indentation alone
            // would make a blank line, which ends the paragraph inside the formula.
            if (printed.isEmpty() && i + 1 == count)
                break;
            result += m_options.indent.repeated(m_depth);
            const bool terminated = endsWithLineBreak(printed);
            result += printed;
            if (!terminated && i + 1 < count)
                result += QStringLiteral(" \\\\");
            result += QLatin1Char('\n');
        }
        --m_depth;
    } else {
        for (const KLatexNodePtr& element : env.body) {
            if (element)
                result += node(element.get());
        }
    }
    result += QStringLiteral("\\end{") + env.name + QLatin1Char('}');
    m_lastClass = OutputClass::other;
    return result;
}
