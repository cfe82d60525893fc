"""Results and logs with several threads; also run in ThreadSanitizer builds."""

import numpy as np
import pytest

from velmora_run import succeed

SCENE = dict(samples=140, lines=110, shift_factors=(2, 2), earth_factors=(1, 3))
PRODUCTS = ("SIMU_PHASE", "RG_COREG", "AZ_COREG", "X_EARTH", "Y_EARTH", "Z_EARTH", "H_EARTH")


@pytest.mark.parametrize("single_pass", [False, True])
def test_the_number_of_threads_does_not_matter(fresh_scene, single_pass):
    """Byte for byte, also in layover, where many cells far apart claim one pixel."""
    runs = {}
    for parallel in ("1", "2", "5", "1000"):
        _, folder = fresh_scene(parallel, **SCENE, single_pass=single_pass, incidence_deg=20.0, smoothness=1.7)
        runs[parallel] = succeed(folder, parallel=parallel)
    for name in PRODUCTS:
        for parallel in ("2", "5", "1000"):
            assert np.array_equal(runs["1"].product(name), runs[parallel].product(name)), (name, parallel)


def test_each_thread_tells_its_rows_at_level_trace(fresh_scene):
    _, folder = fresh_scene(**SCENE)
    lines = succeed(folder, "-lfl", "TRACE", parallel="3").lines("TRACE")
    blocks = [tuple(int(word) for word in line.split() if word.isdigit()) for line in lines
              if line.startswith("   - thread nr: ")]
    ends = [int(line.rsplit(None, 1)[1]) for line in lines if line.startswith("   - end of thread nr: ")]
    assert len(blocks) == len(ends) and sorted(number for number, _, _ in blocks) == sorted(ends)
    # Several loops run: in each, the blocks follow each other without a gap and differ by one row at most.
    loops = {}
    for number, start, length in blocks:
        loops.setdefault(number, []).append((start, length))
    assert sorted(loops) == [0, 1, 2] and len({len(blocks) for blocks in loops.values()}) == 1
    for first, second, third in zip(loops[0], loops[1], loops[2]):
        assert first[0] + first[1] == second[0] and second[0] + second[1] == third[0]
        assert first[1] >= second[1] >= third[1] >= first[1] - 1
