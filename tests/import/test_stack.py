"""stack: the folders of many runs from tables of images and pairs."""

import csv
import fcntl
import itertools
import os
import re
import shutil
import subprocess

import numpy as np
import pytest

import made_files
from import_run import PROGRAM, content, good, pool, refused
from make_stack import make_stack
from scene_maker import scene
from scene_maker.options import SCENE_OPTIONS
from scene_maker.radar_geometry import SPEED_OF_LIGHT_M_S, geolocate, zero_doppler
from scene_maker.ellipsoid import WGS84

OPTIONS = SCENE_OPTIONS(samples=60, lines=50, terrain="flat", low_m=100.0, cover_low_m=0.0, cover_high_m=1000.0,
                        dem_valid="50..150")
STACK = ["stack", "images.csv", "pairs.csv", "dem.pool", "-o", "stack"]


@pytest.fixture(scope="module")
def made(tmp_path_factory):
    folder = tmp_path_factory.mktemp("images")
    return make_stack(folder, OPTIONS, images=5), folder


@pytest.fixture
def folder(made, tmp_path):
    return shutil.copytree(made[1], tmp_path / "work")


def table(path):
    with open(path, newline="") as file:
        return list(csv.DictReader(file))


def state_of(folder):
    """Bytes and times of last change."""
    return {str(path): (path.stat().st_mtime_ns, path.read_bytes() if path.is_file() else None)
            for path in folder.rglob("*") if not path.is_dir()}


def figures(master, slave):
    """On the closed-form orbits: baseline from right angles, height of ambiguity from wavelength, range and incidence."""
    sample, line = 0.5 * (OPTIONS.samples - 1), 0.5 * (OPTIONS.lines - 1)
    seen = master.orbit.state(master.azimuth_time_s(line))
    point = geolocate(seen, master.range_m(np.array(sample)), scene.RIGHT, np.array(100.0), WGS84)
    slave_s, slave_range_m = zero_doppler(slave.orbit, point, slave.first_azimuth_time_s)
    master_range_m = np.linalg.norm(seen.position_m - point)
    between = slave.orbit.state(slave_s).position_m - seen.position_m
    along = seen.velocity_m_s / np.linalg.norm(seen.velocity_m_s)
    sight = (point - seen.position_m) / master_range_m
    square = between @ between - (between @ along) ** 2 - (between @ sight) ** 2
    longitude, latitude, _ = WGS84.geodetic(point)
    up = np.array([np.cos(latitude) * np.cos(longitude), np.cos(latitude) * np.sin(longitude), np.sin(latitude)])
    sine = np.sqrt(1.0 - (sight @ up) ** 2)
    baseline = np.sqrt(square) * np.sign((between - (between @ sight) * sight) @ up)
    wavelength = SPEED_OF_LIGHT_M_S / OPTIONS.radar_frequency_hz
    return baseline, wavelength * slave_range_m * sine / (2.0 * abs(baseline)), slave_s - master.azimuth_time_s(line)


def test_figures_are_those_of_the_closed_form_orbits_and_of_the_check(made, folder):
    told = good(*STACK, folder=folder)
    rows = table(folder / "stack" / "pairs.csv")
    ends = [sorted(float(r[column]) for r in rows)[::len(rows) - 1] for column in ("perpendicular_baseline_m", "time_difference_days")]
    assert told.startswith("stack: 9 pairs of 5 images\n  new .......... 9 pairs, 5 images\n  baselines .... %.3f to %.3f m\n"
                           "  time ......... %.3f to %.3f days\nTo run it on this machine:\n" % tuple(np.ravel(ends)))
    assert [(r["master"], r["slave"]) for r in rows] == [
        ("image%03d" % i, "image%03d" % j) for i in range(1, 6) for j in range(i + 1, min(i + 4, 6))]
    for row in rows:
        i, j = (int(row[end][-3:]) - 1 for end in ("master", "slave"))
        baseline, ambiguity, seconds = figures(made[0][i], made[0][j])
        assert abs(float(row["perpendicular_baseline_m"]) - baseline) < 0.02
        assert float(row["height_of_ambiguity_m"]) == pytest.approx(ambiguity, rel=3e-3, abs=0.001)
        assert float(row["time_difference_days"]) == pytest.approx(12 * (j - i) + seconds / 86400.0, abs=1e-6)
    run = subprocess.run([os.environ["VELMORA_BINARY"], "--check", "-pcf", "scene.pcf"], capture_output=True, text=True,
                         cwd=folder / "stack" / "pairs" / rows[0]["pair"], timeout=60)
    told = {key: float(value) for key, value in re.findall(r"  (perpendicular baseline|height of ambiguity) +([\d.]+)",
                                                           run.stdout)}
    assert run.returncode == 0, run.stdout
    assert abs(told["perpendicular baseline"] - abs(float(rows[0]["perpendicular_baseline_m"]))) < 0.02
    assert told["height of ambiguity"] == pytest.approx(float(rows[0]["height_of_ambiguity_m"]), rel=2e-3)


def test_a_folder_is_that_of_the_pair_and_a_second_call_only_adds(folder):
    good("pair", "image002.pool", "image001.pool", "dem.pool", "-o", "single", "--lines", "5:40", folder=folder)
    (folder / "pairs.csv").write_text("master,slave\nimage002,image001\n")
    good(*STACK, "--lines", "5:40", folder=folder)
    pair = folder / "stack" / "pairs" / "image002__image001"
    for name in ("master.pool", "slave.pool", "insar.pool", "log.pool"):
        assert pool(pair / name) == pool(folder / "single" / name)
    assert (pair / "scene.pcf").read_text() == (folder / "single" / "scene.pcf").read_text().replace("../", "../../../")

    (pair / "simu_phase.ras").write_bytes(b"done")
    (folder / "stack" / ".new.gone").mkdir()  # of a call that was killed
    before = state_of(folder / "stack")
    good(*STACK, "--lines", "5:40", folder=folder)
    assert state_of(folder / "stack") == before and not (folder / "stack" / ".new.gone").exists()
    with open(folder / "pairs.csv", "a") as file:
        file.write("image001,image003\n")
    assert "new .......... 1 pairs, 0 images" in good(*STACK, "--lines", "5:40", folder=folder)
    after = state_of(folder / "stack")
    changed = {path for path in before if after[path] != before[path]}
    assert changed == {str(folder / "stack" / "pairs.csv")}
    assert [r["pair"] for r in table(folder / "stack" / "pairs.csv")] == ["image002__image001", "image001__image003"]
    refused(*STACK, says=["stack.txt", "lines 5:40", "lines all"], folder=folder)
    shutil.copy(folder / "image004.pool", folder / "image001.pool")
    refused(*STACK, "--lines", "5:40", says=["stack/images/image001.pool", "another image"], folder=folder)
    descriptor = os.open(folder / "stack", os.O_RDONLY)
    fcntl.flock(descriptor, fcntl.LOCK_EX)
    refused(*STACK, "--lines", "5:40", says="another velmora-import", folder=folder)
    os.close(descriptor)


@pytest.mark.parametrize("rules", [[(2, "", "")], [("", 24.5, "")], [("", "", 100)], [(3, 36.5, 90)], [(1, "", ""), ("", 50, 30)]])
def test_rules_take_what_keeps_all_limits_of_a_row(made, folder, rules):
    names = ["image%03d" % (i + 1) for i in range(5)]
    images = ["name;pool", *("%s;%s.pool" % (n, n) for n in reversed(names))]  # not in the order of time
    (folder / "images.csv").write_text("\ufeff" + "\r\n".join(images) + "\r\n")
    (folder / "pairs.csv").write_text('"days",next,baseline\n' + "".join('"%s",%s,%s\n' % (d, n, b) for n, d, b in rules))
    good(*STACK, folder=folder)
    expected = []
    for i, j in itertools.combinations(range(5), 2):
        baseline, _, seconds = figures(made[0][i], made[0][j])
        if any(j - i <= float(n or 9) and 12 * (j - i) <= float(d or 99) and abs(baseline) <= float(b or 1e9) for n, d, b in rules):
            expected.append(names[i] + "__" + names[j])
    assert [r["pair"] for r in table(folder / "stack" / "pairs.csv")] == expected and 0 < len(expected) < 10


def test_annotations_with_and_without_an_orbit_file(tmp_path):
    (tmp_path / "x").mkdir()
    for name, metres in (("a", 0.0), ("b", 150.0)):
        rows = made_files.vectors(40, start_s=-120.0, orbit=made_files.moved(made_files.ORBIT, metres))
        (tmp_path / "x" / (name + ".xml")).write_text(made_files.annotation(rows, bursts=20, samples=2500))
    (tmp_path / "x" / "b.EOF").write_text(made_files.eof(rows))
    (tmp_path / "x" / "images.csv").write_text("# mine\nname,annotation,orbit\nA-1,a.xml,\nb.2,b.xml,b.EOF\n")
    (tmp_path / "pairs.csv").write_text("master,slave\nA-1,b.2\n")
    (tmp_path / "dem.pool").write_text('dem_valid STR "400..600"\n')
    (tmp_path / "dem.ras").write_bytes(b"")
    good("stack", "x/images.csv", "pairs.csv", "dem.pool", "-o", "s", folder=tmp_path)
    good("sentinel1", "x/a.xml", "-o", "a.pool", folder=tmp_path)
    good("sentinel1", "x/b.xml", "--orbit", "x/b.EOF", "-o", "b.pool", folder=tmp_path)
    for image, single in (("A-1", "a"), ("b.2", "b")):
        assert (tmp_path / "s" / "images" / (image + ".pool")).read_bytes() == (tmp_path / (single + ".pool")).read_bytes()
    assert len(pool(tmp_path / "s" / "pairs" / "A-1__b.2" / "slave.pool")["state_vector_times"]) < 40


GOOD_IMAGES, GOOD_PAIRS = "name,pool\na,image001.pool\nb,image002.pool\n", "master,slave\na,b\n"
BAD_IMAGES = [  # table, texts of the message
    *(("name,pool\n%s,image001.pool\n" % name, ["images.csv: line 2, column name"])
      for name in ("", "a/b", "a b", "..", ".a", "a.", "_a", "a_", "a__b", "-a", "\xe4", "a\x1b", "a" * 101, '"a,b"')),
    ("name,pool\na,image001.pool\nA,image002.pool\n", ["line 3, column name", '"A"', "line 2"]),
    ("name,pool\na,none.pool\n", ["images.csv: line 2, column pool", "none.pool", "No such file"]),
    ("name,pool\na,\n", ["line 2, column annotation"]), ("name,pool\na\n", ["line 2", '"a"', "2 fields"]),
    ("name,pool,annotation\na,image001.pool,a.xml\n", ["line 2, column annotation", "a.xml"]),
    ("name,pool,orbit\na,image001.pool,a.EOF\n", ["line 2, column orbit", "a.EOF"]),
    ("name,annotation\na,dem.ras\n", ["line 2, column annotation", "dem.ras"]),
    ("name,pool\na,dem.pool\n", ["line 2, column pool", "dem.pool", "n_lines"]),
    ("name,pool,colour\n", ["line 1", "colour"]), ("name,name\n", ["line 1", "each once"]), ("", ["images.csv", "empty"]),
    ("pool\nimage001.pool\n", ["line 1", "name"]), ('name,pool\n"a,image001.pool\n', ["line 2", "double quote"])]
BAD_PAIRS = [
    ("master,slave\na,b\nb,c\n", ["pairs.csv: line 3, column slave", '"c"']),
    ("master,slave\na,a\n", ["line 2, column slave", "another image"]),
    ("master,slave\na,b\n#\n\na,b\n", ["line 5, column slave", "line 2"]), ("master,days\na,4\n", ["line 1", "master,days"]),
    ("master\na\n", ["line 1", "master"]), ("next,days\n,\n", ["line 2", "a limit"]),
    *(("next,days\n%s\n" % row, ["line 2, column " + column]) for row, column in
      (("0,", "next"), ("x,", "next"), ("1.5,", "next"), (",nan", "days"), (",-1", "days"), (",1e999", "days")))]
BAD_TABLES = [(images, GOOD_PAIRS, says) for images, says in BAD_IMAGES] + [(GOOD_IMAGES, pairs, says) for pairs, says in BAD_PAIRS]


@pytest.mark.parametrize("images, pairs, says", BAD_TABLES)
def test_bad_tables_end_in_a_message_and_leave_nothing(made, folder, images, pairs, says):
    (folder / "images.csv").write_text(images, encoding="utf-8")
    (folder / "pairs.csv").write_text(pairs)
    refused(*STACK, says=says, folder=folder)


def test_a_folder_that_can_not_be_filled_goes_again(folder, tmp_path):
    without_room = tmp_path / "without_room"
    without_room.write_text("#!/bin/bash\ntrap '' XFSZ\nulimit -f 0\nexec '%s' \"$@\"\n" % PROGRAM)
    without_room.chmod(0o755)
    refused(*STACK, says="stack: can not be written", folder=folder, program=str(without_room))


def test_images_that_do_not_fit_are_told_with_their_line(folder):
    text = (folder / "image002.pool").read_text()
    for old, new, says in (('"right"', '"left"', ["pairs.csv: line 3, column slave", "other side"]),
                           ("radar_frequency FLT_15 9", "radar_frequency FLT_15 5", ["line 3", "radar_frequency"]),
                           ("first_az_time FLT_15 ", "first_az_time FLT_15 9", ["images.csv: line 3", "do not cover"]),
                           ("antenna_look", "antenna_took", ["images.csv: line 3", "antenna_look_direction"])):
        (folder / "image002.pool").write_text(text.replace(old, new))
        (folder / "pairs.csv").write_text("master,slave\nimage001,image003\nimage001,image002\n")
        refused(*STACK, says=says, folder=folder)
    (folder / "image002.pool").write_text(text)
    for mine in ("mine", "theirs/pairs"):
        (folder / mine).mkdir(parents=True)
        (folder / mine / "thesis.txt").write_text("x")
        stack = mine.split("/")[0]
        refused(*STACK[:-1], stack, says=[stack, "no stack"], folder=folder)
        assert [path.name for path in (folder / stack).rglob("*.txt")] == ["thesis.txt"]
    for part in ("images", "pairs"):  # of a first call that was killed
        (folder / "begun" / part).mkdir(parents=True)
    good(*STACK[:-1], "begun", folder=folder)
