#!/usr/bin/python3
"""Shows what a run left: for each product of a control file its place, size, smallest and largest value.

Usage: show_products.py [CONTROL_FILE]   (default: scene.pcf; relative product paths are taken from its folder)
Exit status 0 when every product is there and readable, 1 otherwise. Needs python3-numpy.
"""

import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

import numpy as np  # noqa: E402

from scene_maker import raster  # noqa: E402

MEANINGS = {
    "SIMU_PHASE": ("simulated phase", "rad"), "RG_COREG": ("position in slave, range", "px"),
    "AZ_COREG": ("position in slave, azimuth", "px"), "X_EARTH": ("Earth-fixed x, less offset", "m"),
    "Y_EARTH": ("Earth-fixed y, less offset", "m"), "Z_EARTH": ("Earth-fixed z, less offset", "m"),
    "H_EARTH": ("terrain height", "m"),
}


def read_control_file(path):
    with open(path, encoding="utf-8") as file:
        return dict((line.split() + [""])[:2] for line in file if line.split())


def show(control_file):
    keys = read_control_file(control_file)
    folder = os.path.dirname(os.path.abspath(control_file))
    complete = True
    for key, (meaning, unit) in MEANINGS.items():
        if key not in keys:
            continue
        if key.endswith("COREG") and "WRITE_SHIFTS" in keys:
            meaning = meaning.replace("position in slave", "shift towards slave")
        path = os.path.join(folder, keys[key])
        try:
            image = raster.read(path)
        except (OSError, ValueError) as error:
            print("%-11s %s" % (key, error))
            complete = False
            continue
        rows, columns = image.shape
        values = image[np.isfinite(image)]
        low, high = (values.min(), values.max()) if values.size else (np.nan, np.nan)
        print("%-11s %-31s %5d x %-5d %14.3f .. %-14.3f %-4s %s" % (key, meaning, columns, rows, low, high, unit, path))
        if values.size != image.size:
            print("%-11s %d values are not finite" % ("", image.size - values.size))
            complete = False
    return complete


def main(arguments):
    if len(arguments) > 1 or arguments[:1] in (["-h"], ["--help"]):
        print(__doc__.strip())
        return 0 if arguments[:1] in (["-h"], ["--help"]) else 2
    try:
        return 0 if show(arguments[0] if arguments else "scene.pcf") else 1
    except OSError as error:
        print("show_products.py: %s" % error, file=sys.stderr)
        return 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
