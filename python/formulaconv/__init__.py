"""LaTeX <-> OMML (Office Math Markup Language) conversion and SVG rendering.

Every function takes and returns ``str``. A conversion that cannot produce a result
returns ``""`` (the library repairs malformed LaTeX rather than failing; use :func:`lint`
to see what it repaired). Input that is not ``str`` raises ``TypeError``; text holding a
NUL character raises ``ValueError``. All functions may be called from many threads at once; ctypes
releases the GIL for the length of each call, so threads convert in parallel.
"""

from __future__ import annotations

import ctypes
import json
from dataclasses import dataclass
from typing import Callable, List

from ._library import library

__all__ = [
    "Diagnostic",
    "latex_to_omml",
    "omml_to_latex",
    "latex_to_svg",
    "omml_to_svg",
    "extract_math_paragraph",
    "wrap_in_word_document",
    "lint",
    "library_version",
]

__version__ = "0.1.0"


@dataclass(frozen=True)
class Diagnostic:
    """One finding of the LaTeX lexer or parser.

    ``severity`` is 1 (warning), 2 (error) or 3 (fatal); ``pos`` and ``length`` count
    UTF-16 code units of the input (a character outside the Basic Multilingual Plane
    counts two).
    """

    severity: int
    pos: int
    length: int
    code: str
    message: str


def _call(function: Callable[..., int], text: str, *extra: float) -> str:
    if not isinstance(text, str):
        raise TypeError(f"expected str, not {type(text).__name__}")
    if "\0" in text:
        # Results come back NUL-terminated, so a NUL inside the text cannot pass through.
        raise ValueError("formulaconv: the text contains a NUL character")
    data = text.encode("utf-8")
    pointer = function(data, len(data), *extra)
    if not pointer:
        raise MemoryError("formulaconv: the library could not allocate its result")
    try:
        return ctypes.string_at(pointer).decode("utf-8")
    finally:
        library().formulaconv_free(pointer)


def latex_to_omml(latex: str) -> str:
    """LaTeX math source -> one ``m:oMathPara`` element (``""`` for empty input)."""
    return _call(library().formulaconv_latex_to_omml, latex)


def omml_to_latex(omml: str) -> str:
    """An ``m:oMathPara`` element -> LaTeX source (``""`` when it cannot be read)."""
    return _call(library().formulaconv_omml_to_latex, omml)


def latex_to_svg(latex: str, font_size: float = 12.0) -> str:
    """LaTeX -> a standalone SVG document at ``font_size`` points.

    An unusable size gives ``""``. No Qt application is needed: the library starts its own on the offscreen platform.
    """
    return _call(library().formulaconv_latex_to_svg, latex, float(font_size))


def omml_to_svg(omml: str, font_size: float = 12.0) -> str:
    """An ``m:oMathPara`` element -> a standalone SVG document at ``font_size`` points."""
    return _call(library().formulaconv_omml_to_svg, omml, float(font_size))


def extract_math_paragraph(text: str) -> str:
    """The first ``m:oMathPara`` element of a larger XML text, or ``""``."""
    return _call(library().formulaconv_extract_math_paragraph, text)


def wrap_in_word_document(omml: str) -> str:
    """A one-paragraph Word 2003 XML (clipboard) document around an OMML fragment."""
    return _call(library().formulaconv_wrap_in_word_document, omml)


def lint(latex: str) -> List[Diagnostic]:
    """The diagnostics of lexing and parsing ``latex``, in the order recorded."""
    return [Diagnostic(**entry) for entry in json.loads(_call(library().formulaconv_lint_json, latex))]


def library_version() -> str:
    """The version of the loaded C library."""
    return library().formulaconv_version().decode("ascii")
