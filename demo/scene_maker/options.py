"""What a scene can be asked for. Every field has a default; the defaults are the demo scene."""

import dataclasses

PRODUCT_FILES = {"phase": ("SIMU_PHASE",), "shifts": ("RG_COREG", "AZ_COREG"),
                 "earth": ("X_EARTH", "Y_EARTH", "Z_EARTH"), "height": ("H_EARTH",)}


@dataclasses.dataclass(frozen=True)
class SCENE_OPTIONS:
    # Image
    samples: int = 600
    lines: int = 500
    seed: int = 1
    side: str = "right"
    permanent_scatterer: bool = False
    oversampling: float = 1.0  # in permanent-scatterer mode; the rates below are those before oversampling
    prf_hz: float = 2000.0
    range_sampling_hz: float = 60e6
    radar_frequency_hz: float = 9.65e9
    slave_radar_frequency_hz: float = 0.0  # 0: the master's
    azimuth_bandwidth_hz: float = 1500.0
    range_time_shift_s: float = 0.0

    # Place and orbits
    latitude_deg: float = 46.3
    longitude_deg: float = 7.6
    pass_direction: str = "descending"
    incidence_deg: float = 35.0
    altitude_m: float = 515e3
    inclination_deg: float = 0.0  # 0: 97.5, or a polar orbit where that one does not reach
    perpendicular_baseline_m: float = 150.0
    along_track_m: float = 0.0  # the slave flies this much ahead of the master
    slave_is_master: bool = False
    single_pass: bool = False
    correction_coefficients: tuple = (1e-7, 2e-4)  # of the single-pass azimuth-shift polynomial
    orbit_representation: str = "orbit_pool_double_utc"
    orbit_interpolation: str = "hermite_0_8"
    state_vectors: int = 0  # 0: enough to reach 50 s beyond the image

    # Terrain and its grid
    terrain: str = "fractal"  # or "flat", at low_m
    low_m: float = 300.0
    high_m: float = 2300.0
    smoothness: float = 2.0
    height_step_m: int = 1
    dem_spacing_m: float = 30.0
    dem_spacing_arcsec: float = 0.0  # geographic grids: overrides dem_spacing_m
    dem_margin_m: float = 300.0      # around the area that heights from cover_low_m to cover_high_m need
    cover_low_m: float = -1000.0
    cover_high_m: float = 9000.0
    dem_correction_m: float = 0.0
    longitudes: str = "signed"       # -180..180, or "positive": 0..360
    utm: bool = False
    utm_zone: int = 0                # 0: the zone of the scene's centre
    ellipsoid: str = "WGS84"
    datum_shift_m: tuple = ()        # three values
    datum_rotation_arcsec: tuple = ()  # small angles about x, y, z
    datum_scale: float = 1.0

    # Products
    products: tuple = ("phase", "shifts", "earth", "height")
    relative_shifts: bool = False
    shift_factors: tuple = (1, 1)    # range, azimuth
    earth_factors: tuple = (1, 1)
    geocoding_factors: tuple = ()    # empty: no such keys
    invalid_value: str = ""
    dem_valid: str = ""

    def __post_init__(self):
        choices = (("side", ("right", "left")), ("pass_direction", ("ascending", "descending")),
                   ("terrain", ("fractal", "flat")), ("longitudes", ("signed", "positive")))
        for name, allowed in choices:
            if getattr(self, name) not in allowed:
                raise ValueError("%s is %r, not one of %s" % (name, getattr(self, name), ", ".join(allowed)))
        if self.samples < 1 or self.lines < 1:
            raise ValueError("an image of %d x %d pixels" % (self.samples, self.lines))
        if not 10.0 <= self.incidence_deg <= 60.0:
            raise ValueError("incidence_deg is %g, outside 10..60" % self.incidence_deg)
        unknown = set(self.products) - set(PRODUCT_FILES)
        if unknown:
            raise ValueError("unknown products: %s" % ", ".join(sorted(unknown)))

    @property
    def effective_oversampling(self):
        return self.oversampling if self.permanent_scatterer else 1.0

    @property
    def slave_frequency_hz(self):
        return self.slave_radar_frequency_hz or self.radar_frequency_hz

    @property
    def extension(self):
        """Samples and lines by which sub-sampled products enlarge the simulated area."""
        shift, earth, geocoding = ([0 if factor == 1 else factor for factor in factors] or [0, 0]
                                   for factors in (self.shift_factors, self.earth_factors, self.geocoding_factors))
        if any(shift) or any(earth):
            if any(geocoding):
                return tuple(e + s + g for e, s, g in zip(earth, shift, geocoding))
            return tuple(max(s, e) for s, e in zip(shift, earth))
        return tuple(geocoding)
