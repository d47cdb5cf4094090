// Every formula of the corpus parses into a tree with diagnostics that point inside the source.

#include "tests/latex/test_support.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

namespace {

TEST(Corpus, EveryFormulaParsesWithDiagnosticsInsideTheSource)
{
    const QDir dir(QStringLiteral(FC_CORPUS_DIR));
    const QStringList files = dir.entryList({QStringLiteral("*.txt")}, QDir::Files);
    ASSERT_FALSE(files.isEmpty()) << "the formula corpus is missing: no *.txt in " << FC_CORPUS_DIR;
    int formulas = 0;
    int clean = 0;
    for (const QString& name : files) {
        QFile file(dir.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
        for (const QString& line : lines) {
            LatexDiagnostics diagnostics;
            const KLatexNodePtr root = parseLatex(line, diagnostics);
            ASSERT_TRUE(latexAs<KLatexGroup>(root.get())) << line.toStdString();
            for (const LatexDiagnostic& d : diagnostics) {
                ASSERT_GE(d.pos, 0) << line.toStdString();
                ASSERT_LE(d.pos + d.length, line.size()) << line.toStdString();
                ASSERT_FALSE(d.code.isEmpty());
                ASSERT_EQ(d.severity, d.code.startsWith(QLatin1Char('W'))   ? 1
                                      : d.code.startsWith(QLatin1Char('E')) ? 2
                                                                            : 3);
            }
            ++formulas;
            clean += diagnostics.empty();
        }
    }
    EXPECT_GT(formulas, 1000);
    // The corpus is real, mostly well-formed LaTeX: most formulas parse without any repair.
    EXPECT_GT(clean, formulas * 9 / 10);
}

} // namespace
