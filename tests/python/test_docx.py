"""The README's recipe: an equation put into a .docx with python-docx, read back."""

from __future__ import annotations

import zipfile
from pathlib import Path

import pytest

import formulaconv

docx = pytest.importorskip("docx", reason="python3-docx is not installed")


def test_equation_in_a_word_document(tmp_path: Path):
    from docx.oxml import parse_xml

    document = docx.Document()
    document.add_paragraph("The solutions of ax² + bx + c = 0 are")
    latex = r"x = \frac{-b \pm \sqrt{b^2-4ac}}{2a}"
    omml = formulaconv.latex_to_omml(latex)
    paragraph = document.add_paragraph()
    # The equation declares the prefixes it uses and parses on its own.
    paragraph._p.append(parse_xml(omml))
    path = tmp_path / "quadratic.docx"
    document.save(str(path))

    body = zipfile.ZipFile(path).read("word/document.xml").decode("utf-8")
    paragraph_xml = formulaconv.extract_math_paragraph(body)
    assert "<m:f>" in paragraph_xml and "<m:rad>" in paragraph_xml
    # The equation read back from the document converts to the same LaTeX as the original.
    assert formulaconv.omml_to_latex(paragraph_xml) == formulaconv.omml_to_latex(omml)
