/// The rules of stage A that turn texts and factors into sizes: expected values worked out by hand.

#include <gtest/gtest.h>

#include <string>

#include "app/acquisition/observation_mode.h"
#include "app/request/area_extension.h"
#include "app/scene/output_sizes.h"
#include "app/terrain/dem_valid_range.h"
#include "lib/baselib/errors/error_exception.h"

namespace {

struct EXTENSION_CASE {
    const char* name;
    SUBSAMPLING shift;
    SUBSAMPLING earth;
    SUBSAMPLING geocoding;
    bool extended;
    int x;
    int y;
};

TEST(AreaExtension, IsMaximumOfShiftAndEarthOrSumWithGeocoding) {
    const EXTENSION_CASE cases[] = {
        {"all 1", {1, 1}, {1, 1}, {1, 1}, false, 0, 0},
        {"all 0 mean 1", {0, 0}, {0, 0}, {0, 0}, false, 0, 0},
        {"maxima; a factor of 1 counts as 0", {2, 3}, {4, 1}, {1, 1}, true, 4, 3},
        {"sum with geocoding in one direction only", {2, 3}, {4, 1}, {2, 1}, true, 8, 3},
        {"geocoding alone", {1, 1}, {1, 1}, {3, 1}, true, 3, 0},
        {"one factor in one direction", {1, 1}, {1, 5}, {1, 1}, true, 0, 5},
    };
    for (const EXTENSION_CASE& c : cases) {
        SCOPED_TRACE(c.name);
        RUN_CONFIGURATION configuration;
        configuration.shift = c.shift;
        configuration.earth = c.earth;
        configuration.geocoding = c.geocoding;
        ComputeAreaExtension(configuration);
        EXPECT_EQ(configuration.area_extended, c.extended);
        EXPECT_EQ(configuration.extension_x, c.x);
        EXPECT_EQ(configuration.extension_y, c.y);
        EXPECT_GE(configuration.shift.x * configuration.earth.y * configuration.geocoding.x, 1);
    }
    RUN_CONFIGURATION huge;
    huge.shift = {2147483647, 1};
    huge.geocoding = {2, 1};
    EXPECT_THROW(ComputeAreaExtension(huge), ERROR_PARAMETER);
}

TEST(DemValidRange, KeepsItsParsingRulesAndRefusesTheRest) {
    struct CASE {
        const char* text;
        float minimum_m;
        float maximum_m;
    };
    const CASE cases[] = {
        {"0..5000", 0.0F, 5000.0F}, {"-100..1E3", -100.0F, 1000.0F},
        {"<0..5000>", 0.0F, 0.0F},  {"<0..5000>7", 0.0F, 7.0F},
        {"300", 0.0F, 300.0F},      {"1...5", 1.0F, 0.5F},
        {"1..2..3", 2.0F, 3.0F},    {"..", 0.0F, 0.0F},
        {"5>9", 0.0F, 59.0F},       {"-5..", -5.0F, 0.0F},
    };
    for (const CASE& c : cases) {
        SCOPED_TRACE(c.text);
        const DEM_VALID_RANGE range = ParseDemValidRange(c.text);
        EXPECT_EQ(range.minimum_m, c.minimum_m);
        EXPECT_EQ(range.maximum_m, c.maximum_m);
    }
    for (const char* text : {"0;5000", "a", "0..1e3", "1E400..2", "0..1E39", "1 .. 2"}) {
        SCOPED_TRACE(text);
        EXPECT_THROW(ParseDemValidRange(text), ERROR_ARGUMENT);
    }
}

TEST(ObservationMode, IsExactAndCaseSensitive) {
    EXPECT_EQ(ObservationModeOf("single_pass").identifier, 1);
    EXPECT_EQ(ObservationModeOf("dual_pass").factor, 2.0);
    EXPECT_THROW(ObservationModeOf("Dual_pass"), ERROR_ARGUMENT);
}

/// A state with image size, factors and the extension that follows from them.
void Prepare(SIMULATION_STATE& state, IMAGE_SIZE image, SUBSAMPLING shift, SUBSAMPLING earth, SUBSAMPLING geocoding) {
    state.image = image;
    state.configuration.shift = shift;
    state.configuration.earth = earth;
    state.configuration.geocoding = geocoding;
    ComputeAreaExtension(state.configuration);
    state.simulation = {image.samples + state.configuration.extension_x, image.lines + state.configuration.extension_y};
}

TEST(OutputSizes, OfShiftMatrices) {
    SIMULATION_STATE state;
    Prepare(state, {996, 796}, {4, 4}, {1, 1}, {1, 1});
    SizeShiftMatrices(state);  // ceil(996 / 4) + 1, ceil(796 / 4) + 1
    EXPECT_EQ(state.shift_output.samples, 250);
    EXPECT_EQ(state.shift_output.lines, 200);

    Prepare(state, {1000, 801}, {3, 2}, {1, 1}, {1, 1});
    SizeShiftMatrices(state);
    EXPECT_EQ(state.shift_output.samples, 335);
    EXPECT_EQ(state.shift_output.lines, 402);

    Prepare(state, {50, 40}, {1, 1}, {1, 1}, {1, 1});
    SizeShiftMatrices(state);
    EXPECT_EQ(state.shift_output.samples, 50);
    EXPECT_EQ(state.shift_output.lines, 40);
}

TEST(OutputSizes, OfEarthMatrices) {
    SIMULATION_STATE state;
    Prepare(state, {100, 81}, {1, 1}, {3, 2}, {1, 1});
    SizeEarthMatrices(state);  // ceil(100 / 3) + 1, ceil(81 / 2) + 1
    EXPECT_EQ(state.earth_output.samples, 35);
    EXPECT_EQ(state.earth_output.lines, 42);

    Prepare(state, {1100, 460}, {3, 3}, {4, 4}, {2, 2});  // extension 9: (1109 - 1) / 4 + 1, (469 - 1) / 4 + 1
    SizeEarthMatrices(state);
    EXPECT_EQ(state.earth_output.samples, 278);
    EXPECT_EQ(state.earth_output.lines, 118);
}

TEST(OutputSizes, FailWhereTheExtensionOfADirectionIsNotEnough) {
    struct CASE {
        const char* name;
        SUBSAMPLING shift;
        SUBSAMPLING earth;
        SUBSAMPLING geocoding;
        bool shift_fails;
        bool earth_fails;
    };
    const CASE cases[] = {
        {"shift: no extension in azimuth", {4, 1}, {1, 1}, {1, 1}, true, true},
        {"earth: no extension in range", {1, 1}, {1, 4}, {1, 1}, true, true},
        {"both directions", {4, 2}, {3, 3}, {1, 1}, false, false},
        {"geocoding grid alone: one line short of its last node", {1, 1}, {1, 1}, {2, 2}, false, false},
        {"geocoding in range only: lines not covered", {1, 1}, {1, 1}, {5, 1}, true, true},
    };
    for (const CASE& c : cases) {
        SCOPED_TRACE(c.name);
        SIMULATION_STATE state;
        Prepare(state, {100, 80}, c.shift, c.earth, c.geocoding);
        if (c.shift_fails) {
            EXPECT_THROW(SizeShiftMatrices(state), ERROR_ALGORITHM);
        } else {
            EXPECT_NO_THROW(SizeShiftMatrices(state));
        }
        if (c.earth_fails) {
            EXPECT_THROW(SizeEarthMatrices(state), ERROR_ALGORITHM);
        } else {
            EXPECT_NO_THROW(SizeEarthMatrices(state));
        }
    }
}

}  // namespace
