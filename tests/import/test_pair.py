"""pair: the folder of a run."""

import pytest

import made_files
from import_run import content, good, pool, refused


@pytest.fixture
def folder(tmp_path):
    """Two acquisitions of one orbit, a day apart in nothing but name, and the files of a DEM (not read by pair)."""
    for name, metres in (("master", 0.0), ("slave", 150.0)):
        rows = made_files.vectors(orbit=made_files.moved(made_files.ORBIT, metres))
        (tmp_path / (name + ".xml")).write_text(made_files.annotation(rows, bursts=80, samples=25000))
        good("sentinel1", name + ".xml", "-o", name + ".pool", folder=tmp_path)
    (tmp_path / "dem.pool").write_text('dem_valid STR "400..600"\n')
    (tmp_path / "dem.ras").write_bytes(b"")
    return tmp_path


PAIR = ["pair", "master.pool", "slave.pool", "dem.pool", "-o", "run"]


def test_a_part_of_the_image_starts_later_and_the_slave_keeps_its_own_times(folder):
    before = content(folder)
    results = good(*PAIR, "--lines", "100:350", "--samples", "2000:", "--shift-factors", 4, 2, "--earth-factors", 3, 5,
                   folder=folder)
    assert "cd run && velmora -pcf scene.pcf" in results and "note" not in results
    assert "  master image . lines 100:350 of 723, samples 2000:25000 of 25000\n" in results
    assert {name: content(folder)[name] for name in before} == before
    master, slave, insar = (pool(folder / name) for name in ("master.pool", "slave.pool", "run/insar.pool"))
    assert (insar["n_lines"], insar["n_samples"]) == (250, 23000)
    assert insar["master_first_az_time"] == pytest.approx(master["first_az_time"] + 100 * made_files.LINE_INTERVAL_S,
                                                          abs=1e-9)
    assert insar["master_first_rg_time"] == pytest.approx(5.644e-3 + 2000 / 6.434523812571428e7, abs=1e-15)
    assert insar["slave_first_az_time"] == slave["first_az_time"]
    assert insar["slave_first_rg_time"] == slave["first_rg_time"]
    assert [insar["shift_matrices_subsampling_" + axis] for axis in ("rg", "az")] == [4, 2]
    assert [insar["earth_matrices_subsampling_" + axis] for axis in ("x", "y")] == [3, 5]
    control = (folder / "run" / "scene.pcf").read_text()
    assert "DEM ../dem.ras\n" in control and "DEM_VALID 400..600\n" in control


@pytest.mark.parametrize("step_s, count, chosen, reason", [
    (10.0, 16, "polyfit_7", "a short arc"), (10.0, 50, "localpolynom_0_8", "polynomials through 8"),
    (20.0, 9, "localpolynom_0_8", "polynomials through 8"), (10.0, 6, "hermite_0_4", "too few for 8"),
    (60.0, 9, "hermite_0_4", "far apart, so"), (70.0, 9, "hermite_0_4", "farther apart than 60 s"), (90.0, 3, "hermite_0_3", "few, so")])
def test_the_interpolation_follows_the_spacing_of_the_vectors(folder, step_s, count, chosen, reason):
    rows = made_files.vectors(count, step_s, start_s=70.0 - step_s * (count // 2))
    entries = (folder / "slave.pool").read_text().split("\n\n")
    vectors = {"state_vector_times": "STR_V", "state_vector_positions": "FLT_15_V", "state_vector_velocities": "FLT_15_V"}
    kept = [entry for entry in entries if entry.split(" ")[0].split("\n")[0] not in vectors]
    values = {"state_vector_times": ['"%s"' % made_files.iso(t) for t, _, _ in rows],
              "state_vector_positions": ["%.6f" % c for _, r, _ in rows for c in r],
              "state_vector_velocities": ["%.6f" % c for _, _, v in rows for c in v]}
    kept += ["%s %s 0 %d\n{\n%s\n}" % (key, tag, len(values[key]), "\n".join(values[key])) for key, tag in vectors.items()]
    (folder / "slave.pool").write_text("\n\n".join(kept).replace("polyfit_7", "polynom") + "\n")
    results = good(*PAIR, folder=folder)
    assert "slave orbit .. %s (%d vectors every %g s: %s" % (chosen, count, step_s, reason) in results
    assert pool(folder / "run" / "slave.pool")["orbit_interpolation"] == chosen
    good(*PAIR, "--interpolation", "everett_6", "--force", folder=folder)
    assert pool(folder / "run" / "slave.pool")["orbit_interpolation"] == "everett_6"


def changed(path, old, new):
    text = path.read_text()
    assert old in text
    path.write_text(text.replace(old, new, 1))


@pytest.mark.parametrize("arguments, says", [
    (["--lines", "5:5"], ["--lines", "5:5"]), (["--lines", "0:800"], ["--lines", "to 723"]),
    (["--lines", "7"], "--lines"), (["--samples", "a:b"], "--samples"), (["--shift-factors", "0", "1"], "shift-factors"),
    (["--shift-factors", "4"], "shift-factors")])
def test_a_wrong_part_ends_in_a_message(folder, arguments, says):
    refused(*PAIR, *arguments, says=says, folder=folder)


def test_pools_that_do_not_fit_end_in_a_message(folder):
    (folder / "dem.ras").rename(folder / "other.ras")
    refused(*PAIR, says="dem.ras", folder=folder)
    (folder / "other.ras").rename(folder / "dem.ras")
    original = (folder / "slave.pool").read_text()
    (folder / "a b").mkdir()
    (folder / ("d" * 200)).mkdir()
    for name, says in (("dem.text", "NAME.pool of a DEM"), ("a b/dem.pool", "without blanks"),
                       ("d" * 200 + "/" + "e" * 60 + ".pool", "more than 255 characters")):
        for path in (folder / name, (folder / name).with_suffix(".ras")):
            path.write_bytes(b"")
        refused("pair", "master.pool", "slave.pool", name, "-o", "run", says=says, folder=folder)
    for old, new, says in (("n_lines INT_32", "lines INT_32", "n_lines"), ('"right"', '"left"', "other side"),
                           ('"right"', '"Right"', '"right" or "left"'), ("first_rg_time", "first_range", "first_rg_time is missing"),
                           ("n_lines INT_32 7", "n_lines INT_32 -7", "at least 1"), ("6378137", "6358", "at indices 7 and 8"), ("6378137", "7000000", "at indices 7 and 8"),
                           ("radar_frequency FLT_15 5", "radar_frequency FLT_15 9", "radar_frequency"),
                           ("prf FLT_15 ", "prf FLT_15 -", "prf"), ("prf FLT_15 ", "prf FLT_15 nan #", "prf"),
                           ('times STR_V 0 16\n{\n    "2023-01-08T13:50', 'times STR_V 0 16\n{\n    "2024-01-08T13:50',
                            "")):
        changed(folder / "slave.pool", old, new)
        refused(*PAIR, says=says, folder=folder)
        (folder / "slave.pool").write_text(original)
    changed(folder / "slave.pool", "n_lines INT_32 723", "n_lines INT_32 2")
    changed(folder / "master.pool", "antenna_look_direction", "of_the_slave")
    assert "  note ......... the slave's image of 2 lines does not show this ground; its orbit does\n" in good(
        *PAIR, "--lines", "100:350", folder=folder)
    assert pool(folder / "run" / "master.pool")["antenna_look_direction"] == "right"
    refused(*PAIR, says=["run/master.pool", "--force"], folder=folder)
    changed(folder / "slave.pool", "antenna_look_direction", "of_the_master")
    refused(*PAIR, "--force", says="antenna_look_direction is missing, in the other pool as well", folder=folder)


def test_an_orbit_that_ends_before_the_ground_is_told(folder):
    rows = made_files.vectors(7, 11.9)  # ends at 71.4 s, the master's image at 71.5 s
    (folder / "o.csv").write_text(made_files.orbit_csv(rows))
    (folder / "slave.pool").unlink()
    (folder / "short.xml").write_text(made_files.annotation(rows, bursts=20, samples=25000))
    good("sentinel1", "short.xml", "-o", "slave.pool", folder=folder)
    refused(*PAIR, says=["slave.pool", "state vectors of 0.250000 to 71.650000 s", "orbit file"], folder=folder)
    good(*PAIR, "--lines", "0:300", folder=folder)
