#!/usr/bin/python3
"""Writes synthetic images of one place over one DEM, and the tables that velmora-import stack takes: images.csv, pairs.csv.

Needs python3-numpy.
"""

import argparse
import dataclasses
import os
import random
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

from make_scene import add_scene_options, scene_options  # noqa: E402
from scene_maker import scene  # noqa: E402
from scene_maker.placement import place  # noqa: E402


def make_stack(folder, options, images=6, next_images=3, spread_m=100.0, days=12):
    """One image every `days` days. The baselines to the first one are normally distributed.

    @return the acquisitions, in the order of time
    """
    made = scene.design(options)
    os.makedirs(folder, exist_ok=True)
    scene.write_dem(made, folder)
    draw = random.Random(options.seed)
    acquisitions = [made.master]
    for _ in range(images - 1):
        displaced = dataclasses.replace(options, perpendicular_baseline_m=draw.gauss(0.0, spread_m))
        acquisitions.append(place(displaced)[1])
    names = ["image%03d" % (i + 1) for i in range(images)]
    for i, (name, acquisition) in enumerate(zip(names, acquisitions)):
        scene.write_stack_image(made, acquisition, days * i, os.path.join(folder, name + ".pool"))
    with open(os.path.join(folder, "images.csv"), "w", encoding="ascii") as file:
        file.writelines(["name,pool\n", *("%s,%s.pool\n" % (name, name) for name in names)])
    with open(os.path.join(folder, "pairs.csv"), "w", encoding="ascii") as file:
        file.write("next\n%d\n" % next_images)
    return acquisitions


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.ArgumentDefaultsHelpFormatter)
    parser.add_argument("folder", help="where the files go; created when it is missing")
    parser.add_argument("--images", type=int, default=6, help="how many")
    parser.add_argument("--next-images", type=int, default=3, help="each is paired with so many later ones")
    parser.add_argument("--spread-m", type=float, default=100.0, help="standard deviation of the baselines")
    parser.add_argument("--days", type=int, default=12, help="between two images")
    add_scene_options(parser)
    values = vars(parser.parse_args(arguments))
    try:
        options = scene_options(values)
        make_stack(values.pop("folder"), options, **values)
    except (ValueError, OSError) as error:
        print("make_stack.py: %s" % error, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
