#pragma once
// Small builders for OMML models in tests.

#include "omml/omml_model.h"

inline KOmmlNodePtr run(const QString& text)
{
    return makeOmmlNode(ORun{text, {}, {}});
}

inline KOmmlNodePtr styledRun(const QString& text, OMathRunProperties mathProps, OWordRunProperties wordProps)
{
    return makeOmmlNode(ORun{text, mathProps, wordProps});
}

inline KOmmlNodeList one(const QString& text)
{
    return makeOmmlList(run(text));
}

inline OWordRunProperties wordProps(bool bold, bool italic, const QString& font = kDefaultMathFont)
{
    OWordRunProperties props;
    props.bold = bold;
    props.italic = italic;
    props.asciiFont = font;
    return props;
}

inline OWordRunProperties colouredProps(const QColor& colour)
{
    OWordRunProperties props;
    props.color = colour;
    return props;
}

inline OMathRunProperties mathStyle(OStyle style)
{
    OMathRunProperties props;
    props.style = style;
    return props;
}

inline OMathRunProperties mathScript(OScript script)
{
    OMathRunProperties props;
    props.script = script;
    return props;
}
