// Fuzz target: the fast XML stages against the Qt classes they replace. The
// input, as OMML, must give the same model through the streaming reader as
// through the DOM reader, including the same refusals of malformed XML; as
// LaTeX, the OMML written straight to a string must equal the stream writer's.
//
// The input is UTF-8, unless its first byte is 0x01: then the rest is raw
// UTF-16, which reaches lone surrogates and every control character.
#include "fuzz/fuzz_support.h"

#include "latex/latex_parser.h"
#include "latex2omml/ast2omml.h"
#include "omml/omml_reader.h"
#include "omml/omml_writer.h"

#include <QRegularExpression>
#include <QXmlStreamWriter>

namespace {

QString modelText(const KOmmlNodePtr& node)
{
    return node ? ommlNodeToXml(*node) : QStringLiteral("<null>");
}

// The DOM parser cuts character references above U+FFFF to 16 bits; the
// streaming reader reads the character named. Inputs with such a reference
// are not compared.
bool hasReferenceAboveBmp(const QString& text)
{
    static const QRegularExpression reference(QStringLiteral("&#(x[0-9A-Fa-f]+|[0-9]+);"));
    for (auto it = reference.globalMatch(text); it.hasNext();) {
        const QString number = it.next().captured(1);
        bool ok = false;
        const qulonglong value = number.startsWith(QLatin1Char('x')) ? number.mid(1).toULongLong(&ok, 16)
                                                                     : number.toULongLong(&ok, 10);
        if (!ok || value > 0xFFFF)
            return true;
    }
    return false;
}

void compareReaders(const QString& xml)
{
    if (hasReferenceAboveBmp(xml))
        return;
    if (modelText(readOmmlDocument(xml)) != modelText(readOmmlDocumentDom(xml)))
        fuzzFail("the streaming reader and the DOM reader disagree", xml);
}

void compareWriters(const QString& latex)
{
    LatexDiagnostics diagnostics;
    const KLatexNodePtr tree = parseLatex(latex, diagnostics, KLatexParser::kItemLimit);
    if (!tree)
        return;
    KLatexAst2Omml converter;
    converter.prepare(false);
    OMathParagraph paragraph;
    paragraph.equation = makeOmmlNode(OMathEquation{converter.convert(*tree)});
    QString expected;
    QXmlStreamWriter xml(&expected);
    xml.setAutoFormatting(false);
    writeOmmlParagraph(paragraph, xml);
    if (ommlParagraphToXml(paragraph) != expected)
        fuzzFail("the string writer and the stream writer disagree", latex);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString text =
        size > 0 && data[0] == 0x01
            ? QString::fromUtf16(reinterpret_cast<const char16_t*>(data + 1), int((size - 1) / 2))
            : fuzzText(data, size);
    compareReaders(text);
    compareWriters(text);
    return 0;
}
