"""Damaged and hostile packages give a one-line reason and exit status 1, never a crash."""

from __future__ import annotations

import struct
import warnings
import zipfile
from pathlib import Path

import pytest

from conftest import run

BODY = (b'<?xml version="1.0" encoding="UTF-8"?>'
        b'<w:document xmlns:w="http://schemas.openxmlformats.org/wordprocessingml/2006/main">'
        b'<w:body><w:p><w:r><w:t>$x$</w:t></w:r></w:p></w:body></w:document>')


def write(path: Path, entries, compression=zipfile.ZIP_DEFLATED) -> Path:
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")  # duplicate names on purpose
        with zipfile.ZipFile(path, "w", compression) as archive:
            for name, data in entries:
                archive.writestr(name, data)
    return path


def bomb(path: Path) -> Path:
    """A 100 MiB body of zeros that deflates to about 100 KiB."""
    with zipfile.ZipFile(path, "w", zipfile.ZIP_DEFLATED) as archive:
        with archive.open("word/document.xml", "w", force_zip64=True) as part:
            chunk = b"\0" * (1 << 20)
            for _ in range(100):
                part.write(chunk)
    return path


def lying_bomb(path: Path) -> Path:
    """The bomb with its expanded sizes in both headers rewritten to claim 1 KiB."""
    data = bytearray(write(path, [("word/document.xml", b"<" * (80 << 20))]).read_bytes())
    for signature, offset in ((b"PK\x03\x04", 22), (b"PK\x01\x02", 24)):
        at = data.find(signature)
        struct.pack_into("<I", data, at + offset, 1024)
    path.write_bytes(bytes(data))
    return path


CASES = {
    "zip bomb": lambda p: bomb(p),
    "sizes in the headers lie": lambda p: lying_bomb(p),
    "parent directory name": lambda p: write(p, [("../evil.xml", b"x"), ("word/document.xml", BODY)]),
    "absolute name": lambda p: write(p, [("/etc/evil.xml", b"x"), ("word/document.xml", BODY)]),
    "duplicate entries": lambda p: write(p, [("word/document.xml", BODY), ("word/document.xml", BODY)]),
    "broken XML": lambda p: write(p, [("word/document.xml", BODY[:-20])]),
    "no document part": lambda p: write(p, [("word/other.xml", BODY)]),
    "not a zip archive": lambda p: (p.write_bytes(b"PK\x03\x04 truncated" * 10), p)[1],
    "empty file": lambda p: (p.write_bytes(b""), p)[1],
}


@pytest.mark.parametrize("name", sorted(CASES))
@pytest.mark.parametrize("command", ["docx2latex", "latex2docx"])
def test_hostile_package(name: str, command: str, tmp_path: Path):
    source = CASES[name](tmp_path / "hostile.docx")
    target = tmp_path / "out.docx"
    args = [command, str(source)] + ([str(target)] if command == "latex2docx" else [])
    result = run(*args)
    assert result.returncode == 1, (result.returncode, result.stderr)
    assert result.stdout == ""
    reason = result.stderr.strip()
    assert reason.startswith(f"formulaconv: {command}: ") and "\n" not in reason, reason
    assert not target.exists()
    assert [p.name for p in tmp_path.iterdir()] == ["hostile.docx"], "a temporary file was left behind"


def test_valid_counterpart_is_accepted(tmp_path: Path):
    """The same small package without the fault converts, so the cases above fail for their fault."""
    source = write(tmp_path / "fine.docx", [("word/document.xml", BODY)])
    assert run("latex2docx", str(source), str(tmp_path / "out.docx")).returncode == 0
    assert run("docx2latex", "--text", str(tmp_path / "out.docx")).stdout == "x\n"
