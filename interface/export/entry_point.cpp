#include "interface/IFormulaConverterHelper.h"
#include "interface/converter_helper.h"

extern "C" IFormulaConverterHelper* GetFormulaConverterHelper()
{
    static KFormulaConverterHelper helper;
    return &helper;
}
