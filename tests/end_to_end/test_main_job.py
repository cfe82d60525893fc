"""The main job from its control file to its products: the whole log, status files, pools and image files of one run."""

import os
import pathlib
import re
import struct
import subprocess

import numpy as np
import pytest

import velmora_run
from scene_maker import pool_file
from velmora_run import edit_control_file, edit_pool, pool_bytes, succeed, velmora

SCENE = dict(samples=100, lines=80, shift_factors=(4, 2), earth_factors=(3, 3))
PLACEHOLDERS = {"<text>": r".*", "<real>": r"-?\d+\.\d{6}", "<integer>": r"\d+",
                "<time>": r"(Mon|Tue|Wed|Thu|Fri|Sat|Sun) [A-Z][a-z]{2} [ \d]\d \d\d:\d\d:\d\d \d{4}"}
SIZES = {"SIMU_PHASE": (100, 80), "RG_COREG": (26, 41), "AZ_COREG": (26, 41), "H_EARTH": (35, 28), "X_EARTH": (35, 28),
         "Y_EARTH": (35, 28), "Z_EARTH": (35, 28)}


def matches(pattern, line):
    parts = re.split("(%s)" % "|".join(PLACEHOLDERS), pattern)
    return re.fullmatch("".join(PLACEHOLDERS.get(part) or re.escape(part) for part in parts), line) is not None


def without_progress(lines):
    """Progress lines come once per tenth of a thread's rows: their number is a matter of the DEM's size."""
    shown = [line for line in lines if "processed" in line]
    return [line for line in lines if line not in shown[1:]]


def test_log_line_by_line(fresh_scene):
    _, folder = fresh_scene(**SCENE)
    run = succeed(folder, "-lfl", "INFO")
    expected = pathlib.Path(__file__).with_name("expected_log.txt").read_text(encoding="utf-8").splitlines()
    actual = without_progress(run.log)
    for number, (pattern, line) in enumerate(zip(expected, actual), 1):
        assert matches(pattern, line), "line %d is %r, not %r" % (number, line, pattern)
    assert len(actual) == len(expected)


def test_progress_is_reported_in_tenths(fresh_scene):
    _, folder = fresh_scene(**SCENE)
    percentages = [int(re.search(r"(\d+) %", line).group(1)) for line in succeed(folder).lines("INFO")
                   if "processed" in line]
    assert 9 <= len(percentages) <= 10
    assert percentages == sorted(set(percentages)) and percentages[0] <= 10 and 80 <= percentages[-1] < 100


def test_screen_shows_the_log(fresh_scene):
    """Same lines on standard output and in the file; only emphasis codes differ, and nothing goes to standard error."""
    _, folder = fresh_scene(**SCENE)
    edit_control_file(folder, OBSERVATION_MODE="dual_pass")
    run = succeed(folder)
    screen = re.sub("\033\\[\\d*m", "", run.screen)
    assert screen == (folder / "log.velmora").read_text(encoding="utf-8")
    warning = " - Observation mode forced by PCF -> Read value from PCF, not from pool "
    assert "\033[4mWARN  : global : %s\n\033[0m" % warning in run.screen
    assert run.errors == ""
    # Only what was said before the threshold was known.
    assert all("Found parameter in argument list" in line
               for line in succeed(folder, "-lsl", "NO_MESSAGE", "-lfn", "quiet.log").screen.splitlines())


def test_simulation_area_at_level_debug(fresh_scene):
    made, folder = fresh_scene(**SCENE)
    lines = succeed(folder).lines("DEBUG")
    start = lines.index(" - Approximate coordinates of master in dem")
    for number in range(1, 5):
        assert re.fullmatch(r"   pt\. %d : lon=\S+, lat=\S+ -> x=\S+, y=\S+" % number, lines[start + number])
    assert lines.count(" - Corners in DEM for evaluation") == 2
    columns = [re.fullmatch(r"   x: (\d+) -> (\d+)", line) for line in lines]
    rows = [re.fullmatch(r"   y: (\d+) -> (\d+)", line) for line in lines]
    (column,), (row,) = [m for m in columns if m], [m for m in rows if m]
    assert 0 <= int(column[1]) < int(column[2]) < made.grid.columns
    assert 0 <= int(row[1]) < int(row[2]) < made.grid.rows
    # The corners lie in the DEM, near its middle: it was made for this scene.
    for number in range(1, 5):
        x, y = (float(v) for v in re.findall(r"[xy]=(-?[\d.]+)", lines[start + number]))
        assert 0 < x < made.grid.columns and 0 < y < made.grid.rows


def test_products_are_raster_files_of_the_promised_sizes(fresh_scene):
    _, folder = fresh_scene(**SCENE)
    mask = os.umask(0o027)
    try:
        succeed(folder)
    finally:
        os.umask(mask)
    for name, (columns, rows) in SIZES.items():
        path = folder / (name.lower() + ".ras")
        data = path.read_bytes()
        assert struct.unpack(">8I", data[:32]) == (0x59A66A95, columns, rows, 32, columns * rows * 4, 99, 0, 0), name
        assert len(data) == 32 + columns * rows * 4, name
        assert path.stat().st_mode & 0o777 == 0o640, name
        assert np.all(np.isfinite(np.frombuffer(data[32:], "<f4"))), name


def test_status_files_and_leftovers(fresh_scene):
    _, folder = fresh_scene(**SCENE)
    before = set(os.listdir(folder))
    temporary = {name for name in os.listdir("/tmp") if name.startswith("log.")}
    succeed(folder)
    assert (folder / "OK.velmora").read_text() == "0"
    products = {name.lower() + ".ras" for name in SIZES}
    assert set(os.listdir(folder)) == before | products | {"OK.velmora", "log.velmora"}
    assert {name for name in os.listdir("/tmp") if name.startswith("log.")} <= temporary | _foreign_logs()


def _foreign_logs():
    """Temporary logs that other runs on this machine hold open right now."""
    held = set()
    for link in pathlib.Path("/proc").glob("[0-9]*/fd/*"):
        try:
            held.add(os.path.basename(os.readlink(link)))
        except OSError:
            continue
    return held


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
    assert history["software_names"] == ["velmora"]
    assert history["software_versions"] == ["0.0.15"]
    assert history["software_dates"] == ["$Date: 2020/01/29 15:03:09 $"]
    for key in ("software_start_times", "software_end_times"):
        assert re.fullmatch(r"\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d", history[key][0])
    assert history["software_start_times"] <= history["software_end_times"]
    assert isinstance(history["software_execution_times"][0], int)


HISTORY = """# history of the pair
software_names STR_V 0 3
{
"focus"
"velmora"
"coreg"
}
software_versions STR_V 0 3
{
"1.2"
"0.0.1"
"7"
}
software_dates STR_V 0 3
{
"a date"
"old"
"b date"
}
software_start_times STR_V 0 3
{
"2020-01-01T00:00:00"
"2020-01-01T01:00:00"
"2020-01-01T02:00:00"
}
# a comment that stays
software_end_times STR_V 0 3
{
"2020-01-01T00:30:00"
"2020-01-01T01:30:00"
"2020-01-01T02:30:00"
}
software_execution_times INT_32_V 0 3
{
1800
1801
1802
}
other_key INT_32 5
"""


def test_history_replaces_its_own_earlier_entry_and_a_rerun_adds_nothing(fresh_scene):
    _, folder = fresh_scene(**SCENE)
    (folder / "log.pool").write_text(HISTORY)
    succeed(folder)
    history = pool_file.read(folder / "log.pool")
    assert history["software_names"] == ["focus", "velmora", "coreg"]
    assert history["software_versions"] == ["1.2", "0.0.15", "7"]
    assert history["software_start_times"][::2] == ["2020-01-01T00:00:00", "2020-01-01T02:00:00"]
    assert history["software_start_times"][1] > "2020-01-01T01:00:00"
    assert history["software_execution_times"][::2] == [1800, 1802] and history["software_execution_times"][1] < 1800
    assert history["other_key"] == 5
    text = (folder / "log.pool").read_text()
    assert text.startswith("# history of the pair\n") and "# a comment that stays\n" in text

    insar = (folder / "insar.pool").read_bytes()
    succeed(folder)
    assert (folder / "insar.pool").read_bytes() == insar
    assert len(pool_file.read(folder / "log.pool")["software_names"]) == 3


def test_history_goes_into_the_insar_pool_when_that_is_the_log_pool(fresh_scene):
    _, folder = fresh_scene(**SCENE)
    edit_control_file(folder, log_pp="insar.pool")
    succeed(folder)
    insar = pool_file.read(folder / "insar.pool")
    assert insar["software_names"] == ["velmora"] and insar["observation_mode"] == "dual_pass"
    assert (folder / "log.pool").read_text() == "# log\n"


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


def test_configuration_comes_from_arguments_then_file_then_environment(fresh_scene):
    _, folder = fresh_scene(**SCENE)
    control = (folder / "scene.pcf").read_text().split()
    keys = dict(zip(control[::2], control[1::2]))
    by_file = succeed(folder).product("SIMU_PHASE").copy()

    arguments = [word for key, value in keys.items() for word in ("-" + key, value)]
    (folder / "scene.pcf").unlink()
    run = succeed(folder, *arguments, control_file=None)
    assert np.array_equal(run.product("SIMU_PHASE"), by_file)
    assert "Configuration file pcf.velmora does not exist!" in run.lines("WARN")
    run = succeed(folder, environment={**keys, "LOOKS_RG": "8"}, control_file=None)
    assert "   h. looks range: ........... 8" in run.lines("INFO")
    run = succeed(folder, "-LOOKS_RG", "5", "-LOOKS_RG", "6", environment={**keys, "LOOKS_RG": "8"}, control_file=None)
    assert "   h. looks range: ........... 6" in run.lines("INFO")


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


def test_parallel_that_is_no_count_means_one_thread(fresh_scene):
    for parallel in ("0", "-3", "many", ""):
        _, folder = fresh_scene("parallel_" + parallel, samples=60, lines=50)
        run = succeed(folder, parallel=parallel)
        assert len(run.lines("WARN")) == 1 and "PARALLEL" in run.lines("WARN")[0], run.lines("WARN")
    _, folder = fresh_scene("unset", samples=60, lines=50)
    assert succeed(folder, environment={"PARALLEL": None}).lines("WARN") == []


@pytest.mark.parametrize("option, text", [("--help", "MASTER_POOL"), ("--version", "0.0.15")])
def test_help_and_version_leave_no_file(tmp_path, option, text):
    temporary = set(os.listdir("/tmp"))
    done = subprocess.run([velmora_run.BINARY, option], cwd=tmp_path, capture_output=True, text=True, timeout=30, check=False)
    assert done.returncode == 0 and text in done.stdout and done.stderr == ""
    assert list(tmp_path.iterdir()) == []
    assert {name for name in set(os.listdir("/tmp")) - temporary if name.startswith("log.")} <= _foreign_logs()


def test_disk_space_is_taken_before_the_image_is_mapped(fresh_scene, tmp_path):
    """A full disk ends in an error line, not in a bus error."""
    _, folder = fresh_scene(**SCENE)
    small_disk = tmp_path / "disk"
    small_disk.mkdir()
    if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=16k", "tmpfs", small_disk], capture_output=True,
                      check=False).returncode:
        pytest.skip("mounting a small disk is refused here")
    try:
        edit_control_file(folder, H_EARTH="disk/h.ras", RG_COREG=None, AZ_COREG=None)
        (folder / "disk").symlink_to(small_disk)
        (small_disk / "filler").write_bytes(b"x" * 14000)
        before = pool_bytes(folder)
        run = velmora(folder)
        assert run.status == 1, run.explanation()
        assert run.lines("ALARM")[-1] == "ORQ_MSG|ERROR|velmora terminated with error!"
        assert any("disk/h.ras" in line or "space" in line.lower() for line in run.lines("ALARM")), run.explanation()
        assert pool_bytes(folder) == before
    finally:
        subprocess.run(["umount", small_disk], check=False)


def test_documentation_lists_every_key(fresh_scene):
    """Those of the usage page and those of the pools of a scene that has them all."""
    usage = subprocess.run([velmora_run.BINARY, "--help"], capture_output=True, text=True, timeout=30, check=True).stdout
    keys = set(re.findall(r"^  (\w+) {2,}", usage, re.MULTILINE))
    for options in (dict(shift_factors=(2, 3), utm=True, ellipsoid="Bessel", datum_shift_m=(1, 2, 3),
                         datum_rotation_arcsec=(1, 1, 1)),
                    dict(shift_factors=(2, 2), permanent_scatterer=True, single_pass=True, geocoding_factors=(2, 2))):
        _, folder = fresh_scene(str(len(keys)), samples=60, lines=50, **options)
        for name in velmora_run.POOLS:
            keys |= set(pool_file.read(folder / name))
        keys |= set((folder / "scene.pcf").read_text().split()[::2])
    keys -= {"state_vector_times", "state_vector_positions", "state_vector_velocities"}  # names that a pool chooses
    text = (velmora_run.REPOSITORY / "docs" / "keys.md").read_text(encoding="utf-8")
    documented = set(re.findall(r"`([A-Za-z]\w*)`", text))
    documented |= {first.rsplit("_", 1)[0] + second for first, second in re.findall(r"`(\w+)`, `(_\w+)`", text)}
    documented |= {"focussed_slow_time_corr_poly" + word for word in re.findall(r"`\.\.\.(_\w+)`", text)}
    assert len(keys) > 60 and keys <= documented, sorted(keys - documented)
