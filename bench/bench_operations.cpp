// Per-call cost of each of the six operations on a small, a typical and a very
// large input (Google Benchmark). The corpus-wide figures are bench_corpus's.
//
//   build-release/bench_operations [--benchmark_filter=REGEX]

#include "interface/converter_helper.h"

#include <QGuiApplication>

#include <benchmark/benchmark.h>

namespace {

const KFormulaConverterHelper kHelper;

// A small formula, a typical one (the size of a corpus formula), and a very
// large one: a 200-row aligned derivation of typical formulas, about 30,000 characters.
QString latexInput(int size)
{
    static const QString typical = QStringLiteral(
        "\\sum_{i=1}^{n} \\frac{\\alpha_i x^{2}}{\\sqrt{1+\\beta_i^2}} \\leq \\left( \\int_0^\\infty "
        "e^{-t} \\, dt \\right)^{1/2}");
    switch (size) {
    case 0:
        return QStringLiteral("x^2");
    case 1:
        return typical;
    default: {
        QStringList rows;
        for (int i = 0; i < 200; ++i)
            rows << QStringLiteral("a_{%1} &= ").arg(i) + typical;
        return QStringLiteral("\\begin{aligned}") + rows.join(QStringLiteral(" \\\\ ")) +
               QStringLiteral("\\end{aligned}");
    }
    }
}

const char* const kSizeNames[] = {"small", "typical", "large"};

template <class Run> void runOn(benchmark::State& state, const QString& input, Run run)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(run(input));
    state.SetLabel(kSizeNames[state.range(0)]);
    state.SetBytesProcessed(int64_t(state.iterations()) * input.size() * 2);
}

void LatexToOmml(benchmark::State& state)
{
    runOn(state, latexInput(int(state.range(0))), [](const QString& s) { return kHelper.latexToOmml(s); });
}

void OmmlToLatex(benchmark::State& state)
{
    runOn(state, kHelper.latexToOmml(latexInput(int(state.range(0)))),
          [](const QString& s) { return kHelper.ommlToLatex(s); });
}

void ExtractMathParagraph(benchmark::State& state)
{
    runOn(state, kHelper.wrapInWordDocument(kHelper.latexToOmml(latexInput(int(state.range(0))))),
          [](const QString& s) { return kHelper.extractMathParagraph(s); });
}

void WrapInWordDocument(benchmark::State& state)
{
    runOn(state, kHelper.latexToOmml(latexInput(int(state.range(0)))),
          [](const QString& s) { return kHelper.wrapInWordDocument(s); });
}

void LatexToSvg(benchmark::State& state)
{
    runOn(state, latexInput(int(state.range(0))), [](const QString& s) { return kHelper.latexToSvg(s, 12); });
}

void OmmlToSvg(benchmark::State& state)
{
    runOn(state, kHelper.latexToOmml(latexInput(int(state.range(0)))),
          [](const QString& s) { return kHelper.ommlToSvg(s, 12); });
}

BENCHMARK(LatexToOmml)->DenseRange(0, 2);
BENCHMARK(OmmlToLatex)->DenseRange(0, 2);
BENCHMARK(ExtractMathParagraph)->DenseRange(0, 2);
BENCHMARK(WrapInWordDocument)->DenseRange(0, 2);
BENCHMARK(LatexToSvg)->DenseRange(0, 2);
BENCHMARK(OmmlToSvg)->DenseRange(0, 2);

} // namespace

int main(int argc, char** argv)
{
    // Rendering measures text with QtGui, which needs an application object.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
