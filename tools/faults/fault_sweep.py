#!/usr/bin/python3
"""Makes one thing after the other go wrong in small runs of velmora and judges what they leave behind.

Usage: fault_sweep.py [calls|kills|allocations|signals|poor|order|together ...] [--binary PATH] [--shim PATH] [--call-shim PATH]
                      [--every N [--first K]] [--call NAME] [--jobs N] [--verbose]

calls        every system call of a run fails in turn, once and for good (those that the shim failing_calls.cpp does not know
             by strace -e inject; without the shim all of them)
kills        SIGKILL at every system call that changes what a next run finds: between them it finds the same
allocations  every allocation fails in turn, once and for good (needs the shim, failing_allocation.cpp)
signals      the fatal signals at random moments; the seed is printed
poor         file systems without locks, file modes or flushing of folders: a WARNING, and the run goes on
order        no fault: each file is brought to the disk after its last byte and before it takes its name
together     no fault: runs that share one pool lose no entry of each other and read no half pool

EXPECTATIONS below say what has to hold. A call like one of the two before it (lines of the log; a record and its file's
size) is one place with it. --every N tries each N-th place only, from the K-th on; --call NAME those of one system call. Exit
status 1 when something did not hold.
"""

import argparse
import collections
import concurrent.futures
import errno
import os
import pathlib
import json
import random
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time

from small_scene import INPUTS, PRODUCTS, REPORT, REPOSITORY, make_small_scene, sidecar

CHANGED_POOLS = ["insar.pool", "log.pool"]
SIDECARS = [sidecar(name) for name in PRODUCTS]
LONGEST_S = 5.0  # from the fault to the end; the whole run takes less than a second
OUTPUT_CALLS = "openat write pwrite64 ftruncate fallocate fsync fdatasync msync close rename renameat renameat2 unlink unlinkat " \
    "fchmod flock fcntl link linkat symlink mkdir statfs fstatfs"
ALL_CALLS = OUTPUT_CALLS + " read pread64 lseek newfstatat fstat getdents64 readlink readlinkat poll faccessat faccessat2 dup3 " \
    "mmap munmap clone3 sysinfo getcwd rt_sigaction"
CHANGING_CALLS = "pwrite64 pwritev ftruncate fallocate fchmod fchown rename link unlink exit_group".split()
# What fails how: error, the calls, once or for good. An EINTR for good is no fault that exists.
FAULTS = [("ENOSPC", OUTPUT_CALLS, ("", "+")), ("EIO", ALL_CALLS, ("", "+")), ("EMFILE", "openat fcntl dup3", ("", "+")),
          ("ENOMEM", "mmap clone3", ("", "+")), ("EAGAIN", "clone3", ("", "+")),
          ("EINTR", "openat read write pread64 pwrite64 close fsync ftruncate fallocate flock poll", ("",))]
SIGNALS = {1: "hangup", 2: "interrupt (rubout)", 3: "quit (ASCII FS)", 15: "software termination signal from kill",
           23: "urgent socket condition", 24: "exceeded cpu limit"}


class CASE:
    """One run with one fault, in a folder of its own that holds older products."""

    def __init__(self, sweep, name, trace=(), environment=None, number=None):
        self.sweep, self.name, self.trace, self.number = sweep, name, list(trace), number
        self.environment = {"PATH": os.environ["PATH"], "PARALLEL": "2", "SECONDS_ON_PARAMETER_INPUT": "1", **(environment or {})}

    def run(self):
        with tempfile.TemporaryDirectory(prefix="faults_", dir=self.sweep.room) as folder:
            self.folder = pathlib.Path(folder) / "run"
            shutil.copytree(self.sweep.scene, self.folder)
            # The screen shows failures only: half of all calls would write what the log file gets, too.
            command = self.trace + [self.sweep.binary, "-pcf", "scene.pcf", "-lsl", "ALARM"]
            begin = time.monotonic()
            process = subprocess.Popen(command, cwd=self.folder, env=self.environment, stdin=subprocess.DEVNULL,
                                       stdout=subprocess.PIPE, stderr=subprocess.STDOUT, start_new_session=True)
            try:
                if self.number is not None:
                    time.sleep(self.sweep.moments.pop())
                    process.send_signal(self.number)
                screen = process.communicate(timeout=self.sweep.usual_s + LONGEST_S)[0]
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, signal.SIGKILL)
                screen = process.communicate()[0]
            self.seconds = time.monotonic() - begin
            self.status = process.returncode
            self.log = screen.decode(errors="replace") + text_of(self.folder / "log.velmora")
            return [what for what, holds in EXPECTATIONS if not holds(self)]

    def killed(self):
        return self.status in (-signal.SIGKILL, 128 + signal.SIGKILL) and self.seconds < self.sweep.usual_s + LONGEST_S

    def content(self, name):
        return contents(self.folder, [name])[name]


def contents(folder, names):
    return {name: normal((folder / name).read_bytes()) if (folder / name).exists() else None for name in names}


def text_of(path):
    return path.read_text(errors="replace") if path.exists() else ""


def normal(content):
    """Pools tell times; nothing else may differ from run to run."""
    return re.sub(rb"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d", b"TIME", re.sub(rb"(execution_times[^}]*{)[^}]*", rb"\1 ", content))


def ends_in_time(case):
    return case.seconds < case.sweep.usual_s + LONGEST_S


def status_is_known(case):
    """Before main() there is no log yet, and nobody to handle a failed allocation; before the controller is there, 255."""
    before_main = case.status in (-signal.SIGABRT, -(case.number or 0)) and " : global : " not in case.log
    at_the_start = case.status == 255 and ("at the start of the run" in case.log or case.number is not None)
    return case.status in (0, 1) or case.killed() or before_main or at_the_start


def success_is_whole(case):
    return case.status != 0 or all(case.content(name) == case.sweep.new[name] for name in PRODUCTS + CHANGED_POOLS)


def nothing_can_be_told(case):
    """Neither file nor log can be written."""
    return case.name.startswith("write:") and case.name.endswith("+")


def status_files_are_right(case):
    """A status file that can not be written is told; a run that did not come so far leaves none."""
    ok, error = text_of(case.folder / "OK.velmora"), text_of(case.folder / "ERROR.velmora")
    if nothing_can_be_told(case):
        return True
    told = "status file" in case.log or "Can not" in case.log or "using configuration file" not in case.log
    return (ok == "0" and error != "1") if case.status == 0 and not told else told or case.killed() or (not ok and error == "1")


def failure_has_a_cause(case):
    """An ALARM line other than those that only say that there was a failure. Without a log there is none."""
    if case.name.startswith(("write:", "openat:")) and case.name.endswith("+") or " : global : " not in case.log:
        return True
    alarms = [line for line in case.log.splitlines() if "ALARM : global : " in line]
    vague = ("terminated with error!", "program aborted due to FATAL ERROR", "ORQ_MSG")
    return case.status == 0 or case.killed() or any(not any(text in line for text in vague) for line in alarms)


def memory_is_named(case):
    """Of a thread's stack the system says no more than that the thread can not be had now."""
    return case.status != 1 or not case.environment.get("FAIL_ALLOCATION") or \
        any(text in case.log for text in ("memory", "can not create thread"))


def signal_is_named(case):
    return case.number is None or case.status in (0, -case.number) or SIGNALS[case.number] in case.log


def no_false_product(case):
    return all(case.content(name) in (case.sweep.old[name], case.sweep.new[name]) for name in PRODUCTS)


def older_products_kept(case):
    return case.status != 1 or all(case.content(name) == case.sweep.old[name] for name in PRODUCTS)


def report_is_whole(case):
    """None, or one that tells the exit status."""
    if not (case.folder / REPORT).exists():
        told = nothing_can_be_told(case) or any(text in case.log for text in ("report " + REPORT, "out of memory"))
        return told or case.status != 0 or not case.sweep.has_report
    report = json.loads((case.folder / REPORT).read_text())
    return case.killed() or report["exit_status"] == case.status


def sidecars_are_whole(case):
    whole = all(case.content(name) in (None, case.sweep.new[name]) for name in SIDECARS)
    complete = all(case.content(name) == case.sweep.new[name] for name in SIDECARS)
    told = nothing_can_be_told(case) or any(text in case.log for text in ("sidecar", "out of memory"))
    return whole and (case.status != 0 or complete or told)


def interruptions_cost_nothing(case):
    return ":error=EINTR:" not in case.name or case.status == 0


def inputs_unchanged(case):
    return all(case.content(name) == case.sweep.old[name] for name in INPUTS)


def pools_unchanged_by_failure(case):
    """A kill may come between; an end with status 1 leaves both pools as they were, or says which one needs recovery."""
    return case.status != 1 or "Recovery" in case.log or \
        all(case.content(name) == case.sweep.old[name] for name in CHANGED_POOLS)


def state_of(folder):
    """What a next run finds: names, contents without times, permissions. Names of temporaries differ from run to run."""
    return frozenset((re.sub(r"(pool_|velmora_[0-9a-f]+_).*", r"\1", path.name), normal(path.read_bytes()), path.stat().st_mode)
                     for path in folder.rglob("*") if path.is_file() and path.name not in ("log.velmora", REPORT))


def next_run_is_whole(case):
    """Pools old or new, or refused with the command that makes them so; then everything comes out as it should."""
    state = state_of(case.folder)
    if state not in case.sweep.next_runs:
        case.sweep.next_runs[state] = next_run_from(case)
    return case.sweep.next_runs[state]


def next_run_from(case):
    for _ in range(4):
        again = subprocess.run([case.sweep.binary, "-pcf", "scene.pcf", "-lfn", "again"], cwd=case.folder, capture_output=True,
                               env={"PATH": os.environ["PATH"], "PARALLEL": "2"}, stdin=subprocess.DEVNULL, check=False)
        advice = re.findall(r"to recover, while no other run works in this folder: (cat '(.*?)' > '(.*?)'.*)",
                            again.stdout.decode(errors="replace"))
        # Of several that an empty pool can be the beginning of, that with its keys.
        advice = [line for line, source, pool in advice
                  if case.content(source).split(b"\n")[0] == case.sweep.old[pathlib.Path(pool).name].split(b"\n")[0]]
        if again.returncode == 0 or not advice:
            break
        subprocess.run(["sh", "-c", advice[0]], cwd=case.folder, check=True)
    left = [path.name for path in case.folder.iterdir() if path.name.startswith(".") or path.name.endswith("~")]
    whole = all(case.content(name) == case.sweep.new[name] for name in PRODUCTS + CHANGED_POOLS + SIDECARS)
    return again.returncode == 0 and whole and not left


def signal_leaves_no_temporary(case):
    left = [path.name for path in case.folder.iterdir() if path.name.startswith(("pool_", ".velmora_"))]
    signalled = case.number is not None and case.status == 1
    if signalled and left:
        case.name += " " + " ".join(left)
    return not (signalled and left)


def poor_file_system_is_told(case):
    return not case.name.startswith("poor") or \
        case.status == 0 and any(text in case.log for text in ("no locks for pools", "can not be changed", "can not be flushed"))


EXPECTATIONS = [
    ("ends within %g s" % LONGEST_S, ends_in_time),
    ("ends with status 0 or 1", status_is_known),
    ("status 0: every product and pool complete", success_is_whole),
    ("status files tell the end", status_files_are_right),
    ("a failure has a cause in the log", failure_has_a_cause),
    ("no memory: said so", memory_is_named),
    ("a signal is named", signal_is_named),
    ("a signal leaves no temporary", signal_leaves_no_temporary),
    ("a poor file system costs a WARNING", poor_file_system_is_told),
    ("an interrupted call costs nothing", interruptions_cost_nothing),
    ("each product old or complete", no_false_product),
    ("each sidecar whole, or told", sidecars_are_whole),
    ("the report is whole and tells the status", report_is_whole),
    ("status 1: every older product is there", older_products_kept),
    ("inputs unchanged", inputs_unchanged),
    ("status 1: no pool changed, or recovery told", pools_unchanged_by_failure),
    ("the next run is whole", next_run_is_whole),  # changes the folder: the last one
]


class COMPANIONS:
    """Four runs at once, on one pool that each reads its image from and enters itself into."""

    count = 4

    def __init__(self, sweep, number):
        self.sweep, self.name, self.status = sweep, "round %d" % number, None

    def run(self):
        with tempfile.TemporaryDirectory(prefix="faults_", dir=self.sweep.room) as room:
            folders = [pathlib.Path(room) / ("run%d" % i) for i in range(self.count)]
            for folder in folders:
                shutil.copytree(self.sweep.scene, folder)
            shared = shutil.copy(self.sweep.scene / "insar.pool", room)
            runs = [subprocess.Popen([self.sweep.binary, "-pcf", "scene.pcf", "-pid", folder.name, "-INSAR_POOL", shared, "-log_pp", shared],
                                     cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                     env={"PATH": os.environ["PATH"], "PARALLEL": "1", "LD_PRELOAD": self.sweep.call_shim,
                                          "SLOW_TRUNCATION": "1"}) for folder in folders]
            wrong = ["status 0"] if [run.wait(timeout=120) for run in runs] != [0] * self.count else []
            self.status = 0 if not wrong else 1
            entries = pathlib.Path(shared).read_text(encoding="ascii")
            if any('"%s"' % folder.name not in entries for folder in folders):
                wrong.append("every run's entry is in the pool")
            if any(normal((folder / name).read_bytes()) != self.sweep.new[name] for folder in folders for name in PRODUCTS):
                wrong.append("every run's products are whole")
            return wrong


class ORDER:
    """The trace of the reference run: what was written, brought to the disk and renamed when."""

    def __init__(self, sweep):
        self.sweep, self.name, self.status = sweep, "reference", 0

    def run(self):
        folder = self.sweep.room / "counted"
        wanted = {str(folder / name) for name in PRODUCTS + SIDECARS + CHANGED_POOLS + [REPORT] if self.sweep.is_written(name)}
        unsafe, named, wrong = set(), set(), []
        for line in (self.sweep.room / "trace").read_text(errors="replace").splitlines():
            call, path = re.match(r"\d+ +(?:(\w+)\((?:\d+<([^>]*)>)?)?", line).groups()
            if call in ("write", "pwrite64", "pwritev", "ftruncate"):
                unsafe.add(path)
                named.add(path)
            elif call == "fsync" and line.endswith(" = 0"):
                unsafe.discard(path)
            elif call == "rename":
                source, target = (str(folder / name) for name in re.findall(r'"([^"]*)"', line))
                wrong += ["on the disk before it has its name: " + target] if source in unsafe else []
                named.add(target)
                unsafe |= {str(folder)} if target in wanted and not target.endswith(REPORT) else set()
        return sorted(wrong) + sorted("brought to the disk: " + path for path in unsafe & (wanted | {str(folder)})) + \
            sorted("written: " + path for path in wanted - named)


def changes_files(place):
    name, _, line = place
    return name in CHANGING_CALLS or name == "openat" and "O_CREAT" in line or name == "write" and "/log." not in line


class SWEEP:
    def __init__(self, binary, shim, call_shim, places, call, room):
        self.shim, self.call_shim, self.call, self.room = shim, call_shim, call, pathlib.Path(room)
        self.every, self.step = places.step, places
        self.next_runs = {}  # whether all was well, by the state that it began with
        (self.room / "velmora").symlink_to(pathlib.Path(binary).resolve())  # its status files and log carry the name
        self.binary = str(self.room / "velmora")
        self.scene = make_small_scene(self.room / "scene")
        for name in PRODUCTS:
            (self.scene / name).write_bytes(b"an older product " + name.encode())
        (self.scene / "OK.velmora").write_text("0")
        self.old = contents(self.scene, PRODUCTS + CHANGED_POOLS + INPUTS)
        reference = CASE(self, "reference")
        reference.seconds, self.usual_s, self.new = 0.0, 60.0, self.old
        whole = shutil.copytree(self.scene, self.room / "whole")
        begin = time.monotonic()
        subprocess.run([self.binary, "-pcf", "scene.pcf"], cwd=whole, env=reference.environment, stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL, check=True)
        self.plain_s = time.monotonic() - begin
        self.new = contents(whole, PRODUCTS + CHANGED_POOLS + SIDECARS)
        self.has_report = (whole / REPORT).exists()
        self.places = self.count_calls(reference)
        self.listed = self.list_calls(reference) if self.call_shim else []
        self.usual_s = 2.0 + 20.0 * self.plain_s  # traced, beside another one

    def count_calls(self, reference):
        """(call, number, line) of the calls from main() on. What the loader does before is not ours."""
        folder = shutil.copytree(self.scene, self.room / "counted")
        trace = self.room / "trace"
        subprocess.run(["strace", "-f", "-y", "-o", str(trace), self.binary, "-pcf", "scene.pcf", "-lsl", "ALARM"], cwd=folder, env=reference.environment,
                       stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, check=True)
        calls = []
        for line in trace.read_text(errors="replace").splitlines():
            call = re.match(r"\d+ +(\w+)\((?:AT_FDCWD(?:<[^>]*>)?, )?(\d+<[^>]*>|\"[^\"]*\")?", line)
            calls += [(*call.groups(), line)] if call else []
        return self.different_places(calls, next(i for i, call in enumerate(calls) if '"/dev/null"' in call[2]))

    def list_calls(self, reference):
        """The same, of the calls that the shim knows."""
        folder, path = shutil.copytree(self.scene, self.room / "listed"), self.room / "list"
        subprocess.run([self.binary, "-pcf", "scene.pcf", "-lsl", "ALARM"], cwd=folder, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                       env={**reference.environment, "LD_PRELOAD": self.call_shim, "LIST_CALLS": str(path)}, check=True)
        lines = path.read_text(errors="replace").splitlines()
        return self.different_places([(*(line.split(" ", 1)), line) for line in lines], 0)

    def different_places(self, calls, start):
        numbers, before, places = collections.Counter(), collections.deque(maxlen=2), []
        for i, (name, target, line) in enumerate(calls):
            numbers[name] += 1
            if i >= start and self.call in (None, name) and ((name, target) not in before or name == "change"):
                places.append((name, numbers[name], line))
            if name != "change":
                before.append((name, target))
        return places

    def strace(self, injection):
        """Only errors come through where the program stops at the traced calls alone; a signal would never be sent."""
        stops = ["--seccomp-bpf"] if ":error=" in injection else []
        return ["strace", "-f", *stops, "-o", "/dev/null", "-e", "trace=" + injection.split(":")[0], "-e", "inject=" + injection]

    def calls(self):
        known = {name for name, _, _ in self.listed}
        places = self.listed + [place for place in self.places if place[0] not in known]
        for error, names, times in FAULTS:
            for name, n, _ in [place for place in places if place[0] in names.split()][self.step]:
                for more in times:
                    fault = "%s:error=%s:when=%d%s" % (name, error, n, more)
                    if name in known:
                        yield CASE(self, fault, (), self.shimmed("%s %d %d%s" % (name, getattr(errno, error), n, more)))
                    else:
                        yield CASE(self, fault, self.strace(fault))

    def shimmed(self, fault):
        return {"LD_PRELOAD": self.call_shim, "FAIL_CALL": fault}

    def kills(self):
        if self.call_shim:
            for name, n, _ in [place for place in self.listed if place[0] == "change"][self.step]:
                yield CASE(self, "kill at change %d" % n, (), self.shimmed("change kill %d" % n))
            return
        for name, n, _ in [place for place in self.places if changes_files(place)][self.step]:
            fault = "%s:signal=KILL:when=%d" % (name, n)
            yield CASE(self, fault, self.strace(fault))

    def allocations(self):
        count = self.room / "count"
        environment = {"LD_PRELOAD": self.shim, "PATH": os.environ["PATH"], "PARALLEL": "2", "COUNT_ALLOCATIONS": str(count)}
        folder = shutil.copytree(self.scene, self.room / "allocations")
        subprocess.run([self.binary, "-pcf", "scene.pcf"], cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                       stdout=subprocess.DEVNULL, check=True)
        for n in range(1, int(count.read_text()) + 1)[self.step]:
            for more in ("", "+"):
                yield CASE(self, "allocation %d%s" % (n, more), (), {"LD_PRELOAD": self.shim, "FAIL_ALLOCATION": "%d%s" % (n, more)})

    def poor(self):
        for fault in ("flock:error=ENOSYS", "flock:error=ENOLCK", "flock:error=EOPNOTSUPP", "fchmod:error=EPERM"):
            yield CASE(self, "poor " + fault, self.strace(fault))
        # The run's folder alone: files can be flushed everywhere.
        yield CASE(self, "poor fsync", ["sh", "-c", 'exec strace -f -o /dev/null -P "$PWD" -e trace=fsync -e inject=fsync:error=EINVAL "$@"', "sh"])

    def is_written(self, name):
        return self.has_report if name == REPORT else self.new[name] not in (None, self.old.get(name))

    def order(self):
        return [ORDER(self)]

    def together(self):
        return [COMPANIONS(self, number) for number in range(max(3, 20 // self.every))]

    def signals(self):
        seed = random.SystemRandom().randrange(1 << 32)
        print("seed", seed)
        chance = random.Random(seed)
        count = max(30, 300 // self.every)
        self.moments = [chance.uniform(0.0, self.plain_s) for _ in range(count)]
        return [CASE(self, "signal", number=chance.choice(list(SIGNALS))) for _ in range(count)]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("kinds", nargs="*", default=["calls", "kills", "allocations", "signals", "poor", "order", "together"])
    parser.add_argument("--binary", default=os.environ.get("VELMORA_BINARY", REPOSITORY / "build/release/app/velmora"))
    parser.add_argument("--shim", default=os.environ.get("FAILING_ALLOCATION", ""))
    parser.add_argument("--call-shim", default=os.environ.get("FAILING_CALLS", ""))
    parser.add_argument("--every", type=int, default=1)
    parser.add_argument("--first", type=int, default=0)
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--call", help="of calls and kills")
    parser.add_argument("--verbose", action="store_true")
    options = parser.parse_args()
    bad = 0
    with tempfile.TemporaryDirectory(prefix="fault_sweep_", dir="/dev/shm" if os.access("/dev/shm", os.W_OK) else None) as room:
        sweep = SWEEP(options.binary, options.shim, options.call_shim, slice(options.first, None, options.every), options.call, room)
        for kind in options.kinds:
            begin = time.monotonic()
            cases = list(getattr(sweep, kind)())
            with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
                verdicts = list(pool.map(lambda case: case.run(), cases))
            broken = collections.defaultdict(list)
            if kind == "kills" and sum(case.killed() for case in cases) < len(cases) / 2:
                broken["most runs are killed"].append("%d of %d" % (sum(case.killed() for case in cases), len(cases)))
            for case, failed in zip(cases, verdicts):
                for what in failed:
                    broken[what].append("%s (status %s)" % (case.name, case.status))
            print("%s: %d runs in %.0f s, %d with status 0, %d not as expected" % (
                kind, len(cases), time.monotonic() - begin, sum(case.status == 0 for case in cases),
                sum(bool(failed) for failed in verdicts)), flush=True)
            for what, names in broken.items():
                print("  NOT: %s: %d, for example %s" % (what, len(names), "; ".join(names if options.verbose else names[:6])))
            bad += len(broken)
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
