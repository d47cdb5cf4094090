"""Equations listed in reading order over every part that holds text."""

from __future__ import annotations

import json
import zipfile
from pathlib import Path

from conftest import run

W = 'xmlns:w="http://schemas.openxmlformats.org/wordprocessingml/2006/main"'
M = 'xmlns:m="http://schemas.openxmlformats.org/officeDocument/2006/math"'
MC = 'xmlns:mc="http://schemas.openxmlformats.org/markup-compatibility/2006"'


def math(text: str) -> str:
    return f"<m:oMath><m:r><m:t>{text}</m:t></m:r></m:oMath>"


def para(inner: str) -> str:
    return f"<w:p>{inner}</w:p>"


TEXT_BOX = ("<w:r><mc:AlternateContent><mc:Choice Requires=\"w14\"><w:drawing><w:txbxContent>"
            + para(math("t")) + "</w:txbxContent></w:drawing></mc:Choice><mc:Fallback><w:pict>"
            "<w:txbxContent>" + para(math("t")) + "</w:txbxContent></w:pict></mc:Fallback>"
            "</mc:AlternateContent></w:r>")

PARTS = {
    "word/document.xml": f"<w:document {W} {M} {MC}><w:body>"
    + para(math("a"))
    + "<w:tbl><w:tr><w:tc>" + para("<w:r><w:t>cell</w:t></w:r>" + math("b")) + "</w:tc></w:tr></w:tbl>"
    + para(TEXT_BOX)
    + para(f"<m:oMathPara>{math('d')}</m:oMathPara>")
    + "</w:body></w:document>",
    "word/footnotes.xml": f"<w:footnotes {W} {M}><w:footnote>{para(math('f'))}</w:footnote></w:footnotes>",
    "word/footer1.xml": f"<w:ftr {W} {M}>{para(math('e'))}</w:ftr>",
    "word/header2.xml": f"<w:hdr {W} {M}>{para(math('h2'))}</w:hdr>",
    "word/header10.xml": f"<w:hdr {W} {M}>{para(math('h10'))}</w:hdr>",
    "word/endnotes.xml": f"<w:endnotes {W} {M}><w:endnote>{para(math('n'))}</w:endnote></w:endnotes>",
}

# (part, paragraph, display, LaTeX) in reading order; the text box counts once, and the
# paragraph numbers count every w:p of the part, those of its fallback copy included.
EXPECTED = [
    ("word/document.xml", 1, False, "a"),
    ("word/document.xml", 2, False, "b"),
    ("word/document.xml", 4, False, "t"),
    ("word/document.xml", 6, True, "d"),
    ("word/header2.xml", 1, False, "h2"),
    ("word/header10.xml", 1, False, "h10"),
    ("word/footer1.xml", 1, False, "e"),
    ("word/footnotes.xml", 1, False, "f"),
    ("word/endnotes.xml", 1, False, "n"),
]


def test_reading_order_over_parts(tmp_path: Path):
    path = tmp_path / "parts.docx"
    with zipfile.ZipFile(path, "w") as archive:
        for name, xml in PARTS.items():
            archive.writestr(name, xml)
    result = run("docx2latex", str(path))
    assert result.returncode == 0, result.stderr
    records = [json.loads(line) for line in result.stdout.splitlines()]
    assert [(r["part"], r["paragraph"], r["display"], r["latex"]) for r in records] == EXPECTED
    # The OMML given stands alone: it converts back by itself.
    for record in records:
        assert run("omml2latex", record["omml"] if record["display"] else
                   f'<m:oMathPara {M}>{record["omml"]}</m:oMathPara>').stdout.strip() == record["latex"]
