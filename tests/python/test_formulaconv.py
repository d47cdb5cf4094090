"""The Python package over the C library: results, errors, non-BMP text, many threads."""

from __future__ import annotations

import os
import subprocess
from concurrent.futures import ThreadPoolExecutor

import pytest

import formulaconv

OMML_HALF = (
    '<m:oMathPara xmlns:m="http://schemas.openxmlformats.org/officeDocument/2006/math">'
    "<m:oMath><m:f><m:num><m:r><m:t>1</m:t></m:r></m:num>"
    "<m:den><m:r><m:t>2</m:t></m:r></m:den></m:f></m:oMath></m:oMathPara>"
)


@pytest.mark.parametrize(
    "function, text, expected",
    [
        (formulaconv.latex_to_omml, r"\frac12", "<m:f>"),
        (formulaconv.omml_to_latex, OMML_HALF, r"\frac{1}{2}"),
        (formulaconv.latex_to_svg, r"\frac12", "<svg"),
        (formulaconv.omml_to_svg, OMML_HALF, "<svg"),
        (formulaconv.extract_math_paragraph, "<w:p/><m:oMathPara>x</m:oMathPara>z", "<m:oMathPara>x</m:oMathPara>"),
        (formulaconv.wrap_in_word_document, "<m:oMath/>", "<w:p><m:oMath/></w:p></wx:sect>"),
    ],
)
def test_operations(function, text, expected):
    assert expected in function(text)


@pytest.mark.parametrize(
    "function",
    [formulaconv.latex_to_omml, formulaconv.omml_to_latex, formulaconv.latex_to_svg, formulaconv.omml_to_svg],
)
def test_empty_input_gives_empty_result(function):
    assert function("") == ""


@pytest.mark.parametrize("omml", ["<m:oMath/>", "not xml <<", "<a><b></a>"])
def test_unreadable_omml_gives_empty(omml):
    assert formulaconv.omml_to_latex(omml) == ""
    assert formulaconv.omml_to_svg(omml) == ""


def test_wrap_of_empty_is_prefix_and_suffix():
    assert len(formulaconv.wrap_in_word_document("")) == 1552 + 42


@pytest.mark.parametrize("value", [None, b"\\frac12", 12])
def test_non_text_is_a_type_error(value):
    with pytest.raises(TypeError):
        formulaconv.latex_to_omml(value)  # type: ignore[arg-type]


def test_lone_surrogate_cannot_be_encoded():
    with pytest.raises(UnicodeEncodeError):
        formulaconv.latex_to_omml("x\ud800")


def test_unusable_font_size_gives_empty():
    assert formulaconv.latex_to_svg("x", 0) == ""


def test_lint_reports_missing_brace():
    diagnostics = formulaconv.lint(r"\frac{a")
    assert [d.code for d in diagnostics][:1] == ["E_missing_rbrace"]
    assert all(isinstance(d, formulaconv.Diagnostic) and d.severity in (1, 2, 3) for d in diagnostics)
    assert formulaconv.lint("x+1") == []


def test_lint_finds_unknown_names():
    diagnostics = formulaconv.lint(r"a+\foo")
    assert [(d.code, d.severity, d.pos, d.length) for d in diagnostics] == [("W_unknown_command", 1, 2, 4)]


def test_lint_positions_count_utf16_units():
    # U+1D400 is two UTF-16 code units, so the stray brace after it is at 2.
    diagnostics = formulaconv.lint("\U0001d400}")
    assert [(d.pos, d.length) for d in diagnostics] == [(2, 1)]


def test_non_bmp_round_trip():
    latex = "\U0001d4d0 + \U0001d7ec"  # alphabets LaTeX has no command for
    omml = formulaconv.latex_to_omml(latex)
    assert "\U0001d4d0" in omml and "\U0001d7ec" in omml
    assert "\U0001d4d0" in formulaconv.omml_to_latex(omml)


def test_nul_character_is_a_value_error():
    with pytest.raises(ValueError):
        formulaconv.wrap_in_word_document("a\0b")


def test_huge_input_converts_up_to_the_parser_item_limit():
    latex = "+".join(["x_{%d}" % i for i in range(20000)])
    omml = formulaconv.latex_to_omml(latex)
    assert omml.endswith("</m:oMathPara>")
    assert 0 < omml.count("<m:sSub>") < 20000
    assert formulaconv.lint(latex) != []


def test_many_threads_match_one():
    formulas = [r"\frac{a}{b}", r"\sqrt[3]{x}", r"\sum_{i=1}^n i^2", "\U0001d400^2", r"\left(x\right)"] * 40
    serial = [(formulaconv.latex_to_omml(f), formulaconv.latex_to_svg(f)) for f in formulas]
    with ThreadPoolExecutor(max_workers=8) as pool:
        parallel = list(pool.map(lambda f: (formulaconv.latex_to_omml(f), formulaconv.latex_to_svg(f)), formulas))
    assert parallel == serial


def test_render_in_a_fresh_process_without_qt_platform_setting():
    # The library starts its own offscreen application; no QT_QPA_PLATFORM is needed.
    env = {k: v for k, v in os.environ.items() if k != "QT_QPA_PLATFORM"}
    env.pop("DISPLAY", None)
    out = subprocess.run(
        ["/usr/bin/python3", "-c", "import formulaconv; print('<svg' in formulaconv.latex_to_svg('x'))"],
        env=env, capture_output=True, text=True, check=True,
    )
    assert out.stdout.strip() == "True"


def test_version():
    assert formulaconv.library_version() == formulaconv.__version__
