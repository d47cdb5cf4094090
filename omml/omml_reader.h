#pragma once
// Reads OMML XML text into the OMML model. The reader is tolerant: unknown
// elements vanish with their content, unknown or missing property values fall
// back to fixed defaults, and the only failure is a null result.
//
// Names are matched as literal qualified names without namespace processing, so
// only the prefixes "m" (Office Math) and "w" (WordprocessingML run properties)
// are understood, whatever namespace they are bound to.

#include "omml/omml_model.h"

class QDomElement;

// Deepest element nesting (counted over the whole document, the document
// element being level 1) that the reader accepts. The DOM parser, the DOM tree's
// destruction and every consumer of the model recurse once per level, so a
// deeper document is treated as unreadable rather than risking the stack.
// Formulas typed by people stay far below this. The nesting is measured on the
// raw text before the DOM parser runs; markup expanded from internal entities
// adds at most what the DOM parser's entity expansion limit lets through.
constexpr int kMaxOmmlReadDepth = 1000;

// Parses the text and reads its document element. Returns null when the text is
// not well-formed XML, nests deeper than kMaxOmmlReadDepth, or its document
// element is not one of the OMML elements the model knows.
//
// Text is read in one streaming pass; what that pass does not take as it
// stands (a document type declaration, text the streaming parser rejects,
// lone surrogates) goes to the DOM parser, which has the last word on what is
// well-formed.
KOmmlNodePtr readOmmlDocument(const QString& xml);

// The same through a QDomDocument only: the reference the streaming pass is
// checked against.
KOmmlNodePtr readOmmlDocumentDom(const QString& xml);

// Reads one element (and its subtree) of an already parsed document; null for
// an unknown tag. Subtrees deeper than kMaxOmmlReadDepth below the element are
// left out.
KOmmlNodePtr readOmmlElement(const QDomElement& element);
