#pragma once
// Helpers shared by the fuzz targets.

#include <QString>

#include <cstddef>
#include <cstdint>

// The input as UTF-8 text (invalid sequences become replacement characters).
QString fuzzText(const uint8_t* data, size_t size);
// Aborts with the offending input so the fuzzer keeps it as a crash.
[[noreturn]] void fuzzFail(const char* what, const QString& input);
// Aborts unless xml is well-formed XML.
void requireWellFormed(const QString& xml, const QString& input);
// Rendering needs a QGuiApplication; the targets create one on first use and
// skip rendering when FORMULACONV_FUZZ_NO_RENDER is set (faster runs).
bool fuzzRenders();
