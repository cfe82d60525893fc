"""Puts a scene together and writes it: orbits, image, DEM and every file that a run needs."""

import dataclasses
import math
import os

import numpy as np

from . import pool_file, raster, terrain, time_text
from .ellipsoid import WGS84
from .map_grid import DATUM, MAP_GRID, UTM, utm_zone
from .options import PRODUCT_FILES, SCENE_OPTIONS
from .placement import ACQUISITION, place
from .radar_geometry import LEFT, RIGHT, geolocate, zero_doppler

EDGE_M, EDGE_LINES = 60.0, 12  # the area that the program visits reaches this far beyond the first and last line


@dataclasses.dataclass
class SCENE:
    """A scene with its truth: closed-form orbits, the DEM and its map."""
    options: SCENE_OPTIONS
    master: ACQUISITION
    slave: ACQUISITION
    grid: MAP_GRID
    heights: np.ndarray

    @property
    def side(self):
        return LEFT if self.options.side == "left" else RIGHT

    @property
    def simulated_size(self):
        """Samples and lines, with the extension."""
        return (self.options.samples + self.options.extension[0], self.options.lines + self.options.extension[1])

    def ground_points(self, sample, line, height_m):
        """Earth-fixed points that the master sees at these pixels, at heights above WGS84."""
        state = self.master.orbit.state(self.master.azimuth_time_s(line))
        return geolocate(state, self.master.range_m(sample), self.side, np.asarray(height_m, dtype=float), WGS84)


def design(options):
    """The scene of these options, without writing it."""
    master, slave = place(options)
    scene = SCENE(options, master, slave, _empty_grid(options), np.zeros((0, 0), dtype="<i2"))
    _cover(scene)
    rows, columns = scene.grid.rows, scene.grid.columns
    if options.terrain == "flat":
        scene.heights = terrain.flat(rows, columns, options.low_m)
    else:
        scene.heights = terrain.fractal(rows, columns, options.seed, options.low_m, options.high_m, options.smoothness,
                                        options.height_step_m)
    return scene


def make_scene(options, folder):
    """Designs the scene and writes it into the folder, which is created when it is missing."""
    scene = design(options)
    write(scene, folder)
    return scene


def describe(scene):
    """A few lines for the user."""
    options = scene.options
    half = np.array([0.5 * (options.samples - 1)]), np.array([0.5 * (options.lines - 1)])
    centre_m = scene.ground_points(*half, [0.5 * (float(scene.heights.min()) + float(scene.heights.max()))])
    master_s, range_m = zero_doppler(scene.master.orbit, centre_m, scene.master.first_azimuth_time_s)
    slave_s, slave_range_m = zero_doppler(scene.slave.orbit, centre_m, scene.slave.first_azimuth_time_s)
    master, slave = scene.master.orbit.state(master_s), scene.slave.orbit.state(slave_s)
    baseline = (slave.position_m - master.position_m)[0]
    along = master.velocity_m_s[0] / np.linalg.norm(master.velocity_m_s[0])
    parallel_m = float(range_m[0] - slave_range_m[0])
    across_m = math.sqrt(max(0.0, float(baseline @ baseline) - float(baseline @ along) ** 2 - parallel_m ** 2))
    return ["image %d x %d pixels (range x azimuth), %s pass, %s looking, centre %.4f N %.4f E" %
            (options.samples, options.lines, options.pass_direction, options.side, options.latitude_deg,
             options.longitude_deg),
            "DEM %d x %d samples, %s grid, heights %d..%d m" %
            (scene.grid.columns, scene.grid.rows, scene.grid.kind, scene.heights.min(), scene.heights.max()),
            "slant range %.0f km, perpendicular baseline about %.0f m" % (range_m[0] / 1e3, across_m)]


# --- the DEM's map

def _empty_grid(options):
    shift = np.array(options.datum_shift_m, dtype=float) if options.datum_shift_m else np.zeros(3)
    datum = DATUM(shift, _rotation(options.datum_rotation_arcsec), options.datum_scale)
    grid = MAP_GRID("UTM" if options.utm else "GEO", options.ellipsoid, datum)
    if options.utm:
        grid.utm = UTM(grid.ellipsoid, options.utm_zone or utm_zone(options.longitude_deg), options.latitude_deg < 0.0)
        grid.dx = grid.dy = options.dem_spacing_m
    elif options.dem_spacing_arcsec:
        grid.dx = grid.dy = options.dem_spacing_arcsec / 3600.0
    else:
        grid.dy = math.degrees(options.dem_spacing_m / WGS84.equatorial_radius_m)
        grid.dx = grid.dy / math.cos(math.radians(options.latitude_deg))
    return grid


def _rotation(angles_arcsec):
    """Exactly orthonormal, so that its inverse is its transpose."""
    x, y, z = (math.radians(angle / 3600.0) for angle in angles_arcsec) if angles_arcsec else (0.0, 0.0, 0.0)
    about_x = np.array([[1, 0, 0], [0, math.cos(x), -math.sin(x)], [0, math.sin(x), math.cos(x)]])
    about_y = np.array([[math.cos(y), 0, math.sin(y)], [0, 1, 0], [-math.sin(y), 0, math.cos(y)]])
    about_z = np.array([[math.cos(z), -math.sin(z), 0], [math.sin(z), math.cos(z), 0], [0, 0, 1]])
    return about_z @ about_y @ about_x


def _cover(scene):
    """Sets the grid's corner and size so that it holds the scene at all heights it has to cover."""
    options, grid = scene.options, scene.grid
    x, y = _footprint(scene)
    degrees_m = 1.0 if options.utm else math.radians(1.0) * WGS84.equatorial_radius_m
    margin_y = options.dem_margin_m / degrees_m
    margin_x = margin_y if options.utm else margin_y / math.cos(math.radians(options.latitude_deg))
    left = math.floor((x.min() - margin_x) / grid.dx)
    upper = math.ceil((y.max() + margin_y) / grid.dy)
    grid.columns = math.ceil((x.max() + margin_x) / grid.dx) - left + 1
    grid.rows = upper - math.floor((y.min() - margin_y) / grid.dy) + 1
    grid.left, grid.upper = left * grid.dx, upper * grid.dy
    if not options.utm:
        if grid.upper > 90.0 or grid.upper - grid.rows * grid.dy < -90.0:
            raise ValueError("the DEM of a scene at latitude %g deg reaches over a pole" % options.latitude_deg)
        grid.left = _as_written(grid.left, options.longitudes)


def _footprint(scene):
    line_m = np.linalg.norm(scene.master.orbit.state(scene.master.first_azimuth_time_s).velocity_m_s)
    edge_lines = EDGE_LINES + EDGE_M / (0.85 * line_m / scene.master.prf_hz)  # ground speed: about 0.9 of the orbital one
    samples, lines = scene.simulated_size
    sample, line, height_m = np.meshgrid([0.0, samples - 1.0], np.linspace(-edge_lines, lines - 1 + edge_lines, 15),
                                         np.linspace(scene.options.cover_low_m, scene.options.cover_high_m, 11))
    points_m = scene.ground_points(sample.ravel(), line.ravel(), height_m.ravel())
    return scene.grid.map_coordinates(points_m, scene.options.longitude_deg)[:2]


def _as_written(longitude_deg, style):
    if style == "positive":
        return longitude_deg % 360.0
    return (longitude_deg + 180.0) % 360.0 - 180.0


# --- files

def write(scene, folder):
    os.makedirs(folder, exist_ok=True)
    _write_acquisition(scene, scene.master, "master acquisition", 0, os.path.join(folder, "master.pool"), False)
    _write_acquisition(scene, scene.slave, "slave acquisition",
                       0 if scene.options.single_pass or scene.options.slave_is_master else 11,
                       os.path.join(folder, "slave.pool"), True)
    _write_pair(scene, os.path.join(folder, "insar.pool"))
    write_dem(scene, folder)
    with open(os.path.join(folder, "log.pool"), "w", encoding="ascii") as file:
        file.write("# log\n")
    _write_control_file(scene.options, os.path.join(folder, "scene.pcf"))


def write_stack_image(scene, acquisition, days_later, path):
    """A pool that serves as master and as slave, in the folders that velmora-import makes."""
    _write_acquisition(scene, acquisition, "acquisition", days_later, path, False, True)


def write_dem(scene, folder):
    _write_dem_pool(scene, os.path.join(folder, "dem.pool"))
    raster.write_int16(os.path.join(folder, "dem.ras"), scene.heights)


def _write_acquisition(scene, acquisition, comment, days_later, path, is_slave, is_both=False):
    options = scene.options
    pool = pool_file.POOL_WRITER(comment)
    axis = time_text.axis(options.orbit_representation.rsplit("_", 1)[1], days_later)
    pool.text("orbit_representation", options.orbit_representation)
    pool.text("orbit_interpolation", options.orbit_interpolation)
    pool.text("orbit_param_key", "state_vector_times")
    pool.text("orbit_value_key", "state_vector_positions")
    pool.text("orbit_velocity_key", "state_vector_velocities")
    pool.text("orbit_reference_time", axis.reference())
    times = [axis.time(time_s, index) for index, time_s in enumerate(acquisition.state_vector_times_s)]
    (pool.texts if axis.is_text else pool.reals)("state_vector_times", times)
    state = acquisition.orbit.state(acquisition.state_vector_times_s)
    tag = "FLT_6" if "_float_" in options.orbit_representation else "FLT_15"  # the pool's type is the coordinates' own
    pool.reals("state_vector_positions", state.position_m.ravel(), tag)
    pool.reals("state_vector_velocities", state.velocity_m_s.ravel(), tag)
    if not is_slave:
        pool.reals("ellipsoid_parameters", [0.0] * 7 + [WGS84.equatorial_radius_m, WGS84.polar_radius_m])
    pool.real("prf", options.prf_hz)
    pool.real("az_bandwidth", options.azimuth_bandwidth_hz)
    pool.real("range_sampling_frequency", options.range_sampling_hz)
    pool.real("radar_frequency", acquisition.radar_frequency_hz)
    if options.permanent_scatterer or is_both:
        if not is_slave:
            pool.integer("n_samples", options.samples)
            pool.integer("n_lines", options.lines)
        pool.real("oversampling", options.oversampling)
        pool.real("first_az_time", acquisition.first_azimuth_time_s)
        pool.real("first_rg_time", acquisition.first_range_time_s - options.range_time_shift_s)
    if is_slave or is_both:
        pool.text("antenna_look_direction", options.side)
        if options.single_pass:
            pool.reals("focussed_slow_time_corr_poly_coefficients", options.correction_coefficients)
            pool.real("focussed_slow_time_corr_poly_fast_time_reference", scene.master.first_range_time_s)
            pool.real("focussed_slow_time_corr_poly_relative_time_reference", 0.0)
    pool.save(path)


def _write_pair(scene, path):
    options = scene.options
    pool = pool_file.POOL_WRITER("pair")
    pool.text("observation_mode", "single_pass" if options.single_pass else "dual_pass")
    if not options.permanent_scatterer:
        pool.integer("n_samples", options.samples)
        pool.integer("n_lines", options.lines)
        for name, acquisition in (("master", scene.master), ("slave", scene.slave)):
            pool.real(name + "_first_az_time", acquisition.first_azimuth_time_s)
            pool.real(name + "_first_rg_time", acquisition.first_range_time_s - options.range_time_shift_s)
    if options.shift_factors[0] == options.shift_factors[1]:
        pool.integer("shift_matrices_subsampling", options.shift_factors[0])
    else:
        pool.integer("shift_matrices_subsampling_rg", options.shift_factors[0])
        pool.integer("shift_matrices_subsampling_az", options.shift_factors[1])
    pool.integer("earth_matrices_subsampling_x", options.earth_factors[0])
    pool.integer("earth_matrices_subsampling_y", options.earth_factors[1])
    if options.geocoding_factors:
        pool.integer("geco_sub_factor_range", options.geocoding_factors[0])
        pool.integer("geco_sub_factor_azimuth", options.geocoding_factors[1])
    pool.save(path)


def _write_dem_pool(scene, path):
    options, grid = scene.options, scene.grid
    pool = pool_file.POOL_WRITER("DEM")
    pool.real("dem_correction", options.dem_correction_m)
    pool.text("grid_format", grid.kind)
    pool.real("upper_northing", grid.upper)
    pool.real("lower_northing", grid.upper - grid.rows * grid.dy)
    right = grid.left + grid.columns * grid.dx
    pool.real("left_easting", grid.left)
    pool.real("right_easting", right if options.utm else _as_written(right, options.longitudes))
    if options.ellipsoid != "WGS84":
        pool.text("ellipsoid_type", options.ellipsoid)
    if options.datum_shift_m:
        pool.reals("datum_shift", grid.datum.shift_m)
    if options.datum_rotation_arcsec:
        pool.reals("datum_rotation", grid.datum.rotation.ravel())
        pool.real("datum_scale", grid.datum.scale)
    if options.utm:
        pool.integer("utm_zone", grid.utm.zone)
        pool.text("utm_hemisphere", "S" if grid.utm.south else "N")
    pool.save(path)


def _write_control_file(options, path):
    entries = []
    if "phase" in options.products:
        entries.append(("SIMU_PHASE", "simu_phase.ras"))
        if options.invalid_value:
            entries.append(("IFGRM_INVALID", options.invalid_value))
    entries += [("MASTER_POOL", "master.pool"), ("SLAVE_POOL", "slave.pool"), ("INSAR_POOL", "insar.pool"),
                ("log_pp", "log.pool"), ("DEM_POOL", "dem.pool"), ("DEM", "dem.ras")]
    if options.dem_valid:
        entries.append(("DEM_VALID", options.dem_valid))
    entries += [("RANGE_TIME_SHIFT", "%.17g" % options.range_time_shift_s), ("LOOKS_RG", "1"), ("LOOKS_AZ", "1")]
    if options.permanent_scatterer:
        entries.append(("PS_INSAR_MODE", "1"))
    for product in ("shifts", "earth", "height"):
        if product in options.products:
            entries += [(key, key.lower() + ".ras") for key in PRODUCT_FILES[product]]
            if product == "shifts" and options.relative_shifts:
                entries.append(("WRITE_SHIFTS", "1"))
    with open(path, "w", encoding="ascii") as file:
        file.writelines("%s %s\n" % entry for entry in entries)
