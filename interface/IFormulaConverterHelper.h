#pragma once
// Public header for host applications. The library exports one plain C symbol,
// GetFormulaConverterHelper, returning a process-wide converter object. The order
// of the virtual functions below is the binding table layout: never reorder them.

#include <QString>
#include <QStringView>

class IFormulaConverterHelper {
public:
    virtual ~IFormulaConverterHelper() = default;

    // LaTeX math source -> one m:oMathPara element; empty when nothing can be produced.
    virtual QString latexToOmml(QStringView latex) const = 0;
    // m:oMathPara XML -> LaTeX source; empty for unreadable XML or another root.
    virtual QString ommlToLatex(QStringView omml) const = 0;
    // The first m:oMathPara element of a larger XML text, or empty.
    virtual QString extractMathParagraph(const QString& text) const = 0;
    // A one-paragraph Word 2003 XML document around an OMML fragment.
    virtual QString wrapInWordDocument(const QString& omml) const = 0;
    // A standalone SVG document; fontSize is the base size in points.
    virtual QString latexToSvg(QStringView latex, double fontSize) const = 0;
    virtual QString ommlToSvg(QStringView omml, double fontSize) const = 0;
};

extern "C" {
// Returns the same object on every call; the host never deletes it.
__attribute__((visibility("default"))) IFormulaConverterHelper* GetFormulaConverterHelper();
typedef IFormulaConverterHelper* (*GetFormulaConverterHelperFn)();
}
