"""What the ground sees of the satellites: against closed-form orbits and the ellipsoid, pixel by pixel."""

import csv
import datetime
import gzip
import json
import pathlib
import shutil
import subprocess

import numpy as np
import pytest

import judge
from scene_maker import pool_file, raster
from scene_maker.ellipsoid import WGS84
from test_properties import BESSEL, SCENES
from velmora_run import BINARY, REPOSITORY, edit_control_file, edit_pool, succeed, velmora

IMPORT = pathlib.Path(BINARY).parents[1] / "import" / "velmora-import"
INPUTS = REPOSITORY.parent / "shared" / "inputs"

VIEWS = dict(INCIDENCE="incidence.ras", LOCAL_INCIDENCE="local_incidence.ras", LINE_OF_SIGHT="los.ras", PERPENDICULAR_BASELINE="perpendicular_baseline.ras",
             HEIGHT_OF_AMBIGUITY="height_of_ambiguity.ras", LAYOVER_SHADOW="layover_shadow.ras")
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


def terrain_normals(scene, points_m):
    """Normals of the DEM's triangles that hold the points, and whether these lie well inside: a pixel near an edge may be
    claimed by the neighbour."""
    column, row, _ = scene.grid.grid_coordinates(points_m)
    c, r = np.floor(column).astype(int), np.floor(row).astype(int)
    u, v = column - c, row - r
    first = (u + v < 1.0)[..., None]

    def corner(dc, dr):
        return scene.grid.earth_point(c + dc, r + dr, scene.heights[r + dr, c + dc] + scene.options.dem_correction_m)

    origin = np.where(first, corner(0, 0), corner(1, 1))
    east = np.where(first, corner(1, 0) - origin, origin - corner(0, 1))
    south = np.where(first, corner(0, 1) - origin, origin - corner(1, 0))
    margins = np.stack([np.where(first[..., 0], u, 1.0 - u), np.where(first[..., 0], v, 1.0 - v), np.abs(u + v - 1.0)])
    return unit(np.cross(south, east)), np.min(margins, axis=0) > 0.03


class TRUTH:
    """The views of pixels whose heights are known."""

    def __init__(self, scene, sample, line, height_m):
        master = scene.master.orbit.state(scene.master.azimuth_time_s(line))
        points_m = judge.ground_points(scene, sample, line, height_m)
        up = WGS84.normal(points_m)
        east = unit(np.cross([0.0, 0.0, 1.0], up))
        self.sight = unit(master.position_m - points_m)
        self.incidence_deg = angle_deg(self.sight, up)
        normal, self.is_inside = terrain_normals(scene, points_m)
        self.local_incidence_deg = angle_deg(self.sight, normal)
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
    local_deg = run.product("LOCAL_INCIDENCE")
    assert np.mean(truth.is_inside) > 0.7
    assert np.max(np.abs(local_deg - truth.local_incidence_deg)[truth.is_inside]) < 1e-3
    for name, component in zip(SIGHT_FILES, truth.east_north_up):
        assert np.max(np.abs(raster.read(folder / name) - component)) < 1e-6, name
    assert np.max(np.abs(run.product("PERPENDICULAR_BASELINE") - truth.baseline_m)) < 2e-3
    assert np.max(np.abs(run.product("HEIGHT_OF_AMBIGUITY") / truth.ambiguity_m - 1.0)) < 2e-3


def test_a_pair_of_one_image_with_itself_has_no_baseline(fresh_scene):
    _, folder = fresh_scene(samples=70, lines=60, slave_is_master=True)
    run = run_with_views(folder)
    assert np.max(np.abs(run.product("PERPENDICULAR_BASELINE"))) < 1e-3
    assert np.all(run.product("HEIGHT_OF_AMBIGUITY") > 1e6)


@pytest.mark.parametrize("options", [
    dict(earth_factors=(3, 2), shift_factors=(4, 2), utm=True, incidence_deg=20.0, **BESSEL),
    dict(single_pass=True, incidence_deg=45.0, low_m=0.0, high_m=2500.0)], ids=["factors, Bessel", "single pass"])
def test_views_do_not_depend_on_the_way_there(fresh_scene, options):
    products = set()
    for name, arguments, run_options in (
            ("plain", (), {}), ("threads", (), dict(parallel="5")), ("slabs", ("-MEMORY_LIMIT", "1"), dict(parallel="2")),
            ("vectors", (), dict(environment={"VELMORA_VECTORS": "plain"}))):
        _, folder = fresh_scene(name, samples=500, lines=450, smoothness=1.6, **options)
        run_with_views(folder, *arguments, **run_options)
        products.add(b"".join((folder / file).read_bytes() for file in FILES))
    assert len(products) == 1
    _, bare = fresh_scene("without the height's own product", samples=500, lines=450, smoothness=1.6,
                          products=("phase",), **options)
    run_with_views(bare)
    assert b"".join((bare / file).read_bytes() for file in FILES) in products


THINNED = 60  # every so many samples and lines of the published image


def thin_scene(folder, annotation, height_m):
    """A run of the annotation's whole image, thinned, over level ground; all four corners lie within its degrees."""
    (folder / "image.xml").write_bytes(gzip.decompress(annotation.read_bytes()))
    subprocess.run([IMPORT, "sentinel1", "image.xml", "-o", "master.pool"], cwd=folder, check=True, capture_output=True)
    pool = pool_file.read(folder / "master.pool")
    for key in ("prf", "range_sampling_frequency"):
        edit_pool(folder / "master.pool", key, "%s FLT_15 %.17g" % (key, pool[key] / THINNED))
    for key in ("n_samples", "n_lines"):
        edit_pool(folder / "master.pool", key, "%s INT_32 %d" % (key, pool[key] // THINNED + 1))
    shutil.copyfile(folder / "master.pool", folder / "slave.pool")
    (folder / "insar.pool").write_text("observation_mode STR \"dual_pass\"\nearth_matrices_subsampling_x INT_32 1\n"
                                       "earth_matrices_subsampling_y INT_32 1\n")
    (folder / "log.pool").write_text("# log\n")
    west, north = {"2020": (-119.0, 41.0), "2023": (-120.0, 36.5)}[annotation.name.split("-")[4][:4]]
    (folder / "dem.pool").write_text("dem_correction FLT_15 0\ngrid_format STR \"GEO\"\nupper_northing FLT_15 %g\n"
                                     "lower_northing FLT_15 %g\nleft_easting FLT_15 %g\nright_easting FLT_15 %g\n"
                                     % (north, north - 5.0, west, west + 5.0))
    raster.write_int16(folder / "dem.ras", np.full((1000, 1000), height_m))
    (folder / "scene.pcf").write_text("MASTER_POOL master.pool\nSLAVE_POOL slave.pool\nINSAR_POOL insar.pool\nlog_pp log.pool\n"
                                      "DEM_POOL dem.pool\nDEM dem.ras\nRANGE_TIME_SHIFT 0\nLOOKS_RG 1\nLOOKS_AZ 1\n"
                                      "PS_INSAR_MODE 1\nINCIDENCE incidence.ras\n")
    return pool, succeed(folder, parallel="2").product("INCIDENCE").astype(float)


@pytest.mark.skipif(not INPUTS.is_dir() or not IMPORT.exists(), reason="no shared inputs, or no import program")
@pytest.mark.parametrize("date", ["20200511", "20230108"])
def test_published_angles_of_real_images_are_met_at_all_points(tmp_path, date):
    (annotation,) = INPUTS.glob("*vv-%s*.xml.gz" % date)
    levels_m = (0, 3000)
    for height_m in levels_m:
        (tmp_path / str(height_m)).mkdir()
    (pool, low), (_, high) = (thin_scene(tmp_path / str(h), annotation, h) for h in levels_m)
    with open(INPUTS / "expected" / (date + ".geolocation_grid.csv"), encoding="ascii") as file:
        points = list(csv.DictReader(file))
    start = datetime.datetime.fromisoformat(pool["orbit_reference_time"]) + datetime.timedelta(seconds=pool["first_az_time"])
    assert len(points) == 210
    for point in points:
        since_s = (datetime.datetime.fromisoformat(point["t_utc"]) - start).total_seconds()
        line = np.clip(round(since_s * pool["prf"] / THINNED), 0, low.shape[0] - 1)
        sample = (float(point["two_way_time_s"]) - pool["first_rg_time"]) * pool["range_sampling_frequency"] / THINNED
        at = [np.interp(sample, np.arange(low.shape[1]), image[line]) for image in (low, high)]
        angle_deg = np.interp(float(point["height"]), levels_m, at)
        assert abs(angle_deg - float(point["incidence_deg"])) < 0.05, point


def test_three_files_of_one_key_are_products_like_all_others(fresh_scene):
    _, folder = fresh_scene(samples=70, lines=60)
    run_with_views(folder, "-VRT_SIDECARS", "1", "-REPORT", "report.json")
    described = {product["key"]: product for product in json.loads((folder / "report.json").read_text())["products"]}
    for component, file in zip("ENU", SIGHT_FILES):
        product = described["LINE_OF_SIGHT_" + component]
        assert (product["path"], product["written"]) == (file, True)
        assert -1.0 <= product["minimum"] <= product["maximum"] <= 1.0
        assert "LINE_OF_SIGHT_" + component in (folder / (file + ".vrt")).read_text()
    edit_control_file(folder, LINE_OF_SIGHT="los", INCIDENCE="los_n.ras")
    before = (folder / "los_n.ras").read_bytes()
    refused = velmora(folder)
    assert refused.status == 1 and (folder / "los_n.ras").read_bytes() == before
    assert any("north los_n.ras is the incidence angle" in line for line in refused.lines("ALARM")), refused.explanation()
