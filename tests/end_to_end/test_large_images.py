"""Images larger than the memory that the run may use, and products above 4 GiB. Minutes, and gigabytes of disk."""

import os
import re
import shutil
import struct
import subprocess

import numpy as np
import pytest

from velmora_run import BINARY, edit_control_file

SPARSE = dict(products=("phase",), terrain="flat", low_m=100.0, cover_low_m=0.0, cover_high_m=1000.0, dem_margin_m=3000.0)


def run_limited(folder, limit_mib):
    """Status, screen and peak memory in MiB of a run."""
    screen = folder / "screen"
    with open(screen, "w", encoding="utf-8") as out:
        process = subprocess.Popen([BINARY, "-pcf", "scene.pcf", "-MEMORY_LIMIT", str(limit_mib)], cwd=folder, stdout=out,
                                   stdin=subprocess.DEVNULL, env={"PATH": os.environ["PATH"], "PARALLEL": "2"})
        _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    return process.returncode, screen.read_text(encoding="utf-8"), usage.ru_maxrss / 1024.0


@pytest.mark.parametrize("samples, lines, spacing_m", [(10000, 100000, 400.0), (33000, 33000, 400.0)])
def test_a_large_image_in_512_mib(fresh_scene, tmp_path, samples, lines, spacing_m):
    if shutil.disk_usage(tmp_path).free < 2 * 4 * samples * lines:
        pytest.skip("needs %d GB of disk" % (8 * samples * lines / 1e9))
    _, folder = fresh_scene(samples=samples, lines=lines, dem_spacing_m=spacing_m, prf_hz=4000.0, **SPARSE)
    edit_control_file(folder, SIMU_PHASE="simu_phase.ras")
    status, screen, peak_mib = run_limited(folder, 512)
    assert status == 0, screen[-2000:]
    assert int(re.search(r"simulated in (\d+) slabs", screen)[1]) >= 10
    assert peak_mib < 600.0 + (folder / "dem.ras").stat().st_size / 2**20
    path = folder / "simu_phase.ras"
    pixel_bytes = 4 * samples * lines
    assert path.stat().st_size == 32 + pixel_bytes
    with open(path, "rb") as file:
        header = struct.unpack(">8I", file.read(32))
    assert header == (0x59A66A95, samples, lines, 32, pixel_bytes if pixel_bytes < 2**32 else 0, 99, 0, 0)
    phase = np.memmap(path, "<f4", "r", 32, (lines, samples))
    # Flat terrain: the phase runs smoothly in both directions, over every border of slabs and cells.
    for line in phase[::997]:
        assert np.all(np.isfinite(line)) and np.all(np.abs(np.diff(line.astype(float), 2)) < 0.5)
    for column in phase.T[::997]:
        assert np.all(np.abs(np.diff(column.astype(float), 2)) < 0.5)
