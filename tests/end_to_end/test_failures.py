"""Runs that must fail: exit status, the reason in the log, status files, and no file of the user's touched."""

import copy
import os
import re
import struct

import numpy as np
import pytest

import judge
from scene_maker import raster

from test_real_heights import write_reals
from velmora_run import LAST_LINE, SMALL, edit_control_file, edit_pool, pool_bytes, products, velmora


def pool(name, key, *entries):
    """Puts these entries where the key's own stood; of two entries of one key the first counts."""
    return lambda folder: edit_pool(folder / name, key, "\n".join(entries) or None)


def keys(**values):
    return lambda folder: edit_control_file(folder, **values)


def huge_image(**values):
    """3 000 000 x 2 500 000 pixels, at rates that keep them in the DEM."""
    return lambda folder: [edit(folder) for edit in (
        keys(**values), pool("insar.pool", "n_samples", "n_samples INT_32 3000000"),
        pool("insar.pool", "n_lines", "n_lines INT_32 2500000"),
        *(pool(name, key, "%s FLT_15 %g" % (key, rate)) for name in ("master.pool", "slave.pool")
          for key, rate in (("prf", 1e8), ("range_sampling_frequency", 3e12))))]


def overwrite(name, offset, data):
    def change(folder):
        with open(folder / name, "r+b") as file:
            file.seek(offset)
            file.write(data)
    return change


def cut(name, size):
    return lambda folder: os.truncate(folder / name, size)


def ps_mode(slave_oversampling):
    """Each acquisition's own pool tells size, start and oversampling."""
    def change(folder):
        edit_control_file(folder, PS_INSAR_MODE="1")
        for name, oversampling in (("master", "1"), ("slave", slave_oversampling)):
            with open(folder / (name + ".pool"), "a", encoding="ascii") as file:
                file.write("n_samples INT_32 60\nn_lines INT_32 50\nfirst_az_time FLT_15 0\nfirst_rg_time FLT_15 0.005\n"
                           "oversampling FLT_15 %s\n" % oversampling)
    return change


NOT_FOUND = "pool error - key not found"
BOTH_DIRECTIONS = "factors above 1 are needed in both directions or in none"

# What is wrong, how the scene is changed, and texts that stand in the ALARM lines, in this order.
CASES = [
    ("key missing", pool("insar.pool", "observation_mode"),
     ["parameter pool: parameter key >> observation_mode << not found", NOT_FOUND]),
    ("zone missing for a UTM grid", pool("dem.pool", "grid_format", 'grid_format STR "UTM"'), ["utm_zone", NOT_FOUND]),
    ("wrong type", pool("insar.pool", "n_samples", "n_samples FLT_15 60"),
     ["parameter pool: parameter key >> n_samples << type INT_32 expected", "pool error - wrong parameter type"]),
    ("no number", pool("slave.pool", "prf", "prf FLT_15 fast"), ["prf << read value is : fast", "pool error - "]),
    ("unknown observation mode", keys(OBSERVATION_MODE="Dual_pass"), ["can not convert >Dual_pass< to observation mode",
      'configuration: key "OBSERVATION_MODE": value "Dual_pass" is not single_pass or dual_pass']),
    ("look direction in capitals", pool("slave.pool", "antenna_look_direction", 'antenna_look_direction STR "Right"'),
     ["Error: Unknown antenna look direction Right",
      'slave.pool: key "antenna_look_direction": value "Right" is not right or left']),
    ("look direction empty", pool("slave.pool", "antenna_look_direction", 'antenna_look_direction STR ""'),
     ['slave.pool: key "antenna_look_direction": value ""', "program aborted due to FATAL ERROR"]),
    ("unknown grid format", pool("dem.pool", "grid_format", 'grid_format STR "LCC"'),
     ['dem.pool: key "grid_format": value "LCC" is not GEO or UTM', "DEM grid must be UTM or GEO : LCC"]),
    ("unknown orbit type", pool("slave.pool", "orbit_representation", 'orbit_representation STR "orbit_pool_utc"'),
     ["GENERAL_ORBIT: can not convert orbit_pool_utc to orbit_type_id", '"orbit_pool_utc" is refused']),
    ("unknown interpolation", pool("slave.pool", "orbit_interpolation", 'orbit_interpolation STR "Hermite_0_8"'),
     ["GENERAL_ORBIT: can not convert Hermite to interpolation_id", '"Hermite_0_8" is refused']),
    ("velocities of one vector", pool("master.pool", "state_vector_velocities",
                                      "state_vector_velocities FLT_15_V 0 3\n{\n1\n2\n3\n}"),
     ["POOL_ORBIT::ReadFromParameterPool::Number of coordinates in position and velocity disagree.",
      'master.pool: key "state_vector_positions": 48 numbers, but master.pool: key "state_vector_velocities": 3']),
    ("unknown ellipsoid", pool("dem.pool", "ellipsoid_type", 'ellipsoid_type STR "Clarke"'),
     ['dem.pool: key "ellipsoid_type": "Clarke" is none of \'Airy\'', "enumeration data type - invalid value of class ", ": Clarke", "Valid values are: '"]),
    ("rotation that is none", pool("dem.pool", "datum_rotation", "datum_rotation FLT_15_V 0 9\n{\n" + "1\n" * 9 + "}",
                                   "datum_scale FLT_15 1"), ["datum_rotation"]),
    ("zone out of range", pool("dem.pool", "grid_format", 'grid_format STR "UTM"', "utm_zone INT_32 61"), ["utm_zone"]),
    ("edges upside down", pool("dem.pool", "upper_northing", "upper_northing FLT_15 1", "lower_northing FLT_15 2"),
     ['key "upper_northing": value 1 is not above lower_northing']),
    ("edges of one metre", lambda folder: [edit(folder) for edit in (
        pool("dem.pool", "grid_format", 'grid_format STR "UTM"', "utm_zone INT_32 31"),
        pool("dem.pool", "right_easting", "right_easting FLT_15 5"), pool("dem.pool", "left_easting", "left_easting FLT_15 5"))],
     ['key "right_easting": value 5 is not above left_easting']),
    ("shift of two numbers", pool("dem.pool", "datum_shift", "datum_shift FLT_15_V 0 2\n{\n1\n2\n}"),
     ['key "datum_shift": value of 2 elements does not hold 3']),
    ("no ellipsoid", pool("dem.pool", "ellipsoid_type", 'ellipsoid_type STR "-"'), ['value "-" is no ellipsoid for a DEM']),
    ("radii exchanged", pool("master.pool", "ellipsoid_parameters", "ellipsoid_parameters FLT_15_V 7 2\n{\n6356752\n6378137\n}"),
     ["value 6378137 at index 8 (polar radius) is above index 7 (equatorial radius)"]),
    ("forced factor of 2^31", keys(SHIFT_MATRICES_SUBSAMPLING="2147483648"), ['value "2147483648" exceeds a 32-bit integer']),
    ("easting of no projection", lambda folder: [edit(folder) for edit in (
        pool("dem.pool", "grid_format", 'grid_format STR "UTM"', "utm_zone INT_32 31"),
        pool("dem.pool", "right_easting", "right_easting FLT_15 392940000000"))], ["right_easting", "20000000 m"]),
    ("prf of 0", pool("master.pool", "prf", "prf FLT_15 0"), ["prf"]),
    ("frequency not a number", pool("master.pool", "radar_frequency", "radar_frequency FLT_15 nan"), ["radar_frequency"]),
    ("image of no lines", pool("insar.pool", "n_lines", "n_lines INT_32 0"), ["n_lines"]),
    ("negative factor", pool("insar.pool", "shift_matrices_subsampling", "shift_matrices_subsampling INT_32 -2"),
     ["shift_matrices_subsampling"]),
    ("ellipsoid without radii", pool("master.pool", "ellipsoid_parameters",
                                     "ellipsoid_parameters FLT_15_V 0 2\n{\n0\n0\n}"), ["ellipsoid_parameters"]),
    ("range of valid heights", keys(DEM_VALID="0..5000;"), ["can not parse: > 0..5000; < ", 'configuration: key "DEM_VALID": value "0..5000;"']),
    ("range time shift not a number", keys(RANGE_TIME_SHIFT="soon"), ["RANGE_TIME_SHIFT", "soon"]),
    ("no key and nobody at the keyboard", keys(RANGE_TIME_SHIFT=None),
     ["end of input at the keyboard: no value of parameter RANGE_TIME_SHIFT"]),
    ("shift factor of one direction", pool("insar.pool", "shift_matrices_subsampling",
                                           "shift_matrices_subsampling_rg INT_32 2", "shift_matrices_subsampling_az INT_32 1"),
     ["Error: simulated area extension is not enough for subsampled shift matrices", BOTH_DIRECTIONS]),
    ("shift factor of range alone", pool("insar.pool", "shift_matrices_subsampling", "shift_matrices_subsampling_rg INT_32 2"),
     [">> shift_matrices_subsampling_az << not found", NOT_FOUND]),
    ("Earth factor of one direction", keys(RG_COREG=None, AZ_COREG=None, EARTH_MATRICES_SUBSAMPLING_Y=2),
     ["Error: simulated area extension is not enough for subsampled shift matrixes", BOTH_DIRECTIONS]),
    ("factors far beyond the image", keys(SHIFT_MATRICES_SUBSAMPLING=65536),
     ["sub-sampling factors (shift 65536 x 65536, earth 1 x 1, geocoding 1 x 1) beyond the image of 60 x 50 pixels"]),
    ("Earth factors far beyond the image", keys(EARTH_MATRICES_SUBSAMPLING_X=30000, EARTH_MATRICES_SUBSAMPLING_Y=30000),
     ["sub-sampling factors (shift 1 x 1, earth 30000 x 30000, geocoding 1 x 1) beyond the image of 60 x 50 pixels"]),
    ("factors beyond 32 bits", keys(SHIFT_MATRICES_SUBSAMPLING=2147483647),
     ['key "n_samples": value 60 and an extension of 2147483647 exceed a 32-bit integer']),
    ("geocoding factor of one direction",
     lambda folder: [edit(folder) for edit in (
         keys(RG_COREG=None, AZ_COREG=None),
         pool("insar.pool", "observation_mode", 'observation_mode STR "dual_pass"', "geco_sub_factor_range INT_32 1",
              "geco_sub_factor_azimuth INT_32 2"))],
     [" h_earth coverage not enough for interpolation in geco grid", "       h_earth: 60 x 52 (sub 1 x 1 )",
      "       geco:    61 x 26 (sub 1 x 2, eq 60 x 50 )", BOTH_DIRECTIONS]),
    ("DEM shorter than its header says", cut("dem.ras", 5000), ["dem.ras"]),
    ("DEM empty", cut("dem.ras", 0), ["MEM_MGR: can not read header from: dem.ras"]),
    ("DEM header that lies", overwrite("dem.ras", 4, struct.pack(">II", 0x7FFFFFFF, 0x7FFFFFFF)), ["dem.ras"]),
    ("DEM of 32-bit reals", lambda folder: write_reals(folder / "dem.ras", raster.read(folder / "dem.ras")),
     ["flt_6 pixels, it is to be read as int_16"]),
    ("DEM of 16-bit samples under a larger type", pool("dem.pool", "dem_pixel_type", 'dem_pixel_type STR "flt_6"'), ["dem.ras"]),
    ("heights of no type", pool("dem.pool", "dem_pixel_type", 'dem_pixel_type STR "flt_15"'),
     ['dem.pool: key "dem_pixel_type": value "flt_15" is not int_16 or flt_6']),
    ("hemisphere that is none", pool("dem.pool", "grid_format", 'grid_format STR "UTM"', "utm_zone INT_32 31", 'utm_hemisphere STR "X"'),
     ['dem.pool: key "utm_hemisphere": value "X" ']),
    ("DEM missing", keys(DEM="nowhere.ras"), ["MEM_MGR: can not open: nowhere.ras", "nowhere.ras: No such file or directory"]),
    ("DEM of another country", pool("dem.pool", "upper_northing", "upper_northing FLT_15 10.5", "lower_northing FLT_15 10.3"),
     ["the DEM dem.ras ", "a corner of the scene: longitude ", "the DEM: longitude "]),
    ("antenna that looks to the other side", pool("slave.pool", "antenna_look_direction", 'antenna_look_direction STR "left"'),
     ['slave.pool: key "antenna_look_direction": with the other direction the scene would lie in the DEM']),
    ("oversampling of one image", ps_mode(slave_oversampling="2"),
     ["oversampling of master and slave are different: 1.000000 != 2.000000", 'slave.pool: key "oversampling": value 2 ']),
    ("range file without a path beside the azimuth file", keys(RG_COREG=""), ['configuration: key "RG_COREG": value "" is no path']),
    ("one Earth file without a path", keys(Y_EARTH=""), ['configuration: key "Y_EARTH": value "" is no path']),
    ("range below the satellite's height", pool("insar.pool", "master_first_rg_time", "master_first_rg_time FLT_15 0.002"),
     ["geolocation_fast: No intersection of earth ellipsoid and sphere around the satellite", "during iteration in step: 1"]),
    ("image far from the orbit's data", pool("insar.pool", "master_first_az_time", "master_first_az_time FLT_15 20000"),
     ["master.pool: the state vectors from ", 'insar.pool: key "master_first_az_time": value 20000 ']),
    ("more than the memory has", huge_image(MEMORY_LIMIT=2000000000, SIMU_PHASE="/dev/null", RG_COREG=None, AZ_COREG=None,
                                            X_EARTH=None, Y_EARTH=None, Z_EARTH=None, H_EARTH=None),
     ["the grids of 3000000 samples x 2500000 lines need 3579", "not enough memory"]),
    ("more than the disk has", huge_image(),
     ['key "SIMU_PHASE": simu_phase.ras: no room for an image of 3000000 x 2500000 pixels: 30000000000032 bytes are needed']),
    ("not one line fits into the memory that may be used", lambda folder: [edit(folder) for edit in (
        keys(MEMORY_LIMIT="1"), pool("insar.pool", "n_samples", "n_samples INT_32 300000"),
        *(pool(name, "range_sampling_frequency", "range_sampling_frequency FLT_15 3e11")
          for name in ("master.pool", "slave.pool")))], ["MEMORY_LIMIT: one line of the grids needs 15 MiB"]),
    ("no memory limit", keys(MEMORY_LIMIT="0"), ['key "MEMORY_LIMIT": value 0 is not 1 or more']),
    ("no number as memory limit", keys(MEMORY_LIMIT="1GB"), ['key "MEMORY_LIMIT": value "1GB" is no 32-bit integer']),
    ("log pool in a folder that is not there", keys(log_pp="nowhere/log.pool"),
     ["can not open pool file for update nowhere/log.pool", "pool error - can not open parameter pool"]),
    ("product in a folder that is not there", keys(H_EARTH="nowhere/h.ras"), ["nowhere/h.ras"]),
]


@pytest.mark.parametrize("change, reasons", [pytest.param(*case[1:], id=case[0]) for case in CASES])
def test_bad_input_ends_in_a_reason_and_leaves_everything_as_it_was(fresh_scene, change, reasons):
    _, folder = fresh_scene(**SMALL)
    change(folder)
    before, dem = pool_bytes(folder), (folder / "dem.ras").read_bytes()
    run = velmora(folder)
    alarms = run.lines("ALARM")
    assert len(alarms) >= 2 and alarms[-1] == LAST_LINE, run.explanation()
    place = 0
    for reason in reasons:
        found = [i for i, line in enumerate(alarms[:-1]) if i >= place and reason in line]
        assert found, "%r is not in %s" % (reason, alarms)
        place = found[0]
    assert len(alarms) - place <= 3, alarms  # the exception's text and the last line: nothing went on after the refusal
    assert (folder / "dem.ras").read_bytes() == dem
    assert_failed(run, before)
    checked = velmora(folder, "--check")
    assert checked.status == 1 and "  problem: " in checked.screen, checked.screen


def assert_failed(run, before):
    """Nothing but the error file, and the pools as they were."""
    assert run.status == 1, run.explanation()
    assert (run.folder / "ERROR.velmora").read_text() == "1" and not (run.folder / "OK.velmora").exists()
    assert not products(run.folder)
    assert not list(run.folder.glob("pool_*"))
    assert pool_bytes(run.folder) == before


@pytest.mark.parametrize("key", ["MASTER_POOL", "SLAVE_POOL", "INSAR_POOL", "DEM_POOL"])
def test_missing_pool(fresh_scene, key):
    """Opening a pool creates it when it is not there; the run then fails for want of a key and leaves the rest alone."""
    _, folder = fresh_scene(**SMALL)
    before = pool_bytes(folder)
    for path, reason in (("nowhere/missing.pool", "can not open"), ("missing.pool", "<< not found")):
        edit_control_file(folder, **{key: path})
        run = velmora(folder)
        assert any(reason in line for line in run.lines("ALARM")), run.explanation()
        assert run.lines("ALARM")[-1] == LAST_LINE
        assert_failed(run, before)
    assert (folder / "missing.pool").read_bytes() == b""


def void(made, folder):
    """Voids in the middle third of the DEM, askew to the image: no corner of the gap's box lies in them."""
    rows, columns = made.heights.shape
    made.heights[rows // 3:2 * rows // 3, columns // 3:2 * columns // 3] = -32768
    raster.write_int16(folder / "dem.ras", made.heights)


def assert_forecast(run, made, ends):
    """A DEM that ends inside the scene is told before the simulation, with the boxes needed and there, and by --check."""
    told = [line for line in run.lines("WARN") if " ends inside the scene: " in line]
    assert len(told) == (1 if ends else 0)
    if ends:
        before_stage_b = "\n".join(run.log).split("B. PHASE SIMULATION")[0]
        assert told[0] in before_stage_b
        sample, line = np.meshgrid(np.linspace(0, made.options.samples - 1, 11), np.linspace(0, made.options.lines - 1, 11))
        points_m = judge.ground_points(made, sample, line, np.full(line.shape, made.options.low_m))
        column, row, _ = made.grid.grid_coordinates(points_m)
        boxes = np.array([float(number) for number in re.findall(r"-?[\d.]+(?= |,|;|$)", told[0]) if number != ".."])
        grid = made.grid
        needed = (grid.left + column * grid.dx, grid.upper - row * grid.dy)
        there = (grid.left + np.array([0, grid.columns - 1]) * grid.dx, grid.upper - np.array([0, grid.rows - 1]) * grid.dy)
        expected = [(values.min(), values.max()) for values in needed + there]
        assert np.allclose(boxes, np.ravel(expected), atol=1.5e-4), (told, expected)
        checked = velmora(run.folder, "--check")
        assert checked.status == 0 and "  warning: %s\n" % told[0] in checked.screen


GAPS = [
    ("the DEM ends there", dict(dem_margin_m=-150.0), lambda made, folder: None),
    ("a void of the DEM lies there", {}, void),
    ("the DEM's cells are larger than 1000 samples", dict(dem_spacing_m=20000.0, dem_margin_m=60000.0), None),
]


@pytest.mark.parametrize("cause, options, change", GAPS, ids=[gap[0] for gap in GAPS])
def test_coverage_gap_tells_first_point_number_box_and_cause(fresh_scene, cause, options, change):
    made, folder = fresh_scene(samples=200, lines=160, terrain="flat", low_m=100.0, cover_low_m=99.0, cover_high_m=101.0, **options)
    line, sample = np.mgrid[0:160, 0:200]
    missing = np.ones(line.shape, dtype=bool)
    if change:
        made = copy.deepcopy(made)
        change(made, folder)
        # Every pixel lies at 100 m: its place in the DEM tells whether the DEM has a whole cell for it.
        points_m = judge.ground_points(made, sample.astype(float), line.astype(float), np.full(line.shape, 100.0))
        column, row, _ = made.grid.grid_coordinates(points_m)
        rows, columns = made.heights.shape
        missing = (column < 0) | (row < 0) | (column > columns - 1) | (row > rows - 1)
        x, y = np.clip(column.astype(int), 0, columns - 2), np.clip(row.astype(int), 0, rows - 2)
        upper_left = column - x + row - y < 1.0  # the cell's triangles meet from upper right to lower left
        for down, right in ((np.where(upper_left, 0, 1),) * 2, (0, 1), (1, 0)):
            missing |= made.heights[y + down, x + right] < 0
    before = pool_bytes(folder)
    run = velmora(folder)
    told = re.search(r"Error: point has not been simulated rg=(\d+), az=(\d+)\n(\d+) points are missing, "
                     r"rg=(\d+)\.\.(\d+), az=(\d+)\.\.(\d+): (.*) \(DEM dem\.ras\)", "\n".join(run.lines("WARN")))
    assert told, run.explanation()
    first_sample, first_line, count, *box = [int(number) for number in told.groups()[:7]]
    # At the edge of a void the neighbours' triangles may reach into it, since voids are used as they are.
    tolerance = 10 if change is void else 1 if change else 0
    assert 0.85 * missing.sum() <= count <= missing.sum() and (change is void or count >= 0.99 * missing.sum())
    assert np.allclose(box, [sample[missing].min(), sample[missing].max(), line[missing].min(), line[missing].max()],
                       rtol=0, atol=tolerance)
    assert missing[first_line, first_sample] and first_line == box[2]
    assert first_sample - np.argmax(missing[first_line]) <= tolerance
    assert told[8] == cause
    assert run.lines("ALARM")[-1] == LAST_LINE and len(run.lines("ALARM")) == 2
    assert_forecast(run, made, cause == "the DEM ends there")
    assert_failed(run, before)


@pytest.mark.parametrize("ground_m, column, height_m", [(100.0, -1, 3000), (3000.0, 0, 100)])
def test_a_lone_void_is_found_at_either_end_of_its_pixels_places(fresh_scene, ground_m, column, height_m):
    """One sample at the DEM's edge makes the heights of the scene a wide range, and so the places that a pixel may have: a
    hundred samples of the DEM. The void lies at one end of them."""
    made, folder = fresh_scene(samples=200, lines=160, terrain="flat", low_m=ground_m, cover_low_m=ground_m - 1, cover_high_m=ground_m + 1)
    heights = made.heights.copy()
    rows, columns = heights.shape
    heights[rows // 2, columns // 2], heights[rows // 2, column] = -32768, height_m
    raster.write_int16(folder / "dem.ras", heights)
    assert "a void of the DEM lies there" in velmora(folder).lines("WARN")[-1]


def test_image_just_outside_the_orbits_data(fresh_scene):
    """The interpolator's hard stop ends the process, without the last line of other failures."""
    _, folder = fresh_scene(**SMALL)
    edit_pool(folder / "insar.pool", "master_first_az_time", "master_first_az_time FLT_15 160")
    before = pool_bytes(folder)
    run = velmora(folder)
    assert any(line.startswith("interpolation point outside of data constraints") for line in run.lines("ALARM"))
    assert_failed(run, before)


def test_stop_file_ends_the_run_before_it_starts(fresh_scene):
    _, folder = fresh_scene(**SMALL)
    (folder / "STOP.velmora").touch()
    before, files = pool_bytes(folder), set(os.listdir(folder))
    run = velmora(folder)
    assert run.status == 2, run.explanation()
    rule = "=" * 52
    assert run.lines("INFO") == [rule, "Program execution interrupted - STOP file was found!", rule,
                                 "found file: STOP.velmora"]
    assert pool_bytes(folder) == before
    assert set(os.listdir(folder)) == files | {"log.velmora"}


def test_status_files_of_a_chain_step(fresh_scene):
    """An OK file of an earlier run goes when a new run starts; "pid" and "status" name the files."""
    _, folder = fresh_scene(**SMALL)
    state = folder / "state"
    state.mkdir()
    chain = ("-pid", "job7", "-status", "state", "-lfn", "job7.log")
    assert velmora(folder, *chain).status == 0
    assert (state / "OK.job7").read_text() == "0" and not (state / "ERROR.job7").exists()
    assert velmora(folder, *chain, "-OBSERVATION_MODE", "none").status == 1
    assert (state / "ERROR.job7").read_text() == "1" and not (state / "OK.job7").exists()
    assert "ORQ_MSG|ERROR|job7 terminated with error!" in (folder / "job7.log").read_text()
    (state / "STOP.job7").touch()
    assert velmora(folder, *chain).status == 2
    assert not (folder / "OK.velmora").exists() and not (folder / "log.velmora").exists()


def test_a_scene_beside_the_dem_is_a_coverage_gap_from_its_first_point_on(fresh_scene):
    _, folder = fresh_scene(**SMALL)
    edit_pool(folder / "dem.pool", "upper_northing", "upper_northing FLT_15 10.5\nlower_northing FLT_15 10.3")
    run = velmora(folder)
    assert run.status == 1 and run.lines("WARN") == ["Error: point has not been simulated rg=0, az=0"], run.explanation()
    assert run.log.index("WARN  Error: point has not been simulated rg=0, az=0") < run.log.index(
        "ALARM " + run.lines("ALARM")[0])


def test_terrain_below_the_simulated_heights_is_the_cause_of_its_gap(fresh_scene):
    _, folder = fresh_scene(**{**SMALL, "cover_low_m": -2500.0})
    edit_pool(folder / "dem.pool", "dem_correction", "dem_correction FLT_15 -2000")
    run = velmora(folder)
    assert run.status == 1 and "the terrain lies outside -1000 .. 9000 m" in run.lines("WARN")[-1], run.explanation()


@pytest.mark.parametrize("value, words", [(None, "the file seems to be in the other byte order"),
                                          (32767, "")])
def test_samples_that_are_no_heights_are_told_with_what_they_look_like(fresh_scene, value, words):
    made, folder = fresh_scene(**SMALL)
    heights = made.heights.astype("<i2").byteswap() if value is None else made.heights.copy()
    if value is not None:
        row, column = (size // 2 for size in heights.shape)
        heights[row:row + 2, column:column + 3] = value
        words = "in rows %d..%d, columns %d..%d: %d seems" % (row, row + 1, column, column + 2, value)
    raster.write_int16(folder / "dem.ras", heights)
    told = [line for line in velmora(folder).lines("WARN") if " of the simulated samples are voids or outside -500 .. 9000 m" in line]
    assert len(told) == 1 and words in told[0]


SLAVES = [
    ("lines in reach", {}, "slave_first_az_time", 2.3), ("lines out of reach", {}, "slave_first_az_time", 2.7),
    ("lines out of reach, earlier", {}, "slave_first_az_time", -2.7), ("a long slave image", {"n_lines": 6000}, "slave_first_az_time", 2.7),
    ("samples in reach", {}, "slave_first_rg_time", 8e-5), ("samples out of reach", {}, "slave_first_rg_time", -9e-5),
    ("minutes away", {}, "slave_first_az_time", 200.0)]


@pytest.mark.parametrize("single_pass", [False, True])
@pytest.mark.parametrize("pool_keys, start, change_s", [pytest.param(*case[1:], id=case[0]) for case in SLAVES])
def test_a_slave_of_another_frame_is_told(fresh_scene, single_pass, pool_keys, start, change_s):
    _, folder = fresh_scene(single_pass=single_pass, orbit_interpolation="polynom", **SMALL)
    start_s = float(re.search(start + r" FLT_15 (\S+)", (folder / "insar.pool").read_text())[1])
    edit_pool(folder / "insar.pool", start, "%s FLT_15 %.17g" % (start, start_s + change_s))
    for key, value in pool_keys.items():
        edit_pool(folder / "slave.pool", key, "%s INT_32 %d" % (key, value))
    run = velmora(folder)
    told = [line for line in run.lines("WARN") if "far outside the slave image" in line]
    sizes = {"n_samples": 60, "n_lines": 50, **pool_keys}
    beyond = False
    for name, size in zip(("RG_COREG", "AZ_COREG"), sizes.values()):
        positions, reach = run.product(name), max(size, 5000)
        beyond = beyond or bool(positions.max() < -reach or positions.min() > size + reach)
        if told:
            assert np.allclose([float(text) for text in re.findall(r"(\S+) \.\. (\S+) of %d[,:]" % size, told[0])[0]],
                               [positions.min(), positions.max()], atol=60.0)
    assert len(told) == beyond
    if told:
        assert "  warning: %s\n" % told[0] in velmora(folder, "--check").screen
