#!/usr/bin/python3
"""Times whole runs of velmora on a synthetic scene and prints, per number of threads, what stage B and memory cost.

Usage: benchmarks/whole_program.py [--scene square|wide|huge] [--binary PATH] [--threads 1,2] [--repeat 3] [options of make_scene.py]
Products: phase, shifts at factor 4, height; about 2 million DEM points. The best of the repeats counts: noise of the machine
only ever adds time. Stage B is timed from outside, between the
arrival of its banner and of the next stage's on the program's standard output. DEM points are those of the simulated
rows and columns; pixels are those of the simulated area. Needs python3-numpy and /proc-style resource usage (Linux).
"""

import argparse
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time

REPOSITORY = pathlib.Path(__file__).resolve().parents[1]
COMMON = ["--products", "phase", "shifts", "height", "--shift-factors", "4", "4", "--dem-margin-m", "500", "--high-m", "1800"]
SCENES = {"square": ["--samples", "2000", "--lines", "2000", "--dem-spacing-m", "15"],
          "wide": ["--samples", "10000", "--lines", "2500", "--dem-spacing-m", "25"],
          "huge": ["--samples", "10000", "--lines", "100000", "--dem-spacing-m", "18", "--prf-hz", "4000"]}


OPTIONAL = ["INCIDENCE", "LOCAL_INCIDENCE", "LINE_OF_SIGHT", "PERPENDICULAR_BASELINE", "HEIGHT_OF_AMBIGUITY", "LAYOVER_SHADOW"]


def timed_run(binary, folder, threads, memory_limit, keys):
    """Seconds of stage B and of the whole run, processor seconds, those of the system, peak memory in MiB, and the log."""
    environment = {"PATH": os.environ["PATH"], "PARALLEL": str(threads)}
    start = time.monotonic()
    arguments = ["-MEMORY_LIMIT", memory_limit] if memory_limit else []
    for key in keys:
        arguments += ["-" + key, key.lower() + ".ras"]
    process = subprocess.Popen([binary, "-pcf", "scene.pcf", *arguments], cwd=folder, env=environment, stdout=subprocess.PIPE,
                               stdin=subprocess.DEVNULL, text=True)
    arrivals, lines = {}, []
    for line in process.stdout:
        for stage in ("B. PHASE SIMULATION", "C. OUTPUT TO FILE SAVING"):
            if stage in line:
                arrivals[stage[0]] = time.monotonic()
        lines.append(line)
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit("velmora ended with status %d:\n%s" % (process.returncode, "".join(lines[-10:])))
    return (arrivals["C"] - arrivals["B"], time.monotonic() - start, usage.ru_utime + usage.ru_stime,
            usage.ru_stime, usage.ru_maxrss / 1024.0, "".join(lines))


def system_seconds_of_dd(folder):
    """What the system needs to write the bytes of the products into the same file system."""
    mib = sum(path.stat().st_size for path in pathlib.Path(folder).glob("*.ras") if path.name != "dem.ras") >> 20
    best = float("inf")
    for _ in range(5):
        process = subprocess.Popen(["dd", "if=/dev/zero", "of=dd.out", "bs=1M", "count=%d" % mib], cwd=folder,
                                   stderr=subprocess.DEVNULL)
        best = min(best, os.wait4(process.pid, 0)[2].ru_stime)
        process.returncode = 0
        pathlib.Path(folder, "dd.out").unlink()
    return best


def counts(log):
    columns, rows = (re.search(r"   %s: (\d+) -> (\d+)" % axis, log) for axis in "xy")
    extended = [re.search(r"nr_%s_simulation:\.* (\d+)" % word, log) for word in ("samples", "lines")]
    return (int(columns[2]) - int(columns[1]) + 1) * (int(rows[2]) - int(rows[1]) + 1), extended


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--scene", choices=SCENES, default="wide")
    parser.add_argument("--binary", default=str(REPOSITORY / "build" / "release" / "app" / "velmora"))
    parser.add_argument("--threads", default="1,2")
    parser.add_argument("--repeat", type=int, default=3)
    parser.add_argument("--memory-limit", default="", help="MEMORY_LIMIT, MiB: has the scene simulated in slabs")
    parser.add_argument("--optional", action="store_true",
                        help="a second series with all optional products; Earth factors 4 x 4")
    options, scene = parser.parse_known_args(arguments)
    if options.optional:
        scene += ["--earth-factors", "4", "4"]
    with tempfile.TemporaryDirectory(prefix="velmora_benchmark_") as folder:
        subprocess.run([REPOSITORY / "demo" / "make_scene.py", folder, *COMMON, *SCENES[options.scene], *scene], check=True)
        pair = pathlib.Path(folder, "insar.pool").read_text() + pathlib.Path(folder, "master.pool").read_text()
        pixels = 1
        for word in ("samples", "lines"):
            pixels *= int(re.search(r"n_%s INT_32 (\d+)" % word, pair)[1])
        print("%7s %12s %14s %14s %12s %12s %12s %12s" % ("threads", "stage B [s]", "DEM points/s", "pixels/s", "whole [s]",
                                                          "CPU [s]", "system [s]", "peak [MiB]"))
        series = [(threads, keys) for keys in ([], OPTIONAL)[:1 + options.optional] for threads in options.threads.split(",")]
        # In turns: the speed of a shared machine changes from minute to minute.
        rounds = [[timed_run(options.binary, folder, threads, options.memory_limit, keys) for threads, keys in series]
                  for _ in range(options.repeat)]
        for (threads, keys), runs in zip(series, zip(*rounds)):
            stage_s, whole_s, cpu_s, system_s, memory = (min(run[i] for run in runs) for i in range(5))
            points, extended = counts(runs[0][5])
            simulated = int(extended[0][1]) * int(extended[1][1]) if all(extended) else pixels
            print("%7s %12.3f %14.0f %14.0f %12.3f %12.3f %12.3f %12.1f"
                  % (threads, stage_s, points / stage_s, simulated / stage_s, whole_s, cpu_s, system_s, memory))
        print("dd of the products' bytes: system %.3f s" % system_seconds_of_dd(folder))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
