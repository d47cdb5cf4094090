"""A new document from text with formulas: minimal, valid, its equations readable."""

from __future__ import annotations

import json
import os
import zipfile
from pathlib import Path

from conftest import run, validate

TEXT = """# Notes

Energy $E = mc^2$ and a price of \\$3.

$$\\int_0^1 x\\,dx$$

A broken $\\frac{1$ one stays text.
"""


def test_document_from_text(tmp_path: Path):
    source, target = tmp_path / "notes.md", tmp_path / "notes.docx"
    source.write_text(TEXT, encoding="utf-8")
    result = run("docx", str(source), str(target))
    assert result.returncode == 0, result.stderr
    assert "left as text" in result.stderr
    umask = os.umask(0)
    os.umask(umask)
    assert target.stat().st_mode & 0o777 == 0o666 & ~umask, "permissions like any new file"
    archive = zipfile.ZipFile(target)
    assert archive.namelist() == ["[Content_Types].xml", "_rels/.rels", "word/document.xml"]
    body = archive.read("word/document.xml")
    validate(body, tmp_path)
    assert "\\$3" in body.decode("utf-8") and "\\frac{1" in body.decode("utf-8")
    records = [json.loads(line) for line in run("docx2latex", str(target)).stdout.splitlines()]
    assert [(r["paragraph"], r["display"]) for r in records] == [(2, False), (3, True)]
    assert records[0]["latex"].replace(" ", "") == "E=mc^2"


def test_document_from_standard_input(tmp_path: Path):
    target = tmp_path / "stdin.docx"
    assert run("docx", "-", str(target), stdin="just $a+b$\n").returncode == 0
    assert run("docx2latex", "--text", str(target)).stdout == "a+b\n"
