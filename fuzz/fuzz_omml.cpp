// Fuzz target: arbitrary bytes as OMML XML through the reading operations and the
// two string utilities. Unreadable XML must give an empty result, never a crash.
#include "fuzz/fuzz_support.h"

#include "interface/converter_helper.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString omml = fuzzText(data, size);
    const KFormulaConverterHelper helper;
    const QString latex = helper.ommlToLatex(omml);
    if (!latex.isEmpty())
        helper.latexToOmml(latex);
    const QString paragraph = helper.extractMathParagraph(omml);
    if (!paragraph.isEmpty() && !omml.contains(paragraph))
        fuzzFail("extracted text is not part of the input", omml);
    if (helper.wrapInWordDocument(omml).size() != omml.size() + 1594)
        fuzzFail("wrapper length", omml);
    if (fuzzRenders())
        helper.ommlToSvg(omml, 12.0);
    return 0;
}
