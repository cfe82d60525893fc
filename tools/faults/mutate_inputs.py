#!/usr/bin/python3
"""Runs velmora on a small scene whose control file, pools or DEM were damaged at random, and judges how it ends.

Usage: mutate_inputs.py --binary PATH [--minutes M] [--seed N] [--keep FOLDER]

Meant for a program built with sanitizers. What has to hold of each run: exit status 0 or 1, no report of a sanitizer, an
end within LONGEST_S, a cause in the log of a failure, inputs as they were, an older product where none was made. The seed
of each finding repeats it (--seed N with --minutes 0); --keep holds the folders of the findings.
"""

import argparse
import os
import pathlib
import random
import re
import shutil
import subprocess
import sys
import tempfile
import time

from small_scene import INPUTS as UNCHANGED
from small_scene import PRODUCTS, REPOSITORY, make_small_scene

INPUTS = ["scene.pcf", "master.pool", "slave.pool", "insar.pool", "log.pool", "dem.pool", "dem.ras"]
LONGEST_S = 60.0
MEMORY_MIB = 1500
NUMBERS = ["0", "-1", "1", "2", "65536", "2147483647", "-2147483648", "4294967296", "1e308", "-1e308", "1e-308", "nan", "inf",
           "1e9", "1e-9", "0.5", "-0.0", "99999999999999999999", "3.40282347e+38", "7e22", "180", "90", "-90", "360"]
TEXTS = ['""', '"', '"%s%n"', '"' + "a" * 2000 + '"', "TRUE", "{", "}", "#", "\\0", "hermite_0_8", '"spline"', '"polynom"',
         '"localpolynom_3_5"', '"everett"', '"cheby_5_9"', '"orbit_mdb_double_utc"', '"UTM"', '"GEO"', '"single_pass"', "FLT_15",
         "INT_32", "STR_V", "FLT_15_V", '"01-JAN-2016/00:00:60"', '"9999-12-31T23:59:59"', "-", "nowhere/x", ".", "/dev/null",
         "master.pool", "dem.ras", "simu_phase.ras"]
KEYS = ["SHIFT_MATRICES_SUBSAMPLING", "EARTH_MATRICES_SUBSAMPLING_X", "EARTH_MATRICES_SUBSAMPLING_Y", "MEMORY_LIMIT", "DEM_VALID",
        "IFGRM_INVALID", "PS_INSAR_MODE", "WRITE_SHIFTS", "VRT_SIDECARS", "REPORT", "OBSERVATION_MODE", "RANGE_TIME_SHIFT",
        "LINE_OF_SIGHT", "INCIDENCE", "LOCAL_INCIDENCE", "PERPENDICULAR_BASELINE", "HEIGHT_OF_AMBIGUITY", "LAYOVER_SHADOW"]


def damage_text(chance, content):
    lines = content.split(b"\n")
    place = chance.randrange(len(lines))
    # An entry's first line says more than the hundredth element of a list.
    if chance.random() < 0.7:
        entries = [i for i, line in enumerate(lines) if re.match(rb"[A-Za-z]", line)] or [place]
        place = chance.choice(entries)
    words = lines[place].split(b" ")
    kind = chance.randrange(10)
    if kind < 5:
        new = chance.choice(NUMBERS + TEXTS) if chance.random() < 0.4 else chance.choice(NUMBERS)
        words[chance.randrange(1, len(words)) if len(words) > 1 else 0] = new.encode()
        lines[place] = b" ".join(words)
    elif kind == 5:
        del lines[place]
    elif kind == 6:
        lines.insert(chance.randrange(len(lines)), lines[place])
    elif kind == 7:
        lines[place:place + 1] = [lines[place][:chance.randrange(len(lines[place]) + 1)]]
    elif kind == 8:
        lines.append((chance.choice(KEYS) + " " + chance.choice(NUMBERS + TEXTS)).encode())
    else:
        return damage_bytes(chance, content, len(content))
    return b"\n".join(lines)


def damage_bytes(chance, content, most):
    content = bytearray(content)
    for _ in range(chance.randrange(1, 4)):
        if content:
            content[chance.randrange(min(len(content), most))] = chance.choice([0, 1, 0x7F, 0x80, 0xFF, chance.randrange(256)])
    return bytes(content[:chance.randrange(len(content) + 1)]) if chance.random() < 0.1 else bytes(content)


def damage(chance, folder):
    """@return what was damaged"""
    names = chance.choices(INPUTS, weights=[4, 3, 3, 4, 1, 4, 2], k=chance.choice([1, 1, 2, 3]))
    for name in names:
        path = folder / name
        raster = name.endswith(".ras")
        path.write_bytes(damage_bytes(chance, path.read_bytes(), 32) if raster else damage_text(chance, path.read_bytes()))
    return names


def judge(binary, folder, seed):
    """@return what did not hold, and the status"""
    damage(random.Random(seed), folder)
    before = {name: (folder / name).read_bytes() for name in UNCHANGED}
    variables = {"PATH": os.environ["PATH"], "PARALLEL": "2", "SECONDS_ON_PARAMETER_INPUT": "1",
                 "ASAN_OPTIONS": "hard_rss_limit_mb=%d:allocator_may_return_null=1:detect_leaks=0" % MEMORY_MIB,
                 "UBSAN_OPTIONS": "halt_on_error=1:print_stacktrace=1"}
    try:
        done = subprocess.run([binary, "-pcf", "scene.pcf"], cwd=folder, env=variables, stdin=subprocess.DEVNULL,
                              capture_output=True, timeout=LONGEST_S, check=False)
    except subprocess.TimeoutExpired:
        return ["no end within %g s" % LONGEST_S], None
    text = (done.stdout + done.stderr).decode(errors="replace")
    wrong = ["status %d" % done.returncode] if done.returncode not in (0, 1) else []
    if "Sanitizer" in text or "runtime error:" in text or "hard rss limit" in text:
        wrong.append("a sanitizer reports: " + next((line for line in text.splitlines() if "anitizer" in line or "error:" in line), ""))
    alarms = [line for line in text.splitlines() if "ALARM : " in line and "ORQ_MSG" not in line and "FATAL ERROR" not in line]
    if done.returncode == 1 and not alarms:
        wrong.append("no cause in the log")
    wrong += [name + " was changed" for name in UNCHANGED if (folder / name).read_bytes() != before[name]]
    if done.returncode == 1:
        wrong += [name + " is not the older product" for name in PRODUCTS
                  if (folder / name).read_bytes() != b"an older product"]
    return wrong, done.returncode


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--binary", default=os.environ.get("VELMORA_BINARY", REPOSITORY / "build/asan/app/velmora"))
    parser.add_argument("--minutes", type=float, default=30.0)
    parser.add_argument("--seed", type=int, default=random.SystemRandom().randrange(1 << 40))
    parser.add_argument("--keep")
    options = parser.parse_args()
    begin, runs, good, findings = time.monotonic(), 0, 0, 0
    with tempfile.TemporaryDirectory(prefix="mutate_", dir="/dev/shm" if os.access("/dev/shm", os.W_OK) else None) as room:
        scene = make_small_scene(pathlib.Path(room) / "scene")
        for name in PRODUCTS:
            (scene / name).write_bytes(b"an older product")
        print("first seed", options.seed, flush=True)
        while runs == 0 or time.monotonic() - begin < 60.0 * options.minutes:
            seed = options.seed + runs
            folder = pathlib.Path(room) / "run"
            shutil.rmtree(folder, ignore_errors=True)
            shutil.copytree(scene, folder)
            wrong, status = judge(str(pathlib.Path(options.binary).resolve()), folder, seed)
            runs += 1
            good += status == 0
            if wrong:
                findings += 1
                print("seed %d: %s" % (seed, "; ".join(wrong)), flush=True)
                if options.keep:
                    shutil.copytree(folder, pathlib.Path(options.keep) / str(seed), dirs_exist_ok=True)
    print("%d runs in %.0f s, %d with status 0, %d findings" % (runs, time.monotonic() - begin, good, findings))
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
