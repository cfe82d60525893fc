"""Many pairs: side by side in one tree, and 10 000 of them before the engine."""

import os
import re
import shutil
import time

import pytest

from stack_kit import ENGINE, IMPORT, PROGRAM, REPOSITORY, VELMORA, WORKFLOW, call, made_stack, make_stack, products, OPTIONS

PARALLEL_LINE = re.search(r"^.*\| parallel .*$", (REPOSITORY / "docs" / "stacks.md").read_text(), re.M).group()


@pytest.mark.skipif(shutil.which("parallel") is None, reason="needs GNU parallel")
def test_two_hundred_runs_side_by_side_disturb_one_another_in_nothing(tmp_path):
    stack = made_stack(tmp_path, images=25, next_images=10)
    pairs = sorted(path.name for path in (stack / "pairs").iterdir())
    assert len(pairs) >= 190
    environment = dict(VELMORA=VELMORA, PATH="%s:%s" % (WORKFLOW, os.environ["PATH"]))
    shutil.copytree(stack, tmp_path / "one_by_one" / "stack")
    for name in ("dem.pool", "dem.ras"):
        shutil.copy(tmp_path / name, tmp_path / "one_by_one")
    call("sh", "-c", PARALLEL_LINE.replace("parallel ", "parallel -j 1 "), folder=tmp_path / "one_by_one", **environment)
    call("sh", "-c", PARALLEL_LINE.replace("parallel ", "parallel -j 250 "), folder=tmp_path, **environment)
    assert ("%d done" % len(pairs)) in call(PROGRAM, "status", stack, folder=tmp_path)
    for pair in pairs:
        other = tmp_path / "one_by_one" / "stack" / "pairs" / pair
        assert products(stack / "pairs" / pair) == products(other), pair
        assert (stack / "pairs" / pair / "insar.pool").read_bytes() == (other / "insar.pool").read_bytes()
        assert {path.name for path in (stack / "pairs" / pair).iterdir()} == {path.name for path in other.iterdir()}


@pytest.mark.skipif(shutil.which("snakemake") is None, reason="needs Debian's snakemake")
def test_ten_thousand_pairs_are_planned_in_little_memory(tmp_path):
    make_stack(tmp_path, OPTIONS, images=205, next_images=57)
    begin = time.monotonic(), os.times()
    call(IMPORT, "stack", "images.csv", "pairs.csv", "dem.pool", "-o", "stack", folder=tmp_path)
    end = os.times()
    print("import: %.1f s, of them %.1f s of processor time" % (
        time.monotonic() - begin[0], sum(end[2:4]) - sum(begin[1][2:4])))
    begin = time.monotonic()
    with ENGINE(tmp_path / "stack") as engine:
        _, status, usage = os.wait4(engine.start("--dryrun", "--quiet").pid, 0)
    log = (tmp_path / "state" / "engine.log").read_text()
    assert status == 0 and re.search(r"^run +10032 ", log, re.M), log[-2000:]
    print("dry run: %.1f s, of them %.1f s of processor time, %.0f MB" % (
        time.monotonic() - begin, usage.ru_utime + usage.ru_stime, usage.ru_maxrss / 1e3))
    assert usage.ru_maxrss < 1e6  # kB
    begin = time.monotonic()
    assert call(PROGRAM, "status", "stack", folder=tmp_path).startswith("10032 pairs: 0 done, 0 running, 0 failed, 10032 left")
    print("status: %.1f s" % (time.monotonic() - begin))
