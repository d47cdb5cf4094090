#include "omml2latex/tables.h"

#include <QMap>
#include <QSet>

#include <cstdint>

namespace {

struct ColourEntry {
    uint32_t rgb; // 0xFFRRGGBB
    const char16_t* name;
};

QSet<QString> makeNameSet(std::initializer_list<const char16_t*> names)
{
    QSet<QString> set;
    for (const char16_t* name : names)
        set.insert(QString::fromUtf16(name));
    return set;
}

template <int N> KCharTable makeCharTable(const KCharTable::Entry (&entries)[N])
{
    return KCharTable(entries, N);
}

} // namespace

KCharTable::KCharTable(const Entry* entries, int count)
{
    for (int i = 0; i < count; ++i)
        m_map.insert(QString::fromUtf16(entries[i].key), QString::fromUtf16(entries[i].value));
}

const KCharTable& accentCommands()
{
    static const KCharTable::Entry entries[] = {
#include "omml2latex/accent_commands.inc"
    };
    static const KCharTable table = makeCharTable(entries);
    return table;
}

const KCharTable& naryCommands()
{
    static const KCharTable::Entry entries[] = {
#include "omml2latex/nary_commands.inc"
    };
    static const KCharTable table = makeCharTable(entries);
    return table;
}

const KCharTable& delimiterCommands()
{
    static const KCharTable::Entry entries[] = {
#include "omml2latex/delimiter_commands.inc"
    };
    static const KCharTable table = makeCharTable(entries);
    return table;
}

const KCharTable& groupCharCommands()
{
    static const KCharTable::Entry entries[] = {
#include "omml2latex/group_char_commands.inc"
    };
    static const KCharTable table = makeCharTable(entries);
    return table;
}

const KCharTable& arrowCommands()
{
    static const KCharTable::Entry entries[] = {
#include "omml2latex/arrow_commands.inc"
    };
    static const KCharTable table = makeCharTable(entries);
    return table;
}

QString delimiterName(const QString& chr)
{
    if (chr.isEmpty())
        return QStringLiteral(".");
    return delimiterCommands().value(chr);
}

bool isTexOperatorCommand(const QString& name)
{
    static const QSet<QString> names = makeNameSet({
        u"arccos", u"arcsin", u"arctan", u"arg", u"cos", u"cosh", u"cot", u"coth", u"csc",  u"deg", u"dim",
        u"exp",    u"hom",    u"ker",    u"lg",  u"ln",  u"log",  u"sec", u"sin",  u"sinh", u"tan", u"tanh",
    });
    return names.contains(name);
}

QString limitCommand(const QString& text)
{
    // The names as the limit commands write them: \limsup is "lim sup".
    static const QHash<QString, QString> commands = {
        {QStringLiteral("lim"), QStringLiteral("lim")},
        {QStringLiteral("lim sup"), QStringLiteral("limsup")},
        {QStringLiteral("lim inf"), QStringLiteral("liminf")},
        {QStringLiteral("max"), QStringLiteral("max")},
        {QStringLiteral("min"), QStringLiteral("min")},
        {QStringLiteral("sup"), QStringLiteral("sup")},
        {QStringLiteral("inf"), QStringLiteral("inf")},
        {QStringLiteral("gcd"), QStringLiteral("gcd")},
        {QStringLiteral("det"), QStringLiteral("det")},
    };
    return commands.value(text.trimmed());
}

QString fontFamilyCommand(const QString& lowerFontName)
{
    // QMap iterates in ascending QString order, which is UTF-16 code-unit order.
    static const QMap<QString, QString> families = [] {
        static const KCharTable::Entry entries[] = {
#include "omml2latex/font_family_commands.inc"
        };
        QMap<QString, QString> map;
        for (const KCharTable::Entry& entry : entries)
            map.insert(QString::fromUtf16(entry.key), QString::fromUtf16(entry.value));
        return map;
    }();
    const auto match = [&](const QString& name) {
        QString command;
        for (auto it = families.cbegin(); it != families.cend(); ++it) {
            if (name.contains(it.key()))
                command = it.value();
        }
        return command;
    };
    // Nearly every run carries the default math font: its answer is worked out once.
    static const QString defaultFont = kDefaultMathFont.toLower();
    static const QString defaultCommand = match(defaultFont);
    return lowerFontName == defaultFont ? defaultCommand : match(lowerFontName);
}

QString styleCommand(OStyle style)
{
    switch (style) {
    case OStyle::bold:
        return QStringLiteral("mathbf");
    case OStyle::italic:
        return QStringLiteral("mathit");
    case OStyle::boldItalic:
        return QStringLiteral("boldsymbol");
    case OStyle::plain:
        break;
    }
    return QStringLiteral("mathrm");
}

QString scriptCommand(OScript script)
{
    switch (script) {
    case OScript::script:
        return QStringLiteral("mathcal");
    case OScript::fraktur:
        return QStringLiteral("mathfrak");
    case OScript::doubleStruck:
        return QStringLiteral("mathbb");
    case OScript::sansSerif:
        return QStringLiteral("mathsf");
    case OScript::monospace:
        return QStringLiteral("mathtt");
    case OScript::roman:
        break;
    }
    return {};
}

QString colourName(const QColor& colour)
{
    static const QMap<uint32_t, QString> names = [] {
        static const ColourEntry entries[] = {
#include "omml2latex/colour_names.inc"
        };
        QMap<uint32_t, QString> map;
        for (const ColourEntry& entry : entries)
            map.insert(entry.rgb, QString::fromUtf16(entry.name));
        return map;
    }();
    if (!colour.isValid())
        return {};
    const uint32_t rgb = 0xFF000000u | (colour.rgb() & 0x00FFFFFFu);
    const auto it = names.constFind(rgb);
    if (it != names.cend())
        return it.value();
    return QStringLiteral("#%1%2%3")
        .arg(colour.red(), 2, 16, QLatin1Char('0'))
        .arg(colour.green(), 2, 16, QLatin1Char('0'))
        .arg(colour.blue(), 2, 16, QLatin1Char('0'));
}

QString symbolCommand(char32_t codePoint)
{
    struct Entry {
        const char16_t* key;
        const char16_t* value;
    };
    static const QHash<char32_t, QString> commands = [] {
        static const Entry entries[] = {
#include "omml2latex/symbol_commands.inc"
        };
        QHash<char32_t, QString> map;
        for (const Entry& entry : entries) {
            const QVector<uint> key = QString::fromUtf16(entry.key).toUcs4();
            map.insert(key.front(), QString::fromUtf16(entry.value));
        }
        return map;
    }();
    return commands.value(codePoint);
}

namespace {

// The alphabets of the Mathematical Alphanumeric Symbols block, in block order;
// "-" marks an alphabet that LaTeX has no single command for.
const char* const kLatinAlphabets[] = {"mathbf", "",       "boldsymbol", "mathcal", "-", "mathfrak", "mathbb",
                                       "-",      "mathsf", "-",          "-",       "-", "mathtt"};
const char* const kGreekAlphabets[] = {"mathbf", "", "boldsymbol", "-", "-"};
const char* const kDigitAlphabets[] = {"mathbf", "mathbb", "mathsf", "-", "mathtt"};

// Letters of the Letterlike Symbols block that fill the holes of the alphabets above.
struct LetterlikeEntry {
    char32_t codePoint;
    char32_t base;
    const char* command;
};
const LetterlikeEntry kLetterlike[] = {
    {0x2102, 'C', "mathbb"},   {0x210A, 'g', "mathcal"}, {0x210B, 'H', "mathcal"},  {0x210C, 'H', "mathfrak"},
    {0x210D, 'H', "mathbb"},   {0x210E, 'h', ""},        {0x2110, 'I', "mathcal"},  {0x2112, 'L', "mathcal"},
    {0x2115, 'N', "mathbb"},   {0x2119, 'P', "mathbb"},  {0x211A, 'Q', "mathbb"},   {0x211B, 'R', "mathcal"},
    {0x211D, 'R', "mathbb"},   {0x2124, 'Z', "mathbb"},  {0x2128, 'Z', "mathfrak"}, {0x212C, 'B', "mathcal"},
    {0x212D, 'C', "mathfrak"}, {0x212F, 'e', "mathcal"}, {0x2130, 'E', "mathcal"},  {0x2131, 'F', "mathcal"},
    {0x2133, 'M', "mathcal"},  {0x2134, 'o', "mathcal"},
};

} // namespace

bool mathAlphanumeric(char32_t codePoint, KMathAlphanumeric* result)
{
    const char* command = nullptr;
    char32_t base = 0;
    for (const LetterlikeEntry& entry : kLetterlike) {
        if (entry.codePoint == codePoint) {
            command = entry.command;
            base = entry.base;
        }
    }
    if (!command && codePoint >= 0x1D400 && codePoint <= 0x1D7FF) {
        // The plain character is the compatibility decomposition of a font variant.
        if (QChar::decompositionTag(uint(codePoint)) != QChar::Font)
            return false;
        const QVector<uint> plain = QChar::decomposition(uint(codePoint)).toUcs4();
        if (plain.size() != 1)
            return false;
        base = plain.front();
        if (codePoint < 0x1D6A4)
            command = kLatinAlphabets[(codePoint - 0x1D400) / 52];
        else if (codePoint < 0x1D6A8)
            command = ""; // italic dotless i and j
        else if (codePoint < 0x1D7CA)
            command = kGreekAlphabets[(codePoint - 0x1D6A8) / 58];
        else if (codePoint >= 0x1D7CE)
            command = kDigitAlphabets[(codePoint - 0x1D7CE) / 10];
        else
            command = "mathbf"; // bold digamma
    }
    if (!command || qstrcmp(command, "-") == 0)
        return false;
    result->base = base;
    result->command = QString::fromLatin1(command);
    return true;
}

bool naryLimitsAboveByDefault(const QString& command)
{
    static const QSet<QString> above = makeNameSet({
        u"sum",
        u"prod",
        u"coprod",
        u"bigwedge",
        u"bigvee",
        u"bigcap",
        u"bigcup",
        u"bigsqcup",
        u"bigodot",
        u"bigoplus",
        u"bigotimes",
        u"biguplus",
    });
    return above.contains(command);
}
