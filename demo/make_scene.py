#!/usr/bin/python3
"""Writes a synthetic scene for velmora: DEM raster, DEM, master, slave, InSAR and log pool, and the control file scene.pcf.

Needs python3-numpy.
"""

import argparse
import dataclasses
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

from scene_maker import scene  # noqa: E402
from scene_maker.options import SCENE_OPTIONS  # noqa: E402

HELP = {
    "samples": "master image, range", "lines": "master image, azimuth", "seed": "of the terrain",
    "side": "where the antenna looks: right or left", "permanent_scatterer": "image keys in the acquisitions' own pools",
    "oversampling": "in permanent-scatterer mode; the rates are those before it", "pass_direction": "ascending or descending",
    "slave_radar_frequency_hz": "0: the master's", "inclination_deg": "0: 97.5, or 90 where that one does not reach",
    "along_track_m": "the slave flies this much ahead", "slave_is_master": "a pair of one image with itself",
    "single_pass": "both satellites at once", "correction_coefficients": "azimuth-shift polynomial of a single-pass pair",
    "state_vectors": "0: enough to reach 50 s beyond the image", "terrain": "fractal, or flat at low-m",
    "low_m": "lowest height", "high_m": "highest height", "smoothness": "1.5 jagged .. 2.5 rounded",
    "height_step_m": "heights are multiples of this", "dem_spacing_arcsec": "geographic grids: overrides dem-spacing-m",
    "dem_margin_m": "around the area needed; negative: too small", "cover_low_m": "the DEM covers the image for heights from here",
    "cover_high_m": "to here", "longitudes": "signed: -180..180, positive: 0..360", "utm": "a UTM grid",
    "utm_zone": "0: the zone of the centre", "ellipsoid": "Airy, Bessel, GRS80, WGS84", "datum_shift_m": "x y z",
    "datum_rotation_arcsec": "about x y z", "products": "of: phase shifts earth height",
    "shift_factors": "range azimuth", "earth_factors": "range azimuth", "geocoding_factors": "range azimuth",
    "invalid_value": "IFGRM_INVALID", "dem_valid": "DEM_VALID",
}
TUPLE_KINDS = {"products": str, "shift_factors": int, "earth_factors": int, "geocoding_factors": int}


def add_scene_options(parser):
    for field in dataclasses.fields(SCENE_OPTIONS):
        name, default = "--" + field.name.replace("_", "-"), field.default
        explanation = HELP.get(field.name, field.name.replace("_", " "))
        if isinstance(default, bool):
            parser.add_argument(name, action="store_true", help=explanation)
        elif isinstance(default, tuple):
            kind = TUPLE_KINDS.get(field.name, float)
            parser.add_argument(name, nargs="*", type=kind, default=list(default), metavar=kind.__name__, help=explanation)
        else:
            kind = type(default)
            parser.add_argument(name, type=kind, default=default, metavar=kind.__name__, help=explanation)


def scene_options(values):
    """Takes those of the scene out of the parsed arguments."""
    names = [field.name for field in dataclasses.fields(SCENE_OPTIONS)]
    taken = {name: values.pop(name) for name in names}
    return SCENE_OPTIONS(**{name: tuple(value) if isinstance(value, list) else value for name, value in taken.items()})


def main(arguments):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.ArgumentDefaultsHelpFormatter)
    parser.add_argument("folder", help="where the scene goes; created when it is missing")
    add_scene_options(parser)
    values = vars(parser.parse_args(arguments))
    folder = values["folder"]
    try:
        made = scene.make_scene(scene_options(values), folder)
    except (ValueError, OSError) as error:
        print("make_scene.py: %s" % error, file=sys.stderr)
        return 1
    print("scene in %s" % folder)
    for line in scene.describe(made):
        print("  " + line)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
