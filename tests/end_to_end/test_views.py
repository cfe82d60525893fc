"""What the ground sees of the satellites: against closed-form orbits and the ellipsoid, pixel by pixel."""

import numpy as np
import pytest

import judge
from scene_maker import raster
from scene_maker.ellipsoid import WGS84
from test_properties import BESSEL, SCENES
from velmora_run import edit_control_file, succeed

VIEWS = dict(INCIDENCE="incidence.ras", LINE_OF_SIGHT="los.ras", PERPENDICULAR_BASELINE="perpendicular_baseline.ras",
             HEIGHT_OF_AMBIGUITY="height_of_ambiguity.ras")
SIGHT_FILES = ["los_%s.ras" % component for component in "enu"]
FILES = [name for name in VIEWS.values() if name != "los.ras"] + SIGHT_FILES


def run_with_views(folder, *arguments, **options):
    edit_control_file(folder, **VIEWS)
    return succeed(folder, *arguments, **options)


def dot(a, b):
    return np.sum(a * b, axis=-1)


def unit(a):
    return a / np.linalg.norm(a, axis=-1, keepdims=True)


def angle_deg(a, b):
    return np.degrees(np.arctan2(np.linalg.norm(np.cross(a, b), axis=-1), dot(a, b)))


class TRUTH:
    """The views of pixels whose heights are known."""

    def __init__(self, scene, sample, line, height_m):
        master = scene.master.orbit.state(scene.master.azimuth_time_s(line))
        points_m = judge.ground_points(scene, sample, line, height_m)
        up = WGS84.normal(points_m)
        east = unit(np.cross([0.0, 0.0, 1.0], up))
        self.sight = unit(master.position_m - points_m)
        self.incidence_deg = angle_deg(self.sight, up)
        self.east_north_up = [dot(self.sight, axis) for axis in (east, np.cross(up, east), up)]
        slave = scene.slave
        slave_s, _ = judge.zero_doppler(slave.orbit, points_m, slave.first_azimuth_time_s)
        across = unit(np.cross(master.velocity_m_s, self.sight))
        across *= np.sign(dot(across, up))[..., None]
        self.baseline_m = dot(slave.orbit.state(slave_s).position_m - master.position_m, across)
        # Two points of the pixel, 100 m apart in height.
        ranges_m = [judge.zero_doppler(slave.orbit, judge.ground_points(scene, sample, line, height_m + step_m), slave_s)[1]
                    for step_m in (-50.0, 50.0)]
        wavelength_m = judge.SPEED_OF_LIGHT_M_S / slave.radar_frequency_hz
        turn_m = wavelength_m if scene.options.single_pass else 0.5 * wavelength_m
        self.ambiguity_m = 100.0 * turn_m / np.abs(ranges_m[1] - ranges_m[0])


@pytest.mark.parametrize("options", SCENES)
def test_every_pixel_sees_what_the_orbits_say(fresh_scene, options):
    made, folder = fresh_scene(**{**dict(samples=140, lines=110), **options})
    run = run_with_views(folder, parallel="2")
    height_m = run.product("H_EARTH").astype(float)
    line, sample = np.mgrid[0:height_m.shape[0], 0:height_m.shape[1]].astype(float)
    truth = TRUTH(made, sample, line, height_m)
    assert np.max(np.abs(run.product("INCIDENCE") - truth.incidence_deg)) < 1e-4
    for name, component in zip(SIGHT_FILES, truth.east_north_up):
        assert np.max(np.abs(raster.read(folder / name) - component)) < 1e-6, name
    assert np.max(np.abs(run.product("PERPENDICULAR_BASELINE") - truth.baseline_m)) < 2e-3
    assert np.max(np.abs(run.product("HEIGHT_OF_AMBIGUITY") / truth.ambiguity_m - 1.0)) < 2e-3


def test_a_pair_of_one_image_with_itself_has_no_baseline(fresh_scene):
    _, folder = fresh_scene(samples=70, lines=60, slave_is_master=True)
    run = run_with_views(folder)
    assert np.max(np.abs(run.product("PERPENDICULAR_BASELINE"))) < 1e-3
    assert np.all(run.product("HEIGHT_OF_AMBIGUITY") > 1e6)


@pytest.mark.parametrize("options", [dict(earth_factors=(3, 2), shift_factors=(4, 2), utm=True, **BESSEL), dict(single_pass=True)],
                         ids=["factors, Bessel", "single pass"])
def test_views_do_not_depend_on_the_way_there(fresh_scene, options):
    products = set()
    for name, arguments, run_options in (
            ("plain", (), {}), ("threads", (), dict(parallel="5")), ("slabs", ("-MEMORY_LIMIT", "1"), dict(parallel="2")),
            ("vectors", (), dict(environment={"VELMORA_VECTORS": "plain"}))):
        _, folder = fresh_scene(name, samples=500, lines=450, incidence_deg=20.0, smoothness=1.7, **options)
        run_with_views(folder, *arguments, **run_options)
        products.add(b"".join((folder / file).read_bytes() for file in FILES))
    assert len(products) == 1
    _, bare = fresh_scene("without the height's own product", samples=500, lines=450, incidence_deg=20.0, smoothness=1.7,
                          products=("phase",), **options)
    run_with_views(bare)
    assert b"".join((bare / file).read_bytes() for file in FILES) in products
