"""What the products of a scene have to be, computed pixel by pixel from closed-form orbits.

The program goes forward, from DEM cells to pixels; this goes backward: from a pixel's time and range and its height to
the ground point, and from there to the slave. Only the height is taken from a product, and that one is held against the
DEM at the point found. Two ways that share neither code nor direction.
"""

import numpy as np

import velmora_run  # noqa: F401  (makes scene_maker importable)

from scene_maker import terrain
from scene_maker.radar_geometry import SPEED_OF_LIGHT_M_S, geolocate, zero_doppler


def ulp(values):
    return np.spacing(np.abs(np.asarray(values, dtype=np.float32))).astype(float)


def ground_points(scene, sample, line, height_m):
    """Earth-fixed points seen at these pixels, at these heights above the DEM's own ellipsoid."""
    state = scene.master.orbit.state(scene.master.azimuth_time_s(line))
    return geolocate(state, scene.master.range_m(sample), scene.side, np.asarray(height_m, dtype=float), _SURFACE(scene.grid))


class _SURFACE:
    """The DEM's heights, as the geolocation wants them: height of an Earth-fixed point and its gradient."""

    def __init__(self, grid):
        self._grid = grid

    def geodetic(self, point_m):
        return self._grid.ellipsoid.geodetic(self._grid.datum.inverse(np.asarray(point_m, dtype=float)))

    def normal(self, point_m):
        datum = self._grid.datum
        normal = self._grid.ellipsoid.normal(datum.inverse(np.asarray(point_m, dtype=float)))
        return np.einsum("ij,...j->...i", datum.rotation, normal) / datum.scale


def slave_view(scene, points_m):
    """Time and range at which the slave sees the points; for a single-pass pair its equivalent ones."""
    slave, master = scene.slave, scene.master
    time_s, range_m = zero_doppler(slave.orbit, points_m, slave.first_azimuth_time_s)
    if not scene.options.single_pass:
        return time_s, range_m
    master_time_s, master_range_m = zero_doppler(master.orbit, points_m, master.first_azimuth_time_s)
    receive_s, travel_s = _shortest_travel(scene, points_m, 0.5 * (time_s + master_time_s))
    excess_s = travel_s - master.first_range_time_s
    correction_s = sum(c * excess_s ** k for k, c in enumerate(scene.options.correction_coefficients))
    return master_range_m / SPEED_OF_LIGHT_M_S + receive_s - travel_s + correction_s, 0.5 * SPEED_OF_LIGHT_M_S * travel_s


def _shortest_travel(scene, points_m, receive_s):
    """Receive time and duration of the shortest way transmitter - point - receiver, by Newton on central differences."""

    def travel(time_s):
        back_s = np.linalg.norm(scene.slave.orbit.state(time_s).position_m - points_m, axis=-1) / SPEED_OF_LIGHT_M_S
        total_s = 2.0 * back_s
        for _ in range(6):  # contracts by speed / c, about 2e-5, a step
            transmitter = scene.master.orbit.state(time_s - total_s).position_m
            total_s = np.linalg.norm(transmitter - points_m, axis=-1) / SPEED_OF_LIGHT_M_S + back_s
        return total_s

    step_s = 0.05
    for _ in range(6):
        before, now, after = travel(receive_s - step_s), travel(receive_s), travel(receive_s + step_s)
        receive_s = receive_s - 0.5 * step_s * (after - before) / (after - 2.0 * now + before)
    return receive_s, travel(receive_s)


def expected(scene, sample, line, height_m):
    """Point, phase and slave pixel of master pixels whose height is known."""
    points_m = ground_points(scene, sample, line, height_m)
    slave_time_s, slave_range_m = slave_view(scene, points_m)
    master_wavelength_m = SPEED_OF_LIGHT_M_S / scene.master.radar_frequency_hz
    slave_wavelength_m = SPEED_OF_LIGHT_M_S / scene.slave.radar_frequency_hz
    phase_rad = -4.0 * np.pi * (scene.master.range_m(sample) / master_wavelength_m - slave_range_m / slave_wavelength_m)
    slave_sample, slave_line = scene.slave.pixel(slave_time_s, slave_range_m)
    return points_m, phase_rad, slave_sample, slave_line


def dem_heights(scene, points_m):
    column, row, _ = scene.grid.grid_coordinates(points_m)
    return terrain.interpolate(scene.heights, column, row) + scene.options.dem_correction_m


def share_over(difference, tolerance):
    return float(np.mean(~(np.abs(difference) <= tolerance)))
