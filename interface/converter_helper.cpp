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
#include <QTextCodec>

#include <utility>

namespace {

// Qt registers its text codecs on first use: the XML reader asks for UTF-8 by number, the SVG
// generator by name, a text stream for the locale's. Qt guards that registry with a lock of its
// own, which a thread checker cannot see inside an uninstrumented Qt, so concurrent first uses
// look like a race there. Looking them all up once, under the guard of a static, registers them
// before any operation runs, so later look-ups find them cached instead of adding them.
bool registerTextCodecs()
{
    QTextCodec::codecForMib(106);
    QTextCodec::codecForName("UTF-8");
    QTextCodec::codecForLocale();
    return true;
}

// The LaTeX converter's equation for `latex`, or null when the parser gives no tree. In render
// mode unknown commands come out red, so that a picture shows what was not understood.
KOmmlNodePtr latexToEquation(QStringView latex, bool renderMode)
{
    // Diagnostics only matter to the parser's repairs; the operations drop them.
    LatexDiagnostics diagnostics;
    const KLatexNodePtr tree = parseLatex(latex, diagnostics, KLatexParser::kItemLimit);
    if (!tree || !latexAs<KLatexGroup>(tree.get()))
        return nullptr;
    KLatexAst2Omml converter;
    converter.prepare(renderMode);
    return makeOmmlNode(OMathEquation{converter.convert(*tree)});
}

} // namespace

KFormulaConverterHelper::KFormulaConverterHelper()
{
    static const bool codecsRegistered = registerTextCodecs();
    Q_UNUSED(codecsRegistered);
}

QString KFormulaConverterHelper::latexToOmml(QStringView latex) const
{
    if (latex.isEmpty())
        return {};
    KOmmlNodePtr equation = latexToEquation(latex, false);
    if (!equation)
        return {};
    OMathParagraph paragraph;
    paragraph.justification = OJustification::centerGroup;
    paragraph.equation = std::move(equation);
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
    const KOmmlNodePtr equation = latexToEquation(latex, true);
    return equation ? renderEquation(equation.get(), fontSize) : QString();
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
