"""A satellite on a Kepler ellipse, seen from the rotating Earth.

Frame: Earth-fixed, x to Greenwich, z to the north pole; metres, seconds. Undisturbed two-body motion: over the minutes
of an image the real orbit differs from some ellipse of this kind by centimetres only.
"""

import dataclasses
import math

import numpy as np

EARTH_GRAVITY_M3_S2 = 3.986004418e14
EARTH_ROTATION_RAD_S = 7.292115e-5


@dataclasses.dataclass(frozen=True)
class STATE:
    """Shape (..., 3) each. The velocity includes the frame's rotation; the acceleration also Coriolis and centrifugal."""
    position_m: np.ndarray
    velocity_m_s: np.ndarray
    acceleration_m_s2: np.ndarray


@dataclasses.dataclass(frozen=True)
class KEPLER_ORBIT:
    semi_major_axis_m: float
    eccentricity: float
    inclination_rad: float
    perigee_rad: float              # argument of perigee
    epoch_s: float                  # on the orbit's own time axis
    argument_of_latitude_rad: float  # at the epoch: perigee + true anomaly
    node_longitude_rad: float        # Earth-fixed longitude of the ascending node at the epoch

    def state(self, time_s):
        elapsed_s = np.asarray(time_s, dtype=float) - self.epoch_s
        position, velocity = self._in_orbital_plane(elapsed_s)
        acceleration = -EARTH_GRAVITY_M3_S2 * position / np.sum(position ** 2, axis=-1, keepdims=True) ** 1.5
        to_earth = self._plane_to_earth(elapsed_s)
        position, velocity, acceleration = (np.einsum("...ij,...j->...i", to_earth, v)
                                            for v in (position, velocity, acceleration))
        rotation = np.array([0.0, 0.0, EARTH_ROTATION_RAD_S])
        velocity = velocity - np.cross(rotation, position)
        acceleration = (acceleration - 2.0 * np.cross(rotation, velocity)
                        - np.cross(rotation, np.cross(rotation, position)))
        return STATE(position, velocity, acceleration)

    def _in_orbital_plane(self, elapsed_s):
        """Inertial position and velocity; first axis towards the ascending node, third along the angular momentum."""
        a, e = self.semi_major_axis_m, self.eccentricity
        motion_rad_s = math.sqrt(EARTH_GRAVITY_M3_S2 / a ** 3)
        mean_anomaly = self._mean_anomaly_at_epoch() + motion_rad_s * elapsed_s
        eccentric = mean_anomaly + e * np.sin(mean_anomaly)
        for _ in range(8):  # Newton on Kepler's equation; e is small, so this is far past convergence
            eccentric = eccentric - (eccentric - e * np.sin(eccentric) - mean_anomaly) / (1.0 - e * np.cos(eccentric))
        shape = math.sqrt(1.0 - e * e)
        rate = motion_rad_s / (1.0 - e * np.cos(eccentric))
        along, across = a * (np.cos(eccentric) - e), a * shape * np.sin(eccentric)
        along_rate, across_rate = -a * np.sin(eccentric) * rate, a * shape * np.cos(eccentric) * rate
        cosine, sine = math.cos(self.perigee_rad), math.sin(self.perigee_rad)
        zero = np.zeros_like(along)
        return (np.stack([cosine * along - sine * across, sine * along + cosine * across, zero], axis=-1),
                np.stack([cosine * along_rate - sine * across_rate, sine * along_rate + cosine * across_rate, zero],
                         axis=-1))

    def _mean_anomaly_at_epoch(self):
        true_anomaly = self.argument_of_latitude_rad - self.perigee_rad
        e = self.eccentricity
        eccentric = math.atan2(math.sqrt(1.0 - e * e) * math.sin(true_anomaly), e + math.cos(true_anomaly))
        return eccentric - e * math.sin(eccentric)

    def argument_of_latitude_at(self, time_s):
        position, _ = self._in_orbital_plane(np.asarray(time_s - self.epoch_s))
        return float(np.arctan2(position[1], position[0]))

    def node_longitude_at(self, time_s):
        return self.node_longitude_rad - EARTH_ROTATION_RAD_S * (time_s - self.epoch_s)

    def _plane_to_earth(self, elapsed_s):
        node = self.node_longitude_at(self.epoch_s + elapsed_s)
        cosine, sine = np.cos(node), np.sin(node)
        ci, si = math.cos(self.inclination_rad), math.sin(self.inclination_rad)
        zero, one = np.zeros_like(node), np.ones_like(node)
        return np.stack([np.stack([cosine, -sine * ci, sine * si], axis=-1),
                         np.stack([sine, cosine * ci, -cosine * si], axis=-1),
                         np.stack([zero, si * one, ci * one], axis=-1)], axis=-2)
