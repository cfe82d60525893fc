/// \file control_key.h
/// The keys of the run configuration, one row each. Reading, refusals, `--help`, docs/keys.md and the hints about
/// mistyped words all come from here.

#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "app/keys/key_range.h"

enum class KEY_NEED {
    MANDATORY,  ///< asked at the keyboard when no source has it
    OPTIONAL,
    FLAG,         ///< optional; its presence counts, its value is not looked at
    FORCES_POOL,  ///< optional; wins over a key of the InSAR pool and is written there
    STEERING,     ///< optional; steers files and logging, not the simulation
    ENVIRONMENT   ///< looked up in the environment only
};

struct CONTROL_KEY_ROW {
    const char* name;
    KEY_NEED need;
    const char* type;
    const char* unit;
    VALUE_RANGE range;
    const char* fallback;  ///< what holds without the key; empty for a mandatory one
    const char* pool_key;  ///< the key of the InSAR pool that this one forces
    const char* help;
};

inline constexpr CONTROL_KEY_ROW kControlKeys[] = {
    {"MASTER_POOL", KEY_NEED::MANDATORY, "path", "", kAnything, "", "", "parameter pool of the master acquisition"},
    {"SLAVE_POOL", KEY_NEED::MANDATORY, "path", "", kAnything, "", "", "parameter pool of the slave acquisition"},
    {"INSAR_POOL", KEY_NEED::MANDATORY, "path", "", kAnything, "", "",
     "parameter pool of the pair; results are written into it"},
    {"log_pp", KEY_NEED::MANDATORY, "path", "", kAnything, "", "",
     "pool that receives the software history; may be the InSAR pool"},
    {"DEM_POOL", KEY_NEED::MANDATORY, "path", "", kAnything, "", "", "parameter pool of the elevation model"},
    {"DEM", KEY_NEED::MANDATORY, "path", "", kAnything, "", "",
     "elevation model, a Sun raster of heights in metres (dem_pixel_type)"},
    {"RANGE_TIME_SHIFT", KEY_NEED::MANDATORY, "real", "s", kFinite, "", "",
     "added to the first range time of master and slave"},
    {"LOOKS_RG", KEY_NEED::MANDATORY, "integer", "", kAnything, "", "", "looks in range, for the log"},
    {"LOOKS_AZ", KEY_NEED::MANDATORY, "integer", "", kAnything, "", "", "looks in azimuth, for the log"},
    {"SIMU_PHASE", KEY_NEED::OPTIONAL, "path", "", kAnything, "not written", "", "simulated phase"},
    {"IFGRM_INVALID", KEY_NEED::OPTIONAL, "real", "rad", OneOf("a number in single precision"), "0", "",
     "phase of points that nothing reaches; read with SIMU_PHASE only"},
    {"DEM_VALID", KEY_NEED::OPTIONAL, "min..max", "m",
     OneOf("made of +-0123456789.E<> with bounds in single precision"), "all heights", "",
     "range of valid heights; others are counted and reported"},
    {"PS_INSAR_MODE", KEY_NEED::FLAG, "any", "", kAnything, "standard mode", "",
     "selects the permanent-scatterer mode: size, start times and oversampling from the acquisitions' own pools"},
    {"RG_COREG", KEY_NEED::OPTIONAL, "path", "", kAnything, "not written", "",
     "range position in the slave image; needs AZ_COREG"},
    {"AZ_COREG", KEY_NEED::OPTIONAL, "path", "", kAnything, "not written", "",
     "azimuth position in the slave image; needs RG_COREG"},
    {"WRITE_SHIFTS", KEY_NEED::FLAG, "any", "", kAnything, "positions", "", "makes these two files relative shifts"},
    {"X_EARTH", KEY_NEED::OPTIONAL, "path", "", kAnything, "not written", "",
     "Earth-fixed x of each pixel; needs Y_EARTH and Z_EARTH"},
    {"Y_EARTH", KEY_NEED::OPTIONAL, "path", "", kAnything, "not written", "", "Earth-fixed y of each pixel"},
    {"Z_EARTH", KEY_NEED::OPTIONAL, "path", "", kAnything, "not written", "", "Earth-fixed z of each pixel"},
    {"H_EARTH", KEY_NEED::OPTIONAL, "path", "", kAnything, "not written", "", "elevation in radar geometry"},
    {"LAYOVER_SHADOW", KEY_NEED::OPTIONAL, "path", "", kAnything, "not written", "",
     "one byte per pixel of the master: layover, shadow, for the master and for the slave"},
    {"INCIDENCE", KEY_NEED::OPTIONAL, "path", "", kAnything, "not written", "",
     "angle between the line of sight and the ellipsoid's normal"},
    {"LOCAL_INCIDENCE", KEY_NEED::OPTIONAL, "path", "", kAnything, "not written", "",
     "angle between the line of sight and the terrain's normal"},
    {"LINE_OF_SIGHT", KEY_NEED::OPTIONAL, "path", "", kAnything, "not written", "",
     "unit vector from the ground to the master: three files, whose names get _e, _n, _u before their ending"},
    {"PERPENDICULAR_BASELINE", KEY_NEED::OPTIONAL, "path", "", kAnything, "not written", "",
     "distance of the slave from the line of sight; positive above it"},
    {"HEIGHT_OF_AMBIGUITY", KEY_NEED::OPTIONAL, "path", "", kAnything, "not written", "",
     "height that turns the phase once"},
    {"VRT_SIDECARS", KEY_NEED::FLAG, "any", "", kAnything, "none", "",
     "puts a text file PRODUCT.vrt beside each product, through which GDAL and QGIS open it"},
    {"OBSERVATION_MODE", KEY_NEED::FORCES_POOL, "text", "", OneOf("single_pass or dual_pass"), "pool",
     "observation_mode", "observation mode of the pair"},
    {"SHIFT_MATRICES_SUBSAMPLING", KEY_NEED::FORCES_POOL, "integer", "", kNotNegative, "pool",
     "shift_matrices_subsampling", "sub-sampling of the shift files, both ways"},
    {"SHIFT_MATRICES_SUBSAMPLING_RG", KEY_NEED::FORCES_POOL, "integer", "", kNotNegative, "pool",
     "shift_matrices_subsampling_rg", "the same in range; needs the one in azimuth; wins over the common one"},
    {"SHIFT_MATRICES_SUBSAMPLING_AZ", KEY_NEED::FORCES_POOL, "integer", "", kNotNegative, "pool",
     "shift_matrices_subsampling_az", "the same in azimuth"},
    {"EARTH_MATRICES_SUBSAMPLING_X", KEY_NEED::FORCES_POOL, "integer", "", kNotNegative, "pool",
     "earth_matrices_subsampling_x", "sub-sampling of the Earth files in range"},
    {"EARTH_MATRICES_SUBSAMPLING_Y", KEY_NEED::FORCES_POOL, "integer", "", kNotNegative, "pool",
     "earth_matrices_subsampling_y", "sub-sampling of the Earth files in azimuth"},
    {"MEMORY_LIMIT", KEY_NEED::OPTIONAL, "integer", "MiB", kFromOne, "three quarters of the memory", "",
     "memory for the grids; an image that needs more is simulated in slabs of lines"},
    {"pid", KEY_NEED::STEERING, "text", "", kAnything, "program file", "",
     "name that forms the names of the files below; argument or environment only"},
    {"status", KEY_NEED::STEERING, "path", "", kAnything, "working folder", "",
     "folder of the status files OK. ERROR. STOP.; argument or environment only"},
    {"pcf", KEY_NEED::STEERING, "path", "", kAnything, "pcf.velmora", "",
     "control file: lines of key and value; argument or environment only"},
    {"lfn", KEY_NEED::STEERING, "path", "", kAnything, "log.velmora", "", "log file, appended to"},
    {"lfl", KEY_NEED::STEERING, "level", "", kAnything, "DEBUG", "", "lowest level in the log file"},
    {"lsl", KEY_NEED::STEERING, "level", "", kAnything, "DEBUG", "", "lowest level on the screen"},
    {"REPORT", KEY_NEED::STEERING, "path", "", kAnything, "not written", "",
     "what the run did, as one JSON document, written when it ends, however it ends"},
    {"PARALLEL", KEY_NEED::ENVIRONMENT, "integer", "", kAnything, "all processors", "", "number of threads"},
    {"VELMORA_VECTORS", KEY_NEED::ENVIRONMENT, "text", "", OneOf("avx512, avx2 or plain"), "the best of the machine",
     "", "vector instructions; those that the machine lacks are refused"},
    {"SECONDS_ON_PARAMETER_INPUT", KEY_NEED::ENVIRONMENT, "integer", "s", kAnything, "120", "",
     "time for an answer at the keyboard, 0: no limit"},
    {"NO_COLOR", KEY_NEED::ENVIRONMENT, "text", "", kAnything, "emphasis", "",
     "when not empty, warnings and errors are not emphasised on the screen; TERM=dumb does the same"},
    {"PROC_NAME", KEY_NEED::ENVIRONMENT, "text", "", kAnything, "nobody", "",
     "who starts the run, for the log's header"},
};

/// A row of the table by its name: a name that is not in the table does not compile.
struct CONTROL_KEY {
    consteval CONTROL_KEY(const char* name) : row(Find(name)) {}

    const CONTROL_KEY_ROW& row;

  private:
    static consteval const CONTROL_KEY_ROW& Find(std::string_view name) {
        for (const CONTROL_KEY_ROW& row : kControlKeys)
            if (name == row.name) return row;
        throw "no such key of the run configuration";
    }
};

/// The names of all keys that arguments and control file may hold.
[[nodiscard]] std::vector<std::string> ControlKeyNames();
