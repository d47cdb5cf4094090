// Fuzz target: arbitrary bytes rendered to SVG, as LaTeX and as the OMML it converts
// to, at a font size picked by the first byte (sizes a host asks for, the smallest
// and largest accepted, and ones outside the accepted range). Whatever the input,
// rendering returns nothing or a well-formed SVG document, never crashes or hangs.
#include "fuzz/fuzz_support.h"

#include "interface/converter_helper.h"

namespace {

const double kSizes[] = {12.0, 0.5, 4096.0, 7.3, 72.0, 0.0, -1.0, 1e9};

void requireSvg(const QString& svg, const QString& input)
{
    if (svg.isEmpty())
        return;
    if (!svg.contains(QLatin1String("<svg")))
        fuzzFail("render result is not an SVG document", input);
    requireWellFormed(svg, input);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0 || !fuzzRenders())
        return 0;
    const double fontSize = kSizes[data[0] % (sizeof(kSizes) / sizeof(kSizes[0]))];
    const QString text = fuzzText(data + 1, size - 1);
    const KFormulaConverterHelper helper;
    requireSvg(helper.latexToSvg(text, fontSize), text);
    // The same text as OMML (most inputs are not), then the OMML of the LaTeX.
    requireSvg(helper.ommlToSvg(text, fontSize), text);
    const QString omml = helper.latexToOmml(text);
    if (!omml.isEmpty())
        requireSvg(helper.ommlToSvg(omml, fontSize), text);
    return 0;
}
