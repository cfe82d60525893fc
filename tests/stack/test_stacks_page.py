"""docs/stacks.md: its commands, as they stand there, on made files."""

import os
import re
import shutil
import subprocess
import sys

import pytest

from stack_kit import IMPORT, REPOSITORY, VELMORA, VIEW, WORKFLOW
from scene_maker import raster

sys.path.insert(0, str(REPOSITORY / "tests" / "import"))

pytest.importorskip("osgeo.gdal", reason="needs python3-gdal")
import made_terrain  # noqa: E402

PAGE = (REPOSITORY / "docs" / "stacks.md").read_text(encoding="utf-8")
COMMANDS, PRINTED = (re.findall(r"```%s\n(.*?)```" % kind, PAGE, re.S) for kind in ("sh", "text"))


@pytest.mark.skipif(shutil.which("snakemake") is None, reason="needs Debian's snakemake")
def test_the_commands_lead_from_two_images_to_a_stack_that_has_run(tmp_path):
    made_terrain.images_and_dem(tmp_path, *sorted(re.findall(r"s1a-\S+?\.xml", PAGE), reverse=True))
    tools = ":".join(os.path.dirname(program) for program in (VELMORA, IMPORT, VIEW)) + ":" + str(WORKFLOW)
    done = subprocess.run(["bash", "-e", "-c", "\n".join(COMMANDS)], cwd=tmp_path, capture_output=True, text=True, timeout=600,
                          env=dict(os.environ, PATH="%s:%s" % (tools, os.environ["PATH"]), XDG_CACHE_HOME=str(tmp_path)), check=False)
    assert done.returncode == 0, done.stdout[-2000:] + done.stderr[-2000:]
    assert done.stdout.endswith(PRINTED[0])
    pair = tmp_path / "stack" / "pairs" / "20230108__20200511"
    assert raster.read(pair / "simu_phase.ras").shape == (420, 1500)
    assert re.search("20230108__20200511,20230108,20200511,[-0-9.]+,0.00", (tmp_path / "stack" / "pairs.csv").read_text())
