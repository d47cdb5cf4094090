"""Finds libformulaconv_c and declares the C functions for ctypes."""

from __future__ import annotations

import ctypes
import os
from pathlib import Path
from typing import List, Optional

SONAME = "libformulaconv_c.so.1"


def _candidates() -> List[str]:
    """Where the library may be, in the order tried.

    FORMULACONV_LIBRARY names the library file itself; FORMULACONV_BUILD_DIR a build
    folder. Then the folders above this package: an installed prefix keeps the package
    under PREFIX/lib/python3/dist-packages, and the source tree keeps it next to build/.
    Last, the system's loader (LD_LIBRARY_PATH, the ldconfig cache).
    """
    found: List[str] = []
    explicit = os.environ.get("FORMULACONV_LIBRARY")
    if explicit:
        return [explicit]
    build = os.environ.get("FORMULACONV_BUILD_DIR")
    if build:
        found.append(str(Path(build) / SONAME))
    here = Path(__file__).resolve().parent
    for ancestor in list(here.parents)[:4]:
        found.append(str(ancestor / SONAME))
        found.append(str(ancestor / "build" / SONAME))
    found.append(SONAME)
    return found


def _load() -> ctypes.CDLL:
    errors: List[str] = []
    for candidate in _candidates():
        if os.sep in candidate and not os.path.exists(candidate):
            continue
        try:
            return ctypes.CDLL(candidate)
        except OSError as error:
            errors.append(f"{candidate}: {error}")
    raise ImportError(
        f"formulaconv: cannot load {SONAME}; install the libraries, or set "
        f"FORMULACONV_LIBRARY to the library file or FORMULACONV_BUILD_DIR to a build folder"
        + ("".join("\n  " + e for e in errors))
    )


def _declare(lib: ctypes.CDLL) -> ctypes.CDLL:
    text = [ctypes.c_char_p, ctypes.c_size_t]
    for name in (
        "formulaconv_latex_to_omml",
        "formulaconv_omml_to_latex",
        "formulaconv_extract_math_paragraph",
        "formulaconv_wrap_in_word_document",
        "formulaconv_lint_json",
    ):
        function = getattr(lib, name)
        function.argtypes = text
        # A void pointer, not c_char_p: the buffer must stay ours to free.
        function.restype = ctypes.c_void_p
    for name in ("formulaconv_latex_to_svg", "formulaconv_omml_to_svg"):
        function = getattr(lib, name)
        function.argtypes = text + [ctypes.c_double]
        function.restype = ctypes.c_void_p
    lib.formulaconv_free.argtypes = [ctypes.c_void_p]
    lib.formulaconv_free.restype = None
    lib.formulaconv_version.argtypes = []
    lib.formulaconv_version.restype = ctypes.c_char_p
    return lib


_lib: Optional[ctypes.CDLL] = None


def library() -> ctypes.CDLL:
    """The loaded C library (loaded on first use)."""
    global _lib
    if _lib is None:
        _lib = _declare(_load())
    return _lib
