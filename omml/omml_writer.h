#pragma once
// Serialises the OMML model as OMML XML through a QXmlStreamWriter. The caller
// owns the stream writer and switches auto-formatting off.

#include "omml/omml_model.h"

class QXmlStreamWriter;

inline const QString kOmmlNamespace =
    QStringLiteral("http://schemas.openxmlformats.org/officeDocument/2006/math");

// Appends the m:oMathPara element with its namespace declaration and properties.
void writeOmmlParagraph(const OMathParagraph& paragraph, QXmlStreamWriter& xml);
// Appends the element for one node of any kind.
void writeOmmlNode(const KOmmlNode& node, QXmlStreamWriter& xml);

// Conveniences over the two entries above, writing into a fresh string.
QString ommlParagraphToXml(const OMathParagraph& paragraph);
QString ommlNodeToXml(const KOmmlNode& node);
