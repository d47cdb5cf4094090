/* formulaconv C interface: LaTeX <-> OMML conversion and SVG rendering for hosts that are
 * not Qt C++ programs (C, Python through ctypes, Rust, Go, ...).
 *
 * Text in and out is UTF-8. Inputs are a pointer and a length in bytes (no terminating NUL
 * needed; a NULL pointer with length 0 is the empty text). Invalid UTF-8 is decoded with
 * replacement characters. Every function returning char* hands the caller a new
 * NUL-terminated string that must be released with formulaconv_free(), never with free().
 * An operation that cannot produce a result returns an empty string ""; NULL is returned only
 * when memory ran out or the arguments are unusable (NULL text with a non-zero length).
 *
 * Every function may be called from any thread, also concurrently, and none lets a C++
 * exception escape.
 *
 * Rendering needs a Qt GUI application object. When the process has no Qt application, the
 * first render call creates one on the "offscreen" platform, on a thread of the library's own
 * that lives until the process ends; the caller does not create one. A process that already
 * runs a Qt application uses it; if that is a QCoreApplication without GUI, the render
 * functions return "".
 */
#ifndef FORMULACONV_H
#define FORMULACONV_H

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

#if defined(__GNUC__)
#define FORMULACONV_API __attribute__((visibility("default")))
#else
#define FORMULACONV_API
#endif

/* The library version, e.g. "0.1.0"; a static string, not to be freed. */
FORMULACONV_API const char* formulaconv_version(void);

/* LaTeX math source -> one m:oMathPara element. */
FORMULACONV_API char* formulaconv_latex_to_omml(const char* latex, size_t length);
/* OMML (an m:oMathPara element) -> LaTeX source. */
FORMULACONV_API char* formulaconv_omml_to_latex(const char* omml, size_t length);
/* LaTeX -> a standalone SVG document; font_size is the base size in points. */
FORMULACONV_API char* formulaconv_latex_to_svg(const char* latex, size_t length, double font_size);
/* OMML -> a standalone SVG document. */
FORMULACONV_API char* formulaconv_omml_to_svg(const char* omml, size_t length, double font_size);
/* The first m:oMathPara element of a larger XML text, or "". */
FORMULACONV_API char* formulaconv_extract_math_paragraph(const char* text, size_t length);
/* A one-paragraph Word 2003 XML document around an OMML fragment. */
FORMULACONV_API char* formulaconv_wrap_in_word_document(const char* omml, size_t length);

/* The diagnostics of lexing and parsing LaTeX as a JSON array, "[]" when there are none:
 * [{"severity":2,"pos":5,"length":1,"code":"E_missing_rbrace","message":"..."}]
 * severity is 1 warning, 2 error, 3 fatal; pos and length count UTF-16 code units. */
FORMULACONV_API char* formulaconv_lint_json(const char* latex, size_t length);

/* Releases a string returned by this library; NULL is allowed. */
FORMULACONV_API void formulaconv_free(char* text);

#ifdef __cplusplus
}
#endif

#endif /* FORMULACONV_H */
