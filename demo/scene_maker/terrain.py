"""Terrain heights as 16-bit integers."""

import numpy as np

TILE = 4096  # a larger DEM repeats a periodic tile of this size: the spectrum's memory stays bounded


def fractal(rows, columns, seed, low_m, high_m, smoothness, step_m):
    """Spectral synthesis: white noise shaped by the amplitude f^-smoothness, scaled to low..high.

    smoothness 1.5 gives jagged, 2.5 rounded mountains. Heights are rounded to multiples of step_m.
    """
    generator = np.random.default_rng(seed)
    size = (min(TILE, _good_size(rows)), min(TILE, _good_size(columns)))
    spectrum = np.fft.rfft2(generator.standard_normal(size))
    frequency = np.hypot(np.fft.fftfreq(size[0])[:, None] * max(size), np.fft.rfftfreq(size[1])[None, :] * max(size))
    frequency[0, 0] = 1.0
    spectrum /= frequency ** smoothness
    spectrum[0, 0] = 0.0
    tile = np.fft.irfft2(spectrum, size)
    tile = (tile - tile.min()) / (tile.max() - tile.min())
    heights = np.rint((low_m + tile * (high_m - low_m)) / step_m) * step_m
    heights = heights.astype("<i2")
    return np.ascontiguousarray(np.tile(heights, (-(-rows // size[0]), -(-columns // size[1])))[:rows, :columns])


def flat(rows, columns, height_m):
    return np.full((rows, columns), height_m, dtype="<i2")


def _good_size(count):
    """The next multiple of 64: quick transforms, and the wrap-around of the period falls outside the DEM."""
    return -(-(count + count // 4 + 1) // 64) * 64


def interpolate(heights, column, row):
    """Height on the cells' own two triangles, cut along the diagonal from the upper right to the lower left corner."""
    c, r = np.floor(column).astype(int), np.floor(row).astype(int)
    u, v = column - c, row - r
    grid = heights.astype(float)
    a, b, d, e = grid[r, c], grid[r, c + 1], grid[r + 1, c], grid[r + 1, c + 1]
    return np.where(u + v <= 1.0, a + u * (b - a) + v * (d - a), e + (1.0 - u) * (d - e) + (1.0 - v) * (b - e))
