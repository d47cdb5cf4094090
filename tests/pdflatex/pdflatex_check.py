#!/usr/bin/env python3
"""LaTeX written by formulaconv, compiled by pdflatex with amsmath and amssymb.

Corpus formulas: which originals compile; whether the LaTeX that comes back from
LaTeX -> OMML -> LaTeX compiles for those; whether LaTeX -> OMML -> LaTeX -> OMML gives
the OMML of the first pass again (a fixed point); which characters the LaTeX still
holds as themselves, without a command. OMML written the way word processors write it
(tests/data/word-omml.jsonl): its LaTeX compiles, and reads back to the same LaTeX.

Many formulas go into one document, each in a display of its own after a marker
(\\typeout{@@F n}), so an error in the log belongs to the formula of the marker before
it. A run that stops early (a runaway argument eats the rest of the file, or TeX gives
up) blames the formula whose marker came last and starts again after it.

Exit status: 0 when every threshold holds, 1 when one does not, 77 when pdflatex is
missing (ctest reports the test as skipped).
"""

from __future__ import annotations

import argparse
import collections
import concurrent.futures
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

SOURCE = Path(__file__).resolve().parents[2]
PREAMBLE = "\\documentclass{article}\n\\usepackage{amsmath}\n\\usepackage{amssymb}\n\\begin{document}\n"
MARKER = re.compile(r"^@@F (\d+)$")
END_MARKER = "@@END"
# Formulas per document; TeX's own limits stay far away, and one run stays short.
CHUNK = 250
RUN_TIMEOUT = 120


# ---- formulaconv ---------------------------------------------------------------

def batch(cli: str, op: str, inputs: list[str], jsonl: bool) -> list[str]:
    """The outputs of `formulaconv batch OP` for the inputs, in order ("" when empty)."""
    if not inputs:
        return []
    if jsonl:
        text = "".join(json.dumps({"id": i, "input": s}) + "\n" for i, s in enumerate(inputs))
        args = [cli, "batch", op, "--jsonl", "--jobs", "2"]
    else:
        text = "".join(s + "\n" for s in inputs)
        args = [cli, "batch", op, "--jobs", "2"]
    result = subprocess.run(args, input=text, capture_output=True, text=True, check=True,
                            env=dict(os.environ, QT_QPA_PLATFORM="offscreen"))
    outputs = [json.loads(line) for line in result.stdout.splitlines() if line.strip()]
    if len(outputs) != len(inputs):
        raise RuntimeError(f"batch {op}: {len(outputs)} results for {len(inputs)} inputs")
    return [o.get("output", "") for o in outputs]


# ---- pdflatex ------------------------------------------------------------------

def balanced(latex: str) -> bool:
    """Whether the braces of the text pair up; an unpaired one runs past its display."""
    depth = 0
    i = 0
    while i < len(latex):
        c = latex[i]
        if c == "\\":
            i += 2
            continue
        if c == "%":
            return False  # a comment would swallow the end of the display
        if c == "{":
            depth += 1
        elif c == "}":
            depth -= 1
            if depth < 0:
                return False
        i += 1
    return depth == 0


def document(formulas: list[tuple[int, str]]) -> str:
    parts = [PREAMBLE]
    for number, latex in formulas:
        parts.append(f"\\typeout{{@@F {number}}}\n\\[\n{latex}\n\\]\n\n")
    parts.append(f"\\typeout{{{END_MARKER}}}\n\\end{{document}}\n")
    return "".join(parts)


def run_pdflatex(pdflatex: str, formulas: list[tuple[int, str]], work: Path, name: str):
    """Compiles the formulas in one document. Returns (errors by formula number, the
    numbers whose marker was seen, whether the end was reached)."""
    tex = work / f"{name}.tex"
    tex.write_text(document(formulas), encoding="utf-8")
    try:
        subprocess.run([pdflatex, "-interaction=nonstopmode", "-draftmode", "-no-shell-escape",
                        f"-output-directory={work}", str(tex)], cwd=work, stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=RUN_TIMEOUT)
    except subprocess.TimeoutExpired:
        pass
    log = work / f"{name}.log"
    errors: dict[int, list[str]] = collections.defaultdict(list)
    seen: list[int] = []
    ended = False
    current = None
    lines = log.read_text(encoding="utf-8", errors="replace").splitlines() if log.exists() else []
    for index, line in enumerate(lines):
        match = MARKER.match(line)
        if match:
            current = int(match.group(1))
            seen.append(current)
        elif line == END_MARKER:
            ended = True
            current = None
        elif line.startswith("! ") and current is not None:
            # The message, and the line of input where TeX noticed it.
            context = next((l for l in lines[index + 1:index + 12] if l.startswith("l.")), "")
            errors[current].append((line[2:] + " " + context).strip())
    return errors, seen, ended


def compile_formulas(pdflatex: str, formulas: dict[int, str], work: Path, jobs: int = 2) -> dict[int, str]:
    """The formulas that do not compile, each with its first error."""
    failures: dict[int, str] = {}
    pending: list[tuple[int, str]] = []
    for number, latex in sorted(formulas.items()):
        if not latex.strip():
            failures[number] = "empty"
        elif not balanced(latex):
            failures[number] = "unbalanced braces or a comment"
        else:
            pending.append((number, latex))

    def compile_chunk(chunk_index: int, chunk: list[tuple[int, str]]) -> dict[int, str]:
        found: dict[int, str] = {}
        attempt = 0
        while chunk:
            attempt += 1
            errors, seen, ended = run_pdflatex(pdflatex, chunk, work, f"chunk{chunk_index}-{attempt}")
            for number, messages in errors.items():
                found[number] = messages[0]
            if ended:
                break
            # The run stopped inside a formula: that one fails, the rest go again.
            if seen:
                last = seen[-1]
                found.setdefault(last, "the run stopped in this formula")
                chunk = [(n, s) for n, s in chunk if n > last]
            else:
                for number, _ in chunk:
                    found[number] = "the document did not start"
                break
        return found

    chunks = [pending[i:i + CHUNK] for i in range(0, len(pending), CHUNK)]
    with concurrent.futures.ThreadPoolExecutor(max_workers=jobs) as pool:
        for found in pool.map(lambda args: compile_chunk(*args), enumerate(chunks)):
            failures.update(found)
    return failures


# ---- the checks ----------------------------------------------------------------

def corpus_formulas(corpus: Path, every: int) -> list[str]:
    formulas = []
    for path in sorted(corpus.glob("*-formulas.txt")):
        lines = [l for l in path.read_text(encoding="utf-8").splitlines() if l.strip()]
        formulas.extend(l for i, l in enumerate(lines) if i % every == 0)
    return formulas


def without_command(latex: str) -> collections.Counter:
    """Characters written as themselves that pdflatex cannot set in math: non-ASCII."""
    return collections.Counter(c for c in latex if ord(c) > 127)


def percent(part: int, whole: int) -> float:
    return 100.0 * part / whole if whole else 100.0


def check_corpus(args, pdflatex: str, work: Path) -> bool:
    formulas = corpus_formulas(Path(args.corpus), args.every)
    omml = batch(args.cli, "latex2omml", formulas, jsonl=True)
    latex = batch(args.cli, "omml2latex", omml, jsonl=True)
    omml_again = batch(args.cli, "latex2omml", latex, jsonl=True)

    fixed = [i for i in range(len(formulas)) if omml[i] and omml[i] == omml_again[i]]
    originals = compile_formulas(pdflatex, dict(enumerate(formulas)), work / "originals")
    compiling = [i for i in range(len(formulas)) if i not in originals]
    round_tripped = compile_formulas(pdflatex, {i: latex[i] for i in compiling}, work / "round-tripped")

    characters = collections.Counter()
    holding = 0
    for i in compiling:
        found = without_command(latex[i])
        holding += bool(found)
        characters.update(found)

    compiled = len(compiling) - len(round_tripped)
    compile_rate = percent(compiled, len(compiling))
    fixed_rate = percent(len(fixed), len(formulas))
    print(f"corpus formulas: {len(formulas)} (every {args.every})")
    print(f"originals that pdflatex compiles: {len(compiling)}")
    print(f"round-tripped LaTeX that compiles: {compiled} of {len(compiling)} ({compile_rate:.2f}%)")
    print(f"round trip at a fixed point: {len(fixed)} of {len(formulas)} ({fixed_rate:.2f}%)")
    print(f"round-tripped formulas holding characters without a command: {holding}"
          f" ({sum(characters.values())} characters, {len(characters)} distinct)")
    for c, n in characters.most_common(args.show):
        print(f"  U+{ord(c):04X} {c} x{n}")
    for i, error in sorted(round_tripped.items())[:args.show]:
        print(f"does not compile: {formulas[i]}\n  ours: {latex[i]}\n  {error}")
    not_fixed = [i for i in range(len(formulas)) if i not in set(fixed)]
    for i in not_fixed[:args.show]:
        print(f"not a fixed point: {formulas[i]}\n  ours: {latex[i]}")
    ok = compile_rate >= args.min_compile and fixed_rate >= args.min_fixed
    if not ok:
        print(f"below the thresholds: compiling {args.min_compile}%, fixed point {args.min_fixed}%")
    return ok


def check_samples(args, pdflatex: str, work: Path) -> bool:
    """OMML as word processors write it: the LaTeX compiles and is a fixed point."""
    samples = [json.loads(l) for l in Path(args.samples).read_text(encoding="utf-8").splitlines()
               if l.strip()]
    latex = batch(args.cli, "omml2latex", [s["omml"] for s in samples], jsonl=True)
    again = batch(args.cli, "omml2latex", batch(args.cli, "latex2omml", latex, jsonl=True), jsonl=True)
    failures = compile_formulas(pdflatex, dict(enumerate(latex)), work / "samples")
    ok = True
    for i, error in sorted(failures.items()):
        print(f"sample {samples[i]['name']}: does not compile: {latex[i]}\n  {error}")
        ok = False
    for i in range(len(samples)):
        if latex[i] != again[i]:
            print(f"sample {samples[i]['name']}: LaTeX -> OMML -> LaTeX changes it:"
                  f"\n  {latex[i]}\n  {again[i]}")
            ok = False
    print(f"word-processor samples: {len(samples) - len(failures)} of {len(samples)} compile")
    return ok


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--cli", required=True, help="the formulaconv tool")
    parser.add_argument("--corpus", default=str(SOURCE / "tests/data/corpus"))
    parser.add_argument("--samples", default=str(SOURCE / "tests/data/word-omml.jsonl"))
    parser.add_argument("--every", type=int, default=50,
                        help="take every Nth formula of each corpus file (1: the whole corpus)")
    parser.add_argument("--no-corpus", action="store_true", help="only the word-processor samples")
    parser.add_argument("--min-compile", type=float, default=99.0)
    parser.add_argument("--min-fixed", type=float, default=99.0)
    parser.add_argument("--show", type=int, default=20, help="failures and characters listed")
    parser.add_argument("--keep", help="keep the documents and logs in this folder")
    args = parser.parse_args()

    pdflatex = shutil.which("pdflatex")
    if not pdflatex:
        print("pdflatex is not installed (Debian: texlive-latex-base); skipping", file=sys.stderr)
        return 77
    with tempfile.TemporaryDirectory() as temporary:
        work = Path(args.keep or temporary)
        for folder in ("originals", "round-tripped", "samples"):
            (work / folder).mkdir(parents=True, exist_ok=True)
        ok = check_samples(args, pdflatex, work)
        if not args.no_corpus:
            ok = check_corpus(args, pdflatex, work) and ok
    print("pdflatex check: " + ("passed" if ok else "FAILED"))
    return 0 if ok else 1


if __name__ == "__main__":
    sys.exit(main())
