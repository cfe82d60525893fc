/// \file pool_key.h
/// The keys of the parameter pools, one row each. Reading, refusals, docs/keys.md and the hints about mistyped keys all
/// come from here. The orbit's keys are read by the orbit itself (docs/orbits.md).

#pragma once

#include <string_view>

#include "app/keys/key_range.h"
#include "lib/baselib/pool/pool_type.h"

/// The pools that hold a key: one of these, or several added.
enum POOL_HOME : unsigned { kInsarPool = 1, kMasterPool = 2, kSlavePool = 4, kDemPool = 8 };
inline constexpr unsigned kBothPools = kMasterPool | kSlavePool;

struct POOL_KEY_ROW {
    const char* name;
    unsigned homes;
    int type;  ///< number of the pool type
    const char* unit;
    VALUE_RANGE range;
    const char* when;      ///< the case in which it is read; empty: always
    const char* fallback;  ///< what holds without it; empty: it must be there
    const char* help;
};

namespace POOL_KEYS {

inline constexpr int kText = kPoolType<STRING>;
inline constexpr int kInteger = kPoolType<int>;
inline constexpr int kReal = kPoolType<double>;
inline constexpr int kReals = kPoolType<ARRAY<double>>;
inline constexpr const char* kStandard = "standard mode";
inline constexpr const char* kScatterers = "PS mode";
inline constexpr const char* kSinglePass = "single pass";
inline constexpr const char* kRecords = "record database";
inline constexpr const char* kLists = "orbit in lists";

inline constexpr POOL_KEY_ROW kRows[] = {
    {"observation_mode", kInsarPool, kText, "", OneOf("single_pass or dual_pass"), "not forced", "",
     "observation mode of the pair"},
    {"n_samples", kInsarPool | kMasterPool, kInteger, "", kFromOne, "InSAR pool: standard mode; master: PS mode", "",
     "samples of the master image"},
    {"n_lines", kInsarPool | kMasterPool, kInteger, "", kFromOne, "InSAR pool: standard mode; master: PS mode", "",
     "lines of the master image"},
    {"n_samples", kSlavePool, kInteger, "", kAnything, "", "the master's",
     "samples of the slave image, for a WARNING about a slave of another frame; below 1: not told"},
    {"n_lines", kSlavePool, kInteger, "", kAnything, "", "the master's", "lines of the slave image, likewise"},
    {"master_first_az_time", kInsarPool, kReal, "s", kFinite, kStandard, "",
     "time of the master's first line since its orbit_reference_time"},
    {"slave_first_az_time", kInsarPool, kReal, "s", kFinite, kStandard, "", "the same of the slave, on its own axis"},
    {"master_first_rg_time", kInsarPool, kReal, "s", kPositive, kStandard, "",
     "two-way time to the master's first sample"},
    {"slave_first_rg_time", kInsarPool, kReal, "s", kPositive, kStandard, "", "the same of the slave"},
    {"shift_matrices_subsampling_rg", kInsarPool, kInteger, "", kNotNegative,
     "with shift maps or geocoding factors; not forced", "shift_matrices_subsampling",
     "factor of the shift maps in range; needs the one in azimuth"},
    {"shift_matrices_subsampling_az", kInsarPool, kInteger, "", kNotNegative,
     "with shift maps or geocoding factors; not forced", "shift_matrices_subsampling", "the same in azimuth"},
    {"shift_matrices_subsampling", kInsarPool, kInteger, "", kNotNegative,
     "with shift maps or geocoding factors, without the two above; not forced", "", "one factor for both"},
    {"earth_matrices_subsampling_x", kInsarPool, kInteger, "", kNotNegative, "not forced", "",
     "factor of the Earth files and of the height in range"},
    {"earth_matrices_subsampling_y", kInsarPool, kInteger, "", kNotNegative, "not forced", "", "the same in azimuth"},
    {"geco_sub_factor_range", kInsarPool, kInteger, "", kNotNegative, "", "no such grid",
     "factor of a later geocoding grid, which the Earth files have to cover; needs the one in azimuth"},
    {"geco_sub_factor_azimuth", kInsarPool, kInteger, "", kNotNegative, "", "no such grid", "the same in azimuth"},

    {"ellipsoid_parameters", kMasterPool, kReals, "m", kPositive, "", "",
     "nine values from index 0: dx dy dz rx ry rz scale a b; index 7 is the equatorial, index 8 the polar radius"},
    {"oversampling", kBothPools, kReal, "", kPositive, kScatterers, "",
     "multiplies line and sample rate; must agree; 1 in standard mode"},
    {"first_az_time", kBothPools, kReal, "s", kFinite, kScatterers, "",
     "time of the first line since this orbit's orbit_reference_time"},
    {"first_rg_time", kBothPools, kReal, "s", kPositive, kScatterers, "", "two-way time to the first sample"},
    {"prf", kBothPools, kReal, "Hz", kPositive, "", "", "line rate, before oversampling"},
    {"az_bandwidth", kBothPools, kReal, "Hz", kFinite, "", "", "azimuth bandwidth, for the log"},
    {"range_sampling_frequency", kBothPools, kReal, "Hz", kPositive, "", "", "sample rate, before oversampling"},
    {"radar_frequency", kBothPools, kReal, "Hz", kPositive, "", "", "carrier"},
    {"antenna_look_direction", kSlavePool, kText, "", OneOf("right or left"), "", "",
     "side on which the antenna looks"},
    {"focussed_slow_time_corr_poly_coefficients", kSlavePool, kReals, "s", kAnything, kSinglePass, "",
     "azimuth-shift correction, powers of (travel time - reference)"},
    {"focussed_slow_time_corr_poly_fast_time_reference", kSlavePool, kReal, "s", kAnything, kSinglePass, "",
     "this reference"},
    {"focussed_slow_time_corr_poly_relative_time_reference", kSlavePool, kReal, "s", kAnything, kSinglePass, "",
     "read only"},
    {"orbit_representation", kBothPools, kText, "", kAnything, "", "",
     "orbit_pool_ + float or double (coordinates) + _double, _utc or _met (times); orbit_mdb_double_ + ... for "
     "records"},
    {"orbit_interpolation", kBothPools, kText, "", kAnything, "", "",
     "name, order, support points: hermite_0_8, localpolynom_0_8, polyfit_9, spline, ..."},
    {"orbit_reference_time", kBothPools, kText, "", kAnything, "", "",
     "zero of the orbit's time axis: plain seconds, UTC or MET text"},
    {"orbit_param_key", kBothPools, kText, "", kAnything, kLists, "", "name of the entry with the times"},
    {"orbit_value_key", kBothPools, kText, "", kAnything, kLists, "",
     "name of the entry with the positions (m, Earth-fixed, x y z in turn)"},
    {"orbit_velocity_key", kBothPools, kText, "", kAnything, kLists, "",
     "name of the entry with the velocities (m/s, likewise)"},
    {"mdb_orbit_data_file", kBothPools, kText, "", kAnything, kRecords, "the path made of the ids below",
     "path of the data file"},
    {"root_path", kBothPools, kText, "", kAnything, kRecords, "", "folder of the missions"},
    {"mission_id", kBothPools, kInteger, "", kAnything, kRecords, "", "mission"},
    {"tape_id_number", kBothPools, kInteger, "", kAnything, kRecords, "", "tape"},
    {"tape_source_id", kBothPools, kInteger, "", kAnything, kRecords, "", "where the tape was written"},
    {"major_data_take_id", kBothPools, kInteger, "", kAnything, kRecords, "", "data take"},
    {"minor_data_take_id", kBothPools, kInteger, "", kAnything, kRecords, "", "part of the data take"},
    {"channel_id", kBothPools, kInteger, "", kAnything, kRecords, "", "receiver"},
    {"orbit_source_id", kBothPools, kInteger, "", kAnything, kRecords, "0", "kind of orbit product"},

    {"dem_correction", kDemPool, kReal, "m", kFinite, "", "", "added to every height"},
    {"grid_format", kDemPool, kText, "", OneOf("GEO or UTM"), "", "",
     "GEO: edges in degrees, UTM: in metres; small letters mean the same, but only a GEO in capitals may cross 180 "
     "degrees"},
    {"upper_northing", kDemPool, kReal, "deg or m", kFinite, "", "",
     "northern edge; row r lies at upper - r (upper - lower) / rows"},
    {"lower_northing", kDemPool, kReal, "deg or m", kFinite, "", "", "southern edge, below the upper one"},
    {"left_easting", kDemPool, kReal, "deg or m", kFinite, "", "",
     "western edge; column c lies at left + c (right - left) / columns"},
    {"right_easting", kDemPool, kReal, "deg or m", kFinite, "", "",
     "eastern edge; one below the left edge means a GEO grid across 180 degrees (or Greenwich, in 0..360)"},
    {"dem_pixel_type", kDemPool, kText, "", OneOf("int_16 or flt_6"), "", "int_16",
     "samples of the raster: 16-bit integers or 32-bit reals, metres; a real that is no number or beyond 32768 counts "
     "as a void"},
    {"ellipsoid_type", kDemPool, kText, "", OneOf("Airy, Bessel, GRS80 or WGS84, capitals or not"), "", "WGS84",
     "ellipsoid of the grid"},
    {"datum_shift", kDemPool, kReals, "m", kFinite, "", "0 0 0", "dx dy dz, to the orbits' frame"},
    {"datum_rotation", kDemPool, kReals, "", kFinite, "", "no rotation",
     "nine values row by row, orthonormal to 1e-6: point' = scale R point + shift"},
    {"datum_scale",
     kDemPool,
     kReal,
     "",
     {0.99, 1.01, "in 0.99..1.01 (a factor, not parts per million)"},
     "with datum_rotation",
     "1",
     "the factor"},
    {"utm_zone", kDemPool, kInteger, "", {1.0, 60.0, "in 1..60"}, "UTM", "", "zone"},
    {"utm_hemisphere", kDemPool, kText, "", OneOf("N or S"), "UTM", "N", "hemisphere"},
};

}  // namespace POOL_KEYS

/// A row of the table by its name and the C++ type of its values: another name or type does not compile.
template <class T>
struct POOL_KEY {
    consteval POOL_KEY(const char* name) : row(Find(name)) {}

    const POOL_KEY_ROW& row;

  private:
    static consteval const POOL_KEY_ROW& Find(std::string_view name) {
        for (const POOL_KEY_ROW& row : POOL_KEYS::kRows)
            if (name == row.name && row.type == kPoolType<T>) return row;
        throw "no such key of the pools with values of this type";
    }
};
