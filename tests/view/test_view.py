"""velmora-view on files of its own and on a run: pixels through GDAL, positions through the scene's closed forms."""

import collections
import os
import pathlib
import re
import shutil
import struct
import subprocess
import sys
from xml.etree import ElementTree

import numpy as np
import pytest

gdal = pytest.importorskip("osgeo.gdal", reason="needs python3-gdal")
gdal.UseExceptions()
gdal.SetConfigOption("GDAL_PAM_ENABLED", "NO")

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(REPOSITORY / "demo"), str(REPOSITORY / "tests" / "end_to_end")]

import velmora_run  # noqa: E402
from scene_maker import pool_file, raster, scene  # noqa: E402
from scene_maker.ellipsoid import WGS84  # noqa: E402
from scene_maker.options import SCENE_OPTIONS  # noqa: E402

VIEW = os.environ["VELMORA_VIEW"]
WORDS = {"<f4": (32, 99), "<f8": (64, 98), "<i2": (16, 1), "<i4": (32, 1), "u1": (8, 1)}


def view(folder, *arguments):
    return subprocess.run([VIEW, *map(str, arguments)], cwd=folder, capture_output=True, text=True, timeout=120, check=False)


def good(folder, *arguments):
    done = view(folder, *arguments)
    assert (done.returncode, done.stderr) == (0, ""), done
    return done.stdout


def write(path, values, pixel="<f4", map_bytes=b""):
    rows, columns = values.shape
    data = values.astype(pixel).tobytes()
    depth, word = WORDS[pixel]
    header = struct.pack(">8I", 0x59A66A95, columns, rows, depth, len(data), word, 0, len(map_bytes))
    path.write_bytes(header + map_bytes + data)


def png(path):
    return gdal.Open(str(path)).ReadAsArray().transpose(1, 2, 0).astype(int)


def phase_colours(folder, phase, *arguments):
    """Colour of the middle of a uniform picture."""
    write(folder / "simu_phase.ras", phase)
    good(folder, "picture", "simu_phase.ras", "--force", *arguments)
    return tuple(png(folder / "simu_phase.png")[5, 5])


def test_phase_is_averaged_as_complex_numbers_and_wrapped(tmp_path):
    shape = (90, 3300)  # 3 x 3 pixels become one
    one_turn = {turns: phase_colours(tmp_path, np.full(shape, 3.0 + 2 * np.pi * turns)) for turns in (0, 1, -7)}
    assert len(set(one_turn.values())) == 1
    # Phases scattered about pi, both sides of the wrap: a mean of wrapped numbers would be 0, whose colour differs.
    scattered = np.pi + np.random.default_rng(3).uniform(-0.4, 0.4, shape)
    scattered[scattered > np.pi] -= 2 * np.pi
    at_pi, at_zero = phase_colours(tmp_path, np.full(shape, np.pi)), phase_colours(tmp_path, np.zeros(shape))
    assert (png(tmp_path / "simu_phase.png")[:30, :1100] == at_zero).all()  # nothing is written over the product
    close = np.abs(np.array(phase_colours(tmp_path, scattered)) - at_pi).max()
    assert close < 60 < np.abs(np.array(at_zero) - at_pi).max()


def test_pixels_without_a_value_are_grey_and_leave_their_neighbours_alone(tmp_path):
    phase = np.full((900, 2000), 1.0)  # 2 x 2 pixels become one
    phase[0:20, 0:20], phase[200:220, 0:20], phase[400:420, 0:20] = np.nan, np.inf, -99.0
    phase[101, 101] = np.nan
    write(tmp_path / "simu_phase.ras", phase)
    good(tmp_path, "picture", "simu_phase.ras", "--invalid", "-99", "-o", "out.png")
    picture = png(tmp_path / "out.png")
    assert picture.shape[1] == 1000 and picture.shape[0] <= 1600
    assert all(tuple(picture[row, 5]) == (128, 128, 128) for row in (5, 105, 205))
    assert tuple(picture[50, 50]) == tuple(picture[50, 60]) != (128, 128, 128)


@pytest.mark.parametrize("name, columns, rows", [("wide", 5000, 20), ("tall", 3, 4001), ("small", 1, 1), ("edge", 1601, 1501)])
def test_every_side_is_at_most_1600(tmp_path, name, columns, rows):
    write(tmp_path / (name + ".ras"), np.arange(columns * rows, dtype=float).reshape(rows, columns))
    good(tmp_path, "picture", name + ".ras")
    assert max(png(tmp_path / (name + ".png")).shape) <= 1600
    good(tmp_path, "picture", name + ".ras", "--longest", "480", "--force")
    assert max(png(tmp_path / (name + ".png")).shape) == 480 or name == "small"


def test_tables_follow_the_product(tmp_path):
    ramp = np.tile(np.linspace(-100.0, 50.0, 601), (300, 1))
    for name in ("x_earth", "rg_coreg", "h_earth", "numbers"):
        write(tmp_path / (name + ".ras"), ramp)
    write(tmp_path / "dem.ras", np.tile(np.r_[[-32768] * 50, np.arange(551)], (300, 1)), "<i2")
    write(tmp_path / "az_coreg.ras", ramp + 99.0)  # hardly below 0: not about it
    names = ("x_earth", "rg_coreg", "h_earth", "numbers", "dem", "az_coreg")
    good(tmp_path, "picture", *(name + ".ras" for name in names))
    row = {name: png(tmp_path / (name + ".png"))[150] for name in names}
    for name in ("x_earth", "rg_coreg"):  # white at 0, blue below, red above
        assert row[name][400].min() > 235 and row[name][5][2] > row[name][5][0] + 60 and row[name][595][0] > row[name][595][2]
    for name in ("numbers", "az_coreg"):
        light = row[name].sum(axis=1)
        assert (np.diff(light) >= -6).all() and light[-1] > light[0] + 300
    assert tuple(row["dem"][20]) == (128, 128, 128) != tuple(row["dem"][60])
    assert np.abs(row["dem"][325] - row["h_earth"][300]).max() <= 3  # half way up, in the same light in spite of the voids
    assert row["h_earth"][10][1] > row["h_earth"][10][0] and (row["h_earth"][599] > 150).all()


def slope(image, axis):
    """Half of what the neighbours differ; what is known of it at the edges and beside missing values."""
    pad = [(1, 1) if i == axis else (0, 0) for i in (0, 1)]
    steps = np.diff(np.pad(image, pad, constant_values=np.nan), axis=axis)
    before, behind = np.delete(steps, -1, axis), np.delete(steps, 0, axis)
    return np.nan_to_num(np.where(np.isnan(before), behind, np.where(np.isnan(behind), before, 0.5 * (before + behind))))


def test_heights_are_lit_by_lamberts_law(tmp_path):
    heights = np.random.default_rng(8).integers(-3, 4, (40, 60)).astype(float)
    heights[5:7, 5:9], heights[20, ::3], heights[::2, 30:40:2], heights[-3:, -3:] = (np.nan,) * 4
    write(tmp_path / "dem.ras", np.nan_to_num(heights, nan=-32768), "<i2")
    good(tmp_path, "picture", "dem.ras")
    picture = png(tmp_path / "dem.png")[:40, :60]
    down, right = slope(heights, 0), slope(heights, 1)
    down, right = np.array([down, right]) / np.sqrt(np.mean(down**2 + right**2))
    light = np.maximum(1 / np.sqrt(2) + (right + down) / 2, 0) / np.sqrt(1 + right**2 + down**2) * np.sqrt(2)
    assert (picture[np.isnan(heights)] == 128).all() and light.min() == 0 and light.max() > 1.3
    for height in range(-3, 4):  # of one height are of one colour but for the light
        at = heights == height
        level = (picture[at] + 0.5) / (0.45 + 0.55 * light[at])[:, None]
        spread = np.where(picture[at] == 255, np.nan, level)  # cut off
        assert np.nanmax(np.nanmax(spread, axis=0) - np.nanmin(spread, axis=0)) < 1.02 / 0.45, height


FONT = {letter: [int(row, 16) for row in rows.split(", ")] for rows, letter in re.findall(
    r"\{((?:0x\w\w, ){8}0x\w\w)\},  // (\S)", (REPOSITORY / "view" / "canvas.cpp").read_text())}


def draw(black, left, top, text):
    for place, letter in enumerate(text.lower()):
        for y, bits in enumerate(FONT.get(letter, ())):
            for x in range(5):
                black[top + 2 * y:top + 2 * y + 2, left + 12 * place + 2 * x:left + 12 * place + 2 * x + 2] |= bits >> (4 - x) & 1 == 1


def check_legend(folder, kind, values, pixel, title, black):
    """All that is black, and the grey of the missing value. @return the picture"""
    columns = values.shape[1]
    for missing in (False, True):
        values[1, 7] = 99 if missing else values[0, 7]
        write(folder / "a.ras", values, pixel)
        good(folder, "picture", "a.ras", "--invalid", "99", "--force", *(("--kind", kind) if kind else ()))
        picture = png(folder / "a.png")
        grey = np.zeros_like(black)
        grey[10:24, columns - 138:columns - 116] = missing
        draw(black, 10, 10, title)
        draw(black, columns - 106, 10, "no value" if missing else "")
        assert ((picture[3:] == 0).all(axis=2) == black).all() and ((picture[3:] == 128).all(axis=2) == grey).all()
    return picture


HUGE = float(np.float32(3e38))


@pytest.mark.parametrize("kind, title, least, greatest, columns, numbers", [
    ("", "values", -HUGE, HUGE, 480, " ".join("%.0f" % (-HUGE + 2 * HUGE * i / 3) for i in range(4))),  # wider than the picture: cut off
    ("", "values", 0.0, 100.0, 481, "0 33 67 100"),
    ("", "values", 0.0, 99.5, 619, "0.0 33.2 66.3 99.5"),
    ("", "values", -5.0, 5.0, 620, "-5.0 -2.5 0.0 2.5 5.0"),
    ("", "values", 1.0, 10.75, 1600, "1.00 3.44 5.88 8.31 10.75"),
    ("H_EARTH", "terrain height", 1.0, 1.5, 480, "1.000 1.167 1.333 1.500_m"),
    ("H_EARTH", "terrain height", 7.0, 7.0, 480, "7.000000 7.000000 7.000000 7.000000_m"),
    ("X_EARTH", "Earth-fixed x, less offset", -1e6, 2e5, 480, "-1000000 -333333 333333 1000000_m"),
    ("SIMU_PHASE", "simulated phase, wrapped", 2.0, 3.0, 480, "0.00 2.09 4.19 6.28_rad")])
def test_legends_have_a_bar_with_numbers(tmp_path, kind, title, least, greatest, columns, numbers):
    black = np.zeros((92, columns), bool)
    texts = [text.replace("_", " ") for text in numbers.split()]
    for tick, text in enumerate(texts):
        place = 10 + tick * (columns - 21) // (len(texts) - 1)
        black[56:60, place:place + 2] = True
        draw(black, max(min(place - 6 * len(text), columns - 10 - 12 * len(text)), 10), 64, text)
    picture = check_legend(tmp_path, kind, np.tile(np.linspace(least, greatest, columns), (3, 1)), "<f4", title, black)
    if not kind:  # the bar has the picture's colours, from end to end
        bar, along = picture[41:59], np.linspace(0, columns - 1, columns - 20).round().astype(int)
        assert np.abs(bar[:, 10:-10] - picture[0, along]).max() <= 6 and (bar[:, [9, -10]] == 255).all()


LINE = [("seen", 10, (235, 235, 230)), ("layover", 96, (230, 130, 40)), ("shadow", 218, (40, 70, 140)), ("both", 328, (140, 60, 130)),
        ("for the slave only", 414, (120, 190, 120)), ("no terrain", 668, (0, 0, 0))]
SHORT = [LINE[:4], [(*LINE[4][:1], 10, LINE[4][2]), ("no terrain", 264, (0, 0, 0))]]


@pytest.mark.parametrize("columns, lines", [(820, [LINE]), (819, [LINE[:5], [("no terrain", 10, (0, 0, 0))]]),
                                            (662, [LINE[:5], [("no terrain", 10, (0, 0, 0))]]), (661, SHORT), (480, SHORT)])
def test_legends_of_flags_name_every_class(tmp_path, columns, lines):
    black = np.zeros((92, columns), bool)
    swatches = [(row, *entry) for row, entries in zip((38, 64), lines) for entry in entries]
    for row, text, left, colour in swatches:
        black[row:row + 18, left:left + 18] = True
        black[row + 1:row + 17, left + 1:left + 17] = colour == (0, 0, 0)
        draw(black, left + 22, row, text)
    picture = check_legend(tmp_path, "LAYOVER_SHADOW", np.full((3, columns), 3.0), "u1", "layover and shadow", black)
    for row, _, left, colour in swatches:
        assert (picture[row + 4:row + 20, left + 1:left + 17] == colour).all()


def test_sidecars_open_bit_equal_and_move_along(tmp_path):
    values = {"<f4": np.float32([[1.5, np.nan, -3e38], [0.1, 2.0, np.inf]]), "<f8": np.float64([[1e300, 2.0], [3.0, 0.1]]),
              "<i2": np.int16([[1, -32768], [3, 7]]), "<i4": np.int32([[1, -70000]]), "u1": np.uint8([[1, 255, 3]])}
    for number, (pixel, image) in enumerate(values.items()):
        write(tmp_path / ("%d &<>\".ras" % number), image, pixel, map_bytes=b"rgb" * number)
    write(tmp_path / "scene7_RG_COREG.ras", values["<f4"])
    names = sorted(path.name for path in tmp_path.glob("*.ras"))
    assert good(tmp_path, "vrt", *names).split("\n")[:-1] == [name + ".vrt" for name in names]
    shutil.copytree(tmp_path, tmp_path / "moved")
    for name, image in zip(names, values.values()):
        assert gdal.Open(str(tmp_path / "moved" / (name + ".vrt"))).ReadAsArray().tobytes() == image.tobytes()
        band = ElementTree.parse(tmp_path / (name + ".vrt")).find("VRTRasterBand")  # nothing is left to a reader's habits
        assert [band.findtext(key) for key in ("PixelOffset", "LineOffset", "ByteOrder")] == [
            str(image.itemsize), str(image.strides[0]), "LSB"]
    assert "Metadata" not in (tmp_path / (names[0] + ".vrt")).read_text()  # nothing tells which product it is
    file = gdal.Open(str(tmp_path / "scene7_RG_COREG.ras.vrt"))  # a band does not keep its file
    band = file.GetRasterBand(1)
    assert (band.GetUnitType(), band.GetDescription()) == ("px", "position in slave, range")
    voids = [gdal.Open(str(tmp_path / (name + ".vrt"))) for name in names[2:4]]
    assert [opened.GetRasterBand(1).GetNoDataValue() for opened in voids] == [-32768.0, None]
    # The sidecar then tells what the name no longer does.
    for ending in ("", ".vrt"):
        os.rename(tmp_path / ("scene7_RG_COREG.ras" + ending), tmp_path / ("renamed.ras" + ending))
    assert "(RG_COREG)" in good(tmp_path, "info", "renamed.ras")


def test_a_full_disk_leaves_no_sidecar(tmp_path):
    write(tmp_path / "h_earth.ras", np.ones((3, 3)))
    limited = "trap '' XFSZ; ulimit -f 0; exec \"$0\" vrt h_earth.ras"
    done = subprocess.run(["bash", "-c", limited, VIEW], cwd=tmp_path, capture_output=True, text=True, timeout=60, check=False)
    assert done.returncode == 1 and "can not write" in done.stderr
    assert [path.name for path in tmp_path.iterdir()] == ["h_earth.ras"]


def test_info_counts_and_measures(tmp_path):
    image = np.random.default_rng(5).normal(4.0e6, 1.0, (70, 90)).astype("<f4")
    image[3, 4], image[5, 6], image[7, 8] = np.nan, np.inf, 0.0
    write(tmp_path / "y_earth.ras", image)
    (tmp_path / "insar.pool").write_text("y_earth_offset FLT_15 -123456\n")
    lines = good(tmp_path, "info", "y_earth.ras", "--pool", "insar.pool", "--invalid", "0").splitlines()
    found = dict(line.split(None, 1) for line in lines[1:])
    there = image[np.isfinite(image) & (image != 0)].astype(float)
    assert found["size"] == "90 columns x 70 rows" and found["pixels"] == "6297 with a value, 3 without"
    for key, value in (("minimum", there.min()), ("maximum", there.max()), ("mean", there.mean()), ("deviation", there.std())):
        assert abs(float(found[key].split()[0]) - value) <= 1e-8 * abs(value), key
    assert found["offset"] == "-123456 m, to be added to every pixel"
    assert lines[0] == "y_earth.ras" and found["content"] == "Earth-fixed y, less offset (Y_EARTH)"
    types = {"<f4": "32-bit real (flt_6)", "<f8": "64-bit real (flt_15)", "<i2": "16-bit integer (int_16)",
             "<i4": "32-bit integer (int_32)", "u1": "8-bit unsigned integer (u_int_8)"}
    for pixel, text in types.items():
        write(tmp_path / "a.ras", np.array([[7, 2, 3, 3]]), pixel)
        some, none = (good(tmp_path, "info", "a.ras", "--pool", "insar.pool", *words) for words in ((), ("--invalid", "3", "--kind", "H_EARTH")))
        head = "  content    not known\n  size       4 columns x 1 rows\n  type       %s\n" % text
        assert some.startswith("a.ras\n" + head + "  pixels     4 with a value, 0 without\n  minimum    2 \n  maximum    7 \n  mean       3.75 \n")
        assert "offset" not in some and "terrain height (H_EARTH)" in none and "maximum    7 m\n  mean       4.5 m\n  deviation  2.5 m\n" in none
    write(tmp_path / "a.ras", np.full((2, 1), np.nan))
    assert good(tmp_path, "info", "a.ras").endswith("  pixels     0 with a value, 2 without\n")


PLACES = {
    "demo-like": dict(shift_factors=(4, 3), earth_factors=(2, 2)),
    "date line, left looking": dict(longitude_deg=179.999, latitude_deg=-17.0, side="left", longitudes="signed", earth_factors=(2, 6),
                                    pass_direction="ascending"),
    "far north, geocoding factors": dict(latitude_deg=78.0, earth_factors=(3, 2), geocoding_factors=(2, 2)),
}


@pytest.mark.parametrize("place", PLACES.values(), ids=PLACES)
def test_geocoded_corners_lie_where_the_orbits_see_them(tmp_path, place):
    options = SCENE_OPTIONS(samples=200, lines=160, terrain="flat", low_m=100.0, cover_low_m=0.0, cover_high_m=1000.0, **place)
    made = scene.make_scene(options, tmp_path)
    velmora_run.succeed(tmp_path)
    sample, line = (axis.ravel() for axis in np.meshgrid([3.0, 100.0, 196.0], [3.0, 80.0, 156.0]))
    longitude, latitude, _ = WGS84.geodetic(made.ground_points(sample, line, np.full(9, 100.0)))
    factors = {"SIMU_PHASE": (1, 1), "RG_COREG": place.get("shift_factors", (1, 1)), "H_EARTH": place.get("earth_factors", (1, 1))}
    for kind, (across, along) in factors.items():
        rows, columns = raster.read(tmp_path / (kind.lower() + ".ras")).shape
        for axis, wanted in ((0, line / along), (1, sample / across)):
            write(tmp_path / "indices.ras", np.indices((rows, columns))[axis])
            good(tmp_path, "geocode", "indices.ras", "--kind", kind, "--pool", "insar.pool", "--force")
            mapped = gdal.Open(str(tmp_path / "indices.tif"))
            left, dx, _, top, _, dy = mapped.GetGeoTransform()
            longitude_deg = np.degrees(longitude) + 360.0 * np.round((left - np.degrees(longitude)) / 360.0)
            column = np.floor((longitude_deg - left) / dx).astype(int)
            row = np.floor((np.degrees(latitude) - top) / dy).astype(int)
            assert np.abs(mapped.ReadAsArray()[row, column] - wanted).max() <= 1.0, (kind, axis)
            assert "WGS 84" in mapped.GetProjection()
    # The finer of the mean steps between neighbours, in degrees of latitude, but at most four map pixels per pixel.
    pool = pool_file.read(tmp_path / "insar.pool")
    x, y, z = (raster.read(tmp_path / (axis + "_earth.ras")) + pool[axis + "_earth_offset"] for axis in "xyz")
    longitude, latitude, _ = WGS84.geodetic(np.stack([x, y, z], axis=-1))
    places = np.stack([np.unwrap(longitude) * np.cos(latitude[len(latitude) // 2, x.shape[1] // 2]), latitude], axis=-1)
    finer = min(np.linalg.norm(np.diff(places, axis=axis), axis=-1).mean() for axis in (0, 1))
    least = np.sqrt(np.ptp(places[..., 0]) * np.ptp(places[..., 1]) / (4 * x.size))
    assert abs(np.radians(-dy) / max(finer, least) - 1) < 1e-3
    # A map pixel beyond the positions on each side, and at most one more where the extent is no whole number of them.
    longitude, latitude = np.degrees(np.unwrap(longitude)), np.degrees(latitude)
    west = longitude.min() + 360.0 * np.round((left - longitude.min()) / 360.0)
    right, bottom = left + dx * mapped.RasterXSize, top + dy * mapped.RasterYSize
    assert np.abs([(west - left) / dx - 1, (latitude.max() - top) / dy - 1]).max() < 1e-3
    assert np.abs([(right - west - np.ptp(longitude)) / dx - 1, (bottom - latitude.min()) / dy - 1]).max() < 0.51


def run_with_earth_files(folder):
    scene.make_scene(SCENE_OPTIONS(earth_factors=(2, 2), **velmora_run.SMALL), folder)
    velmora_run.succeed(folder)


def test_globe_file_holds_transparent_and_coloured_pixels(tmp_path):
    run_with_earth_files(tmp_path)
    assert good(tmp_path, "geocode", "h_earth.ras", "--pool", "insar.pool", "--kmz").split() [-1] == "h_earth.kmz"
    tile = gdal.Open("/vsizip/%s/0/0/0.png" % (tmp_path / "h_earth.kmz")).ReadAsArray()
    assert tile.shape[0] == 4 and {0, 255} <= set(np.unique(tile[3]))
    assert sorted(path.name for path in tmp_path.iterdir() if path.name.startswith("h_earth")) == [
        "h_earth.kmz", "h_earth.ras", "h_earth.tif"]
    shape = raster.read(tmp_path / "simu_phase.ras").shape
    write(tmp_path / "turns.ras", 1.0 + 2 * np.pi * (np.arange(shape[0] * shape[1]).reshape(shape) % 7 - 3))
    for kind in ("RG_COREG", "SIMU_PHASE"):  # about 0 the one is white; of the other whole turns do not show
        good(tmp_path, "geocode", "turns.ras", "--kind", kind, "--pool", "insar.pool", "--kmz", "--force")
        tile = gdal.Open("/vsizip/%s/0/0/0.png" % (tmp_path / "turns.kmz")).ReadAsArray()
        colours = tile[:3, tile[3] == 255]
        assert colours.min(axis=0).max() > 225 if kind == "RG_COREG" else np.ptp(colours, axis=1).max() <= 2
    assert np.abs(colours[:, 0] - phase_colours(tmp_path, np.ones((90, 3300)))).max() <= 2
    write(tmp_path / "flags.ras", np.full(shape, 1), "u1")
    good(tmp_path, "geocode", "flags.ras", "--kind", "LAYOVER_SHADOW", "--pool", "insar.pool", "--kmz")
    tile = gdal.Open("/vsizip/%s/0/0/0.png" % (tmp_path / "flags.kmz")).ReadAsArray()
    assert set(map(tuple, tile[:3, tile[3] == 255].T)) == {(230, 130, 40)}  # the picture's colour of layover


@pytest.mark.skipif(velmora_run.SANITIZED, reason="a sanitizer needs more address space than the test leaves")
def test_rows_longer_than_the_memory_are_refused(tmp_path):
    with open(tmp_path / "wide.ras", "wb") as file:  # a sparse file: 2 GiB a row, 16 as reals
        file.write(struct.pack(">8I", 0x59A66A95, 2**31, 1, 8, 0, 1, 0, 0))
        file.truncate(32 + 2**31)
    done = subprocess.run(["sh", "-c", 'ulimit -v 8000000; exec "$0" picture wide.ras', VIEW], cwd=tmp_path, capture_output=True,
                          text=True, timeout=60, check=False)
    assert (done.returncode, done.stderr) == (1, "velmora-view: not enough memory\n")


BAD_PIXELS = struct.pack(">8I", 0x59A66A95, 4, 4, 24, 48, 3, 0, 0) + bytes(48)
GEOCODE = "geocode h_earth.ras --pool insar.pool"
REFUSED = [  # arguments, text of the message
    ("picture none.ras", "none.ras: can not open"), ("info folder", "folder: is no regular file"),
    ("info pipe.ras", "pipe.ras: is no regular file"), ("vrt empty.ras", "empty.ras: is no raster file"),
    ("picture insar.pool", "insar.pool: is no raster file"), ("picture cut.ras", "cut.ras: too short"),
    ("info rgb.ras", "rgb.ras: header: pixel type rgb"), ("info odd.ras", "odd.ras: header: no pixel type has depth 7"),
    ("picture h_earth.ras cut.ras", "cut.ras: too short"),
    ("picture h_earth.ras --kind HEIGHT", '--kind: value "HEIGHT": expected one of SIMU_PHASE'),
    ("geocode numbers.ras --pool insar.pool", "numbers.ras: its name does not tell"),
    ("picture h_earth.ras x_earth.ras -o a.png", "-o: names one file"),
    ("picture h_earth.ras -o taken.png", "taken.png: is there already; --force"),
    ("picture h_earth.ras -o h_earth.ras --force", "h_earth.ras: is an input"),
    ("picture h_earth.ras -o nowhere/a.png", "nowhere/a.png: can not create"),
    ("geocode h_earth.ras --pool none.pool", "none.pool: can not open"), ("geocode h_earth.ras --pool dem.pool", "x_earth_offset"),
    ("geocode h_earth.ras --pool other.pool", "x_earth.ras: pixel 0"),  # of another run
    (GEOCODE + " --z numbers.ras", "numbers.ras: has 2 x 2 pixels"), (GEOCODE + " --y numbers.ras", "numbers.ras: has 2 x 2 pixels"),
    (GEOCODE + " --z rows.ras", "rows.ras: has"),
    (GEOCODE + " --x=row.ras --y=row.ras --z=row.ras", "2 x 2"), (GEOCODE + " --x=col.ras --y=col.ras --z=col.ras", "2 x 2"),
    ("geocode long.ras --kind H_EARTH --pool insar.pool", "long.ras: has"),
    (GEOCODE + " --kind RG_COREG --x numbers.ras --y numbers.ras --z numbers.ras", "h_earth.ras: has"),
    ("vrt odd\x1f.ras", "can not stand in a sidecar"), ("vrt odd\x7f.ras", "can not stand in a sidecar"),
    ("", "subcommand"), ("picture", "PRODUCT"),
    ("picture h_earth.ras --longest 10", "--longest"), ("info h_earth.ras --invalid many", "--invalid")]


@pytest.fixture(scope="module")
def run_folder(tmp_path_factory):
    folder = tmp_path_factory.mktemp("run")
    run_with_earth_files(folder)
    (folder / "folder").mkdir()
    os.mkfifo(folder / "pipe.ras")
    (folder / "empty.ras").write_bytes(b"")
    (folder / "cut.ras").write_bytes((folder / "h_earth.ras").read_bytes()[:-1])
    (folder / "rgb.ras").write_bytes(BAD_PIXELS)
    (folder / "odd.ras").write_bytes(BAD_PIXELS.replace(struct.pack(">I", 24), struct.pack(">I", 7)))
    (folder / "taken.png").write_bytes(b"mine")
    height = raster.read(folder / "h_earth.ras")
    for name, values in (("numbers", np.array([[1.0, 2.0], [3.0, 4.0]])), ("rows", height[:-1]), ("row", height[:1]),
                         ("col", height[:, :1]), ("long", np.tile(height, (2, 1))), ("odd\x1f", height), ("odd\x7f", height)):
        write(folder / (name + ".ras"), values)
    (folder / "other.pool").write_text("".join("%s_earth_offset FLT_15 10\n" % axis for axis in "xyz"))
    return folder


@pytest.mark.parametrize("arguments, message", REFUSED)
def test_bad_input_ends_in_a_message_and_leaves_nothing(run_folder, arguments, message):
    before = velmora_run.content(run_folder)
    done = view(run_folder, *filter(None, arguments.split(" ")))
    assert (done.returncode, done.stdout) == (1, "")
    assert message in done.stderr
    assert velmora_run.content(run_folder) == before


def test_help_begins_with_an_example(tmp_path):
    for command in ([], ["picture"], ["vrt"], ["geocode"], ["info"]):
        help_text = good(tmp_path, *command, "--help")
        assert help_text.startswith("Example:\n  velmora-view " + " ".join(command)) and help_text.count("Example:") == 1
