"""Shared scenes with expected products of an independent implementation, where they are at hand.

They live outside the repository: in the folder that VELMORA_SHARED names, else in shared/ beside the repository.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys

import pytest

from velmora_run import REPOSITORY, succeed

SHARED = pathlib.Path(os.environ.get("VELMORA_SHARED", REPOSITORY.parent / "shared"))
NAMES = ("san_gabriel", "pyrenees", "nice_left", "cross180_met", "ps_ov2_left_utm_south", "utm_bessel_7par", "bistatic_std",
         "bistatic_ps_hermite_sub")


@pytest.mark.parametrize("parallel", ["1", "2", "7"])
@pytest.mark.parametrize("name", NAMES)
def test_products_of_shared_scene(name, parallel, tmp_path):
    source = SHARED / "scenes" / name
    if not source.is_dir():
        pytest.skip("no scene %s: set VELMORA_SHARED to the folder that holds scenes/ and tools/" % source)
    for file in source.iterdir():
        if file.is_file():
            shutil.copyfile(file, tmp_path / file.name)
    run = succeed(tmp_path, parallel=parallel)
    comparison = subprocess.run([sys.executable, SHARED / "tools" / "compare_products.py", source, tmp_path],
                                capture_output=True, text=True, check=False)
    print(comparison.stdout)
    assert comparison.returncode == 0, comparison.stdout + comparison.stderr
    assert run.lines("ALARM") == []
    assert not [line for line in run.lines("WARN") if re.search("Error|precision problem|iterations count|ends inside|far outside", line)]
