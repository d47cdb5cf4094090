// The C functions: UTF-8 in, the converter object's operation, UTF-8 out in a buffer the
// caller releases with formulaconv_free. No exception crosses this boundary.

#include "capi/formulaconv.h"

#include "capi/offscreen_app.h"
#include "interface/converter_helper.h"
#include "interface/latex_lint.h"
#include "latex/latex_dump.h"
#include "latex/latex_parser.h"

#include <QString>

#include <cstdlib>
#include <cstring>
#include <limits>

namespace {

const KFormulaConverterHelper& helper()
{
    static const KFormulaConverterHelper instance;
    return instance;
}

char* copyOut(const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    char* result = static_cast<char*>(std::malloc(size_t(utf8.size()) + 1));
    if (result) {
        std::memcpy(result, utf8.constData(), size_t(utf8.size()));
        result[utf8.size()] = '\0';
    }
    return result;
}

// Runs one operation on the decoded input; NULL for unusable arguments or any exception
// (allocation failure being the only one the operations raise).
template <typename Operation> char* convert(const char* text, size_t length, Operation&& operation) noexcept
{
    if (!text && length != 0)
        return nullptr;
    if (length > size_t(std::numeric_limits<int>::max()))
        return nullptr;
    try {
        const QString input = QString::fromUtf8(text, int(length));
        return copyOut(operation(input));
    } catch (...) {
        return nullptr;
    }
}

QString lintJson(const QString& latex)
{
    const LatexDiagnostics diagnostics = lintLatex(latex);
    QString json = QStringLiteral("[");
    for (const LatexDiagnostic& d : diagnostics) {
        if (json.size() > 1)
            json += QLatin1Char(',');
        json += QStringLiteral("{\"severity\":%1,\"pos\":%2,\"length\":%3,\"code\":%4,\"message\":%5}")
                    .arg(d.severity)
                    .arg(d.pos)
                    .arg(d.length)
                    .arg(jsonQuote(d.code), jsonQuote(d.message));
    }
    return json + QLatin1Char(']');
}

} // namespace

extern "C" {

const char* formulaconv_version(void)
{
    return FORMULACONV_VERSION_STRING;
}

char* formulaconv_latex_to_omml(const char* latex, size_t length)
{
    return convert(latex, length, [](const QString& in) { return helper().latexToOmml(in); });
}

char* formulaconv_omml_to_latex(const char* omml, size_t length)
{
    return convert(omml, length, [](const QString& in) { return helper().ommlToLatex(in); });
}

char* formulaconv_latex_to_svg(const char* latex, size_t length, double font_size)
{
    return convert(latex, length, [font_size](const QString& in) {
        return ensureGuiApplication() ? helper().latexToSvg(in, font_size) : QString();
    });
}

char* formulaconv_omml_to_svg(const char* omml, size_t length, double font_size)
{
    return convert(omml, length, [font_size](const QString& in) {
        return ensureGuiApplication() ? helper().ommlToSvg(in, font_size) : QString();
    });
}

char* formulaconv_extract_math_paragraph(const char* text, size_t length)
{
    return convert(text, length, [](const QString& in) { return helper().extractMathParagraph(in); });
}

char* formulaconv_wrap_in_word_document(const char* omml, size_t length)
{
    return convert(omml, length, [](const QString& in) { return helper().wrapInWordDocument(in); });
}

char* formulaconv_lint_json(const char* latex, size_t length)
{
    return convert(latex, length, lintJson);
}

void formulaconv_free(char* text)
{
    std::free(text);
}

} // extern "C"
