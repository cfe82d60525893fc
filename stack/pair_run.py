"""One pair of a stack: what its folder says of its run, and the run itself.

The folder decides, whatever engine worked on it: a pair is done when its report says so and every product is there whole.
Nothing else is kept of a run but the program's own log and report; a failed check leaves check.txt.
"""

import dataclasses
import fcntl
import json
import os
import pathlib
import stat
import subprocess

REPORT, CHECK, LOCK = "report.json", "check.txt", "run.lock"
DONE, RUNNING, FAILED, LEFT = STATES = ("done", "running", "failed", "left")
INTERRUPTIONS = (1, 2, 3, 15, 24)  # signals by which people, engines and time limits end runs: no fault of the pair
VELMORA = os.environ.get("VELMORA", "velmora")


@dataclasses.dataclass(frozen=True)
class OUTCOME:
    state: str
    cause: str = ""    # of a failure
    report: dict = dataclasses.field(default_factory=dict)


def read_report(folder):
    """Empty for a report that is not there, or is none; the program writes it whole."""
    try:
        report = json.loads((folder / REPORT).read_text(encoding="utf-8"))
    except (OSError, ValueError):
        return {}
    return report if isinstance(report, dict) else {}


def _is_whole(folder, product):
    """Of a run that went well. A key without a path asks for nothing; what went into a device or a pipe is not there any more."""
    if not product["written"]:
        return True
    try:
        status = (folder / product["path"]).stat()
    except OSError:
        return False
    return status.st_size == product["bytes"] or not stat.S_ISREG(status.st_mode)


def _was_interrupted(report):
    error = report["last_error"] or ""
    return any(error.startswith("got fatal signal %d:" % number) for number in INTERRUPTIONS)


def ended_outcome(folder):
    """The outcome when nothing works on the pair."""
    report = read_report(folder)
    if report.get("exit_status") == 0:
        whole = all(_is_whole(folder, product) for product in report["products"])
        return OUTCOME(DONE if whole else LEFT, report=report)
    if report.get("exit_status") == 1 and not _was_interrupted(report):
        return OUTCOME(FAILED, (report["errors"] or [report["last_error"] or "no error told"])[0], report)
    try:
        problems = [line.split(":", 1)[1].strip() for line in (folder / CHECK).read_text(errors="replace").splitlines()
                    if line.strip().startswith("problem:")]
    except OSError:
        return OUTCOME(LEFT, report=report)
    return OUTCOME(FAILED, "check: " + (problems or ["no problem told"])[0])


def _is_locked(folder):
    try:
        with open(folder / LOCK, encoding="ascii") as file:
            fcntl.flock(file, fcntl.LOCK_SH | fcntl.LOCK_NB)
    except BlockingIOError:
        return True
    except OSError:  # no run so far, or no locks on this file system
        return False
    return False


def outcome(folder):
    folder = pathlib.Path(folder)
    return OUTCOME(RUNNING) if _is_locked(folder) else ended_outcome(folder)


def check(folder):
    """velmora --check, unless the pair is past it. @return whether the pair can be run; why not stands in check.txt"""
    folder = pathlib.Path(folder)
    if _is_locked(folder) or ended_outcome(folder).state == DONE or read_report(folder).get("exit_status") == 1:
        return True
    return _stage_a_goes_well(folder)


def _stage_a_goes_well(folder):
    done = subprocess.run([VELMORA, "--check", "-pcf", "scene.pcf", "-lsl", "NO_MESSAGE"], cwd=folder, check=False,
                          stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    if done.returncode in (0, 2):  # 2: a STOP file, which holds back the run, too
        (folder / CHECK).unlink(missing_ok=True)
        return True
    (folder / "check.tmp").write_bytes(done.stdout)
    os.replace(folder / "check.tmp", folder / CHECK)
    return False


def memory_limit_mib(folder, granted_mib):
    """For the grids: what is granted less the terrain model, which is mapped, and the program itself."""
    words = [line.split() for line in (folder / "scene.pcf").read_text(errors="replace").splitlines()]
    dem = [folder / line[1] for line in words if len(line) > 1 and line[0] == "DEM"]
    dem_mib = sum(path.stat().st_size for path in dem if path.is_file()) // 2 ** 20  # the program tells what is missing
    return max(granted_mib - 64 - dem_mib, granted_mib // 4, 1)


def run(folder, threads, granted_mib):
    """Runs the pair in place of this process, unless it is done, or has failed. Two runs of a pair follow each other.

    The program keeps the lock as long as it lives, also when the engine that started it is killed.
    @return exit status, when there is nothing to run
    """
    folder = pathlib.Path(folder)
    lock = os.open(folder / LOCK, os.O_RDWR | os.O_CREAT, 0o666)
    fcntl.flock(lock, fcntl.LOCK_EX)
    if (folder / CHECK).exists():
        _stage_a_goes_well(folder)  # the pair may have been repaired since
    present = ended_outcome(folder)
    if present.state == DONE:
        return 0
    if present.state == FAILED:
        print("%s: failed: %s (velmora-stack retry takes it up again)" % (folder.name, present.cause), flush=True)
        return 1
    (folder / REPORT).unlink(missing_ok=True)
    command = [VELMORA, "-pcf", "scene.pcf", "-REPORT", REPORT, "-lsl", "ALARM"]
    if granted_mib:
        command += ["-MEMORY_LIMIT", str(memory_limit_mib(folder, granted_mib))]
    os.set_inheritable(lock, True)
    os.chdir(folder)
    os.execvpe(VELMORA, command, dict(os.environ, PARALLEL=str(threads)))


def forget(folder):
    """A failed pair is left to be run again; its log stays."""
    for name in (REPORT, CHECK):
        (pathlib.Path(folder) / name).unlink(missing_ok=True)
