#pragma once
// Handler families of the command and environment tables. Each family is one
// free function shared by every table entry that names it.

#include "latex2omml/ast2omml.h"

// Characters, literals and pass-through (tables.cpp / basic.cpp)
KOmmlNodeList symbol(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList literal(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList firstArgument(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList declaration(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList hidden(KLatexAst2Omml&, const KLatexCommand&);

// Structural (structural.cpp)
KOmmlNodeList fraction(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList infixFraction(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList radical(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList naryOperator(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList naryScript(KLatexAst2Omml&, const KLatexScript&);
KOmmlNodeList function(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList functionScript(KLatexAst2Omml&, const KLatexScript&);
KOmmlNodeList operatorName(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList operatorNameScript(KLatexAst2Omml&, const KLatexScript&);
KOmmlNodeList limitFunction(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList limitScript(KLatexAst2Omml&, const KLatexScript&);
KOmmlNodeList limitVariant(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList limitVariantScript(KLatexAst2Omml&, const KLatexScript&);
KOmmlNodeList stack(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList generalFraction(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList limitOperatorName(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList limitOperatorNameScript(KLatexAst2Omml&, const KLatexScript&);
KOmmlNodeList sideset(KLatexAst2Omml&, const KLatexCommand&);

// Delimiters, matrices and environments (delimiters.cpp)
KOmmlNodeList bigDelimiter(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList matrixCommand(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList matrixEnvironment(KLatexAst2Omml&, const KLatexEnv&);
KOmmlNodeList casesEnvironment(KLatexAst2Omml&, const KLatexEnv&);
KOmmlNodeList alignEnvironment(KLatexAst2Omml&, const KLatexEnv&);
KOmmlNodeList gatheredEnvironment(KLatexAst2Omml&, const KLatexEnv&);
KOmmlNodeList equationArrayEnvironment(KLatexAst2Omml&, const KLatexEnv&);
KOmmlNodeList displayEnvironment(KLatexAst2Omml&, const KLatexEnv&);
// The fallback for an environment the table does not list.
KOmmlNodeList unknownEnvironment(KLatexAst2Omml&, const KLatexEnv&);
KOmmlNodeList substack(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList middleDelimiter(KLatexAst2Omml&, const KLatexCommand&);
// The argument of a \middle without the groups around it (null when there is none), and the
// fence character the delimiter map gives it (null when the map does not know it).
struct KMiddleFence {
    const KLatexNode* node = nullptr;
    const QString* character = nullptr;
};
KMiddleFence middleFence(const KLatexCommand& command);

// Text, style and spacing (text_style.cpp)
KOmmlNodeList mathFont(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList textFont(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList textScript(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList letterCase(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList color(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList colorBox(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList box(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList space(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList modulo(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList phantom(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList framedBox(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList enclosure(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList unicodeCharacter(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList equationLabel(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList spannedCell(KLatexAst2Omml&, const KLatexCommand&);

// Notations around an argument (notations.cpp)
KOmmlNodeList bracketed(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList partialFrame(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList circled(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList visibleContent(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList uprightName(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList linkText(KLatexAst2Omml&, const KLatexCommand&);

// Running text: accents on letters, verbatim text (text_mode.cpp)
KOmmlNodeList textAccent(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList verbatim(KLatexAst2Omml&, const KLatexCommand&);

// Chemistry (chemistry.cpp)
KOmmlNodeList chemicalFormula(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList physicalUnit(KLatexAst2Omml&, const KLatexCommand&);

// Decorations (decorations.cpp)
KOmmlNodeList accent(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList underAccent(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList bar(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList negation(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList cancel(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList overGroup(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList underGroup(KLatexAst2Omml&, const KLatexCommand&);
KOmmlNodeList labelledBrace(KLatexAst2Omml&, const KLatexScript&);
KOmmlNodeList extensibleArrow(KLatexAst2Omml&, const KLatexCommand&);

// Colour pass over a finished subtree (colour.cpp): paints every run and every
// structure's control properties in the colour a QColor name denotes.
void applyColour(KOmmlNode& node, const QString& colourName);
