"""Runs velmora-import and reads what it writes."""

import dataclasses
import os
import pathlib
import subprocess
import sys

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(REPOSITORY / "demo"))

from scene_maker import pool_file  # noqa: E402

PROGRAM = os.environ["VELMORA_IMPORT"]
INPUTS = pathlib.Path(os.environ.get("VELMORA_SHARED", REPOSITORY.parent / "shared")) / "inputs"


@dataclasses.dataclass
class RUN:
    status: int
    results: str
    messages: str


def run(*arguments, folder=None, program=PROGRAM):
    done = subprocess.run([program, *map(str, arguments)], cwd=folder, capture_output=True, text=True, timeout=300)
    return RUN(done.returncode, done.stdout, done.stderr)


def good(*arguments, **keys):
    done = run(*arguments, **keys)
    assert done.status == 0, done.messages
    assert done.messages == ""
    return done.results


def refused(*arguments, says, folder=None, program=PROGRAM):
    """Exit status 1, every text of `says` in one message, nothing on standard output, no file made or changed."""
    before = content(folder)
    done = run(*arguments, folder=folder, program=program)
    assert done.status == 1, done
    assert done.results == ""
    for text in [says] if isinstance(says, str) else says:
        assert text in done.messages
    assert content(folder) == before


def content(folder):
    if folder is None:
        return None
    return {str(path): path.read_bytes() if path.is_file() else None for path in pathlib.Path(folder).rglob("*")}


def pool(path):
    return pool_file.read(path)
