"""Orbits and image start times that put a scene where its options ask for it."""

import dataclasses
import math

import numpy as np

from .ellipsoid import WGS84
from .kepler import EARTH_ROTATION_RAD_S, KEPLER_ORBIT
from .radar_geometry import (LEFT, RIGHT, SPEED_OF_LIGHT_M_S, geolocate, slant_range_at_incidence, zero_doppler)

STATE_VECTOR_STEP_S = 10.0
FIRST_STATE_VECTOR_S = 3.5
REPEAT_PASS_LATER_S = 11.75  # the slave's own clock shows another time of day when it passes
# The slave image starts off by some lines and samples, as two real images do.
SLAVE_START_LINES, SLAVE_START_SAMPLES = 3.25, -7.5


@dataclasses.dataclass(frozen=True)
class ACQUISITION:
    orbit: KEPLER_ORBIT
    state_vector_times_s: np.ndarray
    first_azimuth_time_s: float
    first_range_time_s: float  # two-way
    prf_hz: float              # with oversampling
    range_sampling_hz: float   # with oversampling
    radar_frequency_hz: float

    def azimuth_time_s(self, line):
        return self.first_azimuth_time_s + np.asarray(line, dtype=float) / self.prf_hz

    def range_m(self, sample):
        two_way_s = self.first_range_time_s + np.asarray(sample, dtype=float) / self.range_sampling_hz
        return 0.5 * SPEED_OF_LIGHT_M_S * two_way_s

    def pixel(self, time_s, range_m):
        """Fractional sample and line."""
        return ((2.0 * range_m / SPEED_OF_LIGHT_M_S - self.first_range_time_s) * self.range_sampling_hz,
                (time_s - self.first_azimuth_time_s) * self.prf_hz)


def place(options):
    """Master and slave acquisition of the scene."""
    side = LEFT if options.side == "left" else RIGHT
    centre = WGS84.cartesian(math.radians(options.longitude_deg), math.radians(options.latitude_deg),
                             0.5 * (options.low_m + options.high_m) if options.terrain == "fractal" else options.low_m)
    duration_s = options.lines / (options.prf_hz * options.effective_oversampling)
    count = options.state_vectors or max(16, math.ceil(duration_s / STATE_VECTOR_STEP_S) + 12)
    times_s = FIRST_STATE_VECTOR_S + STATE_VECTOR_STEP_S * np.arange(count)
    middle_s = 0.5 * (times_s[0] + times_s[-1])
    orbit = _orbit_seeing(centre, side, middle_s, options)
    master = _acquisition(options, orbit, times_s, centre, middle_s, options.radar_frequency_hz, 0.0, 0.0)
    if options.slave_is_master:
        return master, master
    later_s = 0.0 if options.single_pass else REPEAT_PASS_LATER_S
    slave_orbit = _displaced(orbit, centre, middle_s + later_s, options)
    slave = _acquisition(options, slave_orbit, times_s + later_s, centre, middle_s + later_s,
                         options.slave_frequency_hz, SLAVE_START_LINES, SLAVE_START_SAMPLES)
    return master, slave


def _acquisition(options, orbit, times_s, centre, guess_s, frequency_hz, lines_off, samples_off):
    prf_hz = options.prf_hz * options.effective_oversampling
    range_sampling_hz = options.range_sampling_hz * options.effective_oversampling
    time_s, range_m = zero_doppler(orbit, centre, guess_s)
    return ACQUISITION(orbit, times_s, float(time_s) - (0.5 * (options.lines - 1) + lines_off) / prf_hz,
                       2.0 * float(range_m) / SPEED_OF_LIGHT_M_S
                       - (0.5 * (options.samples - 1) + samples_off) / range_sampling_hz,
                       prf_hz, range_sampling_hz, frequency_hz)


def _orbit_seeing(centre, side, middle_s, options):
    """The orbit that sees the point at zero Doppler, at the wanted incidence, at middle_s.

    The latitude of the point seen does not depend on the node: find the moment of a trial orbit's revolution at which it
    sees the right latitude, then turn the node to the right longitude.
    """
    inclinations = (options.inclination_deg,) if options.inclination_deg else (97.5, 90.0)
    for inclination_deg in inclinations:
        trial = KEPLER_ORBIT(WGS84.equatorial_radius_m + options.altitude_m, 0.001, math.radians(inclination_deg),
                             math.radians(90.0), 0.0, 0.0, 0.0)
        moment_s = _moment_of_latitude(trial, centre, side, options)
        if moment_s is not None:
            break
    else:
        raise ValueError("no %s orbit of inclination %s deg sees latitude %g deg to its %s" %
                         (options.pass_direction, " or ".join("%g" % i for i in inclinations), options.latitude_deg,
                          options.side))
    seen_longitude, _, _ = WGS84.geodetic(_seen_point(trial, moment_s, centre, side, options))
    wanted_longitude, _, _ = WGS84.geodetic(centre)
    turned = dataclasses.replace(trial, epoch_s=middle_s - moment_s,
                                 node_longitude_rad=float(wanted_longitude - seen_longitude))
    return _with_epoch(turned, middle_s)


def _moment_of_latitude(trial, centre, side, options):
    _, wanted, _ = WGS84.geodetic(centre)
    times_s = np.linspace(0.0, 6600.0, 1321)  # a little more than a revolution, so that no crossing is cut

    def excess(time_s):
        return WGS84.geodetic(_seen_point(trial, time_s, centre, side, options))[1] - wanted

    excesses = excess(times_s)
    climbing = trial.state(times_s).velocity_m_s[:, 2] > 0.0
    crossings = np.nonzero((excesses[:-1] * excesses[1:] <= 0.0)
                           & (climbing[:-1] == (options.pass_direction == "ascending")))[0]
    if len(crossings) == 0:
        return None
    low_s, high_s = times_s[crossings[0]], times_s[crossings[0] + 1]
    for _ in range(60):
        half_s = 0.5 * (low_s + high_s)
        if excess(np.array(half_s)) * excess(np.array(low_s)) <= 0.0:
            high_s = half_s
        else:
            low_s = half_s
    return np.array(low_s)


def _seen_point(orbit, time_s, centre, side, options):
    state = orbit.state(time_s)
    range_m = slant_range_at_incidence(np.linalg.norm(state.position_m, axis=-1), np.linalg.norm(centre),
                                       math.radians(options.incidence_deg))
    return geolocate(state, range_m, side, WGS84.geodetic(centre)[2], WGS84)


def _with_epoch(orbit, epoch_s):
    """The same orbit, counted from another moment."""
    return dataclasses.replace(orbit, epoch_s=epoch_s, argument_of_latitude_rad=orbit.argument_of_latitude_at(epoch_s),
                               node_longitude_rad=orbit.node_longitude_at(epoch_s))


def _displaced(orbit, centre, epoch_s, options):
    """The slave's orbit: at the scene, beside the master by the perpendicular baseline and ahead along track."""
    state = orbit.state(np.asarray(orbit.epoch_s))
    along = state.velocity_m_s / np.linalg.norm(state.velocity_m_s)
    perpendicular = np.cross(along, centre - state.position_m)
    offset = (options.perpendicular_baseline_m * perpendicular / np.linalg.norm(perpendicular)
              + options.along_track_m * along)
    # The elements move the satellite up, in its own plane and out of it; that plane belongs to the inertial velocity.
    radius_m = np.linalg.norm(state.position_m)
    up = state.position_m / radius_m
    normal = np.cross(up, state.velocity_m_s + np.cross([0.0, 0.0, EARTH_ROTATION_RAD_S], state.position_m))
    normal /= np.linalg.norm(normal)
    tilt = float(offset @ normal) / radius_m
    ahead = float(offset @ np.cross(normal, up)) / radius_m
    u = orbit.argument_of_latitude_rad
    node_change = -tilt * math.cos(u) / math.sin(orbit.inclination_rad)
    return dataclasses.replace(
        orbit, epoch_s=epoch_s, semi_major_axis_m=orbit.semi_major_axis_m + float(offset @ up),
        inclination_rad=orbit.inclination_rad + tilt * math.sin(u),
        node_longitude_rad=orbit.node_longitude_rad + node_change,
        argument_of_latitude_rad=u + ahead - node_change * math.cos(orbit.inclination_rad))
