"""The main job from its control file to its products: the whole log, status files, pools and image files of one run."""

import os
import pathlib
import re
import struct

import numpy as np
import pytest

from scene_maker import pool_file
from velmora_run import edit_pool, pool_bytes, succeed

SCENE = dict(samples=100, lines=80, shift_factors=(4, 2), earth_factors=(3, 3))
PLACEHOLDERS = {"<text>": r".*", "<real>": r"-?\d+\.\d{6}", "<integer>": r"\d+",
                "<time>": r"(Mon|Tue|Wed|Thu|Fri|Sat|Sun) [A-Z][a-z]{2} [ \d]\d \d\d:\d\d:\d\d \d{4}"}
SIZES = {"SIMU_PHASE": (100, 80), "RG_COREG": (26, 41), "AZ_COREG": (26, 41), "H_EARTH": (35, 28), "X_EARTH": (35, 28),
         "Y_EARTH": (35, 28), "Z_EARTH": (35, 28)}


def matches(pattern, line):
    parts = re.split("(%s)" % "|".join(PLACEHOLDERS), pattern)
    return re.fullmatch("".join(PLACEHOLDERS.get(part) or re.escape(part) for part in parts), line) is not None


def test_log_line_by_line(fresh_scene):
    _, folder = fresh_scene(**SCENE)
    run = succeed(folder, "-lfl", "INFO")
    expected = pathlib.Path(__file__).with_name("expected_log.txt").read_text(encoding="utf-8").splitlines()
    # Progress comes once per tenth of a thread's rows: the number of its lines is a matter of the DEM's size.
    progress = [line for line in run.log if "processed" in line]
    actual = [line for line in run.log if line not in progress[1:]]
    for number, (pattern, line) in enumerate(zip(expected, actual), 1):
        assert matches(pattern, line), "line %d is %r, not %r" % (number, line, pattern)
    assert len(actual) == len(expected)
    percentages = [int(re.search(r"(\d+) %", line).group(1)) for line in progress]
    assert 9 <= len(percentages) <= 10 and percentages == sorted(set(percentages))
    assert percentages[0] <= 10 and 80 <= percentages[-1] < 100


def test_simulation_area_at_level_debug(fresh_scene):
    made, folder = fresh_scene(**SCENE)
    lines = succeed(folder).lines("DEBUG")
    start = lines.index(" - Approximate coordinates of master in dem")
    for number in range(1, 5):
        corner = re.fullmatch(r"   pt\. %d : lon=\S+, lat=\S+ -> x=(\S+), y=(\S+)" % number, lines[start + number])
        # The corners lie in the DEM: it was made for this scene.
        assert 0 < float(corner[1]) < made.grid.columns and 0 < float(corner[2]) < made.grid.rows


def test_files_after_the_run(fresh_scene):
    _, folder = fresh_scene(**SCENE)
    before = set(os.listdir(folder))
    mask = os.umask(0o027)
    try:
        succeed(folder)
    finally:
        os.umask(mask)
    products = {name.lower() + ".ras" for name in SIZES}
    assert set(os.listdir(folder)) == before | products | {"OK.velmora", "log.velmora"}
    assert (folder / "OK.velmora").read_text() == "0"
    for name, (columns, rows) in SIZES.items():
        path = folder / (name.lower() + ".ras")
        data = path.read_bytes()
        assert struct.unpack(">8I", data[:32]) == (0x59A66A95, columns, rows, 32, columns * rows * 4, 99, 0, 0), name
        assert len(data) == 32 + columns * rows * 4, name
        assert path.stat().st_mode & 0o777 == 0o640, name
        assert np.all(np.isfinite(np.frombuffer(data[32:], "<f4"))), name


def test_pools_after_the_run(fresh_scene):
    _, folder = fresh_scene(**SCENE)
    before = pool_bytes(folder)
    succeed(folder)
    after = pool_bytes(folder)
    assert {name for name in before if before[name] != after[name]} == {"insar.pool", "log.pool"}

    # The InSAR pool keeps every line and gains the offsets of the Earth files.
    assert after["insar.pool"].startswith(before["insar.pool"].rstrip(b"\n"))
    added = after["insar.pool"].decode()[len(before["insar.pool"].rstrip()):].split("\n")
    assert [line.split()[:2] for line in added if line] == [[axis + "_earth_offset", "FLT_15"] for axis in "xyz"]

    assert after["log.pool"].startswith(b"# log\n")
    history = pool_file.read(folder / "log.pool")
    for key in ("software_start_times", "software_end_times"):
        assert re.fullmatch(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d", history[key][0])
    assert history["software_start_times"] <= history["software_end_times"]
    assert isinstance(history["software_execution_times"][0], int)


def test_forced_values_win_and_are_written_into_the_pool(fresh_scene):
    _, folder = fresh_scene(**SCENE)
    edit_pool(folder / "insar.pool", "observation_mode", 'observation_mode STR "single_pass"')
    forced = ["-OBSERVATION_MODE", "dual_pass", "-SHIFT_MATRICES_SUBSAMPLING", "5", "-EARTH_MATRICES_SUBSAMPLING_X", "2",
              "-EARTH_MATRICES_SUBSAMPLING_Y", "4"]
    run = succeed(folder, *forced)
    assert run.lines("WARN") == [
        " - Observation mode forced by PCF -> Read value from PCF, not from pool ",
        " - Shift matrices subsampling (rg=az) forced by PCF -> Read from PCF and write to pool",
        " - Earth matrixes subsampling_x forced by PCF -> Read value from PCF, not from pool ",
        " - Earth matrixes subsampling_y forced by PCF -> Read value from PCF, not from pool "]
    insar = pool_file.read(folder / "insar.pool")
    assert (insar["observation_mode"], insar["shift_matrices_subsampling"]) == ("dual_pass", 5)
    assert (insar["earth_matrices_subsampling_x"], insar["earth_matrices_subsampling_y"]) == (2, 4)
    # The separate factors of the pool stay as they were: only the common one was forced.
    assert (insar["shift_matrices_subsampling_rg"], insar["shift_matrices_subsampling_az"]) == (4, 2)
    assert run.product("RG_COREG").shape == (80 // 5 + 1, 100 // 5 + 1)

    run = succeed(folder, "-SHIFT_MATRICES_SUBSAMPLING_RG", "3", "-SHIFT_MATRICES_SUBSAMPLING_AZ", "6")
    assert " - Shift matrices subsampling (rg,az) forced by PCF -> Read from PCF and write to pool" in run.lines("WARN")
    insar = pool_file.read(folder / "insar.pool")
    assert (insar["shift_matrices_subsampling_rg"], insar["shift_matrices_subsampling_az"]) == (3, 6)


def test_run_without_products_still_checks_coverage(fresh_scene):
    _, folder = fresh_scene(samples=100, lines=80, products=())
    run = succeed(folder)
    assert run.lines("INFO").count("    not required") == 4
    assert not list(folder.glob("*_coreg.ras")) and not (folder / "simu_phase.ras").exists()


@pytest.mark.parametrize("products", [("phase",), ("shifts",), ("earth",), ("height",)])
def test_each_product_alone_is_the_one_of_the_full_run(fresh_scene, products):
    _, full_folder = fresh_scene("full", samples=90, lines=70)
    _, folder = fresh_scene("part", samples=90, lines=70, products=products)
    full, part = succeed(full_folder), succeed(folder)
    made = {path.name for path in folder.glob("*.ras")} - {"dem.ras"}
    assert len(made) == {"phase": 1, "shifts": 2, "earth": 3, "height": 1}[products[0]]
    for name in made:
        assert (folder / name).read_bytes() == (full_folder / name).read_bytes(), name
    assert full.lines("WARN") == part.lines("WARN") == []


def test_valid_range_and_voids_are_reported_once(fresh_scene):
    made, folder = fresh_scene(samples=90, lines=70, dem_valid="0..1500", invalid_value="-9999.5")
    run = succeed(folder)
    assert " - Parsed valid dem value range: 0.000000 .. 1500.000000 " in run.lines("INFO")
    assert " - Ifgrm invalid value: ...... -9999.5" in run.lines("INFO")
    assert "   * Valid dem value range: .. 0..1500 " in run.lines("INFO")
    assert "   * Invalid ifgrm value: .... -9999.5 " in run.lines("INFO")
    assert (made.heights > 1500).any()
    assert len(run.lines("WARN")) == 1 and re.search(r"\d+", run.lines("WARN")[0]), run.lines("WARN")
