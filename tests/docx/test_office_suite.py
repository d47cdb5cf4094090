"""Documents through LibreOffice: one it wrote goes through latex2docx, and what we write
opens there with every formula as a formula object."""

from __future__ import annotations

import re
import subprocess
import zipfile
from pathlib import Path

from conftest import require_tool, run, validate

FORMULAS = [(False, "a^2+b^2=c^2"), (False, "\\frac{1}{2}"), (True, "\\sum_{k=1}^{n} k")]

FODT = """<?xml version="1.0" encoding="UTF-8"?>
<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0"
  xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0" office:version="1.2"
  office:mimetype="application/vnd.oasis.opendocument.text">
<office:body><office:text>
<text:p>Pythagoras: $a^2+b^2=c^2$ and a half \\(\\frac{1}{2}\\).</text:p>
<text:p>$$\\sum_{k=1}^{n} k$$</text:p>
</office:text></office:body></office:document>
"""


def convert(soffice: str, fmt: str, outdir: Path, *files: Path) -> None:
    profile = outdir / "profile"
    subprocess.run([soffice, f"-env:UserInstallation=file://{profile}", "--headless", "--convert-to", fmt,
                    "--outdir", str(outdir), *map(str, files)], check=True, capture_output=True, timeout=240)


def test_round_trip_through_libreoffice(tmp_path: Path):
    soffice = require_tool("soffice")
    source = tmp_path / "typed.fodt"
    source.write_text(FODT, encoding="utf-8")
    convert(soffice, "docx", tmp_path, source)
    written = tmp_path / "typed.docx"
    ours = tmp_path / "equations.docx"
    result = run("latex2docx", str(written), str(ours))
    assert result.returncode == 0, result.stderr
    body = zipfile.ZipFile(ours).read("word/document.xml")
    validate(body, tmp_path)

    records = run("docx2latex", "--text", str(ours)).stdout.splitlines()
    assert len(records) == len(FORMULAS)
    for latex, (_, original) in zip(records, FORMULAS):
        assert run("latex2omml", latex).stdout == run("latex2omml", original).stdout

    back = tmp_path / "back"
    back.mkdir()
    convert(soffice, "fodt", back, ours)
    opened = (back / "equations.fodt").read_text(encoding="utf-8")
    objects = re.findall(r"<draw:object\b.*?</draw:object>", opened, re.S)
    assert len(objects) == len(FORMULAS), "every formula comes back as a formula object"
    assert all("<math:math" in o or "<math " in o or "mathml" in o.lower() for o in objects)
    assert "$" not in re.sub(r"<[^>]+>", "", opened.split("<office:body>")[1])
