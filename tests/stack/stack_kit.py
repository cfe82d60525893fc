"""Stacks of small synthetic pairs, and the engine on them with a program that can be held at its first steps."""

import os
import pathlib
import select
import signal
import subprocess
import sys

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(REPOSITORY / "demo"), str(REPOSITORY / "stack")]

from make_stack import make_stack  # noqa: E402
from scene_maker.options import SCENE_OPTIONS  # noqa: E402

VELMORA, IMPORT, VIEW = (os.environ[name] for name in ("VELMORA_BINARY", "VELMORA_IMPORT", "VELMORA_VIEW"))
WORKFLOW = REPOSITORY / "stack"
PROGRAM = WORKFLOW / "velmora-stack"
OPTIONS = SCENE_OPTIONS(samples=60, lines=50, terrain="flat", low_m=100.0, cover_low_m=0.0, cover_high_m=1000.0)
PRODUCTS = ["%s.ras" % name for name in ("simu_phase", "rg_coreg", "az_coreg", "x_earth", "y_earth", "z_earth", "h_earth")]

# Notes each run in the file starts: number, process, pair. A run whose number has a FIFO writes its screen there, one line at
# a time, and so waits for its reader.
PROGRAM_THAT_CAN_BE_HELD = """#!/usr/bin/python3
import fcntl, os, sys
state, arguments = %r, sys.argv[1:]
if "--check" not in arguments:
    number = 0
    while True:
        try:
            os.mkdir("%%s/%%d" %% (state, number))
            break
        except FileExistsError:
            number += 1
    with open(state + "/starts", "a") as file:
        file.write("%%d %%d %%s\\n" %% (number, os.getpid(), os.path.basename(os.getcwd())))
    if os.path.exists("%%s/held%%d" %% (state, number)):
        screen = os.open("%%s/held%%d" %% (state, number), os.O_WRONLY)
        fcntl.fcntl(screen, fcntl.F_SETFL, os.O_DIRECT)
        fcntl.fcntl(screen, fcntl.F_SETPIPE_SZ, 4096)
        os.dup2(screen, 1)
        arguments += ["-lsl", "DEBUG"]
os.execv(%r, ["velmora", *arguments])
"""


def call(*words, folder, status=0, **environment):
    done = subprocess.run([str(word) for word in words], cwd=folder, capture_output=True, text=True, timeout=600, check=False,
                          env=dict(os.environ, **environment))
    assert done.returncode == status, done.stdout[-4000:] + done.stderr[-4000:]
    return done.stdout + done.stderr


def made_stack(folder, images=6, next_images=3, options=OPTIONS):
    make_stack(folder, options, images=images, next_images=next_images)
    call(IMPORT, "stack", "images.csv", "pairs.csv", "dem.pool", "-o", "stack", folder=folder)
    return folder / "stack"


def single_run(folder, pair):
    """The pair's products, made by hand."""
    master, slave = pair.split("__")
    call(IMPORT, "pair", master + ".pool", slave + ".pool", "dem.pool", "-o", "single_" + pair, folder=folder)
    call(VELMORA, "-pcf", "scene.pcf", folder=folder / ("single_" + pair), PARALLEL="1")
    return products(folder / ("single_" + pair))


def products(folder):
    return [(folder / name).read_bytes() for name in PRODUCTS]


def spoil_two_pairs(stack, bad, worse):
    """One is found by the check; the other by its run alone: a hole in its own terrain model."""
    control = (stack / "pairs" / bad / "scene.pcf").read_text()
    (stack / "pairs" / bad / "scene.pcf").write_text(control.replace("H_EARTH h_earth.ras", "H_EARTH none/h.ras"))
    dem = bytearray((stack.parent / "dem.ras").read_bytes())
    middle = 32 + 2 * ((len(dem) - 32) // 4)
    dem[middle:middle + 600] = b"\x00\x80" * 300
    (stack / "pairs" / worse / "dem.ras").write_bytes(dem)
    control = (stack / "pairs" / worse / "scene.pcf").read_text()
    (stack / "pairs" / worse / "scene.pcf").write_text(control.replace("DEM ../../../dem.ras", "DEM dem.ras"))


class ENGINE:
    """Snakemake on a stack."""

    def __init__(self, stack, profile="local", held=()):
        self.stack, self.state = stack, stack.parent / "state"
        self.state.mkdir()
        self.pipes = {}
        for number in held:
            os.mkfifo(self.state / ("held%d" % number))
            self.pipes[number] = os.open(self.state / ("held%d" % number), os.O_RDONLY | os.O_NONBLOCK)
        program = self.state / "velmora"
        program.write_text(PROGRAM_THAT_CAN_BE_HELD % (str(self.state), VELMORA))
        program.chmod(0o755)
        self.environment = dict(os.environ, VELMORA=str(program), XDG_CACHE_HOME=str(self.state),
                                PATH="%s:%s" % (os.path.dirname(VIEW), os.environ["PATH"]))
        self.profile, self.started = profile, []

    def __enter__(self):
        return self

    def __exit__(self, *_):
        """Also runs that outlived their engine end."""
        for process in self.started:
            try:
                os.killpg(process.pid, signal.SIGKILL)
            except ProcessLookupError:
                pass
            process.wait()
        for pipe in self.pipes.values():
            os.close(pipe)

    def start(self, *arguments):
        words = ["snakemake", "--snakefile", WORKFLOW / "Snakefile", "--profile", WORKFLOW / "profiles" / self.profile,
                 "--directory", self.stack, *arguments]
        with open(self.state / "engine.log", "ab") as log:
            self.started.append(subprocess.Popen([str(word) for word in words], env=self.environment, stdout=log, stderr=log,
                                                 stdin=subprocess.DEVNULL, start_new_session=True))
        return self.started[-1]

    def finish(self, *arguments, status):
        assert self.start(*arguments).wait(timeout=600) == status, self.log()

    def log(self):
        return (self.state / "engine.log").read_text()

    def starts(self):
        """Number, process and pair of each run that was started."""
        lines = [line.split() for line in (self.state / "starts").read_text().splitlines()]
        return [(int(number), int(process), pair) for number, process, pair in lines]

    def read_until(self, number, text):
        """Lets the held run go on to this line of its screen. Each packet is one line."""
        while True:
            while not select.select([self.pipes[number]], [], [], 1.0)[0]:
                assert self.started[-1].poll() is None, "nothing from run %d\n%s" % (number, self.log())
            line = os.read(self.pipes[number], 65536)
            assert line, "run %d ended before %r\n%s" % (number, text, self.log())
            if text in line:
                return

    def release(self, number):
        os.set_blocking(self.pipes[number], True)
        while os.read(self.pipes[number], 65536):
            pass

    def status(self):
        return call(PROGRAM, "status", self.stack, folder=self.stack)
