#!/usr/bin/python3
"""orbit_choices.py VELMORA SCENE: runs a scene with every interpolation and with every pool type, and prints as a table
by how much the products differ from the scene's own run (largest and root mean square).

SCENE is a folder with a control file scene.pcf whose pools hold orbits of type orbit_pool_double_utc, as the scenes of
the demo do. The runs work on copies in a temporary folder.
"""
import datetime
import pathlib
import re
import shutil
import struct
import subprocess
import sys
import tempfile

import numpy

INTERPOLATIONS = ["polynom", "polyfit_7", "polyfit_9", "spline", "localpolynom_0_8", "localpolyfit_7_9", "chebyshev_9",
                  "localchebyshev_7_9", "hermite_0_4", "hermite_0_8", "localhermite_0_4", "everett_6"]
TYPES = ["double_double", "double_utc", "double_met", "float_double", "float_utc", "float_met"]
PRODUCTS = [("SIMU_PHASE", "rad"), ("RG_COREG", "px"), ("AZ_COREG", "px"), ("X_EARTH", "m"), ("H_EARTH", "m")]


def pool_list(text, key):
    """The tag and the lines of a list entry."""
    match = re.search(r"^%s (\w+) 0 \d+\n\{\n(.*?)\}\n" % key, text, re.M | re.S)
    return match, match.group(2).splitlines()


def replace_list(text, key, tag, items):
    match, _ = pool_list(text, key)
    entry = "%s %s 0 %d\n{\n%s\n}\n" % (key, tag, len(items), "\n".join(items))
    return text[:match.start()] + entry + text[match.end():]


def replace_text(text, key, value):
    return re.sub(r'^%s STR ".*"$' % key, '%s STR "%s"' % (key, value), text, flags=re.M)


def microseconds(text):
    text = text.strip('"')
    form = "%Y-%m-%dT%H:%M:%S.%f" if "T" in text else "%d-%b-%Y/%H:%M:%S.%f"
    return (datetime.datetime.strptime(text, form) - datetime.datetime(2000, 1, 1)) // datetime.timedelta(microseconds=1)


def met_text(value):
    day, rest = divmod(value, 86400 * 10**6)
    return "+%04d/%02d:%02d:%02d.%06d" % (day, rest // 3600000000, rest // 60000000 % 60, rest // 10**6 % 60, rest % 10**6)


def converted(text, orbit_type):
    """The pool with its orbit in another type. No leap second lies in the scenes' short arcs."""
    coordinates, times = orbit_type.split("_")
    reference = microseconds(re.search(r'^orbit_reference_time STR "(.*)"$', text, re.M).group(1))
    origin = reference - 100 * 86400 * 10**6  # of the mission: 100 days before
    _, items = pool_list(text, "state_vector_times")
    seconds = [microseconds(item) for item in items]
    if times == "double":
        text = replace_list(text, "state_vector_times", "FLT_15_V", ["%.6f" % ((t - reference) / 1e6 + 1000) for t in seconds])
        text = replace_text(text, "orbit_reference_time", "1000")
    elif times == "met":
        text = replace_list(text, "state_vector_times", "STR_V", ['"%s"' % met_text(t - origin) for t in seconds])
        text = replace_text(text, "orbit_reference_time", met_text(reference - origin))
    if coordinates == "float":
        for key in ("state_vector_positions", "state_vector_velocities"):
            _, items = pool_list(text, key)
            text = replace_list(text, key, "FLT_6_V", ["%.9g" % numpy.float32(item) for item in items])
    return replace_text(text, "orbit_representation", "orbit_pool_" + orbit_type)


def read_raster(path):
    data = path.read_bytes()
    _, width, height = struct.unpack(">3I", data[:12])
    return numpy.frombuffer(data, "<f4", offset=32).reshape(height, width).astype(float)


def run(velmora, scene, interpolation=None, orbit_type=None):
    """The products of the scene with another orbit, None when the run fails."""
    with tempfile.TemporaryDirectory() as folder:
        copy = pathlib.Path(folder) / "scene"
        shutil.copytree(scene, copy)
        for pool in (copy / "master.pool", copy / "slave.pool"):
            text = pool.read_text()
            if interpolation:
                text = replace_text(text, "orbit_interpolation", interpolation)
            if orbit_type:
                text = converted(text, orbit_type)
            pool.write_text(text)
        if subprocess.run([velmora, "-pcf", "scene.pcf"], cwd=copy, stdout=subprocess.DEVNULL).returncode != 0:
            return None
        keys = dict(line.split(None, 1) for line in (copy / "scene.pcf").read_text().splitlines() if " " in line)
        return {key: read_raster(copy / keys[key].strip()) for key, _ in PRODUCTS if key in keys}


def print_row(name, products, expected):
    cells = []
    for key, _ in PRODUCTS:
        if products is None or key not in products:
            cells.append("failed" if products is None else "-")
            continue
        difference = products[key] - expected[key]
        cells.append("%.2g (%.1g)" % (abs(difference).max(), numpy.sqrt((difference**2).mean())))
    print("| `%s` | %s |" % (name, " | ".join(cells)), flush=True)


def main(argv):
    if len(argv) != 2:
        print(__doc__, file=sys.stderr)
        return 2
    velmora, scene = pathlib.Path(argv[0]).resolve(), pathlib.Path(argv[1])
    expected = run(velmora, scene)
    print("| | %s |" % " | ".join("%s [%s]" % product for product in PRODUCTS))
    for interpolation in INTERPOLATIONS:
        print_row(interpolation, run(velmora, scene, interpolation=interpolation), expected)
    for orbit_type in TYPES:
        print_row(orbit_type, run(velmora, scene, orbit_type=orbit_type), expected)
        print_row(orbit_type + ", polyfit_7", run(velmora, scene, "polyfit_7", orbit_type), expected)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
