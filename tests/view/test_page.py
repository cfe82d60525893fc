"""The page docs/looking_at_products.md, typed as it stands."""

import os
import pathlib
import re
import shutil
import subprocess
import sys

import pytest

REPOSITORY = pathlib.Path(__file__).resolve().parents[2]
sys.path[:0] = [str(REPOSITORY / "demo"), str(REPOSITORY / "tests" / "end_to_end")]

from velmora_run import BINARY, succeed  # noqa: E402


def test_looking_at_products_page(tmp_path):
    """Every command of the page, in the demo's folder, prints what the page says."""
    if not shutil.which("gdalinfo"):
        pytest.skip("needs gdal-bin")
    programs = tmp_path / "bin"
    programs.mkdir()
    for name, target in (("velmora", BINARY), ("velmora-view", os.environ["VELMORA_VIEW"])):
        (programs / name).symlink_to(target)
    page = (REPOSITORY / "docs" / "looking_at_products.md").read_text(encoding="utf-8")
    make = re.search(r"demo/make_scene.py \"\$folder\" (.*)", (REPOSITORY / "tools" / "demo.sh").read_text()).group(1)
    folder = tmp_path / "demo"
    subprocess.run("%s %s %s" % (REPOSITORY / "demo" / "make_scene.py", folder, make), shell=True, check=True,
                   capture_output=True)
    succeed(folder, parallel="2")
    blocks = re.findall(r"```sh\n(.*?)```\n(?:```text\n(.*?)```)?", page, re.S)
    assert len(blocks) >= 5
    for commands, printed in blocks:
        done = subprocess.run(commands, shell=True, cwd=folder, capture_output=True, text=True, timeout=300, check=False,
                              env={"PATH": "%s:%s" % (programs, os.environ["PATH"])})
        assert done.returncode == 0, commands + done.stdout[-2000:] + done.stderr[-2000:]
        for line in (printed or "").splitlines():
            assert line == "..." or re.sub(r"\d+(\.\d+)? s$", "", line).strip() in done.stdout, line
