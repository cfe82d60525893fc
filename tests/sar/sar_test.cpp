#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/sar/image_direction.h"
#include "lib/baselib/sar/sar_enumerations.h"
#include "tests/kit/log_capture.h"
#include "tests/kit/pool_text.h"

namespace SAR {
namespace {

using BASIC::TYPES::ERROR_ENUM_BASE_INVALID_VALUE;

/// Reads a pool of one entry. @return the identifier
int Read(SAR_ENUM& value, const std::string& key, const std::string& text) {
    POOL_TEXT entries;
    entries.SetText(key, text);
    PARAMETER_POOL pool(entries.Save());
    value.ReadFromParameterPool(pool);
    return value.Id();
}

/// Texts of the identifiers from 1 on; a producer's other texts with the identifier that they mean.
void CheckTexts(SAR_ENUM& value, int end, const std::string& key, const std::vector<std::string>& texts,
                const std::vector<std::pair<std::string, int>>& others) {
    SCOPED_TRACE(key);
    EXPECT_EQ(value.Id(), 0);
    EXPECT_EQ(value.PoolKey().ToStd(), key);
    EXPECT_EQ(end, static_cast<int>(texts.size()) + 1);
    for (int i = 1; i < end; ++i) EXPECT_EQ(Read(value, key, texts[i - 1]), i);
    EXPECT_EQ(Read(value, key, "-"), 0) << "never the closing enumerator";
    for (const auto& [text, id] : others) EXPECT_EQ(Read(value, key, text), id) << text;
    EXPECT_THROW(Read(value, key, "undefine"), ERROR_ENUM_BASE_INVALID_VALUE);
}

template <class ENUM>
void Check(const std::string& key, const std::vector<std::string>& texts,
           const std::vector<std::pair<std::string, int>>& others = {}) {
    ENUM value;
    CheckTexts(value, ENUM::END, key, texts, others);
    EXPECT_THROW(ENUM(ENUM::END + 1), ERROR_EXCEPTION);
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
    const std::string log = LoggedBy([] {
        try {
            PolarizationType type;
            (void)Read(type, "polarization_type", "h");
            ADD_FAILURE();
        } catch (const ERROR_ENUM_BASE_INVALID_VALUE& error) {
            EXPECT_EQ(error.ValidValues(), "Valid values are: 'V' 'H' ");
        }
    });
    EXPECT_THAT(log, testing::HasSubstr(".pool: key \"polarization_type\": unknown value \"h\""));
}

TEST(Edge, HasAnOppositeAndTwoNeighbours) {
    const int opposites[] = {Edge::NOT_SET, Edge::BOTTOM, Edge::LEFT, Edge::TOP, Edge::RIGHT, Edge::END};
    for (int i = Edge::NOT_SET; i <= Edge::END; ++i) EXPECT_EQ(Edge(i).Opposite().Id(), opposites[i]);
    for (int i = Edge::NOT_SET; i <= Edge::END; ++i) {
        for (int k = Edge::NOT_SET; k <= Edge::END; ++k) {
            const bool both_real = i % 5 != 0 && k % 5 != 0;
            EXPECT_EQ(Edge(i).IsOrthogonalTo(Edge(k)), both_real && (i + k) % 2 == 1) << i << " " << k;
        }
    }
}

TEST(TxRxType, AllowsSixOfSixteenPairs) {
    using P = PolarizationType;
    const int expected[4][4] = {{0, -1, -1, -1}, {-1, 4, 3, -1}, {-1, 2, 1, -1}, {-1, -1, -1, 5}};
    for (int i = 0; i < 16; ++i) {
        const P transmit(i / 4);
        const P receive(i % 4);
        if (expected[i / 4][i % 4] >= 0) {
            const TxRxType type{transmit, receive};
            EXPECT_EQ(type.Id(), expected[i / 4][i % 4]);
            EXPECT_EQ(type.Transmit().Id(), i / 4);
            EXPECT_EQ(type.Receive().Id(), i % 4);
        } else {
            EXPECT_THROW((TxRxType{transmit, receive}), ERROR_INVALID_VALUE);
        }
    }
}

TEST(Azimuth, HasASecondText) {
    const std::string texts[] = {"-", "early", "mid", "late", "-"};
    for (int i = Azimuth::NOT_SET; i <= Azimuth::END; ++i) EXPECT_EQ(Azimuth(i).SecondText(), texts[i]);
}

TEST(ImageDirection, TurnsPositionsIntoEdges) {
    const Range near(Range::NEAR);
    const Range far(Range::FAR);
    const Azimuth start(Azimuth::START);
    const Azimuth stop(Azimuth::STOP);
    for (const Range& range : {near, far}) {
        for (const Azimuth& azimuth : {start, stop}) {
            const ImageDirection direction(range, Edge(Edge::LEFT), azimuth, Edge(Edge::TOP));
            const bool is_near = range.Id() == Range::NEAR;
            const bool is_start = azimuth.Id() == Azimuth::START;
            EXPECT_EQ(direction.Edges().first.Text(), is_near ? "LEFT" : "RIGHT");
            EXPECT_EQ(direction.Edges().second.Text(), is_start ? "TOP" : "BOTTOM");
            EXPECT_EQ(direction.EdgeOf(near).Text(), is_near ? "LEFT" : "RIGHT");
            EXPECT_EQ(direction.EdgeOf(far).Text(), is_near ? "RIGHT" : "LEFT");
            EXPECT_EQ(direction.EdgeOf(start).Text(), is_start ? "TOP" : "BOTTOM");
            EXPECT_EQ(direction.EdgeOf(stop).Text(), is_start ? "BOTTOM" : "TOP");
        }
    }
    EXPECT_EQ(ImageDirection().EdgeOf(far).Id(), Edge::NOT_SET);
}

TEST(Combinations, RejectsWhatNoImageCanHave) {
    using I = ImageDirection;
    const auto direction = [](int range, int range_edge, int azimuth, int azimuth_edge) {
        return [=] { I(Range(range), Edge(range_edge), Azimuth(azimuth), Edge(azimuth_edge)); };
    };
    const std::pair<std::function<void()>, std::string> cases[] = {
        {direction(Range::NEAR, Edge::LEFT, Azimuth::STOP, Edge::RIGHT),
         "range and azimuth should be at orthogonal edges\nALARM : global : range \"LEFT\", azimuth \"RIGHT\""},
        {direction(Range::MID, Edge::LEFT, Azimuth::START, Edge::TOP),
         "mid range is at no edge\nALARM : global : range \"mid\", azimuth \"\""},
        {direction(Range::NOT_SET, Edge::LEFT, Azimuth::START, Edge::TOP),
         "range is not set\nALARM : global : range \"-\", azimuth \"\""},
        {direction(Range::FAR, Edge::LEFT, Azimuth::CENTER, Edge::TOP),
         "azimuth center is at no edge\nALARM : global : range \"\", azimuth \"center\""},
        {direction(Range::FAR, Edge::LEFT, Azimuth::END, Edge::TOP),
         "azimuth is not set\nALARM : global : range \"\", azimuth \"-\""},
        {[] { TxRxType(PolarizationType(PolarizationType::V), PolarizationType()); },
         "invalid combination of transmit and receive polarization\nALARM : global : transmit \"V\", receive \"-\""},
    };
    for (const auto& [make, text] : cases) {
        EXPECT_EQ(ErrorAndLogOf(make), "invalid value\nALARM : global : " + text + "\n");
    }
}

}  // namespace
}  // namespace SAR
