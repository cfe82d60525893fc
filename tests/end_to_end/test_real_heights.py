"""A DEM of 32-bit reals: the same products as from 16-bit samples, with fractions of a metre where they have them."""

import struct

import numpy as np
import pytest

from scene_maker import raster
from velmora_run import PRODUCTS, SMALL, edit_pool, products, succeed, velmora

GRIDS = {"GEO": {}, "UTM south": dict(latitude_deg=-33.4, longitude_deg=-70.6, utm=True)}
MOUNTAINS = dict(samples=60, lines=50)
# No numbers of any kind, and marks that producers use: all of them are voids.
NO_HEIGHTS = [0x7fc00000, 0x7f800001, 0xffffffff, 0x7f800000, 0xff800000, 0xff7fffff, 0x47000001, 0x4e6e6b28]


def write_reals(path, heights):
    rows, columns = heights.shape
    path.write_bytes(struct.pack(">8I", raster.MAGIC, columns, rows, 32, rows * columns * 4, 99, 0, 0)
                     + heights.astype("<f4").tobytes())


def good_products(folder, *arguments):
    succeed(folder, *arguments)
    made = products(folder)
    assert len(made) == len(PRODUCTS)
    return made


def make_real(folder, heights):
    write_reals(folder / "dem.ras", heights)
    edit_pool(folder / "dem.pool", "dem_pixel_type", 'dem_pixel_type STR "flt_6"')


@pytest.mark.parametrize("grid", GRIDS)
def test_whole_metres_and_fractions_give_the_same_products_in_either_type(fresh_scene, grid):
    made, whole = fresh_scene("whole", **MOUNTAINS, **GRIDS[grid])
    _, real = fresh_scene("real", **MOUNTAINS, **GRIDS[grid])
    make_real(real, made.heights.astype(np.float32))
    assert good_products(real) == good_products(whole)

    _, lifted = fresh_scene("lifted", **MOUNTAINS, **GRIDS[grid], dem_correction_m=0.375)
    _, fraction = fresh_scene("fraction", **MOUNTAINS, **GRIDS[grid])
    make_real(fraction, made.heights.astype(np.float32) + np.float32(0.375))
    assert good_products(fraction) == good_products(lifted)


def test_slabs_of_reals(fresh_scene):
    made, folder = fresh_scene(samples=400, lines=300, shift_factors=(1, 1), earth_factors=(1, 1))
    make_real(folder, made.heights.astype(np.float32))
    whole = good_products(folder)
    assert good_products(folder, "-MEMORY_LIMIT", "2") == whole


@pytest.mark.parametrize("grid", GRIDS)
def test_what_is_no_height_is_a_void(fresh_scene, grid):
    """As -32768 in a 16-bit DEM: counted and told at the same place, and used so."""
    told = []
    for name in ("whole", "real"):
        made, folder = fresh_scene(name, **MOUNTAINS, **GRIDS[grid])
        row, column = made.heights.shape[0] // 2, made.heights.shape[1] // 2
        if name == "whole":
            made.heights[row, column:column + len(NO_HEIGHTS)] = -32768
            raster.write_int16(folder / "dem.ras", made.heights)
        else:
            heights = made.heights.astype("<f4")
            heights.view("<u4")[row, column:column + len(NO_HEIGHTS)] = NO_HEIGHTS
            make_real(folder, heights)
        run = velmora(folder)
        told.append((run.status, [line for line in run.lines("WARN") if "voids" in line], products(folder)))
    assert "%d of the simulated samples are voids" % len(NO_HEIGHTS) in told[0][1][0]
    assert told[1] == told[0]
