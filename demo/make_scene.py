#!/usr/bin/python3
"""Writes a synthetic scene for velmora: DEM raster, DEM, master, slave, InSAR and log pool, and the control file scene.pcf.

Every option of the list below is a field of scene_maker/options.py. Needs python3-numpy.
"""

import argparse
import dataclasses
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

from scene_maker import scene  # noqa: E402
from scene_maker.options import SCENE_OPTIONS  # noqa: E402

TUPLE_KINDS = {"products": str, "shift_factors": int, "earth_factors": int, "geocoding_factors": int}


def parse_arguments(arguments):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.ArgumentDefaultsHelpFormatter)
    parser.add_argument("folder", help="where the scene goes; created when it is missing")
    for field in dataclasses.fields(SCENE_OPTIONS):
        name, default = "--" + field.name.replace("_", "-"), field.default
        if isinstance(default, bool):
            parser.add_argument(name, action="store_true", help=" ")
        elif isinstance(default, tuple):
            kind = TUPLE_KINDS.get(field.name, float)
            parser.add_argument(name, nargs="*", type=kind, default=list(default), metavar=kind.__name__, help=" ")
        else:
            kind = type(default)
            parser.add_argument(name, type=kind, default=default, metavar=kind.__name__, help=" ")
    return vars(parser.parse_args(arguments))


def main(arguments):
    values = parse_arguments(arguments)
    folder = values.pop("folder")
    values = {name: tuple(value) if isinstance(value, list) else value for name, value in values.items()}
    try:
        made = scene.make_scene(SCENE_OPTIONS(**values), folder)
    except (ValueError, OSError) as error:
        print("make_scene.py: %s" % error, file=sys.stderr)
        return 1
    print("scene in %s" % folder)
    for line in scene.describe(made):
        print("  " + line)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
