"""The DEM's map: grid indices to Earth-fixed points and back, for geographic and UTM grids on any listed datum.

UTM by the 6th-order series in the third flattening (Krueger 1912; Karney 2011, eqs. 35 and 36), good to nanometres
within the zone; deliberately another series than one in the squared eccentricity.
"""

import dataclasses
import math

import numpy as np

from .ellipsoid import ELLIPSOIDS

UTM_SCALE = 0.9996
UTM_FALSE_EASTING_M = 500000.0
UTM_FALSE_NORTHING_SOUTH_M = 10000000.0


@dataclasses.dataclass(frozen=True)
class DATUM:
    """To the orbits' frame: scale * rotation @ point + shift."""
    shift_m: np.ndarray = dataclasses.field(default_factory=lambda: np.zeros(3))
    rotation: np.ndarray = dataclasses.field(default_factory=lambda: np.eye(3))
    scale: float = 1.0

    def forward(self, point_m):
        return self.scale * np.einsum("ij,...j->...i", self.rotation, point_m) + self.shift_m

    def inverse(self, point_m):
        return np.einsum("ij,...j->...i", np.linalg.inv(self.rotation), point_m - self.shift_m) / self.scale


def _series(n):
    n2, n3, n4, n5, n6 = n ** 2, n ** 3, n ** 4, n ** 5, n ** 6
    alpha = (n / 2 - 2 * n2 / 3 + 5 * n3 / 16 + 41 * n4 / 180 - 127 * n5 / 288 + 7891 * n6 / 37800,
             13 * n2 / 48 - 3 * n3 / 5 + 557 * n4 / 1440 + 281 * n5 / 630 - 1983433 * n6 / 1935360,
             61 * n3 / 240 - 103 * n4 / 140 + 15061 * n5 / 26880 + 167603 * n6 / 181440,
             49561 * n4 / 161280 - 179 * n5 / 168 + 6601661 * n6 / 7257600,
             34729 * n5 / 80640 - 3418889 * n6 / 1995840,
             212378941 * n6 / 319334400)
    beta = (n / 2 - 2 * n2 / 3 + 37 * n3 / 96 - n4 / 360 - 81 * n5 / 512 + 96199 * n6 / 604800,
            n2 / 48 + n3 / 15 - 437 * n4 / 1440 + 46 * n5 / 105 - 1118711 * n6 / 3870720,
            17 * n3 / 480 - 37 * n4 / 840 - 209 * n5 / 4480 + 5569 * n6 / 90720,
            4397 * n4 / 161280 - 11 * n5 / 504 - 830251 * n6 / 7257600,
            4583 * n5 / 161280 - 108847 * n6 / 3991680,
            20648693 * n6 / 638668800)
    radius_factor = (1.0 + n2 / 4 + n4 / 64 + n6 / 256) / (1.0 + n)
    return alpha, beta, radius_factor


@dataclasses.dataclass(frozen=True)
class UTM:
    ellipsoid: object
    zone: int
    south: bool

    @property
    def central_meridian_rad(self):
        return math.radians(self.zone * 6 - 183)

    def _parameters(self):
        a, b = self.ellipsoid.equatorial_radius_m, self.ellipsoid.polar_radius_m
        alpha, beta, factor = _series((a - b) / (a + b))
        return alpha, beta, UTM_SCALE * a * factor, math.sqrt(self.ellipsoid.eccentricity_squared)

    @property
    def _false_northing_m(self):
        return UTM_FALSE_NORTHING_SOUTH_M if self.south else 0.0

    def forward(self, longitude_rad, latitude_rad):
        """Easting and northing in metres."""
        alpha, _, radius_m, e = self._parameters()
        delta = np.remainder(longitude_rad - self.central_meridian_rad + math.pi, 2.0 * math.pi) - math.pi
        tau = np.tan(latitude_rad)
        sigma = np.sinh(e * np.arctanh(e * tau / np.hypot(1.0, tau)))
        conformal = tau * np.hypot(1.0, sigma) - sigma * np.hypot(1.0, tau)
        xi = np.arctan2(conformal, np.cos(delta))
        eta = np.arcsinh(np.sin(delta) / np.hypot(conformal, np.cos(delta)))
        zeta = xi + 1j * eta
        zeta = zeta + sum(c * np.sin(2 * (k + 1) * zeta) for k, c in enumerate(alpha))
        return UTM_FALSE_EASTING_M + radius_m * zeta.imag, self._false_northing_m + radius_m * zeta.real

    def inverse(self, easting_m, northing_m):
        """Longitude and latitude in radians."""
        _, beta, radius_m, e = self._parameters()
        zeta = ((northing_m - self._false_northing_m) + 1j * (easting_m - UTM_FALSE_EASTING_M)) / radius_m
        zeta = zeta - sum(c * np.sin(2 * (k + 1) * zeta) for k, c in enumerate(beta))
        xi, eta = zeta.real, zeta.imag
        conformal = np.sin(xi) / np.hypot(np.sinh(eta), np.cos(xi))
        tau = conformal
        for _ in range(6):  # Newton on the conformal latitude, Karney 2011, eqs. 19 to 21
            sigma = np.sinh(e * np.arctanh(e * tau / np.hypot(1.0, tau)))
            value = tau * np.hypot(1.0, sigma) - sigma * np.hypot(1.0, tau)
            tau = tau + ((conformal - value) / np.hypot(1.0, value) * (1.0 + (1.0 - e * e) * tau ** 2)
                         / ((1.0 - e * e) * np.hypot(1.0, tau)))
        return self.central_meridian_rad + np.arctan2(np.sinh(eta), np.cos(xi)), np.arctan(tau)


def utm_zone(longitude_deg):
    return int(math.floor((longitude_deg + 180.0) % 360.0 / 6.0)) + 1


@dataclasses.dataclass
class MAP_GRID:
    """Sample (column, row) lies at (left + column dx, upper - row dy): degrees for "GEO", metres for "UTM"."""
    kind: str
    ellipsoid_name: str
    datum: DATUM
    utm: UTM = None
    columns: int = 0
    rows: int = 0
    left: float = 0.0
    upper: float = 0.0
    dx: float = 1.0
    dy: float = 1.0

    @property
    def ellipsoid(self):
        return ELLIPSOIDS[self.ellipsoid_name]

    def map_coordinates(self, point_m, near_x=None):
        """Easting and northing (or degrees) and height of Earth-fixed points. Longitudes are brought within half a turn
        of near_x, so that an area across a date line stays in one piece."""
        longitude, latitude, height_m = self.ellipsoid.geodetic(self.datum.inverse(np.asarray(point_m, dtype=float)))
        if self.kind == "UTM":
            x, y = self.utm.forward(longitude, latitude)
            return x, y, height_m
        x = np.degrees(longitude)
        if near_x is not None:
            x = near_x + np.remainder(x - near_x + 180.0, 360.0) - 180.0
        return x, np.degrees(latitude), height_m

    def grid_coordinates(self, point_m):
        """Fractional column, row and height of Earth-fixed points."""
        x, y, height_m = self.map_coordinates(point_m, self.left + 0.5 * self.columns * self.dx)
        return (x - self.left) / self.dx, (self.upper - y) / self.dy, height_m

    def earth_point(self, column, row, height_m):
        x, y = self.left + np.asarray(column) * self.dx, self.upper - np.asarray(row) * self.dy
        if self.kind == "UTM":
            longitude, latitude = self.utm.inverse(x, y)
        else:
            longitude, latitude = np.radians(x), np.radians(y)
        return self.datum.forward(self.ellipsoid.cartesian(longitude, latitude, height_m))
