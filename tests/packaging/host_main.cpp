// A C++ host linked against the installed library: converts its argument and prints the OMML.
#include <formulaconv/IFormulaConverterHelper.h>

#include <cstdio>

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    const IFormulaConverterHelper* helper = GetFormulaConverterHelper();
    const QString omml = helper->latexToOmml(QString::fromUtf8(argv[1]));
    std::printf("%s\n", omml.toUtf8().constData());
    return omml.contains(QLatin1String("<m:f>")) ? 0 : 1;
}
