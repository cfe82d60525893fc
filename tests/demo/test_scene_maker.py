"""The scene generator against closed forms, published values and its own geometry read backwards. What the end-to-end
tests hold against the program anyway (motion, grids, files, heights) is not repeated here."""

import math
import os
import sys

import numpy as np
import pytest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "demo"))

from scene_maker import scene  # noqa: E402
from scene_maker.ellipsoid import WGS84  # noqa: E402
from scene_maker.options import SCENE_OPTIONS  # noqa: E402
from scene_maker.radar_geometry import zero_doppler  # noqa: E402

PLACES = [
    dict(),
    dict(latitude_deg=-33.0, longitude_deg=-118.0, pass_direction="ascending", side="left"),
    dict(latitude_deg=85.0, longitude_deg=100.0, pass_direction="ascending"),
    dict(latitude_deg=-85.0, longitude_deg=-40.0),
    dict(latitude_deg=0.05, longitude_deg=179.98, longitudes="signed"),
    dict(latitude_deg=51.5, longitude_deg=0.02, longitudes="positive"),
    dict(latitude_deg=-33.4, longitude_deg=-70.6, utm=True, ellipsoid="Bessel", datum_shift_m=(598.1, 73.7, 418.2),
         datum_rotation_arcsec=(0.2, 0.05, -2.45), datum_scale=1.0000067),
    dict(permanent_scatterer=True, oversampling=2.0, single_pass=True, along_track_m=200.0),
]


@pytest.mark.parametrize("place", PLACES, ids=[str(place) for place in PLACES])
def test_scene_is_where_it_was_asked_for(place):
    options = SCENE_OPTIONS(samples=200, lines=150, terrain="flat", low_m=500.0, **place)
    made = scene.design(options)
    centre = made.ground_points([99.5], [74.5], [500.0])
    longitude, latitude, height = WGS84.geodetic(centre)
    turn = (math.degrees(longitude[0]) - options.longitude_deg + 180.0) % 360.0 - 180.0
    assert abs(turn) < 1e-7 and abs(math.degrees(latitude[0]) - options.latitude_deg) < 1e-7
    assert abs(height[0] - 500.0) < 1e-6
    # Back to time and range, through the equations that the geolocation does not use.
    time_s, range_m = zero_doppler(made.master.orbit, centre, made.master.first_azimuth_time_s)
    assert np.allclose(made.master.pixel(time_s, range_m), [[99.5], [74.5]], atol=1e-5)
    # The terrain lies on the wanted side of the track.
    state = made.master.orbit.state(time_s)
    to_the_right = np.cross(state.velocity_m_s, state.position_m)
    assert np.sum(to_the_right * (centre - state.position_m)) * made.side > 0.0
    assert (state.velocity_m_s[0, 2] > 0.0) == (options.pass_direction == "ascending")
    # The DEM covers the image at both ends of the range of heights.
    for height_m in (-1000.0, 9000.0):
        sample, line = np.meshgrid([0.0, 199.0], [0.0, 149.0])
        column, row, _ = made.grid.grid_coordinates(made.ground_points(sample, line, np.full((2, 2), height_m)))
        assert column.min() > 0 and column.max() < made.grid.columns - 1
        assert row.min() > 0 and row.max() < made.grid.rows - 1


def test_baseline_is_the_one_asked_for():
    made = scene.design(SCENE_OPTIONS(perpendicular_baseline_m=300.0, along_track_m=120.0, single_pass=True))
    time_s = np.array(made.master.orbit.epoch_s)
    master, slave = made.master.orbit.state(time_s), made.slave.orbit.state(time_s)
    difference = slave.position_m - master.position_m
    along = master.velocity_m_s / np.linalg.norm(master.velocity_m_s)
    assert abs(difference @ along - 120.0) < 1.0
    assert abs(np.linalg.norm(difference - (difference @ along) * along) - 300.0) < 1.0
