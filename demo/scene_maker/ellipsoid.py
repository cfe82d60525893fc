"""Reference ellipsoids and geodetic coordinates. Angles in radians, lengths in metres, arrays of shape (..., 3)."""

import dataclasses

import numpy as np


@dataclasses.dataclass(frozen=True)
class ELLIPSOID:
    equatorial_radius_m: float
    polar_radius_m: float

    @property
    def eccentricity_squared(self):
        return 1.0 - (self.polar_radius_m / self.equatorial_radius_m) ** 2

    def cartesian(self, longitude_rad, latitude_rad, height_m):
        e2 = self.eccentricity_squared
        sine, cosine = np.sin(latitude_rad), np.cos(latitude_rad)
        normal_m = self.equatorial_radius_m / np.sqrt(1.0 - e2 * sine * sine)
        return np.stack(np.broadcast_arrays((normal_m + height_m) * cosine * np.cos(longitude_rad),
                                            (normal_m + height_m) * cosine * np.sin(longitude_rad),
                                            ((1.0 - e2) * normal_m + height_m) * sine), axis=-1)

    def geodetic(self, point_m):
        """Longitude in -pi..pi, latitude and height; below 1e-6 m from -10 to 1000 km height.

        Bowring's first approximation, refined by the fixed point latitude = atan((z + e2 N sin(latitude)) / p).
        """
        x, y, z = np.moveaxis(np.asarray(point_m, dtype=float), -1, 0)
        a, b, e2 = self.equatorial_radius_m, self.polar_radius_m, self.eccentricity_squared
        p = np.hypot(x, y)
        beta = np.arctan2(z * a, p * b)
        latitude = np.arctan2(z + e2 / (1.0 - e2) * b * np.sin(beta) ** 3, p - e2 * a * np.cos(beta) ** 3)
        for _ in range(4):
            normal_m = a / np.sqrt(1.0 - e2 * np.sin(latitude) ** 2)
            latitude = np.arctan2(z + e2 * normal_m * np.sin(latitude), p)
        normal_m = a / np.sqrt(1.0 - e2 * np.sin(latitude) ** 2)
        # The form without a division by cos(latitude), which vanishes at the poles.
        height_m = p * np.cos(latitude) + z * np.sin(latitude) - a * a / normal_m
        return np.arctan2(y, x), latitude, height_m

    def normal(self, point_m):
        """Outward unit normal, which is also the gradient of the geodetic height."""
        longitude, latitude, _ = self.geodetic(point_m)
        return np.stack([np.cos(latitude) * np.cos(longitude), np.cos(latitude) * np.sin(longitude),
                         np.sin(latitude)], axis=-1)


# Names and axes as a DEM pool's key "ellipsoid_type" selects them.
ELLIPSOIDS = {
    "Airy": ELLIPSOID(6377340.189, 6356034.447),
    "Bessel": ELLIPSOID(6377397.155, 6356078.965),
    "GRS80": ELLIPSOID(6378137.0, 6356752.3141),
    "WGS84": ELLIPSOID(6378137.0, 6356752.315),
}
WGS84 = ELLIPSOIDS["WGS84"]
