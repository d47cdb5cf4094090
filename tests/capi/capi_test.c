/* The C library as a C host uses it: every operation, the empty and unusable inputs,
 * text outside the Basic Multilingual Plane, lint as JSON, rendering with no Qt
 * application created by the host, and many threads against one. Exit 0 when all pass. */

#include <formulaconv/formulaconv.h>

#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static int failures = 0;

#define CHECK(cond)                                                                                          \
    do {                                                                                                     \
        if (!(cond)) {                                                                                       \
            fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__, __LINE__, #cond);                         \
            ++failures;                                                                                      \
        }                                                                                                    \
    } while (0)

static int contains(const char* text, const char* part)
{
    return text != NULL && strstr(text, part) != NULL;
}

typedef char* (*TextOperation)(const char*, size_t);

/* One row per text operation: an input, a fragment its result must hold. */
struct Row {
    const char* name;
    TextOperation operation;
    const char* input;
    const char* expected;
};

static const char kOmml[] =
    "<m:oMathPara xmlns:m=\"http://schemas.openxmlformats.org/officeDocument/2006/math\">"
    "<m:oMath><m:f><m:num><m:r><m:t>1</m:t></m:r></m:num><m:den><m:r><m:t>2</m:t></m:r>"
    "</m:den></m:f></m:oMath></m:oMathPara>";

static const struct Row kRows[] = {
    {"latex_to_omml", formulaconv_latex_to_omml, "\\frac12", "<m:f>"},
    {"omml_to_latex", formulaconv_omml_to_latex, kOmml, "\\frac{1}{2}"},
    {"extract", formulaconv_extract_math_paragraph, "<w:p>x</w:p><m:oMathPara>y</m:oMathPara>",
     "<m:oMathPara>y</m:oMathPara>"},
    {"wrap", formulaconv_wrap_in_word_document, "<m:oMath/>", "<w:p><m:oMath/></w:p>"},
    {"lint", formulaconv_lint_json, "\\frac{", "\"code\":\"E_missing_rbrace\""},
};

static void test_rows(void)
{
    size_t i;
    for (i = 0; i < sizeof kRows / sizeof kRows[0]; ++i) {
        char* out = kRows[i].operation(kRows[i].input, strlen(kRows[i].input));
        if (!contains(out, kRows[i].expected)) {
            fprintf(stderr, "%s: expected %s in %s\n", kRows[i].name, kRows[i].expected,
                    out ? out : "(null)");
            ++failures;
        }
        formulaconv_free(out);
        /* A NULL pointer with a length is unusable; with length 0 it is the empty text. */
        CHECK(kRows[i].operation(NULL, 3) == NULL);
        out = kRows[i].operation(NULL, 0);
        CHECK(out != NULL);
        formulaconv_free(out);
    }
}

static void test_empty_inputs(void)
{
    char* out;
    out = formulaconv_latex_to_omml("", 0);
    CHECK(out && out[0] == '\0');
    formulaconv_free(out);
    out = formulaconv_omml_to_latex("not xml <", 9);
    CHECK(out && out[0] == '\0');
    formulaconv_free(out);
    out = formulaconv_latex_to_svg("", 0, 12);
    CHECK(out && out[0] == '\0');
    formulaconv_free(out);
    out = formulaconv_lint_json("x", 1);
    CHECK(out && strcmp(out, "[]") == 0);
    formulaconv_free(out);
    /* The length, not a NUL, ends the input. */
    out = formulaconv_latex_to_omml("xy", 1);
    CHECK(contains(out, "<m:t>x</m:t>") && !contains(out, "y"));
    formulaconv_free(out);
    formulaconv_free(NULL);
}

static void test_non_bmp(void)
{
    /* U+1D4D0 MATHEMATICAL BOLD SCRIPT CAPITAL A, four bytes of UTF-8 that LaTeX has no
       command for, round trip as it is. */
    const char latex[] = "\xF0\x9D\x93\x90+1";
    char* omml = formulaconv_latex_to_omml(latex, strlen(latex));
    char* back;
    CHECK(contains(omml, "\xF0\x9D\x93\x90"));
    back = formulaconv_omml_to_latex(omml, strlen(omml));
    CHECK(contains(back, "\xF0\x9D\x93\x90"));
    formulaconv_free(back);
    formulaconv_free(omml);
}

static void test_render_without_application(void)
{
    char* svg = formulaconv_latex_to_svg("\\frac12", 7, 12);
    char* omml = formulaconv_latex_to_omml("\\sqrt{x}", 8);
    char* svg2 = formulaconv_omml_to_svg(omml, strlen(omml), 20);
    CHECK(contains(svg, "<svg") && contains(svg, "</svg>"));
    CHECK(contains(svg2, "<svg"));
    formulaconv_free(svg);
    formulaconv_free(svg2);
    formulaconv_free(omml);
}

static void test_version(void)
{
    const char* version = formulaconv_version();
    CHECK(version != NULL && version[0] >= '0' && version[0] <= '9' && strchr(version, '.'));
}

#define kThreads 8
#define kRounds 20
static const char* const kFormulas[] = {"\\frac12", "x^2+y_1", "\\sqrt[3]{a}", "\\sum_{i=1}^n i",
                                        "\\left(\\begin{matrix}a&b\\\\c&d\\end{matrix}\\right)"};
#define kFormulaCount (sizeof kFormulas / sizeof kFormulas[0])
static char* expected_omml[kFormulaCount];
static char* expected_svg[kFormulaCount];

static void* convert_many(void* arg)
{
    long mismatches = 0;
    int round;
    size_t i;
    (void)arg;
    for (round = 0; round < kRounds; ++round) {
        for (i = 0; i < kFormulaCount; ++i) {
            char* omml = formulaconv_latex_to_omml(kFormulas[i], strlen(kFormulas[i]));
            char* svg =
                round % 5 == 0 ? formulaconv_latex_to_svg(kFormulas[i], strlen(kFormulas[i]), 12) : NULL;
            mismatches += !omml || strcmp(omml, expected_omml[i]) != 0;
            mismatches += svg && strcmp(svg, expected_svg[i]) != 0;
            formulaconv_free(omml);
            formulaconv_free(svg);
        }
    }
    return (void*)mismatches;
}

static void test_threads(void)
{
    pthread_t threads[kThreads];
    size_t i;
    for (i = 0; i < kFormulaCount; ++i) {
        expected_omml[i] = formulaconv_latex_to_omml(kFormulas[i], strlen(kFormulas[i]));
        expected_svg[i] = formulaconv_latex_to_svg(kFormulas[i], strlen(kFormulas[i]), 12);
        CHECK(contains(expected_omml[i], "<m:oMath ") && contains(expected_svg[i], "<svg"));
    }
    for (i = 0; i < kThreads; ++i)
        CHECK(pthread_create(&threads[i], NULL, convert_many, NULL) == 0);
    for (i = 0; i < kThreads; ++i) {
        void* mismatches = NULL;
        pthread_join(threads[i], &mismatches);
        CHECK(mismatches == NULL);
    }
    for (i = 0; i < kFormulaCount; ++i) {
        formulaconv_free(expected_omml[i]);
        formulaconv_free(expected_svg[i]);
    }
}

int main(void)
{
    /* Rendering first: the library must start its own application before anything else. */
    test_render_without_application();
    test_version();
    test_rows();
    test_empty_inputs();
    test_non_bmp();
    test_threads();
    if (failures)
        fprintf(stderr, "%d checks failed\n", failures);
    else
        printf("capi: all checks passed\n");
    return failures ? 1 : 0;
}
