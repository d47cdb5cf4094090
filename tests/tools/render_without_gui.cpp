// Renders with no application object, then with a plain QCoreApplication, and
// prints the length of each result: both must be 0, and the process must not abort.

#include "interface/converter_helper.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    const KFormulaConverterHelper helper;
    const QString omml = helper.latexToOmml(u"\\frac{a}{b}");
    std::printf("none %d %d\n", int(helper.latexToSvg(u"\\frac{a}{b}", 12).size()),
                int(helper.ommlToSvg(omml, 12).size()));
    QCoreApplication app(argc, argv);
    std::printf("core %d %d\n", int(helper.latexToSvg(u"\\frac{a}{b}", 12).size()),
                int(helper.ommlToSvg(omml, 12).size()));
    return 0;
}
