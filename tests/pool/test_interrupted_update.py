"""Kills an update at every state-changing system call in turn, and lets every one of them fail once.

Whatever happens, the old or the new content must be on disk, a failure must be reported, and the documented recovery
must lead to the new content.
"""

import os
import re
import shutil
import stat
import subprocess
from collections import Counter
from pathlib import Path

import pytest

DRIVER = os.environ["POOL_UPDATE_DRIVER"]
CALLS = ["openat", "write", "lseek", "fsync", "flock", "fchmod", "ftruncate", "unlink", "close", "fcntl"]
OLD = "# head\nfirst INT_32 1\n\nsecond INT_32 2\n\n# tail\n" + "".join(
    f"old_{i} STR \"value {i}\"\n\n" for i in range(3000))


def strace(folder, *options):
    trace = folder / "trace"
    command = ["strace", "-f", "-y", "-o", str(trace), "-e", "trace=" + ",".join(CALLS), *options, DRIVER,
               str(folder / "test.pool")]
    run = subprocess.run(command, capture_output=True, text=True, errors="replace", timeout=60)
    return run, trace.read_text(errors="replace").splitlines()


def new_folder(tmp_path):
    folder = tmp_path / "run"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir()
    (folder / "test.pool").write_text(OLD)
    return folder


def left_overs(folder):
    return [path for path in folder.glob("pool_??????") if stat.S_IMODE(path.stat().st_mode) == 0o400]


@pytest.fixture(name="reference", scope="module")
def fixture_reference(tmp_path_factory):
    """The new content, the calls of a whole run, and how many of each come before the update."""
    if shutil.which("strace") is None:
        pytest.skip("strace is not installed")
    folder = new_folder(tmp_path_factory.mktemp("reference"))
    run, trace = strace(folder)
    if run.returncode != 0 and "ptrace" in run.stderr:
        pytest.skip("strace may not trace here: " + run.stderr.strip())
    assert run.returncode == 0, run.stdout + run.stderr
    calls = [re.match(r"\d+ +(\w+)\(", line) for line in trace]
    names = [call.group(1) if call else "" for call in calls]
    start = next(i for i, line in enumerate(trace) if " flock(" in line and "test.pool" in line)
    return (folder / "test.pool").read_text(), Counter(names), Counter(names[:start])


def check_recovery(folder, new):
    """The next run names the left-over; it holds the new content and the pool a part of it."""
    names = left_overs(folder)
    opened = subprocess.run([DRIVER, str(folder / "test.pool"), "open"], capture_output=True, text=True, check=True)
    assert opened.stdout.count("update was interrupted") == len(names), opened.stdout
    for path in names:
        assert str(path) in opened.stdout
        assert path.read_text() == new
        content = (folder / "test.pool").read_text()
        assert content == OLD or new.startswith(content)


def test_killed_at_every_call(reference, tmp_path):
    new, calls, _ = reference
    seen = Counter()
    for name in CALLS:
        for n in range(1, calls[name] + 1):
            folder = new_folder(tmp_path)
            strace(folder, "-e", f"inject={name}:signal=KILL:when={n}")
            content = (folder / "test.pool").read_text()
            assert content in (OLD, new) or len(left_overs(folder)) == 1, f"{name} {n}"
            seen["old" if content == OLD else "new" if content == new else "left-over"] += 1
            check_recovery(folder, new)
    assert seen["old"] > 0 and seen["new"] > 0 and seen["left-over"] > 0


@pytest.mark.parametrize("error", ["ENOSPC", "EIO"])
def test_every_call_fails_once(reference, tmp_path, error):
    new, calls, before = reference
    silent = []
    for name in CALLS:
        for n in range(before[name] + 1, calls[name] + 1):
            folder = new_folder(tmp_path)
            run, trace = strace(folder, "-e", f"inject={name}:error={error}:when={n}")
            content = (folder / "test.pool").read_text()
            kept = left_overs(folder)
            assert content in (OLD, new) or len(kept) == 1, f"{name} {n}"
            if run.returncode == 0:
                assert content == new and not kept, f"{name} {n}"
                silent += [line for line in trace if "(INJECTED)" in line]
            else:
                assert run.returncode == 1 and "ALARM" in run.stdout, f"{name} {n}: {run.stdout}"
            check_recovery(folder, new)
    # Without effect: unlocking and closing after all is on disk, the process' own log file.
    for line in silent:
        assert re.search(r"flock\(.*LOCK_UN|close\(.*/test\.pool>|log", line), line


def test_a_passing_failure_to_open_empties_nothing(reference, tmp_path):
    new, calls, _ = reference
    for n in range(1, calls["openat"] + 1):
        folder = new_folder(tmp_path)
        run, _ = strace(folder, "-e", f"inject=openat:error=EMFILE:when={n}")
        assert (folder / "test.pool").read_text() == (OLD if run.returncode else new), n


def test_two_processes_lose_no_entry(reference, tmp_path):
    new, _, _ = reference
    folder = new_folder(tmp_path)
    runs = [subprocess.Popen([DRIVER, str(folder / "test.pool")]) for _ in range(8)]
    assert [run.wait(timeout=60) for run in runs] == [0] * 8
    assert (folder / "test.pool").read_text() == new
    assert [path.name for path in Path(folder).iterdir()] == ["test.pool"]
