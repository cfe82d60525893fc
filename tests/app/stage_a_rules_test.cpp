/// The rules of stage A that turn texts and factors into sizes: expected values worked out by hand.

#include <gtest/gtest.h>

#include <string>

#include "app/request/area_extension.h"
#include "app/scene/output_sizes.h"
#include "app/terrain/odd_samples.h"
#include "app/terrain/valid_heights.h"
#include "lib/baselib/errors/error_exception.h"

namespace {

SOURCED_TEXT Given(const char* text) {
    return {{"configuration", "KEY"}, text};
}

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
        {"maxima; a factor of 1 counts as 0", {2, 3}, {4, 1}, {1, 1}, true, 4, 3},
        {"sum with geocoding in one direction only", {2, 3}, {4, 1}, {2, 1}, true, 8, 3},
        {"geocoding alone", {1, 1}, {1, 1}, {3, 1}, true, 3, 0},
        {"one factor in one direction", {1, 1}, {1, 5}, {1, 1}, true, 0, 5},
    };
    for (const EXTENSION_CASE& c : cases) {
        SCOPED_TRACE(c.name);
        const AREA_EXTENSION extension = ExtensionOf({c.shift, c.earth, c.geocoding});
        EXPECT_EQ(extension.extended, c.extended);
        EXPECT_EQ(extension.x, c.x);
        EXPECT_EQ(extension.y, c.y);
    }
    EXPECT_THROW(static_cast<void>(ExtensionOf({{2147483647, 1}, {1, 1}, {2, 1}})), ERROR_PARAMETER);
}

TEST(OddSamples, AreOutsideTheHeightsOfLand) {
    for (const float height_m : {-500.0F, 0.0F, 9000.0F}) EXPECT_FALSE(IsOdd(height_m)) << height_m;
    for (const float height_m : {-500.5F, 9000.5F}) EXPECT_TRUE(IsOdd(height_m)) << height_m;
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
        const VALID_HEIGHTS range = ParseValidHeights(Given(c.text));
        EXPECT_EQ(range.minimum_m, c.minimum_m);
        EXPECT_EQ(range.maximum_m, c.maximum_m);
    }
    for (const char* text : {"0;5000", "a", "0..1e3", "1E400..2", "0..1E39", "1 .. 2"}) {
        SCOPED_TRACE(text);
        EXPECT_THROW(static_cast<void>(ParseValidHeights(Given(text))), ERROR_ARGUMENT);
    }
}

/// No size: the run must stop.
constexpr IMAGE_SIZE kRefused{0, 0};

IMAGE_SIZE SizeOf(IMAGE_SIZE (*size)(const REQUEST&, const IMAGE_SIZE&, const IMAGE_SIZE&), const REQUEST& request,
                  IMAGE_SIZE image) {
    try {
        return size(request, image, {image.samples + request.extension.x, image.lines + request.extension.y});
    } catch (const ERROR_ALGORITHM&) {
        return kRefused;
    }
}

TEST(OutputSizes, CoverTheImageOrAreRefused) {
    struct CASE {
        const char* name;
        IMAGE_SIZE image;
        SUBSAMPLING_FACTORS factors;  // shift, earth, geocoding
        IMAGE_SIZE shift;
        IMAGE_SIZE earth;
    };
    const CASE cases[] = {
        {"no factor", {50, 40}, {{1, 1}, {1, 1}, {1, 1}}, {50, 40}, {50, 40}},
        {"ceil(996 / 4) + 1, ceil(796 / 4) + 1", {996, 796}, {{4, 4}, {1, 1}, {1, 1}}, {250, 200}, {997, 797}},
        {"unequal factors", {1000, 801}, {{3, 2}, {1, 1}, {1, 1}}, {335, 402}, {1001, 802}},
        {"ceil(100 / 3) + 1, ceil(81 / 2) + 1", {100, 81}, {{1, 1}, {3, 2}, {1, 1}}, {101, 82}, {35, 42}},
        {"geocoding: (1109 - 1) / 4 + 1, (469 - 1) / 4 + 1",
         {1100, 460},
         {{3, 3}, {4, 4}, {2, 2}},
         {368, 155},
         {278, 118}},
        {"shift: no extension in azimuth", {100, 80}, {{4, 1}, {1, 1}, {1, 1}}, kRefused, kRefused},
        {"earth: no extension in range", {100, 80}, {{1, 1}, {1, 4}, {1, 1}}, kRefused, kRefused},
        {"both directions", {100, 80}, {{4, 2}, {3, 3}, {1, 1}}, {26, 41}, {35, 28}},
        {"geocoding grid alone", {100, 80}, {{1, 1}, {1, 1}, {2, 2}}, {101, 81}, {102, 82}},
        {"geocoding in range only: lines not covered", {100, 80}, {{1, 1}, {1, 1}, {5, 1}}, kRefused, kRefused},
    };
    for (const CASE& c : cases) {
        SCOPED_TRACE(c.name);
        REQUEST request;
        request.factors = c.factors;
        request.extension = ExtensionOf(c.factors);
        EXPECT_EQ(SizeOf(SizeShiftMatrices, request, c.image), c.shift);
        EXPECT_EQ(SizeOf(SizeEarthMatrices, request, c.image), c.earth);
    }
}

}  // namespace
