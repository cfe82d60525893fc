"""Properties that hold for any scene: the radar equations at every pixel, and how results may not depend on the way there.

VELMORA_RANDOM_SCENES sets the number of random scenes (default 6, fewer in sanitizer builds).
"""

import os
import random

import numpy as np
import pytest

import judge
import velmora_run
from velmora_run import succeed

SIZE = dict(samples=140, lines=110)
BESSEL = dict(ellipsoid="Bessel", datum_shift_m=(598.1, 73.7, 418.2), datum_rotation_arcsec=(0.202, 0.045, -2.455),
              datum_scale=1.0000067)
NAMED_SCENES = {
    "plain": dict(),
    "flat terrain": dict(terrain="flat", low_m=812.0),
    "left, ascending, south, 0..360": dict(side="left", pass_direction="ascending", latitude_deg=-33.0,
                                           longitude_deg=-70.5, longitudes="positive"),
    "date line": dict(latitude_deg=-17.2, longitude_deg=179.99, orbit_representation="orbit_pool_double_met",
                      orbit_interpolation="chebyshev_9"),
    "Greenwich, 0..360": dict(latitude_deg=51.4, longitude_deg=0.01, longitudes="positive", orbit_interpolation="polyfit_9",
                              orbit_representation="orbit_pool_double_double"),
    "south, orbit of low inclination": dict(latitude_deg=-20.0, inclination_deg=35.0),
    "85 north": dict(latitude_deg=85.0, longitude_deg=-30.0),
    "equator, 1 arc second": dict(latitude_deg=0.0, longitude_deg=-60.0, dem_spacing_arcsec=1.0,
                                  orbit_interpolation="localpolynom_0_8"),
    "UTM south, offset of heights": dict(latitude_deg=-33.4, longitude_deg=-70.6, utm=True, dem_correction_m=37.5),
    "UTM of the next zone, Bessel, 7 parameters": dict(latitude_deg=48.0, longitude_deg=11.9, utm=True, utm_zone=33, **BESSEL),
    "permanent scatterer, oversampling 2, left": dict(permanent_scatterer=True, oversampling=2.0, side="left",
                                                      range_sampling_hz=40e6, prf_hz=1500.0, range_time_shift_s=3e-7),
    "other wavelength in the slave": dict(slave_radar_frequency_hz=9.6501e9, azimuth_bandwidth_hz=900.0),
    "single pass, permanent scatterer, left": dict(single_pass=True, along_track_m=-60.0, side="left", latitude_deg=-45.0,
                                                   permanent_scatterer=True, oversampling=1.5, prf_hz=1400.0),
    "layover": dict(incidence_deg=20.0, smoothness=1.7, high_m=2800.0),
}


def random_options(seed):
    draw = random.Random(seed)
    return dict(
        seed=seed, samples=draw.randint(90, 200), lines=draw.randint(70, 160), side=draw.choice(["right", "left"]),
        pass_direction=draw.choice(["ascending", "descending"]), latitude_deg=draw.uniform(-75.0, 75.0),
        longitude_deg=draw.uniform(-180.0, 180.0), longitudes=draw.choice(["signed", "positive"]),
        incidence_deg=draw.uniform(25.0, 48.0), dem_spacing_m=draw.uniform(20.0, 45.0),
        perpendicular_baseline_m=draw.uniform(-400.0, 400.0), utm=draw.random() < 0.4,
        high_m=draw.uniform(400.0, 2500.0), permanent_scatterer=draw.random() < 0.4,
        oversampling=draw.choice([1.0, 1.25]), range_time_shift_s=draw.choice([0.0, 1e-6]),
        orbit_representation="orbit_pool_double_" + draw.choice(["double", "utc", "met"]),
        orbit_interpolation=draw.choice(["hermite_0_8", "localpolynom_0_8", "polynom", "polyfit_9", "chebyshev_9", "everett_8",
                                         "localhermite_4_6", "localpolyfit_6_8", "localchebyshev_7_9"]),
        single_pass=draw.random() < 0.3, along_track_m=draw.uniform(-100.0, 100.0), **draw.choice([{}, {}, BESSEL]))


RANDOM_SCENES = int(os.environ.get("VELMORA_RANDOM_SCENES", "2" if velmora_run.SANITIZED else "6"))
SCENES = [pytest.param(options, id=name) for name, options in NAMED_SCENES.items()]
SCENES += [pytest.param(random_options(seed), id="random scene %d" % seed) for seed in range(RANDOM_SCENES)]


@pytest.mark.parametrize("options", SCENES)
def test_every_pixel_satisfies_the_radar_equations(fresh_scene, options):
    made, folder = fresh_scene(**{**SIZE, **options})
    run = succeed(folder, parallel="2")
    line, sample = np.mgrid[0:made.options.lines, 0:made.options.samples].astype(float)
    height_m = run.product("H_EARTH").astype(float)
    points_m, phase_rad, slave_sample, slave_line = judge.expected(made, sample, line, height_m)

    def check(difference, tolerance, what):
        worst = np.unravel_index(np.argmax(np.abs(difference) - tolerance), difference.shape)
        assert judge.share_over(difference, tolerance) == 0.0, "%s, worst at %s: %g" % (what, worst, difference[worst])

    # Height: planar in the cell's triangle. A pixel may be claimed up to 1 % of a triangle's area outside it, where the
    # neighbour's slope is another, unless all of them are level.
    check(judge.dem_heights(made, points_m) - height_m, 1e-3 if made.options.terrain == "flat" else 0.25, "height")
    check(run.product("SIMU_PHASE") - phase_rad, 0.002 + 4.0 * judge.ulp(phase_rad), "phase")
    # A single-pass pair's azimuth comes from a parabola through three travel times, not from their true minimum.
    line_tolerance = 1e-3 if made.options.single_pass else 1e-4
    check(run.product("RG_COREG") - slave_sample, 1e-4 + judge.ulp(slave_sample), "range position")
    check(run.product("AZ_COREG") - slave_line, line_tolerance + judge.ulp(slave_line), "azimuth position")
    # x, y, z are rounded to 32-bit floats before the offset is taken off.
    for axis, name in enumerate("xyz"):
        value = run.product(name + "_EARTH").astype(float) + run.offset(name)
        check(value - points_m[..., axis], 0.005 + 0.5 * judge.ulp(points_m[..., axis]), name)


@pytest.mark.parametrize("relative", [False, True])
def test_a_pair_of_one_image_with_itself_has_no_phase_and_no_shift(fresh_scene, relative):
    made, folder = fresh_scene(**SIZE, slave_is_master=True, relative_shifts=relative, shift_factors=(2, 3))
    run = succeed(folder, parallel="2")
    assert np.all(run.product("SIMU_PHASE") == 0.0)
    rows, columns = run.product("RG_COREG").shape
    line, sample = np.mgrid[0:rows, 0:columns]
    own = (0.0 * sample, 0.0 * line) if relative else (2.0 * sample, 3.0 * line)
    assert np.all(np.abs(run.product("RG_COREG") - own[0]) < 1e-3)
    assert np.all(np.abs(run.product("AZ_COREG") - own[1]) < 1e-3)


# Ranges and azimuths of the shift, Earth and geocoding factors, and image sizes that are and are not multiples of them.
FACTORS = [((4, 2), (3, 3), (), (141, 110)), ((1, 1), (5, 4), (), (140, 113)), ((2, 2), (3, 5), (2, 3), (140, 110)),
           ((1, 1), (1, 1), (2, 2), (139, 111))]


@pytest.mark.parametrize("shift, earth, geocoding, size", FACTORS)
def test_subsampled_products_are_every_nth_pixel_of_the_full_ones(fresh_scene, shift, earth, geocoding, size):
    sizes = dict(samples=size[0], lines=size[1], permanent_scatterer=bool(geocoding))
    options = dict(**sizes, shift_factors=shift, earth_factors=earth, geocoding_factors=geocoding)
    made, folder = fresh_scene(**options)
    _, full_folder = fresh_scene("full", **options)
    for key in ("shift_matrices_subsampling_rg", "shift_matrices_subsampling_az", "geco_sub_factor_range",
                "geco_sub_factor_azimuth"):
        velmora_run.edit_pool(full_folder / "insar.pool", key, None)
    for key in ("shift_matrices_subsampling", "earth_matrices_subsampling_x", "earth_matrices_subsampling_y"):
        velmora_run.edit_pool(full_folder / "insar.pool", key, key + " INT_32 1")
    part, full = succeed(folder), succeed(full_folder)

    columns, rows = made.simulated_size
    extension = made.options.extension
    assert part.product("SIMU_PHASE").shape == (size[1], size[0])
    assert np.array_equal(part.product("SIMU_PHASE"), full.product("SIMU_PHASE"))
    assert part.product("RG_COREG").shape == tuple(-(-(n - x) // f) + 1 for n, x, f in
                                                   zip((rows, columns), extension[::-1], shift[::-1]))
    if geocoding in ((), (1, 1)):
        earth_shape = tuple(-(-(n - x) // f) + 1 for n, x, f in zip((rows, columns), extension[::-1], earth[::-1]))
    else:
        earth_shape = tuple((n - 1) // f + 1 for n, f in zip((rows, columns), earth[::-1]))
    assert part.product("H_EARTH").shape == part.product("X_EARTH").shape == earth_shape

    for names, factors in ((("RG_COREG", "AZ_COREG"), shift), (("H_EARTH",), earth)):
        for name in names:
            wanted = full.product(name)[::factors[1], ::factors[0]]
            assert np.array_equal(part.product(name)[:wanted.shape[0], :wanted.shape[1]], wanted), name
            assert np.all(part.product(name) != 0.0), "%s: not filled to its edge" % name
    for axis in "xyz":
        wanted = (full.product(axis + "_EARTH").astype(float) + full.offset(axis))[::earth[1], ::earth[0]]
        got = part.product(axis + "_EARTH").astype(float) + part.offset(axis)
        assert np.array_equal(got[:wanted.shape[0], :wanted.shape[1]], wanted), axis


def test_a_dem_that_just_covers_the_terrain_is_enough(fresh_scene):
    """Heights that do not occur need no cover: the program's search reaches beyond this DEM on both range sides."""
    made, folder = fresh_scene(**SIZE, cover_low_m=300.0, cover_high_m=2300.0, dem_margin_m=100.0)
    run = succeed(folder)
    line, sample = np.mgrid[0:made.options.lines, 0:made.options.samples].astype(float)
    _, phase_rad, _, _ = judge.expected(made, sample, line, run.product("H_EARTH"))
    assert judge.share_over(run.product("SIMU_PHASE") - phase_rad, 0.01 + 4.0 * judge.ulp(phase_rad)) <= 0.002
