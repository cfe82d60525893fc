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
