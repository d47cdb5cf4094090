// Placeholder until the colour pass is implemented.
#include "latex2omml/handlers.h"

void applyColour(KOmmlNode&, const QString&)
{
}
