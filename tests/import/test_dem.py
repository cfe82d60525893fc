"""dem: terrain models of many kinds, against the numbers that went into the files and against PROJ itself."""

import pathlib
import shutil
import zipfile

import numpy as np
import pytest
from osgeo import gdal, osr

import made_files
from import_run import INPUTS, good, pool, refused
from scene_maker import raster

gdal.UseExceptions()
osr.UseExceptions()
VOID = -32768
needs_inputs = pytest.mark.skipif(not INPUTS.is_dir(), reason="no real files in %s" % INPUTS)
RANDOM = np.random.default_rng(14)
HEIGHTS = RANDOM.integers(-400, 4000, (30, 40)).astype(np.int16)
HEIGHTS[3, 5] = 32767  # the marks of a missing height, when a file calls them so
HEIGHTS[20:22, 30:33] = VOID


def system(text):
    reference = osr.SpatialReference()
    reference.SetFromUserInput(text)
    reference.SetAxisMappingStrategy(osr.OAMS_TRADITIONAL_GIS_ORDER)
    return reference


def tiff(path, samples, corner, spacing, crs="EPSG:4326", point=False, no_data=None, south_up=False, unit=""):
    """corner: of the first pixel's outer edge, as GDAL counts for both meanings of a pixel."""
    kinds = {np.int16: gdal.GDT_Int16, np.uint16: gdal.GDT_UInt16, np.float32: gdal.GDT_Float32}
    rows, columns = samples.shape
    made = gdal.GetDriverByName("GTiff").Create(str(path), columns, rows, 1, kinds[samples.dtype.type],
                                                ["GEOTIFF_VERSION=1.1"])
    if crs:
        made.SetProjection(system(crs).ExportToWkt())
    made.SetGeoTransform((corner[0], spacing, 0, corner[1] - (rows * spacing if south_up else 0), 0,
                          spacing if south_up else -spacing))
    made.SetMetadataItem("AREA_OR_POINT", "Point" if point else "Area")
    if no_data is not None:
        made.GetRasterBand(1).SetNoDataValue(no_data)
    made.GetRasterBand(1).SetUnitType(unit)
    made.GetRasterBand(1).WriteArray(samples[::-1] if south_up else samples)
    made.FlushCache()
    return path


def hgt(path, size=1201):
    """Three arc seconds, big-endian, made without GDAL: the first sample lies on the tile's north-west corner."""
    samples = RANDOM.integers(0, 3000, (size, size)).astype(">i2")
    samples[7, 9] = VOID
    path.write_bytes(samples.tobytes())
    return samples.astype(np.int16)


class DEM:
    """What was written: samples, and the positions of all columns and rows."""

    def __init__(self, stem):
        self.pool = pool(str(stem) + ".pool")
        self.samples = raster.read(str(stem) + ".ras")
        assert self.samples.dtype == (np.float32 if self.pool.get("dem_pixel_type") == "flt_6" else np.int16)
        rows, columns = self.samples.shape
        left, right = self.pool["left_easting"], self.pool["right_easting"]
        right += 360.0 if right < left else 0.0
        self.x = left + np.arange(columns) * (right - left) / columns
        upper, lower = self.pool["upper_northing"], self.pool["lower_northing"]
        self.y = upper - np.arange(rows) * (upper - lower) / rows


def imported(folder, *arguments):
    results = good("dem", *arguments, "-o", folder / "out", "--force")
    return DEM(folder / "out"), results


ARC_SECOND = 1.0 / 3600.0
COPIES = {
    # corner of the first pixel, spacing, keywords, position of the first sample, edges' kind
    "pixel is area": ((-118.3, 34.4), ARC_SECOND, {}, "GEO"),
    "pixel is point": ((-118.3, 34.4), ARC_SECOND, dict(point=True), "GEO"),
    "south up": ((10.0, 46.0), 3 * ARC_SECOND, dict(south_up=True), "GEO"),
    "UTM north": ((376313.655454, 3807917.8276), 30.0, dict(crs="EPSG:32611"), "UTM"),
    "UTM south": ((500000.0, 6000000.0), 12.5, dict(crs="EPSG:32733"), "UTM"),
    "no data declared": ((1.0, 43.0), ARC_SECOND, dict(no_data=32767), "GEO"),
}


@pytest.mark.parametrize("case", COPIES)
def test_samples_on_the_ellipsoid_are_copied_bit_by_bit_at_their_places(tmp_path, case):
    corner, spacing, keywords, kind = COPIES[case]
    tiff(tmp_path / "a.tif", HEIGHTS, corner, spacing, **keywords)
    dem, results = imported(tmp_path, tmp_path / "a.tif", "--heights", "ellipsoid")
    expected = HEIGHTS.copy()
    if "no_data" in keywords:
        expected[expected == 32767] = VOID
    assert np.array_equal(dem.samples, expected)
    tolerance = 1e-9 if kind == "GEO" else 1e-6
    assert dem.pool["grid_format"] == kind
    assert np.max(np.abs(dem.x - (corner[0] + (np.arange(40) + 0.5) * spacing))) < tolerance
    assert np.max(np.abs(dem.y - (corner[1] - (np.arange(30) + 0.5) * spacing))) < tolerance
    if kind == "UTM":
        assert "EPSG:32%d%d" % (7 if dem.pool["utm_hemisphere"] == "S" else 6, dem.pool["utm_zone"]) == keywords["crs"]
    assert "0 filled, %d left" % np.sum(expected == VOID) in results
    heights = expected[expected != VOID]
    assert "DEM_VALID %d..%d\n" % (heights.min(), heights.max()) in results


def test_reals_keep_their_bits_and_whole_metres_tell_what_they_cost(tmp_path):
    samples = (RANDOM.random((20, 25)) * 900.0).astype(np.float32)
    samples[4, 4] = np.nan
    tiff(tmp_path / "a.tif", samples, (7.0, 44.0), ARC_SECOND, no_data=float("nan"))
    dem, results = imported(tmp_path, tmp_path / "a.tif", "--heights", "as-is", "--float")
    expected = np.where(np.isnan(samples), np.float32(VOID), samples)
    assert dem.samples.dtype == np.float32 and np.array_equal(dem.samples, expected)
    dem, results = imported(tmp_path, tmp_path / "a.tif", "--heights", "as-is")
    error = np.nanmax(np.abs(np.round(samples.astype(float)) - samples))
    assert "up to %.3f m" % error in results
    assert np.nanmax(np.abs(np.where(dem.samples == VOID, np.nan, dem.samples) - samples)) == pytest.approx(error)


@pytest.mark.parametrize("zipped", ["", "S34W071.hgt.zip", "a.zip"])  # GDAL itself opens one of that name alone
def test_a_tile_of_points_begins_on_its_corner(tmp_path, zipped):
    samples = hgt(tmp_path / "S34W071.hgt")
    name = tmp_path / (zipped or "S34W071.hgt")
    if zipped:
        with zipfile.ZipFile(name, "w") as archive:
            archive.writestr("read me.txt", "no DEM")
            archive.write(tmp_path / "S34W071.hgt", "S34W071.hgt")
    dem, _ = imported(tmp_path, name, "--heights", "ellipsoid")
    assert np.array_equal(dem.samples, samples)
    assert np.max(np.abs(dem.x - (-71.0 + np.arange(1201) / 1200.0))) < 1e-9
    assert np.max(np.abs(dem.y - (-33.0 - np.arange(1201) / 1200.0))) < 1e-9


def above_ellipsoid(x, y, heights, crs):
    """PROJ's own transformation from heights above EGM96."""
    source, target = system(crs + "+5773"), system("EPSG:4979")
    points = osr.CoordinateTransformation(source, target).TransformPoints(
        np.column_stack([x.ravel(), y.ravel(), heights.ravel()]))
    return np.array(points)[:, 2].reshape(heights.shape)


@pytest.mark.parametrize("crs, corner, spacing", [
    ("EPSG:4326", (-60.0, -20.0), 0.05), ("EPSG:32611", (376313.6, 3807917.8), 900.0),
    ("EPSG:32733", (450000.0, 6300000.0), 900.0)])
def test_heights_above_egm96_become_ellipsoidal_as_proj_has_it(tmp_path, crs, corner, spacing):
    heights = RANDOM.integers(0, 3000, (30, 40)).astype(np.int16)
    tiff(tmp_path / "a.tif", heights, corner, spacing, crs)
    dem, _ = imported(tmp_path, tmp_path / "a.tif", "--heights", "egm96", "--float")
    expected = above_ellipsoid(*np.meshgrid(dem.x, dem.y), heights.astype(float), crs)
    assert np.max(np.abs(expected - heights)) > 1.0
    assert np.max(np.abs(dem.samples - expected)) < 0.01
    rounded, results = imported(tmp_path, tmp_path / "a.tif", "--heights", "egm96")
    assert np.max(np.abs(rounded.samples - expected)) <= 0.51
    assert "rounding costs up to" in results
    tiff(tmp_path / "b.tif", heights, corner, spacing, crs + "+5773")
    told, _ = imported(tmp_path, tmp_path / "b.tif", "--float")  # the file itself says EGM96
    assert np.array_equal(told.samples, dem.samples)
    overruled, results = imported(tmp_path, tmp_path / "b.tif", "--heights", "ellipsoid", "--float")
    assert np.array_equal(overruled.samples, heights) and "overrules a file, which says: EGM96" in results


def test_a_file_may_say_that_it_refers_to_the_ellipsoid(tmp_path):
    tiff(tmp_path / "a.tif", HEIGHTS, (1.0, 43.0), ARC_SECOND, "EPSG:4979")
    dem, _ = imported(tmp_path, tmp_path / "a.tif")
    assert np.array_equal(dem.samples, HEIGHTS)
    tiff(tmp_path / "b.tif", HEIGHTS, (1.0 + 40 * ARC_SECOND, 43.0), ARC_SECOND, "EPSG:4326+5773")
    refused("dem", "a.tif", "b.tif", "-o", "mixed", says=["b.tif: its heights refer to", "those of a.tif do not"], folder=tmp_path)


def plane(longitude, latitude):
    return 500.0 + 2000.0 * (longitude - 13.0) - 3000.0 * (latitude - 47.0)


def test_another_datum_is_warped_to_wgs84(tmp_path):
    """A plane of WGS 84 longitude and latitude, sampled at the places of an Austrian grid (Bessel, 120 m off)."""
    columns, rows, spacing = 200, 150, 50.0
    x = 400000.0 + (np.arange(columns) + 0.5) * spacing
    y = 380000.0 - (np.arange(rows) + 0.5) * spacing
    grid_x, grid_y = np.meshgrid(x, y)
    points = osr.CoordinateTransformation(system("EPSG:31287"), system("EPSG:4326")).TransformPoints(
        np.column_stack([grid_x.ravel(), grid_y.ravel()]))
    longitude, latitude = np.array(points)[:, 0], np.array(points)[:, 1]
    samples = plane(longitude, latitude).reshape(rows, columns).astype(np.float32)
    tiff(tmp_path / "a.tif", samples, (400000.0, 380000.0), spacing, "EPSG:31287")
    dem, results = imported(tmp_path, tmp_path / "a.tif", "--heights", "ellipsoid", "--float")
    assert dem.pool["grid_format"] == "GEO" and "warped (cubic)" in results
    inside = dem.samples != VOID
    assert np.mean(inside) > 0.8
    error = np.where(inside, np.abs(dem.samples - plane(*np.meshgrid(dem.x, dem.y))), 0.0)
    assert np.max(error) < 1.5  # on the border the kernel is cut: 50 m on the ground
    whole = np.array([[np.all(inside[i - 3:i + 4, j - 3:j + 4]) for j in range(3, inside.shape[1] - 3)]
                      for i in range(3, inside.shape[0] - 3)])
    assert np.mean(whole) > 0.7
    # PROJ knows several transformations between these datums, up to 1 m apart; without any the error were 3 m of height.
    assert np.max(error[3:-3, 3:-3][whole]) < 0.05


NEARLY_WGS84 = ('GEOGCS["mine",DATUM["%s",SPHEROID["mine",%.1f,%.9f]],PRIMEM["mine",%.1f],UNIT["degree",0.0174532925199433]]')


@pytest.mark.parametrize("datum, axis_m, flattening, meridian_deg", [
    ("WGS_1984", 6378137.0, 298.257223563, 0.0), ("WGS_1984", 6378137.0, 298.257223563, 2.5), ("mine", 6378137.0, 298.257223563, 0.0),
    ("WGS_1984", 6377397.0, 298.257223563, 0.0), ("WGS_1984", 6378137.0, 299.152812800, 0.0)])
def test_only_wgs84_itself_is_copied(tmp_path, datum, axis_m, flattening, meridian_deg):
    tiff(tmp_path / "a.tif", np.full((30, 40), 7, np.int16), (7.0, 44.0), ARC_SECOND)
    gdal.Translate(str(tmp_path / "a.vrt"), str(tmp_path / "a.tif"), outputSRS=NEARLY_WGS84 % (datum, axis_m, flattening, meridian_deg))
    dem, results = imported(tmp_path, tmp_path / "a.vrt", "--heights", "ellipsoid")
    assert ("warped" in results) == ((datum, axis_m, flattening, meridian_deg) != ("WGS_1984", 6378137.0, 298.257223563, 0.0))
    assert abs(dem.x[0] - 7.0 - meridian_deg) < 3 * ARC_SECOND


def tiles_of(samples, west, north, spacing, cut):
    """Two files of points that share the column at the cut."""
    return [(samples[:, :cut + 1], west), (samples[:, cut:], west + cut * spacing)]


@pytest.mark.parametrize("west", [10.0, 179.9, -0.05])
def test_tiles_side_by_side_become_one_grid_also_across_180_degrees(tmp_path, west):
    spacing = 0.01
    samples = RANDOM.integers(0, 3000, (20, 41)).astype(np.int16)
    files = []
    for i, (part, edge) in enumerate(tiles_of(samples, west, 50.0, spacing, 10)):
        edge -= 360.0 if edge > 180.0 - 1e-9 else 0.0
        files.append(tiff(tmp_path / ("%d.tif" % i), part, (edge - spacing / 2, 50.0 + spacing / 2), spacing, point=True))
    for order in (files, files[::-1]):
        dem, _ = imported(tmp_path, *order, "--heights", "ellipsoid")
        assert np.array_equal(dem.samples, samples)
        assert np.max(np.abs(dem.x - (west + np.arange(41) * spacing))) < 1e-9
    box = [west + 0.055, 49.85, west + 0.305 - (360.0 if west > 100 else 0.0), 49.955]
    dem, _ = imported(tmp_path, *files, "--heights", "ellipsoid", "--box", *box)
    assert np.array_equal(dem.samples, samples[4:16, 5:32])
    assert np.max(np.abs(dem.x - (west + np.arange(5, 32) * spacing))) < 1e-9


def test_a_box_is_cut_from_a_utm_grid(tmp_path):
    samples = RANDOM.integers(0, 3000, (300, 400)).astype(np.int16)
    tiff(tmp_path / "a.tif", samples, (376000.0, 3808000.0), 100.0, "EPSG:32611")
    box = (-118.2, 34.2, -118.1, 34.3)
    dem, _ = imported(tmp_path, tmp_path / "a.tif", "--heights", "ellipsoid", "--box", *box)
    to_utm = osr.CoordinateTransformation(system("EPSG:4326"), system("EPSG:32611"))
    corners = np.array([to_utm.TransformPoint(x, y)[:2] for x in box[::2] for y in box[1::2]])
    for axis, low, high in ((0, dem.x[0], dem.x[-1]), (1, dem.y[-1], dem.y[0])):
        assert low <= corners[:, axis].min() < low + 300.0
        assert high - 300.0 < corners[:, axis].max() <= high
    column, row = round((dem.x[0] - 376050.0) / 100.0), round((3807950.0 - dem.y[0]) / 100.0)
    rows, columns = dem.samples.shape
    assert np.array_equal(dem.samples, samples[row:row + rows, column:column + columns])


def test_voids_are_filled_from_around_and_counted(tmp_path):
    column, row = np.meshgrid(np.arange(60), np.arange(50))
    samples = (1000 + 3 * column - 2 * row).astype(np.int16)
    whole = samples.copy()
    samples[20:26, 30:37] = -9999
    tiff(tmp_path / "a.tif", samples, (7.0, 44.0), ARC_SECOND, no_data=-9999)
    dem, results = imported(tmp_path, tmp_path / "a.tif", "--heights", "ellipsoid", "--fill-voids")
    assert "42 filled, 0 left" in results
    assert np.array_equal(dem.samples[samples != -9999], samples[samples != -9999])
    assert np.max(np.abs(dem.samples.astype(int) - whole)) <= 12  # a plane of 3 m steps, 7 columns of it missing


def test_around_a_master_takes_what_its_image_sees(tmp_path):
    (tmp_path / "a.xml").write_text(made_files.annotation(made_files.vectors(), bursts=40))
    good("sentinel1", "a.xml", "-o", "master.pool", folder=tmp_path)
    entries = pool(tmp_path / "master.pool")
    last_s = 70.0 + (entries["n_lines"] - 1) / entries["prf"]
    near_m = entries["first_rg_time"] * 299792458.0 / 2.0
    far_m = near_m + (entries["n_samples"] - 1) / entries["range_sampling_frequency"] * 299792458.0 / 2.0
    places = np.array([made_files.ground(t, r, h) for t in (70.0, last_s) for r in (near_m, far_m) for h in (-1000.0, 9000.0)])
    west, south = np.floor(places.min(axis=0)) - 1.0
    samples = np.zeros((400, 400), np.int16)
    tiff(tmp_path / "a.tif", samples, (west, south + 4.0), 0.01)
    dem, results = imported(tmp_path, tmp_path / "a.tif", "--heights", "ellipsoid", "--around", tmp_path / "master.pool")
    assert "note" not in results
    for axis, low, high in ((0, dem.x[0], dem.x[-1]), (1, dem.y[-1], dem.y[0])):
        assert low < places[:, axis].min() < low + 0.06
        assert high - 0.06 < places[:, axis].max() < high


def bad(samples=HEIGHTS, **keywords):
    return lambda path: tiff(path, samples, (1.0, 43.0), 0.001, **keywords)


def cut(path):
    path.write_bytes(bad(RANDOM.integers(0, 99, (300, 300)).astype(np.int16))(path).read_bytes()[:90000])


def without_scale(path):
    made = gdal.Open(str(bad()(path)), gdal.GA_Update)
    made.GetRasterBand(1).SetScale(0.0)


def zipped(*names):
    def make(path):
        with zipfile.ZipFile(path.with_name("a.zip"), "w") as archive:
            for name in names:
                archive.writestr(name, bad()(path).read_bytes() if name.endswith("tif") else "no DEM")
    return make


EGM96, ELLIPSOID = "--heights egm96", "--heights ellipsoid"
BAD_DEMS = {
    "cut": (cut, EGM96, "GDAL can not read it"), "no reference system": (bad(crs=None), EGM96, "no reference system"),
    "EGM2008": (bad(crs="EPSG:4326+3855"), "", ["EGM2008", "--heights as-is"]),
    "too high": (bad(np.full((5, 5), 65535, np.uint16)), ELLIPSOID, ["column 0, row 0", "65535", "-32767 to 32767"]),
    "infinite": (bad(np.full((5, 5), np.inf, np.float32)), ELLIPSOID + " --float", "column 0, row 0"),
    "no raster": (lambda path: path.write_text("velmora\n"), ELLIPSOID, "GDAL can not read it"),
    "unit": (bad(unit="kelvin"), ELLIPSOID, ["kelvin", "metres or feet"]),
    "nobody says which heights": (bad(), "", ["--heights egm96", "--heights ellipsoid", "--heights as-is"]),
    "unknown heights": (bad(), "--heights egm2008", "egm2008"), "no master": (bad(), ELLIPSOID + " --around none.pool", "none.pool"),
    "box elsewhere": (bad(), ELLIPSOID + " --box 5 5 6 6", "covers any part of the box"),
    "box upside down": (bad(), ELLIPSOID + " --box 1 43 2 42", "S is below N"),
    "box beyond": (bad(), ELLIPSOID + " --box 361 43 362 44", "a longitude of -360 to 360 degrees"),
    "no scale": (without_scale, ELLIPSOID, "scale and offset of the band are no numbers"),
    "one sample": (bad(HEIGHTS[:1, :1]), ELLIPSOID, "expected at least 2 of each"),
    "zip of none": (zipped("1.txt"), ELLIPSOID, "a.zip: holds no raster file that GDAL reads (1 members)"),
    "zip of two": (zipped("1.txt", "2.tif", "3.tif"), ELLIPSOID,
                   "a.zip: holds 2 raster files; name the one: /vsizip/a.zip/2.tif"),
    "no geoid": (bad(), EGM96, "PROJ has no EGM96 geoid (us_nga_egm96_15.tif): install the package proj-data"),
}


@pytest.mark.parametrize("fault", BAD_DEMS)
def test_a_bad_dem_ends_in_a_message(tmp_path, monkeypatch, fault):
    make, arguments, says = BAD_DEMS[fault]
    make(tmp_path / "a.tif")
    if fault == "no geoid":
        (tmp_path / "proj").mkdir()
        for path in pathlib.Path("/usr/share/proj").glob("proj.*"):
            (tmp_path / "proj" / path.name).symlink_to(path)
        monkeypatch.setenv("PROJ_DATA", str(tmp_path / "proj"))
        monkeypatch.setenv("PROJ_LIB", str(tmp_path / "proj"))
    refused("dem", "a.zip" if "zip" in fault else "a.tif", "-o", "out", *arguments.split(), says=says, folder=tmp_path)


def test_both_files_appear_or_none(tmp_path):
    tiff(tmp_path / "a.tif", HEIGHTS, (1.0, 43.0), 0.001)
    (tmp_path / "out.pool").write_text("# mine\n")
    refused("dem", "a.tif", "--heights", "ellipsoid", "-o", "out", says=["out.pool", "--force"], folder=tmp_path)
    (tmp_path / "out.pool").unlink()
    (tmp_path / "out.pool").mkdir()
    refused("dem", "a.tif", "--heights", "ellipsoid", "-o", "out", "--force", says="regular file", folder=tmp_path)
    shutil.copy(tmp_path / "a.tif", tmp_path / "b.ras")
    refused("dem", "b.ras", "--heights", "ellipsoid", "-o", "b", "--force", says="input", folder=tmp_path)


@needs_inputs
def test_real_files_are_copied_and_converted(tmp_path):
    area = gdal.Open(str(INPUTS / "bigtujunga.tif"))
    dem, _ = imported(tmp_path, INPUTS / "bigtujunga.tif", "--heights", "as-is")
    assert np.array_equal(dem.samples, area.ReadAsArray())
    corner = area.GetGeoTransform()
    assert dem.x[0] == pytest.approx(corner[0] + 15.0, abs=1e-6) and dem.y[0] == pytest.approx(corner[3] - 15.0, abs=1e-6)

    tile = zipfile.ZipFile(INPUTS / "N42E001.hgt.zip").read("N42E001.hgt")
    samples = np.frombuffer(tile, ">i2").reshape(1201, 1201)
    dem, results = imported(tmp_path, INPUTS / "N42E001.hgt.zip", "--heights", "as-is")
    assert np.array_equal(dem.samples, samples) and "0 filled, 7652 left" in results
    assert abs(dem.x[0] - 1.0) < 1e-9 and abs(dem.y[0] - 43.0) < 1e-9

    real = gdal.Open(str(INPUTS / "los_angeles_dem_ellipsoid.tif")).ReadAsArray()
    dem, _ = imported(tmp_path, INPUTS / "los_angeles_dem_ellipsoid.tif", "--heights", "ellipsoid", "--float")
    assert np.array_equal(dem.samples, real)
    assert abs(dem.x[0] + 118.05) < 1e-9 and abs(dem.y[0] - 34.05) < 1e-9
