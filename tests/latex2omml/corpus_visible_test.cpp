// Nothing a reader sees may vanish: for every corpus formula, each letter and digit
// that a reader of the typeset LaTeX sees must reach the text of its OMML. What a
// reader does not see is left out of the count: command names, comments, colour
// names and models, environment names, column specs, counts and positions, lengths,
// labels and the like. The scanner below is deliberately independent of the
// product's lexer and parser, so that it checks them rather than repeats them.

#include "tests/latex2omml/omml_text.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QSet>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <vector>

namespace {

// Letter and digit counts, case-folded (\uppercase and \MakeUppercase change case).
using Counts = QHash<uint, int>;

void countCharacter(Counts& counts, uint code)
{
    if (QChar::isLetterOrNumber(code))
        ++counts[QChar::toCaseFolded(code)];
}

class VisibleScanner {
public:
    explicit VisibleScanner(const QString& latex) : m_text(latex) {}

    Counts scan()
    {
        while (m_pos < m_text.size()) {
            const QChar c = m_text.at(m_pos);
            if (c == QLatin1Char('%'))
                break; // a comment runs to the end of the line, and a formula is one line
            if (c == QLatin1Char('\\')) {
                command();
                continue;
            }
            uint code = c.unicode();
            if (c.isHighSurrogate() && m_pos + 1 < m_text.size() && m_text.at(m_pos + 1).isLowSurrogate()) {
                code = QChar::surrogateToUcs4(c, m_text.at(m_pos + 1));
                ++m_pos;
            }
            ++m_pos;
            countCharacter(m_counts, code);
        }
        return m_counts;
    }

private:
    void skipSpaces()
    {
        while (m_pos < m_text.size() && m_text.at(m_pos).isSpace())
            ++m_pos;
    }

    // Skips a brace group or one token; the argument a reader does not see.
    void skipArgument()
    {
        skipSpaces();
        if (m_pos >= m_text.size())
            return;
        if (m_text.at(m_pos) == QLatin1Char('{')) {
            skipBalanced(QLatin1Char('{'), QLatin1Char('}'));
        } else if (m_text.at(m_pos) == QLatin1Char('\\')) {
            ++m_pos;
            while (m_pos < m_text.size() && m_text.at(m_pos).isLetter())
                ++m_pos;
        } else {
            ++m_pos;
        }
    }

    void skipOptional()
    {
        const int start = m_pos;
        skipSpaces();
        if (m_pos < m_text.size() && m_text.at(m_pos) == QLatin1Char('['))
            skipBalanced(QLatin1Char('['), QLatin1Char(']'));
        else
            m_pos = start;
    }

    void skipBalanced(QChar open, QChar close)
    {
        int depth = 0;
        while (m_pos < m_text.size()) {
            const QChar c = m_text.at(m_pos++);
            if (c == QLatin1Char('\\'))
                ++m_pos;
            else if (c == open)
                ++depth;
            else if (c == close && --depth == 0)
                return;
        }
    }

    // An unbraced TeX length: `3mu`, `-0.5em`, `2 pt`.
    void skipLength()
    {
        skipSpaces();
        if (m_pos < m_text.size() && m_text.at(m_pos) == QLatin1Char('{')) {
            skipArgument();
            return;
        }
        while (m_pos < m_text.size() && (m_text.at(m_pos).isDigit() || QStringLiteral("+-.,").contains(m_text.at(m_pos))))
            ++m_pos;
        skipSpaces();
        static const QStringList units = {"pt", "em", "ex", "mu", "cm", "mm", "in", "pc", "bp", "dd", "cc", "sp"};
        for (const QString& unit : units) {
            if (m_text.midRef(m_pos, 2) == unit) {
                m_pos += 2;
                return;
            }
        }
    }

    void command()
    {
        ++m_pos; // the backslash
        if (m_pos >= m_text.size())
            return;
        if (!m_text.at(m_pos).isLetter()) {
            const QChar symbol = m_text.at(m_pos++);
            if (symbol == QLatin1Char('\\'))
                skipOptional(); // \\[2pt]
            else if (symbol.isLetterOrNumber())
                countCharacter(m_counts, symbol.unicode());
            return;
        }
        const int start = m_pos;
        while (m_pos < m_text.size() && m_text.at(m_pos).isLetter())
            ++m_pos;
        QString name = m_text.mid(start, m_pos - start);
        if (m_pos < m_text.size() && m_text.at(m_pos) == QLatin1Char('*'))
            name += QLatin1Char('*');
        invisibleArguments(name);
    }

    // The arguments of `name` that a reader does not see.
    void invisibleArguments(const QString& name)
    {
        static const QSet<QString> oneArgument = {
            "label", "hspace", "hspace*", "vspace", "vspace*", "mspace", "unicode", "pagecolor",
            "scalebox", "href", "url", "hyperref", "setlength", "addtolength", "cite", "ref",
            "eqref", "pageref", "enclose", "specialrule", "arraystretch", "includegraphics"};
        static const QSet<QString> lengths = {"kern", "mkern", "hskip", "mskip", "vskip", "mkern", "kern*"};
        static const QSet<QString> colours = {"color", "textcolor", "colorbox"};
        if (name == QLatin1String("begin")) {
            beginEnvironment();
        } else if (name == QLatin1String("end")) {
            skipArgument();
        } else if (oneArgument.contains(name)) {
            skipOptional();
            skipArgument();
        } else if (lengths.contains(name)) {
            skipLength();
        } else if (colours.contains(name)) {
            skipOptional();
            skipArgument();
        } else if (name == QLatin1String("fcolorbox")) {
            skipOptional();
            skipArgument();
            skipArgument();
        } else if (name == QLatin1String("definecolor")) {
            for (int i = 0; i < 3; ++i)
                skipArgument();
        } else if (name == QLatin1String("rule")) {
            skipOptional();
            skipArgument();
            skipArgument();
        } else if (name == QLatin1String("raisebox") || name == QLatin1String("parbox")) {
            skipOptional();
            skipArgument();
            skipOptional();
            skipOptional();
        } else if (name == QLatin1String("makebox") || name == QLatin1String("framebox") ||
                   name == QLatin1String("bbox")) {
            skipOptional();
            skipOptional();
        } else if (name == QLatin1String("genfrac")) {
            for (int i = 0; i < 4; ++i)
                skipArgument();
        } else if (name == QLatin1String("multicolumn")) {
            skipArgument();
            skipArgument();
        } else if (name == QLatin1String("sqrt")) {
            // the degree is seen; nothing to skip
        } else if (name.startsWith(QLatin1String("new")) || name.startsWith(QLatin1String("renew")) ||
                   name == QLatin1String("def")) {
            m_pos = m_text.size(); // a definition: what follows is not one formula any more
        }
    }

    void beginEnvironment()
    {
        skipSpaces();
        const int start = m_pos;
        skipArgument();
        const QString environment = m_text.mid(start + 1, m_pos - start - 2).trimmed();
        static const QSet<QString> withSpec = {"array", "subarray", "tabular", "alignat", "alignat*",
                                               "alignedat", "xalignat", "xxalignat", "xalignat*"};
        static const QSet<QString> withPosition = {"aligned", "gathered", "alignedat", "array",
                                                   "tabular", "split"};
        if (withPosition.contains(environment))
            skipOptional();
        if (withSpec.contains(environment))
            skipArgument();
    }

    const QString& m_text;
    int m_pos = 0;
    Counts m_counts;
};

Counts ommlTextCounts(const QString& fragment)
{
    Counts counts;
    QXmlStreamReader xml(QStringLiteral("<root>") + fragment + QStringLiteral("</root>"));
    xml.setNamespaceProcessing(false);
    int inText = 0;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.isStartElement() && (xml.qualifiedName() == QLatin1String("m:t") ||
                                     xml.qualifiedName() == QLatin1String("w:t")))
            ++inText;
        else if (xml.isEndElement() && (xml.qualifiedName() == QLatin1String("m:t") ||
                                        xml.qualifiedName() == QLatin1String("w:t")))
            --inText;
        else if (xml.isCharacters() && inText > 0) {
            for (const uint code : xml.text().toString().toUcs4())
                countCharacter(counts, code);
        }
    }
    return counts;
}

// The characters a reader sees in `latex` that `omml` lacks; empty when nothing is lost.
QString lostCharacters(const QString& latex, const QString& omml)
{
    const Counts seen = VisibleScanner(latex).scan();
    const Counts kept = ommlTextCounts(omml);
    QString lost;
    for (auto it = seen.cbegin(); it != seen.cend(); ++it) {
        const int missing = it.value() - kept.value(it.key());
        for (int i = 0; i < missing; ++i)
            lost += QString::fromUcs4(&it.key(), 1);
    }
    return lost;
}

TEST(VisibleContent, ScannerCountsWhatAReaderSees)
{
    struct Row {
        const char* latex;
        const char* seen; // sorted, case-folded
    };
    const Row rows[] = {
        {"\\frac12 x", "12x"},
        {"\\color{red} a \\textcolor[rgb]{0,1,0}{b}", "ab"},
        {"\\begin{array}{cc} a & 1 \\end{array}", "1a"},
        {"\\begin{alignat}{2} x \\end{alignat}", "x"},
        {"a \\hspace{3cm} b \\mkern3mu c \\\\[2pt] d", "abcd"},
        {"x \\label{eq:1} % comment y", "x"},
        {"\\text{ab}\\,\\mathbb R \\alpha 𝔸", "abr𝔸"},
    };
    for (const Row& row : rows) {
        const Counts counts = VisibleScanner(QString::fromUtf8(row.latex)).scan();
        std::vector<uint> codes;
        for (auto it = counts.cbegin(); it != counts.cend(); ++it)
            codes.insert(codes.end(), it.value(), it.key());
        std::sort(codes.begin(), codes.end());
        EXPECT_EQ(QString::fromUcs4(codes.data(), int(codes.size())), QString::fromUtf8(row.seen)) << row.latex;
    }
}

TEST(VisibleContent, LossesAreFound)
{
    using omml_text::r;
    // Each copy counts: the second [0,1] does not make up for the first one lost.
    EXPECT_EQ(lostCharacters(QStringLiteral("\\varphi\\colon[0,1]\\to[0,1]"), r("\u03C6:\u2192[0,1]")), "01");
    EXPECT_EQ(lostCharacters(QStringLiteral("\\frac12"), r("1")), "2");
    EXPECT_EQ(lostCharacters(QStringLiteral("\\mathbb R"), r("r")), ""); // case-folded
    EXPECT_EQ(lostCharacters(QStringLiteral("x"), QStringLiteral("<m:r><m:rPr/></m:r>")), "x");
}

TEST(VisibleContent, EveryCorpusFormulaKeepsItsLettersAndDigits)
{
    const QDir dir(QStringLiteral(FC_CORPUS_DIR));
    const QStringList files = dir.entryList({QStringLiteral("*-formulas.txt")}, QDir::Files, QDir::Name);
    if (files.isEmpty())
        GTEST_SKIP() << "no corpus at " << FC_CORPUS_DIR;
    int formulas = 0;
    QStringList losses;
    for (const QString& name : files) {
        QFile file(dir.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        for (const QString& line : QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'))) {
            if (line.trimmed().isEmpty())
                continue;
            ++formulas;
            const QString lost = lostCharacters(line, omml_text::convertLatex(line));
            if (!lost.isEmpty())
                losses << lost + QLatin1Char('\t') + line;
        }
    }
    QFile list(QStringLiteral(FC_BINARY_DIR "/visible_content_losses.txt"));
    if (list.open(QIODevice::WriteOnly | QIODevice::Truncate))
        list.write(losses.join(QLatin1Char('\n')).toUtf8());
    std::cout << "visible content: " << losses.size() << " of " << formulas
              << " formulas lose a letter or digit (" << 100.0 * losses.size() / formulas
              << "%); list in " FC_BINARY_DIR "/visible_content_losses.txt\n";
    EXPECT_GT(formulas, 16000);
    EXPECT_LT(losses.size() * 200, formulas) << "more than 0.5% of the formulas lose visible content";
}

} // namespace
