"""Runs that must fail: exit status, the reason in the log, status files, and no file of the user's touched."""

import os
import signal
import struct
import subprocess

import pytest

import velmora_run
from velmora_run import edit_control_file, edit_pool, pool_bytes, velmora

SMALL = dict(samples=60, lines=50, terrain="flat", low_m=100.0, cover_low_m=0.0, cover_high_m=1000.0)
PRODUCTS = [name + ".ras" for name in ("simu_phase", "rg_coreg", "az_coreg", "x_earth", "y_earth", "z_earth", "h_earth")]
LAST_LINE = "ORQ_MSG|ERROR|velmora terminated with error!"


def pool(name, key, entry):
    return lambda folder: edit_pool(folder / name, key, entry)


def keys(**values):
    return lambda folder: edit_control_file(folder, **values)


def both(*changes):
    def change_all(folder):
        for change in changes:
            change(folder)
    return change_all


def overwrite(name, offset, data):
    def change(folder):
        with open(folder / name, "r+b") as file:
            file.seek(offset)
            file.write(data)
    return change


def cut(name, size):
    return lambda folder: os.truncate(folder / name, size)


NO_SHIFTS = keys(RG_COREG=None, AZ_COREG=None)
KEY_NOT_FOUND = "pool error - key not found"
BOTH_DIRECTIONS = "factors above 1 are needed in both directions or in none"
FATAL = "program aborted due to FATAL ERROR"

# What is wrong, how the scene is changed, and texts that stand in the ALARM lines, in this order.
CASES = [
    ("key missing in InSAR pool", pool("insar.pool", "observation_mode", None),
     ["parameter pool: parameter key >> observation_mode << not found", KEY_NOT_FOUND]),
    ("key missing in master pool", pool("master.pool", "prf", None),
     ["parameter pool: parameter key >> prf << not found", KEY_NOT_FOUND]),
    ("key missing in slave pool", pool("slave.pool", "antenna_look_direction", None),
     ["parameter pool: parameter key >> antenna_look_direction << not found", KEY_NOT_FOUND]),
    ("key missing in DEM pool", pool("dem.pool", "dem_correction", None),
     ["parameter pool: parameter key >> dem_correction << not found", KEY_NOT_FOUND]),
    ("zone missing for a UTM grid", pool("dem.pool", "grid_format", 'grid_format STR "UTM"'), ["utm_zone", KEY_NOT_FOUND]),
    ("orbit list missing", pool("master.pool", "state_vector_positions", None), ["state_vector_positions", KEY_NOT_FOUND]),
    ("wrong type", pool("insar.pool", "n_samples", "n_samples FLT_15 60"),
     ["parameter pool: parameter key >> n_samples << type INT_32 expected", "pool error - wrong parameter type"]),
    ("unknown type", pool("insar.pool", "n_lines", "n_lines INTEGER 50"),
     ["parameter pool: parameter key >> n_lines << type INT_32 expected", "pool error - wrong parameter type"]),
    ("no value", pool("master.pool", "prf", "prf FLT_15"),
     ["prf << no parameter value in file", "pool error - no or invalid parameter value in file"]),
    ("no number", pool("slave.pool", "prf", "prf FLT_15 fast"), ["prf << read value is : fast", "pool error - "]),
    ("number beyond double", pool("master.pool", "radar_frequency", "radar_frequency FLT_15 1e400"),
     ["radar_frequency << read value is : 1e400 (value is out of range) FLT_15 expected",
      "pool error - parameter value out of bounds"]),
    ("vector without its end", pool("master.pool", "ellipsoid_parameters", "ellipsoid_parameters FLT_15_V 0 3\n{\n1\n2"),
     ["ellipsoid_parameters << ", "pool error - no or invalid parameter value in file"]),
    ("unknown observation mode", keys(OBSERVATION_MODE="Dual_pass"), ["can not convert >Dual_pass< to observation mode"]),
    ("look direction in capitals", pool("slave.pool", "antenna_look_direction", 'antenna_look_direction STR "Right"'),
     ["Error: Unknown antenna look direction Right"]),
    ("look direction empty", pool("slave.pool", "antenna_look_direction", 'antenna_look_direction STR ""'), [FATAL]),
    ("grid format empty", pool("dem.pool", "grid_format", 'grid_format STR ""'), [FATAL]),
    ("unknown grid format", pool("dem.pool", "grid_format", 'grid_format STR "LCC"'), ["LCC"]),
    ("unknown orbit type", pool("slave.pool", "orbit_representation", 'orbit_representation STR "orbit_pool_utc"'),
     ["GENERAL_ORBIT: can not convert orbit_pool_utc to orbit_type_id"]),
    ("unknown interpolation", pool("slave.pool", "orbit_interpolation", 'orbit_interpolation STR "Hermite_0_8"'),
     ["GENERAL_ORBIT: can not convert Hermite to interpolation_id"]),
    ("velocities of one vector missing", pool("master.pool", "state_vector_velocities",
                                              "state_vector_velocities FLT_15_V 0 3\n{\n1\n2\n3\n}"),
     ["POOL_ORBIT::ReadFromParameterPool::Number of coordinates in position and velocity disagree."]),
    ("unknown ellipsoid", pool("dem.pool", "ellipsoid_type", 'ellipsoid_type STR "Clarke"'), ["Valid values are: "]),
    ("no ellipsoid", pool("dem.pool", "ellipsoid_type", 'ellipsoid_type STR "-"'), ["ellipsoid_type"]),
    ("rotation that is none", pool("dem.pool", "datum_rotation",
                                   "datum_rotation FLT_15_V 0 9\n{\n" + "1\n" * 9 + "}\ndatum_scale FLT_15 1"),
     ["datum_rotation"]),
    ("zone out of range", both(pool("dem.pool", "grid_format", 'grid_format STR "UTM"'),
                               pool("dem.pool", "utm_zone", "utm_zone INT_32 61")), ["utm_zone", "61"]),
    ("prf of 0", pool("master.pool", "prf", "prf FLT_15 0"), ["prf"]),
    ("negative sampling rate", pool("slave.pool", "range_sampling_frequency", "range_sampling_frequency FLT_15 -6e7"),
     ["range_sampling_frequency"]),
    ("frequency not a number", pool("master.pool", "radar_frequency", "radar_frequency FLT_15 nan"), ["radar_frequency"]),
    ("image of no lines", pool("insar.pool", "n_lines", "n_lines INT_32 0"), ["n_lines"]),
    ("negative factor", pool("insar.pool", "shift_matrices_subsampling", "shift_matrices_subsampling INT_32 -2"),
     ["shift_matrices_subsampling"]),
    ("ellipsoid without radii", pool("master.pool", "ellipsoid_parameters",
                                     "ellipsoid_parameters FLT_15_V 0 2\n{\n0\n0\n}"), ["ellipsoid_parameters"]),
    ("range of valid heights", keys(DEM_VALID="0..5000;"), ["can not parse: > 0..5000; < "]),
    ("valid height beyond float", keys(DEM_VALID="0..1e40"), ["1e40"]),
    ("range time shift not a number", keys(RANGE_TIME_SHIFT="soon"), ["RANGE_TIME_SHIFT", "soon"]),
    ("invalid value beyond double", keys(IFGRM_INVALID="1e400"), ["IFGRM_INVALID", "1e400"]),
    ("factor of 2 in one direction only", both(pool("insar.pool", "shift_matrices_subsampling",
                                                    "shift_matrices_subsampling_rg INT_32 2"),
                                               pool("insar.pool", "shift_matrices_subsampling_az",
                                                    "shift_matrices_subsampling_az INT_32 1")),
     ["Error: simulated area extension is not enough for subsampled shift matrices", BOTH_DIRECTIONS]),
    ("Earth factor of 2 in one direction only", both(NO_SHIFTS, pool("insar.pool", "earth_matrices_subsampling_y",
                                                                     "earth_matrices_subsampling_y INT_32 2")),
     ["Error: simulated area extension is not enough for subsampled shift matrixes", BOTH_DIRECTIONS]),
    ("geocoding factor of 2 in one direction only",
     both(NO_SHIFTS, pool("insar.pool", "geco_sub_factor_range", "geco_sub_factor_range INT_32 1"),
          pool("insar.pool", "geco_sub_factor_azimuth", "geco_sub_factor_azimuth INT_32 2")),
     [" h_earth coverage not enough for interpolation in geco grid", "       h_earth: 60 x 52 (sub 1 x 1 )",
      "       geco:    61 x 26 (sub 1 x 2, eq 60 x 50 )", BOTH_DIRECTIONS]),
    ("DEM shorter than its header says", cut("dem.ras", 5000), ["dem.ras"]),
    ("DEM of a header only", cut("dem.ras", 32), ["dem.ras"]),
    ("DEM empty", cut("dem.ras", 0), ["MEM_MGR: can not read header from: dem.ras"]),
    ("DEM header that lies", overwrite("dem.ras", 4, struct.pack(">II", 0x7FFFFFFF, 0x7FFFFFFF)), ["dem.ras"]),
    ("DEM of no columns", overwrite("dem.ras", 4, struct.pack(">I", 0)), ["dem.ras"]),
    ("DEM missing", keys(DEM="nowhere.ras"), ["MEM_MGR: can not open: nowhere.ras"]),
    ("range below the satellite's height", pool("insar.pool", "master_first_rg_time", "master_first_rg_time FLT_15 0.002"),
     ["geolocation_fast: No intersection of earth ellipsoid and sphere around the satellite"]),
    ("product in a folder that is not there", keys(H_EARTH="nowhere/h.ras"), ["nowhere/h.ras"]),
    ("product over an input", keys(SIMU_PHASE="dem.ras"), ["dem.ras"]),
    ("product over a pool, by a longer path", keys(X_EARTH="./slave.pool"), ["slave.pool"]),
    ("two products in one file", keys(Y_EARTH="x_earth.ras"), ["x_earth.ras"]),
]


@pytest.mark.parametrize("change, reasons", [pytest.param(*case[1:], id=case[0]) for case in CASES])
def test_bad_input_ends_in_a_reason_and_leaves_everything_as_it_was(fresh_scene, change, reasons):
    _, folder = fresh_scene(**SMALL)
    change(folder)
    before, dem = pool_bytes(folder), (folder / "dem.ras").read_bytes()
    run = velmora(folder)
    assert run.status == 1, run.explanation()
    alarms = run.lines("ALARM")
    assert alarms and alarms[-1] == LAST_LINE, run.explanation()
    _assert_in_order(reasons, alarms[:-1])
    assert len(alarms) >= 2, "no reason: %s" % run.explanation()
    assert pool_bytes(folder) == before
    assert (folder / "dem.ras").read_bytes() == dem
    _assert_failed_without_products(folder)


def _assert_in_order(reasons, lines):
    position = 0
    for reason in reasons:
        found = [i for i in range(position, len(lines)) if reason in lines[i]]
        assert found, "%r is not in %s" % (reason, lines[position:])
        position = found[0]


def _assert_failed_without_products(folder):
    assert (folder / "ERROR.velmora").read_text() == "1"
    assert not (folder / "OK.velmora").exists()
    assert not [name for name in PRODUCTS if (folder / name).exists()]
    assert not list(folder.glob("pool_*"))


@pytest.mark.parametrize("key", ["MASTER_POOL", "SLAVE_POOL", "INSAR_POOL", "log_pp", "DEM_POOL"])
def test_missing_pool(fresh_scene, key):
    """Opening a pool creates it when it is not there; the run then fails for want of a key and leaves the rest alone."""
    _, folder = fresh_scene(**SMALL)
    before = pool_bytes(folder)
    edit_control_file(folder, **{key: "nowhere/missing.pool"})
    run = velmora(folder)
    assert run.status == 1, run.explanation()
    assert any("can not open" in line and "nowhere/missing.pool" in line for line in run.lines("ALARM")), run.explanation()
    assert run.lines("ALARM")[-1] == LAST_LINE
    _assert_failed_without_products(folder)

    if key != "log_pp":  # a new log pool is as good as any
        edit_control_file(folder, **{key: "missing.pool"})
        run = velmora(folder)
        assert run.status == 1 and any("<< not found" in line for line in run.lines("ALARM")), run.explanation()
        assert (folder / "missing.pool").read_bytes() == b""
        _assert_failed_without_products(folder)
    assert pool_bytes(folder) == before


def test_pool_that_is_a_folder(fresh_scene):
    _, folder = fresh_scene(**SMALL)
    (folder / "folder.pool").mkdir()
    edit_control_file(folder, SLAVE_POOL="folder.pool")
    run = velmora(folder)
    assert run.status == 1
    assert run.lines("ALARM")[:2] == ["parameter file folder.pool is a directory!",
                                      "pool error - can not open parameter pool"]


def test_coverage_gap_names_the_first_point_and_the_reason(fresh_scene):
    _, folder = fresh_scene(samples=200, lines=160, terrain="flat", low_m=100.0, dem_margin_m=-150.0, cover_low_m=99.0,
                            cover_high_m=101.0)
    before = pool_bytes(folder)
    run = velmora(folder)
    assert run.status == 1, run.explanation()
    warnings = run.lines("WARN")
    gaps = [i for i, line in enumerate(warnings) if line.startswith("Error: point has not been simulated rg=")]
    assert len(gaps) == 1, run.explanation()
    # The first missing point in line order lies in the first line: the DEM lacks 150 m on all its sides.
    assert warnings[gaps[0]].endswith(", az=0"), warnings[gaps[0]]
    explanation = " ".join(warnings[gaps[0] + 1:])
    assert any(character.isdigit() for character in explanation) and "DEM" in explanation, warnings
    assert run.lines("ALARM")[-1] == LAST_LINE and len(run.lines("ALARM")) == 2
    assert pool_bytes(folder) == before
    _assert_failed_without_products(folder)


@pytest.mark.parametrize("first_time_s, reason", [("160", "interpolation point outside of data constraints"),
                                                  ("20000", "master.pool: the state vectors from ")])
def test_image_outside_the_orbits_data(fresh_scene, first_time_s, reason):
    """Just outside, the Hermite interpolator's hard stop ends the process; far outside, the run is refused before."""
    _, folder = fresh_scene(**SMALL)
    edit_pool(folder / "insar.pool", "master_first_az_time", "master_first_az_time FLT_15 " + first_time_s)
    before = pool_bytes(folder)
    run = velmora(folder)
    assert run.status == 1, run.explanation()
    assert any(line.startswith(reason) for line in run.lines("ALARM")), run.explanation()
    assert pool_bytes(folder) == before
    _assert_failed_without_products(folder)


def test_dem_of_another_country(fresh_scene):
    _, folder = fresh_scene(**SMALL)
    for key, value in (("upper_northing", 10.5), ("lower_northing", 10.3)):
        edit_pool(folder / "dem.pool", key, "%s FLT_15 %g" % (key, value))
    before = pool_bytes(folder)
    run = velmora(folder)
    assert run.status == 1, run.explanation()
    assert run.lines("ALARM")[-1] == LAST_LINE and len(run.lines("ALARM")) >= 2
    assert pool_bytes(folder) == before
    _assert_failed_without_products(folder)


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
    (folder / "state").mkdir()
    chain = ("-pid", "job7", "-status", "state", "-lfn", "job7.log")
    assert velmora(folder, *chain).status == 0
    assert (folder / "state" / "OK.job7").read_text() == "0" and not (folder / "state" / "ERROR.job7").exists()
    assert velmora(folder, *chain, "-OBSERVATION_MODE", "none").status == 1
    assert (folder / "state" / "ERROR.job7").read_text() == "1" and not (folder / "state" / "OK.job7").exists()
    assert "ORQ_MSG|ERROR|job7 terminated with error!" in (folder / "job7.log").read_text()
    (folder / "state" / "STOP.job7").touch()
    assert velmora(folder, *chain).status == 2
    assert not (folder / "OK.velmora").exists() and not (folder / "log.velmora").exists()


def test_missing_mandatory_key_waits_for_the_keyboard_and_is_ended_by_the_alarm(fresh_scene):
    _, folder = fresh_scene(**SMALL)
    before = pool_bytes(folder)
    edit_control_file(folder, LOOKS_RG=None)
    silent_keyboard, never_written = os.pipe()
    try:
        done = subprocess.run([velmora_run.BINARY, "-pcf", "scene.pcf"], cwd=folder, stdin=silent_keyboard,
                              capture_output=True, text=True, timeout=60, check=False,
                              env={"PATH": os.environ["PATH"], "SECONDS_ON_PARAMETER_INPUT": "1", "PARALLEL": "1"})
    finally:
        os.close(silent_keyboard)
        os.close(never_written)
    assert done.returncode == -signal.SIGALRM
    assert "LOOKS_RG := " in done.stdout
    run = velmora_run.RUN(folder, done.returncode, done.stdout, done.stderr)
    assert run.lines("WARN")[-2:] == ["No configuration file or parameter not found!",
                                      "\t  Please input value of parameter : <LOOKS_RG>"]
    assert pool_bytes(folder) == before
    _assert_failed_without_products(folder)


def test_missing_mandatory_key_with_a_closed_keyboard_ends_at_once(fresh_scene):
    _, folder = fresh_scene(**SMALL)
    edit_control_file(folder, RANGE_TIME_SHIFT=None)
    before = pool_bytes(folder)
    run = velmora(folder, environment={"SECONDS_ON_PARAMETER_INPUT": "100"}, limit_s=50)
    assert run.status == 1, run.explanation()
    assert "RANGE_TIME_SHIFT" in run.lines("ALARM")[0] and run.lines("ALARM")[-1] == LAST_LINE
    assert pool_bytes(folder) == before
    _assert_failed_without_products(folder)


def test_keyboard_answers_a_missing_key(fresh_scene):
    _, folder = fresh_scene(**SMALL)
    edit_control_file(folder, LOOKS_AZ=None)
    run = velmora(folder, keyboard="3\n", environment={"SECONDS_ON_PARAMETER_INPUT": "30"})
    assert run.status == 0, run.explanation()
    assert "   i. looks azimuth: ......... 3" in run.lines("INFO")


def test_an_unwritable_insar_pool_fails_the_run(fresh_scene):
    """As an ordinary user: permission bits do not hold for root."""
    _, folder = fresh_scene(**SMALL)
    folder.chmod(0o777)
    for path in folder.iterdir():
        path.chmod(0o666)
    (folder / "insar.pool").chmod(0o444)
    for parent in list(folder.parents)[:-2]:
        if not parent.stat().st_mode & 0o001:
            parent.chmod(parent.stat().st_mode | 0o011)
    ordinary = ["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"]
    if os.geteuid() != 0 or subprocess.run([*ordinary, "test", "-r", folder / "insar.pool"], check=False).returncode:
        pytest.skip("needs root and setpriv, and a temporary folder that an ordinary user can enter")
    before = pool_bytes(folder)
    done = subprocess.run([*ordinary, velmora_run.BINARY, "-pcf", "scene.pcf"], cwd=folder, capture_output=True, text=True,
                          timeout=60, check=False, env={"PATH": os.environ["PATH"], "PARALLEL": "1"})
    run = velmora_run.RUN(folder, done.returncode, done.stdout, done.stderr)
    assert run.status == 1, run.explanation()
    assert any("insar.pool" in line for line in run.lines("ALARM")) and run.lines("ALARM")[-1] == LAST_LINE
    assert pool_bytes(folder) == before
    assert (folder / "ERROR.velmora").read_text() == "1"
