#include "latex2omml/tables.h"

#include "latex2omml/handlers.h"

#include <QHash>
#include <QMap>

#include <iterator>

namespace {

using CommandFunction = KOmmlNodeList (*)(KLatexAst2Omml&, const KLatexCommand&);
using ScriptFunction = KOmmlNodeList (*)(KLatexAst2Omml&, const KLatexScript&);
using EnvironmentFunction = KOmmlNodeList (*)(KLatexAst2Omml&, const KLatexEnv&);

// One line of a command data file: name, character(s), handler family, and the
// script handler of the families that take their own limits.
struct KCommandRow {
    const char16_t* name;
    const char16_t* text;
    CommandFunction command;
    ScriptFunction script = nullptr;
    std::size_t arity = 0;
};

struct KEnvironmentRow {
    const char16_t* name;
    const char16_t* delimiters;
    EnvironmentFunction handler;
};

struct KDelimiterRow {
    const char16_t* token;
    const char16_t* fence;
};

const KCommandRow kCommandRows[] = {
#include "latex2omml/commands_accents.inc"
#include "latex2omml/commands_alternative_names.inc"
#include "latex2omml/commands_arrows.inc"
#include "latex2omml/commands_dots.inc"
#include "latex2omml/commands_fonts.inc"
#include "latex2omml/commands_greek.inc"
#include "latex2omml/commands_large_operators.inc"
#include "latex2omml/commands_limits.inc"
#include "latex2omml/commands_logic.inc"
#include "latex2omml/commands_misc.inc"
#include "latex2omml/commands_operators.inc"
#include "latex2omml/commands_relations.inc"
#include "latex2omml/commands_sets.inc"
#include "latex2omml/commands_spaces.inc"
#include "latex2omml/commands_tables.inc"
#include "latex2omml/commands_text_symbols.inc"
};

const KEnvironmentRow kEnvironmentRows[] = {
#include "latex2omml/environments.inc"
};

const KDelimiterRow kDelimiterRows[] = {
#include "latex2omml/delimiters.inc"
};

QString fromUtf16(const char16_t* text)
{
    return QString::fromUtf16(text);
}

const QHash<QString, KLatexSymbol>& commandTable()
{
    static const QHash<QString, KLatexSymbol> table = [] {
        QHash<QString, KLatexSymbol> built;
        built.reserve(int(std::size(kCommandRows)));
        for (const KCommandRow& row : kCommandRows) {
            KLatexSymbol entry{fromUtf16(row.text), row.command, {}, row.arity};
            if (row.script)
                entry.script = row.script;
            built.insert(fromUtf16(row.name), std::move(entry));
        }
        return built;
    }();
    return table;
}

const QHash<QString, KLatexEnvironment>& environmentTable()
{
    static const QHash<QString, KLatexEnvironment> table = [] {
        QHash<QString, KLatexEnvironment> built;
        for (const KEnvironmentRow& row : kEnvironmentRows)
            built.insert(fromUtf16(row.name), KLatexEnvironment{fromUtf16(row.delimiters), row.handler});
        return built;
    }();
    return table;
}

const QMap<QString, QString>& delimiterMap()
{
    static const QMap<QString, QString> map = [] {
        QMap<QString, QString> built;
        for (const KDelimiterRow& row : kDelimiterRows)
            built.insert(fromUtf16(row.token), fromUtf16(row.fence));
        return built;
    }();
    return map;
}

} // namespace

const KLatexSymbol* lookupCommand(const QString& name)
{
    const auto& table = commandTable();
    const auto found = table.constFind(name);
    return found == table.constEnd() ? nullptr : &found.value();
}

const KLatexEnvironment* lookupEnvironment(const QString& name)
{
    const auto& table = environmentTable();
    const auto found = table.constFind(name);
    return found == table.constEnd() ? nullptr : &found.value();
}

const QString* lookupDelimiter(const QString& token)
{
    const auto& map = delimiterMap();
    const auto found = map.constFind(token);
    return found == map.constEnd() ? nullptr : &found.value();
}

std::vector<QString> commandTableKeys()
{
    std::vector<QString> keys;
    keys.reserve(std::size(kCommandRows));
    for (const KCommandRow& row : kCommandRows)
        keys.push_back(fromUtf16(row.name));
    return keys;
}

std::vector<QString> environmentTableKeys()
{
    std::vector<QString> keys;
    for (const KEnvironmentRow& row : kEnvironmentRows)
        keys.push_back(fromUtf16(row.name));
    return keys;
}

std::vector<QString> delimiterMapKeys()
{
    std::vector<QString> keys;
    for (const KDelimiterRow& row : kDelimiterRows)
        keys.push_back(fromUtf16(row.token));
    return keys;
}
