"""What a person or a chain learns of a run beside its log: report, sidecars, check, progress, emphasis."""

import json
import os
import pty
import re
import signal
import subprocess

import numpy as np
import pytest

import velmora_run
from velmora_run import BINARY, REPOSITORY, SMALL, content, edit_control_file, edit_pool, succeed, velmora
from scene_maker import raster, scene
from scene_maker.options import SCENE_OPTIONS


@pytest.fixture
def folder(tmp_path):
    scene.make_scene(SCENE_OPTIONS(shift_factors=(2, 2), earth_factors=(2, 2), **SMALL), tmp_path)
    return tmp_path


def report_of(folder, name="report.json"):
    jsonschema = pytest.importorskip("jsonschema", reason="needs python3-jsonschema")
    report = json.loads((folder / name).read_text(encoding="utf-8"))
    jsonschema.Draft7Validator.check_schema(schema := json.loads((REPOSITORY / "docs" / "run_report.schema.json").read_text()))
    jsonschema.Draft7Validator(schema).validate(report)
    assert not list(folder.glob("*.tmp*"))
    return report


def test_report_of_a_good_run_says_what_was_made(folder):
    edit_control_file(folder, REPORT="report.json", PS_INSAR_MODE=None)
    run = succeed(folder, "-LOOKS_RG", "3", environment={"LOOKS_AZ": "7", "PROC_NAME": "chain"})
    report = report_of(folder)
    assert (report["exit_status"], report["last_error"], report["errors"]) == (0, None, [])
    keys = {entry["key"]: (entry["value"], entry["source"]) for entry in report["keys"]}
    assert keys["LOOKS_RG"] == ("3", "argument") and keys["DEM"] == ("dem.ras", "control file")
    assert keys["PS_INSAR_MODE"] == (None, "default") and keys["PROC_NAME"] == ("chain", "environment")
    assert keys["OBSERVATION_MODE"] == (None, "pool")
    assert report["sizes"]["master_image"] == {"columns": 60, "rows": 50}
    assert [stage["name"] for stage in report["stages"]] == ["A", "B", "C"]
    assert all(stage["peak_memory_bytes"] > 1e6 for stage in report["stages"])
    assert report["warnings"] == len(run.lines("WARN"))
    assert len(report["products"]) == 7
    for product in report["products"]:
        image = raster.read(folder / product["path"])
        assert (product["rows"], product["columns"]) == image.shape and product["written"]
        assert product["bytes"] == (folder / product["path"]).stat().st_size
        assert (product["minimum"], product["maximum"]) == (float(image.min()), float(image.max()))
        assert abs(product["mean"] - image.mean(dtype=float)) <= 1e-9 * np.abs(image).max()
        values = "values of %s: %.9g .. %.9g" % (product["path"], image.min(), image.max())
        assert values in run.lines("DEBUG"), values


def test_report_of_products_in_a_device_and_without_a_path(folder):
    edit_control_file(folder, REPORT="report.json", SIMU_PHASE="/dev/null", RG_COREG="/dev/null", H_EARTH="")
    assert succeed(folder).lines("ALARM") == []
    products = {product["key"]: product for product in report_of(folder)["products"]}
    assert products["SIMU_PHASE"]["bytes"] == 32 + 60 * 50 * 4 and products["SIMU_PHASE"]["mean"] != 0
    assert products["RG_COREG"]["columns"] == products["AZ_COREG"]["columns"] != 60  # two products, one path
    assert (products["H_EARTH"]["written"], products["H_EARTH"]["reason"]) == (False, "its key stands without a path")


ENDS = {
    "refused value": (lambda f: edit_pool(f / "master.pool", "prf", "prf FLT_15 -1"), 1, "prf"),
    "product that can not be written": (lambda f: edit_control_file(f, H_EARTH="none/h.ras"), 1, "none/h.ras"),
    "STOP file": (lambda f: (f / "STOP.velmora").touch(), 2, None),
    "text that is no UTF-8": (lambda f: (f / "scene.pcf").write_bytes(
        (f / "scene.pcf").read_bytes().replace(b"dem.ras", b"d\xff\xc3\xa9.ras")), 1, "d\ufffd\xe9.ras"),
    # An overlong form, a surrogate, a number beyond the last; the first and the last of four bytes.
    "texts that look like UTF-8": (lambda f: (f / "scene.pcf").write_bytes((f / "scene.pcf").read_bytes().replace(
        b"dem.ras", b"\xf0\x8f\x80\x80\xe0\x9f\x80\xed\xa0\x80\xf4\x90\x80\x80\xf0\x90\x80\x80\xf1\x80\x80\x80\xf4\x8f\xbf\xbf")), 1,
        14 * "\ufffd" + "\U00010000\U00040000\U0010ffff"),
}


@pytest.mark.parametrize("spoil, status, error", ENDS.values(), ids=ENDS)
def test_report_tells_how_a_run_ended(folder, spoil, status, error):
    edit_control_file(folder, REPORT="report.json")
    (folder / "report.json").write_text('{\n  "report_version": 1 of an earlier run, cut')
    spoil(folder)
    done = subprocess.run([BINARY, "-pcf", "scene.pcf"], cwd=folder, env={"PATH": os.environ["PATH"]}, timeout=60, check=False,
                          stdin=subprocess.DEVNULL, capture_output=True)
    report = report_of(folder)
    assert report["exit_status"] == done.returncode == status
    assert error is None or any(error in line for line in report["errors"])
    assert (report["last_error"] is None) == (status == 2) and not (report["last_error"] or "").startswith("ORQ_MSG")
    assert not any(product["written"] for product in report["products"])


@pytest.mark.skipif(velmora_run.SANITIZED, reason="a sanitizer needs more address space than the test leaves")
def test_report_names_a_lack_of_memory(folder):
    with open(folder / "master.pool", "a", encoding="ascii") as pool:
        pool.write(("# " + 77 * "x" + "\n") * 500000)
    done = subprocess.run(["sh", "-c", "ulimit -v 40000; exec %s -pcf scene.pcf -REPORT report.json" % BINARY], cwd=folder, check=False,
                          env={"PATH": os.environ["PATH"], "PARALLEL": "1"}, stdin=subprocess.DEVNULL, capture_output=True, timeout=100)
    assert (done.returncode, report_of(folder)["exit_status"]) == (1, 1)
    assert report_of(folder)["last_error"] == "out of memory while the configuration, the pools and the DEM were read (stage A)"


def test_report_of_a_signal(folder):
    edit_control_file(folder, REPORT="report.json")
    run = velmora_run.HELD_RUN(folder, {"PATH": os.environ["PATH"], "PARALLEL": "2"})
    run.read_until(b"B. PHASE SIMULATION")
    run.process.send_signal(signal.SIGTERM)
    assert run.end() == 1
    report = report_of(folder)
    assert report["exit_status"] == 1 and report["last_error"] == "got fatal signal 15: software termination signal from kill"
    assert [stage["name"] for stage in report["stages"]] == ["A", "B"] and report["sizes"]["master_image"]["rows"] == 50


REFUSED_PATHS = {"a pool": "master.pool", "a product": "simu_phase.ras", "a folder": "sub", "nowhere": "none/report.json"}


@pytest.mark.parametrize("path", REFUSED_PATHS.values(), ids=REFUSED_PATHS)
def test_report_never_replaces_anything_else(folder, path):
    (folder / "sub").mkdir()
    before = velmora_run.pool_bytes(folder)
    edit_control_file(folder, REPORT=path)
    assert velmora(folder).status == 1
    assert velmora_run.pool_bytes(folder) == before and not (folder / "none").exists()


def test_sidecars_come_with_the_key_and_stale_ones_go(folder):
    gdal = pytest.importorskip("osgeo.gdal", reason="needs python3-gdal")
    succeed(folder)
    plain = {path.name: path.read_bytes() for path in folder.glob("*.ras")}
    assert not list(folder.glob("*.vrt"))
    (folder / "h_earth.ras.vrt").write_text("mine")
    os.mkfifo(folder / "x_earth.ras.vrt")  # once waited for a writer
    run = succeed(folder, environment={"VRT_SIDECARS": "1"})
    assert {path.name: path.read_bytes() for path in folder.glob("*.ras")} == plain
    names = sorted(name for name in plain if name not in ("dem.ras", "h_earth.ras", "x_earth.ras"))
    for name in names:
        opened = gdal.Open(str(folder / (name + ".vrt")))
        assert opened.ReadAsArray().tobytes() == raster.read(folder / name).tobytes()
        assert opened.GetRasterBand(1).GetUnitType() in ("rad", "px", "m")
    assert (folder / "h_earth.ras.vrt").read_text() == "mine" and all(
        any(name in line for line in run.lines("WARN")) for name in ("h_earth.ras.vrt", "x_earth.ras.vrt"))
    # The same again without the key: they still fit and stay. Another size: they go.
    succeed(folder)
    assert (folder / "simu_phase.ras.vrt").exists()
    edit_pool(folder / "insar.pool", "shift_matrices_subsampling", "shift_matrices_subsampling INT_32 4")
    succeed(folder)
    assert not (folder / "rg_coreg.ras.vrt").exists() and (folder / "simu_phase.ras.vrt").exists()
    edit_pool(folder / "insar.pool", "shift_matrices_subsampling", "shift_matrices_subsampling INT_32 2")
    succeed(folder, "-VRT_SIDECARS", "1")
    assert gdal.Open(str(folder / "rg_coreg.ras.vrt")).RasterXSize == raster.read(folder / "rg_coreg.ras").shape[1]


def check(folder, *arguments):
    before = content(folder)
    run = velmora(folder, "--check", *arguments)
    assert content(folder) == before and run.errors == ""
    return run


def test_check_tells_what_the_scene_is(folder):
    options = SCENE_OPTIONS(shift_factors=(2, 2), earth_factors=(2, 2), **{**SMALL, "samples": 400, "lines": 300})
    made = scene.make_scene(options, folder)
    edit_control_file(folder, REPORT="report.json")
    run = check(folder)
    assert run.status == 0, run.screen
    figures = dict(re.findall(r"^  (\S[^\d]*?)  +(.*)$", run.screen, re.M))
    assert figures["master image"].startswith("400 x 300 pixels")
    # The scene maker's centre is at 46.3 N 7.6 E for 100 m; the perpendicular baseline is asked of it.
    north, east = (float(text) for text in re.findall(r"([-\d.]+) [NE]", figures["centre of the scene"]))
    assert abs(north - made.options.latitude_deg) < 1e-3 and abs(east - made.options.longitude_deg) < 1e-3
    baseline_m = float(figures["perpendicular baseline"].split()[0])
    assert abs(baseline_m - abs(made.options.perpendicular_baseline_m)) < 2.0
    # Phase of the flat scene raised by 10 m, by the program itself: an independent way to the height of ambiguity.
    ambiguity_m = float(figures["height of ambiguity"].split()[0])
    phase = []
    for correction in ("0", "10"):
        edit_pool(folder / "dem.pool", "dem_correction", "dem_correction FLT_15 " + correction)
        phase.append(succeed(folder).product("simu_phase")[150, 200])
    assert abs(2 * np.pi / abs(phase[1] - phase[0]) * 10.0 / ambiguity_m - 1.0) < 0.01
    needed = sum(path.stat().st_size for path in folder.glob("*.ras") if path.name != "dem.ras")
    assert abs(float(figures["disk for products"].split()[0]) * 1e6 - needed) <= 0.05e6


def test_check_finds_every_problem_at_once(folder):
    edit_pool(folder / "master.pool", "prf", "prf FLT_15 -5")
    edit_pool(folder / "master.pool", "radar_frequency", None)
    edit_pool(folder / "slave.pool", "antenna_look_direction", 'antenna_look_direction STR "up"')
    edit_pool(folder / "dem.pool", "upper_northing", "upper_northing FLT_15 x")
    edit_pool(folder / "insar.pool", "n_lines", "n_lines INT_32 0")
    edit_control_file(folder, H_EARTH="none/h.ras", DEM_VALID="a..b", X_EARTH="dem.ras")
    run = check(folder)
    assert run.status == 1
    problems = "\n".join(re.findall(r"^  problem: (.*)$", run.screen, re.M))
    for text in ("prf", "radar_frequency", "upper_northing", "n_lines", "none/h.ras", "a..b", "dem.ras"):
        assert text in problems, text
    assert velmora(folder).status == 1


LOOKS_BAD = {
    "missing keys": (dict(MASTER_POOL=None, LOOKS_AZ=None), ['"MASTER_POOL" is missing', '"LOOKS_AZ" is missing'], 1),
    "pools that are not there": (dict(SLAVE_POOL="none.pool", DEM_POOL="no.pool"), ["none.pool", "no.pool"], 1),
    "a product that is a folder": (dict(H_EARTH="."), ["the product . is a folder"], 1),
    "single pass without its keys": (dict(OBSERVATION_MODE="single_pass"), ["focussed_slow_time_corr_poly_coefficients"], 1),
    "half a group": (dict(Y_EARTH=None, AZ_COREG=None), ['"Y_EARTH" is missing', '"AZ_COREG" is missing'], 1),
    "a DEM that is not there": (dict(DEM="none.ras"), ["none.ras"], 1),
    "a log pool that can not be made": (dict(log_pp="none/new.pool"), ["none/new.pool can not be created"], 1),
    "a log pool to be made": (dict(log_pp="new.pool"), [], 0),
}


@pytest.mark.parametrize("keys, texts, status", LOOKS_BAD.values(), ids=LOOKS_BAD)
def test_check_creates_nothing_and_asks_nobody(folder, keys, texts, status):
    edit_control_file(folder, **keys)
    run = check(folder)
    assert run.status == status, run.screen
    for text in texts:
        assert text in run.screen
    assert run.screen.count("  problem: ") >= len(texts) and "mission_id" not in run.screen


def test_check_with_a_stop_file(folder):
    (folder / "STOP.velmora").touch()
    assert check(folder).status == 2


def run_at_a_terminal(folder, parallel, **environment):
    """What standard error shows when it is a terminal; standard output goes elsewhere."""
    master, terminal = pty.openpty()
    process = subprocess.Popen([BINARY, "-pcf", "scene.pcf"], cwd=folder, stdout=subprocess.DEVNULL, stderr=terminal,
                               env={"PATH": os.environ["PATH"], "PARALLEL": parallel, **environment})
    os.close(terminal)
    shown = b""
    while True:
        try:
            piece = os.read(master, 4096)
        except OSError:  # the terminal's other end is closed
            break
        if not piece:
            break
        shown += piece
    os.close(master)
    assert process.wait(60) == 0
    return shown.decode()


@pytest.mark.parametrize("parallel", ["1", "7"])
def test_progress_is_shown_at_a_terminal_only(folder, parallel):
    lines = run_at_a_terminal(folder, parallel).split("\r")
    percents = [int(line.split("%")[0]) for line in lines if "%" in line]
    assert percents and len(set(percents)) == len(percents) and max(percents) == 100
    if parallel == "1":
        assert percents == sorted(percents)
    assert all(re.fullmatch(r" *\d+ % simulated", line) for line in lines if "%" in line)
    assert lines[-2].strip() == "" and lines[-1] == ""
    assert succeed(folder, parallel=parallel).errors == ""


EMPHASIS = {"as ever": ({}, True), "empty": ({"NO_COLOR": ""}, True), "NO_COLOR": ({"NO_COLOR": "1"}, False),
            "dumb": ({"TERM": "dumb"}, False), "colours": ({"TERM": "xterm"}, True)}


@pytest.mark.parametrize("environment, emphasised", EMPHASIS.values(), ids=EMPHASIS)
def test_emphasis_can_be_left_out(folder, environment, emphasised):
    edit_control_file(folder, DEM="none.ras")
    run = velmora(folder, environment=environment)
    assert ("\033[" in run.screen) == emphasised and "ALARM" in run.screen
