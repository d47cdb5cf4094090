"""The OMML the converter writes validates against the ISO/IEC 29500 schemas in tests/data.

Every formula of the corpus and every fuzz seed is converted, and all equations are put, one
paragraph a line, into one WordprocessingML document that xmllint validates in a single call;
an error's line number names the formula it came from.
"""

from __future__ import annotations

import json
import os
import re
import shutil
import subprocess
from pathlib import Path

import pytest

CLI = os.environ.get("FORMULACONV_CLI", "")
SOURCE = Path(os.environ.get("FC_SOURCE_DIR", Path(__file__).resolve().parents[2]))
SCHEMAS = SOURCE / "tests/data/schemas/ooxml/ISO-IEC29500-4_2016"
CORPUS = SOURCE / "tests/data/corpus"
SEEDS = SOURCE / "fuzz/seeds"

MATH_NS = "http://schemas.openxmlformats.org/officeDocument/2006/math"
WORD_NS = "http://schemas.openxmlformats.org/wordprocessingml/2006/main"
ERROR_LINE = re.compile(r"^(?P<file>.*?):(?P<line>\d+): (?P<message>.*)$")
# The document's lines before the first paragraph.
HEADER_LINES = 1


def xmllint() -> str:
    path = shutil.which("xmllint")
    if not path:
        pytest.skip("xmllint (libxml2-utils) is not installed")
    return path


def batch(op: str, inputs: list[str]) -> list[str]:
    """Runs `formulaconv batch OP --jsonl` over the inputs; the outputs in input order."""
    assert CLI, "FORMULACONV_CLI names the formulaconv tool"
    request = "".join(json.dumps({"input": text}) + "\n" for text in inputs)
    result = subprocess.run([CLI, "batch", op, "--jsonl", "--jobs", "2"], input=request, capture_output=True,
                            text=True, timeout=1200)
    assert result.returncode == 0, result.stderr[-2000:]
    outputs = [json.loads(line) for line in result.stdout.splitlines() if line.strip()]
    assert len(outputs) == len(inputs), f"{len(outputs)} results for {len(inputs)} inputs"
    return [o.get("output", "") for o in outputs]


def invalid_paragraphs(paragraphs: list[str], tmp_path: Path) -> dict[int, list[str]]:
    """Index of each paragraph that does not validate -> xmllint's messages about it."""
    document = tmp_path / "equations.xml"
    with document.open("w", encoding="utf-8") as out:
        out.write(f'<w:document xmlns:w="{WORD_NS}" xmlns:m="{MATH_NS}"><w:body>\n')
        for paragraph in paragraphs:
            out.write("<w:p>" + paragraph.replace("\n", "&#10;") + "</w:p>\n")
        out.write("</w:body></w:document>\n")
    # --huge: the fuzz seeds nest deeper than libxml2's default limit.
    result = subprocess.run([xmllint(), "--huge", "--noout", "--schema", str(SCHEMAS / "wml.xsd"),
                             str(document)], capture_output=True, text=True)
    failures: dict[int, list[str]] = {}
    for line in result.stderr.splitlines():
        match = ERROR_LINE.match(line)
        if not match or not match.group("file").endswith("equations.xml"):
            continue
        index = int(match.group("line")) - HEADER_LINES - 1
        failures.setdefault(index, []).append(match.group("message"))
    if result.returncode != 0:
        assert failures or "validates" in result.stderr, result.stderr[-3000:]
    return failures


def report(inputs: list[str], failures: dict[int, list[str]]) -> str:
    shown = []
    for index in sorted(failures)[:10]:
        shown.append(f"{inputs[index][:200]!r}: {failures[index][0][:300]}")
    return f"{len(failures)} of {len(inputs)} do not validate:\n" + "\n".join(shown)


def corpus_formulas() -> list[str]:
    files = sorted(CORPUS.glob("*-formulas.txt"))
    assert files, f"no formula files in {CORPUS}"
    formulas = []
    for path in files:
        formulas += [line for line in path.read_text(encoding="utf-8").splitlines() if line.strip()]
    return formulas


def seed_text(path: Path) -> str:
    data = path.read_bytes()
    # A render seed's first byte picks the font size; the rest is the formula.
    if path.name.startswith("render_"):
        data = data[1:]
    return data.decode("utf-8", errors="replace")


def test_every_corpus_formula_validates(tmp_path):
    formulas = corpus_formulas()
    paragraphs = batch("latex2omml", formulas)
    written = [i for i, p in enumerate(paragraphs) if p]
    assert len(written) == len(formulas), f"{len(formulas) - len(written)} formulas gave no OMML"
    failures = invalid_paragraphs(paragraphs, tmp_path)
    assert not failures, report(formulas, failures)


def test_every_fuzz_seed_validates(tmp_path):
    seeds = sorted(p for p in SEEDS.iterdir() if p.is_file())
    assert seeds, f"no seeds in {SEEDS}"
    latex = [seed_text(p) for p in seeds if p.suffix == ".txt" and "_omml_" not in p.name]
    omml = [seed_text(p) for p in seeds if p.suffix == ".xml" or "_omml_" in p.name]
    # OMML seeds go through LaTeX and back, so that the writer writes what the reader took in.
    inputs = latex + omml
    paragraphs = batch("latex2omml", latex) + batch("latex2omml", batch("omml2latex", omml))
    kept = [(text, p) for text, p in zip(inputs, paragraphs) if p]
    assert len(kept) >= len(latex), "most seeds convert"
    failures = invalid_paragraphs([p for _, p in kept], tmp_path)
    assert not failures, report([t for t, _ in kept], failures)
