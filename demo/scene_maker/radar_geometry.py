"""Zero-Doppler geometry: ground point to (time, range) and back. Earth-fixed frame, metres, seconds; one-way ranges."""

import numpy as np

SPEED_OF_LIGHT_M_S = 299792458.0
RIGHT, LEFT = 1.0, -1.0


def zero_doppler(orbit, points_m, first_guess_s):
    """Times and ranges at which V . (P - S) = 0, for points of shape (..., 3). Newton's method; raises ValueError when
    it does not settle to 1e-11 s."""
    points_m = np.asarray(points_m, dtype=float)
    time_s = np.broadcast_to(np.asarray(first_guess_s, dtype=float), points_m.shape[:-1]).copy()
    for _ in range(30):
        state = orbit.state(time_s)
        line_of_sight = state.position_m - points_m
        doppler = np.sum(state.velocity_m_s * line_of_sight, axis=-1)
        slope = np.sum(state.acceleration_m_s2 * line_of_sight + state.velocity_m_s ** 2, axis=-1)
        step_s = -doppler / slope
        time_s = time_s + step_s
        if np.all(np.abs(step_s) < 1e-11):
            return time_s, np.linalg.norm(orbit.state(time_s).position_m - points_m, axis=-1)
    raise ValueError("zero-Doppler time: no convergence, largest step %g s" % np.max(np.abs(step_s)))


def geolocate(state, range_m, side, height_m, ellipsoid):
    """The point at this slant range, at zero Doppler, on this side, at this geodetic height.

    Newton on (|P - S|^2 - R^2, V . (P - S), height(P) - h), started on the sphere through the sub-satellite point.
    Raises ValueError when the sphere of this range does not reach the height.
    """
    satellite, velocity = state.position_m, state.velocity_m_s
    distance_m = np.linalg.norm(satellite, axis=-1)
    down = -satellite / distance_m[..., None]
    across = np.cross(down, velocity)
    across /= np.linalg.norm(across, axis=-1, keepdims=True)
    _, _, satellite_height_m = ellipsoid.geodetic(satellite)
    radius_m = distance_m - satellite_height_m + height_m
    depth_m = (distance_m ** 2 + range_m ** 2 - radius_m ** 2) / (2.0 * distance_m)
    squared = range_m ** 2 - depth_m ** 2
    if np.any(squared <= 0.0):
        raise ValueError("geolocation: a slant range of %.0f m does not reach the ground" % np.min(range_m))
    point = satellite + depth_m[..., None] * down + side * np.sqrt(squared)[..., None] * across
    for _ in range(30):
        line_of_sight = point - satellite
        _, _, height = ellipsoid.geodetic(point)
        residual = np.stack(np.broadcast_arrays(np.sum(line_of_sight ** 2, axis=-1) - np.square(range_m),
                                                np.sum(velocity * line_of_sight, axis=-1), height - height_m), axis=-1)
        jacobian = np.stack(np.broadcast_arrays(2.0 * line_of_sight, velocity, ellipsoid.normal(point)), axis=-2)
        step = np.linalg.solve(jacobian, residual[..., None])[..., 0]
        point = point - step
        if np.max(np.abs(step)) < 1e-7:
            return point
    raise ValueError("geolocation: no convergence, largest step %g m" % np.max(np.abs(step)))


def slant_range_at_incidence(satellite_radius_m, ground_radius_m, incidence_rad):
    """Law of cosines in the triangle Earth's centre, satellite, ground point."""
    side = ground_radius_m * np.cos(incidence_rad)
    return np.sqrt(side * side + satellite_radius_m ** 2 - ground_radius_m ** 2) - side
