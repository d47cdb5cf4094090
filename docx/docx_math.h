#pragma once
// The equations of a Word document: listing them, and turning LaTeX typed into its text
// into native equations. Conversions are handed in, so this folder needs only Qt and libzip.

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

struct KDocxConverters {
    std::function<QString(const QString&)> latexToOmml;
    std::function<QString(const QString&)> ommlToLatex;
    // Error diagnostics of a formula, one line each; empty when it parses cleanly.
    std::function<QStringList(const QString&)> errors;
};

struct KDocxEquation {
    QString part;
    int paragraph = 0; // 1-based index of the enclosing w:p in the part, 0 outside any
    bool display = false;
    QString latex;
    QString omml;
};

struct KDocxChange {
    QString part;
    int paragraph = 0;
    bool display = false;
    QString latex;
    QStringList errors; // non-empty: left as text
};

// The parts that carry text, in reading order; returns false with error set on a bad package.
bool listEquations(const QString& path, const KDocxConverters& conv, std::vector<KDocxEquation>& out,
                   QString& error);
bool convertLatexInDocument(const QString& in, const QString& out, bool dryRun, const KDocxConverters& conv,
                            std::vector<KDocxChange>& changes, QString& error);
bool writeDocumentFromText(const QString& text, const QString& out, const KDocxConverters& conv,
                           std::vector<KDocxChange>& changes, QString& error);
