"""Images larger than the memory that the run may use, and products above 4 GiB. Minutes, and gigabytes of disk."""

import os
import re
import shutil
import struct
import subprocess
import sys

import numpy as np
import pytest

from velmora_run import BINARY, edit_control_file

SPARSE = dict(products=("phase",), terrain="flat", low_m=100.0, cover_low_m=0.0, cover_high_m=1000.0, dem_margin_m=3000.0)


# A process begins with the peak memory of the one that starts it, and a test that has looked at gigabytes is no small one.
PEAK = """import resource, subprocess, sys
status = subprocess.run(sys.argv[1:], stdin=subprocess.DEVNULL, stdout=open("screen", "w")).returncode
print(status, resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)
"""


def run_limited(folder, limit_mib):
    """Status, screen and peak memory in MiB of a run."""
    done = subprocess.run([sys.executable, "-c", PEAK, BINARY, "-pcf", "scene.pcf", "-MEMORY_LIMIT", str(limit_mib)], cwd=folder,
                          capture_output=True, text=True, check=True, env={"PATH": os.environ["PATH"], "PARALLEL": "2"})
    status, peak_kib = map(int, done.stdout.split())
    return status, (folder / "screen").read_text(encoding="utf-8"), peak_kib / 1024.0


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
