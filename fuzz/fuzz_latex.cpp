// Fuzz target: arbitrary bytes as LaTeX through every operation that reads LaTeX.
// Whatever the input, each call must return (possibly empty) text, never crash or
// hang, and the OMML it produces must read back.
#include "fuzz/fuzz_support.h"

#include "interface/converter_helper.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString latex = fuzzText(data, size);
    const KFormulaConverterHelper helper;
    const QString omml = helper.latexToOmml(latex);
    if (!latex.isEmpty() && omml.isEmpty())
        fuzzFail("latexToOmml gave nothing for non-empty input", latex);
    if (!omml.isEmpty()) {
        requireWellFormed(omml, latex);
        helper.ommlToLatex(omml);
    }
    if (fuzzRenders())
        helper.latexToSvg(latex, 12.0);
    return 0;
}
