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

/// Reads a pool of one entry.
template <class ENUM>
ENUM Read(const std::string& key, const std::string& text) {
    POOL_TEXT entries;
    entries.SetText(key, text);
    PARAMETER_POOL pool(entries.Save());
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
    EXPECT_EQ(static_cast<int>(ENUM::END), static_cast<int>(texts.size()) + 1);
    EXPECT_EQ(Read<ENUM>(key, "-").Id(), 0);  // never the closing enumerator
    for (std::size_t i = 0; i < texts.size(); ++i) EXPECT_EQ(Read<ENUM>(key, texts[i]).Id(), static_cast<int>(i) + 1);
    for (const auto& [text, id] : others) EXPECT_EQ(Read<ENUM>(key, text).Id(), id) << text;
    EXPECT_THROW((void)Read<ENUM>(key, "undefine"), ERROR_ENUM_BASE_INVALID_VALUE);
}

TEST(SarEnumerations, ReadTheirTextsAndThoseOfOtherProducers) {
    Check<QuicklookResolutionClass>("quicklook_resolution_class", {"lowRes", "mediumRes"}, {{"lres", 1}, {"mres", 2}});
    Check<PolarizationType>("polarization_type", {"V", "H"});
    Check<OrbitDirection>("orbit_direction", {"A", "D", "U"}, {{"ascending", 1}, {"DESCENDING", 2}, {"undefined", 3}});
    Check<AntennaLookDirection>("antenna_look_direction", {"L", "R", "U"},
                                {{"left", 1}, {"undefined", 3}, {"elevationRight", 2}, {"RIGHT", 2}});
    Check<Edge>("edge", {"TOP", "RIGHT", "BOTTOM", "LEFT"});
    Check<Range>("range", {"near", "mid", "far"});
    Check<Azimuth>("azimuth", {"start", "center", "stop"}, {{"early", 1}, {"mid", 2}, {"late", 3}, {"last", 3}});
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
            (void)Read<PolarizationType>("polarization_type", "h");
            ADD_FAILURE();
        } catch (const ERROR_ENUM_BASE_INVALID_VALUE& error) {
            EXPECT_EQ(error.ValidValues(), "Valid values are: 'V' 'H' ");
        }
    });
    EXPECT_THAT(log, testing::HasSubstr(".pool: key \"polarization_type\": unknown value \"h\""));
}

TEST(Edge, HasAnOppositeAndTwoNeighbours) {
    EXPECT_EQ(Edge(Edge::TOP).Opposite().Id(), Edge::BOTTOM);
    EXPECT_EQ(Edge(Edge::RIGHT).Opposite().Id(), Edge::LEFT);
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

TEST(ImageDirection, TurnsPositionsIntoEdges) {
    const ImageDirection direction(Range(Range::FAR), Edge(Edge::LEFT), Azimuth(Azimuth::STOP), Edge(Edge::TOP));
    EXPECT_EQ(direction.Edges().first.Text(), "RIGHT");
    EXPECT_EQ(direction.Edges().second.Text(), "BOTTOM");
    EXPECT_EQ(direction.EdgeOf(Range(Range::NEAR)).Text(), "RIGHT");
    EXPECT_EQ(direction.EdgeOf(Azimuth(Azimuth::STOP)).Text(), "TOP");
    EXPECT_EQ(ImageDirection().EdgeOf(Range(Range::FAR)).Id(), Edge::NOT_SET);
}

TEST(Combinations, RejectsWhatNoImageCanHave) {
    using I = ImageDirection;
    const std::pair<std::function<void()>, const char*> cases[] = {
        {[] { I(Range(Range::NEAR), Edge(Edge::LEFT), Azimuth(Azimuth::STOP), Edge(Edge::RIGHT)); },
         "range and azimuth should be at orthogonal edges"},
        {[] { I(Range(Range::MID), Edge(Edge::LEFT), Azimuth(Azimuth::START), Edge(Edge::TOP)); },
         "mid range is at no edge"},
        {[] { I(Range(Range::FAR), Edge(Edge::LEFT), Azimuth(Azimuth::CENTER), Edge(Edge::TOP)); },
         "azimuth center is at no edge"},
        {[] { TxRxType(PolarizationType(PolarizationType::V), PolarizationType()); },
         "invalid combination of transmit and receive polarization"},
    };
    for (const auto& [make, text] : cases) {
        EXPECT_THAT(LoggedBy([&] { EXPECT_THROW(make(), ERROR_INVALID_VALUE); }), testing::HasSubstr(text));
    }
}

}  // namespace
}  // namespace SAR
