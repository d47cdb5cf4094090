"""Shared helpers of the Word document tests: the tool, documents made on the spot."""

from __future__ import annotations

import os
import shutil
import subprocess
from pathlib import Path

import pytest

CLI = os.environ.get("FORMULACONV_CLI", "")
SOURCE = Path(os.environ.get("FC_SOURCE_DIR", Path(__file__).resolve().parents[2]))
WML_XSD = SOURCE / "tests/data/schemas/ooxml/ISO-IEC29500-4_2016/wml.xsd"


def run(*args: str, stdin: str | None = None) -> subprocess.CompletedProcess:
    assert CLI, "FORMULACONV_CLI names the formulaconv tool"
    return subprocess.run([CLI, *args], input=stdin, capture_output=True, text=True, timeout=300)


@pytest.fixture
def docx_module():
    return pytest.importorskip("docx", reason="python3-docx is not installed")


def require_tool(name: str) -> str:
    path = shutil.which(name)
    if not path:
        pytest.skip(f"{name} is not installed")
    return path


def validate(document_xml: bytes, tmp_path: Path) -> None:
    """The body part validates against the WordprocessingML schema."""
    xmllint = require_tool("xmllint")
    assert WML_XSD.is_file(), f"missing schema {WML_XSD}"
    part = tmp_path / "validate-document.xml"
    part.write_bytes(document_xml)
    result = subprocess.run([xmllint, "--noout", "--schema", str(WML_XSD), str(part)],
                            capture_output=True, text=True)
    assert result.returncode == 0, result.stderr[-3000:]
