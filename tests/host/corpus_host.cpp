// A host application in miniature: loads libformulaconverter.so with dlopen, as an
// office application does, and runs every formula of the given files (one LaTeX
// formula per line) through all six operations. Checks what must hold for any
// formula and exits non-zero on the first violation, so that a checked build
// (AddressSanitizer, ThreadSanitizer) of the library can be driven the way hosts use it.
//
//   corpus_host [--every N] FILE...
//
// --every N takes every Nth formula of each file (the first, the (N+1)th, ...).

#include "interface/IFormulaConverterHelper.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>

namespace {

constexpr int kWrapperLength = 1594; // fixed prefix and suffix of the Word 2003 document

int failures = 0;

void fail(const char* file, int line, const char* what, const QString& formula)
{
    std::fprintf(stderr, "%s:%d: %s\n  formula: %s\n", file, line, what, formula.toUtf8().constData());
    ++failures;
}

bool isSvg(const QString& text)
{
    return text.contains(QLatin1String("<svg")) && text.trimmed().endsWith(QLatin1String("</svg>"));
}

// Runs one formula through the six operations, reporting every check that fails.
void runFormula(const IFormulaConverterHelper& helper, const char* file, int line, const QString& latex,
                double size)
{
    const QString omml = helper.latexToOmml(latex);
    if (!omml.startsWith(QLatin1String("<m:oMathPara")) || !omml.endsWith(QLatin1String("</m:oMathPara>"))) {
        fail(file, line, "latexToOmml did not give one m:oMathPara element", latex);
        return;
    }
    const QString back = helper.ommlToLatex(omml);
    if (!back.isEmpty() && helper.latexToOmml(back).isEmpty())
        fail(file, line, "the LaTeX read back from the OMML does not convert again", latex);
    if (helper.extractMathParagraph(omml) != omml)
        fail(file, line, "extractMathParagraph did not find the whole paragraph", latex);
    if (helper.wrapInWordDocument(omml).size() != omml.size() + kWrapperLength)
        fail(file, line, "wrapInWordDocument has the wrong length", latex);
    // Rendering may give nothing for a formula it cannot lay out, but what it gives is SVG.
    const QString fromLatex = helper.latexToSvg(latex, size);
    if (!fromLatex.isEmpty() && !isSvg(fromLatex))
        fail(file, line, "latexToSvg gave something that is not an SVG document", latex);
    const QString fromOmml = helper.ommlToSvg(omml, size);
    if (!fromOmml.isEmpty() && !isSvg(fromOmml))
        fail(file, line, "ommlToSvg gave something that is not an SVG document", latex);
}

int usage()
{
    std::fputs("usage: corpus_host [--every N] FILE...\n", stderr);
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv); // rendering measures text through QtGui

    const QByteArray library =
        QFile::encodeName(QCoreApplication::applicationDirPath()) + "/libformulaconverter.so";
    constexpr double size = 12.0;
    int every = 1;
    QList<QByteArray> files;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--every") == 0 && i + 1 < argc)
            every = std::atoi(argv[++i]);
        else if (argv[i][0] == '-')
            return usage();
        else
            files << argv[i];
    }
    if (files.isEmpty() || every < 1)
        return usage();

    void* handle = dlopen(library.constData(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        std::fprintf(stderr, "cannot load %s: %s\n", library.constData(), dlerror());
        return 2;
    }
    auto entry = reinterpret_cast<GetFormulaConverterHelperFn>(dlsym(handle, "GetFormulaConverterHelper"));
    if (!entry) {
        std::fprintf(stderr, "%s exports no GetFormulaConverterHelper\n", library.constData());
        return 2;
    }
    const IFormulaConverterHelper& helper = *entry();

    QElapsedTimer timer;
    timer.start();
    long formulas = 0;
    for (const QByteArray& name : files) {
        QFile file(QFile::decodeName(name));
        if (!file.open(QIODevice::ReadOnly)) {
            std::fprintf(stderr, "cannot read %s\n", name.constData());
            return 2;
        }
        const QList<QByteArray> lines = file.readAll().split('\n');
        for (int i = 0; i < lines.size(); i += every) {
            if (lines.at(i).isEmpty())
                continue;
            runFormula(helper, name.constData(), i + 1, QString::fromUtf8(lines.at(i)), size);
            ++formulas;
        }
    }
    // The library stays loaded until exit, as in a host: its static tables are
    // process-wide and Qt keeps references into it.
    std::printf("%ld formulas through six operations, %d failures, %.1f s\n", formulas, failures,
                timer.elapsed() / 1000.0);
    return failures == 0 ? 0 : 1;
}
