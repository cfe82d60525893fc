"""64-bit ARM, built with Debian's cross compiler and run by its emulator: the same bytes as here. Ten minutes for the build."""

import os
import pathlib
import shutil
import subprocess

import pytest

from velmora_run import succeed

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
COMPILER, EMULATOR = "aarch64-linux-gnu-g++", "qemu-aarch64"
SCENES = {
    "repeat pass": {},
    "single pass, polyfit": dict(single_pass=True, orbit_interpolation="polyfit_7"),
    "UTM, hermite": dict(utm=True, orbit_interpolation="hermite_0_4"),
    "left looking, everett": dict(side="left", orbit_interpolation="everett_6"),
}
SMALL = dict(samples=90, lines=70, shift_factors=(4, 2), earth_factors=(3, 3))


@pytest.fixture(scope="session")
def arm_program(tmp_path_factory):
    """A program that is not traced by the processor's traps says so once; it is the one WARNING of its runs."""
    for tool in (COMPILER, EMULATOR, "ninja"):
        if shutil.which(tool) is None:
            pytest.skip("needs %s (Debian: g++-aarch64-linux-gnu, qemu-user, ninja-build)" % tool)
    build = tmp_path_factory.mktemp("aarch64")
    subprocess.run(["cmake", "-S", REPOSITORY, "-B", build, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release", "-DVELMORA_TESTS=OFF",
                    "-DCMAKE_TOOLCHAIN_FILE=%s" % (REPOSITORY / "cmake" / "aarch64_linux_gnu.cmake")], check=True)
    subprocess.run(["cmake", "--build", build, "--target", "velmora"], check=True)
    return build / "app" / "velmora"


@pytest.mark.parametrize("options", SCENES.values(), ids=SCENES)
def test_products_are_the_same_bytes_on_arm(fresh_scene, arm_program, options):
    _, here = fresh_scene("here", **{**SMALL, **options})
    succeed(here, parallel="2")
    _, there = fresh_scene("there", **{**SMALL, **options})
    done = subprocess.run([EMULATOR, "-L", "/usr/aarch64-linux-gnu", arm_program, "-pcf", "scene.pcf"], cwd=there,
                          env={"PATH": os.environ["PATH"], "PARALLEL": "2"}, capture_output=True, text=True, check=False)
    assert done.returncode == 0, done.stdout[-2000:]
    assert done.stdout.count("no floating-point traps") == 1
    for product in sorted(here.glob("*.ras")):
        assert product.read_bytes() == (there / product.name).read_bytes(), product.name
