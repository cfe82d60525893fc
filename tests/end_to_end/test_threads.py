"""Results and logs with several threads; also run in ThreadSanitizer builds."""

import pytest

from velmora_run import PRODUCTS, products, succeed

SCENE = dict(samples=140, lines=110, shift_factors=(2, 2), earth_factors=(1, 3))


@pytest.mark.parametrize("single_pass", [False, True])
def test_the_number_of_threads_does_not_matter(fresh_scene, single_pass):
    """Byte for byte, also in layover, where many cells far apart claim one pixel."""
    made = []
    for parallel in ("1", "2", "5", "1000"):
        _, folder = fresh_scene(parallel, **SCENE, single_pass=single_pass, incidence_deg=20.0, smoothness=1.7)
        succeed(folder, parallel=parallel)
        made.append(products(folder))
        assert made[-1] == made[0], parallel
    assert len(made[0]) == len(PRODUCTS)
