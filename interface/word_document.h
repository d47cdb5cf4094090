#pragma once
#include <QString>

// The fixed text around an OMML fragment in a Word 2003 XML clipboard document.
const QString& wordDocumentPrefix();
const QString& wordDocumentSuffix();
