"""LaTeX typed into a document's text becomes native equations, and nothing else changes."""

from __future__ import annotations

import hashlib
import json
import re
import zipfile
from pathlib import Path

import pytest

from conftest import run, validate

# (paragraph runs as typed, formulas found as (display, LaTeX))
PARAGRAPHS = [
    (["Inline $x^2+1$ and \\(\\frac{a}{b}\\) cost \\$5."], [(False, "x^2+1"), (False, "\\frac{a}{b}")]),
    (["Split $\\al", "pha_", "1$ across runs"], [(False, "\\alpha_1")]),
    (["$$\\sum_{i=1}^n i$$"], [(True, "\\sum_{i=1}^n i")]),
    (["\\[\\sqrt{2}\\]"], [(True, "\\sqrt{2}")]),
    (["Prices \\$3 and \\$4 stay text"], []),
    (["Non-BMP $\U0001D4D0 + 1$"], [(False, "\U0001D4D0 + 1")]),
]
BROKEN = "bad $\\frac{a$ stays"


def make_document(docx, path: Path) -> None:
    document = docx.Document()
    document.add_heading("Formulas", level=1)
    for runs, _ in PARAGRAPHS:
        paragraph = document.add_paragraph()
        for i, text in enumerate(runs):
            run_ = paragraph.add_run(text)
            run_.bold = i == 1  # runs with different properties, as Word splits them
    document.add_paragraph(BROKEN)
    table = document.add_table(rows=1, cols=1)
    table.cell(0, 0).text = "In a table $y_2$"
    document.sections[0].header.paragraphs[0].text = "Header $h^2$"
    document.save(str(path))


def expected():
    formulas = [f for _, found in PARAGRAPHS for f in found]
    return formulas + [(False, "y_2"), (False, "h^2")]


def test_typed_latex_becomes_equations(docx_module, tmp_path: Path):
    source, target = tmp_path / "in.docx", tmp_path / "out.docx"
    make_document(docx_module, source)
    before = hashlib.sha256(source.read_bytes()).hexdigest()

    result = run("latex2docx", str(source), str(target))
    assert result.returncode == 0, result.stderr
    assert hashlib.sha256(source.read_bytes()).hexdigest() == before, "the input changed"
    # The broken formula is reported with its diagnostics and left as text.
    assert "left as text" in result.stderr and "E_missing_rbrace" in result.stderr

    out = zipfile.ZipFile(target)
    body = out.read("word/document.xml").decode("utf-8")
    assert len(re.findall(r"<m:oMathPara[ >]", body)) == 2
    assert len(re.findall(r"<m:oMath[ >]", body)) == len(expected()) - 1  # one is in the header
    assert "\\$5" in body and "\\$3 and \\$4" in body
    assert BROKEN in body
    assert "$x^2" not in body and "\\[" not in body
    validate(out.read("word/document.xml"), tmp_path)


def test_untouched_parts_are_copied_as_stored(docx_module, tmp_path: Path):
    source, target = tmp_path / "in.docx", tmp_path / "out.docx"
    make_document(docx_module, source)
    assert run("latex2docx", str(source), str(target)).returncode == 0
    original = {i.filename: i for i in zipfile.ZipFile(source).infolist()}
    copied = {i.filename: i for i in zipfile.ZipFile(target).infolist()}
    assert list(original) == list(copied)
    changed = {"word/document.xml"} | {n for n in original if re.match(r"word/header\d*\.xml$", n)}
    for name, info in original.items():
        if name in changed:
            continue
        assert (copied[name].CRC, copied[name].compress_size, copied[name].compress_type) == \
            (info.CRC, info.compress_size, info.compress_type), name
        assert zipfile.ZipFile(target).read(name) == zipfile.ZipFile(source).read(name)


def test_dry_run_lists_and_writes_nothing(docx_module, tmp_path: Path):
    source, target = tmp_path / "in.docx", tmp_path / "out.docx"
    make_document(docx_module, source)
    result = run("latex2docx", "--dry-run", str(source), str(target))
    assert result.returncode == 0, result.stderr
    assert not target.exists()
    lines = result.stdout.splitlines()
    assert len(lines) == len(expected())
    assert lines[0] == "word/document.xml paragraph 2: inline: x^2+1"
    assert any("display: \\sqrt{2}" in line for line in lines)


def test_equations_read_back_convert_to_the_same_omml(docx_module, tmp_path: Path):
    source, target = tmp_path / "in.docx", tmp_path / "out.docx"
    make_document(docx_module, source)
    assert run("latex2docx", str(source), str(target)).returncode == 0
    result = run("docx2latex", str(target))
    assert result.returncode == 0, result.stderr
    records = [json.loads(line) for line in result.stdout.splitlines()]
    # Reading order: body paragraphs and the table, then the header.
    assert [r["part"] for r in records][-1] == "word/header1.xml"
    assert [(r["display"]) for r in records] == [d for d, _ in expected()]
    for record, (_, latex) in zip(records, expected()):
        again = run("latex2omml", record["latex"]).stdout
        original = run("latex2omml", latex).stdout
        assert again == original, (record["latex"], latex)
    text = run("docx2latex", "--text", str(target)).stdout.splitlines()
    assert text == [r["latex"] for r in records]


def test_document_without_equations_is_exit_1(docx_module, tmp_path: Path):
    path = tmp_path / "plain.docx"
    document = docx_module.Document()
    document.add_paragraph("no formulas here")
    document.save(str(path))
    result = run("docx2latex", str(path))
    assert result.returncode == 1 and result.stdout == ""


@pytest.mark.parametrize("args", [["docx2latex"], ["latex2docx", "only-one.docx"], ["docx2latex", "--bogus", "x"],
                                  ["docx2latex", "/nonexistent/x.docx"]])
def test_usage_errors(args):
    assert run(*args).returncode == 2
