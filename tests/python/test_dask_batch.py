"""Spreading a corpus over a Dask cluster gives exactly what `formulaconv batch` gives.

A LocalCluster of worker processes maps the Python package over a sample of the corpus;
each result becomes the record batch writes for that line ({"id", "ok", "output"}), and
the records must equal batch's, line by line.
"""

from __future__ import annotations

import json
import os
import subprocess
from pathlib import Path
from typing import Callable, Dict, List

import pytest

import formulaconv

distributed = pytest.importorskip("distributed", reason="python3-distributed is not installed")

EVERY = 40  # every 40th formula of each corpus file


def corpus_sample() -> List[str]:
    corpus = Path(os.environ["FC_CORPUS_DIR"])
    files = sorted(corpus.glob("*-formulas.txt"))
    assert files, f"no corpus files in {corpus}"
    sample: List[str] = []
    for path in files:
        # Lines as batch reads them: split at \n, a trailing \r dropped, empty lines skipped.
        lines = [line.rstrip(b"\r") for line in path.read_bytes().split(b"\n")]
        lines = [line for line in lines if line]
        sample += [line.decode("utf-8") for line in lines[::EVERY]]
    return sample


def batch(op: str, inputs: List[str], jsonl: bool = False) -> List[Dict[str, object]]:
    lines = [json.dumps(text) if jsonl else text for text in inputs]
    command = [os.environ["FORMULACONV_CLI"], "batch", op, "--jobs", "2"] + (["--jsonl"] if jsonl else [])
    run = subprocess.run(command, input="\n".join(lines) + "\n", capture_output=True, text=True,
                         encoding="utf-8", check=True)
    return [json.loads(line) for line in run.stdout.splitlines()]


def records(outputs: List[str]) -> List[Dict[str, object]]:
    return [{"id": i, "ok": output != "", "output": output} for i, output in enumerate(outputs, start=1)]


@pytest.fixture(scope="module")
def client():
    cluster = distributed.LocalCluster(n_workers=2, threads_per_worker=2, processes=True,
                                       dashboard_address=None)
    with distributed.Client(cluster) as dask_client:
        yield dask_client
    cluster.close()


def dask_map(client, function: Callable[[str], str], inputs: List[str]) -> List[str]:
    return client.gather(client.map(function, inputs, pure=False))


def test_latex_to_omml_and_back_match_batch(client):
    latex = corpus_sample()
    assert len(latex) > 100
    omml = dask_map(client, formulaconv.latex_to_omml, latex)
    assert records(omml) == batch("latex2omml", latex)
    back = dask_map(client, formulaconv.omml_to_latex, omml)
    assert records(back) == batch("omml2latex", omml, jsonl=True)


def test_latex_to_svg_matches_batch(client):
    latex = corpus_sample()[::4]
    svg = dask_map(client, formulaconv.latex_to_svg, latex)
    assert records(svg) == batch("latex2svg", latex)
