"""How products reach the disk: whole or not at all, of any size, with the room and the memory that there is."""

import os
import re
import shutil
import subprocess

import pytest

from velmora_run import BINARY, FILES, LAST_LINE, PRODUCTS, edit_control_file, products, succeed, velmora

# Layover: cells far apart claim one pixel. Grids of 2 MB, in slabs that the factors do not divide.
LARGE = dict(samples=500, lines=450, shift_factors=(4, 3), earth_factors=(3, 2), incidence_deg=20.0, smoothness=1.7)
SMALL = dict(samples=100, lines=80, shift_factors=(4, 2), earth_factors=(3, 3))


def temporaries(folder):
    return [name for name in os.listdir(folder) if name.startswith(".velmora_")]


def stage_c(run):
    lines = run.lines("INFO")
    return [line for line in lines[lines.index("C. OUTPUT TO FILE SAVING " + 34 * "*"):] if "time" not in line]


@pytest.mark.parametrize("options", [{}, dict(single_pass=True), dict(pass_direction="ascending", shift_factors=(1, 1), earth_factors=(1, 1))],
                         ids=["cropped", "single pass", "not extended, ascending"])
def test_slabs_give_the_products_of_the_whole_image(fresh_scene, options):
    _, whole = fresh_scene("whole", **{**LARGE, **options})
    reference = succeed(whole, parallel="2")
    for parallel in ("1", "3"):
        _, folder = fresh_scene("slabs" + parallel, **{**LARGE, **options})
        run = succeed(folder, "-MEMORY_LIMIT", "1", parallel=parallel)
        (told,) = [line for line in run.lines("INFO") if "slabs" in line]
        slabs = int(re.search(r"simulated in (\d+) slabs", told)[1])
        assert slabs >= 2
        assert products(folder) == products(whole)
        assert (folder / "insar.pool").read_bytes() == (whole / "insar.pool").read_bytes()
        assert stage_c(run) == stage_c(reference)


def solutions(run):
    return int(re.search(r"Solutions of DEM samples: (\d+) in rows", run.screen)[1])


def test_large_images_go_in_slabs_without_a_word(fresh_scene):
    """Unless a product is a device: it would show rows of an image that may have a gap further down."""
    image = dict(samples=1600, lines=1060, shift_factors=(1, 1), earth_factors=(1, 1), dem_spacing_m=30.0)
    runs = []
    for name in ("slabs", "whole"):
        _, folder = fresh_scene(name, **image)
        if name == "whole":
            edit_control_file(folder, H_EARTH="/dev/null")
        runs.append((folder, succeed(folder, "-lsl", "DEBUG", parallel="2")))
    (slabs, in_slabs), (whole, at_once) = runs
    assert solutions(in_slabs) != solutions(at_once)  # a slab leaves cells beside the image, and walks those at its end twice
    for name in FILES[:-1]:
        assert (slabs / name).read_bytes() == (whole / name).read_bytes()
    assert [line.replace("h_earth.ras", "/dev/null") for line in stage_c(in_slabs)] == stage_c(at_once)
    # Tenths of the rows of one thread, whose number differs: one more or less may be told.
    told = [[line for line in run.lines("INFO") if " * processed " not in line] for run in (in_slabs, at_once)]
    assert len(told[0]) == len(told[1])


def test_a_gap_in_a_late_slab_keeps_all_older_products(fresh_scene):
    missing = []
    for name, limit in (("whole", ()), ("slabs", ("-MEMORY_LIMIT", "1"))):
        _, folder = fresh_scene(name, **{**LARGE, "dem_margin_m": -150.0, "cover_low_m": 99.0, "cover_high_m": 101.0,
                                         "terrain": "flat", "low_m": 100.0})
        for file in FILES:
            (folder / file).write_text("older " + file)
        run = velmora(folder, *limit)
        missing.append([line for line in run.lines("WARN") if "simulated rg" in line or "are missing" in line])
        assert run.status == 1 and len(missing[-1]) == 2, run.explanation()
        assert products(folder) == {file: ("older " + file).encode() for file in FILES} and not temporaries(folder)
    assert missing[0] == missing[1]


def in_namespace(commands, folder):
    """Runs shell commands in a mount namespace of their own: whatever they mount goes with them, however they end."""
    if os.geteuid() != 0 or subprocess.run(["unshare", "-m", "true"], check=False).returncode != 0:
        pytest.skip("no right to mount")
    return subprocess.run(["unshare", "-m", "sh", "-ec", commands, "sh", BINARY], cwd=folder, capture_output=True, text=True,
                          timeout=120, check=False, env={"PATH": os.environ["PATH"] + ":/usr/sbin:/sbin", "PARALLEL": "2"})


def test_a_full_disk_is_found_before_the_work(fresh_scene):
    _, folder = fresh_scene(**SMALL)
    edit_control_file(folder, **{name: "disk/" + file for name, file in zip(PRODUCTS, FILES)})
    (folder / "disk").mkdir()
    # 100 x 80 pixels of phase fit, the other six products do not.
    done = in_namespace("mount -t tmpfs -o size=40k none disk; echo older > disk/simu_phase.ras;"
                        "\"$1\" -pcf scene.pcf || echo status $?; ls -A disk; cat disk/simu_phase.ras", folder)
    if "mount:" in done.stderr:
        pytest.skip(done.stderr)
    assert "bytes are needed" in done.stdout and "No space left on device" in done.stdout, done.stdout
    assert "B. PHASE" not in done.stdout
    assert done.stdout.endswith("status 1\nsimu_phase.ras\nolder\n"), done.stdout


def test_a_disk_that_fails_behind_the_systems_cache_is_an_error(fresh_scene):
    """The room of the loop file is promised by its file system, but the disk below has it not: only fsync tells."""
    _, folder = fresh_scene(**{**LARGE, "shift_factors": (1, 1), "earth_factors": (1, 1)})
    if shutil.which("mkfs.ext4", path="/usr/sbin:/sbin:" + os.environ["PATH"]) is None:
        pytest.skip("no mkfs.ext4")
    edit_control_file(folder, **{name: "disk/" + file for name, file in zip(PRODUCTS, FILES)})
    for name in ("below", "disk"):
        (folder / name).mkdir()
    done = in_namespace("mount -t tmpfs -o size=4m none below; truncate -s 64M below/image; mkfs.ext4 -q below/image;"
                        "mount -o loop below/image disk; rm -rf disk/lost+found; echo older > disk/h_earth.ras; sync;"
                        "\"$1\" -pcf scene.pcf || echo status $?; ls disk; cat disk/h_earth.ras", folder)
    if "mount:" in done.stderr or "mkfs" in done.stderr:
        pytest.skip(done.stderr)
    assert "MEM_MGR: unable to write into: disk/" in done.stdout, done.stdout
    assert LAST_LINE in done.stdout
    # The temporaries may stay: such a disk becomes read-only.
    assert done.stdout.endswith("status 1\nh_earth.ras\nolder\n"), done.stdout[-500:]


def test_devices_pipes_and_links(fresh_scene):
    _, plain = fresh_scene("plain", **SMALL)
    succeed(plain)
    _, folder = fresh_scene("special", **SMALL)
    (folder / "elsewhere").mkdir()
    (folder / "x_earth.ras").symlink_to("elsewhere/coming.ras")
    os.mkfifo(folder / "rg_coreg.ras")
    edit_control_file(folder, Z_EARTH="/dev/null", AZ_COREG="/dev/stderr")
    with subprocess.Popen(["cat", "rg_coreg.ras"], cwd=folder, stdout=subprocess.PIPE) as reader:
        done = subprocess.run([BINARY, "-pcf", "scene.pcf"], cwd=folder, stdin=subprocess.DEVNULL, capture_output=True, timeout=60,
                              check=False, env={"PATH": os.environ["PATH"], "PARALLEL": "3"})
        piped = reader.stdout.read()
    assert done.returncode == 0, done.stdout.decode()
    assert done.stderr == (plain / "az_coreg.ras").read_bytes()
    assert piped == (plain / "rg_coreg.ras").read_bytes()
    assert (folder / "x_earth.ras").is_symlink()
    assert (folder / "elsewhere" / "coming.ras").read_bytes() == (plain / "x_earth.ras").read_bytes()
    assert (folder / "h_earth.ras").read_bytes() == (plain / "h_earth.ras").read_bytes()
    assert not temporaries(folder)
