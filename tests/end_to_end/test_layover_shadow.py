"""Layover and shadow: against brute force over every sheet of every pixel, and against slopes of known answer."""

import numpy as np
import pytest

import judge
from scene_maker import raster
from test_properties import BESSEL
from velmora_run import edit_control_file, succeed

SIZE = dict(samples=120, lines=40)
LAYOVER, SHADOW, SLAVE_LAYOVER, SLAVE_SHADOW, NO_TERRAIN = 1, 2, 4, 8, 128
KEYS = dict(LAYOVER_SHADOW="layover_shadow.ras")
VOID_M = -32768.0


def flags_of(folder, *arguments, **options):
    edit_control_file(folder, **KEYS)
    return succeed(folder, *arguments, **options).product("LAYOVER_SHADOW")


class PROFILES:
    """Lines of the master across the columns (or rows) of the DEM, as docs/products.md defines them."""

    def __init__(self, scene, heights):
        rows, columns = heights.shape
        row, column = np.mgrid[0:rows, 0:columns]
        points = scene.grid.earth_point(column, row, heights + scene.options.dem_correction_m)
        self.is_terrain = heights != VOID_M
        seen = []
        for acquisition in (scene.master, scene.slave):
            time_s, range_m = judge.zero_doppler(acquisition.orbit, points, acquisition.first_azimuth_time_s)
            sample, line = acquisition.pixel(time_s, range_m)
            satellite = acquisition.orbit.state(time_s).position_m
            down = -satellite / np.linalg.norm(satellite, axis=-1, keepdims=True)
            look = np.arccos(np.sum((points - satellite) * down, axis=-1) / range_m)
            seen += [line, sample, look]
        self.line, *self.values = seen[:3] + seen[4:]  # range and look, of the master and of the slave
        middle = np.array(self.line.shape) // 2
        step_down, step_right = (abs(self.line[tuple(middle + step)] - self.line[tuple(middle)]) for step in ((1, 0), (0, 1)))
        if step_down < step_right:
            self.line, self.is_terrain, self.values = self.line.T, self.is_terrain.T, [value.T for value in self.values]

    def of(self, line):
        """Points of the line, outwards: master's pixel and look, slave's pixel and look. NaN: a void."""
        before = self.line <= line
        points = []
        for i in range(self.line.shape[1]):
            is_terrain = self.is_terrain[:-1, i] & self.is_terrain[1:, i]
            (crossings,) = np.nonzero((before[:-1, i] != before[1:, i]) & is_terrain)
            if len(crossings) == 0:
                points.append([np.nan] * 4)
                continue
            j = crossings[0]
            part = (line - self.line[j, i]) / (self.line[j + 1, i] - self.line[j, i])
            points.append([value[j, i] + part * (value[j + 1, i] - value[j, i]) for value in self.values])
        points = np.array(points)
        there = points[~np.isnan(points[:, 0]), 0]
        return points if there[-1] > there[0] else points[::-1]


def sheets(points, quantity, place):
    """Segments that reach the place, and where on them it lies."""
    a, b = points[:-1, quantity], points[1:, quantity]
    (hits,) = np.nonzero((np.minimum(a, b) <= place) & (place < np.maximum(a, b)))
    return [(k, (place - a[k]) / (b[k] - a[k])) for k in hits]


def facing(points, first, hits):
    return sum(points[k + 1, first + 1] > points[k, first + 1] for k, _ in hits)


def brute_force(points, pixel):
    hits = sheets(points, 0, pixel)
    if not hits:
        return NO_TERRAIN
    flag = LAYOVER if facing(points, 0, hits) > 1 else 0
    for first, bit in ((0, SHADOW), (2, SLAVE_SHADOW)):
        looks = [points[k, first + 1] + u * (points[k + 1, first + 1] - points[k, first + 1]) for k, u in hits]
        if all(look < np.nanmax(points[:k + 1, first + 1]) for look, (k, _) in zip(looks, hits)):
            flag |= bit
    for k, u in hits:
        slave_pixel = np.floor(points[k, 2] + u * (points[k + 1, 2] - points[k, 2]) + 0.5)
        if facing(points, 2, sheets(points, 2, slave_pixel)) > 1:
            flag |= SLAVE_LAYOVER
    return flag


ROUGH = dict(smoothness=1.5, low_m=0.0, high_m=2500.0, dem_margin_m=500.0)
SCENES = {
    "steep": dict(incidence_deg=20.0, **ROUGH),
    "shallow, left, ascending": dict(incidence_deg=55.0, side="left", pass_direction="ascending", **ROUGH),
    "south, UTM, Bessel": dict(incidence_deg=35.0, latitude_deg=-33.0, utm=True, **BESSEL, **ROUGH),
    "single pass": dict(incidence_deg=50.0, single_pass=True, **ROUGH),
    "long baseline": dict(incidence_deg=40.0, perpendicular_baseline_m=4000.0, seed=5, **ROUGH),
    "lines along the columns, 85 north": dict(latitude_deg=85.0, incidence_deg=45.0, seed=3, **ROUGH),
}


def rough(made):
    return made.heights


def holed(made):
    """Voids before the image, far enough not to be missed in it."""
    pixel = PROFILES(made, made.heights).values[0]
    if pixel.shape != made.heights.shape:
        pixel = pixel.T
    generator = np.random.default_rng(7)
    holes = np.repeat(np.repeat(generator.random(made.heights.shape) < 0.3, 3, axis=0)[:made.heights.shape[0]], 3, axis=1)
    return np.where((pixel < -40.0) & holes[:, :made.heights.shape[1]], VOID_M, made.heights)


def cone(made):
    """On a plain, its tip on a sample in the middle of the image."""
    rows, columns = made.heights.shape
    row, column = np.mgrid[0:rows, 0:columns]
    level = made.grid.earth_point(column, row, np.zeros(made.heights.shape))
    time_s, range_m = judge.zero_doppler(made.master.orbit, level, made.master.first_azimuth_time_s)
    pixel, line = made.master.pixel(time_s, range_m)
    tip = np.argmin(np.hypot(pixel - made.options.samples / 2, line - made.options.lines / 2))
    distance_m = np.linalg.norm(level - level.reshape(-1, 3)[tip], axis=-1)
    return np.maximum(np.rint(250.0 - distance_m * np.tan(np.radians(65.0))), 0.0)


@pytest.mark.parametrize("options, terrain", [*((options, rough) for options in SCENES.values()),
                                              (dict(incidence_deg=55.0, seed=2, **ROUGH), holed),
                                              (dict(incidence_deg=30.0, terrain="flat", low_m=0.0, lines=400), cone)],
                         ids=[*SCENES, "voids", "lines with and without a cone"])
def test_every_pixel_is_what_brute_force_over_its_sheets_says(fresh_scene, options, terrain):
    made, folder = fresh_scene(**{**SIZE, **options})
    heights = terrain(made)
    raster.write_int16(folder / "dem.ras", heights)
    flags = flags_of(folder, parallel="2")
    profiles = PROFILES(made, heights)
    seen = 0
    for line in range(0, flags.shape[0], flags.shape[0] // 13):
        points = profiles.of(float(line))
        for pixel in range(flags.shape[1]):
            # At the edge of a sheet rounding decides.
            answers = {brute_force(points, pixel + beside) for beside in (-0.02, 0.0, 0.02)}
            assert flags[line, pixel] in answers, (line, pixel, answers)
        seen |= int(np.bitwise_or.reduce(flags[line]))
    assert seen & (LAYOVER | SLAVE_LAYOVER) == LAYOVER | SLAVE_LAYOVER or options["incidence_deg"] > 50.0
    assert seen & (SHADOW | SLAVE_SHADOW) == SHADOW | SLAVE_SHADOW or options["incidence_deg"] < 30.0


def ridges(made, slope_deg):
    """Ridges and valleys along the DEM's columns: flanks of one slope to both sides."""
    column = np.arange(made.grid.columns)
    spacing_m = np.linalg.norm(made.grid.earth_point(1, made.grid.rows // 2, 0.0) - made.grid.earth_point(0, made.grid.rows // 2, 0.0))
    wave = np.abs((column + 8) % 16 - 8) * spacing_m * np.tan(np.radians(slope_deg))
    return np.broadcast_to(np.rint(wave), made.heights.shape)


@pytest.mark.parametrize("incidence_deg, slope_deg, layover, shadow", [
    (35.0, 26.0, False, False), (35.0, 44.0, True, False), (35.0, 65.0, True, True), (55.0, 44.0, False, True),
    (55.0, 27.0, False, False), (25.0, 34.0, True, False)])
def test_slopes_beyond_the_incidence_lay_over_and_those_beyond_its_complement_cast_shadow(fresh_scene, incidence_deg,
                                                                                          slope_deg, layover, shadow):
    made, folder = fresh_scene(samples=300, lines=30, incidence_deg=incidence_deg, latitude_deg=1.0, inclination_deg=90.0,
                               terrain="flat", low_m=0.0)
    raster.write_int16(folder / "dem.ras", ridges(made, slope_deg))
    flags = flags_of(folder)
    assert (bool(np.any(flags & LAYOVER)), bool(np.any(flags & SHADOW))) == (layover, shadow)
    assert not np.any(flags & NO_TERRAIN)
