#!/usr/bin/python3
"""plant_faults.py [FOLDER ...]: plants small faults into the product's code, one at a time, and tells which of them no
test catches. FOLDER is a folder of the product (time, lib/baselib/pool); default: all.

Each fault is compiled and held against the unit tests of its folder; what they let pass meets the end-to-end tests. A
crash or a run far beyond the usual processor time is caught, too. The choice depends on --seed alone. Faults that no run can show
are listed in tools/plant_faults_unobservable.txt with the reason below each; they count neither way.
All work is done on a copy under build/planted_faults; the tree itself is never touched.
"""
import argparse
import collections
import itertools
import os
import pathlib
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import time

REPOSITORY = pathlib.Path(__file__).resolve().parents[1]
UNOBSERVABLE = pathlib.Path(__file__).with_name("plant_faults_unobservable.txt")
NO_PRODUCT = {"tests", "fuzz", "benchmarks", "demo", "tools"}
SWAPPED = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==", "+": "-", "-": "+", "*": "/", "/": "*",
           "+=": "-=", "-=": "+=", "*=": "/=", "/=": "*=", "&&": "||", "||": "&&", "++": "--", "--": "++", "true": "false",
           "false": "true", "min": "max", "max": "min", "sin": "cos", "cos": "sin", "floor": "ceil", "ceil": "floor"}
# Folders of tests/ that judge a folder, where that is not the one of its name.
TESTED_WITH = {"lib/baselib/mem_allocation": ("containers",), "lib/baselib/mdb": ("mdb", "orbit"), "lib/baselib/vectors": ("vectors", "simulation"),
               "companions": ("import",), "geometry": ("geometry", "simulation")}

JUDGE = collections.namedtuple("JUDGE", "programs tests")  # what is built, and the files of tests/ that run it
MAIN_JOB = JUDGE(("velmora",), ("end_to_end/test_main_job.py", "end_to_end/test_failures.py"))
IMPORT = JUDGE(("velmora_import", "geolocation_grid_check", "velmora"),
               ("import/test_acquisitions.py", "import/test_dem.py", "import/test_pair.py", "import/test_stack.py"))
# The end-to-end tests of a folder's behaviour: a handful that together take less than a minute. Elsewhere: MAIN_JOB.
END_TO_END = {
    "app": JUDGE(("velmora",), MAIN_JOB.tests + (
        "end_to_end/test_process_frame.py", "end_to_end/test_products.py", "end_to_end/test_report_and_check.py",
        "end_to_end/test_orbit_corners.py", "end_to_end/test_collisions.py", "end_to_end/test_views.py")),
    "companions": JUDGE((*IMPORT.programs, "velmora-view"), ("view/test_view.py", *IMPORT.tests)),
    "geometry": JUDGE(("velmora",), MAIN_JOB.tests + ("end_to_end/test_views.py",)),
    "import": IMPORT,
    "lib/baselib/controller": JUDGE(("velmora",), ("end_to_end/test_process_frame.py", "end_to_end/test_failures.py")),
    "lib/baselib/image": JUDGE(("velmora",), MAIN_JOB.tests + ("end_to_end/test_products.py", "end_to_end/test_report_and_check.py")),
    "lib/baselib/logging": JUDGE(("velmora",), ("end_to_end/test_process_frame.py", "end_to_end/test_report_and_check.py")),
    "lib/baselib/sidecar": JUDGE(("velmora-view", "velmora"), ("view/test_view.py", "end_to_end/test_report_and_check.py")),
    "orbit": JUDGE(("velmora",), MAIN_JOB.tests + ("end_to_end/test_orbit_corners.py",)),
    "simulation": JUDGE(("velmora",), MAIN_JOB.tests + ("end_to_end/test_threads.py", "end_to_end/test_products.py",
                                                     "end_to_end/test_layover_shadow.py", "end_to_end/test_views.py")),
    "view": JUDGE(("velmora-view", "velmora"), ("view/test_view.py",)),
}
NO_STATEMENT = r"(?!\s*(?:return|throw|using|delete|static_assert|case|default|EXPECT|friend)\b)"

FAULT = collections.namedtuple("FAULT", "path line kind start end new")
OPERATORS = [  # kind, what is looked for in a line without strings and comments, group that is replaced, by what
    ("relation", r" (<=|>=|==|!=|<|>) ", 1, lambda g: SWAPPED[g[1]]),
    ("arithmetic", r" (\+|-|\*|/|\+=|-=|\*=|/=) ", 1, lambda g: SWAPPED[g[1]]),
    ("logic", r" (&&|\|\|) ", 1, lambda g: SWAPPED[g[1]]),
    ("step", r"(\+\+|--)", 1, lambda g: SWAPPED[g[1]]),
    ("constant", r"(?<![\w.'])(\d+)(?![\w.'])", 1, lambda g: str(int(g[1]) + 1)),
    ("constant", r"(?<![\w.'])(\d+)\.\d", 1, lambda g: str(int(g[1]) + 1)),
    ("condition", r"\b(?:if|while) \((.*)\)(?: \{| return\b.*;| throw\b.*;| continue;| break;)$", 1, lambda g: "!(%s)" % g[1]),
    ("condition", r" (!)(?=[\w(])", 1, lambda g: ""),
    ("truth", r"\breturn (true|false);", 1, lambda g: SWAPPED[g[1]]),
    ("function", r"\bstd::(min|max|sin|cos|floor|ceil)\(", 1, lambda g: SWAPPED[g[1]]),
    ("no return", r"\b(?:if|while|for) \(.*\) (return\b.*);$", 1, lambda g: ""),
    ("no throw", r"(?:^\s+|\) )(throw\b.*);$", 1, lambda g: ""),
    ("no statement", r"^\s+" + NO_STATEMENT + r"([\w.>\[\]()*-]+ [-+*/|&]?= .*);$", 1, lambda g: ""),
    ("no statement", r"^\s+" + NO_STATEMENT + r"([\w.:>-]+\(.*\));$", 1, lambda g: ""),
    ("arguments", r"((?<!mi)(?<!ma)\w\((?:[^()]*, )?)([\w.]+), (?!\2\b)([\w.]+)(?=[,)])", 0, lambda g: g[1] + g[3] + ", " + g[2]),
]
NO_FAULT = r"\boperator\b|^template|assert\(|swap\(|= (?:default|delete|0);$|\bhypot\(|\.reserve\("


def blank(match):
    return re.sub(r"[^\n]", "\0", match[0])


def faults_of(path, text):
    """Every fault that fits the file."""
    masked = re.sub(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])\'|^ *#(?:\\\n|[^\n])*', blank, text,
                    flags=re.S | re.M)
    offset = 0
    for number, line in enumerate(masked.splitlines(keepends=True), 1):
        code = line.rstrip("\0 \n")
        if not re.search(NO_FAULT, code) and code.count("(") == code.count(")"):
            for kind, pattern, group, replacement in OPERATORS:
                for match in re.finditer(pattern, code):
                    groups = [text[offset + first:offset + last] for first, last in match.regs]
                    yield FAULT(path, number, kind, offset + match.start(group), offset + match.end(group), replacement(groups))
        offset += len(line)


def folder_of(path):
    return "/".join(path.split("/")[:3 if path.startswith("lib/") else 1])


def draw(faults, seed):
    """A choice that takes turns among the kinds, since constants and statements are many."""
    chance = random.Random(seed)
    kinds = collections.defaultdict(list)
    for fault in faults:
        kinds[fault.kind].append(fault)
    for of_kind in kinds.values():
        chance.shuffle(of_kind)
    while kinds:
        for kind in sorted(kinds):
            yield kinds[kind].pop()
            if not kinds[kind]:
                del kinds[kind]


class WORKSHOP:
    """A copy of the tree with a build of its own."""

    def __init__(self, place, jobs, end_to_end):
        self.tree = place / "tree"
        self.build_folder = self.tree.parent / "build"
        self.scratch = self.tree.parent / "tmp"
        self.jobs = jobs
        self.end_to_end = end_to_end
        self.usual_s = {}

    def prepare(self):
        for name in subprocess.run(["git", "ls-files"], cwd=REPOSITORY, capture_output=True, text=True, check=True).stdout.split("\n"):
            source, copy = REPOSITORY / name, self.tree / name
            if source.is_file() and not (copy.exists() and copy.read_bytes() == source.read_bytes()):
                copy.parent.mkdir(parents=True, exist_ok=True)
                shutil.copyfile(source, copy)
        launcher = ["-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"] if shutil.which("ccache") else []
        subprocess.run(["cmake", "-G", "Ninja", "-S", self.tree, "-B", self.build_folder, "-DCMAKE_BUILD_TYPE=Debug",
                        "-DCMAKE_CXX_FLAGS=-O1 -DNDEBUG -w", "-DCMAKE_CXX_FLAGS_DEBUG=",
                        "-DVELMORA_COMPILE_DATE=2000-01-01T00:00:00Z", *launcher],
                       check=True, stdout=subprocess.DEVNULL)

    def build(self, *targets):
        return self.run(["cmake", "--build", self.build_folder, "--parallel", str(self.jobs), "--target", *targets], 900, 3600)

    def run(self, command, processor_s, patience_s):
        """True when the command succeeds within bounds of processor time and memory (of each process) and of patience,
        should it only wait."""
        def bounds():
            resource.setrlimit(resource.RLIMIT_CPU, (processor_s, processor_s + 1))
            os.setpriority(os.PRIO_PROCESS, 0, 10)
            resource.setrlimit(resource.RLIMIT_AS, (8 << 30, 8 << 30))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
        self.scratch.mkdir(exist_ok=True)
        environment = dict(os.environ, TMPDIR=str(self.scratch), VELMORA_RANDOM_SCENES="1", PYTHONDONTWRITEBYTECODE="1",
                           VELMORA_SHARED=os.environ.get("VELMORA_SHARED", str(REPOSITORY.parent / "shared")),
                           VELMORA_BINARY=str(self.build_folder / "app" / "velmora"),
                           VELMORA_IMPORT=str(self.build_folder / "import" / "velmora-import"),
                           VELMORA_GRID_CHECK=str(self.build_folder / "tests" / "import" / "geolocation_grid_check"),
                           VELMORA_VIEW=str(self.build_folder / "view" / "velmora-view"))
        process = subprocess.Popen(command, cwd=self.build_folder, env=environment, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, preexec_fn=bounds,
                                   start_new_session=True)
        try:
            return process.wait(patience_s) == 0
        except subprocess.TimeoutExpired:
            return False
        finally:
            try:
                os.killpg(process.pid, signal.SIGKILL)  # what it may have left running
            except ProcessLookupError:
                pass
            process.wait()
            shutil.rmtree(self.scratch, ignore_errors=True)

    def timed(self, command, what):
        """The first run of the tests is that of the tree without faults: it sets the limits."""
        if what in self.usual_s:
            usual_s, waited_s = self.usual_s[what]
            return self.run(command, int(4 + 4 * usual_s), 60 + 10 * waited_s)
        start, clock_s = processor_time(), time.monotonic()
        passed = self.run(command, 600, 3600)
        self.usual_s[what] = processor_time() - start, time.monotonic() - clock_s
        return passed

    def unit_tests(self, folder):
        """The test programs of the folder, but for those of minutes."""
        programs = []
        for name in TESTED_WITH.get(folder, (folder.split("/")[-1],)):
            tests = self.tree / "tests" / name / "CMakeLists.txt"
            calls = re.findall(r"velmora_test\((\w+)([^)]*)\)", tests.read_text()) if tests.exists() else []
            programs += [self.build_folder / "tests" / name / program for program, words in calls if "LABEL long" not in words]
        return programs

    def verdict(self, folder):
        """Who catches the fault; "" for nobody, None when it does not compile."""
        units = self.unit_tests(folder)
        if units and not self.build(*[unit.name for unit in units]):
            return None
        for unit in units:
            if not self.timed([unit, "--gtest_fail_fast"], unit.name):
                return "unit"
        if not self.end_to_end:
            return ""
        judge = END_TO_END.get(folder, MAIN_JOB)
        if not self.build(*judge.programs):
            return None
        files = [str(self.tree / "tests" / name) for name in judge.tests]
        passed = self.timed(["/usr/bin/python3", "-m", "pytest", "-qx", "-p", "no:cacheprovider", *files], judge)
        return "" if passed else "end_to_end"

    def plant(self, folder, fault):
        """The verdict on one fault."""
        path = self.tree / fault.path
        text = path.read_text()
        path.write_text(text[:fault.start] + fault.new + text[fault.end:])
        try:
            return self.verdict(folder)
        finally:
            path.write_text(text)


def processor_time():
    """Of all children so far: that of the clock says more about the machine's other work."""
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    return used.ru_utime + used.ru_stime


def line_of(text, start):
    return text[text.rfind("\n", 0, start) + 1:(text + "\n").find("\n", start)].strip()


def change_of(text, fault):
    after = line_of(text[:fault.start] + fault.new + text[fault.end:], fault.start)
    return "%s: %s  ->  %s" % (fault.path, line_of(text, fault.start), after)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folders", nargs="*")
    parser.add_argument("--count", type=int, default=40, help="faults per folder")
    parser.add_argument("--seed", default="1")
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--place", type=pathlib.Path, default=REPOSITORY / "build" / "planted_faults", help="for another run beside")
    parser.add_argument("--unit", action="store_true", help="unit tests only: a header takes minutes to reach the program")
    parser.add_argument("--list", action="store_true", help="only tell the faults")
    parser.add_argument("--again", type=pathlib.Path, help="only the faults that this earlier output tells")
    options = parser.parse_args()

    texts = {}
    names = subprocess.run(["git", "ls-files", "*.cpp", "*.h"], cwd=REPOSITORY, capture_output=True, text=True, check=True).stdout
    for name in names.split():
        if name.split("/")[0] not in NO_PRODUCT and (REPOSITORY / name).exists():
            texts[name] = (REPOSITORY / name).read_text()
    unobservable = [line for line in UNOBSERVABLE.read_text().splitlines() if line and line[0] not in "# "]
    workshop = WORKSHOP(options.place.resolve(), options.jobs, not options.unit)
    if not options.list:
        workshop.prepare()
    totals = {}
    for folder in options.folders or sorted({folder_of(name) for name in texts}):
        folder = folder.rstrip("/")
        faults = [fault for name, text in texts.items() if folder_of(name) == folder for fault in faults_of(name, text)]
        if not options.list:  # the limits
            caught = workshop.verdict(folder)
            if caught != "":
                sys.exit("%s: the tree without faults fails: %s" % (folder, caught or "build"))
        count = collections.Counter()
        if options.again:
            told = set(re.findall(r" line \d+: (.*)", options.again.read_text()))
            faults = [fault for fault in faults if change_of(texts[fault.path], fault) in told]
        drawn = draw(faults, options.seed + folder)
        chosen = sorted(itertools.islice(drawn, options.count))  # file by file: a build compiles one
        for fault in itertools.chain(chosen, drawn):
            if sum(count.values()) == options.count:
                break
            change = change_of(texts[fault.path], fault)
            tell = "%s line %d: %s" % (fault.kind, fault.line, change)
            if options.list:
                count["listed"] += 1
                print(tell)
                continue
            verdict = workshop.plant(folder, fault)
            if verdict is None:
                continue
            hidden = verdict == "" and change in unobservable
            count["unobservable" if hidden else verdict or "survived"] += 1
            if verdict == "":
                print("%s %s" % ("unobservable" if hidden else "SURVIVED", tell), flush=True)
        totals[folder] = count
        seen = count["unit"] + count["end_to_end"] + count["survived"]
        print("%-26s %3d faults: %3d caught by unit tests, %3d by end-to-end tests, %3d survived, %d unobservable: %.0f %%" % (
            folder, seen + count["unobservable"], count["unit"], count["end_to_end"], count["survived"], count["unobservable"],
            100.0 * (seen - count["survived"]) / max(seen, 1)), flush=True)
    whole = sum(totals.values(), collections.Counter())
    seen = whole["unit"] + whole["end_to_end"] + whole["survived"]
    print("all: %d of %d observable faults caught: %.1f %%" % (seen - whole["survived"], seen,
                                                               100.0 * (seen - whole["survived"]) / max(seen, 1)))


if __name__ == "__main__":
    main()
