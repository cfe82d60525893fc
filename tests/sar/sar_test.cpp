#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/sar/image_direction.h"
#include "lib/baselib/sar/sar_enumerations.h"

namespace SAR {
namespace {

using BASIC::TYPES::ERROR_ENUM_BASE_INVALID_VALUE;

/// Reads a pool of one entry.
template <class ENUM>
ENUM Read(const std::string& key, const std::string& text) {
    static int count = 0;
    const std::string path = testing::TempDir() + "sar_test_" + std::to_string(count++) + ".pool";
    std::ofstream(path) << key << " STR \"" << text << "\"\n";
    PARAMETER_POOL pool(path);
    std::filesystem::remove(path);
    ENUM value;
    value.ReadFromParameterPool(pool);
    return value;
}

/// Texts of the identifiers from 1 on; a producer's other texts with the identifier that they mean.
template <class ENUM>
void Check(const std::string& key, const std::vector<std::string>& texts,
           const std::vector<std::pair<std::string, int>>& others = {}) {
    SCOPED_TRACE(key);
    EXPECT_EQ(ENUM().PoolKey().ToStd(), key);
    EXPECT_EQ(ENUM().Id(), 0);
    EXPECT_EQ(ENUM().LastId(), static_cast<int>(texts.size()) + 1);
    EXPECT_EQ(ENUM(ENUM::END).Text(), "-");
    EXPECT_EQ(static_cast<int>(ENUM::END), ENUM().LastId());
    EXPECT_EQ(Read<ENUM>(key, "-").Id(), 0);  // never the closing enumerator
    for (std::size_t i = 0; i < texts.size(); ++i) {
        EXPECT_EQ(Read<ENUM>(key, texts[i]).Id(), static_cast<int>(i) + 1);
        EXPECT_EQ(ENUM(static_cast<int>(i) + 1).Text(), texts[i]);
    }
    for (const auto& [text, id] : others) {
        EXPECT_EQ(Read<ENUM>(key, text).Id(), id) << text;
        EXPECT_EQ(Read<ENUM>(key, text).Text(), texts[static_cast<std::size_t>(id - 1)]) << text;
    }
    for (const char* unknown : {"", "x", "--", "undefine"}) {
        EXPECT_THROW((void)Read<ENUM>(key, unknown), ERROR_ENUM_BASE_INVALID_VALUE) << unknown;
    }
}

TEST(SarEnumerations, ReadTheirTextsAndThoseOfOtherProducers) {
    Check<QuicklookResolutionClass>("quicklook_resolution_class", {"lowRes", "mediumRes"}, {{"lres", 1}, {"mres", 2}});
    Check<PolarizationType>("polarization_type", {"V", "H"});
    Check<OrbitDirection>(
        "orbit_direction", {"A", "D", "U"},
        {{"ascending", 1}, {"descending", 2}, {"undefined", 3}, {"ASCENDING", 1}, {"DESCENDING", 2}, {"UNDEFINED", 3}});
    Check<AntennaLookDirection>("antenna_look_direction", {"L", "R", "U"},
                                {{"left", 1},
                                 {"right", 2},
                                 {"undefined", 3},
                                 {"elevationLeft", 1},
                                 {"elevationRight", 2},
                                 {"elevationUndefined", 3},
                                 {"LEFT", 1},
                                 {"RIGHT", 2},
                                 {"UNDEFINED", 3}});
    Check<Edge>("edge", {"TOP", "RIGHT", "BOTTOM", "LEFT"});
    Check<Range>("range", {"near", "mid", "far"});
    Check<Azimuth>("azimuth", {"start", "center", "stop"},
                   {{"early", 1}, {"mid", 2}, {"late", 3}, {"first", 1}, {"last", 3}});
    Check<ImageType>("image_type", {"PORTRAIT", "LANDSCAPE"});
    Check<ImagingConfiguration>("imaging_configuration", {"StripMap", "ScanSAR", "SpotLight", "TopSAR"},
                                {{"SM", 1}, {"SC", 2}, {"SL", 3}});
    Check<ChirpSlope>("chirp_slope", {"UpChirp", "DownChirp", "NotApplicable"}, {{"up", 1}, {"down", 2}});
    Check<ChirpType>("chirp_type", {"ideal", "model", "replica"},
                     {{"nominalChirp", 1}, {"nominal", 1}, {"idealChirp", 1}, {"modelChirp", 2}});
    Check<ProductFormatId>("product_format_id", {"PLAIN", "QLM_ISP"});
    Check<Projection>("projection", {"slant range", "ground range", "map", "undefined"},
                      {{"SLANTRANGE", 1}, {"GROUNDRANGE", 2}, {"MAP", 3}, {"UNDEFINED", 4}});
    Check<MapProjection>("map_projection", {"UTM", "UPS", "AUTO"});
    Check<TxRxType>("tx_rx_type", {"HH", "HV", "VH", "VV"});
}

TEST(SarEnumerations, AnUnknownTextNamesPoolKeyAndTheValidTexts) {
    testing::internal::CaptureStdout();
    try {
        (void)Read<PolarizationType>("polarization_type", "h");
        FAIL();
    } catch (const ERROR_ENUM_BASE_INVALID_VALUE& error) {
        EXPECT_EQ(error.Message(), "enumeration data type - invalid value of class N3SAR16PolarizationTypeE: h");
        EXPECT_EQ(error.ValidValues(), "Valid values are: 'V' 'H' ");
    }
    EXPECT_THAT(testing::internal::GetCapturedStdout(),
                testing::HasSubstr(".pool: key \"polarization_type\": unknown value \"h\""));
}

TEST(Edge, HasAnOppositeAndTwoNeighbours) {
    EXPECT_EQ(Edge(Edge::TOP).Opposite().Id(), Edge::BOTTOM);
    EXPECT_EQ(Edge(Edge::LEFT).Opposite().Id(), Edge::RIGHT);
    for (int i = Edge::NOT_SET; i <= Edge::END; ++i) {
        EXPECT_EQ(Edge(i).Opposite().Opposite().Id(), i);
        for (int k = Edge::NOT_SET; k <= Edge::END; ++k) {
            const bool both_real = i % 5 != 0 && k % 5 != 0;
            EXPECT_EQ(Edge(i).IsOrthogonalTo(Edge(k)), both_real && (i + k) % 2 == 1) << i << " " << k;
        }
    }
}

TEST(Azimuth, HasTwoTexts) {
    EXPECT_STREQ(Azimuth(Azimuth::START).SecondText(), "early");
    EXPECT_STREQ(Azimuth(Azimuth::CENTER).SecondText(), "mid");
    EXPECT_STREQ(Azimuth(Azimuth::END).SecondText(), "-");
}

TEST(TxRxType, AllowsSixOfSixteenPairs) {
    using P = PolarizationType;
    const std::vector<std::vector<int>> expected = {// receive: -, V, H, end
                                                    {0, -1, -1, -1},
                                                    {-1, 4, 3, -1},
                                                    {-1, 2, 1, -1},
                                                    {-1, -1, -1, 5}};
    for (int transmit = P::NOT_SET; transmit <= P::END; ++transmit) {
        for (int receive = P::NOT_SET; receive <= P::END; ++receive) {
            const int id = expected[static_cast<std::size_t>(transmit)][static_cast<std::size_t>(receive)];
            testing::internal::CaptureStdout();
            if (id >= 0) {
                const TxRxType type{P(transmit), P(receive)};
                EXPECT_EQ(type.Id(), id);
                EXPECT_EQ(type.Transmit().Id(), transmit);
                EXPECT_EQ(type.Receive().Id(), receive);
            } else {
                EXPECT_THROW((TxRxType{P(transmit), P(receive)}), ERROR_INVALID_VALUE);
            }
            const std::string log = testing::internal::GetCapturedStdout();
            EXPECT_EQ(log.find("invalid combination of transmit and receive polarization") == std::string::npos,
                      id >= 0);
        }
    }
}

TEST(ImageDirection, TurnsPositionsIntoEdges) {
    const ImageDirection direction(Range(Range::FAR), Edge(Edge::LEFT), Azimuth(Azimuth::STOP), Edge(Edge::TOP));
    EXPECT_EQ(direction.Edges().first.Text(), "RIGHT");
    EXPECT_EQ(direction.Edges().second.Text(), "BOTTOM");
    EXPECT_EQ(direction.EdgeOf(Range(Range::NEAR)).Text(), "RIGHT");
    EXPECT_EQ(direction.EdgeOf(Range(Range::FAR)).Text(), "LEFT");
    EXPECT_EQ(direction.EdgeOf(Azimuth(Azimuth::STOP)).Text(), "TOP");
    EXPECT_EQ(ImageDirection().EdgeOf(Range(Range::FAR)).Id(), Edge::NOT_SET);
}

TEST(ImageDirection, RejectsWhatNoImageCanHave) {
    struct CASE {
        Range::ID range;
        Edge::ID range_edge;
        Azimuth::ID azimuth;
        Edge::ID azimuth_edge;
        const char* text;
    };
    constexpr char kOrthogonal[] = "range and azimuth should be at orthogonal edges";
    for (const CASE& c : {CASE{Range::NEAR, Edge::LEFT, Azimuth::START, Edge::LEFT, kOrthogonal},
                          CASE{Range::NEAR, Edge::LEFT, Azimuth::STOP, Edge::RIGHT, kOrthogonal},
                          CASE{Range::NEAR, Edge::NOT_SET, Azimuth::START, Edge::TOP, kOrthogonal},
                          CASE{Range::MID, Edge::LEFT, Azimuth::START, Edge::TOP, "mid range is at no edge"},
                          CASE{Range::FAR, Edge::LEFT, Azimuth::CENTER, Edge::TOP, "azimuth center is at no edge"}}) {
        testing::internal::CaptureStdout();
        EXPECT_THROW((ImageDirection(Range(c.range), Edge(c.range_edge), Azimuth(c.azimuth), Edge(c.azimuth_edge))),
                     ERROR_INVALID_VALUE);
        EXPECT_THAT(testing::internal::GetCapturedStdout(), testing::HasSubstr(c.text));
    }
}

}  // namespace
}  // namespace SAR
