"""Runs the real program on real files and collects what it leaves behind."""

import dataclasses
import fcntl
import os
import pathlib
import subprocess
import sys

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(REPOSITORY / "demo"))

from scene_maker import pool_file, raster  # noqa: E402

BINARY = os.environ.get("VELMORA_BINARY", str(REPOSITORY / "build" / "debug" / "app" / "velmora"))
SANITIZED = bool(os.environ.get("VELMORA_SANITIZE"))
SMALL = dict(samples=60, lines=50, terrain="flat", low_m=100.0, cover_low_m=0.0, cover_high_m=1000.0)
LAST_LINE = "ORQ_MSG|ERROR|velmora terminated with error!"
POOLS = ("master.pool", "slave.pool", "insar.pool", "log.pool", "dem.pool")
RUN_LIMIT_S = 300.0
PRODUCTS = ("SIMU_PHASE", "RG_COREG", "AZ_COREG", "X_EARTH", "Y_EARTH", "Z_EARTH", "H_EARTH")
FILES = [name.lower() + ".ras" for name in PRODUCTS]


@dataclasses.dataclass
class RUN:
    folder: pathlib.Path
    status: int
    screen: str
    errors: str

    @property
    def log(self):
        """Lines of the log file; the common prefix " : global : " is taken off: "INFO  text"."""
        path = self.folder / "log.velmora"
        if not path.exists():
            return []
        lines = path.read_text(encoding="utf-8").splitlines()
        return [line.replace(" : global : ", " ", 1) for line in lines]

    def lines(self, level):
        return [line[6:] for line in self.log if line[:5].strip() == level]

    def product(self, name):
        return raster.read(self.folder / (name.lower() + ".ras"))

    def offset(self, axis):
        """What has to be added to an Earth file's values."""
        return pool_file.read(self.folder / "insar.pool")[axis + "_earth_offset"]

    def explanation(self):
        return "status %d\n%s\n%s" % (self.status, "\n".join(self.log[-25:]), self.errors[-3000:])


def velmora(folder, *arguments, parallel="1", environment=None, keyboard=None, control_file="scene.pcf", limit_s=RUN_LIMIT_S):
    """One run in the folder. The environment is bare but for PARALLEL: any key could be looked up there."""
    variables = {"PATH": os.environ["PATH"], "SECONDS_ON_PARAMETER_INPUT": "1", "PARALLEL": parallel}
    variables.update({name: os.environ[name] for name in ("ASAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS")
                      if name in os.environ})
    variables.update(environment or {})
    control = ("-pcf", control_file) if control_file else ()
    done = subprocess.run([BINARY, *control, *arguments], cwd=folder, env={k: v for k, v in variables.items() if v is not None},
                          input=keyboard, stdin=subprocess.DEVNULL if keyboard is None else None, capture_output=True,
                          text=True, timeout=limit_s, check=False)
    return RUN(pathlib.Path(folder), done.returncode, done.stdout, done.stderr)


def succeed(folder, *arguments, **options):
    run = velmora(folder, *arguments, **options)
    assert run.status == 0, run.explanation()
    return run


class HELD_RUN:
    """A run that is at most one line of its screen ahead of the reader: a pipe of one page that takes each write as a
    packet of its own holds one line, and the program waits before the next one."""

    def __init__(self, folder, environment, *arguments):
        self._screen, end = os.pipe2(os.O_DIRECT | os.O_CLOEXEC)
        fcntl.fcntl(end, fcntl.F_SETPIPE_SZ, 4096)
        self.process = subprocess.Popen([BINARY, "-pcf", "scene.pcf", *arguments], cwd=folder, env=environment,
                                        stdin=subprocess.DEVNULL, stdout=end)
        os.close(end)

    def read_line(self):
        return os.read(self._screen, 65536)

    def read_until(self, text):
        line = self.read_line()
        while text not in line:
            assert line, "the run ended before %r" % text
            line = self.read_line()

    def end(self):
        """Lets the run go on to its end. @return its exit status"""
        while self.read_line():
            pass
        os.close(self._screen)
        return self.process.wait(timeout=RUN_LIMIT_S)


def pool_bytes(folder):
    return {name: (pathlib.Path(folder) / name).read_bytes() for name in POOLS}


def products(folder):
    """Bytes of those that are there."""
    return {name: (folder / name).read_bytes() for name in FILES if (folder / name).exists()}


def content(folder):
    """Every name and what is there; of a link, where it leads."""
    return {str(path.relative_to(folder)): os.readlink(path) if path.is_symlink() else path.read_bytes() if path.is_file() else None
            for path in folder.rglob("*")}


def edit_pool(path, key, entry):
    """Replaces the entry of the key (its brace block included) by other lines; None removes it; a new key is appended."""
    lines, kept, done = pathlib.Path(path).read_text(encoding="ascii").splitlines(), [], False
    skipping = False
    for line in lines:
        if skipping:
            skipping = line != "}"
            continue
        if line.split(None, 1)[:1] == [key]:
            skipping = line.split()[1].endswith("_V")
            kept += [entry] if entry is not None else []
            done = True
        else:
            kept.append(line)
    if not done and entry is not None:
        kept.append(entry)
    pathlib.Path(path).write_text("\n".join(kept) + "\n", encoding="ascii")


def edit_control_file(folder, **keys):
    """Sets keys of scene.pcf; None removes a key."""
    path = pathlib.Path(folder) / "scene.pcf"
    lines = [line for line in path.read_text(encoding="ascii").splitlines() if line.split()[0] not in keys]
    lines += ["%s %s" % (key, value) for key, value in keys.items() if value is not None]
    path.write_text("\n".join(lines) + "\n", encoding="ascii")
