"""Kills an update of two pools at every system call in turn, and lets every one of them fail, once or for good.

Whatever happens, each pool is old or new or the next run refuses it and says how to recover; failures are reported.
"""

import os
import re
import shutil
import stat
import subprocess
from collections import Counter

import pytest

DRIVER = os.environ["POOL_UPDATE_DRIVER"]
CALLS = ["openat", "write", "pwrite64", "read", "pread64", "fsync", "flock", "fchmod", "ftruncate", "unlink", "close"]
OLD = "# head\nfirst INT_32 1\n\nsecond INT_32 2\n\n# tail\n" + "".join(
    f"old_{i} STR \"value {i}\"\n\n" for i in range(3000))
OLD_SECOND, NEW_SECOND = "count INT_32 7\n\n", "count INT_32 8\n\n"


def strace(folder, *options):
    trace = folder / "trace"
    command = ["strace", "-f", "-y", "-o", str(trace), "-e", "trace=" + ",".join(CALLS), *options, DRIVER,
               str(folder / "test.pool"), str(folder / "second" / "second.pool")]
    run = subprocess.run(command, capture_output=True, text=True, errors="replace", timeout=60)
    return run, trace.read_text(errors="replace").splitlines()


def new_folder(tmp_path):
    folder = tmp_path / "run"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir()
    (folder / "second").mkdir()
    (folder / "test.pool").write_text(OLD)
    (folder / "second" / "second.pool").write_text(OLD_SECOND)
    return folder


def left_overs(folder):
    return [path for path in folder.rglob("pool_??????") if stat.S_IMODE(path.stat().st_mode) == 0o400]


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
    start = next(i for i, line in enumerate(trace) if "LOCK_EX" in line)
    return (folder / "test.pool").read_text(), Counter(names), Counter(names[:start])


def contents(folder):
    return (folder / "test.pool").read_text(), (folder / "second" / "second.pool").read_text()


def recover(folder, new):
    """Each pool is old or new, or the next run refuses it and says how to make it so; "touched" when that was needed."""
    touched = False
    for path, whole in ((folder / "test.pool", (OLD, new)), (folder / "second" / "second.pool", (OLD_SECOND, NEW_SECOND))):
        opened = subprocess.run([DRIVER, str(path)], capture_output=True, text=True, check=False)
        advice = re.findall(r"to recover, while no other run works in this folder: (.*)", opened.stdout)
        assert (opened.returncode != 0) == bool(advice), opened.stdout
        if advice:
            assert path.read_text() not in whole, path
            subprocess.run(["sh", "-c", advice[0]], check=True)
            touched = True
        assert path.read_text() in whole
        for left in left_overs(path.parent):
            assert str(left) in opened.stdout or path.name == "test.pool" and left.parent.name == "second"
    return touched


def test_killed_at_every_call(reference, tmp_path):
    new, calls, _ = reference
    seen = Counter()
    for name in CALLS:
        for n in range(1, calls[name] + 1):
            folder = new_folder(tmp_path)
            strace(folder, "-e", f"inject={name}:signal=KILL:when={n}")
            seen["recovered" if recover(folder, new) else contents(folder) == (OLD, OLD_SECOND)] += 1
    assert seen["recovered"] > 0 and seen[True] > 0 and seen[False] > 0


@pytest.mark.parametrize("error, times", [("ENOSPC", ""), ("EIO", ""), ("EINTR", ""), ("ENOSPC", "+"), ("EIO", "+")])
def test_every_call_fails(reference, tmp_path, error, times):
    """Once, or from then on for good."""
    new, calls, before = reference
    silent = []
    for name in CALLS:
        for n in range(before[name] + 1, calls[name] + 1):
            folder = new_folder(tmp_path)
            run, trace = strace(folder, "-e", f"inject={name}:error={error}:when={n}{times}")
            case = f"{name} {n}: {run.stdout}"
            if run.returncode == 0:
                assert contents(folder) == (new, NEW_SECOND), case
                if "WARN" not in run.stdout:
                    assert not left_overs(folder), case
                    silent += [line for line in trace if "(INJECTED)" in line]
            else:
                assert run.returncode == 1 and "ALARM" in run.stdout, case
                if not times:  # a passing fault changes nothing at all
                    assert contents(folder) == (OLD, OLD_SECOND) and not left_overs(folder), case
            recover(folder, new)
    # Without effect: unlocking and closing after all is on disk, locking the temporary, the process' own log file.
    for line in silent:
        assert error == "EINTR" or re.search(r"LOCK_UN|flock.*/pool_|close\(|log|LOCK_SH", line), line


@pytest.mark.parametrize("fault", ["flock:error=ENOSYS", "flock:error=ENOLCK", "flock:error=EOPNOTSUPP",
                                   "fsync:error=EINVAL", "fchmod:error=EPERM"])
def test_poor_file_systems_cost_one_warning(reference, tmp_path, fault):
    new, _, _ = reference
    folder = new_folder(tmp_path)
    if fault.startswith("fsync"):  # of folders only: files can be flushed everywhere
        run, trace = strace(folder)
        flushes = [line for line in trace if " fsync(" in line]
        place = next(i for i, line in enumerate(flushes) if "/run>" in line) + 1
        folder = new_folder(tmp_path)
        run, _ = strace(folder, "-e", f"inject={fault}:when={place}")
    else:
        run, _ = strace(folder, "-e", f"inject={fault}")
    assert run.returncode == 0 and contents(folder) == (new, NEW_SECOND), run.stdout
    folders = run.stdout.count("/run ") + run.stdout.count("/run/second ")
    assert run.stdout.count("WARN") in (1, 2) and run.stdout.count("WARN") == folders, run.stdout
    assert not list(folder.rglob("pool_??????"))


def test_a_passing_failure_to_open_empties_nothing(reference, tmp_path):
    new, calls, _ = reference
    for n in range(1, calls["openat"] + 1):
        folder = new_folder(tmp_path)
        run, _ = strace(folder, "-e", f"inject=openat:error=EMFILE:when={n}")
        assert contents(folder) == ((OLD, OLD_SECOND) if run.returncode else (new, NEW_SECOND)), n


def test_processes_lose_no_entry_of_each_other(reference, tmp_path):
    """Each counts one up, what it read under the lock."""
    new, _, _ = reference
    folder = new_folder(tmp_path)
    second = folder / "second" / "second.pool"
    runs = [subprocess.Popen([DRIVER, str(folder / "test.pool"), str(second)]) for _ in range(8)]
    assert [run.wait(timeout=120) for run in runs] == [0] * 8
    assert contents(folder) == (new, "count INT_32 15\n\n")
    assert sorted(path.name for path in folder.rglob("*")) == ["second", "second.pool", "test.pool"]
