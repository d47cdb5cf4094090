#pragma once
// The library's only implementation of the host interface. It holds no state:
// every operation builds its pipeline on the caller's stack and tears it down.

#include "interface/IFormulaConverterHelper.h"

class KFormulaConverterHelper final : public IFormulaConverterHelper {
public:
    KFormulaConverterHelper();
    ~KFormulaConverterHelper() override = default;

    QString latexToOmml(QStringView latex) const override;
    QString ommlToLatex(QStringView omml) const override;
    QString extractMathParagraph(const QString& text) const override;
    QString wrapInWordDocument(const QString& omml) const override;
    QString latexToSvg(QStringView latex, double fontSize) const override;
    QString ommlToSvg(QStringView omml, double fontSize) const override;
};
