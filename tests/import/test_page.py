"""docs/from_download_to_products.md: its commands, as they stand there, on made files and on the real ones."""

import gzip
import os
import re
import shutil
import subprocess

import numpy as np
import pytest
from osgeo import gdal, osr

import made_terrain
from import_run import INPUTS, PROGRAM, REPOSITORY, pool
from scene_maker import raster

VELMORA = os.environ["VELMORA_BINARY"]
PAGE = (REPOSITORY / "docs" / "from_download_to_products.md").read_text(encoding="utf-8")
COMMANDS = [block.strip() for block in re.findall(r"```sh\n(.*?)```", PAGE, re.S)]
PRINTED = re.findall(r"```text\n(.*?)```", PAGE, re.S)
MASTER, SLAVE = re.findall(r"s1a-\S+\.xml", "\n".join(COMMANDS))[:2]
PRODUCTS = ("simu_phase", "rg_coreg", "az_coreg", "x_earth", "y_earth", "z_earth", "h_earth")


def run_page(folder, commands=tuple(COMMANDS)):
    """All commands in one shell session, as a user types them; what each one printed."""
    tools = folder / "bin"
    tools.mkdir()
    (tools / "velmora-import").symlink_to(PROGRAM)
    (tools / "velmora").symlink_to(VELMORA)
    script = "set -e\n" + "\necho =====\n".join(commands) + "\n"
    done = subprocess.run(["bash", "-c", script], cwd=folder, capture_output=True, text=True, timeout=600,
                          env=dict(os.environ, PATH="%s:%s" % (tools, os.environ["PATH"])))
    assert done.returncode == 0, done.stdout[-2000:] + done.stderr
    return done.stdout.split("=====\n")


def earth_points(folder):
    """Longitude, latitude (degrees) and height (metres) of every pixel of the Earth files."""
    offsets = pool(folder / "insar.pool")
    xyz = [raster.read(folder / (axis + "_earth.ras")).astype(float) + offsets[axis + "_earth_offset"] for axis in "xyz"]
    geocentric, geographic = osr.SpatialReference(), osr.SpatialReference()
    geocentric.ImportFromEPSG(4978)
    geographic.ImportFromEPSG(4979)
    geographic.SetAxisMappingStrategy(osr.OAMS_TRADITIONAL_GIS_ORDER)
    points = np.column_stack([part.ravel() for part in xyz])
    return np.array(osr.CoordinateTransformation(geocentric, geographic).TransformPoints(points))


def test_the_commands_lead_from_made_files_to_products(tmp_path):
    made_terrain.images_and_dem(tmp_path, MASTER, SLAVE)
    run_page(tmp_path)
    for product in PRODUCTS:
        assert (tmp_path / "run" / (product + ".ras")).stat().st_size > 32
    points = earth_points(tmp_path / "run")
    heights = raster.read(tmp_path / "run" / "h_earth.ras")
    assert np.max(np.abs(points[:, 2] - heights.ravel())) < 1.0  # 32-bit reals far from their offset
    assert np.all(heights == heights[0, 0]) and abs(heights[0, 0] - 500.0) > 5.0  # the geoid was added


@pytest.mark.skipif(not INPUTS.is_dir(), reason="no real files in %s" % INPUTS)
def test_the_commands_lead_from_the_real_pair_to_what_the_page_prints(tmp_path):
    for name in (MASTER, SLAVE):
        (tmp_path / name).write_bytes(gzip.decompress((INPUTS / (name + ".gz")).read_bytes()))
    shutil.copy(INPUTS / "bigtujunga.tif", tmp_path)
    for page, real in zip(PRINTED, run_page(tmp_path)):
        assert page == real
    terrain = gdal.Open(str(INPUTS / "bigtujunga.tif"))
    points = earth_points(tmp_path / "run")[::37]
    assert_on_terrain(points, terrain, 0.5)  # whole metres: the geoid's fraction is lost

    shutil.rmtree(tmp_path / "bin")
    commands = [COMMANDS[2] + " --float --force", COMMANDS[3] + " --force", COMMANDS[4]]
    run_page(tmp_path, commands)
    assert_on_terrain(earth_points(tmp_path / "run")[::37], terrain, 0.05)


def assert_on_terrain(points, terrain, shift_m):
    """Heights of the Earth points against the file's own heights above EGM96, taken to the ellipsoid by PROJ."""
    above_egm96, ellipsoid = osr.SpatialReference(), osr.SpatialReference()
    above_egm96.SetFromUserInput("EPSG:32611+5773")
    ellipsoid.ImportFromEPSG(4979)
    for reference in (above_egm96, ellipsoid):
        reference.SetAxisMappingStrategy(osr.OAMS_TRADITIONAL_GIS_ORDER)
    local = np.array(osr.CoordinateTransformation(ellipsoid, above_egm96).TransformPoints(points))
    corner, samples = terrain.GetGeoTransform(), terrain.ReadAsArray().astype(float)
    column, row = (local[:, 0] - corner[0]) / 30.0 - 0.5, (corner[3] - local[:, 1]) / 30.0 - 0.5
    i, j = np.floor(row).astype(int), np.floor(column).astype(int)
    u, v = row - i, column - j
    height = ((1 - u) * ((1 - v) * samples[i, j] + v * samples[i, j + 1])
              + u * ((1 - v) * samples[i + 1, j] + v * samples[i + 1, j + 1]))
    slope_x = (samples[i, j + 1] - samples[i, j] + samples[i + 1, j + 1] - samples[i + 1, j]) / 2.0
    slope_y = (samples[i + 1, j] - samples[i, j] + samples[i + 1, j + 1] - samples[i, j + 1]) / 2.0
    difference = local[:, 2] - height
    shift_up, shift_x, shift_y = np.linalg.lstsq(
        np.column_stack([np.ones_like(slope_x), slope_x, slope_y]), difference, rcond=None)[0]
    assert max(abs(shift_x), abs(shift_y)) < 0.02  # of a sample; pixel-is-area taken for point would be 0.5
    assert abs(shift_up) <= shift_m  # a missing geoid would be 33 m
    assert np.std(difference) < 1.0
