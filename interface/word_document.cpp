#include "interface/word_document.h"

namespace {

// Namespace bindings of the document element, in the order clipboard readers expect.
constexpr const char* kNamespaces[][2] = {
    {"w", "http://schemas.microsoft.com/office/word/2003/wordml"},
    {"v", "urn:schemas-microsoft-com:vml"},
    {"w10", "urn:schemas-microsoft-com:office:word"},
    {"sl", "http://schemas.microsoft.com/schemaLibrary/2003/core"},
    {"aml", "http://schemas.microsoft.com/aml/2001/core"},
    {"wx", "http://schemas.microsoft.com/office/word/2003/auxHint"},
    {"o", "urn:schemas-microsoft-com:office:office"},
    {"dt", "uuid:C2F41010-65B3-11d1-A29F-00AA00C14882"},
    {"mc", "http://schemas.openxmlformats.org/markup-compatibility/2006"},
    {"m", "http://schemas.openxmlformats.org/officeDocument/2006/math"},
};

constexpr const char* kCompatFlags[] = {
    "adjustLineHeightInTable",
    "ulTrailSpace",
    "doNotExpandShiftReturn",
    "balanceSingleByteDoubleByteWidth",
    "useFELayout",
    "spaceForUL",
    "wrapTextWithPunct",
    "breakWrappedTables",
    "useAsianBreakRules",
    "dontGrowAutofit",
    "useFELayout",
};

QString buildPrefix()
{
    QString text = QStringLiteral("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>"
                                  "<?mso-application progid=\"Word.Document\"?>"
                                  "<w:wordDocument");
    for (const auto& binding : kNamespaces)
        text += QStringLiteral(" xmlns:%1=\"%2\"").arg(QLatin1String(binding[0]), QLatin1String(binding[1]));
    text += QStringLiteral(" w:macrosPresent=\"no\" w:embeddedObjPresent=\"no\" w:ocxPresent=\"no\""
                           " xml:space=\"preserve\">"
                           "<o:DocumentProperties><o:Version>14</o:Version></o:DocumentProperties>"
                           "<w:docPr>"
                           "<w:view w:val=\"print\"/>"
                           "<w:zoom w:percent=\"90\"/>"
                           "<w:characterSpacingControl w:val=\"CompressPunctuation\"/>"
                           "<w:documentProtection w:enforcement=\"off\"/>"
                           "<w:punctuationKerning/>"
                           "<w:bordersDontSurroundHeader/>"
                           "<w:bordersDontSurroundFooter/>"
                           "<w:defaultTabStop w:val=\"420\"/>"
                           "<w:drawingGridVerticalSpacing w:val=\"156\"/>"
                           "<w:displayHorizontalDrawingGridEvery w:val=\"0\"/>"
                           "<w:displayVerticalDrawingGridEvery w:val=\"2\"/>"
                           "<w:compat>");
    for (const char* flag : kCompatFlags)
        text += QStringLiteral("<w:%1/>").arg(QLatin1String(flag));
    text += QStringLiteral("</w:compat></w:docPr><w:body><wx:sect><w:p>");
    return text;
}

} // namespace

const QString& wordDocumentPrefix()
{
    static const QString prefix = buildPrefix();
    return prefix;
}

const QString& wordDocumentSuffix()
{
    static const QString suffix = QStringLiteral("</w:p></wx:sect></w:body></w:wordDocument>");
    return suffix;
}
