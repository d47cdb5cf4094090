#pragma once
// Serialises the OMML model as OMML XML. The text is appended straight to a
// string; the entries over a QXmlStreamWriter (whose caller owns it and
// switches auto-formatting off) give exactly the same text and are kept as the
// reference the fast path is checked against.

#include "omml/omml_model.h"

class QXmlStreamWriter;

inline const QString kOmmlNamespace =
    QStringLiteral("http://schemas.openxmlformats.org/officeDocument/2006/math");
// Run properties (w:rPr) belong to the word-processing vocabulary.
inline const QString kWordNamespace =
    QStringLiteral("http://schemas.openxmlformats.org/wordprocessingml/2006/main");

// Appends the m:oMathPara element with its namespace declarations and properties.
void appendOmmlParagraph(const OMathParagraph& paragraph, QString& xml);
// Appends the element for one node of any kind.
void appendOmmlNode(const KOmmlNode& node, QString& xml);

// The same two entries through a QXmlStreamWriter.
void writeOmmlParagraph(const OMathParagraph& paragraph, QXmlStreamWriter& xml);
void writeOmmlNode(const KOmmlNode& node, QXmlStreamWriter& xml);

// Conveniences over the two entries above, writing into a fresh string.
QString ommlParagraphToXml(const OMathParagraph& paragraph);
QString ommlNodeToXml(const KOmmlNode& node);
