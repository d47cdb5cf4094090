#include "interface/converter_helper.h"

#include "interface/word_document.h"
#include "latex/latex_parser.h"
#include "latex/latex_writer.h"
#include "latex2omml/ast2omml.h"
#include "omml/omml_reader.h"
#include "omml/omml_writer.h"
#include "omml2latex/omml_to_latex.h"
#include "render/render.h"

#include <QRegularExpression>

QString KFormulaConverterHelper::latexToOmml(QStringView latex) const
{
    if (latex.isEmpty())
        return {};
    // Diagnostics only matter to the parser's repairs; this operation drops them.
    LatexDiagnostics diagnostics;
    const KLatexNodePtr tree = parseLatex(latex, diagnostics, KLatexParser::kItemLimit);
    if (!tree)
        return {};
    KLatexAst2Omml converter;
    converter.prepare(false);
    if (!latexAs<KLatexGroup>(tree.get()))
        return {};
    OMathParagraph paragraph;
    paragraph.justification = OJustification::centerGroup;
    paragraph.equation = makeOmmlNode(OMathEquation{converter.convert(*tree)});
    return ommlParagraphToXml(paragraph);
}

QString KFormulaConverterHelper::ommlToLatex(QStringView omml) const
{
    if (omml.isEmpty())
        return {};
    const KOmmlNodePtr root = readOmmlDocument(omml.toString());
    const auto* paragraph = ommlAs<OMathParagraph>(root.get());
    if (!paragraph || !paragraph->equation)
        return {};
    KOmmlToLatexConverter converter;
    const KLatexNodePtr tree = converter.convert(paragraph->equation.get());
    if (!tree)
        return {};
    KLatexWriterOptions options;
    options.bareSimpleArguments = false;
    options.bareSimpleScripts = true;
    options.breakEnvironmentRows = true;
    options.indent = QStringLiteral("\t");
    return KLatexWriter::write(tree.get(), options);
}

QString KFormulaConverterHelper::extractMathParagraph(const QString& text) const
{
    static const QRegularExpression paragraph(QStringLiteral("<m:oMathPara[\\s\\S]*?</m:oMathPara>"));
    const QRegularExpressionMatch match = paragraph.match(text);
    return match.hasMatch() ? match.captured(0) : QString();
}

QString KFormulaConverterHelper::wrapInWordDocument(const QString& omml) const
{
    const QString& prefix = wordDocumentPrefix();
    const QString& suffix = wordDocumentSuffix();
    QString document;
    document.reserve(prefix.size() + omml.size() + suffix.size());
    document.append(prefix).append(omml).append(suffix);
    return document;
}

QString KFormulaConverterHelper::latexToSvg(QStringView latex, double fontSize) const
{
    if (latex.isEmpty())
        return {};
    LatexDiagnostics diagnostics;
    const KLatexNodePtr tree = parseLatex(latex, diagnostics, KLatexParser::kItemLimit);
    if (!tree)
        return {};
    // Render mode: unknown commands show in red.
    KLatexAst2Omml converter;
    converter.prepare(true);
    if (!latexAs<KLatexGroup>(tree.get()))
        return {};
    const KOmmlNodePtr equation = makeOmmlNode(OMathEquation{converter.convert(*tree)});
    return renderEquation(equation.get(), fontSize);
}

QString KFormulaConverterHelper::ommlToSvg(QStringView omml, double fontSize) const
{
    if (omml.isEmpty())
        return {};
    const KOmmlNodePtr root = readOmmlDocument(omml.toString());
    const auto* paragraph = ommlAs<OMathParagraph>(root.get());
    if (!paragraph)
        return {};
    return renderEquation(paragraph->equation.get(), fontSize);
}
