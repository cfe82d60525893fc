"""sentinel1 and orbit: pools from annotation and orbit files."""

import csv
import datetime
import gzip
import json
import os
import subprocess

import numpy as np
import pytest

import made_files
from import_run import INPUTS, content, good, pool, refused, run

GRID_CHECK = os.environ["VELMORA_GRID_CHECK"]
ROWS = made_files.vectors()
PAIR = {"20230108": "s1a-iw2-slc-vv-20230108t135251-20230108t135316-046693-0598d3-005.xml",
        "20200511": "s1a-iw2-slc-vv-20200511t135117-20200511t135142-032518-03c421-005.xml"}
EOF_FILE = "S1A_OPER_AUX_RESORB_OPOD_20220918T093241_V20220918T053155_20220918T084925.EOF"
needs_inputs = pytest.mark.skipif(not INPUTS.is_dir(), reason="no real files in %s" % INPUTS)


def unpacked(name, folder):
    path = folder / name
    path.write_bytes(gzip.decompress((INPUTS / (name + ".gz")).read_bytes()))
    return path


def seconds(text, since):
    form = "%Y-%m-%dT%H:%M:%S.%f"
    return (datetime.datetime.strptime(text, form) - datetime.datetime.strptime(since, form)).total_seconds()


def check_vectors(entries, rows):
    """The pool's vectors are those of the rows, in order."""
    assert entries["state_vector_times"] == [made_files.iso(t) for t, _, _ in rows]
    for key, column in (("state_vector_positions", 1), ("state_vector_velocities", 2)):
        expected = np.array([row[column] for row in rows]).ravel()
        assert np.max(np.abs(np.array(entries[key]) - expected)) < 2e-5


def made(folder, name, text):
    (folder / name).write_text(text)
    return name


def test_a_swath_becomes_its_deburst_grid_and_a_burst_its_own(tmp_path):
    made(tmp_path, "a.xml", made_files.annotation(ROWS))
    results = good("sentinel1", "a.xml", "-o", "swath.pool", folder=tmp_path)
    assert "lines 1 to 28, samples 3 to 35" in results
    good("sentinel1", "a.xml", "--burst", 2, "-o", "burst.pool", folder=tmp_path)
    step_s = made_files.BURST_STEP_LINES * made_files.LINE_INTERVAL_S
    for name, lines, first_s in (("swath.pool", 30, 70.0), ("burst.pool", 12, 70.0 + step_s)):
        entries = pool(tmp_path / name)
        assert (entries["n_lines"], entries["n_samples"]) == (lines, 40)
        assert seconds(made_files.iso(first_s), entries["orbit_reference_time"]) == pytest.approx(
            entries["first_az_time"], abs=1e-9)
        assert [entries[key] for key in ("first_rg_time", "prf", "range_sampling_frequency", "radar_frequency", "az_bandwidth")] == [
            5.644e-03, 1.0 / made_files.LINE_INTERVAL_S, 6.434523812571428e+07, 5.405000454334350e+09, 313.0]
        assert entries["ellipsoid_parameters"][7:] == [6378137.0, 6356752.314245]
        check_vectors(entries, ROWS)


ORBIT_FILES = {
    "eof": made_files.eof(ROWS),
    "csv": made_files.orbit_csv(ROWS),
    "csv, other order, TAI": "\n".join(
        ";".join(np.array(line.split(","))[[6, 1, 2, 3, 4, 5, 0]]) for line in made_files.orbit_csv(
            ROWS, "T_TAI,X_m,y,z,VX_m_s,vy,vz", ahead_s=37).splitlines()),
    "oem, UTC": made_files.oem(ROWS),
    "oem, TAI": made_files.oem(ROWS, time="TAI", ahead_s=37),
    "oem, GPS": made_files.oem(ROWS, "WGS-84", "GPS", ahead_s=18),
    "oem, day of the year": made_files.oem(ROWS).replace("2023-01-08T", "2023-008T"),
    "oem, two segments": made_files.oem(ROWS[:9]) + made_files.oem(ROWS[8:]).split("\n", 3)[3],
}


@pytest.mark.parametrize("kind", ORBIT_FILES)
def test_an_orbit_file_gives_the_vectors_around_the_interval(tmp_path, kind):
    made(tmp_path, "orbit", ORBIT_FILES[kind])
    good("orbit", "orbit", "--from", made_files.iso(71), "--to", made_files.iso(79), "--into", "o.pool",
         folder=tmp_path)
    check_vectors(pool(tmp_path / "o.pool"), ROWS[1:15])
    made(tmp_path, "a.xml", made_files.annotation(ROWS))
    good("sentinel1", "a.xml", "--orbit", "orbit", "-o", "m.pool", folder=tmp_path)
    check_vectors(pool(tmp_path / "m.pool"), ROWS[1:15])


@pytest.mark.parametrize("utc, tai_minus_utc_s", [
    ("2012-06-30T23:55:00", 34), ("2012-07-01T00:00:00", 35), ("2016-12-31T23:55:00", 36), ("2017-01-01T00:00:00", 37)])
def test_leap_seconds_count_from_their_day_on(tmp_path, utc, tai_minus_utc_s):
    epoch = datetime.datetime.fromisoformat(utc)
    made(tmp_path, "o.csv", made_files.orbit_csv(ROWS, "t_tai,x,y,z,vx,vy,vz", tai_minus_utc_s, epoch))
    interval = [made_files.iso(t, 0, epoch) for t in (71, 79)]
    good("orbit", "o.csv", "--from", interval[0], "--to", interval[1], "--into", "o.pool", folder=tmp_path)
    assert pool(tmp_path / "o.pool")["state_vector_times"][0] == made_files.iso(10, 0, epoch)


def test_an_orbit_joins_a_pool_and_replaces_another_only_by_force(tmp_path):
    made(tmp_path, "o.csv", made_files.orbit_csv(ROWS))
    made(tmp_path, "m.pool", '# mine\nprf FLT_15 1500\norbit_reference_time STR "08-JAN-2023/13:00:00"\n')
    arguments = ["orbit", "o.csv", "--from", made_files.iso(71), "--to", made_files.iso(79), "--into", "m.pool"]
    good(*arguments, folder=tmp_path)
    assert (tmp_path / "m.pool").read_text().startswith("# mine\nprf FLT_15 1500\n")
    assert pool(tmp_path / "m.pool")["orbit_reference_time"] == "2023-01-08T13:00:00.000000"
    refused(*arguments, says=["m.pool", "orbit", "--force"], folder=tmp_path)
    good(*arguments, "--force", folder=tmp_path)


def replaced(text, old, new):
    assert old in text
    return text.replace(old, new)


ANNOTATION = made_files.annotation(ROWS)
CSV = made_files.orbit_csv(ROWS)
EDITS = [  # text of an annotation, what stands there instead, text of the message
    ("slantRangeTime", "x", "product/imageAnnotation/imageInformation/slantRangeTime is missing"),
    ("<slantRangeTime>5", "<slantRangeTime>five", "five.644e-03"), ("5.644e-03", "5e999", '"5e999": expected a finite number'),
    ("5.644e-03", "nan", '"nan": expected a finite number'), ("<numberOfSamples>40", "<numberOfSamples>-4", "from 1 to"),
    ("<numberOfLines>36", "<numberOfLines>99999999999999999999", "numberOfLines"),
    ("<linesPerBurst>12", "<linesPerBurst>13", "linesPerBurst"), ("<firstValidSample>-1 ", "<firstValidSample>", "12 numbers"),
    ("<samplesPerBurst>40", "<samplesPerBurst>41", "numberOfSamples, 40"),
    ("<azimuthTime>" + made_files.iso(70.0), "<azimuthTime>" + made_files.iso(71.0), "a later time than"),
    ("<azimuthTime>" + made_files.iso(70.0 + 18 * made_files.LINE_INTERVAL_S), "<azimuthTime>" + made_files.iso(7200.0),
     "more than an hour"),
    ("<swathProcParams><swath>IW2", "<swathProcParams><swath>IW3", 'has no swathProcParams of swath "IW2"'),
    ("S1A", "S3A", "missionId"), ("Earth Fixed", "GM2000", "generalAnnotation/orbitList/orbit[1]/frame"),
    (made_files.iso(70.0), "2023-13-08T00:00:00", "2023-13-08")]
BAD_ANNOTATIONS = [
    ("velmora", "line 1"), ("", "no XML"), (ANNOTATION[:2000], "no XML"), ("<other/>", '"other": expected "product"'),
    (ANNOTATION.replace(">-1 3 ", ">-1 -1 ").replace(" 3 ", " -1 ").replace(" 3 ", " -1 "), "has no valid line"),
    (made_files.annotation(ROWS, product="GRD"), "productType"), (made_files.annotation(ROWS[:7]), "do not cover the image"),
    ('<!DOCTYPE p [<!ENTITY a SYSTEM "file:///etc/passwd">]>' + ANNOTATION, "DOCTYPE"),
    *((replaced(ANNOTATION, old, new), says) for old, new, says in EDITS)]


@pytest.mark.parametrize("text, says", BAD_ANNOTATIONS, ids=[says for _, says in BAD_ANNOTATIONS])
def test_a_bad_annotation_ends_in_a_message(tmp_path, text, says):
    made(tmp_path, "a.xml", text)
    refused("sentinel1", "a.xml", "-o", "m.pool", says=["a.xml", says], folder=tmp_path)


FAR = [(t, np.array(r), np.array(v)) for t, r, v in ROWS]
OEM = made_files.oem(ROWS)
BAD_ORBITS = [
    (made_files.eof(ROWS, frame="MEAN_OF_2000"), "Ref_Frame"), (made_files.eof(ROWS, time="TAI"), "Time_Reference"),
    (made_files.eof(ROWS, count=17), "not whole"),  # fewer vectors than told
    (made_files.oem(ROWS, frame="EME2000"), ["line 8: REF_FRAME", "EME2000", "Earth-fixed"]),
    (made_files.oem(ROWS, time="TDB"), ["TIME_SYSTEM", "UTC, TAI or GPS"]),
    (replaced(OEM, "REF_FRAME = ITRF2014\n", ""), "the metadata lack REF_FRAME"),
    (replaced(OEM, " 0 0 0", " 0"), ["line 12", "(7 words)"]),
    (replaced(OEM, "META_START", "COMMENT"), ["line 10", "META_START before"]),
    (replaced(OEM, "= EARTH", "= MARS"), ["line 7: CENTER_NAME", "MARS"]), (OEM[:-20], "not whole"),
    ("\n".join(line.rsplit(",", 1)[0] for line in CSV.splitlines()), ["line 1", "vz"]),
    (CSV + "2023-01-08T13:53:00,1,2\n", ["line 18", "7 values"]), (CSV.replace("-", "minus", 40), "expected"),
    (made_files.orbit_csv([(t, r / 1e3, v / 1e3) for t, r, v in FAR]), "metres"),
    (made_files.orbit_csv([(t, r, v + [0.0, 500.0, 0.0]) for t, r, v in FAR]), "m/s"),  # of another frame
    (made_files.orbit_csv(ROWS[::-1]), "does not follow"), (made_files.orbit_csv(ROWS[:1]), "at least 2"),
    (made_files.orbit_csv(ROWS[2:4]), ["offers", made_files.iso(20), "wanted", made_files.iso(10)]),
    ("", "empty"), ("\x00\x01\x02\n", "line 1")]


@pytest.mark.parametrize("text, says", BAD_ORBITS, ids=[str(says) for _, says in BAD_ORBITS])
def test_a_bad_orbit_ends_in_a_message(tmp_path, text, says):
    made(tmp_path, "orbit", text)
    refused("orbit", "orbit", "--from", made_files.iso(70), "--to", made_files.iso(80), "--into", "o.pool",
            says=["orbit", *([says] if isinstance(says, str) else says)], folder=tmp_path)


def test_outputs_are_whole_or_not_there(tmp_path):
    made(tmp_path, "a.xml", ANNOTATION)
    arguments = ["sentinel1", "a.xml", "-o"]
    good(*arguments, "m.pool", folder=tmp_path)
    before = content(tmp_path)
    for words, says in (("m.pool", ["m.pool", "--force"]), ("a.xml --force", ["a.xml", "input"]), ("a.xml/m.pool", "a.xml/m.pool"),
                        ("/dev/full --force", "no regular file"), ("m2.pool --burst 4", "3 bursts")):
        refused(*arguments, *words.split(), says=says, folder=tmp_path)
    refused("sentinel1", "none.xml", "-o", "n.pool", says="none.xml", folder=tmp_path)
    made(tmp_path, "b.EOF", made_files.eof(ROWS, mission="Sentinel-1B"))
    refused("sentinel1", "a.xml", "--orbit", "b.EOF", "-o", "n.pool", says=["Sentinel-1B", "of the image, S1A"], folder=tmp_path)
    (tmp_path / "b.EOF").unlink()
    refused("sentinel1", ".", "-o", "n.pool", says="regular file", folder=tmp_path)
    refused("sentinel1", "a.xml", says="--output", folder=tmp_path)
    good(*arguments, "m.pool", "--force", folder=tmp_path)
    assert content(tmp_path) == before


def test_every_help_begins_with_an_example():
    for command in ([], ["dem"], ["sentinel1"], ["orbit"], ["pair"]):
        assert good(*command, "--help").startswith("Example:\n  velmora-import")


@needs_inputs
@pytest.mark.parametrize("date", PAIR)
def test_a_real_annotation_gives_the_values_of_an_independent_reader_and_its_geolocation_grid(tmp_path, date):
    expected = json.loads((INPUTS / "expected" / (date + ".acquisition.json")).read_text())
    good("sentinel1", unpacked(PAIR[date], tmp_path), "-o", tmp_path / "m.pool")
    entries = pool(tmp_path / "m.pool")
    for key, name in (("prf", "image_prf_hz"), ("range_sampling_frequency", "range_sampling_rate_hz"),
                      ("radar_frequency", "radar_frequency_hz"), ("az_bandwidth", "azimuth_bandwidth_hz"),
                      ("first_rg_time", "first_range_time_s"), ("n_samples", "n_samples"),
                      ("antenna_look_direction", "look_direction")):
        assert entries[key] == expected[name], key
    since = entries["orbit_reference_time"]
    assert entries["first_az_time"] == pytest.approx(seconds(expected["first_line_utc"], since), abs=1e-9)
    last_s = entries["first_az_time"] + (entries["n_lines"] - 1) / entries["prf"]
    assert last_s == pytest.approx(seconds(expected["last_line_utc"], since), abs=2e-6)
    with open(INPUTS / "expected" / (date + ".orbit.csv"), encoding="ascii") as file:
        rows = list(csv.DictReader(file))
    assert entries["state_vector_times"] == [row["t_utc"] for row in rows]
    assert entries["state_vector_positions"] == [float(row[c]) for row in rows for c in ("x", "y", "z")]
    assert entries["state_vector_velocities"] == [float(row[c]) for row in rows for c in ("vx", "vy", "vz")]
    grid = INPUTS / "expected" / (date + ".geolocation_grid.csv")
    printed = subprocess.run([GRID_CHECK, tmp_path / "m.pool", grid], capture_output=True, text=True, check=True).stdout
    points, time_s, _, range_m, _ = printed.split()
    assert int(points) == 210 and float(time_s) <= 2e-6 and float(range_m) <= 1e-4


@needs_inputs
def test_a_real_orbit_file_is_cut_to_the_image_and_refused_elsewhere(tmp_path):
    orbit = unpacked(EOF_FILE, tmp_path)
    good("orbit", orbit, "--from", "2022-09-18T06:00:00", "--to", "2022-09-18T06:00:30", "--into", tmp_path / "o.pool")
    entries = pool(tmp_path / "o.pool")
    assert entries["state_vector_times"][0] == "2022-09-18T05:58:55.470319"
    assert entries["state_vector_times"][-1] == "2022-09-18T06:01:35.470319"
    annotation = unpacked(PAIR["20230108"], tmp_path)
    done = run("sentinel1", annotation, "--orbit", orbit, "-o", tmp_path / "m.pool")
    assert done.status == 1 and not (tmp_path / "m.pool").exists()
    for text in ("2022-09-18T05:31:55.470319", "2022-09-18T08:49:25.470319", "2023-01-08T13:51:51.383925",
                 "2023-01-08T13:54:16.543934"):
        assert text in done.messages
